// The items of infix, which a dictionary of infix holds too.
#pragma once
#include "commands/files/dictionary.h"

namespace velmo {

// One item of infix, whose first token is in hand.
Int4 infixitem(dicttokens& t, fieldtable& table);

}  // namespace velmo
