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

// Passes over the rows of a sample, which stays as it is; who makes many keeps its rows (keeprows).
struct indexdesign {
    // 0, 909 (printed).
    Int4 open(const estsample& s, const indexform& form);
    // f, g and H at b (estimate/newton.h): 0, 1, 909 (printed).
    Int4 evaluate(const indexmodel& model, const Double* b, Double& f, Double* g, Double* H) const;
    // Scores at b, of each observation of the run (0 outside the sample): 0, 1, 909 (printed).
    Int4 scores(const indexmodel& model, const Double* b, Double* score) const;

private:
    const estsample* sample = nullptr;
    indexform form;
    workspace index{0}, outcome{0}, score{0}, curvature{0};      // of a block
    indexblock look(const rowsblock& rows, const Double* b) const;
};

}  // namespace velmo
