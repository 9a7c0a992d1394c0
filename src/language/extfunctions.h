// Extended macro functions: what stands behind the colon of `:text'. Rows are extfunctions.def.
#pragma once
#include <string>
#include "base/types.h"

namespace velmo {

// A whole number from the cursor within lo..hi; 198 (printed).
Int4 wholetoken(Int4& value, Int4 lo, Int4 hi);
// The extended function whose text is at the cursor (behind the colon): its result in `out`. 0 or a code (printed).
// Rows are extfunctions.def.
Int4 extfunc(std::string& out);

// A row of the extended functions; the table is extfunctions.def, joined in session/tables.cpp.
struct extfunction { const char* word; Int4 min; Int4 (*handler)(std::string& out); };
extern const extfunction* const extfunctions;
extern const Int4 nextfunctions;

}  // namespace velmo
