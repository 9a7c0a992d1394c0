#include "matrix/random.h"
#include <cmath>

namespace velmo {

namespace {

constexpr UInt4 firstx = 123456789, firsty = 521288629, firstz = 362436069, firstw = 2262615;
UInt4 x = firstx, y = firsty, z = firstz, w = firstw;
UInt4 old = 1001;
Double given = firstx;

// |n| mod 2^32.
UInt4 whole(Double n) { return UInt4(std::fmod(std::floor(std::fabs(n)), 4294967296.0)); }

}  // namespace

Double uniformdraw() {
    x = 69069 * x + 1234567;
    y ^= y << 13;
    y ^= y >> 17;
    y ^= y << 5;
    z = 65184 * (z & 65535) + (z >> 16);
    w = 63663 * (w & 65535) + (w >> 16);
    return ((w << 16) + z + y + x) / 4294967296.0;
}

Double uniform0draw() {
    old = ((3533 * old & 0x7FFFFFFF) + ((old << 16) & 0x7FFFFFFF)) & 0x7FFFFFFF;
    return old / 2147483648.0;
}

void setseed(Double n) {
    given = n;
    x = whole(n);
    y = firsty;
    z = firstz;
    w = firstw;
    if (x == firstx) return;
    for (Int4 i = 0; i < 100; i++) uniformdraw();
}

void setseed0(Double n) { old = n == 0 ? 1001 : (whole(n) | 1) & 0x7FFFFFFF; }

Double presentseed() { return given; }

}  // namespace velmo
