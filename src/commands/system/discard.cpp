#include "commands/system/arguments.h"
#include "core/events.h"

namespace velmo {

// Results of the last estimates, r(), open posts (which are closed), programs of ado-files that don't run.
Int4 cmd_discard() {
    if (Int4 rc = nothingelse()) return rc;
    telldiscarded();
    return 0;
}

}  // namespace velmo
