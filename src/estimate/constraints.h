// Linear constraints on the posted coefficients: how they are written, as rows of numbers, and as they are shown.
// `constraint` numbers their texts; makeCns and test build rows.
//   x = z   2*x - [eq]z = 3   _b[x] = 1    an equation, linear in the coefficients
//   x z                                    each is 0
//   [eq]    [eq]: x z                      all of an equation's, or these of them, are 0
//   [eq1=eq2]    [eq1=eq2]: x z            those of two equations are equal
#pragma once
#include <string>
#include <string_view>
#include <vector>
#include "base/types.h"

namespace velmo {

// A number for each coefficient, and the constant last.
using constraintrow = std::vector<Double>;

// The rows of a text behind those that are there. 0; 301 without estimates, 111 for names, 131 for what isn't linear,
// 198: printed.
Int4 buildconstraints(std::string_view text, std::vector<constraintrow>& rows);
// "x - z = 0", by the names of the coefficients.
std::string constrainttext(const Double* row);

// The numbered ones, 1 to mostconstraints. An empty text drops one.
inline constexpr Int4 mostconstraints = 1000;
Int4 constraint_put(Int4 number, std::string_view text);             // 0, 950
boolean constraint_get(Int4 number, std::string& text);
void constraint_dropall();
// The numbers of a list, all that are defined for an empty one or _all, the latter in order. 0; 198 outside the range,
// numlistparse's.
Int4 constraint_list(std::string_view text, std::vector<Int4>& numbers);

}  // namespace velmo
