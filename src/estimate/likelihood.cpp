#include "estimate/likelihood.h"
#include <algorithm>
#include "estimate/coeftable.h"
#include "estimate/wald.h"
#include "output/print.h"
#include "stored/families.h"

namespace velmo {

Int4 posttest(estimation& e, const modeltest& t) {
    boolean ratio = t.ratio && t.ll0 != missing;
    Double df = Double(t.tested.size()), chi2 = missing;
    if (ratio) {
        if (t.ll != missing) chi2 = std::max(2 * (t.ll - t.ll0), 0.0);
    } else {
        waldresult w;
        if (Int4 rc = waldtest(e.b, e.V, t.tested, w)) return rc;
        if (w.df == Int4(df)) chi2 = w.chi2;
    }
    e.scalars.push_back({"ll", t.ll});
    if (t.ll0 != missing) e.scalars.push_back({"ll_0", t.ll0});
    e.scalars.push_back({"df_m", df});
    e.scalars.push_back({"chi2", chi2});
    // Neither of the two is below 0 but by rounding, of a model with nothing in it.
    if (t.ll0 != missing && t.ll0 != 0 && t.ll != missing)
        e.scalars.push_back({"r2_p", std::max(1 - t.ll / t.ll0, 0.0)});
    e.macros.push_back({"chi2type", ratio ? "LR" : "Wald"});
    return 0;
}

Int4 showfit(const fitview& v) {
    mlheader h;
    postedheader(h);
    h.title = v.title;
    h.status = v.status;
    h.iterations = v.iterations;
    h.tolerance = v.status == ended_coefficients ? v.iterate.tolerance : v.iterate.ltolerance;
    if (printmlheader(h)) return 1;
    if (!v.table) return 0;
    coeftable t;
    if (Int4 rc = postedtable(t)) return rc;
    t.level = v.level;
    t.eform = v.eform;
    t.title = v.coeftitle;
    Double unused;
    std::string offset;
    stored_get(e_results, "offset", unused, offset);
    boolean log = offset.starts_with("ln(") && offset.ends_with(")");
    (log ? t.exposure : t.offset) = log ? offset.substr(3, offset.size() - 4) : offset;
    if (prtnl()) return 1;
    return printcoeftable(t);
}

}  // namespace velmo
