// describe: what the dataset holds.
#include <string>
#include "base/poll.h"
#include "base/text.h"
#include "commands/tables/tabletext.h"
#include "core/division.h"
#include "core/macros.h"
#include "data/chars.h"
#include "data/dataset.h"
#include "data/labels.h"
#include "data/run.h"
#include "language/stdparse.h"
#include "matrix/results.h"
#include "output/errors.h"
#include "output/formats.h"
#include "output/print.h"

namespace velmo {

namespace {

struct describeoptions { boolean brief, detail, date, all, numbers, fullnames; };

// Variables and row width as they are told: without the sample marker unless all is asked.
struct shape { Int4 k, width; };

shape toldshape(boolean all) {
    Int4 sample = all ? 0 : findvar("(e)");
    return {nvar - (sample ? 1 : 0), width - (sample ? 1 : 0)};
}

void storeresults(const shape& s) {
    rclear();
    rstore("N", nobs);
    rstore("k", s.k);
    rstore("width", s.width);
    rstore("N_max", mostobs());
    rstore("k_max", mostvars());
    rstore("widthmax", widestrow());
    rstore("changed", datachanged);
}

// Text at the right of a line, broken at 31 when it is 33 or more long; later pieces start in `column`.
Int4 brokentext(std::string text, Int4 column) {
    if (text.size() < 33) {
        tabtext(text);
        return prtnl();
    }
    while (!text.empty()) {
        std::string piece = text.substr(0, 31);
        text.erase(0, 31);
        tabtext(piece);
        if (Int4 rc = prtnl()) return rc;
        if (!text.empty()) prtblanks(column - 1);
    }
    return 0;
}

// "  obs:" and its kin: the value, the limit with detail, and the text beside.
void headvalue(const char* stub, std::int64_t value, std::int64_t limit, const describeoptions& o) {
    tabtext(stub);
    tabresult(rightjustified(commatext(value), 14));
    if (!o.detail) return;
    tabtext(" (max=");
    tabresult(rightjustified(commatext(limit), 13));
    tabtext(")");
}

Int4 beside(const std::string& text, const describeoptions& o) {
    if (text.empty()) return prtnl();
    prtblanks(o.detail ? 6 : 26);
    return brokentext(text, 48);
}

Int4 sizeline(const shape& s, const describeoptions& o) {
    std::int64_t size = std::int64_t(s.width + 4) * nobs, area = storestart() - blockstart;
    headvalue(" size:", size, area, o);
    boolean notes = char_exists("_dta", "note0");
    if (!o.detail) {
        Double share = 100 * Double(area - size) / Double(memory);
        char text[32];
        snprintf(text, sizeof text, "%3.1f", share < 0 ? 0 : share);
        tabtext(std::string(" (") + text + "% of memory free)");
        if (notes) prtblanks(7 - Int4(std::string_view(text).size()));
    }
    if (notes) tabtext("  (_dta has notes)");
    return prtnl();
}

Int4 header(const shape& s, const describeoptions& o) {
    tabtext("Contains data");
    const char* file = macroget("S_FN");
    if (file) {
        std::string name = file;
        tabtext(" from ");
        tabresult(name);
    }
    prtnl();
    headvalue("  obs:", nobs, mostobs(), o);
    if (Int4 rc = beside(datalabel, o)) return rc;
    headvalue(" vars:", s.k, mostvars(), o);
    const char* date = o.date ? macroget("S_FNDATE") : nullptr;
    if (Int4 rc = beside(date ? date : "", o)) return rc;
    if (o.detail) {
        headvalue("width:", s.width, widestrow(), o);
        prtnl();
    }
    return sizeline(s, o);
}

void columnheads(const describeoptions& o) {
    tabtext(std::string(o.numbers ? "    variable  " : "              ") + "storage  display     value\n");
    tabtext(std::string(o.numbers ? "      name      " : "variable name   ") +
            "type   format      label      variable label\n");
}

void namecolumn(Int4 var, const describeoptions& o) {
    std::string name = varlist[var - 1];
    char text[80], shown[64];
    if (o.numbers) {
        abbrevname(shown, sizeof shown, name, 8);
        snprintf(text, sizeof text, "%5d. %-9s", var, shown);
        tabtext(text);
    } else if (!o.fullnames) {
        abbrevname(shown, sizeof shown, name, 15);
        snprintf(text, sizeof text, "%-15s", shown);
        tabtext(text);
    } else if (name.size() < 16) {
        snprintf(text, sizeof text, "%-15s", name.c_str());
        tabtext(text);
    } else {
        tabtext(name + "\n" + std::string(15, ' '));
    }
}

Int4 variableline(Int4 var, const describeoptions& o, boolean& anynotes) {
    namecolumn(var, o);
    char text[80], type[8];
    snprintf(text, sizeof text, " %-6s %-11s ", typename_of(typ[var - 1], type), fmt[var - 1]);
    tabtext(text);
    std::string label = lbl[var - 1];
    if (label.size() >= 9)
        tabtext(label + "\n" + std::string(44, ' '));
    else
        tabtext(label + std::string(9 - label.size(), ' '));
    boolean notes = char_exists(varlist[var - 1], "note0");
    anynotes |= notes;
    tabtext(notes ? "* " : "  ");
    return brokentext(getvarlabel(varlist[var - 1]), 47);
}

Int4 sortedline() {
    tabtext("Sorted by:  ");
    for (const UInt2* key = srt; *key; key++) tabresult(std::string(varlist[*key - 1]) + "  ");
    if (Int4 rc = prtnl()) return rc;
    if (datachanged) tabtext("     Note:  dataset has changed since last saved\n");
    return breakpending;
}

Int4 body(const describeoptions& o) {
    boolean anynotes = false;
    tabmarkup("{hline 79}\n");
    columnheads(o);
    tabmarkup("{hline 79}\n");
    for (Int4 i = 0; i < vl_n; i++)
        if (Int4 rc = variableline(vl_vr[i], o, anynotes)) return rc;
    if (anynotes) tabtext(std::string(46, ' ') + "* indicated variables have notes\n");
    tabmarkup("{hline 79}\n");
    return sortedline();
}

}  // namespace

// describe [varlist] [, short detail nodate all numbers fullnames]
Int4 cmd_describe() {
    if (bymode) return error(190);
    p_if = p_in = 3;
    if (Int4 rc = stdparse()) return rc;
    describeoptions o{getopt_flag("short", 1), getopt_flag("detail", 1),  getopt_noflag("date", 2, true),
                      getopt_flag("all", 3),   getopt_flag("numbers", 1), getopt_flag("fullnames", 1)};
    if (Int4 rc = getopt_done()) return rc;
    if (o.numbers && o.fullnames) return errorf(198, "options numbers and fullnames may not be combined\n");
    shape s = toldshape(o.all);
    storeresults(s);
    if (Int4 rc = header(s, o)) return rc;
    return o.brief || vl_n == 0 ? 0 : body(o);
}

}  // namespace velmo
