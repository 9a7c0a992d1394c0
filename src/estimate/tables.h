// Tables of counts: the values of one or two variables, numbered as they first come, and the weights in each cell.
#pragma once
#include <string>
#include <vector>
#include "data/cells.h"
#include "estimate/sample.h"
#include "matrix/matrices.h"

namespace velmo {

// The different values of a variable, by numbers from 0 in the order in which they were met. They are found through a
// hash of the first eight bytes of a text, or of a number's ordered bits.
struct valuelist {
    using key64 = std::uint64_t;
    Int4 var, most;                       // no more values than that
    boolean text;
    std::vector<Int4> first;              // the observation that brought the value
    valuelist(Int4 variable, Int4 limit);
    Int4 n() const { return Int4(first.size()); }
    // A block's keys; what lacks a value leaves the mask unless it is kept as one.
    void getkeys(Int4 firstob, Int4 count, boolean keepmissing, UByte* mask, key64* out) const;
    // The number of each observation under the mask into out; with `add` new values get one, else they have -1. False
    // when there were too many.
    boolean getnumbers(Int4 firstob, Int4 count, const UByte* mask, const key64* key, boolean add, Int4* out);
    std::vector<Int4> order() const;      // the numbers, by ascending value
    Double value(Int4 number) const { return getobs(var, first[std::size_t(number)]); }

private:
    std::vector<key64> keys;
    std::vector<Int4> slots;
    Int4 shift;
    boolean same(Int4 number, key64 key, Int4 obs) const;
    std::size_t placeof(key64 key, Int4 obs) const;
};

// What belongs to a table: whether missing values are values, and a variable (0 none) that where it is 0 leaves the
// cell without an entry.
struct tablesample { boolean keepmissing = false; Int4 subpop = 0; };

// One variable, or rows and columns.
constexpr Int4 onewayrows = 3000, twowayrows = 300, twowaycols = 20;
struct counttable {
    std::vector<valuelist> lists;
    Int4 stride = 1;
    Double n = 0;                         // observations that were added
    std::vector<Double> cells;            // by numbers of values, rows `stride` apart
    explicit counttable(const std::vector<Int4>& vars);
    Double& at(Int4 i, Int4 j) { return cells[std::size_t(i * stride + j)]; }
};
// 0, 1, 134, 401, 402 (printed).
Int4 filltable(const tablesample& s, counttable& t);

// The numbers of a block's observations among the values of the table's first list; -1 for those that don't belong to
// it. 0, 401, 402.
Int4 numberblock(const tablesample& s, counttable& t, Int4 first, Int4 n, Int4* numbers);
// one(obs, number) for the observations of the run. 0, 1, 401, 402 (printed).
template <class F> Int4 overnumbers(const tablesample& s, counttable& t, F one) {
    Int4 numbers[blocksize];
    return overblocks([&](Int4 first, Int4 n) -> Int4 {
        if (Int4 rc = numberblock(s, t, first, n, numbers)) return rc;
        for (Int4 i = 0; i < n; i++) one(first + i, numbers[i]);
        return 0;
    });
}

// Which observations of a block have the values and a weight above 0, for a table of the lists; keys[j] are those of
// list j. 0, 401, 402.
Int4 tableblock(const std::vector<valuelist>& lists, boolean keepmissing, Int4 first, Int4 n, UByte* mask,
                Double* weight, valuelist::key64 (*keys)[blocksize]);

}  // namespace velmo
