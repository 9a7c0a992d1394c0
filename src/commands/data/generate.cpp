// generate and replace. Where the expressions allow it the selection and the values of up to 256 observations are
// computed at once, then stored one by one in order.
#include <cmath>
#include <cstring>
#include <string>
#include "base/saved.h"
#include "base/text.h"
#include "data/cells.h"
#include "data/structure.h"
#include "expr/walk.h"
#include "language/options.h"
#include "language/stdparse.h"
#include "output/errors.h"
#include "output/print.h"

namespace velmo {

namespace {

// Selection and values of up to 256 observations. An expression that may not run by blocks, because of the variable
// being written or of the order of its draws and sums, runs one observation at a time.
struct valueblock {
    boolean maskblocks, valueblocks;
    Int4 first, n;
    UByte mask[blocksize];
    Double values[blocksize];
    explicit valueblock(Int4 written)
        : maskblocks(exp_maskable(written)), valueblocks(exp_blockable(eqexp, written)) {}
    boolean whole() const { return maskblocks && valueblocks; }
    void start(Int4 from, Int4 count) {
        first = from;
        n = count;
        if (maskblocks) exp_ifblock(first, n, mask);
    }
};

boolean selected(valueblock& b, Int4 i) { return b.maskblocks ? b.mask[i] : exp_iftest(b.first + i); }

// All of a block at once: right when nothing is stored meanwhile that the expressions read.
void computeblock(valueblock& b) {
    if (b.whole()) {
        if (std::memchr(b.mask, 1, std::size_t(b.n))) exp_getblock(eqexp, b.first, b.n, b.values);
        return;
    }
    for (Int4 i = 0; i < b.n; i++) {
        b.mask[i] = selected(b, i);
        if (b.mask[i]) b.values[i] = exp_getnum(eqexp, b.first + i);
    }
}

Int4 generated = 0;      // missing values made, over all groups

Int4 fillnumeric(Int4 var) {
    valueblock b(0);
    return overblocks([&](Int4 first, Int4 n) {
        b.start(first, n);
        computeblock(b);
        for (Int4 i = 0; i < b.n; i++) {
            boolean kept = b.mask[i] && b.values[i] < missing;
            generated += !kept;
            if (!kept) b.values[i] = missing;
        }
        putcolumn(var, b.first, b.n, b.values);
    });
}

Int4 fillstring(Int4 var) {
    valueblock b(0);
    char text[strbufsize];
    return overblocks([&](Int4 first, Int4 n) {
        b.start(first, n);
        for (Int4 i = 0; i < n; i++) {
            Int4 length = selected(b, i) ? exp_getstr(eqexp, first + i, text) : 0;
            generated += length == 0;
            putstr(var, first + i, {text, std::size_t(length)});
        }
    });
}

}  // namespace

// generate [type] newvar[:lbl] = exp [if] [in]
Int4 cmd_generate() {
    if (Int4 rc = stdparse({.newvars = true, .exp = must, .exptype = mode_any, .options = never})) return rc;
    if (vl_n != 1) return error(vl_n ? 103 : 102);
    Int4 var = vl_vr[0];
    if (isstring(var) != (eqexp.restype == exp_string)) return error(109);
    if (bymode <= 1) generated = 0;
    if (!bymode) generated += clearoutside(var);      // under by all groups are filled in their turn
    if (Int4 rc = isstring(var) ? fillstring(var) : fillnumeric(var)) return rc;
    visnvar = nvar;
    markchanged(var);
    if (generated && (!bymode || bylastgroup)) notef("(%d missing value%s generated)\n", generated, plural(generated));
    return 0;
}

namespace {

// The counters of a replace, kept over by-groups.
struct replacecounts { Int4 real, tomissing, truncated, lost; UByte oldtype; Int4 rc; };
replacecounts counts;

// Makes the variable wide enough for a value; a failure turns promotion off and is remembered.
boolean promoted(Int4 var, UByte wanted, boolean& promote) {
    if (wanted == typ[var - 1]) return false;
    if (changetype(var, wanted)) {
        promote = false;
        counts.rc = 903;
        return false;
    }
    return true;
}

// Stores one value by the rules of replace; a promotion moves the column.
void replacecell(Int4 var, column& cells, Int4 obs, Double v, boolean& promote) {
    if (v >= missing) v = missing;
    UByte* p = cells.at(obs);
    if (readcell(p, cells.type) == v) return;
    if (promote && cells.type < typefloat && promoted(var, typeneeded(cells.type, v), promote)) {
        cells = column(var);
        p = cells.at(obs);
    }
    writecell(p, cells.type, v);
    counts.real++;
    if (v == missing) counts.tomissing++;
    if (cells.type >= typefloat) return;
    Double stored = readcell(p, cells.type);
    if (stored != v) (stored == missing ? counts.lost : counts.truncated)++;
}

Int4 replacenumeric(Int4 var, boolean promote) {
    column cells(var);
    valueblock b(var);
    return overblocks([&](Int4 first, Int4 n) {
        b.start(first, n);
        if (b.whole()) computeblock(b);
        for (Int4 i = 0; i < b.n; i++)
            if (selected(b, i))
                replacecell(var, cells, b.first + i, b.whole() ? b.values[i] : exp_getnum(eqexp, b.first + i), promote);
    });
}

Int4 replacestring(Int4 var, boolean promote) {
    char text[strbufsize];
    return overobs([&](Int4 obs) {
        std::string_view value(text, std::size_t(exp_getstr(eqexp, obs, text)));
        if (strcell(var, obs) == value) return;
        if (promote && value.size() > typ[var - 1]) {
            promoted(var, UByte(std::min<std::size_t>(value.size(), maxstrtype)), promote);
            if (value.size() > maxstrtype) promote = false;
        }
        putstr(var, obs, value);
        counts.real++;
        if (value.size() > typ[var - 1]) counts.truncated++;
    }, var);
}

void replacereport(Int4 var) {
    char was[8], now[8];
    if (counts.oldtype != typ[var - 1])
        notef("%s was %s now %s\n", varlist[var - 1], typename_of(counts.oldtype, was), typename_of(typ[var - 1], now));
    if (bymode && !bylastgroup) return;
    std::string line = "(" + std::to_string(counts.real) + " real change" + plural(counts.real) + " made";
    if (counts.tomissing) line += ", " + std::to_string(counts.tomissing) + " to missing";
    notef("%s)\n", line.c_str());
    if (counts.truncated)
        notef("(%d value%s truncated due to storage type)\n", counts.truncated, plural(counts.truncated));
    if (counts.lost) notef("(%d value%s changed to missing due to storage type)\n", counts.lost, plural(counts.lost));
}

}  // namespace

// replace varname = exp [if] [in] [, nopromote]
Int4 cmd_replace() {
    if (Int4 rc = stdparse({.varlist = must, .exp = must, .exptype = mode_any})) return rc;
    if (vl_n != 1) return error(103);
    boolean promote = getopt_noflag("promote", 1, version >= 320);
    if (Int4 rc = getopt_done()) return rc;
    Int4 var = vl_vr[0];
    if (isstring(var) != (eqexp.restype == exp_string)) return error(109);
    if (bymode <= 1) counts = {};
    counts.oldtype = typ[var - 1];
    Int4 before = counts.real;
    Int4 rc = isstring(var) ? replacestring(var, promote) : replacenumeric(var, promote);
    if (counts.real > before) {
        setsortnone(vl_vr, 1);
        markchanged(var);
    }
    if (rc) return rc;
    replacereport(var);
    return counts.rc ? error(counts.rc) : 0;
}

}  // namespace velmo
