// The noncentral chi-squared distribution.
#include <algorithm>
#include "matrix/numeric.h"
#include "matrix/probability.h"

namespace velmo {

namespace {

constexpr Double largestl = 1000;

// A number exp(-rest) times as large as t says: exp(-x / 2) for large x is too small for a double, while the terms
// that it begins grow again.
struct scaled {
    Double t, rest;
    explicit scaled(Double exponent) : t(std::exp(-std::min(exponent, 600.0))), rest(std::max(exponent - 600, 0.0)) {}
    void multiply(Double by) {
        t *= by;
        if (rest == 0 || t < 1e-200) return;
        Double part = std::min(rest, 200.0);
        t *= std::exp(-part);
        rest -= part;
    }
    Double value() const { return rest == 0 ? t : 0; }
};

// Density terms of the central distributions of n, n + 2, ... degrees of freedom, each weighted by the Poisson
// probability of no more than as many steps.
Double poissonsum(Int4 n, Double l, Double x) {
    Double y = x / 2, mean = l / 2;
    scaled term(y);
    if (n % 2) term.multiply(1 / std::sqrt(pi * y));            // that of -1 degrees, as exp(-y) is that of 0
    for (Int4 k = n % 2 ? 1 : 2; k <= n; k += 2) term.multiply(x / k);
    Double poisson = std::exp(-mean), weight = poisson, sum = weight * term.value();
    for (Int4 i = 1; i <= 10000; i++) {
        poisson *= mean / i;
        weight += poisson;
        term.multiply(x / (n + 2 * i));
        Double next = weight * term.value();
        sum += next;
        if (i > mean && i > y && next <= 1e-10 * sum) return std::min(sum, 1.0);
    }
    return missing;
}

boolean goodfreedom(Double& n) { return towhole(n) && n >= 1 && n <= 200; }

}  // namespace

Double nchi(Double n, Double l, Double x) {
    if (!goodfreedom(n) || !(l >= 0 && l <= largestl) || !known(x) || x < 0) return missing;
    return x == 0 ? 0 : poissonsum(Int4(n), l, x);
}

Double invnchi(Double n, Double l, Double p) {
    if (!goodfreedom(n) || !(l >= 0 && l <= largestl) || !isprobability(p) || p == 1) return missing;
    return p == 0 ? 0 : searched(p, true, betaends, [=](Double x) { return nchi(n, l, x); });
}

Double npnchi(Double n, Double x, Double p) {
    Double most = nchi(n, 0, x), least = nchi(n, largestl, x);
    if (!known(most, least) || !(p >= least && p <= most) || most == least) return missing;
    return p == most ? 0 : bisected(0, largestl, p, false, betaends, [=](Double l) { return nchi(n, l, x); });
}

}  // namespace velmo
