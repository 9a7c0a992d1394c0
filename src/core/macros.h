// Macros: named strings in the object store. A global has its plain name and type obj_global; a local's name begins
// with _ and its type is the present macrolevel, so the end of a level discards its locals in one call.
#pragma once
#include <string_view>
#include "base/types.h"

namespace velmo {

// State
extern Int4 macrolevel;                // 20000 at the console, one more for each level

// The value, or null when the macro isn't defined; valid until the next store call.
const char* macroget(std::string_view name);
// The same with its length; empty when it isn't defined.
std::string_view macrotext(std::string_view name);
// Replaces the macro, or deletes it when `value` is empty. Values are cut to macrolen - 1. 0 or 950.
Int4 macroset(std::string_view name, std::string_view value);
// A positional argument (_1, _2, ...), which keeps an empty value, so that the numbering has no hole. 0 or 950.
Int4 argumentset(Int4 number, std::string_view value);
void macroclear(std::string_view name);

}  // namespace velmo
