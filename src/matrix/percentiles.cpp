#include "matrix/percentiles.h"
#include <cmath>
#include "data/sortkeys.h"

namespace velmo {

namespace {

struct valuekey { std::uint64_t key; };
struct weightedkey { std::uint64_t key; Double weight; };

}  // namespace

// The buffer holds the keys meanwhile, by bytes, as the types differ.
void sortvalues(Double* x, Int4 n) {
    valuekey* r = reinterpret_cast<valuekey*>(x);
    for (Int4 i = 0; i < n; i++) {
        valuekey key{toorderedbits(x[i])};
        std::memcpy(static_cast<void*>(r + i), &key, sizeof key);
    }
    bucketsort(r, n);
    for (Int4 i = 0; i < n; i++) {
        Double v = fromorderedbits(r[i].key);
        std::memcpy(x + i, &v, sizeof v);
    }
}

void sortweighted(Double* x, Double* w, Int4 n, void* work) {
    weightedkey* r = static_cast<weightedkey*>(work);
    for (Int4 i = 0; i < n; i++) r[i] = {toorderedbits(x[i]), w[i]};
    bucketsort(r, n);
    for (Int4 i = 0; i < n; i++) {
        x[i] = fromorderedbits(r[i].key);
        w[i] = r[i].weight;
    }
}

Double percentile(const Double* x, Int4 n, Double p, Double scale) {
    auto value = [x, n](Int4 i) { return i >= 1 && i <= n ? x[i - 1] : missing; };
    if (n == 0) return missing;
    Double v = n * p, k = v / scale;
    if (std::floor(k + 0.5) * scale == v) return (value(Int4(k)) + value(Int4(k) + 1)) / 2;
    return value(Int4(k) + 1);
}

Double altpercentile(const Double* x, Int4 n, Double p, Double scale) {
    if (n == 0) return missing;
    Double v = (n + 1.0) * p, k = v / scale;
    Int4 i = Int4(k);
    if (std::floor(k + 0.5) * scale == v) return x[std::clamp(Int4(k + 0.5), 1, n) - 1];
    if (i < 1) return x[0];
    return i >= n ? x[n - 1] : x[i - 1] * (1 - (k - i)) + x[i] * (k - i);
}

// The cursor and the running weight persist from one percentile to the next.
void weightedpercentiles(const Double* x, const Double* w, Int4 n, Double total, const Double* p, Int4 count,
                         Double* out) {
    auto value = [x, n](Int4 i) { return i >= 1 && i <= n ? x[i - 1] : missing; };
    Double cum = 0, prev = 0, eps = 1e-7 * 100 * total;
    Int4 i = 0;
    for (Int4 k = 0; k < count; k++) {
        Double target = total * p[k];
        while (cum * 100 < target && i < n) {
            prev = cum;
            cum += w[i++];
        }
        Double candidate = value(i);
        if (cum * 100 >= target + eps) {
            if (target - eps < prev * 100 && i >= 2) candidate = (candidate + value(i - 1)) / 2;
        } else if ((target - eps >= prev * 100 || cum * 100 == target) && i < n) {
            candidate = (candidate + value(i + 1)) / 2;
        }
        out[k] = candidate;
    }
}

}  // namespace velmo
