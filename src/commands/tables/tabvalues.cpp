// tabdisp: which values the keys have, and where each combination stands.
#include <algorithm>
#include <cstring>
#include "base/text.h"
#include "commands/tables/tabdisp.h"
#include "data/cells.h"
#include "estimate/tables.h"
#include "expr/walk.h"
#include "output/errors.h"
#include "output/formats.h"

namespace velmo {

// ---- A variable.

static std::string usualformat(Int4 limit) { return "%" + std::to_string(std::min(limit, 9)) + ".0g"; }

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
    return numbertext(value);
}

// Digits that were cut off would leave another number: what the format makes too wide has as many decimals as fit, else
// an exponent.
std::string tabslot::numbertext(Double value) const {
    auto shown = [value](const std::string& format) {
        fmtnum(format.c_str(), value);
        return std::string(trimmed(dbuf));
    };
    std::string text = shown(fmt);
    fmtspec spec;
    if (Int4(text.size()) <= limit || chkfmt(fmt, 1, &spec) || spec.code == 'd') return text;
    for (Int4 decimals = spec.code == 'f' ? spec.decimals : limit - 2; decimals >= 0; decimals--) {
        text = shown("%" + std::to_string(limit) + "." + std::to_string(decimals) + "f");
        if (Int4(text.size()) <= limit) return text;
    }
    return shown(usualformat(limit));
}

tabslot makeslot(Int4 var, std::string_view fmt, Int4 limit) {
    tabslot s;
    fmtspec spec;
    s.var = var;
    s.text = isstring(var);
    s.limit = limit;
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
    std::string rewritten = "%" + std::to_string(limit) + "." + std::to_string(spec.decimals) + spec.code;
    copytext(s.fmt, sizeof s.fmt, chkfmt(rewritten, 1) == 0 ? rewritten : usualformat(limit));
    return s;
}

// ---- The values.

namespace {

template <class T> auto slots(T& t) {
    std::vector<decltype(t.keys.data())> all;
    for (auto& s : t.by) all.push_back(&s);
    for (auto& s : t.keys) all.push_back(&s);
    return all;
}

// The numbers of the values by their order, where the empty string is the last; fills the slot's values.
std::vector<Int4> ranks(const valuelist& list, tabslot& s) {
    std::vector<Int4> order = list.order(), rank(order.size());
    if (s.text && !order.empty() && strcell(s.var, list.first[std::size_t(order[0])]).empty())
        std::rotate(order.begin(), order.begin() + 1, order.end());
    s.values.clear();
    for (Int4 number : order) {
        rank[std::size_t(number)] = Int4(s.values.size());
        s.values.push_back(list.first[std::size_t(number)]);
    }
    return rank;
}

}  // namespace

Int4 tabvalues::place(const std::vector<Int4>& combination) const {
    std::uint64_t code = 0;
    std::size_t i = 0;
    for (const tabslot* s : slots(*this)) code = code * s->values.size() + std::size_t(combination[i++]);
    auto it = places.find(code);
    return it == places.end() ? 0 : it->second;
}

// The sample is kept between the passes: an `if` may draw random numbers.
Int4 readvalues(tabvalues& t) {
    std::vector<tabslot*> keys = slots(t);
    std::vector<valuelist> lists;
    for (tabslot* s : keys) lists.emplace_back(s->var, keypool);
    std::vector<UByte> sample;
    UByte mask[blocksize];
    valuelist::key64 bits[blocksize];
    Int4 number[blocksize];
    Int4 rc = overblocks([&](Int4 first, Int4 n) -> Int4 {
        exp_ifblock(first, n, mask);
        sample.insert(sample.end(), mask, mask + n);
        Int4 pool = 0;
        for (valuelist& list : lists) {
            list.getkeys(first, n, true, mask, bits);
            if (!list.getnumbers(first, n, mask, bits, true, number) || (pool += list.n()) > keypool) return error(134);
        }
        return 0;
    });
    if (rc) return rc;
    if (lists[0].n() == 0) return noobservations();
    std::vector<std::vector<Int4>> rank;
    for (std::size_t k = 0; k < keys.size(); k++) rank.push_back(ranks(lists[k], *keys[k]));
    t.places.clear();
    return overblocks([&](Int4 first, Int4 n) {
        const UByte* chosen = &sample[std::size_t(first - firstobs)];
        std::copy_n(chosen, n, mask);
        std::uint64_t code[blocksize] = {};
        for (std::size_t k = 0; k < keys.size(); k++) {
            lists[k].getkeys(first, n, true, mask, bits);
            lists[k].getnumbers(first, n, mask, bits, false, number);
            for (Int4 i = 0; i < n; i++)
                if (mask[i]) code[i] = code[i] * rank[k].size() + std::size_t(rank[k][std::size_t(number[i])]);
        }
        for (Int4 i = 0; i < n; i++)
            if (mask[i]) t.places.try_emplace(code[i], first + i);
    });
}

}  // namespace velmo
