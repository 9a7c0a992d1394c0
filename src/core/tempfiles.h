// Temporary files: names, and removal at the end. They lie in a folder of the session's own, which only its user can
// enter: made when the first name is asked for, in VELMOTMP, TEMP, TMPDIR or /tmp, the first that lets it be made.
#pragma once
#include <string_view>
#include "base/types.h"

namespace velmo {

extern Int4 unlinktimeout;     // set unlinktimeout: milliseconds to wait before a delete is tried again

void tempfile_init();          // settles the session stamp
// Name number `number` of kind '_' (tempfile), 'i' (internal) and so on into `out` (pathsize bytes): directory,
// "VM", kind, four digits of the session in base 34, the number likewise, ".tmp". The file isn't made. 0, or 914 when
// no folder could be made.
Int4 tempfilename(char* out, char kind, Int4 number);
Int4 tempfile_next(char kind); // the next unused number of a kind, from 1
void tempfile_keep(std::string_view name);   // this one is not removed at shutdown
// At the end: the folder goes with all that is in it, but for a file kept. No names from here on.
void tempfile_removeall();
// Deletes a file, trying once more after unlinktimeout; false when it stays.
boolean removewithretry(const char* name);

}  // namespace velmo
