// The calls that go up: declared here, defined by a higher floor, so that no header below includes one above.
//   commands[], ncommands   core/commands.h, defined in session/tables.cpp
//   settings[], nsettings   core/settings.h, defined in session/tables.cpp
#pragma once
#include "base/types.h"

namespace velmo {

// Ends the session: handles closed, output flushed, preferences written, temporary files removed. Code 900 ends
// the process at once. Defined in session/startup.cpp.
void shutdown(Int4 code);
// Gives up what can be loaded again: the programs of ado-files that neither run nor are being loaded. True when some
// went. Defined in language/autoload.cpp; called when room is asked for in vain, so no program's address survives that.
boolean yieldprograms();

extern UByte shuttingdown;     // set once by shutdown; a turn that starts while it is set does nothing

}  // namespace velmo
