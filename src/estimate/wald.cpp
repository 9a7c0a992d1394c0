#include "estimate/wald.h"
#include "matrix/kernels.h"
#include "output/errors.h"

namespace velmo {

Int4 waldtest(const matrix& b, const matrix& V, const std::vector<Int4>& which, waldresult& out) {
    Int4 n = Int4(which.size());
    out = {};
    if (n == 0) return 0;
    matrix inverse;
    if (Int4 rc = makematrix(inverse, n, n)) return rc;
    for (Int4 i = 0; i < n; i++)
        for (Int4 j = 0; j < n; j++) inverse.at(i, j) = V.at(which[std::size_t(i)], which[std::size_t(j)]);
    std::vector<UByte> flag(which.size(), 0);
    if (Int4 rc = matrin(inverse.row(0), n, n, 0, n - 1, nullptr, 0, -1, flag.data())) return rc;
    for (Int4 i = 0; i < n; i++) {
        Double t = 0;
        for (Int4 j = 0; j < n; j++) t += inverse.at(i, j) * b.at(0, which[std::size_t(j)]);
        out.chi2 += t * b.at(0, which[std::size_t(i)]);
        out.df += flag[std::size_t(i)] == 1;
    }
    return 0;
}

}  // namespace velmo
