// What sorting, grouping and percentiles share: cells as unsigned 64-bit keys whose order is the order wanted, and the
// sort of records that begin with one. A number is one key, a string one for every 8 bytes.
#pragma once
#include <algorithm>
#include <bit>
#include <cstring>
#include <utility>
#include "base/types.h"

namespace velmo {

inline constexpr std::uint64_t signbit64 = std::uint64_t(1) << 63;

// Doubles as unsigned numbers in the same order, -0 before 0; and back.
inline std::uint64_t toorderedbits(Double v) {
    std::uint64_t bits = std::bit_cast<std::uint64_t>(v);
    return bits & signbit64 ? ~bits : bits | signbit64;
}
// The same with one zero.
inline std::uint64_t orderedbits(Double v) { return toorderedbits(v + 0.0); }
inline Double fromorderedbits(std::uint64_t key) {
    return std::bit_cast<Double>(key & signbit64 ? key ^ signbit64 : ~key);
}

// Bytes 8*piece to 8*piece + 7 of a string cell as a big-endian number, with zeros behind the string's end. A string
// that ends within the piece has its lowest byte zero.
inline std::uint64_t stringpiece(const UByte* cell, Int4 size, Int4 piece) {
    constexpr std::uint64_t ones = 0x0101010101010101u;
    std::uint64_t word = 0;
    Int4 n = size - 8 * piece;
    if (n >= 8)
        std::memcpy(&word, cell + 8 * piece, 8);
    else
        for (Int4 i = n - 1; i >= 0; i--) word = word << 8 | cell[8 * piece + i];
    // The lowest byte that is zero, if any, has its highest bit set here; what stands above it goes.
    std::uint64_t zero = (word - ones) & ~word & ones << 7;
    if (zero) word &= (zero & -zero) / 128 - 1;
    return __builtin_bswap64(word);
}
inline Int4 stringpieces(UByte type) { return (type + 7) / 8; }

template <class R> void insertionsort(R* r, Int4 n) {
    for (Int4 i = 1; i < n; i++) {
        R x = r[i];
        Int4 j = i;
        for (; j > 0 && r[j - 1].key > x.key; j--) r[j] = r[j - 1];
        r[j] = x;
    }
}

// Sorts records by their key in place: buckets of equal width between the least and the greatest key, each sorted
// likewise. A pass leaves at most 1/buckets of the range, so the depth is small whatever the keys are. Where equal keys
// end up depends on the keys alone.
template <class R> void bucketsort(R* r, Int4 n) {
    if (n <= 24) return insertionsort(r, n);
    constexpr Int4 most = 2048;
    Int4 bits = n > 60000 ? 11 : n > 2000 ? 8 : 5;
    std::uint64_t least = r[0].key, greatest = r[0].key;
    for (Int4 i = 1; i < n; i++) {
        least = std::min(least, r[i].key);
        greatest = std::max(greatest, r[i].key);
    }
    if (least == greatest) return;
    Int4 shift = std::max(0, 64 - std::countl_zero(greatest - least) - bits);
    Int4 nbuckets = Int4((greatest - least) >> shift) + 1;
    Int4 next[most + 1], end[most + 1];
    std::fill(end, end + nbuckets, 0);
    for (Int4 i = 0; i < n; i++) end[(r[i].key - least) >> shift]++;
    for (Int4 b = 0, at = 0; b < nbuckets; b++) {
        next[b] = at;
        end[b] = at += end[b];
    }
    for (Int4 b = 0; b < nbuckets; b++) {
        while (next[b] < end[b]) {
            R x = r[next[b]];
            for (Int4 to = Int4((x.key - least) >> shift); to != b; to = Int4((x.key - least) >> shift))
                std::swap(x, r[next[to]++]);
            r[next[b]++] = x;
        }
    }
    if (shift == 0) return;
    for (Int4 b = 0, from = 0; b < nbuckets; from = end[b++])
        if (end[b] - from > 1) bucketsort(r + from, end[b] - from);
}

}  // namespace velmo
