// The markup engine. A vstream takes a stream of bytes in VTML, breaks it into finished display lines of at most
// its line size, each with style runs and links, hands every line to a consumer, and copies what passes to log
// files. It never touches a screen, never allocates while printing, and has no failures: a directive that can't
// be understood shows as text. Code in here must not report errors through a stream.
//
// A finished line (vline) is a packed record:
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

enum vmode : Int4 { vmode_none, vmode_asis, vmode_vtml, vmode_paragraph, vmode_v6hlp };

enum vstyle : UByte {
    style_result = 1, style_text = 2, style_error = 4, style_input = 5, style_link = 6, style_hilite = 7,
    style_colour = 7, style_italic = 8, style_bold = 16, style_font = 24, style_underline = 32,
    style_code = 64,       // a character above 127 that was written by its code or name, not a byte of a text
    style_graphic = 128,
};

enum vcode : Int4 {
    vcode_line = 1,      // a finished line
    vcode_partial = 2,   // the unfinished last line of a burst; the next line replaces it
    vcode_flush = 3, vcode_closing = 4,
    vcode_more = 5,      // show this line and wait for a key; the result is the key
};

// The consumer of a stream's lines. `record` is a vline for codes 1, 2 and 5, else null; the result counts for 5.
using vcallback = Int4 (*)(void* data, const UByte* record, Int4 code);

struct vlogset { Int4 n; Int4 file[5]; UByte alive[5]; };     // file: descriptors of platform.h

struct vstream;    // vtmlinternal.h

// What a consumer reads from a record.
struct vlineview { std::string_view text; const UByte* styles; const UByte* links; boolean continued; };
vlineview vline_view(const UByte* record);
// What a line takes on the screen.
Int4 vline_columns(const vlineview& line);
// The style of column c (from 0) of a line.
UByte vline_style(const vlineview& line, Int4 c);
// The plain character for a line graphic of code c: '-', '|' or '+'.
char plaingraphic(UByte c);

// State
extern UByte maccharset;       // set charset mac: the second column of the character table

vstream* vstream_new();                          // null when memory is short
void vstream_delete(vstream* s);                 // flushes, tells the consumer 3 and 4, frees
Int4 vstream_setlinesize(vstream* s, Int4 n);    // clamps to 40..255 and returns the result
Int4 vstream_linesize(const vstream* s);
struct vsize { Int4 linesize; UByte can_underline; };
vsize vstream_getsize(const vstream* s);
void vstream_setsize(vstream* s, vsize size);
void vstream_setunderline(vstream* s, boolean on);
void vstream_setcallback(vstream* s, vcallback fn, void* data);
void vstream_setmode(vstream* s, vmode m);
vmode vstream_mode(const vstream* s);
void vstream_setclosed(vstream* s, boolean closed);
void vstream_setmuted(vstream* s, boolean muted);          // lines go to the logs only
void vstream_write(vstream* s, std::string_view text);     // raw VTML
void vstream_text(vstream* s, std::string_view text);      // text whose braces are escaped
void vstream_flush(vstream* s);                            // ends the unfinished line; code 3; logs written out
// Shows the unfinished line with code 2, if there is one, and lets it go on; then code 3, and logs written out.
void vstream_partial(vstream* s);
void vstream_setcolor(vstream* s, UByte colour);           // 1, 2, 4 or 5; no directive when nothing would change
boolean vstream_holds(const vstream* s);                   // a partial directive or marker is held
boolean vstream_atstart(const vstream* s);                 // the line being built is empty and no word is pending
UByte vstream_style(const vstream* s);

// File text, with CR, LF and CR LF read as line ends; `state` (0 at first) spans the calls of one file.
void vstream_feed(Int4& state, vstream* s, std::string_view text);
void vstream_feedtext(Int4& state, vstream* s, std::string_view text);

// Log sets. how: 1 add, 2 remove (written out first), 3 re-add (removed without writing out, then added). True
// when refused: the set is full, the file isn't there, or the stream takes no logs.
boolean vstream_lograw(vstream* s, Int4 file, Int4 how);
boolean vstream_logline(vstream* s, Int4 file, Int4 how);

// Paging. vstream_more waits for a key by the consumer's code 5 and returns it, 0 when there is nothing to wait for.
Int4 vstream_more(vstream* s);
void vstream_setmore(vstream* s, boolean on);
void vstream_setpage(vstream* s, Int4 lines);              // 0: no paging
void vstream_clearpage(vstream* s);                        // the next line begins a page

// The shown width of a VTML text, measured with an unlimited line.
Int4 vtmlwidth(std::string_view text);

}  // namespace velmo
