// Statistics of groups: for each source one pass over its buffer fills the moments of all groups, a second those powers
// that need the means; for percentiles the values are put group behind group and each group's are sorted.
#include <algorithm>
#include "base/text.h"
#include "data/cells.h"
#include "estimate/groups.h"
#include "matrix/percentiles.h"
#include "output/errors.h"

namespace velmo {

boolean statnamed(std::string_view word, groupstat& stat, Double& p) {
    static constexpr struct { const char* word; groupstat stat; } rows[] = {
        {"count", stat_count}, {"sum", stat_sum}, {"rawsum", stat_rawsum}, {"mean", stat_mean}, {"sd", stat_sd},
        {"variance", stat_variance}, {"skewness", stat_skewness}, {"kurtosis", stat_kurtosis}, {"min", stat_min},
        {"max", stat_max}, {"median", stat_percentile}, {"iqr", stat_iqr}, {"first", stat_first}, {"last", stat_last},
        {"firstnm", stat_firstnm}, {"lastnm", stat_lastnm},
    };
    p = 50;
    for (const auto& row : rows) {
        if (word != row.word) continue;
        stat = row.stat;
        return true;
    }
    stat = stat_percentile;
    return word.size() > 1 && word[0] == 'p' && readnumber(word.substr(1), p) && p > 0 && p < 100;
}

namespace {

// One source's pass: its values and weights, the results asked of it, the moments of the groups.
struct statpass {
    const drawnsample& s;
    const grouping& g;
    source from;
    const Double* x;               // null: a string variable's, or observations alone
    const Double* w;               // null without weights
    weighing kind = sampleweighing();
    std::vector<groupresult*> wanted = {};
    workspace room{0};
    moments* m = nullptr;

