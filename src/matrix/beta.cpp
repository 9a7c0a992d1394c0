// The incomplete beta function and the distributions that are forms of it: F, t, binomial.
#include <algorithm>
#include "matrix/numeric.h"
#include "matrix/probability.h"

namespace velmo {

namespace {

// A pair of parameters with what does not depend on x: the searches ask for many x.
struct betapair {
    Double a, b, scale;       // scale is -ln B(a, b)
    betapair(Double first, Double second) : a(first), b(second), scale(missing) {
        if (known(a, b) && a > 0 && b > 0) scale = orfinite(lngamma(a + b) - lngamma(a) - lngamma(b));
    }
};

// Even and odd steps of the continued fraction, the denominator kept at 1; missing when 200 of them don't settle.
Double betafraction(Double a, Double b, Double x) {
    Double n0 = 1, d0 = 1, n1 = 1, d1 = 1 - (a + b) * x / (a + 1);
    for (Int4 m = 1; m <= 200; m++) {
        Double twice = 2 * m;
        Double even = m * (b - m) * x / ((a - 1 + twice) * (a + twice));
        Double odd = -(a + m) * (a + b + m) * x / ((a + twice) * (a + 1 + twice));
        Double n = n1 + even * n0, d = d1 + even * d0;
        Double was = n1, bottom = d + odd * d1;
        n0 = n / bottom;
        d0 = d / bottom;
        n1 = (n + odd * n1) / bottom;
        d1 = 1;
        if (std::fabs(n1 - was) <= 3e-7 * std::fabs(n1)) return n1;
    }
    return missing;
}

// I_x(a, b), or 1 less it; y is 1 - x, from callers that know it better.
Double betavalue(const betapair& p, Double x, Double y, boolean tail) {
    if (!known(p.scale) || !(x >= 0 && x <= 1)) return missing;
    boolean exchanged = x >= (p.a + 1) / (p.a + p.b + 2);
    Double front = x == 0 || y == 0 ? 0 : std::exp(p.scale + p.b * std::log(y) + p.a * std::log(x));
    Double fraction = exchanged ? betafraction(p.b, p.a, y) : betafraction(p.a, p.b, x);
    if (!known(fraction)) return missing;
    Double value = fraction * front / (exchanged ? p.b : p.a);
    return exchanged == tail ? value : 1 - value;
}

boolean isfreedom(Double n) { return known(n) && n > 0; }

// The tails of F, p holding the halves of n2 and n1. A small f would be lost in 1 - x.
Double ftails(const betapair& p, Double f, boolean lower) {
    Double n1 = 2 * p.b, n2 = 2 * p.a, x = n2 / (n1 * f + n2), y = n1 * f / (n1 * f + n2);
    return betavalue(p, x, y, lower);
}

}  // namespace

Double ibeta(Double a, Double b, Double x) { return betavalue({a, b}, x, 1 - x, false); }

Double Ftail(Double n1, Double n2, Double f) {
    if (!isfreedom(n1) || !isfreedom(n2) || !known(f) || f < 0) return missing;
    return ftails({n2 / 2, n1 / 2}, f, false);
}

Double F(Double n1, Double n2, Double f) {
    if (!isfreedom(n1) || !isfreedom(n2) || !known(f) || f < 0) return missing;
    return ftails({n2 / 2, n1 / 2}, f, true);
}

Double invF(Double n1, Double n2, Double p) {
    if (!isfreedom(n1) || !isfreedom(n2) || !isprobability(p) || p == 1) return missing;
    betapair halves(n2 / 2, n1 / 2);
    return p == 0 ? 0 : searched(p, true, betaends, [&](Double f) { return ftails(halves, f, true); });
}

Double invFtail(Double n1, Double n2, Double p) {
    if (!isfreedom(n1) || !isfreedom(n2) || !isprobability(p) || p == 0) return missing;
    betapair halves(n2 / 2, n1 / 2);
    return p == 1 ? 0 : searched(p, false, betaends, [&](Double f) { return ftails(halves, f, false); });
}

Double tprob(Double n, Double t) {
    if (!isfreedom(n) || !known(t)) return missing;
    return ftails({n / 2, 0.5}, t * t, false);
}

Double ttail(Double n, Double t) {
    Double p = tprob(n, t);
    return ifknown(p, t < 0 ? 1 - p / 2 : p / 2);
}

Double invttail(Double n, Double p) {
    if (!isprobability(p)) return missing;
    Double f = invFtail(1, n, 2 * std::min(p, 1 - p));
    if (!known(f)) return missing;
    return p > 0.5 ? -std::sqrt(f) : std::sqrt(f);          // at 0.5 it is 0, without a sign
}

Double invt(Double n, Double p) {
    Double f = invFtail(1, n, 1 - p);
    return ifknown(f, std::sqrt(f));
}

Double Binomial(Double n, Double k, Double p) {
    if (!known(n, k) || !isprobability(p)) return missing;
    n = std::floor(n + 0.5);
    k = std::floor(k + 0.5);
    if (n < 0 || k < 0) return missing;
    return k == 0 ? 1 : k > n ? 0 : ibeta(k, n - k + 1, p);
}

Double invbinomial(Double n, Double k, Double prob) {
    if (!known(n, k) || !isprobability(prob)) return missing;
    n = std::floor(n + 0.5);
    k = std::floor(k + 0.5);
    if (k < 1 || k > n) return missing;
    if (prob == 0 || prob == 1) return prob;
    betapair p(k, n - k + 1);
    Double lo = 0, hi = 1, mid = 0.5, error = 1e-5 * std::min(prob, 1 - prob);
    for (Int4 i = 0; i < 1000; i++) {
        mid = (lo + hi) / 2;
        Double value = betavalue(p, mid, 1 - mid, false);
        tick();
        if (!known(value)) return missing;
        if (std::fabs(value - prob) <= error || mid == lo || mid == hi) break;
        if (value < prob) lo = mid;
        else hi = mid;
    }
    return mid;
}

}  // namespace velmo
