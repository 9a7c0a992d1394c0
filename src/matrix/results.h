// Stored results: what one command leaves for the next to read.
//   r()       a built-in command of r-class clears it once its arguments have parsed, and posts its scalars and macros
//             one at a time. The first 20 scalars lie in a fixed table, later ones are objects.
//   return()  what an r-class program is building, under its level: types 21000 + level and 22000 + level. When the
//             program ends well they become r(), in place of all that was there; when it fails they are dropped.
//   s()       macros, written at once by s-class programs.
// And the scalars: names for a number or a string, visible at every level.
#pragma once
#include <string>
#include <string_view>
#include <vector>
#include "base/types.h"

namespace velmo {

// State
extern Double oldresults[21];      // _result(0..20)

void rclear();
void rstore(std::string_view name, Double value);
void rmacro(std::string_view name, std::string_view text);
boolean rscalar(std::string_view name, Double& value);
boolean rmacrotext(std::string_view name, std::string& text);
boolean rdrop(std::string_view name);        // false when there is none
std::vector<std::string> rscalarnames();     // in the order posted
std::vector<std::string> rmacronames();

// What the program of the present macrolevel is building. A name is a scalar or a macro: the later one wins. An empty
// text drops the macro. 0 or 950 (printed).
Int4 retstore(std::string_view name, Double value);
Int4 retmacro(std::string_view name, std::string_view text);
boolean retscalar(std::string_view name, Double& value);
boolean retmacrotext(std::string_view name, std::string& text);
boolean retdrop(std::string_view name);
void retclear();
Int4 retadd();                               // takes in those of r() whose names aren't built yet
std::vector<std::string> retscalarnames();
std::vector<std::string> retmacronames();
// A program's level begins with nothing built; at its end (`level` is its macrolevel) what an r-class program
// (progclass 1) built becomes r(), and anything else is dropped. A level that failed leaves with class 0.
void results_enter();
void results_leave(Int4 level, UByte progclass);

Int4 smacro(std::string_view name, std::string_view text);     // an empty text drops it; 0 or 950 (printed)
boolean smacrotext(std::string_view name, std::string& text);
boolean sdrop(std::string_view name);
void sclear();
std::vector<std::string> smacronames();

// Scalars. A string is kept behind the missing value, so that its object is longer than a number's.
Int4 scalarset(std::string_view name, Double value);           // 0 or 950 (printed)
Int4 scalarsettext(std::string_view name, std::string_view text);
enum scalarkind : Int4 { scalar_none, scalar_number, scalar_text };
scalarkind scalarget(std::string_view name, Double& value, std::string& text);
boolean scalardrop(std::string_view name);
std::vector<std::string> scalarnames();                        // in the order made

}  // namespace velmo
