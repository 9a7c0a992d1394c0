// The results stream: the one vstream that all commands print into, and the console stream that was made at the
// start (they differ while output is redirected). Made before anything can print; the session puts the front end behind
// it.
#pragma once
#include "output/vtml.h"

namespace velmo {

enum colourset : Int4 { colours_auto, colours_dark, colours_light, colours_none };

// State
extern vstream* results;       // where print calls write
extern vstream* console;       // the stream made at the start
extern Int4 printcount;        // suppressed prints and shown lines since the last poll
extern Int4 linesize;          // the setting, 40 to 255; until set the window's, and 79 without one
extern Int4 pagesize;          // the setting, lines a page, 0 to 32000; until set the window's, and 23 without one
extern UByte more_on;          // the setting
extern Int4 colours;           // the setting, a colourset
extern Int4 linegap;           // the setting, lines between paragraphs of the results, 0 to 10

// Makes the stream; false when memory is short.
boolean results_open();
// Flushes and deletes it.
void results_close();
// Sends settings to the stream.
void setlinesize(Int4 n);      // clamps to 40..255
void setpagesize(Int4 n);
void unsetlinesize();          // back to the window's
// Takes the sizes that have not been set from the front end's window, as often as it may have changed.
void followwindow();
// A line typed at the front end, during which its window may have changed (base/frontend.h says what comes back).
Int4 typedline(char* buf, Int4 n, boolean text);
void setmore(boolean on);

}  // namespace velmo
