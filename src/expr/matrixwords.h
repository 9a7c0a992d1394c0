// Private to the code words of matrices: the stack of matrices and how a word fails.
#pragma once
#include <utility>
#include "expr/arithmetic.h"
#include "expr/bodies.h"
#include "output/errors.h"

namespace velmo {

// The name of a number as a matrix, until it has a place among others.
inline constexpr char placeholder = '|';

inline matrix& topmatrix(machine& m) { return m.matrices->back(); }
inline void pushmatrix(machine& m, matrix&& x) { m.matrices->push_back(std::move(x)); }
inline matrix popmatrix(machine& m) {
    matrix x = std::move(m.matrices->back());
    m.matrices->pop_back();
    return x;
}
inline std::size_t elements(const matrix& x) { return std::size_t(x.rows) * std::size_t(x.cols); }

// Ends the program with a code whose message has been printed, 0 for none: whether it did.
inline boolean failed(machine& m, Int4 rc) {
    if (!rc) return false;
    m.rc = rc;
    m.at = m.end;
    return true;
}
inline boolean refused(machine& m, Int4 rc) { return failed(m, rc ? error(rc) : 0); }

// Numbers for placeholders.
void placenames(std::vector<axisname>& names, char letter);

}  // namespace velmo
