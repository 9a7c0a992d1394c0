// The dataset file: one header, the tables of the variables almost as they stand in memory, characteristics, the rows
// as they stand, value labels. Formats 102 to 108, 110 and 111 are read, 108, 110 and 111 written:
//
//   | header 109 bytes | types | names | sort list | formats | value-label names | variable labels |
//   | characteristics, a record of type 0 at their end | nobs rows of width bytes | value labels up to the end |
//
// Nothing in a file is believed: every size, count, offset and terminator is checked before it is used, and no memory
// is asked for on a count's word alone. A file that breaks a rule is code 610, one that ends early 692. What can be put
// right harmlessly is: an unfit display format becomes the default one, the sort list ends ahead of an entry that
// cannot be, an invalid value-label name is none, labels are cut at 80. Control characters are 610 in names and become
// blanks in labels and formats, with a note: those are shown, and go into commands. Cells and characteristics keep
// theirs.
//
// dtaread.h gives a file out piece by piece, dtawrite.h writes the pieces, dtamemory.h takes a file's variables and
// rows into memory. All failures have been printed, with the file's name.
#pragma once
#include <string>
#include <vector>
#include "base/types.h"

namespace velmo {

inline constexpr Int4 dta_whole = 111, dta_midscale = 110, dta_old = 108;     // the formats that are written

// What stands ahead of the characteristics. Vectors have an entry for each variable; variable v is entry v - 1.
struct dtahead {
    Int4 format = dta_whole;
    Int4 nobs = 0;
    std::string label;                   // of the dataset, up to 80 bytes
    std::string stamp;                   // "dd Mon yyyy hh:mm"; empty in formats that have none
    std::vector<UByte> types;            // storage types as memory has them, whatever the format
    std::vector<std::string> names;      // valid and different, or a sample's
    std::vector<UInt2> sort;             // variable numbers of the sort key, without a zero at the end
    std::vector<std::string> formats;
    std::vector<std::string> vallabels;  // "" for none
    std::vector<std::string> varlabels;  // "" for none
    Int4 nvar() const { return Int4(types.size()); }
    // The bytes of a row.
    Int4 width() const {
        Int4 n = 0;
        for (UByte type : types) n += varsize(type);
        return n;
    }
};

}  // namespace velmo
