// The calls that go up: declared here, defined by a higher floor, so that no header below includes one above.
//   commands[], ncommands   core/commands.h, defined in session/tables.cpp
//   settings[], nsettings   core/settings.h, defined in session/tables.cpp
#pragma once
#include "base/types.h"

namespace velmo {

// One typed line into buf (n bytes, without its line end): its length, or one of these. `text`: not a command, so that
// Tab is a Tab. Defined by the console.
enum typedend : Int4 {
    typed_over = -1,       // the input has ended
    typed_end = -2,        // the user has ended what reads here, and may type on
};
Int4 typedline(char* buf, Int4 n, boolean text);
// True when the user sees what is typed (a terminal), so that the echo must not be shown twice.
boolean typedlineshows();
// Gives the terminal to a program that the session runs, and takes it back.
void terminal_lend(boolean toprogram);

// Ends the session: handles closed, output flushed, preferences written, temporary files removed. Code 900 ends
// the process at once. Defined in session/startup.cpp.
void shutdown(Int4 code);
// Gives up what can be loaded again: the programs of ado-files that neither run nor are being loaded. True when some
// went. Defined in language/autoload.cpp; called when room is asked for in vain, so no program's address survives that.
boolean yieldprograms();

extern UByte shuttingdown;     // set once by shutdown; a turn that starts while it is set does nothing

}  // namespace velmo
