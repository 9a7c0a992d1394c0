// The run: which observations a command works on, and the state of a by prefix. Set by the parser and the group
// loop; read by everybody who loops over observations.
#pragma once
#include "base/types.h"

namespace velmo {

// State
extern Int4 firstobs, lastobs;          // the run: the `in` range or the whole data
extern Int4 groupfirst, grouplast;      // the present by-group; without by the run's data, 1..nobs
extern UByte bymode;                    // 0 no by, 1 first group, 2 a later one
extern UByte bylastgroup;               // the last group runs
extern UByte by_active;                 // a by prefix is in force, for _by()
extern Int4 by_index;                   // _byindex()
extern UByte by_last;                   // _bylastcall()

inline constexpr Int4 nolimit = 2147483646;    // lastobs of commands that add observations

}  // namespace velmo
