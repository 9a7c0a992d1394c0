// The autoloader: a word that is no built-in and no program is looked for along the ado-path, once; what its file
// defines stays in memory until discard or until adosize asks for room.
#pragma once
#include "base/types.h"

namespace velmo {

// State
extern Int4 adosize;        // thousands of bytes that programs of ado-files keep; beyond, the longest unused goes

// Finds cmdword + suffix, runs it quietly, and checks that it defined programs only (161) and cmdword among them (162,
// or 199 when `required`). The line and the cursor come back. 0 or a code, printed.
Int4 autoload(const char* suffix, boolean required);

}  // namespace velmo
