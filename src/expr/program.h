// A compiled expression: 16-bit code words for a stack machine, with shared pools for literals. Words are rows of
// opcodes.def; operand words follow their instruction.
#pragma once
#include "base/types.h"

namespace velmo {

// Limits that are part of the language.
inline constexpr Int4 maxcode = 600, maxnumlits = 150, strpoolsize = 512, maxsums = 5;
inline constexpr Int4 numstack = 100, strstack = 5, matstack = 20, strbufsize = 246;

enum exptype : UByte { exp_numeric = 0, exp_string = 1, exp_matrix = 4 };
enum expmode : Int4 { mode_num = 0, mode_str = 1, mode_any = 3, mode_mat = 4, mode_nummat = 5 };

struct exp {
    Double sums[maxsums];     // running totals of sum()
    Int2 code[maxcode];
    Int4 codelast;            // last word in use, -1 when empty
    Int4 sumlast;             // last total in use, -1 when none
    char* textbeg;            // the expression's text in the command line
    char* textend;
    UByte restype;            // exptype
    UByte usesmat;
};

// State
extern exp eqexp;             // =exp, and weights
extern exp ifexp;             // if exp
extern UByte eqgiven, ifgiven;
extern Double numpool[maxnumlits];
extern char strpool[strpoolsize];

}  // namespace velmo
