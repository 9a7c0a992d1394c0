// Any text must compile or be refused, and what compiles must give the same bits by blocks and one at a time.
#include <cstdlib>
#include <cstring>
#include "core/tokenizer.h"
#include "data/cells.h"
#include "data/run.h"
#include "data/structure.h"
#include "expr/compile.h"
#include "expr/evaluate.h"

using namespace velmo;

static void setup() {
    quietlevel = shows_nothing;
    memory = 1 << 20;
    if (memory_start() || addvar("x", typefloat) || addvar("y", typedouble) || addvar("s", 6)) std::abort();
    growobs(40);
    visnvar = nvar;
    firstobs = groupfirst = 1;
    lastobs = grouplast = nobs;
    for (Int4 obs = 1; obs <= nobs; obs++) {
        writecell(cellptr(1, obs), typefloat, obs % 7 ? obs / 4.0 - 3 : missing);
        writecell(cellptr(2, obs), typedouble, obs % 5 ? 1e300 * obs : -obs);
        putstr(3, obs, obs % 3 ? "a b" : "");
    }
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const boolean ready = (setup(), true);
    if (!ready || size >= std::size_t(conslen)) return 0;
    for (std::size_t i = 0; i < size; i++) cmdbuf[i] = data[i] < ' ' ? ' ' : char(data[i]);
    cmdbuf[size] = 0;
    settokpos(cmdbuf);
    exp_reset();
    if (exp_compile(eqexp, mode_any)) return 0;
    char text[strbufsize];
    if (eqexp.restype == exp_string) return exp_getstr(eqexp, 1, text) > 245 ? std::abort(), 0 : 0;
    Double block[40], single[40];
    for (Int4 obs = 1; obs <= 40; obs++) single[obs - 1] = exp_getnum(eqexp, obs);
    exp_getblock(eqexp, 1, 40, block);
    return std::memcmp(block, single, sizeof block) ? std::abort(), 0 : 0;
}
