#include "matrix/results.h"
#include <algorithm>
#include <cstring>
#include "base/text.h"
#include "core/macros.h"
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

// ---- Numbers and texts as objects of a type.

std::vector<std::string> objectnames(Int4 type) {
    std::vector<std::string> names;
    for (object* o = objnext(nullptr, nullptr, type); o; o = objnext(o, nullptr, type)) names.emplace_back(o->name);
    std::reverse(names.begin(), names.end());
    return names;
}

// The text is copied first: it may lie in the store itself.
Int4 puttext(std::string_view name, Int4 type, std::string_view text) {
    std::string copy(text);
    return objput(name, type, copy.c_str(), copy.size() + 1);
}

boolean readtext(std::string_view name, Int4 type, std::string& text) {
    object* o = objfind(name, type);
    if (o) text = fieldtext(reinterpret_cast<char*>(o->data()), o->datalen);
    return o != nullptr;
}

boolean readvalue(std::string_view name, Int4 type, Double& value) {
    object* o = objfind(name, type);
    if (o) objread(o, 0, &value, sizeof value);
    return o != nullptr;
}

// Types of what the program of a level is building.
Int4 rettype(Int4 base) { return base + macrolevel - obj_local; }

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

void rmacro(std::string_view name, std::string_view text) { puttext(name, obj_rmacro, text); }

boolean rscalar(std::string_view name, Double& value) {
    if (scalar* s = tablefind(name)) {
        value = s->value;
        return true;
    }
    return overflowed && readvalue(name, obj_rscalar, value);
}

boolean rmacrotext(std::string_view name, std::string& text) { return readtext(name, obj_rmacro, text); }

boolean rdrop(std::string_view name) {
    if (scalar* s = tablefind(name)) {
        std::copy(s + 1, table + ntable, s);
        ntable--;
        return true;
    }
    return objdel(name, obj_rscalar) || objdel(name, obj_rmacro);
}

std::vector<std::string> rscalarnames() {
    std::vector<std::string> names;
    for (Int4 i = 0; i < ntable; i++) names.emplace_back(table[i].name);
    if (overflowed)
        for (const std::string& n : objectnames(obj_rscalar)) names.push_back(n);
    return names;
}

std::vector<std::string> rmacronames() { return objectnames(obj_rmacro); }

// ---- Results being built

Int4 retstore(std::string_view name, Double value) {
    objdel(name, rettype(obj_retmacro));
    return objput(name, rettype(obj_retscalar), &value, sizeof value);
}

Int4 retmacro(std::string_view name, std::string_view text) {
    if (text.empty()) {
        objdel(name, rettype(obj_retmacro));
        return 0;
    }
    if (Int4 rc = puttext(name, rettype(obj_retmacro), text)) return rc;
    objdel(name, rettype(obj_retscalar));
    return 0;
}

boolean retscalar(std::string_view name, Double& value) { return readvalue(name, rettype(obj_retscalar), value); }
boolean retmacrotext(std::string_view name, std::string& text) { return readtext(name, rettype(obj_retmacro), text); }
boolean retdrop(std::string_view name) {
    return objdel(name, rettype(obj_retscalar)) || objdel(name, rettype(obj_retmacro));
}

void retclear() {
    beginbatch();
    for (Int4 base : {obj_retscalar, obj_retmacro}) objdeltype(rettype(base));
    endbatch();
}

Int4 retadd() {
    Double value;
    std::string text;
    auto built = [&](const std::string& name) { return retscalar(name, value) || retmacrotext(name, text); };
    for (const std::string& name : rscalarnames()) {
        if (built(name) || !rscalar(name, value)) continue;
        if (Int4 rc = retstore(name, value)) return rc;
    }
    for (const std::string& name : rmacronames()) {
        if (built(name) || !rmacrotext(name, text)) continue;
        if (Int4 rc = retmacro(name, text)) return rc;
    }
    return 0;
}

std::vector<std::string> retscalarnames() { return objectnames(rettype(obj_retscalar)); }
std::vector<std::string> retmacronames() { return objectnames(rettype(obj_retmacro)); }

void results_enter() { retclear(); }

void results_leave(Int4 level, UByte progclass) {
    Int4 scalars = obj_retscalar + level - obj_local, macros = obj_retmacro + level - obj_local;
    Double value;
    std::string text;
    if (progclass == 1) {
        rclear();
        for (const std::string& name : objectnames(scalars))
            if (readvalue(name, scalars, value)) rstore(name, value);
        for (const std::string& name : objectnames(macros))
            if (readtext(name, macros, text)) rmacro(name, text);
    }
    beginbatch();
    objdeltype(scalars);
    objdeltype(macros);
    endbatch();
}

// ---- s()

Int4 smacro(std::string_view name, std::string_view text) {
    if (!text.empty()) return puttext(name, obj_smacro, text);
    objdel(name, obj_smacro);
    return 0;
}

boolean smacrotext(std::string_view name, std::string& text) { return readtext(name, obj_smacro, text); }
boolean sdrop(std::string_view name) { return objdel(name, obj_smacro); }
void sclear() { objdeltype(obj_smacro); }
std::vector<std::string> smacronames() { return objectnames(obj_smacro); }

// ---- Scalars

Int4 scalarset(std::string_view name, Double value) { return objput(name, obj_scalar, &value, sizeof value); }

Int4 scalarsettext(std::string_view name, std::string_view text) {
    std::string data(sizeof(Double), 0);
    std::memcpy(data.data(), &missing, sizeof missing);
    data += text;
    return objput(name, obj_scalar, data.c_str(), data.size() + 1);
}

scalarkind scalarget(std::string_view name, Double& value, std::string& text) {
    object* o = objfind(name, obj_scalar);
    if (!o) return scalar_none;
    objread(o, 0, &value, sizeof value);
    if (o->datalen == sizeof value) return scalar_number;
    text = fieldtext(reinterpret_cast<char*>(o->data()) + sizeof value, o->datalen - sizeof value);
    return scalar_text;
}

boolean scalardrop(std::string_view name) { return objdel(name, obj_scalar); }
std::vector<std::string> scalarnames() { return objectnames(obj_scalar); }

}  // namespace velmo
