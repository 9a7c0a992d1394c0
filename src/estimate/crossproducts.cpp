#include "estimate/crossproducts.h"
#include <algorithm>
#include <cmath>
#include <string>
#include "base/text.h"
#include "data/cells.h"
#include "language/stdparse.h"
#include "matrix/kernels.h"
#include "matrix/lanes.h"
#include "matrix/tiles.h"
#include "output/formats.h"
#include "output/print.h"

namespace velmo {

// ---- The sample.

namespace {

// Weights of a block of observations that are complete; total of those that count others.
Int4 estimationweights(Int4 first, Int4 n, UByte* in, Double* weight, Double& total) {
    boolean blocks = exp_blockable(eqexp, 0);
    if (blocks) exp_getblock(eqexp, first, n, weight);
    for (Int4 i = 0; i < n; i++) {
        if (!in[i]) continue;
        Double w = blocks ? weight[i] : weight[i] = exp_getnum(eqexp, first + i);
        in[i] &= w != missing && (w > 0 || weighttype == weight_i);
        if (!in[i]) continue;
        if (weighttype == weight_f && w != std::floor(w)) return error(401);
        total += w;
    }
    return 0;
}

// Sources whose cells lie side by side as doubles, or one of another type.
struct piece { std::size_t offset, count; UByte type; };

std::vector<piece> piecesof(const std::vector<source>& sources) {
    std::vector<piece> pieces;
    for (source s : sources) {
        piece p{mapi[s.var - 1], 1, typ[s.var - 1]};
        piece* last = pieces.empty() || p.type != typedouble || pieces.back().type != typedouble ? nullptr : &pieces.back();
        if (last && last->offset + last->count * sizeof(Double) == p.offset) last->count++;
        else pieces.push_back(p);
    }
    return pieces;
}

// So few doubles that a call would take longer than the copy.
inline void copyfew(const UByte* from, Double* to, std::size_t n) {
    for (; n >= 2; n -= 2, from += sizeof(pair2), to += 2) storepair(to, readraw<pair2>(from));
    if (n) *to = readraw<Double>(from);
}

// Rows of the constant and the sources' values, of n observations. Unless a time-series operator looks elsewhere the
// data's rows are walked along.
void getrows(const std::vector<source>& sources, Int4 first, Int4 n, Double* rows, std::size_t width, Double* column) {
    for (Int4 i = 0; i < n; i++) rows[std::size_t(i) * width] = 1;
    if (std::any_of(sources.begin(), sources.end(), [](source s) { return s.op != 0; })) {
        for (std::size_t j = 0; j < sources.size(); j++) {
            getsource(sources[j], first, n, column);
            for (Int4 i = 0; i < n; i++) rows[std::size_t(i) * width + j + 1] = column[i];
        }
        return;
    }
    const std::vector<piece> pieces = piecesof(sources);
    constexpr Int4 ahead = 8;     // rows in a permuted order would else be waited for one by one
    Int4 known = ptrmark - first - ahead;
    for (Int4 i = 0; i < n; i++, rows += width) {
        const UByte* row = rowptr(first + i);
        const UByte* later = i < known ? rowptr(first + i + ahead) : row;
        Double* to = rows + 1;
        for (const piece& p : pieces) {
            const UByte* from = row + p.offset;
            for (std::size_t j = 0; j < p.count; j += 8) __builtin_prefetch(later + p.offset + j * sizeof(Double));
            if (p.type == typedouble) copyfew(from, to, p.count);
            else *to = readcell(from, p.type);
            to += p.count;
        }
    }
}

// Observations a block of rows has, so that it stays near.
Int4 rowstep(Int4 width) { return std::clamp(4096 / width, 16, blocksize); }
Int4 rowwidth(std::size_t k) { return (Int4(k) + 4) / 4 * 4; }

// Takes from the map the observations that lack a value.
void complete(const Double* rows, std::size_t width, std::size_t k, Int4 n, UByte* in) {
    for (Int4 i = 0; i < n; i++) {
        const Double* row = rows + std::size_t(i) * width + 1;
        boolean lacks = false;
        for (std::size_t j = 0; j < k; j++) lacks |= row[j] == missing;
        in[i] &= !lacks;
    }
}

// Takes those without a cluster from the map.
void clustered(const estsample& s, Int4 cluster, Int4 first, Int4 n, UByte* in) {
    if (!isstring(cluster)) {
        Double* value = s.clusters.get<Double>() + (first - s.first);
        getcolumn(cluster, first, n, value);
        for (Int4 i = 0; i < n; i++) in[i] &= value[i] != missing;
        return;
    }
    column c(cluster);
    for (Int4 i = 0; i < n; i++) in[i] &= *c.at(first + i) != 0;
}

// A piece of the sample, whose `if` is in the map: n observations from `first` on.
Int4 drawpiece(estsample& s, const rowbuffers& r, Int4 cluster, Int4 first, Int4 n, Double& total) {
    std::size_t width = std::size_t(r.width);
    Double* rows = r.x.get<Double>();
    UByte* in = s.in() + (first - s.first);
    Double* weight = s.weights() ? s.weights() + (first - s.first) : nullptr;
    getrows(s.sources, first, n, rows, width, r.column.get<Double>());
    complete(rows, width, s.sources.size(), n, in);
    if (cluster) clustered(s, cluster, first, n, in);
    if (weight)
        if (Int4 rc = estimationweights(first, n, in, weight, total)) return rc;
    s.n += Int4(std::count(in, in + n, 1));
    for (Int4 i = 0; !s.sums.empty() && i < n; i++)
        if (in[i]) addscaled(s.sums.data(), rows + std::size_t(i) * width, weight ? weight[i] : 1, r.width);
    for (Int4 i = 0; s.binary && i < n; i++)
        if (in[i]) in[i] = rows[std::size_t(i) * width + 1] != 0 ? 2 : 1;
    return 0;
}

Int4 drawmap(estsample& s, sampleform form, Double& total) {
    rowbuffers r(s.sources.size());
    if (!r.got()) return error(909);
    // Weights that are to be scaled are so ahead of the sums.
    if (form.sums && !s.binary && weighttype != weight_a) s.sums.assign(std::size_t(r.width), 0);
    return overblocks([&](Int4 first, Int4 n) -> Int4 {
        exp_ifblock(first, n, s.in() + (first - s.first));
        for (Int4 at = 0; at < n; at += r.step)
            if (Int4 rc = drawpiece(s, r, form.cluster, first + at, std::min(r.step, n - at), total)) return rc;
        return 0;
    });
}

// Whether n observations, whose weights sum to `total`, can be worked on: 0 or 2000.
Int4 enough(Int4 n, Double total) {
    boolean counts = weighttype == weight_f || weighttype == weight_i;
    boolean none = n == 0 || (counts && total == 0);
    if (!none && (n > 1 || (counts && total > 1))) return 0;
    error(none ? 2000 : 2001);
    return 2000;
}

}  // namespace

Int4 estimationsample(const std::vector<source>& sources, sampleform form, estsample& out) {
    for (source s : sources)
        if (isstring(s.var)) return error(109);
    out.sources = sources;
    out.binary = form.binary && !sources.empty();
    out.first = firstobs;
    out.run = std::max(lastobs - firstobs + 1, 0);
    std::size_t room = std::size_t(out.run) + 1;
    out.map = workspace(room);
    if (weighttype) out.weight = workspace(room * sizeof(Double));
    boolean clusters = form.cluster && !isstring(form.cluster);
    if (clusters) out.clusters = workspace(room * sizeof(Double));
    if (!out.map.p || (weighttype && !out.weight.p) || (clusters && !out.clusters.p)) return error(909);
    Double total = 0;
    if (Int4 rc = drawmap(out, form, total)) return rc;
    return form.empty ? 0 : enough(out.n, total);
}

Int4 narrowsample(estsample& s, const UByte* leaves) {
    Double total = 0;
    s.n = 0;
    s.sums.clear();
    for (Int4 i = 0; i < s.run; i++) {
        if (leaves[i]) s.in()[i] = 0;
        if (!s.in()[i]) continue;
        s.n++;
        if (s.weights()) total += s.weights()[i];
    }
    return enough(s.n, total);
}

rowbuffers::rowbuffers(std::size_t k)
    : width(rowwidth(k)), step(rowstep(width)), x(std::size_t(step) * std::size_t(width) * sizeof(Double)),
      column(std::size_t(step) * sizeof(Double)), weight(std::size_t(step) * sizeof(Double)),
      obs(std::size_t(step) * sizeof(Int4)) {
    if (x.p) std::fill_n(x.get<Double>(), std::size_t(step) * std::size_t(width), 0.0);
}

Int4 keeprows(estsample& s) {
    droprows(s);
    std::size_t n = std::size_t(s.n), k = s.sources.size();
    std::size_t bytes = n * k * sizeof(Double);
    if (n == 0 || bytes > mostkept) return 0;
    workspace rows(bytes), numbers(s.n == s.run ? 0 : n * sizeof(Int4));
    if (!rows.p || (s.n != s.run && !numbers.p)) return 0;
    Double* to = rows.get<Double>();
    Int4* obs = numbers.get<Int4>();
    Int4 rc = overrows(s, [&](const rowsblock& b) {
        for (Int4 i = 0; i < b.n; i++, to += k) copyfew(reinterpret_cast<const UByte*>(b.row(i) + 1), to, k);
        if (obs) obs = std::copy_n(b.obs, b.n, obs);
    });
    s.rows = std::move(rows);
    s.numbers = std::move(numbers);
    return rc;
}

namespace {

// They are kept without the constant and what fills up the width.
rowsblock keptrows(const estsample& s, const rowbuffers& r, Int4 at, Int4 n) {
    Double *x = r.x.get<Double>(), *weight = s.weights() ? r.weight.get<Double>() : nullptr;
    Int4* obs = r.obs.get<Int4>();
    std::size_t k = s.sources.size();
    const Double* from = s.rows.get<Double>() + std::size_t(at) * k;
    for (Int4 i = 0; i < n; i++, x += r.width, from += k) {
        obs[i] = s.numbers.p ? s.numbers.get<Int4>()[at + i] : s.first + at + i;
        if (weight) weight[i] = s.weights()[obs[i] - s.first];
        x[0] = 1;
        copyfew(reinterpret_cast<const UByte*>(from), x + 1, k);
    }
    return {n, r.width, r.x.get<Double>(), weight, obs};
}

}  // namespace

rowsblock readrows(const estsample& s, const rowbuffers& r, Int4 at, Int4 n) {
    if (s.rows.p) return keptrows(s, r, at, n);
    const UByte* in = s.in() + at;
    Double *rows = r.x.get<Double>(), *weight = r.weight.get<Double>();
    Int4* numbers = r.obs.get<Int4>();
    Int4 count = 0;
    for (Int4 i = 0; i < n; i++) {
        numbers[count] = s.first + at + i;
        weight[count] = s.weights() ? s.weights()[at + i] : 1;
        count += in[i] != 0;
    }
    if (!count) return {0, r.width, rows, nullptr, numbers};
    std::size_t width = std::size_t(r.width);
    getrows(s.sources, s.first + at, n, rows, width, r.column.get<Double>());
    for (Int4 i = 0, to = 0; i < n; i++) {
        if (s.binary) rows[std::size_t(i) * width + 1] = in[i] - 1;
        if (in[i] && to++ != i)
            std::copy_n(rows + std::size_t(i) * width, width, rows + std::size_t(to - 1) * width);
    }
    return {count, r.width, rows, s.weights() ? weight : nullptr, numbers};
}

// ---- Cross-products.

boolean scaleweights(estsample& s, boolean print, Double& total) {
    for (Int4 i = 0; i < s.run; i++)
        if (s.in()[i]) total += s.weights()[i];
    if (print) {
        prttext("(sum of wgt is ");
        prtnumber("%12.4e", total);
        prttext(")\n");
    }
    if (total == 0) return false;
    Double mean = total / s.n;
    for (Int4 i = 0; i < s.run; i++) s.weights()[i] /= mean;
    return true;
}

namespace {

// The triangle becomes that of m from row and column `from` on.
void tolower(const tiles& t, matrix& m, Int4 from) {
    for (Int4 i = from; i < m.rows; i++)
        for (Int4 j = from; j <= i; j++) m.at(i, j) = t.sum(i - from, j - from);
}

// First pass of deviations, unless the sample has it: the sums of weights and values, in column 0, and the means.
Int4 sumcolumns(const estsample& s, crossproducts& out) {
    std::vector<Double> sums = s.sums;
    Int4 rc = 0;
    if (sums.empty()) {
        sums.assign(std::size_t(out.m.rows + 4), 0);
        rc = overrows(s, [&](const rowsblock& b) {
            for (Int4 i = 0; i < b.n; i++) addscaled(sums.data(), b.row(i), b.weight ? b.weight[i] : 1, b.width);
        });
    }
    for (Int4 i = 0; i < out.m.rows; i++) out.m.at(i, 0) = sums[std::size_t(i)];
    for (Int4 i = 1; i < out.m.rows; i++) out.means.push_back(sums[0] == 0 ? 0 : sums[std::size_t(i)] / sums[0]);
    return rc;
}

void takeextremes(const rowsblock& b, crossproducts& out) {
    for (Int4 i = 0; i < b.n; i++)
        for (std::size_t j = 0; j < out.low.size(); j++) {
            Float v = Float(b.row(i)[j + 1]);
            out.low[j] = std::min(out.low[j], v);
            out.high[j] = std::max(out.high[j], v);
        }
}

Int4 rawproducts(const estsample& s, crossform form, crossproducts& out) {
    Int4 width = rowwidth(s.sources.size());
    tiles t(width, rowstep(width));
    if (!t.got()) return error(909);
    Int4 rc = overrows(s, [&](const rowsblock& b) {
        if (form.extremes) takeextremes(b, out);
        t.add(b.x, b.weight, b.n, false);
    });
    tolower(t, out.m, 0);
    return rc;
}

// The second pass of deviations, which need no constant.
Int4 deviationproducts(const estsample& s, crossform form, crossproducts& out) {
    std::size_t k = s.sources.size();
    Int4 width = (Int4(k) + 3) / 4 * 4, step = rowstep(rowwidth(k));
    tiles t(width, step);
    workspace deviations(std::size_t(step) * std::size_t(width) * sizeof(Double));
    Double* d = deviations.get<Double>();
    if (k && (!t.got() || !d)) return error(909);
    std::fill_n(d, std::size_t(step) * std::size_t(width), 0.0);
    Int4 rc = overrows(s, [&](const rowsblock& b) {
        if (form.extremes) takeextremes(b, out);
        for (Int4 i = 0; i < b.n; i++) {
            Double* to = d + std::size_t(i) * t.width;
            const Double* row = b.row(i) + 1;
            for (std::size_t j = 0; j < k; j++) to[j] = row[j] - out.means[j];
        }
        t.add(d, b.weight, b.n, true);
    });
    tolower(t, out.m, 1);
    return rc;
}

}  // namespace

Int4 sscp_accum(estsample& s, crossform form, crossproducts& out) {
    Int4 k = Int4(s.sources.size());
    if (Int4 rc = makematrix(out.m, k + 1, k + 1)) return rc;
    out.m.symmetric = true;
    if (form.extremes) {
        out.low.assign(s.sources.size(), floatmissing);
        out.high.assign(s.sources.size(), -floatmissing);
    }
    if (weighttype == weight_a && !scaleweights(s, form.print || form.printweights, out.sumweights)) return 0;
    if (Int4 rc = form.deviations ? sumcolumns(s, out) : 0) return rc;
    if (Int4 rc = form.deviations ? deviationproducts(s, form, out) : rawproducts(s, form, out)) return rc;
    for (Int4 i = 0; i < k + 1; i++)
        for (Int4 j = 0; j < i; j++) out.m.at(j, i) = out.m.at(i, j);
    if (weighttype == weight_a) out.m.at(0, 0) = s.n;
    else out.sumweights = out.m.at(0, 0);
    if (!form.print) return 0;
    fmtnum("%12.0g", weighttype ? std::floor(out.m.at(0, 0) + 0.5) : out.m.at(0, 0));
    prttext("(obs=");
    prtresult(trimmed(dbuf));
    return prttext(")\n");
}

Int4 dropcollinear(const crossproducts& c, const std::vector<std::string>& names, boolean constant,
                   std::vector<boolean>& stays) {
    Int4 n = c.m.rows;
    std::size_t size = std::size_t(n) * std::size_t(n);
    workspace copy(size * sizeof(Double));
    if (!copy.p) return error(909);
    std::copy_n(c.m.row(0), size, copy.get<Double>());
    if (!std::all_of(c.m.row(0), c.m.row(0) + size, [](Double x) { return std::isfinite(x); })) return error(1400);
    std::vector<UByte> flag(std::size_t(n), 0);
    constexpr Int4 first[] = {0};
    if (Int4 rc = matrin(copy.get<Double>(), n, n, constant ? 0 : 1, n - 1, first, constant ? 1 : 0, -1, flag.data()))
        return rc;
    for (std::size_t j = 0; j < names.size(); j++) {
        stays.push_back(flag[j + 1] != 2);
        if (!stays[j]) notef("(note: %s dropped due to collinearity)\n", names[j].c_str());
    }
    return 0;
}

}  // namespace velmo
