// What can happen to a session, and who wants to know. A subsystem that has something to begin, clear or close is a row
// of session/events.def, and names no other place where it must be thought of. Who makes a thing happen tells it by the
// call below; the rows' handlers are called straight, in their order: beginnings from the first row to the last, ends
// from the last to the first, so that a subsystem finds what stands in earlier rows alive.
#pragma once
#include "base/types.h"

namespace velmo {

// What a change of size changed.
enum sizedwhat : Int4 { sized_memory, sized_maxvar, sized_matsize };

// `wanted` is what `run` isn't null says: told apart, since not every compiler knows an address before it links.
template <class type> struct handler {
    using call = type;
    call* run = nullptr;
    boolean wanted = false;
};

// The handlers of a subsystem.
struct subsystem {
    handler<void()> configured = {};         // the preferences are read: settings that they keep are taken
    handler<void()> started = {};            // memory is empty: the state becomes that of a session's start
    handler<void()> commandended = {};       // after each command line, failed or not: must be cheap
    handler<Int4()> levelleft = {};          // a do-file or program ends; the code becomes lastrc if that is 0
    handler<void(boolean)> cleared = {};     // the data have gone; value labels too, unless they are kept
    handler<void()> discarded = {};          // what can be made again, or belongs to the last estimates, goes
    handler<void(sizedwhat)> sized = {};     // a size has changed
    handler<void()> ended = {};              // the session is over; open levels are left after this
};

// The calls, from session/tables.cpp, where the rows are joined. From the first row to the last.
void tellconfigured();
void tellstarted();
void tellsized(sizedwhat what);
// From the last row to the first.
void tellcommandended();
void telllevelleft();
void tellcleared(boolean keeplabels);
void telldiscarded();
void tellended();

}  // namespace velmo
