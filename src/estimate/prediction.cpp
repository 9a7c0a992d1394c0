#include "estimate/prediction.h"
#include <algorithm>
#include <cmath>
#include <cstring>
#include "base/saved.h"
#include "base/text.h"
#include "core/objects.h"
#include "data/cells.h"
#include "matrix/lanes.h"
#include "matrix/probability.h"
#include "output/errors.h"
#include "output/formats.h"
#include "output/print.h"
#include "stored/families.h"
#include "stored/posted.h"

namespace velmo {

namespace {

// ---- What a statistic needs.

enum needs : UByte { of_xb = 1, of_depvar = 2, of_variances = 4, of_scale = 8 };
constexpr UByte needed[] = {
    of_xb,                                            // xb
    of_xb | of_depvar,                                // residuals
    of_variances,                                     // stdp
    of_variances | of_scale,                          // stdr
    of_variances,                                     // hat
    of_xb | of_depvar | of_variances | of_scale,      // rstandard
    of_xb | of_depvar | of_variances | of_scale,      // cooksd
    of_xb,                                            // default
    of_xb | of_depvar | of_variances | of_scale,      // rstudent
    of_variances | of_scale,                          // stdf
    of_variances,                                     // stddp
};

boolean needs(const prediction& p, UByte what) { return needed[p.request.what] & what; }

Int4 terms(const prediction& p) { return Int4(p.terms.size()); }

// ---- Terms.

boolean severalequations(estimatekind kind) {
    return kind == kind_multiple || kind == kind_posted || kind == kind_constrained;
}

// The coefficients of an equation, or without a name all. Those of variables that the estimation dropped are left
// out: their values are 0, be they missing or gone.
Int4 addterms(prediction& p, const std::string* eq, Double sign) {
    std::vector<axisname> names = postednames();
    for (std::size_t i = 0; i < names.size(); i++) {
        const axisname& a = names[i];
        predictterm t{coefficient(Int4(i)), {0}, Int4(i), sign};
        if (eq && *eq != (a.eq[0] ? a.eqtext() : "_")) continue;
        saved<Int4> kind(matrixkind, obj_estimate);
        if (t.b == 0 && matel("VCE", t.at, t.at) == 0) continue;
        if (Int4 rc = namedsource(a, t.from)) return rc;
        if (!t.from.var) t.from.var = p.request.constant;
        p.terms.push_back(t);
    }
    return 0;
}

// The equations whose difference is asked for, the one that stands first ahead.
Int4 adddifference(prediction& p) {
    const std::string& text = p.request.equation;
    std::size_t comma = text.find(',');
    std::string names[2];
    if (comma == text.npos) return error(198);
    std::string_view parts[2] = {trimmed(std::string_view(text).substr(0, comma)),
                                 trimmed(std::string_view(text).substr(comma + 1))};
    for (Int4 i = 0; i < 2; i++) {
        if (parts[i].empty()) return error(198);
        if (Int4 rc = findequation(parts[i], names[i])) return rc;
    }
    std::vector<std::string> all = equations(postednames());
    if (std::find(all.begin(), all.end(), names[0]) > std::find(all.begin(), all.end(), names[1]))
        std::swap(names[0], names[1]);
    p.same = names[0] == names[1];
    if (Int4 rc = addterms(p, &names[0], 1)) return rc;
    return p.same ? 0 : addterms(p, &names[1], -1);
}

// e(offset), or that of the equation's number: a variable, or ln() of one.
Int4 addoffset(prediction& p, std::size_t equation) {
    std::string text;
    Double value;
    if (stored_get(e_results, "offset", value, text) != result_macro &&
        stored_get(e_results, "offset" + std::to_string(equation + 1), value, text) != result_macro)
        return 0;
    std::string_view name = trimmed(text);
    p.exposure = name.substr(0, 3) == "ln(";
    if (p.exposure) name = trimmed(name.substr(3, name.find(')') - 3));
    p.offset.var = lookupvar(name, lookup_ref);
    if (p.offset.var < 0) return -p.offset.var;
    return isstring(p.offset.var) ? error(109) : 0;
}

Int4 addequation(prediction& p, estimatekind kind) {
    std::string eq;
    std::size_t number = 0;
    if (p.request.what == predict_stddp) return adddifference(p);
    if (severalequations(kind)) {
        if (Int4 rc = findequation(p.request.equation, eq)) return rc;
        std::vector<std::string> all = equations(postednames());
        number = std::size_t(std::find(all.begin(), all.end(), eq) - all.begin());
    }
    if (Int4 rc = addterms(p, severalequations(kind) ? &eq : nullptr, 1)) return rc;
    return p.request.offset ? addoffset(p, number) : 0;
}

Int4 adddepvar(prediction& p, const postrecord& record) {
    std::string name;
    Double value;
    if (stored_get(e_results, "depvar", value, name) != result_macro)
        name = fieldtext(record.depname, sizeof record.depname);
    if (Int4 rc = namedsource(readaxisname(name), p.depvar)) return rc;
    return p.depvar.var ? 0 : varnotfound(name);
}

// ---- Rules.

Int4 addrules(prediction& p) {
    object* o = objfind("rules", obj_estimate);
    std::vector<rulerecord> records(o ? o->datalen / sizeof(rulerecord) : 0);
    if (o) objread(o, 0, records.data(), records.size() * sizeof(rulerecord));
    for (const rulerecord& r : records) {
        if (r.kind == 4) continue;
        axisname name = readaxisname(r.name);
        source from;
        if (!findvar(std::string(name.nametext()))) {
            if (prttextf("assuming %s == ", r.name) || prtnumber("%9.0g", r.value) || prtnl()) return 1;
            continue;
        }
        if (Int4 rc = namedsource(name, from)) return rc;
        p.rules.push_back({r.value, from, r.kind, r.outcome});
    }
    return 0;
}

// What decides, as a linear predictor beyond all others: 0 when the rule passes.
Double decided(const predictrule& r, Double x) {
    constexpr Double beyond = 1e37;
    if (x == r.value || Double(tofloat(x)) == r.value) return 0;      // the estimator compared in single precision
    switch (r.kind) {
    case 1: return r.outcome ? beyond : -beyond;
    case 2: return x <= r.value ? -beyond : beyond;
    default: return x >= r.value ? -beyond : beyond;
    }
}

// ---- Variances and scale.

Int4 readvariances(prediction& p) {
    matrix V;
    std::size_t n = p.terms.size();
    {
        saved<Int4> kind(matrixkind, obj_estimate);
        if (Int4 rc = matcopy("VCE", V)) return rc;
    }
    p.V = workspace(std::max<std::size_t>(n * n, 1) * sizeof(Double));
    if (!p.V.p) return error(909);
    for (std::size_t i = 0; i < n; i++)
        for (std::size_t j = 0; j < n; j++)
            p.V.get<Double>()[i * n + j] = (i == j ? 1 : 2) * V.at(p.terms[i].at, p.terms[j].at);
    return 0;
}

Int4 readscale(prediction& p, const postrecord& record) {
    regressrecord linear;
    p.scale = std::sqrt(record.scale);
    if (!posted_getrecord("regress", &linear, sizeof linear)) return kindof(p.code) == kind_survival ? error(301) : 0;
    if (linear.weighted && needs(p, of_scale)) return error(135);
    p.k = linear.k;
    p.s2 = linear.s2;
    if (!(linear.df > 1)) return 0;
    p.s2df = linear.df / (linear.df - 1) * linear.s2;
    p.dfm1 = linear.df - 1;
    return 0;
}

}  // namespace

Int4 prepareprediction(const predictrequest& r, prediction& p) {
    postrecord record;
    if (!posted(&record)) return error(301);
    p.request = r;
    p.code = record.code;
    estimatekind kind = kindof(p.code);
    if (severalequations(kind) && r.what == predict_default) p.request.what = predict_xb;
    if (Int4 rc = readscale(p, record)) return rc;
    if (Int4 rc = addequation(p, kind)) return rc;
    if (needs(p, of_depvar))
        if (Int4 rc = adddepvar(p, record)) return rc;
    if (needs(p, of_variances))
        if (Int4 rc = readvariances(p)) return rc;
    if (kind == kind_likelihood && !r.asif)
        if (Int4 rc = addrules(p)) return rc;
    std::size_t cells = (p.terms.size() + 5) * blocksize;
    p.work = workspace(cells * sizeof(Double));
    if (!p.work.p) return error(909);
    std::fill_n(p.work.get<Double>(), cells, 0.0);       // sums that a statistic doesn't need stay 0
    return 0;
}

// ---- Blocks.

namespace {

// A block in work: a column of each term, and what is made of them.
struct block {
    const prediction& p;
    Int4 first, n;
    Double* column(Int4 i) const { return p.work.get<Double>() + std::size_t(i) * blocksize; }
    Double* xb() const { return column(terms(p)); }
    Double* h() const { return column(terms(p) + 1); }
    Double* y() const { return column(terms(p) + 2); }
    Double* spare() const { return column(terms(p) + 3); }
    UByte* usable() const { return reinterpret_cast<UByte*>(column(terms(p) + 4)); }
    void fetch(source from, Double* to) const {
        getsource(from, first, n, to);
        for (Int4 i = 0; i < n; i++) usable()[i] &= to[i] != missing;
    }
};

void fetchterms(const block& b) {
    for (Int4 j = 0; j < terms(b.p); j++) {
        const predictterm& t = b.p.terms[std::size_t(j)];
        Double* x = b.column(j);
        if (t.from.var) b.fetch(t.from, x);
        else std::fill_n(x, b.n, 1.0);
        if (t.sign < 0)
            for (Int4 i = 0; i < b.n; i++) x[i] = -x[i];
    }
}

void sumxb(const block& b) {
    std::fill_n(b.xb(), b.n, 0.0);
    for (Int4 j = 0; j < terms(b.p); j++) addscaled(b.xb(), b.column(j), b.p.terms[std::size_t(j)].b, b.n);
}

void addoffsets(const block& b) {
    if (!b.p.offset.var) return;
    Double* offset = b.spare();
    b.fetch(b.p.offset, offset);
    for (Int4 i = 0; i < b.n; i++) {
        if (b.p.exposure) {
            b.usable()[i] &= offset[i] > 0;
            offset[i] = std::log(offset[i]);
        }
        b.xb()[i] += offset[i];
    }
}

// The first rule that doesn't pass decides an observation.
void decide(const block& b) {
    Double* x = b.spare();
    UByte open[blocksize];
    std::fill_n(open, b.n, UByte(1));
    for (const predictrule& r : b.p.rules) {
        b.fetch(r.from, x);
        for (Int4 i = 0; i < b.n; i++) {
            Double value = open[i] && b.usable()[i] ? decided(r, x[i]) : 0;
            if (value == 0) continue;
            open[i] = 0;
            b.xb()[i] = value;
            b.usable()[i] &= b.p.request.rules;
        }
    }
}

// The quadratic form of each observation's values in the variances.
void sumsquares(const block& b) {
    Int4 k = terms(b.p);
    std::fill_n(b.h(), b.n, 0.0);
    for (Int4 i = 0; i < k; i++) {
        const Double* V = b.p.V.get<Double>() + std::size_t(i) * std::size_t(k);
        Double *x = b.column(i), *sum = b.spare();
        for (Int4 l = 0; l < b.n; l++) sum[l] = V[i] * x[l];
        for (Int4 j = i + 1; j < k; j++) addscaled(sum, b.column(j), V[j], b.n);
        for (Int4 l = 0; l < b.n; l++) b.h()[l] += x[l] * sum[l];
    }
}

Double probability(Int4 code, Double xb) {
    if (code == 3) return norm(xb);
    if (xb >= 18) return 1;
    Double e = std::exp(xb);
    return code == 4 ? e / (1 + e) : e;
}

Double ratio(Double above, Double below) { return below == 0 ? missing : above / below; }

Double studentized(const prediction& p, Double e, Double h) {
    Double t = 1 - h, u = p.s2df - e * e / (t * p.dfm1);
    return h == 1 || p.dfm1 == missing || u == 0 ? missing : e / std::sqrt(u * t);
}

Double formula(const prediction& p, Double xb, Double y, Double h) {
    Double e = y - xb;
    switch (p.request.what) {
    case predict_xb: return xb;
    case predict_residuals: return e;
    case predict_stdp:
    case predict_stddp: return p.same ? 0 : std::sqrt(h) * p.scale;
    case predict_stdr: return std::sqrt(1 - h) * p.scale;
    case predict_hat: return h;
    case predict_rstandard: return ratio(e, std::sqrt(1 - h) * p.scale);
    case predict_cooksd: return ratio(h * e * e, (1 - h) * (p.k * p.s2 * (1 - h)));
    case predict_default: return probability(p.code, xb);
    case predict_rstudent: return studentized(p, e, h);
    default: return std::sqrt(1 + h) * p.scale;
    }
}

}  // namespace

void predictblock(const prediction& p, Int4 first, Int4 n, Double* out) {
    block b{p, first, n};
    std::fill_n(b.usable(), n, UByte(1));
    fetchterms(b);
    if (needs(p, of_xb)) sumxb(b);
    addoffsets(b);
    if (!p.rules.empty()) decide(b);
    if (needs(p, of_depvar)) b.fetch(p.depvar, b.y());
    if (needs(p, of_variances)) sumsquares(b);
    for (Int4 i = 0; i < n; i++)
        out[i] = b.usable()[i] ? datavalue(formula(p, b.xb()[i], b.y()[i], b.h()[i])) : missing;
}

}  // namespace velmo
