// infile in free form: values one behind the other, apart by blanks, tabs, commas and line ends. Until the first comma
// of the file line ends mean nothing; from then on one ends a value, and two commas have an empty one between them.
#include "commands/files/infilefree.h"
#include <algorithm>
#include <cstring>
#include "base/poll.h"
#include "base/saved.h"
#include "base/text.h"
#include "commands/files/infile.h"
#include "commands/files/textrows.h"
#include "core/adopath.h"
#include "core/room.h"
#include "data/run.h"
#include "data/structure.h"
#include "language/stdparse.h"
#include "output/errors.h"
#include "output/print.h"

namespace velmo {

namespace {

// ---- Tokens.

constexpr Int4 longesttoken = 244;
constexpr Int4 token_atend = -1;

struct tokenreader {
    bytereader bytes;
    boolean commas;            // a comma has been met
    boolean ended;             // byte 26 has been met
    boolean quoted;            // the token in hand
    std::string_view text;     // its text, with margins; valid until the next one
    Int4 copied;
    char copy[numbermargin + longesttoken + numbermargin];     // a token that could not stay in the buffer
};

void tokens_start(tokenreader& t, Int4 handle) {
    reader_start(t.bytes, handle);
    reader_skipmark(t.bytes);
    t.commas = t.ended = t.quoted = false;
}

Int4 nextbyte(tokenreader& t) {
    if (t.ended) return read_eof;
    Int4 c = reader_next(t.bytes);
    t.ended = c == 26;
    return t.ended ? read_eof : c;
}

void pushback(tokenreader& t, Int4 c) {
    if (c < read_eof) t.bytes.pos--;
}

boolean isblank(Int4 c) { return c == ' ' || c == '\t'; }
boolean islineend(Int4 c) { return c == '\n' || c == '\r'; }

// Behind a CR, an LF belongs to the same line end.
void endline(tokenreader& t, Int4 c) {
    if (c != '\r') return;
    c = nextbyte(t);
    if (c != '\n') pushback(t, c);
}

// Behind a token: blanks, then a comma or, with commas, a line end is used up.
void passseparator(tokenreader& t) {
    Int4 c;
    do c = nextbyte(t);
    while (isblank(c) && !tick());
    if (c == ',') {
        t.commas = true;
        return;
    }
    if (islineend(c) && t.commas) return endline(t, c);
    pushback(t, c);
}

void keep(tokenreader& t, Int4 c, Int4& length) {
    length = std::min(length + 1, longesttoken + 1);
    if (t.copied < longesttoken) t.copy[numbermargin + t.copied++] = char(c);
}

void toolong() {
    printing as(out_text);
    prtrawf("{bf:Data over %d characters truncated}\n", longesttoken);
}

// A token that begins with byte c, copied.
void copytoken(tokenreader& t, Int4 c) {
    Int4 quote = c == '"' || c == '\'' ? c : -1, length = 0;
    t.copied = 0;
    t.quoted = quote >= 0;
    if (!t.quoted) keep(t, c, length);
    while (!tick()) {
        c = nextbyte(t);
        if (c == quote || c >= read_eof || islineend(c) || (!t.quoted && (isblank(c) || c == ','))) break;
        keep(t, c, length);
    }
    if (c != quote) pushback(t, c);
    if (length > longesttoken) toolong();
    t.text = {t.copy + numbermargin, std::size_t(t.copied)};
}

// The next token: 0, token_atend, 1 or 691.
Int4 anytoken(tokenreader& t) {
    Int4 c = read_eof;
    t.text = {};
    t.quoted = false;
    while (!tick()) {
        c = nextbyte(t);
        if (isblank(c)) continue;
        if (!islineend(c)) break;
        endline(t, c);
        if (t.commas) return 0;
    }
    if (breakpending) return 1;
    if (c == read_eof) return token_atend;
    if (c == read_error) return readfailure();
    if (c == ',') {
        t.commas = true;
        return 0;
    }
    copytoken(t, c);
    passseparator(t);
    return breakpending ? 1 : 0;
}

// What may follow the place looked at within the buffer: a short token, what ends it, and the margin of a look ahead.
constexpr Int4 lookahead = 64;

// The next token: here the usual one, which lies in the buffer and is short, plain and ended by one blank, line end or
// comma; all others as above.
inline Int4 nexttoken(tokenreader& t) {
    bytereader& b = t.bytes;
    if (b.pos < numbermargin || b.pos + lookahead > b.len || t.ended) return anytoken(t);
    const char* p = reinterpret_cast<const char*>(b.buf) + b.pos;
    if (*p == ' ' || (*p == '\n' && !t.commas)) p++;
    UInt4 ends = bytes::anyof(p, ' ', '\n', ',', '\t') | bytes::anyof(p, '\r', 26, '"', '\'');
    Int4 n = std::countr_zero(ends | 0x10000);
    if (n == 0 || n == 16) return anytoken(t);
    char end = p[n];
    if (end == '"' || end == '\'' || end == 26 || end == '\r' || end == '\t') return anytoken(t);
    t.quoted = false;
    t.text = {p, std::size_t(n)};
    p += n + (end == ' ');
    if (*p == ',') t.commas = true;
    if (*p == ' ' || *p == '\t' || *p == '\r') return anytoken(t);
    if (*p == ',' || (*p == '\n' && t.commas)) p++;
    b.pos = Int4(p - reinterpret_cast<const char*>(b.buf));
    return tick();
}

// ---- The two orders of values.

// The variables to fill, in order; a place without one is passed over.
std::vector<rowcell> slots;

void notatend() { notef("(eof not at end of obs)\n"); }

// The file ended within an observation.
Int4 cutshort(std::size_t from) {
    notatend();
    for (std::size_t i = from; i < slots.size(); i++)
        if (slots[i].var > 0) rows_clearcell(slots[i]);
    if (Int4 rc = rows_add()) return rc;
    return token_atend;
}

// One observation, stored or passed over: 0, token_atend, or a code.
Int4 readobservation(tokenreader& t, Int4 obs, boolean wanted) {
    for (std::size_t i = 0; i < slots.size(); i++) {
        Int4 rc = nexttoken(t);
        if (rc == token_atend && i > 0 && wanted) return cutshort(i);
        if (!rc && wanted && slots[i].var > 0) rc = rows_text(slots[i], t.text, t.quoted, obs);
        if (rc) return rc;
    }
    return wanted ? rows_add() : 0;
}

Int4 readrows(tokenreader& t, Int4 first, Int4 last) {
    Int4 rc = 0;
    for (Int4 obs = 1; obs <= last && !rc; obs++) rc = readobservation(t, obs, obs >= first);
    return std::max(rc, 0);
}

// All n values of a variable; those of rows first..last are stored. The highest row stored so far goes to highest.
Int4 readvariable(tokenreader& t, const rowcell& slot, Int4 n, Int4 first, Int4 last, Int4& highest) {
    for (Int4 i = 1; i <= n; i++) {
        if (Int4 rc = nexttoken(t)) return rc;
        if (!t.quoted && !t.text.empty() && t.text[0] == ';') return 0;
        if (slot.var < 0 || i < first || i > last) continue;
        if (Int4 rc = rows_text(slot, t.text, t.quoted, i)) return rc;
        Int4 row = i - first + 1;
        std::memcpy(cellptr(slot.var, row), rowinhand.data() + slot.offset, std::size_t(varsize(slot.type)));
        highest = std::max(highest, row);
    }
    return 0;
}

// Variable by variable: all rows are there at once, and at the end those that were stored, or all n of a whole file.
Int4 readcolumns(tokenreader& t, Int4 n, Int4 first, Int4 last) {
    if (Int4 rc = boundscheck("byvariable", n, 1, mostobs() - 1)) return rc;
    if (growobs(n)) return error(901);
    Int4 highest = 0, rc = 0;
    for (std::size_t i = 0; i < slots.size() && !rc; i++) rc = readvariable(t, slots[i], n, first, last, highest);
    if (rc == token_atend) notatend();
    if (rc || first > 1 || last < n) nobs = highest;
    return std::max(rc, 0);
}

Int4 fill(Int4 handle, const infileoptions& o) {
    Int4 first, last;
    form f{.newvars = true, .skips = true, .ifexp = o.byvariable ? never : may, .in = loosely, .file = must};
    if (Int4 rc = parserest(f, first, last)) return rc;
    if (nvar == 0) return error(102);
    slots.clear();
    for (Int4 i = 0; i < vl_n; i++) slots.push_back(vl_vr[i] > 0 ? rows_cell(vl_vr[i]) : rowcell{-1, 0, 0});
    numbers_start(true, o.automatic);
    rows_start();
    static tokenreader t;
    tokens_start(t, handle);
    return o.byvariable ? readcolumns(t, o.byvariable, first, last) : readrows(t, first, last);
}

}  // namespace

Int4 infilefree() {
    infileoptions o;
    char path[pathsize];
    if (Int4 rc = optionsahead(o, form_free)) return rc;
    addsuffix(path, o.file, ".raw");
    Int4 handle = webopen(path, web_binary | web_textread);
    if (handle < 0) return -handle;
    onexit close([handle] { webclose(handle); });
    replacedata();
    return rows_end(fill(handle, o));
}

}  // namespace velmo
