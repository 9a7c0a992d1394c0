// Control flow: brace blocks. The prefixes are command handlers in control.cpp.
#pragma once
#include "base/types.h"

namespace velmo {

// Runs the lines of a block, the first being what stands in cmdbuf (its opening brace and all before it blanked), up to
// the line that holds the closing brace. The code of the failing line, or 0; lines behind a failing one are read and
// skipped, so that structure stays in step with the source.
Int4 blockrun();
// The command `{`: the cursor is behind the brace.
Int4 runblock();

}  // namespace velmo
