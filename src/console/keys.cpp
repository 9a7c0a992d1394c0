#include "console/keys.h"
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <ctime>
#include <poll.h>
#include <termios.h>
#include <unistd.h>
#include "base/platform.h"
#include "base/poll.h"
#include "base/saved.h"
#include "base/text.h"

namespace velmo {

volatile std::sig_atomic_t windowchanged = 0;
volatile std::sig_atomic_t resumed = 0;

namespace {

constexpr std::string_view pastebegins = "\033[200~", pasteends = "\033[201~";
constexpr Int4 sequencems = 100;       // between the bytes of a sequence
constexpr Int4 answerms = 300;

std::string queue;
std::size_t taken = 0;                 // bytes at its front that have been read
boolean open = false;
boolean inpaste = false;
termios original{}, ours{};

std::string_view ahead() { return std::string_view(queue).substr(taken); }

void take(std::size_t n) {
    taken += n;
    if (taken < queue.size()) return;
    queue.clear();
    taken = 0;
}

// Waits for a byte: 1 there is one, 0 not within ms (-1: however long), -1 a signal came. A signal that comes before
// the wait begins counts too.
Int4 await(Int4 ms) {
    sigset_t held, before;
    sigemptyset(&held);
    for (int s : {SIGINT, SIGTERM, SIGHUP, SIGWINCH, SIGCONT}) sigaddset(&held, s);
    sigprocmask(SIG_BLOCK, &held, &before);
    pollfd p{STDIN_FILENO, POLLIN, 0};
    timespec t{ms / 1000, long(ms % 1000) * 1000000};
    boolean came = breakpending || endpending || windowchanged || resumed;
    int n = came && ms < 0 ? -1 : ppoll(&p, 1, ms < 0 ? nullptr : &t, &before);
    sigprocmask(SIG_SETMASK, &before, nullptr);
    return n < 0 ? -1 : n > 0;
}

// What has come, into the queue: false at the end of the input.
boolean fill() {
    char bytes[4096];
    ssize_t n = read(STDIN_FILENO, bytes, sizeof bytes);
    if (n > 0) queue.append(bytes, std::size_t(n));
    return n > 0 || (n < 0 && (errno == EINTR || errno == EAGAIN));
}

void gather(Int4 ms) {
    while (queue.size() < 1u << 20 && await(ms) > 0 && fill()) {}
}

// More bytes for a sequence that isn't whole, if they come in time.
boolean more() { return await(sequencems) > 0 && fill(); }

void pastedkey(keystroke& key) {
    std::string_view text = ahead();
    if (text[0] == '\033') {
        while (ahead().size() < pasteends.size() && pasteends.substr(0, ahead().size()) == ahead() && more()) {}
        text = ahead();
        boolean ends = text.substr(0, pasteends.size()) == pasteends;
        take(ends ? pasteends.size() : 1);
        inpaste = !ends;
        key.kind = key_paste;
        return;
    }
    key.kind = key_byte;
    key.bytes = text[0] == '\r' ? "\n" : std::string(1, text[0]);
    if (UByte(text[0]) < 32 && key.bytes != "\n" && key.bytes != "\t") key.kind = key_paste;     // means nothing
    take(1);
}

void sequencekey(keystroke& key) {
    std::size_t n;
    while ((n = sequencelength(ahead())) == 0 && more()) {}
    if (n == 0) n = ahead().size();
    key.bytes = ahead().substr(0, n);
    key.kind = key.bytes == pastebegins ? key_paste : key_sequence;
    inpaste = key.kind == key_paste;
    take(n);
}

boolean pagerkey(char c) { return c == ' ' || c == '\n' || c == '\r' || c == 'q' || c == 'l' || c == 'b' || c == 3; }

}  // namespace

std::size_t sequencelength(std::string_view text) {
    if (text.size() < 2) return 0;
    std::size_t i = 2, inner;
    switch (text[1]) {
    case '\033': return (inner = sequencelength(text.substr(1))) ? inner + 1 : 0;
    case '[':
        if (text.substr(2, 1) == "[") return text.size() < 4 ? 0 : 4;      // function keys of the system's console
        while (i < text.size() && text[i] >= 0x20 && text[i] < 0x40) i++;
        return i == text.size() ? 0 : i + (text[i] >= 0x40 && text[i] < 0x7F);
    case 'O':
        while (i < text.size() && (isdigit(text[i]) || text[i] == ';')) i++;
        return i == text.size() ? 0 : i + 1;
    case ']': case 'P': case 'X': case '^': case '_': {
        std::size_t bell = text.find('\a'), end = text.find("\033\\", 2);
        if (bell == text.npos && end == text.npos) return 0;
        return bell < end ? bell + 1 : end + 2;
    }
    default: return 2;
    }
}

boolean keys_possible() {
    static const boolean knows = [] {
        std::string terminal = environmenttext("TERM");
        return !terminal.empty() && terminal != "dumb" && isatty(STDIN_FILENO);
    }();
    return knows && tcgetpgrp(STDIN_FILENO) == getpgrp();
}

boolean keys_open() {
    if (open) return true;
    if (!keys_possible() || tcgetattr(STDIN_FILENO, &original) != 0) return false;
    ours = original;
    ours.c_lflag &= ~tcflag_t(ICANON | ECHO);
    ours.c_lflag |= ISIG;
    ours.c_iflag |= ICRNL;
    ours.c_cc[VMIN] = 1;
    ours.c_cc[VTIME] = 0;
    open = tcsetattr(STDIN_FILENO, TCSANOW, &ours) == 0;
    return open;
}

void keys_close() {
    if (open) tcsetattr(STDIN_FILENO, TCSADRAIN, &original);
    open = false;
}

boolean keys_taken() { return open; }

void keys_lend(boolean toprogram) {
    if (open) tcsetattr(STDIN_FILENO, TCSADRAIN, toprogram ? &original : &ours);
}

void keys_marks(boolean on) {
    std::fputs(on ? "\033[?2004h" : "\033[?2004l", stdout);
    std::fflush(stdout);
}

void keys_next(keystroke& key) {
    key.bytes.clear();
    while (ahead().empty()) {
        Int4 got = await(-1);
        if (got < 0 || !fill()) {
            key.kind = got < 0 ? key_signal : key_end;
            return;
        }
    }
    if (inpaste) return pastedkey(key);
    if (ahead()[0] == '\033') return sequencekey(key);
    key.kind = key_byte;
    key.bytes = ahead().substr(0, 1);
    take(1);
}

boolean keys_inpaste() { return inpaste; }

boolean keys_lineahead() {
    gather(0);
    return ahead().find_first_of("\r\n") != std::string_view::npos;
}

void keys_unread(std::string_view bytes) {
    queue = std::string(bytes) + std::string(ahead());
    taken = 0;
    if (bytes == pastebegins) inpaste = false;
}

boolean keys_commandsahead(boolean before) {
    gather(before ? 0 : 5);
    std::string_view text = ahead();
    if (inpaste || text.find(pastebegins) != text.npos) return !text.empty();
    boolean other = false;
    while (!text.empty()) {
        std::size_t n = text[0] == '\033' ? std::max<std::size_t>(sequencelength(text), 1) : 1;
        if (other && (text[0] == '\n' || text[0] == '\r')) return true;
        other = other || (text[0] != '\033' && !pagerkey(text[0]));
        text.remove_prefix(n);
    }
    return other && before;
}

Int4 keys_queued() {
    if (ahead().empty()) return -1;
    Int4 c = UByte(ahead()[0]);
    take(1);
    return c;
}

std::string keys_ask(std::string_view question) {
    boolean before = open;
    if (!keys_open()) return "";
    onexit giveback([before] { if (!before) keys_close(); });
    gather(0);
    std::size_t from = queue.size();
    std::string whole = std::string(question) + "\033[c";
    std::fwrite(whole.data(), 1, whole.size(), stdout);
    std::fflush(stdout);
    std::int64_t end = clockms() + answerms;
    while (true) {
        for (std::size_t at = queue.find("\033[?", from); at != queue.npos; at = queue.find("\033[?", at + 1)) {
            std::size_t n = sequencelength(std::string_view(queue).substr(at));
            if (n == 0 || queue[at + n - 1] != 'c') continue;
            std::size_t begins = std::min(queue.find("\033]", from), at);
            std::string answer = queue.substr(begins, at - begins);
            queue.erase(begins, at + n - begins);
            return answer;
        }
        Int4 left = Int4(end - clockms());
        if (left <= 0 || await(left) <= 0 || !fill()) return "";
    }
}

}  // namespace velmo
