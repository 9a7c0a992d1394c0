// tabdisp: shows values of variables in a table of up to three keys, and more by by().
#include "commands/tables/tabdisp.h"
#include <algorithm>
#include "base/columns.h"
#include "base/text.h"
#include "commands/tables/tabletext.h"
#include "language/options.h"
#include "language/stdparse.h"
#include "output/errors.h"
#include "output/formats.h"
#include "output/print.h"
#include "output/results.h"

namespace velmo {

namespace {

// ---- What is asked for.

constexpr Int4 moststub = 40, mostwidth = 20, leastwidth = 4;

struct tabwidth { Int4 n; boolean automatic = true; };
struct tabform {
    tabwidth stub{9}, cell{10}, csep{1}, scsep{2};
    boolean center = false, left = false, totals = false, missing = false, concise = false;
};

Int4 getwidth(const char* name, Int4 min, Int4 lo, Int4 hi, tabwidth& w) {
    Int4 n;
    if (Int4 rc = getopt_int(name, min, &w.n, 1, n)) return rc;
    w.automatic = n == 0;
    return n ? boundscheck(std::string(name) + "()", w.n, lo, hi) : 0;
}

Int4 readform(tabform& f) {
    if (Int4 rc = getwidth("stubwidth", 5, leastwidth, moststub, f.stub)) return rc;
    if (Int4 rc = getwidth("cellwidth", 5, leastwidth, mostwidth, f.cell)) return rc;
    if (Int4 rc = getwidth("csepwidth", 4, 1, 10, f.csep)) return rc;
    if (Int4 rc = getwidth("scsepwidth", 5, 1, 10, f.scsep)) return rc;
    f.center = getopt_flag("center", 3);
    f.left = getopt_flag("left", 1);
    f.totals = getopt_flag("totals", 1);
    f.missing = getopt_flag("missing", 1);
    f.concise = getopt_flag("concise", 3);
    return 0;
}

Int4 getformat(tabform& f, std::string& fmt) {
    boolean found;
    fmtspec spec;
    if (Int4 rc = getopt_str("format", 1, fmt, found)) return rc;
    if (!found) return 0;
    if (chkfmt(fmt, 1, &spec)) return error(120);
    if (f.cell.automatic) f.cell.n = std::clamp(spec.width, f.cell.n, mostwidth);
    return 0;
}

Int4 getslots(const char* name, Int4 min, std::size_t most, std::vector<Int4>& vars) {
    boolean found;
    if (Int4 rc = getopt_vars(name, min, vars, found)) return rc;
    return vars.size() > most ? error(103) : 0;
}

Int4 stublimit(const tabform& f) { return f.stub.automatic ? moststub : f.stub.n; }

Int4 readtable(tabform& f, tabvalues& t) {
    std::vector<Int4> cells, by;
    std::string fmt;
    if (Int4 rc = getslots("cellvar", 1, mostcells, cells)) return rc;
    if (Int4 rc = getslots("by", 2, mostby, by)) return rc;
    if (Int4 rc = readform(f)) return rc;
    if (Int4 rc = getformat(f, fmt)) return rc;
    if (Int4 rc = getopt_done()) return rc;
    if (cells.empty()) return errorf(100, "option cellvar() required\n");
    Int4 stub = stublimit(f), cell = f.cell.automatic ? mostwidth : f.cell.n;
    for (Int4 i = 0; i < vl_n; i++) t.keys.push_back(makeslot(vl_vr[i], "", i ? cell : stub));
    for (Int4 var : by) t.by.push_back(makeslot(var, "", stub));
    for (Int4 var : cells) t.cells.push_back(makeslot(var, fmt, cell));
    return 0;
}

// ---- The layout.

struct tablayout {
    const tabform& f;
    tabvalues& t;
    Int4 stub, cell, csep, scsep;
    Int4 numbers[mostcells] = {};          // the widest number of each cell variable

    std::size_t columns() const { return t.keys.size() < 2 ? t.cells.size() : t.keys[1].values.size(); }
    std::size_t lines() const { return t.keys.size() < 2 ? 1 : t.cells.size(); }
    Int4 width(std::size_t n, Int4 each, Int4 sep) const { return Int4(n) * each + (Int4(n) - 1) * sep; }
    Int4 fits(Int4 each, Int4 sep) const {
        Int4 room = linesize - stub - each - 3;
        return room < 0 ? 0 : room / (each + sep) + 1;
    }

