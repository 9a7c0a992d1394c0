// Compensated accumulation: a running sum s and a correction c. Adding t to the old sum o, s becomes o + t; then c
// becomes ((o - s) + c) + t when the binary exponent of t is below that of o, else ((t - s) + c) + o. The value is
// s + c. (Two-term summation after Kahan 1965, Neumaier 1974.) compadd8 does eight sums side by side, each by the same
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

struct compsum8 { alignas(16) Double s[8]; alignas(16) Double c[8]; };

// The exponents are compared as the powers of two that the bare exponent fields are, which two lanes of a vector
// register do at once.
inline void compadd8(compsum8& a, const Double (&term)[8]) {
    using pair = Double __attribute__((vector_size(16)));
    using bits = std::int64_t __attribute__((vector_size(16)));
    constexpr bits field = {0x7FF0000000000000, 0x7FF0000000000000};
    for (Int4 j = 0; j < 8; j += 2) {
        pair t = {term[j], term[j + 1]}, o = {a.s[j], a.s[j + 1]}, c = {a.c[j], a.c[j + 1]};
        pair s = o + t;
        bits less = (pair)((bits)t & field) < (pair)((bits)o & field);
        pair big = (pair)(((bits)o & less) | ((bits)t & ~less));
        pair small = (pair)(((bits)t & less) | ((bits)o & ~less));
        c = ((big - s) + c) + small;
        a.s[j] = s[0];
        a.s[j + 1] = s[1];
        a.c[j] = c[0];
        a.c[j + 1] = c[1];
    }
}

}  // namespace velmo
