#include "estimate/binary.h"
#include <algorithm>
#include <cmath>
#include "base/saved.h"
#include "base/text.h"
#include "estimate/likelihood.h"
#include "estimate/perfect.h"
#include "language/stdparse.h"
#include "matrix/probability.h"

namespace velmo {

// ---- The two models.

namespace {

// Counts an observation. False when it decides nothing: its index is beyond the cut and on the right side. On the wrong
// one the index is cut.
boolean counted(Double& index, boolean success, Double w, Double cut, binarytally& t) {
    boolean above = index >= 0;
    t.counts[success][above]++;
    t.weights[success][above] += w;
    if (!(std::fabs(index) > cut)) return true;
    if (above == success) {
        t.decidedcounts[success][above]++;
        t.decided[success][above] += w;
        return false;
    }
    index = above ? cut : -cut;
    return true;
}

// one(i, index, success, w) for the observations of a block that decide something; what the others add is 0.
template <class F> void overdeciding(const indexblock& b, Double cut, binarytally& t, F one) {
    for (Int4 i = 0; i < b.n; i++) {
        Double index = b.index[i], w = b.weight ? b.weight[i] : 1;
        boolean success = b.outcome[i] != 0;
        b.score[i] = b.curvature[i] = 0;
        if (counted(index, success, w, cut, t)) one(i, index, success, w);
    }
}

void logitblock(const indexblock& b, Double& f, binarytally& t) {
    overdeciding(b, 18, t, [&](Int4 i, Double index, boolean success, Double w) {
        Double e = std::exp(index), p = e / (1 + e), q = 1 - p;
        f -= w * std::log(success ? p : q);
        b.score[i] = w * (b.outcome[i] - p);
        b.curvature[i] = w * p * q;
    });
}

void probitblock(const indexblock& b, Double& f, binarytally& t) {
    overdeciding(b, 6, t, [&](Int4 i, Double index, boolean success, Double w) {
        Double sign = success ? 1 : -1, p = norm(sign * index), lambda = sign * normden(index) / p;
        f -= w * std::log(p);
        b.score[i] = w * lambda;
        b.curvature[i] = w * lambda * (lambda + index);
    });
}

Double logitstart(Double p) { return std::log(p / (1 - p)); }

Double logitscore(Double index, boolean success) {
    Double e = std::exp(-std::fabs(index)), p = index < 0 ? e / (1 + e) : 1 / (1 + e);
    return success - p;
}

Double probitscore(Double index, boolean success) {
    Double p = norm(index);
    if (p == 0 || p == 1) return 0;
    return success ? normden(index) / p : -normden(index) / (1 - p);
}

}  // namespace

const binarymodel logitmodel = {4, "logit", "Logit estimates", "logit_p", logitstart, logitblock, logitscore};
const binarymodel probitmodel = {3, "probit", "Probit estimates", "probit_p", invnorm, probitblock, probitscore};

// ---- The fit.

namespace {

struct binaryfit {
    const binarymodel& model;
    const binaryrequest& request;
    estsample s;                             // sources: the outcome, the regressors, the offset
    std::vector<std::string> names;          // of the regressors
    std::vector<rulerecord> rules;
    indexdesign design;
    indexform form;
    std::vector<Double> b;
    binaryrecord record;
    binarytally tally;
    newtonresult result;
    Double ll0 = missing, n = 0;
    boolean constant;

    binaryfit(const binarymodel& m, const binaryrequest& r) : model(m), request(r), constant(r.constant) {}

    Int4 sample() {
        std::vector<source> sources = listsources();
        for (Int4 i = 1; i < vl_n; i++) names.push_back(entryname(i));
        if (request.offset) sources.push_back({request.offset});
        if (Int4 rc = estimationsample(sources, {.binary = true, .cluster = request.robust.cluster}, s)) return rc;
        if (!request.asis) return dropperfect(s, names, rules);
        Int4 rc = checkvaries(s);
        return rc ? rc : keeprows(s);
    }

    // The regressors' part of the cross-products, with the constant.
    Int4 collinear(const crossproducts& c) {
        crossproducts x;
        Int4 n = Int4(names.size()) + 1;
        if (Int4 rc = makematrix(x.m, n, n)) return rc;
        for (Int4 i = 0; i < n; i++)
            for (Int4 j = 0; j < n; j++) x.m.at(i, j) = c.m.at(i ? i + 1 : 0, j ? j + 1 : 0);
        std::vector<boolean> stays;
        if (Int4 rc = dropcollinear(x, names, constant, stays)) return rc;
        for (std::size_t j = 0; j < stays.size(); j++)
            if (stays[j]) form.columns.push_back(Int4(j) + 2);
        if (constant) form.columns.push_back(0);
        for (std::size_t j = stays.size(); j-- > 0;)
            if (!stays[j]) names.erase(names.begin() + std::ptrdiff_t(j));
        return names.empty() && !constant ? error(102) : 0;
    }

