// The equations of a likelihood that is written in the language, as its driver describes them in global macros:
//   ML_n                  how many equations there are; of the equation #:
//   ML_x# ML_xc#          its variables; 1 for a constant, else empty
//   ML_fp# ML_lp#         first and last position in the row of all coefficients
//   ML_xo# ML_xe#         offset variable; exposure variable, whose logarithm is an offset
//   ML_eq#                its name, `eq#` without
//   ML_samp               marks the sample; all observations without
//   ML_w ML_wtyp          the variable of weights, none weighs 1; the word of their kind
#pragma once
#include <string>
#include <vector>
#include "estimate/crossproducts.h"

namespace velmo {

struct mlequation {
    Int4 number = 0;
    std::string name;
    std::vector<source> x;
    boolean constant = false;
    Int4 first = 0, last = 0;            // from 1
    Int4 offset = 0, exposure = 0;       // variables, 0 none
    Int4 size() const { return Int4(x.size()) + constant; }
    std::vector<axisname> names() const; // of its coefficients
};
// 0; 198 out of range, the codes of lists: printed.
Int4 readequation(Int4 number, mlequation& e);

// The sample and the weights: 0, 109, 111 (printed).
struct mlsample {
    Int4 marker = 0, weight = 0;         // variables, 0 none
    boolean whole = false;               // its kind of weights forbids sums over parts of the sample
};
Int4 readmlsample(mlsample& s);
// Which observations count, 1 in the mask.
void samplemask(const mlsample& s, Int4 first, Int4 n, UByte* mask);

}  // namespace velmo
