// _robust: scores of an estimator that is written as an ado-file make its variances robust ones.
#include <algorithm>
#include <cmath>
#include "base/saved.h"
#include "core/objects.h"
#include "data/timeseries.h"
#include "estimate/regress.h"
#include "language/options.h"
#include "language/stdparse.h"
#include "output/errors.h"
#include "stored/families.h"

namespace velmo {

namespace {

struct robustcall {
    robustrequest request;
    std::string name;                    // of a user's matrix, empty for the posted variances
    robustrule rule;                     // minus() stands for an estimator's own
    matrix D;
    std::vector<axisname> names;
};

Int4 readcall(robustcall& c) {
    boolean found;
    Int4 n;
    if (Int4 rc = getopt_robust(c.request, false)) return rc;
    c.request.robust = true;
    if (c.request.typed == weight_i) return error(5101);
    if (Int4 rc = getopt_str("variance", 1, c.name, found)) return rc;
    if (found && c.name.empty()) return error(198);
    if (Int4 rc = getopt_num("minus", 1, &c.rule.dfadj, 1, n)) return rc;
    c.rule.small = n > 0;
    if (n && !(c.rule.dfadj >= 0 && c.rule.dfadj < missing)) return invalidword("minus()");
    if (Int4 rc = getopt_done()) return rc;
    if (c.name.empty() && !posted()) return error(301);
    saved<Int4> kind(matrixkind, c.name.empty() ? obj_estimate : matrixkind);
    if (Int4 rc = matcopy(c.name.empty() ? "VCE" : c.name, c.D)) return rc;
    c.names = c.name.empty() ? postednames() : c.D.colnames;
    return c.D.rows == c.D.cols && Int4(c.names.size()) == c.D.rows ? 0 : error(503);
}

// The variable of a column, or 0 for the constant.
Int4 columnsource(const axisname& a, source& s) {
    s = {0};
    if (a.nametext() == "_cons" && !a.op[0]) return 0;
    std::string name(a.nametext());
    s.var = findvar(name);
    if (!s.var) return varnotfound(name);
    if (!a.op[0]) return 0;
    if (Int4 rc = ts_parse(a.optext(), &s.op)) return rc;
    return s.op ? tsetup() : 0;
}

// The scores lead the sample's sources; those of the columns follow.
Int4 readcolumns(const robustcall& c, std::vector<source>& sources, std::vector<scoredequation>& equations) {
    for (std::size_t j = 0; j < c.names.size(); j++) {
        source s;
        if (j == 0 || c.names[j].eqtext() != c.names[j - 1].eqtext()) equations.push_back({{}, nullptr});
        if (Int4 rc = columnsource(c.names[j], s)) return rc;
        equations.back().columns.push_back(s.var ? Int4(sources.size()) + 1 : 0);
        if (s.var) sources.push_back(s);
    }
    if (Int4(equations.size()) > vl_n) return error(102);
    return Int4(equations.size()) < vl_n ? error(103) : 0;
}

// The score of each equation, times the weight.
Int4 readscores(const estsample& s, std::vector<scoredequation>& equations, workspace& work) {
    std::size_t run = std::size_t(s.run), n = equations.size();
    work = workspace(run * n * sizeof(Double) + 1);
    Double* score = work.get<Double>();
    if (!score) return error(909);
    for (std::size_t e = 0; e < n; e++) equations[e].score = score + e * run;
    return overrows(s, [&](const rowsblock& b) {
        for (std::size_t e = 0; e < n; e++)
            for (Int4 i = 0; i < b.n; i++)
                score[e * run + std::size_t(b.obs[i] - s.first)] = b.row(i)[e + 1] * (b.weight ? b.weight[i] : 1);
    });
}

// Of estimates of `regress` the test of the model follows the variances.
Int4 repostregress(const matrix& V, const robustresult& result) {
    regressrecord r;
    postrecord p;
    matrix b;
    if (!posted_getrecord("regress", &r, sizeof r)) return 0;
    posted(&p);
    p.code = code_linearrobust;
    r.robust = 1;
    r.df = result.df;
    objwrite(objfind("gamma", obj_estimate), 0, &p, sizeof p);
    objwrite(objfind("regress", obj_estimate), 0, &r, sizeof r);
    if (Int4 rc = postedmatrix("_b", b)) return rc;
    Double rank = 0, F = missing;
    if (Int4 rc = waldF(b, V, 1, V.rows - r.constant, F, rank)) return rc;
    const std::pair<const char*, Double> values[] = {{"df_m", rank}, {"df_r", r.df}, {"F", F}};
    for (auto [name, value] : values)
        if (Int4 rc = stored_put(e_results, name, value)) return rc;
    return 0;
}

Int4 storeposted(const robustcall& c, const robustresult& result) {
    postrecord p;
    estimation e;
    if (Int4 rc = posted_put("VCE", c.D)) return rc;
    posted(&p);
    p.scale = 1;
    objwrite(objfind("gamma", obj_estimate), 0, &p, sizeof p);
    postrobust(e, c.request, result);
    for (const auto& [name, text] : e.macros)
        if (Int4 rc = stored_put(e_results, name, text)) return rc;
    for (const auto& [name, value] : e.scalars)
        if (Int4 rc = stored_put(e_results, name, value)) return rc;
    return repostregress(c.D, result);
}

Int4 robustof(robustcall& c, const std::vector<source>& sources, std::vector<scoredequation>& equations,
              robustresult& result) {
    estsample s;
    workspace scores{0};
    if (Int4 rc = estimationsample(sources, {.cluster = c.request.cluster}, s)) return rc;
    Double total = 0;
    if (weighttype == weight_a && !scaleweights(s, false, total)) return noobservations();
    if (Int4 rc = readscores(s, equations, scores)) return rc;
    return robustvariance(s, c.request, c.rule, equations, c.D, result);
}

}  // namespace

// _robust varlist [weight] [if] [in] [, variance(matname) minus(#) cluster(varname)]
Int4 cmd__robust() {
    if (Int4 rc = stdparse({.varlist = must, .tsops = may, .weight = may, .by = never})) return rc;
    saved<Int4> kind(weighttype, weighttype);
    robustcall c;
    std::vector<scoredequation> equations;
    robustresult result;
    if (Int4 rc = readcall(c)) return rc;
    std::vector<source> sources = listsources();
    if (Int4 rc = readcolumns(c, sources, equations)) return rc;
    if (Int4 rc = robustof(c, sources, equations, result)) return rc;
    c.D.symmetric = true;
    if (Int4 rc = c.name.empty() ? storeposted(c, result) : matput(c.name, c.D)) return rc;
    rclear();
    rstore("N", result.n);
    rstore("df_r", result.df);
    if (c.request.cluster) rstore("N_clust", result.clusters);
    return 0;
}

}  // namespace velmo
