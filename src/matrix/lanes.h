// Loops over rows of doubles, two to a vector register. Who calls them has one result a place, or says that the order of
// a sum is free.
#pragma once
#include <cstring>
#include "matrix/compadd.h"

namespace velmo {

inline pair2 loadpair(const Double* p) {
    pair2 v;
    std::memcpy(&v, p, sizeof v);
    return v;
}
inline void storepair(Double* p, pair2 v) { std::memcpy(p, &v, sizeof v); }

// y += t x
inline void addscaled(Double* y, const Double* x, Double t, Int4 n) {
    pair2 tt = {t, t};
    Int4 i = 0;
    for (; i + 4 <= n; i += 4) {
        pair2 a = loadpair(y + i) + tt * loadpair(x + i), b = loadpair(y + i + 2) + tt * loadpair(x + i + 2);
        storepair(y + i, a);
        storepair(y + i + 2, b);
    }
    for (; i < n; i++) y[i] += t * x[i];
}

// (y + t x) + u z, in that order
inline void addscaled2(Double* y, const Double* x, Double t, const Double* z, Double u, Int4 n) {
    pair2 tt = {t, t}, uu = {u, u};
    Int4 i = 0;
    for (; i + 2 <= n; i += 2) storepair(y + i, (loadpair(y + i) + tt * loadpair(x + i)) + uu * loadpair(z + i));
    for (; i < n; i++) y[i] = (y[i] + t * x[i]) + u * z[i];
}

// The inner product, in an order of its own.
inline Double freedot(const Double* x, const Double* y, Int4 n) {
    pair2 a = {0, 0}, b = {0, 0};
    Int4 i = 0;
    for (; i + 4 <= n; i += 4) {
        a += loadpair(x + i) * loadpair(y + i);
        b += loadpair(x + i + 2) * loadpair(y + i + 2);
    }
    a += b;
    Double s = a[0] + a[1];
    for (; i < n; i++) s += x[i] * y[i];
    return s;
}

// The rotation of x and y: x becomes c x - s y, y becomes s x + c y.
inline void rotate(Double* x, Double* y, Double c, Double s, Int4 n) {
    pair2 cc = {c, c}, ss = {s, s};
    Int4 i = 0;
    for (; i + 2 <= n; i += 2) {
        pair2 a = loadpair(x + i), b = loadpair(y + i);
        storepair(x + i, cc * a - ss * b);
        storepair(y + i, ss * a + cc * b);
    }
    for (; i < n; i++) {
        Double a = x[i], b = y[i];
        x[i] = c * a - s * b;
        y[i] = s * a + c * b;
    }
}

}  // namespace velmo
