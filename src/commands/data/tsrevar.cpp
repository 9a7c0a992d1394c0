// tsrevar: variables that hold the values of time-series operators, for programs that know no operators.
#include <string>
#include "base/poll.h"
#include "base/text.h"
#include "data/cells.h"
#include "data/chars.h"
#include "data/run.h"
#include "data/timeseries.h"
#include "expr/evaluate.h"
#include "language/options.h"
#include "language/stdparse.h"
#include "language/tempnames.h"
#include "output/errors.h"
#include "stored/families.h"

namespace velmo {

namespace {

constexpr const char* recordname = "tsrevar";     // the characteristic that keeps a variable's operator text

// The temporary variable that holds this operator text already, or 0.
Int4 recorded(const std::string& text) {
    for (Int4 v = nvar; v >= 1; v--)
        if (istempname(varlist[v - 1], 0) && char_get(varlist[v - 1], recordname) == text) return v;
    return 0;
}

Int4 fillvalues(Int4 entry, Int4 var) {
    for (Int4 obs = 1; obs <= nobs; obs++) {
        boolean inrun = obs >= firstobs && obs <= lastobs && exp_iftest(obs);
        putobs(var, obs, inrun ? varvalue(entry, obs) : missing);
        if (tick()) return 1;
    }
    return 0;
}

// The plain name that stands for list entry i; without an operator its own.
Int4 plainname(Int4 i, std::string& name) {
    std::string text = entryname(i);
    Int4 source = entryvar(i), var = entryop(i) ? recorded(text) : source;
    if (!var) {
        name = newtempname();
        if (Int4 rc = addvar(name, typedouble)) return rc;
        var = nvar;
        if (Int4 rc = fillvalues(i, var)) return rc;
        copytext(fmt[var - 1], fmtsize, fmt[source - 1]);
        if (Int4 rc = char_set(name, recordname, text)) return rc;
        visnvar = nvar;
    }
    name = varlist[var - 1];
    return 0;
}

}  // namespace

// tsrevar varlist [if] [in] [, substitute list]: the plain names in r(varlist); with list the base variables only.
Int4 cmd_tsrevar() {
    if (Int4 rc = stdparse({.varlist = must, .tsops = may})) return rc;
    boolean list = getopt_flag("list", 1);
    getopt_flag("substitute", 1);
    if (Int4 rc = getopt_done()) return rc;
    std::string names;
    for (Int4 i = 0; i < vl_n; i++) {
        std::string name = varlist[entryvar(i) - 1];
        if (!list)
            if (Int4 rc = plainname(i, name)) return rc;
        names += (names.empty() ? "" : " ") + name;
    }
    rclear();
    rmacro("varlist", names);
    return 0;
}

}  // namespace velmo
