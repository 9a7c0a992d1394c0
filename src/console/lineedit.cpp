#include "console/lineedit.h"

#ifndef VELMO_LIBEDIT

namespace velmo {

boolean lineedit_ready() { return false; }
Int4 lineedit_read(const std::string&, boolean, std::string&) { return -1; }

}  // namespace velmo

#else

#include <algorithm>
#include <clocale>
#include <cstdio>
#include <cstring>
#include <cwchar>
#include <histedit.h>
#include <langinfo.h>
#include <string_view>
#include <unistd.h>
#include "base/columns.h"
#include "base/frontend.h"
#include "base/platform.h"
#include "base/poll.h"
#include "console/complete.h"
#include "console/keys.h"
#include "console/style.h"

namespace velmo {

namespace {

constexpr Int4 historylines = 1000;
constexpr char literalmark = '\1';     // stands around codes in the prompt that take no room
constexpr wchar_t breakkey = 3;

EditLine* editor = nullptr;
History* past = nullptr;
std::string lastentered;               // the newest line of the history
std::string promptshape;
Int4 promptcolumns = 0;
std::string completedline;             // the line up to the cursor when Tab last found several candidates
boolean textline = false;              // the line is no command
boolean endtyped = false;              // the user has ended the input
std::wstring fed;                      // what a key stands for, still to be given to the editor

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
    Int4 fd = fileopenprivate(name.c_str(), !fresh);
    if (fd < 0) {
        makedir((homedir() + "/.config").c_str(), false);
        makedir(folder.c_str(), false);
        fd = fileopenprivate(name.c_str(), !fresh);
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

Int4 windowcolumns() {
    int columns = 80;
    el_get(editor, EL_GETTC, "co", &columns, nullptr);
    return std::max(columns, 1);
}

// What stands ahead of the cursor, prompt and typed, in columns.
Int4 cursorcolumns() {
    const LineInfo* line = el_line(editor);
    return promptcolumns + textcolumns({line->buffer, std::size_t(line->cursor - line->buffer)});
}

// The terminal has broken the line anew at its new width, or is free to have done anything while the session stood
// still: it is drawn again over the rows that it takes.
void wake() {
    if (resumed) {
        keys_lend(false);
        el_set(editor, EL_PREP_TERM, 0);
        el_set(editor, EL_PREP_TERM, 1);
        keys_marks(true);
    }
    boolean moved = windowchanged;
    windowchanged = 0;
    resumed = 0;
    if (moved) el_resize(editor);
    Int4 up = moved ? cursorcolumns() / windowcolumns() : 0;
    if (up > 0) std::fprintf(stdout, "\033[%dA", up);
    std::fputs("\r\033[J", stdout);
    el_set(editor, EL_REFRESH);
}

// What the editor gets for a sequence; empty for those that mean nothing. Its own bindings would take the first bytes
// of a sequence that they don't know and type the rest.
std::wstring_view meaning(std::string_view sequence) {
    static constexpr struct { std::string_view keys; std::wstring_view fed; } plain[] = {
        {"A", L"\x10"}, {"B", L"\x0E"}, {"C", L"\x06"}, {"D", L"\x02"}, {"H", L"\x01"}, {"F", L"\x05"},
        {"1~", L"\x01"}, {"7~", L"\x01"}, {"4~", L"\x05"}, {"8~", L"\x05"}, {"3~", L"\033[3~"},
        {"c", L"\033f"}, {"d", L"\033b"},
    };
    boolean alt = sequence.substr(0, 2) == "\033\033";
    if (alt) sequence.remove_prefix(1);
    if (sequence.size() == 2) {
        std::size_t at = std::string_view("bfdulcpn\177\b").find(sequence[1]);
        static constexpr std::wstring_view letters = L"\033b\033f\033d\033u\033l\033c\033p\033n\033\177\033\b";
        return at == std::string_view::npos ? std::wstring_view() : letters.substr(2 * at, 2);
    }
    if (sequence.size() < 3 || (sequence[1] != '[' && sequence[1] != 'O')) return {};
    std::string key(sequence.substr(2));
    std::size_t semicolon = key.find(';');
    if (semicolon != key.npos && semicolon + 1 < key.size()) {      // 1;5C: with a modifier, which is Shift for 2
        alt = alt || key[semicolon + 1] != '2';
        key = (key[0] == '1' && key.back() != '~' ? "" : key.substr(0, semicolon)) + key.back();
    }
    if (alt && (key == "C" || key == "D")) return key == "C" ? L"\033f" : L"\033b";
    for (const auto& row : plain)
        if (row.keys == key) return row.fed;
    return {};
}

// One character; bytes that are none in this locale are passed over. Break counts as a key, so that the editor leaves
// the screen in order.
int readcharacter(EditLine*, wchar_t* out) {
    std::mbstate_t state{};
    keystroke key;
    while (true) {
        if (!fed.empty()) {
            *out = fed[0];
            fed.erase(0, 1);
            return 1;
        }
        keys_next(key);
        if (key.kind == key_end || (key.kind == key_signal && endpending)) return 0;
        if (key.kind == key_signal && breakpending) {
            *out = breakkey;
            return 1;
        }
        if (key.kind == key_signal) wake();
        if (key.kind == key_sequence) fed = meaning(key.bytes);
        if (key.kind != key_byte) continue;
        std::size_t used = std::mbrtowc(out, key.bytes.data(), 1, &state);
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
    if (line->lastchar == line->buffer) {
        endtyped = true;
        return CC_EOF;
    }
    if (line->cursor == line->lastchar) return CC_ERROR;
    el_cursor(editor, 1);
    el_deletestr(editor, 1);
    return CC_REFRESH;
}

// ---- Tab.

// In columns that are read downward, below the line; a file without its folder.
void listcandidates(const completion& c) {
    std::vector<std::string> shown;
    Int4 widest = 0;
    for (const std::string& word : c.words) {
        std::size_t slash = c.files && word.size() > 1 ? word.rfind('/', word.size() - 2) : word.npos;
        safetext(std::string_view(word).substr(slash == word.npos ? 0 : slash + 1), shown.emplace_back());
        widest = std::max(widest, textcolumns(shown.back()) + 2);
    }
    std::size_t across = std::size_t(std::max(1, windowcolumns() / widest));
    std::size_t down = (shown.size() + across - 1) / across;
    std::fputs("\r\n\033[J", stdout);
    for (std::size_t i = 0; i < down; i++) {
        for (std::size_t k = i; k < shown.size(); k += down) {
            std::fputs((k + down < shown.size() ? leftjustified(shown[k], widest) : shown[k]).c_str(), stdout);
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
    if (textline || keys_inpaste() || keys_lineahead()) {          // part of a text
        el_insertstr(editor, "\t");
        return CC_REFRESH;
    }
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
    std::string codes, plain;
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
        plain += text[i];
        promptshape += text[i++];
    }
    promptcolumns = textcolumns(plain);
    if (!codes.empty() && !promptshape.empty()) promptshape.insert(lastcharacter, literalmark + codes + literalmark);
}

void bindkeys() {
    el_set(editor, EL_EDITOR, "emacs");
    el_set(editor, EL_ADDFN, "velmo-complete", "complete the word", completeword);
    el_set(editor, EL_ADDFN, "velmo-break", "abandon the line", breakline);
    el_set(editor, EL_ADDFN, "velmo-delete", "delete a character or end the input", deleteorend);
    static const char* const keys[][2] = {
        {"^I", "velmo-complete"}, {"^C", "velmo-break"}, {"^D", "velmo-delete"}, {"^R", "em-inc-search-prev"},
        {"^W", "ed-delete-prev-word"}, {"\033[3~", "ed-delete-next-char"},
    };
    for (const auto& key : keys) el_set(editor, EL_BIND, key[0], key[1], nullptr);
}

// Text is UTF-8 where the locale says nothing but ASCII.
boolean start() {
    if (!keys_open()) return false;
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
    el_set(editor, EL_SETTY, "-x", "-icanon", "-echo", nullptr);      // as keys.h has it between lines
    bindkeys();
    return true;
}

}  // namespace

boolean lineedit_ready() {
    static const boolean fine = start();
    return fine;
}

Int4 lineedit_read(const std::string& prompt, boolean text, std::string& line) {
    setprompt(prompt);
    completedline.clear();
    fed.clear();
    textline = text;
    endtyped = false;
    el_resize(editor);
    keys_marks(true);
    std::fputs("\r", stdout);
    int n = 0;
    const char* got = el_gets(editor, &n);
    keys_marks(false);
    line.clear();
    if (breakpending && !endpending) return 0;
    if (!got || n <= 0) return endtyped ? typed_end : typed_over;
    line.assign(got, std::size_t(n));
    while (!line.empty() && (line.back() == '\n' || line.back() == '\r')) line.pop_back();
    if (line.empty() || line == lastentered) return 0;
    remember(line);
    append(line + "\n", false);
    return 0;
}

}  // namespace velmo

#endif
