// The names of commands that could be typed now, and of any list of names those near to a mistyped one.
#pragma once
#include <string>
#include <string_view>
#include <vector>
#include "base/types.h"

namespace velmo {

// State
extern char unknownword[namesize];     // the word of the last typed command that turned out to be none

// Adds the built-ins of this version, the programs in memory and the ado-files that begin so; a name may come twice.
void commandnames(std::string_view beginning, std::vector<std::string>& names);

// Of the candidates at most `most`, those that few single changes (a character more, less, another, two neighbours
// swapped: Damerau 1964) lead to, the nearest first, then by name; none more than a third of the word away, one at
// least.
std::vector<std::string> nearest(std::string_view word, const std::vector<std::string>& candidates, std::size_t most);

}  // namespace velmo
