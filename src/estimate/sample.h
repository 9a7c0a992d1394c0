// The sample: the observations of the run that a command works on, those that meet the `if` and whose weight, if
// weights were given, is neither missing nor 0. Two ways through it: `oversample` gives it block by block, for what
// needs only a pass or two; `drawsample` takes it into buffers, for what goes through it again and again, in another
// order, or without observations that lack a value.
#pragma once
#include <vector>
#include "base/memalloc.h"
#include "expr/walk.h"
#include "matrix/matrices.h"
#include "matrix/moments.h"

namespace velmo {

// Where values come from: a variable, or a time-series operator (data/timeseries.h; 0 none) over one. String variables
// have no values.
struct source {
    Int4 var, op = 0;
    Double value(Int4 obs) const;
};
std::vector<source> listsources();     // the entries of the list that was parsed
void getsource(source s, Int4 first, Int4 n, Double* out);      // a column's values
// Where the values of a coefficient come from, by its name; var 0 for the constant's. 0; 111, 109 a string, 5 or 111
// for operators whose time isn't set: printed.
Int4 namedsource(const axisname& a, source& s);

// What an observation of weight w is worth: `use` is false for missing, and for 0 unless zeros are kept. 0, or 402
// (negative), 401 (an fweight that isn't whole), printed.
Int4 checkweight(Double w, boolean keepzero, boolean& use);
// Weights of observations first to first + n - 1 under the mask, which is cleared where the weight excludes one.
Int4 weighblock(Int4 first, Int4 n, UByte* mask, Double* weight, boolean keepzero);
weighing sampleweighing();             // the kind of weights that was given, for the kernels

// A block of the sample: the values of up to eight sources row by row; a row that doesn't count is missing throughout.
// Of an odd number of sources the next is missing.
struct sampleblock {
    Int4 first, n, k;
    boolean whole;                // all observations count; there are no weights
    boolean sparse;               // few do: the rows are those alone, whose observations stand in obs
    UByte mask[blocksize];
    Int4 obs[blocksize];
    Double weight[blocksize];
    alignas(16) lanerow x[blocksize];
    Int4 obsof(Int4 i) const { return sparse ? obs[i] : first + i; }
    Double weightof(Int4 i) const { return whole ? 1 : weight[i]; }
};
Int4 selectblock(sampleblock& b, Int4 first, Int4 n);              // 0, 401, 402
void fetchblock(sampleblock& b, const source* sources, Int4 k);    // k of 1 to lanes

// one(block, at) for the run's blocks, and within a block for each eight of the k sources from `at` on, so that the
// rows are walked along once. 0, 1, 401, 402.
template <class F> Int4 oversample(const source* sources, Int4 k, F one) {
    sampleblock b;
    return overblocks([&](Int4 first, Int4 n) {
        if (Int4 rc = selectblock(b, first, n)) return rc;
        for (Int4 at = 0; at < k; at += lanes) {
            fetchblock(b, sources + at, std::min(lanes, k - at));
            one(static_cast<const sampleblock&>(b), at);
        }
        return 0;
    });
}

// The passes of summarize over up to `sweepwidth` sources. one(block), if given, sees each block of the first pass with
// its first eight sources. 0, 1, 401, 402.
Int4 secondpass(const source* sources, Int4 k, moments* m);
template <class F> Int4 firstpass(const source* sources, Int4 k, moments* m, F one) {
    weighing kind = sampleweighing();
    sweepsums s;
    sweep_first(s);
    Int4 rc = oversample(sources, k, [&](const sampleblock& b, Int4 at) {
        if (at == 0) one(b);
        if (kind == weigh_none) return sweep_sums(s, at, b.x, b.n, b.k);
        for (Int4 j = 0; j < b.k; j++)
            for (Int4 i = 0; i < b.n; i++) moments_add(m[at + j], b.x[i][j], b.weight[i]);
    });
    if (kind == weigh_none) sweep_tofirst(s, m, k);
    for (Int4 j = 0; j < k; j++) moments_first(m[j], kind);
    return rc;
}

// The sample in buffers: n observations in their order.
struct drawnsample {
    Int4 n = 0;
    workspace obs{0}, weight{0};        // Int4 numbers; Double weights, empty without weights
    std::vector<workspace> x;           // the values of each source; empty of a string variable
    const Int4* numbers() const { return obs.get<Int4>(); }
    const Double* weights() const { return weight.get<Double>(); }
    Double* values(Int4 j) const { return x[std::size_t(j)].get<Double>(); }
};
// casewise: an observation that lacks a value, or a text, of one of the sources stays out. 0, 1, 401, 402, 909
// (printed).
Int4 drawsample(const std::vector<source>& sources, boolean casewise, drawnsample& out);

}  // namespace velmo
