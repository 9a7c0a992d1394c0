// The rows that a reader of text adds to a dataset which had none. A row is put together apart from the rectangle,
// since rows there may move while it is read (a value label that grows needs room), and becomes an observation at once.
#pragma once
#include <string_view>
#include <vector>
#include "data/cells.h"

namespace velmo {

// A cell of the row in hand, by variable: what doesn't depend on the observation.
struct rowcell { Int4 var; UInt4 offset; UByte type; };

// State
extern std::vector<UByte> rowinhand;

// With the variables made and no rows yet: rows as short as these need, the row in hand all missing.
void rows_start();
rowcell rows_cell(Int4 var);
void rows_clearcell(const rowcell& cell);
inline void rows_number(const rowcell& cell, Double value) {
    writecell(rowinhand.data() + cell.offset, cell.type, value);
}
// Stores the text in a string cell, cut to its type. In a numeric cell, the value by the number rule: an empty text is
// missing, `obs` is what a message says. The text needs the margins of plainnumber. 0 or numbers_read's codes.
Int4 rows_text(const rowcell& cell, std::string_view text, boolean quoted, Int4 obs);
// The data in memory give way to a file's, and the estimates with them.
void replacedata();
// The row in hand becomes an observation if the `if` test holds for it. 0, or 901 (printed).
Int4 rows_add();
// The end: the flags of the dataset, and how many observations were read. A failure other than Break, and other than
// one with `keep`, leaves an empty dataset, as does a file without observations. rc back.
Int4 rows_end(Int4 rc, boolean keep = false);

}  // namespace velmo
