// postfile, post, postclose.
#include <string>
#include <unordered_set>
#include <vector>
#include "base/saved.h"
#include "base/text.h"
#include "core/adopath.h"
#include "core/webfile.h"
#include "data/dataset.h"
#include "data/posting.h"
#include "data/run.h"
#include "expr/value.h"
#include "language/options.h"
#include "language/stdparse.h"
#include "language/varlist.h"
#include "output/errors.h"

namespace velmo {

namespace {

// The columns: names and numbered series. A type word may be float or double, and holds for all.
Int4 readcolumns(std::vector<std::string>& names, UByte& type) {
    while (!isstopword(nexttoken())) {
        std::string first = tokbuf;
        UByte word = typecode(first);
        if (word == typefloat || word == typedouble) {
            if (word == typedouble) type = word;
            continue;
        }
        if (word) return notallowed(first);
        if (tokpeek() == '-') {
            nexttoken();
            if (Int4 rc = seriesnames(first, nexttoken(), names)) return rc;
        } else {
            names.push_back(first);
        }
    }
    ungettoken();
    if (names.empty()) return error(102);
    return Int4(names.size()) < maxvar ? 0 : error(103);
}

Int4 checkcolumns(const std::vector<std::string>& names) {
    std::unordered_set<std::string> seen;
    for (const std::string& name : names) {
        if (Int4 rc = checkvarname(name)) return rc;
        if (!seen.insert(name).second) return errorf(110, "postfile: variable %s already exists\n", name.c_str());
    }
    return 0;
}

Int4 readpostoptions(postchoice& o) {
    Int4 n;
    o.replace = getopt_flag("replace", 7);
    if (getopt_flag("double", 6)) o.type = typedouble;
    if (Int4 rc = getopt_int("every", 5, &o.every, 1, n)) return rc;
    return getopt_done();
}

}  // namespace

// postfile postname newvarlist using filename [, replace double every(#)]
Int4 cmd_postfile() {
    std::string name = nexttoken();
    if (!validname(name)) return badname(name);
    if (post_columns(name)) return nameerror(name_defined, name);
    std::vector<std::string> columns;
    postchoice o;
    if (Int4 rc = readcolumns(columns, o.type)) return rc;
    if (Int4 rc = checkcolumns(columns)) return rc;
    if (Int4 rc = stdparse({.varlist = never, .ifexp = never, .in = never, .file = must})) return rc;
    if (Int4 rc = readpostoptions(o)) return rc;
    char path[pathsize];
    addsuffix(path, usingname, ".dta");
    return post_open(name, path, columns, o);
}

// ---- post

namespace {

const char* expressions(Int4 n) { return n == 1 ? "expression" : "expressions"; }

// The value of the parenthesised expression at the cursor.
Int4 postedvalue(Double& value) {
    char *begin, *end;
    if (tokpeeknonblank() != '(') return errorf(198, "post command requires expressions be bound in parenthesis\n");
    while (tokpeek() == ' ') tokpos++;
    if (!parenthesized(&begin, &end)) return errorf(132, "too few ')' or ']'\n");
    textvalue given;
    Int4 rc = exp_valueof({begin, std::size_t(end - begin)}, mode_num, given);
    value = given.number;
    return rc;
}

Int4 postedvalues(Int4 columns, std::vector<Double>& values) {
    while (tokpeeknonblank()) {
        Double value = missing;
        if (Int4(values.size()) == columns)
            return errorf(198, "post:  %d %s expected and more than %d found\n", columns, expressions(columns),
                          columns);
        if (Int4 rc = postedvalue(value)) return rc;
        values.push_back(value);
    }
    Int4 found = Int4(values.size());
    if (found == columns) return 0;
    return errorf(198, "post:  %d %s expected and only %d found\n", columns, expressions(columns), found);
}

Int4 nopost(const std::string& name) { return errorf(111, "post %s not found\n", name.c_str()); }

}  // namespace

// post postname (exp) (exp) ...: values of the first observation.
Int4 cmd_post() {
    std::string name = nexttoken();
    Int4 columns = post_columns(name);
    if (!columns) return nopost(name);
    std::vector<Double> values;
    if (Int4 rc = postedvalues(columns, values)) return rc;
    return post_row(name, values);
}

// postclose postname | _all
Int4 cmd_postclose() {
    std::string name = nexttoken();
    if (nexttoken()[0]) return error(198);
    if (name == "_all") return post_closeall();
    return post_columns(name) ? post_close(name) : nopost(name);
}

}  // namespace velmo
