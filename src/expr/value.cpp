#include "expr/value.h"
#include "base/saved.h"
#include "core/rectangle.h"
#include "core/tokenizer.h"
#include "data/run.h"
#include "expr/evaluate.h"
#include "output/errors.h"

namespace velmo {

Int4 exp_valuehere(Int4 mode, textvalue& out) {
    saved first(firstobs, 1), last(lastobs, nobs), gfirst(groupfirst, 1), glast(grouplast, nobs);
    exp_reset();
    exp_clearsums();
    if (Int4 rc = exp_compile(eqexp, mode)) return rc;
    out.isstring = eqexp.restype == exp_string;
    if (!out.isstring) {
        out.number = exp_getnum(eqexp, 1);
        return 0;
    }
    char text[strbufsize];
    out.text.assign(text, std::size_t(exp_getstr(eqexp, 1, text)));
    return 0;
}

Int4 exp_valueof(std::string_view text, Int4 mode, textvalue& out) {
    elsewhere cursor(text);
    if (Int4 rc = exp_valuehere(mode, out)) return rc;
    return tokpeeknonblank() ? error(198) : 0;
}

}  // namespace velmo
