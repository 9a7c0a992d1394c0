#include "estimate/robust.h"
#include <algorithm>
#include <cmath>
#include "data/cells.h"
#include "data/labels.h"
#include "estimate/groups.h"
#include "language/options.h"
#include "language/stdparse.h"
#include "matrix/lanes.h"
#include "matrix/products.h"
#include "matrix/tiles.h"

namespace velmo {

// ---- The options.

Int4 getopt_robust(robustrequest& r, boolean score) {
    std::vector<Int4> vars;
    boolean found;
    r.typed = weighttype;
    r.robust = getopt_noflag("robust", 6, weighttype == weight_p);
    if (weighttype == weight_p && !r.robust) return error(403);
    if (Int4 rc = getopt_vars("cluster", 7, vars, found)) return rc;
    if (found && vars.size() != 1) return error(vars.empty() ? 102 : 103);
    if (found) {
        r.cluster = vars[0];
        r.robust = true;
    }
    if (r.robust && weighttype == weight_i) return error(5101);
    if (score)
        if (Int4 rc = getopt_str("score", 5, r.score, found)) return rc;
    if (score && found)
        if (Int4 rc = checknewname(r.score)) return rc;
    if (weighttype == weight_p) weighttype = weight_a;
    return 0;
}

Int4 addcluster(estsample& s, const robustrequest& r) {
    if (!r.cluster) return 0;
    workspace work(std::size_t(s.run) + 1);
    UByte* lacks = work.get<UByte>();
    if (!lacks) return error(909);
    column c(r.cluster);
    boolean text = isstring(r.cluster);
    for (Int4 i = 0; i < s.run; i++) {
        lacks[i] = text ? *c.at(s.first + i) == 0 : c.get(s.first + i) == missing;
        if (tick()) return 1;
    }
    return narrowsample(s, lacks);
}

// ---- The sum of outer products.

namespace {

// Where the coefficients of the equations stand in the rows that are summed. Of one equation these are the sample's
// rows, which hold its columns somewhere; of several the columns of one after the other, each times its score.
struct scoredrows {
    const estsample& s;
    const std::vector<scoredequation>& equations;
    std::vector<Int4> places;
    Int4 width;
    boolean plain;
    scoredrows(const estsample& sample, const std::vector<scoredequation>& eqs)
        : s(sample), equations(eqs), plain(eqs.size() == 1) {
        for (const scoredequation& e : equations)
            for (Int4 column : e.columns) places.push_back(plain ? column : Int4(places.size()));
        width = (Int4(plain ? s.sources.size() + 1 : places.size()) + 3) / 4 * 4;
    }
    Double score(Int4 obs) const { return equations[0].score[obs - s.first]; }
    // One row of several equations added to `to`.
    void add(const Double* row, Int4 obs, Double* to) const {
        for (const scoredequation& e : equations) {
            Double c = e.score[obs - s.first];
            for (Int4 column : e.columns) *to++ += c * row[column];
        }
    }
};

Int4 observationsums(const scoredrows& r, tiles& t, Int4 step) {
    workspace factors(std::size_t(step) * sizeof(Double));
    workspace rows(r.plain ? 1 : std::size_t(step) * std::size_t(r.width) * sizeof(Double));
    Double *factor = factors.get<Double>(), *u = rows.get<Double>();
    if (!factor || !u) return error(909);
    boolean counts = weighttype == weight_f;
    return overrows(r.s, [&](const rowsblock& b) {
        for (Int4 i = 0; i < b.n; i++) {
            Double c = r.plain ? r.score(b.obs[i]) : 1;
            factor[i] = counts ? c * c / b.weight[i] : c * c;
        }
        if (r.plain) return t.add(b.x, factor, b.n, false);
        std::fill_n(u, std::size_t(b.n) * std::size_t(r.width), 0.0);
        for (Int4 i = 0; i < b.n; i++) r.add(b.row(i), b.obs[i], u + std::size_t(i) * std::size_t(r.width));
        t.add(u, factor, b.n, false);
    });
}

}  // namespace

Int4 numberclusters(const estsample& s, Int4 var, grouping& g) {
    drawnsample d;
    d.obs = workspace((std::size_t(s.n) + 1) * sizeof(Int4));
    d.x.emplace_back(isstring(var) ? 1 : (std::size_t(s.n) + 1) * sizeof(Double));
    Int4* obs = d.obs.get<Int4>();
    if (!obs || !d.x[0].p) return error(909);
    column c(var);
    for (Int4 i = 0; i < s.run; i++) {
        if (!s.in()[i]) continue;
        if (!isstring(var)) d.values(0)[d.n] = c.get(s.first + i);
        obs[d.n++] = s.first + i;
        if (tick()) return 1;
    }
    return groupsample(d, {{var}}, 0, g);
}

namespace {

Int4 clustersums(const scoredrows& r, Int4 var, tiles& t, Int4 step, Int4& clusters) {
    grouping g;
    if (Int4 rc = numberclusters(r.s, var, g)) return rc;
    clusters = g.groups;
    std::size_t width = std::size_t(r.width), size = std::size_t(g.groups) * width;
    workspace work(size * sizeof(Double));
    Double* sums = work.get<Double>();
    if (!sums) return error(909);
    std::fill_n(sums, size, 0.0);
    const UInt4* code = g.codes();
    Int4 rc = overrows(r.s, [&](const rowsblock& b) {
        for (Int4 i = 0; i < b.n; i++) {
            Double* to = sums + *code++ * width;
            if (r.plain) addscaled(to, b.row(i), r.score(b.obs[i]), r.width);
            else r.add(b.row(i), b.obs[i], to);
        }
    });
    for (Int4 at = 0; at < g.groups && !rc; at += step) {
        t.add(sums + std::size_t(at) * width, nullptr, std::min(step, g.groups - at), false);
        rc = tick();
    }
    return rc;
}

// What M is multiplied by; n and the degrees of freedom go to `out`.
Double scale(const estsample& s, const robustrule& rule, robustresult& out) {
    Double n = s.n;
    if (weighttype == weight_f) {
        n = 0;
        for (Int4 i = 0; i < s.run; i++)
            if (s.in()[i]) n += s.weights()[i];
    }
    out.n = out.clusters ? out.clusters : n;
    Double less = out.clusters ? 1 : rule.dfadj;
    Double q = out.n > less ? out.n / (out.n - less) : 0;
    out.df = std::max(std::floor(out.n - less), 0.0);
    if (out.clusters && rule.small) q *= n > rule.dfadj ? (n - 1) / (n - rule.dfadj) : 0;
    return rule.zeroscale ? 0 : rule.unitscale ? 1 : q;
}

}  // namespace

Int4 robustmiddle(const estsample& s, const robustrequest& r, const robustrule& rule,
                  const std::vector<scoredequation>& equations, matrix& M, robustresult& out) {
    scoredrows rows(s, equations);
    Int4 step = rowbuffers(s.sources.size()).step, k = Int4(rows.places.size());
    tiles t(rows.width, step);
    if (!t.got()) return error(909);
    if (Int4 rc = makematrix(M, k, k)) return rc;
    Int4 rc = r.cluster ? clustersums(rows, r.cluster, t, step, out.clusters) : observationsums(rows, t, step);
    if (rc) return rc;
    Double q = scale(s, rule, out);
    for (Int4 i = 0; i < k; i++)
        for (Int4 j = 0; j < k; j++)
            M.at(i, j) = t.sum(rows.places[std::size_t(i)], rows.places[std::size_t(j)]) * q;
    return 0;
}

Int4 sandwich(const matrix& D, const matrix& M, matrix& out) {
    Int4 n = D.rows, k = D.cols;
    matrix half, other, all;
    if (Int4 rc = makematrix(half, n, k)) return rc;
    if (Int4 rc = makematrix(other, k, n)) return rc;
    if (Int4 rc = makematrix(all, n, n)) return rc;
    for (Int4 i = 0; i < k; i++)
        for (Int4 j = 0; j < n; j++) other.at(i, j) = D.at(j, i);
    if (Int4 rc = matproduct(D.row(0), M.row(0), half.row(0), n, k, k)) return rc;
    if (Int4 rc = matproduct(half.row(0), other.row(0), all.row(0), n, k, n)) return rc;
    for (Int4 i = 0; i < n; i++)
        for (Int4 j = 0; j < i; j++) all.at(j, i) = all.at(i, j);
    out.x = std::move(all.x);
    return 0;
}

Int4 robustvariance(const estsample& s, const robustrequest& r, const robustrule& rule,
                    const std::vector<scoredequation>& equations, matrix& V, robustresult& out) {
    matrix M;
    if (Int4 rc = robustmiddle(s, r, rule, equations, M, out)) return rc;
    return sandwich(V, M, V);
}

// ---- What is left of it.

void postrobust(estimation& e, const robustrequest& r, const robustresult& result, const char* vcetype) {
    if (!r.robust) return;
    e.macros.push_back({"vcetype", vcetype});
    if (!r.cluster) return;
    e.macros.push_back({"clustvar", varlist[r.cluster - 1]});
    e.scalars.push_back({"N_clust", result.clusters});
}

Int4 storescores(const estsample& s, const robustrequest& r, const Double* score, const char* label) {
    if (r.score.empty()) return 0;
    if (Int4 rc = addvar(r.score, typedouble)) return rc;
    column c(nvar);
    for (Int4 obs = 1; obs <= nobs; obs++) {
        Int4 i = obs - s.first;
        boolean in = i >= 0 && i < s.run && s.in()[i];
        c.put(obs, !in ? missing : s.weights() ? score[i] / s.weights()[i] : score[i]);
    }
    visnvar = nvar;
    markchanged(nvar);
    return label ? putvarlabel(r.score, label) : 0;
}

}  // namespace velmo
