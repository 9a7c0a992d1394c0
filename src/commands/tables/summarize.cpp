// summarize: the table of two passes over the sample, and the detailed one of each variable.
#include <algorithm>
#include <string>
#include <vector>
#include "base/columns.h"
#include "base/memalloc.h"
#include "commands/tables/tabletext.h"
#include "data/dataset.h"
#include "data/labels.h"
#include "estimate/sample.h"
#include "language/options.h"
#include "language/stdparse.h"
#include "matrix/percentiles.h"
#include "output/errors.h"
#include "output/formats.h"
#include "output/print.h"
#include "stored/families.h"

namespace velmo {

namespace {

struct sumoptions { boolean detail, meanonly, format; };

// ---- The plain table.

void storeplain(const moments& m, const sumoptions& o) {
    rclear();
    rstore("N", m.n);
    rstore("sum_w", m.w);
    if (o.meanonly || m.count == 0) {
        rstore("sum", total(m.sum));
        if (m.count == 0) return;
        rstore("mean", m.mean);
        rstore("min", m.min);
        rstore("max", m.max);
        return;
    }
    rstore("mean", m.mean);
    rstore("Var", m.variance);
    rstore("sd", m.sd);
    rstore("min", m.min);
    rstore("max", m.max);
    rstore("sum", total(m.sum));
}

void plainheading() {
    boolean weights = weighttype == weight_a;
    prtmarkup(std::string("\n    Variable {c |}     Obs      ") + (weights ? "Weight      " : "") +
              "  Mean   Std. Dev.       Min        Max\n{hline 13}{c +}{hline " + (weights ? "65}\n" : "53}\n"));
}

const char* numberformat(Int4 entry, const sumoptions& o, char (&out)[fmtsize]) {
    if (!o.format || isstring(entryvar(entry))) return "%9.0g";
    cutformat(fmt[entryvar(entry) - 1], "%9.0g", out);
    return out;
}

Int4 plainline(Int4 entry, const moments& m, const sumoptions& o) {
    tabstub(entryname(entry));
    prtnumber("%8.0g", m.n);
    if (weighttype == weight_a) {
        prttext(" ");
        prtnumber("%11.4g", m.w);
    }
    if (m.count) {
        char own[fmtsize];
        const char* f = numberformat(entry, o, own);
        prttext("   ");
        for (Double v : {m.mean, m.sd, m.min}) {
            prtnumber(f, v);
            prttext("  ");
        }
        prtnumber(f, m.max);
    }
    return prtnl();
}

Int4 plainsummaries(const sumoptions& o) {
    std::vector<source> sources = listsources();
    for (Int4 at = 0; at < vl_n; at += sweepwidth) {
        moments m[sweepwidth];
        Int4 k = std::min(sweepwidth, vl_n - at);
        if (Int4 rc = firstpass(&sources[std::size_t(at)], k, m, [](const sampleblock&) {})) return rc;
        if (!o.meanonly)
            if (Int4 rc = secondpass(&sources[std::size_t(at)], k, m)) return rc;
        if (at == 0 && !o.meanonly) plainheading();
        for (Int4 j = 0; j < k; j++) {
            storeplain(m[j], o);
            if (o.meanonly) continue;
            if (Int4 rc = plainline(at + j, m[j], o)) return rc;
        }
    }
    return 0;
}

// ---- detail

constexpr Double percents[9] = {1, 5, 10, 25, 50, 75, 90, 95, 99};

// The counted values of one variable, and their weights, in buffers.
struct counted {
    Int4 n = 0;
    workspace values, weights;
    explicit counted(std::size_t room)
        : values(room * sizeof(Double)), weights(weighttype ? room * sizeof(Double) : 0) {}
    boolean got() const { return values.p && (weights.p || !weighttype); }
    Double value(Int4 i) const { return i >= 1 && i <= n ? values.get<Double>()[i - 1] : missing; }
    void add(const sampleblock& b) {
        Double *x = values.get<Double>() + n, *w = weights.get<Double>();
        Int4 k = 0;
        for (Int4 i = 0; i < b.n; i++) {
            x[k] = b.x[i][0];
            if (w) w[n + k] = b.weight[i];
            k += b.x[i][0] != missing;
        }
        n += k;
    }
};

Int4 sortcounted(counted& c) {
    if (!c.weights.p) {
        sortvalues(c.values.get<Double>(), c.n);
        return 0;
    }
    workspace work(std::size_t(c.n) * 2 * sizeof(Double));
    if (!work.p) return error(909);
    sortweighted(c.values.get<Double>(), c.weights.get<Double>(), c.n, work.p);
    return 0;
}

// The powers of the deviations, from the data in their order.
Int4 highmoments(const source& s, moments& m) {
    Int4 rc = oversample(&s, 1, [&](const sampleblock& b, Int4) {
        for (Int4 i = 0; i < b.n; i++) moments_powers(m, b.x[i][0], weighttype ? b.weight[i] : 1);
    });
    moments_higher(m);
    return rc;
}

void detailheading(Int4 entry) {
    std::string label = getvarlabel(varlist[entryvar(entry) - 1]);
    std::vector<std::string> lines;
    if (entryop(entry)) lines.push_back(entryname(entry));
    if (!label.empty() || !entryop(entry)) wordwrap(label.empty() ? varlist[entryvar(entry) - 1] : label, 50, lines);
    prtnl();
    for (const std::string& line : lines)
        prttext(std::string(std::size_t(std::max(0, (62 - textcolumns(line) - 1) / 2)), ' ') + line + "\n");
    prtmarkup("{hline 61}\n");
}

// One line of the table: label, percentile, its neighbour, and what continues the line.
struct detailline { const char* label; Int4 percentile; Int4 extreme; const char* text; Int4 what; };
enum detailvalue : Int4 { v_none, v_n, v_w, v_mean, v_sd, v_variance, v_skewness, v_kurtosis };
constexpr detailline detaillines[] = {
    {" 1%", 0, 0, "", v_none},
    {" 5%", 1, 1, "", v_none},
    {"10%", 2, 2, "       Obs         ", v_n},
    {"25%", 3, 3, "       Sum of Wgt. ", v_w},
    {"50%", 4, -1, "                Mean          ", v_mean},
    {nullptr, -1, -1, "                        Largest       Std. Dev.     ", v_sd},
    {"75%", 5, 4, "", v_none},
    {"90%", 6, 5, "       Variance      ", v_variance},
    {"95%", 7, 6, "       Skewness      ", v_skewness},
    {"99%", 8, 7, "       Kurtosis      ", v_kurtosis},
};

Int4 detailtable(const moments& m, const Double (&p)[9], const Double (&extremes)[8], const char* f) {
    const Double values[] = {0, m.n, m.w, m.mean, m.sd, m.variance, m.skewness, m.kurtosis};
    prttext("      Percentiles      Smallest\n");
    for (const detailline& line : detaillines) {
        if (line.label) {
            prttext(std::string(line.label) + "    ");
            prtnumber(f, p[line.percentile]);
            prttext("      ");
        }
        if (line.extreme >= 0) prtnumber(f, extremes[line.extreme]);
        if (line.text[0]) prttext(line.text);
        if (line.what) prtnumber(line.what <= v_w ? "%11.0g" : f, values[line.what]);
        if (Int4 rc = prtnl()) return rc;
        if (line.what == v_w) prtnl();
    }
    return 0;
}

void storedetail(const moments& m, const Double (&p)[9]) {
    static constexpr const char* names[9] = {"p1", "p5", "p10", "p25", "p50", "p75", "p90", "p95", "p99"};
    rclear();
    rstore("N", m.n);
    rstore("sum_w", m.w);
    rstore("mean", m.mean);
    rstore("Var", m.variance);
    rstore("sd", m.sd);
    rstore("skewness", m.skewness);
    rstore("kurtosis", m.kurtosis);
    rstore("sum", total(m.sum));
    rstore("min", m.min);
    rstore("max", m.max);
    for (Int4 k = 0; k < 9; k++) rstore(names[k], p[k]);
}

Int4 detailone(Int4 entry, const sumoptions& o) {
    moments m;
    source from{entryvar(entry), entryop(entry)};
    // One place more than observations: a block writes ahead of what it keeps.
    counted c(std::size_t(std::max(lastobs - firstobs + 1, 0)) + 1);
    if (!c.got()) return error(909);
    if (Int4 rc = firstpass(&from, 1, &m, [&](const sampleblock& b) { c.add(b); })) return rc;
    detailheading(entry);
    if (m.count == 0) {
        storeplain(m, o);
        return noobservations();
    }
    if (Int4 rc = highmoments(from, m)) return rc;
    if (Int4 rc = sortcounted(c)) return rc;
    Double p[9], extremes[8];
    for (Int4 i = 0; i < 4; i++) {
        extremes[i] = c.value(i + 1);
        extremes[4 + i] = c.value(m.count - 3 + i);
    }
    if (weighttype)
        weightedpercentiles(c.values.get<Double>(), c.weights.get<Double>(), c.n, m.w, percents, 9, p);
    else
        for (Int4 k = 0; k < 9; k++) p[k] = percentile(c.values.get<Double>(), c.n, percents[k]);
    storedetail(m, p);
    char own[fmtsize];
    return detailtable(m, p, extremes, numberformat(entry, o, own));
}

}  // namespace

// summarize [varlist] [if] [in] [weight] [, detail meanonly format]
Int4 cmd_summarize() {
    if (Int4 rc = stdparse({.tsops = may, .weight = may, .weights = weight_a | weight_f, .oldscale = true})) return rc;
    sumoptions o{getopt_flag("detail", 1), false, getopt_flag("format", 1)};
    if (!o.detail) o.meanonly = getopt_flag("meanonly", 4);
    if (Int4 rc = getopt_done()) return rc;
    rclear();
    if (!o.detail) return plainsummaries(o);
    Int4 last = 0;
    for (Int4 i = 0; i < vl_n; i++) {
        last = detailone(i, o);
        if (last && last != 2000) return last;
        if (last == 2000 && vl_n == 1) return last;
    }
    return last;
}

}  // namespace velmo
