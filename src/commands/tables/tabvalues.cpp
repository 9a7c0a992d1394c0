// tabdisp: which values the keys have, and where each combination stands.
#include <algorithm>
#include <cstring>
#include "base/text.h"
#include "commands/tables/tabdisp.h"
#include "data/cells.h"
#include "expr/walk.h"
#include "output/errors.h"
#include "output/formats.h"

namespace velmo {

// ---- A variable.

std::string tabslot::name() const { return varlist[var - 1]; }

std::string tabslot::heading() const {
    std::string label = getvarlabel(varlist[var - 1]);
    return label.empty() ? name() : label;
}

std::string tabslot::valuetext(Int4 obs) const {
    if (text) return std::string(strcell(var, obs));
    Double value = getobs(var, obs);
    if (value == missing) return "";
    if (const char* known = label.exists ? label.find(value) : nullptr) return known;
    fmtnum(fmt, value);
    return std::string(trimmed(dbuf));
}

tabslot makeslot(Int4 var, std::string_view fmt, Int4 limit) {
    tabslot s;
    fmtspec spec;
    s.var = var;
    s.text = isstring(var);
    copytext(s.fmt, sizeof s.fmt, velmo::fmt[var - 1]);
    if (s.text) return s;
    boolean date = chkfmt(s.fmt, 1, &spec) == 0 && spec.code == 'd';
    if (!date && !fmt.empty()) copytext(s.fmt, sizeof s.fmt, fmt);
    if (lbl[var - 1][0]) vl_load(lbl[var - 1], s.label);
    chkfmt(s.fmt, 1, &spec);
    if (spec.width <= limit) return s;
    if (date) {
        copytext(s.fmt, sizeof s.fmt, "%d");
        return s;
    }
    std::string usual = "%" + std::to_string(std::min(limit, 9)) + ".0g";
    std::string rewritten = "%" + std::to_string(limit) + "." + std::to_string(spec.decimals) + spec.code;
    copytext(s.fmt, sizeof s.fmt, chkfmt(rewritten, 1) == 0 ? rewritten : usual);
    return s;
}

// ---- The values.

namespace {

// -1, 0, 1: numbers ascending, missing last; strings by bytes, the empty one last.
Int4 order(const tabslot& s, Int4 a, Int4 b) {
    if (!s.text) {
        Double x = getobs(s.var, a), y = getobs(s.var, b);
        return (x > y) - (x < y);
    }
    std::string_view x = strcell(s.var, a), y = strcell(s.var, b);
    if (x.empty() || y.empty()) return Int4(x.empty()) - Int4(y.empty());
    return x.compare(y);
}

std::size_t placeof(const tabslot& s, Int4 obs) {
    auto before = [&](Int4 a, Int4 b) { return order(s, a, b) < 0; };
    return std::size_t(std::lower_bound(s.values.begin(), s.values.end(), obs, before) - s.values.begin());
}

std::vector<tabslot*> slots(tabvalues& t) {
    std::vector<tabslot*> all;
    for (tabslot& s : t.by) all.push_back(&s);
    for (tabslot& s : t.keys) all.push_back(&s);
    return all;
}

}  // namespace

Int4 tabvalues::place(const std::vector<Int4>& combination) const {
    auto it = places.find(combination);
    return it == places.end() ? 0 : it->second;
}

Int4 readvalues(tabvalues& t) {
    std::vector<tabslot*> keys = slots(t);
    std::size_t pool = 0;
    Int4 rc = overobs([&](Int4 obs) -> Int4 {
        for (tabslot* s : keys) {
            std::size_t at = placeof(*s, obs);
            if (at < s->values.size() && order(*s, s->values[at], obs) == 0) continue;
            if (++pool > keypool) return error(134);
            s->values.insert(s->values.begin() + std::ptrdiff_t(at), obs);
        }
        return 0;
    });
    if (rc) return rc;
    if (keys[0]->values.empty()) return noobservations();
    std::vector<Int4> combination(keys.size());
    return overobs([&](Int4 obs) {
        for (std::size_t i = 0; i < keys.size(); i++) combination[i] = Int4(placeof(*keys[i], obs));
        t.places.emplace(combination, obs);
    });
}

}  // namespace velmo
