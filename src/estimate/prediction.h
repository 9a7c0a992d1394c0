// Predictions: what the posted coefficients say of each observation, by blocks. All that doesn't depend on the
// observation is looked up when a prediction is prepared; a block is then columns, their sums and one formula.
#pragma once
#include <string>
#include <vector>
#include "estimate/records.h"
#include "estimate/sample.h"

namespace velmo {

enum statistic : Int4 {
    predict_xb, predict_residuals, predict_stdp, predict_stdr, predict_hat, predict_rstandard, predict_cooksd,
    predict_default,             // of likelihood estimators: a probability, or a relative hazard
    predict_rstudent, predict_stdf, predict_stddp,
};

struct predictrequest {
    statistic what = predict_xb;
    Int4 constant = 0;           // the variable whose value stands for the constant's 1; 0 none
    boolean offset = true;       // e(offset) is added
    boolean rules = false;       // observations that a perfect predictor decides: its outcome, not missing
    boolean asif = false;        // such predictors count for nothing
    std::string equation = "#1"; // of several; of stddp two, with a comma between
};

// A coefficient and where its values come from: var 0 the constant's 1.
struct predictterm {
    Double b;
    source from;
    Int4 at;                     // its place among the coefficients
    Double sign;                 // -1: of the equation that another's difference is taken from
};

struct predictrule { Double value; source from; Int4 kind, outcome; };

struct prediction {
    predictrequest request;
    Int4 code = 0;                         // of the estimates
    boolean same = false;                  // the difference of an equation and itself
    std::vector<predictterm> terms;        // but those of dropped variables
    workspace V{0};                        // terms x terms: the diagonal, and twice what is above it
    source depvar{0}, offset{0};
    boolean exposure = false;              // the offset counts by its logarithm
    std::vector<predictrule> rules;
    Double scale = 1, k = 0, s2 = missing, s2df = missing, dfm1 = missing;
    workspace work{0};                     // the columns of a block, and its sums
};

// 0; 301 estimates without what this needs, 111, 109, 135 a statistic that weights forbid, 198, 908, 909: printed.
Int4 prepareprediction(const predictrequest& r, prediction& p);
// The values of observations first to first + n - 1, n at most blocksize; missing where something is.
void predictblock(const prediction& p, Int4 first, Int4 n, Double* out);

}  // namespace velmo
