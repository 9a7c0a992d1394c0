// matrix score: a linear combination of variables as a variable.
#include <algorithm>
#include <string>
#include <vector>
#include "base/text.h"
#include "data/cells.h"
#include "estimate/sample.h"
#include "language/options.h"
#include "language/stdparse.h"
#include "output/errors.h"
#include "output/print.h"
#include "stored/posted.h"

namespace velmo {

namespace {

struct term {
    Double b;
    source from;
};

struct scoreoptions {
    std::string equation = "#1";
    boolean replace = false, given = false;
    Double missval = missing;
};

Int4 readoptions(scoreoptions& o) {
    boolean found;
    Int4 n;
    o.replace = getopt_flag("replace", 1);
    if (Int4 rc = getopt_str("equation", 1, o.equation, found)) return rc;
    if (Int4 rc = getopt_num("missval", 1, &o.missval, 1, n)) return rc;
    if (!found) o.equation = "#1";
    o.given = n > 0;
    return getopt_done();
}

// The equation that a name or # and a number mean, as the columns have it.
Int4 equationof(const matrix& b, const std::string& wanted, std::string& eq) {
    std::vector<std::string> all;
    for (const axisname& a : b.colnames)
        if (std::string text(a.eqtext()); std::find(all.begin(), all.end(), text) == all.end()) all.push_back(text);
    Int4 number;
    if (wanted[0] == '#') {
        if (!readinteger(std::string_view(wanted).substr(1), number) || number < 1) return error(198);
        if (number > Int4(all.size())) return eqnotfound(wanted);
        eq = all[std::size_t(number - 1)];
        return 0;
    }
    eq = wanted == "_" ? "" : wanted;
    return std::find(all.begin(), all.end(), eq) != all.end() ? 0 : eqnotfound(wanted);
}

Int4 readterms(const matrix& b, const std::string& equation, std::vector<term>& terms, Double& constant) {
    std::string eq;
    constant = 0;
    if (b.rows != 1) return error(503);
    if (Int4 rc = equationof(b, equation, eq)) return rc;
    for (Int4 j = 0; j < b.cols; j++) {
        const axisname& a = b.colnames[std::size_t(j)];
        term t{b.at(0, j), {}};
        if (a.eqtext() != eq) continue;
        if (Int4 rc = namedsource(a, t.from)) return rc;
        if (t.from.var) terms.push_back(t);
        else constant += t.b;
    }
    return 0;
}

Double scored(const std::vector<term>& terms, Double constant, const scoreoptions& o, Int4 obs) {
    Double sum = 0;
    for (const term& t : terms) {
        Double x = t.from.value(obs);
        if (x == missing && o.given) x = o.missval;
        if (x == missing || t.b == missing) return missing;
        sum += t.b * x;
    }
    return constant == missing ? missing : datavalue(sum + constant);
}

// The words ahead of `=`: a type, or none, and the variable; the cursor at the variable when it exists, else at the
// start.
Int4 target(boolean& typed, boolean& exists) {
    tokenpos start, name;
    std::string word;
    Int4 n = 0;
    savetokpos(&start);
    do {
        savetokpos(&name);
        word = nexttoken();
        if (word.empty() || !validname(word) || ++n > 2) return error(198);
    } while (tokpeeknonblank() != '=');
    typed = n == 2;
    exists = findvar(word) != 0;
    restoretokpos(exists ? &name : &start);
    return 0;
}

}  // namespace

// score [type] newvar = b [if] [in] [, equation(name or #number) missval(#) replace]
Int4 matrix_score() {
    boolean typed = false, exists = false;
    scoreoptions o;
    matrix b;
    std::vector<term> terms;
    Double constant;
    if (Int4 rc = target(typed, exists)) return rc;
    form f{.varlist = must, .newvars = !exists, .exp = must, .exptype = mode_mat, .by = never};
    if (Int4 rc = stdparse(f)) return rc;
    if (Int4 rc = readoptions(o)) return rc;
    Int4 var = vl_vr[0];
    if (vl_n != 1) return error(103);
    if (exists && typed && o.replace)
        return errorf(101, "May not set storage type of variable when using replace option\n");
    if (exists && !o.replace) return nameerror(name_defined, varlist[var - 1]);
    if (!exists && o.replace) return varnotfound(varlist[var - 1]);
    if (isstring(var)) return error(109);
    if (Int4 rc = exp_getmat(eqexp, b, constant)) return rc;
    if (Int4 rc = readterms(b, o.equation, terms, constant)) return rc;
    if (!exists)
        for (Int4 obs = 1; obs <= nobs; obs++) putobs(var, obs, missing);
    Int4 rc = overobs([&](Int4 obs) { putobs(var, obs, scored(terms, constant, o, obs)); }, var);
    if (rc && !exists) return rc;
    visnvar = nvar;
    setsortnone(&var, 1);
    markchanged(var);
    return rc;
}

}  // namespace velmo
