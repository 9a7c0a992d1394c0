// A set has eight types of its own from obj_held on: that of its record, whose object bears the name, and one for each
// type of e(), in which the objects keep their names.
#include "core/objects.h"
#include "output/errors.h"
#include "stored/families.h"
#include "stored/held.h"

namespace velmo {

namespace {

constexpr Int4 settypes = 8;
static_assert(mostfamilytypes < settypes);

// The type of the record of the set with this name; of the first free set for an empty one; 0 when there is none.
Int4 settype(std::string_view name) {
    for (Int4 type = obj_held; type + settypes <= obj_local; type += settypes)
        if (name.empty() ? objcount(type) == 0 : objcount(type) && objfind(name, type)) return type;
    return 0;
}

// Copies the objects of a type, the oldest first, so that order stays.
Int4 copytype(Int4 from, Int4 to) {
    std::vector<std::string> names;
    for (object* o = objnext(nullptr, nullptr, from); o; o = objnext(o, nullptr, from)) names.emplace_back(o->name);
    for (; !names.empty(); names.pop_back()) {
        object* o = objfind(names.back(), from);
        if (Int4 rc = objput(names.back(), to, o->data(), o->datalen)) return rc;
    }
    return 0;
}

void dropset(Int4 type) {
    for (Int4 i = 0; i < settypes; i++) objdeltype(type + i);
}

}  // namespace

Int4 held_put(std::string_view name, std::string_view record, boolean copy) {
    if (settype(name)) return nameerror(name_defined, name);
    Int4 set = settype(""), types[mostfamilytypes], n = family_types(e_results, types);
    if (!set) return error(1000);
    Int4 rc = objput(name, set, record.data(), record.size());
    for (Int4 i = 0; i < n && !rc; i++) {
        if (copy) rc = copytype(types[i], set + 1 + i);
        else objmovetype(types[i], set + 1 + i);
    }
    if (rc) dropset(set);
    return rc;
}

Int4 held_take(std::string_view name, std::string& record) {
    if (!held_record(name, record)) return notfound(name);
    Int4 set = settype(name), types[mostfamilytypes], n = family_types(e_results, types);
    stored_clear(e_results);
    for (Int4 i = 0; i < n; i++) objmovetype(set + 1 + i, types[i]);
    dropset(set);
    return 0;
}

boolean held_record(std::string_view name, std::string& record) {
    Int4 set = settype(name);
    object* o = set ? objfind(name, set) : nullptr;
    if (o) record.assign(reinterpret_cast<const char*>(o->data()), o->datalen);
    return o != nullptr;
}

boolean held_drop(std::string_view name) {
    Int4 set = settype(name);
    if (set) dropset(set);
    return set != 0;
}

std::vector<std::string> held_names() {
    std::vector<std::string> names;
    for (Int4 type = obj_held; type + settypes <= obj_local; type += settypes)
        if (object* o = objnext(nullptr, nullptr, type)) names.emplace_back(o->name);
    return names;
}

}  // namespace velmo
