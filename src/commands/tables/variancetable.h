// The analysis of variance behind a table of means by groups, and the comparisons of the groups.
#pragma once
#include "estimate/cellmeans.h"

namespace velmo {

struct varianceoptions {
    boolean table = false;
    boolean compares[ncomparisons] = {};
    boolean any() const { return table || compares[0] || compares[1] || compares[2]; }
};
varianceoptions getvarianceoptions(boolean table);
// Stores r(), prints. 0, 1.
Int4 showvariance(Int4 x, const celltable& t, const varianceoptions& o, boolean labels, boolean wrap);

}  // namespace velmo
