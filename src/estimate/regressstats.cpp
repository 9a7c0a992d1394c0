// What a fit is worth: residuals, sums of squares, statistics, robust variances.
#include <algorithm>
#include <cmath>
#include "estimate/regress.h"
#include "estimate/wald.h"
#include "language/stdparse.h"
#include "matrix/compadd.h"
#include "matrix/kernels.h"

namespace velmo {

namespace {

constexpr Double perfect = 0.99999999999999;
constexpr Double fullleverage = 1e-12;       // nearer to 1 than that a leverage is 1

// The quadratic form of a row's columns in H, about the means, and a constant: an observation's leverage.
struct leverages {
    std::vector<Int4> columns;
    std::vector<Double> H, means, x;
    Double base = 0;
    Double of(const Double* row) {
        std::size_t n = columns.size();
        for (std::size_t j = 0; j < n; j++) x[j] = row[columns[j]] - means[j];
        Double h = base;
        for (std::size_t i = 0; i < n; i++) {
            Double above = 0;
            for (std::size_t j = i + 1; j < n; j++) above += H[i * n + j] * x[j];
            h += x[i] * (H[i * n + i] * x[i] + 2 * above);
        }
        return h;
    }
};

leverages makeleverages(const normalequations& e, const projection& p, const regressmodel& m, const regressfit& f) {
    leverages l;
    Int4 k = m.regressors, q = Int4(p.means.size()), n = m.instruments ? q : k;
    l.x.resize(std::size_t(n));
    l.H.resize(std::size_t(n) * std::size_t(n));
    auto B = [&](Int4 i, Int4 j) { return p.B[std::size_t(i) * std::size_t(k) + std::size_t(j)]; };
    for (Int4 i = 0; i < n; i++) {
        l.columns.push_back(2 + i + (m.instruments ? k : 0));
        l.means.push_back(!e.deviations ? 0 : m.instruments ? p.means[std::size_t(i)] : e.means[std::size_t(i)]);
        for (Int4 j = 0; j < n; j++) {
            Double& h = l.H[std::size_t(i) * std::size_t(n) + std::size_t(j)];
            if (!m.instruments) h = f.V.at(i, j);
            for (Int4 a = 0; m.instruments && a < k; a++)
                for (Int4 b = 0; b < k; b++) h += B(i, a) * f.V.at(a, b) * B(j, b);
        }
    }
    l.base = e.deviations ? 1 / e.weights : 0;
    return l;
}

// The pass over the residuals: their sum of squares, and the sums of robust variances (null: none).
struct residualpass {
    std::vector<Double> b;               // of the row's columns from the first regressor on
    Double constant;
    Int4 hc;
    robustsums* robust;
    leverages leverage = {};
    workspace scores{0};
    compsum rss = {};
    boolean full = false;                // an observation has all of the leverage
    Double residual(const Double* row) const {
        Double e = 0;
        const Double* x = row + 2;
        for (std::size_t j = 0; j < b.size(); j++) e += b[j] * x[j];
        return e + constant - row[1];
    }
    // The residual as robust variances take it.
    Double adjusted(Double e, const Double* row, Double w) {
        Double left = 1 - leverage.of(row) * (weighttype == weight_f ? 1 : w);
        boolean none = left < fullleverage;
        full |= none;
        return none ? 0 : e / (hc == 2 ? std::sqrt(left) : left);
    }
    void block(const rowsblock& rows) {
        Double* score = scores.get<Double>();
        for (Int4 i = 0; i < rows.n; i++) {
            Double w = rows.weight ? rows.weight[i] : 1, e = residual(rows.row(i));
            compadd(rss, w * e * e);
            if (robust) score[i] = w * (hc ? adjusted(e, rows.row(i), w) : e);
        }
        if (robust) robust->add(rows, &score);
    }
};

// ---- Figures.

void sumsofsquares(const normalequations& e, const regressmodel& m, Double rss, regressfit& f) {
    Double mean = e.ysum * e.ysum / e.weights;
    f.tss = e.deviations || !f.centred ? e.yy : e.yy - mean;
    if (m.rssmat) {
        compsum t;
        for (std::size_t i = 0; i < e.Xy.size(); i++) compadd(t, e.Xy[i] * f.b.at(0, Int4(i)));
        f.rss = e.yy - total(t);
        if (f.rss < 0) f.rss = 0;
        f.mss = f.tss - f.rss;
    } else if (f.dfmodel == 0) {
        f.mss = 0;
        f.rss = f.tss;
    } else {
        f.rss = rss < 0 ? 0 : rss;
        f.mss = f.tss - f.rss;
        if (f.mss < 0 && !m.instruments) {
            f.mss = 0;
            f.rss = f.tss;
        }
    }
}

void statistics(const regressmodel& m, regressfit& f) {
    f.mse = m.mse1 ? 1 : f.df < 1 ? 0 : f.rss / f.df;
    if (f.tss > 0) f.r2 = 1 - f.rss / f.tss;
    if (f.r2 >= perfect && f.r2 != missing) {
        f.r2 = 1;
        f.mss = f.tss;
        f.rss = 0;
        f.mse = m.mse1;
    }
    if (f.r2 < 0) f.r2 = missing;
    Double F = f.mss / f.dfmodel / f.mse;
    f.F = f.dfmodel == 0 ? 0 : f.mse <= 0 || f.dfmodel < 0 || F < 0 ? missing : F;
    f.Fdf = f.dfmodel;
    if (f.r2 != missing && f.df > 0) f.r2a = 1 - (1 - f.r2) * f.dftotal / f.df;
    auto likelihood = [&](Double ss) { return -(std::log(ss / f.n) + std::log(2 * M_PI) + 1) * 0.5 * f.n; };
    if (m.instruments) return;
    if (f.rss > 0) f.ll = likelihood(f.rss);
    if ((m.constant || m.hascons) && f.rss + f.mss > 0) f.ll0 = likelihood(f.rss + f.mss);
}

void degrees(const regressmodel& m, regressfit& f) {
    f.df = m.dof != missing ? m.dof : m.mse1 ? f.n : f.n - f.k;
    f.dftotal = f.centred ? f.n - 1 : f.n;
    f.dfmodel = f.centred ? f.k - 1 : f.k;
}

// ---- Robust variances. Of two stages the rows are those of the instruments, which the projection takes to the
// predicted regressors.

// V C, where C makes rows of predicted regressors of those of the instruments and the constant.
Int4 throughprojection(const normalequations& e, const projection& p, const regressmodel& m, const matrix& V,
                         matrix& D) {
    Int4 k = m.regressors, q = Int4(p.means.size());
    if (Int4 rc = makematrix(D, V.rows, q + m.constant)) return rc;
    auto B = [&](Int4 i, Int4 j) { return p.B[std::size_t(i) * std::size_t(k) + std::size_t(j)]; };
    for (Int4 r = 0; r < V.rows; r++) {
        for (Int4 i = 0; i < q; i++)
            for (Int4 j = 0; j < k; j++) D.at(r, i) += V.at(r, j) * B(i, j);
        if (!m.constant) continue;
        Double shift = V.at(r, k);
        for (Int4 j = 0; j < k; j++) shift += V.at(r, j) * e.means[std::size_t(j)];
        for (Int4 i = 0; i < q; i++) shift -= D.at(r, i) * p.means[std::size_t(i)];
        D.at(r, q) = shift;
    }
    return 0;
}

Int4 beginrobust(const estsample& s, const projection& p, const regressmodel& m, residualpass& r) {
    std::vector<Int4> columns;
    Int4 first = 2 + (m.instruments ? m.regressors : 0);
    Int4 n = m.instruments ? Int4(p.means.size()) : m.regressors;
    for (Int4 j = 0; j < n; j++) columns.push_back(first + j);
    if (m.constant) columns.push_back(0);
    if (Int4 rc = r.robust->begin(s, m.robust, {columns})) return rc;
    r.scores = workspace(std::size_t(r.robust->step) * sizeof(Double));
    return r.scores.p ? 0 : error(909);
}

Int4 makerobust(const normalequations& e, const projection& p, const regressmodel& m, const residualpass& r,
                regressfit& f) {
    robustrule rule;
    rule.dfadj = f.k;
    rule.small = true;
    rule.unitscale = m.hc != 0;
    rule.zeroscale = r.full;
    matrix M, D;
    if (Int4 rc = r.robust->finish(rule, M, f.robustly)) return rc;
    if (m.instruments)
        if (Int4 rc = throughprojection(e, p, m, f.V, D)) return rc;
    if (Int4 rc = sandwich(m.instruments ? D : f.V, M, f.V)) return rc;
    if (m.dof == missing) f.df = f.robustly.df;
    return 0;
}

}  // namespace

Int4 waldF(const matrix& b, const matrix& V, Double scale, Int4 tested, Double& F, Double& df) {
    std::vector<Int4> which;
    for (Int4 i = 0; i < tested; i++) which.push_back(i);
    waldresult w;
    if (Int4 rc = waldtest(b, V, which, w)) return rc;
    Double value = w.chi2 / scale / w.df;
    df = w.df;
    F = tested == 0 ? 0 : w.df > 0 && scale > 0 && std::isfinite(value) && value >= 0 ? value : missing;
    return 0;
}

Int4 measurefit(const estsample& s, const normalequations& e, const projection& p, const regressmodel& m,
                regressfit& f) {
    f.robust = m.robust.robust || m.hc;
    f.n = weighttype == weight_i ? std::floor(e.weights) : e.weights;
    degrees(m, f);
    const Double* b = f.b.row(0);
    robustsums robust;
    residualpass r = {{b, b + m.regressors}, m.constant ? b[m.regressors] : 0, m.hc, f.robust ? &robust : nullptr};
    if (m.hc) r.leverage = makeleverages(e, p, m, f);
    if (f.robust)
        if (Int4 rc = beginrobust(s, p, m, r)) return rc;
    if (!m.rssmat || f.robust)
        if (Int4 rc = overrows(s, [&](const rowsblock& rows) { r.block(rows); })) return rc;
    sumsofsquares(e, m, total(r.rss), f);
    if (!std::isfinite(f.rss) || !std::isfinite(f.tss)) return error(1400);
    statistics(m, f);
    if (f.robust)
        if (Int4 rc = makerobust(e, p, m, r, f)) return rc;
    if (!f.robust && !m.instruments) return 0;
    return waldF(f.b, f.V, f.robust ? 1 : f.mse, m.regressors, f.F, f.Fdf);
}

}  // namespace velmo
