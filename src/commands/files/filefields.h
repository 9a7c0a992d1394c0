// The binary fields of the file command: %1b %2b %4b (missing codes mapped), %1bs.. (signed), %1bu.. (unsigned), %4z
// %8z (float, double), %#s (# bytes).
#pragma once
#include <string_view>
#include "base/types.h"

namespace velmo {

struct binaryfield {
    Int4 size;
    char kind;                     // b integer, z floating point, s string
    boolean issigned, mapped;
};

// 0, or 198 (printed) when `text` is no such format.
Int4 field_parse(std::string_view text, binaryfield& field);
// A number as the field's bytes, low one first; a value out of the field's range is held to it or becomes missing.
void field_encode(const binaryfield& field, Double value, UByte* out);
// The number that size bytes, low one first, stand for.
Double field_decode(const binaryfield& field, const UByte* bytes);

}  // namespace velmo
