#include "matrix/tiles.h"
#include <algorithm>

namespace velmo {

// ---- The kernels, written for four lanes, which a register holds where the processor has AVX2; elsewhere the compiler
// makes two of two. Each element is a sum of its own in the order of the rows, so that no bit depends on which it is.

namespace {

using quad = Double __attribute__((vector_size(32)));
using quadat = Double __attribute__((vector_size(32), aligned(8), may_alias));

[[gnu::always_inline]] inline const quadat& quadin(const Double* p) { return *reinterpret_cast<const quadat*>(p); }
[[gnu::always_inline]] inline quadat& quadin(Double* p) { return *reinterpret_cast<quadat*>(p); }

// Sums over rows of a(i) b(j) for four i and four j.
[[gnu::always_inline]] inline void addtile(const Double* a, const Double* b, Int4 n, std::size_t width, Double* sums) {
    quad s0 = quadin(sums), s1 = quadin(sums + 4), s2 = quadin(sums + 8), s3 = quadin(sums + 12);
    for (Int4 r = 0; r < n; r++, a += width, b += width) {
        quad row = quadin(b);
        s0 += a[0] * row;
        s1 += a[1] * row;
        s2 += a[2] * row;
        s3 += a[3] * row;
    }
    quadin(sums) = s0;
    quadin(sums + 4) = s1;
    quadin(sums + 8) = s2;
    quadin(sums + 12) = s3;
}

[[gnu::always_inline]] inline void addtiles(const Double* a, const Double* b, Int4 n, std::size_t width, Double* sums) {
    for (std::size_t i = 0; i < width; i += 4)
        for (std::size_t j = 0; j <= i; j += 4, sums += 16) addtile(a + i, b + j, n, width, sums);
}

// Rows times t.
[[gnu::always_inline]] inline void scalerows(const Double* x, const Double* t, Int4 n, std::size_t width, Double* to) {
    for (Int4 r = 0; r < n; r++)
        for (std::size_t j = 0; j < width; j += 4, x += 4, to += 4) quadin(to) = t[r] * quadin(x);
}

// Sums of columns times t.
[[gnu::always_inline]] inline void sumrows(const Double* x, const Double* t, Int4 n, std::size_t width, Double* to) {
    for (std::size_t j = 0; j < width; j += 4) {
        quad sum = quadin(to + j);
        const Double* row = x + j;
        for (Int4 r = 0; r < n; r++, row += width) sum += t[r] * quadin(row);
        quadin(to + j) = sum;
    }
}

// The same three for the processor at hand.
using tilekernel = void(const Double*, const Double*, Int4, std::size_t, Double*);
struct tilekernels { tilekernel *addtiles, *scalerows, *sumrows; };

#define TILEKERNELS(name, target)                                                                                      \
    struct name {                                                                                                      \
        target static void tiles(const Double* a, const Double* b, Int4 n, std::size_t w, Double* to) {               \
            addtiles(a, b, n, w, to);                                                                                  \
        }                                                                                                              \
        target static void scale(const Double* x, const Double* t, Int4 n, std::size_t w, Double* to) {               \
            scalerows(x, t, n, w, to);                                                                                 \
        }                                                                                                              \
        target static void sum(const Double* x, const Double* t, Int4 n, std::size_t w, Double* to) {                 \
            sumrows(x, t, n, w, to);                                                                                   \
        }                                                                                                              \
        static constexpr tilekernels all = {tiles, scale, sum};                                                        \
    };

TILEKERNELS(plainkernels, )
#if defined(__x86_64__)
TILEKERNELS(avx2kernels, [[gnu::target("avx2")]])
const tilekernels& kernels() {
    static const tilekernels& best = __builtin_cpu_supports("avx2") ? avx2kernels::all : plainkernels::all;
    return best;
}
#else
const tilekernels& kernels() { return plainkernels::all; }
#endif

}  // namespace

// ---- The sums.

tiles::tiles(Int4 wide, Int4 step)
    : count(std::size_t(wide) / 4), width(std::size_t(wide)), sums(count * (count + 1) / 2 * 16 * sizeof(Double)),
      weighted(std::size_t(step) * width * sizeof(Double)) {
    if (sums.p) std::fill_n(sums.get<Double>(), count * (count + 1) / 2 * 16, 0.0);
}

void tiles::add(const Double* x, const Double* weight, Int4 n, boolean withcolumn) {
    Double* wx = weighted.get<Double>();
    if (weight) kernels().scalerows(x, weight, n, width, wx);
    const Double *a = weight && !withcolumn ? wx : x, *b = weight && withcolumn ? wx : x;
    kernels().addtiles(a, b, n, width, sums.get<Double>());
}

void addcolumns(const Double* x, const Double* t, Int4 n, Int4 width, Double* to) {
    kernels().sumrows(x, t, n, std::size_t(width), to);
}

}  // namespace velmo
