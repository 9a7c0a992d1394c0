#include "estimate/cellmeans.h"
#include <algorithm>
#include <cmath>
#include "language/stdparse.h"
#include "matrix/probability.h"
#include "output/errors.h"

namespace velmo {

// ---- Sums of twice the precision (Dekker 1971).

namespace {

widesum twosum(Double a, Double b) {
    Double s = a + b, z = s - a;
    return {s, (a - (s - z)) + (b - z)};
}

widesum times(widesum a, widesum b) {
    Double p = a.hi * b.hi;
    return twosum(p, std::fma(a.hi, b.hi, -p) + (a.hi * b.lo + a.lo * b.hi));
}

widesum minus(widesum a, widesum b) {
    a.add(widesum{-b.hi, -b.lo});
    return a;
}

widesum over(widesum a, widesum b) {
    Double q = a.hi / b.hi;
    return twosum(q, minus(a, times({q, 0}, b)).hi / b.hi);
}

}  // namespace

void widesum::add(Double x) {
    widesum s = twosum(hi, x);
    *this = twosum(s.hi, s.lo + lo);
}

void widesum::add(widesum x) {
    widesum s = twosum(hi, x.hi);
    *this = twosum(s.hi, s.lo + (lo + x.lo));
}

void cellsums::add(const cellsums& other) {
    w.add(other.w);
    x.add(other.x);
    xx.add(other.xx);
    n += other.n;
}

// ---- Cells.

celltable::celltable(const std::vector<Int4>& by) {
    for (Int4 var : by) lists.emplace_back(var, mostcells);
    cells.assign(std::size_t(mostcells * stride()), -1);
}

cellsums celltable::sumsof(Int4 row, Int4 col) const {
    cellsums s;
    for (std::size_t at = 0; at < cells.size(); at++) {
        if (cells[at] < 0) continue;
        Int4 i = Int4(at) / stride(), j = Int4(at) % stride();
        if ((row < 0 || row == i) && (col < 0 || col == j)) s.add(sums[std::size_t(cells[at])]);
    }
    return s;
}

Double celltable::total() const { return weighttype == weight_f ? weights : n; }

cellfigures celltable::figures(const cellsums& s) const {
    cellfigures c;
    if (!(s.w.hi > 0)) return c;
    widesum mean = over(s.x, s.w);
    Double deviations = minus(s.xx, times(mean, s.x)).hi;
    // What the sums can't tell from nothing is nothing: equal values have no variance.
    if (deviations <= s.xx.hi * 1e-31 * (s.n + 16)) deviations = 0;
    c.mean = mean.hi;
    c.freq = c.count = c.f = s.n;
    if (weighttype) c.freq = s.w.hi / n * weights;
    if (weighttype == weight_f) c.count = c.f = c.freq = std::floor(c.freq + 0.5);
    Double variance = deviations / s.w.hi;
    if (c.f >= 2) variance *= c.f / (c.f - 1);
    c.deviations = weighttype == weight_f ? deviations * (c.f / s.w.hi) : deviations;
    if (!std::isfinite(c.deviations)) c.deviations = missing;
    if (variance >= 0 && std::isfinite(variance)) c.sd = std::sqrt(variance);
    return c;
}

namespace {

// A block of the sample: observations under the mask have x, groups and a weight above 0.
struct cellblock {
    UByte mask[blocksize];
    valuelist::key64 keys[2][blocksize];
    Double x[blocksize], weight[blocksize];
};

template <class F> Int4 overcells(Int4 x, boolean keepmissing, const celltable& t, F one) {
    cellblock b;
    std::fill_n(b.weight, blocksize, 1.0);
    return overblocks([&](Int4 first, Int4 n) -> Int4 {
        exp_ifblock(first, n, b.mask);
        getcolumn(x, first, n, b.x);
        for (Int4 i = 0; i < n; i++) b.mask[i] &= b.x[i] != missing;
        for (std::size_t j = 0; j < t.lists.size(); j++)
            t.lists[j].getkeys(first, n, keepmissing, b.mask, b.keys[j]);
        if (weighttype)
            if (Int4 rc = weighblock(first, n, b.mask, b.weight, false)) return rc;
        return one(b, first, n);
    });
}

// The sum of the weights of the observations used, and how many there are.
Int4 sumweights(Int4 x, boolean keepmissing, celltable& t) {
    widesum sum;
    Int4 n = 0;
    Int4 rc = overcells(x, keepmissing, t, [&](const cellblock& b, Int4, Int4 count) {
        for (Int4 i = 0; i < count; i++) {
            if (!b.mask[i]) continue;
            sum.add(b.weight[i]);
            n++;
        }
        return 0;
    });
    t.n = n;
    t.weights = sum.hi;
    return rc;
}

void addvalue(cellsums& s, Double x, Double w) {
    widesum wx = times({w, 0}, {x, 0});
    s.w.add(w);
    s.x.add(wx);
    s.xx.add(times(wx, {x, 0}));
    s.n++;
}

}  // namespace

Int4 fillcells(Int4 x, boolean keepmissing, celltable& t) {
    if (Int4 rc = sumweights(x, keepmissing, t)) return rc;
    Double mean = weighttype ? t.weights / t.n : 1;
    Int4 row[blocksize], col[blocksize] = {};
    return overcells(x, keepmissing, t, [&](const cellblock& b, Int4 first, Int4 n) -> Int4 {
        for (std::size_t j = 0; j < t.lists.size(); j++)
            if (!t.lists[j].getnumbers(first, n, b.mask, b.keys[j], true, j ? col : row)) return error(134);
        for (Int4 i = 0; i < n; i++) {
            if (!b.mask[i]) continue;
            Int4& cell = t.cells[std::size_t(row[i] * t.stride() + col[i])];
            if (cell < 0) {
                if (Int4(t.sums.size()) == mostcells) return error(134);
                cell = Int4(t.sums.size());
                t.sums.emplace_back();
            }
            addvalue(t.sums[std::size_t(cell)], b.x[i], b.weight[i] / mean);
        }
        return 0;
    });
}

// ---- Analysis of variance.

namespace {

Double orzero(Double p) { return p == missing ? 0 : p; }

// Bartlett's test that the groups have one variance, over those that have any.
void equalvariances(const std::vector<group>& groups, variances& v) {
    Double g = 0, n = 0, pooled = 0, logs = 0, inverse = 0;
    for (const group& c : groups) {
        Double variance = c.n >= 2 ? c.deviations / (c.n - 1) : 0;
        if (c.n < 2) v.single++;
        else if (!(variance > 0)) v.multiple++;
        if (!(variance > 0)) continue;
        g++;
        n += c.n;
        pooled += c.deviations;
        logs += (c.n - 1) * std::log(variance);
        inverse += 1 / (c.n - 1);
    }
    Double m = n - g;
    if (!(g > 1 && m > 0)) return;
    v.dfbartlett = Int4(g) - 1;
    v.bartlett = (m * std::log(pooled / m) - logs) / (1 + (inverse - 1 / m) / (3 * (g - 1)));
    v.pbartlett = orzero(chi2tail(g - 1, v.bartlett));
}

}  // namespace

variances analysis(const std::vector<group>& groups, const cellfigures& all, Double n) {
    variances v{};
    v.n = n;
    v.dfm = Int4(groups.size()) - 1;
    v.dfr = Int4(n - 1 - v.dfm);
    for (const group& c : groups) v.rss += c.deviations;
    v.mss = all.deviations - v.rss;
    v.F = v.bartlett = missing;
    if (v.msm() != missing && v.msr() != missing && v.msr() != 0) v.F = v.msm() / v.msr();
    if (v.F != missing) v.p = Ftail(v.dfm, v.dfr, v.F);
    equalvariances(groups, v);
    return v;
}

Double comparisonp(comparison kind, const group& a, const group& b, Int4 k, const variances& v) {
    Double error = std::sqrt((1 / a.n + 1 / b.n) * v.msr());
    if (v.msr() == missing || !(error > 0)) return missing;
    Double t = std::fabs(a.mean - b.mean) / error, m = 0.5 * k * (k - 1), p;
    if (kind == scheffe) {
        p = Ftail(k - 1, v.dfr, t * t / (k - 1));
    } else {
        p = tprob(v.dfr, t);
        if (p == missing) return missing;
        p = kind == bonferroni ? m * p : 1 - std::pow(1 - p, m);
    }
    return p == missing ? missing : std::min(p, 1.0);
}

}  // namespace velmo
