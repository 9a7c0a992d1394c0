// Macro expansion: `name' and $name in cmdbuf are replaced by their values before a line is parsed, in place, left to
// right; what a reference produces is itself expanded at the same place, at most 21 times. Beside plain macros a
// reference may be a result `r(name)', a characteristic `owner[name]', an expression `=exp' or an extended function
// `:text'. The line is worked on where it stands: no other buffer is needed.
#pragma once
#include <string>
#include <string_view>
#include "core/tokenizer.h"

namespace velmo {

// Where the marks of a line in cmdbuf stand, if that is known: its length, the first $, backquote or backslash, and the
// bytes behind the last one.
struct linemarks { Int4 length = -1, first = 0, behind = 0; };
// Expands cmdbuf and sets the cursor to its start. 0, or 920 (printed) when a line grows past conslen - 1 or a
// reference goes round. With execflag 0 nothing changes. A line without $, backquote or backslash costs one scan.
Int4 expandmacros(const linemarks& marks = {});

// The value of a macro by its stored name with the special names (S_DATE, _*, ...) as a reference sees it.
std::string macrovalue(std::string_view name);

}  // namespace velmo
