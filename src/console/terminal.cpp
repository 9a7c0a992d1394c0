#include "console/terminal.h"
#include <algorithm>
#include <cerrno>
#include <clocale>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <langinfo.h>
#include <string>
#include <string_view>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>
#include "base/poll.h"
#include "base/state.h"
#include "console/lineedit.h"
#include "core/upcalls.h"
#include "language/dofile.h"
#include "output/results.h"

namespace velmo {

namespace {

boolean istty = false;         // standard output is a terminal
boolean utf8 = false;          // its locale is UTF-8
boolean partialshown = false;  // an unfinished line stands on the screen
boolean userline = false;      // the user has just typed the rest of the line that stands there
std::string partial;           // its plain text
std::string partialshape;      // its text as the terminal got it

const char* const graphics8[] = {"", "\u252C", "\u2534", "\u251C", "\u2524", "\u2518", "\u2514", "\u2510", "\u250C"};

void putall(std::string_view text) { std::fwrite(text.data(), 1, text.size(), stdout); }

// The plain text of a line.
void plaintext(const vlineview& line, std::string& out) {
    out.assign(line.text);
    const UByte* runs = line.styles;
    Int4 n = runs[0] + 1;
    for (Int4 i = 0, from = 0; i < n; i++) {
        UByte style = runs[2 + 2 * i], to = runs[3 + 2 * i];
        if (style & style_graphic)
            for (std::size_t c = std::size_t(from); Int4(c) < to && c < out.size(); c++)
                out[c] = plaingraphic(UByte(out[c]));
        from = to;
    }
}

void graphic(UByte c, std::string& out) {
    if (!utf8)
        out += plaingraphic(c);
    else if (c >= 1 && c <= 8)
        out += graphics8[c];
    else
        out += c == '-' ? "\u2500" : c == '|' ? "\u2502" : c == '+' ? "\u253C" : "?";
}

// Characters above 127 come from {c x} or from the user's own bytes; bytes that are UTF-8 already pass through.
void character(char c, boolean wholeisutf8, std::string& out) {
    UByte b = UByte(c);
    if (b < 128 || !utf8 || wholeisutf8) {
        out += c;
        return;
    }
    out += char(0xC0 | b >> 6);
    out += char(0x80 | (b & 63));
}

boolean validutf8(std::string_view s) {
    for (std::size_t i = 0; i < s.size();) {
        UByte b = UByte(s[i]);
        boolean lead = b < 0x80 || (b >= 0xC2 && b < 0xF5);
        std::size_t more = std::size_t(b >= 0xC2) + (b >= 0xE0) + (b >= 0xF0);
        if (!lead || i + more >= s.size()) return false;
        for (std::size_t k = 1; k <= more; k++)
            if ((UByte(s[i + k]) & 0xC0) != 0x80) return false;
        i += more + 1;
    }
    return true;
}

void stylecodes(UByte style, std::string& out) {
    out += "\033[0";
    if (style & style_bold) out += ";1";
    if (style & style_italic) out += ";3";
    if (style & style_underline) out += ";4";
    switch (style & style_colour) {
    case style_result: out += ";33"; break;
    case style_error: out += ";31"; break;
    case style_input: out += ";1"; break;
    case style_link: out += ";34"; break;
    case style_hilite: out += ";1;37"; break;
    default: break;
    }
    out += 'm';
}

void colouredtext(const vlineview& line, std::string& out) {
    out.clear();
    boolean whole = validutf8(line.text);
    const UByte* runs = line.styles;
    Int4 n = runs[0] + 1;
    for (Int4 i = 0, from = 0; i < n; i++) {
        UByte style = runs[2 + 2 * i], to = runs[3 + 2 * i];
        stylecodes(style, out);
        for (Int4 c = from; c < to && c < Int4(line.text.size()); c++) {
            char ch = line.text[std::size_t(c)];
            if (style & style_graphic)
                graphic(UByte(ch), out);
            else
                character(ch, whole, out);
        }
        from = to;
    }
    out += "\033[0m";
}

void showline(const UByte* record) {
    static std::string text;
    if (userline) {              // prompt and typing stand on the screen already
        userline = partialshown = false;
        return;
    }
    vlineview line = vline_view(record);
    if (istty) {
        colouredtext(line, text);
        if (partialshown || breakpending) putall("\r\033[K");      // over the terminal's own ^C
    } else {
        plaintext(line, text);
    }
    text += '\n';
    putall(text);
    partialshown = false;
}

void showpartial(const UByte* record) {
    plaintext(vline_view(record), partial);
    partialshown = true;
    if (!istty) return;
    colouredtext(vline_view(record), partialshape);
    putall("\r\033[K");
    putall(partialshape);
    std::fflush(stdout);
}

// One key, without waiting for a line.
Int4 readkey() {
    termios old{}, raw{};
    if (tcgetattr(STDIN_FILENO, &old) != 0) return ' ';
    raw = old;
    raw.c_lflag &= ~tcflag_t(ICANON | ECHO);
    tcsetattr(STDIN_FILENO, TCSANOW, &raw);
    unsigned char c = ' ';
    ssize_t n = read(STDIN_FILENO, &c, 1);
    tcsetattr(STDIN_FILENO, TCSANOW, &old);
    if (n < 0 && errno == EINTR) return 3;
    return n == 1 ? c : Int4(' ');
}

Int4 waitmore(const UByte* record) {
    if (!istty || !isatty(STDIN_FILENO) || batchmode || dofile) return ' ';
    showpartial(record);
    Int4 key = readkey();
    putall("\r\033[K");
    partialshown = false;
    return key;
}

Int4 consume(void*, const UByte* record, Int4 code) {
    switch (code) {
    case vcode_line: showline(record); return 0;
    case vcode_partial: showpartial(record); return 0;
    case vcode_more: return waitmore(record);
    case vcode_closing:
        if (!istty && partialshown) putall(partial);
        [[fallthrough]];
    case vcode_flush: std::fflush(stdout); return 0;
    default: return 0;
    }
}

}  // namespace

void terminal_attach() {
    istty = isatty(STDOUT_FILENO);
    if (istty) {
        std::setlocale(LC_CTYPE, "");
        utf8 = std::strcmp(nl_langinfo(CODESET), "UTF-8") == 0;
        winsize size{};
        if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_row > 2) setpagesize(size.ws_row - 1);
    }
    vstream_setunderline(console, istty);
    vstream_setcallback(console, consume, nullptr);
}

