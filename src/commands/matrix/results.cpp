// return, sreturn, scalar: the commands that fill, show and empty the stores of results.
#include "commands/matrix/results.h"
#include <string>
#include <vector>
#include "base/poll.h"
#include "base/saved.h"
#include "base/text.h"
#include "core/keywords.h"
#include "core/objects.h"
#include "data/run.h"
#include "expr/evaluate.h"
#include "language/macrocommands.h"
#include "language/programs.h"
#include "language/stdparse.h"
#include "output/errors.h"
#include "output/formats.h"
#include "output/print.h"
#include "stored/families.h"
#include "stored/posted.h"
#include "stored/scalars.h"

namespace velmo {

namespace {

// name = exp, to the end of the line; the value is in eqexp.
Int4 assignment(std::string& name, UByte mode) {
    name = nexttoken();
    if (!validname(name)) return name.empty() ? error(198) : badname(name);
    return stdparse({.varlist = never, .ifexp = never, .in = never, .exp = must, .exptype = mode, .options = never,
                     .by = never});
}

// The one name behind drop, or _all.
Int4 droptoken(std::string& name) {
    name = nexttoken();
    return name.empty() || nexttoken()[0] ? error(198) : 0;
}

std::string numberfor(Double value) {
    fmtnum("%18.0g", value);
    return std::string(trimmed(dbuf));
}

// family(name) = value
Int4 showresult(const char* family, const std::string& name, const std::string& value) {
    prttextf("%s(%s) = ", family, name.c_str());
    prtresult(value);
    return prtnl();
}

std::string sizefor(family f, const std::string& name) {
    boolean own = f == e_results && (name == "b" || name == "V");
    saved<Int4> kind(matrixkind, own ? Int4(obj_estimate) : family_type(f, result_matrix));
    Int4 rows = 0, cols = 0;
    matfind(!own ? name : name == "b" ? "_b" : "VCE", &rows, &cols);
    return "matrix " + std::to_string(rows) + " x " + std::to_string(cols);
}

}  // namespace

Int4 listfamily(family f) {
    Double value;
    std::string text;
    for (resultkind kind : {result_scalar, result_macro, result_matrix})
        for (const std::string& name : stored_names(f, kind)) {
            stored_get(f, name, value, text);
            std::string shown = kind == result_scalar  ? numberfor(value)
                                : kind == result_macro ? "\"" + text + "\""
                                                       : sizefor(f, name);
            if (showresult(family_word(f), name, shown)) return breakpending;
        }
    return 0;
}

Int4 nothingbehind() { return nexttoken()[0] ? error(198) : 0; }

Int4 putscalar(family f) {
    std::string name;
    if (Int4 rc = assignment(name, mode_num)) return rc;
    return stored_put(f, name, exp_getnum(eqexp, 1));
}

Int4 takematrix(family f) {
    std::string name = nexttoken(), from = nexttoken();
    if (from == "=") from = nexttoken();
    if (name.empty() || from.empty()) return error(198);
    if (Int4 rc = nothingbehind()) return rc;
    boolean own = f == e_results && (name == "b" || name == "V");
    if (own || !validname(name)) return badname(name);
    return stored_movematrix(named_results, from, f, name) ? 0 : matnotfound(from);
}

namespace {

Int4 dirfamily(family f) {
    printing as(out_text);
    for (resultkind kind : {result_scalar, result_macro, result_matrix})
        for (const std::string& name : stored_names(f, kind))
            if (prtf("%s(%s)\n", family_word(f), name.c_str())) return breakpending;
    return 0;
}

Int4 dropfrom(family f) {
    std::string name;
    if (Int4 rc = droptoken(name)) return rc;
    if (name != "_all") return stored_drop(f, name) ? 0 : notfound(name);
    stored_clear(f);
    return 0;
}

}  // namespace

// In an r-class program drop and clear act on what it is building, and dir and list show that behind r().
Int4 cmd_return() {
    enum { w_local, w_scalar, w_matrix, w_dir, w_list, w_drop, w_clear, w_add };
    static constexpr keyword words[] = {{"local", 3, w_local}, {"scalar", 3, w_scalar}, {"matrix", 3, w_matrix},
                                        {"dir", 3, w_dir},     {"list", 2, w_list},     {"drop", 4, w_drop},
                                        {"clear", 5, w_clear}, {"add", 3, w_add}};
    Int4 word = lookup(words, nexttoken());
    boolean building = inprogram && programclass == class_r;
    family target = building ? return_results : r_results;
    if (word < 0) return error(198);
    if (!building && (word <= w_matrix || word == w_add)) return error(151);
    if (word == w_local) return macrodefine(define_return, putmacro<return_results>);
    if (word == w_scalar) return putscalar(return_results);
    if (word == w_matrix) return takematrix(return_results);
    if (word == w_drop) return dropfrom(target);
    if (Int4 rc = nothingbehind()) return rc;
    if (word == w_add) return stored_add(r_results, return_results);
    if (word == w_clear) {
        stored_clear(target);
        return 0;
    }
    Int4 (*show)(family) = word == w_dir ? dirfamily : listfamily;
    if (Int4 rc = show(r_results)) return rc;
    return building ? show(return_results) : 0;
}

Int4 cmd_sreturn() {
    static constexpr keyword words[] = {{"local", 3, 0}, {"drop", 4, 1}, {"list", 2, 2}, {"clear", 5, 3}};
    Int4 word = lookup(words, nexttoken());
    if (word < 0) return error(198);
    boolean allowed = inprogram && programclass == class_s;
    if (word == 0) return allowed ? macrodefine(define_sreturn, putmacro<s_results>) : error(153);
    if (word == 1) return dropfrom(s_results);
    if (Int4 rc = nothingbehind()) return rc;
    if (word == 2) return listfamily(s_results);
    stored_clear(s_results);
    return 0;
}

namespace {

Int4 definescalar() {
    std::string name;
    if (Int4 rc = assignment(name, mode_any)) return rc;
    if (eqexp.restype == exp_numeric) return scalarset(name, exp_getnum(eqexp, 1));
    char text[strbufsize];
    Int4 n = exp_getstr(eqexp, 1, text);
    return scalarsettext(name, {text, std::size_t(n)});
}

// The names on the line, all of which must be scalars; all scalars without a name or with _all.
Int4 scalarlist(std::vector<std::string>& names) {
    Double value;
    std::string text;
    while (nexttoken()[0]) names.push_back(tokbuf);
    if (names.empty() || names == std::vector<std::string>{"_all"}) {
        names = scalarnames();
        return 0;
    }
    for (const std::string& name : names)
        if (scalarget(name, value, text) == scalar_none) return notfound(name);
    return 0;
}

Int4 listscalars() {
    std::vector<std::string> names;
    if (Int4 rc = scalarlist(names)) return rc;
    Double value;
    std::string text;
    for (const std::string& name : names) {
        scalarkind kind = scalarget(name, value, text);
        prttextf("%10s = ", name.c_str());
        if (kind == scalar_text) prtresult(text);
        else prtnumber(defaultfmt, value);
        if (prtnl()) return breakpending;
    }
    return 0;
}

Int4 dropscalars() {
    std::vector<std::string> names;
    if (tokpeeknonblank() == 0) return error(198);
    if (Int4 rc = scalarlist(names)) return rc;
    for (const std::string& name : names) scalardrop(name);
    return 0;
}

}  // namespace

// scalar [define] name = exp, dir, list, drop. A first word that an = follows is a name.
Int4 cmd_scalar() {
    static constexpr keyword words[] = {{"define", 2, 0}, {"dir", 2, 1}, {"drop", 4, 2}, {"list", 1, 1}};
    Int4 word = lookup(words, nexttoken());
    if (tokpeeknonblank() == '=') {
        ungettoken();
        word = 0;
    }
    switch (word) {
    case 0: return definescalar();
    case 1: return listscalars();
    case 2: return dropscalars();
    default: return error(198);
    }
}

}  // namespace velmo
