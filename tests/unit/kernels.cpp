// The numerical kernels: inverses and eigenvalues that are known in closed form, identities on random matrices, and the
// rules by which the sweep chooses and drops.
#include <gtest/gtest.h>
#include <cmath>
#include <functional>
#include <random>
#include <vector>
#include "matrix/kernels.h"

using namespace velmo;

namespace {

constexpr Int4 stride = 40;

struct square {
    Int4 n;
    std::vector<Double> x = std::vector<Double>(stride * stride, -7);
    square(Int4 size, std::function<Double(Int4, Int4)> f) : n(size) {
        for (Int4 i = 0; i < n; i++)
            for (Int4 j = 0; j < n; j++) at(i, j) = f(i, j);
    }
    Double& at(Int4 i, Int4 j) { return x[std::size_t(i * stride + j)]; }
    Double* p() { return x.data(); }
};

Double zeros(Int4, Int4) { return 0; }
Double hilbert(Int4 i, Int4 j) { return 1.0 / (i + j + 1); }
// The inverse of Hilbert's matrix of order 5 has whole numbers: its first row and the middle of its diagonal.
constexpr Double hilbertrow[5] = {25, -300, 1050, -1400, 630}, hilbertmiddle = 79380;

Double offproduct(square& a, square& b, boolean transposed, std::function<Double(Int4, Int4)> is) {
    Double off = 0;
    for (Int4 i = 0; i < a.n; i++)
        for (Int4 j = 0; j < a.n; j++) {
            Double s = 0;
            for (Int4 k = 0; k < a.n; k++) s += a.at(i, k) * (transposed ? b.at(j, k) : b.at(k, j));
            off = std::max(off, std::fabs(s - is(i, j)));
        }
    return off;
}
Double unit(Int4 i, Int4 j) { return i == j; }

}  // namespace

TEST(kernels, inverses) {
    square h(5, hilbert), lu(5, zeros), swept = h;
    UByte flag[5] = {};
    EXPECT_EQ(luinverse(h.p(), lu.p(), stride, 5), 0);
    EXPECT_EQ(matrin(swept.p(), stride, 5, 0, 4, nullptr, 0, -1, flag), 0);
    for (Int4 j = 0; j < 5; j++)
        for (square* m : {&lu, &swept}) EXPECT_NEAR(m->at(0, j) / hilbertrow[j], 1, 1e-9);
    EXPECT_NEAR(lu.at(2, 2) / hilbertmiddle, 1, 1e-9);
    Double det;
    EXPECT_EQ(determinant(h.p(), stride, 5, det), 0);
    EXPECT_NEAR(det * 266716800000, 1, 1e-9);
    std::mt19937 random(1);
    std::normal_distribution<Double> normal;
    for (Int4 n : {1, 2, 7, 8, 9, 37}) {
        square a(n, [&](Int4, Int4) { return normal(random); }), inverse(n, zeros), factor(n, zeros);
        EXPECT_EQ(luinverse(a.p(), inverse.p(), stride, n), 0);
        EXPECT_LT(offproduct(a, inverse, false, unit), 1e-11);
        square s(n, [&](Int4 i, Int4 j) {
            Double sum = 0;
            for (Int4 k = 0; k < n; k++) sum += a.at(i, k) * a.at(j, k);
            return sum;
        });
        EXPECT_EQ(cholesky(s.p(), factor.p(), stride, n), 0);
        EXPECT_LT(offproduct(factor, factor, true, [&](Int4 i, Int4 j) { return s.at(i, j); }), 1e-12);
        EXPECT_EQ(inverse.at(0, n), -7);
    }
    square zerorow(3, [](Int4 i, Int4 j) { return i == 1 ? 0 : i + j + 1; });
    EXPECT_EQ(luinverse(zerorow.p(), lu.p(), stride, 3), 504);
    square indefinite(2, [](Int4 i, Int4 j) { return i == j ? 1 : 2; });
    EXPECT_EQ(cholesky(indefinite.p(), lu.p(), stride, 2), 506);
}

