// Any bytes as the dataset file that is merged with, or appended to, a small dataset: the dataset is as it was, or whole
// with what came.
#include "core/room.h"
#include "data/cells.h"
#include "session.h"

using namespace velmo;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static constexpr const char* ways[] = {"merge using fuzz, update", "merge id using fuzz, nokeep",
                                           "merge id x using fuzz, update replace", "append using fuzz"};
    startsession();
    writefile("fuzz.dta", {reinterpret_cast<const char*>(data), size});
    for (const char* line : {"drop _all", "label drop _all", "set obs 4", "generate byte id = _n", "generate x = 2 - _n",
                             "generate byte big = 1", "generate byte v_1 = 2", "generate str1 s = \"m\"", "sort id x"})
        if (obey(line)) std::abort();
    Int4 vars = nvar;
    Int4 rc = obey(ways[size % 4]);
    if (memory_check() || visnvar != nvar) std::abort();
    if (rc && (nvar != vars || nobs != 4 || srt[0] != 1)) std::abort();
    if (!rc && (nobs < 4 || nvar < vars || srt[0])) std::abort();
    for (Int4 obs = 1; obs <= 4; obs++)
        if (getobs(1, obs) != obs) std::abort();      // a key of memory's own observations never changes
    obey("quietly list");
    return 0;
}
