// matrix list.
#include <algorithm>
#include <string>
#include <vector>
#include "base/columns.h"
#include "base/poll.h"
#include "base/text.h"
#include "core/tokenizer.h"
#include "expr/matrixread.h"
#include "language/options.h"
#include "output/errors.h"
#include "output/formats.h"
#include "output/print.h"

namespace velmo {

namespace {

struct listing {
    matrix m;
    std::string label, format = defaultfmt, title;
    boolean header = true, names = true, blank = true, half = true, symmetric = false;
    Int4 width = 0, stub = 0;
    boolean equations = false, operators = false;      // some column has one
};

Int4 readoptions(listing& l) {
    boolean found;
    std::string format;
    if (Int4 rc = parseoptions()) return rc;
    if (Int4 rc = getopt_str("title", 1, l.title, found)) return rc;
    if (Int4 rc = getopt_str("format", 1, format, found)) return rc;
    l.header = getopt_noflag("header", 1, true);
    l.names = getopt_noflag("names", 1, true);
    l.blank = getopt_noflag("blank", 1, true);
    l.half = getopt_noflag("half", 2, true);
    if (Int4 rc = getopt_done()) return rc;
    if (found && chkfmt(format, 1)) return error(120);
    if (found) l.format = format;
    return 0;
}

std::string element(const listing& l, Int4 i, Int4 j) {
    fmtnum(l.format.c_str(), l.m.at(i, j));
    return std::string(trimmed(dbuf));
}

boolean shown(const listing& l, Int4 i, Int4 j) { return !(l.symmetric && l.half) || j <= i; }

void measure(listing& l) {
    for (Int4 i = 0; i < l.m.rows; i++)
        for (Int4 j = 0; j < l.m.cols; j++)
            if (shown(l, i, j)) l.width = std::max(l.width, Int4(element(l, i, j).size()));
    if (!l.names) return;
    for (const axisname& a : l.m.colnames) {
        l.equations |= a.eq[0] != 0;
        l.operators |= a.op[0] != 0;
        l.width = std::max(l.width, Int4(a.nametext().size()));
        if (a.eq[0]) l.width = std::max(l.width, Int4(a.eqtext().size()) + 1);
        if (a.op[0]) l.width = std::max(l.width, Int4(a.optext().size()) + 1);
    }
    for (const axisname& a : l.m.rownames) l.stub = std::max(l.stub, Int4(a.full().size()));
}

enum headingpart { head_equation, head_operator, head_name };

std::string headingtext(const axisname& a, headingpart part) {
    if (part == head_equation) return std::string(a.eq[0] ? a.eqtext() : "_") + ":";
    if (part == head_operator) return a.op[0] ? std::string(a.optext()) + "." : "";
    return std::string(a.nametext());
}

// What stands ahead of a name ends above its last character, the colon or point behind.
Int4 headingline(const listing& l, Int4 from, Int4 to, headingpart part) {
    std::string line(std::size_t(l.stub + (part != head_name)), ' ');
    for (Int4 j = from; j < to; j++)
        line += "  " + rightjustified(headingtext(l.m.colnames[std::size_t(j)], part), l.width);
    prttext(line);
    return prtnl();
}

Int4 headings(const listing& l, Int4 from, Int4 to) {
    if (!l.names) return 0;
    if (l.equations && headingline(l, from, to, head_equation)) return breakpending;
    if (l.operators && headingline(l, from, to, head_operator)) return breakpending;
    return headingline(l, from, to, head_name);
}

Int4 block(const listing& l, Int4 from, Int4 to) {
    if (Int4 rc = headings(l, from, to)) return rc;
    boolean triangle = l.symmetric && l.half;
    for (Int4 i = triangle ? from : 0; i < l.m.rows; i++) {
        if (l.names) prttext(rightjustified(l.m.rownames[std::size_t(i)].full(), l.stub));
        std::string line;
        for (Int4 j = from; j < to && shown(l, i, j); j++) line += "  " + rightjustified(element(l, i, j), l.width);
        prtresult(line);
        if (prtnl()) return breakpending;
    }
    return 0;
}

Int4 show(listing& l) {
    if (l.blank && prtnl()) return breakpending;
    if (l.header) {
        prttextf("%s%s[%d,%d]", l.symmetric ? "symmetric " : "", l.label.c_str(), l.m.rows, l.m.cols);
        if (!l.title.empty()) prttextf(":  %s", l.title.c_str());
        if (prtnl()) return breakpending;
    }
    Int4 fits = std::max((78 - l.stub) / (l.width + 2), 1);
    for (Int4 from = 0; from < l.m.cols; from += fits) {
        if (from && (l.m.rows > 1 || l.names) && prtnl()) return breakpending;
        if (Int4 rc = block(l, from, std::min(from + fits, l.m.cols))) return rc;
    }
    return 0;
}

}  // namespace

// list A [, title(text) format(%fmt) noheader nonames noblank nohalf]
Int4 matrix_list() {
    listing l;
    l.label = nexttoken();
    char *begin, *end;
    if (l.label.empty()) return error(198);
    if (tokpeek() == '(' && parenthesized(&begin, &end)) l.label += "(" + std::string(begin, end) + ")";
    if (Int4 rc = readoptions(l)) return rc;
    if (Int4 rc = readmatrix(readmatrixname(l.label), l.m)) return rc;
    l.symmetric = issymmetric(l.m);
    measure(l);
    return show(l);
}

}  // namespace velmo
