// Cross-products of a sample: what linear estimators and `matrix accum` begin with.
#pragma once
#include <vector>
#include "estimate/sample.h"
#include "matrix/matrices.h"

namespace velmo {

// How the sample of an estimation is built: casewise over the sources; weights that are missing or not above 0 leave out
// (iweights stay), 401 an fweight that isn't whole, 2000 no observations (or one: 2001's message and 2000), unless `empty`
// is allowed. With `binary` the first source becomes 0 and 1.
struct sampleform { boolean empty = false, binary = false; };
Int4 estimationsample(const std::vector<source>& sources, sampleform form, drawnsample& out);

struct crossform { boolean print = false, deviations = false, extremes = false; };
struct crossproducts {
    matrix m;                            // row and column 0: the constant
    std::vector<Double> means;           // of the sources, with deviations
    std::vector<float> low, high;        // with extremes
    Double sumweights = 0;               // as typed
};
// aweights are scaled to sum to the number of observations, in the sample too. 0, 1, 908, 909 (printed).
Int4 sscp_accum(drawnsample& s, Int4 k, crossform form, crossproducts& out);

}  // namespace velmo
