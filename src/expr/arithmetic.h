// The bodies of the operators: a value, and where it is missing instead. The two are told apart because a loop that
// computes all values and a loop that then puts missing into some both become vector code, while a loop that does
// either in one breath does not.
#pragma once
#include <cfloat>
#include <cmath>
#include "base/types.h"

namespace velmo {

// Where
inline boolean never(Double) { return false; }
inline boolean neverpair(Double, Double) { return false; }
inline boolean ismissing(Double x) { return x == missing; }
inline boolean anymissing(Double x, Double y) { return (x == missing) | (y == missing); }
inline boolean nodivision(Double x, Double y) { return (x == missing) | (y == missing) | (y == 0); }
inline boolean noroot(Double x) { return (x == missing) | (x < 0); }

// What comparisons see: infinities and NaN count as missing.
inline Double settled(Double x) { return std::fabs(x) <= DBL_MAX ? x : missing; }

// Values
inline Double sumof(Double x, Double y) { return x + y; }
inline Double differenceof(Double x, Double y) { return x - y; }
inline Double productof(Double x, Double y) { return x * y; }
inline Double quotientof(Double x, Double y) { return x / y; }
inline Double either(Double x, Double y) { return ((x != 0) | (y != 0)) ? 1.0 : 0.0; }
inline Double both(Double x, Double y) { return ((x != 0) & (y != 0)) ? 1.0 : 0.0; }
inline Double isequal(Double x, Double y) { return settled(x) == settled(y) ? 1.0 : 0.0; }
inline Double isunequal(Double x, Double y) { return settled(x) != settled(y) ? 1.0 : 0.0; }
inline Double isatleast(Double x, Double y) { return settled(x) >= settled(y) ? 1.0 : 0.0; }
inline Double isatmost(Double x, Double y) { return settled(x) <= settled(y) ? 1.0 : 0.0; }
inline Double isabove(Double x, Double y) { return settled(x) > settled(y) ? 1.0 : 0.0; }
inline Double isbelow(Double x, Double y) { return settled(x) < settled(y) ? 1.0 : 0.0; }
inline Double iszero(Double x) { return x == 0 ? 1.0 : 0.0; }
inline Double negative(Double x) { return -x; }
inline Double absolute(Double x) { return std::fabs(x); }
inline Double rootof(Double x) { return std::sqrt(x); }

}  // namespace velmo
