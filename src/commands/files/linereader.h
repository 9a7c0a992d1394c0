// Lines of a text file for dictionaries and for data in fixed columns. Byte 26 ends the file, CR is dropped, and a tab
// moves to the next multiple of 8 with blanks. With a record length, exactly so many bytes are a line: line ends are
// neither ends nor counted, and a tab is a byte like others.
#pragma once
#include <string_view>
#include "commands/files/textnumber.h"
#include "core/webfile.h"

namespace velmo {

inline constexpr Int4 textlinesize = 32767;          // bytes in the line, where columns lie
inline constexpr Int4 longestline = 32757;       // one this long is refused
inline constexpr Int4 lines_atend = -1;

struct linereader {
    bytereader bytes;
    Int4 lrecl;                       // record length, 0: lines end by a line end
    UByte ended;                      // byte 26 has been met
    Int4 len;
    char room[numbermargin + textlinesize + 1 + numbermargin];
    char* text() { return room + numbermargin; }
    std::string_view line() { return {text(), std::size_t(len)}; }
};
void lines_start(linereader& r, Int4 handle);
// The next line, with a zero behind it: 0; lines_atend; 1 a Break; 611 (an empty line) and 691, printed.
Int4 lines_next(linereader& r);

}  // namespace velmo
