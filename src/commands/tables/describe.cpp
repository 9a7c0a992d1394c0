// describe: what the dataset holds, or a dataset file. What is told is gathered first, from either, and then printed.
#include <string>
#include <vector>
#include "base/columns.h"
#include "base/poll.h"
#include "base/text.h"
#include "commands/tables/tabletext.h"
#include "core/division.h"
#include "core/macros.h"
#include "core/room.h"
#include "data/chars.h"
#include "data/dataset.h"
#include "data/dtafile.h"
#include "data/dtaread.h"
#include "data/labels.h"
#include "data/run.h"
#include "language/options.h"
#include "language/stdparse.h"
#include "output/errors.h"
#include "output/formats.h"
#include "output/print.h"
#include "stored/families.h"

namespace velmo {

namespace {

struct describeoptions { boolean brief, detail, date, all, numbers, fullnames; };

struct viewvar {
    Int4 number;
    std::string name;
    UByte type;
    std::string format, vallabel, varlabel;
    boolean notes;
};

struct dataview {
    boolean inmemory;
    std::string source, label, date;
    Int4 nobs, k, width;             // variables and row width without the sample marker unless all is asked
    boolean notes, changed;
    std::vector<viewvar> vars;       // those to be listed
    std::vector<std::string> sort;
};

void storeresults(const dataview& d) {
    rclear();
    rstore("N", d.nobs);
    rstore("k", d.k);
    rstore("width", d.width);
    rstore("N_max", mostobs());
    rstore("k_max", mostvars());
    rstore("widthmax", widestrow());
    rstore("changed", d.changed);
}

// Text at the right of a line, broken at 31 when it is 33 or more long; later pieces stand below, in column 47.
Int4 brokentext(std::string text) {
    if (textcolumns(text) < 33) {
        prttext(text);
        return prtnl();
    }
    while (!text.empty()) {
        std::string piece = text.substr(0, bytesin(text, 31));
        text.erase(0, piece.size());
        prttext(piece);
        if (Int4 rc = prtnl()) return rc;
        if (!text.empty()) prtblanks(46);
    }
    return 0;
}

// "  obs:" and its kin: the value, the limit with detail, and the text beside.
void headvalue(const char* stub, std::int64_t value, std::int64_t limit, const describeoptions& o) {
    prttext(stub);
    prtresult(rightjustified(commatext(value), 14));
    if (!o.detail) return;
    prttext(" (max=");
    prtresult(rightjustified(commatext(limit), 13));
    prttext(")");
}

Int4 beside(const std::string& text, const describeoptions& o) {
    if (text.empty()) return prtnl();
    prtblanks(o.detail ? 6 : 26);
    return brokentext(text);
}

Int4 sizeline(const dataview& d, const describeoptions& o) {
    std::int64_t size = std::int64_t(d.width + 4) * d.nobs, area = storestart() - blockstart;
    headvalue(" size:", size, area, o);
    if (!o.detail && d.inmemory) {
        Double share = 100 * Double(area - size) / Double(memory);
        char text[32];
        snprintf(text, sizeof text, "%3.1f", share < 0 ? 0 : share);
        prttext(std::string(" (") + text + "% of memory free)");
        if (d.notes) prtblanks(7 - Int4(std::string_view(text).size()));
    }
    if (d.notes) prttext("  (_dta has notes)");
    return prtnl();
}

Int4 header(const dataview& d, const describeoptions& o) {
    prttext("Contains data");
    if (!d.source.empty()) {
        prttext(" from ");
        prtresult(d.source);
    }
    prtnl();
    headvalue("  obs:", d.nobs, mostobs(), o);
    if (Int4 rc = beside(d.label, o)) return rc;
    headvalue(" vars:", d.k, mostvars(), o);
    if (Int4 rc = beside(o.date ? d.date : "", o)) return rc;
    if (o.detail) {
        headvalue("width:", d.width, widestrow(), o);
        prtnl();
    }
    return sizeline(d, o);
}

void columnheads(const describeoptions& o) {
    prttext(std::string(o.numbers ? "    variable  " : "              ") + "storage  display     value\n");
    prttext(std::string(o.numbers ? "      name      " : "variable name   ") +
            "type   format      label      variable label\n");
}

void namecolumn(const viewvar& v, const describeoptions& o) {
    if (o.numbers) {
        prttext(rightjustified(std::to_string(v.number), 5) + ". " + leftjustified(shownname(v.name, 8), 9));
    } else if (!o.fullnames || textcolumns(v.name) < 16) {
        prttext(leftjustified(shownname(v.name, 15), 15));
    } else {
        prttext(v.name + "\n" + std::string(15, ' '));
    }
}

Int4 variableline(const viewvar& v, const describeoptions& o) {
    namecolumn(v, o);
    char text[80], type[8];
    snprintf(text, sizeof text, " %-6s %-11s ", typename_of(v.type, type), v.format.c_str());
    prttext(text);
    if (textcolumns(v.vallabel) >= 9)
        prttext(v.vallabel + "\n" + std::string(44, ' '));
    else
        prttext(leftjustified(v.vallabel, 9));
    prttext(v.notes ? "* " : "  ");
    return brokentext(v.varlabel);
}

Int4 lastlines(const dataview& d, boolean notes) {
    prttext("Sorted by:  ");
    for (const std::string& key : d.sort) prtresult(key + "  ");
    if (Int4 rc = prtnl()) return rc;
    if (d.changed) prttext("     Note:  dataset has changed since last saved\n");
    if (notes) prttext(std::string(46, ' ') + "* indicated variables have notes\n");
    return breakpending;
}

Int4 body(const dataview& d, const describeoptions& o) {
    boolean anynotes = false;
    prtmarkup("{hline 79}\n");
    columnheads(o);
    prtmarkup("{hline 79}\n");
    for (const viewvar& v : d.vars) {
        if (Int4 rc = variableline(v, o)) return rc;
        anynotes |= v.notes;
    }
    prtmarkup("{hline 79}\n");
    return lastlines(d, anynotes);
}

Int4 show(const dataview& d, const describeoptions& o) {
    if (Int4 rc = header(d, o)) return rc;
    return o.brief || d.vars.empty() ? 0 : body(d, o);
}

Int4 readoptions(describeoptions& o) {
    o = {getopt_flag("short", 1), getopt_flag("detail", 1),  getopt_noflag("date", 2, true),
         getopt_flag("all", 3),   getopt_flag("numbers", 1), getopt_flag("fullnames", 1)};
    if (Int4 rc = getopt_done()) return rc;
    return o.numbers && o.fullnames ? errorf(198, "options numbers and fullnames may not be combined\n") : 0;
}

// The dataset in memory, with the variables of the varlist unless `brief`.
dataview memoryview(boolean all, boolean brief) {
    Int4 hidden = all ? 0 : nvar - shownvars();
    dataview d{true, std::string(macrotext("S_FN")), datalabel, std::string(macrotext("S_FNDATE")), nobs,
               nvar - hidden, width - hidden, char_exists("_dta", "note0"), datachanged != 0, {}, {}};
    for (Int4 i = 0; i < vl_n && !brief; i++) {
        Int4 v = vl_vr[i] - 1;
        d.vars.push_back({v + 1, varlist[v], typ[v], fmt[v], lbl[v], getvarlabel(varlist[v]),
                          char_exists(varlist[v], "note0")});
    }
    for (const UInt2* key = srt; *key; key++) d.sort.emplace_back(varlist[*key - 1]);
    return d;
}

// A file's dataset: tables, and characteristics for the marks of notes.
Int4 fileview(dtafile& f, boolean all, dataview& d) {
    const dtahead& h = f.head;
    d = {false, "", h.label, h.stamp, h.nobs, 0, 0, false, false, {}, {}};
    std::vector<UByte> notes(h.types.size() + 1, 0);
    dtachar c;
    for (boolean found = true; found;) {
        if (Int4 rc = dta_nextchar(f, c, found)) return rc;
        if (found && c.name == "note0") notes[c.owner == "_dta" ? 0 : std::size_t(f.numbers[c.owner])] = 1;
    }
    d.notes = notes[0];
    for (std::size_t i = 0; i < h.types.size(); i++) {
        if (h.names[i][0] == '(' && !all) continue;
        d.k++;
        d.width += varsize(h.types[i]);
        d.vars.push_back({Int4(i) + 1, h.names[i], h.types[i], h.formats[i], h.vallabels[i], h.varlabels[i],
                          notes[i + 1] != 0});
    }
    for (UInt2 key : h.sort) d.sort.push_back(h.names[key - 1u]);
    return 0;
}

// describe using filename [, options]; r() holds what is in memory.
Int4 describefile() {
    char name[tokensize];
    describeoptions o;
    dataview d;
    vl_n = 0;
    storeresults(memoryview(false, true));
    if (Int4 rc = filetoken(name)) return rc;
    if (Int4 rc = parseoptions()) return rc;
    if (Int4 rc = readoptions(o)) return rc;
    dtafile f;
    if (Int4 rc = dta_open(name, f)) return rc;
    if (Int4 rc = fileview(f, o.all, d)) return rc;
    dta_close(f);
    return show(d, o);
}

}  // namespace

// describe [varlist] [, short detail nodate all numbers fullnames]
Int4 cmd_describe() {
    if (std::string_view(nexttoken()) == "using") return describefile();
    ungettoken();
    describeoptions o;
    if (Int4 rc = stdparse({.ifexp = never, .in = never})) return rc;
    if (Int4 rc = readoptions(o)) return rc;
    dataview d = memoryview(o.all, o.brief);
    storeresults(d);
    return show(d, o);
}

}  // namespace velmo
