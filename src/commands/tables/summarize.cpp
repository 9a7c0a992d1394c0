// summarize: two passes over the data for up to 32 variables, two to a vector register, each with its own compensated
// sum, so that the order and correction of every sum are those of one variable alone.
#include <algorithm>
#include <cmath>
#include <cstring>
#include <string>
#include <vector>
#include "base/memalloc.h"
#include "base/columns.h"
#include "base/poll.h"
#include "commands/tables/tabletext.h"
#include "data/cells.h"
#include "data/labels.h"
#include "data/run.h"
#include "data/sorting.h"
#include "data/timeseries.h"
#include "expr/evaluate.h"
#include "language/options.h"
#include "language/stdparse.h"
#include "matrix/compadd.h"
#include "matrix/results.h"
#include "output/errors.h"
#include "output/formats.h"
#include "output/print.h"

namespace velmo {

namespace {

constexpr Int4 lanes = 8;         // of a block
constexpr Int4 sweepwidth = 32;    // variables that one sweep over the data takes

// What a pass leaves for one variable.
struct moments {
    Int4 count = 0;
    compsum weights, sum, squares;
    Double min = missing, max = -missing;
    Double n = 0, w = 0, mean = missing, variance = missing, sd = missing;
    Double m3 = 0, m4 = 0, skewness = missing, kurtosis = missing;
};

struct sumoptions { boolean detail, meanonly, format; };

// A block of observations: the values of up to eight variables, row by row, with what doesn't count as missing.
struct block {
    Int4 first, n, k;
    boolean whole;                // all observations count
    boolean sparse;               // few do: rows are those alone, whose observations stand in obs
    UByte mask[blocksize];
    Int4 obs[blocksize];
    Double weight[blocksize];
    alignas(16) Double x[blocksize][lanes];
};

// Where few observations of a block count, only those are fetched: reading a row costs more than the arithmetic.
void thinblock(block& b) {
    Int4 n = 0;
    for (Int4 i = 0; i < b.n; i++) {
        b.obs[n] = b.first + i;
        n += b.mask[i];
    }
    if (n * 8 > b.n) return;
    for (Int4 i = 0; i < n; i++) b.weight[i] = b.weight[b.obs[i] - b.first];
    b.sparse = true;
    b.n = n;
}

// Which observations of a block count, and their weights.
Int4 selectblock(block& b) {
    b.whole = !ifgiven && !weighttype;
    b.sparse = false;
    if (b.whole) return 0;
    exp_ifblock(b.first, b.n, b.mask);
    if (!weighttype) {
        thinblock(b);
        return 0;
    }
    for (Int4 i = 0; i < b.n; i++) {
        if (!b.mask[i]) continue;
        boolean use;
        if (Int4 rc = weightat(b.first + i, b.weight[i], use)) return rc;
        b.mask[i] = use;
    }
    thinblock(b);
    return 0;
}

// All variables plain doubles: one walk along the rows.
boolean alldoubles(const Int4* entries, Int4 k) {
    for (Int4 j = 0; j < k; j++)
        if (entryop(entries[j]) || typ[entryvar(entries[j]) - 1] != typedouble) return false;
    return true;
}

void fetchdoubles(block& b, const Int4* entries) {
    std::size_t offset[lanes];
    for (Int4 j = 0; j < b.k; j++) offset[j] = mapi[entryvar(entries[j]) - 1];
    constexpr Int4 ahead = 16;     // rows in a permuted order would else be waited for one by one
    Int4 known = ptrmark - b.first - ahead;
    for (Int4 i = 0; i < b.n; i++) {
        const UByte* row = rowptr(b.first + i);
        if (i < known) {
            const UByte* later = rowptr(b.first + i + ahead);
            __builtin_prefetch(later + offset[0]);
            __builtin_prefetch(later + offset[b.k - 1]);
        }
        for (Int4 j = 0; j < b.k; j++) b.x[i][j] = readraw<Double>(row + offset[j]);
    }
}

void fetchcolumn(block& b, Int4 entry, Int4 j) {
    Double values[blocksize];
    Int4 var = entryvar(entry);
    if (entryop(entry))
        for (Int4 i = 0; i < b.n; i++) values[i] = varvalue(entry, b.first + i);
    else
        getcolumn(var, b.first, b.n, values);
    for (Int4 i = 0; i < b.n; i++) b.x[i][j] = values[i];
}

void fetchsparse(block& b, const Int4* entries) {
    for (Int4 i = 0; i < b.n; i++)
        for (Int4 j = 0; j < b.k; j++) b.x[i][j] = varvalue(entries[j], b.obs[i]);
}

void fetchblock(block& b, const Int4* entries) {
    if (b.sparse)
        fetchsparse(b, entries);
    else if (alldoubles(entries, b.k))
        fetchdoubles(b, entries);
    else
        for (Int4 j = 0; j < b.k; j++) fetchcolumn(b, entries[j], j);
    if (b.k & 1)
        for (Int4 i = 0; i < b.n; i++) b.x[i][b.k] = missing;
    if (b.whole || b.sparse) return;
    for (Int4 i = 0; i < b.n; i++)
        if (!b.mask[i]) std::fill_n(b.x[i], lanes, missing);
}

// Calls one(block, at) for the run's blocks, and within a block for each eight of the k entries from `at` on, so that
// the rows are walked along once.
template <class F> Int4 overblocks(const Int4* entries, Int4 k, F one) {
    static block b;
    for (b.first = firstobs; b.first <= lastobs; b.first += blocksize) {
        b.n = std::min(blocksize, lastobs - b.first + 1);
        if (Int4 rc = selectblock(b)) return rc;
        for (Int4 at = 0; at < k; at += lanes) {
            b.k = std::min(lanes, k - at);
            fetchblock(b, entries + at);
            one(b, at);
        }
        if (tick()) return 1;
        if (lastobs - b.first < blocksize) break;
    }
    return 0;
}

// ---- First pass.

// Running sums, counts and extremes of a sweep's variables, two to a register.
struct sweepsums {
    comppair sum[sweepwidth / 2];
    bits2 count[sweepwidth / 2];
    pair2 low[sweepwidth / 2], high[sweepwidth / 2], mean[sweepwidth / 2];
};

pair2 pairof(const block& b, Int4 i, Int4 p) { return *reinterpret_cast<const pair2*>(&b.x[i][2 * p]); }

// Adds term(x, p) of every row to the sums of P pairs: their chains of additions run beside each other.
template <Int4 P, class F> void addpairs(const block& b, comppair* sums, F term) {
    comppair a[P];
    std::copy_n(sums, P, a);
    for (Int4 i = 0; i < b.n; i++) {
#pragma GCC unroll 4
        for (Int4 p = 0; p < P; p++) compadd2(a[p], term(pairof(b, i, p), p));
    }
    std::copy_n(a, P, sums);
}

template <class F> void addblock(const block& b, comppair* sums, F term) {
    switch ((b.k + 1) / 2) {
    case 1: return addpairs<1>(b, sums, term);
    case 2: return addpairs<2>(b, sums, term);
    case 3: return addpairs<3>(b, sums, term);
    default: return addpairs<4>(b, sums, term);
    }
}

// Without weights. An observation that doesn't count adds 0, which changes neither a sum nor its correction.
void sumblock(const block& b, comppair* sums) {
    addblock(b, sums, [](pair2 x, Int4) { return (pair2)((bits2)x & (x != missing)); });
}

void extremesblock(const block& b, Int4 p, bits2& count, pair2& low, pair2& high) {
    bits2 n = count;
    pair2 lo = low, hi = high;
    for (Int4 i = 0; i < b.n; i++) {
        pair2 x = pairof(b, i, p);
        bits2 counts = x != missing;
        n -= counts;
        lo = x < lo ? x : lo;
        bits2 higher = (x > hi) & counts;
        hi = higher ? x : hi;
    }
    count = n;
    low = lo;
    high = hi;
}

// The observations of a block that count for its first variable are listed behind what `list` holds already.
struct countedlist { Int4* at; };

void listcounted(const block& b, countedlist* list) {
    if (!list) return;
    Int4* at = list->at;
    for (Int4 i = 0; i < b.n; i++) {
        *at = b.sparse ? b.obs[i] : b.first + i;
        at += b.x[i][0] != missing;
    }
    list->at = at;
}

Int4 firstplain(const Int4* entries, Int4 k, moments* out, countedlist* list = nullptr) {
    static sweepsums s;
    s = {};
    for (Int4 p = 0; p < sweepwidth / 2; p++) {
        s.low[p] = pair2{missing, missing};
        s.high[p] = pair2{-missing, -missing};
    }
    Int4 rc = overblocks(entries, k, [list](const block& b, Int4 at) {
        listcounted(b, list);
        sumblock(b, s.sum + at / 2);
        for (Int4 p = 0, q = at / 2; 2 * p < b.k; p++, q++) extremesblock(b, p, s.count[q], s.low[q], s.high[q]);
    });
    for (Int4 j = 0; j < k; j++) {
        Int4 q = j / 2, half = j & 1;
        out[j].count = Int4(s.count[q][half]);
        out[j].sum = {s.sum[q].s[half], s.sum[q].c[half]};
        out[j].min = s.low[q][half];
        out[j].max = s.high[q][half];
    }
    return rc;
}

Int4 firstweighted(const Int4* entries, Int4 k, moments* out, countedlist* list = nullptr) {
    return overblocks(entries, k, [&](const block& b, Int4 at) {
        listcounted(b, list);
        for (Int4 j = 0; j < b.k; j++) {
            moments& m = out[at + j];
            for (Int4 i = 0; i < b.n; i++) {
                Double x = b.x[i][j];
                if (x == missing) continue;
                m.count++;
                compadd(m.weights, b.weight[i]);
                compadd(m.sum, x * b.weight[i]);
                if (x < m.min) m.min = x;
                if (x > m.max) m.max = x;
            }
        }
    });
}

void afterfirst(moments& m) {
    m.w = weighttype ? total(m.weights) : m.count;
    m.n = weighttype == weight_f ? std::floor(m.w + 0.5) : m.count;
    if (m.count) m.mean = total(m.sum) / m.w;
}

// ---- Second pass.

void squaresblock(const block& b, const pair2* mean, comppair* squares) {
    addblock(b, squares, [mean](pair2 x, Int4 p) {
        pair2 d = x - mean[p];
        return (pair2)((bits2)(d * d) & (x != missing));
    });
}

Int4 secondplain(const Int4* entries, Int4 k, moments* out) {
    static sweepsums s;
    s = {};
    for (Int4 j = 0; j < k; j++) s.mean[j / 2][j & 1] = out[j].mean;
    Int4 rc = overblocks(entries, k, [](const block& b, Int4 at) {
        squaresblock(b, s.mean + at / 2, s.sum + at / 2);
    });
    for (Int4 j = 0; j < k; j++) out[j].squares = {s.sum[j / 2].s[j & 1], s.sum[j / 2].c[j & 1]};
    return rc;
}

Int4 secondweighted(const Int4* entries, Int4 k, moments* out) {
    return overblocks(entries, k, [&](const block& b, Int4 at) {
        for (Int4 j = 0; j < b.k; j++) {
            moments& m = out[at + j];
            for (Int4 i = 0; i < b.n; i++) {
                Double x = b.x[i][j];
                if (x != missing) compadd(m.squares, (x - m.mean) * (x - m.mean) * b.weight[i]);
            }
        }
    });
}

void aftersecond(moments& m) {
    if (m.n <= 1) return;
    Double squares = total(m.squares);
    m.variance = weighttype == weight_a ? (squares / m.w) * (m.n / (m.n - 1)) : squares / (m.w - 1);
    m.sd = std::sqrt(m.variance);
}

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
    tabmarkup(std::string("\n    Variable {c |}     Obs      ") + (weights ? "Weight      " : "") +
              "  Mean   Std. Dev.       Min        Max\n{hline 13}{c +}{hline " + (weights ? "65}\n" : "53}\n"));
}

const char* numberformat(Int4 entry, const sumoptions& o, char (&out)[fmtsize]) {
    if (!o.format || isstring(entryvar(entry))) return "%9.0g";
    cutformat(fmt[entryvar(entry) - 1], "%9.0g", out);
    return out;
}

Int4 plainline(Int4 entry, const moments& m, const sumoptions& o) {
    tabstub(entryname(entry));
    tabnumber("%8.0g", m.n);
    if (weighttype == weight_a) {
        tabtext(" ");
        tabnumber("%11.4g", m.w);
    }
    if (m.count) {
        char own[fmtsize];
        const char* f = numberformat(entry, o, own);
        tabtext("   ");
        for (Double v : {m.mean, m.sd, m.min}) {
            tabnumber(f, v);
            tabtext("  ");
        }
        tabnumber(f, m.max);
    }
    return prtnl();
}

Int4 plainsummaries(const sumoptions& o) {
    Int4 entries[sweepwidth];
    for (Int4 at = 0; at < vl_n; at += sweepwidth) {
        moments m[sweepwidth];
        Int4 k = std::min(sweepwidth, vl_n - at);
        for (Int4 j = 0; j < k; j++) entries[j] = at + j;
        if (Int4 rc = (weighttype ? firstweighted : firstplain)(entries, k, m, nullptr)) return rc;
        for (Int4 j = 0; j < k; j++) afterfirst(m[j]);
        if (!o.meanonly) {
            if (Int4 rc = (weighttype ? secondweighted : secondplain)(entries, k, m)) return rc;
            for (Int4 j = 0; j < k; j++) aftersecond(m[j]);
        }
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

// The counted observations of one variable in order of its value.
struct ordered {
    Int4 entry, n;
    const Int4* list;
    Double value(Int4 i) const { return i >= 1 && i <= n ? varvalue(entry, list[i - 1]) : missing; }
    Double weight(Int4 i) const {
        Double w;
        boolean use;
        weightat(list[i - 1], w, use);
        return w;
    }
};

Double plainpercentile(const ordered& x, Double p) {
    Double v = x.n * p, k = v / 100;
    if (std::floor(k + 0.5) * 100 == v) return (x.value(Int4(k)) + x.value(Int4(k) + 1)) / 2;
    return x.value(Int4(k) + 1);
}

// The cursor and the running weight persist from one percentile to the next.
void weightedpercentiles(const ordered& x, Double w, Double (&out)[9]) {
    Double cum = 0, prev = 0, eps = 1e-7 * 100 * w;
    Int4 i = 0;
    for (Int4 k = 0; k < 9; k++) {
        Double target = w * percents[k];
        while (cum * 100 < target && i < x.n) {
            prev = cum;
            cum += x.weight(++i);
        }
        Double candidate = x.value(i);
        if (cum * 100 >= target + eps) {
            if (target - eps < prev * 100 && i >= 2) candidate = (candidate + x.value(i - 1)) / 2;
        } else if ((target - eps >= prev * 100 || cum * 100 == target) && i < x.n) {
            candidate = (candidate + x.value(i + 1)) / 2;
        }
        out[k] = candidate;
    }
}

Int4 highmoments(Int4 entry, moments& m) {
    Int4 rc = overblocks(&entry, 1, [&](const block& b, Int4) {
        for (Int4 i = 0; i < b.n; i++) {
            if (b.x[i][0] == missing) continue;
            Double w = weighttype ? b.weight[i] : 1, d = b.x[i][0] - m.mean;
            compadd(m.squares, d * d * w);
            m.m3 += (d * d * w) * d;
            m.m4 += ((d * d * w) * d) * d;
        }
    });
    Double m2 = total(m.squares) / m.w;
    m.m3 /= m.w;
    m.m4 /= m.w;
    if (m.n > 1) {
        m.variance = (m.n / (m.n - 1)) * m2;
        m.sd = std::sqrt(m.variance);
        if (m2 > 0) {
            m.skewness = m.m3 / std::sqrt(m2 * m2 * m2);
            m.kurtosis = m.m4 / (m2 * m2);
        }
    }
    return rc;
}

void detailheading(Int4 entry) {
    std::string label = getvarlabel(varlist[entryvar(entry) - 1]);
    std::vector<std::string> lines;
    if (entryop(entry)) lines.push_back(entryname(entry));
    if (!label.empty() || !entryop(entry)) wordwrap(label.empty() ? varlist[entryvar(entry) - 1] : label, 50, lines);
    prtnl();
    for (const std::string& line : lines)
        tabtext(std::string(std::size_t(std::max(0, (62 - textcolumns(line) - 1) / 2)), ' ') + line + "\n");
    tabmarkup("{hline 61}\n");
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
    tabtext("      Percentiles      Smallest\n");
    for (const detailline& line : detaillines) {
        if (line.label) {
            tabtext(std::string(line.label) + "    ");
            tabnumber(f, p[line.percentile]);
            tabtext("      ");
        }
        if (line.extreme >= 0) tabnumber(f, extremes[line.extreme]);
        if (line.text[0]) tabtext(line.text);
        if (line.what) tabnumber(line.what <= v_w ? "%11.0g" : f, values[line.what]);
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

// Sorts the list by the entry's value; an operator's values have no variable of their own to sort by.
Int4 sortcounted(Int4 entry, Int4* list, Int4 n) {
    if (!entryop(entry)) return sortlist(list, n, entryvar(entry));
    std::vector<std::pair<Double, Int4>> pairs;
    for (Int4 i = 0; i < n; i++) pairs.emplace_back(varvalue(entry, list[i]), list[i]);
    std::sort(pairs.begin(), pairs.end());
    for (Int4 i = 0; i < n; i++) list[i] = pairs[std::size_t(i)].second;
    return 0;
}

Int4 detailone(Int4 entry, const sumoptions& o) {
    moments m;
    // One place more than observations: a listing writes ahead of what it keeps.
    workspace work((std::size_t(std::max(lastobs - firstobs + 1, 0)) + 1) * sizeof(Int4));
    Int4* list = work.get<Int4>();
    if (!list) return error(909);
    countedlist counted{list};
    if (Int4 rc = (weighttype ? firstweighted : firstplain)(&entry, 1, &m, &counted)) return rc;
    afterfirst(m);
    detailheading(entry);
    if (m.count == 0) {
        storeplain(m, o);
        error(2000);
        return 2000;
    }
    if (Int4 rc = highmoments(entry, m)) return rc;
    if (Int4 rc = sortcounted(entry, list, m.count)) return rc > 1 ? error(rc) : rc;
    ordered x{entry, m.count, list};
    Double p[9], extremes[8];
    for (Int4 i = 0; i < 4; i++) {
        extremes[i] = x.value(i + 1);
        extremes[4 + i] = x.value(m.count - 3 + i);
    }
    if (weighttype)
        weightedpercentiles(x, m.w, p);
    else
        for (Int4 k = 0; k < 9; k++) p[k] = plainpercentile(x, percents[k]);
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
