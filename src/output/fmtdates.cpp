// Dates and periods by masks. A mask is rendered code by code from a table, then padded to the format's width.
#include <cstring>
#include "base/text.h"
#include "output/dates.h"
#include "output/fmtparts.h"

namespace velmo {

namespace {

struct maskdate { civildate c; Int4 yearday; };      // yearday from 1

Int4 weekof(const maskdate& d) { return d.yearday > 358 ? 52 : (d.yearday - 1) / 7 + 1; }

enum maskkind : UByte { mask_zeros, mask_number, mask_name, mask_lower, mask_itself };

// To add a code: its letter, its columns, how it shows, and what.
struct maskcode {
    char letter;
    UByte width;
    maskkind kind;
    Int4 (*value)(const maskdate& d);
};

Int4 century(const maskdate& d) { return d.c.year / 100; }
Int4 yearincentury(const maskdate& d) { return d.c.year % 100; }
Int4 monthday(const maskdate& d) { return d.c.day; }
Int4 yearday(const maskdate& d) { return d.yearday; }
Int4 month(const maskdate& d) { return d.c.month; }
Int4 half(const maskdate& d) { return d.c.month > 6 ? 2 : 1; }
Int4 quarter(const maskdate& d) { return (d.c.month + 2) / 3; }

constexpr maskcode maskcodes[] = {
    {'C', 2, mask_zeros, century},        {'c', 2, mask_zeros, century},
    {'Y', 2, mask_zeros, yearincentury},  {'y', 2, mask_zeros, yearincentury},
    {'D', 2, mask_zeros, monthday},       {'d', 2, mask_number, monthday},
    {'J', 3, mask_zeros, yearday},        {'j', 3, mask_number, yearday},
    {'N', 2, mask_zeros, month},          {'n', 2, mask_number, month},
    {'W', 2, mask_zeros, weekof},         {'w', 2, mask_number, weekof},
    {'M', 9, mask_name, month},           {'L', 9, mask_lower, month},
    {'m', 3, mask_name, month},           {'l', 3, mask_lower, month},
    {'h', 1, mask_number, half},          {'q', 1, mask_number, quarter},
    {'_', 1, mask_itself, nullptr},       {'!', 1, mask_itself, nullptr},
    {'.', 1, mask_itself, nullptr},       {',', 1, mask_itself, nullptr},
    {':', 1, mask_itself, nullptr},       {'-', 1, mask_itself, nullptr},
    {'/', 1, mask_itself, nullptr},       {'\'', 1, mask_itself, nullptr},
};

const maskcode* findcode(char letter) {
    for (const maskcode& code : maskcodes) {
        if (code.letter == letter) return &code;
    }
    return nullptr;
}

char* putcode(char* out, const maskcode& code, const maskdate& d) {
    Int4 value = code.value(d);
    if (code.kind == mask_name || code.kind == mask_lower) {
        const char* name = monthnames[value - 1];
        boolean lower = code.kind == mask_lower;
        for (Int4 i = 0; i < code.width && name[i]; i++) *out++ = lower ? lowerchar(name[i]) : name[i];
        return out;
    }
    Int4 unit = code.width == 3 ? 100 : code.width == 2 ? 10 : 1;
    if (code.kind == mask_number) {
        while (unit > 1 && value < unit) unit /= 10;
    }
    for (; unit > 0; unit /= 10) *out++ = char('0' + value / unit % 10);
    return out;
}

char* putmask(char* out, const char* mask, const maskdate& d) {
    for (; *mask; mask++) {
        const maskcode* code = findcode(*mask);
        if (!code) continue;
        if (code->value) out = putcode(out, *code, d);
        else if (*mask != '!') *out++ = *mask == '_' ? ' ' : *mask;
        else if (mask[1]) *out++ = *++mask;
    }
    return out;
}

boolean isint4(Double value) { return value >= -2147483648.0 && value <= 2147483647.0; }

}  // namespace

const char* datemaskof(char period, const char* mask) {
    if (*mask) return mask;
    switch (period) {
    case 'w': return "CY!ww";
    case 'm': return "CY!mn";
    case 'q': return "CY!qq";
    case 'h': return "CY!hh";
    case 'y': return "CY";
    default: return "DlCY";
    }
}

Int4 maskwidth(std::string_view mask) {
    Int4 width = 0;
    for (std::size_t i = 0; i < mask.size(); i++) {
        const maskcode* code = findcode(mask[i]);
        if (!code) return -1;
        if (code->letter == '!' && ++i == mask.size()) return -1;
        width += code->width;
    }
    return width < 8 ? 8 : width;
}

Int4 dateform(const fmtparts& f, Double value) {
    Int4 date = isint4(value) ? Int4(value) : baddate;
    boolean days = f.route == by_date || f.period == 'd';
    if (!days && date != baddate) date = periodstart(f.period, date);
    maskdate d;
    if (!civil(date, d.c)) return days ? exponentialform(f, value) : missingform(f);
    d.yearday = dayofyear(d.c);
    char text[128];
    Int4 n = Int4(putmask(text, f.mask, d) - text);
    Int4 pad = f.spec.width > n ? f.spec.width - n : 0;
    Int4 front = f.spec.just > 0 ? pad : 0;
    std::memset(dbuf, ' ', std::size_t(n + pad));
    std::memcpy(dbuf + front, text, std::size_t(n));
    dbuf[n + pad] = 0;
    return n + pad;
}

}  // namespace velmo
