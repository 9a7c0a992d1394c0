// _matrows and _matcell: matrices from data and numbers that may be missing, for authors of commands.
#include <string>
#include <vector>
#include "commands/matrix/target.h"
#include "estimate/sample.h"
#include "expr/evaluate.h"
#include "language/options.h"
#include "language/stdparse.h"
#include "output/errors.h"

namespace velmo {

// _matrows A = varlist [if] [in] [, missing]: the observations as rows, those that lack a value only with `missing`.
Int4 cmd__matrows() {
    std::string name;
    if (Int4 rc = targetname(name)) return rc;
    if (Int4 rc = stdparse({.varlist = must, .tsops = may, .by = never})) return rc;
    boolean all = getopt_flag("missing", 1);
    if (Int4 rc = getopt_done()) return rc;
    std::vector<source> sources = listsources();
    for (source s : sources)
        if (isstring(s.var)) return error(109);
    drawnsample s;
    if (Int4 rc = drawsample(sources, !all, s)) return rc;
    if (s.n == 0) return noobservations();
    matrix m;
    if (Int4 rc = makematrix(m, s.n, vl_n)) return rc;
    for (Int4 j = 0; j < vl_n; j++) {
        for (Int4 i = 0; i < s.n; i++) m.at(i, j) = s.values(j)[i];
        m.colnames[std::size_t(j)] = readaxisname(entryname(j));
    }
    return matput(name, m);
}

namespace {

// So that one element can be set apart from its mirror image.
Int4 makefull(std::string_view name) {
    matrix m;
    if (Int4 rc = matcopy(name, m)) return rc;
    m.symmetric = false;
    return matput(name, m);
}

}  // namespace

// _matcell A row column = exp: one element, which may become missing.
Int4 cmd__matcell() {
    std::string name = nexttoken();
    Int4 at[2], rows, cols;
    for (Int4& i : at)
        if (!readinteger(nexttoken(), i)) return error(198);
    if (Int4 rc = stdparse({.varlist = never, .ifexp = never, .in = never, .exp = must, .options = never, .by = never}))
        return rc;
    if (!matfind(name, &rows, &cols)) return matnotfound(name);
    if (at[0] < 1 || at[0] > rows || at[1] < 1 || at[1] > cols) return error(503);
    if (matlayoutof(name) != mat_full)
        if (Int4 rc = makefull(name)) return rc;
    matset(name, at[0] - 1, at[1] - 1, exp_getnum(eqexp, 1));
    return 0;
}

}  // namespace velmo
