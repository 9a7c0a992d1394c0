// Lines, words and links. line_place is the only way text gets into a line; line_emit the only way a line leaves.
#include "output/vtmllines.h"
#include <algorithm>
#include <cstring>
#include "base/columns.h"
#include "base/poll.h"
#include "output/vtmlinternal.h"

namespace velmo {

namespace {

void putword(UByte* p, Int4 v) {
    p[0] = UByte(v & 255);
    p[1] = UByte(v >> 8);
}

Int4 getword(const UByte* p) { return p[0] | p[1] << 8; }

constexpr Int4 mostbytes = 255;

// Columns of the line that are free; none when the line size was lowered below what stands there.
Int4 room(const vstream* s) { return std::max(std::min(s->linesize - s->line.columns, mostbytes - s->line.n), 0); }

void extendrun(vline& l, UByte style, Int4 n) {
    if (l.runstyle[l.nruns - 1] != style) {
        Int4 start = l.nruns > 1 ? l.runend[l.nruns - 2] : 0;
        if (l.runend[l.nruns - 1] > start) l.nruns++;
        l.runstyle[l.nruns - 1] = style;
    }
    l.n += n;
    l.runend[l.nruns - 1] = UByte(l.n);
}

// Into the line as it stands, a column a byte: no wrap, no link. What would pass the line's store is dropped.
void rawput(vstream* s, std::string_view text, UByte style) {
    vline& l = s->line;
    Int4 n = std::min(Int4(text.size()), mostbytes - l.n);
    if (n <= 0) return;
    std::memcpy(l.text + l.n, text.data(), std::size_t(n));
    extendrun(l, style, n);
    l.columns += n;
    l.begun = 0;
}

void rawblanks(vstream* s, Int4 n, UByte style) {
    static const char blanks[] = "                                ";
    for (; n > 0; n -= 32) rawput(s, {blanks, std::size_t(std::min(n, 32))}, style);
}

// The entry of the open link, once its first character is to be placed.
void openentry(vstream* s) {
    vline& l = s->line;
    Int4 size = 5 + s->link.targetlen;
    if (l.linkbytes + size > linkbytesmax) return;
    UByte* e = l.links + l.linkbytes;
    e[0] = e[1] = UByte(l.n);
    e[2] = s->link.type;
    e[3] = UByte(s->link.targetlen + 1);
    std::memcpy(e + 4, s->link.target, std::size_t(s->link.targetlen) + 1);
    s->link.entry = l.linkbytes;
    l.linkbytes += size;
    l.nlinks++;
}

// An entry without columns is dropped; it is always the last one.
void closeentry(vstream* s) {
    if (s->link.entry < 0) return;
    UByte* e = s->line.links + s->link.entry;
    e[1] = UByte(s->line.n);
    if (e[0] == e[1]) {
        s->line.nlinks--;
        s->line.linkbytes = s->link.entry;
    }
    s->link.entry = -1;
}

void finishlink(vstream* s) {
    closeentry(s);
    s->link.active = 0;
    s->link.wordend = -1;
}

void indent(vstream* s) {
    if (s->first_indent < s->linesize - 5) rawblanks(s, s->first_indent, style_text);
    s->first_indent = s->next_indent;
}

// Blanks between the last word and the next.
Int4 gap(const vstream* s) {
    static const Int4 blanks[3][3] = {{1, 1, 1}, {1, 1, 2}, {0, 1, 1}};
    return blanks[s->lastend][std::min(s->blanks, 2)];
}

// Characters from..to of the word, run by run; binding blanks become blanks.
void placeword(vstream* s, Int4 from, Int4 to) {
    vword& w = s->word;
    while (from < to) {
        Int4 end = from + 1;
        while (end < to && w.style[end] == w.style[from]) end++;
        std::replace(w.text + from, w.text + end, bindingblank, ' ');
        line_place(s, {w.text + from, std::size_t(end - from)}, w.style[from]);
        from = end;
    }
}

// What a run of text takes: characters that were written by their code are a byte each.
Int4 runcolumns(std::string_view text, UByte style) {
    return style & (style_graphic | style_code) ? Int4(text.size()) : textcolumns(text);
}

Int4 wordcolumns(const vword& w) {
    std::string_view text(w.text, std::size_t(w.n));
    if (isascii(text)) return w.n;
    Int4 n = 0;
    for (std::size_t from = 0, to = 0; from < text.size(); from = to) {
        while (to < text.size() && w.style[to] == w.style[from]) to++;
        n += runcolumns(text.substr(from, to - from), w.style[from]);
    }
    return n;
}

void wrap(vstream* s, UByte style) {
    line_emit(s);
    rawput(s, "> ", UByte(style & ~style_graphic));
}

struct piece { std::size_t bytes; Int4 columns; };

// As much of text as the line has room for, up to the end of a character.
piece fitting(const vstream* s, std::string_view text) {
    piece p{0, 0};
    Int4 columns = s->linesize - s->line.columns, bytes = mostbytes - s->line.n;
    while (p.bytes < text.size()) {
        textchar c = charat(text.substr(p.bytes));
        if (p.columns + c.columns > columns || Int4(p.bytes) + c.bytes > bytes) break;
        p.bytes += std::size_t(c.bytes);
        p.columns += c.columns;
    }
    return p;
}

void putpiece(vstream* s, std::string_view text, Int4 columns, UByte style) {
    rawput(s, text, style);
    s->line.columns += columns - Int4(text.size());
}

// The character that an earlier text began, put together with what this one begins with, if they make one.
void finishbegun(vstream* s, std::string_view& text, UByte style) {
    vline& l = s->line;
    char whole[8];
    Int4 had = l.begun, runstart = l.nruns > 1 ? l.runend[l.nruns - 2] : 0;
    std::size_t more = std::min(text.size(), sizeof whole - 3);
    if (l.n - had < runstart) return;
    std::memcpy(whole, l.text + l.n - had, std::size_t(had));
    std::memcpy(whole + had, text.data(), more);
    std::string_view joined(whole, std::size_t(had) + more);
    if (unfinishedbytes(joined) == Int4(joined.size())) {        // whether it fits shows when it is whole
        rawput(s, text, style);
        text = {};
    }
    textchar c = charat(joined);
    if (c.bytes <= had || text.empty()) return;
    l.n -= had;
    l.columns -= had;
    l.runend[l.nruns - 1] = UByte(l.n);
    if (l.n == runstart && l.nruns > 1) l.nruns--;
    if (c.columns > s->linesize - l.columns || c.bytes > mostbytes - l.n) wrap(s, style);
    putpiece(s, {whole, std::size_t(c.bytes)}, c.columns, style);
    text.remove_prefix(std::size_t(c.bytes - had));
}

boolean endssentence(char c) { return c == '.' || c == '!' || c == '?' || c == ':'; }

}  // namespace

void line_reset(vstream* s) {
    s->line.n = s->line.columns = s->line.begun = 0;
    s->line.nruns = 1;
    s->line.runstyle[0] = s->style;
    s->line.runend[0] = 0;
    s->line.nlinks = s->line.linkbytes = 0;
    s->link.entry = -1;
}

void line_place(vstream* s, std::string_view text, UByte style) {
    if (text.empty()) return;
    s->skip_nl = 0;
    boolean bytewise = style & (style_graphic | style_code) || (s->line.begun == 0 && isascii(text));
    if (!bytewise && s->line.begun > 0) finishbegun(s, text, style);
    while (true) {
        Int4 n = std::min(Int4(text.size()), room(s));
        piece p = bytewise ? piece{std::size_t(n), n} : fitting(s, text);
        if (p.bytes > 0) {
            if (s->link.active && s->link.entry < 0) openentry(s);
            putpiece(s, text.substr(0, p.bytes), p.columns, style);
            text.remove_prefix(p.bytes);
        }
        if (text.empty()) break;
        wrap(s, style);
    }
    if (!bytewise) s->line.begun = unfinishedbytes({s->line.text, std::size_t(s->line.n)});
}

void line_fill(vstream* s, char c, Int4 n, UByte style) {
    char piece[64];
    if (n > 0) std::memset(piece, c, sizeof piece);
    for (; n > 0; n -= 64) line_place(s, {piece, std::size_t(std::min(n, 64))}, style);
}

void line_tab(vstream* s) { line_fill(s, ' ', 8 - s->line.columns % 8, s->style); }

const UByte* line_record(vstream* s) {
    vline& l = s->line;
    if (l.n == 0) l.runstyle[0] = s->style;
    UByte* r = s->record;
    UByte* p = r + 8;
    *p++ = UByte(l.nlinks);
    std::memcpy(p, l.links, std::size_t(l.linkbytes));
    p += l.linkbytes;
    *p++ = 0;
    *p++ = 0;
    putword(r + 2, Int4(p - r));
    *p++ = UByte(l.nruns - 1);
    *p++ = 0;
    for (Int4 i = 0; i < l.nruns; i++) {
        *p++ = l.runstyle[i];
        *p++ = l.runend[i];
    }
    putword(r + 4, Int4(p - r));
    std::memcpy(p, l.text, std::size_t(l.n));
    p += l.n;
    *p++ = 0;
    putword(r, Int4(p - r));
    r[6] = s->mode == vmode_paragraph && s->para_lines > 0;
    r[7] = UByte(l.n + 1);
    return r;
}

void line_emit(vstream* s) {
    closeentry(s);
    if (s->linelogs.n > 0) log_line(s);
    const UByte* record = s->callback && !s->muted ? line_record(s) : nullptr;
    if (s->mode == vmode_paragraph) s->para_lines++;
    line_reset(s);
    if (record) s->callback(s->data, record, vcode_line);
    if (s->morelines > 0 && s->more_on && ++s->morecount >= s->morelines) vstream_more(s);
}

void word_flush(vstream* s, Int4 extra) {
    Int4 n = s->word.n;
    if (n == 0) return;
    Int4 blanks = s->line.n > 0 ? gap(s) : 0;
    if (s->line.n > 0 && s->line.columns + blanks + wordcolumns(s->word) + extra > s->linesize) line_emit(s);
    if (s->line.n > 0)
        rawblanks(s, blanks, s->blankstyle);
    else
        indent(s);
    Int4 linkend = s->link.wordend;
    placeword(s, 0, std::max(linkend, 0));
    if (linkend >= 0) finishlink(s);
    placeword(s, std::max(linkend, 0), n);
    s->lastend = linkend == n ? 2 : endssentence(s->word.text[n - 1]);
    s->blanks = 0;
    s->word.n = 0;
}

void word_add(vstream* s, std::string_view text, UByte style) {
    vword& w = s->word;
    while (!text.empty()) {
        if (w.n == Int4(sizeof w.text)) {
            word_flush(s, 0);
            s->lastend = 2;
        }
        std::size_t n = std::min(text.size(), sizeof w.text - std::size_t(w.n));
        std::memcpy(w.text + w.n, text.data(), n);
        std::memset(w.style + w.n, style, n);
        w.n += Int4(n);
        text.remove_prefix(n);
    }
}

void word_blanks(vstream* s, Int4 n) {
    word_flush(s, 0);
    s->blanks = std::min(s->blanks + n, 2);
    s->blankstyle = s->style;
}

boolean link_begin(vstream* s, UByte type, std::string_view target) {
    if (s->link.active) finishlink(s);
    if (s->line.linkbytes + 5 + Int4(target.size()) > linkbytesmax) return false;
    s->link.active = 1;
    s->link.type = type;
    s->link.entry = s->link.wordend = -1;
    s->link.targetlen = Int4(target.size());
    std::memcpy(s->link.target, target.data(), target.size());
    s->link.target[target.size()] = 0;
    return true;
}

// In a paragraph the last word may still be pending: the link then ends when that is placed, behind its own part.
void link_end(vstream* s) {
    if (s->mode == vmode_paragraph && s->word.n > 0) {
        s->link.wordend = s->word.n;
        return;
    }
    finishlink(s);
    s->lastend = 2;
}

vlineview vline_view(const UByte* record) {
    Int4 text = getword(record + 4);
    Int4 size = getword(record) - text - 1;
    return {{reinterpret_cast<const char*>(record) + text, std::size_t(size)}, record + getword(record + 2), record + 8,
            record[6] != 0};
}

Int4 vline_columns(const vlineview& line) {
    Int4 n = 0;
    std::size_t from = 0;
    for (Int4 i = 0; i <= line.styles[0]; i++) {
        std::size_t to = line.styles[3 + 2 * i];
        n += runcolumns(line.text.substr(from, to - from), line.styles[2 + 2 * i]);
        from = to;
    }
    return n;
}

UByte vline_style(const vlineview& line, Int4 c) {
    const UByte* run = line.styles + 2;
    for (Int4 left = line.styles[0]; left > 0 && run[1] <= c; left--) run += 2;
    return run[0];
}

char plaingraphic(UByte c) {
    static const char plain[] = "?--||++++";
    return c >= 1 && c <= 8 ? plain[c] : char(c);
}

}  // namespace velmo
