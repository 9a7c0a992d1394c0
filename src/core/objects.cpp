// Each object has an entry in a side table: where it is (as a distance from the block's end, so that a block that
// moves as a whole changes nothing), its hash chain, its neighbours in the order of age, of age within its type,
// and of place. Place and age differ once a value has been rewritten where it was. An entry owns `extent` bytes
// from its offset on, at least the object's size; what is more is spare and vanishes when holes are closed.
#include "core/objects.h"
#include <cstring>
#include <string>
#include <vector>
#include "base/platform.h"
#include "base/text.h"
#include "core/guard.h"
#include "core/rectangle.h"
#include "core/room.h"
#include "core/upcalls.h"
#include "output/errors.h"

namespace velmo {

std::uint64_t objmoves = 0;

namespace {

struct link { UInt4 newer, older; };     // entry numbers, 0 at the ends

struct entry {
    std::uint64_t offset;      // distance of the object's start from blockend
    std::uint64_t seq;         // age: larger is newer
    UInt4 extent, size;        // bytes owned, bytes of the object
    UInt4 hash, chain;         // of (type, name), and the next entry with the same slot, newest first
    Int4 type;
    link age, kind, place;     // among all, among its type, by address (newer: lower)
};

struct listends { UInt4 newest, oldest; };

constexpr Int4 ntypes = 26000;
std::vector<entry> entries(1);           // entry 0 is no entry
std::vector<UInt4> freeentries, slots(1024);
listends byage, byplace, bytype[ntypes];
Int4 typecount[ntypes];
std::uint64_t lastseq, livebytes, ownedbytes;
UInt4 nentries, lastused;
Int4 batchdepth;

struct key {
    char name[36];
    UInt4 size, hash;
    Int4 type;
    key(std::string_view text, Int4 t) : type(t) {
        size = UInt4(text.size() < 35 ? text.size() : 35);
        std::memset(name, 0, sizeof name);
        std::uint64_t h = std::uint64_t(t) * 0x9E3779B97F4A7C15u;
        for (UInt4 i = 0; i < size; i += 8) {       // in words: bytes just written are slow to read back as a word
            std::uint64_t part = wordof(text.data() + i, size - i, i);
            std::memcpy(name + i, &part, i == 32 ? 4 : 8);
            h = (h ^ part) * 0xFF51AFD7ED558CCDu;
            h ^= h >> 32;
        }
        hash = UInt4(h);
    }

