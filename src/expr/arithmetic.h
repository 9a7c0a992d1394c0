// The bodies of the operators. They have no branches: the outcome is chosen by selects, so that the loop over a block
// becomes vector code and gives the same bits as one observation at a time.
#pragma once
#include <cfloat>
#include <cmath>
#include "base/types.h"

namespace velmo {

// What comparisons see: infinities and NaN count as missing.
inline Double settled(Double x) { return std::fabs(x) <= DBL_MAX ? x : missing; }
inline boolean anymissing(Double x, Double y) { return (x == missing) | (y == missing); }

inline Double addnum(Double x, Double y) {
    Double r = x + y;
    return anymissing(x, y) ? missing : r;
}
inline Double subtractnum(Double x, Double y) {
    Double r = x - y;
    return anymissing(x, y) ? missing : r;
}
inline Double multiplynum(Double x, Double y) {
    Double r = x * y;
    return anymissing(x, y) ? missing : r;
}
inline Double dividenum(Double x, Double y) {
    Double r = x / y;
    return anymissing(x, y) | (y == 0) ? missing : r;
}
inline Double ornum(Double x, Double y) { return (x != 0) | (y != 0) ? 1.0 : 0.0; }
inline Double andnum(Double x, Double y) { return (x != 0) & (y != 0) ? 1.0 : 0.0; }
inline Double eqnum(Double x, Double y) { return settled(x) == settled(y) ? 1.0 : 0.0; }
inline Double nenum(Double x, Double y) { return settled(x) != settled(y) ? 1.0 : 0.0; }
inline Double genum(Double x, Double y) { return settled(x) >= settled(y) ? 1.0 : 0.0; }
inline Double lenum(Double x, Double y) { return settled(x) <= settled(y) ? 1.0 : 0.0; }
inline Double gtnum(Double x, Double y) { return settled(x) > settled(y) ? 1.0 : 0.0; }
inline Double ltnum(Double x, Double y) { return settled(x) < settled(y) ? 1.0 : 0.0; }
inline Double notnum(Double x) { return x == 0 ? 1.0 : 0.0; }
inline Double negatenum(Double x) {
    Double r = -x;
    return x == missing ? missing : r;
}
inline Double absnum(Double x) {
    Double r = -x;
    return x < 0 ? r : x;
}
inline Double sqrtnum(Double x) {
    Double r = std::sqrt(x);
    return (x == missing) | (x < 0) ? missing : r;
}

}  // namespace velmo
