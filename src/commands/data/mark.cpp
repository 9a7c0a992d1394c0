// mark, markout, marksample: 0/1 variables that tell which observations a program works on.
#include <string>
#include <vector>
#include "base/memalloc.h"
#include "base/poll.h"
#include "base/text.h"
#include "core/macros.h"
#include "data/cells.h"
#include "data/timeseries.h"
#include "estimate/sample.h"
#include "language/expand.h"
#include "language/options.h"
#include "language/stdparse.h"
#include "language/tempnames.h"
#include "language/words.h"
#include "output/errors.h"

namespace velmo {

namespace {

// Clears flags outside the present group of a by prefix, whose numbers stand in the variable that __byindex names.
Int4 narrowtogroup(UByte* flags) {
    std::string name = macrovalue("__byindex");
    if (name.empty()) return macronotfound("__byindex");
    Int4 var = findvar(name);
    if (!var) return errorf(111, "variable `%s' not found\n", name.c_str());
    if (typ[var - 1] != typelong) return errorf(109, "variable `%s' does not contain a long\n", name.c_str());
    for (Int4 obs = 1; obs <= nobs; obs++)
        if (getlong(var, obs) != by_index) flags[obs - 1] = 0;
    return 0;
}

Int4 selectflags(boolean keepzero, UByte* flags) {
    Double weight[blocksize];
    return overblocks([&](Int4 first, Int4 n) {
        exp_ifblock(first, n, flags + first - 1);
        return weighttype ? weighblock(first, n, flags + first - 1, weight, keepzero) : 0;
    });
}

// mark, from its arguments at the cursor. The variable is made once all its values are known.
Int4 markhere(boolean by) {
    std::string name = nexttoken();
    if (Int4 rc = checknewname(name)) return rc;
    if (Int4 rc = stdparse({.varlist = never, .weight = may})) return rc;
    boolean keepzero = getopt_flag("zeroweight", 4);
    if (Int4 rc = getopt_done()) return rc;
    workspace work{std::size_t(nobs) + 1};
    UByte* flags = work.get<UByte>();
    if (!flags) return error(909);
    std::fill(flags, flags + nobs, UByte(0));
    if (Int4 rc = selectflags(keepzero, flags)) return rc;
    if (by && by_active && by_index > 0)
        if (Int4 rc = narrowtogroup(flags)) return rc;
    if (Int4 rc = addvar(name, typebyte)) return rc;
    column mark(nvar);
    for (Int4 obs = 1; obs <= nobs; obs++) mark.put(obs, flags[obs - 1]);
    visnvar = nvar;
    markchanged(nvar);
    return 0;
}

// Clears the mark where list entry i is missing or empty.
Int4 markoutentry(const column& mark, Int4 i) {
    Int4 var = entryvar(i);
    boolean text = isstring(var), plain = !entryop(i);
    column values(var);
    for (Int4 obs = 1; obs <= nobs; obs++) {
        boolean absent = text ? strcell(var, obs).empty() : (plain ? values.get(obs) : varvalue(i, obs)) == missing;
        if (absent) mark.put(obs, 0);
        if (tick()) return 1;
    }
    return 0;
}

// markout, from its arguments at the cursor.
Int4 markouthere() {
    Int4 mark = lookupvar(nexttoken(breakvarlist), lookup_ref);
    if (mark < 0) return -mark;
    if (isstring(mark)) return error(109);
    if (Int4 rc = stdparse({.tsops = may, .ifexp = never, .in = never})) return rc;
    boolean strok = getopt_flag("strok", 5);
    if (Int4 rc = getopt_done()) return rc;
    if (!vl_given) return 0;
    for (Int4 i = 0; i < vl_n; i++)
        if (isstring(entryvar(i)) && !strok) return error(109);
    for (Int4 i = 0; i < vl_n; i++)
        if (Int4 rc = markoutentry(column(mark), i)) return rc;
    setsortnone(&mark, 1);
    markchanged(mark);
    return 0;
}

// `word text`, unless text begins with the word or is empty.
std::string keyworded(const char* word, const std::string& text) {
    if (text.empty()) return "";
    std::string_view first = std::string_view(text).substr(0, text.find_first_of(" ("));
    return " " + (first == word ? text : word + (" " + text));
}

// The arguments of mark that the locals of `syntax` tell.
std::string samplearguments(const std::string& name, boolean keepzero) {
    std::string text = name, weight = macrovalue("_weight"), exp(trimmed(macrovalue("_exp")));
    if (!weight.empty() && !exp.empty()) text += " [" + weight + (exp[0] == '=' ? "" : "=") + exp + "]";
    text += keyworded("if", macrovalue("_if")) + keyworded("in", macrovalue("_in"));
    return keepzero ? text + ", zeroweight" : text;
}

Int4 marksample(const std::string& name, boolean keepzero, boolean by) {
    elsewhere arguments(samplearguments(name, keepzero));
    return markhere(by);
}

Int4 markoutsample(const std::string& name, boolean strok) {
    elsewhere arguments(name + " " + macrovalue("_varlist") + (strok ? ", strok" : ""));
    return markouthere();
}

}  // namespace

// mark newvar [weight] [if] [in] [, zeroweight]
Int4 cmd_mark() { return markhere(true); }

// markout markvar [varlist] [, strok]
Int4 cmd_markout() { return markouthere(); }

// marksample name [, strok zeroweight novarlist noby]
Int4 cmd_marksample() {
    std::string local = macroname(nexttoken(), true), name = newtempname();
    if (!validname(local) || local == "_") return badname(local.substr(1));
    if (Int4 rc = parseoptions()) return rc;
    boolean strok = getopt_flag("strok", 5), keepzero = getopt_flag("zeroweight", 4);
    boolean list = getopt_noflag("varlist", 7, true), by = getopt_noflag("by", 2, true);
    if (Int4 rc = getopt_done()) return rc;
    if (Int4 rc = marksample(name, keepzero, by)) return rc;
    if (Int4 rc = list ? markoutsample(name, strok) : 0) {
        visnvar = nvar - 1;      // the mark goes at the end of the turn
        return rc;
    }
    return macroset(local, name);
}

}  // namespace velmo
