// Programs defined: bodies read from the source of lines and stored.
#pragma once
#include <string_view>
#include "base/types.h"

namespace velmo {

inline constexpr Int4 maxprogramlines = 3501, maxprogramtext = 135600;

struct programoptions { UByte progclass, byable, sortpreserve; };
// Reads a body through nextline(0) up to `end` (or, with braces, until they balance, the first line being cmdbuf) and
// stores it under name and home. 0, 1, 612, 1000, 950.
Int4 programdefine(std::string_view name, std::string_view home, const programoptions& options, boolean braces);

}  // namespace velmo
