#include "matrix/tiles.h"
#include <algorithm>
#include "matrix/lanes.h"

namespace velmo {

namespace {

// Sums over rows of a(i) b(j) for four i and four j, each in the rows' order.
void addtile(const Double* a, const Double* b, Int4 n, std::size_t width, Double* sums) {
    pair2 s[4][2];
#pragma GCC unroll 4
    for (Int4 i = 0; i < 4; i++)
#pragma GCC unroll 2
        for (Int4 j = 0; j < 2; j++) s[i][j] = loadpair(sums + 4 * i + 2 * j);
    for (Int4 r = 0; r < n; r++, a += width, b += width) {
        pair2 b0 = loadpair(b), b1 = loadpair(b + 2);
#pragma GCC unroll 4
        for (Int4 i = 0; i < 4; i++) {
            pair2 t = {a[i], a[i]};
            s[i][0] += t * b0;
            s[i][1] += t * b1;
        }
    }
#pragma GCC unroll 4
    for (Int4 i = 0; i < 4; i++)
#pragma GCC unroll 2
        for (Int4 j = 0; j < 2; j++) storepair(sums + 4 * i + 2 * j, s[i][j]);
}

}  // namespace

tiles::tiles(Int4 wide, Int4 step)
    : count(std::size_t(wide) / 4), width(std::size_t(wide)), sums(count * (count + 1) / 2 * 16 * sizeof(Double)),
      weighted(std::size_t(step) * width * sizeof(Double)) {
    if (sums.p) std::fill_n(sums.get<Double>(), count * (count + 1) / 2 * 16, 0.0);
}

void tiles::add(const Double* x, const Double* weight, Int4 n, boolean withcolumn) {
    Double* wx = weighted.get<Double>();
    for (std::size_t r = 0; weight && r < std::size_t(n); r++) {
        pair2 w = {weight[r], weight[r]};
        for (std::size_t j = 0; j < width; j += 2) storepair(wx + r * width + j, w * loadpair(x + r * width + j));
    }
    const Double *a = weight && !withcolumn ? wx : x, *b = weight && withcolumn ? wx : x;
    Double* to = sums.get<Double>();
    for (std::size_t i = 0; i < count; i++)
        for (std::size_t j = 0; j <= i; j++, to += 16) addtile(a + 4 * i, b + 4 * j, n, width, to);
}

void addcolumns(const Double* x, const Double* t, Int4 n, Int4 width, Double* to) {
    for (Int4 j = 0; j < width; j += 4) {
        pair2 a = loadpair(to + j), b = loadpair(to + j + 2);
        const Double* row = x + j;
        for (Int4 r = 0; r < n; r++, row += width) {
            pair2 tt = {t[r], t[r]};
            a += tt * loadpair(row);
            b += tt * loadpair(row + 2);
        }
        storepair(to + j, a);
        storepair(to + j + 2, b);
    }
}

}  // namespace velmo
