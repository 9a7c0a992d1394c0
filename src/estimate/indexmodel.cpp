#include "estimate/indexmodel.h"
#include <algorithm>

namespace velmo {

// ---- The rows.

Int4 indexdesign::room(std::size_t rows) {
    auto doubles = [&](std::size_t n) { return workspace(n * sizeof(Double)); };
    x = doubles(rows * std::size_t(width));
    outcome = doubles(rows);
    if (sample->weights()) weight = doubles(rows);
    if (form.offset) offset = doubles(rows);
    return x.p && outcome.p && (!sample->weights() || weight.p) && (!form.offset || offset.p) ? 0 : 909;
}

void indexdesign::take(const rowsblock& b, std::size_t at) {
    Double* to = x.get<Double>() + at * std::size_t(width);
    for (Int4 i = 0; i < b.n; i++, to += width) {
        const Double* row = b.row(i);
        for (Int4 j = 0; j < k; j++) to[j] = row[form.columns[std::size_t(j)]];
        std::fill(to + k, to + width, 0.0);
        outcome.get<Double>()[at + std::size_t(i)] = row[form.outcome];
        if (form.offset) offset.get<Double>()[at + std::size_t(i)] = row[form.offset];
    }
    if (b.weight) std::copy_n(b.weight, b.n, weight.get<Double>() + at);
}

indexdesign::block indexdesign::blockat(std::size_t at, Int4 n) const {
    auto part = [&](const workspace& w) { return w.p ? w.get<Double>() + at : nullptr; };
    return {n, x.get<Double>() + at * std::size_t(width), part(outcome), part(weight), part(offset)};
}

// one(block) over the sample, in order.
template <class F> Int4 indexdesign::over(F one) {
    if (!kept)
        return overrows(*sample, [&](const rowsblock& b) {
            for (Int4 at = 0; at < b.n; at += step) {
                Int4 n = std::min(step, b.n - at);
                rowsblock part{n, b.width, b.row(at), b.weight ? b.weight + at : nullptr, b.obs + at};
                take(part, 0);
                one(blockat(0, n));
            }
        });
    for (std::size_t at = 0, n = std::size_t(sample->n); at < n; at += std::size_t(step)) {
        one(blockat(at, Int4(std::min(std::size_t(step), n - at))));
        if (tick()) return 1;
    }
    return 0;
}

Int4 indexdesign::open(const estsample& s, const indexform& f) {
    sample = &s;
    form = f;
    k = Int4(form.columns.size());
    width = (k + 3) / 4 * 4;
    step = std::clamp(4096 / width, 16, blocksize);
    std::size_t bytes = std::size_t(s.n) * std::size_t(width + 3) * sizeof(Double);
    kept = bytes <= mostkept && room(std::size_t(s.n)) == 0;
    for (workspace* w : {&index, &score, &curvature}) *w = workspace(std::size_t(step) * sizeof(Double));
    if (!index.p || !score.p || !curvature.p || (!kept && room(std::size_t(step)))) return error(909);
    if (!kept) return 0;
    std::size_t at = 0;
    return overrows(s, [&](const rowsblock& b) {
        take(b, at);
        at += std::size_t(b.n);
    });
}

// ---- The sums.

void indexdesign::indices(const block& b, const Double* coefficients) {
    const Double* row = b.x;
    Double* out = index.get<Double>();
    for (Int4 i = 0; i < b.n; i++, row += width) {
        Double t = 0;
        for (Int4 j = 0; j < k; j++) t += row[j] * coefficients[j];
        out[i] = b.offset ? t + b.offset[i] : t;
    }
}

Int4 indexdesign::evaluate(const indexmodel& model, const Double* b, Double& f, Double* g, Double* H) {
    tiles products(width, step);
    std::vector<Double> sums(std::size_t(width), 0);
    if (!products.got()) return error(909);
    f = 0;
    Int4 rc = over([&](const block& rows) {
        indices(rows, b);
        model({rows.n, index.get<Double>(), rows.outcome, rows.weight, score.get<Double>(), curvature.get<Double>()}, f);
        addcolumns(rows.x, score.get<Double>(), rows.n, width, sums.data());
        products.add(rows.x, curvature.get<Double>(), rows.n, false);
    });
    for (Int4 i = 0; i < k; i++) {
        g[i] = -sums[std::size_t(i)];
        for (Int4 j = 0; j <= i; j++) H[i * k + j] = H[j * k + i] = products.sum(i, j);
    }
    return rc;
}

Int4 indexdesign::scores(const indexmodel& model, const Double* b, Double* out) {
    Double unused = 0;
    std::size_t at = 0, n = std::size_t(sample->n);
    Int4 rc = over([&](const block& rows) {
        indices(rows, b);
        model({rows.n, index.get<Double>(), rows.outcome, rows.weight, out + at, nullptr}, unused);
        at += std::size_t(rows.n);
    });
    for (std::size_t i = std::size_t(sample->run); i-- > 0;) out[i] = sample->in()[i] ? out[--n] : 0;
    return rc;
}

}  // namespace velmo
