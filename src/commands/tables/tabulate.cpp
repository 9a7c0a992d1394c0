// tabulate: which of its forms, and the table of one variable with what it makes of the values.
#include "commands/tables/tabulate.h"
#include <algorithm>
#include <cmath>
#include <numeric>
#include "base/text.h"
#include "commands/tables/tablestubs.h"
#include "data/structure.h"
#include "language/options.h"
#include "language/stdparse.h"
#include "output/errors.h"
#include "output/formats.h"
#include "output/print.h"
#include "stored/families.h"

namespace velmo {

// ---- What the forms share.

Int4 getmatrixname(const char* option, Int4 min, std::string& name) {
    boolean found;
    if (Int4 rc = getopt_str(option, min, name, found)) return rc;
    return found ? checkmatrixname(name) : 0;
}

Int4 gettablesample(tablesample& s) {
    std::vector<Int4> vars;
    boolean found;
    s.keepmissing = getopt_flag("missing", 1);
    if (Int4 rc = getopt_vars("subpop", 3, vars, found)) return rc;
    if (!found) return 0;
    if (vars.size() != 1) return error(vars.empty() ? 102 : 103);
    s.subpop = vars[0];
    return isstring(s.subpop) ? error(109) : 0;
}

Int4 putvalues(const std::string& name, const valuelist& values, const std::vector<Int4>& order, boolean across) {
    if (name.empty()) return 0;
    matrix m;
    if (Int4 rc = makematrix(m, across ? 1 : values.n(), across ? values.n() : 1)) return rc;
    for (std::size_t i = 0; i < order.size(); i++) m.x.get<Double>()[i] = values.value(order[i]);
    return matput(name, m);
}

namespace {

// ---- One variable.

struct onewayoptions {
    boolean plot, label, freq;
    tablesample sample;
    std::string stub, group, matcell, matrow;
};

Int4 getnewname(const char* option, Int4 min, std::string& name) {
    boolean found;
    if (Int4 rc = getopt_str(option, min, name, found)) return rc;
    return found ? checkvarname(name) : 0;
}

Int4 getoptions(onewayoptions& o, boolean numeric) {
    o.plot = getopt_flag("plot", 1);
    o.label = getopt_noflag("label", 1, true);
    o.freq = getopt_noflag("freq", 1, true);
    if (Int4 rc = gettablesample(o.sample)) return rc;
    if (Int4 rc = getnewname("generate", 1, o.stub)) return rc;
    if (Int4 rc = getnewname("cgen", 2, o.group)) return rc;
    if (Int4 rc = getmatrixname("matcell", 7, o.matcell)) return rc;
    if (numeric)
        if (Int4 rc = getmatrixname("matrow", 6, o.matrow)) return rc;
    return getopt_done();
}

// The frequencies in the order of the values, and their sum: those of aweights add up to the observations.
struct frequencies { std::vector<Int4> order; std::vector<Double> f; Double total = 0; };

void getfrequencies(counttable& t, frequencies& out) {
    out.order = t.lists[0].order();
    for (Int4 number : out.order) out.f.push_back(t.at(number, 0));
    out.total = std::accumulate(out.f.begin(), out.f.end(), 0.0);
    if (weighttype != weight_a || t.n == 0) return;
    for (Double& f : out.f) f *= t.n / out.total;
    out.total = t.n;
}

Int4 barlength(Double f, Double largest, Int4 most) {
    return largest > most ? Int4(std::floor(most * f / largest + 0.5)) : Int4(f);
}

Int4 printrule(Int4 w, boolean plot) {
    std::string rule = "{hline " + std::to_string(w) + "}{c +}{hline ";
    return prtmarkup(rule + (plot ? "12}{c +}{hline " + std::to_string(65 - w) : "35") + "}\n");
}

Int4 printrow(const std::string& stub, Double f, Double& cumulated, Double largest, const frequencies& t, Int4 bar) {
    prttext(stub + " ");
    prtmarkup("{c |}");
    prtnumber("%11.0g", f);
    prttext(" ");
    if (bar) {
        prtmarkup("{c |}");
        prtresult(std::string(std::size_t(barlength(f, largest, bar)), '*'));
        return prtnl();
    }
    Double percent = t.total ? 100 * f / t.total : missing;
    cumulated = t.total ? cumulated + percent : missing;
    prtnumber("%11.2f", percent);
    prttext(" ");
    prtnumber("%11.2f", cumulated);
    return prtnl();
}

Int4 printtable(const counttable& t, const frequencies& fr, const onewayoptions& o) {
    const valuelist& list = t.lists[0];
    shownvalues shown(list.var, o.label);
    Int4 w = std::clamp(shown.width() + 1, 12, 40);
    prtnl();
    if (tableheading(variabletitle(list.var), w - 1, "", 0)) return 1;
    prttext(o.plot ? "      Freq.\n" : "      Freq.     Percent        Cum.\n");
    if (printrule(w, o.plot)) return 1;
    Double cumulated = 0, largest = *std::max_element(fr.f.begin(), fr.f.end());
    for (std::size_t i = 0; i < fr.f.size(); i++) {
        std::string stub = fitted(shown.at(list.first[std::size_t(fr.order[i])]), w - 1);
        if (printrow(stub, fr.f[i], cumulated, largest, fr, o.plot ? 65 - w : 0)) return 1;
    }
    printrule(w, o.plot);
    prttext(fitted("Total", w - 1) + " ");
    prtmarkup("{c |}");
    prtnumber("%11.0g", fr.total);
    prttext(" ");
    if (!o.plot && t.n > 0) prtnumber("%11.2f", 100);
    return prtnl();
}

Int4 putfrequencies(const std::string& name, const frequencies& fr) {
    if (name.empty()) return 0;
    matrix m;
    if (Int4 rc = makematrix(m, Int4(fr.f.size()), 1)) return rc;
    std::copy(fr.f.begin(), fr.f.end(), m.x.get<Double>());
    return matput(name, m);
}

// ---- Variables made of the values.

std::string indicatorlabel(const shownvalues& shown, Int4 obs) {
    std::string name = varlist[shown.var - 1];
    if (shown.text || shown.labelat(obs)) return name + "==" + shown.at(obs);
    Double value = getobs(shown.var, obs);
    if (value == missing) return name + "==      .";
    Int4 n = fmtread("%11.4f", value);
    return name + "==" + std::string(dbuf, std::size_t(n));
}

// As many indicators as names and room allow, then the code of the failure: those that were made stay.
Int4 addindicators(const std::string& stub, Int4 n, Int4& made) {
    for (made = 0; made < n; made++)
        if (Int4 rc = addvar(stub + std::to_string(made + 1), typebyte)) return rc;
    return 0;
}

// The variables behind `before` are those of the values in their order, or one with their numbers.
Int4 fillnew(const onewayoptions& o, counttable& t, const frequencies& fr, Int4 before, boolean numbers) {
    std::vector<Int4> rank(fr.order.size());
    for (std::size_t i = 0; i < fr.order.size(); i++) rank[std::size_t(fr.order[i])] = Int4(i) + 1;
    for (Int4 var = before + 1; var <= nvar; var++) clearoutside(var);
    return overnumbers(o.sample, t, [&](Int4 obs, Int4 number) {
        Int4 row = number < 0 ? 0 : rank[std::size_t(number)];
        for (Int4 var = before + 1; var <= nvar; var++)
            putobs(var, obs, row == 0 ? missing : numbers ? row : row == var - before);
    });
}

void shownew(Int4 before) {
    visnvar = nvar;
    for (Int4 var = before + 1; var <= nvar; var++) markchanged(var);
}

Int4 makeindicators(const onewayoptions& o, counttable& t, const frequencies& fr) {
    if (o.stub.empty()) return 0;
    Int4 before = nvar, made;
    Int4 failed = addindicators(o.stub, Int4(fr.order.size()), made);
    if (Int4 rc = fillnew(o, t, fr, before, false)) return rc;
    shownvalues shown(t.lists[0].var, o.label);
    for (Int4 i = 0; i < made; i++) {
        Int4 obs = t.lists[0].first[std::size_t(fr.order[std::size_t(i)])];
        if (Int4 rc = putvarlabel(varlist[before + i], indicatorlabel(shown, obs))) return rc;
    }
    shownew(before);
    return failed;
}

Int4 makenumber(const onewayoptions& o, counttable& t, const frequencies& fr) {
    if (o.group.empty()) return 0;
    Int4 before = nvar;
    if (Int4 rc = addvar(o.group, typeint)) return rc;
    if (Int4 rc = fillnew(o, t, fr, before, true)) return rc;
    shownew(before);
    return 0;
}

// The kind of an open weight is that of summarize.
UByte openkind() {
    for (const typedoption& t : typedoptions())
        if (t.hasargument && abbrev(t.word, "summarize", 2)) return weight_a;
    return weight_f;
}

}  // namespace

Int4 tabulate_oneway() {
    onewayoptions o;
    Int4 var = entryvar(0);
    if (Int4 rc = getoptions(o, !isstring(var))) return rc;
    counttable t({var});
    rclear();
    rstore("N", 0);
    rstore("r", 0);
    if (Int4 rc = filltable(o.sample, t)) return rc;
    if (t.lists[0].n() == 0) return noobservations();
    frequencies fr;
    getfrequencies(t, fr);
    rstore("N", fr.total);
    rstore("r", t.lists[0].n());
    if (o.freq && printtable(t, fr, o)) return 1;
    if (Int4 rc = putfrequencies(o.matcell, fr)) return rc;
    if (Int4 rc = putvalues(o.matrow, t.lists[0], fr.order, false)) return rc;
    if (Int4 rc = makeindicators(o, t, fr)) return rc;
    return makenumber(o, t, fr);
}

// tabulate varname [varname] [if] [in] [weight] [, options]
Int4 cmd_tabulate() {
    form f{.weight = may, .weights = weight_a | weight_f | weight_i, .openkind = openkind};
    if (Int4 rc = stdparse(f)) return rc;
    if (!vl_given || vl_n > 2) return error(vl_given ? 103 : 102);
    std::vector<Int4> of;
    boolean summarizes;
    if (Int4 rc = getopt_vars("summarize", 2, of, summarizes)) return rc;
    if (!summarizes) return vl_n == 1 ? tabulate_oneway() : tabulate_twoway();
    if (of.size() != 1) return error(of.empty() ? 102 : 103);
    std::vector<Int4> by;
    for (Int4 i = 0; i < vl_n; i++) by.push_back(entryvar(i));
    return tabulate_summarize(of[0], by, false);
}

}  // namespace velmo
