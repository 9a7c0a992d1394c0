// Arguments of settings.
#include "commands/system/arguments.h"
#include <algorithm>
#include <cmath>
#include "base/saved.h"
#include "base/text.h"
#include "core/prefs.h"
#include "core/tokenizer.h"
#include "language/options.h"
#include "output/errors.h"
#include "output/print.h"
#include "output/results.h"

namespace velmo {

Int4 nothingelse() { return nexttoken()[0] ? error(198) : 0; }

Int4 readbounded(std::string_view name, Int4 lo, Int4 hi, Int4& value) {
    Double n;
    if (!readnumber(nexttoken(breaknum), n) || n != std::floor(n)) return error(198);
    Int4 whole = Int4(std::clamp(n, -2147483648.0, 2147483647.0));
    if (Int4 rc = boundscheck(name, whole, lo, hi)) return rc;
    value = whole;
    return 0;
}

Int4 readreal(Double& value) {
    Double n;
    if (!readnumber(nexttoken(breaknum), n) || !std::isfinite(n)) return error(198);
    if (Int4 rc = nothingelse()) return rc;
    value = n;
    return 0;
}

Int4 permanentoption(boolean& permanent) {
    if (Int4 rc = parseoptions()) return rc;
    permanent = getopt_flag("permanent", 4);
    return getopt_done();
}

Int4 recorded(const char* name) {
    if (!prefs_save()) return fileerror(603, prefs_file());
    printing as(out_text);
    prtcolour();
    return prtrawf("({cmd:set %s} preference recorded)\n", name);
}

}  // namespace velmo
