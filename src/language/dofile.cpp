#include "language/dofile.h"
#include <algorithm>
#include <cstring>
#include "base/frontend.h"
#include "base/platform.h"
#include "base/poll.h"
#include "base/text.h"
#include "core/webfile.h"
#include "language/review.h"
#include "output/errors.h"
#include "output/logs.h"
#include "output/print.h"
#include "output/results.h"
#include "output/vtmllines.h"

namespace velmo {

doreader* dofile = nullptr;
UByte semicolon = 0;
UByte eofseen = 0;
UByte typingtext = 0;
Int4 openreaders = 0;

namespace {

// A UTF-8 mark at the start is no part of the first line. Of a pipe's first bytes no more than there are is waited for.
void passmark(doreader& r) {
    Pint n = fileread(r.handle, r.buf, sizeof r.buf);
    r.len = n > 0 ? Int4(n) : 0;
    if (r.len >= 3 && std::memcmp(r.buf, "\xEF\xBB\xBF", 3) == 0) r.pos = 3;
}

}  // namespace

Int4 doreader_open(doreader& r, const char* name) {
    if (openreaders >= maxreaders) return error(1000);
    r.handle = webopen(name, web_binary | web_textread);
    if (r.handle < 0) return -r.handle;
    r.pos = r.len = r.column = 0;
    r.pushback = -1;
    openreaders++;
    passmark(r);
    return 0;
}

void doreader_close(doreader& r) {
    webclose(r.handle);
    openreaders--;
}

namespace {

constexpr Int4 endbyte = -1;

// The next raw byte, or endbyte.
Int4 rawbyte(doreader& r) {
    if (r.pushback >= 0) {
        Int4 c = r.pushback;
        r.pushback = -1;
        return c;
    }
    if (r.pos == r.len) {
        Pint n = fileread(r.handle, r.buf, sizeof r.buf);
        r.pos = 0;
        r.len = n > 0 ? Int4(n) : 0;
        if (r.len == 0) return endbyte;
    }
    return r.buf[r.pos++];
}

// The next byte with CR LF and CR as LF; the bytes 1A and FF end the file too.
Int4 linebyte(doreader& r) {
    Int4 c = rawbyte(r);
    if (c == 0x1A || c == 0xFF) return endbyte;
    if (c != '\r') return c;
    Int4 next = rawbyte(r);
    if (next != '\n' && next != endbyte) r.pushback = next;
    return '\n';
}

// The echo of what is read, collected and sent at each line end and after 500 bytes.
struct lineecho {
    char text[512];
    Int4 n = 0, ahead = 0;      // bytes held, and how many of them stand ahead of the physical line
    boolean blank = true;       // nothing of the physical line can be seen
    boolean on;
    explicit lineecho(boolean shown) : on(shown) {}
    void send() {
        if (on && n) prtquiet({text, std::size_t(n)});
        n = 0;
    }
    void put(char c) {
        if (!on) return;
        if (c != ' ') blank = false;
        text[n++] = c;
        if (n >= 500) send();
    }
    void newline() {
        send();
        if (on) prtraw("\n");
    }
    // The logical line goes on in the next physical one.
    void goon() {
        newline();
        put('>');
        put(' ');
        ahead = n;
        blank = true;
    }
    // A physical line of blanks leaves no trace.
    void forget() { n = std::min(n, ahead); }
};

// One logical line being built.
struct logicalline {
    Int4 n = 0;
    Int4 depth = 0;          // of bracketed comments
    boolean inquote = false;
    boolean sharp = false;   // the line began with #
    char prev = ' ';
    lineecho echo;
    explicit logicalline(boolean shown) : echo(shown) {}
};

enum lineend { line_goeson, line_ready, line_toolong };

boolean onlyblanks(const logicalline& l) {
    for (Int4 i = 0; i < l.n; i++)
        if (cmdbuf[i] != ' ') return false;
    return true;
}

lineend store(logicalline& l, char c) {
    if (c == '#' && onlyblanks(l)) l.sharp = true;
    cmdbuf[l.n++] = c;
    return l.n >= conslen - 1 ? line_toolong : line_goeson;
}

lineend atlinefeed(doreader& r, logicalline& l) {
    r.column = 0;
    l.prev = ' ';
    if (l.depth == 0 && (!semicolon || l.sharp)) {
        l.echo.newline();
        return line_ready;
    }
    if (l.depth == 0 && onlyblanks(l)) {
        l.n = 0;
        l.echo.blank ? l.echo.forget() : l.echo.goon();
        return line_goeson;
    }
    l.echo.goon();
    return l.depth == 0 ? store(l, ' ') : line_goeson;
}

// A byte that is no line end: comments, quotes, the delimiter, or text.
lineend atbyte(logicalline& l, char c) {
    l.echo.put(c);
    if (!l.inquote && c == '*' && l.prev == '/') {
        if (l.depth++ == 0) l.n--;
        l.prev = ' ';
        return line_goeson;
    }
    if (!l.inquote && c == '/' && l.prev == '*' && l.depth > 0) {
        l.depth--;
        l.prev = ' ';
        return line_goeson;
    }
    l.prev = c;
    if (l.depth > 0) return line_goeson;
    if (c == '"') l.inquote = !l.inquote;
    if (c == ';' && semicolon && !l.inquote) {
        l.echo.newline();
        return line_ready;
    }
    return store(l, c);
}

lineend attab(doreader& r, logicalline& l) {
    do {
        if (lineend end = atbyte(l, ' ')) return end;
        r.column++;
    } while (r.column % 8);
    return line_goeson;
}

lineend takebyte(doreader& r, logicalline& l, Int4 c) {
    if (c == '\n') return atlinefeed(r, l);
    if (c == '\t') return attab(r, l);
    if (c < 32) return line_goeson;
    r.column++;
    return atbyte(l, char(c));
}

void endofsource() {
    cmdbuf[0] = 0;
    eofseen = source_over;
}

// The next logical line of a do-file into cmdbuf.
void readdoline(doreader& r) {
    logicalline l(levelshows());
    while (true) {
        Int4 c = linebyte(r);
        if (c == endbyte) {
            l.echo.send();
            return endofsource();
        }
        lineend end = takebyte(r, l, c);
        if (end == line_ready) break;
        if (end == line_toolong) {
            l.echo.send();
            printing as(out_error);
            prtfresh();
            prt("input too long\n");
            return endofsource();
        }
    }
    cmdbuf[l.n] = 0;
}

// The prompt, when what is read shows. A new command begins a new page.
void prompt() {
    if (printing::role() < quietlevel) return;
    vstream_clearpage(results);
    printing as(out_prompt);
    prtreset();
    UByte style = vstream_style(results);
    if ((style & style_colour) != style_input) prtraw("{com}");
    if (style & style_font) prtraw("{sf}");
    if (style & style_underline) prtraw("{ul off}");
    prtraw(". ");
    prtpartial();
}

// Break while it is typed leaves breakpending set and an empty line.
void readtypedline() {
    breakpending = 0;
    Int4 n = typedline(cmdbuf, conslen, typingtext);
    std::sig_atomic_t broken = breakpending;
    breakpending = 0;                    // the echo is printed all the same
    if (n < 0) {
        prtraw("\n");
        endofsource();
        if (n == typed_end) eofseen = source_endtyped;
        return;
    }
    for (Int4 i = 0; i < n; i++)
        if (UByte(cmdbuf[i]) < 32) cmdbuf[i] = ' ';
    cmdbuf[n] = 0;
    if (levelshows()) cmdlog_line({cmdbuf, std::size_t(n)});
    std::string_view line = rtrimmed({cmdbuf, std::size_t(n)});
    if (!line.empty()) reviewpush(line);
    prttyped(line, front->echoes());
    breakpending = broken;
}

// ---- Directives.

// The next whole number of the directive's text, or `otherwise`.
Int4 directivenumber(Int4 otherwise) {
    Int4 value;
    return readinteger(nexttoken(breaknum), value) ? value : otherwise;
}

void reviewdirective() {
    Int4 oldest = directivenumber(5);
    if (oldest < 1) oldest = 5;
    if (oldest > 100) oldest = 100;
    Int4 count = directivenumber(oldest);
    if (count < 1 || count > oldest) count = oldest;
    for (Int4 i = 0; i < count; i++) {
        std::string line = reviewget(oldest - 1 - i);
        if (line.empty()) continue;
        if (prtf("%d ", oldest - i) || prt(line) || prtnl()) return;
    }
}

void delimitdirective() {
    semicolon = std::string_view(nexttoken()) != "cr";
    prtf("delimiter now %s\n", semicolon ? ";" : "cr");
}

void directive() {
    printing as(out_text);
    settokpos(cmdbuf);
    nexttoken();
    std::string_view word = nexttoken();
    if (abbrev(word, "delimit", 1) && dofile) return delimitdirective();
    if (abbrev(word, "review", 1)) return reviewdirective();
    as.now(out_error);
    prt("Unknown #command\n");
}

}  // namespace

void getline() {
    if (!dofile && eofseen == source_endtyped) eofseen = 0;
    do {
        tick();
        printing as(dofile ? out_echo : out_prompt);
        prompt();
        if (dofile)
            readdoline(*dofile);
        else
            readtypedline();
        if (*ltrimmed(cmdbuf).data() == '#') directive();
    } while (*ltrimmed(cmdbuf).data() == '#');
    std::string_view line = rtrimmed(cmdbuf);
    cmdbuf[line.size()] = 0;
    if (batchmode) vstream_flush(results);
}

}  // namespace velmo
