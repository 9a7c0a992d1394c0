// The order that a program puts back at its end.
#pragma once
#include <string_view>
#include "base/types.h"

namespace velmo {

// State
extern UByte orderkept;    // the present level's order is kept, and comes back at its end
// A program that promises to leave the order as it was: the present order goes into a long variable `name` (a temporary
// name; none is made without observations), the sort key's names into an object of kind 35, the name into __sortindex.
// 0 or a code, printed.
Int4 sortindex_push(std::string_view name);
// Puts the observations and the key back as far as the variables still stand: 0, or 196 (printed) when the variable is
// gone.
Int4 sortindex_pop();

}  // namespace velmo
