// Quoted text: "..." up to the next quote, or `"..."' in which pairs nest, and inner pairs belong to the text. One
// reader finds where it ends, one unquoter takes the quotes off. Only the tokenizer, whose tokens are cut at their
// length, and the markup engine have their own.
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
// The next item of a list, taken off its front: a quoted text, without its quotes, or a run up to a blank (`atquotes`:
// or up to a quoted text). False when only blanks are left.
boolean nextitem(std::string_view& list, std::string_view& item, boolean atquotes = false);
// The next token of a text, taken off its front, blanks ahead of it too: a quoted text, or a run up to a character of
// `breaks`, or such a character. False when only blanks are left.
boolean nextpiece(std::string_view& text, std::string_view breaks, quoted& out);
// Behind the quoted text that begins at text[i], or behind that character; a quote without its end takes all.
std::size_t behindquote(std::string_view text, std::size_t i);
// Behind the parenthesis or bracket that closes the one at text[0]: quotes are passed over, ( and [ count alike. 0 when
// it isn't closed.
std::size_t matchingend(std::string_view text);
// A text without blanks around it and, if it is quoted as a whole, without its quotes.
std::string_view unquoted(std::string_view text);
// The definition of a macro takes one pair of quotes off the ends, whatever stands between: false when the quote at the
// beginning has none at the end.
boolean takeouterquotes(std::string_view& text);
// With a backslash ahead of $, backquote and backslash: the expansion of macros makes it the text again.
std::string escaped(std::string_view text);

}  // namespace velmo
