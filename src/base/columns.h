// How wide text stands on a screen or page. Text is bytes; in a UTF-8 locale some of their sequences are characters of
// no, one or two columns. What people read in tables, lists and headings, and the wrap at the line's end, is padded by
// columns and cut between characters; values and files count bytes and have no business here. In other locales a byte
// is a column. Text of nothing but ASCII never asks for the locale.
#pragma once
#include <string>
#include <string_view>
#include "base/types.h"

namespace velmo {

// One character. Bytes that make up none, and those of a control character, which a terminal shows by a mark each, have
// a column each.
struct textchar {
    Int4 bytes, columns;
    Int4 code;                 // of Unicode, -1 for a byte that is no character
};

boolean utf8locale();                                     // the environment's; settled when first asked
boolean isascii(std::string_view text);
textchar charat(std::string_view text);                   // the first one of a text that isn't empty
Int4 textcolumns(std::string_view text);
std::size_t bytesin(std::string_view text, Int4 n);       // of the longest beginning within n columns
Int4 unfinishedbytes(std::string_view text);              // at the end: the beginning of a character, 0 to 3
std::string leftjustified(std::string_view text, Int4 n);     // blanks up to n columns
std::string rightjustified(std::string_view text, Int4 n);

// The number of bytes of the well-formed sequence that text begins with, and its code; 0 when there is none.
Int4 decodeutf8(std::string_view text, Int4& code);
void appendutf8(std::string& out, Int4 code);

}  // namespace velmo
