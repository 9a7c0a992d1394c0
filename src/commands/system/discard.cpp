#include "commands/system/discard.h"
#include <string>
#include <vector>
#include "commands/system/arguments.h"
#include "core/macros.h"
#include "core/objects.h"
#include "data/posting.h"
#include "language/programs.h"
#include "matrix/results.h"

namespace velmo {

namespace {

// Objects of types that hold or belong to estimates.
void dropestimates() {
    for (Int4 type : {obj_varlist, obj_lastcmd, obj_xpprogram}) objdeltype(type);
    for (Int4 type = obj_held; type < obj_local; type++)
        if (objcount(type)) objdeltype(type);
    std::vector<std::string> names;
    char name[36];
    for (object* o = objnext(nullptr, name, obj_global); o; o = objnext(o, name, obj_global))
        if (std::string_view(name).substr(0, 4) == "S_E_") names.push_back(name);
    for (const std::string& macro : names) macroclear(macro);
}

}  // namespace

void discard() {
    post_closeall();
    dropestimates();
    rclear();
    discardprograms();
}

Int4 cmd_discard() {
    if (Int4 rc = nothingelse()) return rc;
    discard();
    return 0;
}

}  // namespace velmo
