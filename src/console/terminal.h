// The terminal: a front end that shows finished lines (style.h) and reads typed ones (keys.h, lineedit.h). Its window
// gives the sizes of line and page, and --more-- waits for a key.
#pragma once
#include "base/frontend.h"

namespace velmo {

extern const frontend terminalfront;

}  // namespace velmo
