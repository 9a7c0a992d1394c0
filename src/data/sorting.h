// Order: the comparison of observations, the sort with its defined order of ties, and the list sort that encode and
// the percentiles use. The sort permutes obsptrs alone. It isn't stable: the order of ties follows from the shuffle,
// whose generator's state (sortseed) carries on from one sort to the next, and from the quicksort below.
#pragma once
#include "data/dataset.h"

namespace velmo {

// State
extern UInt4 sortseed;     // 31 bits, 1001 until set

// Negative, 0, positive by the n variables in order; missing greatest, strings bytewise, "" first.
Int4 cmpobs(Int4 a, Int4 b, const Int4* vars, Int4 n);
boolean samegroup(Int4 a, Int4 b, const UInt2* vars, Int4 n);
// Sorts observations first..last; srt becomes the list when that is the whole dataset. 0, 1 (break: a valid order,
// srt empty), 909 (no work space).
Int4 sortdata(Int4 first, Int4 last, const Int4* vars, Int4 n);
// Sorts a list of n observation numbers by one variable, ascending.
Int4 sortlist(Int4* list, Int4 n, Int4 var);
// sort, index(): puts each observation at the position that the long variable holds, as far as that goes, then sorts by
// the n variables and, among equals, the index: nothing is left to do where they have not changed. They become the key.
// 0, 1, 909 as sortdata.
Int4 sortbyindex(Int4 var, const Int4* vars, Int4 n);

}  // namespace velmo
