// Commands that manage variables: rename, order, move, compress.
#include <cmath>
#include <string>
#include <vector>
#include "base/poll.h"
#include "base/text.h"
#include "data/cells.h"
#include "data/run.h"
#include "data/structure.h"
#include "language/stdparse.h"
#include "output/errors.h"
#include "output/print.h"

namespace velmo {

// rename oldname newname
Int4 cmd_rename() {
    Int4 var = lookupvar(nexttoken(), lookup_ref);
    if (var < 0) return -var;
    std::string name = nexttoken();
    if (name.empty()) return required("new name");
    if (nexttoken()[0]) return error(198);
    if (Int4 rc = checknewname(name)) return rc;
    if (Int4 rc = renamevar(var, name)) return rc;
    markchanged(var);
    return 0;
}

// order varlist: to the front, in list order.
Int4 cmd_order() {
    if (Int4 rc = stdparse({.varlist = must, .ifexp = never, .in = never, .options = never})) return rc;
    if (needscratchrow()) return error(901);
    Int4 place = 0;
    std::vector<UByte> done(std::size_t(nvar), 0);
    for (Int4 i = 0; i < vl_n; i++) {
        Int4 var = vl_vr[i];
        if (done[std::size_t(var - 1)]) continue;
        place++;
        if (Int4 rc = movevar(var, place, vl_vr, vl_n)) return error(rc);
        done.insert(done.begin() + place - 1, 1);
        done.erase(done.begin() + var - 1 + (var >= place ? 1 : 0));
        if (tick()) return 1;
    }
    datachanged = 1;
    return 0;
}

// move var1 var2: the first goes in front of the second.
Int4 cmd_move() {
    if (Int4 rc = stdparse({.varlist = must, .ifexp = never, .in = never, .options = never})) return rc;
    if (vl_n != 2) return error(vl_n < 2 ? 102 : 103);
    if (needscratchrow()) return error(901);
    Int4 from = vl_vr[0], to = vl_vr[1];
    if (from == to) return 0;
    if (Int4 rc = movevar(from, from < to ? to - 1 : to, nullptr, 0)) return error(rc);
    datachanged = 1;
    return 0;
}

namespace {

// The smallest type that holds every value of a numeric variable exactly; its own type when none is smaller.
UByte smallestnumeric(Int4 var) {
    column cells(var);
    UByte wanted = typebyte;
    boolean infloat = true;
    for (Int4 obs = 1; obs <= nobs; obs++) {
        Double v = cells.get(obs);
        if (v == missing) continue;
        if (infloat && Double(tofloat(v)) != v) infloat = false;
        if (wanted != typedouble) wanted = v == std::trunc(v) ? typeneeded(wanted, v) : typedouble;
        if (wanted == typefloat) wanted = typedouble;
        if (wanted == typedouble && !infloat) break;
    }
    if (varsize(wanted) < varsize(cells.type)) return wanted;
    return cells.type == typedouble && infloat ? typefloat : cells.type;
}

UByte smalleststring(Int4 var) {
    std::size_t longest = 1;
    for (Int4 obs = 1; obs <= nobs; obs++) longest = std::max(longest, strcell(var, obs).size());
    return UByte(longest);
}

Int4 compressvar(Int4 var) {
    UByte old = typ[var - 1];
    UByte now = isstring(var) ? smalleststring(var) : smallestnumeric(var);
    if (now == old) return 0;
    if (Int4 rc = changetype(var, now)) return error(rc);
    markchanged(var);
    char a[8], b[8];
    return notef("%s was %s now %s\n", varlist[var - 1], typename_of(old, a), typename_of(now, b));
}

}  // namespace

// compress [varlist]: first the floats and integers, then the doubles, then the strings.
Int4 cmd_compress() {
    if (Int4 rc = stdparse({.ifexp = never, .in = never, .options = never})) return rc;
    if (vl_n == 0) return 0;
    if (Int4 rc = needscratchrow()) return error(rc);
    auto turn = [](UByte type) { return type < 245 ? 2 : type == typedouble ? 1 : type == typebyte ? 3 : 0; };
    std::vector<UByte> types(typ, typ + nvar);
    for (Int4 pass = 0; pass < 3; pass++)
        for (Int4 i = 0; i < vl_n; i++) {
            if (turn(types[std::size_t(vl_vr[i] - 1)]) != pass) continue;
            if (Int4 rc = compressvar(vl_vr[i])) return rc;
            if (breakpending) return 1;
        }
    return 0;
}

}  // namespace velmo
