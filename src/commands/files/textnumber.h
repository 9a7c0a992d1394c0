// The number rule of the readers of text: how the text of a cell becomes the value of a numeric variable. A point is
// missing; a number is itself; what is no number may be a text of the variable's value label, to which `automatic` adds
// it; all else is missing with a message, which is no error.
#pragma once
#include <string_view>
#include "base/sixteen.h"

namespace velmo {

// Begins reading: `uses` lets value labels' texts count, `automatic` adds new ones to the labels attached.
void numbers_start(boolean uses, boolean automatic);
// The value of `text` for numeric variable `var`; missing when there is none. A text that stood in quotes is no
// number but may be a label's. The message, when there is one, names variable and observation unless obs is 0; readable
// is then false. 0, or 134 (printed) when a label can't take another text.
Int4 numbers_read(std::string_view text, boolean quoted, Int4 var, Int4 obs, Double& value, boolean& readable);
// Stores the labels that have grown: 0 or 950 (printed).
Int4 numbers_end();
// With `automatic`, the format of a labelled variable widened to the label's longest text.
void numbers_widen(Int4 var);

// The value of a plain decimal of 1 to 16 bytes, which most cells are; false when it is something else. Reads
// text[0..15] and the 17 bytes ahead of the text's end, so a buffer needs a margin on both sides.
inline constexpr Int4 numbermargin = 17;
inline boolean plainnumber(std::string_view text, Double& value) {
    if (text.size() - 1 > 15) return false;
    plaindecimal d = plaindecimalof(text.data(), Int4(text.size()));
    if (!d.digits) return false;
    value = plainvalue(text.data() + text.size(), d);
    return true;
}

}  // namespace velmo
