// Temporary names "__" and six base-36 digits of a counter. A level drops the variables, scalars, matrices, files and
// estimates put by that were named since its entry, and closes post files. A name in use, from a file that was saved
// while it was somebody's, is passed over and never dropped.
#pragma once
#include <string>
#include <string_view>
#include "base/types.h"

namespace velmo {

// State
extern Int4 tempnamecounter, tempfilecounter;
extern Int4 tempnamebase, tempfilebase;      // the counters at the level's entry

std::string newtempname();
Int4 newtempfile(std::string& path);         // 0 or a code, printed
// A name given since the counter stood at `from`.
boolean istempname(std::string_view name, Int4 from);

}  // namespace velmo
