// correlate: correlations or covariances of variables, or of the coefficients of the last estimation.
#include <algorithm>
#include <cmath>
#include <string>
#include <vector>
#include "base/columns.h"
#include "commands/tables/tabletext.h"
#include "estimate/crossproducts.h"
#include "language/options.h"
#include "language/stdparse.h"
#include "output/errors.h"
#include "output/formats.h"
#include "output/print.h"
#include "output/results.h"
#include "stored/families.h"
#include "stored/posted.h"

namespace velmo {

namespace {

struct corroptions { boolean covariance, coef, wrap, format, means; };

// ---- The triangle.

// Covariances with the names of their rows; equations where the columns have those.
struct triangle {
    matrix m;
    std::vector<std::string> names, equations;
    std::vector<Double> sd;
    void deviations() {
        for (Int4 i = 0; i < m.rows; i++) sd.push_back(std::sqrt(m.at(i, i)));
    }
    Double correlation(Int4 i, Int4 j) const {
        Double product = sd[std::size_t(i)] * sd[std::size_t(j)];
        if (!(product > 0)) return missing;
        return i == j ? 1 : m.at(i, j) / product;
    }
};

void equationline(const triangle& t, Int4 first, Int4 last) {
    prtmarkup("             {c |}");
    for (Int4 j = first; j < last; j++) {
        const std::string& eq = t.equations[std::size_t(j)];
        boolean begins = j == first || eq != t.equations[std::size_t(j - 1)];
        prttext(rightjustified(begins && !eq.empty() ? shownname(eq, 7) + ":" : "", 9));
    }
    prtnl();
}

void printcell(const triangle& t, Int4 i, Int4 j, boolean covariance) {
    if (covariance) {
        prttext(" ");
        prtnumber("%8.0g", t.m.at(i, j));
        return;
    }
    Double r = t.correlation(i, j);
    prtnumber(r == missing ? "%9.0f" : "%9.4f", r);
}

Int4 printblock(const triangle& t, Int4 first, Int4 last, boolean covariance) {
    prtnl();
    if (!t.equations.empty()) equationline(t, first, last);
    prtmarkup("             {c |}");
    for (Int4 j = first; j < last; j++) prttext(rightjustified(shownname(t.names[std::size_t(j)], 8), 9));
    prtmarkup("\n{hline 13}{c +}{hline " + std::to_string(9 * (last - first)) + "}\n");
    for (Int4 i = first; i < t.m.rows; i++) {
        tabstub(t.names[std::size_t(i)]);
        for (Int4 j = first; j < std::min(last, i + 1); j++) printcell(t, i, j, covariance);
        if (prtnl()) return 1;
    }
    return 0;
}

Int4 printtriangle(triangle& t, const corroptions& o) {
    t.deviations();
    Int4 width = o.wrap ? t.m.rows : std::max(1, (linesize - 14) / 9);
    for (Int4 first = 0; first < t.m.rows; first += width)
        if (printblock(t, first, std::min(first + width, t.m.rows), o.covariance)) return 1;
    return 0;
}

// ---- Variables.

Int4 printmeans(const crossproducts& c, const triangle& t, Double n, boolean format) {
    prtmarkup("\n    Variable {c |}         Mean    Std. Dev.          Min          Max\n{hline 13}{c +}{hline 52}\n");
    for (std::size_t j = 0; j < t.names.size(); j++) {
        char own[fmtsize];
        const char* f = "%9.0g";
        if (format) {
            cutformat(fmt[entryvar(Int4(j)) - 1], "%9.0g", own);
            f = own;
        }
        tabstub(t.names[j]);
        prttext("   ");
        prtnumber(f, c.means[j]);
        Double sd = std::sqrt(c.m.at(Int4(j) + 1, Int4(j) + 1) / (n - 1));
        for (Double v : {sd, Double(c.low[j]), Double(c.high[j])}) {
            prttext("    ");
            prtnumber(f, v);
        }
        if (prtnl()) return 1;
    }
    return 0;
}

void storecorrelations(const triangle& t, Double n, boolean covariance) {
    rstore("N", n);
    boolean two = t.m.rows > 1;
    if (covariance) {
        if (two) rstore("cov_12", t.m.at(1, 0));
        if (two) rstore("Var_2", t.m.at(1, 1));
        rstore("Var_1", t.m.at(0, 0));
    } else if (two) {
        rstore("rho", t.correlation(1, 0));
    }
}

Int4 ofvariables(const corroptions& o) {
    if (vl_n > matsize - 1) return error(908);
    estsample s;
    if (Int4 rc = estimationsample(listsources(), {}, s)) return rc;
    crossproducts c;
    if (Int4 rc = sscp_accum(s, {.print = true, .deviations = true, .extremes = o.means}, c)) return rc;
    Double n = c.m.at(0, 0);
    if (weighttype) n = std::floor(n + 0.5);
    if (n > longmissing) return error(1400);
    triangle t;
    if (Int4 rc = makematrix(t.m, vl_n, vl_n)) return rc;
    Double factor = n / (n - 1);
    for (Int4 i = 0; i < vl_n; i++) {
        t.names.push_back(entryname(i));
        for (Int4 j = 0; j < vl_n; j++) t.m.at(i, j) = (c.m.at(i + 1, j + 1) / n) * factor;
    }
    if (o.means && printmeans(c, t, n, o.format)) return 1;
    if (printtriangle(t, o)) return 1;
    storecorrelations(t, n, o.covariance);
    return 0;
}

// ---- Coefficients.

Int4 ofcoefficients(const corroptions& o) {
    triangle t;
    if (Int4 rc = postedmatrix("VCE", t.m)) return rc;
    boolean equations = hasequations(t.m.colnames);
    for (const axisname& a : t.m.colnames) {
        t.names.push_back(a.opname());
        if (equations) t.equations.emplace_back(a.eqtext());
    }
    return printtriangle(t, o);
}

}  // namespace

// correlate [varlist] [if] [in] [weight] [, covariance _coef wrap noformat means]
Int4 cmd_correlate() {
    if (Int4 rc = stdparse({.tsops = may, .weight = may, .weights = weight_a | weight_f, .oldscale = true})) return rc;
    corroptions o{getopt_flag("covariance", 1), getopt_flag("_coef", 2), getopt_flag("wrap", 1),
                  getopt_noflag("format", 1, true), getopt_flag("means", 1)};
    if (Int4 rc = getopt_done()) return rc;
    if (o.coef && vl_given) return notallowed("varlist");
    rclear();
    return o.coef ? ofcoefficients(o) : ofvariables(o);
}

}  // namespace velmo
