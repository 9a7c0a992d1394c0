#include "estimate/mlequations.h"
#include "base/text.h"
#include "core/macros.h"
#include "data/timeseries.h"
#include "language/stdparse.h"

namespace velmo {

namespace {

std::string global(const char* stem, Int4 number) {
    return std::string(trimmed(macrotext(std::string(stem) + (number ? std::to_string(number) : ""))));
}

Int4 globalvar(const char* stem, Int4 number, Int4& var) {
    std::string name = global(stem, number);
    var = name.empty() ? 0 : findvar(name);
    if (name.empty()) return 0;
    if (!var) return varnotfound(name);
    return isstring(var) ? error(109) : 0;
}

Int4 readsources(const std::string& text, std::vector<source>& out) {
    if (text.empty()) return 0;
    elsewhere cursor(text);
    saved rules(parsing, form{.varlist = must, .tsops = may});
    vl_n = vl_ngroups = vl_given = 0;
    if (Int4 rc = existinglist()) return rc;
    out = listsources();
    boolean operators = false;
    for (source s : out) {
        if (isstring(s.var)) return error(109);
        operators |= s.op != 0;
    }
    return operators ? tsetup() : 0;
}

}  // namespace

std::vector<axisname> mlequation::names() const {
    std::vector<axisname> out;
    for (source s : x) {
        char op[24] = "";
        out.push_back(makeaxisname(name, s.op ? ts_text(s.op, op) : "", varlist[s.var - 1]));
    }
    if (constant) out.push_back(makeaxisname(name, "", "_cons"));
    return out;
}

Int4 readequation(Int4 number, mlequation& e) {
    Int4 n = 0;
    readinteger(global("ML_n", 0), n);
    if (number < 1 || number > n) return errorf(198, "equation %d out of range\n", number);
    e.number = number;
    e.name = global("ML_eq", number);
    if (e.name.empty()) e.name = "eq" + std::to_string(number);
    e.constant = global("ML_xc", number) == "1";
    if (!readinteger(global("ML_fp", number), e.first) || !readinteger(global("ML_lp", number), e.last))
        return error(198);
    if (Int4 rc = readsources(global("ML_x", number), e.x)) return rc;
    if (Int4 rc = globalvar("ML_xo", number, e.offset)) return rc;
    return globalvar("ML_xe", number, e.exposure);
}

Int4 readmlsample(mlsample& s) {
    s.whole = global("ML_wtyp", 0) == "aweight";
    if (Int4 rc = globalvar("ML_samp", 0, s.marker)) return rc;
    return globalvar("ML_w", 0, s.weight);
}

void samplemask(const mlsample& s, Int4 first, Int4 n, UByte* mask) {
    Double marker[blocksize];
    if (s.marker) getsource({s.marker}, first, n, marker);
    for (Int4 i = 0; i < n; i++) mask[i] = !s.marker || (marker[i] != 0 && marker[i] != missing);
}

}  // namespace velmo
