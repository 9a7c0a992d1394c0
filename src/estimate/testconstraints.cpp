#include "estimate/testconstraints.h"
#include <string>
#include "base/saved.h"
#include "estimate/records.h"
#include "estimate/wald.h"
#include "matrix/kernels.h"
#include "matrix/numeric.h"
#include "matrix/probability.h"
#include "output/errors.h"
#include "stored/families.h"
#include "stored/posted.h"

namespace velmo {

namespace {

// The degrees of freedom of the residuals: what the estimation kept for itself, else e(df_r), else none.
Int4 residualdf(Double& df) {
    regressrecord linear;
    std::string text;
    df = missing;
    switch (kindof(estimatecode())) {
    case kind_none:
    case kind_survival: return error(301);
    case kind_linear:
    case kind_anova:
    case kind_linearrobust:
        if (posted_getrecord("regress", &linear, sizeof linear)) {
            df = linear.df;
            return 0;
        }
        [[fallthrough]];
    default:
        if (stored_get(e_results, "df_r", df, text) != result_scalar) df = missing;
        return 0;
    }
}

// Which coefficients take part: those of the constraints whose variance is not 0 once the others are swept out.
Int4 leavedetermined(const matrix& Rr, const matrix& V, std::vector<UByte>& used) {
    Int4 k = V.cols;
    matrix left;
    std::vector<UByte> flag(std::size_t(k), 0), named(std::size_t(k), 0);
    if (Int4 rc = makematrix(left, k, k)) return rc;
    std::copy(V.row(0), V.row(k), left.row(0));
    for (Int4 i = 0; i < Rr.rows; i++)
        for (Int4 j = 0; j < k; j++) named[std::size_t(j)] |= Rr.at(i, j) != 0;
    for (Int4 j = 0; j < k; j++)
        if (!named[std::size_t(j)])
            if (Int4 rc = matrin(left.row(0), k, k, j, j, nullptr, 0, -1, flag.data())) return error(rc);
    for (Int4 j = 0; j < k; j++)
        used[std::size_t(j)] = !named[std::size_t(j)] || left.at(j, j) > sweeptolerance * V.at(j, j);
    return 0;
}

// out = R V R' over the coefficients that take part; q x k and k x k.
void sandwich(const matrix& Rr, const matrix& V, const std::vector<UByte>& used, matrix& out) {
    Int4 k = V.cols;
    std::vector<Double> RV(static_cast<std::size_t>(k));
    for (Int4 i = 0; i < Rr.rows; i++) {
        std::fill(RV.begin(), RV.end(), 0);
        for (Int4 l = 0; l < k; l++) {
            if (!used[std::size_t(l)] || Rr.at(i, l) == 0) continue;
            for (Int4 j = 0; j < k; j++) RV[std::size_t(j)] += Rr.at(i, l) * V.at(l, j);
        }
        for (Int4 m = i; m < Rr.rows; m++) {
            Double sum = 0;
            for (Int4 j = 0; j < k; j++)
                if (used[std::size_t(j)]) sum += RV[std::size_t(j)] * Rr.at(m, j);
            out.at(i, m) = out.at(m, i) = sum;
        }
    }
}

// r - R b
std::vector<Double> distances(const matrix& Rr, const matrix& b, const std::vector<UByte>& used) {
    std::vector<Double> d(std::size_t(Rr.rows));
    for (Int4 i = 0; i < Rr.rows; i++) {
        Double sum = 0;
        for (Int4 j = 0; j < b.cols; j++)
            if (used[std::size_t(j)]) sum += Rr.at(i, j) * b.at(0, j);
        d[std::size_t(i)] = Rr.at(i, b.cols) - sum;
    }
    return d;
}

void finish(Double W, constrainttest& out) {
    if (!out.df) return;
    boolean isF = out.dfr != missing;
    out.statistic = orfinite(isF ? W / out.df : W);
    out.p = isF ? Ftail(out.df, out.dfr, out.statistic) : chi2tail(out.df, out.statistic);
}

}  // namespace

Int4 testconstraints(const matrix& Rr, boolean minimum, constrainttest& out) {
    matrix b, V, temptest;
    saved<Double> floor(sweepfloor, 0);      // what is small depends on the units of the data
    out = {};
    if (Int4 rc = residualdf(out.dfr)) return rc;
    if (Int4 rc = postedmatrix("_b", b)) return rc;
    if (Int4 rc = postedmatrix("VCE", V)) return rc;
    if (Int4 rc = makematrix(temptest, Rr.rows, Rr.rows)) return rc;
    std::vector<UByte> used(std::size_t(V.cols), 1), flag;
    if (Int4 rc = minimum ? leavedetermined(Rr, V, used) : 0) return rc;
    sandwich(Rr, V, used, temptest);
    Double W;
    if (Int4 rc = sweptform(temptest, distances(Rr, b, used), flag, W)) return error(rc);
    for (std::size_t i = 0; i < flag.size(); i++)
        if (flag[i] != 1) out.dropped.push_back(Int4(i) + 1);
    out.df = Rr.rows - Int4(out.dropped.size());
    finish(W, out);
    return 0;
}

}  // namespace velmo
