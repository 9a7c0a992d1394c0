#include "estimate/indexmodel.h"
#include <algorithm>

namespace velmo {

Int4 indexdesign::open(const estsample& s, const indexform& f) {
    sample = &s;
    form = f;
    std::size_t bytes = std::size_t(rowbuffers(s.sources.size()).step) * sizeof(Double);
    for (workspace* w : {&index, &outcome, &score, &curvature})
        if (*w = workspace(bytes); !w->p) return error(909);
    return 0;
}

// The block that a model gets of rows: their indices at b and outcomes.
indexblock indexdesign::look(const rowsblock& rows, const Double* b) const {
    Double *to = index.get<Double>(), *y = outcome.get<Double>();
    const Int4* column = form.columns.data();
    std::size_t k = form.columns.size();
    for (Int4 i = 0; i < rows.n; i++) {
        const Double* row = rows.row(i);
        Double t = 0;
        for (std::size_t j = 0; j < k; j++) t += row[column[j]] * b[j];
        to[i] = form.offset ? t + row[form.offset] : t;
        y[i] = row[form.outcome];
    }
    return {rows.n, to, y, rows.weight, score.get<Double>(), curvature.get<Double>()};
}

Int4 indexdesign::evaluate(const indexmodel& model, const Double* b, Double& f, Double* g, Double* H) const {
    rowbuffers r(sample->sources.size());
    tiles products(r.width, r.step);
    if (!products.got()) return error(909);
    std::vector<Double> sums(std::size_t(r.width), 0);
    f = 0;
    Int4 rc = overrows(*sample, [&](const rowsblock& rows) {
        indexblock block = look(rows, b);
        model(block, f);
        addcolumns(rows.x, block.score, rows.n, rows.width, sums.data());
        products.add(rows.x, block.curvature, rows.n, false);
    });
    std::size_t k = form.columns.size();
    for (std::size_t i = 0; i < k; i++) {
        g[i] = -sums[std::size_t(form.columns[i])];
        for (std::size_t j = 0; j < k; j++) H[i * k + j] = products.sum(form.columns[i], form.columns[j]);
    }
    return rc;
}

Int4 indexdesign::scores(const indexmodel& model, const Double* b, Double* out) const {
    Double unused = 0;
    std::fill_n(out, sample->run, 0.0);
    return overrows(*sample, [&](const rowsblock& rows) {
        model(look(rows, b), unused);
        for (Int4 i = 0; i < rows.n; i++) out[rows.obs[i] - sample->first] = score.get<Double>()[i];
    });
}

}  // namespace velmo
