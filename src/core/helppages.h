// Where help on a name stands: NAME.hlp along the ado-path, or an entry of a page that holds many (functions, settings,
// return codes). A page that begins with the marker line {vtml} is markup, any other is old help text. Only markup has
// entries: each begins behind a line `{* entry: NAME, NAME}{...}` and ends at the next one or at
// `{* end}{...}`.
//
// To add one: a page in an ado folder is found by its name. A command that shares another's page is a row of `shared`,
// a page with entries one of `entrypages`, both in helppages.cpp.
#pragma once
#include <string>
#include <string_view>
#include <vector>
#include "base/types.h"

namespace velmo {

// State
extern UByte loghelp;      // the setting: pages that are shown go to logs, too

struct helpplace {
    std::string page;      // the page's name, without its suffix
    std::string path;      // its file
    std::string entry;     // the entry that is meant; empty: the whole page
};

// Finds help on a page, a command or an abbreviation of one, a function `log()`, a setting, `r(111)`, another entry; of
// several words the first when the whole is nothing. No name at all is the contents. False when there is none.
boolean findhelp(std::string_view name, helpplace& place);
// All names that help can be had on.
std::vector<std::string> helpnames();
// The pages that have the word, in small letters, among their keywords.
std::vector<std::string> helpabout(std::string_view word);

// The text of a place into `text`: 0, or the code of a file that can't be read, printed.
Int4 helptext(const helpplace& place, std::string& text);
// Whether it is markup.
boolean ismarkup(std::string_view text);

}  // namespace velmo
