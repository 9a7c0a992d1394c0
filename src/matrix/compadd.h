// Compensated accumulation: a running sum s and a correction c. Adding t to the old sum o, s becomes o + t; then c
// becomes ((o - s) + c) + t when the binary exponent of t is below that of o, else ((t - s) + c) + o. The value is
// s + c. (Two-term summation after Kahan 1965, Neumaier 1974.) compadd2 does two sums side by side, each by the same
// operations in the same order as compadd.
#pragma once
#include "base/types.h"

namespace velmo {

struct compsum { Double s = 0, c = 0; };

inline void compadd(compsum& a, Double t) {
    Double o = a.s;
    a.s = o + t;
    a.c = exponent(t) < exponent(o) ? ((o - a.s) + a.c) + t : ((t - a.s) + a.c) + o;
}

inline Double total(const compsum& a) { return a.s + a.c; }

// Two sums side by side in a vector register. The exponents are compared as the powers of two that the bare exponent
// fields are.
using pair2 = Double __attribute__((vector_size(16)));
using bits2 = std::int64_t __attribute__((vector_size(16)));

struct comppair { pair2 s, c; };

inline void compadd2(comppair& a, pair2 t) {
    constexpr bits2 field = {0x7FF0000000000000, 0x7FF0000000000000};
    pair2 o = a.s, s = o + t;
    bits2 less = (pair2)((bits2)t & field) < (pair2)((bits2)o & field);
    pair2 big = (pair2)(((bits2)o & less) | ((bits2)t & ~less));
    pair2 small = (pair2)(((bits2)t & less) | ((bits2)o & ~less));
    a.c = ((big - s) + a.c) + small;
    a.s = s;
}

}  // namespace velmo
