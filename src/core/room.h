// Room in the block: what rows and objects ask of each other, how much there can be, and whether all of it still holds.
#pragma once
#include "core/rectangle.h"

namespace velmo {

// All of these may close the holes of the object store: addresses of rows and of objects are stale after them.
// Codes are returned, not printed: 901 rows, 902 width, 1010 lrecl past its limit, 9994..9999 internal (from
// 9000 on: didn't fit, a smaller request may). On success obsptrs reaches nobs + n (and one scratch row).
Int4 addobsroom(Int4 n);
Int4 addwidthroom(Int4 n);
// For a reader that has made its variables and has no rows yet: rows only as long as the variables need and a fifth
// as much again (24 bytes at least), so that a pass over a narrow dataset moves fewer lines of cache. Nothing happens
// when rows are shorter already, or with observations.
void tightenrows();
// Shrinks lrecl to give the object store n bytes more: 901, 902, 9994.
Int4 freedyn(std::uint64_t n);
// The objects are about to take `need` bytes more: lowers maxobs, or divides the block anew. 0, 901, 902, 9999.
Int4 yieldroom(std::uint64_t need);

struct sizes { std::uint64_t block, data, dynamic; Int4 width; };
sizes getsizes();            // used block, data span (rows and pointers), dynamic size, width
Int4 widestrow();            // widest usable lrecl with the present observations
Int4 mostobs();              // most observations at the present width
Int4 mostvars();             // min(maxvar, widestrow())

// debug obstest: 0 with "(obsptrs checked)\n" printed, or 9998, 9997.
Int4 obstest();
// The dump of runs of obsptrs ("SHOWPOINTERS ...").
void showpointers();

// Walks arena, pointers and objects and checks every rule they promise: 0, or 9997, 9998, 9999. With VELMO_STRESS
// the turn calls it after every command.
Int4 memory_check();

}  // namespace velmo
