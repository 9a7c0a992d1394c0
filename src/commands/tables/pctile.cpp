// _pctile: percentiles of a variable as results, for authors of commands.
#include <algorithm>
#include <numeric>
#include <string>
#include <vector>
#include "estimate/sample.h"
#include "language/numlist.h"
#include "language/options.h"
#include "language/stdparse.h"
#include "matrix/percentiles.h"
#include "output/errors.h"
#include "stored/families.h"

namespace velmo {

namespace {

constexpr Int4 mostquantiles = 4001;

// Percents of a scale: of 100, or of the number of quantiles.
struct wanted { std::vector<Double> p; Int4 scale = 100; };

Int4 readwanted(wanted& w) {
    Int4 quantiles = 2, n;
    if (Int4 rc = getopt_int("nquantiles", 1, &quantiles, 1, n)) return rc;
    std::string text;
    boolean found;
    if (Int4 rc = getopt_str("percentiles", 1, text, found)) return rc;
    if (found && n) return errorf(198, "only one of nquantiles() and percentiles() allowed\n");
    if (found) return numlistparse(text, {.range = ">0 <100"}, w.p);
    if (Int4 rc = boundscheck("nquantiles()", quantiles, 2, mostquantiles)) return rc;
    w.scale = quantiles;
    for (Int4 i = 1; i < quantiles; i++) w.p.push_back(i);
    return 0;
}

Int4 ofweighted(drawnsample& s, const wanted& w, std::vector<Double>& out) {
    workspace work(std::size_t(s.n) * 2 * sizeof(Double));
    if (!work.p) return error(909);
    sortweighted(s.values(0), s.weight.get<Double>(), s.n, work.p);
    Double total = std::accumulate(s.weights(), s.weights() + s.n, 0.0);
    std::vector<std::size_t> order(w.p.size());
    std::iota(order.begin(), order.end(), std::size_t(0));
    std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) { return w.p[a] < w.p[b]; });
    std::vector<Double> ascending(w.p.size()), values(w.p.size());
    for (std::size_t i = 0; i < order.size(); i++) ascending[i] = w.p[order[i]] * 100 / w.scale;
    weightedpercentiles(s.values(0), s.weights(), s.n, total, ascending.data(), Int4(w.p.size()), values.data());
    for (std::size_t i = 0; i < order.size(); i++) out[order[i]] = values[i];
    return 0;
}

}  // namespace

// _pctile varname [if] [in] [weight] [, nquantiles(#) percentiles(numlist) altdef]
Int4 cmd__pctile() {
    if (Int4 rc = stdparse({.varlist = must, .tsops = may, .weight = may,
                            .weights = weight_a | weight_f | weight_p})) return rc;
    wanted w;
    if (Int4 rc = readwanted(w)) return rc;
    boolean altdef = getopt_flag("altdef", 3);
    if (Int4 rc = getopt_done()) return rc;
    if (vl_n > 1) return error(103);
    if (isstring(entryvar(0))) return error(109);
    if (altdef && weighttype) return errorf(198, "altdef not allowed with weights\n");
    drawnsample s;
    if (Int4 rc = drawsample(listsources(), true, s)) return rc;
    if (s.n == 0) return noobservations();
    std::vector<Double> out(w.p.size());
    if (weighttype) {
        if (Int4 rc = ofweighted(s, w, out)) return rc;
    } else {
        sortvalues(s.values(0), s.n);
        for (std::size_t i = 0; i < out.size(); i++)
            out[i] = (altdef ? altpercentile : percentile)(s.values(0), s.n, w.p[i], w.scale);
    }
    rclear();
    for (std::size_t i = 0; i < out.size(); i++) rstore("r" + std::to_string(i + 1), out[i]);
    return 0;
}

}  // namespace velmo
