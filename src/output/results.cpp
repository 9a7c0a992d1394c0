#include "output/results.h"
#include <algorithm>
#include "base/frontend.h"

namespace velmo {

vstream* results = nullptr;
vstream* console = nullptr;
Int4 printcount = 0;
Int4 linesize = 79;
Int4 pagesize = 23;
UByte more_on = 1;
Int4 linegap = 1;
Int4 colours = colours_auto;

namespace {

Int4 windowcolumns = 79;
boolean linesizeset = false, pagesizeset = false;

void uselinesize(Int4 n) {
    linesize = std::clamp(n, 40, 255);
    if (console) vstream_setlinesize(console, linesize);
}

void usepagesize(Int4 n) {
    pagesize = std::clamp(n, 0, 32000);
    if (console) vstream_setpage(console, pagesize);
}

}  // namespace

boolean results_open() {
    if (console) return true;
    console = vstream_new();
    results = console;
    if (!console) return false;
    uselinesize(linesize);
    usepagesize(pagesize);
    setmore(more_on);
    return true;
}

void results_close() {
    if (results != console) vstream_delete(results);
    vstream_delete(console);
    results = console = nullptr;
}

void setlinesize(Int4 n) {
    linesizeset = true;
    uselinesize(n);
}

void setpagesize(Int4 n) {
    pagesizeset = true;
    usepagesize(n);
}

void unsetlinesize() {
    linesizeset = false;
    uselinesize(windowcolumns);
}

void followwindow() {
    Int4 columns, rows;
    if (!front->window(columns, rows)) return;
    windowcolumns = columns;
    if (!linesizeset) uselinesize(columns);
    if (!pagesizeset) usepagesize(std::max(rows - 1, 2));
}

Int4 typedline(char* buf, Int4 n, boolean text) {
    Int4 length = front->typedline(buf, n, text);
    followwindow();
    return length;
}

void setmore(boolean on) {
    more_on = on;
    if (console) vstream_setmore(console, on);
}

}  // namespace velmo
