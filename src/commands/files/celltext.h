// What the writers of text files share: the text of a cell, and the file that is complete or not there.
#pragma once
#include <functional>
#include <string>
#include <vector>
#include "core/webfile.h"
#include "data/cells.h"
#include "data/labels.h"

namespace velmo {

struct celloptions { boolean label, quote; };

// What does not depend on the observation: a variable's type, format and value label.
struct cellwriter {
    Int4 var;
    boolean string;
    boolean asis;         // the format has its own way of filling its width
    std::string format;   // without a decimal comma: files have points
    vallabel label;
    UByte type;
    UInt4 offset;         // in the row
    Int4 width;           // of the format, as written; 0 without digits
};
void cells_start(std::vector<cellwriter>& cells, const Int4* vars, Int4 n, const celloptions& o);
// Puts the text of a cell at `out`, trimmed: a label's text for a labelled value, nothing for a missing one. Quotes
// stand around texts when asked, and then blanks within them stay. The end of the text, of cellroom bytes at most.
inline constexpr std::size_t cellroom = 520;
char* cell_put(const cellwriter& cell, const UByte* row, const celloptions& o, char* out);
// The same for columns: the format's text for a missing value, no blank of a string taken away. The text is to be
// right-aligned in cell_columns.
char* cell_putall(const cellwriter& cell, const UByte* row, const celloptions& o, char* out);
inline Int4 cell_columns(const cellwriter& cell, const celloptions& o) {
    return cell.width + (cell.string && o.quote ? 2 : 0);
}

// Opens the file behind `using`, with `suffix` unless its name has one, and lets `body` write, which returns 0 or a
// code. A file that was not written whole is removed: 1 after a Break, 699 (printed) after a failed write.
Int4 writetext(const char* suffix, boolean replace, const std::function<Int4(bytewriter&)>& body);

}  // namespace velmo
