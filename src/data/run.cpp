#include "data/run.h"

namespace velmo {

Int4 firstobs, lastobs;
Int4 groupfirst, grouplast;
UByte bymode;
UByte bylastgroup;
Int4 nby;
Int4 bydepth;
UByte by_active;
Int4 by_index = 0;
UByte by_last = 0;

}  // namespace velmo
