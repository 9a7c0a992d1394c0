#include "base/text.h"
#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <string>
#include "base/sixteen.h"

namespace velmo {

boolean abbrev(std::string_view word, std::string_view name, Int4 min) {
    if (word.empty() || name.empty() || word[0] != name[0]) return false;
    if (word.size() > name.size() || Int4(word.size()) < min) return false;
    return name.substr(0, word.size()) == word;
}

namespace {

struct notinnames {
    boolean is[256] = {};
    notinnames() {
        for (char c : std::string_view("\\!@#$%^&*()-+=[]{}:;,'\"~<>?/|. `")) is[UByte(c)] = true;
    }
};

}  // namespace

boolean validname(std::string_view name) {
    if (name.empty() || name.size() > namelen || !isnamestart(name[0])) return false;
    static const notinnames refused;
    for (char c : name)
        if (refused.is[UByte(c)]) return false;
    return true;
}

char* copytext(char* out, std::size_t size, std::string_view text) {
    if (size == 0) return out;
    std::size_t n = text.size() < size - 1 ? text.size() : size - 1;
    if (n) std::memmove(out, text.data(), n);
    out[n] = 0;
    return out;
}

std::string_view ltrimmed(std::string_view text) {
    std::size_t i = 0;
    while (i < text.size() && text[i] == ' ') i++;
    return text.substr(i);
}

std::string_view rtrimmed(std::string_view text) {
    std::size_t n = text.size();
    while (n > 0 && text[n - 1] == ' ') n--;
    return text.substr(0, n);
}

std::string_view trimmed(std::string_view text) { return ltrimmed(rtrimmed(text)); }

std::string_view fieldtext(const char* field, std::size_t size) {
    const void* zero = size ? std::memchr(field, 0, size) : nullptr;
    return {field, zero ? std::size_t(static_cast<const char*>(zero) - field) : size};
}

// On a mismatch the scan goes back to the last `*` and lets it take one byte more: no recursion is needed,
// because only the last `*` can ever profit from a second try.
boolean wildmatch(std::string_view text, std::string_view pattern, boolean escapes) {
    std::size_t t = 0, p = 0, starpattern = 0, startext = 0;
    boolean star = false;
    while (true) {
        boolean advanced = false;
        if (p < pattern.size() && pattern[p] == '*') {
            star = true;
            starpattern = ++p;
            startext = t;
            continue;
        }
        if (t == text.size() && p == pattern.size()) return true;
        if (t < text.size() && p < pattern.size()) {
            std::size_t width = 1;
            char want = pattern[p];
            boolean any = want == '?';
            if (escapes && want == '\\' && p + 1 < pattern.size() &&
                (pattern[p + 1] == '\\' || pattern[p + 1] == '?' || pattern[p + 1] == '*')) {
                want = pattern[p + 1];
                width = 2;
                any = false;
            }
            if (any || text[t] == want) {
                t++;
                p += width;
                advanced = true;
            }
        }
        if (advanced) continue;
        if (!star || startext >= text.size()) return false;
        p = starpattern;
        t = ++startext;
    }
}

namespace {

// Length of the digits at s[i..].
std::size_t digitrun(std::string_view s, std::size_t i) {
    std::size_t start = i;
    while (i < s.size() && isdigit(s[i])) i++;
    return i - start;
}

// Checks the grammar; `mark` receives the place of the exponent letter, or npos.
boolean isnumber(std::string_view s, std::size_t& mark) {
    std::size_t i = 0;
    mark = std::string_view::npos;
    if (i < s.size() && (s[i] == '-' || s[i] == '+')) i++;
    std::size_t n = digitrun(s, i);
    i += n;
    if (i < s.size() && s[i] == '.') {
        std::size_t m = digitrun(s, ++i);
        i += m;
        n += m;
    }
    if (n == 0) return false;
    if (i == s.size()) return true;
    if (lowerchar(s[i]) != 'e' && lowerchar(s[i]) != 'd') return false;
    mark = i++;
    if (i < s.size() && (s[i] == '-' || s[i] == '+')) i++;
    n = digitrun(s, i);
    return n > 0 && i + n == s.size();
}

// from_chars leaves its result alone when the value is out of range: the place of the first digit that counts, moved
// by the exponent, tells overflow from underflow.
Double outofrange(std::string_view s, std::size_t mark) {
    Double sign = s[0] == '-' ? -1 : 1;
    std::string_view digits = s.substr(0, mark);
    std::size_t first = digits.find_first_of("123456789"), point = std::min(digits.find('.'), digits.size());
    if (first == std::string_view::npos) return sign * 0.0;
    std::int64_t place = std::int64_t(point) - std::int64_t(first), exponent = 0;
    if (mark != std::string_view::npos) {
        std::string_view text = s.substr(mark + 1 + (s[mark + 1] == '+'));
        if (std::from_chars(text.data(), text.data() + text.size(), exponent).ec != std::errc())
            return sign * (text[0] == '-' ? 0.0 : HUGE_VAL);
    }
    return sign * (place + exponent > 0 ? HUGE_VAL : 0.0);
}

// The exponent behind its letter at s[i]; 1000 when it isn't one to three digits to the end.
Int4 shortexponent(std::string_view s, std::size_t i) {
    boolean negative = ++i < s.size() && s[i] == '-';
    if (i < s.size() && (s[i] == '-' || s[i] == '+')) i++;
    if (i == s.size() || s.size() - i > 3) return 1000;
    Int4 e = 0;
    for (; i < s.size(); i++) {
        if (!isdigit(s[i])) return 1000;
        e = e * 10 + (s[i] - '0');
    }
    return negative ? -e : e;
}

// The usual case: digits and power of ten are both exact in a double, so one operation rounds correctly (Clinger
// 1990). False when the text is anything else.
boolean exactnumber(std::string_view s, Double& value) {
    std::size_t i = !s.empty() && (s[0] == '-' || s[0] == '+');
    std::uint64_t whole = 0;
    Int4 digits = 0, point = -1, power = 0;
    for (; i < s.size(); i++) {
        char c = s[i];
        if (isdigit(c)) {
            whole = whole * 10 + std::uint64_t(c - '0');
            if (++digits > 19) return false;                 // before `whole` can overflow
        } else if (c == '.' && point < 0) {
            point = digits;
        } else if (lowerchar(c) == 'e' || lowerchar(c) == 'd') {
            power = shortexponent(s, i);
            break;
        } else {
            return false;
        }
    }
    if (point >= 0) power -= digits - point;
    if (digits == 0 || whole > (1ull << 53) || power < -22 || power > 22) return false;
    Double v = Double(std::int64_t(whole));
    v = power < 0 ? v / exacttens[-power] : v * exacttens[power];
    value = s[0] == '-' ? -v : v;
    return true;
}

}  // namespace

boolean readnumber(std::string_view text, Double& value) {
    if (exactnumber(text, value)) return true;
    std::size_t mark;
    if (!isnumber(text, mark)) return false;
    std::string_view body = text[0] == '+' ? text.substr(1) : text;
    if (text[0] == '+' && mark != std::string_view::npos) mark--;
    std::string copy;
    if (mark != std::string_view::npos && lowerchar(body[mark]) != 'e') {
        copy = body;
        copy[mark] = 'e';
        body = copy;
    }
    Double v = 0;
    std::from_chars_result r = std::from_chars(body.data(), body.data() + body.size(), v);
    value = r.ec == std::errc::result_out_of_range ? outofrange(body, mark) : v;
    return true;
}

boolean readinteger(std::string_view text, Int4& value) {
    if (!text.empty() && text[0] == '+') {
        text.remove_prefix(1);
        if (!text.empty() && text[0] == '-') return false;
    }
    Int4 v = 0;
    std::from_chars_result r = std::from_chars(text.data(), text.data() + text.size(), v);
    if (text.empty() || r.ec != std::errc() || r.ptr != text.data() + text.size()) return false;
    value = v;
    return true;
}

}  // namespace velmo
