#include "stored/families.h"
#include <algorithm>
#include "base/text.h"
#include "core/macros.h"
#include "core/objects.h"

namespace velmo {

const char* const resultkindwords[nresultkinds] = {"scalars", "macros", "matrices", "functions"};

namespace {

// The scalars that come first, where they need no object.
struct fixedscalars {
    static constexpr Int4 size = 20;
    struct scalar { char name[namesize]; Double value; } at[size];
    Int4 n;

    scalar* find(std::string_view name) {
        for (Int4 i = 0; i < n; i++)
            if (name == at[i].name) return at + i;
        return nullptr;
    }
    boolean put(std::string_view name, Double value) {
        if (scalar* s = find(name)) {
            s->value = value;
            return true;
        }
        if (n >= size) return false;
        copytext(at[n].name, namesize, name);
        at[n++].value = value;
        return true;
    }
    boolean drop(std::string_view name) {
        scalar* s = find(name);
        if (!s) return false;
        std::copy(s + 1, at + n, s);
        n--;
        return true;
    }
};
fixedscalars rscalars;

// A row for each family: what it holds is what has a type. To add a function: its name in the family's list.
struct row {
    const char* word;            // null: nobody writes it with a parenthesis
    Int4 type[3];                // of scalars, macros, matrices; 0 for kinds that it hasn't
    Int4 own;                    // type of objects that belong to it but aren't its results
    const char* function;        // a result that is computed when it is read
    struct { const char *name, *object; } matrices[2];     // names of own objects that are read as matrices
    fixedscalars* fixed;
    UByte bylevel;               // the types are those of the outermost level; each level has its own
    UByte keepsplace;            // a scalar posted again stays where it is in the order
};
constexpr row rows[] = {
    {"r", {obj_rscalar, obj_rmacro, obj_rmatrix}, 0, nullptr, {}, &rscalars, 0, 1},
    {"e", {obj_escalar, obj_emacro, obj_ematrix}, obj_estimate, "sample", {{"b", "_b"}, {"V", "VCE"}}, nullptr, 0, 1},
    {"s", {0, obj_smacro, 0}, 0, nullptr, {}, nullptr, 0, 0},
    {"return", {obj_retscalar, obj_retmacro, obj_retmatrix}, 0, nullptr, {}, nullptr, 1, 0},
    {nullptr, {obj_scalar, 0, obj_matrix}, 0, nullptr, {}, nullptr, 0, 0},
};
static_assert(std::size(rows) == named_results + 1);

Int4 levelshift(const row& r) { return r.bylevel ? macrolevel - obj_local : 0; }

constexpr resultkind objectkinds[] = {result_scalar, result_macro, result_matrix};

Int4 objectsof(resultkind kind) { return kind == result_matrix ? 3 : 1; }

// The own object that a name is read from as a matrix, if it is there.
const char* ownmatrix(const row& r, std::string_view name) {
    if (r.own && objcount(r.own))
        for (const auto& m : r.matrices)
            if (m.name && name == m.name && objfind(m.object, r.own)) return m.object;
    return nullptr;
}

boolean dropkind(Int4 type, resultkind kind, std::string_view name) {
    if (!type) return false;
    boolean any = false;
    for (Int4 i = 0; i < objectsof(kind); i++) any |= objcount(type + i) && objdel(name, type + i);
    return any;
}

}  // namespace

Double rscalar(Int4 k) { return k >= 1 && k <= rscalars.n ? rscalars.at[k - 1].value : missing; }

boolean family_find(std::string_view word, family& f) {
    for (const row& r : rows)
        if (r.word && word == r.word) {
            f = family(&r - rows);
            return true;
        }
    return false;
}

const char* family_word(family f) { return rows[f].word; }

Int4 family_type(family f, resultkind kind) {
    Int4 type = kind <= result_matrix ? rows[f].type[kind] : 0;
    return type ? type + levelshift(rows[f]) : 0;
}

Int4 family_types(family f, Int4 (&types)[mostfamilytypes]) {
    Int4 n = 0;
    for (resultkind kind : objectkinds)
        if (Int4 type = family_type(f, kind))
            for (Int4 i = 0; i < objectsof(kind); i++) types[n++] = type + i;
    if (rows[f].own) types[n++] = rows[f].own;
    return n;
}

void stored_claim(family f, std::string_view name, resultkind kind) {
    if (kind != result_scalar && rows[f].fixed) rows[f].fixed->drop(name);
    for (resultkind other : objectkinds)
        if (other != kind) dropkind(family_type(f, other), other, name);
}

Int4 stored_put(family f, std::string_view name, Double value) {
    name = name.substr(0, namelen);
    fixedscalars* fixed = rows[f].fixed;
    Int4 type = family_type(f, result_scalar);
    if (!fixed || !fixed->put(name, value)) {
        object* o = rows[f].keepsplace && objcount(type) ? objfind(name, type) : nullptr;
        if (o) objwrite(o, 0, &value, sizeof value);
        else if (Int4 rc = objput(name, type, &value, sizeof value)) return rc;
    }
    stored_claim(f, name, result_scalar);
    return 0;
}

Int4 stored_put(family f, std::string_view name, std::string_view text) {
    Int4 type = family_type(f, result_macro);
    if (text.empty()) {
        objdel(name, type);
        return 0;
    }
    if (Int4 rc = objputtext(name, type, text)) return rc;
    stored_claim(f, name, result_macro);
    return 0;
}

resultkind stored_get(family f, std::string_view name, Double& value, std::string& text) {
    const row& r = rows[f];
    if (r.fixed)
        if (fixedscalars::scalar* s = r.fixed->find(name)) {
            value = s->value;
            return result_scalar;
        }
    for (resultkind kind : objectkinds) {
        Int4 type = family_type(f, kind);
        object* o = type && objcount(type) ? objfind(name, type) : nullptr;
        if (!o) continue;
        if (kind == result_scalar) objread(o, 0, &value, sizeof value);
        if (kind == result_macro) text = fieldtext(reinterpret_cast<char*>(o->data()), o->datalen);
        return kind;
    }
    if (ownmatrix(r, name)) return result_matrix;
    return r.function && name == r.function ? result_function : result_none;
}

boolean stored_drop(family f, std::string_view name) {
    boolean any = rows[f].fixed && rows[f].fixed->drop(name);
    for (resultkind kind : objectkinds) any |= dropkind(family_type(f, kind), kind, name);
    return any;
}

std::vector<std::string> stored_names(family f, resultkind kind) {
    std::vector<std::string> names;
    const row& r = rows[f];
    if (kind == result_function && r.function) return {r.function};
    Int4 type = family_type(f, kind);
    if (type)
        for (object* o = objnext(nullptr, nullptr, type); o; o = objnext(o, nullptr, type)) names.emplace_back(o->name);
    if (kind == result_scalar && r.fixed)
        for (Int4 i = r.fixed->n; i > 0; i--) names.emplace_back(r.fixed->at[i - 1].name);
    if (kind == result_matrix)
        for (const auto* m = std::end(r.matrices); m-- != r.matrices;)
            if (m->name && ownmatrix(r, m->name)) names.emplace_back(m->name);
    std::reverse(names.begin(), names.end());
    return names;
}

// Most often, at the end of every program, there is nothing.
void stored_clear(family f) {
    const row& r = rows[f];
    if (r.fixed) r.fixed->n = 0;
    boolean any = r.own && objcount(r.own);
    for (Int4 type : r.type) any |= type && objcount(type + levelshift(r));
    if (!any) return;
    Int4 types[mostfamilytypes], n = family_types(f, types);
    beginbatch();
    for (Int4 i = 0; i < n; i++) objdeltype(types[i]);
    endbatch();
}

namespace {

// A copy of a matrix under the same name. 0 or 950, with nothing left of it.
Int4 copymatrix(family from, family to, std::string_view name) {
    Int4 old = family_type(from, result_matrix), now = family_type(to, result_matrix);
    for (Int4 i = 0; i < objectsof(result_matrix); i++) {
        object* o = objfind(name, old + i);
        if (!o) continue;
        std::vector<UByte> bytes(o->data(), o->data() + o->datalen);
        if (Int4 rc = objput(name, now + i, bytes.data(), bytes.size())) {
            dropkind(now, result_matrix, name);
            return rc;
        }
    }
    return 0;
}

}  // namespace

Int4 stored_add(family from, family to) {
    Double value, there;
    std::string text, texthere;
    for (const std::string& name : stored_names(from, result_matrix))
        if (stored_get(to, name, there, texthere) == result_none)
            if (Int4 rc = copymatrix(from, to, name)) return rc;
    for (resultkind kind : {result_scalar, result_macro})
        for (const std::string& name : stored_names(from, kind)) {
            if (stored_get(to, name, there, texthere) != result_none || stored_get(from, name, value, text) != kind)
                continue;
            Int4 rc = kind == result_scalar ? stored_put(to, name, value) : stored_put(to, name, text);
            if (rc) return rc;
        }
    return 0;
}

boolean stored_movematrix(family from, std::string_view name, family to, std::string_view newname) {
    Int4 old = family_type(from, result_matrix), now = family_type(to, result_matrix);
    if (!objfind(name, old)) return false;
    if (from == to && name == newname) return true;
    stored_drop(to, newname);
    for (Int4 i = 0; i < objectsof(result_matrix); i++)
        if (object* o = objfind(name, old + i)) objmove(o, newname, now + i);
    return true;
}

void stored_started() { rclear(); }
void stored_discarded() { rclear(); }

// What was built is the caller's from here on, objects as they lie.
void results_leave(UByte progclass) {
    if (progclass == 1) {
        rclear();
        Double value;
        std::string text;
        for (const std::string& name : stored_names(return_results, result_scalar))
            if (stored_get(return_results, name, value, text) == result_scalar) rstore(name, value);
        for (resultkind kind : {result_macro, result_matrix})
            for (Int4 i = 0; i < objectsof(kind); i++)
                objmovetype(family_type(return_results, kind) + i, family_type(r_results, kind) + i);
    }
    stored_clear(return_results);
}

}  // namespace velmo
