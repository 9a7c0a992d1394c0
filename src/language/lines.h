// The lines that are obeyed: the running program's, or those of the do-file or the keyboard (dofile.h).
#pragma once
#include "base/types.h"

namespace velmo {

// Fills cmdbuf from the present source: 0 a line is ready, 1 the end of the source.
Int4 nextline(Int4 inlevel);

}  // namespace velmo
