// Estimates put by: all objects of e() under a name that the user gave, and a record of what belongs to them elsewhere
// (the kind of estimates, the marks of their sample), whose bytes are its owner's. `estimates hold` and `unhold`.
#pragma once
#include <string>
#include <string_view>
#include <vector>
#include "base/types.h"

namespace velmo {

// Moves e() there, or copies it. 0; 110 when the name is taken, 1000 when there are too many, 950: all printed, nothing
// changed.
Int4 held_put(std::string_view name, std::string_view record, boolean copy);
// Puts them back in place of e(), which is lost. 0 or 111 (printed).
Int4 held_take(std::string_view name, std::string& record);
boolean held_record(std::string_view name, std::string& record);        // false when there is none
boolean held_drop(std::string_view name);
std::vector<std::string> held_names();

}  // namespace velmo
