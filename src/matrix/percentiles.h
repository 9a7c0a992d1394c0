// Percentiles of n values in a buffer, by the definition of summarize, detail: of sorted values without weights, and
// with them. Also the sorts that bring a buffer in order.
#pragma once
#include "base/types.h"

namespace velmo {

// Ascending; no value is missing. The second takes each value's weight along.
void sortvalues(Double* x, Int4 n);
// work: 16 bytes a value, aligned to 8.
void sortweighted(Double* x, Double* w, Int4 n, void* work);

// The p-th percentile, 0 < p < scale, where the whole is `scale`; missing of no values.
Double percentile(const Double* x, Int4 n, Double p, Double scale = 100);
// The other definition: interpolated between the order statistics about (n + 1) p.
Double altpercentile(const Double* x, Int4 n, Double p, Double scale = 100);
// The same of several p, ascending, with weights that are all positive and sum to `total`.
void weightedpercentiles(const Double* x, const Double* w, Int4 n, Double total, const Double* p, Int4 count,
                         Double* out);

}  // namespace velmo
