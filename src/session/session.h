// The session: how a process becomes one, and how it ends. Stages run strictly in order; a counter keeps how far the
// start got, so that shutdown flushes and closes only what exists.
#pragma once
#include <string>
#include "base/types.h"

namespace velmo {

// State
extern char startcmd[1000];        // the command given at invocation, each word with a blank behind
extern UByte noconsole;            // nobody types: a batch run

// Reads switches and preferences and brings the session up: -1 a failed start, 0 no start-up command, 1 with one.
// What goes wrong before there is a results stream goes to standard error.
Int4 session_init(Int4 argc, char** argv);
// profile.do, the start-up command, the read loop; returns the process's exit status.
Int4 session_main();
// The status that the process should leave with.
extern Int4 exitstatus;

}  // namespace velmo
