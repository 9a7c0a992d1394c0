// Operations on whole matrices that need no stored names: products, missing values, places of names.
#pragma once
#include "matrix/matrices.h"

namespace velmo {

// C (n x cols) = A (n x inner) B (inner x cols), rows without gaps. Each element is summed in the order of the inner
// index. 0, 1 on a Break, 909 (printed).
Int4 matproduct(const Double* A, const Double* B, Double* C, Int4 n, Int4 inner, Int4 cols);
boolean hasmissing(const matrix& m);
// The place of the first row (column) that a text `eq:op.name` means, or the last one, from 0; -1 for none. Without a
// colon any equation will do, with nothing behind it any name.
Int4 findaxisname(const std::vector<axisname>& names, std::string_view text, boolean last = false);

}  // namespace velmo
