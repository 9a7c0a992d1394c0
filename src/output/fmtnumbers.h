// The digits of a number, from which its renderings are made.
#pragma once
#include "base/types.h"

namespace velmo {

// The decimal image of a double: 19 significant digits, correctly converted.
struct digrec {
    Int4 decpt;        // place of the decimal point relative to the first digit; 1 for zero
    char digits[26];   // the digit characters, zero-terminated
    UByte negative;
};

// The decimal image of x, which must be finite.
void decimalimage(Double x, digrec& out);

}  // namespace velmo
