#include "console/terminal.h"
#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <string>
#include <string_view>
#include <sys/ioctl.h>
#include <unistd.h>
#include "base/poll.h"
#include "base/saved.h"
#include "base/state.h"
#include "console/keys.h"
#include "console/lineedit.h"
#include "console/style.h"
#include "core/upcalls.h"
#include "language/dofile.h"
#include "output/results.h"
#include "output/vtmllines.h"

namespace velmo {

namespace {

boolean istty = false;         // standard output is a terminal
boolean partialshown = false;  // an unfinished line stands on the screen
std::string partial;           // as it stands there
boolean writefailed = false;

// A reader that has gone away ends the session; a full disk may have room again.
void outputfailed() {
    writefailed = true;
    if (errno != EPIPE && errno != EIO) return;
    if (!endpending) endpending = SIGPIPE;
    breakpending = breakswitch;
}

void putall(std::string_view text) {
    if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size()) outputfailed();
}

void flushall() {
    if (std::fflush(stdout) != 0) outputfailed();
}

// ---- Lines.

// To the left margin of an empty line, over the terminal's own ^C too. Without codes what stands there must stay, and
// `text` goes on behind it.
void clearline(std::string& text) {
    if (codesallowed()) {
        if (partialshown || (breakpending && !keys_taken())) putall("\r\033[K");
    } else if (partialshown) {
        if (text.compare(0, partial.size(), partial) == 0)
            text.erase(0, partial.size());
        else
            putall("\n");
    }
}

void showline(const UByte* record) {
    static std::string text;
    vlineview line = vline_view(record);
    if (istty) {
        screentext(line, text);
        clearline(text);
    } else {
        plaintext(line, text);
    }
    text += '\n';
    putall(text);
    partialshown = false;
}

void showpartial(const UByte* record) {
    static std::string text;
    vlineview line = vline_view(record);
    if (!istty) {
        plaintext(line, partial);
    } else {
        screentext(line, text);
        std::string whole = text;
        clearline(text);
        putall(text);
        flushall();
        partial = whole;
    }
    partialshown = true;
}

// ---- The window.

void followwindow() {
    winsize size{};
    if (istty && ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 && size.ws_row > 0)
        setwindow(size.ws_col, size.ws_row);
}

void watchwindow() {
    struct sigaction a{};
    sigemptyset(&a.sa_mask);
    a.sa_flags = SA_RESTART;             // nothing but a wait for a key is broken off
    a.sa_handler = [](int) { windowchanged = 1; };
    sigaction(SIGWINCH, &a, nullptr);
    a.sa_handler = [](int) { resumed = 1; };
    sigaction(SIGCONT, &a, nullptr);
}

// ---- Pauses.

// Keys that page; other sequences mean nothing here.
boolean pagekey(std::string_view sequence) {
    static constexpr std::string_view keys[] = {"\033[6~", "\033[A", "\033[B", "\033[C", "\033[D", "\033OA", "\033OB",
                                                "\033OC", "\033OD", "\033[5~"};
    return std::find(std::begin(keys), std::end(keys), sequence) != std::end(keys);
}

// The key code of an answer to --more--; a blank where text for commands has come, which stays for them.
Int4 answerkey(const UByte* record) {
    keystroke key;
    while (true) {
        keys_next(key);
        if (key.kind == key_byte || key.kind == key_sequence) {
            keys_unread(key.bytes);
            if (keys_commandsahead(false)) return ' ';
            keys_next(key);
        }
        switch (key.kind) {
        case key_byte: return UByte(key.bytes[0]);
        case key_sequence:
            if (pagekey(key.bytes)) return ' ';
            break;
        case key_paste: keys_unread(key.bytes); return ' ';
        case key_end: return 3;
        case key_signal:
            if (breakpending || endpending) return 3;
            if (resumed) keys_lend(false);
            windowchanged = 0;
            resumed = 0;
            showpartial(record);
        }
    }
}

Int4 waitmore(const UByte* record) {
    if (!istty || batchmode || dofile || endpending || !keys_possible()) return ' ';
    boolean before = keys_taken();
    if (!keys_open()) return ' ';
    onexit giveback([before] { if (!before && !lineedit_ready()) keys_close(); });
    if (keys_commandsahead(true)) return ' ';
    showpartial(record);
    keys_marks(true);
    Int4 key = answerkey(record);
    keys_marks(false);
    putall("\r\033[K");
    partialshown = false;
    followwindow();
    return key;
}

Int4 consume(void*, const UByte* record, Int4 code) {
    switch (code) {
    case vcode_line: showline(record); return 0;
    case vcode_partial: showpartial(record); return 0;
    case vcode_more: return waitmore(record);
    case vcode_closing:
        if (!istty && partialshown) putall(partial);
        flushall();
        keys_close();
        return 0;
    case vcode_flush: flushall(); return 0;
    default: return 0;
    }
}

}  // namespace

void terminal_attach() {
    istty = isatty(STDOUT_FILENO);
    followwindow();
    if (istty) watchwindow();
    vstream_setunderline(console, codesallowed());
    vstream_setcallback(console, consume, nullptr);
}

boolean terminal_failed() { return writefailed; }

boolean typedlineshows() { return istty && isatty(STDIN_FILENO); }

void terminal_lend(boolean toprogram) { keys_lend(toprogram); }

namespace {

// Standard input by the line: its length without the line end. What doesn't fit is dropped.
Int4 plainline(char* buf, Int4 n) {
    static Int4 ends = 0;              // one behind the other: a terminal that gives nothing else has gone
    Int4 len = 0;
    for (boolean any = false;; any = true) {
        int c = keys_queued();
        if (c < 0) c = std::getc(stdin);
        if (c != EOF) ends = 0;
        if (c == '\n') return len;
        if (c != EOF) {
            if (c != '\r' && len < n - 1) buf[len++] = char(c);
            continue;
        }
        boolean broken = std::ferror(stdin) && errno == EINTR && !endpending;
        boolean typed = !std::ferror(stdin) && typedlineshows() && ++ends < 10;
        if (broken || typed) std::clearerr(stdin);
        if (broken) {                  // Break at the prompt: an empty line
            if (typedlineshows()) putall("\n");
            return 0;
        }
        return any ? len : typed ? typed_end : typed_over;
    }
}

// The same through the line editor, whose prompt is the unfinished line on the screen.
Int4 editedline(char* buf, Int4 n, boolean text) {
    std::string line;
    if (Int4 ended = lineedit_read(partialshown ? partial : "", text, line)) return ended;
    Int4 len = Int4(std::min(line.size(), std::size_t(n - 1)));
    std::memcpy(buf, line.data(), std::size_t(len));
    return len;
}

}  // namespace

Int4 typedline(char* buf, Int4 n, boolean text) {
    flushall();
    if (endpending) return typed_over;
    boolean edited = typedlineshows() && keys_possible() && lineedit_ready();
    Int4 len = edited ? editedline(buf, n, text) : plainline(buf, n);
    buf[len < 0 ? 0 : len] = 0;
    if (len >= 0 && typedlineshows()) partialshown = false;
    followwindow();
    return len;
}

}  // namespace velmo
