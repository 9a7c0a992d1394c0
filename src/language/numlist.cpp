#include "language/numlist.h"
#include <algorithm>
#include <cmath>
#include "base/text.h"
#include "output/errors.h"
#include "output/formats.h"

namespace velmo {

namespace {

struct listreader {
    std::string_view text;
    std::vector<Double>& out;
    boolean missingokay;
    Int4 plain = 0;        // plain numbers at the end of out, for `to`

    char peek() {
        text = ltrimmed(text);
        return text.empty() ? char(0) : text[0];
    }
    boolean take(char c) {
        if (peek() != c) return false;
        text.remove_prefix(1);
        return true;
    }
};

std::size_t digits(std::string_view text, std::size_t i) {
    while (i < text.size() && isdigit(text[i])) i++;
    return i;
}

// Where the number that begins text ends: its sign, digits, point and, when it has digits, its exponent.
std::size_t numberend(std::string_view text) {
    std::size_t i = !text.empty() && (text[0] == '-' || text[0] == '+') ? 1 : 0;
    i = digits(text, i);
    if (i < text.size() && text[i] == '.') i = digits(text, i + 1);
    if (i == text.size()) return i;
    if (std::string_view("eEdD").find(text[i]) == std::string_view::npos) return i;
    std::size_t sign = i + 1 < text.size() && (text[i + 1] == '-' || text[i + 1] == '+') ? 2 : 1;
    std::size_t end = digits(text, i + sign);
    return end > i + sign ? end : i;
}

// A number at the reader's place; `.` is missing.
Int4 readone(listreader& r, Double& value) {
    r.peek();
    std::size_t n = numberend(r.text);
    std::string_view word = r.text.substr(0, n);
    r.text.remove_prefix(n);
    if (word == ".") {
        value = missing;
        return 0;
    }
    return readnumber(word, value) && std::isfinite(value) ? 0 : 121;
}

Int4 append(listreader& r, Double value) {
    if (r.out.size() == std::size_t(maxnumlist)) return 123;
    r.out.push_back(value);
    return 0;
}

// a, a+d, ... as far as b. A step that misses b by rounding alone still reaches it.
Int4 appendsteps(listreader& r, Double a, Double d, Double b) {
    r.plain = 0;
    if (a == missing || b == missing || d == missing) return r.missingokay ? 121 : 127;
    if (d == 0) return 121;
    Double steps = std::floor((b - a) / d + 1e-9);
    if (steps < 0) return 122;
    if (steps >= maxnumlist) return 123;
    for (Int4 i = 0; i <= Int4(steps); i++)
        if (Int4 rc = append(r, a + i * d)) return rc;
    return 0;
}

// #1(#d)#2 or #1[#d]#2, from the opening character on.
Int4 steppedrange(listreader& r, Double a, char closing) {
    Double d, b;
    r.text.remove_prefix(1);
    if (Int4 rc = readone(r, d)) return rc;
    if (!r.take(closing)) return 121;
    if (Int4 rc = readone(r, b)) return rc;
    return appendsteps(r, a, d, b);
}

// `to #2` or `: #2`: the two numbers before it are the start and the next one.
Int4 torange(listreader& r, std::size_t word) {
    if (r.plain < 2) return 121;
    Double b, next = r.out.back();
    r.text.remove_prefix(word);
    if (Int4 rc = readone(r, b)) return rc;
    r.out.pop_back();
    Double a = r.out.back();
    r.out.pop_back();
    return appendsteps(r, a, next == missing || a == missing ? missing : next - a, b);
}

Int4 readelement(listreader& r) {
    if (r.peek() == ':') return torange(r, 1);
    if (r.text.substr(0, 2) == "to") return torange(r, 2);
    Double a, b;
    if (Int4 rc = readone(r, a)) return rc;
    // What follows a number directly must be a separator or make a range of it.
    if (!r.text.empty() && std::string_view(" ,/([:t").find(r.text[0]) == std::string_view::npos) return 121;
    switch (r.peek()) {
    case '/':
        r.text.remove_prefix(1);
        if (Int4 rc = readone(r, b)) return rc;
        return appendsteps(r, a, 1, b);
    case '(': return steppedrange(r, a, ')');
    case '[': return steppedrange(r, a, ']');
    default: r.plain++; return append(r, a);
    }
}

// ---- The rules.

enum compare : Int4 { less, lessequal, greater, greaterequal, equal, unequal };
struct comparison { compare op; Double value; };

boolean readrange(std::string_view text, std::vector<comparison>& out) {
    static constexpr struct { std::string_view text; compare op;
    } operators[] = {
        {"<=", lessequal}, {">=", greaterequal}, {"==", equal},  {"!=", unequal},
        {"~=", unequal},   {"<", less},          {">", greater},
    };
    while (!(text = ltrimmed(text)).empty()) {
        const auto* row = std::find_if(std::begin(operators), std::end(operators),
                                       [&](const auto& o) { return text.substr(0, o.text.size()) == o.text; });
        if (row == std::end(operators)) return false;
        text = ltrimmed(text.substr(row->text.size()));
        std::size_t n = numberend(text);
        Double value;
        if (!readnumber(text.substr(0, n), value)) return false;
        out.push_back({row->op, value});
        text.remove_prefix(n);
        if (!text.empty() && text[0] == ',') text.remove_prefix(1);
    }
    return true;
}

boolean holds(Double x, const comparison& c) {
    switch (c.op) {
    case less: return x < c.value;
    case lessequal: return x <= c.value;
    case greater: return x > c.value;
    case greaterequal: return x >= c.value;
    case equal: return x == c.value;
    default: return x != c.value;
    }
}

Int4 checkelements(const numlistrules& rules, const std::vector<comparison>& range,
                   const std::vector<Double>& numbers) {
    for (Double x : numbers) {
        if (x == missing) {
            if (!rules.missingokay) return 127;
            continue;
        }
        if (rules.integer && x != std::floor(x)) return 126;
        for (const comparison& c : range)
            if (!holds(x, c)) return 125;
    }
    for (std::size_t i = 1; i < numbers.size(); i++) {
        if (rules.ascending && numbers[i - 1] >= numbers[i]) return 124;
        if (rules.descending && numbers[i - 1] <= numbers[i]) return 124;
    }
    return 0;
}

}  // namespace

boolean validrange(std::string_view text) {
    std::vector<comparison> range;
    return readrange(text, range);
}

Int4 numlistread(std::string_view text, const numlistrules& rules, std::vector<Double>& out) {
    std::vector<comparison> range;
    if (!readrange(rules.range, range)) return 198;
    out.clear();
    listreader r{text, out, rules.missingokay};
    while (r.take(',')) {}
    while (r.peek()) {
        if (Int4 rc = readelement(r)) return rc;
        while (r.take(',')) {}
    }
    if (Int4(out.size()) < rules.min) return 122;
    if (Int4(out.size()) > rules.max) return 123;
    if (Int4 rc = checkelements(rules, range, out)) return rc;
    if (rules.sort) std::sort(out.begin(), out.end());
    return 0;
}

Int4 numlistparse(std::string_view text, const numlistrules& rules, std::vector<Double>& out) {
    Int4 rc = numlistread(text, rules, out);
    return rc ? error(rc) : 0;
}

std::string numbertext(Double value) {
    char text[512];
    return std::string(text, std::size_t(fmttrimmed("%15.0g", value, text)));
}

std::string numlisttext(const std::vector<Double>& numbers) {
    std::string text;
    for (Double x : numbers) {
        if (!text.empty()) text += ' ';
        text += numbertext(x);
    }
    return text;
}

}  // namespace velmo
