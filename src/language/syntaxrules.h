// The parser of programs' arguments. A program describes what it takes in the locals varlist, if, in, exp, weight,
// using and options; the parser reads these descriptions, runs the standard parser over the user's text, and leaves
// what it found in the same locals and one for each option. `syntax` translates its own notation into the descriptions
// first.
//
//   varlist   opt|req, ex|new|any|none, ts, min(#), max(#), default=none|empty|all, numeric, string, generate, name=,
//   id= if, in, using, exp    opt|req, noprefix weight    aw fw pw iw, the first the default; noprefix options
//   [+]name[(type ...)] ..., *
#pragma once
#include <string>
#include <string_view>
#include <vector>
#include "language/numlist.h"

namespace velmo {

enum listkind : Int4 { list_none, list_existing, list_new, list_any };
struct listrules {
    listkind kind = list_none;
    boolean required = false, ts = false, numeric = false, string = false, generate = false;
    boolean emptydefault = false;              // nothing typed stays nothing
    Int4 min = -1, max = 2147483647;           // -1: 1 when required, else 0
    std::string name, id;                      // the local that receives the list; what its absence is called
};

enum optiontype : Int4 {
    opt_switch, opt_string, opt_real, opt_integer, opt_numlist, opt_varlist, opt_varname, opt_passthru,
};
struct optionrule {
    std::string name;                          // without `no`, capitals lowered
    Int4 min = 1;
    boolean negated = false, required = false, asis = false;
    optiontype type = opt_switch;
    std::string otherwise;                     // the default's text
    numlistrules numbers;
    listrules list;
};

// One attribute of a description: word, word=value or word(value); false at the end. A malformed one has no word.
struct attribute { std::string_view word, value; boolean hasvalue; };
boolean nextattribute(std::string_view& text, attribute& out);

// Descriptions: 0 or 197, 1003 (printed).
Int4 readlistrules(std::string_view text, listrules& rules);
Int4 readoptionrules(std::string_view text, std::vector<optionrule>& rules, boolean& catchall);

}  // namespace velmo
