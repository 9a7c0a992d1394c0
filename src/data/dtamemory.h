// A dataset file's variables and rows, taken into the dataset in memory.
#pragma once
#include <cstring>
#include <vector>
#include "data/dtaread.h"

namespace velmo {

// Makes the variables `keep` (ascending numbers of the file's) those of memory, which is emptied, value labels too
// unless they are to stay: tables, sort list, variable labels, characteristics, dataset label. No observations yet.
// 0, 692, 900, 902, 950, 1.
Int4 dta_takevars(dtafile& f, const std::vector<Int4>& keep, boolean keeplabels = false);
// Behind it: all rows, in large steps. 0, 692, 901, 1000, 1.
Int4 dta_takerows(dtafile& f, const std::vector<Int4>& keep);
// The same row by row, for who chooses among them: room for n observations more, then runs of bytes from a row of the
// file to one of memory; at the end dta_endrows, which tells of an order that old missing values have spoilt.
struct dtacopy { UInt4 from, to, n; };
void dta_addcopy(std::vector<dtacopy>& copies, UInt4 from, UInt4 to, UInt4 n);    // joined to one that it adjoins
std::vector<dtacopy> dta_copies(const dtafile& f, const std::vector<Int4>& keep);
inline void dta_copyrow(const std::vector<dtacopy>& copies, const UByte* from, UByte* to) {
    for (const dtacopy& c : copies) std::memcpy(to + c.to, from + c.from, c.n);
}
Int4 dta_roomfor(Int4 n);                // 0, 901
void dta_endrows(dtafile& f, const std::vector<Int4>& keep);
// Behind rows: the file's value labels, but for those that memory has. 0, 610, 692, 950, 1.
Int4 dta_takelabels(dtafile& f);

}  // namespace velmo
