// Keyword tables: all subcommands, options and settings' words are rows of word, minimum, value.
#pragma once
#include <span>
#include <string_view>
#include "base/types.h"

namespace velmo {

struct keyword { const char* word; Int4 min; Int4 value; };      // min 0: the whole word

// The value of the first row that `word` abbreviates, or -1.
Int4 lookup(std::span<const keyword> table, std::string_view word);

}  // namespace velmo
