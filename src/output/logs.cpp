#include "output/logs.h"
#include "base/platform.h"
#include "output/results.h"

namespace velmo {

namespace {
Int4 batchlog = -1;
boolean batchvtml = false;
}  // namespace

boolean batchlog_open(const char* name, boolean vtml) {
    if (!console || batchlog >= 0) return false;
    batchlog = fileopenwrite(name, true, false, false);
    if (batchlog < 0) return false;
    batchvtml = vtml;
    boolean refused = vtml ? vstream_lograw(console, batchlog, 1) : vstream_logline(console, batchlog, 1);
    if (!refused) return true;
    fileclose(batchlog);
    batchlog = -1;
    return false;
}

void batchlog_close() {
    if (batchlog < 0) return;
    if (console) batchvtml ? vstream_lograw(console, batchlog, 2) : vstream_logline(console, batchlog, 2);
    fileclose(batchlog);
    batchlog = -1;
}

}  // namespace velmo
