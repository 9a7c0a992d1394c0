// The session: how a process becomes one, and how it ends. What each subsystem does at both is its row of events.def.
#pragma once
#include <string>
#include "base/frontend.h"
#include "base/types.h"

namespace velmo {

// State
extern char startcmd[1000];        // the command given at invocation, each word with a blank behind
extern UByte noconsole;            // nobody types: a batch run

// Puts a front end behind the results stream, which is made if need be; false when memory is short.
boolean session_attach(const frontend& f);
// Reads switches and preferences and brings the session up: -1 a failed start, 0 no start-up command, 1 with one.
// What goes wrong before there is a results stream goes to standard error.
Int4 session_init(Int4 argc, char** argv);
// Memory, empty, and every subsystem as at the start of a session, whatever was before: 0 or 909. Settings stay.
Int4 session_begin();
// profile.do, the start-up command, the read loop; returns the process's exit status.
Int4 session_main();
// The status that the process should leave with.
extern Int4 exitstatus;

}  // namespace velmo
