// Sixteen bytes of text at a time, for the readers and writers of numbers: where a field ends, whether its bytes make
// a plain decimal, the value of its digits, and the digits of a value. Branches on the data are what such loops lose
// their time by, so none of these has any. Two implementations: SSE2, which every x86-64 has, and plain loops for all
// other machines; both are always compiled where they can be, so that a test can compare them.
//
// Pointers need no alignment. A read may reach beyond the text: every routine says how far.
#pragma once
#include <cstring>
#include "base/types.h"
#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace velmo {

// Bit i stands for byte i of sixteen.
struct decimalbits { UInt4 digits, points; };

namespace plainbytes {

// The bytes among p[0..15] that are a, b, c or d.
inline UInt4 anyof(const char* p, char a, char b, char c, char d) {
    UInt4 bits = 0;
    for (Int4 i = 0; i < 16; i++) bits |= UInt4(p[i] == a || p[i] == b || p[i] == c || p[i] == d) << i;
    return bits;
}

// True when none of p[0..63] is a, b or c.
inline boolean noneof64(const char* p, char a, char b, char c) {
    for (Int4 i = 0; i < 64; i++)
        if (p[i] == a || p[i] == b || p[i] == c) return false;
    return true;
}

// The digits and points among p[0..15].
inline decimalbits decimals(const char* p) {
    decimalbits bits{0, 0};
    for (Int4 i = 0; i < 16; i++) {
        bits.digits |= UInt4(p[i] >= '0' && p[i] <= '9') << i;
        bits.points |= UInt4(p[i] == '.') << i;
    }
    return bits;
}

// The value of the last `digits` (1 to 15) digits ahead of `end`, a point standing ahead of the last `behind` of them
// or nowhere when behind is 16. Reads end[-17..-1].
inline std::uint64_t digitsvalue(const char* end, Int4 digits, Int4 behind) {
    std::uint64_t v = 0;
    for (Int4 i = digits; i > 0; i--) v = v * 10 + std::uint64_t(end[i > behind ? -i - 1 : -i] - '0');
    return v;
}

// The sixteen digits of v < 10^16 into out[0..15]; the bits of those that aren't 0 returned.
inline UInt4 putsixteen(char* out, std::uint64_t v) {
    UInt4 bits = 0;
    for (Int4 i = 15; i >= 0; i--, v /= 10) {
        out[i] = char('0' + v % 10);
        bits |= UInt4(v % 10 != 0) << i;
    }
    return bits;
}

}  // namespace plainbytes

#if defined(__SSE2__)
namespace vectorbytes {

inline __m128i load(const char* p) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p)); }
inline UInt4 bitsof(__m128i v) { return UInt4(_mm_movemask_epi8(v)); }

inline UInt4 anyof(const char* p, char a, char b, char c, char d) {
    __m128i v = load(p);
    __m128i ab = _mm_or_si128(_mm_cmpeq_epi8(v, _mm_set1_epi8(a)), _mm_cmpeq_epi8(v, _mm_set1_epi8(b)));
    __m128i cd = _mm_or_si128(_mm_cmpeq_epi8(v, _mm_set1_epi8(c)), _mm_cmpeq_epi8(v, _mm_set1_epi8(d)));
    return bitsof(_mm_or_si128(ab, cd));
}

inline boolean noneof64(const char* p, char a, char b, char c) {
    __m128i found = _mm_setzero_si128(), va = _mm_set1_epi8(a), vb = _mm_set1_epi8(b), vc = _mm_set1_epi8(c);
    for (Int4 i = 0; i < 64; i += 16) {
        __m128i v = load(p + i), ab = _mm_or_si128(_mm_cmpeq_epi8(v, va), _mm_cmpeq_epi8(v, vb));
        found = _mm_or_si128(found, _mm_or_si128(ab, _mm_cmpeq_epi8(v, vc)));
    }
    return bitsof(found) == 0;
}

inline decimalbits decimals(const char* p) {
    __m128i v = load(p);
    // Bytes compare as signed: moved so that '0' is the smallest value of all, one comparison finds the digits.
    __m128i moved = _mm_add_epi8(v, _mm_set1_epi8(char(-128 - '0')));
    return {bitsof(_mm_cmplt_epi8(moved, _mm_set1_epi8(-128 + 10))), bitsof(_mm_cmpeq_epi8(v, _mm_set1_epi8('.')))};
}

// All ones in the last n bytes of sixteen.
inline __m128i lastbytes(Int4 n) {
    static constexpr char slide[32] = {0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,
                                       -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1};
    return load(slide + n);
}

