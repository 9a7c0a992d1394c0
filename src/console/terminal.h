// The terminal: what shows finished lines (style.h) and reads typed ones (keys.h, lineedit.h). On a terminal the window
// gives the sizes of line and page, and --more-- waits for a key; anywhere else the text is plain.
#pragma once
#include "base/types.h"

namespace velmo {

// Puts the terminal behind the results stream; call after results_open.
void terminal_attach();
// Some output could not be written.
boolean terminal_failed();

}  // namespace velmo
