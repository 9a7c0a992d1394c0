// Cutting the expression out of the command line: where it ends, and what belongs together in it.
#include "core/tokenizer.h"
#include "expr/compiler.h"

namespace velmo {

namespace {

boolean isoperator(char c, boolean matjoin) {
    switch (c) {
    case '|': case '&': case '=': case '>': case '<': case '+': case '-': case '*': case '/':
    case '^': case ':': case '!': case '~': case '#': return true;
    case '\\': case ',': return matjoin;
    default: return false;
    }
}

void put(cuttext& out, char c) {
    out.chars.push_back(c);
    out.mate.push_back(-1);
}

void join(cuttext& out, Int4 a, Int4 b) {
    out.mate[std::size_t(a)] = b;
    out.mate[std::size_t(b)] = a;
}

// Copies a quoted string, plain or compound, and returns where it ends.
char* copyquoted(cuttext& out, char* p) {
    Int4 start = Int4(out.chars.size());
    boolean compound = *p == '`';
    Int4 level = 1;
    if (compound) put(out, *p++);
    put(out, *p++);
    while (level > 0) {
        if (!*p) fail(132, "too few quotes\n");
        if (compound && p[0] == '`' && p[1] == '"') {
            level++;
            put(out, *p++);
        } else if (*p == '"' && (!compound || p[1] == '\'')) {
            level--;
            if (compound) put(out, *p++);
        }
        put(out, *p++);
    }
    join(out, start, Int4(out.chars.size()) - 1);
    return p;
}

void closebracket(cuttext& out, std::vector<Int4>& opened, char c) {
    char opener = c == ')' ? '(' : '[';
    if (opened.empty() || out.chars[std::size_t(opened.back())] != opener) fail(132, "too many ')' or ']'\n");
    put(out, c);
    join(out, opened.back(), Int4(out.chars.size()) - 1);
    opened.pop_back();
}

// True when the blank at p ends the expression: two operands stand side by side, or nothing follows.
boolean endsatblank(const cuttext& out, const char* p, boolean matjoin) {
    while (*p == ' ') p++;
    if (!*p) return true;
    if (*p == '\'') return false;
    return !isoperator(out.chars.back(), matjoin) && !isoperator(*p, matjoin);
}

// True at a character that ends the expression when it stands outside all brackets.
boolean endshere(const cuttext& out, const char* p, const compileoptions& options) {
    switch (*p) {
    case ',': return !options.matjoin;
    case ']': return options.stopatbracket;
    case ' ': return endsatblank(out, p, options.matjoin);
    case '=': return p[1] != '=' && (out.chars.empty() || !isoperator(out.chars.back(), options.matjoin));
    default: return false;
    }
}

char* scan(cuttext& out, char* p, const compileoptions& options) {
    std::vector<Int4> opened;
    while (*p && (!opened.empty() || !endshere(out, p, options))) {
        if (*p == ' ') {
            p++;
        } else if (*p == '"' || (p[0] == '`' && p[1] == '"')) {
            p = copyquoted(out, p);
        } else if (*p == ')' || *p == ']') {
            closebracket(out, opened, *p++);
        } else {
            if (*p == '(' || *p == '[') opened.push_back(Int4(out.chars.size()));
            put(out, *p++);
        }
    }
    if (!opened.empty()) fail(132, "too few ')' or ']'\n");
    return p;
}

}  // namespace

void cutexpression(cuttext& out, exp& e, const compileoptions& options) {
    out.chars.clear();
    out.mate.clear();
    char* p = tokrest();
    while (*p == ' ') p++;
    e.textbeg = p;
    e.textend = scan(out, p, options);
    settokpos(e.textend);
    if (out.chars.empty()) fail(198);
}

}  // namespace velmo
