// A line parsed by the descriptions of its program (syntaxrules.h).
#pragma once
#include <string>
#include <string_view>
#include "language/syntaxrules.h"

namespace velmo {

// State
extern UByte syntaxmode;       // 1 during syntax, 0 during a plain parse

// The names of the list just parsed, checked against the rules. 0, 102, 103 or 109 (printed).
Int4 listnames(const listrules& rules, std::string& names);
// Reads and clears the level's descriptions, parses the user's text, and sets the result locals. 0 or a code (printed).
Int4 parsedescribed(std::string_view usertext);

}  // namespace velmo
