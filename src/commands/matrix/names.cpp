// matrix rownames, colnames, roweq, coleq, rename: names of rows and columns, and of matrices.
#include <string>
#include <vector>
#include "base/saved.h"
#include "base/state.h"
#include "commands/matrix/results.h"
#include "core/tokenizer.h"
#include "expr/matrixread.h"
#include "language/options.h"
#include "language/programs.h"
#include "output/errors.h"

namespace velmo {

namespace {

// Sets the parts that a token has; the one before stays in force for what it hasn't.
void setparts(axisname& a, std::string_view token, boolean equations) {
    std::size_t colon = token.find(':');
    axisname given = readaxisname(token);
    if (equations) {
        a = makeaxisname(token.substr(0, colon), a.optext(), a.nametext());
        return;
    }
    std::string eq(colon == token.npos ? a.eqtext() : given.eqtext());
    boolean named = given.name[0];
    a = makeaxisname(eq, named ? given.optext() : a.optext(), named ? given.nametext() : a.nametext());
}

// The last token goes on being applied to the rest; all names are set, or none.
Int4 setnames(boolean columns, boolean equations) {
    std::string name = nexttoken();
    matrix m;
    if (Int4 rc = matcopy(name, m)) return rc;
    if (std::string_view(nexttoken()) != "=") return error(198);
    std::vector<std::string_view> tokens;
    for (char* p = tokrest(); *p;) {
        while (*p == ' ') p++;
        char* start = p;
        while (*p && *p != ' ') p++;
        if (p > start) tokens.emplace_back(start, std::size_t(p - start));
    }
    std::vector<axisname>& names = columns ? m.colnames : m.rownames;
    if (tokens.empty()) return error(198);
    if (tokens.size() > names.size()) return error(503);
    for (std::size_t i = 0; i < names.size(); i++)
        setparts(names[i], tokens[i < tokens.size() ? i : tokens.size() - 1], equations);
    return matputnames(name, columns, names);
}

}  // namespace

Int4 matrix_rownames() { return setnames(false, false); }
Int4 matrix_colnames() { return setnames(true, false); }
Int4 matrix_roweq() { return setnames(false, true); }
Int4 matrix_coleq() { return setnames(true, true); }

namespace {

struct ownedname {
    std::string text;
    matrixname m;
};

// A or r(A); the text keeps what the name points into.
void ownername(ownedname& out) {
    out.text = nexttoken();
    char *begin, *end;
    if (tokpeek() == '(' && parenthesized(&begin, &end)) out.text += "(" + std::string(begin, end) + ")";
    out.m = readmatrixname(out.text);
}

boolean isthere(const matrixname& n) {
    Int4 type = family_type(n.f, result_matrix);
    saved kind(matrixkind, type);
    return type && matfind(n.name);
}

Int4 maywrite(const matrixname& n) {
    if (n.f == r_results || n.f == s_results) return error(198);
    if (n.f == e_results && !(inprogram && programclass == class_e)) return error(152);
    if (n.f == return_results && !(inprogram && programclass == class_r)) return error(151);
    return checkmatrixname(n.name);
}

}  // namespace

// rename old new [, replace]: the objects move as they are, into another family too.
Int4 matrix_rename() {
    ownedname from, to;
    ownername(from);
    ownername(to);
    if (from.m.name.empty() || to.m.name.empty()) return error(198);
    if (Int4 rc = parseoptions()) return rc;
    boolean replace = getopt_flag("replace", 1);
    if (Int4 rc = getopt_done()) return rc;
    if (!isthere(from.m)) return matnotfound(from.m.name);
    if (Int4 rc = maywrite(to.m)) return rc;
    if (isthere(to.m) && !replace) return nameerror(name_defined, to.m.name);
    stored_movematrix(from.m.f, from.m.name, to.m.f, to.m.name);
    return 0;
}

}  // namespace velmo
