// oneway: analysis of variance of one way, Bartlett's test, comparisons of the groups.
#include <algorithm>
#include "base/columns.h"
#include "commands/tables/tablestubs.h"
#include "commands/tables/tabulate.h"
#include "commands/tables/variancetable.h"
#include "language/options.h"
#include "language/stdparse.h"
#include "output/errors.h"
#include "output/formats.h"
#include "output/print.h"
#include "stored/families.h"

namespace velmo {

namespace {

void storevariance(const variances& v) {
    rclear();
    rstore("N", v.n);
    rstore("mss", v.mss);
    rstore("df_m", v.dfm);
    rstore("rss", v.rss);
    rstore("df_r", v.dfr);
    rstore("F", v.F);
    rstore("chi2bart", v.bartlett);
    rstore("df_bart", v.dfbartlett);
}

// ---- The table.

void printfigures(const char* name, Double ss, Int4 df) {
    prttext(name);
    prttext("     ");
    prtnumber("%11.2g", ss);
    prtresultf("%7d", df);
    prttext("  ");
    prtnumber("%11.2g", df > 0 ? ss / df : missing);
}

void printunused(Int4 n, const char* kind) {
    if (n == 0) return;
    prttext("      ");
    prttextf("%d %s-observation cells not used\n", n, kind);
}

Int4 printbartlett(const variances& v) {
    if (v.dfbartlett == 0) return 0;
    prttext("\nBartlett's test for equal variances:  chi2(");
    prtresultf("%d", v.dfbartlett);
    prttext(") = ");
    prtnumber("%8.4f", v.bartlett);
    prttext("  Prob>chi2 = ");
    prtnumber("%5.3f", v.pbartlett);
    prtnl();
    if (v.single == 0 && v.multiple == 0) return prtflush();
    prttext("\nnote: Bartlett's test performed on cells with positive variance:\n");
    printunused(v.single, "single");
    printunused(v.multiple, "multiple");
    return prtflush();
}

Int4 printvariance(const variances& v) {
    prttext("\n                        Analysis of Variance\n");
    prttext("    Source              SS         df      MS            F     Prob > F\n");
    prtmarkup("{hline 72}\n");
    printfigures("Between groups", v.mss, v.dfm);
    if (v.F != missing) {
        prttext("  ");
        prtnumber("%8.2f", v.F);
        prttext("    ");
        prtnumber("%7.4f", v.p);
    }
    prtnl();
    printfigures(" Within groups", v.rss, v.dfr);
    prtmarkup("\n{hline 72}\n");
    printfigures("    Total     ", v.mss + v.rss, v.dfm + v.dfr);
    if (prtnl()) return 1;
    return printbartlett(v);
}

// ---- Comparisons.

struct compareview {
    const std::vector<group>& groups;
    const variances& v;
    Int4 x;
    const valuelist& list;
    std::vector<Int4> order;
    shownvalues shown;
    char format[fmtsize];
    std::string name(Int4 i) const { return fitted(shown.at(list.first[std::size_t(order[std::size_t(i)])]), 8); }
};

void printcentred(const std::string& text) { prttext(centred(text, 79) + "\n"); }

// On one line if it fits, else broken ahead of "by", and behind "Comparison of" if that is still too long.
void printtitle(const compareview& c) {
    std::string x = getvarlabel(varlist[c.x - 1]), by = "by " + variabletitle(c.list.var);
    if (x.empty()) x = std::string(varlist[c.x - 1]).substr(0, 12);
    std::string head = "Comparison of " + x;
    prtnl();
    if (textcolumns(head) + 1 + textcolumns(by) < 78) return printcentred(head + " " + by);
    if (textcolumns(head) < 78) {
        printcentred(head);
    } else {
        printcentred("Comparison of");
        printcentred(x);
    }
    printcentred(by);
}

Int4 printpair(const compareview& c, comparison kind, Int4 row, Int4 first, Int4 last) {
    Int4 k = Int4(c.groups.size());
    const group& r = c.groups[std::size_t(row)];
    prttext(c.name(row) + " ");
    prtmarkup("{c |}");
    for (Int4 j = first; j < last; j++) {
        prttext("   ");
        prtnumber(c.format, r.mean - c.groups[std::size_t(j)].mean);
    }
    prtmarkup("\n         {c |}");
    for (Int4 j = first; j < last; j++) {
        Double p = comparisonp(kind, r, c.groups[std::size_t(j)], k, c.v);
        prttext(p == missing ? "        " : "  ");
        if (p == missing)
            prtresult(".");
        else
            prtnumber("%9.3f", p);
    }
    if (row + 1 < k) prtmarkup("\n         {c |}");
    return prtnl();
}

Int4 printcomparison(const compareview& c, comparison kind, boolean wrap) {
    static constexpr const char* names[ncomparisons] = {"(Bonferroni)", "(Scheffe)", "(Sidak)"};
    Int4 k = Int4(c.groups.size()), most = wrap ? k : 6;
    printtitle(c);
    printcentred(names[kind]);
    for (Int4 first = 0; first < k - 1; first += most) {
        Int4 last = std::min(first + most, k - 1);
        if (first) prtnl();
        prtmarkup("Row Mean-{c |}\nCol Mean {c |}");
        for (Int4 j = first; j < last; j++) prttext("   " + c.name(j));
        prtmarkup("\n{hline 9}{c +}{hline " + std::to_string(11 * (last - first)) + "}\n");
        for (Int4 row = first + 1; row < k; row++)
            if (printpair(c, kind, row, first, std::min(row, last))) return 1;
    }
    return 0;
}

}  // namespace

varianceoptions getvarianceoptions(boolean table) {
    varianceoptions o;
    o.table = getopt_noflag("anova", 1, table);
    o.compares[bonferroni] = getopt_flag("bonferroni", 1);
    o.compares[scheffe] = getopt_flag("scheffe", 3);
    o.compares[sidak] = getopt_flag("sidak", 2);
    return o;
}

Int4 showvariance(Int4 x, const celltable& t, const varianceoptions& o, boolean labels, boolean wrap) {
    const valuelist& list = t.lists[0];
    std::vector<Int4> order = list.order();
    std::vector<group> groups;
    for (Int4 number : order) {
        cellfigures f = t.figures(t.sumsof(number, -1));
        groups.push_back({f.f, f.mean, f.deviations});
    }
    variances v = analysis(groups, t.figures(t.sumsof(-1, -1)), t.total());
    storevariance(v);
    if (o.table && printvariance(v)) return 1;
    compareview c{groups, v, x, list, order, shownvalues(list.var, labels, "%8.0g"), ""};
    cutformat(fmt[x - 1], "%8.0g", c.format);
    for (Int4 kind = 0; kind < ncomparisons; kind++)
        if (o.compares[kind] && groups.size() > 1 && printcomparison(c, comparison(kind), wrap)) return 1;
    return 0;
}

// oneway x group [if] [in] [weight] [, options]
Int4 cmd_oneway() {
    if (Int4 rc = stdparse({.weight = may, .weights = weight_a | weight_f})) return rc;
    if (!vl_given || vl_n != 2) return error(!vl_given || vl_n < 2 ? 102 : 103);
    return tabulate_summarize(entryvar(0), {entryvar(1)}, true);
}

}  // namespace velmo
