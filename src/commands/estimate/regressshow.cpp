// What `regress` prints, of estimates that are posted.
#include "commands/estimate/regress.h"
#include <cmath>
#include "base/saved.h"
#include "core/objects.h"
#include "estimate/coeftable.h"
#include "estimate/records.h"
#include "language/options.h"
#include "matrix/probability.h"
#include "output/errors.h"
#include "output/print.h"
#include "stored/families.h"
#include "stored/posted.h"

namespace velmo {

namespace {

constexpr Double largestF = 99999;
constexpr const char* figures = "{col 56}";        // where they stand beside a title

Double result(const char* name) {
    Double x = missing;
    std::string text;
    return stored_get(e_results, name, x, text) == result_scalar ? x : missing;
}
std::string resulttext(const char* name) {
    Double x;
    std::string text;
    stored_get(e_results, name, x, text);
    return text;
}

// Figures of a fit, in the column at the right.
void nfigure(const regressrecord& r) {
    prttext("Number of obs =");
    prtresultf("%8s\n", counttext(r.n).c_str());
}
void Ffigure() {
    Double F = result("F");
    prttextf("F(%3d,%6s) =", Int4(result("df_m")), counttext(result("df_r")).c_str());
    prtnumber("%8.2f", F >= largestF ? missing : F);
    prtnl();
}
void figure(const char* label, const char* fmt, Double x) {
    prttextf("%-14s= ", label);
    prtnumber(fmt, x);
    prtnl();
}
Double Fprobability() {
    Double F = result("F"), df1 = result("df_m"), df2 = result("df_r");
    return F == missing || df1 < 1 || df2 <= 0 ? missing : Ftail(df1, df2, F);
}

// ---- The table of variances.

void sumsrow(const char* label, Double ss, Double df) {
    prttextf("    %8s ", label);
    prtbar();
    prttext(" ");
    prtnumber("%11.2g", ss);
    prtresultf("%6s ", counttext(df).c_str());
    prtnumber("%11.2g", df > 0 ? ss / df : missing);
    prtblanks(11);
}

void variances(const regressrecord& r) {
    const char* rule = "{hline 13}{c +}{hline 30}           ";
    prtmarkup("      Source {c |}       SS       df       MS              ");
    nfigure(r);
    prtmarkup(rule);
    Ffigure();
    sumsrow("Model", r.mss, r.dfmodel);
    figure("Prob > F", "%7.4f", Fprobability());
    sumsrow("Residual", r.rss, r.df);
    figure("R-squared", "%7.4f", result("r2"));
    prtmarkup(rule);
    figure("Adj R-squared", "%7.4f", result("r2_a"));
    sumsrow("Total", r.mss + r.rss, r.n - r.centred);
    figure("Root MSE", "%7.2g", result("rmse"));
}

// ---- What robust fits have in its place.

void robustfigures(const regressrecord& r) {
    prttext(r.instruments ? "IV (2SLS) regression with robust standard errors"
                          : "Regression with robust standard errors");
    prtmarkup(figures);
    nfigure(r);
    prtmarkup(figures);
    Ffigure();
    prtmarkup(figures);
    figure("Prob > F", "%7.4f", Fprobability());
    prtmarkup(figures);
    figure("R-squared", "%7.4f", result("r2"));
    std::string cluster = resulttext("clustvar");
    if (!cluster.empty()) {
        prttextf("Number of clusters (%s) = ", cluster.c_str());
        prtresultf("%d", Int4(result("N_clust")));
    }
    prtmarkup(figures);
    figure("Root MSE", "%7.2g", result("rmse"));
}

Int4 header(const regressrecord& r, const regressshow& o) {
    if (o.step) prtmarkup("{col 68}(stepwise)\n");
    else prtnl();
    if (r.robust) {
        robustfigures(r);
    } else {
        if (r.instruments) prttext("Instrumental variables (2SLS) regression\n\n");
        variances(r);
    }
    return prtnl();
}

// Coefficients in units of the standard deviations, which the constant has none of.
void standardise(coeftable& t, boolean constant) {
    saved<Int4> kind(matrixkind, obj_estimate);
    Double y = std::sqrt(matel("s2", 0, 0));
    std::size_t n = t.rows.size() - constant;
    for (std::size_t i = 0; i < n; i++) {
        Double x = std::sqrt(matel("s2", 0, Int4(i) + 1));
        if (y > 0) t.rows[i].beta = t.rows[i].b * x / y;
    }
}

}  // namespace

Int4 getregressshow(regressshow& o) {
    Int4 n;
    if (Int4 rc = getopt_level(1, o.level)) return rc;
    if (Int4 rc = getopt_str("eform", 2, o.eform, o.eformgiven)) return rc;
    if (Int4 rc = getopt_int("step", 4, &o.step, 1, n)) return rc;
    o.beta = getopt_flag("beta", 1);
    o.plus = getopt_flag("plus", 4);
    o.header = getopt_noflag("header", 2, true);
    return 0;
}

Int4 showregress(const regressshow& o) {
    regressrecord r;
    coeftable t;
    if (!posted_getrecord("regress", &r, sizeof r)) return error(301);
    if (o.beta && !resulttext("clustvar").empty()) return prefixed("options cluster() and beta", 184, false);
    if (Int4 rc = postedtable(t)) return rc;
    t.level = o.level;
    t.eform = o.eformgiven;
    t.title = o.eform;
    t.beta = o.beta;
    t.plus = o.plus;
    if (o.beta) standardise(t, r.constant);
    if (o.header)
        if (Int4 rc = header(r, o)) return rc;
    return printcoeftable(t);
}

}  // namespace velmo
