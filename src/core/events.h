// What can happen to a session, and who wants to know. A subsystem that has something to begin, clear or close is a row
// of session/events.def, and names no other place where it must be thought of. Who makes a thing happen tells it by the
// call below; the rows' handlers are called straight, in their order: beginnings from the first row to the last, ends
// from the last to the first, so that a subsystem finds what stands in earlier rows alive.
#pragma once
#include "base/types.h"

namespace velmo {

// What a change of size changed.
enum sizedwhat : Int4 { sized_memory, sized_maxvar, sized_matsize };

// The handlers of a subsystem; null where it doesn't care.
struct subsystem {
    void (*configured)() = nullptr;              // the preferences are read: settings that they keep are taken
    void (*started)() = nullptr;                 // memory is empty: the state becomes that of a session's start
    void (*commandended)() = nullptr;            // after each command line, failed or not: must be cheap
    Int4 (*levelleft)() = nullptr;               // a do-file or program ends; the code becomes lastrc if that is 0
    void (*cleared)(boolean keeplabels) = nullptr;    // the data have gone; value labels too, unless they are kept
    void (*discarded)() = nullptr;               // what can be made again, or belongs to the last estimates, goes
    void (*sized)(sizedwhat what) = nullptr;     // a size has changed
    void (*ended)() = nullptr;                   // the session is over; open levels are left after this
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
