#include "estimate/tables.h"
#include <algorithm>
#include <bit>
#include <numeric>
#include "data/sortkeys.h"
#include "language/stdparse.h"
#include "output/errors.h"

namespace velmo {

// ---- Values.

valuelist::valuelist(Int4 variable, Int4 limit)
    : var(variable), most(limit), text(isstring(variable)), slots(std::bit_ceil(std::size_t(limit) * 2), -1),
      shift(std::countl_zero(std::uint64_t(slots.size())) + 1) {}

void valuelist::getkeys(Int4 firstob, Int4 count, boolean keepmissing, UByte* mask, key64* out) const {
    if (text) {
        column c(var);
        for (Int4 i = 0; i < count; i++) {
            out[i] = mask[i] ? stringpiece(c.at(firstob + i), c.type, 0) : 0;
            mask[i] &= keepmissing || out[i] != 0;
        }
        return;
    }
    Double x[blocksize];
    getcolumn(var, firstob, count, x);
    for (Int4 i = 0; i < count; i++) {
        out[i] = orderedbits(x[i]);
        mask[i] &= keepmissing || x[i] != missing;
    }
}

// A text whose first piece has no zero byte may go on.
boolean valuelist::same(Int4 number, key64 key, Int4 obs) const {
    if (keys[std::size_t(number)] != key) return false;
    return !text || !(key & 255) || strcell(var, first[std::size_t(number)]) == strcell(var, obs);
}

std::size_t valuelist::placeof(key64 key, Int4 obs) const {
    constexpr key64 factor = 0xD6E8FEB86659FD93u;
    key64 h = (key ^ key >> 32) * factor;
    if (text && (key & 255)) {
        column c(var);
        for (Int4 piece = 1; piece < stringpieces(c.type) && (key & 255); piece++) {
            key = stringpiece(c.at(obs), c.type, piece);
            h = (h ^ h >> 32 ^ key) * factor;
        }
    }
    return std::size_t(h >> shift);
}

boolean valuelist::getnumbers(Int4 firstob, Int4 count, const UByte* mask, const key64* key, boolean add, Int4* out) {
    for (Int4 i = 0; i < count; i++) {
        out[i] = -1;
        if (!mask[i]) continue;
        std::size_t at = placeof(key[i], firstob + i);
        while (slots[at] >= 0 && !same(slots[at], key[i], firstob + i)) at = (at + 1) & (slots.size() - 1);
        if (slots[at] < 0 && add) {
            if (n() == most) return false;
            slots[at] = n();
            first.push_back(firstob + i);
            keys.push_back(key[i]);
        }
        out[i] = slots[at];
    }
    return true;
}

std::vector<Int4> valuelist::order() const {
    std::vector<Int4> numbers(first.size());
    std::iota(numbers.begin(), numbers.end(), 0);
    std::sort(numbers.begin(), numbers.end(), [this](Int4 a, Int4 b) {
        key64 p = keys[std::size_t(a)], q = keys[std::size_t(b)];
        if (p != q || !text) return p < q;
        return strcell(var, first[std::size_t(a)]) < strcell(var, first[std::size_t(b)]);
    });
    return numbers;
}

// ---- Counts.

counttable::counttable(const std::vector<Int4>& vars) {
    if (vars.size() == 1) {
        lists.emplace_back(vars[0], onewayrows);
        cells.resize(onewayrows);
        return;
    }
    lists.emplace_back(vars[0], twowayrows);
    lists.emplace_back(vars[1], twowaycols);
    stride = twowaycols;
    cells.resize(twowayrows * twowaycols);
}

Int4 tableblock(const std::vector<valuelist>& lists, boolean keepmissing, Int4 first, Int4 n, UByte* mask,
                Double* weight, valuelist::key64 (*keys)[blocksize]) {
    exp_ifblock(first, n, mask);
    for (std::size_t j = 0; j < lists.size(); j++) lists[j].getkeys(first, n, keepmissing, mask, keys[j]);
    return weighttype ? weighblock(first, n, mask, weight, false) : 0;
}

Int4 filltable(const tablesample& s, counttable& t) {
    UByte mask[blocksize];
    valuelist::key64 keys[2][blocksize];
    Int4 row[blocksize], col[blocksize] = {};
    Double weight[blocksize], part[blocksize];
    std::fill_n(weight, blocksize, 1.0);
    Int4 added = 0;
    Int4 rc = overblocks([&](Int4 first, Int4 n) -> Int4 {
        if (Int4 rc = tableblock(t.lists, s.keepmissing, first, n, mask, weight, keys)) return rc;
        for (std::size_t j = 0; j < t.lists.size(); j++)
            if (!t.lists[j].getnumbers(first, n, mask, keys[j], true, j ? col : row)) return error(134);
        if (s.subpop) {
            getcolumn(s.subpop, first, n, part);
            for (Int4 i = 0; i < n; i++) mask[i] &= part[i] != 0;
        }
        for (Int4 i = 0; i < n; i++) {
            if (!mask[i]) continue;
            t.at(row[i], col[i]) += weight[i];
            added++;
        }
        return 0;
    });
    t.n = added;
    return rc;
}

Int4 numberblock(const tablesample& s, counttable& t, Int4 first, Int4 n, Int4* numbers) {
    UByte mask[blocksize];
    valuelist::key64 keys[1][blocksize];
    Double weight[blocksize];
    if (Int4 rc = tableblock(t.lists, s.keepmissing, first, n, mask, weight, keys)) return rc;
    t.lists[0].getnumbers(first, n, mask, keys[0], false, numbers);
    return 0;
}

}  // namespace velmo
