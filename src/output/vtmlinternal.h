// The inside of a vstream, for the files of the markup engine only: vtml (life, modes, marker test, parser),
// vtmllines (lines, words, links, records, paging), vtmllogs, vtmldirectives, vtmlchars, vtmlhelp (old help text).
//
//   vstream_write -> raw logs -> marker test -> parser -> directives --+-> line writer (vtml, asis, old help)
//                                                       +-> words -----+        |
//                                                        (paragraphs)        emitline -> line logs, consumer, paging
//
// Everything has a fixed size, so that printing never allocates. A text inside a directive is parsed by recursion,
// at most maxdepth deep; a deeper directive shows as text, and so does one that comes when its chunk has made more
// work (braces sought, texts repeated and measured) than any output needs: no input takes time without bound.
#pragma once
#include "output/vtml.h"
#include "output/vtmllogs.h"

namespace velmo {

inline constexpr Int4 heldsize = 1024;          // longest directive without its closing brace, and help line
inline constexpr Int4 linkbytesmax = 758;       // link entries of one line
inline constexpr Int4 targetsize = 255;         // longest link target, with its zero
inline constexpr Int4 maxdepth = 20;
inline constexpr char bindingblank = 19;        // in a word: a blank that does not break

// The line being built. A run ends at byte runend[i]; the first may be empty, later ones never are.
struct vline {
    Int4 n;                  // bytes
    Int4 columns;            // what they take on the screen
    Int4 begun;              // bytes at the end that begin a character whose rest may come with the next text
    Int4 nruns;
    UByte runstyle[256];
    UByte runend[256];
    char text[256];
    Int4 nlinks;
    Int4 linkbytes;
    UByte links[linkbytesmax];
};

// The word being gathered in paragraph mode.
struct vword {
    Int4 n;
    char text[255];
    UByte style[255];
};

// The link being shown. Its entry in the line is made when its first character is placed.
struct vlink {
    UByte active;
    UByte type;
    Int4 entry;              // offset of the open entry in line.links, -1 when there is none
    Int4 wordend;            // the link ends behind this many characters of the pending word; -1 not yet
    Int4 targetlen;
    char target[targetsize];
};

struct vlogbuffer {
    Int4 n;
    char text[512];
};

struct vstream {
    vmode mode;
    UByte unshown;           // something was written since the last partial line or flush
    UByte logs_disabled;
    vcallback callback;
    void* data;
    Int4 linesize;
    Int4 matched;            // bytes of the marker that the end of the previous chunk matched
    UByte style;
    UByte newline_on;        // 0 after {...}: the next newline is dropped
    UByte at_mode_start;     // 1 until text has arrived in this mode
    UByte can_underline;
    UByte in_more;
    UByte link_default;      // link type of {velmo}
    Int4 morelines;          // lines a page; 0 no paging
    Int4 morecount;          // lines since the last pause
    UByte more_on;
    UByte muted;             // lines go to the logs only
    Int4 depth;              // nesting of the parser: 1 while a chunk is read, more in texts of directives
    Int4 changes;            // counts changes of mode, so that the parser notices one
    UByte skip_nl;           // the next newline, if nothing stands before it, is dropped: after {p_end} and {.-}
    UByte blankstate;        // 10 if the previous chunk of a paragraph ended in a newline
    Int4 first_indent;       // indentation of the next line of a paragraph
    Int4 next_indent;        // and of those behind it
    Int4 para_lines;
    Int4 save_linesize;      // width to go back to when the paragraph ends
    UByte para_blank;        // the paragraph's end makes a blank line
    UByte inlink;            // inside the text of a link
    UByte binding;           // inside {bind:}: blanks of a paragraph do not break
    UByte lastend;           // 1 the last word ended a sentence, 0 not, 2 the word was cut without a blank
    Int4 blanks;             // blanks read since the last word
    UByte blankstyle;
    vlogset rawlogs, linelogs;
    vlogbuffer rawbuf, linebuf;
    Int4 nheld;
    char held[heldsize];
    vword word;
    vlink link;
    vline line;
    UByte record[1600];
};

// vtml.cpp
void vtml_reset(vstream* s);
void vtml_inner(vstream* s, std::string_view text);            // text of a directive, in the present mode
boolean vtml_tired();                                          // the chunk has made too much work
void vtml_plain(vstream* s, std::string_view text);            // no directives in it
void vtml_place(vstream* s, std::string_view text, UByte style);     // by the mode: into the word or the line
void vtml_newline(vstream* s);

// vtmldirectives.cpp: what stands between braces; false when it must show as text
boolean vtml_directive(vstream* s, std::string_view body);
// True when the text behind a brace begins with the name of a directive, or with ?
boolean vtml_isdirective(std::string_view text);

// vtmlhelp.cpp
void vtml_helptext(vstream* s, std::string_view text);
void vtml_helpflush(vstream* s);                               // the unfinished line, if any

// vtmllines.cpp
void line_reset(vstream* s);
void line_place(vstream* s, std::string_view text, UByte style);     // wraps hard at the line's end
void line_fill(vstream* s, char c, Int4 n, UByte style);
void line_tab(vstream* s);
void line_emit(vstream* s);
void word_add(vstream* s, std::string_view text, UByte style);
void word_flush(vstream* s, Int4 extra);       // the break test is made for `extra` columns more than the word
void word_blanks(vstream* s, Int4 n);
boolean link_begin(vstream* s, UByte type, std::string_view target);      // false: no room, the text is plain
void link_end(vstream* s);
const UByte* line_record(vstream* s);

// vtmllogs.cpp
void log_raw(vstream* s, std::string_view text);
void log_line(vstream* s);
void log_flush(vstream* s);

// The shown width of text; can_underline as of the stream that will show it.
Int4 vtml_measure(std::string_view text, UByte can_underline);
// A stream from the fixed store of measuring streams, reset; null when all are in use. Given back by measure_done.
vstream* measure_take();
void measure_done(vstream* s);

}  // namespace velmo
