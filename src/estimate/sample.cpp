#include "estimate/sample.h"
#include <algorithm>
#include <cmath>
#include <cstring>
#include "data/cells.h"
#include "data/timeseries.h"
#include "language/stdparse.h"
#include "output/errors.h"

namespace velmo {

Double source::value(Int4 obs) const { return op ? tsvalue(op, var, obs) : getobs(var, obs); }

std::vector<source> listsources() {
    std::vector<source> sources;
    for (Int4 i = 0; i < vl_n; i++) sources.push_back({entryvar(i), entryop(i)});
    return sources;
}

void getsource(source s, Int4 first, Int4 n, Double* out) {
    if (s.op)
        for (Int4 i = 0; i < n; i++) out[i] = s.value(first + i);
    else
        getcolumn(s.var, first, n, out);
}

Int4 namedsource(const axisname& a, source& s) {
    s = {0, 0};
    if (a.nametext() == "_cons" && !a.op[0]) return 0;
    std::string name(a.nametext());
    s.var = findvar(name);
    if (!s.var) return varnotfound(name);
    if (isstring(s.var)) return error(109);
    if (!a.op[0]) return 0;
    if (Int4 rc = ts_parse(a.optext(), &s.op)) return rc;
    return s.op ? tsetup() : 0;
}

Int4 checkweight(Double w, boolean keepzero, boolean& use) {
    use = w != missing && (w != 0 || keepzero);
    if (w == missing) return 0;
    if (w < 0) return error(402);
    return weighttype == weight_f && w != std::floor(w) ? error(401) : 0;
}

Int4 weighblock(Int4 first, Int4 n, UByte* mask, Double* weight, boolean keepzero) {
    boolean blocks = exp_blockable(eqexp, 0);
    if (blocks) exp_getblock(eqexp, first, n, weight);
    for (Int4 i = 0; i < n; i++) {
        if (!mask[i]) continue;
        if (!blocks) weight[i] = exp_getnum(eqexp, first + i);
        boolean use;
        if (Int4 rc = checkweight(weight[i], keepzero, use)) return rc;
        mask[i] = use;
    }
    return 0;
}

weighing sampleweighing() {
    return !weighttype ? weigh_none : weighttype == weight_f ? weigh_frequency : weigh_analytic;
}

// ---- Blocks.

namespace {

// Where few observations of a block count, only those are fetched: reading a row costs more than the arithmetic.
void thinblock(sampleblock& b) {
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

// All sources plain doubles: one walk along the rows.
boolean alldoubles(const source* sources, Int4 k) {
    for (Int4 j = 0; j < k; j++)
        if (sources[j].op || typ[sources[j].var - 1] != typedouble) return false;
    return true;
}

void fetchdoubles(sampleblock& b, const source* sources) {
    std::size_t offset[lanes];
    for (Int4 j = 0; j < b.k; j++) offset[j] = mapi[sources[j].var - 1];
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

}  // namespace

Int4 selectblock(sampleblock& b, Int4 first, Int4 n) {
    b.first = first;
    b.n = n;
    b.whole = !ifgiven && !weighttype;
    b.sparse = false;
    if (b.whole) return 0;
    exp_ifblock(first, n, b.mask);
    if (weighttype)
        if (Int4 rc = weighblock(first, n, b.mask, b.weight, false)) return rc;
    thinblock(b);
    return 0;
}

void fetchblock(sampleblock& b, const source* sources, Int4 k) {
    b.k = k;
    if (b.sparse) {
        for (Int4 i = 0; i < b.n; i++)
            for (Int4 j = 0; j < k; j++) b.x[i][j] = sources[j].value(b.obs[i]);
    } else if (alldoubles(sources, k)) {
        fetchdoubles(b, sources);
    } else {
        Double values[blocksize];
        for (Int4 j = 0; j < k; j++) {
            getsource(sources[j], b.first, b.n, values);
            for (Int4 i = 0; i < b.n; i++) b.x[i][j] = values[i];
        }
    }
    if (k & 1)
        for (Int4 i = 0; i < b.n; i++) b.x[i][k] = missing;
    if (b.whole || b.sparse) return;
    for (Int4 i = 0; i < b.n; i++)
        if (!b.mask[i]) std::fill_n(b.x[i], lanes, missing);
}

Int4 secondpass(const source* sources, Int4 k, moments* m) {
    weighing kind = sampleweighing();
    sweepsums s;
    sweep_second(s, m, k);
    Int4 rc = oversample(sources, k, [&](const sampleblock& b, Int4 at) {
        if (kind == weigh_none) return sweep_squares(s, at, b.x, b.n, b.k);
        for (Int4 j = 0; j < b.k; j++)
            for (Int4 i = 0; i < b.n; i++) moments_square(m[at + j], b.x[i][j], b.weight[i]);
    });
    if (kind == weigh_none) sweep_tosecond(s, m, k);
    for (Int4 j = 0; j < k; j++) moments_second(m[j], kind);
    return rc;
}

// ---- Buffers.

namespace {

// The sources' values of a block behind the n observations that were drawn; with casewise the mask is narrowed.
void drawvalues(const std::vector<source>& sources, boolean casewise, Int4 first, Int4 n, UByte* mask,
                drawnsample& out) {
    for (std::size_t j = 0; j < sources.size(); j++) {
        source s = sources[j];
        if (isstring(s.var)) {
            for (Int4 i = 0; casewise && i < n; i++) mask[i] &= !strcell(s.var, first + i).empty();
            continue;
        }
        Double* x = out.values(Int4(j)) + out.n;
        getsource(s, first, n, x);
        for (Int4 i = 0; casewise && i < n; i++) mask[i] &= x[i] != missing;
    }
}

// Keeps of a block behind out.n what the mask selects.
void keepdrawn(drawnsample& out, Int4 first, Int4 n, const UByte* mask) {
    Int4* obs = out.obs.get<Int4>() + out.n;
    Int4 kept = 0;
    for (Int4 i = 0; i < n; i++) {
        obs[kept] = first + i;
        kept += mask[i];
    }
    auto squeeze = [&](Double* x) {
        Int4 to = 0;
        for (Int4 i = 0; i < n; i++) {
            x[to] = x[i];
            to += mask[i];
        }
    };
    if (kept < n) {
        if (out.weights()) squeeze(out.weight.get<Double>() + out.n);
        for (const workspace& x : out.x)
            if (x.p) squeeze(x.get<Double>() + out.n);
    }
    out.n += kept;
}

// Room for the run and, behind it, what a block writes before it is narrowed.
boolean drawroom(const std::vector<source>& sources, drawnsample& out) {
    std::size_t room = std::size_t(std::max(lastobs - firstobs + 1, 0)) + blocksize;
    out.obs = workspace(room * sizeof(Int4));
    if (weighttype) out.weight = workspace(room * sizeof(Double));
    boolean ok = out.obs.p && (!weighttype || out.weight.p);
    for (source s : sources) {
        out.x.emplace_back(isstring(s.var) ? 0 : room * sizeof(Double));
        ok &= isstring(s.var) || out.x.back().p;
    }
    return ok;
}

}  // namespace

Int4 drawsample(const std::vector<source>& sources, boolean casewise, drawnsample& out) {
    if (!drawroom(sources, out)) return error(909);
    UByte mask[blocksize];
    return overblocks([&](Int4 first, Int4 n) -> Int4 {
        exp_ifblock(first, n, mask);
        if (weighttype)
            if (Int4 rc = weighblock(first, n, mask, out.weight.get<Double>() + out.n, false)) return rc;
        drawvalues(sources, casewise, first, n, mask, out);
        keepdrawn(out, first, n, mask);
        return 0;
    });
}

}  // namespace velmo
