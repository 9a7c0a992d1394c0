// The dataset's shape: types changed, variables moved and dropped, observations dropped and added.
#pragma once
#include "data/dataset.h"

namespace velmo {

// Ends a change of type that recast began: the new variable, filled, gets the old one's value label, format and place.
// 0, 901, 902, 903.
Int4 swapin(Int4 var);
// The whole change: recast, copy of observations 1..nobs, swapin; the variable keeps its number. 0, 901, 903, not
// printed.
Int4 changetype(Int4 var, UByte newtype);
// Moves a variable to position `to`; tables and srt follow; vars (n entries, may be null) is renumbered too.
Int4 movevar(Int4 from, Int4 to, Int4* vars, Int4 n);
// Drops the variables whose mark (nvar bytes) is set, with all records keyed by them; (e) goes with the last of the
// others, and with no variable left the dataset is emptied. 901 without a scratch row.
Int4 dropvars(const UByte* marks);
// Drops variables that hold the state of a command or a level: the data don't count as changed by it, the observations
// stay even without a variable left, and look-up follows. A failure leaves them.
void dropworkvars(const UByte* marks);
void dropworkvar(Int4 var);
// Takes back the variables beyond the first `count`: what a command had appended and did not finish. They have no
// records of their own yet.
void shrinkvars(Int4 count);
// Keeps the observations whose flag (nobs bytes) is 0, in their order, moving pointers only.
void dropobs(const UByte* flags, Int4 kept);

// Raises nobs to n >= nobs, new cells missing or ""; 0, 901 (not printed). (e) is 0 in new observations. With new
// observations the data are marked changed and srt is emptied.
Int4 growobs(Int4 n);
Int4 obsroom(Int4 n);                       // addobsroom, with 901 for whatever refused it
Int4 nextobsroom();                         // so that observation nobs + 1 can be addressed; 0 or 901, printed
Int4 needscratchrow();                     // makes sure that nobs < maxobs; 0 or 901

}  // namespace velmo
