// The symmetric eigensystem and the singular values: kernels.h declares them.
#include <algorithm>
#include <cmath>
#include <vector>
#include "base/memalloc.h"
#include "base/poll.h"
#include "matrix/kernels.h"
#include "matrix/lanes.h"

namespace velmo {

namespace {

constexpr Int4 mostturns = 30;       // of the iteration, for each value

struct rowsof {
    Double* p;
    Int4 stride;
    Double* operator[](Int4 i) const { return p + std::size_t(i) * std::size_t(stride); }
};

// The hypotenuse, without overflow of squares. Moler and Morrison 1983.
Double hypotenuse(Double a, Double b) {
    Double p = std::max(std::fabs(a), std::fabs(b)), q = std::min(std::fabs(a), std::fabs(b));
    if (p == 0) return 0;
    Double r = (q / p) * (q / p), t = 4 + r;
    while (t != 4 && t == t) {
        Double s = r / t, u = 1 + 2 * s;
        p *= u;
        r = (s / u) * (s / u) * r;
        t = 4 + r;
    }
    return p;
}

// ---- The symmetric matrix.

// Reduces the lower triangle of z to tridiagonal form, diagonal d and e (e[i] beside d[i] and d[i-1]); z becomes the
// transformation, whose columns are those of the basis. Martin, Reinsch and Wilkinson 1968 (tred2).
struct tridiagonal {
    rowsof z;
    Int4 n;
    Double *d, *e, *p;

    // The reflection that clears row i left of its subdiagonal; its vector stays in the row, half its square in d[i].
    void reflect(Int4 i) {
        Double* u = z[i];
        Double scale = 0, h = 0;
        for (Int4 k = 0; k < i; k++) scale += std::fabs(u[k]);
        d[i] = 0;
        e[i] = u[i - 1];
        if (i == 1 || scale == 0) return;
        for (Int4 k = 0; k < i; k++) {
            u[k] /= scale;
            h += u[k] * u[k];
        }
        Double f = u[i - 1], g = f >= 0 ? -std::sqrt(h) : std::sqrt(h);
        e[i] = scale * g;
        h -= f * g;
        u[i - 1] = f - g;
        d[i] = h;
        update(i, h);
    }
    // The rows above under the reflection of row i: p = A u / h, q = p - (u'p / 2h) u, A - u q' - q u'.
    void update(Int4 i, Double h) {
        const Double* u = z[i];
        std::fill(p, p + i, 0.0);
        for (Int4 j = 0; j < i; j++) {
            p[j] += freedot(z[j], u, j + 1);
            addscaled(p, z[j], u[j], j);
        }
        for (Int4 j = 0; j < i; j++) p[j] /= h;
        addscaled(p, u, -freedot(p, u, i) / (h + h), i);
        for (Int4 j = 0; j < i; j++) addscaled2(z[j], p, -u[j], u, -p[j], j + 1);
    }
    // The product of the reflections.
    void accumulate() {
        for (Int4 i = 0; i < n; i++) {
            Double* u = z[i];
            Double h = d[i];
            d[i] = u[i];
            if (h != 0) {
                std::fill(p, p + i, 0.0);
                for (Int4 k = 0; k < i; k++) addscaled(p, z[k], u[k], i);
                for (Int4 k = 0; k < i; k++) addscaled(z[k], p, -(u[k] / h), i);
            }
            std::fill(u, u + i, 0.0);
            u[i] = 1;
            for (Int4 k = 0; k < i; k++) z[k][i] = 0;
        }
    }
    void reduce() {
        for (Int4 i = n - 1; i > 0; i--) reflect(i);
        e[0] = 0;
        d[0] = 0;
        accumulate();
    }
};

// The implicit QL iteration on diagonal d and subdiagonal e (e[i] beside d[i] and d[i+1]); the rows of z, vectors of the
// basis, become the eigenvectors. Dubrulle 1970 (imtql2).
struct qliteration {
    rowsof z;
    Int4 n;
    Double *d, *e;

