// Control flow on the line stream: if, else, while, forvalues, foreach, continue, brace blocks, and the prefixes. A
// condition decides whether the lines of its block are obeyed or only read, up to the brace that ends it; execflag is 0
// meanwhile. Skipping does not nest: it counts the blocks that control words open. A loop in a stored program moves the
// program's line index back; at the console and in do-files it is first stored whole as a temporary program.
#pragma once
#include <string>
#include "base/types.h"

namespace velmo {

// The state that a level saves and clears.
struct controlstate {
    UByte inloop = 0;        // inside a loop body: continue is valid
    UByte contstate = 0;     // 0 none, 1 continue, 2 continue, break
    UByte iftruth = 0;       // result of the last if, for else
};

// State
extern controlstate control;

// Runs the lines of a block, the first being what stands in cmdbuf (its opening brace and all before it blanked), up to
// the line that holds the closing brace. The code of the failing line, or 0; lines behind a failing one, and behind a
// continue, are read and skipped, so that structure stays in step with the source.
Int4 blockrun();
// Reads on without obeying to the end of the block that the line in cmdbuf stands in. Gives `result`, or 1 after a
// Break, or 198 (printed) for an else behind the closing brace.
Int4 skiprest(Int4 result);
// What a line that failed with rc, and opens a block at `brace` (or at all, without one), does: the block is passed
// over, but a line by itself at the console stands alone. Gives rc.
Int4 skipfailed(Int4 rc, char* brace);
Int4 skipfailed(Int4 rc);
// Blanks up to and with the brace, and the cursor at the line's start: what a block begins with.
void blanktobrace(const char* brace);
// The command `{`: the cursor is behind the brace.
Int4 runblock();

}  // namespace velmo
