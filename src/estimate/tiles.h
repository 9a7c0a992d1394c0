// Weighted cross-products of rows: the lower triangle of sums of w x x', in tiles of four by four that stay in
// registers while the rows of a block go by. Every sum is in the order of the rows, in plain double.
#pragma once
#include "matrix/matrices.h"

namespace velmo {

struct tiles {
    std::size_t count, width;
    workspace sums, weighted;
    // For rows of `wide` doubles, a multiple of 4, and blocks of up to `step` rows.
    tiles(Int4 wide, Int4 step);
    boolean got() const { return sums.p && weighted.p; }
    void clear();
    // w first with the row of the triangle, or with its column; null: no weights.
    void add(const Double* x, const Double* weight, Int4 n, boolean withcolumn);
    Double sum(std::size_t i, std::size_t j) const;      // j <= i
    // Into the lower triangle of m, from row and column `from` on.
    void tolower(matrix& m, Int4 from) const;
};

// to(j) += the sum over n rows of t(row) x(row, j), in their order; width is a multiple of 4.
void addcolumns(const Double* x, const Double* t, Int4 n, Int4 width, Double* to);

}  // namespace velmo
