// Log files on the console stream: the batch log here, log and cmdlog later. A log's text never shows an error:
// a write that fails leaves the log open and silent.
#pragma once
#include "base/types.h"

namespace velmo {

// Opens the batch log `name`, truncating it, as VTML or as plain text; false when it can't be opened.
boolean batchlog_open(const char* name, boolean vtml);
void batchlog_close();

}  // namespace velmo
