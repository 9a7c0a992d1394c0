// What estimators by maximum likelihood share once the iterations have ended: the test of the model, and how a fit is
// shown, at once and in replays.
#pragma once
#include <string>
#include <vector>
#include "estimate/newton.h"
#include "estimate/post.h"

namespace velmo {

// e(ll), e(ll_0) and e(r2_p) as far as they are known, e(df_m), e(chi2) and e(chi2type): the likelihood-ratio test
// against ll0 if asked for and ll0 is there, else Wald's that the coefficients numbered in `tested` are 0. That is
// missing when they depend on each other. V as it will be posted. 0, 1, 908 (printed).
struct modeltest {
    Double ll, ll0 = missing;
    boolean ratio = false;
    std::vector<Int4> tested;
};
Int4 posttest(estimation& e, const modeltest& t);

// The posted estimates: header, table, with the row of e(offset), or of the exposure where that is "ln(name)".
struct fitview {
    const char* title = "";
    const char* coeftitle = "";
    Int4 status = ended_none, iterations = 0;
    iterationform iterate;                 // its tolerances
    Int4 level = 95;
    boolean eform = false, table = true;
};
Int4 showfit(const fitview& v);            // 0, 1, 301 (printed)

}  // namespace velmo
