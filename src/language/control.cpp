// The prefixes and the brace block. A prefix changes one thing, takes the next token as the command's word and
// dispatches it. A block has no storage: it works on the lines of the present source as they come.
#include <string>
#include "base/poll.h"
#include "base/saved.h"
#include "base/state.h"
#include "core/tokenizer.h"
#include "language/braces.h"
#include "language/control.h"
#include "language/dofile.h"
#include "language/lines.h"
#include "language/programs.h"
#include "language/turn.h"
#include "output/errors.h"

namespace velmo {

controlstate control;

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
        saved quiet(quietlevel, shows_nothing);
        rc = runprefixed();
    }
    // A Break that the command did not notice is its code all the same: who asks for _rc learns of it.
    if (execflag) {
        rcvalue = breakpending ? 1 : rc;
        breakpending = 0;
    }
    return 0;
}

Int4 cmd_quietly() { return runatlevel(quietlevel == shows_nothing ? shows_nothing : shows_errors); }
Int4 cmd_noisily() { return runatlevel(version < 220 ? UByte(0) : savedquiet); }

// ---- Blocks.

namespace {

Int4 blockdepth = 0;       // blocks being run

// Where the brace stands that ends the block of the line in cmdbuf; -1 without one.
Int4 ownbrace() { return currentline ? currentline->cutat : *cmdbuf ? closingbrace(cmdbuf) : -1; }

Int4 strayelse() { return errorf(198, "else must begin a line, behind the line of the closing brace\n"); }

// Reads lines until `depth` blocks have ended, the first being the one in cmdbuf.
Int4 skipblocks(Int4 depth, Int4 result) {
    saved skipping(execflag, UByte(0));
    while (true) {
        if (breakpending) {
            breakpending = 0;       // noticed: the lines that are skipped must be read to the block's end
            result = 1;
        }
        Int4 end = ownbrace();
        currentline = nullptr;
        char* rest = cmdbuf + end + 1;
        if (end < 0) {
            depth += blocksopened(cmdbuf);
        } else {
            depth--;
            if (elsebehind(rest)) {
                if (depth == 0 && !result) result = strayelse();
                depth += blocksopened(rest);
            }
            if (depth == 0) return result;
        }
        if (nextline(1)) return breakpending ? 1 : result;
    }
}

// Obeys the line in cmdbuf; false when an exit leaves the block.
boolean obeyline(Int4& rc) {
    rc = 0;
    settokpos(cmdbuf);
    if (tokpeeknonblank()) {
        if (!docmd()) {
            exitflag = 1;
            return false;
        }
        rc = lastrc;
    }
    currentline = nullptr;
    return true;
}

// The last line of a block with an else behind its brace: an error, and what the else opens is passed over.
Int4 runwithelse(Int4 end) {
    std::string rest = cmdbuf + end + 1;
    cmdbuf[end] = 0;
    Int4 rc;
    if (!obeyline(rc)) return 0;
    if (!rc) rc = strayelse();
    Int4 depth = blocksopened(rest.data());
    cmdbuf[0] = 0;
    return depth ? skipblocks(depth, rc) : rc;
}

// What is left of a block behind a line that ended it early; cmdbuf holds what that line left.
Int4 skipbehind(Int4 result) {
    cmdbuf[0] = 0;
    currentline = nullptr;
    return skiprest(result);
}

}  // namespace

void blanktobrace(const char* brace) {
    for (char* p = cmdbuf; p <= brace; p++) *p = ' ';
    settokpos(cmdbuf);
}

Int4 skiprest(Int4 result) { return skipblocks(1, result); }

Int4 skipfailed(Int4 rc, char* brace) {
    if (!brace || (!inprogram && !dofile && !blockdepth)) return rc;
    blanktobrace(brace);
    return skiprest(rc);
}

Int4 skipfailed(Int4 rc) { return skipfailed(rc, openedblock(cmdbuf)); }

Int4 blockrun() {
    saved truth(control.iftruth);
    saved depth(blockdepth, blockdepth + 1);
    while (true) {
        if (breakpending) return skiprest(1);
        Int4 end = ownbrace();
        if (end >= 0) {
            if (elsebehind(cmdbuf + end + 1)) return runwithelse(end);
            cmdbuf[end] = 0;
        }
        Int4 rc;
        if (!obeyline(rc)) return 0;
        if (end >= 0) return breakpending ? 1 : rc;
        if (rc || !execflag) return skipbehind(rc);
        if (nextline(1)) return breakpending ? 1 : 0;
    }
}

// The first line of a block: all up to its brace has been obeyed.
Int4 runblock() {
    blanktobrace(tokpos - 1);
    return blockrun();
}

Int4 cmd_break() { return runwithbreak(1); }
Int4 cmd_nobreak() { return runwithbreak(0); }

}  // namespace velmo