    // A key's value; a missing number shows a dot, or says that it is a total.
    std::string keytext(const tabslot& s, std::size_t i) const {
        std::string text = s.valuetext(s.values[i]);
        return text.empty() && !s.text ? (f.totals ? "Total" : ".") : text;
    }
    std::string celltext(std::size_t which, Int4 obs) const {
        const tabslot& s = t.cells[which];
        if (!obs) return f.missing && !s.text ? "." : "";
        std::string text = s.valuetext(obs);
        return text.empty() && !s.text ? "." : text;
    }
    std::string placed(const std::string& text, std::size_t which, boolean number) const {
        std::string cut = text.substr(0, bytesin(text, cell));
        if (!f.center) return rightjustified(cut, cell);
        Int4 wide = number ? std::min(numbers[which], cell) : textcolumns(cut);
        return rightjustified(leftjustified(rightjustified(cut, wide), wide + (cell - wide) / 2), cell);
    }

    Int4 measurecells();
    Int4 measurekeys(const tabslot& s) const {
        Int4 wide = 0;
        for (std::size_t i = 0; i < s.values.size(); i++) wide = std::max(wide, textcolumns(keytext(s, i)));
        return wide;
    }
    void settlestub();
    void settlecells(Int4 measure);
    void settleone(Int4 measure);
    boolean settlesuper();
};

Int4 tablayout::measurecells() {
    Int4 wide = 0;
    for (const auto& [combination, obs] : t.places)
        for (std::size_t i = 0; i < t.cells.size(); i++) {
            Int4 n = textcolumns(celltext(i, obs));
            wide = std::max(wide, n);
            if (!t.cells[i].text) numbers[i] = std::max(numbers[i], std::min(n, mostwidth));
        }
    for (std::size_t i = 1; i < t.keys.size(); i++) wide = std::max(wide, measurekeys(t.keys[i]));
    return std::clamp(wide, leastwidth, mostwidth);
}

void tablayout::settlestub() {
    stub = f.stub.n;
    if (!f.stub.automatic) return;
    Int4 wide = measurekeys(t.keys[0]);
    for (const tabslot& s : t.by) wide = std::max(wide, measurekeys(s));
    stub = std::max(stub, std::clamp(wide, leastwidth, moststub));
}

// One key: a column for each cell variable, as wide as its heading where all columns have room for that.
void tablayout::settleone(Int4 measure) {
    Int4 n = Int4(columns()), heading = 0;
    for (const tabslot& s : t.cells) heading = std::max(heading, textcolumns(s.heading()));
    if (f.cell.automatic) {
        cell = std::min(std::max({f.cell.n, measure, heading}), mostwidth);
        if (fits(cell, csep) < n)
            for (cell = measure; cell < mostwidth && fits(cell + 1, csep) >= n;) cell++;
    }
    if (f.csep.automatic) csep = fits(cell, 2) >= n ? 2 : 1;
}

void tablayout::settlecells(Int4 measure) {
    cell = f.cell.n;
    csep = f.csep.n;
    if (t.keys.size() < 2) return settleone(measure);
    if (f.cell.automatic) cell = measure;
    if (f.csep.automatic) csep = fits(cell, 2) >= Int4(columns()) ? 2 : 1;
}

// Three keys: the gap between super-columns, as wide as leaves as many of them side by side. False when not one of them
// has room.
boolean tablayout::settlesuper() {
    Int4 wide = width(columns(), cell, csep), n = Int4(t.keys[2].values.size());
    scsep = f.scsep.automatic ? (csep < 2 ? 2 : 4) : f.scsep.n;
    if (!fits(wide, 1)) return false;
    Int4 count = std::min(fits(wide, 1), n);
    while (f.scsep.automatic && scsep > 1 && std::min(fits(wide, scsep), n) < count) scsep--;
    return true;
}

// ---- The print: the columns of a block, from..to of them, or of super-columns.

struct tabblock { std::size_t from, to; };

struct tabprinter {
    const tablayout& l;
    std::vector<std::string> stublines;

