// Time-series operators: their records, their parser and the values they give. A record is shared by all entries of
// a command that have the same operators; at most 100 different ones a command.
#pragma once
#include <string_view>
#include "data/dataset.h"

namespace velmo {

struct tsop {
    Int4 lag;        // L counts minus F counts
    Int4 diff;       // D counts, 0 to 20
    Int4 nseas;      // S operators, 0 to 8
    Int4 seas[8];    // ascending
};
struct tsvar { Int2 op; Int2 unused; Int4 var; };    // a list entry: operator number from 1 (0: none) and variable
inline constexpr Int4 maxtsops = 100;

void ts_reset();                              // forgets the records; the parser calls it for each command
// Parses the letters and counts of "L2D" (no dot). 0, or 198/1000 with the message printed; *number receives the
// record's number from 1, or 0 when the operators cancel out.
Int4 ts_parse(std::string_view ops, Int4* number);
char* ts_text(Int4 number, char* out);        // canonical text, under 20 characters, into out (21 bytes)
// Checks that time (and panel) variable are set and the data sorted by them: 0, 111 ("time variable not set"), 5.
Int4 tsetup();
// The observation of obs's panel whose time is k before obs's, or 0.
Int4 findobs(Int4 obs, Int4 k);
Double tsvalue(Int4 number, Int4 var, Int4 obs);

// State
extern Int4 tsvarnum, tspanelnum;             // set by tsetup; 0 without panel

}  // namespace velmo
