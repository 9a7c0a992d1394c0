// Break and the poll. A signal handler stores into breakpending and does nothing else; every loop over
// observations, and every print call, notices it by polling. Nothing here prints or changes a command's state.
#pragma once
#include <csignal>
#include "base/types.h"

namespace velmo {

// State
extern volatile std::sig_atomic_t breakpending;   // nonzero once Break is honoured; cleared at each turn's start
extern volatile std::sig_atomic_t endpending;     // the signal that ends the session, SIGPIPE: nobody reads it
extern volatile std::sig_atomic_t breakswitch;    // what Break stores: 1, or 0 under nobreak
extern Int4 pollrate;                             // loop rounds between polls, default 100
extern Int4 polltime;                             // least milliseconds between looks at events, default 10
extern Int4 pollticks;                            // rounds since the last poll

// Gives the front end's events a turn if polltime milliseconds have passed since the last one.
void poll();
// The same at once.
void pollnow();
// What loops call in each round: counts, polls every pollrate rounds, and returns breakpending.
inline Int4 tick() {
    if (++pollticks >= pollrate) {
        pollticks = 0;
        poll();
    }
    return breakpending;
}

}  // namespace velmo
