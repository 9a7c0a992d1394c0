// The block: one mapped run of bytes that owns all long-lived data; and the fixed tables, sized by maxvar.
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

// State: the block
extern UByte* blockstart;          // start of obsptrs
extern UByte* blockend;            // end of the block, lowered to whole rows (see memory_start)
extern UByte* dynstart;            // lowest byte of the object store; equals blockend when it is empty
extern std::uint64_t memory;       // the setting, bytes

// A fixed table: arrays that are sized by maxvar lie outside the block, each a pointer of its owner's. The rows are
// session/fixedtables.def, in the order of allocation.
struct fixedrow {
    const char* label;                 // for debug
    void (*place)(void* p);            // gives the owner its table
    std::uint64_t each, more;          // bytes for each of maxvar variables, and behind them
    boolean text;                      // made once for the largest maxvar: it stays where it is
};
extern const fixedrow* const fixedrows;
extern const Int4 nfixedrows;

// State: the tables as they are allocated
struct fixedtable { void* p; std::uint64_t size; };
extern fixedtable fixedtables[20];
extern Int4 nfixedtables;              // nfixedrows, or 0 before memory_start

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
