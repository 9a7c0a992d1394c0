// The standard command form:
//   command [varlist] [=exp] [if exp] [in range] [using file] [weight] [, options]
// A command sets the controls that differ from their defaults, calls stdparse, and finds the results in the fixed
// places below and in firstobs, lastobs (data/run.h), eqexp and ifexp (expr/program.h), usingname (core/adopath.h).
// Then it asks for its options one by one and ends with getopt_done. Every failure has been printed.
#pragma once
#include <string>
#include <vector>
#include "core/tokenizer.h"

namespace velmo {

enum weightkind : Int4 { weight_a = 1, weight_f = 2, weight_p = 4, weight_i = 8, weight_all = 15 };

// Controls: set before stdparse; dispatch and stdparse put them back to the defaults in brackets.
extern UByte p_varlist;       // 0 optional, 1 required, 3 forbidden [0]
extern UByte p_existing;      // 1 names of variables, 0 new ones [1]
extern UByte p_if;            // 0 allowed, 3 forbidden, 4 compiled in matrix-join mode [0]
extern UByte p_in;            // 0 allowed, 1 required, 2 may pass nobs, 3 forbidden [0]
extern Int4 p_inlimit;        // with p_in 2: the last observation there will be, which l stands for [nolimit]
extern UByte p_using;         // 0 optional, 1 required, 2 the name may be left out, 3 forbidden [3]
extern UByte p_exp;           // 0 optional, 1 required, 3 forbidden [3]
extern UByte p_exptype;       // compile mode of =exp [mode_num]
extern UByte p_weight;        // 3 forbidden, else allowed [3]
extern UByte p_weightmask;    // weightkind bits allowed [15]
extern UByte p_weightdefault; // the kind that an open type means [weight_a]
extern UByte p_scale;         // 1 old-style weights are aweights with the option scale, else fweights [0]
extern UByte p_options;       // 3 forbidden [0]
extern UByte p_byok;          // 3 not with by [0]
extern UByte p_tsops;         // 3 no time-series operators [3]
extern UByte p_range;         // 1 a varlist or range is required [0]
extern UByte p_skip;          // 1 _skip may stand in a new varlist [0]
extern UByte p_noeq;          // 1 the `=` of =exp may be left out [0]
void parse_defaults();

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
Int4 stdparse();
void stdparse_forget();       // drops the form kept under by
// The shorter form [if exp] [in range] [, options]: no varlist.
Int4 parseif();
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

// The weight of an observation: missing or zero excludes it (false in `use`). 0, 402 negative, 401 noninteger fweight.
Int4 weightat(Int4 obs, Double& w, boolean& use);

}  // namespace velmo
