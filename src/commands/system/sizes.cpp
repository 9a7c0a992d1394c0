// set memory, maxvar, matsize, obs, and the old words for the same.
#include <algorithm>
#include <charconv>
#include <limits>
#include <string>
#include <vector>
#include "base/text.h"
#include "commands/system/arguments.h"
#include "core/events.h"
#include "core/keywords.h"
#include "core/objects.h"
#include "core/prefs.h"
#include "core/room.h"
#include "core/tokenizer.h"
#include "data/dataset.h"
#include "data/structure.h"
#include "output/errors.h"
#include "output/formats.h"
#include "output/print.h"

namespace velmo {

namespace {

constexpr const char* section = "mem_xe_w";

Int4 record(boolean permanent, const char* key, std::int64_t value) {
    if (!permanent) return 0;
    prefs_setint(section, key, value);
    return recorded(key);
}

// The code of a change of size that failed: those that have a text of their own, else 1000.
Int4 sizeerror(Int4 rc) {
    static const Int4 told[] = {909, 910, 912, 913, 914, 691};
    return error(std::find(std::begin(told), std::end(told), rc) != std::end(told) ? rc : 1000);
}

boolean datainmemory() { return nvar > 0 || nobs > 0; }

// ---- memory

constexpr std::uint64_t mostbytes = std::numeric_limits<std::uint64_t>::max();

// #[k|m|g], kilobytes when bare; what goes beyond 64 bits is the largest number. Zero or a code.
Int4 readbytes(std::string_view text, std::uint64_t& bytes) {
    static constexpr struct { char letter; Int4 shift; } units[] = {{'k', 10}, {'m', 20}, {'g', 30}};
    Int4 shift = 10;
    for (const auto& unit : units)
        if (!text.empty() && text.back() == unit.letter) {
            shift = unit.shift;
            text.remove_suffix(1);
            break;
        }
    const char* end = text.data() + text.size();
    std::uint64_t n = 0;
    std::from_chars_result r = std::from_chars(text.data(), end, n);
    if (text.empty() || r.ptr != end) return error(198);
    boolean beyond = r.ec == std::errc::result_out_of_range || n > mostbytes >> shift;
    bytes = beyond ? mostbytes : n << shift;
    return 0;
}

// The size that the argument asks for; a sign ahead makes it relative to the present one.
Int4 readmemory(std::uint64_t& bytes) {
    std::string_view text = nexttoken(breaknum);
    char sign = 0;
    if (text.substr(0, 1) == "+" || text.substr(0, 1) == "-") {
        sign = text[0];
        text.remove_prefix(1);
    }
    std::uint64_t n = 0;
    if (Int4 rc = readbytes(text, n)) return rc;
    if (sign == '-' && n > memory) return error(912);
    if (sign == '+') n = n > mostbytes - memory ? mostbytes : memory + n;
    bytes = sign == '-' ? memory - n : n;
    return 0;
}

}  // namespace

// The sizes of the next start, as `permanent` has kept them.
void sizes_configured() {
    std::int64_t v;
    if (prefs_getint(section, "matsize", v) && v >= 10 && v <= 11000) matsize = Int4(v);
    if (prefs_getint(section, "maxvar", v) && v >= 2048 && v <= 32767) setlengths(Int4(v));
    if (prefs_getint(section, "memory", v) && v > 0) memory = std::uint64_t(v);
}

// set memory [+|-]#[k|m|g] [, permanent]
Int4 setting_memory() {
    std::uint64_t bytes = 0;
    boolean permanent;
    if (Int4 rc = readmemory(bytes)) return rc;
    if (Int4 rc = permanentoption(permanent)) return rc;
    if (datainmemory()) return error(4);
    if (Int4 rc = setmemory(bytes)) return sizeerror(rc);
    return record(permanent, "memory", std::int64_t(memory));
}

std::string shown_memory() {
    char text[40];
    sizetext(text, sizeof text, memory);
    return text;
}

// ---- maxvar

namespace {

// Preserved data must find room for their variables again.
boolean spoilspreserved(Int4 n) { return n < maxvar && objcount(obj_estpreserve) > 0; }

}  // namespace

// set maxvar # [, permanent]
Int4 setting_maxvar() {
    Int4 n;
    boolean permanent;
    if (Int4 rc = readbounded("#", 2048, 32767, n)) return rc;
    if (Int4 rc = permanentoption(permanent)) return rc;
    if (datainmemory() || spoilspreserved(n)) return error(4);
    if (n != maxvar) {
        telldiscarded();
        if (Int4 rc = setmaxvar(n)) return sizeerror(rc);
    }
    return record(permanent, "maxvar", n);
}

std::string shown_maxvar() { return std::to_string(maxvar); }

// set matsize # [, permanent]
Int4 setting_matsize() {
    Int4 n;
    boolean permanent;
    if (Int4 rc = readbounded("matsize", 10, 11000, n)) return rc;
    if (Int4 rc = permanentoption(permanent)) return rc;
    if (Int4 rc = setmatsize(n)) return error(rc);
    return record(permanent, "matsize", n);
}

std::string shown_matsize() { return std::to_string(matsize); }

// ---- obs

// set obs #: new observations are missing.
Int4 setting_obs() {
    Int4 n, before = nobs;
    if (Int4 rc = readbounded("obs", nobs, mostobs() - 1, n)) return rc;
    if (Int4 rc = nothingelse()) return rc;
    if (Int4 rc = growobs(n)) return error(rc);
    return notef("obs was %d, now %d\n", before, nobs);
}

// ---- The old three-way sizing: set maxobs # [maxvar #] [width #], in any order. A width is held to; without
// one the rows become narrow enough for the observations.

namespace {

enum oldsize { old_obs, old_vars, old_width };

Int4 apportion(const Int4 (&asked)[3]) {
    Int4 before = lrecl, rows = asked[old_obs];
    if (!asked[old_width]) return rows > maxobs && addobsroom(rows - maxobs) ? error(901) : 0;
    Int4 rc = rectangle_relayout((asked[old_width] + 1) & ~1);
    if (rc == 0 && rows <= maxobs) return 0;
    rectangle_relayout(before);
    return error(901);
}

Int4 oldsizes(Int4 first) {
    static constexpr keyword words[] = {
        {"maxobs", 4, old_obs},  {"maxvar", 4, old_vars}, {"old_maxvar", 4, old_vars},
        {"width", 2, old_width}, {"lrecl", 2, old_width},
    };
    if (version >= 500) return notef("(maxvar and maxobs no longer need be set with this version of Velmo)\n");
    const Int4 most[3] = {mostobs(), maxvar, maxlrecl()};
    const char* const names[3] = {"maxobs", "maxvar", "width"};
    Int4 asked[3] = {};
    for (Int4 which = first; which >= 0; which = lookup(words, tokbuf)) {
        if (Int4 rc = readbounded(names[which], which == old_width ? 4 : 1, most[which], asked[which])) return rc;
        nexttoken();
    }
    if (tokbuf[0]) return error(198);
    return datainmemory() ? error(4) : apportion(asked);
}

}  // namespace

Int4 setting_maxobs() { return oldsizes(old_obs); }
Int4 setting_oldmaxvar() { return oldsizes(old_vars); }

}  // namespace velmo
