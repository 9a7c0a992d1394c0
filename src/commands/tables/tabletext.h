// What the tables share: text in the text style, numbers in the result style, the stub of a row, word wrap.
#pragma once
#include <string>
#include <string_view>
#include <vector>
#include "base/types.h"

namespace velmo {

void tabtext(std::string_view text);                    // labels: braces show
void tabmarkup(std::string_view vtml);                  // rules and separators
void tabnumber(const char* fmt, Double value);          // values
void tabresult(std::string_view text);                  // values that are texts
// The name abbreviated to 12 columns, right-justified, a blank and the bar.
void tabstub(std::string_view name);
// Greedy at blanks; a longer word is cut. Appends to `lines`.
void wordwrap(std::string_view text, Int4 width, std::vector<std::string>& lines);
std::string commatext(std::int64_t n);                  // 1,234,567

}  // namespace velmo
