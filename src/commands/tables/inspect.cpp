// inspect: counts of a variable by sign and wholeness, its unique values, and a little histogram.
#include <bit>
#include <cmath>
#include <cstring>
#include <string>
#include "base/columns.h"
#include "base/text.h"
#include "commands/tables/tabletext.h"
#include "data/cells.h"
#include "data/labels.h"
#include "expr/walk.h"
#include "language/stdparse.h"
#include "output/errors.h"
#include "output/formats.h"
#include "output/print.h"
#include "stored/families.h"

namespace velmo {

namespace {

constexpr Int4 maxunique = 100;

// Up to 100 different values, compared in single precision, in a small open hash table.
struct uniqueset {
    Int4 n = 0;
    Float value[maxunique];
    Int2 slot[256];
    uniqueset() { std::memset(slot, -1, sizeof slot); }
    void add(Float v) {
        if (n == maxunique) return;
        UInt4 at = std::bit_cast<UInt4>(v) * 2654435769U >> 24;
        for (; slot[at] >= 0; at = (at + 1) & 255)
            if (value[slot[at]] == v) return;
        slot[at] = Int2(n);
        value[n++] = v;
    }
};

enum signrow : Int4 { row_negative, row_zero, row_positive };
struct inspection {
    Int4 count[3] = {}, whole[3] = {}, missings = 0;
    Double min = missing, max = -missing;
    uniqueset unique;
    Int4 total() const { return count[0] + count[1] + count[2]; }
    Int4 wholes() const { return whole[0] + whole[1] + whole[2]; }
};

boolean iswhole(Double x) { return x > -2147483649.0 && x < 2147483648.0 && x == Double(Int4(x)); }

Int4 gather(Int4 var, inspection& out) {
    return overobs([&](Int4 obs) {
        Double x = getobs(var, obs);
        if (x == missing) {
            out.missings++;
            return;
        }
        Int4 row = x < 0 ? row_negative : x > 0 ? row_positive : row_zero;
        out.count[row]++;
        if (iswhole(x)) out.whole[row]++;
        if (x < out.min) out.min = x;
        if (x > out.max) out.max = x;
        out.unique.add(Float(x + 0.0));
    });
}

// Heights 0 to 6 of up to five bars. 0, or 1 on a break.
Int4 histogram(Int4 var, const inspection& x, Int4 bars, Int4 (&height)[5]) {
    std::memset(height, 0, sizeof height);
    if (bars == 1) height[0] = 6;
    if (bars < 2) return 0;
    Int4 count[5] = {}, largest = 0;
    Double range = x.max - x.min;
    Int4 rc = overobs([&](Int4 obs) {
        Double v = getobs(var, obs);
        if (v == missing) return;
        Double place = (v - x.min) / range * bars;
        Int4 bin = place >= bars ? bars - 1 : Int4(place);
        largest = std::max(largest, ++count[bin]);
    });
    if (rc) return rc;
    for (Int4 b = 0; b < bars; b++) height[b] = Int4((6.0 * count[b] + 0.5) / largest);
    return 0;
}

void putcount(Int4 n) {
    if (n)
        prtresultf("%5d", n);
    else
        prtresult("    -");
}

Int4 countline(const char* stub, Int4 total, Int4 whole) {
    prttext(stub);
    putcount(total);
    prtblanks(5);
    putcount(whole);
    prtblanks(6);
    putcount(total - whole);
    return prtnl();
}

Int4 chartline(Int4 level, const Int4 (&height)[5], Int4 bars, const inspection& x) {
    prtmarkup("{c |}");
    std::string text = "  ";
    for (Int4 b = 0; b < 5; b++) {
        char c = b < bars && height[b] >= level ? '#' : b < bars && level == 1 ? '.' : ' ';
        text += std::string(1, c) + "   ";
    }
    prtresult(text + "         ");
    switch (level) {
    case 6: return countline("Negative       ", x.count[row_negative], x.whole[row_negative]);
    case 5: return countline("Zero           ", x.count[row_zero], x.whole[row_zero]);
    case 4: return countline("Positive       ", x.count[row_positive], x.whole[row_positive]);
    case 3: prtmarkup("               {hline 5}     {hline 5}      {hline 5}\n"); return breakpending;
    case 2: return countline("Total          ", x.total(), x.wholes());
    default: prttext("Missing        "); putcount(x.missings); return prtnl();
    }
}

void heading(Int4 var) {
    std::string name = varlist[var - 1], label = getvarlabel(name);
    label = label.substr(0, bytesin(label, 45 - textcolumns(name)));
    std::string left = name + ":" + (label.empty() ? "" : "  " + label);
    Int4 used = textcolumns(left);
    prtnl();
    prttext(leftjustified(left, 47) + "Number of Observations\n");
    prtmarkup("{hline " + std::to_string(used) + "}");
    prttext(leftjustified("", 67 - used) + "Non-\n");
    prttext(std::string(47, ' ') + "Total   Integers    Integers\n");
}

void rangeline(const inspection& x) {
    std::string text;
    if (x.total()) {
        fmtnum("%9.0g", x.min);
        text = trimmed(dbuf);
        if (x.max != x.min) {
            fmtnum("%9.0g", x.max);
            text += std::string(text.size() < 14 ? 14 - text.size() : 0, ' ') + dbuf;
        }
    }
    prtresult(text + std::string(text.size() < 23 ? 23 - text.size() : 0, ' ') + std::string(24, ' '));
    putcount(x.total() + x.missings);
    prtnl();
}

void uniqueline(const inspection& x) {
    Int4 n = x.unique.n;
    std::string text = "(" + std::to_string(n) + " unique value" + plural(n) + ")";
    if (n >= maxunique) text = "(More than 99 unique values)";
    prttext(std::string(text.size() < 22 ? (22 - text.size()) / 2 : 0, ' ') + text + "\n");
}

// Distinct values without a text in the variable's label; missing without a label.
Double undocumented(Int4 var, const inspection& x) {
    vallabel label;
    if (isstring(var) || !lbl[var - 1][0]) return missing;
    vl_load(lbl[var - 1], label);
    if (!label.exists) return missing;
    Int4 n = 0;
    for (Int4 i = 0; i < x.unique.n; i++) n += label.find(x.unique.value[i]) == nullptr;
    return n;
}

void labelline(Int4 var, Double undoc) {
    if (undoc == missing) return;
    Int4 n = Int4(undoc);
    std::string text = std::string("      ") + varlist[var - 1] + " is labeled ";
    if (n)
        text += "but " + std::to_string(n) + " value" + (n == 1 ? " is" : "s are") + " NOT";
    else
        text += "and all values are";
    prtnl();
    prttext(text + " documented in the label.\n");
}

void storeresults(const inspection& x, Double undoc) {
    rclear();
    rstore("N", x.total());
    rstore("N_neg", x.count[row_negative]);
    rstore("N_negint", x.whole[row_negative]);
    rstore("N_0", x.count[row_zero]);
    rstore("N_pos", x.count[row_positive]);
    rstore("N_posint", x.whole[row_positive]);
    rstore("N_unique", x.unique.n >= maxunique ? missing : x.unique.n);
    rstore("N_undoc", undoc);
}

Int4 inspectone(Int4 var) {
    inspection x;
    if (Int4 rc = gather(var, x)) return rc;
    Int4 height[5], bars = std::min(x.unique.n, 5);
    if (Int4 rc = histogram(var, x, bars, height)) return rc;
    Double undoc = undocumented(var, x);
    storeresults(x, undoc);
    heading(var);
    for (Int4 level = 6; level >= 1; level--)
        if (Int4 rc = chartline(level, height, bars, x)) return rc;
    prtmarkup("{c +}{hline 22}{col 48}{hline 5}\n");
    rangeline(x);
    uniqueline(x);
    labelline(var, undoc);
    return breakpending;
}

}  // namespace

// inspect [varlist] [if] [in]
Int4 cmd_inspect() {
    if (Int4 rc = stdparse({.options = never})) return rc;
    rclear();
    for (Int4 i = 0; i < vl_n; i++)
        if (Int4 rc = inspectone(vl_vr[i])) return rc;
    return 0;
}

}  // namespace velmo