    boolean three() const { return l.t.keys.size() > 2; }
    Int4 tablewidth(tabblock b) const {
        Int4 n = Int4(b.to - b.from);
        if (three()) return 1 + n * l.width(l.columns(), l.cell, l.csep) + (n - 1) * l.scsep;
        return 1 + l.width(std::size_t(n), l.cell, l.csep);
    }
    Int4 rule(const char* corner, tabblock b) const {
        return prtmarkup("{hline " + std::to_string(l.stub + 1) + "}{c " + corner + "}{hline " +
                         std::to_string(tablewidth(b)) + "}\n");
    }
    void stub(const std::string& text, boolean cut = true) const {
        std::string shown = cut ? text.substr(0, bytesin(text, l.stub)) : text;
        prttext(l.f.left ? leftjustified(shown, l.stub) : rightjustified(shown, l.stub));
        prttext(" ");
        prtbar();
    }
    std::string centred(const std::string& text, Int4 width) const {
        std::string cut = text.substr(0, bytesin(text, width));
        return std::string(std::size_t(width - textcolumns(cut)) / 2, ' ') + cut;
    }
    void makestub();
    Int4 heading(tabblock b) const;
    Int4 labelline(tabblock b) const;
    Int4 superline(tabblock b) const;
    Int4 valueline(tabblock b, const std::string& left) const;
    Int4 row(tabblock b, const std::vector<Int4>& group, std::size_t at) const;
    Int4 rows(tabblock b, const std::vector<Int4>& group) const;
    Int4 groups(tabblock b) const;
    Int4 block(tabblock b) const;
    boolean empty(tabblock b, const std::vector<Int4>& group, std::size_t at) const;
    std::vector<Int4> obsline(tabblock b, const std::vector<Int4>& group, std::size_t at) const;
};

// The names of by() and of the first key, stacked.
void tabprinter::makestub() {
    std::string text;
    std::size_t n = l.t.by.size();
    for (std::size_t i = 0; i < n; i++) text += l.t.by[i].name() + (i + 1 < n ? ", " : " and ");
    wordwrap(text + l.t.keys[0].name(), l.stub, stublines);
}

// The labels of the keys over the columns.
Int4 tabprinter::labelline(tabblock b) const {
    std::string text = three() ? l.t.keys[2].heading() + " and " + l.t.keys[1].heading() : l.t.keys[1].heading();
    prttext(" ");
    prttext(centred(text, tablewidth(b) - 1));
    return prtnl();
}

Int4 tabprinter::superline(tabblock b) const {
    Int4 wide = l.width(l.columns(), l.cell, l.csep);
    prttext(" ");
    for (std::size_t i = b.from; i < b.to; i++) {
        std::string text = l.keytext(l.t.keys[2], i);
        text = text.substr(0, bytesin(text, std::max(wide - 4, 1)));
        Int4 room = std::max(wide - 2 - textcolumns(text), 2), left = room / 2;
        if (i > b.from) prtblanks(l.scsep);
        prtmarkup("{hline " + std::to_string(left) + "}");
        prttext(" " + text + " ");
        prtmarkup("{hline " + std::to_string(room - left) + "}");
    }
    return prtnl();
}

// The values of the column key, or with one key the headings of the cells, whose lines stand at the bottom.
Int4 tabprinter::valueline(tabblock b, const std::string& left) const {
    stub(left);
    prttext(" ");
    std::size_t supers = three() ? b.to - b.from : 1, from = three() ? 0 : b.from, to = three() ? l.columns() : b.to;
    for (std::size_t s = 0; s < supers; s++) {
        if (s) prtblanks(l.scsep);
        for (std::size_t j = from; j < to; j++) {
            if (j > from) prtblanks(l.csep);
            prttext(l.placed(l.keytext(l.t.keys[1], j), 0, false));
        }
    }
    return prtnl();
}

Int4 tabprinter::heading(tabblock b) const {
    std::vector<std::vector<std::string>> heads;
    std::size_t deep = stublines.size();
    boolean one = l.t.keys.size() < 2;
    for (std::size_t j = b.from; one && j < b.to; j++) {
        heads.emplace_back();
        wordwrap(l.t.cells[j].heading(), l.cell, heads.back());
        deep = std::max(deep, heads.back().size());
    }
    std::size_t own = l.t.keys.size();
    if (!one) deep = std::max(deep, own);
    for (std::size_t i = 0; i < deep; i++) {
        std::size_t below = deep - i;
        std::string left = below <= stublines.size() ? stublines[stublines.size() - below] : "";
        if (!one && below == 1) {
            if (Int4 rc = valueline(b, left)) return rc;
            continue;
        }
        stub(left);
        if (!one && below <= own) {
            if (Int4 rc = below == own ? labelline(b) : superline(b)) return rc;
            continue;
        }
        for (std::size_t j = 0; j < heads.size(); j++) {
            const std::vector<std::string>& h = heads[j];
            prtblanks(j ? l.csep : 1);
            prttext(l.placed(below <= h.size() ? h[h.size() - below] : "", 0, false));
        }
        if (Int4 rc = prtnl()) return rc;
    }
    return 0;
}

// The observations of a row's places, 0 for none.
std::vector<Int4> tabprinter::obsline(tabblock b, const std::vector<Int4>& group, std::size_t at) const {
    std::vector<Int4> found, place = group;
    place.push_back(Int4(at));
    if (l.t.keys.size() < 2) return {l.t.place(place)};
    std::size_t supers = three() ? b.to - b.from : 1, from = three() ? 0 : b.from, to = three() ? l.columns() : b.to;
    for (std::size_t s = 0; s < supers; s++)
        for (std::size_t j = from; j < to; j++) {
            std::vector<Int4> whole = place;
            whole.push_back(Int4(j));
            if (three()) whole.push_back(Int4(b.from + s));
            found.push_back(l.t.place(whole));
        }
    return found;
}

// Nothing would be shown in the row.
boolean tabprinter::empty(tabblock b, const std::vector<Int4>& group, std::size_t at) const {
    for (Int4 obs : obsline(b, group, at))
        for (std::size_t i = 0; i < l.t.cells.size(); i++) {
            std::string text = obs ? l.t.cells[i].valuetext(obs) : "";
            if (!text.empty()) return false;
        }
    return true;
}

Int4 tabprinter::row(tabblock b, const std::vector<Int4>& group, std::size_t at) const {
    std::vector<Int4> places = obsline(b, group, at);
    boolean one = l.t.keys.size() < 2;
    for (std::size_t line = 0; line < l.lines(); line++) {
        stub(line ? "" : l.keytext(l.t.keys[0], at));
        std::size_t n = one ? b.to - b.from : places.size();
        for (std::size_t j = 0; j < n; j++) {
            std::size_t which = one ? b.from + j : line;
            Int4 obs = one ? places[0] : places[j];
            boolean super = three() && j % l.columns() == 0;
            prtblanks(j == 0 ? 1 : super ? l.scsep : l.csep);
            prtresult(l.placed(l.celltext(which, obs), which, !l.t.cells[which].text));
        }
        if (Int4 rc = prtnl()) return rc;
    }
    return 0;
}

Int4 tabprinter::rows(tabblock b, const std::vector<Int4>& group) const {
    const tabslot& key = l.t.keys[0];
    for (std::size_t i = 0; i < key.values.size(); i++) {
        if (l.f.concise && empty(b, group, i)) continue;
        boolean total = l.f.totals && !key.text && key.valuetext(key.values[i]).empty();
        if (total && i) {
            stub("");
            if (Int4 rc = prtnl()) return rc;
        }
        if (Int4 rc = row(b, group, i)) return rc;
    }
    return 0;
}

// The values of by() turn like an odometer.
Int4 tabprinter::groups(tabblock b) const {
    std::vector<Int4> group(l.t.by.size(), 0);
    for (boolean first = true;; first = false) {
        if (!first)
            if (Int4 rc = rule("+", b)) return rc;
        for (std::size_t i = 0; i < group.size(); i++) {
            stub(l.keytext(l.t.by[i], std::size_t(group[i])));
            if (Int4 rc = prtnl()) return rc;
        }
        if (Int4 rc = rows(b, group)) return rc;
        std::size_t i = group.size();
        while (i > 0 && ++group[i - 1] == Int4(l.t.by[i - 1].values.size())) group[--i] = 0;
        if (i == 0) return 0;
    }
}

Int4 tabprinter::block(tabblock b) const {
    if (Int4 rc = prtnl()) return rc;
    if (Int4 rc = rule("TT", b)) return rc;
    if (Int4 rc = heading(b)) return rc;
    if (Int4 rc = rule("+", b)) return rc;
    if (Int4 rc = groups(b)) return rc;
    return rule("BT", b);
}

Int4 layout(tablayout& l) {
    l.settlestub();
    l.settlecells(l.measurecells());
    if (l.t.keys.size() < 3 || l.settlesuper()) return 0;
    if (l.t.by.size() == mostby) return errorf(103, "too many by() variables\n");
    notef("note: table too wide, %s moved to by()\n", l.t.keys[2].name().c_str());
    l.t.by.push_back(makeslot(l.t.keys[2].var, "", stublimit(l.f)));
    l.t.keys.pop_back();
    if (Int4 rc = readvalues(l.t)) return rc;
    return layout(l);
}

Int4 show(const tablayout& l) {
    tabprinter p{l, {}};
    p.makestub();
    boolean three = l.t.keys.size() > 2;
    std::size_t n = three ? l.t.keys[2].values.size() : l.columns();
    Int4 wide = three ? l.fits(l.width(l.columns(), l.cell, l.csep), l.scsep) : l.fits(l.cell, l.csep);
    std::size_t step = std::size_t(std::max(wide, 1));
    for (std::size_t from = 0; from < n; from += step)
        if (Int4 rc = p.block({from, std::min(from + step, n)})) return rc;
    return 0;
}

}  // namespace

// tabdisp row [column [super-column]] [if] [in], cellvar(varlist) [by(varlist) ...]
Int4 cmd_tabdisp() {
    tabform f;
    tabvalues t;
    if (Int4 rc = stdparse()) return rc;
    if (!vl_given) return error(102);
    if (vl_n > mostkeys) return error(103);
    if (Int4 rc = readtable(f, t)) return rc;
    if (Int4 rc = readvalues(t)) return rc;
    tablayout l{f, t, 0, 0, 0, 0};
    if (Int4 rc = layout(l)) return rc;
    return show(l);
}

}  // namespace velmo
