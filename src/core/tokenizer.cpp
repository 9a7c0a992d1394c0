#include "core/tokenizer.h"
#include <cstring>
#include "base/text.h"
#include "core/quotes.h"
#include "output/errors.h"

namespace velmo {

char* cmdbuf;
char tokbuf[tokensize];
Int4 toklen = 0;
char* tokpos = nullptr;
char* tokstart = nullptr;
UByte tokrepeat = 0;
UByte tokrepeated = 0;
char cmdword[namesize];

namespace {

// A break set with its look-up table, made once at start.
breakset makeset(const char* chars) {
    breakset set{};
    set.chars = chars;
    for (const char* p = chars; *p; p++) set.in[UByte(*p)] = 1;
    set.in[0] = 1;    // the end of the line stops every word
    return set;
}

// Takes characters into tokbuf until the token is full.
struct tokenwriter {
    Int4 n = 0;
    boolean full() const { return n == tokensize - 1; }
    void put(char c) { tokbuf[n++] = c; }
    char* done() {
        tokbuf[n] = 0;
        toklen = n;
        return tokbuf;
    }
};

// The content of a compound string behind its opening pair; an inner pair nests and is kept.
char* compoundtoken() {
    tokenwriter out;
    out.put('"');
    tokpos += 2;
    Int4 level = 1;
    while (*tokpos && !out.full()) {
        if (tokpos[0] == '`' && tokpos[1] == '"') {
            level++;
            out.put(*tokpos++);
            if (out.full()) break;
        } else if (tokpos[0] == '"' && tokpos[1] == '\'') {
            if (--level == 0) {
                tokpos += 2;
                break;
            }
            out.put(*tokpos++);
            if (out.full()) break;
        }
        out.put(*tokpos++);
    }
    return out.done();
}

char* quotedtoken() {
    tokenwriter out;
    out.put(*tokpos++);
    while (*tokpos && *tokpos != '"' && !out.full()) out.put(*tokpos++);
    if (*tokpos == '"') tokpos++;
    return out.done();
}

char* wordtoken(const breakset& set) {
    tokenwriter out;
    while (!set.in[UByte(*tokpos)] && !out.full()) out.put(*tokpos++);
    return out.done();
}

char* operatortoken() {
    tokenwriter out;
    char c = *tokpos++;
    out.put(c);
    if (*tokpos == '=' && std::strchr("<>=!~", c)) out.put(*tokpos++);
    return out.done();
}

}  // namespace

const breakset breakstd = makeset(" \\\"'`~:;,<>/?!@|#$%^&*()-+=[]{}");
const breakset breaknotilde = makeset(" \\\"'`:;,<>/?!@|#$%^&*()-+=[]{}");
const breakset breaknum = makeset(" \\\"'`~:;,<>/?!@|#$%^&*()=[]{}");
const breakset breakdot = makeset(" \\\"'`~:;,<>/?!@|#$%^&*()-+=[]{}.");
const breakset breakfile = makeset(" \"'`;,<>()=[]{}|");
const breakset breakvarlist = makeset(" \\\"'`:;,<>/!@|#$%^&()-+=[]{}");

char* nexttoken(const breakset& set) {
    if (tokrepeat) {
        tokrepeat = 0;
        tokrepeated = 1;
        return tokbuf;
    }
    tokrepeated = 0;
    while (*tokpos == ' ') tokpos++;
    tokstart = tokpos;
    if (*tokpos == 0) {
        tokbuf[0] = 0;
        toklen = 0;
        return tokbuf;
    }
    if (tokpos[0] == '`' && tokpos[1] == '"') return compoundtoken();
    if (*tokpos == '"') return quotedtoken();
    if (!set.in[UByte(*tokpos)]) return wordtoken(set);
    return operatortoken();
}

void ungettoken() {
    if (tokrepeated)
        tokrepeat = 1;
    else
        tokpos = tokstart;
}

void settoken(const char* text) {
    if (text != tokbuf) copytext(tokbuf, sizeof tokbuf, text);
    toklen = Int4(std::strlen(tokbuf));
    tokrepeat = 1;
}

void settokpos(char* p) {
    tokpos = p;
    tokstart = p;
    tokrepeat = 0;
    tokrepeated = 0;
}

void tokenizer_started() { settokpos(cmdbuf); }

void savetokpos(tokenpos* p) { *p = {tokpos, tokstart}; }

void restoretokpos(const tokenpos* p) {
    tokpos = p->pos;
    tokstart = p->start;
    tokrepeat = 0;
    tokrepeated = 0;
}

char tokpeeknonblank() {
    const char* p = tokpos;
    while (*p == ' ') p++;
    return *p;
}

Int4 filetoken(char* out) {
    nexttoken(breakfile);
    if (tokbuf[0] == 0 || tokbuf[0] == ',' || tokbuf[0] == ')' || (isquoted() && tokbuf[1] == 0)) return error(7197);
    copytext(out, tokensize, tokcontent());
    for (char* p = out; *p; p++)
        if (*p == '\\') *p = '/';
    return 0;
}

boolean parenthesized(char** begin, char** end) {
    while (*tokpos == ' ') tokpos++;
    if (*tokpos != '(') return false;
    char* p = tokpos + 1;
    *begin = p;
    Int4 depth = 1, compound = 0;
    boolean quoted = false;
    for (; *p; p++) {
        if (p[0] == '`' && p[1] == '"' && !quoted) {
            compound++;
            p++;
        } else if (compound > 0) {
            if (p[0] == '"' && p[1] == '\'') {
                compound--;
                p++;
            }
        } else if (*p == '"') {
            quoted = !quoted;
        } else if (!quoted && *p == '(') {
            depth++;
        } else if (!quoted && *p == ')' && --depth == 0) {
            *end = p;
            settokpos(p + 1);
            return true;
        }
    }
    return false;
}

boolean quotedtext(char** begin, char** end) {
    while (*tokpos == ' ') tokpos++;
    quoted q;
    if (!readquoted(tokpos, q)) return false;
    *begin = tokpos + (q.content.data() - tokpos);
    *end = *begin + q.content.size();
    settokpos(tokpos + q.length);
    return true;
}

}  // namespace velmo
