// mleval, mlsum, mlvecsum, mlmatsum, _mlmatbysum: what programs of likelihoods call for each evaluation.
#include <algorithm>
#include <cmath>
#include "base/saved.h"
#include "base/text.h"
#include "data/cells.h"
#include "estimate/groups.h"
#include "estimate/mlequations.h"
#include "estimate/robust.h"
#include "language/options.h"
#include "language/stdparse.h"
#include "matrix/compadd.h"
#include "matrix/lanes.h"
#include "matrix/tiles.h"
#include "stored/families.h"

namespace velmo {

namespace {

// eq(#) or eq(#,#): one equation, or where two are allowed a second. Without it the first.
Int4 readequations(mlequation* eq, Int4 limit, Int4& n) {
    Int4 numbers[2] = {1, 1}, given;
    if (Int4 rc = getopt_int("equations", 2, numbers, limit, given)) return rc;
    n = std::max(given, 1);
    for (Int4 i = 0; i < n; i++)
        if (Int4 rc = readequation(numbers[i], eq[i])) return rc;
    return 0;
}

}  // namespace

// ---- mleval

namespace {

// The words ahead of `=`, and the vector behind it.
Int4 evaltarget(std::string& target, std::string& vector) {
    Int4 n = 0;
    while (tokpeeknonblank() != '=') {
        std::string word = nexttoken();
        if (!validname(word) || ++n > 2) return error(198);
        target += " " + word;
    }
    nexttoken();
    vector = nexttoken();
    if (n == 0 || !validname(vector)) return error(198);
    if (n == 1) target = "double" + target;
    return matfind(vector) ? 0 : errorf(111, "vector %s not found\n", vector.c_str());
}

Int4 evalscalar(const std::string& target, const mlequation& e, const matrix& b) {
    if (!e.x.empty() || !e.constant) return errorf(198, "mleval, scalar: eq(%d) not constant\n", e.number);
    if (e.offset || e.exposure) return errorf(198, "mleval, scalar: eq(%d) may not have offset\n", e.number);
    return stored_put(named_results, target.substr(target.rfind(' ') + 1), b.at(0, e.first - 1));
}

// The index of n observations: the product, the constant, the offset.
void evalblock(const mlequation& e, const matrix& b, Int4 first, Int4 n, Double* out) {
    Double x[blocksize];
    boolean lacks[blocksize] = {};
    const Double* coefficient = b.row(0) + e.first - 1;
    auto add = [&](source s, auto value) {
        getsource(s, first, n, x);
        for (Int4 i = 0; i < n; i++) {
            Double v = value(x[i]);
            lacks[i] |= x[i] == missing || v == missing;
            out[i] += v;
        }
    };
    std::fill_n(out, n, 0.0);
    for (source s : e.x) {
        Double c = *coefficient++;
        add(s, [c](Double v) { return c * v; });
    }
    for (Int4 i = 0; e.constant && i < n; i++) out[i] += *coefficient;
    if (e.offset) add({e.offset}, [](Double v) { return v; });
    if (e.exposure) add({e.exposure}, [](Double v) { return v > 0 ? std::log(v) : missing; });
    for (Int4 i = 0; i < n; i++)
        if (lacks[i]) out[i] = missing;
}

Int4 evalvariable(const std::string& target, const mlequation& e, const matrix& b) {
    mlsample s;
    if (Int4 rc = readmlsample(s)) return rc;
    {
        elsewhere cursor(target);
        saved rules(parsing, form{.varlist = must, .newvars = true});
        vl_n = vl_ngroups = vl_given = 0;
        if (Int4 rc = newlist()) return rc;
    }
    if (vl_n != 1 || isstring(vl_vr[0])) return error(vl_n == 1 ? 109 : 103);
    column c(vl_vr[0]);
    Double value[blocksize];
    UByte mask[blocksize];
    firstobs = 1;
    lastobs = nobs;
    if (Int4 rc = overblocks([&](Int4 first, Int4 n) {
            samplemask(s, first, n, mask);
            evalblock(e, b, first, n, value);
            for (Int4 i = 0; i < n; i++) c.put(first + i, mask[i] ? datavalue(value[i]) : missing);
        }))
        return rc;
    visnvar = nvar;
    markchanged(nvar);
    return 0;
}

}  // namespace

// mleval newvar = vector [, eq(#) scalar]
Int4 cmd_mleval() {
    std::string target, vector;
    Int4 n;
    mlequation e;
    if (Int4 rc = evaltarget(target, vector)) return rc;
    if (Int4 rc = parseoptions()) return rc;
    boolean scalar = getopt_flag("scalar", 3);
    if (Int4 rc = readequations(&e, 1, n)) return rc;
    if (Int4 rc = getopt_done()) return rc;
    matrix b;
    if (Int4 rc = matcopy(vector, b)) return rc;
    if (b.rows != 1 || e.first < 1 || e.last > b.cols || e.last - e.first + 1 != e.size()) return error(503);
    return scalar ? evalscalar(target, e, b) : evalvariable(target, e, b);
}

// ---- Sums of an expression over the sample.

namespace {

constexpr Int4 lacksvalue = -1;          // of a walk that met a missing value

// What follows the names of the results: = exp [if] [, options].
Int4 parsesum() { return stdparse({.varlist = never, .in = never, .exp = must}); }

// Partial sums of these weights have been found whole once: sample and weights as the macros name them.
std::string wholebefore;

// one(first, n, mask, value): the expression over the sample, times the weight if asked for. 0, 1, 499 (printed), or
// lacksvalue.
template <class F> Int4 overvalues(const mlsample& s, boolean weighted, F one) {
    UByte mask[blocksize], condition[blocksize];
    Double value[blocksize], weight[blocksize];
    std::string now = std::to_string(s.marker) + " " + std::to_string(s.weight);
    boolean blocks = exp_blockable(eqexp, 0), check = s.whole && s.weight && wholebefore != now;
    Int4 rc = overblocks([&](Int4 first, Int4 n) -> Int4 {
        samplemask(s, first, n, mask);
        exp_ifblock(first, n, condition);
        if (blocks) exp_getblock(eqexp, first, n, value);
        if (s.weight && weighted) getsource({s.weight}, first, n, weight);
        for (Int4 i = 0; i < n; i++) {
            if (check && mask[i] && !condition[i])
                return errorf(499, "mlsum must be over entire estimation sample when weights\nare specified\n");
            if (!(mask[i] &= condition[i])) continue;
            if (!blocks) value[i] = exp_getnum(eqexp, first + i);
            if (value[i] == missing) return lacksvalue;
            if (s.weight && weighted && weight[i] == missing) return lacksvalue;
            if (s.weight && weighted) value[i] *= weight[i];
        }
        one(first, n, mask, value);
        return 0;
    });
    if (rc == 0 && check) wholebefore = now;
    return rc;
}

Int4 resultname(std::string& name) {
    name = nexttoken();
    return validname(name) ? 0 : badname(name);
}

}  // namespace

// mlsum scalar = exp [if] [, noweight]
Int4 cmd_mlsum() {
    std::string name;
    mlsample s;
    compsum sum;
    if (Int4 rc = resultname(name)) return rc;
    if (Int4 rc = parsesum()) return rc;
    boolean weighted = getopt_noflag("weight", 3, true);
    if (Int4 rc = getopt_done()) return rc;
    if (Int4 rc = readmlsample(s)) return rc;
    Int4 rc = overvalues(s, weighted, [&](Int4, Int4 n, const UByte* mask, const Double* value) {
        for (Int4 i = 0; i < n; i++)
            if (mask[i]) compadd(sum, value[i]);
    });
    if (rc > 0) return rc;
    return stored_put(named_results, name, rc ? missing : datavalue(total(sum)));
}

namespace {

// ---- Sums times the variables of equations.

// A call of one of the commands that make a matrix: its names, its equations, the sample's rows with the weighted
// expression for weights.
struct matrixsum {
    std::string scalar, name;
    mlequation eq[2];
    Int4 n = 1;                          // equations
    mlsample where;
    estsample s;
    const mlequation& second() const { return eq[n - 1]; }
    boolean square() const { return eq[0].number == second().number; }

