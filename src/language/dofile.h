// Line sources: the do-file reader, the typed line, and the # directives that never reach a command.
#pragma once
#include "core/tokenizer.h"

namespace velmo {

struct doreader {
    Int4 handle;
    Int4 pos, len;
    Int4 pushback;       // a byte, or -1
    Int4 column;         // of the physical line, for tabs
    UByte buf[512];
};

// State
extern doreader* dofile;         // of the present level; null at the console
extern UByte semicolon;          // #delimit ; is in force in this do-file
extern UByte eofseen;            // set at the end of a do-file or of the typed input: a sourceend
extern UByte typingtext;         // what is typed is no command but data or a body
enum sourceend : UByte { source_over = 1, source_endtyped = 2 };     // the second: the user may type on
extern Int4 openreaders;         // at most 10
inline constexpr Int4 maxreaders = 10;

// Opens a do-file (the name is complete): 0, 1000, or the file's code, printed. The record is the caller's.
Int4 doreader_open(doreader& r, const char* name);
void doreader_close(doreader& r);
// The next line from the do-file or the keyboard into cmdbuf, at most conslen - 1 bytes, with prompt and echo; the
// directives are obeyed on the way. At the end of the source eofseen is set and cmdbuf empty.
void getline();

}  // namespace velmo
