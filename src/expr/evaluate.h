// The evaluator: runs code words over one observation, or over a block of up to 256. The bodies of both come from one
// table, so they give the same bits. What is undefined is missing; nothing fails but programs that make matrices.
#pragma once
#include "expr/program.h"
#include "matrix/matrices.h"

namespace velmo {

inline constexpr Int4 blocksize = 256;

// The value at obs; Infinity and NaN come back as missing. At obs == firstobs the running sums are cleared.
Double exp_getnum(exp& e, Int4 obs);
// A string result into buf (246 bytes); its length.
Int4 exp_getstr(exp& e, Int4 obs, char* buf);
// The result at observation 1 of a program compiled for a matrix mode: by its restype a matrix with names, or a number.
// 0, or the code of a matrix instruction (printed).
Int4 exp_getmat(exp& e, matrix& out, Double& value);
// True if no `if` was given or its value at obs is not 0 (missing is not 0).
boolean exp_iftest(Int4 obs);

// True when e may run by blocks while variable `var` (0: none) is being written, that is when no observation's value
// depends on which ones were evaluated or written before it: no subscripted or time-series load of `var`; no running
// sum under an `if`, nor where `var` may be promoted in mid-block and rows are evaluated again.
boolean exp_blockable(const exp& e, Int4 var);
// The same of the `if`; true without one.
boolean exp_maskable(Int4 var);
// Values at observations first..first+n-1, 1 <= n <= blocksize, into out; e must be numeric and blockable. A program
// that touches strings runs one observation at a time behind this call.
void exp_getblock(exp& e, Int4 first, Int4 n, Double* out);
// mask[i] = 1 where the `if` holds (all 1 without one), else 0.
void exp_ifblock(Int4 first, Int4 n, UByte* mask);

}  // namespace velmo
