// The Wald test that coefficients are 0: b' V^-1 b over those of a list.
#pragma once
#include <vector>
#include "matrix/matrices.h"

namespace velmo {

struct waldresult {
    Double chi2 = 0;             // 0 over none
    Int4 df = 0;                 // coefficients of the list that are left; the others depend on these
};
// `which` numbers coefficients of the row b from 0; V holds their variances, both triangles. 0, 1 on a Break, 909
// (printed).
Int4 waldtest(const matrix& b, const matrix& V, const std::vector<Int4>& which, waldresult& out);

}  // namespace velmo
