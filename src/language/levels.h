// Levels: the saved session state of a do-file or a stored program, entered and left as a whole, on every path.
#pragma once
#include <string>
#include "core/tokenizer.h"

namespace velmo {

// State
extern Int4 dolevel;             // open levels
inline constexpr Int4 maxlevels = 32;

enum levelmode : Int4 { level_do = 0, level_run = 1, level_program = 3 };

// Mode 0 and 1 run the do-file named behind the cursor (1 quietly), mode 3 the stored program named in cmdword, with
// the rest of the line as arguments. Codes: the failing line's, 1000 (nesting, open do-files), 1004, the file's.
Int4 docall(Int4 mode);
// Runs a file as `run` does, without arguments, for the autoloader: the current home stays.
Int4 runfile(const std::string& path);

}  // namespace velmo
