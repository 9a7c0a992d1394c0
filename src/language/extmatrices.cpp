// Extended macro functions over the names of a matrix: rownames colnames roweq coleq rowfullnames colfullnames
// matrix [, quoted].
#include <string>
#include "core/tokenizer.h"
#include "expr/matrixread.h"
#include "language/extfunctions.h"
#include "output/errors.h"

namespace velmo {

namespace {

std::string equationof(const axisname& a) { return a.eq[0] ? std::string(a.eqtext()) : "_"; }
std::string nameof(const axisname& a) { return a.opname(); }
std::string fullof(const axisname& a) { return a.full(); }

// A, or r(A) and the like.
std::string matrixtoken() {
    std::string text = nexttoken();
    if (tokpeek() != '(') return text;
    char *begin, *end;
    if (parenthesized(&begin, &end)) text += "(" + std::string(begin, end) + ")";
    return text;
}

Int4 quotedoption(boolean& quoted) {
    quoted = false;
    if (!tokpeeknonblank()) return 0;
    quoted = std::string_view(nexttoken()) == "," && std::string_view(nexttoken()) == "quoted";
    return quoted && !tokpeeknonblank() ? 0 : error(198);
}

template <std::string (*part)(const axisname&)> Int4 axisnames(std::string& out, boolean columns) {
    std::string text = matrixtoken();
    boolean quoted;
    matrix m;
    if (Int4 rc = quotedoption(quoted)) return rc;
    if (Int4 rc = readmatrix(readmatrixname(text), m)) return rc;
    for (const axisname& a : columns ? m.colnames : m.rownames) {
        if (!out.empty()) out += ' ';
        out += quoted ? "`\"" + part(a) + "\"'" : part(a);
    }
    return 0;
}

}  // namespace

Int4 ext_rownames(std::string& out) { return axisnames<nameof>(out, false); }
Int4 ext_colnames(std::string& out) { return axisnames<nameof>(out, true); }
Int4 ext_roweq(std::string& out) { return axisnames<equationof>(out, false); }
Int4 ext_coleq(std::string& out) { return axisnames<equationof>(out, true); }
Int4 ext_rowfullnames(std::string& out) { return axisnames<fullof>(out, false); }
Int4 ext_colfullnames(std::string& out) { return axisnames<fullof>(out, true); }

}  // namespace velmo
