#include "language/lines.h"
#include <string>
#include "base/poll.h"
#include "base/saved.h"
#include "base/state.h"
#include "core/tokenizer.h"
#include "language/dofile.h"
#include "language/programs.h"
#include "output/print.h"
#include "output/results.h"

namespace velmo {

namespace {

// The line with `-` ahead when it will run, whatever is quiet.
void traceline() {
    printing as(out_text);
    saved quiet(quietlevel, shows_all);
    prt(std::string(execflag ? "-" : " ") + cmdbuf + "\n");
}

// The next line of the running program: 1 behind its last one. Lines without text and star lines are passed over.
Int4 nextprogramline() {
    do {
        object* o = runningprogram();
        currentline = o ? lineknown(o, programline) : nullptr;
        if (!currentline) return 1;
        programtext(o, programline++, cmdbuf);
        settokpos(cmdbuf);
        if (tracing) traceline();
    } while (currentline->blank);
    return 0;
}

}  // namespace

Int4 nextline(Int4 inlevel) {
    if (inlevel && inprogram) return nextprogramline();
    do {
        if (dofile && breakpending) return 1;
        getline();
        settokpos(cmdbuf);
        if (eofseen || (!dofile && breakpending)) return 1;
    } while (tokpeeknonblank() == 0 || tokpeeknonblank() == '*');
    return 0;
}

}  // namespace velmo
