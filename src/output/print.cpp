#include "output/print.h"
#include <algorithm>
#include <cstdio>
#include <cstring>
#include "base/frontend.h"
#include "base/memalloc.h"
#include "base/poll.h"
#include "base/saved.h"
#include "output/results.h"
#include "output/vtmllines.h"

namespace velmo {

namespace {

constexpr Int4 quietpolls = 5;         // suppressed prints between polls

// The printf form, given to `print` at whatever length it has. Without memory for a long one it is cut.
Int4 formatted(Int4 (*print)(std::string_view), const char* form, va_list args) {
    char text[1024];
    va_list again;
    va_copy(again, args);
    onexit end([&] { va_end(again); });
    Int4 n = std::vsnprintf(text, sizeof text, form, args);
    if (n < 0) return breakpending;
    std::size_t size = std::size_t(n);
    if (size < sizeof text) return print({text, size});
    workspace whole(size + 1);
    if (!whole.p) return print({text, sizeof text - 1});
    std::vsnprintf(whole.get<char>(), size + 1, form, again);
    return print({whole.get<char>(), size});
}

void setcolour() {
    static constexpr UByte colours[] = {style_result, style_text, style_text, style_error, style_input};
    vstream_setcolor(results, colours[printing::role()]);
}

}  // namespace

boolean levelshows() {
    if (printing::role() >= quietlevel) return results != nullptr;
    if (++printcount >= quietpolls) {
        printcount = 0;
        poll();
    }
    return false;
}

Int4 prt(std::string_view text) {
    if (!levelshows()) return breakpending;
    setcolour();
    vstream_text(results, text);
    return breakpending;
}

Int4 prtraw(std::string_view text) {
    if (levelshows()) vstream_write(results, text);
    return breakpending;
}

Int4 prtquiet(std::string_view text) {
    if (levelshows()) vstream_text(results, text);
    return breakpending;
}

Int4 prtvf(const char* form, va_list args) { return formatted(prt, form, args); }

Int4 prtf(const char* form, ...) {
    va_list args;
    va_start(args, form);
    onexit end([&] { va_end(args); });
    return formatted(prt, form, args);
}

Int4 prtrawf(const char* form, ...) {
    va_list args;
    va_start(args, form);
    onexit end([&] { va_end(args); });
    return formatted(prtraw, form, args);
}

Int4 prtc(char ch) { return ch == '\n' || ch == ' ' ? prtraw({&ch, 1}) : prt({&ch, 1}); }

// Blanks go raw, so that they never change a style.
Int4 prtrep(char ch, Int4 n) {
    char text[510];
    if (n < 1) return breakpending;
    if (n < Int4(sizeof text)) {
        std::memset(text, ch, std::size_t(n));
        return ch == ' ' ? prtraw({text, std::size_t(n)}) : prt({text, std::size_t(n)});
    }
    for (; n > 0; n--)
        if (ch == ' ' ? prtraw(" ") : prt({&ch, 1})) break;
    return breakpending;
}

Int4 prtblanks(Int4 n) { return prtrep(' ', n); }
Int4 prtnl() { return prtc('\n'); }

void prtcolour() {
    if (levelshows()) setcolour();
}

Int4 prtbar() {
    prtcolour();
    return prtraw("{c |}");
}

Int4 prtdash(Int4 kind) {
    prtcolour();
    return prtraw(kind == 1 ? ".-\n" : "{.-}\n");
}

Int4 prthi(Int4 mode, std::string_view text) {
    if (!levelshows()) return breakpending;
    vstream_write(results, mode > 1 ? "{hilite:" : "^");
    vstream_text(results, text);
    vstream_write(results, mode > 1 ? "}" : "^");
    return breakpending;
}

Int4 prttext(std::string_view text) {
    printing as(out_text);
    return prt(text);
}

Int4 prttextf(const char* form, ...) {
    va_list args;
    va_start(args, form);
    onexit end([&] { va_end(args); });
    return formatted(prttext, form, args);
}

Int4 prtresult(std::string_view text) {
    printing as(out_result);
    return prt(text);
}

Int4 prtresultf(const char* form, ...) {
    va_list args;
    va_start(args, form);
    onexit end([&] { va_end(args); });
    return formatted(prtresult, form, args);
}

Int4 prtmarkup(std::string_view vtml) {
    printing as(out_text);
    prtcolour();
    return prtraw(vtml);
}

Int4 prterr(std::string_view text) {
    printing as(out_error);
    prtreset();
    return prt(text);
}

void prtreset() {
    if (!levelshows()) return;
    if (vstream_mode(results) != vmode_vtml || vstream_holds(results)) vstream_write(results, "{vtml}\n");
}

// After {...} the first newline is swallowed, so a second one may be needed.
void prtfresh() {
    prtreset();
    for (Int4 i = 0; i < 2 && levelshows() && !vstream_atstart(results); i++) vstream_write(results, "\n");
}

void prtpartial() {
    if (results) vstream_partial(results);
}

Int4 prtflush() {
    if (levelshows()) vstream_partial(results);
    return breakpending;
}

void print_commandended() { prtflush(); }
void print_ended() {
    if (results) vstream_flush(results);
}

void prttyped(std::string_view line, boolean seen) {
    if (results) vstream_setmuted(results, seen);
    prtquiet(line);
    prtraw("\n");
    if (results) vstream_setmuted(results, false);
}

Int4 prtpage(std::string_view text) {
    if (!results) return breakpending;
    vstream_clearpage(results);
    prt(text);
    vstream_clearpage(results);
    return breakpending;
}

Int4 prtstatus(std::string_view text) {
    front->status(text);
    if (!batchmode) return breakpending;
    printing as(out_text);
    prt(text);
    return prtnl();
}

}  // namespace velmo
