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
#include <utility>
#include <vector>
#include "language/numlist.h"

namespace velmo {

// State
extern UByte syntaxmode;       // 1 during syntax, 0 during a plain parse

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

using assignments = std::vector<std::pair<std::string, std::string>>;    // stored name, value ("" deletes)

// One attribute of a description: word, word=value or word(value); false at the end. A malformed one has no word.
struct attribute { std::string_view word, value; boolean hasvalue; };
boolean nextattribute(std::string_view& text, attribute& out);

// Descriptions: 0 or 197, 1003 (printed).
Int4 readlistrules(std::string_view text, listrules& rules);
Int4 readoptionrules(std::string_view text, std::vector<optionrule>& rules, boolean& catchall);
// The names of the list just parsed, checked against the rules. 0, 102, 103 or 109 (printed).
Int4 listnames(const listrules& rules, std::string& names);
// Assigns the options that were typed by their rules. 0 or a code (printed).
Int4 takeoptions(const std::vector<optionrule>& rules, boolean catchall, assignments& out);

// Reads and clears the level's descriptions, parses the user's text, and sets the result locals. 0 or a code (printed).
Int4 parsedescribed(std::string_view usertext);

}  // namespace velmo
