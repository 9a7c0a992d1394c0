// The generators' states, for set seed and set seed0, and their draws. The main one combines a congruential, a
// shift-register and two multiply-with-carry generators (Marsaglia's scheme), period about 2^125.
#pragma once
#include "base/types.h"

namespace velmo {

Double uniformdraw();          // in [0, 1)
Double uniform0draw();         // the older generator
void setseed(Double n);        // |n| mod 2^32; any other than 123456789 also discards 100 draws
void setseed0(Double n);       // 0 is 1001; else |n| with the low bit set
Double presentseed();          // as given last

}  // namespace velmo
