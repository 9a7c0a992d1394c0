// tabulate, summarize() and oneway: means, deviations and frequencies by groups.
#include <algorithm>
#include "base/columns.h"
#include "commands/tables/tablestubs.h"
#include "commands/tables/tabulate.h"
#include "commands/tables/variancetable.h"
#include "estimate/cellmeans.h"
#include "language/options.h"
#include "language/stdparse.h"
#include "output/errors.h"
#include "output/formats.h"
#include "output/print.h"
#include "stored/families.h"

namespace velmo {

namespace {

enum figure : UByte { f_mean, f_sd, f_freq, f_obs, nfigures };

struct sumoptions {
    boolean shows[nfigures];
    boolean tabulate, wrap, missing, label;
    varianceoptions variance;
    Int4 figures() const { return Int4(std::count(shows, shows + nfigures, true)); }
};

// 1 given, 0 negated, -1 neither.
Int4 getthree(const char* name, Int4 min) {
    if (getopt_flag(name, min)) return 1;
    return getopt_noflag(name, min, true) ? -1 : 0;
}

Int4 getoptions(sumoptions& o, boolean oneway, boolean variance) {
    if (variance) o.variance = getvarianceoptions(oneway);
    o.tabulate = getopt_noflag("tabulate", 1, !oneway);
    static constexpr struct { const char* name; Int4 min; } words[] = {{"means", 2}, {"standard", 2}, {"freq", 1}};
    Int4 given[3];
    for (Int4 i = 0; i < 3; i++) given[i] = getthree(words[i].name, words[i].min);
    Int4 obs = getthree("obs", 1);
    boolean any = std::count(given, given + 3, -1) < 3, asked = std::count(given, given + 3, 1) > 0;
    for (Int4 i = 0; i < 3; i++) o.shows[i] = given[i] >= 0 ? given[i] == 1 : any ? !asked : o.tabulate;
    o.tabulate = o.shows[f_mean] || o.shows[f_sd] || o.shows[f_freq] || obs == 1;
    o.shows[f_obs] = obs == 1 || (obs < 0 && o.tabulate && weighttype);
    o.wrap = getopt_flag("wrap", 1);
    o.missing = getopt_flag("missing", 2);
    o.label = getopt_noflag("label", 1, true);
    return getopt_done();
}

Double figureof(const cellfigures& c, Int4 what) {
    const Double all[nfigures] = {c.mean, c.sd, c.freq, c.count};
    return all[what];
}

// ---- One grouping variable.

// What the tables need to know of the response, and of the groups in their order.
struct sumview {
    const celltable& t;
    const sumoptions& o;
    Int4 x;
    char format[fmtsize];
    shownvalues row;
    Int4 stub = 0;
    sumview(const celltable& table, const sumoptions& options, Int4 response)
        : t(table), o(options), x(response), row(table.lists[0].var, options.label) {
        cutformat(fmt[x - 1], "%10.2g", format);
    }
};

Int4 printline(const sumview& v, const std::string& stub, const cellfigures& c) {
    prttext(stub + " ");
    prtmarkup("{c |}");
    for (Int4 what = 0; what < nfigures; what++) {
        if (!v.o.shows[what]) continue;
        if (what != f_obs) prttext("  ");
        if (what == f_obs)
            prtresultf("%12.0f", c.count);
        else
            prtnumber(what == f_freq ? "%10.0g" : v.format, figureof(c, what));
    }
    return prtnl();
}

Int4 printrule(const sumview& v) {
    return prtmarkup("{hline " + std::to_string(v.stub) + "}{c +}{hline " + std::to_string(12 * v.o.figures()) + "}\n");
}

Int4 printgroups(sumview& v) {
    static constexpr const char* heads[nfigures] = {"        Mean", "   Std. Dev.", "       Freq.", "        Obs."};
    Int4 width = 12 * v.o.figures();
    v.stub = v.row.text && v.row.width() <= 70 - width ? std::max(12, v.row.width()) : 12;
    prtnl();
    if (tableheading(variabletitle(v.row.var), v.stub - 1, "Summary of " + variabletitle(v.x), width)) return 1;
    for (Int4 what = 0; what < nfigures; what++)
        if (v.o.shows[what]) prttext(heads[what]);
    prtnl();
    if (printrule(v)) return 1;
    const valuelist& list = v.t.lists[0];
    for (Int4 number : list.order()) {
        std::string text = v.row.at(list.first[std::size_t(number)]);
        text = fitted(v.row.text ? text : fitted(text, 9), v.stub - 1);
        if (printline(v, text, v.t.figures(v.t.sumsof(number, -1)))) return 1;
    }
    printrule(v);
    return printline(v, fitted("Total", v.stub - 1), v.t.figures(v.t.sumsof(-1, -1)));
}

// ---- Two.

struct twoview : sumview {
    shownvalues col;
    std::vector<Int4> rows, cols;
    std::size_t first = 0, last = 0;
    twoview(const celltable& table, const sumoptions& options, Int4 response)
        : sumview(table, options, response), col(table.lists[1].var, options.label), rows(table.lists[0].order()),
          cols(table.lists[1].order()) {}
};

std::string shownfigures(const sumoptions& o) {
    static constexpr const char* names[nfigures] = {"Means", "Standard Deviations", "Frequencies",
                                                    "Number of Observations"};
    std::string text;
    for (Int4 what = 0, left = o.figures(); what < nfigures; what++) {
        if (!o.shows[what]) continue;
        if (!text.empty()) text += left > 1 ? ", " : " and ";
        text += names[what];
        left--;
    }
    return text;
}

void printtitle(const sumview& v) {
    std::string what = shownfigures(v.o), of = "of " + variabletitle(v.x);
    prtnl();
    if (textcolumns(what) + 1 + textcolumns(of) < 75) {
        prttext(centred(what + " " + of, 76) + "\n");
        return;
    }
    prttext(centred(what, 76) + "\n" + centred(of, 76) + "\n");
}

Int4 printblockrule(const twoview& v) {
    std::string columns = std::to_string(11 * (v.last - v.first));
    return prtmarkup("{hline " + std::to_string(v.stub + 1) + "}{c +}{hline " + columns + "}{c +}{hline 10}\n");
}

Int4 printblockrow(const twoview& v, std::string_view text, Int4 row) {
    std::vector<cellfigures> cells;
    for (std::size_t j = v.first; j < v.last; j++) cells.push_back(v.t.figures(v.t.sumsof(row, v.cols[j])));
    cellfigures margin = v.t.figures(v.t.sumsof(row, -1));
    std::string stub = fitted(text, v.stub) + " ";
    for (Int4 what = 0; what < nfigures; what++) {
        if (!v.o.shows[what]) continue;
        const char* format = what < f_freq ? v.format : "%10.0g";
        prttext(stub);
        prtmarkup("{c |}");
        for (const cellfigures& c : cells) {
            prtnumber(format, figureof(c, what));
            prttext(" ");
        }
        prtmarkup("{c |}");
        prtnumber(format, figureof(margin, what));
        if (prtnl()) return 1;
        stub.assign(std::size_t(v.stub + 1), ' ');
    }
    return 0;
}

Int4 printblock(const twoview& v) {
    prtnl();
    Int4 width = Int4(v.last - v.first) * 11;
    if (tableheading(variabletitle(v.row.var), v.stub, variabletitle(v.col.var), width)) return 1;
    for (std::size_t j = v.first; j < v.last; j++)
        prttext(" " + fitted(v.col.at(v.t.lists[1].first[std::size_t(v.cols[j])]), 9) + " ");
    prtmarkup("{c |}");
    prttext("     Total\n");
    printblockrule(v);
    for (std::size_t i = 0; i < v.rows.size(); i++) {
        if (i > 0 && v.o.figures() > 1 && printblockrule(v)) return 1;
        if (printblockrow(v, v.row.at(v.t.lists[0].first[std::size_t(v.rows[i])]), v.rows[i])) return 1;
    }
    printblockrule(v);
    return printblockrow(v, "Total", -1);
}

Int4 printcells(twoview v) {
    v.stub = v.row.text ? std::clamp(v.row.width(), 10, 40) : 10;
    printtitle(v);
    std::size_t most = v.o.wrap ? 10 : std::size_t((66 - v.stub) / 11);
    for (v.first = 0; v.first < v.cols.size(); v.first = v.last) {
        v.last = std::min(v.first + most, v.cols.size());
        if (printblock(v)) return 1;
    }
    return 0;
}

}  // namespace

Int4 tabulate_summarize(Int4 x, const std::vector<Int4>& by, boolean oneway) {
    sumoptions o;
    if (Int4 rc = getoptions(o, oneway, by.size() == 1)) return rc;
    if (weighttype == weight_i) return notallowed("iweights");
    if (isstring(x)) return error(109);
    celltable t(by);
    if (Int4 rc = fillcells(x, o.missing, t)) return rc;
    if (t.n == 0) return noobservations();
    rclear();
    if (o.tabulate && by.size() == 2) return printcells(twoview(t, o, x));
    sumview v(t, o, x);
    if (o.tabulate && printgroups(v)) return 1;
    return o.variance.any() ? showvariance(x, t, o.variance, o.label, o.wrap) : 0;
}

}  // namespace velmo
