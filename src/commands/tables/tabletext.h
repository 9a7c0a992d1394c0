// What the tables share: the stub of a row, word wrap.
#pragma once
#include <string>
#include <string_view>
#include <vector>
#include "base/types.h"

namespace velmo {

// The name abbreviated to 12 columns, right-justified, a blank and the bar.
void tabstub(std::string_view name);
// Greedy at blanks; a longer word is cut. Appends to `lines`.
void wordwrap(std::string_view text, Int4 width, std::vector<std::string>& lines);
std::string commatext(std::int64_t n);                  // 1,234,567

}  // namespace velmo
