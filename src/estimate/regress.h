// Linear regression by least squares, and by two stages of it where instruments are given.
//
// The sources of the sample are the outcome, the regressors and the instruments, in this order. Cross-products are
// accumulated (estimate/crossproducts.h), about the means where there is a constant; `fitleast` makes coefficients and
// the inverse of them, `measurefit` the statistics and the variances, `postregress` the estimates. Instruments come
// between: `projectregressors` makes the products those of the first stage's predictions.
#pragma once
#include <string>
#include <vector>
#include "estimate/crossproducts.h"
#include "estimate/records.h"
#include "estimate/robust.h"

namespace velmo {

// What is asked for.
struct regressmodel {
    Int4 regressors = 0;                 // in the list
    boolean constant = true;             // one is added
    boolean hascons = false;             // the regressors are said to span one
    boolean tsscons = false, mse1 = false, rssmat = false, bmat = false, instruments = false;
    Double dof = missing;                // the degrees of freedom of the residuals, if they were given
    Int4 hc = 0;                         // 2, 3: residuals by the leverage
    robustrequest robust;
};

// The normal equations: of p regressors, without the constant.
struct normalequations {
    std::vector<Double> XX, Xy, means;   // p x p, p, p
    Double yy = 0, ysum = 0, weights = 0;      // of the outcome; the sum of weights
    boolean deviations = false;          // all are about the means
};

struct projection {                      // of the regressors on the instruments
    std::vector<Double> B;               // q x p
    std::vector<Double> XX, XZ, Zy, ZZ, means;     // as accumulated; means of the instruments
};

struct regressfit {
    std::vector<UByte> dropped;          // of each regressor
    matrix b, V;                         // with the constant last, if one was added; V the inverse, then the variances
    boolean robust = false, centred = false;       // centred: sums of squares are about the mean
    Int4 k = 0;                          // coefficients that are estimated
    Double n = 0, tss = 0, mss = 0, rss = 0, dftotal = 0, dfmodel = 0, df = 0;
    Double mse = 0, r2 = missing, r2a = missing, F = missing, Fdf = 0, ll = missing, ll0 = missing;
    robustresult robustly;
};

normalequations plainequations(const crossproducts& c, const regressmodel& m, boolean deviations);
// 0, 1, 481, 506, 909 (printed).
Int4 projectregressors(const crossproducts& c, const regressmodel& m, normalequations& e, projection& p);
// b and V, the latter the inverse. A claim of a constant that the regressors don't span is taken back in m. 0, 1, 506,
// 908, 909, 1400 (printed).
Int4 fitleast(const crossproducts& c, const normalequations& e, regressmodel& m, regressfit& f);
// The passes over the data: residuals, robust variances; all figures. 0, 1, 909, 1400 (printed).
Int4 measurefit(const estsample& s, const normalequations& e, const projection& p, const regressmodel& m,
                regressfit& f);
// The Wald test that the first `tested` coefficients are 0, by V times the scale: 0 over none, missing when none has a
// variance. 0, 1, 909 (printed).
Int4 waldF(const matrix& b, const matrix& V, Double scale, Int4 tested, Double& F, Double& df);

}  // namespace velmo
