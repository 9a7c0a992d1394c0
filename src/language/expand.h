// Macro expansion: `name' and $name in cmdbuf are replaced by their values before a line is parsed, in place, left to
// right; what a reference produces is itself expanded at the same place, at most 21 times. Beside plain macros a
// reference may be a result `r(name)', a characteristic `owner[name]', an expression `=exp' or an extended function
// `:text'. Work space comes from a stack of blocks of macrolen bytes, released in reverse order.
#pragma once
#include <string>
#include <string_view>
#include "core/tokenizer.h"

namespace velmo {

// A whole number from the cursor within lo..hi; 198 (printed).
Int4 wholetoken(Int4& value, Int4 lo, Int4 hi);
// Where the marks of a line in cmdbuf stand, if that is known: its length, the first $, backquote or backslash, and the
// bytes behind the last one.
struct linemarks { Int4 length = -1, first = 0, behind = 0; };
// Expands cmdbuf and sets the cursor to its start. 0, or 920 (printed) when a line grows past conslen - 1 or a
// reference goes round. With execflag 0 nothing changes. A line without $, backquote or backslash costs one scan.
Int4 expandmacros(const linemarks& marks = {});

// The extended function whose text is at the cursor (behind the colon): its result in `out`. 0 or a code (printed).
// Rows are extfunctions.def.
Int4 extfunc(std::string& out);

// A row of the extended functions; the table is extfunctions.def, joined in session/tables.cpp.
struct extfunction { const char* word; Int4 min; Int4 (*handler)(std::string& out); };
extern const extfunction* const extfunctions;
extern const Int4 nextfunctions;

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

// The value of a macro by its stored name with the special names (S_DATE, _*, ...) as a reference sees it.
std::string macrovalue(std::string_view name);

// Temporary names "__" and six base-36 digits of a counter. A level drops the variables, scalars and files that were
// named since its entry. A name in use, from a file that was saved while it was somebody's, is passed over and never
// dropped.
extern Int4 tempnamecounter, tempfilecounter;
extern Int4 tempnamebase, tempfilebase;      // the counters at the level's entry
std::string newtempname();
boolean istempname(std::string_view name, Int4 from);

}  // namespace velmo
