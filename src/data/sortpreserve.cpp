// The order that a program puts back: pushed at its entry, popped at its end, nested by a counter.
#include "data/sortpreserve.h"
#include <string>
#include <vector>
#include "base/text.h"
#include "core/macros.h"
#include "core/objects.h"
#include "data/cells.h"
#include "data/sorting.h"
#include "data/structure.h"
#include "output/errors.h"

namespace velmo {

UByte orderkept = 0;

namespace {

Int4 pushed = 0;

// The record: names of the key and, last, of the index variable, each with its zero.
std::string keynames(std::string_view index) {
    std::string text;
    for (const UInt2* key = srt; *key; key++) text += varlist[*key - 1] + std::string(1, '\0');
    return text + std::string(index) + std::string(1, '\0');
}

std::vector<std::string> recordnames(object* o) {
    std::vector<std::string> names;
    const char* p = reinterpret_cast<const char*>(o->data());
    for (const char* end = p + o->datalen; p < end; p += names.back().size() + 1) names.emplace_back(p);
    return names;
}

// The variables of the key, as far as they still stand.
std::vector<Int4> keyvars(const std::vector<std::string>& names) {
    std::vector<Int4> vars;
    for (std::size_t i = 0; i + 1 < names.size(); i++) {
        Int4 var = findvar(names[i]);
        if (!var) break;
        vars.push_back(var);
    }
    return vars;
}

}  // namespace

Int4 sortindex_push(std::string_view name) {
    std::string index;
    if (nobs > 0 && nvar > 0) {
        index = name;
        std::string record = keynames(index);
        if (Int4 rc = objput(std::to_string(pushed + 1), obj_sortindex, record.data(), record.size())) return rc;
        if (Int4 rc = addvar(index, typelong, true)) return rc;
        for (Int4 obs = 1; obs <= nobs; obs++) putlong(nvar, obs, obs);
        visnvar = nvar;
    } else if (Int4 rc = objput(std::to_string(pushed + 1), obj_sortindex, "", 1)) {
        return rc;
    }
    pushed++;
    orderkept = 1;
    return macroset("__sortindex", index);
}

Int4 sortindex_pop() {
    std::string number = std::to_string(pushed--);
    object* o = objfind(number, obj_sortindex);
    if (!o) return 0;
    std::vector<std::string> names = recordnames(o);
    objdel(number, obj_sortindex);
    if (names.back().empty()) return 0;
    Int4 var = findvar(names.back());
    if (!var) return error(196);
    std::vector<Int4> key = keyvars(names);
    Int4 rc = sortbyindex(var, key.data(), Int4(key.size()));
    dropworkvar(var);
    return rc > 1 ? error(rc) : rc;
}

void order_started() { pushed = orderkept = 0; }
Int4 order_levelleft() { return orderkept ? sortindex_pop() : 0; }

}  // namespace velmo
