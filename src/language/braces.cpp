#include "language/braces.h"
#include <algorithm>
#include <cstring>
#include "base/text.h"
#include "core/commands.h"
#include "core/quotes.h"
#include "core/tokenizer.h"
#include "output/errors.h"

namespace velmo {

namespace {

struct charset {
    UByte in[256] = {};
    constexpr explicit charset(std::string_view chars) {
        for (char c : chars) in[UByte(c)] = 1;
    }
};
constexpr charset looked("{}()[]\"`$\\");

// Partner of each opening character, whatever quotes say: so macro references end.
void pairup(std::string_view text, char open, char close, std::vector<Int4>& partners) {
    std::vector<Int4> waiting;
    for (std::size_t i = 0; i < text.size(); i++) {
        if (text[i] == open) waiting.push_back(Int4(i));
        if (text[i] != close || waiting.empty()) continue;
        partners[std::size_t(waiting.back())] = Int4(i);
        waiting.pop_back();
    }
}

}  // namespace

// Where the walk goes on behind a quote, a reference or an escape that begins at i.
std::size_t bracewalk::behind(std::size_t i) {
    char c = text[i], next = i + 1 < text.size() ? text[i + 1] : char(0);
    if (c == '"' || (c == '`' && next == '"')) return behindquote(text, i);
    if (c == '\\') return i + (next == '`' || next == '$' ? 2 : 1);
    if (c == '$' && next != '{') return i + 1;
    if (partners.empty()) {
        partners.assign(text.size(), -1);
        pairup(text, '`', '\'', partners);
        pairup(text, '{', '}', partners);
    }
    Int4 partner = partners[c == '$' ? i + 1 : i];
    return partner < 0 ? i + 1 : std::size_t(partner) + 1;
}

boolean bracewalk::next() {
    while (from < text.size()) {
        char c = text[from];
        if (!looked.in[UByte(c)]) {
            from++;
        } else if (c == '{' || c == '}') {
            at = from++;
            return true;
        } else if (c == '(' || c == '[' || c == ')' || c == ']') {
            parens += c == '(' || c == '[' ? 1 : -1;
            from++;
        } else {
            from = behind(from);
        }
    }
    return false;
}

Int4 closingbrace(std::string_view line) {
    if (line.find('}') == line.npos) return -1;
    Int4 open = 0;
    for (bracewalk walk(line); walk.next();) {
        if (line[walk.at] == '{') open++;
        else if (open-- == 0) return Int4(walk.at);
    }
    return -1;
}

Int4 bracebalance(std::string_view line) {
    Int4 n = 0;
    for (bracewalk walk(line); walk.next();) n += line[walk.at] == '{' ? 1 : -1;
    return n;
}

char* findbrace(char* text, boolean needed) {
    char* plain = text + std::strcspn(text, "{\"`()[]$\\");
    if (*plain == '{') return plain;
    for (bracewalk walk(plain); walk.next();)
        if (plain[walk.at] == '{' && walk.parens == 0) return plain + walk.at;
    if (needed) required("{");
    return nullptr;
}

boolean elsebehind(const char* text) {
    while (*text == ' ') text++;
    return *text == 'e' && std::strncmp(text, "else", 4) == 0 && !isnamechar(text[4]);
}

// A line that begins with q and a loop's word is taken for quietly's, though q alone is query.
std::string_view wordbehindprefixes(char* text) {
    settokpos(text);
    std::string_view word = nexttoken();
    for (; true; word = nexttoken()) {
        const command* row = commandrow(abbrev(word, "quietly", 1) ? "quietly" : tokbuf);
        if (!row || !(row->flags & cmd_prefix) || (row->flags & cmd_groups)) break;
        if (!(row->flags & cmd_colon)) continue;
        nexttoken();
        if (std::string_view(nexttoken()) != ":") return "";
    }
    return word;
}

namespace {

boolean ismark(char c) { return c == '`' || c == '$'; }

// Whether the line at text may open a block that isn't obeyed; the cursor stands where its brace is to be looked for.
boolean takesblock(char* text) {
    std::string_view word = wordbehindprefixes(text);
    boolean given = ismark(*tokstart) || (!word.empty() && ismark(*tokpos));
    const command* row = commandrow(tokbuf);
    if (given || word == "{") settokpos(tokstart);
    return given || word == "{" || (!word.empty() && row && row->handler && (row->flags & cmd_block));
}

struct block { Int4 open, close; };       // close is -1 when the line ends first

std::vector<block> blocksof(std::string_view line) {
    std::vector<block> all;
    std::vector<std::size_t> waiting;
    for (bracewalk walk(line); walk.next();) {
        if (line[walk.at] == '{') {
            waiting.push_back(all.size());
            all.push_back({Int4(walk.at), -1});
        } else if (!waiting.empty()) {
            all[waiting.back()].close = Int4(walk.at);
            waiting.pop_back();
        }
    }
    return all;
}

}  // namespace

char* openedblock(char* text) { return takesblock(text) ? findbrace(tokpos, false) : nullptr; }

Int4 blocksopened(char* text) {
    if (!std::strchr(text, '{')) return 0;
    std::vector<block> blocks = blocksof(text);
    Int4 n = 0;
    char* from = text;
    for (auto b = blocks.begin(); takesblock(from);) {
        while (b != blocks.end() && text + b->open < tokpos) b++;
        if (b == blocks.end()) break;
        from = text + (b->close < 0 ? b->open : b->close) + 1;
        if (b->close < 0)
            n++;
        else if (!elsebehind(from))
            break;
    }
    return n;
}

}  // namespace velmo
