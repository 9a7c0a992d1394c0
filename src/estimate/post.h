// The last step of an estimator: its results become the estimates, all at once, when nothing can stop it any more.
#pragma once
#include <string>
#include <utility>
#include <vector>
#include "estimate/crossproducts.h"
#include "stored/posted.h"

namespace velmo {

struct estimation {
    postrecord record;                                   // code, name of the table's heading, scale of V
    std::vector<axisname> names;                         // of the coefficients
    matrix b, V;                                         // a row; square, both triangles
    std::vector<std::pair<const char*, Double>> scalars;         // of e(), in this order
    std::vector<std::pair<const char*, std::string>> macros;     // of e(); an empty text is none
    struct own { const char* name; const void* bytes; std::size_t size; };
    std::vector<own> records;                            // copied
    std::vector<std::pair<const char*, const matrix*>> matrices; // of the estimation's own, beside _b and VCE
};

// e() is what this says, and the observations of the sample are e(sample). 0; 900, 902 with e() as before; 950 with e()
// empty. Printed.
Int4 postestimation(estimation& e, const estsample& s);

// e(wtype) and e(wexp) of the weights that were given, the latter "= exp" as typed; nothing without weights.
// `weighttype` must be the kind that was typed.
void postweights(estimation& e);

}  // namespace velmo
