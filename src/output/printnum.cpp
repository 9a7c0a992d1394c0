#include "output/formats.h"
#include "output/print.h"

namespace velmo {

Int4 prtnum(const char* fmt, Double value) {
    Int4 n = fmtnum(fmt, value);
    return prt({dbuf, std::size_t(n)});
}

Int4 prtnumber(const char* fmt, Double value) {
    printing as(out_result);
    return prtnum(fmt, value);
}

}  // namespace velmo
