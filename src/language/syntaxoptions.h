// The options of a described line.
#pragma once
#include <string>
#include <utility>
#include <vector>
#include "language/syntaxrules.h"

namespace velmo {

using assignments = std::vector<std::pair<std::string, std::string>>;    // stored name, value ("" deletes)

// Assigns the options that were typed by their rules. 0 or a code (printed).
Int4 takeoptions(const std::vector<optionrule>& rules, boolean catchall, assignments& out);

}  // namespace velmo
