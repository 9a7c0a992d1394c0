// The rectangle: rows of anonymous bytes in the block, and the table that holds their order apart from their
// place. Logical observation i (from 1) is physical row obsptrs[i-1]; order changes move pointers only, bytes move
// only when a row becomes wider or the block is divided anew. What the bytes mean is the dataset's business.
//
// obsptrs is a permutation: entries below maxobs lie in [0, maxobs), the others in [maxobs, tmaxobs]. Entries from
// ptrmark on are the identity without having been written: nobody reads an entry at or above ptrmark.
#pragma once
#include "base/state.h"
#include "core/memory.h"

namespace velmo {

// State
extern UInt4* obsptrs;      // at blockstart
extern UByte* database;     // row 0, 16-byte aligned
extern Int4 nobs;           // observations
extern Int4 maxobs;         // rows that fit below the objects at the present lrecl
extern Int4 tmaxobs;        // length of obsptrs: rows that would fit in the whole block
extern Int4 lrecl;          // record length in bytes, even, >= width
extern Int4 width;       // used length of a row (`width` to users)
extern Int4 mvar;           // variables that this partition allows, min(lrecl, maxvar)
extern Int4 ptrmark;        // entries of obsptrs that have been written: min(nobs + 1, maxobs) or more, maxobs at most
extern Int4 n_repart, n_shift;
inline Int4 maxlrecl() { return maxwidth(); }    // upper limit of lrecl

// Lays out an empty rectangle in the block with lrecl 200. 0, 910 (below 1024 bytes or 20 rows).
Int4 rectangle_start();
// Divides the block for an empty dataset anew, around the objects: 0, 901.
Int4 rectangle_relayout(Int4 length);
// Writes the identity up to entry n - 1, so that observations 1..n can be addressed; n is cut to maxobs.
void touchptrs(Int4 n);
// Resets the order to the identity (an empty dataset).
void resetptrs();

inline UByte* rowplace(Int4 row) { return database + std::size_t(row) * std::size_t(lrecl); }
inline UByte* rowptr(Int4 obs) { return database + std::size_t(obsptrs[obs - 1]) * std::size_t(lrecl); }
inline void swapobs(Int4 a, Int4 b) {
    UInt4 p = obsptrs[a - 1];
    obsptrs[a - 1] = obsptrs[b - 1];
    obsptrs[b - 1] = p;
}
// Copies the first n bytes of a row out or in.
void getrow(void* out, Int4 obs, Int4 n);
void putrow(const void* in, Int4 obs, Int4 n);

// Divides the block for rows longer by dwidth bytes and for dobs more of them. It may close the holes of the object
// store; codes as in room.h, where all other requests for room are.
Int4 repart(Int4 dwidth, Int4 dobs);

// Marks what is unused between the rows and the objects and behind the written pointers (core/guard.h).
void guardgap();

}  // namespace velmo
