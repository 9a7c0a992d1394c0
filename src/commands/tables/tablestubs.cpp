#include "commands/tables/tablestubs.h"
#include <algorithm>
#include "base/columns.h"
#include "base/text.h"
#include "commands/tables/tabletext.h"
#include "data/cells.h"
#include "output/formats.h"
#include "output/print.h"

namespace velmo {

std::string variabletitle(Int4 var) {
    std::string label = getvarlabel(varlist[var - 1]);
    return label.empty() ? varlist[var - 1] : label;
}

std::string fitted(std::string_view text, Int4 width) {
    return rightjustified(text.substr(0, bytesin(text, width)), width);
}

std::string centred(std::string_view text, Int4 width) {
    return std::string(std::size_t(std::max(0, (width - textcolumns(text) - 1) / 2)), ' ') + std::string(text);
}


shownvalues::shownvalues(Int4 variable, boolean labels, const char* usual) : var(variable), text(isstring(variable)) {
    if (text) return;
    cutformat(fmt[var - 1], usual, format);
    std::string_view name = fieldtext(lbl[var - 1], namesize);
    if (labels && !name.empty()) vl_load(name, label);
}

const char* shownvalues::labelat(Int4 obs) const {
    return text || !label.exists ? nullptr : label.find(getobs(var, obs));
}

std::string shownvalues::at(Int4 obs) const {
    if (text) return std::string(strcell(var, obs));
    if (const char* found = labelat(obs)) return found;
    Int4 n = fmtnum(format, getobs(var, obs));
    return std::string(trimmed({dbuf, std::size_t(n)}));
}

Int4 shownvalues::width() const {
    if (text) return typ[var - 1];
    Int4 widest = 0;
    for (Int4 at : label.offsets) widest = std::max(widest, textcolumns(&label.texts[std::size_t(at)]));
    return widest;
}

Int4 tableheading(std::string_view left, Int4 width, std::string_view above, Int4 columns) {
    std::vector<std::string> lefts, rights;
    wordwrap(left, width, lefts);
    if (columns) wordwrap(above, columns - 1, rights);
    if (lefts.empty()) lefts.emplace_back();
    std::size_t lines = std::max(lefts.size(), rights.size() + 1);
    for (std::size_t i = 0; i < lines; i++) {
        std::size_t l = i + lefts.size() - lines, r = i + rights.size() + 1 - lines;
        prttext(rightjustified(l < lefts.size() ? lefts[l] : "", width) + " ");
        prtmarkup("{c |}");
        if (i + 1 == lines) break;
        if (r < rights.size()) prttext(centred(rights[r], columns + 2));
        if (prtnl()) return 1;
    }
    return 0;
}

}  // namespace velmo