// Pairs of digits are joined, then pairs of pairs, and so on: four steps for sixteen digits.
inline std::uint64_t digitsvalue(const char* end, Int4 digits, Int4 behind) {
    __m128i fraction = lastbytes(behind);
    __m128i v = _mm_or_si128(_mm_and_si128(fraction, load(end - 16)), _mm_andnot_si128(fraction, load(end - 17)));
    v = _mm_and_si128(_mm_sub_epi8(v, _mm_set1_epi8('0')), lastbytes(digits));
    __m128i tens = _mm_mullo_epi16(_mm_and_si128(v, _mm_set1_epi16(255)), _mm_set1_epi16(10));
    __m128i twos = _mm_add_epi16(tens, _mm_srli_epi16(v, 8));
    __m128i fours = _mm_madd_epi16(twos, _mm_set1_epi32(100 | 1 << 16));
    __m128i words = _mm_packs_epi32(fours, fours);
    __m128i eights = _mm_madd_epi16(words, _mm_set1_epi32(10000 | 1 << 16));
    std::uint64_t both = std::uint64_t(_mm_cvtsi128_si64(eights));
    return (both & 0xFFFFFFFF) * 100000000 + (both >> 32);
}

// Eight digits as bytes 0..9 in the low half: 4 and 4, then 2 and 2, then one by one.
inline __m128i eightdigits(UInt4 v) {
    __m128i high = _mm_cvtsi32_si128(Int4(v / 10000)), low = _mm_cvtsi32_si128(Int4(v % 10000));
    __m128i fours = _mm_unpacklo_epi16(high, low);                                    // h l: words below 10000
    __m128i hundreds = _mm_srli_epi16(_mm_mulhi_epu16(fours, _mm_set1_epi16(5243)), 3);   // exact: 5243 / 2^19
    __m128i twos = _mm_unpacklo_epi16(hundreds, _mm_sub_epi16(fours, _mm_mullo_epi16(hundreds, _mm_set1_epi16(100))));
    __m128i tens = _mm_srli_epi16(_mm_mullo_epi16(twos, _mm_set1_epi16(103)), 10);        // exact below 100
    return _mm_packus_epi16(_mm_unpacklo_epi16(tens, _mm_sub_epi16(twos, _mm_mullo_epi16(tens, _mm_set1_epi16(10)))),
                            _mm_setzero_si128());
}

inline UInt4 putsixteen(char* out, std::uint64_t v) {
    __m128i digits = _mm_unpacklo_epi64(eightdigits(UInt4(v / 100000000)), eightdigits(UInt4(v % 100000000)));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(out), _mm_add_epi8(digits, _mm_set1_epi8('0')));
    return ~bitsof(_mm_cmpeq_epi8(digits, _mm_setzero_si128())) & 0xFFFF;
}

}  // namespace vectorbytes
namespace bytes = vectorbytes;
#else
namespace bytes = plainbytes;
#endif

// A text of n bytes (1 to 16) that is an optional sign and at most 15 digits with at most one point.
struct plaindecimal {
    UByte negative;
    UByte digits;       // 1 to 15; 0 when the text is no such number
    UByte behind;       // digits behind the point; 16 when there is no point
};

// Reads p[0..15].
inline plaindecimal plaindecimalof(const char* p, Int4 n) {
    decimalbits bits = bytes::decimals(p);
    UInt4 all = (1U << n) - 1, sign = UInt4(p[0] == '-') | UInt4(p[0] == '+');
    UInt4 digits = bits.digits & all, points = bits.points & all;
    Int4 count = n - Int4(sign) - Int4(points != 0);
    boolean fine = (digits | points | sign) == all && (points & (points - 1)) == 0 && digits && count <= 15;
    UByte behind = UByte(points ? n - 1 - std::countr_zero(points) : 16);
    return {UByte(p[0] == '-'), UByte(fine ? count : 0), behind};
}

// Powers of ten that a double holds exactly.
inline constexpr Double exacttens[23] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
                                         1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

// The value of a plain decimal that ends at `end`: digits and power of ten are exact in a double, so one division
// rounds correctly (Clinger 1990). Reads end[-17..-1].
inline Double plainvalue(const char* end, plaindecimal d) {
    Double v = Double(std::int64_t(bytes::digitsvalue(end, d.digits, d.behind))) / exacttens[d.behind & 15];
    return std::bit_cast<Double>(std::bit_cast<std::uint64_t>(v) | std::uint64_t(d.negative) << 63);
}

}  // namespace velmo
