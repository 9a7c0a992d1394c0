// save and use: the dataset into a dataset file and back, wholly or in parts; preserve and restore.
#include <algorithm>
#include <array>
#include <cstring>
#include <string>
#include <vector>
#include "base/platform.h"
#include "base/poll.h"
#include "base/saved.h"
#include "base/text.h"
#include "core/macros.h"
#include "data/cells.h"
#include "data/dtafile.h"
#include "data/dtamemory.h"
#include "data/dtaread.h"
#include "data/dtawrite.h"
#include "data/preserve.h"
#include "data/run.h"
#include "expr/evaluate.h"
#include "language/options.h"
#include "language/stdparse.h"
#include "language/varlist.h"
#include "output/errors.h"
#include "output/print.h"
#include "stored/families.h"

namespace velmo {

namespace {

// The file that the dataset is now the same as.
Int4 setfile(const std::string& path, const std::string& stamp) {
    if (Int4 rc = macroset("S_FN", path)) return rc;
    if (Int4 rc = macroset("S_FNDATE", stamp)) return rc;
    datachanged = 0;
    return 0;
}

// ---- save

Int4 tooold(const char* what, std::string_view name) {
    prterr(std::string(what) + " name " + std::string(name) + " too long\n");
    return errorf(459, "-- names must be 8 characters long or less to be saved in Velmo 6 datasets\n");
}

// Names that format 108 has no room for.
Int4 checkshortnames(boolean all) {
    for (Int4 v = 1; v <= nvar; v++) {
        if (issample(v) && !all) continue;
        if (std::strlen(varlist[v - 1]) > 8) return tooold("variable", varlist[v - 1]);
        if (std::strlen(lbl[v - 1]) > 8) return tooold("value label", lbl[v - 1]);
    }
    for (const charview& c : char_views())
        if (c.name.size() > 8) return tooold("characteristic", std::string(c.name));
    return 0;
}

// Texts that formats 108 and 110 have no room for.
Int4 checkshorttexts(boolean labels) {
    for (Int4 v = 1; v <= nvar; v++)
        if (isstring(v) && typ[v - 1] > 80) return errorf(459, "data contains strings longer than 80 characters\n");
    for (Int4 v = 1; labels && v <= nvar; v++) {
        if (!lbl[v - 1][0] || vl_maxtext(lbl[v - 1]) <= 80) continue;
        return errorf(459, "%s contains labels longer than 80 characters\n"
                           "-- shorten them, or leave the value labels out with the option nolabel\n", lbl[v - 1]);
    }
    return 0;
}

// With `internal` the file is a program's own: it holds no value labels, and memory remains what it was.
struct saveoptions { boolean replace, internal; savechoice choice; };

Int4 readsaveoptions(saveoptions& o) {
    o.replace = getopt_flag("replace", 7);
    o.choice.labels = getopt_noflag("label", 1, true);
    o.choice.all = getopt_flag("all", 3);
    o.internal = getopt_flag("internal", 8);
    if (o.internal) o.choice.labels = false;
    boolean old = getopt_flag("old", 3), midscale = getopt_flag("midscale", 3);
    if (Int4 rc = getopt_done()) return rc;
    o.choice.format = old ? dta_old : midscale ? dta_midscale : dta_whole;
    if (!old || !midscale) return 0;
    return errorf(198, "may not specify both old and midscale options\n    Specify on or the other:\n"
                       "        old           save in Velmo 6 format\n"
                       "        midscale   save in Velmo 7 Midscale (not XE) format\n");
}

// The name typed, or without one the file last used or saved.
Int4 savename(char (&path)[pathsize]) {
    char next = tokpeeknonblank();
    char name[tokensize];
    if (next && next != ',') {
        tokenpos start;
        savetokpos(&start);
        if (std::string_view(nexttoken()) != "using") restoretokpos(&start);
        if (Int4 rc = filetoken(name)) return rc;
        addsuffix(path, name, ".dta");
        return 0;
    }
    const char* last = macroget("S_FN");
    if (!last || std::strlen(last) >= 256) return required("using");
    addsuffix(path, last, ".dta");
    return 0;
}

}  // namespace

// save [filename] [, replace nolabel old midscale all internal]
Int4 cmd_save() {
    if (nvar == 0) return error(111);
    char path[pathsize];
    saveoptions o;
    if (Int4 rc = savename(path)) return rc;
    if (Int4 rc = parseoptions()) return rc;
    if (Int4 rc = readsaveoptions(o)) return rc;
    if (nobs == 0) notef("(note: dataset contains 0 observations)\n");
    if (o.choice.format < dta_whole)
        if (Int4 rc = checkshorttexts(o.choice.labels)) return rc;
    if (o.choice.format == dta_old)
        if (Int4 rc = checkshortnames(o.choice.all)) return rc;
    if (o.replace && !isurl(path) && !filestat(path).exists) fileerror(698, path);
    std::string stamp = dta_stamp();
    if (Int4 rc = dta_save(path, o.replace, o.choice, stamp)) return rc;
    fileerror(697, path);
    return o.internal ? 0 : setfile(path, stamp);
}

// ---- use

namespace {

// Moves behind the word `using`; without it the cursor stays where it was.
boolean tousing() {
    tokenpos start;
    savetokpos(&start);
    while (nexttoken()[0]) {
        boolean apart = tokfirst()[-1] == ' ' && (!tokpeek() || std::strchr(" \"`", tokpeek()));
        if (apart && std::string_view(tokbuf) == "using") return true;
    }
    restoretokpos(&start);
    return false;
}

// The list at the cursor, read against the file's names. In the file's order, each variable once; all without a list.
Int4 filelist(dtafile& f, std::vector<Int4>& keep) {
    Int4 n = f.head.nvar();
    if (n > maxvar) return error(900);
    std::vector<std::array<char, namesize>> names(std::size_t(n) + 1);
    for (Int4 i = 0; i < n; i++) copytext(names[std::size_t(i)].data(), namesize, f.head.names[std::size_t(i)]);
    nametable among{reinterpret_cast<const char(*)[namesize]>(names.data()), f.head.types.data(), n, &f.numbers};
    vl_n = vl_ngroups = vl_given = 0;
    if (Int4 rc = existinglist(among)) return rc;
    if (vl_given && vl_n == 0) return required("varlist");
    for (Int4 v = 1; v <= n && !vl_given; v++) keep.push_back(v);
    if (vl_given) keep.assign(vl_vr, vl_vr + vl_n);
    std::sort(keep.begin(), keep.end());
    keep.erase(std::unique(keep.begin(), keep.end()), keep.end());
    return 0;
}

// Rows firstobs to lastobs of the file for which the `if` holds: each is first stored behind the last one kept.
Int4 chosenrows(dtafile& f, const std::vector<Int4>& keep) {
    std::vector<dtacopy> copies = dta_copies(f, keep);
    Int4 row = firstobs - 1, last = lastobs;
    firstobs = 1;
    if (Int4 rc = dta_skiprows(f, row)) return rc;
    while (row < last) {
        const UByte* from;
        Int4 n;
        if (Int4 rc = dta_nextrows(f, from, n)) return rc;
        if (n == 0) break;
        if (Int4 rc = dta_roomfor(n)) return rc;
        for (Int4 i = 0; i < n && row < last; i++, row++, from += f.width) {
            dta_copyrow(copies, from, rowptr(++nobs));
            if (!exp_iftest(nobs)) nobs--;
            if (tick()) return 1;
        }
    }
    dta_endrows(f, keep);
    return 0;
}

// What the file is to memory. A program's own holds part of what was there: value labels in memory stay, and the
// dataset remains a changed one of the file that it came from.
struct useoptions { boolean clear, labels, internal; };

Int4 takekept(dtafile& f, const std::vector<Int4>& keep, const useoptions& o) {
    if (Int4 rc = dta_takevars(f, keep, o.internal)) return rc;
    if (datalabel[0]) notef("(%s)\n", datalabel);
    return 0;
}

Int4 usewhole(dtafile& f, const useoptions& o) {
    std::vector<Int4> keep;
    if (f.head.nvar() > maxvar) return error(900);
    for (Int4 v = 1; v <= f.head.nvar(); v++) keep.push_back(v);
    if (Int4 rc = takekept(f, keep, o)) return rc;
    return dta_takerows(f, keep);
}

// [varlist] [if exp] [in range] using ...: the list goes by the file's variables, the rest by those that are kept.
Int4 useparts(dtafile& f, const std::vector<Int4>& keep, const useoptions& o) {
    settokpos(tokfirst());      // the word that ended the list
    if (Int4 rc = takekept(f, keep, o)) return rc;
    if (Int4 rc = stdparse({.varlist = never, .in = loosely, .inlimit = f.head.nobs, .file = must})) return rc;
    return ifgiven || ingiven ? chosenrows(f, keep) : dta_takerows(f, keep);
}

Int4 readuseoptions(useoptions& o) {
    if (Int4 rc = parseoptions()) return rc;
    o.clear = getopt_flag("clear", 5);
    if (version < 600 && getopt_flag("replace", 7)) o.clear = true;
    o.labels = getopt_noflag("label", 1, true);
    o.internal = getopt_flag("internal", 8);
    return getopt_done();
}

struct origin { std::string path, stamp; };

Int4 setorigin(const origin& o) {
    if (Int4 rc = setfile(o.path, o.stamp)) return rc;
    datachanged = 1;
    return 0;
}

}  // namespace

// use filename [, clear nolabel internal];  use [varlist] [if exp] [in range] using filename [, ...]
Int4 cmd_use() {
    char* start = tokpos;
    char name[tokensize];
    useoptions o;
    boolean parts = tousing();
    if (Int4 rc = filetoken(name)) return rc;
    if (Int4 rc = readuseoptions(o)) return rc;
    if (datachanged && (nvar || nobs) && !o.clear && !o.internal) return error(4);
    origin came{std::string(macrotext("S_FN")), std::string(macrotext("S_FNDATE"))};
    boolean halfread = false;
    onexit failed([&] { if (halfread) cleardata(false); });
    dtafile f;
    std::vector<Int4> keep;
    Int4 rc = dta_open(name, f);
    if (!rc && parts) {
        settokpos(start);
        if ((rc = filelist(f, keep))) return rc;      // what is in memory stays
    }
    halfread = f.accepted;
    if (!rc) rc = parts ? useparts(f, keep, o) : usewhole(f, o);
    if (!rc && o.labels) rc = dta_takelabels(f);
    if (!rc) rc = o.internal ? setorigin(came) : setfile(f.path, f.head.stamp);
    halfread = halfread && rc;
    if (f.accepted && !o.internal) stored_clear(e_results);      // their sample has gone with the data
    return rc;
}

// preserve [, changed]: a copy is kept whether the data have changed or not.
Int4 cmd_preserve() {
    if (Int4 rc = parseoptions()) return rc;
    getopt_flag("changed", 7);
    if (Int4 rc = getopt_done()) return rc;
    return preserve_data();
}

// restore [, not preserve]
Int4 cmd_restore() {
    if (Int4 rc = parseoptions()) return rc;
    boolean cancel = getopt_flag("not", 3), keep = getopt_flag("preserve", 8);
    if (Int4 rc = getopt_done()) return rc;
    if (cancel && keep) return error(198);
    return cancel ? preserve_cancel() : preserve_restore(keep);
}

}  // namespace velmo
