// The posted estimates: what the last estimation left, apart from the scalars, macros and matrices of e() that have
// names. All are objects of type obj_estimate, bodies without names of their own:
//   gamma      the record below; estimates exist when it does
//   _b VCE Cns the row of coefficients, their variances (symmetric), the constraints: columns as _b, and the constant
//   colnames   the names of the coefficients, 83 bytes each
//   Rr         the constraints of the last test; and what estimators keep for themselves
// The estimation sample is the byte variable `(e)`; those of estimates put by (stored/held.h) are `(h1)`, `(h2)`...
#pragma once
#include <string>
#include <string_view>
#include <vector>
#include "matrix/matrices.h"

namespace velmo {

// What commands ask of estimates, by the code that the estimator left.
enum estimatekind : UByte {
    kind_none, kind_linear, kind_anova, kind_likelihood, kind_multiple, kind_survival, kind_posted, kind_constrained,
    kind_linearrobust,
};
enum estimatecodes : Int4 { code_linear = 1, code_posted = 18, code_constrained = 19, code_linearrobust = 20 };

struct postrecord {
    Int4 code = 0;
    UByte equations = 0;           // a coefficient has the name of an equation
    UByte unused[3] = {};
    Double scale = 1;              // VCE as it is stored times this are the variances
    char depname[48] = "";         // of the table's heading
};
static_assert(sizeof(postrecord) == 64);

boolean posted(postrecord* out = nullptr);       // whether there are estimates; their record
Int4 estimatecode();                             // 0 without
estimatekind kindof(Int4 code);
std::vector<axisname> postednames();             // of the coefficients
boolean hasequations(const std::vector<axisname>& names);
std::vector<std::string> equations(const std::vector<axisname>& names);    // in their order, `_` for none

// Begins a post: e() is emptied, or without `clear` only what is told above; then the record is kept. 0 or 950
// (printed, e() empty).
Int4 posted_begin(const postrecord& r, boolean clear);
Int4 posted_setnames(const std::vector<axisname>& names);      // 0 or 950
// Takes the body of a user's matrix, whose names go. It must be there.
void posted_take(std::string_view matrixname, std::string_view as);
// A matrix of the estimation's own, which the names of the coefficients stand for; a record that it keeps for its
// replays and predictions. 0 or 950 (printed). A record is read only if it has the size: else false.
Int4 posted_put(std::string_view name, const matrix& m);
Int4 posted_putrecord(std::string_view name, const void* record, std::size_t size);
boolean posted_getrecord(std::string_view name, void* record, std::size_t size);
// Ends e() and its sample.
void posted_clear();

// A stored object as a matrix with the coefficients' names where it has as many rows or columns; the variances scaled.
// 0; 301 without estimates, 111, 908, 909: printed.
Int4 postedmatrix(std::string_view name, matrix& m);
Double coefficient(Int4 at);                     // from 0
Double standarderror(Int4 at);                   // 0 where the variance is not positive
// Where a coefficient stands, from 0. The name is that of one, or else names a variable that has one; `eq` is the name
// of an equation, or # and its number, or empty for the first that has it. 0; 111, 301 (printed).
Int4 findcoefficient(std::string_view eq, std::string_view name, Int4& at);
// The equation of that name, or of # and its number: 0 or 111 (printed).
Int4 findequation(std::string_view eq, std::string& name);

// The sample: whether a variable may be one, which is then a byte and whose name is whole: 0; 111, 471, 901, 903
// (printed). And making it that, which can't fail.
Int4 checksample(std::string& name);
void posted_sample(std::string_view name);
// A variable that may be one: 1 where the map of observations first to first + run - 1 isn't 0. Who doesn't post it
// drops it with dropworkvar. 0; 900, 902 (printed).
Int4 makesample(const UByte* map, Int4 first, Int4 run, std::string& name);

// Estimates put by: hold (0; 110, 301, 900, 902, 950, 1000), and taking them back (0, 111): printed. At most one at a
// level is `automatic`: it comes back when the level ends.
Int4 estimates_hold(std::string_view name, boolean copy, boolean automatic);
Int4 estimates_unhold(std::string_view name);
Int4 estimates_drop(std::string_view name);      // 0, 111

}  // namespace velmo
