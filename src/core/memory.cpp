// The block comes from the page allocator, so that a large one costs nothing until it is used. A change of size
// takes the new block first: when the machine refuses it, the session still has the old one. Texts
// among the fixed tables are allocated for the largest maxvar there can be, so that the line being worked on stays
// where it is when maxvar changes; only the size they are said to have follows it.
#include "core/memory.h"
#include <algorithm>
#include <cstring>
#include <iterator>
#include "base/memalloc.h"
#include "base/platform.h"
#include "base/state.h"
#include "core/events.h"
#include "core/guard.h"
#include "core/objects.h"
#include "core/rectangle.h"
#include "core/tempfiles.h"
#include "output/print.h"

namespace velmo {

UByte* blockstart;
UByte* blockend;
UByte* dynstart;
std::uint64_t memory = 10485760;

fixedtable fixedtables[20];
Int4 nfixedtables;
UByte memory_fellback;
std::uint64_t asked_memory;
Int4 asked_maxvar, asked_matsize;

namespace {

constexpr std::uint64_t leastmemory = 102400, defaultmemory = 10485760;
constexpr Int4 defaultmaxvar = 5000, defaultmatsize = 400, mostmaxvar = 32767;
std::uint64_t blocksize;      // bytes mapped

void freetables() {
    for (Int4 i = 0; i < nfixedtables; i++) {
        memfree(fixedtables[i].p);
        fixedrows[i].place(nullptr);
    }
    nfixedtables = 0;
}

// Tables for `n` variables into fixedtables, cleared where it matters; the texts stay if they are there.
Int4 maketables(Int4 n) {
    fixedtable made[std::size(fixedtables)] = {};
    boolean fresh = nfixedtables == 0;
    for (Int4 i = 0; i < nfixedrows; i++) {
        const fixedrow& t = fixedrows[i];
        made[i].size = t.each * std::uint64_t(n) + t.more;
        if (t.text && !fresh) {
            made[i].p = fixedtables[i].p;
            continue;
        }
        std::uint64_t size = t.each * std::uint64_t(t.text ? mostmaxvar : n) + t.more;
        made[i].p = memalloc(size);
        if (!made[i].p) {
            while (--i >= 0)
                if (fresh || !fixedrows[i].text) memfree(made[i].p);
            return 909;
        }
        std::memset(made[i].p, 0, t.text ? 1 : size);
    }
    for (Int4 i = 0; i < nfixedrows; i++) {
        if (made[i].p == fixedtables[i].p && !fresh) {
            fixedtables[i].size = made[i].size;
            continue;
        }
        if (!fresh) memfree(fixedtables[i].p);
        fixedrows[i].place(made[i].p);
        fixedtables[i] = made[i];
    }
    nfixedtables = nfixedrows;
    return 0;
}

void freeblock(UByte* start, std::uint64_t size) {
    if (!start) return;
    permit(start, size);
    pagefree(start, size);
}

// Makes `start` the block, empty.
Int4 enterblock(UByte* start, std::uint64_t size) {
    blockstart = start;
    blockend = start + size;
    blocksize = size;
    objects_start();
    Int4 rc = rectangle_start();
    objects_start();    // rectangle_start may have lowered the end
    return rc;
}

Int4 makeblock(std::uint64_t size) {
    UByte* p = static_cast<UByte*>(pagealloc(size));
    if (!p) return 909;
    return enterblock(p, size);
}

Int4 startonce() {
    if (memory < leastmemory) memory = defaultmemory;
    Int4 rc = maketables(maxvar);
    if (!rc) rc = makeblock(memory);
    if (rc) memory_stop();
    return rc;
}

// Rows that even the longest record can't bring below the largest row number.
boolean toolarge(std::uint64_t bytes) { return bytes / std::uint64_t(maxlrecl() + 4) > 2147483647; }

Int4 saveobjects(char* name) {
    if (Int4 rc = tempfilename(name, 'i', tempfile_next('i'))) return rc;
    Int4 fd = fileopenwrite(name, true, false, false);
    if (fd < 0) return 914;
    Int4 rc = objects_save(fd);
    if (!fileclose(fd)) rc = 691;
    if (rc) removewithretry(name);
    return rc;
}

Int4 loadobjects(const char* name) {
    Int4 fd = fileopenread(name);
    if (fd < 0) {
        prterr("tmp file vanished; macros etc. lost\n");
        return 691;
    }
    Int4 rc = objects_load(fd);
    if (rc == 691) prterr("error reading temp file\n");
    fileclose(fd);
    removewithretry(name);
    return rc;
}

}  // namespace

Int4 memory_start() {
    memory_fellback = 0;
    setlengths(maxvar);
    if (startonce() == 0) return 0;
    memory_fellback = 1;
    asked_memory = memory;
    asked_maxvar = maxvar;
    asked_matsize = matsize;
    memory = defaultmemory;
    matsize = defaultmatsize;
    setlengths(defaultmaxvar);
    return startonce() ? 909 : 0;
}

void memory_stop() {
    freetables();
    freeblock(blockstart, blocksize);
    blockstart = blockend = nullptr;
    objects_start();
    blocksize = 0;
    nobs = width = maxobs = ptrmark = n_repart = n_shift = 0;
}

Int4 setmemory(std::uint64_t bytes) {
    if (bytes == memory) return 0;
    if (bytes < leastmemory || bytes < objbytes() + 16384) return 910;
    if (toolarge(bytes)) return 912;
    char name[pathsize];
    UByte* p = static_cast<UByte*>(pagealloc(bytes));
    if (!p) return 909;
    if (Int4 rc = saveobjects(name)) {
        pagefree(p, bytes);
        return rc;
    }
    freeblock(blockstart, blocksize);
    memory = bytes;
    Int4 rc = enterblock(p, bytes);
    if (!rc) rc = loadobjects(name);
    if (!rc) tellsized(sized_memory);
    return rc;
}

Int4 setmaxvar(Int4 n) {
    if (n == maxvar) return 0;
    if (Int4 rc = maketables(n)) return rc;
    setlengths(n);
    width = 0;
    if (rectangle_relayout(200)) mvar = std::min(lrecl, maxvar);
    tellsized(sized_maxvar);
    return 0;
}

Int4 setmatsize(Int4 n) {
    void* trial = memalloc(std::size_t(n + 11) * std::size_t(n) * 8);
    if (!trial) return 909;
    memfree(trial);
    matsize = n;
    tellsized(sized_matsize);
    return 0;
}

#ifdef VELMO_STRESS
void memory_stress() {
    UByte* to = blockstart ? static_cast<UByte*>(pagealloc(blocksize)) : nullptr;
    if (!to) return;
    permit(blockstart, blocksize);
    std::memcpy(to, blockstart, std::size_t(ptrmark) * sizeof *obsptrs);
    std::memcpy(to + (database - blockstart), database, std::size_t(rowplace(ptrmark) - database));
    std::memcpy(to + (dynstart - blockstart), dynstart, std::size_t(blockend - dynstart));
    pagefree(blockstart, blocksize);
    objmoves++;
    std::ptrdiff_t shift = to - blockstart;
    blockstart = to;
    blockend += shift;
    dynstart += shift;
    database += shift;
    obsptrs = reinterpret_cast<UInt4*>(blockstart);
    guardgap();
    guardobjects();
}
#else
void memory_stress() {}
#endif

}  // namespace velmo