    // Up to eight bytes as a number, zeros behind them; a zero among them ends the name, whose place `at` is told.
    std::uint64_t wordof(const char* p, UInt4 n, UInt4 at) {
        constexpr std::uint64_t ones = 0x0101010101010101u;
        std::uint64_t word = 0;
        if (n >= 8) {
            std::memcpy(&word, p, 8);
            if (!((word - ones) & ~word & ones << 7)) return word;
            word = 0;
        }
        for (UInt4 i = 0; i < n && i < 8; i++) {
            if (!p[i]) {
                size = at + i;
                break;
            }
            word |= std::uint64_t(UByte(p[i])) << (8 * i);
        }
        return word;
    }
};

Int4 typeslot(Int4 type) { return type >= 0 && type < ntypes ? type : 0; }
UInt4 totalsize(std::size_t capacity) { return UInt4((capacity + 63) / 16 * 16); }
object* objectof(UInt4 e) { return reinterpret_cast<object*>(blockend - entries[e].offset); }
UInt4& slotof(UInt4 hash) { return slots[hash & (slots.size() - 1)]; }

// Names are compared by their first eight bytes, zeros behind short ones; few need more.
boolean matches(UInt4 e, const key& k) {
    if (entries[e].hash != k.hash || entries[e].type != k.type) return false;
    const char* name = objectof(e)->name;
    std::uint64_t a, b;
    std::memcpy(&a, name, 8);
    std::memcpy(&b, k.name, 8);
    return a == b && (k.size < 8 || std::memcmp(name + 8, k.name + 8, k.size - 7) == 0);
}

UInt4 lookup(const key& k) {
    UInt4 e = slotof(k.hash);
    while (e && !matches(e, k)) e = entries[e].chain;
    return e;
}

// The entry of an object's address: most often the one that was handed out last.
UInt4 entryof(object* o) {
    if (lastused && objectof(lastused) == o) return lastused;
    UInt4 e = slotof(key(o->name, o->type).hash);
    while (e && objectof(e) != o) e = entries[e].chain;
    return e;
}

void pushnewest(listends& list, link entry::* l, UInt4 e) {
    entries[e].*l = {0, list.newest};
    if (list.newest) (entries[list.newest].*l).newer = e;
    else list.oldest = e;
    list.newest = e;
}

void unlink(listends& list, link entry::* l, UInt4 e) {
    link here = entries[e].*l;
    if (here.newer) (entries[here.newer].*l).older = here.older;
    else list.newest = here.older;
    if (here.older) (entries[here.older].*l).newer = here.newer;
    else list.oldest = here.newer;
}

void unchain(UInt4 e) {
    UInt4* at = &slotof(entries[e].hash);
    while (*at != e) at = &entries[*at].chain;
    *at = entries[e].chain;
}

// Chains go from the newest to the oldest: of several with the same key the newest is met first.
void enchain(UInt4 e) {
    UInt4* at = &slotof(entries[e].hash);
    while (*at && entries[*at].seq > entries[e].seq) at = &entries[*at].chain;
    entries[e].chain = *at;
    *at = e;
}

void growslots() {
    if (nentries < slots.size()) return;
    std::vector<UInt4> larger(slots.size() * 4);
    slots.swap(larger);
    for (UInt4 e = byage.oldest; e; e = entries[e].age.newer) enchain(e);
}

void makenewest(UInt4 e) {
    objmoves += entries[e].type == obj_program;
    entries[e].seq = ++lastseq;
    pushnewest(byage, &entry::age, e);
    pushnewest(bytype[typeslot(entries[e].type)], &entry::kind, e);
    enchain(e);
}

void removefromorder(UInt4 e) {
    objmoves += entries[e].type == obj_program;
    unchain(e);
    unlink(byage, &entry::age, e);
    unlink(bytype[typeslot(entries[e].type)], &entry::kind, e);
}

void forbidspare(UInt4 e) {
    object* o = objectof(e);
    forbid(o->data() + o->datalen, reinterpret_cast<UByte*>(o) + entries[e].extent);
}

void updatestart() { dynstart = blockend - (byplace.newest ? entries[byplace.newest].offset : 0); }

// Gives up the place of an entry: a hole, or free space when it was the lowest.
void vacate(UInt4 e) {
    unlink(byplace, &entry::place, e);
    ownedbytes -= entries[e].extent;
    livebytes -= entries[e].size;
    permit(objectof(e), entries[e].extent);
    forbid(objectof(e), entries[e].extent);
    updatestart();
}

void remove(UInt4 e) {
    removefromorder(e);
    vacate(e);
    typecount[typeslot(entries[e].type)]--;
    entries[e] = entry{};
    entries[e].type = -2;
    freeentries.push_back(e);
    nentries--;
    if (lastused == e) lastused = 0;
}

UInt4 newentry() {
    growslots();
    freeentries.reserve(entries.size() + 1);    // so that a deletion needs no memory
    if (freeentries.empty()) {
        entries.emplace_back();
        freeentries.push_back(UInt4(entries.size()) - 1);
    }
    UInt4 e = freeentries.back();
    freeentries.pop_back();
    nentries++;
    return e;
}

UByte* usedtop() { return rowplace(ptrmark); }

// Room in the account for `need` bytes beyond the live ones: 0, 901, 902, 9999.
Int4 roomfor(std::int64_t need) {
    if (need <= 0) return 0;
    if (blockend - livebytes - rowplace(maxobs) >= need) return 0;
    return yieldroom(std::uint64_t(need));
}

// The same, with programs that can be loaded again giving way before it fails.
Int4 makeroom(std::int64_t need) {
    Int4 rc = roomfor(need);
    return rc && yieldprograms() ? roomfor(need) : rc;
}

// Gives entry e `size` bytes below all objects. Room in the account has been made; holes are closed when they are
// in the way. A value that grows gets spare room behind it where there is plenty.
void place(UInt4 e, UInt4 size, boolean grows) {
    if (dynstart - usedtop() < std::int64_t(size)) objcompact();
    UInt4 extent = size;
    UInt4 spare = (size / 4 + 15) / 16 * 16;
    if (grows && size < (1u << 30) && dynstart - usedtop() > std::int64_t(size) * 4) extent += spare;
    pushnewest(byplace, &entry::place, e);
    entries[e].offset = std::uint64_t(blockend - dynstart) + extent;
    entries[e].extent = extent;
    entries[e].size = size;
    ownedbytes += extent;
    livebytes += size;
    updatestart();
    permit(dynstart, extent);
}

Int4 nospace(const key& k) { return errorf(950, "insufficient memory for %s %s\n", objkind(k.type), k.name); }

void fillheader(UInt4 e, const key& k, std::size_t datalen) {
    object* o = objectof(e);
    o->size = entries[e].size;
    o->type = k.type;
    o->datalen = UInt4(datalen);
    std::memcpy(o->name, k.name, sizeof o->name);
    forbidspare(e);
}

UInt4 create(const key& k, std::size_t datalen, std::size_t capacity) {
    constexpr std::size_t most = 0xFFFFFF00u;
    if (capacity < datalen) capacity = datalen;
    if (capacity > most || makeroom(totalsize(capacity))) {
        nospace(k);
        return 0;
    }
    UInt4 e = newentry();
    entries[e].type = k.type;
    entries[e].hash = k.hash;
    place(e, totalsize(capacity), false);
    fillheader(e, k, datalen);
    makenewest(e);
    typecount[typeslot(k.type)]++;
    lastused = e;
    return e;
}

// Replaces the bytes of an entry and makes it the newest; 0 or 950.
// An object's new bytes: n from `in`, then a zero if it is a text.
void fill(UInt4 e, const void* in, std::size_t n, boolean text) {
    if (n) std::memcpy(objectof(e)->data(), in, n);
    if (text) objectof(e)->data()[n] = 0;
}

Int4 rewrite(UInt4 e, const key& k, const void* in, std::size_t length, boolean text) {
    std::size_t n = length + text;
    constexpr std::size_t most = 0xFFFFFF00u;
    UInt4 old = entries[e].size;
    if (n > most || makeroom(std::int64_t(totalsize(n)) - old)) return nospace(k);
    UInt4 size = totalsize(n);
    removefromorder(e);
    if (size <= entries[e].extent) {
        livebytes = livebytes - old + size;
        entries[e].size = size;
        permit(objectof(e), entries[e].extent);
    } else {
        vacate(e);
        place(e, size, true);
    }
    fillheader(e, k, n);
    fill(e, in, length, text);
    makenewest(e);
    lastused = e;
    return 0;
}

boolean inblock(const void* p) { return p >= blockstart && p < blockend; }

struct kindname { Int4 first, last; const char* name; };
constexpr kindname kindnames[] = {
    {1, 1, "value label"}, {2, 2, "global macro"}, {3, 3, "varlist"}, {4, 4, "last command"},
    {5, 5, "saved estimation result"}, {6, 6, "variable label"}, {7, 7, "program"}, {8, 8, "program"},
    {9, 11, "matrix"}, {12, 12, "command buffer"}, {13, 13, "constraint"}, {14, 14, "saved graph"},
    {15, 15, "scalar"}, {16, 16, "estimates preserve/restore"}, {17, 17, "popup"}, {18, 18, "characteristic"},
    {19, 19, "tracking the postfile"}, {20, 20, "internal temporary matrix"}, {21, 21, "scalar r()"},
    {22, 22, "local macro r()"}, {23, 25, "matrix r()"}, {26, 26, "scalar e()"}, {27, 27, "local macro e()"},
    {28, 30, "matrix e()"}, {31, 31, "local macro s()"}, {33, 33, "parked command line"},
    {34, 34, "byobs subcommand"}, {35, 35, "sort order"}, {19000, 19999, "held estimates"},
    {20000, 20999, "local macro"}, {21000, 21999, "scalar return()"}, {22000, 22999, "local macro return()"},
    {23000, 25999, "matrix return()"},
};

}  // namespace

const char* objkind(Int4 type) {
    for (const kindname& k : kindnames)
        if (type >= k.first && type <= k.last) return k.name;
    return "object";
}

object* objnew(std::string_view name, Int4 type, std::size_t datalen, std::size_t capacity) {
    key k(name, type);
    memory_stress();
    UInt4 e = create(k, datalen, capacity);
    return e ? objectof(e) : nullptr;
}

object* objfind(std::string_view name, Int4 type, UInt4* len) {
    UInt4 e = lookup(key(name, type));
    if (!e) return nullptr;
    lastused = e;
    if (len) *len = objectof(e)->datalen;
    return objectof(e);
}

object* objolder(object* o) {
    key k(o->name, o->type);
    UInt4 e = entries[entryof(o)].chain;
    while (e && !matches(e, k)) e = entries[e].chain;
    if (e) lastused = e;       // a walk asks for it next
    return e ? objectof(e) : nullptr;
}

namespace {

Int4 putbytes(std::string_view name, Int4 type, const void* in, std::size_t n, boolean text) {
    key k(name, type);
    std::string copy;
    if (inblock(in)) {          // the source may move with everything else
        copy.assign(static_cast<const char*>(in), n);
        in = copy.data();
    }
    memory_stress();
    if (UInt4 e = lookup(k)) return rewrite(e, k, in, n, text);
    UInt4 e = create(k, n + text, n + text);
    if (!e) return 950;
    fill(e, in, n, text);
    return 0;
}

}  // namespace

Int4 objput(std::string_view name, Int4 type, const void* in, std::size_t n) {
    return putbytes(name, type, in, n, false);
}

Int4 objputtext(std::string_view name, Int4 type, std::string_view text) {
    return putbytes(name, type, text.data(), text.size(), true);
}

object* objnext(object* prev, char* nameout, Int4 type, Int4* typeout) {
    UInt4 e;
    if (type == obj_any)
        e = prev ? entries[entryof(prev)].age.older : byage.newest;
    else
        e = prev ? entries[entryof(prev)].kind.older : bytype[typeslot(type)].newest;
    if (!e) return nullptr;
    lastused = e;
    object* o = objectof(e);
    if (nameout) std::memcpy(nameout, o->name, sizeof o->name);
    if (typeout) *typeout = o->type;
    return o;
}

boolean objdel(std::string_view name, Int4 type) {
    key k(name, type);
    memory_stress();
    UInt4 e = lookup(k);
    if (e) remove(e);
    return e != 0;
}

void objdelthis(object* o) {
    if (UInt4 e = entryof(o)) remove(e);
    memory_stress();
}

void objread(object* o, std::size_t offset, void* out, std::size_t n) {
    if (offset >= o->datalen || n == 0) return;
    if (n > o->datalen - offset) n = o->datalen - offset;
    std::memcpy(out, o->data() + offset, n);
}

void objwrite(object* o, std::size_t offset, const void* in, std::size_t n) {
    if (offset >= o->datalen) return;
    if (n > o->datalen - offset) n = o->datalen - offset;
    if (n) std::memmove(o->data() + offset, in, n);
}

Int4 objrename(object* o, std::string_view newname) {
    UInt4 e = entryof(o);
    key k(newname, o->type);
    unchain(e);
    std::memcpy(o->name, k.name, sizeof o->name);
    entries[e].hash = k.hash;
    enchain(e);
    memory_stress();
    return 0;
}

namespace {

void movekey(UInt4 e, const key& k) {
    removefromorder(e);
    typecount[typeslot(entries[e].type)]--;
    typecount[typeslot(k.type)]++;
    object* o = objectof(e);
    o->type = entries[e].type = k.type;
    std::memcpy(o->name, k.name, sizeof o->name);
    entries[e].hash = k.hash;
    makenewest(e);
}

}  // namespace

void objmove(object* o, std::string_view newname, Int4 newtype) {
    movekey(entryof(o), key(newname, newtype));
    memory_stress();
}

void objmovetype(Int4 from, Int4 to) {
    while (UInt4 e = bytype[typeslot(from)].oldest) movekey(e, key(objectof(e)->name, to));
    memory_stress();
}

void objdeltype(Int4 type) {
    while (UInt4 e = bytype[typeslot(type)].newest) remove(e);
    memory_stress();
}

Int4 objcount(Int4 type) { return type == obj_any ? Int4(nentries) : typecount[typeslot(type)]; }

void beginbatch() { batchdepth++; }

// Holes are closed when room is asked for; only a store that has become mostly holes is packed at once, so that
// its pages are not touched for nothing.
void endbatch() {
    if (--batchdepth == 0 && std::uint64_t(blockend - dynstart) > 4 * livebytes + 65536) objcompact();
}

void objcompact() {
    if (std::uint64_t(blockend - dynstart) == livebytes) return;
    objmoves++;
    permit(dynstart, std::size_t(blockend - dynstart));
    UByte* oldstart = dynstart;
    std::uint64_t offset = 0;
    for (UInt4 e = byplace.oldest; e; e = entries[e].place.newer) {
        entry& it = entries[e];
        offset += it.size;
        if (offset != it.offset) std::memmove(blockend - offset, blockend - it.offset, it.size);
        it.offset = offset;
        it.extent = it.size;
    }
    ownedbytes = livebytes;
    updatestart();
    forbid(oldstart, dynstart);
    guardobjects();
}

void guardobjects() {
#ifdef VELMO_GUARDS
    for (UInt4 e = byplace.oldest; e; e = entries[e].place.newer) forbidspare(e);
#endif
}

std::uint64_t objbytes() { return livebytes; }

void objects_start() {
    for (UInt4 e = byage.newest; e; e = entries[e].age.older) {
        bytype[typeslot(entries[e].type)] = {};
        typecount[typeslot(entries[e].type)] = 0;
    }
    entries.assign(1, entry{});
    freeentries.clear();
    slots.assign(1024, 0);
    byage = byplace = {};
    lastseq = livebytes = ownedbytes = 0;
    nentries = lastused = 0;
    batchdepth = 0;
    dynstart = blockend;
}

Int4 objects_save(Int4 fd) {
    if (!filewrite(fd, &nentries, sizeof nentries)) return 691;
    for (UInt4 e = byage.oldest; e; e = entries[e].age.newer) {
        object* o = objectof(e);
        if (!filewrite(fd, o, sizeof *o + o->datalen)) return 691;
    }
    return 0;
}

Int4 objects_load(Int4 fd) {
    UInt4 n;
    if (fileread(fd, &n, sizeof n) != Pint(sizeof n)) return 691;
    while (n-- > 0) {
        object head;
        if (fileread(fd, &head, sizeof head) != Pint(sizeof head)) return 691;
        std::size_t capacity = head.capacity() < 15 ? 0 : head.capacity() - 15;     // the least that gives this size
        object* o = objnew(fieldtext(head.name, sizeof head.name), head.type, head.datalen, capacity);
        if (!o) return 950;
        if (fileread(fd, o->data(), head.datalen) != Pint(head.datalen)) return 691;
    }
    return 0;
}

namespace {

boolean entryfine(UInt4 e) {
    const entry& it = entries[e];
    object* o = objectof(e);
    if (it.size < sizeof(object) || it.size % 16 || it.extent % 16 || it.extent < it.size) return false;
    if (o->size != it.size || o->type != it.type || o->datalen > o->capacity()) return false;
    if (!std::memchr(o->name, 0, sizeof o->name) || key(o->name, o->type).hash != it.hash) return false;
    UInt4 c = slotof(it.hash);
    while (c && c != e) c = entries[c].chain;
    return c == e;
}

}  // namespace

// Every list has every entry once, in order, and places don't overlap.
Int4 objects_check() {
    std::uint64_t below = 0, live = 0, owned = 0;
    UInt4 n = 0, m = 0;
    for (UInt4 e = byplace.oldest; e; e = entries[e].place.newer) {
        const entry& it = entries[e];
        if (++n > nentries || it.offset < below + it.extent) return 9999;
        below = it.offset;
        if (blockend - below < database || !entryfine(e)) return 9999;
        live += it.size;
        owned += it.extent;
    }
    std::uint64_t seq = lastseq + 1;
    for (UInt4 e = byage.newest; e; e = entries[e].age.older) {
        if (++m > nentries || entries[e].seq >= seq) return 9999;
        seq = entries[e].seq;
    }
    boolean fine = n == nentries && m == n && live == livebytes && owned == ownedbytes;
    return fine && dynstart == blockend - below && dynstart >= usedtop() ? 0 : 9999;
}

}  // namespace velmo
