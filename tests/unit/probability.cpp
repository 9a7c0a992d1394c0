// The probability functions: values that R computed (tests/reference/probability), to the accuracy that each header
// line promises; identities; the places where formulas change; the edges of the domains.
#include <gtest/gtest.h>
#include <cmath>
#include <fstream>
#include <limits>
#include <map>
#include <random>
#include <sstream>
#include <string>
#include <vector>
#include "matrix/probability.h"

using namespace velmo;

namespace {

// A function of one to three arguments under its name.
struct callable {
    std::string name;
    Int4 n;
    Double (*f1)(Double);
    Double (*f2)(Double, Double);
    Double (*f3)(Double, Double, Double);
    Double relative, absolute;            // the errors allowed together

    callable(const char* called, Double (*f)(Double), Double rel, Double abs = 0)
        : name(called), n(1), f1(f), f2(nullptr), f3(nullptr), relative(rel), absolute(abs) {}
    callable(const char* called, Double (*f)(Double, Double), Double rel, Double abs = 0)
        : name(called), n(2), f1(nullptr), f2(f), f3(nullptr), relative(rel), absolute(abs) {}
    callable(const char* called, Double (*f)(Double, Double, Double), Double rel, Double abs = 0)
        : name(called), n(3), f1(nullptr), f2(nullptr), f3(f), relative(rel), absolute(abs) {}
    Double operator()(const std::vector<Double>& a) const {
        return n == 1 ? f1(a[0]) : n == 2 ? f2(a[0], a[1]) : f3(a[0], a[1], a[2]);
    }
};

const std::vector<callable>& all() {
    static const std::vector<callable> functions = {
        {"norm", norm, 3e-14}, {"invnorm", invnorm, 1e-15}, {"binorm", binorm, 0, 1e-14},
        {"normden", static_cast<Double (*)(Double)>(normden), 1e-15}, {"lngamma", lngamma, 1e-15, 2e-10},
        {"digamma", digamma, 1e-11, 1e-11}, {"trigamma", trigamma, 2e-9, 2e-9}, {"lnfact", lnfact, 1e-15, 2e-10},
        {"comb", comb, 1e-13}, {"gammap", gammap, 3e-6}, {"gammaptail", gammaptail, 1e-6},
        {"gammapwide", gammap, 0, 1e-6}, {"invgammap", invgammap, 1e-5}, {"invgammaptail", invgammaptail, 1e-5},
        {"chi2", chi2, 1e-6}, {"chi2tail", chi2tail, 1e-6}, {"invchi2", invchi2, 1e-5},
        {"invchi2tail", invchi2tail, 1e-5}, {"invchi", invchi, 1e-5}, {"ibeta", ibeta, 1e-6}, {"F", F, 1e-6},
        {"Ftail", Ftail, 1e-6}, {"invF", invF, 1e-6}, {"invFtail", invFtail, 1e-6}, {"tprob", tprob, 1e-6},
        {"ttail", ttail, 1e-6}, {"invttail", invttail, 1e-5}, {"invt", invt, 1e-5}, {"Binomial", Binomial, 1e-6},
        {"invbinomial", invbinomial, 1e-4}, {"nchi", nchi, 1e-9}, {"invnchi", invnchi, 1e-8}, {"npnchi", npnchi, 1e-8},
        {"lnbk", lnbk, 1e-14, 4e-10}, {"dibk", dibk, 1e-14, 2e-11}, {"tribk", tribk, 1e-14, 1e-9},
        {"hyp2f1", hyp2f1, 1e-15}, {"Eabsk", Eabsk, 1e-9},
    };
    return functions;
}

}  // namespace

TEST(probability, agrees) {
    std::map<std::string, Int4> lines;
    std::ifstream in(VELMO_SOURCE "/tests/reference/probability/probability.txt");
    for (std::string line; std::getline(in, line);) {
        std::istringstream words(line);
        std::string name;
        words >> name;
        std::vector<Double> numbers;
        for (std::string word; words >> word;) numbers.push_back(std::stod(word));
        Double want = numbers.back();
        numbers.pop_back();
        for (const callable& f : all()) {
            if (f.name != name) continue;
            lines[name]++;
            Double got = f(numbers);
            EXPECT_LE(std::fabs(got - want), f.relative * std::fabs(want) + f.absolute) << line << " got " << got;
        }
    }
    for (const callable& f : all()) EXPECT_GT(lines[f.name], 3) << f.name;
}

