// Perfect prediction: regressors of a binary outcome that decide it by themselves, so that no coefficient maximises the
// likelihood.
#pragma once
#include <string>
#include <vector>
#include "estimate/crossproducts.h"
#include "estimate/records.h"

namespace velmo {

// The sample's sources are the outcome, a regressor for each name, and maybe others. Regressors that decide the outcome
// leave, with the observations for which they do, each with a note and a rule. Values are compared in single precision.
// The rows of what is left are kept.
// 0, 1, 909; 2000: the outcome does not vary, or a regressor separates it completely. Printed.
Int4 dropperfect(estsample& s, std::vector<std::string>& names, std::vector<rulerecord>& rules);

// Whether the outcome varies, alone: 0, 2000 (printed).
Int4 checkvaries(const estsample& s);

}  // namespace velmo
