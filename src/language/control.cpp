// The prefixes. Each changes one thing, takes the next token as the command's word and dispatches it.
#include "base/poll.h"
#include "base/saved.h"
#include "base/state.h"
#include "core/commands.h"
#include "language/turn.h"

namespace velmo {

namespace {

Int4 runprefixed() {
    takecmdword();
    return dispatch();
}

// Under another threshold; unless the command itself changed it, the old one comes back.
Int4 runatlevel(UByte level) {
    UByte old = quietlevel;
    quietlevel = level;
    Int4 rc = runprefixed();
    if (quietlevel == level) quietlevel = old;
    return rc;
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
    if (execflag) {
        rcvalue = rc;
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

Int4 cmd_break() { return runwithbreak(1); }
Int4 cmd_nobreak() { return runwithbreak(0); }

}  // namespace velmo
