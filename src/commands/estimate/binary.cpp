// logit, probit: binary outcomes.
#include "estimate/binary.h"
#include "base/columns.h"
#include "base/saved.h"
#include "base/text.h"
#include "estimate/likelihood.h"
#include "language/options.h"
#include "language/stdparse.h"
#include "output/print.h"
#include "stored/families.h"

namespace velmo {

namespace {

// ---- What is shown.

struct binaryview {
    boolean ratios = false, table = true, tabulate = false;
    Int4 level = 95;
};

Int4 notedecided(const binaryrecord& r) {
    Int4 failures = r.decidedcounts[0][0], successes = r.decidedcounts[1][1];
    if (!failures && !successes) return 0;
    return notef("(note: %d failure%s and %d success%s completely determined.)\n", failures, plural(failures),
                 successes, successes == 1 ? "" : "es");
}

Int4 outcomerow(const char* name, const Int4 (&count)[2]) {
    prttext(rightjustified(name, 12) + " ");
    prtbar();
    prtresultf(" %10d  %10d ", count[0], count[1]);
    prtbar();
    prtresultf(" %10d\n", count[0] + count[1]);
    return breakpending;
}

Int4 weightrow(const Double (&sum)[2]) {
    prttext("       (wgt) ");
    prtbar();
    prtblanks(2);
    prtnumber("%9.0g", sum[0]);
    prtblanks(3);
    prtnumber("%9.0g", sum[1]);
    prtblanks(1);
    prtbar();
    prtblanks(2);
    prtnumber("%9.0g", sum[0] + sum[1]);
    return prtnl();
}

Int4 outcomes(const binaryrecord& r, boolean weighted) {
    Int4 count[2] = {r.counts[0][0] + r.counts[1][0], r.counts[0][1] + r.counts[1][1]};
    Double sum[2] = {r.weights[0][0] + r.weights[1][0], r.weights[0][1] + r.weights[1][1]};
    constexpr const char* line = "{hline 13}{c +}{hline 24}{c +}{hline 11}\n";
    prttext("\n    Comparison of Outcomes and Probabilities\n\n");
    prtmarkup("     Outcome {c |}    Pr < .5    Pr >= .5 {c |}      Total\n");
    prtmarkup(line);
    for (Int4 y : {0, 1}) {
        outcomerow(y ? "success" : "failure", r.counts[y]);
        if (weighted) weightrow(r.weights[y]);
    }
    prtmarkup(line);
    outcomerow("Total", count);
    if (weighted) weightrow(sum);
    return breakpending;
}

Int4 show(const binarymodel& model, const binaryview& v) {
    binaryrecord r;
    if (!posted_getrecord("probit", &r, sizeof r)) return error(301);
    if (r.parameters > matsize) return error(908);
    fitview fit;
    fit.title = model.title;
    fit.coeftitle = v.ratios ? "Odds Ratio" : "";
    fit.status = r.status;
    fit.iterations = r.iterations;
    fit.iterate.tolerance = r.tolerance;
    fit.iterate.ltolerance = r.ltolerance;
    fit.level = v.level;
    fit.eform = v.ratios;
    fit.table = v.table;
    if (Int4 rc = showfit(fit)) return rc;
    if (notedecided(r)) return 1;
    Double unused;
    std::string text;
    boolean weighted = stored_get(e_results, "wtype", unused, text) == result_macro;
    return v.tabulate ? outcomes(r, weighted) : 0;
}

Int4 readview(const binarymodel& model, binaryview& v) {
    v.tabulate = getopt_flag("tabulate", 2);
    v.table = getopt_noflag("coef", 3, true);
    v.ratios = &model == &logitmodel && getopt_flag("or", 2);
    return getopt_level(1, v.level);
}

Int4 replay(const binarymodel& model) {
    binaryview v;
    if (bymode) return error(190);
    if (ifgiven || ingiven || weightgiven) return error(198);
    if (Int4 rc = readview(model, v)) return rc;
    if (Int4 rc = getopt_done()) return rc;
    return estimatecode() == model.code ? show(model, v) : error(301);
}

Int4 readrequest(binaryrequest& r) {
    std::vector<Int4> vars, step;
    boolean found;
    Int4 n, stepnumber;
    r.constant = getopt_noflag("constant", 3, true);
    r.asis = getopt_flag("asis", 4);
    if (Int4 rc = getopt_robust(r.robust, true)) return rc;
    if (Int4 rc = getopt_iteration(r.iterate)) return rc;
    if (Int4 rc = getopt_int("step", 4, &stepnumber, 1, n)) return rc;    // told by sw; nothing hangs on it
    if (Int4 rc = getopt_vars("offset", 3, vars, found)) return rc;
    if (found && vars.size() != 1) return error(vars.empty() ? 102 : 103);
    if (found) r.offset = vars[0];
    return 0;
}

// word depvar [varlist] [weight] [if] [in] [, robust cluster() score() noconstant asis offset() iterate() tolerance()
// ltolerance() trace nolog level() nocoef tabulate or]
Int4 binary(const binarymodel& model) {
    if (Int4 rc = stdparse({.tsops = may, .weight = may})) return rc;
    if (!vl_given) return replay(model);
    saved<Int4> kind(weighttype);
    binaryview v;
    binaryrequest r;
    if (Int4 rc = readview(model, v)) return rc;
    if (Int4 rc = readrequest(r)) return rc;
    if (Int4 rc = getopt_done()) return rc;
    if (vl_n > matsize - 2) return error(908);
    if (vl_n == 1 && !r.constant) return error(102);
    if (Int4 rc = fitbinary(model, r)) return rc;
    return show(model, v);
}

}  // namespace

Int4 cmd_logit() { return binary(logitmodel); }
Int4 cmd_probit() { return binary(probitmodel); }

}  // namespace velmo
