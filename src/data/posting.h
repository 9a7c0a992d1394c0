// Dataset files written row by row while the data in memory stay as they are. An open one is an object of kind 19 under
// the user's handle:
//   | status, 272 bytes | name of the file with its zero | room for `every` rows |
// All columns are of one type. The file reads back as a dataset only once it has been closed.
#pragma once
#include <string>
#include <vector>
#include "base/types.h"

namespace velmo {

struct postchoice {
    boolean replace = false;
    UByte type = typefloat;        // or typedouble
    Int4 every = 0;                // rows per write, 1 to 32000; else as many as maxvar * 16 bytes hold, 2 at least
};
// Opens the file `path` and the handle; on a failure neither is left. 602, 603, 693, 699, 950.
Int4 post_open(const std::string& name, const std::string& path, const std::vector<std::string>& columns,
               const postchoice& o);
Int4 post_columns(const std::string& name);      // of an open handle; 0 when there is none
// A row, stored by the rules of putobs. A file that can't be written is given up: 693, 699.
Int4 post_row(const std::string& name, const std::vector<Double>& values);
Int4 post_close(const std::string& name);        // 0, 693, 699
// At the end of the session, by discard and by postclose _all. 0, or the first failure's code.
Int4 post_closeall();

}  // namespace velmo
