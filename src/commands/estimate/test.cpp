// test: a Wald test of linear constraints on the last estimates.
#include <algorithm>
#include <string_view>
#include "base/saved.h"
#include "base/text.h"
#include "core/objects.h"
#include "estimate/coeftable.h"
#include "estimate/constraints.h"
#include "estimate/testconstraints.h"
#include "language/options.h"
#include "language/stdparse.h"
#include "output/errors.h"
#include "output/print.h"
#include "stored/families.h"
#include "stored/posted.h"

namespace velmo {

namespace {

struct testoptions {
    boolean accumulate, run, minimum;
    std::string matrix;          // the rows go there, and nothing is tested or kept
};

// The text ahead of the comma, or of the end, and the cursor there. A comma inside brackets is none of the options'.
std::string_view constraintspart() {
    char* begin = tokrest();
    char* p = begin;
    for (Int4 depth = 0; *p && (*p != ',' || depth > 0); p++)
        depth += (*p == '(' || *p == '[') - (*p == ')' || *p == ']');
    settokpos(p);
    return trimmed(std::string_view(begin, std::size_t(p - begin)));
}

Int4 readoptions(testoptions& o) {
    if (Int4 rc = parseoptions()) return rc;
    o.accumulate = getopt_flag("accumulate", 1);
    o.run = getopt_noflag("test", 1, true);
    o.minimum = getopt_flag("minimum", 3);
    boolean found;
    if (Int4 rc = getopt_str("matrix", 6, o.matrix, found)) return rc;
    if (Int4 rc = found ? checkmatrixname(o.matrix) : 0) return rc;
    return getopt_done();
}

// The constraints of the last test.
Int4 lastrows(std::vector<constraintrow>& rows) {
    matrix m;
    saved<Int4> kind(matrixkind, obj_estimate);
    if (!matfind("Rr")) return 0;
    if (Int4 rc = matcopy("Rr", m)) return rc;
    for (Int4 i = 0; i < m.rows; i++) rows.emplace_back(m.row(i), m.row(i) + m.cols);
    return 0;
}

Int4 asmatrix(const std::vector<constraintrow>& rows, matrix& m) {
    if (Int4 rc = makematrix(m, Int4(rows.size()), Int4(rows[0].size()))) return rc;
    for (std::size_t i = 0; i < rows.size(); i++) std::copy(rows[i].begin(), rows[i].end(), m.row(Int4(i)));
    std::vector<axisname> names = postednames();
    std::copy(names.begin(), names.end(), m.colnames.begin());
    m.colnames.back() = makeaxisname("", "", "constant");
    return 0;
}

void storetest(const constrainttest& t) {
    boolean isF = t.dfr != missing;
    rclear();
    rstore("drop", Double(t.dropped.size()));
    if (isF) rstore("df_r", t.dfr);
    rstore(isF ? "F" : "chi2", t.statistic);
    rstore("df", t.df);
    rstore("p", t.p);
}

Int4 printtest(const constrainttest& t) {
    boolean isF = t.dfr != missing;
    for (Int4 number : t.dropped)
        if (prttextf("Constraint %d dropped\n", number)) return 1;
    if (isF) prttextf("       F(%3d,%6s) =", t.df, counttext(t.dfr).c_str());
    else prttextf("           chi2(%3d) =", t.df);
    prtnumber("%8.2f", t.statistic);
    prtnl();
    prttext(isF ? "            Prob > F =" : "         Prob > chi2 =");
    prtnumber("%10.4f", t.p);
    return prtnl();
}

}  // namespace

// test constraint or list [, accumulate notest minimum matrix(name)]; without one those that stand are tested
Int4 cmd_test() {
    testoptions o{};
    matrix Rr;
    constrainttest t;
    std::vector<constraintrow> rows;
    estimatekind kind = kindof(estimatecode());
    if (kind == kind_none || kind == kind_survival) return error(301);
    std::string_view text = constraintspart();
    if (Int4 rc = readoptions(o)) return rc;
    if (kind == kind_anova && text.find('=') == text.npos) return error(301);      // terms, which aren't built
    if (o.accumulate || text.empty())
        if (Int4 rc = lastrows(rows)) return rc;
    if (text.empty() && rows.empty()) return error(302);
    if (!text.empty())
        if (Int4 rc = buildconstraints(text, rows)) return rc;
    if (Int4 rc = asmatrix(rows, Rr)) return rc;
    if (!o.matrix.empty()) return matput(o.matrix, Rr);
    if (o.run)
        if (Int4 rc = testconstraints(Rr, o.minimum, t)) return rc;
    if (Int4 rc = posted_put("Rr", Rr)) return rc;
    if (!o.run) return 0;
    storetest(t);
    return printtest(t);
}

}  // namespace velmo
