// by and bysort: a command run once for each group of observations that agree on the by-variables. A built-in runs in
// the group loop: the run's limits are the group's, the line is parsed in the first group only (stdparse keeps what it
// found). A program is called once (onecall) or once a group (recall); then a marker variable, under a temporary name,
// holds the number of each observation's group, because the program may sort.
//
// Global macros of the n-th nested by over a program: !BYn the flag of rc0 and the by-variables, !BYcn its line, !BYmn
// the marker's name, !BYsn the names of the sort key at the start.
#pragma once
#include <string>
#include "base/types.h"

namespace velmo {

inline constexpr Int4 maxbydepth = 100;

// What a by prefix tells the program that it is about to call: taken at the program's entry, by that call only.
struct bycall {
    boolean pending = false;
    Int4 index = 0;                 // group, from 1; 0 for a program that handles the groups itself
    boolean last = false;
    std::string vars, options, marker;
};
// State
extern UInt2* by;                   // variables of the prefix, maxvar + 1 at most
extern Int4 nby;                    // their number
extern Int4 bydepth;                // nesting over programs, maxbydepth at most
extern bycall nextcall;

// Makes the pending call's facts the session's (_by(), _byindex(), _bylastcall(), the locals _byvars, _byrc0, _byindex)
// or, without one, says that no by is in force. Called inside the new level. 0 or a code.
Int4 by_enter();

}  // namespace velmo
