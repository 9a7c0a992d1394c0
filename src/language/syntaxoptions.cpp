// The options of a described program: each rule takes the first typed option that fits it; one that names another rule
// in full is that rule's.
#include "language/syntaxoptions.h"
#include <algorithm>
#include <cmath>
#include "base/saved.h"
#include "base/text.h"
#include "core/macros.h"
#include "core/quotes.h"
#include "language/options.h"
#include "language/stdparse.h"
#include "language/parse.h"
#include "language/syntaxrules.h"
#include "language/varlist.h"
#include "language/words.h"
#include "output/errors.h"
#include "output/formats.h"

namespace velmo {

namespace {

// A typed option, the rule that it names in full, and the rule that took it.
struct typedstate { typedoption option; const optionrule *exact, *taker; };
using typedlist = std::vector<typedstate>;

boolean takesargument(const optionrule& rule) { return rule.type != opt_switch; }

// The rule that an option names in full, also by the positive form of a `no` option; null without one.
const optionrule* exactrule(const std::vector<optionrule>& rules, const typedoption& option) {
    const optionrule* positive = nullptr;
    for (const optionrule& rule : rules) {
        if (option.hasargument != takesargument(rule)) continue;
        if (option.word == (rule.negated ? "no" : "") + rule.name) return &rule;
        if (option.word == rule.name && !positive) positive = &rule;
    }
    return positive;
}

boolean fits(const typedstate& t, const optionrule& rule, std::string_view prefix) {
    std::string_view word = t.option.word;
    if (t.option.hasargument != takesargument(rule) || (t.exact && t.exact->name != rule.name)) return false;
    return word.starts_with(prefix) && abbrev(word.substr(prefix.size()), rule.name, rule.min);
}

// The first option left that the rule's name fits.
typedstate* findtyped(typedlist& typed, const optionrule& rule, std::string_view prefix) {
    for (typedstate& t : typed) {
        if (t.taker || !fits(t, rule, prefix)) continue;
        t.taker = &rule;
        return &t;
    }
    return nullptr;
}

std::string shortnumber(Double value) {
    char text[512];
    return std::string(text, std::size_t(fmttrimmed("%9.0g", value, text)));
}

Int4 numberinvalid(const optionrule& rule, const char* reason) {
    return errorf(198, "%s() invalid -- %s\n", rule.name.c_str(), reason);
}

Int4 numbervalue(const optionrule& rule, std::string_view text, std::string& value) {
    Double x;
    text = unquoted(text);
    if (text == "." && rule.type == opt_real) {
        value = ".";
        return 0;
    }
    if (!readnumber(text, x) || !std::isfinite(x)) return numberinvalid(rule, "invalid number");
    if (rule.type == opt_integer && x != std::floor(x)) return numberinvalid(rule, "invalid integer");
    value = shortnumber(x);
    return 0;
}

Int4 numlistvalue(const optionrule& rule, std::string_view text, std::string& value) {
    std::vector<Double> numbers;
    if (Int4 rc = numlistread(unquoted(text), rule.numbers, numbers))
        return prefixed(rule.name + "() invalid -- ", rc, false);
    value = numlisttext(numbers);
    return 0;
}

// The variables of an option; `alone` tells whether text is a variable list and nothing else.
Int4 optionvars(const optionrule& rule, std::string_view text, std::string& names, boolean& alone) {
    elsewhere list(text);
    saved rules(parsing.varlist, must), tsops(parsing.tsops, rule.list.ts ? may : never);
    vl_n = vl_ngroups = 0;
    vl_given = 0;
    alone = !isstopword(nexttoken(breakvarlist)) && !isquoted();
    if (!alone) return 0;
    ungettoken();
    if (Int4 rc = existinglist()) return rc;
    alone = tokpeeknonblank() == 0;
    return alone ? listnames(rule.list, names) : 0;
}

// A failing list is parsed twice: silently, to know that its message needs the option's name ahead.
Int4 varlistvalue(const optionrule& rule, std::string_view text, std::string& value) {
    boolean alone;
    Int4 rc;
    {
        saved quiet(quietlevel, shows_nothing);
        rc = optionvars(rule, text, value, alone);
    }
    if (rc) {
        errorf(rc, "in option %s():  ", rule.name.c_str());
        saved sameline(freshline, UByte(0));
        return optionvars(rule, text, value, alone);
    }
    const char* what = rule.type == opt_varname ? "varname" : "varlist";
    return alone ? 0 : errorf(198, "%s() does not contain a valid %s\n", rule.name.c_str(), what);
}

Int4 argumentvalue(const optionrule& rule, const typedoption& option, std::string& value) {
    switch (rule.type) {
    case opt_string: value = rule.asis ? trimmed(option.argument) : unquoted(option.argument); return 0;
    case opt_real:
    case opt_integer: return numbervalue(rule, option.argument, value);
    case opt_numlist: return numlistvalue(rule, option.argument, value);
    case opt_passthru: value = option.text; return 0;
    default: return varlistvalue(rule, option.argument, value);
    }
}

// A rule of the same name without `no` has taken an option.
boolean tookpositive(const typedlist& typed, const optionrule& rule) {
    return std::any_of(typed.begin(), typed.end(), [&rule](const typedstate& t) {
        return t.taker && !t.taker->negated && t.taker->name == rule.name && !takesargument(*t.taker);
    });
}

Int4 takeoption(const optionrule& rule, typedlist& typed, std::string& value) {
    if (!takesargument(rule)) {
        boolean found = findtyped(typed, rule, rule.negated ? "no" : "");
        if (found) value = (rule.negated ? "no" : "") + rule.name;
        if (rule.negated && (findtyped(typed, rule, "") || tookpositive(typed, rule)) && found)
            return errorf(198, "options %s and no%s may not be combined\n", rule.name.c_str(), rule.name.c_str());
    } else if (typedstate* t = findtyped(typed, rule, "")) {
        return argumentvalue(rule, t->option, value);
    } else if (!rule.otherwise.empty()) {
        return numbervalue(rule, rule.otherwise, value);
    }
    return value.empty() && rule.required ? errorf(198, "option %s() required\n", rule.name.c_str()) : 0;
}

// What no rule took: a known name with its parentheses missing or too many, or an unknown one.
Int4 unusedoption(const std::vector<optionrule>& rules, const typedoption& option) {
    for (const optionrule& rule : rules)
        if (option.hasargument != takesargument(rule) && abbrev(option.word, rule.name, rule.min))
            return errorf(198, "option %s() invalid\n", rule.name.c_str());
    return notallowed(option.word);
}

}  // namespace

Int4 takeoptions(const std::vector<optionrule>& rules, boolean catchall, assignments& out) {
    typedlist typed;
    for (const typedoption& option : typedoptions()) typed.push_back({option, exactrule(rules, option), nullptr});
    for (const optionrule& rule : rules) {
        auto& [name, value] = out.emplace_back("_" + rule.name, "");
        if (Int4 rc = takeoption(rule, typed, value)) return rc;
    }
    std::string rest;
    for (const typedstate& t : typed) {
        if (t.taker) continue;
        if (!catchall) return unusedoption(rules, t.option);
        if (!rest.empty()) rest += ' ';
        rest += t.option.text;
    }
    if (catchall) out.emplace_back("_options", rest);
    return 0;
}

}  // namespace velmo
