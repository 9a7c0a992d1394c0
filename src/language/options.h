// The options of a command: what stands behind the comma, asked for one by one by name.
#pragma once
#include <set>
#include <string>
#include <string_view>
#include <vector>
#include "base/types.h"

namespace velmo {

// State
extern Int4 confidencelevel;      // set level: what level() is without the option

// Options alone, from a comma at the cursor or the end of the line.
Int4 parseoptions();

// Each of these marks what it finds as consumed. An option with an argument is another one than the bare word.
boolean getopt_flag(const char* name, Int4 min);
boolean getopt_noflag(const char* name, Int4 min, boolean otherwise);    // name: true, noname: false
// Numbers between commas or blanks: up to `limit` into out, their count in n (0: no such option). 198 when something
// else stands there or there are too many; `.` is missing where allowed.
Int4 getopt_num(const char* name, Int4 min, Double* out, Int4 limit, Int4& n, boolean allowmissing = false);
Int4 getopt_int(const char* name, Int4 min, Int4* out, Int4 limit, Int4& n);
// The text between the parentheses, trimmed, quotes around the whole removed; found is false without the option.
Int4 getopt_str(const char* name, Int4 min, std::string& text, boolean& found);
Int4 getopt_words(const char* name, Int4 min, std::vector<std::string>& words, Int4 limit, boolean& found);
Int4 getopt_vars(const char* name, Int4 min, std::vector<Int4>& vars, boolean& found);
Int4 getopt_level(Int4 min, Int4& level);      // level(#), 10 to 99, default the setting
// The options as they were typed, for a parser that knows its options only at run time. The texts point into the line.
struct typedoption { std::string_view word, argument, text; boolean hasargument; };
std::vector<typedoption> typedoptions();
// Under `set debug on` all options that commands ask for are noted, as "command option fewest-characters", with "()"
// for one that has an argument: for checks of what is written about them.
const std::set<std::string>& optionsasked();
void getopt_again();              // no option is consumed: the same line is obeyed for another group
// Reports the first option not consumed: "x invalid" or "x(...) invalid", 198.
Int4 getopt_done();

}  // namespace velmo
