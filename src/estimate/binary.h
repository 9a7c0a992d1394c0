// The model of a binary outcome by a linear index: logit and probit, which differ in what they say of an observation.
#pragma once
#include <string>
#include <vector>
#include "estimate/indexmodel.h"
#include "estimate/records.h"
#include "estimate/robust.h"

namespace velmo {

// Observations by outcome and by the sign of the index (1: not below 0), with their weights; of them those whose index
// is so far on the right side that they decide nothing.
struct binarytally {
    Int4 counts[2][2], decidedcounts[2][2];
    Double weights[2][2], decided[2][2];
};

struct binarymodel {
    Int4 code;                               // of its estimates
    const char *word, *title, *predict;
    Double (*start)(Double p);               // the index where the probability is p
    void (*block)(const indexblock& b, Double& f, binarytally& t);
    Double (*score)(Double index, boolean success);
};
extern const binarymodel logitmodel, probitmodel;

struct binaryrequest {
    iterationform iterate;
    robustrequest robust;
    Int4 offset = 0;                         // its variable
    boolean constant = true, asis = false;
};

// Fits it to the list that was parsed, outcome first, and posts: e(), the records `probit` and `rules`. 0, 1, 102, 109,
// 401, 900, 902, 908, 909, 950, 2000 (printed).
Int4 fitbinary(const binarymodel& model, const binaryrequest& request);

}  // namespace velmo