    Int4 parse(Int4 limit) {
        if (Int4 rc = resultname(scalar)) return rc;
        name = nexttoken();
        if (Int4 rc = checkmatrixname(name)) return rc;
        if (Int4 rc = parsesum()) return rc;
        if (Int4 rc = readequations(eq, limit, n)) return rc;
        s.sources = eq[0].x;
        if (!square()) s.sources.insert(s.sources.end(), second().x.begin(), second().x.end());
        return 0;
    }

    // 0, 1, 499, 909 (printed), lacksvalue.
    Int4 draw() {
        if (Int4 rc = readmlsample(where)) return rc;
        s.run = nobs;
        s.map = workspace(std::size_t(nobs) + 1);
        s.weight = workspace((std::size_t(nobs) + 1) * sizeof(Double));
        if (!s.map.p || !s.weight.p) return error(909);
        return overvalues(where, true, [&](Int4 first, Int4 n, const UByte* mask, const Double* value) {
            std::copy_n(mask, n, s.in() + first - 1);
            std::copy_n(value, n, s.weights() + first - 1);
            s.n += Int4(std::count(mask, mask + n, 1));
        });
    }

    boolean complete(const rowsblock& b) const {
        for (Int4 i = 0; i < b.n; i++)
            if (std::find(b.row(i) + 1, b.row(i) + 1 + s.sources.size(), missing) != b.row(i) + 1 + s.sources.size())
                return false;
        return true;
    }

    // one(block) over the rows drawn: 0, 1, 909 (printed), lacksvalue.
    template <class F> Int4 overdrawn(F one) const {
        boolean lacks = false;
        Int4 rc = overrows(s, [&](const rowsblock& b) {
            lacks |= !complete(b);
            one(b);
        });
        return rc == 0 && lacks ? lacksvalue : rc;
    }