    boolean wants(groupstat stat) const {
        for (const groupresult* r : wanted)
            if (r->stat == stat) return true;
        return false;
    }
    boolean absent(Int4 i) const { return x ? x[i] == missing : from.var && strcell(from.var, s.numbers()[i]).empty(); }
};

// Without values each observation that has a text counts as a 1.
void firstmoments(statpass& t) {
    const UInt4* code = t.g.codes();
    for (Int4 i = 0; i < t.g.n; i++) {
        Double v = t.x ? t.x[i] : t.absent(i) ? missing : 1;
        if (t.w)
            moments_add(t.m[code[i]], v, t.w[i]);
        else
            moments_add(t.m[code[i]], v);
    }
    for (Int4 k = 0; k < t.g.groups; k++) moments_first(t.m[k], t.kind);
}

// Both give the same squares; the plain variance is taken after the one of the higher moments, which rounds otherwise.
void secondmoments(statpass& t) {
    const UInt4* code = t.g.codes();
    boolean powers = t.wants(stat_skewness) || t.wants(stat_kurtosis);
    if (!powers && !t.wants(stat_sd) && !t.wants(stat_variance)) return;
    for (Int4 i = 0; i < t.g.n; i++) {
        Double w = t.w ? t.w[i] : 1;
        if (powers)
            moments_powers(t.m[code[i]], t.x[i], w);
        else
            moments_square(t.m[code[i]], t.x[i], w);
    }
    for (Int4 k = 0; k < t.g.groups; k++) {
        if (powers) moments_higher(t.m[k]);
        moments_second(t.m[k], t.kind);
    }
}

// With aweights a sum is that of weights that sum to the number of observations.
Double momentvalue(const moments& m, groupstat stat, weighing kind) {
    switch (stat) {
    case stat_count: return m.n;
    case stat_sum: return kind != weigh_analytic ? total(m.sum) : m.count ? total(m.sum) / m.w * m.n : 0;
    case stat_mean: return m.mean;
    case stat_sd: return m.sd;
    case stat_variance: return m.variance;
    case stat_skewness: return m.skewness;
    case stat_kurtosis: return m.kurtosis;
    case stat_min: return m.min;
    default: return m.count ? m.max : missing;
    }
}

// The sum without weights.
Int4 rawsums(statpass& t, Double* out) {
    workspace room(std::size_t(t.g.groups) * sizeof(compsum));
    compsum* sums = room.get<compsum>();
    if (!sums) return error(909);
    std::fill_n(sums, t.g.groups, compsum{});
    for (Int4 i = 0; i < t.g.n; i++)
        if (t.x[i] != missing) compadd(sums[t.g.codes()[i]], t.x[i]);
    for (Int4 k = 0; k < t.g.groups; k++) out[k] = total(sums[k]);
    return 0;
}

// The values group behind group, sorted within, and their weights.
struct groupvalues {
    workspace start, x, w, work;
    explicit groupvalues(const statpass& t)
        : start(std::size_t(t.g.groups + 1) * sizeof(Int4)), x(std::size_t(t.g.n) * sizeof(Double)),
          w(t.w ? std::size_t(t.g.n) * sizeof(Double) : 0), work(t.w ? std::size_t(t.g.n) * 2 * sizeof(Double) : 0) {}
    boolean got(boolean weighted) const { return start.p && x.p && (!weighted || (w.p && work.p)); }
};

Int4 sortgroups(const statpass& t, groupvalues& v) {
    Int4* end = v.start.get<Int4>();
    Double *x = v.x.get<Double>(), *w = v.w.get<Double>();
    end[0] = 0;
    for (Int4 k = 0; k < t.g.groups; k++) end[k + 1] = end[k] + t.m[k].count;
    for (Int4 i = 0; i < t.g.n; i++) {
        if (t.x[i] == missing) continue;
        Int4 at = end[t.g.codes()[i]]++;
        x[at] = t.x[i];
        if (w) w[at] = t.w[i];
    }
    for (Int4 k = t.g.groups; k > 0; k--) end[k] = end[k - 1];
    end[0] = 0;
    for (Int4 k = 0; k < t.g.groups; k++) {
        if (w)
            sortweighted(x + end[k], w + end[k], t.m[k].count, v.work.p);
        else
            sortvalues(x + end[k], t.m[k].count);
        if (tick()) return 1;
    }
    return 0;
}

Int4 percentileresults(statpass& t) {
    groupvalues v(t);
    if (!v.got(t.w)) return error(909);
    if (Int4 rc = sortgroups(t, v)) return rc;
    for (groupresult* r : t.wanted) {
        if (r->stat != stat_percentile && r->stat != stat_iqr) continue;
        boolean iqr = r->stat == stat_iqr;
        Double* out = r->out.get<Double>();
        for (Int4 k = 0; k < t.g.groups; k++) {
            const Double *x = v.x.get<Double>() + v.start.get<Int4>()[k], p[2] = {iqr ? 25 : r->p, 75};
            Int4 n = t.m[k].count;
            Double q[2] = {missing, missing};
            for (Int4 i = 0; n && i <= Int4(iqr); i++) {
                if (t.w)
                    weightedpercentiles(x, v.w.get<Double>() + (x - v.x.get<Double>()), n, t.m[k].w, p + i, 1, q + i);
                else
                    q[i] = percentile(x, n, p[i]);
            }
            out[k] = !iqr ? q[0] : n ? q[1] - q[0] : missing;
        }
    }
    return 0;
}

// The observation whose cell is a group's first or last, of all or of those that have a value.
void cellresults(const statpass& t, groupresult& r) {
    Int4* out = r.out.get<Int4>();
    boolean valued = r.stat == stat_firstnm || r.stat == stat_lastnm;
    boolean last = r.stat == stat_last || r.stat == stat_lastnm;
    std::fill_n(out, t.g.groups, 0);
    for (Int4 i = 0; i < t.g.n; i++) {
        Int4& cell = out[t.g.codes()[i]];
        if ((last || !cell) && !(valued && t.absent(i))) cell = t.s.numbers()[i];
    }
}

Int4 momentpass(statpass& t) {
    t.room = workspace(std::size_t(std::max(t.g.groups, 1)) * sizeof(moments));
    t.m = t.room.get<moments>();
    if (!t.m) return error(909);
    std::fill_n(t.m, t.g.groups, moments{});
    firstmoments(t);
    if (tick()) return 1;
    secondmoments(t);
    for (groupresult* r : t.wanted) {
        if (iscell(r->stat) || r->stat == stat_percentile || r->stat == stat_iqr || r->stat == stat_rawsum) continue;
        for (Int4 k = 0; k < t.g.groups; k++) r->out.get<Double>()[k] = momentvalue(t.m[k], r->stat, t.kind);
    }
    return t.wants(stat_percentile) || t.wants(stat_iqr) ? percentileresults(t) : 0;
}

Int4 statisticsof(statpass& t) {
    boolean numbers = false;
    for (groupresult* r : t.wanted) {
        if (iscell(r->stat))
            cellresults(t, *r);
        else if (r->stat != stat_rawsum)
            numbers = true;
        else if (Int4 rc = rawsums(t, r->out.get<Double>()))
            return rc;
        if (tick()) return 1;
    }
    return numbers ? momentpass(t) : 0;
}

}  // namespace

Int4 groupstatistics(const drawnsample& s, const std::vector<source>& sources, const grouping& g,
                     std::vector<groupresult>& results) {
    for (Int4 from = -1; from < Int4(sources.size()); from++) {
        source of = from < 0 ? source{0} : sources[std::size_t(from)];
        statpass t{s, g, of, of.var && !isstring(of.var) ? s.values(from) : nullptr, s.weights()};
        for (groupresult& r : results) {
            if (r.from != from) continue;
            r.out = workspace(std::size_t(std::max(g.groups, 1)) * (iscell(r.stat) ? sizeof(Int4) : sizeof(Double)));
            if (!r.out.p) return error(909);
            t.wanted.push_back(&r);
        }
        if (t.wanted.empty() || g.groups == 0) continue;
        if (Int4 rc = statisticsof(t)) return rc;
    }
    return 0;
}

}  // namespace velmo
