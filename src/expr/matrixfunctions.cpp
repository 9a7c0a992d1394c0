// The functions of matrices.
#include <algorithm>
#include <cmath>
#include <vector>
#include "base/saved.h"
#include "base/state.h"
#include "expr/matrixwords.h"
#include "matrix/kernels.h"
#include "matrix/products.h"

namespace velmo {

namespace {

// A size that is typed as a number: 198 when it is none.
boolean sizefrom(machine& m, Double value, Int4& n) {
    if (refused(m, settled(value) == missing || value < 1 ? 198 : value >= Double(matsize) + 1 ? 908 : 0)) return false;
    n = Int4(value);
    return true;
}

boolean needsquare(machine& m, const matrix& a) { return !refused(m, a.rows == a.cols ? 0 : 503); }

// Square, symmetric and without missing values.
boolean needsymmetric(machine& m, const matrix& a) {
    if (!needsquare(m, a)) return false;
    return !refused(m, !issymmetric(a) ? 505 : hasmissing(a) ? 504 : 0);
}

// A kernel's code: a Break has no message.
boolean kernelfailed(machine& m, Int4 rc) { return failed(m, rc > 1 ? error(rc) : rc); }

}  // namespace

void mat_identity(machine& m) {
    Int4 n;
    matrix a;
    if (!sizefrom(m, *m.top--, n) || failed(m, makematrix(a, n, n))) return;
    for (Int4 i = 0; i < n; i++) a.at(i, i) = 1;
    a.symmetric = true;
    pushmatrix(m, std::move(a));
}

void mat_constant(machine& m) {
    Int4 r, c;
    matrix a;
    m.top -= 3;
    Double z = settled(m.top[1]);
    if (!sizefrom(m, m.top[3], r) || !sizefrom(m, m.top[2], c)) return;
    if (refused(m, z == missing ? 503 : 0) || failed(m, makematrix(a, r, c))) return;
    std::fill_n(a.row(0), elements(a), z);
    a.symmetric = r == c;
    pushmatrix(m, std::move(a));
}

void mat_syminv(machine& m) {
    matrix& a = topmatrix(m);
    if (!needsymmetric(m, a)) return;
    saved bysize(sweeplargest, UByte(1));
    std::vector<UByte> flag(std::size_t(a.rows), 0);
    if (kernelfailed(m, matrin(a.row(0), a.cols, a.rows, 0, a.rows - 1, nullptr, 0, -1, flag.data()))) return;
    a.symmetric = true;
    std::swap(a.rownames, a.colnames);
}

void mat_inv(machine& m) {
    matrix& a = topmatrix(m);
    matrix out;
    if (!needsquare(m, a) || refused(m, hasmissing(a) ? 504 : 0) || failed(m, makematrix(out, a.rows, a.cols))) return;
    if (kernelfailed(m, luinverse(a.row(0), out.row(0), a.cols, a.rows))) return;
    std::swap(a.x, out.x);
    a.symmetric = false;
    std::swap(a.rownames, a.colnames);
}

void mat_cholesky(machine& m) {
    matrix& a = topmatrix(m);
    matrix out;
    if (!needsymmetric(m, a) || failed(m, makematrix(out, a.rows, a.cols))) return;
    if (kernelfailed(m, cholesky(a.row(0), out.row(0), a.cols, a.rows))) return;
    std::swap(a.x, out.x);
    a.symmetric = false;
}

void mat_corr(machine& m) {
    matrix& a = topmatrix(m);
    if (!needsymmetric(m, a)) return;
    std::vector<Double> root(std::size_t(a.rows), 0.0);
    for (Int4 i = 0; i < a.rows; i++) {
        if (refused(m, a.at(i, i) > 0 ? 0 : 504)) return;
        root[std::size_t(i)] = std::sqrt(a.at(i, i));
    }
    for (Int4 i = 0; i < a.rows; i++)
        for (Int4 j = 0; j < a.cols; j++)
            a.at(i, j) = i == j ? 1 : settled(a.at(i, j) / (root[std::size_t(i)] * root[std::size_t(j)]));
}

void mat_diag(machine& m) {
    matrix v = popmatrix(m), a;
    Int4 n = std::max(v.rows, v.cols);
    if (refused(m, v.rows == 1 || v.cols == 1 ? 0 : 503) || failed(m, makematrix(a, n, n))) return;
    for (Int4 i = 0; i < n; i++) a.at(i, i) = v.row(0)[i];
    a.symmetric = true;
    if (v.rows != 1 || v.colnames[0].name[0] != placeholder)
        a.rownames = a.colnames = v.rows == 1 ? v.colnames : v.rownames;
    pushmatrix(m, std::move(a));
}

void mat_vecdiag(machine& m) {
    matrix a = popmatrix(m), v;
    if (!needsquare(m, a) || failed(m, makematrix(v, 1, a.cols))) return;
    for (Int4 j = 0; j < a.cols; j++) v.at(0, j) = a.at(j, j);
    v.colnames = std::move(a.colnames);
    pushmatrix(m, std::move(v));
}

// The pivot is 1 / itself, its row divided by it, its column likewise and negated.
void mat_sweep(machine& m) {
    matrix& a = topmatrix(m);
    Double place = settled(*m.top--);
    if (!needsquare(m, a)) return;
    boolean outside = place < 1 || place >= Double(a.rows) + 1;
    if (refused(m, place == missing || hasmissing(a) ? 504 : outside ? 503 : 0)) return;
    Int4 k = Int4(place) - 1;
    Double d = a.at(k, k);
    if (refused(m, d == 0 ? 504 : 0)) return;
    for (Int4 i = 0; i < a.rows; i++) {
        if (i == k) continue;
        Double t = a.at(i, k) / d;
        for (Int4 j = 0; j < a.cols; j++)
            if (j != k) a.at(i, j) -= a.at(k, j) * t;
        a.at(i, k) = -t;
    }
    for (Int4 j = 0; j < a.cols; j++) a.at(k, j) = j == k ? 1 / d : a.at(k, j) / d;
    a.symmetric = false;
    std::swap(a.rownames[std::size_t(k)], a.colnames[std::size_t(k)]);
}

// ---- Numbers

void mat_trace(machine& m) {
    matrix a = popmatrix(m);
    if (!needsquare(m, a)) return;
    Double sum = 0;
    for (Int4 i = 0; i < a.rows && sum != missing; i++) sum = anymissing(sum, a.at(i, i)) ? missing : sum + a.at(i, i);
    *++m.top = sum;
}

void mat_det(machine& m) {
    matrix a = popmatrix(m);
    if (!needsquare(m, a)) return;
    Double det = missing;
    if (!hasmissing(a) && kernelfailed(m, determinant(a.row(0), a.cols, a.rows, det))) return;
    *++m.top = det;
}

void mat_rowsof(machine& m) { *++m.top = popmatrix(m).rows; }
void mat_colsof(machine& m) { *++m.top = popmatrix(m).cols; }

void mat_diag0cnt(machine& m) {
    matrix a = popmatrix(m);
    if (!needsquare(m, a)) return;
    Int4 n = 0;
    for (Int4 i = 0; i < a.rows; i++) n += a.at(i, i) == 0;
    *++m.top = n;
}

// The largest of |x-y| / (|y|+1); missing where one alone is missing.
void mat_mreldif(machine& m) {
    matrix x = popmatrix(m), y = popmatrix(m);
    if (refused(m, x.rows == y.rows && x.cols == y.cols ? 0 : 503)) return;
    Double most = 0;
    for (std::size_t i = 0; i < elements(x) && most != missing; i++) {
        Double a = x.row(0)[i], b = y.row(0)[i];
        Double d = a == b ? 0 : anymissing(a, b) ? missing : std::fabs(a - b) / (std::fabs(b) + 1);
        most = std::max(most, d);
    }
    *++m.top = most;
}

}  // namespace velmo
