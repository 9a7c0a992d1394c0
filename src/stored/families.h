// Stored results: what one command leaves for the next to read, in families that are rows of one table.
//   r()       a built-in command of r-class clears it once its arguments have parsed, and posts its scalars and macros
//             one at a time. The first 20 scalars lie in a fixed table, later ones are objects.
//   e()       what the last estimation left, with the objects of its own that nobody names (obj_estimate).
//   s()       macros, written at once by s-class programs.
//   return()  what an r-class program is building, under its level. When the program ends well it becomes r(), in place
//             of all that was there; when it fails it is dropped.
//   named     the user's own scalars and matrices, visible at every level.
// All are objects of core/objects: a scalar a Double, a macro a text, a matrix three objects (body, names of rows,
// names of columns) of neighbouring types. In a family a name is one result: the newer kind takes it from the others.
#pragma once
#include <string>
#include <string_view>
#include <vector>
#include "base/types.h"

namespace velmo {

enum family : UByte { r_results, e_results, s_results, return_results, named_results };
enum resultkind : UByte { result_scalar, result_macro, result_matrix, result_function, result_none };
constexpr Int4 nresultkinds = result_none;
extern const char* const resultkindwords[nresultkinds];        // scalars, macros, matrices, functions

// The word before the parenthesis (r, e, s, return); false when it is no family's.
boolean family_find(std::string_view word, family& f);
const char* family_word(family f);
// The type of objects that hold a kind (of a matrix the body; those of its names follow), 0 when the family has none.
// That of return() is the present program level's.
Int4 family_type(family f, resultkind kind);
// All of a family's types, its own objects' last; their number.
constexpr Int4 mostfamilytypes = 6;
Int4 family_types(family f, Int4 (&types)[mostfamilytypes]);

// Posts a scalar, or a macro: an empty text drops it. 0 or 950 (printed).
Int4 stored_put(family f, std::string_view name, Double value);
Int4 stored_put(family f, std::string_view name, std::string_view text);
// Takes a name from the other kinds, for who posts a kind himself.
void stored_claim(family f, std::string_view name, resultkind kind);
// What a name is; the value of a scalar or a macro, the rest is where family_type says.
resultkind stored_get(family f, std::string_view name, Double& value, std::string& text);
boolean stored_drop(family f, std::string_view name);           // all that has the name; false when there is none
std::vector<std::string> stored_names(family f, resultkind kind);      // in the order posted
void stored_clear(family f);
// Posts what is in `from` under names that `to` has not. 0 or 950 (printed).
Int4 stored_add(family from, family to);
// Moves a matrix, without copying, under a name that may be taken in its new family; false when there is none.
boolean stored_movematrix(family from, std::string_view name, family to, std::string_view newname);

// The kth scalar of r(), from 1, in the order posted: missing where there is none.
Double rscalar(Int4 k);
// r(), as commands post it.
inline void rclear() { stored_clear(r_results); }
inline void rstore(std::string_view name, Double value) { stored_put(r_results, name, value); }
inline void rmacro(std::string_view name, std::string_view text) { stored_put(r_results, name, text); }

// At the end of a program's level, still its own: what an r-class program (progclass 1) built becomes r(), and anything
// else is dropped, so that the next one begins with nothing built. A level that failed leaves with class 0.
void results_leave(UByte progclass);

}  // namespace velmo
