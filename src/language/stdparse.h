// The standard command form:
//   command [varlist] [=exp] [if exp] [in range] [using file] [weight] [, options]
// A command says what differs from the usual form, and finds the results in the fixed places below and in firstobs,
// lastobs (data/run.h), eqexp and ifexp (expr/program.h), usingname (core/adopath.h):
//   if (Int4 rc = stdparse({.varlist = must, .exp = must, .options = never})) return rc;
// Then it asks for its options one by one (options.h) and ends with getopt_done. Every failure has been printed.
#pragma once
#include <set>
#include <string>
#include <vector>
#include "core/tokenizer.h"
#include "data/run.h"
#include "expr/program.h"
#include "language/varlist.h"

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
    UByte (*openkind)() = nullptr;      // or a function that tells it from the options
    boolean oldscale = false;           // old-style weights are aweights with the option scale, else fweights
    partrule options = may;
    partrule by = may;
};

// State
extern form parsing;          // the form being parsed; the usual one outside stdparse and who calls its parts

// Results, with vl_vr and vl_rcp (varlist.h).
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
// The value of list entry i (from 0) at obs, through its operator if it has one.
Double varvalue(Int4 i, Int4 obs);
// Its variable, and the number of its operator record or 0.
inline Int4 entryvar(Int4 i) { return vl_vr[i]; }
Int4 entryop(Int4 i);
// "L2.x" or the plain name, abbreviated by the caller.
std::string entryname(Int4 i);

}  // namespace velmo
