// Keys are cut into 64-bit pieces whose unsigned order is the order wanted: a number is one piece, a string one for
// every 8 bytes. Records of (piece, observation) are sorted by the first piece, runs of equals by the next, and so
// on; from that every observation has a rank, and equal ranks mean ties.
//
// Without ties the order is unique and done. With ties it is what the shuffle and the quicksort make of it: they
// run on (rank, row) records exactly as they would on the pointers. A partition's halves don't touch each other, so
// the smaller one is recursed on first; the result is the same and the stack stays shallow.
#include "data/sorting.h"
#include <algorithm>
#include <cstddef>
#include <cstring>
#include <vector>
#include "base/memalloc.h"
#include "base/poll.h"
#include "data/cells.h"
#include "data/sortkeys.h"

namespace velmo {

UInt4 sortseed = 1001;

namespace {

struct keyrecord { std::uint64_t key; Int4 obs; UInt4 work; };
struct rankrecord { UInt4 rank, row; };
struct span { Int4 lo, hi; };      // records lo to hi - 1

Int4 pieces(Int4 var) { return isstring(var) ? stringpieces(typ[var - 1]) : 1; }

std::uint64_t keyof(const UByte* cell, UByte type, Int4 piece) {
    return isstringtype(type) ? stringpiece(cell, type, piece) : orderedbits(readcell(cell, type));
}

// The records of some spans, one after the other.
struct spanwalk {
    keyrecord* r;
    const std::vector<span>& spans;
    std::size_t at = 0;
    Int4 i = 0;
    spanwalk(keyrecord* records, const std::vector<span>& list) : r(records), spans(list) {
        if (!list.empty()) i = list[0].lo;
    }
    keyrecord* next() {
        if (at == spans.size()) return nullptr;
        keyrecord* here = r + i++;
        if (i == spans[at].hi && ++at < spans.size()) i = spans[at].lo;
        return here;
    }
};

// A piece of a variable into the keys of the records of these spans. Rows that stand in a permuted order are on their
// way from memory before they are looked at; spans are often too short for that one by one.
void gatherkeys(keyrecord* r, const std::vector<span>& spans, Int4 var, Int4 piece) {
    column c(var);
    constexpr Int4 ahead = 16;
    spanwalk later(r, spans), now(r, spans);
    for (Int4 i = 0; i < ahead; i++)
        if (keyrecord* x = later.next()) __builtin_prefetch(c.at(x->obs));
    while (keyrecord* x = now.next()) {
        if (keyrecord* y = later.next()) __builtin_prefetch(c.at(y->obs));
        x->key = keyof(c.at(x->obs), c.type, piece);
    }
}

// Sorts the records of the open runs by all pieces of all variables; what is left open are the runs that agree on
// everything. False on a break.
boolean sortpieces(keyrecord* r, const Int4* vars, Int4 nvars, std::vector<span>& open) {
    std::vector<span> next, settled;
    for (Int4 v = 0; v < nvars && !open.empty(); v++) {
        Int4 last = pieces(vars[v]) - 1;
        settled.clear();
        for (Int4 piece = 0; piece <= last && !open.empty(); piece++) {
            next.clear();
            gatherkeys(r, open, vars[v], piece);
            for (span s : open) {
                if (tick()) return false;
                bucketsort(r + s.lo, s.hi - s.lo);
                for (Int4 i = s.lo, j; i < s.hi; i = j) {
                    for (j = i + 1; j < s.hi && r[j].key == r[i].key;) j++;
                    // A string that ended within this piece has nothing more to compare.
                    boolean ended = piece == last || (r[i].key & 255) == 0;
                    if (j - i > 1) (ended ? settled : next).push_back({i, j});
                }
            }
            open.swap(next);
        }
        open.swap(settled);
    }
    return true;
}

UInt4 drawnext(UInt4 x) { return ((3433 * x & 0x7FFFFFFF) + ((x << 16) & 0x7FFFFFFF)) & 0x7FFFFFFF; }

// The state after `draws` draws: a draw multiplies by 3433 + 65536 modulo 2 to the 31.
void skipdraws(std::uint64_t draws) {
    std::uint64_t factor = 3433 + 65536, x = sortseed;
    for (; draws; draws >>= 1, factor = factor * factor & 0x7FFFFFFF)
        if (draws & 1) x = x * factor & 0x7FFFFFFF;
    sortseed = UInt4(x);
}

// Drawn some ahead of their use, so that the records are on their way from memory when they are swapped.
void shuffle(rankrecord* a, Int4 first, Int4 last) {
    constexpr Int4 batch = 64;
    Int4 at[2 * batch], n = last - first + 1, range = last - first;
    UInt4 x = sortseed;
    for (Int4 done = 0; done < n; done += batch) {
        Int4 m = std::min(batch, n - done);
        for (Int4 i = 0; i < 2 * m; i++) {
            x = drawnext(x);
            Int4 place = first + Int4(x / 2147483646.0 * range + 0.5);
            at[i] = std::min(place, last) - first;
            __builtin_prefetch(a + at[i], 1);
        }
        for (Int4 i = 0; i < m; i++) std::swap(a[at[2 * i]], a[at[2 * i + 1]]);
    }
    sortseed = x;
}

struct range { Int4 lo, hi; };

// The swaps of a partition while its two ends are far apart: the k-th record from the left that isn't below the pivot
// changes places with the k-th from the right that isn't above it. The places are found a block at a time without a
// branch on the data. i and j are left where the plain scan goes on: everything outside has been dealt with.
void swapblocks(rankrecord* a, UInt4 pivot, Int4& i, Int4& j) {
    constexpr Int4 size = 64;
    UByte left[size], right[size];
    Int4 nl = 0, nr = 0, l = 0, r = 0;        // places found in each block, and how many of them are used up
    Int4 from = i, to = j;                    // the blocks begin here and run towards each other
    boolean haveleft = false, haveright = false;
    while ((haveleft && haveright) || to - from + 1 >= 2 * size) {
        if (!haveleft) {
            nl = l = 0;
            for (Int4 k = 0; k < size; k++) {
                left[nl] = UByte(k);
                nl += a[from + k].rank >= pivot;
            }
        }
        if (!haveright) {
            nr = r = 0;
            for (Int4 k = 0; k < size; k++) {
                right[nr] = UByte(k);
                nr += a[to - k].rank <= pivot;
            }
        }
        for (; l < nl && r < nr; l++, r++) std::swap(a[from + left[l]], a[to - right[r]]);
        haveleft = l < nl;
        haveright = r < nr;
        from += haveleft ? 0 : size;
        to -= haveright ? 0 : size;
    }
    i = haveleft ? from + left[l] : from;
    j = haveright ? to - right[r] : to;
}

// Puts the pivot of [lo, hi] in place and gives the two parts that are left, the left one first.
void partition(rankrecord* a, Int4 lo, Int4 hi, range (&part)[2]) {
    UInt4 pivot = a[hi].rank;
    Int4 i = lo, j = hi - 1;
    swapblocks(a, pivot, i, j);
    while (true) {
        while (i < hi && a[i].rank < pivot) i++;
        while (j > i && a[j].rank > pivot) j--;
        if (i >= j) break;
        std::swap(a[i++], a[j--]);
    }
    if (i < hi && a[i].rank == pivot) {
        Int4 k = i + 1;
        while (k < hi && a[k].rank == pivot) k++;
        if (k < hi) std::swap(a[k], a[hi]);
        part[1] = {k + 1, hi};
        hi = i - 1;
        while (hi > lo && a[hi].rank == pivot) hi--;
        part[0] = {lo, hi};
    } else {
        if (i != hi) std::swap(a[i], a[hi]);
        part[0] = {lo, i - 1};
        part[1] = {i + 1, hi};
    }
}

// Which ranks are shared. A range without such has only one order: its records go straight to their places.
struct sharedranks {
    static constexpr Int4 largest = 1024;
    std::vector<std::uint64_t> bits;
    Int4 most = 0;                         // ranges longer than this are hardly ever without: they aren't looked at
    // n ranks, `tied` of the records sharing theirs with others.
    void start(Int4 n, Int4 tied) {
        most = tied > n / 8 ? 0 : std::clamp(n / (tied + 1) / 2, 8, largest);
        if (most) bits.assign(std::size_t(n) / 64 + 1, 0);
    }
    void add(UInt4 rank) { bits[rank / 64] |= std::uint64_t(1) << rank % 64; }
    boolean has(UInt4 rank) const { return bits[rank / 64] >> rank % 64 & 1; }
};

// Puts records lo to hi in place if no rank among them is shared.
boolean placed(rankrecord* a, Int4 lo, Int4 hi, const sharedranks& shared) {
    rankrecord out[sharedranks::largest];
    Int4 n = hi - lo + 1;
    if (n > shared.most) return false;
    for (Int4 i = lo; i <= hi; i++) {
        if (shared.has(a[i].rank)) return false;
        out[a[i].rank - UInt4(lo)] = a[i];
    }
    std::copy(out, out + n, a + lo);
    return true;
}

boolean quicksort(rankrecord* a, Int4 lo, Int4 hi, const sharedranks& shared) {
    while (lo < hi && !placed(a, lo, hi, shared)) {
        if (tick()) return false;
        range part[2];
        partition(a, lo, hi, part);
        Int4 small = part[0].hi - part[0].lo < part[1].hi - part[1].lo ? 0 : 1;
        if (!quicksort(a, part[small].lo, part[small].hi, shared)) return false;
        lo = part[1 - small].lo;
        hi = part[1 - small].hi;
    }
    return true;
}

enum rundirection { run_same, run_up, run_down, run_mixed };

// How neighbours compare. Data in no order tell so after a few.
struct neighbours {
    rundirection found = run_same;
    boolean add(Int4 c) {
        rundirection now = c < 0 ? run_up : c > 0 ? run_down : found;
        if (found == run_same) found = now;
        if (found != now) found = run_mixed;
        return found != run_mixed;
    }
};

rundirection numberdirection(Int4 first, Int4 last, Int4 var) {
    constexpr Int4 block = 1024;
    Double values[block + 1];
    neighbours seen;
    for (Int4 from = first; from < last; from += block) {
        Int4 n = std::min(block, last - from) + 1;
        getcolumn(var, from, n, values);
        for (Int4 i = 1; i < n; i++)
            if (values[i - 1] != values[i] && !seen.add(values[i - 1] < values[i] ? -1 : 1)) return run_mixed;
    }
    return seen.found;
}

rundirection direction(Int4 first, Int4 last, const Int4* vars, Int4 nvars) {
    if (nvars == 1 && !isstring(vars[0])) return numberdirection(first, last, vars[0]);
    neighbours seen;
    for (Int4 obs = first; obs < last; obs++)
        if (!seen.add(cmpobs(obs, obs + 1, vars, nvars))) return run_mixed;
    return seen.found;
}

// The order among ties, of which there are some: observations first to first + n - 1, whose ranks and rows stand in a,
// as the shuffle and the quicksort leave them. False on a break.
boolean settleties(rankrecord* a, Int4 first, Int4 n, const sharedranks& shared) {
    shuffle(a, first, first + n - 1);
    if (!quicksort(a, 0, n - 1, shared)) return false;
    for (Int4 i = 0; i < n; i++) obsptrs[first - 1 + i] = a[i].row;
    return true;
}

// Puts observations first to first + n - 1 in the order that the sorted records and their ties define. False on Break.
boolean settle(keyrecord* r, Int4 first, Int4 n, const std::vector<span>& ties) {
    UInt4* ptrs = obsptrs + first - 1;
    if (ties.empty()) {
        for (Int4 i = 0; i < n; i++) r[i].work = ptrs[r[i].obs - first];
        for (Int4 i = 0; i < n; i++) ptrs[i] = r[i].work;
        skipdraws(2 * std::uint64_t(n));
        return true;
    }
    Int4 tied = 0;
    for (span s : ties) tied += s.hi - s.lo;
    sharedranks shared;
    shared.start(n, tied);
    // Ranks by observation, in the records' spare places.
    for (Int4 i = 0; i < n; i++) r[r[i].obs - first].work = UInt4(i);
    for (span s : ties) {
        for (Int4 i = s.lo; i < s.hi; i++) r[r[i].obs - first].work = UInt4(s.lo);
        if (shared.most) shared.add(UInt4(s.lo));
    }
    // The keys have done their work; a rank is read before its place is written over, by bytes, as the types differ.
    rankrecord* a = reinterpret_cast<rankrecord*>(r);
    for (Int4 i = 0; i < n; i++) {
        rankrecord x{0, ptrs[i]};
        std::memcpy(&x.rank, reinterpret_cast<UByte*>(r + i) + offsetof(keyrecord, work), sizeof x.rank);
        std::memcpy(static_cast<void*>(a + i), &x, sizeof x);
    }
    return settleties(a, first, n, shared);
}

// ---- Integers of a small range: their ranks are counted.

// An integer variable's values less the least one; missing comes as one more than the greatest. Their number, or 0 when
// they are too far apart for counting.
struct integerrange {
    Int4 var;
    Double least = missing, greatest = -missing;
    template <class F> void each(Int4 first, Int4 n, F use) const {
        constexpr Int4 block = 1024;
        Double values[block];
        for (Int4 from = 0; from < n; from += block) {
            Int4 m = std::min(block, n - from);
            getcolumn(var, first + from, m, values);
            for (Int4 i = 0; i < m; i++) use(from + i, values[i]);
        }
    }
    std::size_t slot(Double v) const { return std::size_t(v == missing ? greatest - least + 1 : v - least); }
    std::size_t slots(Int4 first, Int4 n) {
        each(first, n, [this](Int4, Double v) {
            if (v == missing) return;
            least = std::min(least, v);
            greatest = std::max(greatest, v);
        });
        Double count = greatest < least ? 1 : greatest - least + 2;
        return count <= 2.0 * n ? std::size_t(count) : 0;
    }
};

// Where the observations of each value begin, by slot; empty when they can't be counted.
workspace countstarts(integerrange& range, Int4 first, Int4 n, std::size_t& slots) {
    boolean integers = typ[range.var - 1] >= typebyte && typ[range.var - 1] <= typelong;
    slots = integers ? range.slots(first, n) : 0;
    workspace counts(slots ? (slots + 1) * sizeof(UInt4) : 0);
    UInt4* start = counts.get<UInt4>();
    if (!start) slots = 0;
    if (!slots) return counts;
    std::fill(start, start + slots + 1, 0u);
    range.each(first, n, [&](Int4, Double v) { start[range.slot(v) + 1]++; });
    for (std::size_t k = 1; k <= slots; k++) start[k] += start[k - 1];
    return counts;
}

// Sorts by one such variable. 0, 1, 909; -1 when it isn't one.
Int4 sortcounted(Int4 first, Int4 n, Int4 var) {
    integerrange range{var};
    std::size_t slots;
    workspace counts = countstarts(range, first, n, slots), records(std::size_t(n) * sizeof(rankrecord));
    if (!slots) return -1;
    rankrecord* a = records.get<rankrecord>();
    const UInt4 *start = counts.get<UInt4>(), *ptrs = obsptrs + first - 1;
    if (!a) return 909;
    srt[0] = 0;
    range.each(first, n, [&](Int4 i, Double v) { a[i] = {start[range.slot(v)], ptrs[i]}; });
    UInt4 tied = 0;
    for (std::size_t k = 0; k < slots; k++)
        if (UInt4 count = start[k + 1] - start[k]; count > 1) tied += count;
    sharedranks shared;
    shared.start(n, Int4(tied));
    for (std::size_t k = 0; shared.most && k < slots; k++)
        if (start[k + 1] - start[k] > 1) shared.add(start[k]);
    if (tied) return settleties(a, first, n, shared) ? 0 : 1;
    for (Int4 i = 0; i < n; i++) obsptrs[first - 1 + a[i].rank] = a[i].row;
    skipdraws(2 * std::uint64_t(n));
    return 0;
}

// The records in the order of the first key when that can be counted; its ties are the open runs.
boolean countfirst(keyrecord* r, Int4 first, Int4 n, Int4 var, std::vector<span>& open) {
    integerrange range{var};
    std::size_t slots;
    workspace counts = countstarts(range, first, n, slots);
    UInt4* start = counts.get<UInt4>();
    if (!slots) return false;
    range.each(first, n, [&](Int4 i, Double v) { r[start[range.slot(v)]++] = {0, first + i, 0}; });
    for (std::size_t k = 0, from = 0; k < slots; from = start[k++])      // each now stands where its run ends
        if (start[k] - from > 1) open.push_back({Int4(from), Int4(start[k])});
    return true;
}

Int4 sortmixed(Int4 first, Int4 n, const Int4* vars, Int4 nvars) {
    if (nvars == 1)
        if (Int4 rc = sortcounted(first, n, vars[0]); rc >= 0) return rc;
    workspace records(std::size_t(n) * sizeof(keyrecord));
    keyrecord* r = records.get<keyrecord>();
    if (!r) return 909;
    srt[0] = 0;
    std::vector<span> open;
    if (nvars > 1 && countfirst(r, first, n, vars[0], open)) {
        vars++;
        nvars--;
    } else {
        for (Int4 i = 0; i < n; i++) r[i] = {0, first + i, 0};
        open.push_back({0, n});
    }
    return sortpieces(r, vars, nvars, open) && settle(r, first, n, open) ? 0 : 1;
}

// Sorts a run of at least two observations. 0, 1, 909; `untouched` when all are equal.
Int4 sortrun(Int4 first, Int4 last, const Int4* vars, Int4 nvars, boolean& untouched) {
    rundirection d = direction(first, last, vars, nvars);
    untouched = d == run_same;
    if (untouched) return 0;
    if (d == run_mixed) return sortmixed(first, last - first + 1, vars, nvars);
    srt[0] = 0;
    if (d == run_down)
        for (Int4 a = first, b = last; a < b;) swapobs(a++, b--);
    return 0;
}

Int4 cmpstrings(const UByte* a, const UByte* b, std::size_t size) {
    for (std::size_t i = 0; i < size; i++) {
        if (a[i] != b[i]) return a[i] < b[i] ? -1 : 1;
        if (a[i] == 0) break;
    }
    return 0;
}

Int4 cmpcells(Int4 a, Int4 b, Int4 var) {
    UByte type = typ[var - 1];
    if (isstringtype(type)) return cmpstrings(cellptr(var, a), cellptr(var, b), type);
    Double x = getobs(var, a), y = getobs(var, b);
    return x < y ? -1 : x > y;
}

}  // namespace

Int4 cmpobs(Int4 a, Int4 b, const Int4* vars, Int4 n) {
    for (Int4 i = 0; i < n; i++)
        if (Int4 c = cmpcells(a, b, vars[i])) return c;
    return 0;
}

boolean samegroup(Int4 a, Int4 b, const UInt2* vars, Int4 n) {
    for (Int4 i = 0; i < n; i++)
        if (cmpcells(a, b, vars[i])) return false;
    return true;
}

Int4 sortdata(Int4 first, Int4 last, const Int4* vars, Int4 n) {
    if (n == 0) return 0;
    boolean untouched = true;
    if (first < last)
        if (Int4 rc = sortrun(first, last, vars, n, untouched)) return rc;
    if (first == 1 && last == nobs) {
        for (Int4 i = 0; i < n; i++) srt[i] = UInt2(vars[i]);
        srt[n] = 0;
    }
    return 0;
}

Int4 sortlist(Int4* list, Int4 n, Int4 var) {
    if (n < 2) return 0;
    workspace records(std::size_t(n) * sizeof(keyrecord));
    keyrecord* r = records.get<keyrecord>();
    if (!r) return 909;
    for (Int4 i = 0; i < n; i++) r[i] = {0, list[i], 0};
    std::vector<span> open{{0, n}};
    if (!sortpieces(r, &var, 1, open)) return 1;
    for (Int4 i = 0; i < n; i++) list[i] = r[i].obs;
    return 0;
}

namespace {

// A place outside the data, or one that two observations claim, ends the work: what stands then is a valid order.
void orderbyindex(Int4 var) {
    for (Int4 i = 1; i <= nobs; i++) {
        for (Int4 to = getlong(var, i); to != i; to = getlong(var, i)) {
            if (to < 1 || to > nobs || getlong(var, to) == to) return;
            swapobs(i, to);
        }
    }
}

}  // namespace

Int4 sortbyindex(Int4 var, const Int4* vars, Int4 n) {
    if (typ[var - 1] == typelong) orderbyindex(var);
    std::vector<Int4> keys(vars, vars + n);
    keys.push_back(var);
    if (Int4 rc = nobs ? sortdata(1, nobs, keys.data(), n + 1) : 0) return rc;
    srt[n] = 0;
    return 0;
}

}  // namespace velmo
