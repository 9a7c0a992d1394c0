// The standard command form:
//   command [varlist] [=exp] [if exp] [in range] [using file] [weight] [, options]
// A command says what differs from the usual form, and finds the results in the fixed places below and in firstobs,
// lastobs (data/run.h), eqexp and ifexp (expr/program.h), usingname (core/adopath.h):
//   if (Int4 rc = stdparse({.varlist = must, .exp = must, .options = never})) return rc;
// Then it asks for its options one by one and ends with getopt_done. Every failure has been printed.
#pragma once
#include <set>
#include <string>
#include <vector>
#include "core/tokenizer.h"
#include "data/run.h"
#include "expr/program.h"

namespace velmo {

enum weightkind : Int4 { weight_a = 1, weight_f = 2, weight_p = 4, weight_i = 8, weight_all = 15 };
struct weightrow { weightkind kind; const char* word; const char* plural; const char* meaning; };
inline constexpr weightrow weightrows[] = {
    {weight_a, "aweight", "aweights", "analytic"},
    {weight_f, "fweight", "fweights", "frequency"},
    {weight_p, "pweight", "pweights", "sampling"},
    {weight_i, "iweight", "iweights", "importance"},
};
// The kind that a word names, two letters at least; null for none.
const weightrow* weightnamed(std::string_view word);

// What a part of the form may do.
enum partrule : UByte {
    may,
    must,
    loosely,     // in: rows that are still to come; using: the word without a name
    never,
};

struct form {
    partrule varlist = may;
    boolean newvars = false;            // its names are those of new variables
    boolean skips = false;              // _skip may stand among new ones
    partrule tsops = never;             // time-series operators in it, and in options that take lists
    boolean listorrange = false;        // one of both must be there
    partrule ifexp = may;
    boolean matjoin = false;            // `if` is compiled in matrix-join mode
    partrule in = may;
    Int4 inlimit = nolimit;             // in loosely: the last observation there will be, which l stands for
    partrule file = never;              // using
    partrule exp = never;
    UByte exptype = mode_num;           // compile mode of =exp
    boolean bareexp = false;            // its `=` may be left out
    partrule weight = never;
    UByte weights = weight_all;         // weightkind bits allowed
    UByte openweight = weight_a;        // the kind that an open type means
    boolean oldscale = false;           // old-style weights are aweights with the option scale, else fweights
    partrule options = may;
    partrule by = may;
};

// State
extern form parsing;          // the form being parsed; the usual one outside stdparse and who calls its parts

// Results. vl_vr and vl_rcp are in core/memory.h.
extern Int4 vl_n;             // entries
extern Int4 vl_groups[5], vl_ngroups;     // end of each parenthesised group, as a count of entries
extern Int4 vl_groupbegin;                // entries ahead of the first group
extern UByte vl_given;        // a varlist was typed
extern UByte ingiven, usinggiven, weightgiven;
extern char *intextbeg, *intextend;       // the text behind `in`, as typed
extern Int4 weighttype;       // weightkind, 0 without weights

// Parses the whole form from the cursor. 0 or a code. Under by the run is the group's; a form parsed in the first group
// is kept, and later groups find it as it was, with the compiled expressions, without reading the line again.
Int4 stdparse(const form& f = {});
void stdparse_forget();       // drops the form kept under by
// The shorter form [if exp] [in range] [, options]: no varlist.
Int4 parseif(partrule options = may);
// The condition of if and while: an expression into ifexp, and nothing behind it.
Int4 parsecondition();
// Options alone, from a comma at the cursor or the end of the line.
Int4 parseoptions();

// Options. Each marks what it finds as consumed. An option with an argument is another one than the bare word.
boolean getopt_flag(const char* name, Int4 min);
boolean getopt_noflag(const char* name, Int4 min, boolean otherwise);    // name: true, noname: false
// Numbers between commas or blanks: up to `limit` into out, their count in n (0: no such option). 198 when something
// else stands there or there are too many; `.` is missing where allowed.
Int4 getopt_num(const char* name, Int4 min, Double* out, Int4 limit, Int4& n, boolean allowmissing = false);
Int4 getopt_int(const char* name, Int4 min, Int4* out, Int4 limit, Int4& n);
// The text between the parentheses, trimmed, quotes around the whole removed; found is false without the option.
Int4 getopt_str(const char* name, Int4 min, std::string& text, boolean& found);
Int4 getopt_words(const char* name, Int4 min, std::vector<std::string>& words, Int4 limit, boolean& found);
Int4 getopt_vars(const char* name, Int4 min, std::vector<Int4>& vars, boolean& found);
Int4 getopt_level(Int4 min, Int4& level);      // level(#), 10 to 99, default the setting
// The options as they were typed, for a parser that knows its options only at run time. The texts point into the line.
struct typedoption { std::string_view word, argument, text; boolean hasargument; };
std::vector<typedoption> typedoptions();
// Under `set debug on` all options that commands ask for are noted, as "command option fewest-characters", with "()" for
// one that has an argument: for checks of what is written about them.
const std::set<std::string>& optionsasked();
void getopt_again();              // no option is consumed: the same line is obeyed for another group
// Reports the first option not consumed: "x invalid" or "x(...) invalid", 198.
Int4 getopt_done();

// The value of list entry i (from 0) at obs, through its operator if it has one.
Double varvalue(Int4 i, Int4 obs);
// Its variable, and the number of its operator record or 0.
inline Int4 entryvar(Int4 i) { return vl_vr[i]; }
Int4 entryop(Int4 i);
// "L2.x" or the plain name, abbreviated by the caller.
std::string entryname(Int4 i);

}  // namespace velmo
