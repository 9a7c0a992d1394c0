// Types and constants that every floor shares: the sized integers, the storage types of variables, the
// missing values and the exponent that the store rules are written in.
#pragma once
#include <bit>
#include <cstddef>
#include <cstdint>

namespace velmo {

using Int4 = std::int32_t;
using UInt4 = std::uint32_t;
using Int2 = std::int16_t;
using UInt2 = std::uint16_t;
using SByte = std::int8_t;
using UByte = std::uint8_t;
using Pint = std::intptr_t;
using UPint = std::uintptr_t;
using Filepos = std::int64_t;
using Double = double;
using Float = float;
using boolean = bool;

// The missing value of expressions and of double cells, 2^1023; greater than every other number.
inline constexpr Double missing = 0x1p1023;
// The missing value as float, long, int and byte cells store it.
inline constexpr Float floatmissing = 0x1p127F;
inline constexpr Int4 longmissing = 2147483647;
inline constexpr Int2 intmissing = 32767;
inline constexpr SByte bytemissing = 127;

// Storage types of variables; 1 to maxstrtype are str1 to str244, 245 to 250 are unused.
inline constexpr UByte typebyte = 251, typeint = 252, typelong = 253, typefloat = 254, typedouble = 255;
inline constexpr UByte maxstrtype = 244;

inline constexpr boolean isstringtype(UByte type) { return type < 245; }

// Bytes that one cell of storage type `type` takes.
inline constexpr Int4 varsize(UByte type) {
    constexpr UByte size[5] = {1, 2, 4, 4, 8};
    return type >= typebyte ? size[type - typebyte] : type;
}

// The unbiased binary exponent of x as its IEEE field gives it: -1023 for zero, 1024 for infinities and NaN.
inline Int4 exponent(Double x) { return Int4((std::bit_cast<std::uint64_t>(x) >> 52) & 0x7FF) - 1023; }

inline constexpr Int4 namelen = 32;        // longest name, in bytes
inline constexpr Int4 namesize = 33;       // a name's field, with its zero
inline constexpr Int4 fmtsize = 12;        // a display format's field, with its zero
inline constexpr Int4 pathsize = 4096;     // a file or directory name's field, with its zero
inline constexpr Int4 tokensize = 504;     // a token's field, with its zero

}  // namespace velmo
