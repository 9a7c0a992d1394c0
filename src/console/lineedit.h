// Typed lines with editing, history and completion (complete.h), where the program was built with libedit and the
// terminal can do it. History is the last 1000 lines of all sessions, in ~/.config/velmo/history.
#pragma once
#include <string>
#include "base/types.h"

namespace velmo {

// Starts the editor when first asked; false when there is none, and lines must be read plainly.
boolean lineedit_ready();
// A line, without its end, typed behind `prompt`: what stands on the screen's last line, with its colour codes. `text`:
// not a command, Tab is a Tab. 0, or a typedend (base/frontend.h). Break gives an empty line and leaves breakpending.
Int4 lineedit_read(const std::string& prompt, boolean text, std::string& line);

}  // namespace velmo
