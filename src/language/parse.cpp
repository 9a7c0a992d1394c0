// parse: the engine of syntax.h. The descriptions decide what the standard parser admits; what it found becomes locals.
#include <algorithm>
#include "base/saved.h"
#include "base/text.h"
#include "core/adopath.h"
#include "core/macros.h"
#include "core/quotes.h"
#include "data/cells.h"
#include "data/structure.h"
#include "data/timeseries.h"
#include "language/expand.h"
#include "language/options.h"
#include "language/stdparse.h"
#include "language/parse.h"
#include "language/syntaxoptions.h"
#include "language/syntaxrules.h"
#include "language/words.h"
#include "output/errors.h"

namespace velmo {

UByte syntaxmode = 0;

namespace {

struct partrules { boolean given = false, required = false, noprefix = false; };
struct weightrules { Int4 mask = 0, otherwise = 0; boolean noprefix = false; };

struct description {
    listrules list;
    partrules ifpart, inpart, exppart, usingpart;
    weightrules weight;
    std::vector<optionrule> options;
    boolean catchall = false;
};

// A description is used up by reading it, so that a failure leaves no description where a result is looked for.
std::string takedescription(const char* name) {
    std::string text = macrovalue(name);
    macroclear(name);
    return text;
}

Int4 readpart(const char* name, partrules& rules) {
    std::string text = takedescription(name);
    std::string_view rest = text;
    for (attribute a; nextattribute(rest, a);) {
        if (a.hasvalue) return error(197);
        if (a.word == "req")
            rules.required = true;
        else if (a.word == "noprefix")
            rules.noprefix = true;
        else if (a.word != "opt")
            return error(197);
        rules.given = true;
    }
    return 0;
}

Int4 readweights(weightrules& rules) {
    std::string text = takedescription("_weight");
    std::string_view rest = text;
    for (attribute a; nextattribute(rest, a);) {
        const weightrow* row = weightnamed(a.word);
        if (row && a.word.size() != 2 && a.word != row->word) row = nullptr;
        if (a.hasvalue || (!row && a.word != "noprefix")) return error(197);
        if (a.word == "noprefix") {
            rules.noprefix = true;
            continue;
        }
        rules.mask |= row->kind;
        if (!rules.otherwise) rules.otherwise = row->kind;
    }
    return 0;
}

Int4 readdescription(description& d) {
    std::string list = takedescription("_varlist"), options = takedescription("_options");
    if (Int4 rc = readlistrules(list, d.list)) return rc;
    if (d.list.kind == list_any && !syntaxmode) return error(197);
    if (Int4 rc = readpart("_if", d.ifpart)) return rc;
    if (Int4 rc = readpart("_in", d.inpart)) return rc;
    if (Int4 rc = readpart("_exp", d.exppart)) return rc;
    if (Int4 rc = readpart("_using", d.usingpart)) return rc;
    if (Int4 rc = readweights(d.weight)) return rc;
    if (d.weight.mask && d.exppart.given) return error(197);
    return readoptionrules(options, d.options, d.catchall);
}

partrule permission(const partrules& rules) { return !rules.given ? never : rules.required ? must : may; }

form describedform(const description& d) {
    boolean list = d.list.kind == list_existing || d.list.kind == list_new;
    form f{.varlist = !list ? never : d.list.required ? must : may, .newvars = d.list.kind == list_new,
           .tsops = d.list.ts ? may : never, .ifexp = d.ifpart.given ? may : never, .in = permission(d.inpart),
           .file = permission(d.usingpart), .exp = permission(d.exppart), .exptype = mode_any,
           .weight = d.weight.mask ? may : never, .options = d.options.empty() && !d.catchall ? never : may};
    if (d.weight.mask) {
        f.weights = UByte(d.weight.mask);
        f.openweight = UByte(d.weight.otherwise);
    }
    return f;
}

// ---- Free text.

// True when one of the words that end free text stands at text[i].
boolean endword(std::string_view text, std::size_t i) {
    if (i > 0 && isnamechar(text[i - 1])) return false;
    for (std::string_view word : {"if", "in", "using"}) {
        std::size_t end = i + word.size();
        if (text.substr(i, word.size()) == word && (end == text.size() || text[end] == ' ' || text[end] == '('))
            return true;
    }
    return false;
}

// Where free text ends: at if, in, using, [ or a comma outside quotes and parentheses, and at = when an =exp may
// follow.
std::size_t freetextend(std::string_view text, boolean exp) {
    for (std::size_t i = 0; i < text.size();) {
        if (text[i] == ',' || text[i] == '[' || (exp && text[i] == '=') || endword(text, i)) return i;
        std::size_t n = text[i] == '(' ? matchingend(text.substr(i)) : 0;
        i = n ? i + n : text[i] == '(' ? text.size() : behindquote(text, i);
    }
    return text.size();
}

// Takes the free text off the text at the cursor.
Int4 freetext(const description& d, assignments& out) {
    const listrules& rules = d.list;
    std::string_view text = tokpos;
    std::size_t end = freetextend(text, d.exppart.given);
    std::string_view found = trimmed(text.substr(0, end));
    if (found.empty() && rules.required) return required(rules.id.empty() ? "something" : rules.id);
    out.emplace_back("_" + (rules.name.empty() ? "anything" : rules.name), found);
    settokpos(tokpos + end);
    return 0;
}

// ---- Results.

// A list never names the variables that hold the state of a by or the order of the data.
boolean isstatevar(Int4 var) {
    for (const char* macro : {"__sortindex", "__byindex"})
        if (macrovalue(macro) == varlist[var - 1]) return true;
    return false;
}

Int4 listresults(const description& d, assignments& out) {
    const listrules& rules = d.list;
    if (rules.kind != list_existing && rules.kind != list_new) return 0;
    std::string names, types;
    if (Int4 rc = listnames(rules, names)) return rc;
    boolean operators = false;
    for (Int4 i = 0; i < vl_n; i++) {
        char word[8];
        operators |= entryop(i) != 0;
        if (i) types += ' ';
        types += typename_of(typ[entryvar(i) - 1], word);
    }
    out.emplace_back("_" + (rules.name.empty() ? "varlist" : rules.name), names);
    out.emplace_back("_typlist", rules.kind == list_new ? types : "");
    out.emplace_back("_tsops", operators ? "true" : "");
    return 0;
}

std::string between(const char* begin, const char* end) {
    return std::string(trimmed({begin, std::size_t(end - begin)}));
}

void partresults(const description& d, assignments& out) {
    auto prefix = [](const partrules& rules, const char* word) { return std::string(rules.noprefix ? "" : word); };
    if (ifgiven) out.emplace_back("_if", prefix(d.ifpart, "if ") + between(ifexp.textbeg, ifexp.textend));
    if (ingiven) out.emplace_back("_in", prefix(d.inpart, "in ") + between(intextbeg, intextend));
    if (usinggiven) {
        std::string name = usingname;
        if (!d.usingpart.noprefix && name.find(' ') != std::string::npos) name = "`\"" + name + "\"'";
        out.emplace_back("_using", prefix(d.usingpart, "using ") + name);
    }
    if (!eqgiven && !weightgiven) return;
    std::string text = between(eqexp.textbeg, eqexp.textend);
    boolean bare = weightgiven ? d.weight.noprefix : d.exppart.noprefix;
    out.emplace_back("_exp", (bare ? "" : "=") + text);
    for (const weightrow& row : weightrows)
        if (weightgiven && row.kind == weighttype) out.emplace_back("_weight", row.word);
}

// New variables that are to stay receive missing values; others exist only while they are checked.
void settlenewvars(const listrules& rules) {
    if (rules.kind != list_new || !rules.generate) return shrinkvars(visnvar);
    for (Int4 v = visnvar + 1; v <= nvar; v++) {
        for (Int4 obs = 1; obs <= nobs; obs++) clearcell(v, obs);
        markchanged(v);
    }
    visnvar = nvar;
}

Int4 parsetext(const description& d, assignments& out) {
    if (d.list.kind == list_any)
        if (Int4 rc = freetext(d, out)) return rc;
    if (Int4 rc = stdparse(describedform(d))) return rc;
    if (Int4 rc = listresults(d, out)) return rc;
    if (d.ifpart.required && !ifgiven) return required("if exp");
    partresults(d, out);
    return takeoptions(d.options, d.catchall, out);
}

}  // namespace

Int4 listnames(const listrules& rules, std::string& names) {
    names.clear();
    if (rules.emptydefault && !vl_given) vl_n = 0;
    Int4 n = 0;
    for (Int4 i = 0; i < vl_n; i++)
        if (!isstatevar(vl_vr[i])) {
            vl_vr[n] = vl_vr[i];
            vl_rcp[n++] = vl_rcp[i];
        }
    vl_n = n;
    boolean untyped = rules.emptydefault && !vl_given;
    if (!untyped && vl_n < rules.min) return error(102);
    if (vl_n > rules.max) return error(103);
    for (Int4 i = 0; i < vl_n; i++) {
        boolean text = isstring(vl_vr[i]);
        if ((rules.numeric && text) || (rules.string && !text)) return error(109);
        if (i) names += ' ';
        names += entryname(i);
    }
    return 0;
}

Int4 parsedescribed(std::string_view usertext) {
    description d;
    assignments results;
    elsewhere user(usertext);
    if (Int4 rc = readdescription(d)) return rc;
    if (Int4 rc = parsetext(d, results)) return rc;
    settlenewvars(d.list);
    for (const char* name : {"_typlist", "_tsops"}) macroclear(name);
    for (const auto& [name, value] : results)
        if (Int4 rc = macroset(macroname(name, false), value)) return rc;
    return 0;
}

// parse "text" [, parse(chars)]; from version 6 without a text it takes the arguments of the level.
Int4 cmd_parse() {
    saved mode(syntaxmode, UByte(0));
    std::string text, breaks;
    boolean cut;
    if (!stringargument(text)) {
        char next = tokpeeknonblank();
        if (version < 600 || (next && next != ',')) return error(198);
        text = macrovalue("_0");
    }
    if (Int4 rc = parseoptions()) return rc;
    if (Int4 rc = breakoption(breaks, 79, cut)) return rc;
    if (Int4 rc = getopt_done()) return rc;
    return cut ? positionals(text, breaks) : parsedescribed(text);
}

}  // namespace velmo
