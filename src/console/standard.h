// Standard input and output, as terminal and pipe share them.
#pragma once
#include <string_view>
#include "base/types.h"

namespace velmo {

// A reader that has gone away ends the session; a full disk may have room again.
void putall(std::string_view text);
void flushall();
// Some output could not be written.
boolean output_failed();
// The next line of standard input: its length without the line end, or a typedend. What doesn't fit is dropped. On a
// terminal an end is the user's (typed_end), and more may come.
Int4 readline(char* buf, Int4 n, boolean onterminal);
// A sound, even where output goes to a file.
void ringbell();

}  // namespace velmo
