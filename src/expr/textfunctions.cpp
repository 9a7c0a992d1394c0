// The words that touch strings. A result is built in the buffer of the slot it will stand in; an operand that lies
// there is copied away first or handled in place.
#include <algorithm>
#include <cmath>
#include <cstring>
#include "base/text.h"
#include "data/cells.h"
#include "expr/bodies.h"
#include "output/dates.h"
#include "output/formats.h"

namespace velmo {

namespace {

constexpr Int4 maxtext = 244;

void push(machine& m, std::string_view text) {
    m.str++;
    m.str->p = text.data();
    m.str->n = Int4(text.size());
}

// Makes `text`, which may lie anywhere, the slot's own.
void settext(textslot& slot, std::string_view text) {
    slot.n = Int4(std::min(text.size(), std::size_t(strbufsize - 1)));
    std::memmove(slot.buf, text.data(), std::size_t(slot.n));
    slot.p = slot.buf;
}

// A count from a number: truncated, cut to [-10000, 10000]; 0 for what is no number.
Int4 count(Double x) { return std::isnan(x) ? 0 : Int4(std::clamp(x, -10000.0, 10000.0)); }

// Compares the two strings on top and pops them.
Int4 compared(machine& m) {
    m.str -= 2;
    return m.str[1].view().compare(m.str[2].view());
}

void answer(machine& m, Double value) { *++m.top = value; }

// Pops the string on top and pushes a number.
void measured(machine& m, Double value) {
    m.str--;
    answer(m, value);
}

template <class F> void mapped(machine& m, F f) {
    settext(*m.str, m.str->view());
    for (Int4 i = 0; i < m.str->n; i++) m.str->buf[i] = f(m.str->buf[i]);
}

void view(machine& m, std::string_view part) {
    m.str->p = part.data();
    m.str->n = Int4(part.size());
}

}  // namespace

void text_literal(machine& m) { push(m, strpool + *m.at++); }

void text_load(machine& m) {
    Int4 var = *m.at++;
    push(m, m.obs <= nobs ? strcell(var, m.obs) : "");
}

void text_loadat(machine& m) {
    Int4 var = *m.at++, obs = subscripted(*m.top--);
    push(m, obs ? strcell(var, obs) : "");
}

void text_eq(machine& m) { answer(m, compared(m) == 0); }
void text_ne(machine& m) { answer(m, compared(m) != 0); }
void text_ge(machine& m) { answer(m, compared(m) >= 0); }
void text_le(machine& m) { answer(m, compared(m) <= 0); }
void text_gt(machine& m) { answer(m, compared(m) > 0); }
void text_lt(machine& m) { answer(m, compared(m) < 0); }

void text_add(machine& m) {
    std::string_view right = m.str->view();
    textslot& left = *--m.str;
    if (left.n > maxtext) left.n = maxtext;
    if (left.p != left.buf) settext(left, left.view());
    Int4 room = std::min(maxtext - left.n, Int4(right.size()));
    std::memcpy(left.buf + left.n, right.data(), std::size_t(room));
    left.n += room;
}

// The first string stands on top, the second below.
void text_cond(machine& m) {
    Double c = *m.top--;
    textslot& below = *--m.str;
    if (c != 0) settext(below, m.str[1].view());
}

void text_inrange(machine& m) {
    std::string_view z = m.str[0].view(), a = m.str[-1].view(), b = m.str[-2].view();
    boolean in = !z.empty() && (a.empty() || a <= z) && (b.empty() || z <= b);
    m.str -= 3;
    answer(m, in);
}

void text_inlist(machine& m) {
    Int4 n = *m.at++;
    boolean in = false;
    for (Int4 i = 1; i < n; i++) in = in || m.str[-i].view() == m.str->view();
    m.str -= n;
    answer(m, in);
}

void text_length(machine& m) { measured(m, m.str->n); }

void text_real(machine& m) {
    Double value = missing;
    readnumber(trimmed(m.str->view()), value);
    measured(m, exponent(value) == 1024 ? missing : value);
}

void text_lower(machine& m) { mapped(m, lowerchar); }
void text_upper(machine& m) { mapped(m, upperchar); }
void text_ltrim(machine& m) { view(m, ltrimmed(m.str->view())); }
void text_rtrim(machine& m) { view(m, rtrimmed(m.str->view())); }
void text_trim(machine& m) { view(m, trimmed(m.str->view())); }

void text_reverse(machine& m) {
    settext(*m.str, m.str->view());
    std::reverse(m.str->buf, m.str->buf + m.str->n);
}

void text_index(machine& m) {
    std::string_view s = m.str[0].view(), part = m.str[-1].view();
    std::size_t at = s.empty() ? s.npos : s.find(part);
    m.str -= 2;
    answer(m, at == s.npos ? 0 : Double(at + 1));
}

void text_match(machine& m) {
    boolean fits = wildmatch(m.str[0].view(), m.str[-1].view(), true);
    m.str -= 2;
    answer(m, fits);
}

void text_char(machine& m) {
    Double x = *m.top--;
    char c = char(x >= 1 && x < 256 ? Int4(x) : 0);
    push(m, "");
    settext(*m.str, {&c, c ? 1u : 0u});
}

// set dp comma concerns what is shown, not texts that programs work on.
void text_string(machine& m) {
    Int4 n = fmtread("%9.0g", *m.top--);
    push(m, "");
    settext(*m.str, ltrimmed({dbuf, std::size_t(n)}));
}

void text_stringfmt(machine& m) {
    char format[fmtsize] = "";
    boolean valid = chkfmt(m.str->view(), 1) == 0;
    if (valid) copytext(format, sizeof format, m.str->view());
    Int4 n = valid ? std::min(fmtread(format, *m.top), maxtext) : 0;
    m.top--;
    settext(*m.str, {dbuf, std::size_t(n)});
}

void text_substr(machine& m) {
    Double first = m.top[0], most = m.top[-1];
    m.top -= 2;
    Int4 n1 = first == missing ? 247 : count(first), n2 = most == missing ? 246 : std::min(count(most), 246);
    Int4 length = m.str->n;
    if (n1 < 0) n1 = std::max(length + 1 + n1, 1);
    if (n1 > length || n1 == 0 || n2 < 1) view(m, {m.str->p, 0});
    else view(m, m.str->view().substr(std::size_t(n1 - 1), std::size_t(n2)));
}

void text_abbrev(machine& m) {
    Double n = *m.top--;
    view(m, trimmed(m.str->view()));
    if (n == missing) return;
    char text[strbufsize];
    settext(*m.str, abbrevname(text, sizeof text, m.str->view(), count(std::floor(n + 0.5))));
}

namespace {

// True where an occurrence at s[at..at+n) is a word by itself.
boolean isword(std::string_view s, std::size_t at, std::size_t n) {
    return (at == 0 || s[at - 1] == ' ') && (at + n == s.size() || s[at + n] == ' ');
}

// Replaces in the string on top (s, from, to from the top; the count on the number stack).
void substitute(machine& m, boolean words) {
    std::string_view s = m.str[0].view(), from = m.str[-1].view(), to = m.str[-2].view();
    Double most = *m.top--;
    Int4 left = most == missing ? strbufsize : count(most);
    char out[strbufsize];
    std::size_t n = 0;
    for (std::size_t at = 0; at < s.size() && !from.empty() && n < maxtext;) {
        boolean hit = left > 0 && s.substr(at, from.size()) == from && (!words || isword(s, at, from.size()));
        if (!hit) {
            out[n++] = s[at++];
            continue;
        }
        if (n + to.size() >= maxtext) break;
        std::memcpy(out + n, to.data(), to.size());
        n += to.size();
        at += from.size();
        left--;
    }
    m.str -= 2;
    settext(*m.str, {out, n});
}

// The year that two digits complete to: an argument when the operand says so.
Double topyear(machine& m) { return *m.at++ ? *m.top-- : missing; }

}  // namespace

void text_subinstr(machine& m) { substitute(m, false); }
void text_subinword(machine& m) { substitute(m, true); }

void text_date(machine& m) {
    Double top = topyear(m);
    Double value = readdate(m.str[0].view(), m.str[-1].view(), top);
    m.str -= 2;
    answer(m, value);
}

void text_period(machine& m) {
    Double top = topyear(m);
    Double value = readperiod(char(*m.at++), m.str[0].view(), m.str[-1].view(), top);
    m.str -= 2;
    answer(m, value);
}

// ---- Graph data sets and classes: none exist yet.

void text_strserset(machine& m) {
    m.top -= 2;
    push(m, "");
}

void text_cls(machine& m) { measured(m, missing); }
void text_scls(machine& m) { view(m, ""); }

}  // namespace velmo
