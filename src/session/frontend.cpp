// What stands between the results stream and the front end: whether a pause is wanted is the session's to say.
#include "base/frontend.h"
#include "base/poll.h"
#include "base/state.h"
#include "language/dofile.h"
#include "output/results.h"
#include "session/session.h"

namespace velmo {

namespace {

// Nobody reads along in a batch or a do-file, and who has typed ahead doesn't wait.
Int4 pause(const UByte* record) {
    if (batchmode || dofile || endpending || front->waits()) return ' ';
    Int4 key = front->pause(record);
    followwindow();
    return key;
}

Int4 consume(void*, const UByte* record, Int4 code) {
    switch (code) {
    case vcode_line: front->line(record); return 0;
    case vcode_partial: front->partial(record); return 0;
    case vcode_flush: front->flush(); return 0;
    case vcode_closing: front->end(); return 0;
    case vcode_more: return pause(record);
    default: return 0;
    }
}

}  // namespace

boolean session_attach(const frontend& f) {
    if (!results_open()) return false;
    front = &f;
    vstream_setcallback(console, consume, nullptr);
    front->begin();
    followwindow();
    return true;
}

}  // namespace velmo
