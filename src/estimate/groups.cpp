// Groups are split by one key after the other: a number is one key, a string one for every 8 bytes. Pairs of (group,
// key) are numbered anew: where all that could be are few against the observations by a table of them, else by hashing
// those that occur and sorting them, or, where these turn out to be many, by sorting all.
#include "estimate/groups.h"
#include <algorithm>
#include <limits>
#include "data/cells.h"
#include "data/sortkeys.h"
#include "output/errors.h"

namespace velmo {

namespace {

using key64 = std::uint64_t;

constexpr Int4 stretch = 4096;     // observations between looks at Break

// one(i) for 0 to n - 1; 1 on a Break.
template <class F> Int4 overindices(Int4 n, F one) {
    for (Int4 from = 0; from < n; from += stretch) {
        Int4 end = std::min(n - from, stretch) + from;
        for (Int4 i = from; i < end; i++) one(i);
        if (tick()) return 1;
    }
    return 0;
}

// Numbers by a table with a place for every pair.
Int4 splitcounted(grouping& g, const key64* key, key64 least, std::size_t range) {
    std::size_t places = range * std::size_t(g.groups);
    workspace table(places * sizeof(UInt4));
    UInt4 *rank = table.get<UInt4>(), *code = g.code.get<UInt4>();
    if (!rank) return error(909);
    std::fill(rank, rank + places, 0u);
    for (Int4 i = 0; i < g.n; i++) {
        code[i] = UInt4(code[i] * range + (key[i] - least));
        rank[code[i]] = 1;
    }
    UInt4 groups = 0;
    for (std::size_t k = 0; k < places; k++) {
        UInt4 occurs = rank[k];
        rank[k] = groups;
        groups += occurs;
    }
    for (Int4 i = 0; i < g.n; i++) code[i] = rank[code[i]];
    g.groups = Int4(groups);
    return 0;
}

struct pairrecord { key64 key; UInt4 code, id; };

// The pairs that occur, numbered as they come, with a hash table of their numbers.
struct pairtable {
    workspace records, slots{0};
    std::size_t size = 0;
    Int4 n = 0;
    explicit pairtable(Int4 most) : records(std::size_t(most) * sizeof(pairrecord)) {}
    pairrecord* all() const { return records.get<pairrecord>(); }
    std::size_t place(key64 key, UInt4 code) const {
        return std::size_t(((key ^ key64(code) * 0x9E3779B97F4A7C15u) * 0xD6E8FEB86659FD93u) >> 20) & (size - 1);
    }
    // Four times as large; false without room.
    boolean grow() {
        std::size_t larger = size ? size * 4 : 4096;
        workspace next(larger * sizeof(Int4));
        Int4* slot = next.get<Int4>();
        if (!slot) return false;
        std::fill(slot, slot + larger, -1);
        slots = std::move(next);
        size = larger;
        for (Int4 i = 0; i < n; i++) {
            std::size_t at = place(all()[i].key, all()[i].code);
            while (slot[at] >= 0) at = (at + 1) & (size - 1);
            slot[at] = i;
        }
        return true;
    }
    // The pair's number; room for one more must be there.
    UInt4 number(key64 key, UInt4 code) {
        Int4* slot = slots.get<Int4>();
        pairrecord* r = all();
        std::size_t at = place(key, code);
        for (; slot[at] >= 0; at = (at + 1) & (size - 1))
            if (r[slot[at]].key == key && r[slot[at]].code == code) return UInt4(slot[at]);
        slot[at] = n;
        r[n] = {key, code, UInt4(n)};
        return UInt4(n++);
    }
    boolean full() const { return std::size_t(n) * 2 >= size; }
};

// Puts the records in the order of group and key.
Int4 orderpairs(pairtable& pairs, Int4 groups) {
    pairrecord* r = pairs.all();
    if (groups == 1) {
        bucketsort(r, pairs.n);
        return 0;
    }
    workspace starts(std::size_t(groups + 1) * sizeof(Int4)), copy(std::size_t(pairs.n) * sizeof(pairrecord));
    Int4* end = starts.get<Int4>();
    pairrecord* to = copy.get<pairrecord>();
    if (!end || !to) return error(909);
    std::fill(end, end + groups + 1, 0);
    for (Int4 i = 0; i < pairs.n; i++) end[r[i].code + 1]++;
    for (Int4 k = 1; k <= groups; k++) end[k] += end[k - 1];
    for (Int4 i = 0; i < pairs.n; i++) to[end[r[i].code]++] = r[i];
    for (Int4 k = 0, from = 0; k < groups; from = end[k++]) bucketsort(to + from, end[k] - from);
    pairs.records = std::move(copy);
    return 0;
}

// Every observation's pair is a record of its own.
Int4 splitsorted(grouping& g, const key64* key, pairtable& pairs) {
    UInt4* code = g.code.get<UInt4>();
    pairrecord* r = pairs.all();
    for (Int4 i = 0; i < g.n; i++) r[i] = {key[i], code[i], UInt4(i)};
    pairs.n = g.n;
    if (Int4 rc = orderpairs(pairs, g.groups)) return rc;
    r = pairs.all();
    UInt4 last = 0;
    for (Int4 i = 0; i < g.n; i++) {
        last += i > 0 && (r[i].key != r[i - 1].key || r[i].code != r[i - 1].code);
        code[r[i].id] = last;
    }
    g.groups = Int4(last) + 1;
    return tick();
}

Int4 splithashed(grouping& g, const key64* key) {
    const Int4 most = std::max(g.n / 16, 4096);        // beyond, a look into the table costs more than sorting
    pairtable pairs(g.n);
    if (!pairs.all() || !pairs.grow()) return error(909);
    UInt4* code = g.code.get<UInt4>();
    for (Int4 i = 0; i < g.n; i++) {
        if (pairs.full() && !pairs.grow()) return error(909);
        if (pairs.n > most) {
            while (i-- > 0) code[i] = pairs.all()[code[i]].code;
            return splitsorted(g, key, pairs);
        }
        code[i] = pairs.number(key[i], code[i]);
        if (i % stretch == 0 && tick()) return 1;
    }
    if (Int4 rc = orderpairs(pairs, g.groups)) return rc;
    workspace ranks(std::size_t(pairs.n) * sizeof(UInt4));
    UInt4* rank = ranks.get<UInt4>();
    if (!rank) return error(909);
    for (Int4 i = 0; i < pairs.n; i++) rank[pairs.all()[i].id] = UInt4(i);
    for (Int4 i = 0; i < g.n; i++) code[i] = rank[code[i]];
    g.groups = pairs.n;
    return 0;
}

Int4 split(grouping& g, const key64* key) {
    key64 least = key[0], greatest = key[0];
    for (Int4 i = 1; i < g.n; i++) {
        least = std::min(least, key[i]);
        greatest = std::max(greatest, key[i]);
    }
    if (least == greatest) return 0;
    key64 most = key64(std::max(g.n, 2048)) * 2;
    boolean few = greatest - least < most && (greatest - least + 1) * key64(g.groups) <= most;
    return few ? splitcounted(g, key, least, std::size_t(greatest - least + 1)) : splithashed(g, key);
}

// Numbers that are all whole are keys as they are: those of a small range can be counted. Else their ordered bits are.
// The keys take the place of the numbers, by bytes, as the types differ.
Int4 splitnumbers(grouping& g, Double* x) {
    constexpr Double limit = 9007199254740992.0;
    Double least = missing, greatest = -missing;
    boolean whole = true;
    for (Int4 i = 0; i < g.n && whole; i++) {
        if (x[i] == missing) continue;
        whole = x[i] > -limit && x[i] < limit && x[i] == Double(std::int64_t(x[i]));
        least = std::min(least, x[i]);
        greatest = std::max(greatest, x[i]);
    }
    std::int64_t base = whole && least < missing ? std::int64_t(least) : 0;
    std::int64_t last = whole && least < missing ? std::int64_t(greatest) + 1 : 0;
    key64* keys = reinterpret_cast<key64*>(x);
    for (Int4 i = 0; i < g.n; i++) {
        key64 key = whole ? key64((x[i] == missing ? last : std::int64_t(x[i])) - base) : orderedbits(x[i]);
        std::memcpy(static_cast<void*>(keys + i), &key, sizeof key);
    }
    return split(g, keys);
}

Int4 splittexts(grouping& g, Int4 var, const Int4* obs) {
    column c(var);
    workspace keys(std::size_t(g.n) * sizeof(key64));
    key64* key = keys.get<key64>();
    if (!key) return error(909);
    constexpr Int4 ahead = 16;
    for (Int4 piece = 0; piece < stringpieces(c.type); piece++) {
        boolean more = false;
        Int4 rc = overindices(g.n, [&](Int4 i) {
            if (i + ahead < g.n) __builtin_prefetch(c.at(obs[i + ahead]));
            key[i] = stringpiece(c.at(obs[i]), c.type, piece);
            more |= (key[i] & 255) != 0;
        });
        if (!rc) rc = split(g, key);
        if (rc || !more) return rc;
    }
    return 0;
}

}  // namespace

Int4 groupsample(const drawnsample& s, const std::vector<source>& sources, std::size_t from, grouping& g) {
    g.n = s.n;
    g.groups = s.n > 0;
    g.code = workspace(std::size_t(std::max(s.n, 1)) * sizeof(UInt4));
    if (!g.code.p) return error(909);
    std::fill_n(g.code.get<UInt4>(), s.n, 0u);
    for (std::size_t j = from; j < sources.size() && g.groups < g.n; j++) {
        Int4 var = sources[j].var;
        Int4 rc = isstring(var) ? splittexts(g, var, s.numbers()) : splitnumbers(g, s.values(Int4(j)));
        if (rc) return rc;
        if (tick()) return 1;
    }
    return 0;
}

Int4 groupfirsts(const drawnsample& s, const grouping& g, workspace& first, workspace& count) {
    std::size_t room = std::size_t(std::max(g.groups, 1)) * sizeof(Int4);
    first = workspace(room);
    count = workspace(room);
    Int4 *f = first.get<Int4>(), *c = count.get<Int4>();
    if (!f || !c) return error(909);
    std::fill_n(c, g.groups, 0);
    for (Int4 i = 0; i < g.n; i++)
        if (c[g.codes()[i]]++ == 0) f[g.codes()[i]] = s.numbers()[i];
    return 0;
}

}  // namespace velmo
