// preserve and restore: the dataset kept in a temporary file while a program spoils it. A level (the console, a
// do-file, a program) can preserve once at a time; its slot is the number of the temporary file, and what else must
// come back is an object of kind 16 named by that number:
//   memory in kilobytes UInt4 | nobs Int4 | changed | has variables | S_FNDATE 18 bytes || file name | S_FN
// All value labels are kept, also those that no variable has.
#pragma once
#include "base/types.h"

namespace velmo {

// State
extern Int4 preserveslot;      // of the present level, -1 when it has preserved nothing; levels keep their caller's

// Keeps the dataset. 621, 914, 950, and what the dataset file's writer says; printed.
Int4 preserve_data();
// Brings it back, whatever Break says; with `keep` it stays preserved. 622 (printed). Where its room has gone, the
// block is made larger. When the data can't be read the process ends with status 1, the reason told, and the file
// stays.
Int4 preserve_restore(boolean keep);
// Forgets it: 622.
Int4 preserve_cancel();

}  // namespace velmo
