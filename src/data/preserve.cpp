#include "data/preserve.h"
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>
#include "base/platform.h"
#include "base/saved.h"
#include "base/text.h"
#include "core/macros.h"
#include "core/objects.h"
#include "core/tempfiles.h"
#include "core/upcalls.h"
#include "data/dataset.h"
#include "data/dtamemory.h"
#include "data/dtaread.h"
#include "data/dtawrite.h"
#include "data/structure.h"
#include "output/errors.h"
#include "output/print.h"

namespace velmo {

Int4 preserveslot = -1;

namespace {

struct record {
    UInt4 memory;            // kilobytes
    Int4 nobs;
    UByte changed, hasdata;
    char stamp[18];
};
static_assert(sizeof(record) == 28);

struct kept { record r; std::string file, dataset; Int4 estimations; };

Int4 storerecord(Int4 slot, const kept& k) {
    std::string bytes(reinterpret_cast<const char*>(&k.r), sizeof k.r);
    bytes.append(k.file.c_str(), k.file.size() + 1).append(k.dataset.c_str(), k.dataset.size() + 1);
    bytes.append(reinterpret_cast<const char*>(&k.estimations), sizeof k.estimations);
    return objput(std::to_string(slot), obj_estpreserve, bytes.data(), bytes.size());
}

kept readrecord() {
    object* o = objfind(std::to_string(preserveslot), obj_estpreserve);
    std::string bytes(reinterpret_cast<char*>(o->data()), o->datalen);
    kept k;
    std::memcpy(&k.r, bytes.data(), sizeof k.r);
    k.file = bytes.c_str() + sizeof k.r;
    k.dataset = bytes.c_str() + sizeof k.r + k.file.size() + 1;
    std::memcpy(&k.estimations, bytes.data() + bytes.size() - sizeof k.estimations, sizeof k.estimations);
    return k;
}

void forget(const kept& k) {
    if (k.r.hasdata) removewithretry(k.file.c_str());
    objdel(std::to_string(preserveslot), obj_estpreserve);
    preserveslot = -1;
}

Int4 readback(const kept& k) {
    std::vector<Int4> all;
    dtafile f;
    f.own = true;
    if (Int4 rc = dta_open(k.file, f)) return rc;
    for (Int4 v = 1; v <= f.head.nvar(); v++) all.push_back(v);
    if (Int4 rc = dta_takevars(f, all)) return rc;
    if (Int4 rc = dta_takerows(f, all)) return rc;
    return dta_takelabels(f);
}

Int4 refill(const kept& k) {
    cleardata(!k.r.hasdata);
    return k.r.hasdata ? readback(k) : growobs(k.r.nobs);
}

boolean lacksroom(Int4 rc) { return rc == 900 || rc == 901 || rc == 902 || rc == 950; }

// A block in which the file's data and what was made meanwhile have room side by side.
std::uint64_t largerblock(const kept& k) {
    std::uint64_t data = std::uint64_t(filestat(k.file.c_str()).size) + std::uint64_t(k.r.nobs) * 64;
    return std::max(memory + memory / 2, 2 * (data + objbytes()) + (1u << 20)) / 1024 * 1024;
}

// What came into memory meanwhile may have taken the room of the data: then the block grows, as told.
Int4 refillsomewhere(const kept& k) {
    Int4 rc;
    {
        saved quiet(quietlevel, shows_nothing);
        rc = refill(k);
    }
    if (!rc) return 0;
    cleardata(!k.r.hasdata);
    if (lacksroom(rc) && setmemory(largerblock(k)) == 0)
        notef("(memory set to %lluk, for the preserved data)\n", static_cast<unsigned long long>(memory >> 10));
    return refill(k);
}

// The data as they were; the block as large as it was, should it have been made smaller meanwhile.
Int4 bringback(const kept& k) {
    cleardata(!k.r.hasdata);
    std::uint64_t then = std::uint64_t(k.r.memory) * 1024;
    if (memory < then)
        if (Int4 rc = setmemory(then)) return error(rc);
    Int4 rc = refillsomewhere(k);
    if (!rc) rc = macroset("S_FN", k.dataset);
    if (!rc) rc = macroset("S_FNDATE", fieldtext(k.r.stamp, sizeof k.r.stamp));
    Int4 sample = rc || k.estimations == estimations ? 0 : findvar("(e)");
    if (sample) dropworkvar(sample);               // that of estimates that are gone
    datachanged = k.r.changed;
    return rc;
}

// Without the user's data there is no session to go on with; they are still in the file.
[[noreturn]] void giveup(const kept& k) {
    saved loud(quietlevel, shows_all);
    prterr("preserved data could not be restored; they remain in " + k.file + "\n");
    prtflush();
    tempfile_keep(k.file);
    messagebox("Error--Velmo Exiting:", "Check Results Window for filename");
    shutdown(900);
    std::abort();
}

}  // namespace

Int4 preserve_data() {
    if (preserveslot >= 0) return error(621);
    Int4 slot = tempfile_next('i');
    char file[pathsize];
    if (Int4 rc = tempfilename(file, 'i', slot)) return error(rc);
    kept k{{UInt4(memory / 1024), nobs, datachanged, UByte(nvar > 0), {}}, file, std::string(macrotext("S_FN")),
           estimations};
    copytext(k.r.stamp, sizeof k.r.stamp, macrotext("S_FNDATE"));
    savechoice choice{.all = true, .unused = true};
    if (k.r.hasdata)
        if (Int4 rc = dta_save(k.file, true, choice, dta_stamp())) return rc;
    if (Int4 rc = storerecord(slot, k)) {
        if (k.r.hasdata) removewithretry(file);
        return rc;
    }
    preserveslot = slot;
    return 0;
}

Int4 preserve_restore(boolean keep) {
    if (preserveslot < 0) return error(622);
    kept k = readrecord();
    if (bringback(k)) giveup(k);
    if (!keep) forget(k);
    return 0;
}

Int4 preserve_cancel() {
    if (preserveslot < 0) return error(622);
    forget(readrecord());
    return 0;
}

void preserve_started() { preserveslot = -1; }

Int4 preserve_levelleft() {
    if (preserveslot >= 0) shuttingdown ? preserve_cancel() : preserve_restore(false);
    return 0;
}

}  // namespace velmo
