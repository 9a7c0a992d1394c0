// Any bytes as a text file that infile or infix reads, by the first byte: as a dictionary with its data behind it, in
// free form, or in columns. Whatever comes, the dataset is whole afterwards, and what was read can be written.
#include "core/room.h"
#include "data/cells.h"
#include "session.h"

using namespace velmo;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static constexpr const char* commands[] = {
        "infile using fuzz.raw, clear",
        "infix using fuzz.raw, clear",
        "infile using fuzz.raw in 2/9, using(fuzz.raw) clear",
        "infile a str5 b _skip c:lbl using fuzz.raw if a != 3, automatic clear",
        "infile str5 a b using fuzz.raw in 2/5, byvariable(7) clear",
        "infix 2 lines 2 first a 1 b1-b3 2-10 str s 2: 3-20 using fuzz.raw, clear",
    };
    if (size == 0) return 0;
    startsession();
    writefile("fuzz.raw", {reinterpret_cast<const char*>(data) + 1, size - 1});
    obey(commands[data[0] % 6]);
    if (memory_check() || visnvar != nvar) std::abort();
    if (nobs == 0) return 0;
    obey("outfile using back, dictionary replace");
    obey("outfile using back in 1, comma replace");
    if (lastrc) std::abort();
    return 0;
}
