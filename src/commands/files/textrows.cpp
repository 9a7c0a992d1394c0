#include "commands/files/textrows.h"
#include <algorithm>
#include <cstring>
#include "commands/files/textnumber.h"
#include "core/room.h"
#include "data/run.h"
#include "data/structure.h"
#include "expr/evaluate.h"
#include "output/errors.h"
#include "stored/posted.h"

namespace velmo {

std::vector<UByte> rowinhand;

void rows_start() {
    tightenrows();
    rowinhand.assign(std::size_t(width), 0);
    for (Int4 v = 1; v <= nvar; v++) rows_clearcell(rows_cell(v));
}

rowcell rows_cell(Int4 var) { return {var, mapi[var - 1], typ[var - 1]}; }

void rows_clearcell(const rowcell& cell) {
    UByte* p = rowinhand.data() + cell.offset;
    if (isstringtype(cell.type))
        std::memset(p, 0, cell.type);
    else
        writecell(p, cell.type, missing);
}

Int4 rows_text(const rowcell& cell, std::string_view text, boolean quoted, Int4 obs) {
    UByte* p = rowinhand.data() + cell.offset;
    if (isstringtype(cell.type)) {
        std::size_t n = std::min<std::size_t>(text.size(), cell.type);
        std::copy_n(text.data(), n, p);      // an empty text may have no place
        std::memset(p + n, 0, cell.type - n);
        return 0;
    }
    Double value = missing;
    boolean readable;
    if (!text.empty() && (quoted || !plainnumber(text, value)))
        if (Int4 rc = numbers_read(text, quoted, cell.var, obs, value, readable)) return rc;
    writecell(p, cell.type, value);
    return 0;
}

Int4 rows_add() {
    if (nobs + 1 >= maxobs)
        if (Int4 rc = obsroom(1)) return error(rc);
    if (nobs + 2 > ptrmark) touchptrs(std::min(maxobs, nobs + 1024));
    std::memcpy(rowptr(nobs + 1), rowinhand.data(), rowinhand.size());
    grouplast = ++nobs;
    if (ifgiven && !exp_iftest(nobs)) nobs--;
    return 0;
}

void replacedata() {
    if (nvar || nobs) posted_clear();
    cleardata(true);
}

Int4 rows_end(Int4 rc, boolean keep) {
    if (rc <= 1 || keep)
        if (Int4 failed = numbers_end()) {
            rc = failed;
            keep = false;
        }
    if (rc > 1 && !keep) {
        cleardata(true);
        return rc;
    }
    Int4 n = nobs;
    visnvar = nvar;
    datachanged = 1;
    srt[0] = 0;
    for (Int4 v = 1; v <= nvar; v++) numbers_widen(v);
    if (n < 1) cleardata(true);
    notef("(%d observations read)\n", n);
    return rc;
}

}  // namespace velmo
