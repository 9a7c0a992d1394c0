#include "console/lineedit.h"

#ifndef VELMO_LIBEDIT

namespace velmo {

boolean lineedit_ready() { return false; }
boolean lineedit_read(const std::string&, std::string&) { return false; }

}  // namespace velmo

#else

#include <algorithm>
#include <cerrno>
#include <clocale>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <cwchar>
#include <histedit.h>
#include <langinfo.h>
#include <string_view>
#include <unistd.h>
#include "base/platform.h"
#include "base/poll.h"
#include "console/complete.h"

namespace velmo {

namespace {

constexpr Int4 historylines = 1000;
constexpr char literalmark = '\1';     // stands around codes in the prompt that take no room
constexpr wchar_t breakkey = 3;

EditLine* editor = nullptr;
History* past = nullptr;
std::string lastentered;               // the newest line of the history
std::string promptshape;
std::string completedline;             // the line up to the cursor when Tab last found several candidates
volatile std::sig_atomic_t resized, resumed;

// ---- History.

std::string historyfolder() { return homedir() + "/.config/velmo"; }

void remember(const std::string& line) {
    HistEvent event;
    history(past, &event, H_ENTER, line.c_str());
    lastentered = line;
}

// Lines are appended as they are typed, so sessions that run at one time keep all of each other's.
void append(const std::string& lines, boolean fresh) {
    std::string folder = historyfolder(), name = folder + "/history";
    Int4 fd = fileopenwrite(name.c_str(), fresh, !fresh, false);
    if (fd < 0) {
        makedir((homedir() + "/.config").c_str(), false);
        makedir(folder.c_str(), false);
        fd = fileopenwrite(name.c_str(), fresh, !fresh, false);
    }
    if (fd < 0) return;
    filewrite(fd, lines.data(), lines.size());
    fileclose(fd);
}

std::string wholefile(const char* name) {
    std::string text;
    Int4 fd = fileopenread(name);
    if (fd < 0) return text;
    char block[8192];
    for (Pint n = fileread(fd, block, sizeof block); n > 0; n = fileread(fd, block, sizeof block))
        text.append(block, std::size_t(n));
    fileclose(fd);
    return text;
}

// A file that has grown to twice its lines is written anew with the last ones.
void loadhistory() {
    std::string text = wholefile((historyfolder() + "/history").c_str());
    std::int64_t lines = std::count(text.begin(), text.end(), '\n');
    std::int64_t drop = std::max<std::int64_t>(lines - historylines, 0);
    std::size_t from = 0;
    for (std::int64_t i = 0; i < drop; i++) from = text.find('\n', from) + 1;
    if (drop > historylines) append(text.substr(from), true);
    while (from < text.size()) {
        std::size_t to = std::min(text.find('\n', from), text.size());
        if (to > from) remember(text.substr(from, to - from));
        from = to + 1;
    }
}

// ---- Keys.

void wake() {
    if (!resumed && !resized) return;
    if (resumed) {                     // the shell may have changed the terminal meanwhile
        el_set(editor, EL_PREP_TERM, 0);
        el_set(editor, EL_PREP_TERM, 1);
    }
    if (resized) el_resize(editor);
    std::fputs("\r\033[K", stdout);
    el_set(editor, EL_REFRESH);
    resumed = 0;
    resized = 0;
}

// One character; bytes that are none in this locale are passed over. Break counts as a key, so that the editor leaves
// the screen in order.
int readcharacter(EditLine*, wchar_t* out) {
    std::mbstate_t state{};
    while (true) {
        char c;
        ssize_t n = read(STDIN_FILENO, &c, 1);
        if (n == 0) return 0;
        if (n < 0) {
            if (errno != EINTR) return -1;
            if (breakpending) {
                *out = breakkey;
                return 1;
            }
            wake();
            continue;
        }
        std::size_t used = std::mbrtowc(out, &c, 1, &state);
        if (used <= 1) return 1;
        if (used == std::size_t(-1)) state = {};
    }
}

// The line stays on the screen, marked; the pushed key ends it.
unsigned char breakline(EditLine*, int) {
    const LineInfoW* line = el_wline(editor);
    el_cursor(editor, int(line->lastchar - line->cursor));
    el_insertstr(editor, "^C");
    el_push(editor, "\n");
    breakpending = 1;
    return CC_REFRESH;
}

unsigned char deleteorend(EditLine*, int) {
    const LineInfoW* line = el_wline(editor);
    if (line->lastchar == line->buffer) return CC_EOF;
    if (line->cursor == line->lastchar) return CC_ERROR;
    el_cursor(editor, 1);
    el_deletestr(editor, 1);
    return CC_REFRESH;
}

// ---- Tab.

std::size_t shownwidth(const std::string& s) {
    return std::size_t(std::count_if(s.begin(), s.end(), [](char c) { return (UByte(c) & 0xC0) != 0x80; }));
}

// In columns that are read downward, below the line; a file without its folder.
void listcandidates(const completion& c) {
    std::vector<std::string> shown;
    std::size_t widest = 0;
    for (const std::string& word : c.words) {
        std::size_t slash = c.files && word.size() > 1 ? word.rfind('/', word.size() - 2) : word.npos;
        shown.push_back(slash == word.npos ? word : word.substr(slash + 1));
        widest = std::max(widest, shownwidth(shown.back()) + 2);
    }
    int columns = 80;
    el_get(editor, EL_GETTC, "co", &columns, nullptr);
    std::size_t across = std::max<std::size_t>(1, std::size_t(std::max(columns, 1)) / widest);
    std::size_t down = (shown.size() + across - 1) / across;
    std::fputs("\r\n\033[J", stdout);
    for (std::size_t i = 0; i < down; i++) {
        for (std::size_t k = i; k < shown.size(); k += down) {
            std::fputs(shown[k].c_str(), stdout);
            if (k + down < shown.size())
                for (std::size_t w = shownwidth(shown[k]); w < widest; w++) std::fputc(' ', stdout);
        }
        std::fputs("\r\n", stdout);
    }
    el_set(editor, EL_REFRESH);
}

// The text for the word: with several candidates what they have in common; a file name with blanks gets quotes.
std::string replacement(const completion& c, char next) {
    std::string text = commonbeginning(c);
    boolean whole = c.words.size() == 1, folder = whole && text.back() == '/', quoted = c.quoted;
    if (c.files && !quoted && text.find(' ') != text.npos) {
        text.insert(0, 1, '"');
        quoted = true;
    }
    if (whole && !folder) {
        if (quoted && next != '"') text += '"';
        if (!quoted && next != ' ') text += ' ';
    }
    return text;
}

unsigned char completeword(EditLine*, int) {
    const LineInfo* line = el_line(editor);
    std::string before(line->buffer, line->cursor);
    char next = line->cursor < line->lastchar ? *line->cursor : 0;
    if (before.find_first_not_of(' ') == before.npos) {          // an indentation
        el_insertstr(editor, "    ");
        return CC_REFRESH;
    }
    completion c;
    completionsof(before, c);
    if (c.words.empty()) return CC_ERROR;
    std::string word = before.substr(c.from), text = replacement(c, next);
    if (c.words.size() > 1 && before == completedline) {
        listcandidates(c);
        return CC_NORM;
    }
    if (text.size() >= word.size() && text != word) {
        std::wstring wide(word.size(), 0);
        std::size_t characters = std::mbstowcs(wide.data(), word.c_str(), wide.size());
        if (characters == std::size_t(-1)) return CC_ERROR;
        el_deletestr(editor, int(characters));
        el_insertstr(editor, text.c_str());
    }
    completedline = before.substr(0, c.from) + text;
    return c.words.size() > 1 ? CC_REFRESH_BEEP : CC_REFRESH;
}

// ---- The editor.

char* promptof(EditLine*) { return promptshape.data(); }

// The editor takes codes with the character behind them only: those at the end go before the last one.
void setprompt(const std::string& text) {
    std::string codes;
    promptshape.clear();
    std::size_t lastcharacter = 0;
    for (std::size_t i = 0; i < text.size();) {
        if (text[i] == '\033') {
            std::size_t to = std::min(text.find('m', i), text.size() - 1) + 1;
            codes += text.substr(i, to - i);
            i = to;
            continue;
        }
        if ((UByte(text[i]) & 0xC0) != 0x80) {
            lastcharacter = promptshape.size();
            if (!codes.empty()) promptshape += literalmark + codes + literalmark;
            codes.clear();
        }
        promptshape += text[i++];
    }
    if (!codes.empty() && !promptshape.empty()) promptshape.insert(lastcharacter, literalmark + codes + literalmark);
}

void bindkeys() {
    el_set(editor, EL_EDITOR, "emacs");
    el_set(editor, EL_ADDFN, "velmo-complete", "complete the word", completeword);
    el_set(editor, EL_ADDFN, "velmo-break", "abandon the line", breakline);
    el_set(editor, EL_ADDFN, "velmo-delete", "delete a character or end the input", deleteorend);
    static const char* const keys[][2] = {
        {"^I", "velmo-complete"}, {"^C", "velmo-break"}, {"^D", "velmo-delete"}, {"^R", "em-inc-search-prev"},
        {"^W", "ed-delete-prev-word"}, {"\033[3~", "ed-delete-next-char"}, {"\033[1;5C", "em-next-word"},
        {"\033[1;5D", "ed-prev-word"}, {"\033[H", "ed-move-to-beg"}, {"\033[F", "ed-move-to-end"},
        {"\033[1~", "ed-move-to-beg"}, {"\033[4~", "ed-move-to-end"},
    };
    for (const auto& key : keys) el_set(editor, EL_BIND, key[0], key[1], nullptr);
}

// Text is UTF-8 where the locale says nothing but ASCII.
boolean start() {
    std::string terminal = environmenttext("TERM");
    if (terminal.empty() || terminal == "dumb") return false;
    if (std::strcmp(nl_langinfo(CODESET), "ANSI_X3.4-1968") == 0) std::setlocale(LC_CTYPE, "C.UTF-8");
    past = history_init();
    editor = el_init("velmo", stdin, stdout, stderr);
    if (!past || !editor) return false;
    HistEvent event;
    history(past, &event, H_SETSIZE, historylines);
    history(past, &event, H_SETUNIQUE, 1);
    loadhistory();
    el_set(editor, EL_HIST, history, past);
    el_set(editor, EL_PROMPT_ESC, promptof, literalmark);
    el_set(editor, EL_GETCFN, readcharacter);
    el_set(editor, EL_SIGNAL, 0);
    bindkeys();
    return true;
}

// The window's signals, noticed while a line is being typed only: elsewhere they would break off what waits.
struct windowsignals {
    struct sigaction oldsize{}, oldcont{};
    windowsignals() {
        struct sigaction a{};
        a.sa_handler = [](int) { resized = 1; };
        sigaction(SIGWINCH, &a, &oldsize);
        a.sa_handler = [](int) { resumed = 1; };
        sigaction(SIGCONT, &a, &oldcont);
    }
    ~windowsignals() {
        sigaction(SIGWINCH, &oldsize, nullptr);
        sigaction(SIGCONT, &oldcont, nullptr);
    }
    windowsignals(const windowsignals&) = delete;
    windowsignals& operator=(const windowsignals&) = delete;
};

}  // namespace

boolean lineedit_ready() {
    static const boolean fine = start();
    return fine;
}

boolean lineedit_read(const std::string& prompt, std::string& line) {
    setprompt(prompt);
    completedline.clear();
    el_resize(editor);
    std::fputs("\r", stdout);
    windowsignals window;
    int n = 0;
    const char* text = el_gets(editor, &n);
    line.clear();
    if (breakpending) return true;
    if (!text || n <= 0) return false;
    line.assign(text, std::size_t(n));
    while (!line.empty() && (line.back() == '\n' || line.back() == '\r')) line.pop_back();
    if (line.empty() || line == lastentered) return true;
    remember(line);
    append(line + "\n", false);
    return true;
}

}  // namespace velmo

#endif
