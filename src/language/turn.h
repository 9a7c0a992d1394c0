// The turn: one line from the line source to a return code. docmd takes what nextline left in cmdbuf, dispatch finds
// the command, report tells the code. Do-files, prefixes and (later) blocks and programs re-enter dispatch or docmd
// on the same cmdbuf.
#pragma once
#include "core/tokenizer.h"

namespace velmo {

// State
extern UByte exitflag;       // set by exit: end the present reading level
extern UByte hardexit;       // set by exit, VELMO: end the whole session
extern UByte wasexpanded;    // the line was expanded before dispatch: its word can't be a loop at a level that stores
extern Int4 sysclock;        // commands dispatched; from 0x7ffffffe it goes to 1
// How deep commands may stand within each other, each prefix, block, loop and call counting: 1000 beyond. The stack of
// 8 MB holds them, and what the innermost command needs, also under sanitizers.
inline constexpr Int4 maxturns = 600;

// One turn on cmdbuf: 1 to keep reading at this level, 0 to stop.
Int4 docmd();
// Prints the outcome of a turn that began at starttime (milliseconds), in do-files and at the console.
void report(std::int64_t starttime);
// Runs the command whose word is in cmdword with the cursor behind it.
Int4 dispatch();
// Takes the next token as cmdword: what prefixes do before they dispatch.
void takecmdword();

}  // namespace velmo