// x, y and x + 2 y: the larger diagonals first, unless forced or held back; a swept index is swept back.
TEST(kernels, sweep) {
    auto collinear = [](Int4 i, Int4 j) {
        static constexpr Double x[3][4] = {{1, 2, 3, 4}, {2, -1, 5, 1}, {5, 0, 13, 6}};
        Double s = 0;
        for (Int4 k = 0; k < 4; k++) s += x[i][k] * x[j][k];
        return s;
    };
    struct { std::vector<Int4> forced; Int4 heldback, dropped; } cases[] = {{{}, -1, 1}, {{0, 1}, -1, 2}, {{}, 2, 2}, {{2, 1}, -1, 0}};
    for (auto& c : cases) {
        square m(3, collinear);
        UByte flag[3] = {};
        EXPECT_EQ(matrin(m.p(), stride, 3, 0, 2, c.forced.data(), Int4(c.forced.size()), c.heldback, flag), 0);
        for (Int4 i = 0; i < 3; i++) {
            EXPECT_EQ(flag[i], i == c.dropped ? 2 : 1);
            EXPECT_EQ(m.at(i, c.dropped), 0);
            EXPECT_EQ(m.at(c.dropped, i), 0);
        }
    }
    // Sweeping the first two leaves the coefficients of the third on them, and no residual; again, what was.
    square m(3, collinear);
    UByte flag[3] = {};
    matrin(m.p(), stride, 3, 0, 1, nullptr, 0, -1, flag);
    EXPECT_NEAR(m.at(0, 2), 1, 1e-14);
    EXPECT_NEAR(m.at(1, 2), 2, 1e-14);
    EXPECT_NEAR(m.at(2, 2), 0, 1e-13);
    square twins(2, [](Int4, Int4) { return 3.0; }), zero(2, zeros);
    square negative(2, [](Int4 i, Int4 j) { return i == j ? i - 1 : 0; });
    UByte flags[3][2] = {};
    matrin(twins.p(), stride, 2, 0, 1, nullptr, 0, -1, flags[0]);
    EXPECT_EQ(flags[0][0], 1);
    EXPECT_EQ(flags[0][1], 2);
    matrin(zero.p(), stride, 2, 0, 1, nullptr, 0, -1, flags[1]);
    EXPECT_EQ(zero.at(0, 0), 0);
    boolean ridged = false;
    EXPECT_EQ(matrin3(negative.p(), stride, 2, 0, 1, flags[2], ridged), 0);
    EXPECT_TRUE(ridged);
    EXPECT_EQ(negative.at(0, 0), 1);      // -1 + 2
    square nan(2, [](Int4, Int4) { return NAN; });
    EXPECT_EQ(matrin3(nan.p(), stride, 2, 0, 1, flags[2], ridged), 0);
}

// Second differences have the eigenvalues 2 - 2 cos(k pi / (n + 1)).
TEST(kernels, eigen) {
    for (Int4 n : {1, 2, 3, 12, 37}) {
        square a(n, [](Int4 i, Int4 j) { return i == j ? 2 : std::abs(i - j) == 1 ? -1 : 0; }), x(n, zeros);
        std::vector<Double> v(static_cast<std::size_t>(n));
        EXPECT_EQ(symeigen(a.p(), x.p(), v.data(), stride, n), 0);
        for (Int4 k = 1; k <= n; k++) EXPECT_NEAR(v[std::size_t(n - k)], 2 - 2 * std::cos(k * M_PI / (n + 1)), 1e-13);
    }
    std::mt19937 random(2);
    std::normal_distribution<Double> normal;
    square a(23, [&](Int4, Int4) { return normal(random); }), x(23, zeros), scaled(23, zeros);
    for (Int4 i = 0; i < 23; i++)
        for (Int4 j = 0; j < i; j++) a.at(j, i) = a.at(i, j);
    std::vector<Double> v(23);
    EXPECT_EQ(symeigen(a.p(), x.p(), v.data(), stride, 23), 0);
    EXPECT_LT(offproduct(x, x, true, unit), 1e-13);
    for (Int4 i = 0; i < 23; i++)
        for (Int4 j = 0; j < 23; j++) scaled.at(i, j) = x.at(i, j) * v[std::size_t(j)];
    EXPECT_LT(offproduct(scaled, x, true, [&](Int4 i, Int4 j) { return a.at(i, j); }), 1e-13);
    a.at(3, 3) = NAN;
    EXPECT_EQ(symeigen(a.p(), x.p(), v.data(), stride, 23), 9802);
}

TEST(kernels, singular) {
    std::mt19937 random(3);
    std::normal_distribution<Double> normal;
    for (Double scale : {1.0, 1e-200, 1e250})
        for (Int4 rank : {1, 4, 6}) {
            constexpr Int4 m = 9, n = 6;
            Double a[m][n], u[m][n], w[n], v[n][n];
            for (auto& row : a)
                for (Int4 j = 0; j < n; j++) row[j] = j < rank ? scale * normal(random) : row[j % rank] * (j == 4 ? 0 : 2);
            EXPECT_EQ(svd(a[0], u[0], w, v[0], m, n), 0);
            Int4 positive = 0;
            for (Int4 j = 0; j < n; j++) {
                EXPECT_GE(w[j], 0);
                positive += w[j] > 1e-13 * scale;
                Double uu = 0, vv = 0;
                for (Int4 i = 0; i < m; i++) uu += u[i][j] * u[i][(j + 1) % n];
                for (Int4 i = 0; i < n; i++) vv += v[i][j] * v[i][j];
                EXPECT_NEAR(vv, 1, 1e-13);
                EXPECT_NEAR(uu, 0, 1e-13);
            }
            EXPECT_EQ(positive, rank);
            for (Int4 i = 0; i < m; i++)
                for (Int4 j = 0; j < n; j++) {
                    Double s = 0;
                    for (Int4 k = 0; k < n; k++) s += u[i][k] * w[k] * v[j][k];
                    EXPECT_NEAR(s / scale, a[i][j] / scale, 1e-13);
                }
        }
    // The golden section: [1 1; 0 1].
    Double a[4] = {1, 1, 0, 1}, u[4], w[2], v[4], nan[4] = {NAN, 1, 2, 3};
    EXPECT_EQ(svd(a, u, w, v, 2, 2), 0);
    EXPECT_NEAR(std::max(w[0], w[1]), (1 + std::sqrt(5)) / 2, 1e-15);
    EXPECT_EQ(svd(nan, u, w, v, 2, 2), 430);
}
