// The compiler: from the text at the tokenizer's cursor to code words, by recursive splitting at the lowest operator.
#pragma once
#include "expr/program.h"

namespace velmo {

struct compileoptions {
    boolean stopatbracket = false;    // `]` at depth 0 ends the text
    boolean scanonly = false;         // only moves the cursor behind the expression; nothing is compiled
    boolean matjoin = false;          // commas and `\` join matrices
    boolean nocoef = false;           // _b[] compiles to 0
};

// Compiles for a mode (program.h) and leaves the cursor behind the expression. 0, or a code with its message printed:
// 109 type mismatch, 111 unknown name, 130 too long, 132 unbalanced, 133 unknown function, 198 malformed, 509, 5, 6101.
// Time-series operators make it call tsetup.
Int4 exp_compile(exp& e, Int4 mode, const compileoptions& options = {});

}  // namespace velmo
