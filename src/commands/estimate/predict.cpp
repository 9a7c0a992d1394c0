// _predict, and predict of versions before 6: a statistic of each observation from the last estimates.
#include <string>
#include <vector>
#include "base/text.h"
#include "data/cells.h"
#include "data/labels.h"
#include "data/structure.h"
#include "estimate/prediction.h"
#include "language/options.h"
#include "language/stdparse.h"
#include "output/errors.h"
#include "stored/posted.h"

namespace velmo {

namespace {

// The words, with the kinds of estimates that have them.
constexpr UInt4 of(estimatekind kind) { return UInt4(1) << kind; }
constexpr UInt4 linear = of(kind_linear) | of(kind_anova), robust = of(kind_linearrobust),
                several = of(kind_multiple) | of(kind_posted) | of(kind_constrained),
                survival = of(kind_survival), all = ~UInt4(0);
constexpr struct { const char* word; Int4 min; statistic what; UInt4 kinds; } words[] = {
    {"index", 1, predict_xb, all},
    {"xb", 2, predict_xb, all},
    {"stdp", 4, predict_stdp, all & ~survival},
    {"stddp", 4, predict_stddp, several},
    {"residuals", 1, predict_residuals, linear},
    {"residuals", 2, predict_residuals, robust | survival},
    {"stdf", 4, predict_stdf, linear},
    {"stdr", 4, predict_stdr, linear},
    {"rstandard", 3, predict_rstandard, linear},
    {"rstudent", 3, predict_rstudent, linear},
    {"cooksd", 1, predict_cooksd, linear},
    {"hat", 1, predict_hat, linear},
};

constexpr Int4 code_hazard = 5;
constexpr boolean binary(Int4 code) { return code == 3 || code == 4; }

const char* labelof(statistic what, Int4 code) {
    static constexpr const char* labels[] = {
        "Linear prediction", "Residuals", "S.E. of the prediction", "S.E. of the residual", "Leverage",
        "Standardized residuals", "Cook's D", "Probability of positive outcome", "Studentized residuals",
        "S.E. of the forecast", "S.E. of equation difference",
    };
    return what == predict_default && code == code_hazard ? "Relative hazard" : labels[what];
}

Int4 readstatistic(Int4 code, predictrequest& r) {
    Int4 asked = 0;
    for (const auto& row : words) {
        if (!(row.kinds & of(kindof(code))) || !getopt_flag(row.word, row.min)) continue;
        asked++;
        r.what = row.what;
    }
    if (asked > 1) return errorf(198, "only one statistic may be asked for\n");
    if (!asked && (binary(code) || code == code_hazard || code == 10)) r.what = predict_default;
    return 0;
}

Int4 readconstant(predictrequest& r) {
    std::vector<Int4> vars;
    boolean found;
    if (Int4 rc = getopt_vars("constant", 3, vars, found)) return rc;
    if (!found) return 0;
    if (vars.size() != 1) return error(vars.empty() ? 102 : 103);
    r.constant = vars[0];
    return isstring(r.constant) ? error(109) : 0;
}

Int4 readequation(estimatekind kind, predictrequest& r) {
    boolean found = false;
    if (!(several & of(kind))) return 0;
    if (Int4 rc = kind == kind_posted ? 0 : getopt_str("outcome", 1, r.equation, found)) return rc;
    if (!found)
        if (Int4 rc = getopt_str("equation", 1, r.equation, found)) return rc;
    if (!found) r.equation = "#1";
    return 0;
}

Int4 readoptions(Int4 code, predictrequest& r, boolean& label) {
    if (Int4 rc = readstatistic(code, r)) return rc;
    if (Int4 rc = readconstant(r)) return rc;
    if (Int4 rc = readequation(kindof(code), r)) return rc;
    label = getopt_noflag("label", 3, true);
    r.offset = getopt_noflag("offset", 3, version >= 600);
    r.asif = binary(code) && getopt_flag("asif", 1);
    r.rules = binary(code) && !r.asif && r.what != predict_stdp && getopt_flag("rules", 2);
    return getopt_done();
}

// The values, missing where the `if` doesn't select; how many are missing.
Int4 fill(const prediction& p, Int4 var, Int4& lacking) {
    Double values[blocksize];
    lacking = clearoutside(var);
    return overmasks([&](Int4 first, Int4 n, const UByte* mask) {
        predictblock(p, first, n, values);
        for (Int4 i = 0; i < n; i++) {
            if (!mask[i]) values[i] = missing;
            lacking += values[i] == missing;
        }
        putcolumn(var, first, n, values);
    });
}

}  // namespace

// _predict [type] newvar [if] [in] [, statistic constant(varname) nolabel nooffset ...]
Int4 cmd__predict() {
    Int4 code = estimatecode(), lacking;
    boolean label;
    predictrequest r;
    prediction p;
    if (kindof(code) == kind_none) return error(301);
    if (Int4 rc = stdparse({.newvars = true})) return rc;
    if (vl_n != 1) return error(vl_n ? 103 : 102);
    Int4 var = vl_vr[0];
    if (isstring(var)) return error(109);
    if (Int4 rc = readoptions(code, r, label)) return rc;
    if (Int4 rc = prepareprediction(r, p)) return rc;
    if (Int4 rc = fill(p, var, lacking)) return rc;
    visnvar = nvar;
    markchanged(var);
    if (lacking) notef("(%d missing value%s generated)\n", lacking, plural(lacking));
    return label ? putvarlabel(varlist[var - 1], labelof(p.request.what, code)) : 0;
}

}  // namespace velmo
