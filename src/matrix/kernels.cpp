#include "matrix/kernels.h"
#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>
#include "base/memalloc.h"
#include "base/poll.h"
#include "core/settings.h"
#include "matrix/lanes.h"
#include "output/print.h"

namespace velmo {

Double sweepfloor = 1e-19, sweeptolerance = 1e-9;
UByte sweeplargest = 1;

namespace {

void copyrows(const Double* from, Int4 fromstride, Double* to, Int4 tostride, Int4 rows, Int4 cols) {
    for (Int4 i = 0; i < rows; i++)
        std::copy_n(from + std::size_t(i) * std::size_t(fromstride), cols, to + std::size_t(i) * std::size_t(tostride));
}

}  // namespace

// ---- The sweep. Beaton 1964; the pivots by size and the reading of one triangle after Goodnight 1979.

namespace {

struct sweeping {
    rowsof a;
    Int4 n;
    UByte* flag;
    std::vector<Double> row, column;
    // Element i, k of a matrix of which the upper triangle is kept: of a swept and an unswept index the signs differ.
    Double element(Int4 i, Int4 k) const {
        if (i <= k) return a[i][k];
        return (flag[i] == 1) != (flag[k] == 1) ? -a[k][i] : a[k][i];
    }
    void drop(Int4 k) {
        flag[k] = 2;
        for (Int4 i = 0; i < k; i++) a[i][k] = 0;
        std::fill(a[k] + k, a[k] + n, 0.0);
    }
    void sweep(Int4 k) {
        Double d = a[k][k];
        for (Int4 i = 0; i < n; i++) {
            row[std::size_t(i)] = element(k, i);
            column[std::size_t(i)] = element(i, k);
        }
        for (Int4 i = 0; i < n; i++)
            if (i != k) addscaled(a[i] + i, &row[std::size_t(i)], -(column[std::size_t(i)] / d), n - i);
        for (Int4 i = 0; i < k; i++) a[i][k] = -column[std::size_t(i)] / d;
        for (Int4 j = k + 1; j < n; j++) a[k][j] = row[std::size_t(j)] / d;
        a[k][k] = 1 / d;
        flag[k] = flag[k] == 1 ? 0 : 1;
    }
};

// The next pivot of those that are left; heldback only when nothing else is.
Int4 nextpivot(const sweeping& s, Int4 first, Int4 last, Int4 heldback, const std::vector<UByte>& done) {
    Int4 best = -1;
    for (Int4 i = first; i <= last; i++) {
        if (done[std::size_t(i)] || i == heldback) continue;
        if (best < 0 || (sweeplargest && s.a[i][i] > s.a[best][best])) best = i;
    }
    return best < 0 ? heldback : best;
}

// Under `set debug on`: the diagonal and its tolerances.
void showsweep(const char* label, const sweeping& s, Int4 first, Int4 last, const std::vector<Double>& tolerance) {
    if (!set_debug) return;
    prttextf("%s\n", label);
    for (Int4 i = first; i <= last; i++) prttextf("*%2d %12.5e %12.5e\n", i, s.a[i][i], tolerance[std::size_t(i)]);
}

}  // namespace

Int4 matrin(Double* M, Int4 stride, Int4 n, Int4 first, Int4 last, const Int4* forced, Int4 nforced, Int4 heldback,
            UByte* flag) {
    sweeping s{{M, stride}, n, flag, std::vector<Double>(std::size_t(n)), std::vector<Double>(std::size_t(n))};
    std::vector<Double> tolerance(std::size_t(n), 0);
    std::vector<UByte> done(std::size_t(n), 0);
    for (Int4 i = first; i <= last; i++) {
        Double& d = s.a[i][i];
        if (d < 0) d = 0;
        tolerance[std::size_t(i)] = d == 0 ? sweeptolerance : std::max(sweeptolerance * d, sweepfloor);
    }
    showsweep("matrin input", s, first, last, tolerance);
    for (Int4 step = 0; step <= last - first; step++) {
        Int4 k = step < nforced ? forced[step] : nextpivot(s, first, last, heldback, done);
        done[std::size_t(k)] = 1;
        if (s.a[k][k] >= tolerance[std::size_t(k)]) s.sweep(k);
        else s.drop(k);
        if (tick()) return 1;
    }
    for (Int4 i = 0; i < n; i++)
        for (Int4 j = 0; j < i; j++) s.a[i][j] = s.a[j][i];
    showsweep("matrin output", s, first, last, tolerance);
    return 0;
}

Int4 matrin3(Double* M, Int4 stride, Int4 n, Int4 first, Int4 last, UByte* flag, boolean& ridged) {
    workspace kept(std::size_t(n) * std::size_t(n) * sizeof(Double));
    if (!kept.p) return 909;
    rowsof a{M, stride}, copy{kept.get<Double>(), n};
    copyrows(M, stride, copy.p, n, n, n);
    std::vector<UByte> flags(flag, flag + n);
    auto lost = [&] {
        for (Int4 i = first; i <= last; i++)
            if (copy[i][i] != 0 && a[i][i] == 0) return true;
        return false;
    };
    for (Double ridge = 1;; ridge *= 2) {
        if (Int4 rc = matrin(M, stride, n, first, last, nullptr, 0, -1, flag)) return rc;
        if (!lost() || ridge > 0x1p1000) return 0;      // elements that aren't numbers are never mended
        ridged = true;
        copyrows(copy.p, n, M, stride, n, n);
        std::copy(flags.begin(), flags.end(), flag);
        for (Int4 i = first; i <= last; i++) a[i][i] += std::fabs(a[i][i]) * ridge;
    }
}

// ---- Cholesky's factor, a column at a time. Benoit 1924.

Int4 cholesky(const Double* A, Double* L, Int4 stride, Int4 n) {
    rowsof l{L, stride};
    std::vector<Double> sums(static_cast<std::size_t>(n));
    // Columns of the factor stand as rows of the upper triangle until it is complete.
    for (Int4 j = 0; j < n; j++) {
        std::fill(sums.begin() + j, sums.end(), 0.0);
        for (Int4 k = 0; k < j; k++) addscaled(&sums[std::size_t(j)], l[k] + j, l[k][j], n - j);
        Double a = A[std::size_t(j) * std::size_t(stride) + std::size_t(j)], v = a - sums[std::size_t(j)];
        if (!(v > (j + 1) * a * 1.176836407e-16)) return 506;
        Double d = std::sqrt(v);
        for (Int4 i = j + 1; i < n; i++)
            l[j][i] = (A[std::size_t(i) * std::size_t(stride) + std::size_t(j)] - sums[std::size_t(i)]) / d;
        l[j][j] = d;
    }
    for (Int4 i = 0; i < n; i++)
        for (Int4 j = 0; j < i; j++) {
            l[i][j] = l[j][i];
            l[j][i] = 0;
        }
    return 0;
}

Int4 scaledcholesky(const Double* A, Double* L, Double* d, Int4 n) {
    rowsof l{L, n};
    auto a = [&](Int4 i, Int4 j) {
        return A[std::size_t(i) * std::size_t(n) + std::size_t(j)] / (d[i] * d[j]);
    };
    std::fill_n(L, std::size_t(n) * std::size_t(n), 0.0);
    for (Int4 i = 0; i < n; i++) {
        Double diagonal = A[std::size_t(i) * std::size_t(n) + std::size_t(i)];
        d[i] = diagonal == 0 ? 1 : std::sqrt(diagonal);
    }
    for (Int4 j = 0; j < n; j++) {
        if (a(j, j) == 0) continue;
        for (Int4 i = j; i < n; i++) {
            compsum s;
            for (Int4 k = 0; k < j; k++) compadd(s, l[i][k] * l[j][k]);
            Double v = a(i, j) - total(s);
            if (i == j && !(v > (j + 1) * a(j, j) * 1.176836507e-16)) return 506;
            l[i][j] = i == j ? std::sqrt(v) : v / l[j][j];
        }
    }
    return 0;
}

void scaledsolve(const Double* L, const Double* d, const Double* r, Double* b, Int4 n) {
    auto l = [&](Int4 i, Int4 j) { return L[std::size_t(i) * std::size_t(n) + std::size_t(j)]; };
    for (Int4 i = 0; i < n; i++) {
        compsum s;
        for (Int4 k = 0; k < i; k++) compadd(s, l(i, k) * b[k]);
        b[i] = l(i, i) == 0 ? 0 : (r[i] / d[i] - total(s)) / l(i, i);
    }
    for (Int4 i = n - 1; i >= 0; i--) {
        compsum s;
        for (Int4 k = i + 1; k < n; k++) compadd(s, l(k, i) * b[k]);
        b[i] = l(i, i) == 0 ? 0 : (b[i] - total(s)) / l(i, i);
    }
    for (Int4 i = 0; i < n; i++) b[i] /= d[i];
}

// ---- Triangular factors, with pivots by size relative to their rows' scales. Crout 1941; Wilkinson 1965. The
// subtractions from an element are those of Crout's inner products, in their order.

namespace {

Int4 scalesofrows(rowsof a, Int4 n, std::vector<Double>& scale) {
    for (Int4 i = 0; i < n; i++) {
        Double largest = 0;
        for (Int4 j = 0; j < n; j++) largest = std::max(largest, std::fabs(a[i][j]));
        if (largest == 0) return 504;
        scale.push_back(1 / largest);
    }
    return 0;
}

// In place; order tells where each row came from, `odd` whether an odd number of rows changed places.
Int4 factorise(rowsof a, Int4 n, std::vector<Int4>& order, boolean& odd) {
    std::vector<Double> scale;
    if (Int4 rc = scalesofrows(a, n, scale)) return rc;
    order.resize(std::size_t(n));
    for (Int4 i = 0; i < n; i++) order[std::size_t(i)] = i;
    for (Int4 k = 0; k < n; k++) {
        Int4 pivot = k;
        Double best = 0;
        for (Int4 i = k; i < n; i++)
            if (Double size = scale[std::size_t(i)] * std::fabs(a[i][k]); size > best) {
                best = size;
                pivot = i;
            }
        if (pivot != k) {
            std::swap_ranges(a[k], a[k] + n, a[pivot]);
            std::swap(scale[std::size_t(k)], scale[std::size_t(pivot)]);
            std::swap(order[std::size_t(k)], order[std::size_t(pivot)]);
            odd = !odd;
        }
        if (a[k][k] == 0) return 504;
        for (Int4 i = k + 1; i < n; i++) {
            Double t = a[i][k] /= a[k][k];
            if (t != 0) addscaled(a[i] + k + 1, a[k] + k + 1, -t, n - k - 1);
        }
        if (tick()) return 1;
    }
    return 0;
}

// Eight right-hand sides at once: x[i] minus the sum over j of a[i][j] x[j], in the order of j.
using eight = Double[8];
void subtractrows(const Double* arow, Int4 from, Int4 to, const eight* x, eight& out) {
    pair2 s[4];
#pragma GCC unroll 4
    for (Int4 c = 0; c < 4; c++) s[c] = loadpair(out + 2 * c);
    for (Int4 j = from; j < to; j++) {
        pair2 t = {arow[j], arow[j]};
#pragma GCC unroll 4
        for (Int4 c = 0; c < 4; c++) s[c] -= t * loadpair(x[j] + 2 * c);
    }
#pragma GCC unroll 4
    for (Int4 c = 0; c < 4; c++) storepair(out + 2 * c, s[c]);
}

}  // namespace

Int4 luinverse(const Double* A, Double* out, Int4 stride, Int4 n) {
    workspace factors(std::size_t(n) * std::size_t(n) * sizeof(Double)), sides(std::size_t(n) * sizeof(eight));
    if (!factors.p || !sides.p) return 909;
    rowsof a{factors.get<Double>(), n}, result{out, stride};
    copyrows(A, stride, a.p, n, n, n);
    std::vector<Int4> order;
    boolean odd = false;
    if (Int4 rc = factorise(a, n, order, odd)) return rc;
    eight* x = sides.get<eight>();
    for (Int4 first = 0; first < n; first += 8) {
        Int4 begin = n;            // above the first 1 of the eight unit vectors all is 0
        for (Int4 i = 0; i < n; i++) {
            for (Int4 c = 0; c < 8; c++) x[i][c] = order[std::size_t(i)] == first + c;
            if (order[std::size_t(i)] - first >= 0 && order[std::size_t(i)] - first < 8) begin = std::min(begin, i);
        }
        for (Int4 i = begin + 1; i < n; i++) subtractrows(a[i], begin, i, x, x[i]);
        for (Int4 i = n - 1; i >= 0; i--) {
            subtractrows(a[i], i + 1, n, x, x[i]);
            for (Double& v : x[i]) v /= a[i][i];
        }
        for (Int4 i = 0; i < n; i++) std::copy_n(x[i], std::min(8, n - first), result[i] + first);
        if (tick()) return 1;
    }
    return 0;
}

Int4 determinant(const Double* A, Int4 stride, Int4 n, Double& value) {
    workspace factors(std::size_t(n) * std::size_t(n) * sizeof(Double));
    if (!factors.p) return 909;
    rowsof a{factors.get<Double>(), n};
    copyrows(A, stride, a.p, n, n, n);
    std::vector<Int4> order;
    boolean odd = false;
    value = 0;
    Int4 rc = factorise(a, n, order, odd);
    if (rc) return rc == 504 ? 0 : rc;
    value = odd ? -1 : 1;
    for (Int4 i = 0; i < n; i++) value *= a[i][i];
    return 0;
}

}  // namespace velmo
