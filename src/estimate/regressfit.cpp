// Cross-products to coefficients: the sweep decides who stays and gives the inverse, Cholesky's factor the solution.
#include <algorithm>
#include <cmath>
#include "estimate/regress.h"
#include "matrix/compadd.h"
#include "matrix/kernels.h"

namespace velmo {

namespace {

constexpr Int4 outcome = 1, firstregressor = 2;      // among the cross-products, behind the constant's

std::size_t place(Int4 i, Int4 j, Int4 n) { return std::size_t(i) * std::size_t(n) + std::size_t(j); }

boolean allfinite(const Double* x, std::size_t n) {
    return std::all_of(x, x + n, [](Double v) { return std::isfinite(v); });
}

// Sweeps the n x n matrix A; what is dropped is marked. last: an index that is held back, or -1.
Int4 sweepall(std::vector<Double>& A, Int4 n, Int4 last, std::vector<UByte>& dropped) {
    std::vector<UByte> flag(std::size_t(n) + 1, 0);
    if (n)
        if (Int4 rc = matrin(A.data(), n, n, 0, n - 1, nullptr, 0, last, flag.data())) return rc;
    for (Int4 i = 0; i < n; i++) dropped.push_back(flag[std::size_t(i)] == 2);
    return 0;
}

// A with the rows and columns of those that are dropped 0.
std::vector<Double> without(const std::vector<Double>& A, const std::vector<UByte>& dropped) {
    Int4 n = Int4(dropped.size());
    std::vector<Double> left(A);
    for (Int4 i = 0; i < n; i++)
        for (Int4 j = 0; j < n; j++)
            if (dropped[std::size_t(i)] || dropped[std::size_t(j)]) left[place(i, j, n)] = 0;
    return left;
}

struct factored {
    std::vector<Double> L, d;
    Int4 n;
    Int4 make(const std::vector<Double>& A, Int4 size) {
        n = size;
        L.resize(A.size());
        d.resize(std::size_t(n));
        return scaledcholesky(A.data(), L.data(), d.data(), n);
    }
    void solve(const Double* r, Double* b) const { scaledsolve(L.data(), d.data(), r, b, n); }
};

// ---- The equations.

std::vector<Double> block(const crossproducts& c, Int4 row, Int4 rows, Int4 col, Int4 cols) {
    std::vector<Double> out;
    for (Int4 i = 0; i < rows; i++)
        for (Int4 j = 0; j < cols; j++) out.push_back(c.m.at(row + i, col + j));
    return out;
}

std::vector<Double> meansof(const crossproducts& c, Int4 row, Int4 rows) {
    std::vector<Double> out = block(c, row, rows, 0, 1);
    for (Double& x : out) x /= c.m.at(0, 0);
    return out;
}

}  // namespace

normalequations plainequations(const crossproducts& c, const regressmodel& m, boolean deviations) {
    Int4 p = m.regressors;
    normalequations e;
    e.XX = block(c, firstregressor, p, firstregressor, p);
    e.Xy = block(c, firstregressor, p, outcome, 1);
    e.means = meansof(c, firstregressor, p);
    e.yy = c.m.at(outcome, outcome);
    e.ysum = c.m.at(outcome, 0);
    e.weights = c.m.at(0, 0);
    e.deviations = deviations;
    return e;
}

// ---- The first stage: X becomes ZB.

Int4 projectregressors(const crossproducts& c, const regressmodel& m, normalequations& e, projection& p) {
    Int4 k = m.regressors, at = firstregressor + k, q = c.m.rows - at;
    p.XX = e.XX;
    p.XZ = block(c, firstregressor, k, at, q);
    p.ZZ = block(c, at, q, at, q);
    p.Zy = block(c, at, q, outcome, 1);
    p.means = meansof(c, at, q);
    p.B.assign(std::size_t(q) * std::size_t(k), 0);
    std::vector<Double> swept(p.ZZ), own(p.XX), b(std::size_t(q) + 1);
    std::vector<UByte> dropped, owndropped, lost;
    if (Int4 rc = sweepall(swept, q, -1, dropped)) return rc;
    factored f;
    if (Int4 rc = f.make(without(p.ZZ, dropped), q)) return error(rc);
    for (Int4 j = 0; j < k; j++) {
        f.solve(p.XZ.data() + place(j, 0, q), b.data());
        for (Int4 i = 0; i < q; i++) p.B[place(i, j, k)] = b[std::size_t(i)];
    }
    auto inner = [&](const Double* z, Int4 j) {
        compsum s;
        for (Int4 i = 0; i < q; i++) compadd(s, z[i] * p.B[place(i, j, k)]);
        return total(s);
    };
    for (Int4 j = 0; j < k; j++) {
        for (Int4 i = 0; i <= j; i++)
            e.XX[place(i, j, k)] = e.XX[place(j, i, k)] = inner(p.XZ.data() + place(i, 0, q), j);
        e.Xy[std::size_t(j)] = inner(p.Zy.data(), j);
    }
    std::vector<Double> predicted(e.XX);
    if (Int4 rc = sweepall(own, k, -1, owndropped)) return rc;
    if (Int4 rc = sweepall(predicted, k, -1, lost)) return rc;
    for (Int4 j = 0; j < k; j++)
        if (lost[std::size_t(j)] && !owndropped[std::size_t(j)]) return error(481);
    return 0;
}

// ---- The fit.

namespace {

// Whether the regressors span a constant: the constant, held back to the last step of the sweep, is dropped.
Int4 spansconstant(const crossproducts& c, const normalequations& e, Int4 p, boolean& spans) {
    Int4 n = p + 1;
    std::vector<Double> A(std::size_t(n) * std::size_t(n));
    for (Int4 i = 0; i < n; i++)
        for (Int4 j = 0; j < n; j++) {
            boolean inner = i < p && j < p;
            A[place(i, j, n)] = inner ? e.XX[place(i, j, p)] : c.m.at(0, i == j ? 0 : firstregressor + std::min(i, j));
        }
    std::vector<UByte> dropped;
    if (Int4 rc = sweepall(A, n, p, dropped)) return rc;
    spans = dropped[std::size_t(p)];
    return 0;
}

// The constant's row of the inverse.
void constantsrow(const normalequations& e, matrix& V) {
    Int4 p = V.rows - 1;
    compsum t;
    for (Int4 i = 0; i < p; i++) {
        compsum s;
        for (Int4 j = 0; j < p; j++) compadd(s, e.means[std::size_t(j)] * V.at(i, j));
        V.at(p, i) = V.at(i, p) = -total(s);
    }
    for (Int4 i = 0; i < p; i++) compadd(t, e.means[std::size_t(i)] * V.at(i, p));
    V.at(p, p) = 1 / e.weights - total(t);
}

Int4 coefficients(const normalequations& e, const regressmodel& m, regressfit& f) {
    Int4 p = m.regressors;
    std::vector<Double> b(std::size_t(p) + 1, 0);
    if (m.bmat) {
        for (Int4 i = 0; i < p; i++) {
            compsum s;
            for (Int4 j = 0; j < p; j++) compadd(s, f.V.at(i, j) * e.Xy[std::size_t(j)]);
            b[std::size_t(i)] = total(s);
        }
    } else {
        factored factor;
        if (Int4 rc = factor.make(without(e.XX, f.dropped), p)) return error(rc);
        factor.solve(e.Xy.data(), b.data());
    }
    if (m.constant) {
        compsum s;
        for (Int4 i = 0; i < p; i++) compadd(s, e.means[std::size_t(i)] * b[std::size_t(i)]);
        b[std::size_t(p)] = e.ysum / e.weights - total(s);
    }
    std::copy_n(b.data(), f.b.cols, f.b.row(0));
    return 0;
}

}  // namespace

Int4 fitleast(const crossproducts& c, const normalequations& e, regressmodel& m, regressfit& f) {
    Int4 p = m.regressors, k = p + m.constant;
    if (!allfinite(c.m.row(0), std::size_t(c.m.rows) * std::size_t(c.m.rows))) return error(1400);
    boolean spans = false;
    if (m.hascons)
        if (Int4 rc = spansconstant(c, e, p, spans)) return rc;
    m.hascons = spans;
    f.centred = m.constant || m.hascons || m.tsscons;
    std::vector<Double> inverse(e.XX);
    if (Int4 rc = sweepall(inverse, p, -1, f.dropped)) return rc;
    if (Int4 rc = makematrix(f.b, 1, k)) return rc;
    if (Int4 rc = makematrix(f.V, k, k)) return rc;
    for (Int4 i = 0; i < p; i++)
        for (Int4 j = 0; j < p; j++) f.V.at(i, j) = inverse[place(i, j, p)];
    if (m.constant) constantsrow(e, f.V);
    f.k = k - Int4(std::count(f.dropped.begin(), f.dropped.end(), 1));
    if (Int4 rc = coefficients(e, m, f)) return rc;
    boolean finite = allfinite(f.b.row(0), std::size_t(k)) && allfinite(f.V.row(0), std::size_t(k) * std::size_t(k));
    return finite ? 0 : error(1400);
}

}  // namespace velmo
