// The Wald test of linear constraints on the posted coefficients.
#pragma once
#include <vector>
#include "matrix/matrices.h"

namespace velmo {

struct constrainttest {
    Int4 df = 0;                   // constraints that are kept
    Double statistic = missing;    // F, or chi-squared
    Double dfr = missing;          // of the residuals; missing: the statistic is chi-squared
    Double p = missing;
    std::vector<Int4> dropped;     // numbers from 1 of the constraints that others imply, or that test nothing
};

// Tests R b = r; a row of Rr is a constraint, its last column r. `minimum`: coefficients that the others determine,
// given those that no constraint names, don't take part. 0; 1; 301 without estimates, or with those of a kind that has
// no test; 908, 909: printed.
Int4 testconstraints(const matrix& Rr, boolean minimum, constrainttest& out);

}  // namespace velmo
