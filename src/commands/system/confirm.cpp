// confirm: tests that its argument is what a program needs; silent when it is.
#include <cmath>
#include <set>
#include <string>
#include <vector>
#include "base/platform.h"
#include "base/text.h"
#include "core/keywords.h"
#include "data/dataset.h"
#include "data/run.h"
#include "language/stdparse.h"
#include "language/varlist.h"
#include "output/errors.h"

namespace velmo {

namespace {

Int4 foundwhere(std::string_view token, const char* what, Int4 rc = 7) {
    return errorf(rc, "'%.*s' found where %s expected\n", Int4(token.size()), token.data(), what);
}

Int4 nonames() { return errorf(7, "nothing found where name expected\n"); }

Int4 confirmnames() {
    if (!tokpeeknonblank()) return nonames();
    while (nexttoken()[0])
        if (isquoted() || !validname(tokbuf)) return foundwhere(tokcontent(), "name");
    return 0;
}

// Names that are free, numbered series among them; type words may stand there as in a list of new variables.
Int4 confirmnew() {
    std::set<std::string> seen;
    if (!tokpeeknonblank()) return nonames();
    while (nexttoken()[0]) {
        std::vector<std::string> names{tokcontent()};
        if (!isquoted() && typecode(tokbuf)) continue;
        if (tokpeek() == '-') {
            std::string first = names[0];
            nexttoken();
            names.clear();
            if (Int4 rc = seriesnames(first, nexttoken(), names)) return rc;
        }
        for (const std::string& name : names) {
            if (Int4 rc = checknewname(name)) return rc;
            if (!seen.insert(name).second)
                return errorf(110, "new variable %s mentioned more than once\n", name.c_str());
        }
    }
    return 0;
}

enum qualifier : Int4 { q_none = -1, q_new, q_integer, q_numeric, q_string, q_type };

boolean iskind(Int4 var, Int4 kind, UByte type) {
    return kind == q_none || (kind == q_type ? typ[var - 1] == type : isstring(var) == (kind == q_string));
}

Int4 confirmvariables(Int4 kind, UByte type) {
    if (!tokpeeknonblank()) return nonames();
    vl_n = vl_ngroups = 0;
    vl_given = 0;
    if (Int4 rc = existinglist()) return rc;
    if (nexttoken()[0]) return error(198);
    char word[8];
    std::string what = kind == q_string ? "string" : kind == q_numeric ? "numeric" : typename_of(type, word);
    for (Int4 i = 0; i < vl_n; i++)
        if (!iskind(vl_vr[i], kind, type)) return foundwhere(varlist[vl_vr[i] - 1], (what + " variable").c_str());
    return 0;
}

Int4 confirmnumber(boolean whole) {
    nexttoken(breaknum);
    Double value;
    boolean number = !isquoted() && readnumber(tokbuf, value) && std::isfinite(value);
    if (!number || (whole && value != std::floor(value))) return foundwhere(tokcontent(), whole ? "integer" : "number");
    return nexttoken()[0] ? error(198) : 0;
}

// A new file is made and removed again, which shows that it can be made.
Int4 confirmfile(boolean isnew) {
    char name[tokensize];
    if (Int4 rc = filetoken(name)) return rc;
    if (nexttoken()[0]) return error(198);
    if (isnew && filestat(name).exists) return fileerror(602, name);
    Int4 fd = isnew ? fileopenwrite(name, false, false, false) : fileopenread(name);
    if (fd < 0) return fileerror(isnew || openfailure != open_notfound ? 603 : 601, name);
    fileclose(fd);
    if (isnew) fileremove(name);
    return 0;
}

}  // namespace

Int4 cmd_confirm() {
    enum subject : Int4 { existence, names, variable, number, file };
    static constexpr keyword whole[] = {{"existence", 1, existence}, {"names", 4, names}};
    static constexpr keyword qualifiers[] = {
        {"new", 0, q_new}, {"integer", 4, q_integer}, {"numeric", 3, q_numeric}, {"string", 3, q_string},
    };
    static constexpr keyword subjects[] = {{"variable", 1, variable}, {"number", 1, number}, {"file", 1, file}};
    Int4 form = lookup(whole, std::string(nexttoken()).substr(0, 9));
    if (form == existence) return tokpeeknonblank() ? 0 : foundwhere("", "something", 6);
    if (form == names) return confirmnames();

    Int4 kind = lookup(qualifiers, tokbuf);
    UByte type = kind < 0 ? typecode(tokbuf) : UByte(0);
    if (type) kind = q_type;
    if (kind != q_none) nexttoken();
    form = lookup(subjects, tokbuf);
    if (form == number && (kind == q_none || kind == q_integer)) return confirmnumber(kind == q_integer);
    if (form == file && (kind == q_none || kind == q_new)) return confirmfile(kind == q_new);
    if (form != variable || kind == q_integer) return error(198);
    return kind == q_new ? confirmnew() : confirmvariables(kind, type);
}

}  // namespace velmo
