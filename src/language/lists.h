// The lists of foreach loops that run. They are read as the loops go round, and what is left of the innermost is what
// `ferest()' gives.
#pragma once
#include <string>
#include <vector>
#include "base/types.h"

namespace velmo {

// The text, or the macro that holds it, and how far it has been read.
struct foreachlist {
    std::string text, macro;
    std::size_t at = 0;
};

// State
extern std::vector<foreachlist> foreachlists;      // innermost last
inline constexpr std::size_t maxlists = 9998;

// The next element of a list; false behind the last.
boolean nextelement(foreachlist& f, std::string& item);
// The unread rest of the innermost list.
std::string ferest();

}  // namespace velmo
