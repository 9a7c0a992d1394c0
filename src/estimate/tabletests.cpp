#include "estimate/tabletests.h"
#include <algorithm>
#include <cmath>
#include "base/poll.h"
#include "matrix/probability.h"

namespace velmo {

void countmatrix::summargins() {
    for (Int4 i = 0; i < rows; i++) {
        for (Int4 j = 0; j < cols; j++) {
            row[std::size_t(i)] += at(i, j);
            col[std::size_t(j)] += at(i, j);
            total += at(i, j);
        }
    }
}

namespace {

Double orzero(Double p) { return p == missing ? 0 : p; }
Double ratio(Double a, Double b) { return b == 0 || !std::isfinite(a / b) ? missing : a / b; }
Double square(Double x) { return x * x; }

// one(n, expected) for each cell, the table's own order.
template <class F> void overexpected(const countmatrix& c, F one) {
    for (Int4 i = 0; i < c.rows; i++)
        for (Int4 j = 0; j < c.cols; j++) one(c.at(i, j), c.row[std::size_t(i)] * c.col[std::size_t(j)] / c.total);
}

// Of each cell the counts of those below right and above left of it, and of the others aside.
struct concordance {
    std::vector<Double> agree, differ;
    Double p = 0, q = 0;
    explicit concordance(const countmatrix& c);
};

concordance::concordance(const countmatrix& c) : agree(c.cell.size()), differ(c.cell.size()) {
    // Sums of all above and left of a corner.
    std::vector<Double> sums(std::size_t((c.rows + 1) * (c.cols + 1)));
    auto upto = [&](Int4 i, Int4 j) -> Double& { return sums[std::size_t(i * (c.cols + 1) + j)]; };
    for (Int4 i = 0; i < c.rows; i++)
        for (Int4 j = 0; j < c.cols; j++)
            upto(i + 1, j + 1) = c.at(i, j) + upto(i, j + 1) + upto(i + 1, j) - upto(i, j);
    for (Int4 i = 0; i < c.rows; i++) {
        for (Int4 j = 0; j < c.cols; j++) {
            std::size_t at = std::size_t(i * c.cols + j);
            agree[at] = upto(i, j) + c.total - upto(i + 1, c.cols) - upto(c.rows, j + 1) + upto(i + 1, j + 1);
            differ[at] = upto(c.rows, j) - upto(i + 1, j) + upto(i, c.cols) - upto(i, j + 1);
            p += c.cell[at] * agree[at];
            q += c.cell[at] * differ[at];
        }
    }
}

}  // namespace

Double tabledf(const countmatrix& c) { return Double(c.rows - 1) * (c.cols - 1); }

statistic pearson(const countmatrix& c) {
    Double sum = 0;
    overexpected(c, [&](Double n, Double e) { sum += square(n - e) / e; });
    if (!std::isfinite(sum)) sum = missing;
    return {sum, orzero(chi2tail(tabledf(c), sum))};
}

statistic likelihoodratio(const countmatrix& c) {
    if (std::count(c.cell.begin(), c.cell.end(), 0.0)) return {missing, missing};
    Double sum = 0;
    overexpected(c, [&](Double n, Double e) { sum += n * std::log(n / e); });
    sum = std::max(0.0, sum);
    return {2 * sum, orzero(chi2tail(tabledf(c), 2 * sum))};
}

Double cramersv(const countmatrix& c) {
    if (c.rows == 2 && c.cols == 2) {
        Double odds = c.at(0, 0) * c.at(1, 1) - c.at(0, 1) * c.at(1, 0);
        return ratio(odds, std::sqrt(c.row[0] * c.row[1] * c.col[0] * c.col[1]));
    }
    Double chi2 = pearson(c).value;
    return chi2 == missing ? missing : std::sqrt(chi2 / c.total / (std::min(c.rows, c.cols) - 1));
}

statistic goodmangamma(const countmatrix& c) {
    concordance k(c);
    Double sum = 0;
    for (std::size_t at = 0; at < c.cell.size(); at++)
        sum += c.cell[at] * square(k.q * k.agree[at] - k.p * k.differ[at]);
    return {ratio(k.p - k.q, k.p + k.q), ratio(4 * std::sqrt(sum), square(k.p + k.q))};
}

statistic kendalltaub(const countmatrix& c) {
    concordance k(c);
    Double dr = square(c.total), dc = dr, sum = 0;
    for (Double r : c.row) dr -= square(r);
    for (Double r : c.col) dc -= square(r);
    Double w = std::sqrt(dr * dc), tau = ratio(k.p - k.q, w);
    if (tau == missing) return {missing, missing};
    for (Int4 i = 0; i < c.rows; i++) {
        for (Int4 j = 0; j < c.cols; j++) {
            std::size_t at = std::size_t(i * c.cols + j);
            Double margins = c.col[std::size_t(j)] * dr + c.row[std::size_t(i)] * dc;
            sum += c.cell[at] * square(2 * w * (k.agree[at] - k.differ[at]) + tau * margins);
        }
    }
    // Rounding may leave less than nothing where the association is perfect.
    Double rest = std::max(0.0, sum - c.total * square(c.total) * square(tau) * square(dr + dc));
    return {tau, ratio(std::sqrt(rest), square(w))};
}

// ---- Fisher's exact test

namespace {

// Fills the table column by column, in each row what its margin still allows; the last column is what remains. Tables
// as likely as the one observed must be seen to be so, which takes factorials as good as the library's.
struct tablewalk {
    const countmatrix& c;
    std::vector<Double> lnfacts;
    std::vector<Double> remains;                // of each row
    std::vector<Double> below;                  // column by column: what the rows behind one still allow
    Double observed, normaliser;
    Double both = 0, lower = 0, upper = 0;
    explicit tablewalk(const countmatrix& table);
    Double lnfactorial(Double k) const {
        return k < Double(lnfacts.size()) ? lnfacts[std::size_t(k)] : std::lgamma(k + 1);
    }
    Int4 fillcolumn(Int4 j, Double weight);
    Int4 fillcell(Int4 i, Int4 j, Double left, Double weight);
    Int4 finish(Double weight);
};

tablewalk::tablewalk(const countmatrix& table)
    : c(table), remains(c.row), below(c.cell.size()), observed(0), normaliser(std::lgamma(c.total + 1)) {
    constexpr Double mostkept = 1000000;
    Double greatest = *std::max_element(c.col.begin(), c.col.end());
    for (Double k = 0; k <= std::min(greatest, mostkept); k++) lnfacts.push_back(std::lgamma(k + 1));
    for (Double r : c.row) normaliser -= lnfactorial(r);
    for (Int4 j = 0; j < c.cols; j++) {
        observed += lnfactorial(c.col[std::size_t(j)]);
        for (Int4 i = 0; i < c.rows; i++) observed -= lnfactorial(c.at(i, j));
    }
}

Int4 tablewalk::fillcolumn(Int4 j, Double weight) {
    weight += lnfactorial(c.col[std::size_t(j)]);
    if (j == c.cols - 1) return finish(weight);
    Double sum = 0;
    for (Int4 i = c.rows - 1; i >= 0; i--) {
        below[std::size_t(j * c.rows + i)] = sum;
        sum += remains[std::size_t(i)];
    }
    return fillcell(0, j, c.col[std::size_t(j)], weight);
}

Int4 tablewalk::fillcell(Int4 i, Int4 j, Double left, Double weight) {
    if (i == c.rows) return fillcolumn(j + 1, weight);
    Double& remain = remains[std::size_t(i)];
    const Double all = remain, most = std::min(left, all);
    for (Double k = std::max(0.0, left - below[std::size_t(j * c.rows + i)]); k <= most; k++) {
        remain = all - k;
        if (fillcell(i + 1, j, left - k, weight - lnfactorial(k))) return 1;
    }
    remain = all;
    return 0;
}

Int4 tablewalk::finish(Double weight) {
    for (Double r : remains) weight -= lnfactorial(r);
    if (weight <= observed * 1.000000000000007) {
        Double p = std::exp(weight - normaliser), first = c.row[0] - remains[0];
        both += p;
        if (first <= c.at(0, 0)) lower += p;
        if (first >= c.at(0, 0)) upper += p;
    }
    return tick();
}

}  // namespace

Int4 fisherexact(const countmatrix& c, Double& both, Double& one) {
    tablewalk walk(c);
    if (Int4 rc = walk.fillcolumn(0, 0)) return rc;
    both = std::min(walk.both, 1.0);
    one = missing;
    if (c.rows != 2 || c.cols != 2) return 0;
    Double expected = c.row[0] * c.col[0] / c.total;
    one = c.at(0, 0) < expected ? walk.lower : c.at(0, 0) > expected ? walk.upper : std::min(walk.lower, walk.upper);
    one = std::min(one, 1.0);
    return 0;
}

}  // namespace velmo
