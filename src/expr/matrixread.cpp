#include "expr/matrixread.h"
#include "base/saved.h"
#include "core/rectangle.h"
#include "data/run.h"
#include "expr/compile.h"
#include "expr/evaluate.h"
#include "expr/matrixwords.h"
#include "output/errors.h"
#include "stored/posted.h"

namespace velmo {

matrixname readmatrixname(std::string_view text) {
    matrixname n{named_results, text};
    std::size_t open = text.find('(');
    if (open == text.npos || text.back() != ')' || !family_find(text.substr(0, open), n.f))
        return {named_results, text};
    n.name = text.substr(open + 1, text.size() - open - 2);
    return n;
}

Int4 readmatrix(const matrixname& from, matrix& out) {
    Int4 type = family_type(from.f, result_matrix);
    if (!type) return matnotfound(from.name);
    saved kind(matrixkind, type);
    boolean posting = from.f == e_results && (from.name == "b" || from.name == "V") && !matfind(from.name);
    return posting ? postedmatrix(from.name == "b" ? "_b" : "VCE", out) : matcopy(from.name, out);
}

namespace {

Int4 compiled(const compileoptions& options, matrix& out, Double& value) {
    saved first(firstobs, 1), last(lastobs, nobs), gfirst(groupfirst, 1), glast(grouplast, nobs);
    exp_reset();
    exp_clearsums();
    if (Int4 rc = exp_compile(eqexp, mode_nummat, options)) return rc;
    return exp_getmat(eqexp, out, value);
}

}  // namespace

Int4 matrixhere(matrix& out, boolean& number) {
    Double value;
    if (Int4 rc = compiled({.matjoin = true}, out, value)) return rc;
    number = eqexp.restype == exp_numeric;
    if (number) {
        if (value == missing) return error(504);
        if (Int4 rc = makematrix(out, 1, 1)) return rc;
        out.at(0, 0) = value;
        out.symmetric = true;
    }
    placenames(out.rownames, 'r');
    placenames(out.colnames, 'c');
    return 0;
}

Int4 numberhere(Double& value) {
    matrix none;
    if (Int4 rc = compiled({.stopatbracket = true}, none, value)) return rc;
    return eqexp.restype == exp_numeric ? 0 : error(109);
}

}  // namespace velmo
