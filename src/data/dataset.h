// The dataset: nvar variables by nobs observations in the rectangle. Variable v (from 1) takes the bytes mapi[v-1]
// to mapi[v-1] + varsize(typ[v-1]) - 1 of each row, without padding, in the order of the variables. The tables
// varlist, typ, mapi, fmt, lbl are parallel and indexed by v - 1; srt holds the variable numbers of the sort key with a
// zero behind. A variable's label, characteristics and notes are objects keyed by its name.
//
// Names that bypass the checks of addvar: `_delete`, a scratch variable, and `(e)` and its like, the byte variables
// that mark estimation samples, found by exact name only and dropped when every other variable is.
#pragma once
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>
#include "core/rectangle.h"

namespace velmo {

// State
extern char (*varlist)[namesize];  // names
extern UByte* typ;             // storage types
extern UInt4* mapi;            // byte offsets in the row
extern char (*fmt)[fmtsize];   // display formats
extern char (*lbl)[namesize];  // names of attached value labels
extern UInt2* srt;             // the sort key
extern Int4 nvar;              // variables
extern Int4 visnvar;           // variables that look-up sees; a command raises it to nvar once its new ones are filled
extern UByte datachanged;      // since the last save or load, in a variable whose name doesn't begin with _
extern UByte defaulttype;      // set type: of new variables; typefloat until set
extern char datalabel[81];     // label data

// Reaction of lookupvar:                 exact      unique prefix   several   none
enum lookupmode : Int4 {
    lookup_free = 0,      // defined already error   -              -         nvar + 1
    lookup_ref = 1,       // the variable  the variable    ambiguous error    error 111, printed "variable x not found"
    lookup_exact = 10,    // the variable  -               -                  nvar + 1
    lookup_quiet = 11,    // the variable  the variable    ambiguous error    nvar + 1
};
// The variable, or minus a code whose message has been printed. A name that isn't valid is minus 198. With no
// variables: lookup_ref is minus 111 ("no variables defined"), the others 1.
Int4 lookupvar(std::string_view name, Int4 mode);
// Variables that a name is looked up among: those of the dataset that look-up sees, or a file's.
struct nametable {
    const char (*names)[namesize];
    const UByte* types;
    Int4 n;
    const std::unordered_map<std::string, Int4>* index;        // by exact name; null for the dataset, which has its own
};
inline nametable datatable() { return {varlist, typ, visnvar, nullptr}; }
Int4 lookupamong(const nametable& among, std::string_view name);    // lookup_ref
Int4 findvar(std::string_view name);       // exact, no message; 0 when there is none
// Nonzero code, printed, when `name` may not be given to a new variable: 198 or 110.
Int4 checknewname(std::string_view name);
Int4 checkvarname(std::string_view name);  // the same but for names in use: for variables that will not be in memory

// To be called by whoever writes varlist otherwise than by the calls below: the index of names is made anew.
void namesmoved();

// Appends a variable: checks the name, makes room, sets the default format, clears label and value label. Its cells
// are not set. Codes printed: 198, 110, 900, 902, 1010. `internal` skips the name check and may use the last slot.
Int4 addvar(std::string_view name, UByte type, boolean internal = false);
Int4 addslot(UByte type, boolean internal);        // room in row and tables only; codes not printed
// The scratch variable `_delete` of `type`; variable or minus code (not printed). keep 0: a failure is remembered and
// later calls fail at once; type 0 forgets it.
Int4 maketemp(UByte type, boolean keep);
// Starts a change of type: a new variable at the end under `name` with var's label, which the caller fills before it
// calls swapin (structure.h). 0, 901, 902, 903.
Int4 recast(Int4 var, std::string_view name, UByte newtype);
// Renames: table and all records keyed by the name.
Int4 renamevar(Int4 var, std::string_view newname);
void setsortnone(const Int4* vars, Int4 n);        // cuts srt at the first of these variables
void markchanged(Int4 var);
void cleardata(boolean keeplabels);         // empties the dataset, and tells it

// The sample of estimates: (e), or of those put by a variable (h1), (h2)... All are bytes of 0 and 1.
boolean issample(Int4 var);
std::vector<Int4> samplemarkers();
extern Int4 estimations;       // goes up whenever (e) comes to belong to other estimates: data put by know whose it was
inline boolean isstring(Int4 var) { return typ[var - 1] < 245; }
inline Int4 shownvars() { return nvar - Int4(samplemarkers().size()); }
// "byte", "str12" and so on into out (8 bytes), and back; 0 when the word is no type (`str#` checked to 1..244).
char* typename_of(UByte type, char* out);
UByte typecode(std::string_view word);

}  // namespace velmo
