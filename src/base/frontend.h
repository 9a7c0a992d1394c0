// The front end: what gives typed lines to the session and shows what it prints. It is a table of calls, so that a
// terminal, a plain pipe, a test or a window are tables of their own, and nothing of the session asks which one it is.
// It knows nothing of commands; whether a pause is wanted, and what a line means, is settled before it is called. A
// call that a front end doesn't have stays as it is here: there is nobody who types, and nobody who looks.
//
// Lines come as records of output/vtml.h. The calls for them come from inside print calls: they must not print.
#pragma once
#include <string_view>
#include "base/types.h"

namespace velmo {

enum typedend : Int4 {
    typed_over = -1,       // the input has ended
    typed_end = -2,        // the user has ended what reads here, and may type on
};

struct frontend {
    // Lines are about to come; the last one has come.
    void (*begin)() = [] {};
    void (*end)() = [] {};

    // ---- What is typed.

    // A line into buf (n bytes, without its line end; a zero behind it): its length, or a typedend. Break leaves
    // breakpending and an empty line. `text`: not a command, so that Tab is a Tab.
    Int4 (*typedline)(char* buf, Int4 n, boolean text) = [](char* buf, Int4, boolean) {
        *buf = 0;
        return Int4(typed_over);
    };
    // Text for commands has come that nobody has read.
    boolean (*waits)() = [] { return boolean(false); };
    // Who types sees it there, so that the echo must not be shown again.
    boolean (*echoes)() = [] { return boolean(false); };

    // ---- What is shown.

    void (*line)(const UByte* record) = [](const UByte*) {};
    // The last line, unfinished: the next one, finished or not, takes its place.
    void (*partial)(const UByte* record) = [](const UByte*) {};
    void (*flush)() = [] {};                 // what has come must be seen now
    // Shows this line until a key comes: the key, 3 for Break. A blank where nobody can press one.
    Int4 (*pause)(const UByte* record) = [](const UByte*) { return Int4(' '); };
    void (*status)(std::string_view text) = [](std::string_view) {};     // what goes on; empty: nothing any more
    // A graph has been drawn: the file holds all of it.
    void (*graph)(const char* file) = [](const char*) {};
    void (*bell)() = [] {};
    // The size of what lines are shown on, in characters; false when there is none.
    boolean (*window)(Int4& columns, Int4& rows) = [](Int4&, Int4&) { return boolean(false); };

    // ---- Turns.

    // A program that the session runs gets keyboard and screen, and gives them back.
    void (*lend)(boolean toprogram) = [](boolean) {};
    // Looks after events while a command runs: called by the poll. Null when there are none. It must not print.
    void (*events)() = nullptr;
};

// State
inline constexpr frontend nofrontend{};
inline const frontend* front = &nofrontend;      // set by session_attach

}  // namespace velmo
