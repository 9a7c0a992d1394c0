// The tokenizer: one cursor into cmdbuf, which every parser shares. A parser that looks ahead saves the cursor and
// puts it back. Blanks are the only white space: line sources turn tabs into blanks. A stored position is valid only
// while cmdbuf isn't rewritten.
//
// A token is a word (up to a character of the break set), an operator (one character, or two when < > = ! ~ is
// directly followed by =), or quoted text: `"` and the content, without the closing quote; compound quotes nest and
// give `"` and the raw content too. Unbalanced quotes end with the line. A token longer than 503 bytes is cut there
// and the rest is the next token.
#pragma once
#include <string>
#include <string_view>
#include "base/saved.h"
#include "core/memory.h"

namespace velmo {

// State
extern char* cmdbuf;              // the command line being worked on, conslen
extern char tokbuf[tokensize];    // the token in hand
extern Int4 toklen;               // its length
extern char* tokpos;              // next unread character
extern char* tokstart;            // where the last token began
extern UByte tokrepeat;           // the next nexttoken returns tokbuf again
extern UByte tokrepeated;         // the token in hand came from a repeat
extern char cmdword[namesize];    // the first word of the current command

struct breakset { const char* chars; UByte in[256]; };
extern const breakset breakstd, breaknotilde, breaknum, breakdot, breakfile;
extern const breakset breakvarlist;   // breakstd without ~ * ?

struct tokenpos { char* pos; char* start; };

char* nexttoken(const breakset& set = breakstd);
void ungettoken();                    // the next nexttoken sees the same token again
void settoken(const char* text);      // makes text the token in hand and arms the repeat
void settokpos(char* p);
void savetokpos(tokenpos* p);
void restoretokpos(const tokenpos* p);
inline char* tokrest() { return tokpos; }
inline char* tokfirst() { return tokstart; }
inline char tokpeek() { return *tokpos; }
// The first nonblank at or behind the cursor, without moving; 0 at the end.
char tokpeeknonblank();
// True when the token in hand is quoted text; then tokbuf + 1 is its content.
inline boolean isquoted() { return tokbuf[0] == '"'; }
// The content of the token in hand: without the opening quote if it is quoted.
inline const char* tokcontent() { return tokbuf + (tokbuf[0] == '"'); }

// A file name, quoted or not, with `\` taken as `/`, into out (tokensize bytes). 0, or 7197's code with its message
// printed: an empty one, or one starting with , or ).
Int4 filetoken(char* out);

// Moves behind a balanced (...) whose opening parenthesis is the next character; text receives what stands between.
// False when it is not closed. Quotes are honoured.
boolean parenthesized(char** begin, char** end);
// Moves behind a quoted text, of any length, that begins at the cursor; without its closing quote it ends with the
// line. False when none begins there.
boolean quotedtext(char** begin, char** end);

// Parses another text than the command line: the cursor goes into a copy of it, and back at the end of the scope.
struct elsewhere {
    std::string text;
    saved<char*> pos, start;
    saved<UByte> repeat, repeated;
    explicit elsewhere(std::string_view t)
        : text(t), pos(tokpos, text.data()), start(tokstart, text.data()), repeat(tokrepeat, 0),
          repeated(tokrepeated, 0) {}
};

}  // namespace velmo
