// The calendar is counted in eras of 400 years of 146097 days from 1 March of year 0, so that the leap day is the
// last day of its year and month lengths follow one linear formula.
#include "output/dates.h"
#include "base/state.h"
#include "base/text.h"

namespace velmo {

const char* const monthnames[12] = {"January", "February", "March",     "April",   "May",      "June",
                                    "July",    "August",   "September", "October", "November", "December"};

namespace {

constexpr Int4 era = 146097;             // days in 400 years
constexpr Int4 epoch = 715815;           // 1 January 1960 counted from 1 March of year 0
constexpr Int4 firstday = -679350, lastday = 2936549;     // 1 January 100 and 31 December 9999

Int4 floordiv(Int4 a, Int4 b) { return a / b - (a % b < 0); }

Int4 monthdays(Int4 month, Int4 year) {
    constexpr UByte days[12] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return days[month - 1] + (month == 2 && isleap(year));
}

boolean goodyear(Int4 year) { return year >= 100 && year <= 9999; }

}  // namespace

boolean isleap(Int4 year) { return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0); }

Int4 mdydate(Int4 m, Int4 d, Int4 y) {
    if (!goodyear(y) || m < 1 || m > 12 || d < 1 || d > monthdays(m, y)) return baddate;
    Int4 year = m <= 2 ? y - 1 : y;
    Int4 yearday = (153 * (m > 2 ? m - 3 : m + 9) + 2) / 5 + d - 1;
    return year * 365 + year / 4 - year / 100 + year / 400 + yearday - epoch;
}

boolean civil(Int4 date, civildate& out) {
    if (date < firstday || date > lastday) return false;
    Int4 days = date + epoch;
    Int4 cycle = days / era, day = days % era;
    Int4 year = (day - day / 1460 + day / 36524 - day / 146096) / 365;
    Int4 yearday = day - (365 * year + year / 4 - year / 100);
    Int4 month = (5 * yearday + 2) / 153;                 // 0 is March
    out.day = yearday - (153 * month + 2) / 5 + 1;
    out.month = month < 10 ? month + 3 : month - 9;
    out.year = year + cycle * 400 + (month >= 10);
    return true;
}

Int4 dayofweek(Int4 date) {
    if (date < firstday || date > lastday + 1) return -1;
    Int4 day = (date + 5) % 7;
    return day < 0 ? day + 7 : day;
}

Int4 dayofyear(const civildate& c) { return mdydate(c.month, c.day, c.year) - mdydate(1, 1, c.year) + 1; }

Int4 periodsper(char kind) {
    switch (kind) {
    case 'd': return 365;
    case 'w': return 52;
    case 'm': return 12;
    case 'q': return 4;
    case 'h': return 2;
    default: return 1;
    }
}

Int4 periodof(char kind, Int4 date) {
    civildate c;
    if (kind == 'd') return date;
    if (!civil(date, c)) return baddate;
    if (kind == 'y') return c.year;
    Int4 part = (c.month - 1) / (12 / periodsper(kind == 'w' ? 'm' : kind));
    if (kind == 'w') part = dayofyear(c) > 358 ? 51 : (dayofyear(c) - 1) / 7;
    return periodsper(kind) * (c.year - 1960) + part;
}

Int4 periodstart(char kind, Int4 period) {
    if (kind == 'd') return period;
    if (kind == 'y') return mdydate(1, 1, period);
    Int4 per = periodsper(kind);
    Int4 year = 1960 + floordiv(period, per);
    if (!goodyear(year)) return baddate;
    Int4 part = period - per * (year - 1960);
    if (kind == 'w') return mdydate(1, 1, year) + 7 * part;
    return mdydate(part * (12 / per) + 1, 1, year);
}

// Reading

namespace {

struct datemask {
    char order[3];        // the letters without the century's digits
    Int4 n;
    Int4 century;         // -1 when the mask has none
};

// True when the mask consists of the letters of `want`, each once; digits may stand ahead of y only.
boolean readmask(std::string_view mask, std::string_view want, datemask& out) {
    out.n = 0;
    out.century = -1;
    for (std::size_t i = 0; i < mask.size(); i++) {
        if (isdigit(mask[i])) {
            std::size_t start = i;
            Int4 value = 0;
            for (; i < mask.size() && isdigit(mask[i]) && i - start < 3; i++) value = value * 10 + (mask[i] - '0');
            if (i - start > 2 || i == mask.size() || mask[i] != 'y') return false;
            out.century = value;
        }
        if (want.find(mask[i]) == want.npos || Int4(want.size()) <= out.n) return false;
        if (std::string_view(out.order, std::size_t(out.n)).find(mask[i]) != want.npos) return false;
        out.order[out.n++] = mask[i];
    }
    return out.n == Int4(want.size());
}

// A cursor over date text in which the separators are blanks, but for the first character and the last two.
struct datetext {
    std::string_view s;
    std::size_t at = 0;

