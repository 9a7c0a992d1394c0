// The text of a cell as the writers of text files put it.
#pragma once
#include <string>
#include <vector>
#include "data/cells.h"
#include "data/labels.h"

namespace velmo {

struct celloptions { boolean label, quote; };

// What does not depend on the observation: a variable's type, format and value label.
struct cellwriter {
    Int4 var;
    boolean string;
    const char* format;
    vallabel label;
    UByte type;
    UInt4 offset;         // in the row
};
void cells_start(std::vector<cellwriter>& cells, const Int4* vars, Int4 n, const celloptions& o);
// Appends the text of a cell to `out`, trimmed: a label's text for a labelled value, nothing for a missing one. Quotes
// stand around texts when asked, and then blanks within them stay.
void cell_append(const cellwriter& cell, Int4 obs, const celloptions& o, std::string& out);

// The same at `out`, for a row of the data; the end of the text, of cellroom bytes at most.
inline constexpr std::size_t cellroom = 520;
char* cell_put(const cellwriter& cell, const UByte* row, const celloptions& o, char* out);

}  // namespace velmo