    Int4 smallafter(Int4 l) const {
        for (; l < n - 1; l++)
            if (Double size = std::fabs(d[l]) + std::fabs(d[l + 1]); size + std::fabs(e[l]) == size) break;
        return l;
    }
    void turn(Int4 l, Int4 m) {
        Double g = (d[l + 1] - d[l]) / (2 * e[l]), r = hypotenuse(g, 1);
        g = d[m] - d[l] + e[l] / (g + (g >= 0 ? r : -r));
        Double s = 1, c = 1, p = 0;
        for (Int4 i = m - 1; i >= l; i--) {
            Double f = s * e[i], b = c * e[i];
            e[i + 1] = r = hypotenuse(f, g);
            if (r == 0) {
                d[i + 1] -= p;
                e[m] = 0;
                return;
            }
            s = f / r;
            c = g / r;
            g = d[i + 1] - p;
            r = (d[i] - g) * s + 2 * c * b;
            p = s * r;
            d[i + 1] = g + p;
            g = c * r - b;
            rotate(z[i], z[i + 1], c, s, n);
        }
        d[l] -= p;
        e[l] = g;
        e[m] = 0;
    }
    Int4 run() {
        for (Int4 l = 0; l < n; l++)
            for (Int4 turns = 0;; turns++) {
                Int4 m = smallafter(l);
                if (m == l) break;
                if (turns == mostturns) return 9802;
                turn(l, m);
                if (tick()) return 1;
            }
        return 0;
    }
};

}  // namespace

Int4 symeigen(const Double* A, Double* X, Double* v, Int4 stride, Int4 n) {
    std::size_t width = std::size_t(n);
    workspace square(width * width * sizeof(Double)), other(width * width * sizeof(Double));
    if (!square.p || !other.p) return 909;
    rowsof z{square.get<Double>(), n}, t{other.get<Double>(), n}, x{X, stride};
    std::vector<Double> e(width + 1), p(width);
    for (Int4 i = 0; i < n; i++) std::copy_n(A + std::size_t(i) * std::size_t(stride), n, z[i]);
    tridiagonal{z, n, v, e.data(), p.data()}.reduce();
    for (Int4 i = 0; i < n; i++)
        for (Int4 j = 0; j < n; j++) t[j][i] = z[i][j];
    if (Int4 rc = qliteration{t, n, v, e.data() + 1}.run()) return rc;
    for (Int4 i = 0; i < n; i++) {
        Int4 best = Int4(std::max_element(v + i, v + n) - v);
        if (best != i) {
            std::swap(v[i], v[best]);
            std::swap_ranges(t[i], t[i] + n, t[best]);
        }
        Double sum = 0;
        for (Int4 k = 0; k < n; k++) sum += t[i][k];
        for (Int4 k = 0; k < n; k++) x[k][i] = sum < 0 ? -t[i][k] : t[i][k];
    }
    return 0;
}

// ---- Singular values. Golub and Reinsch 1970. Columns of U and V stand as rows.

namespace {

struct decomposition {
    rowsof u, v;
    Int4 m, n;
    Double *w, *e, *s;       // e[i]: above the diagonal element w[i]; s: work, as long as a column
    Double size = 0;

