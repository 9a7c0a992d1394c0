// The markup engine. A vstream takes a stream of bytes in VTML, breaks it into finished display lines of at most
// its line size, each with style runs and links, hands every line to a consumer, and copies what passes to log
// files. It never touches a screen, never allocates while printing, and has no failures: a directive that can't
// be understood shows as text. Code in here must not report errors through a stream.
#pragma once
#include <string_view>
#include "base/types.h"

namespace velmo {

enum vmode : Int4 { vmode_none, vmode_asis, vmode_vtml, vmode_paragraph, vmode_v6hlp };

enum vcode : Int4 {
    vcode_line = 1,      // a finished line
    vcode_partial = 2,   // the unfinished last line of a burst; the next line replaces it
    vcode_flush = 3, vcode_closing = 4,
    vcode_more = 5,      // show this line and wait for a key; the result is the key
};

// The consumer of a stream's lines. `record` is a vline for codes 1, 2 and 5, else null; the result counts for 5.
using vcallback = Int4 (*)(void* data, const UByte* record, Int4 code);

struct vstream;    // vtmlinternal.h

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

// Paging. vstream_more waits for a key by the consumer's code 5 and returns it, 0 when there is nothing to wait for.
Int4 vstream_more(vstream* s);
void vstream_setmore(vstream* s, boolean on);
void vstream_setpage(vstream* s, Int4 lines);              // 0: no paging
void vstream_clearpage(vstream* s);                        // the next line begins a page

}  // namespace velmo