    // What the products tell: the outcome's moments, and where to start from.
    void start(const crossproducts& c) {
        Double total = c.m.at(0, 0);
        record.successes = c.m.at(1, 0);
        record.failures = total - record.successes;
        record.mean = record.successes / total;
        record.sd = std::sqrt(c.m.at(1, 1) / total - record.mean * record.mean);
        n = std::floor(total);
        record.n = Int4(std::min(n, Double(longmissing - 1)));
        Double p = record.successes / (record.successes + record.failures);
        Double offset = request.offset ? c.m.at(c.m.rows - 1, 0) / total : 0;
        b.assign(form.columns.size(), 0);
        if (constant) b.back() = model.start(p) - offset;
        if (constant && !request.offset) ll0 = std::log(1 - p) * record.failures + std::log(p) * record.successes;
    }

    Int4 prepare() {
        if (Int4 rc = sample()) return rc;
        crossproducts c;
        if (Int4 rc = sscp_accum(s, {.printweights = true}, c)) return rc;
        if (Int4 rc = collinear(c)) return rc;
        start(c);
        if (request.offset) form.offset = Int4(s.sources.size());
        return design.open(s, form);
    }

    Int4 iterate() {
        newtonform how;
        how.iterate = request.iterate;
        how.perfect = true;
        auto evaluate = [&](const Double* at, Double& f, Double* g, Double* H) {
            tally = {};
            auto block = [&](const indexblock& rows, Double& sum) { model.block(rows, sum, tally); };
            return design.evaluate(block, at, f, g, H);
        };
        return mlnewton(evaluate, how, b, result);
    }

    // Scores of the run, times the weight, where they are asked for.
    Int4 scores(workspace& out) {
        if (!request.robust.robust && request.robust.score.empty()) return 0;
        out = workspace((std::size_t(s.run) + 1) * sizeof(Double));
        if (!out.p) return error(909);
        auto block = [&](const indexblock& rows, Double&) {
            for (Int4 i = 0; i < rows.n; i++) {
                Double score = model.score(rows.index[i], rows.outcome[i] != 0);
                rows.score[i] = rows.weight ? rows.weight[i] * score : score;
            }
        };
        return design.scores(block, b.data(), out.get<Double>());
    }

    void fillrecord() {
        record.ll = result.ll;
        record.ll0 = ll0;
        for (Int4 y : {0, 1})
            for (Int4 above : {0, 1}) {
                record.counts[y][above] = tally.counts[y][above];
                record.weights[y][above] = tally.weights[y][above];
                record.decidedcounts[y][above] = tally.decidedcounts[y][above];
                record.decided[y][above] = tally.decided[y][above];
            }
        record.regressors = Int4(names.size());
        record.parameters = Int4(b.size());
        record.offset = request.offset;
        record.most = request.iterate.most;
        record.iterations = result.iterations;
        record.status = result.status;
        record.tolerance = request.iterate.tolerance;
        record.ltolerance = request.iterate.ltolerance;
        record.constant = constant;
        record.trace = request.iterate.trace;
        record.log = request.iterate.log;
        record.asis = request.asis;
        copytext(record.depname, sizeof record.depname, entryname(0));
    }

    Int4 names_and_coefficients(estimation& e) {
        e.record.code = model.code;
        copytext(e.record.depname, sizeof e.record.depname, entryname(0));
        for (const std::string& name : names) e.names.push_back(readaxisname(name));
        if (constant) e.names.push_back(readaxisname("_cons"));
        if (Int4 rc = makematrix(e.b, 1, Int4(b.size()))) return rc;
        std::copy(b.begin(), b.end(), e.b.row(0));
        e.V = std::move(result.V);
        return 0;
    }

    Int4 post() {
        estimation e;
        workspace score(0);
        robustresult robust;
        fillrecord();
        if (Int4 rc = scores(score)) return rc;
        if (Int4 rc = names_and_coefficients(e)) return rc;
        if (request.robust.robust)
            if (Int4 rc = robustvariance(s, request.robust, {}, {{form.columns, score.get<Double>()}}, e.V, robust))
                return rc;
        e.macros = {{"cmd", model.word}, {"depvar", entryname(0)}, {"predict", model.predict}};
        e.scalars.push_back({"N", n});
        modeltest test{result.ll, ll0, !request.robust.robust, {}};
        for (Int4 j = 0; j < Int4(names.size()); j++) test.tested.push_back(j);
        if (Int4 rc = posttest(e, test)) return rc;
        if (request.offset) e.macros.push_back({"offset", varlist[request.offset - 1]});
        postrobust(e, request.robust, robust);
        {
            saved<Int4> typed(weighttype, request.robust.typed);
            postweights(e);
        }
        e.records.push_back({"probit", &record, sizeof record});
        if (!rules.empty()) e.records.push_back({"rules", rules.data(), rules.size() * sizeof(rulerecord)});
        if (Int4 rc = storescores(s, request.robust, score.get<Double>(), nullptr)) return rc;
        return postestimation(e, s);
    }
};

}  // namespace

Int4 fitbinary(const binarymodel& model, const binaryrequest& request) {
    binaryfit fit(model, request);
    if (Int4 rc = fit.prepare()) return rc;
    if (Int4 rc = fit.iterate()) return rc;
    return fit.post();
}

}  // namespace velmo
