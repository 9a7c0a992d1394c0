// Where rows lie and how they move. A division of the block is a record length with what follows from it; changing
// it packs the live rows into the first nobs places and then moves those to their new addresses in the direction
// that never overwrites a row still to be read. Until everything is known to fit, nothing has been touched.
#include "core/rectangle.h"
#include <algorithm>
#include <cstring>
#include "core/division.h"
#include "core/guard.h"
#include "core/objects.h"
#include "output/print.h"

namespace velmo {

UInt4* obsptrs;
UByte* database;
Int4 nobs;
Int4 maxobs;
Int4 tmaxobs;
Int4 lrecl;
Int4 width;
Int4 mvar;
Int4 ptrmark;
Int4 n_repart, n_shift;

UByte* storestart() { return blockend - objbytes(); }

boolean divide(std::int64_t length, division& d) {
    if (length < 4) return false;
    std::int64_t span = blockend - blockstart - 16;
    d.lrecl = Int4(length);
    d.tmaxobs = Int4(std::min<std::int64_t>(span / (length + 4), 2147483646));
    std::int64_t base = (std::int64_t(d.tmaxobs) * 4 + 15) / 16 * 16;
    d.database = blockstart + base;
    std::int64_t rows = (storestart() - d.database) / length;
    d.maxobs = Int4(std::clamp<std::int64_t>(rows, 0, d.tmaxobs));
    d.mvar = std::min(d.lrecl, maxvar);
    return true;
}

namespace {

// An empty order: everything is the identity again.
void forgetorder() {
    permit(blockstart, std::size_t(16));
    ptrmark = 1;
    obsptrs[0] = 0;
}

void adopt(const division& d) {
    lrecl = d.lrecl;
    tmaxobs = d.tmaxobs;
    maxobs = d.maxobs;
    mvar = d.mvar;
    database = d.database;
}

void moverows(const division& to) {
    std::size_t n = std::size_t(width), from = std::size_t(lrecl), stride = std::size_t(to.lrecl);
    n_shift++;
    // Rows that move up go from the last down, rows that move down from the first up; the two kinds never meet,
    // because the distance moved changes evenly from row to row.
    for (Int4 r = nobs - 1; r >= 0; r--) {
        UByte *source = database + std::size_t(r) * from, *target = to.database + std::size_t(r) * stride;
        if (target > source) std::memmove(target, source, n);
    }
    for (Int4 r = 0; r < nobs; r++) {
        UByte *source = database + std::size_t(r) * from, *target = to.database + std::size_t(r) * stride;
        if (target < source) std::memmove(target, source, n);
    }
}

}  // namespace

// Brings the live rows into places 0 to nobs - 1 and makes the rest of the order the identity: 0 or 9999.
Int4 packrows() {
    UInt4 live = UInt4(nobs);
    Int4 high = 0;
    for (Int4 slot = nobs; slot < ptrmark; slot++) {
        if (obsptrs[slot] >= live) continue;
        while (high < nobs && obsptrs[high] < live) high++;
        if (high == nobs) {
            prt("System failure\n");
            return 9999;
        }
        std::memcpy(rowplace(Int4(obsptrs[slot])), rowplace(Int4(obsptrs[high])), std::size_t(width));
        std::swap(obsptrs[slot], obsptrs[high]);
    }
    ptrmark = nobs;
    guardgap();
    touchptrs(nobs + 1);
    return 0;
}

Int4 rectangle_start() {
    std::int64_t size = blockend - blockstart, length = 200;
    if (size < 1024) return 910;
    if ((size - 16) / 204 > 2147483647) length = maxlrecl();
    blockend = blockstart + size / 16 * 16;
    dynstart = blockend;
    obsptrs = reinterpret_cast<UInt4*>(blockstart);
    lrecl = Int4(length);
    mvar = std::min(lrecl, maxvar);
    tmaxobs = Int4((size - 16) / (length + 4));
    database = blockstart + (std::int64_t(tmaxobs) * 4 + 15) / 16 * 16;
    std::int64_t rows = (blockend - database) / length;
    if (rows > tmaxobs) {
        std::int64_t span = tmaxobs * length / 16 * 16;
        rows = span / length;
        tmaxobs = Int4(rows);
        blockend = dynstart = database + span;
    }
    if (rows < 20) return 910;
    maxobs = Int4(rows);
    nobs = width = 0;
    forgetorder();
    guardgap();
    return 0;
}

Int4 rectangle_relayout(Int4 length) {
    division d;
    if (!divide(length, d) || d.maxobs < 1) return 901;
    if (d.database > dynstart) objcompact();
    adopt(d);
    forgetorder();
    guardgap();
    return 0;
}

void resetptrs() {
    forgetorder();
    guardgap();
}

void touchptrs(Int4 n) {
    n = std::min(n, maxobs);
    if (n <= ptrmark) return;
    if (rowplace(n) > dynstart) objcompact();
    permit(obsptrs + ptrmark, std::size_t(n - ptrmark) * sizeof *obsptrs);
    permit(rowplace(ptrmark), std::size_t(n - ptrmark) * std::size_t(lrecl));
    for (Int4 i = ptrmark; i < n; i++) obsptrs[i] = UInt4(i);
    ptrmark = n;
}

void guardgap() {
    permit(blockstart, std::size_t(dynstart - blockstart));
    forbid(obsptrs + ptrmark, database);
    forbid(rowplace(ptrmark), dynstart);
}

void getrow(void* out, Int4 obs, Int4 n) { std::memcpy(out, rowptr(obs), std::size_t(n)); }
void putrow(const void* in, Int4 obs, Int4 n) { std::memcpy(rowptr(obs), in, std::size_t(n)); }

// The longest record below the present one that leaves `target` rows; 0 when there is none.
static std::int64_t lengthfor(std::int64_t target) {
    division d;
    std::int64_t length = (storestart() - blockstart - 16) / target - 4;
    length = std::min<std::int64_t>(length - (length & 1), lrecl);
    while (divide(length, d) && d.maxobs < target) {
        length -= 2;
        if (length <= width) return 0;
    }
    return std::max<std::int64_t>(length, 0);
}

void reclaimrows(const division& d) {
    if (d.database != database || d.lrecl != lrecl || d.maxobs <= maxobs) return;
    maxobs = d.maxobs;
    touchptrs(nobs + 1);
}

Int4 repart(Int4 dwidth, Int4 dobs) {
    std::int64_t length = std::int64_t(lrecl) + dwidth;
    division d;
    length += length & 1;
    if (dwidth == 0) length = lengthfor(std::max<std::int64_t>(std::int64_t(maxobs) + dobs, 1));
    if (length > maxlrecl()) return 1010;
    if (!divide(length, d)) return 901;
    if (d.maxobs < 1) return 902;
    if (d.lrecl == lrecl) {
        reclaimrows(d);
        return 0;
    }
    if (d.lrecl < width) return 901;
    if (nobs > d.maxobs) return 902;
    n_repart++;
    if (Int4 rc = packrows()) return rc;
    objcompact();
    permit(blockstart, std::size_t(dynstart - blockstart));
    if (width > 0) moverows(d);
    adopt(d);
    ptrmark = nobs;
    guardgap();
    touchptrs(nobs + 1);
    return 0;
}

}  // namespace velmo
