// Reading lines by a field table.
#pragma once
#include "commands/files/dictionary.h"

namespace velmo {

// Observations first..last of the data into the dataset, whose variables are made. 0, 1, 611, 612 (what was read
// stays), 691, 901 and those of the number rule.
Int4 readfields(linereader& lines, const fieldtable& table, Int4 first, Int4 last);

}  // namespace velmo
