#include "matrix/results.h"
#include <algorithm>
#include <cstring>
#include "base/text.h"
#include "core/objects.h"

namespace velmo {

Double oldresults[21];

namespace {

constexpr Int4 tablesize = 20;
struct scalar { char name[namesize]; Double value; };
scalar table[tablesize];
Int4 ntable;
boolean overflowed;        // scalars beyond the table are objects

scalar* tablefind(std::string_view name) {
    for (Int4 i = 0; i < ntable; i++)
        if (name == table[i].name) return table + i;
    return nullptr;
}

std::vector<std::string> objectnames(Int4 type) {
    std::vector<std::string> names;
    for (object* o = objnext(nullptr, nullptr, type); o; o = objnext(o, nullptr, type)) names.emplace_back(o->name);
    std::reverse(names.begin(), names.end());
    return names;
}

}  // namespace

void rclear() {
    ntable = 0;
    boolean objects = overflowed || objcount(obj_rmacro);
    for (Int4 type = obj_rmatrix; type <= obj_rmatrix + 2; type++) objects = objects || objcount(type);
    overflowed = false;
    if (!objects) return;
    beginbatch();
    for (Int4 type = obj_rscalar; type <= obj_rmatrix + 2; type++) objdeltype(type);
    endbatch();
}

void rstore(std::string_view name, Double value) {
    name = name.substr(0, namelen);
    if (scalar* s = tablefind(name)) {
        s->value = value;
    } else if (ntable < tablesize) {
        copytext(table[ntable].name, namesize, name);
        table[ntable++].value = value;
    } else if (object* o = objfind(name, obj_rscalar)) {
        objwrite(o, 0, &value, sizeof value);
    } else {
        overflowed = true;
        objput(name, obj_rscalar, &value, sizeof value);
    }
}

void rmacro(std::string_view name, std::string_view text) {
    std::string copy(text);
    objput(name, obj_rmacro, copy.c_str(), copy.size() + 1);
}

boolean rscalar(std::string_view name, Double& value) {
    if (scalar* s = tablefind(name)) {
        value = s->value;
        return true;
    }
    object* o = overflowed ? objfind(name, obj_rscalar) : nullptr;
    if (o) objread(o, 0, &value, sizeof value);
    return o != nullptr;
}

boolean rmacrotext(std::string_view name, std::string& text) {
    object* o = objfind(name, obj_rmacro);
    if (o) text = fieldtext(reinterpret_cast<char*>(o->data()), o->datalen);
    return o != nullptr;
}

std::vector<std::string> rscalarnames() {
    std::vector<std::string> names;
    for (Int4 i = 0; i < ntable; i++) names.emplace_back(table[i].name);
    if (overflowed)
        for (const std::string& n : objectnames(obj_rscalar)) names.push_back(n);
    return names;
}

std::vector<std::string> rmacronames() { return objectnames(obj_rmacro); }

}  // namespace velmo
