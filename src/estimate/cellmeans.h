// Means and deviations of a variable in the cells of one or two grouping variables, and the analysis of variance of one
// way. Sums are kept in twice the precision of a double, so that the difference of sums that is a deviation loses
// nothing.
#pragma once
#include <vector>
#include "estimate/tables.h"

namespace velmo {

constexpr Int4 mostcells = 375;

struct widesum {
    Double hi = 0, lo = 0;
    void add(Double x);
    void add(widesum x);
};

struct cellsums {
    widesum w, x, xx;             // weights of mean 1; with the values; with their squares
    Int4 n = 0;
    void add(const cellsums& other);
};

// f is what counts as the number of observations: under aweights observations, under fweights frequencies.
struct cellfigures { Double mean = missing, sd = missing, freq = 0, count = 0, f = 0, deviations = 0; };

struct celltable {
    std::vector<valuelist> lists;                 // of each grouping variable
    std::vector<Int4> cells;                      // by numbers of both: which of the sums, or -1
    std::vector<cellsums> sums;
    Double n = 0, weights = 0;                    // observations; sum of the weights as given
    explicit celltable(const std::vector<Int4>& by);
    Int4 stride() const { return lists.size() > 1 ? mostcells : 1; }
    cellsums sumsof(Int4 row, Int4 col) const;    // -1: all of them; empty where there is no such cell
    cellfigures figures(const cellsums& s) const;
    Double total() const;                         // the number of observations, or the total frequency of fweights
};
// 0, 1, 134, 401, 402 (printed).
Int4 fillcells(Int4 x, boolean keepmissing, celltable& t);

// ---- Analysis of variance.

struct group { Double n, mean, deviations; };
struct variances {
    Double n, mss, rss, F = missing, p = missing;
    Int4 dfm, dfr;
    Double bartlett = missing, pbartlett = missing;
    Int4 dfbartlett = 0, single = 0, multiple = 0;          // cells that took no part in the test
    Double msm() const { return dfm > 0 ? mss / dfm : missing; }
    Double msr() const { return dfr > 0 ? rss / dfr : missing; }
};
variances analysis(const std::vector<group>& groups, const cellfigures& all, Double n);

enum comparison : UByte { bonferroni, scheffe, sidak, ncomparisons };
// The probability that groups a and b differ so by chance, adjusted for all comparisons of k groups.
Double comparisonp(comparison kind, const group& a, const group& b, Int4 k, const variances& v);

}  // namespace velmo
