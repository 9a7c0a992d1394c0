// From a dataset file into memory: the kept variables' tables, then rows straight from the reader's buffer into the
// rectangle, a run of bytes for each row and piece, with nothing done for a cell.
#include "data/dtamemory.h"
#include <algorithm>
#include <cstring>
#include <unordered_set>
#include "base/poll.h"
#include "base/text.h"
#include "core/room.h"
#include "data/cells.h"
#include "data/dtaread.h"
#include "data/run.h"
#include "data/structure.h"
#include "output/errors.h"

namespace velmo {

namespace {

Int4 keptwidth(const dtafile& f, const std::vector<Int4>& keep) {
    Int4 n = 0;
    for (Int4 v : keep) n += varsize(f.head.types[std::size_t(v) - 1]);
    return n;
}

// The new number of each kept variable, 0 for others.
std::vector<UInt2> newnumbers(const dtafile& f, const std::vector<Int4>& keep) {
    std::vector<UInt2> number(f.head.types.size() + 1, 0);
    for (std::size_t i = 0; i < keep.size(); i++) number[std::size_t(keep[i])] = UInt2(i + 1);
    return number;
}

Int4 makeroom(Int4 rowbytes) {
    if (rowbytes > lrecl)
        if (Int4 rc = addwidthroom(rowbytes - lrecl + 2)) return error(rc >= 9000 ? 902 : rc);
    width = rowbytes;
    tightenrows();
    return 0;
}

// The sort list holds up to the first variable that isn't kept.
void takesort(const dtafile& f, const std::vector<UInt2>& number) {
    UInt2* s = srt;
    for (UInt2 key : f.head.sort) {
        if (!number[key]) break;
        *s++ = number[key];
    }
    *s = 0;
}

void taketables(const dtafile& f, const std::vector<Int4>& keep) {
    for (Int4 v : keep) {
        std::size_t i = std::size_t(v) - 1;
        typ[nvar] = f.head.types[i];
        mapi[nvar] = nvar ? mapi[nvar - 1] + UInt4(varsize(typ[nvar - 1])) : 0;
        for (char* field : {varlist[nvar], lbl[nvar]}) std::memset(field, 0, namesize);
        std::memset(fmt[nvar], 0, fmtsize);
        copytext(varlist[nvar], namesize, f.head.names[i]);
        copytext(lbl[nvar], namesize, f.head.vallabels[i]);
        copytext(fmt[nvar], fmtsize, f.head.formats[i]);
        nvar++;
    }
    visnvar = nvar;
    namesmoved();
}

// A file may hold very many: what has been met is kept here, so that each need not be looked for in memory.
Int4 takechars(dtafile& f, const std::vector<UInt2>& number) {
    std::unordered_set<std::string> met;
    dtachar c;
    boolean found;
    while (true) {
        if (Int4 rc = dta_nextchar(f, c, found)) return rc;
        if (!found) return 0;
        if (c.owner != "_dta" && !number[std::size_t(f.numbers[c.owner])]) continue;
        boolean first = met.insert(c.owner + ' ' + c.name).second;
        if (Int4 rc = (first ? char_add : char_set)(c.owner, c.name, c.text)) return rc;
    }
}

}  // namespace

Int4 dta_takevars(dtafile& f, const std::vector<Int4>& keep, boolean keeplabels) {
    cleardata(keeplabels);
    if (Int4(keep.size()) > maxvar) return error(900);
    if (Int4 rc = makeroom(keptwidth(f, keep))) return rc;
    std::vector<UInt2> number = newnumbers(f, keep);
    taketables(f, keep);
    takesort(f, number);
    copytext(datalabel, sizeof datalabel, f.head.label);
    for (Int4 v : keep) {
        std::size_t i = std::size_t(v) - 1;
        if (Int4 rc = putvarlabel(f.head.names[i], f.head.varlabels[i])) return rc;
    }
    return takechars(f, number);
}

void dta_addcopy(std::vector<dtacopy>& copies, UInt4 from, UInt4 to, UInt4 n) {
    if (!copies.empty() && copies.back().from + copies.back().n == from && copies.back().to + copies.back().n == to)
        copies.back().n += n;
    else
        copies.push_back({from, to, n});
}

std::vector<dtacopy> dta_copies(const dtafile& f, const std::vector<Int4>& keep) {
    std::vector<dtacopy> copies;
    UInt4 to = 0;
    for (Int4 v : keep) {
        UInt4 n = UInt4(varsize(f.head.types[std::size_t(v) - 1]));
        dta_addcopy(copies, f.offsets[std::size_t(v) - 1], to, n);
        to += n;
    }
    return copies;
}

Int4 dta_roomfor(Int4 n) {
    if (n > maxobs - nobs - 1) {
        if (n > nolimit - nobs) return error(901);
        if (Int4 rc = obsroom(nobs + n + 1 - maxobs)) return error(rc);
    }
    touchptrs(nobs + n + 1);
    return 0;
}

void dta_endrows(dtafile& f, const std::vector<Int4>& keep) {
    boolean spoilt = false;
    for (const UInt2* key = srt; *key; key++) spoilt = spoilt || f.oldmissing[std::size_t(keep[*key - 1]) - 1];
    if (!spoilt) return;
    std::string keys;
    for (const UInt2* key = srt; *key; key++) keys += std::string(key == srt ? "" : " ") + varlist[*key - 1];
    notef("Warning:  old-format data was sorted by %s\n", keys.c_str());
    notef("due to changes in Velmo, the sort information had to be cleared\n");
    notef("in this case; you must reissue the sort command if you care\n");
    srt[0] = 0;
}

Int4 dta_takerows(dtafile& f, const std::vector<Int4>& keep) {
    std::vector<dtacopy> copies = dta_copies(f, keep);
    while (true) {
        const UByte* row;
        Int4 n;
        if (Int4 rc = dta_nextrows(f, row, n)) return rc;
        if (n == 0) break;
        // The rest of a regular file is known to be there, so its room can be asked for at once.
        Int4 coming = nobs == 0 && f.size >= 0 ? f.head.nobs : n;
        if (coming + nobs >= ptrmark)
            if (Int4 rc = dta_roomfor(coming)) return rc;
        for (Int4 obs = nobs + 1; obs <= nobs + n; obs++, row += f.width) dta_copyrow(copies, row, rowptr(obs));
        nobs += n;
    }
    dta_endrows(f, keep);
    return 0;
}

Int4 dta_takelabels(dtafile& f) {
    std::string name;
    vallabel label;
    boolean found;
    while (true) {
        if (Int4 rc = dta_nextlabel(f, name, label, found)) return rc;
        if (!found) return 0;
        if (vl_find(name)) continue;
        if (Int4 rc = vl_store(name, label)) return rc;
    }
}

}  // namespace velmo