boolean typedlineshows() { return istty && isatty(STDIN_FILENO); }

namespace {

// Standard input by the line: its length without the line end, -1 at the end. What doesn't fit is dropped.
Int4 plainline(char* buf, Int4 n) {
    Int4 len = 0;
    for (boolean any = false;; any = true) {
        int c = std::getc(stdin);
        if (c == '\n') return len;
        if (c == EOF) {
            if (!std::ferror(stdin) || errno != EINTR) return any ? len : -1;
            std::clearerr(stdin);       // Break at the prompt: an empty line
            if (typedlineshows()) putall("\n");
            return 0;
        }
        if (c != '\r' && len < n - 1) buf[len++] = char(c);
    }
}

// The same through the line editor, whose prompt is the unfinished line on the screen.
Int4 editedline(char* buf, Int4 n) {
    std::string line;
    if (!lineedit_read(partialshown ? partialshape : "", line)) return -1;
    Int4 len = Int4(std::min(line.size(), std::size_t(n - 1)));
    std::memcpy(buf, line.data(), std::size_t(len));
    return len;
}

}  // namespace

Int4 typedline(char* buf, Int4 n) {
    std::fflush(stdout);
    Int4 len = typedlineshows() && lineedit_ready() ? editedline(buf, n) : plainline(buf, n);
    buf[len < 0 ? 0 : len] = 0;
    if (len >= 0 && typedlineshows()) userline = true;
    return len;
}

}  // namespace velmo
