// Characteristics: named texts attached to a variable or to _dta; objects of kind 18 keyed by the owner, each a
// 33-byte name and the text with its zero.
#pragma once
#include <string>
#include <string_view>
#include <vector>
#include "base/types.h"

namespace velmo {

inline constexpr Int4 maxchartext = 67784;

// The text, or "" when there is none.
std::string char_get(std::string_view owner, std::string_view name);
boolean char_exists(std::string_view owner, std::string_view name);
// Sets, or with an empty text removes; longer texts are cut. 0 or 950.
Int4 char_set(std::string_view owner, std::string_view name, std::string_view text);
// The same for one that is known not to be there, with nothing looked for; the text isn't empty.
Int4 char_add(std::string_view owner, std::string_view name, std::string_view text);
// Names of all characteristics of an owner, in the order in which they were made.
std::vector<std::string> char_names(std::string_view owner);
// All characteristics, in the order in which they were made; good until the next store call.
struct charview { std::string_view owner, name, text; };
std::vector<charview> char_views();
// Renames the owner of all, or removes all.
Int4 char_rename(std::string_view owner, std::string_view newowner);
void char_dropall(std::string_view owner);

}  // namespace velmo
