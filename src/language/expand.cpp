// The scan walks cmdbuf by index and rewrites it in place: a reference's text is replaced by its value, the tail moves
// once, and the scan goes on at the same place, so that what a value holds is looked at too.
#include "language/expand.h"
#include <algorithm>
#include <bit>
#include <cstring>
#include <vector>
#include "base/platform.h"
#include "base/saved.h"
#include "base/sixteen.h"
#include "base/text.h"
#include "core/macros.h"
#include "data/cells.h"
#include "data/chars.h"
#include "data/run.h"
#include "expr/value.h"
#include "language/extfunctions.h"
#include "language/lists.h"
#include "output/errors.h"
#include "output/formats.h"
#include "stored/families.h"

namespace velmo {

namespace {

constexpr Int4 maxrounds = 21;      // substitutions at one place
constexpr Int4 maxdepth = 1000;     // references within references

// Opening characters of a pair that have no partner: whether one has depends on what stands behind it alone, so they
// are found once, and kept by their distance from the line's end. What is put into the line forgets those ahead of it.
struct partnerless {
    char open, close;
    Int4 known = 0;                 // distance within which all are known
    std::vector<Int4> at = {};      // distances, falling
    boolean holds(Int4 distance) const {
        return distance <= known && std::binary_search(at.rbegin(), at.rend(), distance);
    }
};

struct scan {
    Int4 len = 0;
    Int4 tail = 0;                  // bytes at the line's end without a mark
    Int4 depth = 0;
    Int4 rc = 0;                    // 920 once the line can't be expanded
    Int4 behind = 0;                // where the last reference ends that was looked at whole and changed nothing
};
scan s;
partnerless quotes{'`', '\''}, braces{'{', '}'};

Int4 toomany() {
    if (!s.rc) s.rc = error(920);
    return s.rc;
}

// Puts value in the place of n characters at p; false when the line would grow past its buffer.
boolean put(Int4 p, Int4 n, std::string_view value) {
    std::int64_t len = std::int64_t(s.len) - n + std::int64_t(value.size());
    if (len > conslen - 1) {
        toomany();
        return false;
    }
    std::memmove(cmdbuf + p + value.size(), cmdbuf + p + n, std::size_t(s.len - p - n) + 1);
    if (!value.empty()) std::memcpy(cmdbuf + p, value.data(), value.size());
    s.tail = std::min(s.tail, s.len - p - n);
    if (quotes.known || braces.known)
        for (partnerless* of : {&quotes, &braces}) of->known = std::min(of->known, s.len - p - n);
    s.len = Int4(len);
    return true;
}

boolean ismark(char c) { return c == '$' || c == '`'; }

// Length of the macro name at p, at most the limit; `_*` is one, all positional arguments.
Int4 nameend(Int4 p) {
    if (!isnamestart(cmdbuf[p])) return 0;
    if (cmdbuf[p] == '_' && cmdbuf[p + 1] == '*') return 2;
    Int4 n = 1, limit = macronamelimit();
    while (n < limit && isnamechar(cmdbuf[p + n])) n++;
    return n;
}

void findpartnerless(Int4 p, partnerless& of) {
    of.at.clear();
    for (Int4 i = p; i < s.len; i++) {
        if (cmdbuf[i] == of.open) of.at.push_back(s.len - i);
        if (cmdbuf[i] == of.close && !of.at.empty()) of.at.pop_back();
    }
    of.known = s.len - p;
}

// The partner of the opening character at p, counting those between; -1 without one.
template <char open, char close> Int4 partner(Int4 p, partnerless& of) {
    if (of.known && of.holds(s.len - p)) return -1;
    Int4 depth = 0;
    for (Int4 i = p; cmdbuf[i]; i++) {
        if (cmdbuf[i] == open) depth++;
        if (cmdbuf[i] == close && --depth == 0) return i;
    }
    findpartnerless(p, of);
    return -1;
}

boolean expandat(Int4 p);

// Expands every position in p..end, where close(p) finds the end anew after each change; returns the end, -1 when the
// partner is gone.
template <class F> Int4 expandinside(Int4 from, F close) {
    Int4 end = close();
    for (Int4 i = from; end >= 0 && i < end && !s.rc;) {
        if (!ismark(cmdbuf[i])) {
            i++;
            continue;
        }
        boolean changed = expandat(i);
        end = close();
        if (!changed || ismark(cmdbuf[i])) i = std::max(i + 1, s.behind);
    }
    return s.rc ? -1 : end;
}

// ---- Global references.

boolean bracedglobal(Int4 p, boolean& inserted) {
    Int4 open = p + 1;
    Int4 close = expandinside(open + 1, [open] { return partner<'{', '}'>(open, braces); });
    if (close < 0) return false;
    Int4 n = nameend(open + 1);
    std::string value;
    if (n > 0 && open + 1 + n == close) value = macrovalue({cmdbuf + open + 1, std::size_t(n)});
    inserted = !value.empty();
    return put(p, close + 1 - p, value);
}

boolean globalreference(Int4 p, boolean& inserted) {
    if (ismark(cmdbuf[p + 1])) expandat(p + 1);
    if (s.rc) return false;
    if (cmdbuf[p + 1] == '{') return bracedglobal(p, inserted);
    Int4 n = nameend(p + 1);
    if (n == 0) return false;
    std::string value = macrovalue({cmdbuf + p + 1, std::size_t(n)});
    inserted = !value.empty();
    return put(p, n + 1, value);
}

// ---- Local references.

std::string numbertext(Double value) {
    char text[512];
    return {text, std::size_t(fmttrimmed("%18.0g", value, text))};
}

// =exp: a failing expression is empty, and says nothing.
std::string expressionvalue(const std::string& text) {
    textvalue value;
    saved quiet(quietlevel, shows_nothing);
    if (exp_valueof(text, mode_any, value)) return {};
    return value.isstring ? value.text : numbertext(value.number);
}

std::string extendedvalue(const std::string& text) {
    std::string out;
    elsewhere cursor(text);
    if (extfunc(out)) out.clear();
    return out;
}

// r(x), e(x), s(x), return(x); empty for what is none of these.
std::string resultvalue(std::string_view word, std::string_view name) {
    if (word == "ferest") return ferest();
    family f;
    Double value;
    std::string text;
    if (!family_find(word, f)) return text;
    resultkind kind = stored_get(f, name, value, text);
    return kind == result_scalar ? numbertext(value) : kind == result_matrix && f == e_results ? "matrix" : text;
}

std::string charvalue(std::string_view owner, std::string_view name) {
    if (owner != "_dta" && !findvar(owner)) {
        saved quiet(quietlevel, shows_nothing);
        Int4 var = lookupvar(owner, lookup_quiet);
        if (var < 1 || var > nvar) return "";
        return char_get(varlist[var - 1], trimmed(name));
    }
    return char_get(owner, trimmed(name));
}

std::string_view localvalue(std::string_view name) {
    char stored[namesize] = "_";
    std::memcpy(stored + 1, name.data(), name.size());
    return macrotext({stored, name.size() + 1});
}

// The value of what stands between the quotes at p and close: a local's where it is stored, all others in `value`.
boolean insidevalue(Int4 p, Int4 close, std::string& value, std::string_view& stored) {
    std::string_view inside(cmdbuf + p + 1, std::size_t(close - p - 1));
    if (!inside.empty() && (inside[0] == '=' || inside[0] == ':' || inside[0] == '.')) {
        std::string text(inside.substr(1));
        value = inside[0] == '=' ? expressionvalue(text) : inside[0] == ':' ? extendedvalue(text) : "";
        return true;
    }
    if (!inside.empty() && inside[0] == '*') {
        value = macrovalue("_*");
        return true;
    }
    Int4 n = 0;
    while (n < Int4(inside.size()) && isnamechar(inside[std::size_t(n)])) n++;
    if (n == 0) return false;
    char behind = n < Int4(inside.size()) ? inside[std::size_t(n)] : char(0);
    std::string_view name = inside.substr(0, std::size_t(n)), rest = inside.substr(std::size_t(n));
    if (behind == '(')
        value = resultvalue(name, trimmed(rest.substr(1, rest.find(')') - 1)));
    else if (behind == '[')
        value = charvalue(name, rest.substr(1, rest.find(']') - 1));
    else
        stored = localvalue(name.substr(0, std::size_t(macronamelimit() - 1)));
    return true;
}

boolean localreference(Int4 p, boolean& inserted) {
    if (cmdbuf[p + 1] == '"') return false;
    Int4 close = expandinside(p + 1, [p] { return partner<'`', '\''>(p, quotes); });
    std::string value;
    std::string_view stored;
    if (close < 0) return false;
    if (!insidevalue(p, close, value, stored)) {
        s.behind = close + 1;
        return false;
    }
    if (stored.empty()) stored = value;
    inserted = !stored.empty();
    return put(p, close + 1 - p, stored);
}

// Substitutes at p until something else than a reference stands there. True when anything changed.
boolean expandat(Int4 p) {
    if (s.depth >= maxdepth) return toomany() * 0 != 0;
    saved deeper(s.depth, s.depth + 1);
    s.behind = p;
    boolean any = false;
    for (Int4 rounds = 0; ismark(cmdbuf[p]) && !s.rc;) {
        boolean inserted = false;
        boolean changed = cmdbuf[p] == '$' ? globalreference(p, inserted) : localreference(p, inserted);
        if (!changed) break;
        any = true;
        if (inserted && ++rounds >= maxrounds) toomany();
    }
    return any;
}

// The next place from p on that may begin a reference or an escape, or the end of what may hold one.
Int4 nextmark(Int4 p) {
    Int4 end = s.len - s.tail;
    if (end - p < 8) {                    // a short value, as most are: bytes just written are slow to read as one
        while (p < end && !ismark(cmdbuf[p]) && cmdbuf[p] != '\\') p++;
        return p;
    }
    while (p + 64 <= end && bytes::noneof64(cmdbuf + p, '$', '`', '\\')) p += 64;
    for (; p < end; p += 16) {
        UInt4 bits = bytes::anyof(cmdbuf + p, '$', '`', '\\', '\0');
        if (bits) return std::min(p + std::countr_zero(bits), end);
    }
    return end;
}

// p is a mark, or the end.
void expandline(Int4 p) {
    for (; p < s.len - s.tail && !s.rc; p = nextmark(p)) {
        char c = cmdbuf[p], next = cmdbuf[p + 1];
        if (ismark(c)) {
            if (!expandat(p) || ismark(cmdbuf[p])) p = std::max(p + 1, s.behind);
        } else if (c == '\\' && (ismark(next) || next == '\\')) {
            put(p, 1, "");
            p++;
        } else {
            p++;
        }
    }
}

// Before version 3.2: backquotes go, and %name is a macro; the scan begins anew after each.
void expandpercents() {
    for (Int4 p = 0, rounds = 0; p < s.len && !s.rc; p++) {
        if (cmdbuf[p] == '`') {
            put(p--, 1, "");
            continue;
        }
        if (cmdbuf[p] != '%') continue;
        Int4 n = nameend(p + 1);
        if (n == 0) continue;
        std::string value = macrovalue({cmdbuf + p + 1, std::size_t(n)});
        if (++rounds > 10000) toomany();
        put(p, n + 1, value);
        p = -1;
    }
}

}  // namespace

std::string macrovalue(std::string_view name) {
    static constexpr const char* months[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                             "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    if (name.starts_with('S') && (name == "S_DATE" || name == "S_TIME")) {
        clocktime t = localclock();
        char text[40];
        if (name == "S_DATE")
            snprintf(text, sizeof text, "%2d %s%5d", t.day, months[t.month - 1], t.year);
        else
            snprintf(text, sizeof text, "%02d:%02d:%02d", t.hour, t.minute, t.second);
        return text;
    }
    if (name != "_*") return std::string(macrotext(name));
    std::string all;
    for (Int4 i = 1; const char* value = macroget("_" + std::to_string(i)); i++) {
        if (i > 1) all += ' ';
        all += value;
        if (all.size() > std::size_t(conslen)) break;
    }
    return all;
}

Int4 expandmacros(const linemarks& marks) {
    if (!execflag) return 0;
    settokpos(cmdbuf);
    s = {};
    quotes.known = braces.known = 0;
    boolean known = marks.length >= 0 && version >= 320;
    s.len = known ? marks.length : Int4(std::strlen(cmdbuf));
    s.tail = known ? marks.behind : 0;
    Int4 first = known ? marks.first : nextmark(0);
    if (first == s.len && version >= 320) return 0;
    expandline(first);
    if (version < 320) expandpercents();
    settokpos(cmdbuf);
    return s.rc;
}

}  // namespace velmo
