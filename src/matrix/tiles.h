// The lower triangle of a sum of outer products, w x x', row of doubles after row, in tiles of four by four whose sums
// stay in registers. Each element is summed in the order of the rows.
#pragma once
#include "base/memalloc.h"

namespace velmo {

struct tiles {
    std::size_t count, width;
    workspace sums, weighted;
    // Rows are `wide` doubles, a multiple of 4; add() gets `step` of them at most.
    tiles(Int4 wide, Int4 step);
    boolean got() const { return sums.p && weighted.p; }
    // n rows; their weights, or null. w multiplies the row of the triangle first, or its column.
    void add(const Double* x, const Double* weight, Int4 n, boolean withcolumn);
    Double sum(Int4 row, Int4 col) const {
        std::size_t i = std::size_t(row), j = std::size_t(col), r = i / 4;
        return i < j ? sum(col, row) : sums.get<Double>()[(r * (r + 1) / 2 + j / 4) * 16 + i % 4 * 4 + j % 4];
    }
};

// to(j) += the sum over n rows of t(row) x(row, j), in their order; width is a multiple of 4.
void addcolumns(const Double* x, const Double* t, Int4 n, Int4 width, Double* to);

}  // namespace velmo
