// tabulate, its forms: the handler has read the variable list, and tells by the options which form it is. Each reads
// the options of its own.
#pragma once
#include "estimate/tables.h"

namespace velmo {

// 0, or the code of what failed; printed.
Int4 tabulate_oneway();
Int4 tabulate_twoway();
// By one or two variables, from the vars on; oneway: the analysis of variance is the point, the table is extra.
Int4 tabulate_summarize(Int4 x, const std::vector<Int4>& by, boolean oneway);

// missing and subpop(): 0, 198, 109, 111, 103.
Int4 gettablesample(tablesample& s);
// The name of a new matrix from an option, empty without it: 0, 198.
Int4 getmatrixname(const char* option, Int4 min, std::string& name);
// A vector of the values of a table's list, in their order.
Int4 putvalues(const std::string& name, const valuelist& values, const std::vector<Int4>& order, boolean across);


}  // namespace velmo
