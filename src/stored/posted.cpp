#include "stored/posted.h"
#include <algorithm>
#include <cmath>
#include <cstring>
#include "base/saved.h"
#include "base/state.h"
#include "base/text.h"
#include "core/objects.h"
#include "data/cells.h"
#include "data/chars.h"
#include "data/labels.h"
#include "data/structure.h"
#include "data/timeseries.h"
#include "output/errors.h"
#include "stored/families.h"

namespace velmo {

namespace {

constexpr struct { Int4 code; estimatekind kind; } kinds[] = {
    {1, kind_linear},      {11, kind_linear},     {12, kind_linear},       {2, kind_anova},        {3, kind_likelihood},
    {4, kind_likelihood},  {5, kind_likelihood},  {6, kind_likelihood},    {8, kind_likelihood},   {9, kind_likelihood},
    {13, kind_likelihood}, {14, kind_likelihood}, {23, kind_likelihood},   {10, kind_multiple},    {15, kind_survival},
    {18, kind_posted},     {19, kind_constrained}, {24, kind_constrained}, {20, kind_linearrobust},
};

}  // namespace

boolean posted(postrecord* out) {
    object* o = objcount(obj_estimate) ? objfind("gamma", obj_estimate) : nullptr;
    if (o && out) objread(o, 0, out, sizeof *out);
    return o != nullptr;
}

Int4 estimatecode() {
    postrecord r;
    return posted(&r) ? r.code : 0;
}

estimatekind kindof(Int4 code) {
    for (const auto& row : kinds)
        if (row.code == code) return row.kind;
    return kind_none;
}

std::vector<axisname> postednames() {
    object* o = objfind("colnames", obj_estimate);
    std::vector<axisname> names(o ? o->datalen / sizeof(axisname) : 0);
    if (o) objread(o, 0, names.data(), names.size() * sizeof(axisname));
    return names;
}

boolean hasequations(const std::vector<axisname>& names) {
    return std::any_of(names.begin(), names.end(), [](const axisname& a) { return a.eq[0] != 0; });
}

std::vector<std::string> equations(const std::vector<axisname>& names) {
    std::vector<std::string> out;
    for (const axisname& a : names) {
        std::string eq(a.eq[0] ? a.eqtext() : "_");
        if (std::find(out.begin(), out.end(), eq) == out.end()) out.push_back(eq);
    }
    return out;
}

// ---- Posting.

Int4 posted_begin(const postrecord& r, boolean clear) {
    estimations++;
    if (clear) posted_clear();
    else objdeltype(obj_estimate);
    Int4 rc = objput("gamma", obj_estimate, &r, sizeof r);
    if (rc) posted_clear();
    return rc;
}

Int4 posted_setnames(const std::vector<axisname>& names) {
    return objput("colnames", obj_estimate, names.data(), names.size() * sizeof(axisname));
}

void posted_take(std::string_view matrixname, std::string_view as) {
    objdel(as, obj_estimate);
    objmove(objfind(matrixname, obj_matrix), as, obj_estimate);
    matdrop(matrixname);
    objdel(matrixname, obj_matrix + 1);
    objdel(matrixname, obj_matrix + 2);
}

Int4 posted_put(std::string_view name, const matrix& m) {
    saved<Int4> kind(matrixkind, obj_estimate);
    return matput(name, m);
}

Int4 posted_putrecord(std::string_view name, const void* record, std::size_t size) {
    return objput(name, obj_estimate, record, size);
}

boolean posted_getrecord(std::string_view name, void* record, std::size_t size) {
    object* o = objfind(name, obj_estimate);
    if (!o || o->datalen != size) return false;
    objread(o, 0, record, size);
    return true;
}

void posted_clear() {
    estimations++;
    stored_clear(e_results);
    if (Int4 var = findvar("(e)")) dropworkvar(var);
}

// ---- Reading.

Int4 postedmatrix(std::string_view name, matrix& m) {
    postrecord r;
    if (!posted(&r)) return error(301);
    {
        saved<Int4> kind(matrixkind, obj_estimate);
        if (Int4 rc = matcopy(name, m)) return rc;
    }
    std::vector<axisname> names = postednames();
    std::size_t k = names.size();
    defaultnames(m.rownames, 'r', m.rows);
    defaultnames(m.colnames, 'c', m.cols);
    if (k && std::size_t(m.cols) >= k) std::copy(names.begin(), names.end(), m.colnames.begin());
    if (std::size_t(m.cols) == k + 1) m.colnames[k] = makeaxisname("", "", "constant");
    if (k > 1 && std::size_t(m.rows) == k && m.cols == m.rows) m.rownames = m.colnames;
    if (name == "VCE") {
        m.rownames = m.colnames;
        if (r.scale != 1)
            for (Int4 i = 0; i < m.rows * m.cols; i++) m.x.get<Double>()[i] *= r.scale;
    }
    return 0;
}

Double coefficient(Int4 at) {
    saved<Int4> kind(matrixkind, obj_estimate);
    return matel("_b", 0, at);
}

Double standarderror(Int4 at) {
    saved<Int4> kind(matrixkind, obj_estimate);
    postrecord r;
    posted(&r);
    Double variance = matel("VCE", at, at) * r.scale;
    return variance > 0 ? std::sqrt(variance) : 0;
}

Int4 findequation(std::string_view eq, std::string& name) {
    std::vector<std::string> all = equations(postednames());
    Int4 k = 0;
    boolean numbered = eq.size() > 1 && eq[0] == '#' && readinteger(eq.substr(1), k);
    if (numbered && k >= 1 && k <= Int4(all.size())) name = all[std::size_t(k - 1)];
    else if (!numbered && std::find(all.begin(), all.end(), eq) != all.end()) name = eq;
    else return eqnotfound(eq);
    return 0;
}

namespace {

// The operators as they are written when they come out of the system.
std::string plainops(std::string_view ops) {
    Int4 number = 0;
    char text[24] = "";
    saved<UByte> quiet(quietlevel, shows_nothing);
    if (ops.empty() || ts_parse(ops, &number)) return std::string(ops);
    return number ? ts_text(number, text) : "";
}

Int4 search(const std::vector<axisname>& names, std::string_view eq, std::string_view ops, std::string_view name) {
    for (std::size_t i = 0; i < names.size(); i++) {
        const axisname& a = names[i];
        boolean here = eq.empty() || eq == (a.eq[0] ? a.eqtext() : "_");
        if (here && a.nametext() == name && a.optext() == ops) return Int4(i);
    }
    return -1;
}

}  // namespace

Int4 findcoefficient(std::string_view eq, std::string_view text, Int4& at) {
    if (!posted()) return error(301);
    std::vector<axisname> names = postednames();
    axisname wanted = readaxisname(text);
    std::string equation;
    if (eq.empty()) eq = wanted.eqtext();
    if (!eq.empty())
        if (Int4 rc = findequation(eq, equation)) return rc;
    std::string ops = plainops(wanted.optext());
    at = search(names, equation, ops, wanted.nametext());
    if (at >= 0) return 0;
    Int4 var;
    {
        saved<UByte> quiet(quietlevel, shows_nothing);
        var = nvar ? lookupvar(wanted.nametext(), lookup_quiet) : 0;
    }
    if (var > 0 && var <= visnvar) at = search(names, equation, ops, varlist[var - 1]);
    return at >= 0 ? 0 : notfound(equation.empty() ? std::string(text) : "[" + equation + "]" + std::string(text));
}

// ---- The sample.

Int4 checksample(std::string& name) {
    Int4 var = lookupvar(name, lookup_ref);
    if (var < 0) return -var;
    if (isstring(var)) return error(471);
    column values(var);
    for (Int4 obs = 1; obs <= nobs; obs++) {
        Double x = values.get(obs);
        if (x != 0 && x != 1) return error(471);
    }
    name = varlist[var - 1];
    Int4 rc = typ[var - 1] == typebyte ? 0 : changetype(var, typebyte);
    return rc ? error(rc) : 0;
}

Int4 makesample(const UByte* map, Int4 first, Int4 run, std::string& name) {
    Int4 var = maketemp(typebyte, true);
    if (var < 0) return error(-var);
    column sample(var);
    for (Int4 obs = 1; obs <= nobs; obs++)
        *sample.at(obs) = obs >= first && obs < first + run && map[obs - first] ? 1 : 0;
    name = varlist[var - 1];
    visnvar = nvar;
    return 0;
}

void posted_sample(std::string_view name) {
    estimations++;
    if (Int4 old = findvar("(e)")) dropworkvar(old);
    Int4 var = findvar(name);
    markchanged(var);
    setsortnone(&var, 1);
    putvarlabel(varlist[var - 1], "");
    char_dropall(varlist[var - 1]);
    lbl[var - 1][0] = 0;
    copytext(varlist[var - 1], namesize, "(e)");
    namesmoved();
    movevar(var, nvar, nullptr, 0);
}

}  // namespace velmo
