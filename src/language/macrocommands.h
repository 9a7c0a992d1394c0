// The commands that define macros: name and value in all their forms.
#pragma once
#include <string_view>
#include "base/types.h"

namespace velmo {

// local, global, macro define, c_local, and the return local family: reads name and value from the cursor, hands them
// to `store` with the name as stored (a local's with its _). Codes printed.
enum definemode : Int4 {
    define_macro = 0,
    define_local = 1,
    define_global = 2,
    define_return = 4,
    define_ereturn = 5,
    define_sreturn = 6,
    define_up = 7
};
Int4 macrodefine(Int4 mode, Int4 (*store)(std::string_view name, std::string_view value));

}  // namespace velmo
