// constraint: numbered linear constraints, kept as they are written until an estimation takes them.
#include <string>
#include <vector>
#include "base/text.h"
#include "core/keywords.h"
#include "core/macros.h"
#include "core/tokenizer.h"
#include "estimate/constraints.h"
#include "output/errors.h"
#include "output/print.h"

namespace velmo {

namespace {

// # [text]
Int4 define() {
    Int4 number;
    if (!readinteger(nexttoken(), number) || number < 1 || number > mostconstraints) return error(198);
    std::string_view text = trimmed(tokrest());
    if (!text.empty() && (text[0] == '"' || text.size() >= std::size_t(macrolen))) return error(198);
    return constraint_put(number, text);
}

Int4 show() {
    std::vector<Int4> numbers;
    std::string text;
    if (Int4 rc = constraint_list(tokrest(), numbers)) return rc;
    for (Int4 number : numbers) {
        if (!constraint_get(number, text)) continue;
        prttextf("%6d:  ", number);
        prtresult(text);
        if (prtnl()) return 1;
    }
    return 0;
}

Int4 drop() {
    std::vector<Int4> numbers;
    if (!tokpeeknonblank()) return error(198);
    if (trimmed(tokrest()) == "_all") {
        constraint_dropall();
        return 0;
    }
    if (Int4 rc = constraint_list(tokrest(), numbers)) return rc;
    for (Int4 number : numbers) constraint_put(number, "");
    return 0;
}

}  // namespace

Int4 cmd_constraint() {
    static constexpr keyword words[] = {{"define", 2, 0}, {"dir", 2, 1}, {"list", 1, 1}, {"drop", 4, 2}};
    switch (lookup(words, nexttoken())) {
    case 0: return define();
    case 1: return show();
    case 2: return drop();
    default: return error(198);
    }
}

}  // namespace velmo
