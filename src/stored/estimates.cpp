// What estimates have left in the store, when it goes, and those put by: hold, unhold, and the end of a level.
#include <cstdio>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>
#include "base/text.h"
#include "core/events.h"
#include "core/macros.h"
#include "core/objects.h"
#include "data/cells.h"
#include "data/structure.h"
#include "output/errors.h"
#include "stored/families.h"
#include "stored/held.h"
#include "stored/posted.h"

namespace velmo {

namespace {

// What a set put by keeps elsewhere.
struct heldrecord {
    Int4 level;                // of which it comes back at the end; 0 never
    char sample[namesize];     // the variable that marks its sample; empty without
};

Int4 automatic = 0;            // sets that have a level
Int4 samplenumber = 0;         // of the last variable named so: never one twice

boolean readrecord(std::string_view name, heldrecord& r) {
    std::string bytes;
    if (!held_record(name, bytes) || bytes.size() != sizeof r) return false;
    std::memcpy(&r, bytes.data(), sizeof r);
    return true;
}

// The set of a level that will come back; empty for none.
std::string automaticof(Int4 level) {
    heldrecord r;
    if (automatic)
        for (const std::string& name : held_names())
            if (readrecord(name, r) && r.level == level) return name;
    return {};
}

void renamesample(Int4 var, std::string_view name) {
    copytext(varlist[var - 1], namesize, name);
    namesmoved();
}

// A copy of the sample's variable under another name. 0, 900, 902, 950 (printed).
Int4 copysample(Int4 var, std::string_view name) {
    if (Int4 rc = addvar(name, typebyte, true)) return rc;
    visnvar = nvar;
    column from(var), to(nvar);
    for (Int4 obs = 1; obs <= nobs; obs++) to.put(obs, from.get(obs));
    return 0;
}

}  // namespace

Int4 estimates_hold(std::string_view name, boolean copy, boolean onend) {
    Int4 types[mostfamilytypes], n = family_types(e_results, types), objects = 0;
    for (Int4 i = 0; i < n; i++) objects += objcount(types[i]);
    if (!objects) return error(301);
    if (onend && !automaticof(macrolevel).empty())
        return errorf(110, "already exist held estimates for automatic restore\n");
    heldrecord r = {onend ? macrolevel : 0, ""};
    Int4 sample = findvar("(e)"), count = nvar;
    if (sample) std::snprintf(r.sample, namesize, "(h%d)", ++samplenumber);
    if (sample && copy)
        if (Int4 rc = copysample(sample, r.sample)) return rc;
    if (Int4 rc = held_put(name, {reinterpret_cast<const char*>(&r), sizeof r}, copy)) {
        shrinkvars(count);
        return rc;
    }
    if (sample && !copy) renamesample(sample, r.sample);
    automatic += onend;
    return 0;
}

Int4 estimates_unhold(std::string_view name) {
    heldrecord r;
    std::string bytes;
    if (!readrecord(name, r)) return notfound(name);
    posted_clear();
    if (Int4 rc = held_take(name, bytes)) return rc;
    if (Int4 var = r.sample[0] ? findvar(r.sample) : 0) renamesample(var, "(e)");
    automatic -= r.level != 0;
    return 0;
}

Int4 estimates_drop(std::string_view name) {
    heldrecord r;
    if (!readrecord(name, r)) return notfound(name);
    held_drop(name);
    if (Int4 var = r.sample[0] ? findvar(r.sample) : 0) dropworkvar(var);
    automatic -= r.level != 0;
    return 0;
}

// ---- Events.

void estimates_started() { automatic = samplenumber = 0; }

Int4 estimates_levelleft() {
    std::string name = automaticof(macrolevel);
    return name.empty() ? 0 : estimates_unhold(name);
}

// Objects of types that hold or belong to estimates.
void estimates_discarded() {
    for (Int4 type : {obj_varlist, obj_lastcmd, obj_xpprogram}) objdeltype(type);
    for (const std::string& name : held_names()) estimates_drop(name);
    std::vector<std::string> names;
    char name[36];
    for (object* o = objnext(nullptr, name, obj_global); o; o = objnext(o, name, obj_global))
        if (std::string_view(name).substr(0, 4) == "S_E_") names.push_back(name);
    for (const std::string& macro : names) macroclear(macro);
}

// They name variables by their places in tables that have been made anew.
void estimates_sized(sizedwhat what) {
    if (what == sized_maxvar) posted_clear();
}

}  // namespace velmo