    // The places of an equation's columns in the rows.
    std::vector<Int4> columns(const mlequation& e) const {
        std::vector<Int4> out;
        Int4 at = &e == eq || square() ? 1 : Int4(eq[0].x.size()) + 1;
        for (std::size_t j = 0; j < e.x.size(); j++) out.push_back(at++);
        if (e.constant) out.push_back(0);
        return out;
    }

    // What the walk ended with: the matrix, and a missing scalar if a value was missing or a sum isn't finite.
    Int4 store(matrix& m, Int4 rc) {
        if (rc > 0) return rc;
        boolean bad = rc == lacksvalue;
        for (Int4 i = 0; i < m.rows * m.cols; i++) {
            Double& x = m.x.get<Double>()[i];
            bad |= !std::isfinite(x) || x >= missing;
            if (bad) x = 0;
        }
        if (bad)
            if (Int4 code = stored_put(named_results, scalar, missing)) return code;
        return matput(name, m);
    }

    // The block of the equations' columns, of the outer products that add(step, tiles) sums over what is drawn; `step`
    // rows at a time.
    template <class F> Int4 storeblock(F add) {
        matrix m;
        rowbuffers r(s.sources.size());
        tiles t(r.width, r.step);
        if (Int4 rc = makematrix(m, eq[0].size(), second().size())) return rc;
        if (!t.got()) return error(909);
        m.rownames = eq[0].names();
        m.colnames = second().names();
        m.symmetric = square();
        Int4 rc = draw();
        if (rc == 0) rc = add(r.step, t);
        std::vector<Int4> rows = columns(eq[0]), cols = columns(second());
        for (Int4 i = 0; i < m.rows; i++)
            for (Int4 j = 0; j < m.cols; j++) m.at(i, j) = t.sum(rows[std::size_t(i)], cols[std::size_t(j)]);
        return store(m, rc);
    }
};

}  // namespace

// mlvecsum scalar row = exp [if] [, eq(#)]
Int4 cmd_mlvecsum() {
    matrixsum m;
    matrix g;
    if (Int4 rc = m.parse(1)) return rc;
    if (Int4 rc = getopt_done()) return rc;
    if (Int4 rc = makematrix(g, 1, m.eq[0].size())) return rc;
    g.colnames = m.eq[0].names();
    std::vector<Double> sums(std::size_t(rowbuffers(m.s.sources.size()).width), 0);
    Int4 rc = m.draw();
    if (rc == 0)
        rc = m.overdrawn([&](const rowsblock& b) { addcolumns(b.x, b.weight, b.n, b.width, sums.data()); });
    std::vector<Int4> columns = m.columns(m.eq[0]);
    for (std::size_t j = 0; j < columns.size(); j++) g.at(0, Int4(j)) = sums[std::size_t(columns[j])];
    return m.store(g, rc);
}

// mlmatsum scalar matrix = exp [if] [, eq(#[,#])]
Int4 cmd_mlmatsum() {
    matrixsum m;
    if (Int4 rc = m.parse(2)) return rc;
    if (Int4 rc = getopt_done()) return rc;
    return m.storeblock([&](Int4, tiles& t) {
        return m.overdrawn([&](const rowsblock& b) { t.add(b.x, b.weight, b.n, false); });
    });
}

namespace {

// The outer products of each group's sums.
Int4 groupproducts(const matrixsum& m, Int4 by, Int4 step, tiles& t) {
    grouping g;
    if (Int4 rc = numberclusters(m.s, by, g)) return rc;
    std::size_t size = std::size_t(g.groups) * t.width;
    workspace work((size + 1) * sizeof(Double));
    Double* sums = work.get<Double>();
    if (!sums) return error(909);
    std::fill_n(sums, size, 0.0);
    const UInt4* code = g.codes();
    Int4 rc = m.overdrawn([&](const rowsblock& b) {
        for (Int4 i = 0; i < b.n; i++) addscaled(sums + *code++ * t.width, b.row(i), b.weight[i], b.width);
    });
    for (Int4 at = 0; at < g.groups; at += step)
        t.add(sums + std::size_t(at) * t.width, nullptr, std::min(step, g.groups - at), false);
    return rc;
}

}  // namespace

// _mlmatbysum scalar matrix = exp [if], by(varname) [eq(#[,#])]: over groups, the sums of exp x multiplied with each
// other.
Int4 cmd__mlmatbysum() {
    matrixsum m;
    std::vector<Int4> by;
    boolean found;
    if (Int4 rc = m.parse(2)) return rc;
    if (Int4 rc = getopt_vars("by", 2, by, found)) return rc;
    if (!found || by.empty()) return errorf(100, "_mlmatbysum: option -by()- required\n");
    if (by.size() > 1) return error(103);
    for (const typedoption& o : typedoptions())      // which isn't there for others either
        if (m.square() && o.word == "c" && o.hasargument)
            return errorf(198, "_mlmatbysum: option c() not allowed when equation numbers equal\n");
    if (Int4 rc = getopt_done()) return rc;
    return m.storeblock([&](Int4 step, tiles& t) { return groupproducts(m, by[0], step, t); });
}

}  // namespace velmo
