#include "language/by.h"
#include "core/macros.h"
#include "data/run.h"

namespace velmo {

UInt2* by;
Int4 nby;
Int4 bydepth;
bycall nextcall;

Int4 by_enter() {
    by_active = nextcall.pending;
    by_index = nextcall.pending ? nextcall.index : 0;
    by_last = nextcall.pending && nextcall.last;
    if (!nextcall.pending) return 0;
    nextcall.pending = false;
    const struct { const char* name; const std::string& value; } rows[] = {
        {"__byvars", nextcall.vars}, {"__byrc0", nextcall.options}, {"__byindex", nextcall.marker},
    };
    for (const auto& row : rows)
        if (Int4 rc = macroset(row.name, row.value)) return rc;
    return 0;
}

}  // namespace velmo
