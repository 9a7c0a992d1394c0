// Temporary files: names, and removal at the end. The directory is VELMOTMP, else TEMP, else the current one.
#pragma once
#include <string_view>
#include "base/types.h"

namespace velmo {

extern Int4 unlinktimeout;     // set unlinktimeout: milliseconds to wait before a delete is tried again

void tempfile_init();          // settles directory and session stamp
// Name number `number` of kind '_' (tempfile), 'i' (internal) and so on into `out` (pathsize bytes): directory,
// "VM", kind, four digits of the session in base 34, the number likewise, ".tmp". 0, or 914 when the directory can't
// be written to.
Int4 tempfilename(char* out, char kind, Int4 number);
Int4 tempfile_next(char kind); // the next unused number of a kind, from 1
void tempfile_keep(std::string_view name);   // this one is not removed at shutdown
void tempfile_removeall();     // shutdown: the files of kind '_' and 'i' that this session named
// Deletes a file, trying once more after unlinktimeout; false when it stays.
boolean removewithretry(const char* name);

}  // namespace velmo
