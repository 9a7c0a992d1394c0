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

boolean stringpiece(std::string_view text, wordpiece& out) {
    quoted q;
    if (!readquoted(text, q)) return false;
    out = {q.content, text.substr(0, q.length)};
    return true;
}

boolean nextpiece(std::string_view& text, std::string_view breaks, wordpiece& out) {
    text = ltrimmed(text);
    if (text.empty()) return false;
    if (!stringpiece(text, out)) {
        std::size_t n = std::max<std::size_t>(std::min(text.find_first_of(breaks), text.size()), 1);
        out.text = out.raw = text.substr(0, n);
    }
    text.remove_prefix(out.raw.size());
    return true;
}

std::size_t matchingend(std::string_view text) {
    Int4 depth = 0;
    wordpiece string;
    for (std::size_t i = 0; i < text.size(); i++) {
        if (stringpiece(text.substr(i), string)) {
            i += string.raw.size() - 1;
            continue;
        }
        depth += text[i] == '(' || text[i] == '[';
        depth -= text[i] == ')' || text[i] == ']';
        if (depth == 0) return i + 1;
    }
    return 0;
}

boolean stringargument(std::string& out) {
    while (*tokpos == ' ') tokpos++;
    wordpiece string;
    if (!stringpiece(tokpos, string)) return false;
    out = string.text;
    settokpos(tokpos + string.raw.size());
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
    wordpiece piece;
    for (Int4 i = 1; nextpiece(text, breaks, piece); i++)
        if (Int4 rc = macroput("_" + std::to_string(i), piece.text)) return rc;
    return 0;
}

}  // namespace velmo
