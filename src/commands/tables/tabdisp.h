// A table of values that the data hold: keys, where each combination stands, and what a place shows. `tabdisp` lays it
// out; nothing here prints.
#pragma once
#include <string>
#include <unordered_map>
#include <vector>
#include "data/labels.h"

namespace velmo {

constexpr Int4 mostcells = 5, mostby = 4, mostkeys = 3, keypool = 3000;

// A variable of a key or of cells, and how its values are shown.
struct tabslot {
    Int4 var = 0;
    boolean text = false;                // a string
    Int4 limit = 0;                      // of its place
    char fmt[fmtsize] = "";
    vallabel label;
    std::vector<Int4> values;            // of a key: an observation of each value, in their order
    std::string name() const, heading() const;       // heading: the label, else the name
    // The value of an observation as it is shown; empty for a missing one and an empty string.
    std::string valuetext(Int4 obs) const;

private:
    std::string numbertext(Double value) const;
};
// Reads a slot; `fmt` (empty: its own) is not for dates. What is wider than `limit` is shown by a narrower format.
tabslot makeslot(Int4 var, std::string_view fmt, Int4 limit);

struct tabvalues {
    std::vector<tabslot> keys;           // row, column, super-column, as many as there are
    std::vector<tabslot> by, cells;
    // The first observation of each combination of values, by the digits of numbers into `values`, those of by() ahead:
    // as all values share the pool, seven of them stay below 2^63.
    std::unordered_map<std::uint64_t, Int4> places;
    Int4 place(const std::vector<Int4>& combination) const;      // 0 for none
};
// Fills the values and places from the observations selected. 0, 1, 134 too many values, 2000.
Int4 readvalues(tabvalues& t);

}  // namespace velmo
