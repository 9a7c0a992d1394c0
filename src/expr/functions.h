// The function table: one row a function (functions.def) with its argument count, argument and result types, missing
// rule and body. Names that need compile logic of their own are rows of a second table in compilefunctions.cpp.
#pragma once
#include <string_view>
#include "base/types.h"

namespace velmo {

// True when a function of that exact name exists.
boolean isfunction(std::string_view name);

}  // namespace velmo
