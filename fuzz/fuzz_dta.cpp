// Any bytes as a dataset file, read in a way that their number chooses: what was read must come back from what save
// writes of it.
#include "core/room.h"
#include "data/cells.h"
#include "data/labels.h"
#include "session.h"

using namespace velmo;

static std::string table() {
    std::string out = datalabel;
    for (Int4 v = 1; v <= nvar; v++) {
        out += std::string(varlist[v - 1]) + fmt[v - 1] + lbl[v - 1] + getvarlabel(varlist[v - 1]) + char(typ[v - 1]);
        for (Int4 obs = 1; obs <= nobs; obs++)
            out.append(reinterpret_cast<char*>(cellptr(v, obs)), std::size_t(varsize(typ[v - 1])));
    }
    for (const UInt2* key = srt; *key; key++) out += char(*key);
    return out;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static constexpr const char* reads[] = {"use fuzz, clear",
                                            "describe using fuzz, detail",
                                            "use if _n != 2 in 1/l using fuzz, clear",
                                            "use *d in 2/3 using fuzz, clear nolabel"};
    startsession();
    writefile("fuzz.dta", {reinterpret_cast<const char*>(data), size});
    obey(reads[size % 4]);
    if (memory_check() || visnvar != nvar || datachanged) std::abort();
    if (lastrc || nvar == 0) return 0;
    std::string before = table();
    if (obey("save again, replace all") || obey("use again, clear") || table() != before) std::abort();
    obey("quietly list in 1");
    obey("quietly label list");
    obey("quietly sort _all");
    cleardata(false);
    return 0;
}
