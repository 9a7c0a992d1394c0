// Number lists: 1/5, 0(.25)1, 1[2]9, 1 3 to 9, 1 3:9 and plain numbers, blanks or commas between them.
#pragma once
#include <string>
#include <string_view>
#include <vector>
#include "base/types.h"

namespace velmo {

inline constexpr Int4 maxnumlist = 1600;

struct numlistrules {
    boolean ascending = false, descending = false;     // strictly
    boolean integer = false, sort = false, missingokay = false;
    Int4 min = 1, max = maxnumlist;                    // elements
    std::string range;                                 // comparisons that all elements must meet, such as >=0 <=100
};

// The numbers of text into out. 0, or with the message printed 121 malformed, 122 too few (a range that yields nothing,
// too), 123 too many, 124 out of order, 125 outside the range, 126 noninteger, 127 missing; 198 for a bad range text.
Int4 numlistparse(std::string_view text, const numlistrules& rules, std::vector<Double>& out);
// The same without the message.
Int4 numlistread(std::string_view text, const numlistrules& rules, std::vector<Double>& out);
// True when text is a list of comparisons.
boolean validrange(std::string_view text);
// One number by %15.0g, trimmed; the whole list with blanks between.
std::string numbertext(Double value);
std::string numlisttext(const std::vector<Double>& numbers);

}  // namespace velmo
