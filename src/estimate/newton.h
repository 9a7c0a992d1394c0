// Maximum likelihood by Newton and Raphson with halved steps. Who estimates brings an evaluator; the engine knows no
// observation.
#pragma once
#include <functional>
#include <vector>
#include "matrix/matrices.h"

namespace velmo {

// How long to iterate, and what to show of it: iterate(#) tolerance(#) ltolerance(#) trace log.
struct iterationform {
    Int4 most = 16000;
    Double tolerance = 1e-4, ltolerance = 0;     // of coefficients, of the log likelihood
    boolean trace = false, log = true;
};
Int4 getopt_iteration(iterationform& o);         // 0, 198 (printed)

// Minus the log likelihood f at b, its gradient g and its second derivatives H (as many rows as b, without gaps, both
// triangles); g and H are zeros at entry. An f that is no finite number: no value at b. 0, 1 on a Break, or a code.
using evaluator = std::function<Int4(const Double* b, Double& f, Double* g, Double* H)>;

struct newtonform {
    iterationform iterate;
    boolean plain = false;       // the second derivatives are inverted without a ridge where they are singular
    boolean perfect = false;     // ends when the likelihood is 1
};

enum newtonstatus : Int4 { ended_none, ended_coefficients, ended_likelihood, ended_iterations, ended_questionable };
inline boolean converged(Int4 status) { return status == ended_coefficients || status == ended_likelihood; }

struct newtonresult {
    Int4 status = ended_none, iterations = 0;
    Double ll = missing;
    matrix V;                    // the inverse of H; its diagonal is 0 when the fit is questionable: a ridge was needed
};

// From the coefficients in b to those that maximise. It stops with ended_coefficients as soon as the step that it has
// taken is small: ll and V are then those of the point before it. 0, 1, 908, 909 (printed), or the evaluator's code.
Int4 mlnewton(const evaluator& evaluate, const newtonform& form, std::vector<Double>& b, newtonresult& out);

}  // namespace velmo
