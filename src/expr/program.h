// A compiled expression: 16-bit code words for a stack machine, with shared pools for literals. Words are rows of
// opcodes.def; operand words follow their instruction.
//
//   x[_n-1]*2      load literals and columns, push; operators pop and push:
//   obsno | literal 1 | subtract | loadat x | literal 2 | multiply
//
// Numbers and strings have a stack each. What the stacks will hold is known when a program is compiled, so that the
// limits below are checked then and never at run time.
#pragma once
#include <string_view>
#include "base/types.h"

namespace velmo {

// Limits that are part of the language.
inline constexpr Int4 maxcode = 600, maxnumlits = 150, strpoolsize = 512, maxsums = 5;
inline constexpr Int4 numstack = 100, strstack = 5, matstack = 20, strbufsize = 246;

enum exptype : UByte { exp_numeric = 0, exp_string = 1, exp_matrix = 4 };
enum expmode : Int4 { mode_num = 0, mode_str = 1, mode_any = 3, mode_mat = 4, mode_nummat = 5 };

// The code words; 0 is none.
enum codeword : Int2 {
    cw_none,
#define HAND(id, operands) cw_##id,
#define VALUE(id, value) cw_##id,
#define ARITH1(id, value, where) cw_##id,
#define ARITH2(id, value, where) cw_##id,
#define CALL1(id, body) cw_##id,
#define CALL2(id, body) cw_##id,
#define CALL3(id, body) cw_##id,
#define CALL4(id, body) cw_##id,
#define CALLOBS(id, body) cw_##id,
#define CALLN(id, body) cw_##id,
#define TEXT(id, operands, body) cw_##id,
#include "expr/opcodes.def"
#include "expr/undefine.h"
    cw_count,
};

struct wordinfo {
    UByte operands;       // words that follow
    UByte blockform;      // the word runs over blocks too
};
extern const wordinfo wordinfos[cw_count];

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

// The place of a literal in its pool, where it is put unless it is there already: number from 0, byte offset. -1 when
// the pool is full.
Int4 poolnumber(Double value);
Int4 pooltext(std::string_view text);
void exp_reset();                     // empties both pools; the parser calls it before a command's expressions
void exp_clearsums();                 // both records

}  // namespace velmo
