// Cross-products as matrices: accum, vecaccum, glsaccum and opaccum; _rmcoll, the collinearity step alone.
#include "commands/matrix/accum.h"
#include <algorithm>
#include <cmath>
#include <string>
#include <vector>
#include "commands/matrix/target.h"
#include "core/macros.h"
#include "data/cells.h"
#include "data/sorting.h"
#include "estimate/crossproducts.h"
#include "language/options.h"
#include "language/stdparse.h"
#include "matrix/lanes.h"
#include "output/errors.h"
#include "stored/families.h"

namespace velmo {

namespace {

// ---- What they share: name = varlist, the names of a result, its shape.

Int4 parsetarget(std::string& name, partrule varlist) {
    if (Int4 rc = targetname(name)) return rc;
    return stdparse({.varlist = varlist, .tsops = may, .weight = may, .by = never});
}

std::vector<source> typedsources() { return vl_given ? listsources() : std::vector<source>(); }

// The names of the variables from list entry `from` on, and the constant's.
std::vector<axisname> sourcenames(Int4 from, boolean constant) {
    std::vector<axisname> names;
    for (Int4 i = from; vl_given && i < vl_n; i++) names.push_back(readaxisname(entryname(i)));
    if (constant) names.push_back(readaxisname("_cons"));
    return names;
}

// The products with the constant behind the k others, or without it.
Int4 storeproducts(const std::string& name, const matrix& products, boolean constant) {
    Int4 k = products.rows - 1, n = k + constant;
    matrix m;
    if (Int4 rc = makematrix(m, n, n)) return rc;
    auto place = [k](Int4 i) { return i == k ? 0 : i + 1; };
    for (Int4 i = 0; i < n; i++)
        for (Int4 j = 0; j < n; j++) m.at(i, j) = products.at(place(i), place(j));
    m.symmetric = true;
    m.rownames = m.colnames = sourcenames(0, constant);
    return matput(name, m);
}

Int4 storemeans(const std::string& name, const matrix& products) {
    Int4 k = products.rows - 1;
    matrix m;
    if (Int4 rc = makematrix(m, 1, k + 1)) return rc;
    Double n = products.at(0, 0);
    for (Int4 j = 0; j < k; j++) m.at(0, j) = n == 0 ? 0 : products.at(j + 1, 0) / n;
    m.at(0, k) = 1;
    m.colnames = sourcenames(0, true);
    return matput(name, m);
}

}  // namespace

// matrix accum A = [varlist] [weight] [if] [in] [, noconstant deviations means(name)]
Int4 matrix_accum() {
    std::string name, means;
    if (Int4 rc = parsetarget(name, may)) return rc;
    boolean constant = getopt_noflag("constant", 3, true), deviations = getopt_flag("deviations", 1), found;
    if (Int4 rc = getopt_str("means", 1, means, found)) return rc;
    if (Int4 rc = getopt_done()) return rc;
    if (found)
        if (Int4 rc = checkmatrixname(means)) return rc;
    if (!vl_given && !constant) return error(198);
    rclear();
    estsample s;
    if (Int4 rc = estimationsample(typedsources(), {.empty = true}, s)) return rc;
    crossproducts c;
    if (Int4 rc = sscp_accum(s, {.print = true, .deviations = deviations}, c)) return rc;
    if (Int4 rc = storeproducts(name, c.m, constant)) return rc;
    if (found)
        if (Int4 rc = storemeans(means, c.m)) return rc;
    rstore("N", c.m.at(0, 0));
    return 0;
}

// matrix vecaccum a = y [varlist] [weight] [if] [in] [, noconstant]
Int4 matrix_vecaccum() {
    std::string name;
    if (Int4 rc = parsetarget(name, must)) return rc;
    boolean constant = getopt_noflag("constant", 3, true);
    if (Int4 rc = getopt_done()) return rc;
    if (vl_n == 1 && !constant) return error(198);
    if (vl_n > matsize) return error(908);
    rclear();
    estsample s;
    if (Int4 rc = estimationsample(listsources(), {}, s)) return rc;
    std::vector<Double> sums(std::size_t(vl_n) + 4, 0);
    Double total = 0;
    Int4 rc = overrows(s, [&](const rowsblock& b) {
        for (Int4 i = 0; i < b.n; i++) {
            Double w = b.weight ? b.weight[i] : 1;
            total += w;
            addscaled(sums.data(), b.row(i), w * b.row(i)[1], b.width);
        }
    });
    matrix m;
    if (!rc) rc = makematrix(m, 1, vl_n - 1 + constant);
    if (rc) return rc;
    Double mean = weighttype == weight_a ? total / s.n : 1;
    for (Int4 j = 0; j < m.cols; j++) m.at(0, j) = sums[j == vl_n - 1 ? 0 : std::size_t(j + 2)] / mean;
    m.rownames = {readaxisname(entryname(0))};
    m.colnames = sourcenames(1, constant);
    if (Int4 failed = matput(name, m)) return failed;
    rstore("N", weighttype == weight_a ? s.n : total);
    rstore("sum_w", total);
    return 0;
}

// ---- By groups: the rows of one, each times the root of its weight, with a value that belongs to each.

namespace {

struct grouprows {
    Int4 n = 0, width = 0, first = 0;       // first: an observation of the group
    std::vector<Double> x, value;
    const Double* row(Int4 i) const { return x.data() + std::size_t(i) * std::size_t(width); }
};

// one(group) for each run of equal values of var; the last of the sample's sources gives the values.
template <class F> Int4 overgroups(const estsample& s, Int4 var, F one) {
    Double mean = 1;
    if (weighttype == weight_a) {
        Double total = 0;
        for (Int4 i = 0; i < s.run; i++)
            if (s.in()[i]) total += s.weights()[i];
        mean = total / s.n;
    }
    const UInt2 by = UInt2(var);
    grouprows g;
    std::size_t k = s.sources.size() - 1;
    g.width = Int4(k) + 1;
    Int4 failed = 0;
    Int4 rc = overrows(s, [&](const rowsblock& b) {
        for (Int4 i = 0; i < b.n && !failed; i++) {
            if (g.n && !samegroup(g.first, b.obs[i], &by, 1)) {
                failed = one(static_cast<const grouprows&>(g));
                g.n = 0;
                g.x.clear();
                g.value.clear();
            }
            if (failed) return;
            if (!g.n++) g.first = b.obs[i];
            if (b.weight && b.weight[i] < 0) failed = error(402);
            Double root = b.weight ? std::sqrt(b.weight[i] / mean) : 1;
            for (std::size_t j = 0; j <= k; j++) g.x.push_back(root * b.row(i)[j]);
            g.value.push_back(b.row(i)[k + 1]);
        }
    });
    if (rc || failed) return rc ? rc : failed;
    return g.n ? one(static_cast<const grouprows&>(g)) : 0;
}

// The options that name a numeric variable, and the group's, by which the data must be sorted.
struct groupform {
    std::string name;
    Int4 group = 0, value = 0;
    boolean constant = true;
};

Int4 onevariable(const char* option, Int4& var) {
    std::vector<Int4> vars;
    boolean found;
    if (Int4 rc = getopt_vars(option, Int4(std::string_view(option).size()), vars, found)) return rc;
    if (!found) return required("option " + std::string(option) + "()");
    if (vars.size() != 1) return error(vars.empty() ? 198 : 103);
    var = vars[0];
    return 0;
}

Int4 readgroups(groupform& f, const char* option) {
    f.constant = getopt_noflag("constant", 3, true);
    if (Int4 rc = onevariable("group", f.group)) return rc;
    return onevariable(option, f.value);
}

Int4 checkgroups(const groupform& f) {
    if (!vl_given && !f.constant) return error(198);
    if (srt[0] != f.group) return error(5);
    rclear();
    return 0;
}

// Draws the sample, adds one(group, sums) over the groups, and stores the lower triangle that they leave.
template <class F> Int4 accumulategroups(const groupform& f, F one) {
    std::vector<source> sources = typedsources();
    sources.push_back({f.value});
    estsample s;
    if (Int4 rc = estimationsample(sources, {}, s)) return rc;
    matrix sums;
    if (Int4 rc = makematrix(sums, Int4(sources.size()), Int4(sources.size()))) return rc;
    if (Int4 rc = overgroups(s, f.group, [&](const grouprows& g) { return one(g, sums); })) return rc;
    for (Int4 i = 0; i < sums.rows; i++)
        for (Int4 j = 0; j < i; j++) sums.at(j, i) = sums.at(i, j);
    if (Int4 rc = storeproducts(f.name, sums, f.constant)) return rc;
    rstore("N", s.n);
    return 0;
}

// The matrix that weighs the rows of a group: one for all, or named by a string variable.
struct glsmatrix {
    matrix w;
    Int4 var = 0;
    std::string current;
    Int4 load(const std::string& name) {
        if (name == current) return 0;
        w = matrix();
        if (Int4 rc = matcopy(name, w)) return rc;
        if (w.rows != w.cols) return error(503);
        if (!issymmetric(w)) return error(505);
        current = name;
        return 0;
    }
    Int4 open(const std::string& name) {
        if (!matfind(name))
            for (Int4 v = 1; v <= nvar && !var; v++)
                if (name == varlist[v - 1] && isstring(v)) var = v;
        return var ? 0 : load(name);
    }
    Int4 ofgroup(const grouprows& g) { return var ? load(std::string(strcell(var, g.first))) : 0; }
    const Double* row(Double id) const { return w.row(index(id)); }
    Int4 index(Double id) const { return Int4(std::clamp(std::floor(id), 1.0, Double(w.cols))) - 1; }
};

Int4 addgls(const grouprows& g, const glsmatrix& w, matrix& sums) {
    std::vector<Double> t(std::size_t(g.width));
    for (Int4 i = 0; i < g.n; i++) {
        const Double* weights = w.row(g.value[std::size_t(i)]);
        std::fill(t.begin(), t.end(), 0.0);
        for (Int4 j = 0; j < g.n; j++)
            addscaled(t.data(), g.row(j), weights[w.index(g.value[std::size_t(j)])], g.width);
        for (Int4 a = 0; a < g.width; a++) addscaled(sums.row(a), t.data(), g.row(i)[a], a + 1);
        if (tick()) return 1;
    }
    return 0;
}

}  // namespace

// matrix glsaccum A = [varlist] [weight] [if] [in], group(g) glsmat(name) row(varname) [noconstant]
Int4 matrix_glsaccum() {
    groupform f;
    std::string matname;
    boolean found;
    glsmatrix w;
    if (Int4 rc = parsetarget(f.name, may)) return rc;
    if (Int4 rc = readgroups(f, "row")) return rc;
    if (Int4 rc = getopt_str("glsmat", 6, matname, found)) return rc;
    if (!found) return required("option glsmat()");
    if (Int4 rc = getopt_done()) return rc;
    if (Int4 rc = checkgroups(f)) return rc;
    if (Int4 rc = w.open(matname)) return rc;
    return accumulategroups(f, [&](const grouprows& g, matrix& sums) {
        Int4 rc = w.ofgroup(g);
        return rc ? rc : addgls(g, w, sums);
    });
}

// matrix opaccum A = [varlist] [weight] [if] [in], group(g) opvar(varname) [noconstant]
// Of a group the sum over all pairs is the product of the sum of e x with itself.
Int4 matrix_opaccum() {
    groupform f;
    if (Int4 rc = parsetarget(f.name, may)) return rc;
    if (Int4 rc = readgroups(f, "opvar")) return rc;
    if (Int4 rc = getopt_done()) return rc;
    if (Int4 rc = checkgroups(f)) return rc;
    std::vector<Double> t;
    return accumulategroups(f, [&](const grouprows& g, matrix& sums) {
        t.assign(std::size_t(g.width), 0);
        for (Int4 i = 0; i < g.n; i++) addscaled(t.data(), g.row(i), g.value[std::size_t(i)], g.width);
        for (Int4 a = 0; a < g.width; a++) addscaled(sums.row(a), t.data(), t[std::size_t(a)], a + 1);
        return 0;
    });
}

// _rmcoll varlist [weight] [if] [in] [, noconstant]: r(varlist) and $S_1, what is left of the list.
Int4 cmd__rmcoll() {
    if (Int4 rc = stdparse({.varlist = must, .tsops = may, .weight = may})) return rc;
    boolean constant = getopt_noflag("constant", 3, true);
    if (Int4 rc = getopt_done()) return rc;
    rclear();
    estsample s;
    if (Int4 rc = estimationsample(listsources(), {}, s)) return rc;
    crossproducts c;
    if (Int4 rc = sscp_accum(s, {}, c)) return rc;
    std::vector<std::string> names;
    for (Int4 i = 0; i < vl_n; i++) names.push_back(entryname(i));
    std::vector<boolean> stays;
    if (Int4 rc = dropcollinear(c, names, constant, stays)) return rc;
    std::string kept;
    for (std::size_t i = 0; i < names.size(); i++)
        if (stays[i]) kept += (kept.empty() ? "" : " ") + names[i];
    rmacro("varlist", kept);
    return macroset("S_1", kept);
}

}  // namespace velmo
