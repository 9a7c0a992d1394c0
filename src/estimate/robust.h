// The robust variance of estimates (Huber 1967, White 1980): D M D, where D is the model's own variance and M sums
// the outer products of the scores, of observations or of clusters.
//
// An estimator reads the options before it builds its sample (getopt_robust), draws that with the cluster variable,
// hands its scores over after the fit (robustvariance), and shows what came out of it by e(vcetype), e(clustvar),
// e(N_clust) (postrobust).
#pragma once
#include <string>
#include <vector>
#include "estimate/crossproducts.h"
#include "estimate/groups.h"
#include "estimate/post.h"
#include "matrix/tiles.h"

namespace velmo {

struct robustrequest {
    boolean robust = false;
    Int4 cluster = 0;            // the variable, numeric or string; 0 none
    std::string score;           // a new variable for the scores; empty none
    Int4 typed = 0;              // the kind of weights as it was typed (weighttype)
};
// Reads robust, cluster(varname) and, where it is allowed, score(newvar). cluster() and pweights ask for a robust
// variance; norobust with pweights is 403, robust with iweights 5101. From then on pweights work as aweights do: the
// caller has a guard on weighttype, which this changes. 0; 103, 110, 111, 198, 403, 5101: printed.
Int4 getopt_robust(robustrequest& r, boolean score);

// The design of an equation: columns of the sample's rows (0 is the constant's, j the jth source's), in the order of
// its coefficients, and its score of each observation of the run, times the weight. Coefficients of all equations stand
// one behind the other, and V has a row for each.
struct scoredequation {
    std::vector<Int4> columns;
    const Double* score;
};

struct robustrule {
    Double dfadj = 1;            // what N is diminished by
    boolean small = false;       // with clusters: times (n - 1) / (n - dfadj)
    boolean unitscale = false, zeroscale = false;
};

struct robustresult {
    Double n = 0;                // observations, or clusters
    Int4 clusters = 0;           // 0 without
    Double df = 0;               // whole part of n less what was adjusted for, at least 0
};

// The middle M, of the rows of a walk over the sample that an estimator makes anyway. The sample must have been drawn
// with the cluster variable. fweights count an observation so many times. The zero scale goes
// before the unit one. The sums of a cluster are in the order of the data, those of clusters in the order of their
// values.
struct robustsums {
    const estsample* s = nullptr;
    boolean clustered = false, plain = false;            // plain: of one equation
    std::vector<std::vector<Int4>> columns;              // of each equation
    std::vector<Int4> places;                            // of its columns in the rows that are summed
    Int4 width = 0, step = 0, at = 0;
    tiles sums{0, 0};
    workspace factors{0}, work{0};
    grouping clusters;
    // Columns of each equation, as in scoredequation. 0, 1, 909 (printed).
    Int4 begin(const estsample& sample, const robustrequest& r, const std::vector<std::vector<Int4>>& of);
    // Each block of the sample in turn, with the scores of its rows by each equation.
    void add(const rowsblock& b, const Double* const* score);
    // M scaled, a row for each column of the equations. 0, 1, 908, 909 (printed).
    Int4 finish(const robustrule& rule, matrix& M, robustresult& out);
};
// out = D M D', of which the lower triangle is made the whole; D may have other rows than M. 0, 1, 908, 909 (printed).
Int4 sandwich(const matrix& D, const matrix& M, matrix& out);
// The whole of it: V (k x k, both triangles) holds D and becomes D M D. 0, 1, 908, 909
// (printed).
Int4 robustvariance(const estsample& s, const robustrequest& r, const robustrule& rule,
                    const std::vector<scoredequation>& equations, matrix& V, robustresult& out);

// The groups of the sample by a variable: 0, 1, 909 (printed).
Int4 numberclusters(const estsample& s, Int4 var, grouping& g);

// e(vcetype) (Robust, or the text given), e(clustvar), e(N_clust).
void postrobust(estimation& e, const robustrequest& r, const robustresult& result, const char* vcetype = "Robust");

// Writes the scores of the run's observations, divided by their weights, to a new double, missing outside the sample;
// nothing without a name. To be called when only the post can still fail. 0; 900, 902 (printed).
Int4 storescores(const estsample& s, const robustrequest& r, const Double* score, const char* label);

}  // namespace velmo
