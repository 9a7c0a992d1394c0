// A value from a text: an expression evaluated once, at the first observation. It sees the whole data, whatever run or
// by-group a command before has left, and starts its running sums anew; a command's own =exp is gone afterwards.
#pragma once
#include <string>
#include <string_view>
#include "expr/compile.h"

namespace velmo {

struct textvalue {
    boolean isstring = false;
    Double number = 0;
    std::string text;
};

// The expression at the cursor, which then stands behind it: 0, or exp_compile's code.
Int4 exp_valuehere(Int4 mode, textvalue& out);
// A text that is an expression and nothing else (198 then); the cursor stays where it is.
Int4 exp_valueof(std::string_view text, Int4 mode, textvalue& out);

}  // namespace velmo
