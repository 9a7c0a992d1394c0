#include "commands/tables/tabletext.h"
#include <algorithm>
#include "base/columns.h"
#include "base/state.h"
#include "base/text.h"
#include "output/formats.h"
#include "output/print.h"

namespace velmo {

void tabstub(std::string_view name) {
    prttext(rightjustified(shownname(name, 12), 12));
    prttext(" ");
    prtmarkup("{c |}");
}

void wordwrap(std::string_view text, Int4 width, std::vector<std::string>& lines) {
    std::size_t limit;
    for (text = trimmed(text); (limit = bytesin(text, width)) < text.size(); text = ltrimmed(text)) {
        std::size_t cut = text.rfind(' ', limit);
        if (cut == std::string_view::npos || cut == 0) cut = std::max<std::size_t>(limit, 1);
        lines.emplace_back(rtrimmed(text.substr(0, cut)));
        text.remove_prefix(cut);
    }
    if (!text.empty()) lines.emplace_back(text);
}

std::string commatext(std::int64_t n) {
    std::string digits = std::to_string(n);
    for (Int4 at = Int4(digits.size()) - 3; at > (n < 0 ? 1 : 0); at -= 3) digits.insert(std::size_t(at), 1, ',');
    return digits;
}

}  // namespace velmo
