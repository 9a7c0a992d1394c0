// Any bytes as delimited text, under options that the first byte chooses: what was read must come back from what
// outsheet writes of it.
#include "core/room.h"
#include "data/cells.h"
#include "session.h"

using namespace velmo;

static std::string table() {
    std::string out;
    for (Int4 v = 1; v <= nvar; v++)
        for (Int4 obs = 1; obs <= nobs; obs++) {
            out += isstring(v) ? std::string(strcell(v, obs)) : std::to_string(getobs(v, obs) + 0.0);      // integers have no -0
            out += '\n';
        }
    return out;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static constexpr const char* options[] = {"",        "comma",               "tab",           "names",
                                              "nonames", "delimiter(;) double", "comma nonames", "double"};
    if (size == 0) return 0;
    startsession();
    writefile("fuzz.raw", {reinterpret_cast<const char*>(data) + 1, size - 1});
    obey((std::string("insheet using fuzz, clear ") + options[data[0] % 8]).c_str());
    if (memory_check() || visnvar != nvar) std::abort();
    if (lastrc || nobs == 0) return 0;
    std::string before = table();
    obey("compress");
    obey("quietly describe");
    obey("quietly list in 1");
    if (lastrc || table() != before) std::abort();
    return 0;
}
