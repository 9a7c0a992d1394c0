// What the probability functions share: tests of arguments, whole numbers, and the search for the argument where a
// distribution has a given value.
#pragma once
#include <cmath>
#include "base/poll.h"
#include "base/types.h"

namespace velmo {

inline constexpr Double pi = 3.141592653589793;

// True of numbers: not of missing, infinity or NaN.
inline boolean known(Double x) { return x < missing && x > -missing; }
template <class... T> boolean known(Double x, T... more) { return known(x) && known(more...); }

inline boolean isprobability(Double p) { return p >= 0 && p <= 1; }

// What overflowed is missing.
inline Double orfinite(Double x) { return known(x) ? x : missing; }

inline Double ifknown(Double x, Double value) { return known(x) ? value : missing; }
inline Double complement(Double p) { return ifknown(p, 1 - p); }

// Rounds x to a whole number; false when it differs from that by more than 1e-5, relatively.
inline boolean towhole(Double& x) {
    if (!known(x)) return false;
    Double r = std::floor(x + 0.5);
    boolean near = std::fabs(x - r) / (std::fabs(r) + 1) <= 1e-5;
    x = r;
    return near;
}

// How a search ends: the error of the value at which halving turns into refining, and the width, relative to the
// midpoint, at which that ends.
struct searchends { Double error, width; };
inline constexpr searchends gammaends = {1e-7, 1e-14}, betaends = {1e-6, 1e-15};

// The argument between lo and hi where a function that rises, or falls, is p. At most 100 halvings until the value is
// near, and at most 60 more until the bracket is narrow.
template <class D> Double bisected(Double lo, Double hi, Double p, boolean rises, searchends ends, D f) {
    Double mid = lo;
    for (Int4 left = 100, refining = 0; left > 0; left--) {
        mid = lo + (hi - lo) / 2;
        Double value = f(mid);
        tick();
        if (!known(value)) return missing;
        if ((value < p) == rises) lo = mid;
        else hi = mid;
        if (refining && hi - lo <= ends.width * mid) break;
        if (refining || (left > 1 && std::fabs(value - p) > ends.error)) continue;
        refining = 1;
        left = 61;
    }
    return mid;
}

// The same from 0 up to wherever it is.
template <class D> Double searched(Double p, boolean rises, searchends ends, D f) {
    Double lo = 0, hi = 500, value;
    while (known(value = f(hi)) && (value < p) == rises && value != p) {
        tick();
        lo = hi;
        hi *= 2;
    }
    return known(value) && known(hi) ? bisected(lo, hi, p, rises, ends, f) : missing;
}

}  // namespace velmo
