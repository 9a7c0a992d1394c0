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
};
void cells_start(std::vector<cellwriter>& cells, const Int4* vars, Int4 n, const celloptions& o);
// Appends the text of a cell to `out`, trimmed: a label's text for a labelled value, nothing for a missing one. Quotes
// stand around texts when asked, and then blanks within them stay.
void cell_append(const cellwriter& cell, Int4 obs, const celloptions& o, std::string& out);

}  // namespace velmo
