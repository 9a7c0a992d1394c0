// Numerical kernels on square or rectangular buffers of doubles, row by row, `stride` doubles a row. They know no names
// and print nothing, but for the sweep under `set debug on`; each returns 0 or a code that its caller prints, or 1 on a
// Break.
#pragma once
#include "base/types.h"

namespace velmo {

// State: tolerances of the sweep
extern Double sweepfloor, sweeptolerance;    // 1e-19, 1e-9
extern UByte sweeplargest;                   // pivots by size; else in their natural order

// Sweeps indices first to last (from 0) of the symmetric M (both triangles hold it at entry and exit). `forced`
// (nforced of them) go first; heldback (-1: none) last. flag, as wide as M, tells afterwards: 1 swept, 2 dropped (its
// row and column are 0), 0 otherwise; a flag of 1 at entry marks an index that is swept already. 0 or 1.
Int4 matrin(Double* M, Int4 stride, Int4 n, Int4 first, Int4 last, const Int4* forced, Int4 nforced, Int4 heldback,
            UByte* flag);
// The same with a ridge where a diagonal that was not 0 is lost; ridged tells that it was needed. 0, 1, 909.
Int4 matrin3(Double* M, Int4 stride, Int4 n, Int4 first, Int4 last, UByte* flag, boolean& ridged);

Int4 cholesky(const Double* A, Double* L, Int4 stride, Int4 n);            // 0 or 506
// The factor of A scaled to a diagonal of 1, with compensated sums; d gets the scales. A row with a zero diagonal is
// passed over. And the solution b of A b = r by it, 0 where the diagonal is. 0 or 506.
Int4 scaledcholesky(const Double* A, Double* L, Double* d, Int4 n);
void scaledsolve(const Double* L, const Double* d, const Double* r, Double* b, Int4 n);
Int4 luinverse(const Double* A, Double* out, Int4 stride, Int4 n);         // 0, 504, 909
// By the same factors; 0 when singular. 0, 1, 909.
Int4 determinant(const Double* A, Int4 stride, Int4 n, Double& value);
// Eigenvectors as columns of X, eigenvalues descending in v. 0, 1, 9802, 909.
Int4 symeigen(const Double* A, Double* X, Double* v, Int4 stride, Int4 n);
// A = U diag(w) V', rows >= cols; strides of A and U cols. 0, 1, 430, 909.
Int4 svd(const Double* A, Double* U, Double* w, Double* V, Int4 rows, Int4 cols);

}  // namespace velmo
