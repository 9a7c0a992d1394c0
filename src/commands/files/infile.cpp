// infile, and the frame of its two forms and of infix.
#include "commands/files/infile.h"
#include "base/saved.h"
#include "base/text.h"
#include "commands/files/fixedfields.h"
#include "commands/files/infilefree.h"
#include "commands/files/textrows.h"
#include "core/adopath.h"
#include "core/room.h"
#include "data/labels.h"
#include "data/run.h"
#include "language/options.h"
#include "language/stdparse.h"
#include "output/errors.h"

namespace velmo {

namespace {

// Moves to the comma of the options, or to the line's end; takes the file's name on the way where there is to be one.
Int4 passform(std::string& file, boolean takesfile) {
    char name[tokensize];
    Int4 depth = 0;
    for (nexttoken(); tokbuf[0]; nexttoken()) {
        std::string_view token = tokbuf;
        if (token == "(" || token == "[") depth++;
        if (token == ")" || token == "]") depth--;
        if (depth > 0) continue;
        if (token == ",") break;
        if (token != "using" || !takesfile) continue;
        if (Int4 rc = filetoken(name)) return rc;
        file = name;
    }
    ungettoken();
    return 0;
}

Int4 readoptions(infileoptions& o, infileform form) {
    boolean given;
    Int4 n;
    if (Int4 rc = parseoptions()) return rc;
    o.clear = getopt_flag("clear", 5);
    if (form == form_dictionary) {
        if (Int4 rc = getopt_str("using", 5, o.datafile, given)) return rc;
        if (given && o.datafile.empty()) return error(7197);
    }
    if (form == form_free) {
        o.automatic = getopt_flag("automatic", 1);
        if (Int4 rc = getopt_int("byvariable", 2, &o.byvariable, 1, n)) return rc;
        if (n && o.byvariable < 1) return boundscheck("byvariable", o.byvariable, 1, mostobs() - 1);
    }
    return getopt_done();
}

}  // namespace

Int4 optionsahead(infileoptions& o, infileform form) {
    tokenpos here;
    savetokpos(&here);
    onexit back([&] { restoretokpos(&here); });
    if (Int4 rc = passform(o.file, form != form_dictionary)) return rc;
    if (Int4 rc = readoptions(o, form)) return rc;
    if (form != form_dictionary && o.file.empty()) return required("using");
    return (nvar || nobs) && !o.clear ? error(18) : 0;
}

Int4 parserest(const form& f, Int4& first, Int4& last) {
    if (Int4 rc = stdparse(f)) return rc;
    first = firstobs;
    last = lastobs;
    firstobs = groupfirst = 1;
    lastobs = grouplast = nolimit;
    return 0;
}

namespace {

Int4 makevariables(const fieldtable& table) {
    for (const newvariable& v : table.vars) {
        if (Int4 rc = addvar(v.name, v.type)) return rc;
        copytext(lbl[nvar - 1], namesize, v.vallabel);
        if (Int4 rc = putvarlabel(v.name, v.label)) return rc;
    }
    return 0;
}

Int4 fillfrom(linereader& lines, const fieldtable& table) {
    Int4 first, last;
    if (Int4 rc = makevariables(table)) return rc;
    if (Int4 rc = parserest({.varlist = never, .in = loosely, .file = may}, first, last)) return rc;
    numbers_start(true, false);
    rows_start();
    return readfields(lines, table, first, last);
}

}  // namespace

Int4 readtable(linereader& lines, const fieldtable& table) {
    replacedata();
    Int4 rc = fillfrom(lines, table);
    return rows_end(rc, rc == 612);
}

Int4 bydictionary(boolean infix) {
    char file[tokensize], path[pathsize];
    infileoptions o;
    if (Int4 rc = filetoken(file)) return rc;
    if (Int4 rc = optionsahead(o, form_dictionary)) return rc;
    addsuffix(path, file, ".dct");
    Int4 handle = webopen(path, web_binary | web_textread), data = -1;
    if (handle < 0) return -handle;
    onexit close([&] {
        webclose(handle);
        if (data >= 0) webclose(data);
    });
    static linereader lines;
    lines_start(lines, handle);
    fieldtable table;
    if (Int4 rc = readdictionary(lines, infix, table)) return rc;
    const std::string& name = o.datafile.empty() ? table.datafile : o.datafile;
    if (!name.empty()) {
        addsuffix(path, name, ".raw");
        data = webopen(path, web_binary | web_textread);
        if (data < 0) return o.datafile.empty() ? dict_invalid() : -data;
        lines_start(lines, data);
    }
    lines.lrecl = table.lrecl;
    return readtable(lines, table);
}

// infile varlist using filename [if] [in] [, automatic byvariable(#) clear]
// infile using dictfile [if] [in] [, using(datafile) clear]
Int4 cmd_infile() {
    tokenpos here;
    savetokpos(&here);
    if (std::string_view(nexttoken()) == "using") return bydictionary(false);
    restoretokpos(&here);
    return infilefree();
}

}  // namespace velmo
