// Stored results: the r() store. A built-in command of r-class clears it once its arguments have parsed, and posts
// its scalars and macros one at a time. The first 20 scalars lie in a fixed table, later ones are objects.
#pragma once
#include <string>
#include <string_view>
#include <vector>
#include "base/types.h"

namespace velmo {

// State
extern Double oldresults[21];      // _result(0..20)

void rclear();
void rstore(std::string_view name, Double value);
void rmacro(std::string_view name, std::string_view text);
boolean rscalar(std::string_view name, Double& value);
boolean rmacrotext(std::string_view name, std::string& text);
std::vector<std::string> rscalarnames();     // in the order posted
std::vector<std::string> rmacronames();

}  // namespace velmo
