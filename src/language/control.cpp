// The prefixes and the brace block. A prefix changes one thing, takes the next token as the command's word and
// dispatches it. A block has no storage: it works on the lines of the present source as they come.
#include "base/poll.h"
#include "base/saved.h"
#include "base/state.h"
#include "core/tokenizer.h"
#include "language/control.h"
#include "language/programs.h"
#include "language/turn.h"

namespace velmo {

controlstate control;
UByte wasexpanded = 0;

namespace {

Int4 runprefixed() {
    takecmdword();
    return dispatch();
}

// Under another threshold; unless the command itself changed it, the old one comes back.
Int4 runatlevel(UByte level) {
    UByte old = quietlevel;
    onexit restore([&] { if (quietlevel == level) quietlevel = old; });
    quietlevel = level;
    return runprefixed();
}

Int4 runwithbreak(Int4 what) {
    Int4 old = breakswitch;
    onexit restore([&] { breakswitch = old; });
    breakswitch = what;
    return runprefixed();
}

}  // namespace

Int4 cmd_capture() {
    Int4 rc;
    {
        saved quiet(quietlevel, UByte(5));
        rc = runprefixed();
    }
    // A Break that the command did not notice is its code all the same: who asks for _rc learns of it.
    if (execflag) {
        rcvalue = breakpending ? 1 : rc;
        breakpending = 0;
    }
    return 0;
}

Int4 cmd_quietly() {
    if (!execflag) return runprefixed();
    return runatlevel(quietlevel == 5 ? UByte(5) : UByte(3));
}

Int4 cmd_noisily() {
    if (!execflag) return runprefixed();
    return runatlevel(version < 220 ? UByte(0) : savedquiet);
}

namespace {

// Cuts the line at the brace that ends its block and tells that it was there; a { leaves the line to the construct it
// opens.
boolean cutatbrace() {
    Int4 at = currentline ? currentline->cutat : *cmdbuf ? closingbrace(cmdbuf) : -1;
    if (at >= 0) cmdbuf[at] = 0;
    return at >= 0;
}

}  // namespace

// A `continue` inside that was not pending before keeps the lines behind the block skipped, too.
Int4 blockrun() {
    UByte entry = execflag, pending = control.contstate, truth = control.iftruth;
    Int4 result = 0;
    while (true) {
        if (breakpending) {
            breakpending = 0;       // noticed: the lines that are skipped must be read to the block's end
            execflag = 0;
            result = 1;
        }
        boolean last = cutatbrace();
        settokpos(cmdbuf);
        if (tokpeeknonblank()) {
            if (!docmd()) {
                exitflag = 1;
                execflag = entry;
                control.iftruth = truth;
                return 0;
            }
            if (lastrc) {
                execflag = 0;
                result = lastrc;
            }
        }
        currentline = nullptr;
        if (last || nextline(1)) {
            if (breakpending) result = 1;
            break;
        }
    }
    if (!control.contstate || pending) execflag = entry;
    control.iftruth = truth;
    return result;
}

// The first line of a block: all up to its brace has been obeyed.
Int4 runblock() {
    for (char* p = cmdbuf; p < tokpos; p++) *p = ' ';
    return blockrun();
}

Int4 cmd_break() { return runwithbreak(1); }
Int4 cmd_nobreak() { return runwithbreak(0); }

}  // namespace velmo
