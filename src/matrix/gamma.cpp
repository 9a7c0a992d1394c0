// The gamma function, its logarithm's derivatives, the incomplete gamma function and what is computed from them.
#include <array>
#include "matrix/numeric.h"
#include "matrix/probability.h"

namespace velmo {

namespace {

constexpr Double euler = 0.5772156649015329;
constexpr Double roottwopi = 2.5066282746310007;

// ln gamma(1 + y), y > 0.
Double lanczos(Double y) {
    constexpr Double c[6] = {76.18009172947146,  -86.50532032941678,   24.01409824083091,
                             -1.231739572450155, 0.001208650973866179, -5.395239384953e-06};
    Double t = y + 5.5, s = 1;
    t = (y + 0.5) * std::log(t) - t;
    for (Double cj : c) {
        y += 1;
        s += cj / y;
    }
    return t + std::log(roottwopi * s);
}

// The distance from x to the nearest whole number, exactly: sin(pi x) and tan(pi x) computed from it keep their digits.
Double offwhole(Double x) { return x - std::round(x); }

boolean ispole(Double x) { return x <= 0 && x == std::floor(x); }

}  // namespace

Double lngamma(Double x) {
    if (!known(x) || x <= -2147483648.0 || ispole(x)) return missing;
    if (x == 1 || x == 2) return 0;
    if (x > 1) return orfinite(lanczos(x - 1));
    Double z = 1 - x;
    return std::log(pi * z) - std::log(std::sin(pi * std::fabs(offwhole(x)))) - lngamma(1 + z);
}

namespace {

// Abramowitz and Stegun 6.3.15, |t| < 1: digamma(1 + t) without its reflection, by the zeta function at odd numbers
// less 1; slope gives the series' derivative.
constexpr Double zetas[9] = {0.20205690316,   0.036927755143, 0.008349277382, 0.002008392826, 0.000494188604,
                             0.000122713348,  3.0588236e-05,  7.637198e-06,   1.908213e-06};

Double zetaseries(Double t) {
    Double u = t * t, s = 0;
    for (Int4 i = 8; i >= 0; i--) s = (s + zetas[i]) * u;
    return s;
}

Double zetaslope(Double t) {
    Double u = t * t, s = 0;
    for (Int4 i = 8; i >= 0; i--) s = s * u + 2 * (i + 1) * zetas[i];
    return s * t;
}

Double digammanear1(Double x) {
    Double t = x - 1;
    if (std::fabs(t) <= 0.001)
        return t * (0.644934066848 - (0.20205690316 - t * 0.082323233711) * t) + t / x - euler;
    return 0.5 / t - pi / 2 / std::tan(pi * t) - 1 / (1 - t * t) + 1 - euler - zetaseries(t);
}

Double trigammanear1(Double x) {
    Double t = x - 1;
    if (std::fabs(t) <= 0.001) return 0.644934066848 - (2 * 0.20205690316 - 3 * 0.082323233711 * t) * t + 1 / (x * x);
    Double s = pi / std::sin(pi * t), u = 1 - t * t;
    return 0.5 * (s * s - 1 / (t * t)) - 2 * t / (u * u) - zetaslope(t);
}

}  // namespace

Double digamma(Double x) {
    if (!known(x) || x <= -10000000 || ispole(x)) return missing;
    if (x < 0.5) return orfinite(digamma(1 - x) - pi / std::tan(pi * offwhole(x)));
    if (x <= 1.5) return digammanear1(x);
    if (x < 2.5) return digamma(x - 1) + 1 / (x - 1);
    if (x >= 10) {
        Double t = 1 / (x * x);
        Double s = (1 - (0.1 - (0.047619047619 - (0.05 - t * 0.090909090909) * t) * t) * t) * t / 12;
        return std::log(x) - 0.5 / x - s;
    }
    Double y = x - std::floor(x) + 1, s = digamma(y);
    for (; y < x - 0.5; y++) s += 1 / y;
    return s;
}

Double trigamma(Double x) {
    if (!known(x) || x <= -10000000 || ispole(x) || std::fabs(x) < 1e-153) return missing;
    if (x < 0.5) {
        Double s = pi / std::sin(pi * offwhole(x));
        return orfinite(s * s - trigamma(1 - x));
    }
    if (x <= 1.5) return trigammanear1(x);
    if (x < 2.5) return trigamma(x - 1) - 1 / ((x - 1) * (x - 1));
    if (x >= 10) {
        Double t = 1 / (x * x);
        return (1 + (0.5 + (1 - (0.2 - (1 / 7.0 - (0.2 - t * 5 / 11) * t) * t) * t) / (6 * x)) / x) / x;
    }
    Double y = x - std::floor(x) + 1, s = trigamma(y);
    for (; y < x - 0.5; y++) s -= 1 / (y * y);
    return s;
}

// ---- Factorials

namespace {

constexpr Int4 productends = 166;          // factorials below are products, from here on lngamma

constexpr std::array<Double, productends> products() {
    std::array<Double, productends> f{1};
    for (Int4 i = 1; i < productends; i++) f[std::size_t(i)] = f[std::size_t(i - 1)] * i;
    return f;
}
constexpr std::array<Double, productends> factorials = products();

}  // namespace

Double lnfact(Double n) {
    if (!towhole(n) || n < 0) return missing;
    return n < productends ? std::log(factorials[std::size_t(n)]) : lngamma(n + 1);
}

Double comb(Double n, Double k) {
    constexpr Double largest = 1e300;
    if (!towhole(n) || !towhole(k) || n < 0 || k < 0) return missing;
    if (k > n) return 0;
    if (n - k < k) k = n - k;
    if (k == 0) return 1;
    Double c = n - k + 1, bound = (n + 1) * std::log(n + 1) - c * std::log(c) - std::log(k) - 1;
    if (n >= 1000 && bound > std::log(largest)) return missing;
    for (Double i = 2; i <= k; i++) {
        c = std::rint(c * (n - k + i) / i);
        if (c > largest) return missing;
    }
    return c;
}

// ---- The incomplete gamma function

namespace {

constexpr Int4 mostterms = 800;
constexpr Double closeness = 3e-7;

// P(a, x) by its series, for x < a + 1.
Double gammaseries(Double a, Double x) {
    if (x == 0) return 0;
    Double term = 1 / a, sum = term, ap = a;
    for (Int4 i = 0; i < mostterms; i++) {
        ap += 1;
        term *= x / ap;
        sum += term;
        if (std::fabs(term) < std::fabs(sum) * closeness) return sum * std::exp(a * std::log(x) - x - lngamma(a));
    }
    return missing;
}

// 1 - P(a, x) by its continued fraction, for x >= a + 1; numerators n and denominators d are kept near 1.
Double gammafraction(Double a, Double x) {
    Double n0 = 0, n1 = 1, d0 = 1, d1 = x, scale = 1, was = 0;
    for (Int4 i = 1; i <= mostterms; i++) {
        d0 = (d1 + d0 * (i - a)) * scale;
        n0 = (n1 + n0 * (i - a)) * scale;
        d1 = x * d0 + i * scale * d1;
        n1 = x * n0 + i * scale * n1;
        if (d1 == 0) continue;
        scale = 1 / d1;
        Double is = n1 * scale;
        if (std::fabs(is - was) < std::fabs(is) * closeness) return is * std::exp(a * std::log(x) - x - lngamma(a));
        was = is;
    }
    return missing;
}

// What of the cube root of a gamma variable is nearly normal, from 1000 on.
boolean isnearlynormal(Double a, Double x) { return a >= 1000 && x >= 1000; }
Double cuberoot(Double a, Double x) {
    Double v = 1 / (9 * a);
    return (std::cbrt(x / a) - (1 - v)) / std::sqrt(v);
}

}  // namespace

Double gammap(Double a, Double x) {
    if (!known(a, x) || a <= 0 || x < 0) return missing;
    if (isnearlynormal(a, x)) return norm(cuberoot(a, x));
    return x < a + 1 ? gammaseries(a, x) : complement(gammafraction(a, x));
}

Double gammaptail(Double a, Double x) {
    if (!known(a, x) || a <= 0 || x < 0) return missing;
    if (isnearlynormal(a, x)) return norm(-cuberoot(a, x));
    return x < a + 1 ? complement(gammaseries(a, x)) : gammafraction(a, x);
}

Double invgammap(Double a, Double p) {
    if (!known(a) || a <= 0 || !isprobability(p) || p == 1) return missing;
    return p == 0 ? 0 : searched(p, true, gammaends, [a](Double x) { return gammap(a, x); });
}

Double invgammaptail(Double a, Double p) {
    if (!known(a) || a <= 0 || !isprobability(p) || p == 0) return missing;
    return p == 1 ? 0 : searched(p, false, gammaends, [a](Double x) { return gammaptail(a, x); });
}

Double chi2(Double n, Double x) { return ifknown(n, ifknown(x, gammap(n / 2, x / 2))); }
Double chi2tail(Double n, Double x) { return ifknown(n, ifknown(x, gammaptail(n / 2, x / 2))); }

namespace {

Double twice(Double x) { return ifknown(x, 2 * x); }

}  // namespace

Double invchi2(Double n, Double p) { return ifknown(n, twice(invgammap(n / 2, p))); }
Double invchi2tail(Double n, Double p) { return ifknown(n, twice(invgammaptail(n / 2, p))); }
Double invchi(Double n, Double p) { return invchi2(n, 1 - p); }

// ---- Helpers of count and random-effects models

namespace {

Double difference(Double x, Double y) { return known(x, y) ? x - y : missing; }

// The growth of a function by k, from b on, which each whole step raises by `step`.
template <class S> Double grown(Double b, Double k, Double (*f)(Double), S step) {
    if (!known(b, k) || b <= 0 || k < 0) return missing;
    if (k > 100 || k != std::floor(k)) return difference(f(b + k), f(b));
    Double s = 0;
    for (Int4 i = 0; i < k; i++) s += step(b + i);
    return orfinite(s);
}

}  // namespace

Double lnbk(Double b, Double k) { return grown(b, k, lngamma, [](Double x) { return std::log(x); }); }
Double dibk(Double b, Double k) { return grown(b, k, digamma, [](Double x) { return 1 / x; }); }
Double tribk(Double b, Double k) { return grown(b, k, trigamma, [](Double x) { return -1 / (x * x); }); }

Double hyp2f1(Double x) {
    if (!known(x) || x >= 1) return missing;
    return x == 0 ? 1 : -std::log1p(-x) / x;
}

namespace {

// exp(-z) 1F1((k + 1)/2; 1/2; z), all of whose terms are positive.
Double kummer(Double k, Double z) {
    Double term = std::exp(-z), sum = 0;
    for (Int4 j = 0; j < 10000 && (j <= z || term > sum * 1e-17); j++) {
        sum += term;
        term *= ((k + 1) / 2 + j) / (j + 0.5) * z / (j + 1);
    }
    return sum;
}

// E|1 + X|^k of a small X of variance v: the terms of the binomial series, while they fall.
Double nearlyone(Double k, Double v) {
    Double term = 1, sum = 0;
    for (Int4 j = 0; j < 1000; j++) {
        sum += term;
        Double next = term * (k - 2 * j) * (k - 2 * j - 1) / (2 * (j + 1)) * v;
        if (std::fabs(next) < std::fabs(sum) * 1e-17 || (k < 2 * j && std::fabs(next) > std::fabs(term))) break;
        term = next;
    }
    return sum;
}

}  // namespace

Double Eabsk(Double m, Double s, Double k) {
    if (!known(m, s, k) || s <= 0 || k <= -1) return missing;
    Double z = m / s * (m / s) / 2;
    if (z > 500) return orfinite(std::pow(std::fabs(m), k) * nearlyone(k, 1 / (2 * z)));
    Double scale = k * std::log(s) + k / 2 * std::log(2.0) + lngamma((k + 1) / 2);
    return orfinite(std::exp(scale) / std::sqrt(pi) * kummer(k, z));
}

}  // namespace velmo
