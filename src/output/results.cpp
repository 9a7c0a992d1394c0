#include "output/results.h"
#include <algorithm>

namespace velmo {

vstream* results = nullptr;
vstream* console = nullptr;
Int4 printcount = 0;
Int4 linesize = 79;
Int4 pagesize = 23;
UByte more_on = 1;
Int4 linegap = 1;

boolean results_open() {
    if (console) return true;
    console = vstream_new();
    results = console;
    if (!console) return false;
    setlinesize(linesize);
    setpagesize(pagesize);
    setmore(more_on);
    return true;
}

void results_close() {
    if (results != console) vstream_delete(results);
    vstream_delete(console);
    results = console = nullptr;
}

void setlinesize(Int4 n) {
    linesize = std::clamp(n, 40, 255);
    if (console) vstream_setlinesize(console, linesize);
}

void setpagesize(Int4 n) {
    pagesize = std::clamp(n, 0, 32000);
    if (console) vstream_setpage(console, pagesize);
}

void setmore(boolean on) {
    more_on = on;
    if (console) vstream_setmore(console, on);
}

}  // namespace velmo
