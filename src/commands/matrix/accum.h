// Subcommands of `matrix` that compute from the data or take a matrix apart, from behind their word. r() as each says.
#pragma once
#include "base/types.h"

namespace velmo {

Int4 matrix_accum();          // A = [varlist], noconstant deviations means(name): r(N)
Int4 matrix_vecaccum();       // a = y [varlist], noconstant: r(N), r(sum_w)
Int4 matrix_glsaccum();       // A = [varlist], group() glsmat() row() noconstant: r(N)
Int4 matrix_opaccum();        // A = [varlist], group() opvar() noconstant: r(N)
Int4 matrix_svd();            // U w V = A
Int4 matrix_symeigen();       // X v = A

}  // namespace velmo
