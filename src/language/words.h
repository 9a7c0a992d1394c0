// The second tokenizer: tokens of any length out of a text, with a break set given as a plain string. Blanks ahead of a
// token are skipped; a break character other than a blank is a token by itself; a quoted string is one token.
#pragma once
#include <string>
#include <string_view>
#include "core/tokenizer.h"

namespace velmo {

struct wordpiece {
    std::string_view text;     // without the quotes of a string
    std::string_view raw;      // as it stands
};

// Takes the next token off text. False when only blanks are left.
boolean nextpiece(std::string_view& text, std::string_view breaks, wordpiece& out);
// The string, plain or compound, that text begins with; without a closing quote it runs to the end.
boolean stringpiece(std::string_view text, wordpiece& out);
// Behind the parenthesis or bracket that closes the one at text[0]: quotes are passed over, ( and [ count alike. 0 when
// it isn't closed.
std::size_t matchingend(std::string_view text);

// The string at the cursor, of any length; false when none stands there.
boolean stringargument(std::string& out);
// The option parse(chars) among those parsed, at most `limit` characters; a blank without it. 0 or 198.
Int4 breakoption(std::string& breaks, Int4 limit, boolean& found);
// Replaces the locals 1, 2, ... of the level by the tokens of text.
Int4 positionals(std::string_view text, std::string_view breaks);

}  // namespace velmo
