// What estimates have left in the store, and when it goes.
#include <string>
#include <string_view>
#include <vector>
#include "core/events.h"
#include "core/macros.h"
#include "core/objects.h"
#include "stored/families.h"

namespace velmo {

// Objects of types that hold or belong to estimates.
void estimates_discarded() {
    for (Int4 type : {obj_varlist, obj_lastcmd, obj_xpprogram}) objdeltype(type);
    for (Int4 type = obj_held; type < obj_local; type++)
        if (objcount(type)) objdeltype(type);
    std::vector<std::string> names;
    char name[36];
    for (object* o = objnext(nullptr, name, obj_global); o; o = objnext(o, name, obj_global))
        if (std::string_view(name).substr(0, 4) == "S_E_") names.push_back(name);
    for (const std::string& macro : names) macroclear(macro);
}

// They name variables by their places in tables that have been made anew.
void estimates_sized(sizedwhat what) {
    if (what == sized_maxvar) stored_clear(e_results);
}

}  // namespace velmo
