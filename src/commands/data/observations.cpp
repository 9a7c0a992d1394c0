// Commands that choose observations: drop and keep (and of variables), expand, count, assert, sort.
#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>
#include "base/memalloc.h"
#include "base/poll.h"
#include "base/saved.h"
#include "base/text.h"
#include "data/cells.h"
#include "data/sorting.h"
#include "data/structure.h"
#include "expr/walk.h"
#include "language/options.h"
#include "language/stdparse.h"
#include "output/errors.h"
#include "output/print.h"
#include "stored/families.h"

namespace velmo {

namespace {

Int4 dropvariables(boolean keep) {
    std::vector<UByte> marks(std::size_t(nvar), keep ? 1 : 0);
    for (Int4 i = 0; i < vl_n; i++) marks[std::size_t(vl_vr[i] - 1)] = !keep;
    if (Int4 rc = dropvars(marks.data())) return error(rc);
    visnvar = nvar;
    return 0;
}

// Under by the flags of all groups accumulate; the last one does the work.
std::vector<UByte> flags;

Int4 dropobservations(boolean keep) {
    if (nobs == 0) return notef("(0 observations deleted)\n");
    if (bymode <= 1) flags.assign(std::size_t(nobs), keep ? 1 : 0);
    Int4 rc = overmasks([&](Int4 first, Int4 n, const UByte* mask) {
        for (Int4 i = 0; i < n; i++) flags[std::size_t(first - 1 + i)] = mask[i] != keep;
    });
    if (rc || (bymode && !bylastgroup)) return rc;
    onexit release([] { std::vector<UByte>().swap(flags); });
    Int4 kept = Int4(std::count(flags.begin(), flags.end(), 0));
    Int4 gone = nobs - kept;
    if (gone) {
        dropobs(flags.data(), kept);
        datachanged = 1;
    }
    notef("(%d observation%s deleted)\n", gone, plural(gone));
    return 0;
}

// drop and keep share their form: a varlist, or if and in.
Int4 dropkeep(boolean keep) {
    tokenpos start;
    savetokpos(&start);
    boolean all = std::string_view(nexttoken(breakvarlist)) == "_all" && tokpeeknonblank() == 0;
    restoretokpos(&start);
    if (all && !keep) {
        if (bymode) return error(190);
        cleardata(true);
        return 0;
    }
    if (Int4 rc = stdparse({.options = never})) return rc;
    if (!vl_given && !ifgiven && !ingiven) return required("varlist or in range");
    if (!vl_given) return dropobservations(keep);
    if (bymode) return error(190);        // the next group would drop what then stands at the numbers
    return ifgiven || ingiven ? error(198) : dropvariables(keep);
}

}  // namespace

Int4 cmd_drop() { return dropkeep(false); }
Int4 cmd_keep() { return dropkeep(true); }

namespace {

// Appends `copies` copies of an observation.
Int4 copyobservation(Int4 obs, Int4 copies) {
    std::vector<Int4> samples = samplemarkers();
    for (Int4 k = 0; k < copies; k++) {
        if (Int4 rc = nextobsroom()) return rc;
        std::memcpy(rowptr(nobs + 1), rowptr(obs), std::size_t(width));
        nobs++;
        for (Int4 v : samples) putobs(v, nobs, 0);
        if (tick()) return 1;
    }
    return 0;
}

}  // namespace

// expand [=]exp [if] [in]: copies behind the data, one fewer than the value.
Int4 cmd_expand() {
    if (Int4 rc = stdparse({.varlist = never, .exp = must, .bareexp = true, .options = never})) return rc;
    Int4 before = nobs;
    // The run's end was fixed when the command was parsed: the copies don't take part.
    Int4 rc = overobs([](Int4 obs) {
        Double v = exp_getnum(eqexp, obs);
        if (v >= missing || v < 2) return 0;
        return copyobservation(obs, v > 2147483647.0 ? 2147483646 : Int4(v) - 1);
    });
    Int4 created = nobs - before;
    if (created) {
        srt[0] = 0;
        datachanged = 1;
    }
    if (rc && !created) return rc;
    notef("(%d observation%s created)\n", created, plural(created));
    return rc;
}

Int4 cmd_count() {
    if (Int4 rc = parseif(never)) return rc;
    Int4 n = 0;
    Int4 rc = overmasks([&](Int4, Int4 count, const UByte* mask) { n += Int4(std::count(mask, mask + count, 1)); });
    if (rc) return rc;
    rclear();
    rstore("N", n);
    prtf("%5d", n);
    return bymode ? breakpending : prtnl();
}

namespace {

Int4 tested = 0, contradicted = 0;     // observations over all groups
Int4 groups = 0;                       // that had one to test

void assertblock(Int4 first, Int4 n, const UByte* mask) {
    Double values[blocksize];
    boolean blocks = exp_blockable(eqexp, 0);
    if (blocks) exp_getblock(eqexp, first, n, values);
    for (Int4 i = 0; i < n; i++) {
        if (!mask[i]) continue;
        tested++;
        if ((blocks ? values[i] : exp_getnum(eqexp, first + i)) == 0) contradicted++;
    }
}

}  // namespace

// assert exp [if] [in] [, rc0]
Int4 cmd_assert() {
    if (Int4 rc = stdparse({.varlist = never, .exp = must, .bareexp = true})) return rc;
    boolean forgive = getopt_flag("rc0", 1);
    if (Int4 rc = getopt_done()) return rc;
    if (bymode <= 1) tested = contradicted = groups = 0;
    Int4 before = tested;
    if (Int4 rc = overmasks(assertblock)) return rc;
    groups += tested > before;
    if (bymode && !bylastgroup) return 0;
    if (tested == 0) notef("(null assertion)\n");
    if (contradicted == 0) return 0;
    if (quietlevel < shows_errors) {
        notef("%d contradiction%s in %d %s\n", contradicted, plural(contradicted), bymode ? groups : tested,
              bymode ? "by-groups" : "observations");
        errorf(9, "assertion is false\n");
    }
    return forgive ? 0 : 9;
}

// sort varlist [in range] [, index(varname)]
Int4 cmd_sort() {
    if (Int4 rc = stdparse({.varlist = must, .ifexp = never, .by = never})) return rc;
    std::vector<Int4> index;
    boolean indexed;
    if (Int4 rc = getopt_vars("index", 5, index, indexed)) return rc;
    if (Int4 rc = getopt_done()) return rc;
    if (!indexed) {
        Int4 rc = sortdata(firstobs, lastobs, vl_vr, vl_n);
        return rc > 1 ? error(rc) : rc;
    }
    if (index.size() != 1) return error(198);
    if (typ[index[0] - 1] != typelong) return 0;
    Int4 rc = sortbyindex(index[0], vl_vr, vl_n);
    return rc > 1 ? error(rc) : rc;
}

}  // namespace velmo
