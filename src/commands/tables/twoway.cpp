// tabulate of two variables: blocks of columns with margins, then measures of association.
#include <algorithm>
#include <cmath>
#include "base/columns.h"
#include "commands/tables/tablestubs.h"
#include "commands/tables/tabulate.h"
#include "estimate/tabletests.h"
#include "language/options.h"
#include "language/stdparse.h"
#include "output/errors.h"
#include "output/print.h"
#include "stored/families.h"

namespace velmo {

namespace {

enum content : UByte { c_freq, c_row, c_column, c_cell, ncontents };
struct twowayoptions {
    boolean chi2 = false, lrchi2 = false, v = false, gamma = false, taub = false, exact = false;
    boolean shows[ncontents];
    boolean label, wrap;
    tablesample sample;
    std::string matcell, matrow, matcol;
    boolean tests() const { return chi2 || lrchi2 || v || gamma || taub || exact; }
    Int4 contents() const { return Int4(std::count(shows, shows + ncontents, true)); }
};

void getstatistics(twowayoptions& o) {
    boolean all = getopt_flag("all", 1);
    o.chi2 = getopt_flag("chi2", 2) || all;
    o.lrchi2 = getopt_flag("lrchi2", 2) || all;
    o.exact = getopt_flag("exact", 1);
    o.gamma = getopt_flag("gamma", 1) || all;
    o.taub = getopt_flag("taub", 1) || all;
    o.v = getopt_flag("V", 1) || all;
}

Int4 getoptions(twowayoptions& o) {
    if (!weighttype || weighttype == weight_f) getstatistics(o);
    o.shows[c_row] = getopt_flag("row", 1);
    o.shows[c_column] = getopt_flag("column", 2);
    o.shows[c_cell] = getopt_flag("cell", 2);
    o.shows[c_freq] = getopt_noflag("freq", 1, true);
    o.label = getopt_noflag("label", 1, true);
    o.wrap = getopt_flag("wrap", 1);
    if (Int4 rc = gettablesample(o.sample)) return rc;
    if (Int4 rc = getmatrixname("matcell", 7, o.matcell)) return rc;
    if (!isstring(entryvar(0)))
        if (Int4 rc = getmatrixname("matrow", 6, o.matrow)) return rc;
    if (!isstring(entryvar(1)))
        if (Int4 rc = getmatrixname("matcol", 6, o.matcol)) return rc;
    return getopt_done();
}

// ---- The table

// Values in ascending order, with margins: row and column -1 are the totals.
struct sortedtable {
    counttable& t;
    std::vector<Int4> rows, cols;
    std::vector<Double> rowsums, colsums;
    Double total = 0;
    explicit sortedtable(counttable& table);
    Double at(Int4 i, Int4 j) const {
        if (i < 0) return j < 0 ? total : colsums[std::size_t(j)];
        return j < 0 ? rowsums[std::size_t(i)] : t.at(rows[std::size_t(i)], cols[std::size_t(j)]);
    }
};

sortedtable::sortedtable(counttable& table) : t(table), rows(t.lists[0].order()), cols(t.lists[1].order()) {
    std::vector<Double> bynumber(cols.size());
    for (Int4 i : rows) {
        Double sum = 0;
        for (Int4 j = 0; j < Int4(cols.size()); j++) {
            sum += t.at(i, j);
            bynumber[std::size_t(j)] += t.at(i, j);
        }
        rowsums.push_back(sum);
        total += sum;
    }
    for (Int4 j : cols) colsums.push_back(bynumber[std::size_t(j)]);
    if (weighttype != weight_a || t.n == 0) return;
    Double factor = t.n / total;
    for (std::vector<Double>* v : {&t.cells, &rowsums, &colsums})
        for (Double& x : *v) x *= factor;
    total = t.n;
}

Double contentof(const sortedtable& t, Int4 what, Int4 i, Int4 j) {
    Double n = t.at(i, j);
    if (what == c_freq) return n;
    Double base = what == c_row ? t.at(i, -1) : what == c_column ? t.at(-1, j) : t.total;
    return base ? 100 * n / base : missing;
}

// What a block shows: columns first to last - 1.
struct tableview {
    const sortedtable& t;
    const twowayoptions& o;
    shownvalues row, col;
    Int4 stub, first = 0, last = 0;
    Int4 width() const { return (last - first) * 11; }
};

Int4 printrule(const tableview& v) {
    return prtmarkup("{hline " + std::to_string(v.stub + 1) + "}{c +}{hline " + std::to_string(v.width()) +
                     "}{c +}{hline 10}\n");
}

Int4 printheading(const tableview& v) {
    prtnl();
    if (tableheading(variabletitle(v.row.var), v.stub, variabletitle(v.col.var), v.width())) return 1;
    for (Int4 j = v.first; j < v.last; j++) {
        Int4 obs = v.t.t.lists[1].first[std::size_t(v.t.cols[std::size_t(j)])];
        prttext(" " + fitted(v.col.at(obs), 9) + " ");
    }
    prtmarkup("{c |}");
    prttext("     Total\n");
    return printrule(v);
}

void printnumber(Int4 what, Double x) {
    prtnumber(what == c_freq ? "%10.0g" : "%10.2f", x);
    prttext(" ");
}

// The lines of a row, of which the first has the text ahead.
Int4 printrow(const tableview& v, std::string_view text, Int4 i) {
    std::string stub = fitted(text, v.stub) + " ";
    for (Int4 what = 0; what < ncontents; what++) {
        if (!v.o.shows[what]) continue;
        prttext(stub);
        prtmarkup("{c |}");
        for (Int4 j = v.first; j < v.last; j++) printnumber(what, contentof(v.t, what, i, j));
        prtmarkup("{c |}");
        printnumber(what, contentof(v.t, what, i, -1));
        if (prtnl()) return 1;
        stub.assign(std::size_t(v.stub + 1), ' ');
    }
    return 0;
}

Int4 printblock(const tableview& v) {
    if (printheading(v)) return 1;
    for (std::size_t i = 0; i < v.t.rows.size(); i++) {
        if (i > 0 && v.o.contents() > 1 && printrule(v)) return 1;
        if (printrow(v, v.row.at(v.t.t.lists[0].first[std::size_t(v.t.rows[i])]), Int4(i))) return 1;
    }
    if (printrule(v)) return 1;
    return printrow(v, "Total", -1);
}

Int4 printtable(const sortedtable& t, const twowayoptions& o) {
    tableview v{t, o, shownvalues(t.t.lists[0].var, o.label), shownvalues(t.t.lists[1].var, o.label), 0};
    v.stub = std::clamp(v.row.width(), 10, 21);
    Int4 cols = Int4(t.cols.size()), most = o.wrap ? cols : (66 - v.stub) / 11;
    for (v.first = 0; v.first < cols; v.first = v.last) {
        v.last = std::min(v.first + most, cols);
        if (printblock(v)) return 1;
    }
    return 0;
}

Int4 putmatrices(const sortedtable& t, const twowayoptions& o) {
    if (!o.matcell.empty()) {
        matrix m;
        if (Int4 rc = makematrix(m, Int4(t.rows.size()), Int4(t.cols.size()))) return rc;
        for (Int4 i = 0; i < m.rows; i++)
            for (Int4 j = 0; j < m.cols; j++) m.at(i, j) = t.at(i, j);
        if (Int4 rc = matput(o.matcell, m)) return rc;
    }
    if (Int4 rc = putvalues(o.matrow, t.t.lists[0], t.rows, false)) return rc;
    return putvalues(o.matcol, t.t.lists[1], t.cols, true);
}

// ---- Statistics

// Whole counts of the rows and columns that have any, in the order given.
countmatrix counts(counttable& t, std::vector<Int4> rows, std::vector<Int4> cols) {
    auto empty = [&](auto sum) { return [sum](Int4 i) { return sum(i) == 0; }; };
    std::erase_if(rows, empty([&](Int4 i) {
        return std::count_if(cols.begin(), cols.end(), [&](Int4 j) { return t.at(i, j) != 0; });
    }));
    std::erase_if(cols, empty([&](Int4 j) {
        return std::count_if(rows.begin(), rows.end(), [&](Int4 i) { return t.at(i, j) != 0; });
    }));
    countmatrix c(Int4(rows.size()), Int4(cols.size()));
    for (Int4 i = 0; i < c.rows; i++)
        for (Int4 j = 0; j < c.cols; j++) c.at(i, j) = std::trunc(t.at(rows[std::size_t(i)], cols[std::size_t(j)]));
    c.summargins();
    return c;
}

Int4 printline(const std::string& name, const char* between, statistic s) {
    prttext(rightjustified(name, 25) + " = ");
    prtnumber("%8.4f", s.value);
    if (s.second != missing) {
        prttext(between);
        prtnumber("%5.3f", s.second);
    }
    return prtnl();
}

Int4 showstatistic(const char* name, Double df, statistic s, const char* value, const char* second) {
    rstore(value, s.value);
    if (second) rstore(second, s.second);
    std::string text = name;
    if (df) text += "(" + std::to_string(Int4(df)) + ")";
    return printline(text, df ? "   Pr = " : "  ASE = ", s);
}

Int4 showprobability(const char* name, Double p, const char* result) {
    rstore(result, p);
    prttext(rightjustified(name, 25) + " = " + std::string(16, ' '));
    prtnumber("%5.3f", p);
    return prtnl();
}

Int4 showfisher(const countmatrix& c) {
    Double both, one;
    if (Int4 rc = fisherexact(c, both, one)) return rc;
    if (showprobability("Fisher's exact", both, "p_exact")) return 1;
    return one == missing ? 0 : showprobability("1-sided Fisher's exact", one, "p1_exact");
}

std::vector<Int4> firstones(std::size_t n) {
    std::vector<Int4> numbers;
    for (std::size_t i = 0; i < n; i++) numbers.push_back(Int4(i));
    return numbers;
}

Int4 showstatistics(const sortedtable& t, const twowayoptions& o) {
    countmatrix c = counts(t.t, t.rows, t.cols);
    if (c.rows < 2 || c.cols < 2) return 0;
    countmatrix asmet = counts(t.t, firstones(t.rows.size()), firstones(t.cols.size()));
    Double df = tabledf(c);
    if (o.chi2 && showstatistic("Pearson chi2", df, pearson(asmet), "chi2", "p")) return 1;
    if (o.lrchi2 && showstatistic("likelihood-ratio chi2", df, likelihoodratio(asmet), "chi2_lr", "p_lr")) return 1;
    if (o.v && showstatistic("Cramer's V", 0, {cramersv(c), missing}, "CramersV", nullptr)) return 1;
    if (o.gamma && showstatistic("gamma", 0, goodmangamma(c), "gamma", "ase_gam")) return 1;
    if (o.taub && showstatistic("Kendall's tau-b", 0, kendalltaub(c), "taub", "ase_taub")) return 1;
    return o.exact ? showfisher(c) : 0;
}

void storesize(Double n, std::size_t r, std::size_t c) {
    rstore("N", n);
    rstore("r", Double(r));
    rstore("c", Double(c));
}

}  // namespace

Int4 tabulate_twoway() {
    twowayoptions o;
    if (Int4 rc = getoptions(o)) return rc;
    if (!o.tests() && o.contents() == 0) return 0;
    counttable t({entryvar(0), entryvar(1)});
    if (Int4 rc = filltable(o.sample, t)) return rc;
    rclear();
    storesize(0, 0, 0);
    if (t.n == 0) return noobservations();
    sortedtable sorted(t);
    if (o.contents() && printtable(sorted, o)) return 1;
    if (Int4 rc = putmatrices(sorted, o)) return rc;
    storesize(sorted.total, sorted.rows.size(), sorted.cols.size());
    return o.tests() ? showstatistics(sorted, o) : 0;
}

}  // namespace velmo
