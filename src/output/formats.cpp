// The parser and the front of the renderers. A command renders many values by a few formats, so the last ones are
// kept broken up.
#include "output/formats.h"
#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstring>
#include "base/columns.h"
#include "base/saved.h"
#include "base/text.h"
#include "output/fmtparts.h"

namespace velmo {

char dbuf[512];
UByte dpcomma = 0;

namespace {

constexpr Int4 badformat = 120;
constexpr Int4 mostwidth = 244, mostcapped = 26;

// One to three digits at fmt[at]; -1 when there are none or more.
Int4 readfield(std::string_view fmt, std::size_t& at) {
    std::size_t start = at;
    Int4 value = 0;
    for (; at < fmt.size() && isdigit(fmt[at]) && at - start < 4; at++) value = value * 10 + (fmt[at] - '0');
    return at == start || at - start > 3 ? -1 : value;
}

// What stands behind the d or t of a date format.
Int4 checkdate(std::string_view rest, fmtspec& spec) {
    char period = 0;
    if (rest[0] == 't') {
        if (rest.size() < 2 || std::string_view("dwmqhyg").find(rest[1]) == rest.npos) return badformat;
        period = rest[1];
    }
    std::string_view mask = rest.substr(period ? 2 : 1);
    Int4 width = maskwidth(mask.empty() ? datemaskof(period, "") : mask);
    if (width < 0) return badformat;
    if (period == 'g') return chkfmt("%9.0g", 1, &spec);
    spec.width = width;
    spec.decimals = 0;
    spec.fclass = 'g';
    spec.code = 'd';
    return 0;
}

// Width, point, decimals, letter and comma of a numeric format, `at` behind the width.
Int4 checknumber(std::string_view fmt, std::size_t at, fmtspec& spec) {
    if (at >= fmt.size() || (fmt[at] != '.' && fmt[at] != ',')) return badformat;
    spec.dpcomma = fmt[at++] == ',';
    spec.decimals = readfield(fmt, at);
    if (spec.decimals < 0 || spec.decimals >= spec.width || at >= fmt.size()) return badformat;
    spec.code = fmt[at++];
    if (spec.code != 'g' && spec.code != 'f' && spec.code != 'e') return badformat;
    spec.fclass = spec.code == 'f' ? 'f' : 'g';
    if (at < fmt.size() && fmt[at] == 'c' && spec.code != 'e') {
        spec.comma = 'c';
        at++;
    }
    return at == fmt.size() ? 0 : badformat;
}

Int4 check(std::string_view fmt, Int4 kind, fmtspec& spec) {
    boolean centre = kind > 10;
    if (centre) kind -= 10;
    if (fmt.size() < 2 || fmt.size() >= fmtsize || fmt[0] != '%') return badformat;
    std::size_t at = 1;
    spec = {1, 0, 0, 'g', 'g', ' ', 0};
    if (fmt[at] == '-' || (fmt[at] == '~' && centre)) spec.just = fmt[at++] == '-' ? -1 : 0;
    if (at == fmt.size()) return badformat;
    if (fmt[at] == 'd' || fmt[at] == 't') {
        return kind == 2 || spec.just == 0 ? badformat : checkdate(fmt.substr(at), spec);
    }
    spec.width = readfield(fmt, at);
    if (spec.width < 1 || spec.width > mostwidth || at == fmt.size()) return badformat;
    boolean last = at + 1 == fmt.size();
    if (fmt[at] == 's' && last) {
        spec.fclass = spec.code = 's';
        return kind == 1 ? badformat : 0;
    }
    if (kind == 2 || spec.just == 0) return badformat;
    if (fmt[at] == 'x' && last) {
        spec.code = 'x';
        return spec.width == 21 ? 0 : badformat;
    }
    return checknumber(fmt, at, spec);
}

fmtroute routeof(const fmtparts& f) {
    const char* behind = f.text + (f.spec.just < 0 ? 2 : 1);
    switch (f.spec.code) {
    case 'd': return *behind == 'd' ? by_date : by_period;
    case 'x': return std::strcmp(f.text, "%21x") == 0 ? by_hex : by_exponential;
    case 'f': return f.spec.comma == 'c' ? by_fixedcommas : by_fixed;
    case 'g': return by_general;
    default: return by_exponential;
    }
}

void breakup(fmtparts& f, std::string_view fmt) {
    if (check(fmt, 13, f.spec)) check(fmt = "%9.0g", 1, f.spec);
    copytext(f.text, sizeof f.text, fmt);
    f.route = routeof(f);
    f.capped = f.spec.width > mostcapped ? mostcapped : f.spec.width;
    f.excess = f.spec.width - f.capped;
    f.places = f.spec.decimals > f.capped ? 0 : f.spec.decimals;
    const char* behind = f.text + (f.spec.just == 1 ? 1 : 2);
    f.zerofill = *behind == '0';
    f.quick = f.route == by_general && f.places == 0 && f.spec.comma != 'c' && f.spec.width >= leastquick &&
              f.spec.width <= widestquick;
    f.wholes = f.route == by_general && f.places == 0 && f.spec.comma != 'c' && f.spec.width >= leastwholes;
    f.period = f.route == by_period ? behind[1] : 0;
    if (f.route == by_date || f.route == by_period) f.mask = datemaskof(f.period, behind + (f.period ? 2 : 1));
}

// The format broken up, as an earlier call left it when the text is the same. Formats that are used in turn stand at
// different addresses, which spread them over the places.
const fmtparts& partsof(const char* fmt) {
    static fmtparts kept[256] = {};
    fmtparts& f = kept[std::uint64_t(reinterpret_cast<UPint>(fmt)) * 0x9E3779B97F4A7C15u >> 56];
    if (std::strncmp(fmt, f.text, fmtsize) != 0 || !*fmt) breakup(f, std::string_view(fmt, strnlen(fmt, fmtsize)));
    return f;
}

// `taken`: what the text takes of the width.
Int4 padded(std::string_view text, Int4 width, Int4 just, Int4 taken) {
    Int4 n = Int4(text.size() < sizeof dbuf ? text.size() : sizeof dbuf - 1);
    Int4 pad = std::clamp(width - taken, 0, Int4(sizeof dbuf) - 1 - n);
    Int4 front = just > 0 ? pad : just < 0 ? 0 : pad / 2;
    std::memmove(dbuf + front, text.data(), std::size_t(n));
    std::memset(dbuf, ' ', std::size_t(front));
    std::memset(dbuf + front + n, ' ', std::size_t(pad - front));
    dbuf[n + pad] = 0;
    return n + pad;
}

}  // namespace

Int4 chkfmt(std::string_view fmt, Int4 kind, fmtspec* spec) {
    fmtspec own;
    return check(fmt, kind, spec ? *spec : own);
}

Int4 missingform(const fmtparts& f) { return padded(".", f.spec.width, f.spec.just, 1); }

Int4 fmtnum(const char* fmt, Double value) {
    const fmtparts& f = partsof(fmt);
    if (value == 0) value = 0;
    if (value == missing || exponent(value) == 1024) return missingform(f);
    return f.route == by_date || f.route == by_period ? dateform(f, value) : numberform(f, value);
}

Int4 fmtread(const char* fmt, Double value) {
    saved point(dpcomma, UByte(0));
    return fmtnum(fmt, value);
}

Int4 fmttrimmed(const char* fmt, Double value, char* out) {
    const fmtparts& f = partsof(fmt);
    quicktext text;
    if (f.wholes && value > -1e15 && value < 1e15 && value == Double(std::int64_t(value)))
        return Int4(std::to_chars(out, out + 20, std::int64_t(value)).ptr - out);
    if (f.quick && !f.spec.dpcomma && quicknumber(f, value, text)) return Int4(putquick(out, text, value < 0) - out);
    std::string_view whole = trimmed({dbuf, std::size_t(fmtread(fmt, value))});
    std::memcpy(out, whole.data(), whole.size());
    return Int4(whole.size());
}

Int4 fmtstr(const char* fmt, std::string_view text, boolean cut) {
    const fmtparts& f = partsof(fmt);
    if (cut && Int4(text.size()) > f.spec.width) text = text.substr(0, std::size_t(f.spec.width));
    return padded(text, f.spec.width, f.spec.just, Int4(text.size()));
}

Int4 fmtshown(const char* fmt, std::string_view text, boolean cut) {
    const fmtparts& f = partsof(fmt);
    if (cut) text = text.substr(0, bytesin(text, f.spec.width));
    return padded(text, f.spec.width, f.spec.just, textcolumns(text));
}

void defaultformat(UByte type, char (&out)[fmtsize]) {
    constexpr const char* numeric[5] = {"%8.0g", "%8.0g", "%12.0g", "%9.0g", "%10.0g"};
    if (type >= typebyte) copytext(out, sizeof out, numeric[type - typebyte]);
    else std::snprintf(out, sizeof out, "%%%ds", type > 9 ? type : 9);
}

namespace {

// "%w.dc" of a parsed format, with another width; "%9.0g" when that is no format.
void writeformat(char (&out)[fmtsize], Int4 width, const fmtspec& spec, boolean comma) {
    char text[24];
    std::snprintf(text, sizeof text, "%%%d%c%d%c%s", width, spec.dpcomma ? ',' : '.', spec.decimals, spec.code,
                  comma && spec.comma == 'c' ? "c" : "");
    copytext(out, sizeof out, chkfmt(text, 3) ? "%9.0g" : text);
}

}  // namespace

void cutformat(const char* own, const char* usual, char (&out)[fmtsize]) {
    fmtspec mine, theirs;
    boolean fits = !chkfmt(own, 1, &mine) && !chkfmt(usual, 1, &theirs) && (mine.code == 'f' || mine.code == 'g') &&
                   mine.decimals < theirs.width;
    if (fits) writeformat(out, theirs.width, mine, true);
    else copytext(out, sizeof out, usual);
}

void fmtplain(char (&out)[fmtsize], const char* fmt, Int4 filever) {
    fmtspec spec;
    Int4 rc = chkfmt(fmt, 3, &spec);
    char kind = fmt[0] == '%' ? fmt[fmt[1] == '-' ? 2 : 1] : 0;
    if (filever == 5) {
        copytext(out, sizeof out, kind == 't' ? "%9.0g" : kind == 'd' ? "%d" : fmt);
        return;
    }
    if (rc) {
        copytext(out, sizeof out, "%9.0g");
        return;
    }
    copytext(out, sizeof out, fmt);
    if (kind == 'd' || spec.code == 's') {
        if (spec.just < 0) std::memmove(out + 1, out + 2, std::strlen(out + 2) + 1);
        return;
    }
    if (kind == 't' && spec.just > 0) return;
    spec.dpcomma = 0;
    if (spec.code != 'x' || spec.just < 0) writeformat(out, spec.width, spec, false);
}

boolean widenformat(char (&fmt)[fmtsize], Int4 longest) {
    fmtspec spec;
    if (chkfmt(fmt, 3, &spec) || spec.width >= longest) return false;
    if (spec.code != 'g' && spec.code != 'f' && spec.code != 'e') return false;
    if (longest > mostwidth) longest = mostwidth;
    if (spec.width >= longest) return false;
    writeformat(fmt, longest, spec, true);
    return true;
}

void memtext(char* out, std::size_t size, Double bytes) {
    fmtnum("%20.3fc", bytes / 1048576);
    std::snprintf(out, size, "%sM", dbuf + std::strspn(dbuf, " "));
}

void sizetext(char* out, std::size_t size, std::uint64_t bytes) {
    boolean whole = (bytes & 0xFFFFF) == 0;
    std::snprintf(out, size, "%llu%c", static_cast<unsigned long long>(bytes >> (whole ? 20 : 10)), whole ? 'M' : 'k');
}

char* abbrevname(char* out, std::size_t size, std::string_view name, Int4 n) {
    if (Int4(name.size()) <= n) return copytext(out, size, name);
    std::size_t dot = name.rfind('.');
    std::size_t prefix = dot == name.npos || Int4(dot) + 1 >= n ? 0 : dot + 1;
    Int4 room = n - Int4(prefix);
    std::string_view rest = name.substr(prefix);
    std::size_t kept = room < 3 ? std::size_t(room < 0 ? 0 : room) : std::size_t(room - 2);
    char text[300];
    kept = prefix + kept < sizeof text - 3 ? prefix + kept : sizeof text - 3;
    std::memcpy(text, name.data(), kept);
    if (room >= 3) {
        text[kept++] = '~';
        text[kept++] = rest.back();
    }
    return copytext(out, size, {text, kept});
}

// The characters of a name are few: those at either end are looked for among them.
std::string shownname(std::string_view name, Int4 n) {
    char text[300];
    if (isascii(name)) return abbrevname(text, sizeof text, name, n);
    if (textcolumns(name) <= n) return std::string(name);
    std::size_t last = 0;
    for (std::size_t next = 0; next < name.size(); next += std::size_t(charat(name.substr(next)).bytes)) last = next;
    std::string_view end = name.substr(last);
    Int4 kept = n - 1 - textcolumns(end);
    if (kept < 1) return std::string(name.substr(0, bytesin(name, n)));
    return std::string(name.substr(0, bytesin(name, kept))) + "~" + std::string(end);
}

}  // namespace velmo
