#include "language/lists.h"
#include <algorithm>
#include <string_view>
#include "base/text.h"
#include "core/macros.h"
#include "core/quotes.h"

namespace velmo {

std::vector<foreachlist> foreachlists;

namespace {

std::string_view listtext(const foreachlist& f) {
    if (f.macro.empty()) return f.text;
    const char* value = macroget(f.macro);
    return value ? std::string_view(value) : std::string_view();
}

}  // namespace

boolean nextelement(foreachlist& f, std::string& item) {
    std::string_view text = listtext(f), rest = text.substr(std::min(f.at, text.size())), found;
    if (!nextitem(rest, found)) return false;
    item = found;
    f.at = text.size() - rest.size();
    return true;
}

std::string ferest() {
    if (foreachlists.empty()) return "";
    std::string_view text = listtext(foreachlists.back());
    return std::string(ltrimmed(text.substr(std::min(foreachlists.back().at, text.size()))));
}

}  // namespace velmo
