// The log files that a stream copies its lines to.
#pragma once
#include "base/types.h"

namespace velmo {

struct vstream;    // vtmlinternal.h

struct vlogset { Int4 n; Int4 file[5]; UByte alive[5]; };     // file: descriptors of platform.h

// Log sets. how: 1 add, 2 remove (written out first), 3 re-add (removed without writing out, then added). True
// when refused: the set is full, the file isn't there, or the stream takes no logs.
boolean vstream_lograw(vstream* s, Int4 file, Int4 how);
boolean vstream_logline(vstream* s, Int4 file, Int4 how);

}  // namespace velmo
