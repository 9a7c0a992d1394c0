// The command table's rows. The table itself is commands.def, made into an array by session/tables.cpp; the
// dispatcher (language/turn) reads it. A row without a handler ends the search: its command isn't built in.
#pragma once
#include "base/types.h"

namespace velmo {

enum commandflags : UInt2 {
    cmd_block = 1,       // may open a block, also while lines are skipped
    cmd_class = 2,       // obeyed only while the class system is on
    cmd_byable = 4,      // may stand behind a by prefix
    cmd_bysilent = 8,    // no heading for each group
    cmd_prefix = 16,     // a command follows: behind the word, or, with cmd_colon, behind a colon
    cmd_colon = 32,
    cmd_groups = 64,     // by itself: not behind another by
    cmd_loop = 128,      // its block is run again and again
    cmd_filename = 256,  // the name of a file follows the word
};

struct command {
    const char* word;
    UByte min;
    Int4 (*handler)();   // null: not built
    UInt2 flags;
    Int2 from, until;    // versions in which the row exists, inclusive
};

extern const command* const commands;    // grouped by first letter: _ then a to z
extern const Int4 ncommands;

// The row that `word` selects among those of the present version, in table order; null when none.
const command* commandrow(const char* word);
// The same among the rows of all versions.
const command* commandrow_any(const char* word);
// The full name of the built-in that `word` abbreviates, without version gates, or null.
const char* builtinname(const char* word);

// State
extern UByte classsystem;             // set beta

}  // namespace velmo
