#include "estimate/robust.h"
#include <algorithm>
#include <cmath>
#include "data/cells.h"
#include "data/labels.h"
#include "language/options.h"
#include "language/stdparse.h"
#include "matrix/lanes.h"
#include "matrix/products.h"

namespace velmo {

// ---- The options.

Int4 getopt_robust(robustrequest& r, boolean score) {
    std::vector<Int4> vars;
    boolean found;
    r.typed = weighttype;
    r.robust = getopt_noflag("robust", 1, weighttype == weight_p);
    if (weighttype == weight_p && !r.robust) return error(403);
    if (Int4 rc = getopt_vars("cluster", 2, vars, found)) return rc;
    if (found && vars.size() != 1) return error(vars.empty() ? 102 : 103);
    if (found) {
        r.cluster = vars[0];
        r.robust = true;
    }
    if (r.robust && weighttype == weight_i) return error(5101);
    if (score)
        if (Int4 rc = getopt_str("score", 2, r.score, found)) return rc;
    if (score && found)
        if (Int4 rc = checknewname(r.score)) return rc;
    if (weighttype == weight_p) weighttype = weight_a;
    return 0;
}

// ---- The sum of outer products.

Int4 numberclusters(const estsample& s, Int4 var, grouping& g) {
    drawnsample d;
    d.obs = workspace((std::size_t(s.n) + 1) * sizeof(Int4));
    d.x.emplace_back(isstring(var) ? 1 : (std::size_t(s.n) + 1) * sizeof(Double));
    Int4* obs = d.obs.get<Int4>();
    if (!obs || !d.x[0].p) return error(909);
    const Double* value = s.clusters.get<Double>();
    column c(var);
    for (Int4 i = 0; i < s.run; i++) {
        if (!s.in()[i]) continue;
        if (!isstring(var)) d.values(0)[d.n] = value ? value[i] : c.get(s.first + i);
        obs[d.n++] = s.first + i;
        if (tick()) return 1;
    }
    return groupsample(d, {{var}}, 0, g);
}

namespace {

// A row of several equations: their columns times their scores, added to `to`.
void addequations(const std::vector<std::vector<Int4>>& columns, const Double* row, const Double* const* score, Int4 i,
                  Double* to) {
    for (std::size_t e = 0; e < columns.size(); e++)
        for (Int4 column : columns[e]) *to++ += score[e][i] * row[column];
}

}  // namespace

// The rows that are summed are of one equation those of the sample, which hold its columns somewhere; of several the
// columns of one after the other, each times its score.
Int4 robustsums::begin(const estsample& sample, const robustrequest& r, const std::vector<std::vector<Int4>>& of) {
    s = &sample;
    clustered = r.cluster != 0;
    columns = of;
    plain = of.size() == 1;
    places.clear();
    for (const std::vector<Int4>& equation : of)
        for (Int4 column : equation) places.push_back(plain ? column : Int4(places.size()));
    width = (Int4(plain ? s->sources.size() + 1 : places.size()) + 3) / 4 * 4;
    step = rowbuffers(s->sources.size()).step;
    std::size_t rows = std::size_t(step);
    if (clustered)
        if (Int4 rc = numberclusters(*s, r.cluster, clusters)) return rc;
    if (clustered) rows = std::size_t(clusters.groups);
    sums = tiles(width, step);
    factors = workspace(std::size_t(step) * sizeof(Double));
    work = workspace(plain && !clustered ? 1 : rows * std::size_t(width) * sizeof(Double));
    if (!sums.got() || !factors.p || !work.p) return error(909);
    if (clustered) std::fill_n(work.get<Double>(), rows * std::size_t(width), 0.0);
    at = 0;
    return 0;
}

void robustsums::add(const rowsblock& b, const Double* const* score) {
    Double *factor = factors.get<Double>(), *u = work.get<Double>();
    if (clustered) {
        const UInt4* code = clusters.codes() + at;
        at += b.n;
        for (Int4 i = 0; i < b.n; i++) {
            Double* to = u + std::size_t(code[i]) * std::size_t(width);
            if (plain) addscaled(to, b.row(i), score[0][i], width);
            else addequations(columns, b.row(i), score, i, to);
        }
        return;
    }
    boolean counts = weighttype == weight_f;
    for (Int4 i = 0; i < b.n; i++) {
        Double c = plain ? score[0][i] : 1;
        factor[i] = counts ? c * c / b.weight[i] : c * c;
    }
    if (plain) return sums.add(b.x, factor, b.n, false);
    std::fill_n(u, std::size_t(b.n) * std::size_t(width), 0.0);
    for (Int4 i = 0; i < b.n; i++)
        addequations(columns, b.row(i), score, i, u + std::size_t(i) * std::size_t(width));
    sums.add(u, factor, b.n, false);
}

namespace {

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

Int4 robustsums::finish(const robustrule& rule, matrix& M, robustresult& out) {
    Int4 k = Int4(places.size());
    out.clusters = clusters.groups;
    for (Int4 i = 0; i < out.clusters; i += step) {
        sums.add(work.get<Double>() + std::size_t(i) * std::size_t(width), nullptr, std::min(step, out.clusters - i),
                 false);
        if (tick()) return 1;
    }
    if (Int4 rc = makematrix(M, k, k)) return rc;
    Double q = scale(*s, rule, out);
    for (Int4 i = 0; i < k; i++)
        for (Int4 j = 0; j < k; j++)
            M.at(i, j) = sums.sum(places[std::size_t(i)], places[std::size_t(j)]) * q;
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
    std::vector<std::vector<Int4>> columns;
    for (const scoredequation& e : equations) columns.push_back(e.columns);
    robustsums sums;
    if (Int4 rc = sums.begin(s, r, columns)) return rc;
    workspace work(equations.size() * std::size_t(sums.step) * sizeof(Double));
    std::vector<const Double*> score;
    for (std::size_t e = 0; e < equations.size(); e++)
        score.push_back(work.get<Double>() + e * std::size_t(sums.step));
    if (!work.p) return error(909);
    Int4 rc = overrows(s, [&](const rowsblock& b) {
        Double* to = work.get<Double>();
        for (std::size_t e = 0; e < equations.size(); e++, to += sums.step)
            for (Int4 i = 0; i < b.n; i++) to[i] = equations[e].score[b.obs[i] - s.first];
        sums.add(b, score.data());
    });
    matrix M;
    if (!rc) rc = sums.finish(rule, M, out);
    return rc ? rc : sandwich(V, M, V);
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
