#include "console/terminal.h"
#include <algorithm>
#include <csignal>
#include <cstring>
#include <string>
#include <string_view>
#include <sys/ioctl.h>
#include <unistd.h>
#include "base/poll.h"
#include "console/keys.h"
#include "console/lineedit.h"
#include "console/standard.h"
#include "console/style.h"
#include "output/results.h"
#include "output/vtmllines.h"

namespace velmo {

namespace {

boolean partialshown = false;  // an unfinished line stands on the screen
std::string partial;           // as it stands there

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
    screentext(vline_view(record), text);
    clearline(text);
    text += '\n';
    putall(text);
    partialshown = false;
}

void showpartial(const UByte* record) {
    static std::string text;
    screentext(vline_view(record), text);
    std::string whole = text;
    clearline(text);
    putall(text);
    flushall();
    partial = whole;
    partialshown = true;
}

// ---- The window.

boolean window(Int4& columns, Int4& rows) {
    winsize size{};
    if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_col == 0 || size.ws_row == 0) return false;
    columns = size.ws_col;
    rows = size.ws_row;
    return true;
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

// The keyboard for a time: taken unless it is, and then given back, but not where lines are edited.
struct keyboard {
    boolean before = keys_taken(), had = keys_possible() && keys_open();
    ~keyboard() {
        if (had && !before && !lineedit_ready()) keys_close();
    }
};

boolean waits() {
    keyboard keys;
    return keys.had && keys_commandsahead(true);
}

Int4 pause(const UByte* record) {
    keyboard keys;
    if (!keys.had) return ' ';
    showpartial(record);
    keys_marks(true);
    Int4 key = answerkey(record);
    keys_marks(false);
    putall("\r\033[K");
    partialshown = false;
    return key;
}

// ---- Typed lines.

// Where both ends are the terminal.
boolean echoes() { return isatty(STDIN_FILENO); }

// Through the line editor, whose prompt is the unfinished line on the screen.
Int4 editedline(char* buf, Int4 n, boolean text) {
    std::string line;
    if (Int4 ended = lineedit_read(partialshown ? partial : "", text, line)) return ended;
    Int4 len = Int4(std::min(line.size(), std::size_t(n - 1)));
    std::memcpy(buf, line.data(), std::size_t(len));
    return len;
}

Int4 readtyped(char* buf, Int4 n, boolean text) {
    flushall();
    if (endpending) return typed_over;
    boolean edited = echoes() && keys_possible() && lineedit_ready();
    Int4 len = edited ? editedline(buf, n, text) : readline(buf, n, echoes());
    buf[len < 0 ? 0 : len] = 0;
    if (len >= 0 && echoes()) partialshown = false;
    return len;
}

void begin() {
    watchwindow();
    vstream_setunderline(console, codesallowed());
}

void end() {
    flushall();
    keys_close();
}

}  // namespace

extern constexpr frontend terminalfront{
    .begin = begin, .end = end, .typedline = readtyped, .waits = waits, .echoes = echoes, .line = showline,
    .partial = showpartial, .flush = flushall, .pause = pause, .bell = ringbell, .window = window, .lend = keys_lend};

}  // namespace velmo
