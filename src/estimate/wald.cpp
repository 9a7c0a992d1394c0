#include "estimate/wald.h"
#include <algorithm>
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
            inverse.at(i, j) =
                V.at(which[std::size_t(i)], which[std::size_t(j)]) / (se[std::size_t(i)] * se[std::size_t(j)]);
    std::vector<UByte> flag;
    Int4 rc = sweptform(inverse, t, flag, out.chi2);
    out.df = Int4(std::count(flag.begin(), flag.end(), 1));
    return rc;
}

Int4 sweptform(matrix& M, const std::vector<Double>& d, std::vector<UByte>& flag, Double& value) {
    flag.assign(d.size(), 0);
    value = 0;
    if (Int4 rc = matrin(M.row(0), M.cols, M.cols, 0, M.cols - 1, nullptr, 0, -1, flag.data())) return rc;
    for (Int4 i = 0; i < M.cols; i++) {
        Double t = 0;
        for (Int4 j = 0; j < M.cols; j++) t += M.at(i, j) * d[std::size_t(j)];
        value += t * d[std::size_t(i)];
    }
    return 0;
}

}  // namespace velmo
