// Matrices as they are written: A, r(A), e(A), return(A).
#pragma once
#include <string_view>
#include "matrix/matrices.h"
#include "stored/families.h"

namespace velmo {

struct matrixname {
    family f = named_results;
    std::string_view name;
};
// The parts of a text; a text that is no family's stands for a user's matrix.
matrixname readmatrixname(std::string_view text);
// A copy, with names; e(b) and e(V) stand for what an estimation keeps under other names. 0, 111, 908, 909 (printed).
Int4 readmatrix(const matrixname& from, matrix& out);
// The matrix expression at the cursor, which then stands behind it; a number is a 1 x 1 matrix with `number` set. The
// result has names for all rows and columns. 0 or a code (printed).
Int4 matrixhere(matrix& out, boolean& number);
// The number of a matrix expression at the cursor, up to a comma or `]`. 109 for a matrix.
Int4 numberhere(Double& value);

}  // namespace velmo
