#include "estimate/wald.h"
#include <cmath>
#include "matrix/kernels.h"
#include "output/errors.h"

namespace velmo {

// All is in units of the standard errors, so that what the sweep drops doesn't depend on those of the data.
Int4 waldtest(const matrix& b, const matrix& V, const std::vector<Int4>& which, waldresult& out) {
    Int4 n = Int4(which.size());
    out = {};
    if (n == 0) return 0;
    matrix inverse;
    if (Int4 rc = makematrix(inverse, n, n)) return rc;
    std::vector<Double> se, t;
    for (Int4 i : which) {
        se.push_back(V.at(i, i) > 0 ? std::sqrt(V.at(i, i)) : 1);
        t.push_back(b.at(0, i) / se.back());
    }
    for (Int4 i = 0; i < n; i++)
        for (Int4 j = 0; j < n; j++)
            inverse.at(i, j) = V.at(which[std::size_t(i)], which[std::size_t(j)]) / (se[std::size_t(i)] * se[std::size_t(j)]);
    std::vector<UByte> flag(which.size(), 0);
    if (Int4 rc = matrin(inverse.row(0), n, n, 0, n - 1, nullptr, 0, -1, flag.data())) return rc;
    for (Int4 i = 0; i < n; i++) {
        Double sum = 0;
        for (Int4 j = 0; j < n; j++) sum += inverse.at(i, j) * t[std::size_t(j)];
        out.chi2 += sum * t[std::size_t(i)];
        out.df += flag[std::size_t(i)] == 1;
    }
    return 0;
}

}  // namespace velmo
