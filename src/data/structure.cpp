// Variables that go, move or change their type, and observations that come and go. Within a row the bytes of the
// variables follow each other without gaps, so each of these is the same shift of bytes in every row; the tables
// are changed only when nothing can fail any more.
#include "data/structure.h"
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>
#include "base/memalloc.h"
#include "base/text.h"
#include "core/objects.h"
#include "core/room.h"
#include "data/cells.h"
#include "data/chars.h"
#include "data/dataset.h"
#include "data/labels.h"
#include "output/errors.h"
#include "output/formats.h"

namespace velmo {

Int4 obsroom(Int4 n) {
    Int4 rc = addobsroom(n);
    return rc >= 9000 ? 901 : rc;
}

Int4 nextobsroom() {
    if (nobs + 1 >= maxobs)
        if (Int4 rc = obsroom(1)) return error(rc);
    touchptrs(nobs + 2);
    return 0;
}

Int4 needscratchrow() {
    if (nobs >= maxobs)
        if (Int4 rc = obsroom(1)) return rc;
    if (nobs >= maxobs) return 901;
    touchptrs(nobs + 1);
    return 0;
}

namespace {

// Offsets anew from variable `first` on.
void remap(Int4 first) {
    UInt4 offset = first > 1 ? mapi[first - 2] + UInt4(varsize(typ[first - 2])) : 0;
    for (Int4 v = first; v <= nvar; v++) {
        mapi[v - 1] = offset;
        offset += UInt4(varsize(typ[v - 1]));
    }
    width = Int4(offset);
    namesmoved();
}

void copyentry(Int4 to, Int4 from) {
    typ[to - 1] = typ[from - 1];
    std::memmove(varlist[to - 1], varlist[from - 1], namesize);
    std::memmove(lbl[to - 1], lbl[from - 1], namesize);
    std::memmove(fmt[to - 1], fmt[from - 1], fmtsize);
}

// One variable's entries of the tables, carried while the others shift.
struct carried {
    UByte type;
    char name[namesize], label[namesize], format[fmtsize];
    explicit carried(Int4 v) : type(typ[v - 1]) {
        std::memcpy(name, varlist[v - 1], namesize);
        std::memcpy(label, lbl[v - 1], namesize);
        std::memcpy(format, fmt[v - 1], fmtsize);
    }
    void put(Int4 v) const {
        typ[v - 1] = type;
        std::memcpy(varlist[v - 1], name, namesize);
        std::memcpy(lbl[v - 1], label, namesize);
        std::memcpy(fmt[v - 1], format, fmtsize);
    }
};

void rotatetables(Int4 from, Int4 to) {
    carried moved(from);
    for (Int4 v = from; v < to; v++) copyentry(v, v + 1);
    for (Int4 v = from; v > to; v--) copyentry(v, v - 1);
    moved.put(to);
    remap(std::min(from, to));
}

// The number of variable v once `from` stands at `to`.
Int4 renumbered(Int4 v, Int4 from, Int4 to) {
    if (v == from) return to;
    if (from < v && v <= to) return v - 1;
    if (to <= v && v < from) return v + 1;
    return v;
}

struct byterun { Int4 from, to, n; };

// The runs of kept bytes that must move left, adjoining variables joined.
std::vector<byterun> keptruns(const UByte* marks) {
    std::vector<byterun> runs;
    Int4 to = 0;
    for (Int4 v = 1; v <= nvar; v++) {
        Int4 from = Int4(mapi[v - 1]), n = varsize(typ[v - 1]);
        if (marks[v - 1]) continue;
        if (from != to) {
            if (!runs.empty() && runs.back().from + runs.back().n == from)
                runs.back().n += n;
            else
                runs.push_back({from, to, n});
        }
        to += n;
    }
    return runs;
}

// The sort key without the marked variables: it holds up to the first of them.
void cutandrenumbersrt(const UByte* marks) {
    UInt2* s = srt;
    for (; *s && !marks[*s - 1]; s++) *s = UInt2(*s - std::count_if(marks, marks + *s, [](UByte m) { return m != 0; }));
    *s = 0;
}

void droprecords(const UByte* marks) {
    beginbatch();
    for (Int4 v = 1; v <= nvar; v++) {
        if (!marks[v - 1]) continue;
        putvarlabel(varlist[v - 1], "");
        char_dropall(varlist[v - 1]);
        markchanged(v);
    }
    endbatch();
}

void compactvars(const UByte* marks) {
    std::vector<byterun> runs = keptruns(marks);
    for (Int4 obs = 1; obs <= nobs && !runs.empty(); obs++) {
        UByte* row = rowptr(obs);
        for (const byterun& r : runs) std::memmove(row + r.to, row + r.from, std::size_t(r.n));
    }
    Int4 kept = 0, visible = 0;
    for (Int4 v = 1; v <= nvar; v++) {
        if (marks[v - 1]) continue;
        if (v <= visnvar) visible++;
        if (++kept != v) copyentry(kept, v);
    }
    nvar = kept;
    visnvar = visible;
    remap(1);
}

}  // namespace

Int4 movevar(Int4 from, Int4 to, Int4* vars, Int4 n) {
    if (from == to) return 0;
    if (Int4 rc = needscratchrow()) return rc;
    std::size_t size = std::size_t(varsize(typ[from - 1])), start = mapi[from - 1];
    std::size_t lo = std::min(mapi[from - 1], mapi[to - 1]);
    std::size_t hi = std::max(start + size, mapi[to - 1] + std::size_t(varsize(typ[to - 1])));
    UByte cell[256];
    for (Int4 obs = 1; obs <= nobs; obs++) {
        UByte* row = rowptr(obs);
        std::memcpy(cell, row + start, size);
        if (from < to) {
            std::memmove(row + lo, row + lo + size, hi - lo - size);
            std::memcpy(row + hi - size, cell, size);
        } else {
            std::memmove(row + lo + size, row + lo, hi - lo - size);
            std::memcpy(row + lo, cell, size);
        }
    }
    rotatetables(from, to);
    for (UInt2* s = srt; *s; s++) *s = UInt2(renumbered(*s, from, to));
    for (Int4 i = 0; i < n; i++) vars[i] = renumbered(vars[i], from, to);
    return 0;
}

// The new variable, the last one, goes to the old one's place and the bytes between shift, in one pass.
Int4 swapin(Int4 var) {
    std::memcpy(lbl[nvar - 1], lbl[var - 1], namesize);
    if (!isstring(var)) {
        std::memcpy(fmt[nvar - 1], fmt[var - 1], fmtsize);
    } else {
        Int4 w = std::max<Int4>(typ[nvar - 1], 9);
        std::snprintf(fmt[nvar - 1], fmtsize, "%%%ds", fmt[var - 1][1] == '-' ? -w : w);
    }
    std::size_t oldsize = std::size_t(varsize(typ[var - 1])), size = std::size_t(varsize(typ[nvar - 1]));
    std::size_t start = mapi[var - 1], source = mapi[nvar - 1];
    UByte cell[256];
    for (Int4 obs = 1; obs <= nobs; obs++) {
        UByte* row = rowptr(obs);
        std::memcpy(cell, row + source, size);
        std::memmove(row + start + size, row + start + oldsize, source - start - oldsize);
        std::memcpy(row + start, cell, size);
    }
    if (std::strcmp(varlist[var - 1], varlist[nvar - 1]) != 0) {
        putvarlabel(varlist[var - 1], "");
        char_dropall(varlist[var - 1]);
    }
    copyentry(var, nvar);
    nvar--;
    remap(var);
    return 0;
}

Int4 changetype(Int4 var, UByte newtype) {
    if (Int4 rc = recast(var, fieldtext(varlist[var - 1], namesize), newtype)) return rc;
    column from(var), to(nvar);
    if (isstring(var)) {
        for (Int4 obs = 1; obs <= nobs; obs++) putstr(nvar, obs, strcell(var, obs));
    } else {
        for (Int4 obs = 1; obs <= nobs; obs++) to.put(obs, from.get(obs));
    }
    return swapin(var);
}

namespace {

Int4 takeout(const UByte* marks) {
    if (Int4 rc = needscratchrow()) return rc;
    droprecords(marks);
    cutandrenumbersrt(marks);
    compactvars(marks);
    return 0;
}

}  // namespace

Int4 dropvars(const UByte* marks) {
    if (nvar == 0) return 0;
    for (Int4 v = 1; v <= nvar; v++)
        if (!marks[v - 1] && !issample(v)) return takeout(marks);
    cleardata(true);
    return 0;
}

void dropworkvars(const UByte* marks) {
    UByte changed = datachanged;
    if (nvar && takeout(marks) == 0) visnvar = nvar;
    datachanged = changed;
}

void dropworkvar(Int4 var) {
    std::vector<UByte> marks(std::size_t(nvar), 0);
    marks[std::size_t(var - 1)] = 1;
    dropworkvars(marks.data());
}

void shrinkvars(Int4 count) {
    while (nvar > count) {
        nvar--;
        width = Int4(mapi[nvar]);
    }
    visnvar = std::min(visnvar, nvar);
}

void dropobs(const UByte* flags, Int4 kept) {
    Int4 to = 0;
    for (Int4 i = 0; i < nobs; i++) {
        if (flags[i]) continue;
        if (i != to) swapobs(to + 1, i + 1);
        to++;
    }
    if (kept == nobs) return;
    for (Int4 v = 1; v <= nvar; v++) markchanged(v);
    nobs = kept;
}

Int4 growobs(Int4 n) {
    if (n <= nobs) return 0;
    if (n >= maxobs)
        if (addobsroom(n - maxobs + 1)) return 901;
    if (n >= maxobs) return 901;
    touchptrs(n + 1);
    Int4 first = nobs + 1;
    for (Int4 v = 1; v <= nvar; v++) {
        clearcell(v, first);
        if (issample(v)) putobs(v, first, 0);
        markchanged(v);
    }
    const UByte* empty = rowptr(first);
    for (Int4 obs = first + 1; obs <= n; obs++) std::memcpy(rowptr(obs), empty, std::size_t(width));
    nobs = n;
    srt[0] = 0;
    return 0;
}

}  // namespace velmo
