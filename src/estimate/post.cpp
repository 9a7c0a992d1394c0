#include "estimate/post.h"
#include "base/text.h"
#include "data/dataset.h"
#include "data/structure.h"
#include "expr/program.h"
#include "language/stdparse.h"
#include "stored/families.h"

namespace velmo {

namespace {

Int4 storeresults(const estimation& e) {
    for (const auto& [name, value] : e.scalars)
        if (Int4 rc = stored_put(e_results, name, value)) return rc;
    for (const auto& [name, text] : e.macros)
        if (Int4 rc = text.empty() ? 0 : stored_put(e_results, name, text)) return rc;
    return 0;
}

Int4 storeobjects(const estimation& e) {
    if (Int4 rc = posted_setnames(e.names)) return rc;
    if (Int4 rc = posted_put("_b", e.b)) return rc;
    if (Int4 rc = posted_put("VCE", e.V)) return rc;
    for (const auto& [name, m] : e.matrices)
        if (Int4 rc = posted_put(name, *m)) return rc;
    for (const estimation::own& o : e.records)
        if (Int4 rc = posted_putrecord(o.name, o.bytes, o.size)) return rc;
    return 0;
}

}  // namespace

Int4 postestimation(estimation& e, const estsample& s) {
    std::string sample;
    e.V.symmetric = true;
    e.record.equations = hasequations(e.names);
    if (Int4 rc = makesample(s.in(), s.first, s.run, sample)) return rc;
    Int4 rc = posted_begin(e.record, true);
    if (!rc) rc = storeobjects(e);
    if (!rc) rc = storeresults(e);
    if (!rc) {
        posted_sample(sample);
        return 0;
    }
    dropworkvar(findvar(sample));
    posted_clear();
    return rc;
}

void postweights(estimation& e) {
    if (!weightgiven) return;
    for (const weightrow& row : weightrows)
        if (row.kind == weighttype) e.macros.push_back({"wtype", row.word});
    std::string_view text(eqexp.textbeg, std::size_t(eqexp.textend - eqexp.textbeg));
    e.macros.push_back({"wexp", "= " + std::string(trimmed(text))});
}

}  // namespace velmo
