// Moments: counts, sums, extremes and powers of deviations. What `summarize` leaves for a variable is one `moments`;
// the kernels fill it from buffers, in passes: sums first, then what needs the mean. A missing value doesn't count.
// The order and the correction of every sum are those of one variable alone, however many go side by side.
#pragma once
#include "matrix/compadd.h"

namespace velmo {

struct moments {
    Int4 count = 0;
    compsum weights, sum, squares;
    Double min = missing, max = -missing;
    Double n = 0, w = 0, mean = missing, variance = missing, sd = missing;
    Double m3 = 0, m4 = 0, skewness = missing, kurtosis = missing;
};

// How observations count: all alike, by frequencies, or by weights of another kind.
enum weighing : Int4 { weigh_none, weigh_frequency, weigh_analytic };

// First pass: one value, without a weight and with one.
inline void moments_add(moments& m, Double x) {
    if (x == missing) return;
    m.count++;
    compadd(m.sum, x);
    if (x < m.min) m.min = x;
    if (x > m.max) m.max = x;
}
inline void moments_add(moments& m, Double x, Double w) {
    if (x == missing) return;
    m.count++;
    compadd(m.weights, w);
    compadd(m.sum, x * w);
    if (x < m.min) m.min = x;
    if (x > m.max) m.max = x;
}
// Second pass: the squared deviation alone, or the higher powers too. Without weights w is 1.
inline void moments_square(moments& m, Double x, Double w) {
    if (x != missing) compadd(m.squares, (x - m.mean) * (x - m.mean) * w);
}
inline void moments_powers(moments& m, Double x, Double w) {
    if (x == missing) return;
    Double d = x - m.mean;
    compadd(m.squares, d * d * w);
    m.m3 += (d * d * w) * d;
    m.m4 += ((d * d * w) * d) * d;
}
// What follows from the passes: n, w and the mean; variance and sd; or the same with skewness and kurtosis, where the
// variance is rounded otherwise.
void moments_first(moments& m, weighing kind);
void moments_second(moments& m, weighing kind);
void moments_higher(moments& m);

// ---- Up to eight variables side by side, two to a vector register: rows of `lanes` values, of which the first k
// count; of an odd number the next is missing. The running state of up to 32 variables, in pairs, is a sweep.

inline constexpr Int4 lanes = 8;
inline constexpr Int4 sweepwidth = 32;
using lanerow = Double[lanes];

struct sweepsums {
    comppair sum[sweepwidth / 2];
    bits2 count[sweepwidth / 2];
    pair2 low[sweepwidth / 2], high[sweepwidth / 2], mean[sweepwidth / 2];
};

void sweep_first(sweepsums& s);                                      // begins a first pass
void sweep_second(sweepsums& s, const moments* m, Int4 k);           // begins a second: their means
// n rows (16-byte aligned) of k variables, which stand from `at` on (even) in the sweep.
void sweep_sums(sweepsums& s, Int4 at, const lanerow* x, Int4 n, Int4 k);         // sums, counts, extremes
void sweep_squares(sweepsums& s, Int4 at, const lanerow* x, Int4 n, Int4 k);
// The state of k variables into theirs.
void sweep_tofirst(const sweepsums& s, moments* m, Int4 k);
void sweep_tosecond(const sweepsums& s, moments* m, Int4 k);

}  // namespace velmo
