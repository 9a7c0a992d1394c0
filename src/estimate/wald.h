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

// d' M^-1 d, whose inverse M becomes by the sweep. flag tells of each index: 1 it counts, 2 it depends on the others. 0
// or 1.
Int4 sweptform(matrix& M, const std::vector<Double>& d, std::vector<UByte>& flag, Double& value);

}  // namespace velmo
