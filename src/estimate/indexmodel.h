// Likelihoods of an outcome and a linear index, x b and an offset: what a model says of a block of observations is made
// into the log likelihood with its gradient and second derivatives, in plain sums in the order of the observations.
#pragma once
#include <functional>
#include "estimate/crossproducts.h"
#include "estimate/newton.h"
#include "matrix/tiles.h"

namespace velmo {

// Which columns of a sample's rows (0 the constant's, j the jth source's) are meant; the design's in the order of the
// coefficients.
struct indexform {
    std::vector<Int4> columns;
    Int4 outcome = 1, offset = 0;        // offset 0: none
};

// A block of observations as a model sees it. weight and curvature may be null: 1, and not asked for. The model sets of
// each observation the first derivative of its log likelihood by the index (score), and minus the second (curvature),
// both times the weight, and adds to f minus the log likelihood.
struct indexblock {
    Int4 n;
    const Double *index, *outcome, *weight;
    Double *score, *curvature;
};
using indexmodel = std::function<void(const indexblock& block, Double& f)>;

// The rows of the design. They are kept from one pass to the next where there is room (at most `mostkept` bytes), and
// else read from the data in each.
struct indexdesign {
    static constexpr std::size_t mostkept = std::size_t(1) << 28;
    // 0, 1 on a Break, 909 (printed). The sample must stay as it is; its weights are taken now.
    Int4 open(const estsample& s, const indexform& form);
    // f, g and H at b (estimate/newton.h): 0, 1.
    Int4 evaluate(const indexmodel& model, const Double* b, Double& f, Double* g, Double* H);
    // Scores at b, of each observation of the run (0 outside the sample): 0, 1.
    Int4 scores(const indexmodel& model, const Double* b, Double* score);

private:
    struct block { Int4 n; const Double *x, *outcome, *weight, *offset; };
    const estsample* sample = nullptr;
    indexform form;
    Int4 k = 0, width = 0, step = 0;
    boolean kept = false;
    workspace x{0}, outcome{0}, weight{0}, offset{0};    // all rows of the sample, or a block's
    workspace index{0}, score{0}, curvature{0};          // of a block
    Int4 room(std::size_t rows);
    void take(const rowsblock& b, std::size_t at);
    block blockat(std::size_t at, Int4 n) const;
    template <class F> Int4 over(F one);
    void indices(const block& b, const Double* coefficients);
};

}  // namespace velmo