    // The reflection that leaves x[0] alone of x (`step` apart): the element it becomes, and h = u'u / -2 in half.
    static Double reflection(Double* x, Int4 n, Int4 step, Double& half) {
        Double square = 0;
        for (Int4 k = 0; k < n; k++) {
            Double v = x[std::size_t(k) * std::size_t(step)];
            square += v * v;
        }
        half = 0;
        if (square == 0) return 0;
        Double f = x[0], g = f < 0 ? std::sqrt(square) : -std::sqrt(square);
        half = f * g - square;
        x[0] = f - g;
        return g;
    }
    void bidiagonal() {
        Double half;
        for (Int4 i = 0; i < n; i++) {
            w[i] = reflection(u[i] + i, m - i, 1, half);
            for (Int4 j = i + 1; j < n && half != 0; j++)
                addscaled(u[j] + i, u[i] + i, freedot(u[i] + i, u[j] + i, m - i) / half, m - i);
            if (i + 1 < n) rowreflection(i);
            size = std::max(size, std::fabs(w[i]) + std::fabs(e[i]));
        }
    }
    // Clears row i right of the element beside the diagonal.
    void rowreflection(Int4 i) {
        Double half;
        e[i + 1] = reflection(&u[i + 1][i], n - i - 1, u.stride, half);
        if (half == 0) return;
        std::fill(s, s + m, 0.0);
        for (Int4 k = i + 1; k < n; k++) addscaled(s + i + 1, u[k] + i + 1, u[k][i], m - i - 1);
        for (Int4 k = i + 1; k < n; k++) addscaled(u[k] + i + 1, s + i + 1, u[k][i] / half, m - i - 1);
    }
    void accumulateright() {
        for (Int4 i = n - 1; i >= 0; i--) {
            std::fill(v[i], v[i] + n, 0.0);
            if (i + 1 < n && e[i + 1] != 0) {
                Double half = u[i + 1][i] * e[i + 1];
                for (Int4 j = i + 1; j < n; j++) s[j] = u[j][i];
                for (Int4 j = i + 1; j < n; j++)
                    addscaled(v[j] + i + 1, s + i + 1, freedot(s + i + 1, v[j] + i + 1, n - i - 1) / half, n - i - 1);
            }
            for (Int4 j = i + 1; j < n; j++) v[j][i] = 0;
            v[i][i] = 1;
        }
    }
    void accumulateleft() {
        for (Int4 i = n - 1; i >= 0; i--) {
            for (Int4 j = i + 1; j < n; j++) u[j][i] = 0;
            if (w[i] == 0) {
                std::fill(u[i] + i, u[i] + m, 0.0);
                u[i][i] = 1;
                continue;
            }
            Double half = u[i][i] * w[i];
            for (Int4 j = i + 1; j < n; j++)
                addscaled(u[j] + i, u[i] + i, freedot(u[i] + i, u[j] + i, m - i) / half, m - i);
            for (Int4 k = i; k < m; k++) u[i][k] /= w[i];
            u[i][i] += 1;
        }
    }
    boolean small(Double x) const { return std::fabs(x) <= 0x1p-52 * size; }
    // Where the block that ends at k begins; a zero on the diagonal above it is rotated away.
    Int4 blockstart(Int4 k) {
        Int4 l = k;
        for (; l > 0 && !small(e[l]); l--) {
            if (!small(w[l - 1])) continue;
            Double c = 0, t = 1;
            for (Int4 i = l; i <= k; i++) {
                Double f = t * e[i];
                e[i] *= c;
                if (small(f)) break;
                Double g = w[i], h = w[i] = std::hypot(f, g);
                c = g / h;
                t = -f / h;
                rotate(u[l - 1], u[i], c, -t, m);
            }
            return l;
        }
        return l;
    }
    // A step of QR, shifted by the lowest 2 by 2 minor, on the block l to k.
    void turn(Int4 l, Int4 k) {
        Double x = w[l], y = w[k - 1], g = e[k - 1], h = e[k], z = w[k];
        Double f = ((y - z) * (y + z) + (g - h) * (g + h)) / (2 * h * y);
        g = std::hypot(f, 1);
        f = ((x - z) * (x + z) + h * (y / (f < 0 ? f - g : f + g) - h)) / x;
        Double c = 1, t = 1;
        for (Int4 i = l + 1; i <= k; i++) {
            g = c * e[i];
            h = t * e[i];
            y = w[i];
            e[i - 1] = z = std::hypot(f, h);
            c = z == 0 ? 1 : f / z;
            t = z == 0 ? 0 : h / z;
            f = x * c + g * t;
            g = g * c - x * t;
            h = y * t;
            y *= c;
            rotate(v[i - 1], v[i], c, -t, n);
            w[i - 1] = z = std::hypot(f, h);
            if (z != 0) {
                c = f / z;
                t = h / z;
            }
            f = c * g + t * y;
            x = c * y - t * g;
            rotate(u[i - 1], u[i], c, -t, m);
        }
        e[l] = 0;
        e[k] = f;
        w[k] = x;
    }
    Int4 diagonal() {
        for (Int4 k = n - 1; k >= 0; k--) {
            for (Int4 turns = 0;; turns++) {
                Int4 l = blockstart(k);
                if (l == k) break;
                if (turns == mostturns) return 430;
                turn(l, k);
                if (tick()) return 1;
            }
            if (w[k] >= 0) continue;
            w[k] = -w[k];
            for (Int4 j = 0; j < n; j++) v[k][j] = -v[k][j];
        }
        return 0;
    }
};

}  // namespace

Int4 svd(const Double* A, Double* U, Double* w, Double* V, Int4 rows, Int4 cols) {
    std::size_t m = std::size_t(rows), n = std::size_t(cols);
    workspace left(m * n * sizeof(Double)), right(n * n * sizeof(Double));
    if (!left.p || !right.p) return 909;
    std::vector<Double> e(n, 0), s(m);
    decomposition d{{left.get<Double>(), rows}, {right.get<Double>(), cols}, rows, cols, w, e.data(), s.data()};
    Double largest = 0;            // squares neither overflow nor vanish: the scale is a power of two
    for (std::size_t i = 0; i < m * n; i++) largest = std::max(largest, std::fabs(A[i]));
    Int4 power = largest > 0 ? std::ilogb(largest) : 0;
    for (std::size_t i = 0; i < m; i++)
        for (std::size_t j = 0; j < n; j++) d.u.p[j * m + i] = std::ldexp(A[i * n + j], -power);
    d.bidiagonal();
    d.accumulateright();
    d.accumulateleft();
    if (Int4 rc = d.diagonal()) return rc;
    for (std::size_t j = 0; j < n; j++) w[j] = std::ldexp(w[j], power);
    for (std::size_t j = 0; j < n; j++) {
        for (std::size_t i = 0; i < m; i++) U[i * n + j] = d.u.p[j * m + i];
        for (std::size_t i = 0; i < n; i++) V[i * n + j] = d.v.p[j * n + i];
    }
    return 0;
}

}  // namespace velmo
