// The print calls. All output of the system leaves by these; each tests the level, writes to `results`, and
// returns breakpending, so that a loop of prints stops by testing the result. prt takes text from users and data
// (braces show); prtraw takes VTML written by the program.
#pragma once
#include <cstdarg>
#include <string_view>
#include "base/state.h"

namespace velmo {

// True when text of the present outlevel shows. When not, the print is counted and the poll run at times.
boolean levelshows();

Int4 prt(std::string_view text);               // colour by outlevel, braces escaped
Int4 prtraw(std::string_view text);            // VTML, no colour set
Int4 prtquiet(std::string_view text);          // braces escaped, no colour set
Int4 prtf(const char* form, ...) __attribute__((format(printf, 1, 2)));      // prt of a printf form, any length
Int4 prtrawf(const char* form, ...) __attribute__((format(printf, 1, 2)));
Int4 prtvf(const char* form, va_list args);    // prt of a printf form whose arguments are a list
Int4 prtc(char ch);                            // newline and blank by prtraw, else by prt
Int4 prtrep(char ch, Int4 n);                  // n copies; none when n < 1
Int4 prtblanks(Int4 n);
Int4 prtnl();
Int4 prtbar();                                 // {c |} in the level's colour
Int4 prtdash(Int4 kind);                       // a rule over the whole line
Int4 prthi(Int4 mode, std::string_view text);  // highlighted
Int4 prterr(std::string_view text);            // outlevel 3, out of asis and paragraph modes, prt
void prtreset();                               // back to vtml mode when the level shows
void prtfresh();                               // to the left margin when the level shows
Int4 prtflush();                               // the unfinished line shows at once, when the level shows; logs written
void prtpartial();                             // the same at any level, as at a command's end
Int4 prtpage(std::string_view text);           // never causes a pause
Int4 prtstatus(std::string_view text);
void prttyped(std::string_view line, boolean seen);    // a typed line, ended; to the logs only when the user sees it
Int4 prtnum(const char* fmt, Double value);    // fmtnum, printed
void prtcolour();                              // the colour of the present outlevel, when it shows

}  // namespace velmo
