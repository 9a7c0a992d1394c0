// What tables over the values of variables share: how a value is shown beside its row or above its column, and the
// headings of the two.
#pragma once
#include <string>
#include <string_view>
#include <vector>
#include "data/dataset.h"
#include "data/labels.h"

namespace velmo {

std::string variabletitle(Int4 var);                                // its label, or its name
std::string fitted(std::string_view text, Int4 width);              // right-justified, or its first columns
std::string centred(std::string_view text, Int4 width);             // blanks ahead of it

// The values of a variable as tables show them.
struct shownvalues {
    Int4 var;
    boolean text;
    vallabel label;
    char format[fmtsize];
    shownvalues(Int4 variable, boolean labels, const char* usual = "%9.0g");
    std::string at(Int4 obs) const;             // its label, or the value without blanks
    const char* labelat(Int4 obs) const;        // null without one
    Int4 width() const;                         // of a string, or the longest label; 0 for other numbers
};

// The lines above the last one of a heading: `left` wrapped to end at column `width`, and right of the bar `above`
// centred over `columns`, its last line on the one ahead of left's last. Then the last line up to and with the bar.
Int4 tableheading(std::string_view left, Int4 width, std::string_view above, Int4 columns);

}  // namespace velmo
