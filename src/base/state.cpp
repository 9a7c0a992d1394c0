#include "base/state.h"

namespace velmo {

Int4 maxvar = 5000;
Int4 matsize = 400;
Int4 conslen = 5000 * 33 + 216;
Int4 macrolen = 5000 * 33 + 200;
Int2 version = 700;
Int2 callerversion = 0;
UByte execflag = 1;
UByte quietlevel = 0;
UByte savedquiet = 0;
Int4 batchmode = 0;
Int4 lastrc = 0;
Int4 rcvalue = 0;
UByte rmsg = 0;
UByte tracing = 0;
UByte inprogram = 0;

void setlengths(Int4 newmaxvar) {
    maxvar = newmaxvar;
    conslen = maxvar * 33 + 216;
    macrolen = maxvar * 33 + 200;
}

}  // namespace velmo