TEST(probability, identities) {
    std::mt19937 random(5);
    auto between = [&](Double lo, Double hi) { return lo + (hi - lo) * random() / 4294967296.0; };
    for (Int4 round = 0; round < 3000; round++) {
        Double z = between(-8, 8), y = between(-8, 8), r = between(-1, 1), p = between(0, 1);
        EXPECT_NEAR(norm(z) + norm(-z), 1, 1e-15) << z;
        EXPECT_NEAR(norm(invnorm(p)), p, 1e-15 + 1e-14 * p) << p;
        EXPECT_EQ(binorm(z, y, r), binorm(y, z, r)) << z << " " << y << " " << r;
        EXPECT_NEAR(binorm(z, y, r) + binorm(z, -y, -r), norm(z), 3e-15) << z << " " << y << " " << r;
        Double x = between(-9, 14);
        EXPECT_NEAR(lngamma(x + 1) - lngamma(x), std::log(std::fabs(x)), 4e-10) << x;
        Double u = std::fabs(x), cot = 1 / std::tan(M_PI * x);
        EXPECT_NEAR(digamma(u + 1) - digamma(u), 1 / u, 1e-11 * (1 + 1 / u)) << u;
        EXPECT_NEAR(trigamma(u) - trigamma(u + 1), 1 / (u * u), 1e-8 * (1 + 1 / (u * u))) << u;
        EXPECT_NEAR(digamma(1 - x) - digamma(x), M_PI * cot, 1e-10 * (1 + cot * cot)) << x;
        Double a = between(.1, 90), b = between(.1, 90), f = between(0, 4);
        EXPECT_NEAR(gammap(a, f * a) + gammaptail(a, f * a), 1, 1e-15) << a << " " << f;
        EXPECT_NEAR(ibeta(a, b, p) + ibeta(b, a, 1 - p), 1, 1e-13) << a << " " << b << " " << p;
        EXPECT_NEAR(F(a, b, f) + Ftail(a, b, f), 1, 1e-15) << a << " " << b << " " << f;
        EXPECT_NEAR(ttail(a, z) + ttail(a, -z), 1, 1e-15) << a << " " << z;
        EXPECT_NEAR(tprob(a, z), Ftail(1, a, z * z), 1e-15) << a << " " << z;
    }
    for (Int4 n = 1; n <= 50; n++)
        for (Int4 k = 1; k < n; k++) ASSERT_EQ(comb(n, k), comb(n - 1, k - 1) + comb(n - 1, k)) << n << " " << k;
}

TEST(probability, inversesundo) {
    std::mt19937 random(6);
    auto between = [&](Double lo, Double hi) { return lo + (hi - lo) * random() / 4294967296.0; };
    for (Int4 round = 0; round < 300; round++) {
        Double p = between(.0001, .9999), a = between(.3, 60), b = between(.3, 60), l = between(0, 50);
        Int4 n = 1 + Int4(random() % 20), k = 1 + Int4(random() % UInt4(n));
        EXPECT_NEAR(gammap(a, invgammap(a, p)), p, 1e-7) << a << " " << p;
        EXPECT_NEAR(chi2tail(a, invchi2tail(a, p)), p, 1e-7) << a << " " << p;
        EXPECT_NEAR(F(a, b, invF(a, b, p)), p, 1e-6) << a << " " << b << " " << p;
        EXPECT_NEAR(Ftail(a, b, invFtail(a, b, p)), p, 1e-6) << a << " " << b << " " << p;
        EXPECT_NEAR(ttail(a, invttail(a, p)), p, 1e-6) << a << " " << p;
        EXPECT_NEAR(1 - tprob(a, invt(a, p)), p, 1e-6) << a << " " << p;
        EXPECT_NEAR(Binomial(n, k, invbinomial(n, k, p)), p, 1e-5) << n << " " << k << " " << p;
        EXPECT_NEAR(nchi(n, l, invnchi(n, l, p)), p, 1e-6) << n << " " << l << " " << p;
        Double x = invnchi(n, l, p);
        EXPECT_NEAR(npnchi(n, x, p), l, 1e-5 * (1 + l)) << n << " " << x << " " << p;
    }
    // Far tails: the last digits of small probabilities come from refining.
    EXPECT_NEAR(chi2tail(3, invchi2tail(3, 1e-40)) / 1e-40, 1, 1e-6);
    EXPECT_NEAR(ttail(9, invttail(9, 1e-12)) / 1e-12, 1, 1e-6);
    EXPECT_NEAR(F(2, 9, invF(2, 9, 1e-7)) / 1e-7, 1, 1e-6);
}

TEST(probability, whereformulaschange) {
    EXPECT_EQ(norm(0), .5);
    EXPECT_EQ(norm(40), 1);
    EXPECT_EQ(norm(-40), 0);
    EXPECT_EQ(lngamma(1), 0);
    EXPECT_EQ(lngamma(2), 0);
    // Wilson and Hilferty's normal argument is 1/sqrt(9a) at x = a; the true value differs in the seventh digit.
    EXPECT_NEAR(chi2(2000, 2000), norm(1 / std::sqrt(9000.0)), 1e-14);
    EXPECT_NEAR(chi2tail(2000, 2000), norm(-1 / std::sqrt(9000.0)), 1e-14);
    EXPECT_GT(std::fabs(chi2(1999.8, 1999.8) - norm(1 / std::sqrt(9 * 999.9))), 1e-7);
    EXPECT_EQ(lnfact(165.00001), lnfact(165));
    EXPECT_EQ(lnfact(1), 0);
    EXPECT_EQ(lnfact(166), lngamma(167));
    EXPECT_NEAR(comb(999, 499) / 1.3514412047271443e299, 1, 1e-13);      // by R; 1000 is the first that is bounded
    EXPECT_EQ(comb(1000, 500), missing);
    EXPECT_EQ(comb(1e300, 1e200), missing);
    EXPECT_EQ(comb(1000, 998), 499500);
    EXPECT_EQ(binorm(50, .4, .2), binorm(8, .4, .2));
    EXPECT_EQ(binorm(-8, -8, 0), 1e-15);
    EXPECT_EQ(binorm(-1, -1, -1), 0);
    EXPECT_EQ(binorm(.5, 1.5, 1), norm(.5));
    EXPECT_NEAR(binorm(.5, 1.5, .9999999999), norm(.5), 1e-9);
    EXPECT_GT(nchi(200, 1000, 1200), .4);
    for (Double off : {nchi(201, 1000, 1200), nchi(200, 1000.1, 1200), nchi(1, 3, 25000), ibeta(5e5, 5e5, .5)})
        EXPECT_EQ(off, missing);
    EXPECT_NEAR(lnbk(1e12, 3), 3 * std::log(1e12) + 3e-12, 3e-14);
}

