// Measures and tests of association of a two-way table of counts. What can't be computed is missing.
#pragma once
#include <vector>
#include "base/types.h"

namespace velmo {

// Whole numbers, with their margins.
struct countmatrix {
    Int4 rows, cols;
    std::vector<Double> cell, row, col;
    Double total = 0;
    countmatrix(Int4 r, Int4 c)
        : rows(r), cols(c), cell(std::size_t(r * c)), row(std::size_t(r)), col(std::size_t(c)) {}
    Double& at(Int4 i, Int4 j) { return cell[std::size_t(i * cols + j)]; }
    Double at(Int4 i, Int4 j) const { return cell[std::size_t(i * cols + j)]; }
    void summargins();
};

struct statistic { Double value, second; };     // with its probability or standard error
Double tabledf(const countmatrix& c);
statistic pearson(const countmatrix& c);
statistic likelihoodratio(const countmatrix& c);            // missing with an empty cell
Double cramersv(const countmatrix& c);                      // signed, of a 2 by 2 table
// Of ordered rows and columns.
statistic goodmangamma(const countmatrix& c);
statistic kendalltaub(const countmatrix& c);
// By visiting all tables of these margins: the probabilities of those as unlikely as this one; of a 2 by 2 table also
// the one-sided, otherwise missing. 0; 1 on a Break.
Int4 fisherexact(const countmatrix& c, Double& both, Double& one);

}  // namespace velmo
