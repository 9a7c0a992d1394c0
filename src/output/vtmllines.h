// Finished lines: what the engine hands to a consumer. One (vline) is a packed record:
//      0 u16 total size   2 u16 offset of the style table   4 u16 offset of the text
//      6 u8  1 for a line after the first of a paragraph     7 u8  text length + 1
//      8 links: u8 count, then count times {u8 start column, u8 end column, u8 type, u8 target length with its
//        zero, target, zero}, then two zero bytes
//        styles: u8 runs - 1, u8 0, then for each run {u8 style, u8 column where the run ends}
//        text, zero-terminated
//
// Columns in a record count bytes of its text. A line is at most its size in columns of the screen, and 255 bytes.
//
// A style byte:  bit 7 line graphic | bit 6 a {c x} above 127 | bit 5 underline |
//                bits 3-4 font (0 standard, 8 italic, 16 bold) |
//                bits 0-2 colour (1 result, 2 text, 4 error, 5 input, 6 link, 7 highlight)
#pragma once
#include <string_view>
#include "base/types.h"

namespace velmo {

enum vstyle : UByte {
    style_result = 1, style_text = 2, style_error = 4, style_input = 5, style_link = 6, style_hilite = 7,
    style_colour = 7, style_italic = 8, style_bold = 16, style_font = 24, style_underline = 32,
    style_code = 64,       // a character above 127 that was written by its code or name, not a byte of a text
    style_graphic = 128,
};

// What a consumer reads from a record.
struct vlineview { std::string_view text; const UByte* styles; const UByte* links; boolean continued; };
vlineview vline_view(const UByte* record);
// What a line takes on the screen.
Int4 vline_columns(const vlineview& line);
// The style of column c (from 0) of a line.
UByte vline_style(const vlineview& line, Int4 c);
// The plain character for a line graphic of code c: '-', '|' or '+'.
char plaingraphic(UByte c);

}  // namespace velmo
