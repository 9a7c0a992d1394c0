#include "matrix/moments.h"
#include <algorithm>
#include <cmath>

namespace velmo {

void moments_first(moments& m, weighing kind) {
    m.w = kind != weigh_none ? total(m.weights) : m.count;
    m.n = kind == weigh_frequency ? std::floor(m.w + 0.5) : m.count;
    if (m.count) m.mean = total(m.sum) / m.w;
}

void moments_second(moments& m, weighing kind) {
    if (m.n <= 1) return;
    Double squares = total(m.squares);
    m.variance = kind == weigh_analytic ? (squares / m.w) * (m.n / (m.n - 1)) : squares / (m.w - 1);
    m.sd = std::sqrt(m.variance);
}

void moments_higher(moments& m) {
    Double m2 = total(m.squares) / m.w;
    m.m3 /= m.w;
    m.m4 /= m.w;
    if (m.n <= 1) return;
    m.variance = (m.n / (m.n - 1)) * m2;
    m.sd = std::sqrt(m.variance);
    if (m2 > 0) {
        m.skewness = m.m3 / std::sqrt(m2 * m2 * m2);
        m.kurtosis = m.m4 / (m2 * m2);
    }
}

namespace {

pair2 pairof(const lanerow& row, Int4 p) { return *reinterpret_cast<const pair2*>(&row[2 * p]); }

// Adds term(x, p) of every row to the sums of P pairs: their chains of additions run beside each other.
template <Int4 P, class F> void addpairs(const lanerow* x, Int4 n, comppair* sums, F term) {
    comppair a[P];
    std::copy_n(sums, P, a);
    for (Int4 i = 0; i < n; i++) {
#pragma GCC unroll 4
        for (Int4 p = 0; p < P; p++) compadd2(a[p], term(pairof(x[i], p), p));
    }
    std::copy_n(a, P, sums);
}

template <class F> void addrows(const lanerow* x, Int4 n, Int4 k, comppair* sums, F term) {
    switch ((k + 1) / 2) {
    case 1: return addpairs<1>(x, n, sums, term);
    case 2: return addpairs<2>(x, n, sums, term);
    case 3: return addpairs<3>(x, n, sums, term);
    default: return addpairs<4>(x, n, sums, term);
    }
}

void extremes(const lanerow* x, Int4 rows, Int4 p, bits2& count, pair2& low, pair2& high) {
    bits2 n = count;
    pair2 lo = low, hi = high;
    for (Int4 i = 0; i < rows; i++) {
        pair2 v = pairof(x[i], p);
        bits2 counts = v != missing;
        n -= counts;
        lo = v < lo ? v : lo;
        bits2 higher = (v > hi) & counts;
        hi = higher ? v : hi;
    }
    count = n;
    low = lo;
    high = hi;
}

}  // namespace

void sweep_first(sweepsums& s) {
    s = {};
    for (Int4 p = 0; p < sweepwidth / 2; p++) {
        s.low[p] = pair2{missing, missing};
        s.high[p] = pair2{-missing, -missing};
    }
}

void sweep_second(sweepsums& s, const moments* m, Int4 k) {
    s = {};
    for (Int4 j = 0; j < k; j++) s.mean[j / 2][j & 1] = m[j].mean;
}

// A value that doesn't count adds 0, which changes neither a sum nor its correction.
void sweep_sums(sweepsums& s, Int4 at, const lanerow* x, Int4 n, Int4 k) {
    addrows(x, n, k, s.sum + at / 2, [](pair2 v, Int4) { return (pair2)((bits2)v & (v != missing)); });
    for (Int4 p = 0, q = at / 2; 2 * p < k; p++, q++) extremes(x, n, p, s.count[q], s.low[q], s.high[q]);
}

void sweep_squares(sweepsums& s, Int4 at, const lanerow* x, Int4 n, Int4 k) {
    const pair2* mean = s.mean + at / 2;
    addrows(x, n, k, s.sum + at / 2, [mean](pair2 v, Int4 p) {
        pair2 d = v - mean[p];
        return (pair2)((bits2)(d * d) & (v != missing));
    });
}

void sweep_tofirst(const sweepsums& s, moments* m, Int4 k) {
    for (Int4 j = 0; j < k; j++) {
        Int4 q = j / 2, half = j & 1;
        m[j].count = Int4(s.count[q][half]);
        m[j].sum = {s.sum[q].s[half], s.sum[q].c[half]};
        m[j].min = s.low[q][half];
        m[j].max = s.high[q][half];
    }
}

void sweep_tosecond(const sweepsums& s, moments* m, Int4 k) {
    for (Int4 j = 0; j < k; j++) m[j].squares = {s.sum[j / 2].s[j & 1], s.sum[j / 2].c[j & 1]};
}

}  // namespace velmo
