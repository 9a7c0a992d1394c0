#include "base/poll.h"
#include "base/frontend.h"
#include "base/platform.h"

namespace velmo {

volatile std::sig_atomic_t breakpending = 0;
volatile std::sig_atomic_t endpending = 0;
volatile std::sig_atomic_t breakswitch = 1;
Int4 pollrate = 100;
Int4 polltime = 10;
Int4 pollticks = 0;

namespace {
std::int64_t lastturn = 0;
boolean inturn = false;    // a poll inside a poll does nothing
}  // namespace

void pollnow() {
    if (!front->events || inturn) return;
    inturn = true;
    front->events();
    inturn = false;
    lastturn = clockms();
}

void poll() {
    if (front->events && clockms() - lastturn >= polltime) pollnow();
}

}  // namespace velmo
