// The function table: one row a function (functions.def) with its argument count, argument and result types and code
// word, whose body holds the missing rule. Names that need compile logic of their own are rows of a second table in
// compilefunctions.cpp.
#pragma once
#include <string_view>
#include "base/types.h"

namespace velmo {

struct functionrow {
    std::string_view name;
    Int2 word;
    Int2 least, most;         // arguments
    UByte argtype, restype;   // exptype
    UByte counted;            // the word takes the number of arguments as its operand
    Int2 until;               // the last version that knows it
};
// The row of that exact name that the present version knows, or null.
const functionrow* findfunction(std::string_view name);

}  // namespace velmo
