// The layouts of the coefficient table and the header of maximum likelihood that no posted estimates show.
#include "estimate/coeftable.h"
#include <gtest/gtest.h>
#include "output/results.h"
#include "shownlines.h"

using namespace velmo;
using std::string;

namespace {

template <class F> string printed(F print) {
    string got;
    results_open();
    setpagesize(0);
    vstream_setcallback(console, takeline, &got);
    EXPECT_EQ(print(), 0);
    vstream_flush(console);
    results_close();
    return got;
}

constexpr const char* rule = "-------------+----------------------------------------------------------------\n";
// Rules as a line of the stream holds them, with codes for the corners.
const string left(13, '-'), right(64, '-'), top = left + "\1" + right + "\n", bottom = left + "\2" + right + "\n";

coefrow row(const char* name, Double b, Double se) { return {readaxisname(name), b, se}; }

}  // namespace

// exp(0) with a standard error of 1 under eform: bounds exp(-+1.959964). A constant row stays.
TEST(CoefTable, ExponentialsOffsetAncillaryAndOpenEnd) {
    coeftable t;
    t.rows = {row("one:L2.abcdefghijk", 0, 1), row("one:_cons", 0, 0), row("sigma:_cons", 1, .5)};
    t.rows[2].ancillary = true;
    t.equations = t.eform = t.plus = true;
    t.depname = "averylongnameindeed";
    t.title = "Odds Ratio";
    t.vcetype = "Robust HC2";
    t.exposure = "pop";
    EXPECT_EQ(printed([&] { return printcoeftable(t); }), top +
              "             |             Robust HC2\n"
              "averylongn~d | Odds Ratio   Std. Err.      z    P>|z|     [95% Conf. Interval]\n" + rule +
              "one          |\n"
              "         L2. |\n"
              " abcdefghijk |          1          1     0.00   1.000     .1408635    7.099071\n"
              "       _cons |  (dropped)\n"
              "         pop | (exposure)\n" + rule +
              "             |          (Ancillary parameter)\n"
              "       _cons |   2.718282   1.359141     2.00   0.046      1.02022    7.242613\n" + rule);
}

// t of 3 on one degree of freedom: p = 2 * (.5 - atan(3) / pi) = .2048.
TEST(CoefTable, StandardisedCoefficients) {
    coeftable t;
    t.rows = {row("x", 3, 1), row("_cons", -2, .5)};
    t.rows[0].beta = .75;
    t.df = 1;
    t.beta = true;
    t.depname = "y";
    EXPECT_EQ(printed([&] { return printcoeftable(t); }), top +
              "           y |      Coef.   Std. Err.      t    P>|t|                     Beta\n" + rule +
              "           x |          3          1     3.00   0.205                      .75\n"
              "       _cons |         -2         .5    -4.00   0.156                        .\n" + bottom);
}

// The upper tail of chi2(2) is exp(-x / 2): exp(-3) = .0498.
TEST(CoefTable, HeaderOfMaximumLikelihood) {
    mlheader h;
    h.title = "Logit estimates";
    h.status = ended_coefficients;
    h.tolerance = 1e-4;
    h.n = 74;
    h.chi2type = "LR";
    h.df = 2;
    h.chi2 = 6;
    h.ll = -27.175156;
    h.haspseudo = true;
    h.pseudo = .3966;
    auto print = [&] { return printmlheader(h); };
    EXPECT_EQ(printed(print), "\nLogit estimates                                   Number of obs   =         74\n"
                              "(coefficient tolerance .0001)                     LR chi2(2)      =       6.00\n"
                              "Log likelihood = -27.175156                       Prob > chi2     =     0.0498\n"
                              "                                                  Pseudo R2       =     0.3966\n");
    h.haspseudo = false;
    h.status = ended_iterations;
    h.iterations = 3;
    h.chi2type = "Wald";
    h.chi2 = missing;
    EXPECT_EQ(printed(print), "\nLogit estimates        convergence not achieved   Number of obs   =         74\n"
                              "(stopped after 3 iterations)                      Wald chi2(2)    =          .\n"
                              "Log likelihood = -27.175156                       Prob > chi2     =          .\n");
    h.status = ended_questionable;
    h.chi2 = 2e7;
    EXPECT_NE(printed(print).find("\n(estimated coefficients questionable)             Wald chi2(2)    =  2.000e+07\n"),
              string::npos);
}
