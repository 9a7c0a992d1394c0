// The scalars that users name: numbers, and strings, which a family has not. A string is kept behind the missing value,
// so that its object is longer than a number's.
#pragma once
#include <string>
#include <string_view>
#include <vector>
#include "base/types.h"

namespace velmo {

Int4 scalarset(std::string_view name, Double value);           // 0 or 950 (printed)
Int4 scalarsettext(std::string_view name, std::string_view text);
enum scalarkind : Int4 { scalar_none, scalar_number, scalar_text };
scalarkind scalarget(std::string_view name, Double& value, std::string& text);
boolean scalardrop(std::string_view name);
std::vector<std::string> scalarnames();                        // in the order made

}  // namespace velmo
