// What the files of `regress` share.
#pragma once
#include <string>
#include "base/types.h"

namespace velmo {

struct regressshow {
    Int4 level = 95;
    std::string eform;               // the title of exponentials, with eformgiven
    boolean eformgiven = false, beta = false, plus = false, header = true;
    Int4 step = 0;                   // of a stepwise fit, 0 none
};
Int4 getregressshow(regressshow& o);             // 0, 198
// The last estimates of `regress`: 0, 1, 184, 301.
Int4 showregress(const regressshow& o);

}  // namespace velmo
