// regress: what is asked for, the fit, its post.
#include "commands/estimate/regress.h"
#include <algorithm>
#include <cmath>
#include "base/saved.h"
#include "base/text.h"
#include "estimate/regress.h"
#include "language/options.h"
#include "language/stdparse.h"
#include "matrix/matrices.h"
#include "output/errors.h"

namespace velmo {

namespace {

// ---- The options.

Int4 together(const char* options) { return prefixed(std::string("options ") + options, 184, false); }

Int4 getdof(Double& dof) {
    Int4 n;
    if (Int4 rc = getopt_num("dof", 3, &dof, 1, n)) return rc;
    return n && !(dof > 0 && dof < missing) ? invalidword("dof()") : 0;
}

Int4 gethc(regressmodel& m) {
    boolean hc2 = getopt_flag("hc2", 3), hc3 = getopt_flag("hc3", 3);
    m.hc = hc3 ? 3 : hc2 ? 2 : 0;
    if (!m.hc) return 0;
    if (hc2 && hc3) return together("hc2 and hc3");
    if (m.robust.cluster) return together(hc2 ? "cluster() and hc2" : "cluster() and hc3");
    if (m.robust.typed == weight_p) return error(404);
    if (m.robust.typed == weight_i) return error(5101);
    m.robust.robust = true;
    return 0;
}

Int4 getmodel(regressmodel& m, std::string& depname) {
    boolean found;
    m.constant = getopt_noflag("constant", 1, true);
    m.hascons = getopt_flag("hascons", 1);
    m.tsscons = getopt_flag("tsscons", 7);
    m.mse1 = getopt_flag("mse1", 2);
    m.rssmat = getopt_flag("rssmat", 6) || m.tsscons;
    m.bmat = getopt_flag("bmat", 4);
    getopt_flag("means", 1);             // they always stay with the estimates
    if (m.hascons) m.constant = false;
    if (Int4 rc = getdof(m.dof)) return rc;
    if (Int4 rc = getopt_str("depname", 3, depname, found)) return rc;
    if (Int4 rc = getopt_robust(m.robust, false)) return rc;
    return gethc(m);
}

// What the list says: the outcome, the regressors, and in parentheses the instruments.
Int4 readlist(regressmodel& m) {
    m.instruments = vl_ngroups > 0;
    Int4 ahead = m.instruments ? vl_groupbegin : vl_n;
    if (vl_ngroups > 1 || (m.instruments && vl_groups[0] != vl_n)) return error(198);
    if (ahead < 1) return error(102);
    m.regressors = ahead - 1;
    if (vl_n > matsize - 2) return error(908);
    if (m.regressors == 0 && !m.constant) return error(102);
    return m.instruments && m.hascons ? together("hascons and instruments") : 0;
}

// ---- The post.

// Rows that the estimates keep: sums and variances of the outcome and the regressors, and X'y.
struct keptrows { matrix mns, s2, xTy; };

Int4 keeprows(const crossproducts& c, const normalequations& e, const regressmodel& m, keptrows& rows) {
    Int4 n = m.regressors + 1;
    if (Int4 rc = makematrix(rows.mns, 1, n + 1)) return rc;
    if (Int4 rc = makematrix(rows.s2, 1, n)) return rc;
    if (Int4 rc = makematrix(rows.xTy, 1, n)) return rc;
    for (Int4 i = 0; i < n; i++) {
        Double mean = c.m.at(i + 1, 0) / e.weights, square = c.m.at(i + 1, i + 1) / e.weights;
        rows.mns.at(0, i) = c.m.at(i + 1, 0);
        rows.s2.at(0, i) = std::max(e.deviations ? square : square - mean * mean, 0.0);
        if (i) rows.xTy.at(0, i - 1) = c.m.at(i + 1, 1);
    }
    rows.mns.at(0, n) = e.weights;
    rows.xTy.at(0, n - 1) = e.ysum;
    return 0;
}

// The products of two stages, for who looks at the first.
struct keptproducts { matrix XX, XZ, Zy, ZZ; };

Int4 keepproduct(const std::vector<Double>& from, Int4 rows, Int4 cols, matrix& to) {
    if (!rows || !cols) return 0;
    if (Int4 rc = makematrix(to, rows, cols)) return rc;
    std::copy(from.begin(), from.end(), to.row(0));
    return 0;
}

Int4 keepproducts(const projection& p, Int4 k, keptproducts& kept) {
    Int4 q = Int4(p.means.size());
    if (Int4 rc = keepproduct(p.XX, k, k, kept.XX)) return rc;
    if (Int4 rc = keepproduct(p.XZ, k, q, kept.XZ)) return rc;
    if (Int4 rc = keepproduct(p.Zy, q, 1, kept.Zy)) return rc;
    return keepproduct(p.ZZ, q, q, kept.ZZ);
}

regressrecord recordof(const regressmodel& m, const regressfit& f) {
    regressrecord r;
    r.n = f.n;
    r.s2 = f.mse;
    r.rss = f.rss;
    r.mss = f.mss;
    r.df = f.df;
    r.dfmodel = f.dfmodel;
    r.k = f.k;
    r.regressors = m.regressors;
    r.weighted = weighttype && weighttype != weight_f;
    r.constant = m.constant;
    r.hascons = m.hascons;
    r.mse1 = m.mse1;
    r.instruments = m.instruments;
    r.robust = f.robust;
    r.centred = f.centred;
    return r;
}

void addresults(const regressmodel& m, const regressfit& f, estimation& e) {
    e.scalars = {{"N", std::floor(f.n)}, {"df_m", f.Fdf}, {"df_r", f.df}, {"F", f.F}, {"r2", f.r2},
                 {"rmse", std::sqrt(f.mse)}, {"mss", f.mss}, {"rss", f.rss}, {"r2_a", f.r2a}};
    if (f.ll != missing) e.scalars.push_back({"ll", f.ll});
    if (f.ll0 != missing) e.scalars.push_back({"ll_0", f.ll0});
    e.macros = {{"depvar", entryname(0)}, {"model", m.instruments ? "iv" : "ols"},
                {"predict", m.instruments ? "regriv_p" : "regres_p"}};
    std::string instruments;
    for (Int4 i = m.regressors + 1; i < vl_n; i++) instruments += (instruments.empty() ? "" : " ") + entryname(i);
    e.macros.push_back({"instruments", instruments});
    {
        saved<Int4> typed(weighttype, m.robust.typed);
        postweights(e);
    }
    const char* types[] = {"Robust", "Robust", "Robust HC2", "Robust HC3"};
    postrobust(e, m.robust, f.robustly, types[m.hc]);
    e.macros.push_back({"cmd", "regress"});
}

struct wholefit {
    estsample s;
    crossproducts c;
    normalequations e;
    projection p;
    regressfit f;
};

Int4 post(wholefit& w, const regressmodel& m, const std::string& depname) {
    estimation e;
    keptrows rows;
    keptproducts products;
    if (Int4 rc = keeprows(w.c, w.e, m, rows)) return rc;
    if (m.instruments)
        if (Int4 rc = keepproducts(w.p, m.regressors, products)) return rc;
    e.record.code = w.f.robust ? code_linearrobust : code_linear;
    e.record.scale = w.f.robust ? 1 : w.f.mse;
    copytext(e.record.depname, sizeof e.record.depname, depname.empty() ? entryname(0) : depname);
    for (Int4 i = 1; i <= m.regressors; i++) e.names.push_back(readaxisname(entryname(i)));
    if (m.constant) e.names.push_back(readaxisname("_cons"));
    e.b = std::move(w.f.b);
    e.V = std::move(w.f.V);
    addresults(m, w.f, e);
    regressrecord r = recordof(m, w.f);
    e.records = {{"regress", &r, sizeof r}};
    e.matrices = {{"mns", &rows.mns}, {"s2", &rows.s2}, {"xTy", &rows.xTy}};
    if (m.instruments && m.regressors)
        e.matrices.insert(e.matrices.end(), {{"xTx", &products.XX}, {"xTz", &products.XZ}, {"zTy", &products.Zy},
                                             {"zTz", &products.ZZ}});
    return postestimation(e, w.s);
}

Int4 fit(regressmodel& m, wholefit& w) {
    boolean claimed = m.hascons, deviations = m.constant;
    if (Int4 rc = estimationsample(listsources(), {.sums = deviations, .cluster = m.robust.cluster}, w.s)) return rc;
    if (Int4 rc = sscp_accum(w.s, {.printweights = true, .deviations = deviations}, w.c)) return rc;
    w.e = plainequations(w.c, m, deviations);
    if (w.e.weights <= 1) {              // as importance weights can be
        return noobservations();
    }
    if (m.instruments)
        if (Int4 rc = projectregressors(w.c, m, w.e, w.p)) return rc;
    if (Int4 rc = fitleast(w.c, w.e, m, w.f)) return rc;
    if (Int4 rc = measurefit(w.s, w.e, w.p, m, w.f)) return rc;
    return claimed && !m.hascons ? notef("(note: hascons false)\n") : 0;
}

Int4 replay() {
    regressshow o;
    if (bymode) return error(190);
    if (ifgiven || ingiven || weightgiven) return error(198);
    if (Int4 rc = getregressshow(o)) return rc;
    if (Int4 rc = getopt_done()) return rc;
    switch (estimatecode()) {
    case 1: case 2: case 11: case 20: return showregress(o);
    default: return error(301);
    }
}

}  // namespace

// regress depvar [varlist] [(varlist)] [weight] [if] [in] [, options]
Int4 cmd_regress() {
    if (Int4 rc = stdparse({.tsops = may, .weight = may})) return rc;
    if (!vl_given) return replay();
    saved<Int4> kind(weighttype, weighttype);
    regressmodel m;
    regressshow o;
    std::string depname;
    if (Int4 rc = getmodel(m, depname)) return rc;
    if (Int4 rc = getregressshow(o)) return rc;
    if (Int4 rc = getopt_done()) return rc;
    if (o.beta && m.robust.cluster) return together("cluster() and beta");
    if (Int4 rc = readlist(m)) return rc;
    wholefit w;
    if (Int4 rc = fit(m, w)) return rc;
    if (Int4 rc = post(w, m, depname)) return rc;
    return showregress(o);
}

}  // namespace velmo
