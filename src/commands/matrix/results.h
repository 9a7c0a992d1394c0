// What return, sreturn and estimates share: the subcommands that fill and show a family of results, from the cursor on.
#pragma once
#include "stored/families.h"

namespace velmo {

enum programclasses : UByte { class_none, class_r, class_s, class_e };

Int4 putscalar(family f);                        // name = exp
Int4 takematrix(family f);                       // name [=] matrix, which is the user's no longer
template <family f> Int4 putmacro(std::string_view name, std::string_view text) { return stored_put(f, name, text); }
Int4 listfamily(family f);                       // as family(name) = value
Int4 nothingbehind();                            // 198 when the line goes on

}  // namespace velmo
