// The terminal: what shows finished lines and reads typed ones. On a terminal lines have colours and real rules,
// and --more-- waits for a key; anywhere else the text is plain, with - | + for line graphics and no escapes.
#pragma once
#include "base/types.h"

namespace velmo {

// Puts the terminal behind the results stream; call after results_open.
void terminal_attach();

}  // namespace velmo
