// Control flow on the line stream: if, else, while, forvalues, foreach, continue, brace blocks, and the prefixes. A
// condition decides execflag; lines go on being read, and while execflag is 0 the dispatcher obeys the control words
// only. A loop in a stored program moves the program's line index back; at the console and in do-files it is first
// stored whole as a temporary program.
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
extern UByte wasexpanded;    // the line was expanded before dispatch: its word can't be a loop at a level that stores

// The opening brace of a construct in `text`: outside quotes, at depth 0 of parentheses and brackets. Null when there
// is none; with `required` "{ required" has then been printed (100).
char* findbrace(char* text, boolean required);
// True when the line in cmdbuf, past capture, noisily and quietly, begins with a loop's word.
boolean looppeek();
// Runs the lines of a block, the first being what stands in cmdbuf (its opening brace and all before it blanked), up to
// the line that holds the closing brace. The code of the failing line, or 0; lines behind a failing one are read and
// skipped, so that structure stays in step with the source.
Int4 blockrun();
// The command `{`: the cursor is behind the brace.
Int4 runblock();
// The unread rest of the innermost foreach list.
std::string ferest();

}  // namespace velmo
