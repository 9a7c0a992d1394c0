// list: a table of the data, or one observation at a time when a row is wider than a line.
#include <algorithm>
#include <string>
#include <vector>
#include "base/columns.h"
#include "base/text.h"
#include "commands/tables/tabletext.h"
#include "data/cells.h"
#include "data/labels.h"
#include "expr/walk.h"
#include "language/options.h"
#include "language/stdparse.h"
#include "output/errors.h"
#include "output/formats.h"
#include "output/print.h"
#include "output/results.h"

namespace velmo {

namespace {

struct listoptions { boolean label, obs, header, doublespace; };

// What does not depend on the observation.
struct listcolumn {
    Int4 entry, var, width;
    boolean string, left, date;
    const char* format;
    char cut[fmtsize];           // for the display form
    vallabel label;
};

void makecolumns(std::vector<listcolumn>& columns, const listoptions& o) {
    columns.resize(std::size_t(vl_n));
    for (Int4 i = 0; i < vl_n; i++) {
        listcolumn& c = columns[std::size_t(i)];
        c.entry = i;
        c.var = entryvar(i);
        c.string = isstring(c.var);
        c.format = fmt[c.var - 1];
        fmtspec spec{};
        chkfmt(c.format, 13, &spec);
        c.width = spec.width;
        c.left = spec.just < 0;
        c.date = spec.code == 'd';
        cutformat(c.format, typ[c.var - 1] == typefloat ? "%9.0g" : "%12.0g", c.cut);
        if (o.label && !c.string && lbl[c.var - 1][0]) vl_load(lbl[c.var - 1], c.label);
    }
}

Int4 numberwidth() { return lastobs <= 999 ? 4 : lastobs <= 9999 ? 5 : 6; }

// A name in its column's width, on the side where the values stand.
std::string headcell(const listcolumn& c, const std::string& name) {
    std::string text = name.substr(0, bytesin(name, c.width));
    return c.left ? leftjustified(text, c.width) : rightjustified(text, c.width);
}

// One line of heads; `ops` chooses the operators' texts.
void headline(const std::vector<listcolumn>& columns, const listoptions& o, boolean ops, boolean two) {
    std::string line = o.obs ? std::string(std::size_t(numberwidth()) + 1, ' ') : "";
    for (std::size_t i = 0; i < columns.size(); i++) {
        const listcolumn& c = columns[i];
        std::string whole = entryname(c.entry), name = two ? varlist[c.var - 1] : whole;
        if (ops) name = entryop(c.entry) ? whole.substr(0, whole.find('.') + 1) : "";
        if (i) line += "  ";
        line += headcell(c, name);
    }
    prttext(std::string(rtrimmed(line)) + "\n");
}

void tablehead(const std::vector<listcolumn>& columns, const listoptions& o) {
    boolean operators = false;
    for (const listcolumn& c : columns) operators |= entryop(c.entry) != 0;
    prtnl();
    if (operators) headline(columns, o, true, true);
    headline(columns, o, false, operators);
}

void putcell(const listcolumn& c, Int4 obs) {
    if (c.string) {
        fmtshown(c.format, strcell(c.var, obs), true);
        prtresult(dbuf);
    } else {
        printing as(out_result);
        prtlbl(c.format, varvalue(c.entry, obs), c.label.exists ? &c.label : nullptr);
    }
}

Int4 tablerow(const std::vector<listcolumn>& columns, const listoptions& o, Int4 obs) {
    if (o.doublespace) prtnl();
    if (o.obs) {
        char number[16];
        snprintf(number, sizeof number, "%*d. ", numberwidth() - 1, obs);
        prttext(number);
    }
    for (std::size_t i = 0; i < columns.size(); i++) {
        if (i) prtblanks(2);
        putcell(columns[i], obs);
    }
    return prtnl();
}

// ---- The display form.

std::string displayvalue(const listcolumn& c, Int4 obs, boolean& wascut) {
    wascut = false;
    if (c.string) {
        std::string text(strcell(c.var, obs));
        wascut = textcolumns(text) > 12;
        if (wascut) return text.substr(0, bytesin(text, 12)) + "..";
        return rightjustified(text, 12);
    }
    Double value = varvalue(c.entry, obs);
    boolean fits = c.date && c.width <= 12;
    fmtlbl(fits ? c.format : c.cut, value, c.label.exists ? &c.label : nullptr);
    return rightjustified(dbuf, 12);
}

void displayoperators(const std::vector<listcolumn>& columns, std::size_t from, std::size_t to) {
    std::string line;
    for (std::size_t i = from; i < to; i++) {
        std::string name = entryname(columns[i].entry);
        line += "    ";
        if (!entryop(columns[i].entry)) name = std::string(21, ' ');
        else if (textcolumns(name) <= 8) name = rightjustified(name, 8) + std::string(13, ' ');
        else name = leftjustified(name, 21);
        line += name;
    }
    prttext(line + "\n");
}

Int4 displayobservation(const std::vector<listcolumn>& columns, const listoptions& o, Int4 obs) {
    std::size_t perline = std::size_t(std::max(1, linesize / 25));
    boolean operators = false;
    for (const listcolumn& c : columns) operators |= entryop(c.entry) != 0;
    prtnl();
    if (o.header) prttext("Observation " + std::to_string(obs) + "\n");
    boolean wascut = false;
    for (std::size_t i = 0; i < columns.size(); i++) {
        if (i % perline == 0 && operators) displayoperators(columns, i, std::min(i + 3, columns.size()));
        prttext(i % perline == 0 || wascut ? "    " : "  ");
        prttext(rightjustified(shownname(varlist[columns[i].var - 1], 8), 8) + " ");
        prtresult(displayvalue(columns[i], obs, wascut));
        if ((i + 1) % perline && i + 1 < columns.size()) continue;
        wascut = false;
        if (Int4 rc = prtnl()) return rc;
    }
    return 0;
}

}  // namespace

// list [varlist] [if] [in] [, nolabel noobs noheader doublespace display nodisplay]
Int4 cmd_list() {
    if (Int4 rc = stdparse({.tsops = may})) return rc;
    listoptions o{getopt_noflag("label", 1, true), getopt_noflag("obs", 1, true), getopt_noflag("header", 1, true),
                  getopt_flag("doublespace", 2)};
    std::vector<listcolumn> columns;
    makecolumns(columns, o);
    std::int64_t taken = numberwidth() - 1;
    for (const listcolumn& c : columns) taken += c.width + 2;
    boolean display = getopt_noflag("display", 1, taken > linesize);
    if (Int4 rc = getopt_done()) return rc;
    if (columns.empty()) return 0;
    if (!display && o.header) tablehead(columns, o);
    Int4 rc = overobs([&](Int4 obs) {
        return display ? displayobservation(columns, o, obs) : tablerow(columns, o, obs);
    });
    return rc ? rc : breakpending;
}

}  // namespace velmo
