// The argument readers that the handlers of settings share.
#pragma once
#include <string_view>
#include "base/types.h"

namespace velmo {

Int4 nothingelse();        // 0 at the end of the line, else 198 (printed)
// A whole number within bounds, with boundscheck's message and 198 when it is not; other text is a plain 198.
Int4 readbounded(std::string_view name, Int4 lo, Int4 hi, Int4& value);
// Any finite number up to the end of the line, or 198.
Int4 readreal(Double& value);
// The end of the line or `, permanent` (perm at least).
Int4 permanentoption(boolean& permanent);
// Stores what a setting has put among the preferences: "({cmd:set NAME} preference recorded)\n", or 603.
Int4 recorded(const char* name);

}  // namespace velmo
