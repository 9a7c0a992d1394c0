// The sample of an estimation, and its cross-products: what linear estimators and `matrix accum` begin with.
//
// The sample is a map of the run and the weights; the values stay in the dataset and come row by row, so that nothing
// of its size is copied.
#pragma once
#include <vector>
#include "base/poll.h"
#include "estimate/sample.h"
#include "matrix/matrices.h"
#include "output/errors.h"

namespace velmo {

// A binary outcome, the first source, is 0 and 1; empty: no observations are a sample too; sums: those of the
// cross-products are wanted, and may be taken on the way; cluster: a variable, numeric or string, that must have a
// value.
struct sampleform { boolean empty = false, binary = false, sums = false; Int4 cluster = 0; };

struct estsample {
    std::vector<source> sources;
    Int4 first = 1, run = 0;             // the run: where it begins, how many observations
    Int4 n = 0;                          // how many of them count
    boolean binary = false;
    std::vector<Double> sums;            // of weights and values, or empty
    workspace clusters{0};               // of the run: values of a numeric cluster variable
    workspace map{0}, weight{0};         // of the run: UByte, 0 out, and 2 for a binary outcome that isn't 0; Double
    workspace rows{0}, numbers{0};       // where they are kept (keeprows): all rows, and their observations
    UByte* in() const { return map.get<UByte>(); }
    Double* weights() const { return weight.get<Double>(); }      // null without weights
};
// Casewise over the sources. Weights that are missing or not above 0 leave out (iweights: that are missing). 0; 1; 109
// a string; 401 an fweight that isn't whole; 2000 no observations, or one, with the message of 2001; 909. Printed.
Int4 estimationsample(const std::vector<source>& sources, sampleform form, estsample& out);

// Takes observations that the map (of the run) marks from the sample. 0, 2000 (printed) as above.
Int4 narrowsample(estsample& s, const UByte* leaves);

// Rows of the sample: of each the constant 1 and the k sources, zeros up to the width, a multiple of 4.
struct rowsblock {
    Int4 n, width;
    const Double* x;
    const Double* weight;                // or null
    const Int4* obs;
    const Double* row(Int4 i) const { return x + std::size_t(i) * std::size_t(width); }
};

// Reads the rows once for all passes that follow, if they take `mostkept` bytes at most and there is that room; else
// each pass reads them from the data. Whoever changes the sources or the map drops them first. 0, 1, 909 (printed).
inline constexpr std::size_t mostkept = std::size_t(1) << 28;
Int4 keeprows(estsample& s);
inline void droprows(estsample& s) { s.rows = workspace(0), s.numbers = workspace(0); }

// The buffers of a walk over the rows of k sources, and one block of them: of the observations at to at + n - 1 of the
// run (from 0), at most `step`, those of the sample; or of the kept rows.
struct rowbuffers {
    Int4 width, step;
    workspace x, column, weight, obs;
    explicit rowbuffers(std::size_t k);
    boolean got() const { return x.p && column.p && weight.p && obs.p; }
};
rowsblock readrows(const estsample& s, const rowbuffers& r, Int4 at, Int4 n);

// one(block) for the sample, in order. 0, 1, 909 (printed).
template <class F> Int4 overrows(const estsample& s, F one) {
    rowbuffers r(s.sources.size());
    if (!r.got()) return error(909);
    for (Int4 at = 0, end = s.rows.p ? s.n : s.run; at < end; at += r.step) {
        rowsblock b = readrows(s, r, at, std::min(r.step, end - at));
        if (b.n > 0) one(static_cast<const rowsblock&>(b));
        if (tick()) return 1;
    }
    return 0;
}

// aweights as a share of their mean, in the sample; print: the line that tells their sum. False when that is 0.
boolean scaleweights(estsample& s, boolean print, Double& total);

struct crossform { boolean print = false, printweights = false, deviations = false, extremes = false; };
struct crossproducts {
    matrix m;                            // row and column 0: the constant, with the sums; named by their places
    std::vector<Double> means;           // of the sources, with deviations
    std::vector<Float> low, high;        // with extremes
    Double sumweights = 0;               // as typed
};
// The lower triangle sums w x(i) x(j), or w d(j) d(i) of deviations from the means, observation by observation in plain
// double; the upper mirrors it. aweights are scaled to sum to the number of observations, in the sample too; where they
// sum to 0 all stays 0. print: "(sum of wgt is ...)" of aweights and "(obs=...)"; printweights: the first alone. 0, 1,
// 908, 909 (printed).
Int4 sscp_accum(estsample& s, crossform form, crossproducts& out);

// The collinearity step: sweeps the cross-products' copy, the constant (if any) ahead of the others, and tells which of
// the sources stay. A note of each that doesn't, by its name. 0; 1; 909, 1400 where the products overflow: printed.
Int4 dropcollinear(const crossproducts& c, const std::vector<std::string>& names, boolean constant,
                   std::vector<boolean>& stays);

}  // namespace velmo