    char peek() const {
        if (at >= s.size()) return 0;
        boolean replaced = at > 0 && at + 2 < s.size() && std::string_view("',-./:").find(s[at]) != s.npos;
        return replaced ? ' ' : s[at];
    }
    void skipblanks() {
        while (peek() == ' ') at++;
    }
};

// Digits, at least one; `count` receives how many. Values stop growing beyond what any part may be.
boolean readdigits(datetext& text, Int4& value, Int4& count) {
    value = count = 0;
    for (; isdigit(text.peek()); text.at++, count++) {
        if (value < 100000) value = value * 10 + (text.peek() - '0');
    }
    return count > 0;
}

// The month whose name the letters at the cursor begin, at least three of them, or 0; the cursor is moved behind them.
Int4 readmonthname(datetext& text) {
    char letters[16];
    std::size_t n = 0;
    for (; isletter(text.peek()); text.at++) {
        if (n < sizeof letters) letters[n++] = lowerchar(text.peek());
    }
    if (n < 3) return 0;
    for (Int4 m = 0; m < 12; m++) {
        std::string_view name = monthnames[m];
        if (n > name.size()) continue;
        std::size_t i = 0;
        while (i < n && lowerchar(name[i]) == letters[i]) i++;
        if (i == n) return m + 1;
    }
    return 0;
}

boolean readmonth(datetext& text, Int4& value) {
    Int4 count;
    if (!isletter(text.peek())) return readdigits(text, value, count);
    value = readmonthname(text);
    return value > 0;
}

// A year of two digits is completed: by topyear, else by the mask's century, else by the version's.
boolean readyear(datetext& text, Int4& value, const datemask& mask, Double topyear) {
    Int4 count;
    if (!readdigits(text, value, count)) return false;
    if (count != 2) return true;
    if (topyear != missing) {
        Int4 back = (Int4(topyear) - value) % 100;
        value = Int4(topyear) - back;
    } else if (mask.century >= 0) {
        value += mask.century * 100;
    } else if (version < 600) {
        value += 1900;
    }
    return true;
}

boolean goodtopyear(Double topyear, const datemask& mask) {
    if (topyear == missing) return true;
    return topyear >= 1000 && topyear <= 9999 && mask.century < 0;
}

// Between the parts of a period everything up to the next digit is passed over, but not a month's name.
void skiptopart(datetext& text, boolean monthdue) {
    while (text.peek() && !isdigit(text.peek())) {
        if (monthdue && isletter(text.peek())) {
            datetext ahead = text;
            if (readmonthname(ahead)) return;
            text = ahead;
        } else {
            text.at++;
        }
    }
}

}  // namespace

Double readdate(std::string_view s, std::string_view masktext, Double topyear) {
    datemask mask;
    if (!readmask(masktext, "mdy", mask) || !goodtopyear(topyear, mask)) return missing;
    datetext text{s};
    Int4 month = 0, day = 0, year = 0, count;
    for (char part : mask.order) {
        text.skipblanks();
        boolean fine = part == 'm'   ? readmonth(text, month)
                       : part == 'd' ? readdigits(text, day, count)
                                     : readyear(text, year, mask, topyear);
        if (!fine) return missing;
    }
    text.skipblanks();
    Int4 date = mdydate(month, day, year);
    return text.at < s.size() || date == baddate ? missing : Double(date);
}

Double readperiod(char kind, std::string_view s, std::string_view masktext, Double topyear) {
    const char want[2] = {'y', kind};
    datemask mask;
    if (!readmask(masktext, {want, kind == 'y' ? 1u : 2u}, mask) || !goodtopyear(topyear, mask)) return missing;
    datetext text{s};
    Int4 year = 0, part = 1, count;
    for (Int4 i = 0; i < mask.n; i++) {
        boolean isyear = mask.order[i] == 'y';
        if (i == 0) text.skipblanks();
        else skiptopart(text, kind == 'm' && !isyear);
        boolean fine = isyear        ? readyear(text, year, mask, topyear)
                       : kind == 'm' ? readmonth(text, part)
                                     : readdigits(text, part, count);
        if (!fine) return missing;
    }
    text.skipblanks();
    if (text.at < s.size() || !goodyear(year) || part < 1 || part > periodsper(kind)) return missing;
    return kind == 'y' ? year : periodsper(kind) * (year - 1960) + part - 1;
}

}  // namespace velmo
