// The print calls. All output of the system leaves by these; each tests whether its role shows, writes to `results`,
// and returns breakpending, so that a loop of prints stops by testing the result. prt takes text from users and data
// (braces show); prtraw takes VTML written by the program.
//
// Every piece has a role, which gives its colour, and by which quietly and capture leave it out. The role is told by
// the call (prttext, prtresult, prtnumber, prtmarkup), or for a whole scope by a guard, when calls without one follow:
//   printing as(out_error);
// A command begins as out_result.
#pragma once
#include <cstdarg>
#include <string_view>
#include "base/state.h"

namespace velmo {

enum outrole : UByte {
    out_result,    // what a command computed
    out_text,      // labels, headings, notes
    out_echo,      // lines of a do-file as they are read
    out_error,
    out_prompt,    // and what is typed behind it
};

struct printing {
    explicit printing(outrole role) : before(present) { present = role; }
    ~printing() { present = before; }
    void now(outrole role) { present = role; }          // another one for the rest of the scope
    static outrole role() { return present; }           // the present scope's
    printing(const printing&) = delete;
    printing& operator=(const printing&) = delete;

private:
    outrole before;
    static inline outrole present = out_result;
};

// In a role of their own.
Int4 prttext(std::string_view text);
Int4 prttextf(const char* form, ...) __attribute__((format(printf, 1, 2)));
Int4 prtresult(std::string_view text);
Int4 prtresultf(const char* form, ...) __attribute__((format(printf, 1, 2)));
Int4 prtnumber(const char* fmt, Double value); // a result
Int4 prtmarkup(std::string_view vtml);         // in the colour of text
Int4 prterr(std::string_view text);            // an error, out of asis and paragraph modes

// In the role of the scope.

// True when text of the present role shows. When not, the print is counted and the poll run at times.
boolean levelshows();

Int4 prt(std::string_view text);               // colour by role, braces escaped
Int4 prtraw(std::string_view text);            // VTML, no colour set
Int4 prtquiet(std::string_view text);          // braces escaped, no colour set
Int4 prtf(const char* form, ...) __attribute__((format(printf, 1, 2)));      // prt of a printf form, any length
Int4 prtrawf(const char* form, ...) __attribute__((format(printf, 1, 2)));
Int4 prtvf(const char* form, va_list args);    // prt of a printf form whose arguments are a list
Int4 prtc(char ch);                            // newline and blank by prtraw, else by prt
Int4 prtrep(char ch, Int4 n);                  // n copies; none when n < 1
Int4 prtblanks(Int4 n);
Int4 prtnl();
Int4 prtbar();                                 // {c |} in the role's colour
Int4 prtdash(Int4 kind);                       // a rule over the whole line
Int4 prthi(Int4 mode, std::string_view text);  // highlighted
void prtreset();                               // back to vtml mode when the role shows
void prtfresh();                               // to the left margin when the role shows
Int4 prtflush();                               // the unfinished line shows at once, when the role shows; logs written
void prtpartial();                             // the same in any role, as at a command's end
Int4 prtpage(std::string_view text);           // never causes a pause
Int4 prtstatus(std::string_view text);
void prttyped(std::string_view line, boolean seen);    // a typed line, ended; to the logs only when the user sees it
Int4 prtnum(const char* fmt, Double value);    // fmtnum, printed
void prtcolour();                              // the colour of the present role, when it shows

}  // namespace velmo
