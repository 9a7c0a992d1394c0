// Levels: the saved session state of a do-file, entered and left as a whole, on every path.
#pragma once
#include "core/tokenizer.h"

namespace velmo {

// State
extern Int4 dolevel;             // open levels
inline constexpr Int4 maxlevels = 32;

enum levelmode : Int4 { level_do = 0, level_run = 1 };

// Runs the do-file named behind the cursor. Mode 0 echoes and tells its end, mode 1 is quiet. Codes: the failing
// line's, 1000 (nesting, open do-files), 1004, the file's.
Int4 docall(Int4 mode);

}  // namespace velmo
