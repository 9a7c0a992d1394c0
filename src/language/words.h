// What the commands that cut texts into tokens share. The tokens are of any length (core/quotes.h, nextpiece).
#pragma once
#include <string>
#include <string_view>
#include "core/tokenizer.h"

namespace velmo {

// The string at the cursor, of any length; false when none stands there.
boolean stringargument(std::string& out);
// The option parse(chars) among those parsed, at most `limit` characters; a blank without it. 0 or 198.
Int4 breakoption(std::string& breaks, Int4 limit, boolean& found);
// Replaces the locals 1, 2, ... of the level by the tokens of text.
Int4 positionals(std::string_view text, std::string_view breaks);

}  // namespace velmo
