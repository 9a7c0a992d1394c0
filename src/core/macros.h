// Macros: named strings in the object store. A global has its plain name and type obj_global; a local's name begins
// with _ and its type is the present macrolevel, so the end of a level discards its locals in one call.
#pragma once
#include <string>
#include <string_view>
#include "base/state.h"

namespace velmo {

// State
extern Int4 macrolevel;                // 20000 at the console, one more for each level

// The longest stored name that references read under the present version: 32 characters, 8 below version 7.
inline Int4 macronamelimit() { return version < 700 ? 8 : namelen; }
// The stored name of the macro that a command is told to set: a local's with its _. Below version 7 it is cut, since
// references are; from 7 on a name too long is for validname() to refuse.
std::string macroname(std::string_view name, boolean local);
// The value, or null when the macro isn't defined; valid until the next store call.
const char* macroget(std::string_view name);
// The same with its length; empty when it isn't defined.
std::string_view macrotext(std::string_view name);
// Replaces the macro, or deletes it when `value` is empty. Values are cut to macrolen - 1. 0 or 950.
Int4 macroset(std::string_view name, std::string_view value);
// The same, but an empty value is kept: the numbering of positional arguments has no hole.
Int4 macroput(std::string_view name, std::string_view value);
void macroclear(std::string_view name);

}  // namespace velmo
