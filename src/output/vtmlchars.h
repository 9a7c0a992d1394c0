// The characters that {c x} names, in two character sets.
#pragma once
#include <string_view>
#include "base/types.h"

namespace velmo {

// State
extern UByte maccharset;       // set charset: 1 mac, 0 latin1

// The code of the character that {c x} names; false when there is none.
boolean vtml_char(std::string_view name, UByte& code, boolean& graphic);
// The latin1 code of a character that is named by a code of the present set.
UByte latin1code(UByte code);

}  // namespace velmo
