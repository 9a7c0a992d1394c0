// What estimators keep with their estimates for replays, predictions and tests (stored/posted.h), by the name of each.
#pragma once
#include <string>
#include <vector>
#include "base/types.h"

namespace velmo {

// `regress`: of linear estimates. VCE is then the inverse of the cross-products, which s2 scales, but of a robust fit
// the variances themselves.
struct regressrecord {
    Double n = 0;                  // observations; the sum of fweights or iweights
    Double s2 = missing;           // mean squared error
    Double rss = 0, mss = 0;
    Double df = 0, dfmodel = 0;    // of the residuals, of the model
    Int4 k = 0;                    // coefficients that are estimated
    Int4 regressors = 0;           // in the list, without the constant
    UByte weighted = 0;            // residual statistics have no meaning
    UByte constant = 1, hascons = 0, mse1 = 0, instruments = 0, robust = 0;
    UByte centred = 0;             // sums of squares are about the mean
    UByte unused = 0;
};
static_assert(sizeof(regressrecord) == 64);

// `probit`: of binary outcomes, both estimators'.
struct binaryrecord {
    Double ll = missing, ll0 = missing;
    Double mean = missing, sd = missing;             // of the outcome
    Double successes = 0, failures = 0;              // sums of weights
    Double weights[2][2] = {}, decided[2][2] = {};   // by outcome and by sign of the linear predictor (1: not below 0)
    Int4 counts[2][2] = {}, decidedcounts[2][2] = {};
    Int4 n = 0, regressors = 0, parameters = 0, offset = 0;      // offset: its variable's number, 0 none
    Int4 most = 0, iterations = 0, status = 0;       // status: that of the iteration (estimate/newton.h)
    UByte constant = 1, trace = 0, log = 1, asis = 0;
    char depname[48] = "";
    Double tolerance = 0, ltolerance = 0;            // of the iteration
    UByte unused[16] = {};
};
static_assert(sizeof(binaryrecord) == 256);

// `rules`: one for each regressor that left because it predicts the outcome perfectly.
//   kind 1  x ~= value decides: the outcome is `outcome`
//   kind 2  x > value is a success, x < value a failure
//   kind 3  the reverse
//   kind 4  nothing to decide: passed over
struct rulerecord {
    Double value = 0;
    char name[48] = "";
    Int4 kind = 4, outcome = 0;    // outcome 1: success
    UByte unused[8] = {};
};
static_assert(sizeof(rulerecord) == 72);

}  // namespace velmo
