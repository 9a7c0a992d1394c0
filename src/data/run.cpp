#include "data/run.h"

namespace velmo {

Int4 firstobs, lastobs;
Int4 groupfirst, grouplast;
UByte bymode;
UByte bylastgroup;
UByte by_active;
Int4 by_index = 0;
UByte by_last = 0;

}  // namespace velmo
