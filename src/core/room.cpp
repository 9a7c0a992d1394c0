// Asking for room. Requests are generous first, half of what there is, so that a long row of small ones moves the
// data seldom; then exact. The account counts live objects only: holes of the store are free space that has not
// been collected yet.
#include "core/room.h"
#include <algorithm>
#include <cmath>
#include "base/memalloc.h"
#include "core/division.h"
#include "core/objects.h"
#include "core/upcalls.h"
#include "output/print.h"

namespace velmo {

namespace {

std::int64_t openspan() { return storestart() - blockstart - 16; }

// repart, first by the generous amount and then by the least one.
Int4 trytwice(Int4 generous, Int4 least, Int4 (*attempt)(Int4)) {
    Int4 rc = attempt(generous);
    if (rc && rc < 9000 && generous > least) rc = attempt(least);
    return rc;
}

}  // namespace

Int4 widestrow() {
    Double n = nobs > 1 ? nobs : 1, held = Double(objbytes());
    Double b = 4 * (n + 1) - Double(openspan());
    Double disc = b * b - 16 * n * held;
    if (disc < 0) return lrecl;
    Double w = std::clamp((-b + std::sqrt(disc)) / (2 * n), 0.0, Double(maxlrecl()));
    return std::max(Int4(w) & ~1, lrecl);
}

Int4 mostobs() {
    std::int64_t v = std::max(width, 1) + 4;
    v += v & 1;
    std::int64_t most = (openspan() - 4 * std::int64_t(objbytes()) / (v - 4)) / (v + 4);
    return Int4(std::clamp<std::int64_t>(most, maxobs, 2147483647));
}

Int4 mostvars() { return std::min(maxvar, widestrow()); }

// Half of the margin, as long as that spreads the rows over no more than `few` bytes beyond what they take now; with
// many rows half of what they take, since every page that they are spread over is touched.
Int4 generouswidth(Int4 least) {
    constexpr std::int64_t few = 32 << 20;
    Int4 half = (widestrow() - lrecl) / 2;
    if (std::int64_t(nobs) * half > few) half = std::min(half, std::max(lrecl / 2, Int4(few / nobs)));
    return std::max(half, least);
}

namespace {

Int4 widen(Int4 n) {
    Int4 least = std::max(n, 2), before = lrecl;
    Int4 generous = generouswidth(least);
    if (Int4 rc = trytwice(generous, least, [](Int4 d) { return repart(d, 0); })) return rc;
    return lrecl - before < least ? 9997 : 0;
}

Int4 lengthen(Int4 n) {
    Int4 before = maxobs, wanted = nobs < 2147483646 - n ? nobs + n + 1 : 2147483647;
    division present;
    if (divide(lrecl, present)) reclaimrows(present);
    if (maxobs - before < n) {
        n -= maxobs - before;
        before = maxobs;
        Int4 generous = std::max((mostobs() - maxobs) / 2, n);
        if (Int4 rc = trytwice(generous, n, [](Int4 d) { return repart(0, d); })) return rc;
        if (maxobs - before < n) return 9996;
    }
    touchptrs(wanted);
    return 0;
}

// Once more when programs that can be loaded again have given way.
Int4 insist(Int4 (*attempt)(Int4), Int4 n) {
    Int4 rc = attempt(n);
    return rc && rc != 1010 && yieldprograms() ? attempt(n) : rc;
}

}  // namespace

Int4 addwidthroom(Int4 n) { return insist(widen, n); }
Int4 addobsroom(Int4 n) { return insist(lengthen, n); }

void tightenrows() {
    Int4 wanted = (width + std::max(24, width / 5) + 1) & ~1;
    if (nobs == 0 && wanted < lrecl) repart(wanted - lrecl, 0);
}

Int4 freedyn(std::uint64_t n) {
    if (width + 4 >= lrecl) return 902;
    Int4 least = (width + 5) & ~1;
    Int4 length = std::max(((lrecl + width) / 2) & ~1, least);
    if (length >= lrecl) length = lrecl - 2;
    while (true) {
        division d;
        if (!divide(length, d)) return 901;
        if (d.maxobs < 2) return 902;
        std::int64_t spare = (std::int64_t(d.maxobs) - nobs - 1) * length;
        if (spare > 0 && std::uint64_t(spare) > n) break;
        length -= 2;
        if (length < width + 4) return 902;
    }
    Int4 rc = repart(length - lrecl, 0);
    return rc >= 9000 ? 9994 : rc;
}

Int4 yieldroom(std::uint64_t need) {
    if (need > std::uint64_t(blockend - blockstart)) return 901;
    std::int64_t room = storestart() - need - database;
    std::int64_t rows = room < 0 ? 0 : room / lrecl;
    if (rows <= nobs || rows < 2) {
        if (Int4 rc = freedyn(need)) return rc;
        room = storestart() - need - database;
        rows = room < 0 ? 0 : room / lrecl;
        if (rows <= nobs) return 901;
    }
    if (rows >= maxobs) return 0;
    if (rows < ptrmark)
        if (Int4 rc = packrows()) return rc;
    maxobs = Int4(rows);
    return 0;
}

sizes getsizes() {
    std::uint64_t data = std::uint64_t(nobs) * std::uint64_t(width + 4);
    return {std::uint64_t(blockend - blockstart), data, objbytes(), width};
}

namespace {

// Every pointer in its range, and none twice: 0, 9998, 9997.
Int4 checkpointers() {
    workspace seen(std::size_t(ptrmark) + 1);
    UByte* mark = seen.get<UByte>();
    if (mark) std::fill(mark, mark + ptrmark, UByte(0));
    for (Int4 i = 0; i < ptrmark; i++) {
        UInt4 row = obsptrs[i];
        if (row >= UInt4(ptrmark)) return 9998;
        if (mark && mark[row]++) return 9997;
    }
    return 0;
}

boolean shapefine() {
    boolean fine = lrecl >= width && lrecl % 2 == 0 && width >= 0 && maxobs >= 0 && maxobs <= tmaxobs;
    fine = fine && nobs >= 0 && nobs <= maxobs && ptrmark <= maxobs && (ptrmark > nobs || ptrmark == maxobs);
    fine = fine && std::uint64_t(database - blockstart) % 16 == 0;
    fine = fine && reinterpret_cast<UByte*>(obsptrs + tmaxobs) <= database;
    return fine && rowplace(maxobs) <= storestart();
}

}  // namespace

Int4 memory_check() {
    if (!shapefine()) return 9998;
    if (Int4 rc = checkpointers()) return rc;
    return objects_check();
}

Int4 obstest() {
    if (Int4 rc = checkpointers()) return rc;
    prt("(obsptrs checked)\n");
    return 0;
}

void showpointers() {
    prtf("SHOWPOINTERS maxobs=%d tmaxobs=%d\n", maxobs, tmaxobs);
    for (Int4 i = 0; i < ptrmark; i++)
        if (i == 0 || obsptrs[i] != obsptrs[i - 1] + 1) prtf("%6d -> %6u\n", i, obsptrs[i]);
    if (ptrmark < tmaxobs && obsptrs[ptrmark - 1] + 1 != UInt4(ptrmark)) prtf("%6d -> %6d\n", ptrmark, ptrmark);
}

}  // namespace velmo