TEST(probability, edges) {
    const Double inf = std::numeric_limits<Double>::infinity(), nan = std::numeric_limits<Double>::quiet_NaN();
    for (const callable& f : all())
        for (Double bad : {missing, inf, -inf, nan})
            for (Int4 i = 0; i < f.n; i++) {
                std::vector<Double> arguments(3, .5);
                arguments[std::size_t(i)] = bad;
                EXPECT_EQ(f(arguments), missing) << f.name << " " << i << " " << bad;
            }
    const struct { Double got, want; } cases[] = {
        {invnorm(0), missing}, {invnorm(1), missing}, {invnorm(.5), 0}, {normden(0, 0), missing},
        {normden(0, -1), missing}, {binorm(0, 0, 1.01), missing}, {lngamma(0), missing}, {lngamma(-7), missing},
        {lngamma(-2147483648.5), missing}, {lngamma(1e308), missing}, {digamma(-3), missing},
        {digamma(-10000000.5), missing}, {trigamma(0), missing}, {trigamma(1e-154), missing}, {trigamma(-1), missing},
        {lnfact(-1), missing}, {lnfact(2.5), missing}, {lnfact(0), 0}, {comb(-1, 2), missing}, {comb(3, -1), missing},
        {comb(3, 4), 0}, {comb(0, 0), 1}, {comb(4.5, 2), missing}, {gammap(0, 1), missing}, {gammap(1, -1), missing},
        {gammap(2, 0), 0}, {gammaptail(2, 0), 1}, {invgammap(2, 0), 0}, {invgammap(2, 1), missing},
        {invgammap(2, 1.1), missing}, {invgammap(0, .5), missing}, {invchi2tail(2, 1), 0},
        {invchi2tail(2, 0), missing}, {invchi(2, 1), 0}, {invchi(2, 0), missing}, {ibeta(0, 1, .5), missing},
        {ibeta(1, 1, 1.1), missing}, {ibeta(2, 3, 0), 0}, {ibeta(2, 3, 1), 1}, {F(3, 4, 0), 0}, {Ftail(3, 4, 0), 1},
        {Ftail(3, 4, -1), missing}, {F(0, 4, 0), missing}, {F(1, 2, 1e307), 1}, {invF(3, 4, 0), 0},
        {invF(3, 4, 1), missing}, {invFtail(3, 4, 1), 0}, {invFtail(3, 4, 0), missing}, {tprob(4, 0), 1},
        {tprob(0, 1), missing}, {ttail(4, 0), .5}, {ttail(4, 1e200), 0}, {ttail(4, -1e200), 1}, {invttail(4, .5), 0},
        {invttail(4, 0), missing}, {invttail(4, 1), missing}, {invt(4, 0), 0}, {invt(4, 1), missing},
        {Binomial(5, 0, .3), 1}, {Binomial(5, 6, .3), 0}, {Binomial(5, -1, .3), missing},
        {Binomial(5, 2, 1.1), missing}, {Binomial(4.6, 5.4, 1), 1}, {invbinomial(5, 0, .3), missing},
        {invbinomial(5, 6, .3), missing}, {invbinomial(5, 2, 0), 0}, {invbinomial(5, 2, 1), 1},
        {nchi(0, 1, 1), missing}, {nchi(2.5, 1, 1), missing}, {nchi(3, -1, 1), missing}, {nchi(3, 1, -1), missing},
        {nchi(3, 1, 0), 0}, {invnchi(3, 1, 0), 0}, {invnchi(3, 1, 1), missing}, {npnchi(3, 2, .99), missing},
        {npnchi(3, 4000, .5), missing}, {npnchi(3, 2, 0), missing}, {hyp2f1(1), missing}, {hyp2f1(0), 1},
        {lnbk(0, 1), missing}, {lnbk(3, -1), missing}, {Eabsk(1, 0, 2), missing}, {Eabsk(1, 2, -1), missing},
    };
    for (const auto& c : cases) EXPECT_EQ(c.got, c.want) << "case " << &c - cases;
    EXPECT_FALSE(std::signbit(invttail(4, .5)));
}
