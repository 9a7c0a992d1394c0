// The block: one mapped run of bytes that owns all long-lived data, and the fixed tables sized by maxvar.
//
//   low                                                                                        high
//   | obsptrs: tmaxobs x UInt4 | pad to 16 | rectangle: maxobs rows of lrecl | free | objects, newest lowest |
//   ^ blockstart                           ^ database                               ^ dynstart         blockend ^
//
// The rectangle is rectangle.h's, the objects are objects.h's; they meet in the free space. Sizes are 64-bit, row
// counts Int4. No address into the block survives setmemory, setmaxvar, or (objects) a store call.
#pragma once
#include "base/types.h"

namespace velmo {

struct tsvar;    // data/timeseries.h

// State: the block
extern UByte* blockstart;          // start of obsptrs
extern UByte* blockend;            // end of the block, lowered to whole rows (see memory_start)
extern UByte* dynstart;            // lowest byte of the object store; equals blockend when it is empty
extern std::uint64_t memory;       // the setting, bytes

// State: the fixed tables, maxvar entries each unless said (meaning: data/dataset.h)
extern char (*varlist)[namesize];  // names
extern UByte* typ;                 // storage types
extern UInt4* mapi;                // byte offsets in the row
extern char (*fmt)[fmtsize];       // display formats
extern char (*lbl)[namesize];      // names of attached value labels
extern UInt2* srt;                 // sort key, zero-terminated, maxvar + 1
extern Int4* vl_vr;                // the running command's variables, maxvar + 1
extern tsvar* vl_rcp;              // their time-series operators, maxvar + 1
extern UInt2* by;                  // variables of the by prefix, maxvar + 1
extern char* macexp;               // macro expansion buffer, conslen
extern char* cmdbuf;               // the command line being worked on, conslen
extern char* reviewring;           // conslen + 1

struct fixedtable { void* p; std::uint64_t size; char label[9]; };
extern fixedtable fixedtables[20]; // in order of allocation, for debug
extern Int4 nfixedtables;

// Allocates the fixed tables and the block at start-up by `memory`, `maxvar`, `matsize`; falls back to the
// defaults when refused and then sets memory_fellback. 0, or 909 when even the defaults can't be had.
Int4 memory_start();
void memory_stop();
extern UByte memory_fellback;      // the start used the defaults: what was asked stands in the three below
extern std::uint64_t asked_memory;
extern Int4 asked_maxvar, asked_matsize;

// Change a size. The dataset must be empty (4 otherwise, printed by the caller of the command). Objects are kept.
// Codes, not printed: 910 too small, 912 too large, 909 refused by the system, 914 no temporary file, 691 I/O.
Int4 setmemory(std::uint64_t bytes);
Int4 setmaxvar(Int4 n);            // 2048 to 32767, bounds checked by the caller
Int4 setmatsize(Int4 n);           // 10 to 11000, bounds checked by the caller

// VELMO_STRESS: maps the block at a new address and unmaps the old one. Called by every store call in that build;
// does nothing in others.
void memory_stress();

}  // namespace velmo
