// Variable lists: the existing list (names, abbreviations, ranges, patterns, groups, time-series operators) and the
// new list (types, value labels, numbered series). Results go to vl_vr, vl_rcp, vl_n and the groups of stdparse.h.
#pragma once
#include <string>
#include <vector>
#include "core/tokenizer.h"
#include "data/dataset.h"

namespace velmo {

struct tsvar;    // data/timeseries.h

// State: the list of the running command
extern Int4* vl_vr;           // variables, maxvar + 1 at most
extern tsvar* vl_rcp;         // their time-series operators

// Reads from the cursor up to a stop word; existing names are those of a table. 0 or a code, printed.
Int4 existinglist(const nametable& among = datatable());
Int4 newlist();
// The names stem1 to stem9 between the two ends of a numbered series: same stem, digits at both ends, rising; else 198.
Int4 seriesnames(const std::string& first, const std::string& last, std::vector<std::string>& names);
// True for a word that ends a list: with using if in % = , [ and the end of the line.
boolean isstopword(const char* word);

}  // namespace velmo
