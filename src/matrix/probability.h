// Probability and special functions: plain functions of doubles, for the expression evaluator, the estimators and the
// printers of tables.
//
// Nothing fails here: `missing` is the result of a missing, infinite or NaN argument, of one outside the ranges given
// (unless said otherwise), and of an iteration that does not settle. There is no state and nothing allocates. The
// inverses poll the Break key, but finish: whoever loops over observations notices the Break.
//
// Accuracies are of the formulas used, relative unless said. Several are those of single precision, which is kept:
// results are comparable with those of the same formulas elsewhere.
#pragma once
#include "base/types.h"

namespace velmo {

// ---- Normal

// The lower tail. Exactly 0.5 at 0. 1e-14, in the lower tail too (1e-13 beyond -30). Hill and Joyce 1967, Algorithm
// 304: Taylor's series in the middle, a continued fraction for z < -2.32 and z >= 3.5.
Double norm(Double z);
// The z with norm(z) = p, 0 < p < 1. 1e-15. Wichura 1988, Algorithm AS 241 (PPND16).
Double invnorm(Double p);
// The density, and that of standard deviation s > 0.
Double normden(Double x);
Double normden(Double x, Double s);
// The probability that X <= h and Y <= k for standard normal X and Y of correlation r, |r| <= 1; h and k count as 8 at
// most and -8 at least. 1e-15 absolutely; never below 1e-15 unless |r| is 1. Owen 1956, by his series for T.
Double binorm(Double h, Double k, Double r);

// ---- Gamma and its kin

// ln|gamma(x)|, x above -2147483648 and no whole number below 1. 2e-10 in gamma(x); 0 exactly at 1 and 2. Lanczos 1964,
// six coefficients; below 1 by reflection.
Double lngamma(Double x);
// Its first and second derivatives, x above -10000000 and no whole number below 1; trigamma not within 1e-153 of 0.
// 1e-11 and 2e-9, absolutely where they are small. Abramowitz and Stegun 1964, 6.3 and 6.4.
Double digamma(Double x);
Double trigamma(Double x);
// ln n!, n >= 0, and the binomial coefficient: n and k are rounded, and must be whole to 1e-5. comb is 0 for k > n,
// exact where n times it is below 2^53, missing for n >= 1000 where a bound on it exceeds 1e300.
Double lnfact(Double n);
Double comb(Double n, Double k);

// The incomplete gamma function P(a, x), lower tail, and its complement; a > 0, x >= 0. Series for x < a + 1, else
// continued fraction (Abramowitz and Stegun 1964, 6.5.29 and 6.5.31), until terms are below 3e-7: 1e-6, and 3e-6 for a
// near 1000. Where both are at least 1000, Wilson and Hilferty 1931: 1e-6 absolutely.
Double gammap(Double a, Double x);
Double gammaptail(Double a, Double x);
// The x where they are p, 0 <= p <= 1; missing where x would be infinite. By bisection, as good as the functions.
Double invgammap(Double a, Double p);
Double invgammaptail(Double a, Double p);

// Chi-squared of n > 0 degrees of freedom, by the four above.
Double chi2(Double n, Double x);
Double chi2tail(Double n, Double x);
Double invchi2(Double n, Double p);
Double invchi2tail(Double n, Double p);
Double invchi(Double n, Double p);            // the old form: 1 - p is of the lower tail

// ---- Incomplete beta and its kin

// I_x(a, b); a, b > 0, 0 <= x <= 1. 3e-7. Continued fraction (Abramowitz and Stegun 1964, 26.5.8) of at most 200
// double steps; missing where these don't do.
Double ibeta(Double a, Double b, Double x);

// F of n1, n2 > 0 degrees of freedom, f >= 0: lower tail, upper tail and their inverses.
Double F(Double n1, Double n2, Double f);
Double Ftail(Double n1, Double n2, Double f);
Double invF(Double n1, Double n2, Double p);
Double invFtail(Double n1, Double n2, Double p);

// Student's t of n > 0 degrees of freedom: both tails beyond |t|, the upper tail, the inverse of the upper tail, and
// the t > 0 of which the middle holds p.
Double tprob(Double n, Double t);
Double ttail(Double n, Double t);
Double invttail(Double n, Double p);
Double invt(Double n, Double p);

// The probability of k or more successes in n trials of probability p; n and k are rounded, both at least 0.
Double Binomial(Double n, Double k, Double p);
// The p with Binomial(n, k, p) = prob, 1 <= k <= n, to 1e-5 of prob or of 1 - prob.
Double invbinomial(Double n, Double k, Double prob);

// ---- Noncentral chi-squared

// The lower tail: n a whole number (to 1e-5) of 1 to 200, noncentrality l of 0 to 1000, x >= 0. 1e-9. Poisson-weighted
// sum, Ding 1992 (Algorithm AS 275), of at most 10000 terms; missing for the x beyond (about 20000).
Double nchi(Double n, Double l, Double x);
Double invnchi(Double n, Double l, Double p);            // the x where it is p
Double npnchi(Double n, Double x, Double p);             // the l where it is p; missing if none of 0 to 1000

// ---- Helpers of count and random-effects models

// ln, and its two derivatives by b, of gamma(b + k) / gamma(b) = b (b + 1) ... (b + k - 1); b > 0, k >= 0. Summed term
// by term for whole k up to 100, which keeps them exact for large b.
Double lnbk(Double b, Double k);
Double dibk(Double b, Double k);
Double tribk(Double b, Double k);
// Gauss' hypergeometric function 2F1(1, 1; 2; x) = -ln(1 - x) / x, x < 1.
Double hyp2f1(Double x);
// The expected |X|^k of a normal X of mean m and standard deviation s > 0; k > -1. 1e-9 (Winkelbauer 2012).
Double Eabsk(Double m, Double s, Double k);

}  // namespace velmo
