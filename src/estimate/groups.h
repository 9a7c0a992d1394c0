// Groups of a drawn sample, and statistics of each, without sorting the data. Groups are numbered from 0 in the order
// of their values as the sort has it: missing last, strings bytewise, the first variable leading.
#pragma once
#include <string_view>
#include <vector>
#include "estimate/sample.h"

namespace velmo {

struct grouping {
    Int4 n = 0, groups = 0;
    workspace code{0};                    // of each observation of the sample
    const UInt4* codes() const { return code.get<UInt4>(); }
};
// Groups the sample by its sources from number `from` on, whose buffers are used up; without any it is one group.
// Empty, it has none. 0, 1 on a Break, 909 (printed).
Int4 groupsample(const drawnsample& s, const std::vector<source>& sources, std::size_t from, grouping& g);

// The observation that stands first in each group, and how many there are. 0 or 909 (printed).
Int4 groupfirsts(const drawnsample& s, const grouping& g, workspace& first, workspace& count);

// ---- Statistics.

enum groupstat : UByte {
    stat_count, stat_sum, stat_rawsum, stat_mean, stat_sd, stat_variance, stat_skewness, stat_kurtosis, stat_min,
    stat_max, stat_percentile, stat_iqr, stat_first, stat_last, stat_firstnm, stat_lastnm,
};
// What a statistic is asked of and what comes out: a value of each group, or the observation (0 none) whose cell is the
// result.
struct groupresult {
    groupstat stat;
    Double p = 50;               // of a percentile
    Int4 from = -1;              // the number of its source in the sample; -1: count of observations
    workspace out{0};            // Double values, or Int4 observations where iscell(stat)
    const Double* values() const { return out.get<Double>(); }
    const Int4* cells() const { return out.get<Int4>(); }
};
inline boolean iscell(groupstat s) { return s >= stat_first; }
// A statistic that strings have too.
inline boolean oftexts(groupstat s) { return s == stat_count || iscell(s); }
// Of its own type the statistic of a variable: an extreme, or one of its cells.
inline boolean isownvalue(groupstat s) { return s == stat_min || s == stat_max || iscell(s); }
// mean, sum, ..., median, p# with 0 < # < 100: false for another word.
boolean statnamed(std::string_view word, groupstat& stat, Double& p);

// The results over the groups: sums are compensated, and with the percentiles defined, as summarize has them for a
// group alone. 0, 1 on a Break, 909 (printed).
Int4 groupstatistics(const drawnsample& s, const std::vector<source>& sources, const grouping& g,
                     std::vector<groupresult>& results);

}  // namespace velmo
