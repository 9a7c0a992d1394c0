#include "language/words.h"
#include <algorithm>
#include <vector>
#include "base/text.h"
#include "core/macros.h"
#include "core/objects.h"
#include "core/quotes.h"
#include "language/options.h"
#include "output/errors.h"

namespace velmo {

boolean stringargument(std::string& out) {
    while (*tokpos == ' ') tokpos++;
    quoted string;
    if (!readquoted(tokpos, string)) return false;
    out = string.content;
    settokpos(tokpos + string.length);
    return true;
}

Int4 breakoption(std::string& breaks, Int4 limit, boolean& found) {
    if (Int4 rc = getopt_str("parse", 1, breaks, found)) return rc;
    if (Int4(breaks.size()) > limit) return error(198);
    if (breaks.empty()) breaks = " ";
    return 0;
}

namespace {

// A positional local: _1, _2 and so on, not the argument text _0.
boolean ispositional(std::string_view name) {
    return name.size() > 1 && name[0] == '_' && name != "_0" && std::all_of(name.begin() + 1, name.end(), isdigit);
}

void clearpositionals() {
    std::vector<std::string> names;
    char name[36];
    for (object* o = objnext(nullptr, name, macrolevel); o; o = objnext(o, name, macrolevel))
        if (ispositional(name)) names.push_back(name);
    for (const std::string& n : names) macroclear(n);
}

}  // namespace

Int4 positionals(std::string_view text, std::string_view breaks) {
    clearpositionals();
    quoted piece;
    for (Int4 i = 1; nextpiece(text, breaks, piece); i++)
        if (Int4 rc = macroput("_" + std::to_string(i), piece.content)) return rc;
    return 0;
}

}  // namespace velmo
