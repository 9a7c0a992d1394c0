// The block comes from the page allocator, so that a large one costs nothing until it is used. A change of size
// takes the new block first: when the machine refuses it, the session still has the old one. The three text
// buffers are allocated for the largest maxvar there can be, so that the line being worked on stays where it is
// when maxvar changes; only the size they are said to have follows it.
#include "core/memory.h"
#include <algorithm>
#include <cstring>
#include "base/memalloc.h"
#include "base/platform.h"
#include "base/state.h"
#include "base/text.h"
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

char (*varlist)[namesize];
UByte* typ;
UInt4* mapi;
char (*fmt)[fmtsize];
char (*lbl)[namesize];
UInt2* srt;
Int4* vl_vr;
tsvar* vl_rcp;
UInt2* by;
char* macexp;
char* cmdbuf;
char* reviewring;

fixedtable fixedtables[20];
Int4 nfixedtables;
UByte memory_fellback;
std::uint64_t asked_memory;
Int4 asked_maxvar, asked_matsize;

namespace {

constexpr std::uint64_t leastmemory = 102400, defaultmemory = 10485760;
constexpr Int4 defaultmaxvar = 5000, defaultmatsize = 400, mostmaxvar = 32767;
std::uint64_t blocksize;      // bytes mapped

// One fixed table: where its address is kept, and its size as entries of maxvar with some more behind.
struct tablerow { const char* label; void** address; std::uint64_t each, more; boolean text; };

const tablerow tablerows[] = {
    {"vl_vr", reinterpret_cast<void**>(&vl_vr), 4, 4, false},
    {"mapi", reinterpret_cast<void**>(&mapi), 4, 0, false},
    {"srt", reinterpret_cast<void**>(&srt), 2, 2, false},
    {"lbl", reinterpret_cast<void**>(&lbl), namesize, 0, false},
    {"fmt", reinterpret_cast<void**>(&fmt), fmtsize, 0, false},
    {"varlist", reinterpret_cast<void**>(&varlist), namesize, 0, false},
    {"typ", reinterpret_cast<void**>(&typ), 1, 0, false},
    {"by", reinterpret_cast<void**>(&by), 2, 2, false},
    {"vl_rcp", reinterpret_cast<void**>(&vl_rcp), 8, 8, false},
    {"macexp", reinterpret_cast<void**>(&macexp), 33, 216, true},
    {"cmdbuf", reinterpret_cast<void**>(&cmdbuf), 33, 232, true},      // 16 bytes for reads that run beyond
    {"review", reinterpret_cast<void**>(&reviewring), 33, 217, true},
};
constexpr Int4 ntables = Int4(sizeof tablerows / sizeof tablerows[0]);

void freetables() {
    for (Int4 i = 0; i < ntables && i < nfixedtables; i++) {
        memfree(fixedtables[i].p);
        *tablerows[i].address = nullptr;
    }
    nfixedtables = 0;
}

// Tables for `n` variables into fixedtables, cleared where it matters; the texts stay if they are there.
Int4 maketables(Int4 n) {
    void* made[ntables] = {};
    boolean fresh = nfixedtables == 0;
    for (Int4 i = 0; i < ntables; i++) {
        const tablerow& t = tablerows[i];
        if (t.text && !fresh) continue;
        std::uint64_t size = t.each * std::uint64_t(t.text ? mostmaxvar : n) + t.more;
        made[i] = memalloc(size);
        if (!made[i]) {
            for (Int4 j = 0; j < i; j++) memfree(made[j]);
            return 909;
        }
        std::memset(made[i], 0, t.text ? 1 : size);
    }
    for (Int4 i = 0; i < ntables; i++) {
        const tablerow& t = tablerows[i];
        if (made[i]) {
            if (!fresh) memfree(fixedtables[i].p);
            *t.address = fixedtables[i].p = made[i];
        }
        fixedtables[i].size = t.each * std::uint64_t(n) + t.more;
        copytext(fixedtables[i].label, sizeof fixedtables[i].label, t.label);
    }
    nfixedtables = std::max(nfixedtables, ntables);
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
