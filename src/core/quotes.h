// Quoted text: "..." up to the next quote, or `"..."' in which pairs nest, and inner pairs belong to the text. One
// reader finds where it ends, one unquoter takes the quotes off.
#pragma once
#include <string>
#include <string_view>
#include "base/types.h"

namespace velmo {

struct quoted {
    std::string_view content;
    std::size_t length = 0;       // bytes with the quotes
    boolean closed = false;       // false: it ends with the text, lacking its closing quote
};

// Reads the quoted text that `text` begins with; false when none begins there.
boolean readquoted(std::string_view text, quoted& out);
// The content of a text that is quoted as a whole, any other text as it is. Blanks around it don't count.
std::string_view unquoted(std::string_view text);
// With a backslash ahead of $, backquote and backslash: the expansion of macros makes it the text again.
std::string escaped(std::string_view text);

}  // namespace velmo
