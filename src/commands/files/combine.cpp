// merge and append: a dataset file's rows beside or behind the data in memory.
#include <algorithm>
#include <cstring>
#include <string>
#include <vector>
#include "base/poll.h"
#include "commands/files/joining.h"
#include "core/adopath.h"
#include "data/cells.h"
#include "data/dtamemory.h"
#include "data/dtaread.h"
#include "data/run.h"
#include "data/structure.h"
#include "language/options.h"
#include "language/stdparse.h"
#include "output/errors.h"
#include "output/print.h"

namespace velmo {

namespace {

// ---- merge

// Where an observation comes from, the values of _merge; of several the largest counts.
enum source : UByte { from_memory = 1, from_file = 2, from_both = 3, was_filled = 4, differs = 5 };

struct mergeoptions { boolean labels, update, replace, keep; std::string mark; };

struct merging {
    joining j;
    mergeoptions o;
    std::vector<sharedvar> keys, others;     // shared variables
    Int4 mark = 0;                           // the variable _merge
    std::vector<Int4> samples;               // markers, which are 0 in new observations
    const UByte* row = nullptr;              // the file's next row, null behind the last
    std::vector<UByte> held;                 // the row before
};

Int4 readmergeoptions(mergeoptions& o) {
    boolean named;
    o.labels = getopt_noflag("label", 1, true);
    o.update = getopt_flag("update", 2);
    o.replace = getopt_flag("replace", 7);
    o.keep = getopt_noflag("keep", 4, true);
    if (Int4 rc = getopt_str("_merge", 6, o.mark, named)) return rc;
    if (!named) o.mark = "_merge";
    if (Int4 rc = getopt_done()) return rc;
    return o.replace && !o.update ? errorf(198, "replace may be specified only with update\n") : 0;
}

boolean otherkind(const joining& j, const sharedvar& s) {
    return isstring(s.var) != isstringtype(j.f.head.types[std::size_t(s.filevar) - 1]);
}

// Both sides must be sorted by the keys, and agree on what is a string.
Int4 findkeys(merging& m, const std::vector<Int4>& wanted) {
    const std::vector<UInt2>& order = m.j.f.head.sort;
    for (std::size_t i = 0; i < wanted.size(); i++) {
        auto is = [&](const sharedvar& s) { return s.var == wanted[i]; };
        auto found = std::find_if(m.j.both.begin(), m.j.both.end(), is);
        if (found == m.j.both.end()) return varnotfound(varlist[wanted[i] - 1]);
        if (i >= order.size() || order[i] != found->filevar) return prefixed("using data", 5, false);
        m.keys.push_back(*found);
    }
    for (const sharedvar& s : m.j.both) {
        if (otherkind(m.j, s)) return join_otherkind(m.j, s);
        auto iskey = [&](const sharedvar& k) { return k.var == s.var; };
        if (std::none_of(m.keys.begin(), m.keys.end(), iskey)) m.others.push_back(s);
    }
    return 0;
}

Int4 checkorder(const std::vector<Int4>& wanted) {
    for (std::size_t i = 0; i < wanted.size(); i++)
        if (srt[i] != wanted[i]) return prefixed("master data", 5, false);
    return 0;
}

const UByte* filecell(const merging& m, const sharedvar& s, const UByte* row) {
    return row + m.j.f.offsets[std::size_t(s.filevar) - 1];
}

Double filenumber(const merging& m, const sharedvar& s, const UByte* row) {
    return readcell(filecell(m, s, row), m.j.f.head.types[std::size_t(s.filevar) - 1]);
}

Int4 sign(Double a, Double b) { return a < b ? -1 : a > b; }

// The observation's keys against the row's: negative, 0, positive.
Int4 comparekeys(const merging& m, Int4 obs, const UByte* row) {
    for (const sharedvar& k : m.keys) {
        Int4 c = isstring(k.var) ? strcell(k.var, obs).compare(dta_text(m.j.f, row, k.filevar))
                                 : sign(getobs(k.var, obs), filenumber(m, k, row));
        if (c) return c;
    }
    return 0;
}

boolean samekeys(const merging& m, const UByte* a, const UByte* b) {
    for (const sharedvar& k : m.keys) {
        boolean same = isstring(k.var) ? dta_text(m.j.f, a, k.filevar) == dta_text(m.j.f, b, k.filevar)
                                       : filenumber(m, k, a) == filenumber(m, k, b);
        if (!same) return false;
    }
    return true;
}

// A shared variable of a matched row under update.
Int4 updatevalue(merging& m, const sharedvar& s, const UByte* row, Int4 obs, source& result) {
    boolean empty, here, same;
    if (isstring(s.var)) {
        std::string_view mine = strcell(s.var, obs), theirs = dta_text(m.j.f, row, s.filevar);
        empty = theirs.empty();
        here = !mine.empty();
        same = mine == theirs;
    } else {
        Double mine = getobs(s.var, obs), theirs = filenumber(m, s, row);
        empty = theirs == missing;
        here = mine != missing;
        same = mine == theirs;
    }
    if (empty || same) return 0;
    result = std::max(result, here ? differs : was_filled);
    return here && !m.o.replace ? 0 : join_store(m.j, s, row, obs);
}

// Observation and row belong together: the file's own variables, the shared ones under update, the mark.
Int4 match(merging& m, Int4 obs, const UByte* row) {
    source result = from_both;
    join_copy(m.j, row, obs);
    for (std::size_t i = 0; m.o.update && i < m.others.size(); i++)
        if (Int4 rc = updatevalue(m, m.others[i], row, obs, result)) return rc;
    putobs(m.mark, obs, result);
    return 0;
}

// What the file has nothing for.
void unmatched(merging& m, Int4 obs) {
    for (const sharedvar& s : m.j.fresh) clearcell(s.var, obs);
    putobs(m.mark, obs, from_memory);
}

Int4 fileonly(merging& m, const UByte* row) {
    if (!m.o.keep) return 0;
    if (Int4 rc = nextobsroom()) return rc;
    std::memcpy(rowptr(nobs + 1), m.j.blank.data(), m.j.blank.size());
    nobs++;
    join_copy(m.j, row, nobs);
    for (const sharedvar& s : m.keys)
        if (Int4 rc = join_store(m.j, s, row, nobs)) return rc;
    for (std::size_t i = 0; m.o.update && i < m.others.size(); i++)
        if (Int4 rc = join_store(m.j, m.others[i], row, nobs)) return rc;
    putobs(m.mark, nobs, from_file);
    return 0;
}

Int4 appendcopy(const merging& m, Int4 obs) {
    if (Int4 rc = nextobsroom()) return rc;
    nobs++;
    std::memcpy(rowptr(nobs), rowptr(obs), std::size_t(width));
    for (Int4 v : m.samples) putobs(v, nobs, 0);
    return 0;
}

Int4 nextrow(merging& m) {
    if (tick()) return 1;
    return dta_nextrow(m.j.f, m.row);
}

// Holds the present row, since the reader's goes with the next one.
Int4 holdrow(merging& m) {
    m.held.assign(m.row, m.row + m.j.f.width);
    return nextrow(m);
}

// All observations and rows of one key, from observation `at` on: they pair off in order, then the last one of the
// shorter side repeats. An observation that more rows wait for is copied before update can change it.
Int4 matchgroup(merging& m, Int4& at) {
    for (Int4 obs = at++;;) {
        if (Int4 rc = holdrow(m)) return rc;
        const UByte* held = m.held.data();
        boolean more = m.row && samekeys(m, held, m.row);
        boolean another = at <= m.j.oldobs && comparekeys(m, at, held) == 0;
        if (more && !another)
            if (Int4 rc = appendcopy(m, obs)) return rc;
        if (Int4 rc = match(m, obs, held)) return rc;
        for (; another && !more; another = at <= m.j.oldobs && comparekeys(m, at, held) == 0)
            if (Int4 rc = match(m, at++, held)) return rc;
        if (!more) return 0;
        obs = another ? at++ : nobs;
    }
}

Int4 matchmerge(merging& m) {
    Int4 at = 1;
    if (Int4 rc = nextrow(m)) return rc;
    while (m.row) {
        Int4 c = at > m.j.oldobs ? 1 : comparekeys(m, at, m.row);
        if (c == 0) {
            if (Int4 rc = matchgroup(m, at)) return rc;
        } else if (c < 0) {
            unmatched(m, at++);
            if (tick()) return 1;
        } else {
            if (Int4 rc = fileonly(m, m.row)) return rc;
            if (Int4 rc = nextrow(m)) return rc;
        }
    }
    for (; at <= m.j.oldobs; at++) unmatched(m, at);
    return 0;
}

// Without keys: observation i goes with row i.
Int4 rowmerge(merging& m) {
    Int4 at = 1;
    for (;; at++) {
        if (Int4 rc = nextrow(m)) return rc;
        if (!m.row) break;
        if (Int4 rc = at <= m.j.oldobs ? match(m, at, m.row) : fileonly(m, m.row)) return rc;
    }
    for (; at <= m.j.oldobs; at++) unmatched(m, at);
    return 0;
}

}  // namespace

// merge [varlist] using filename [, nolabel update replace nokeep _merge(name)]
Int4 cmd_merge() {
    if (nvar == 0) return error(3);
    if (Int4 rc = stdparse({.ifexp = never, .in = never, .file = must, .by = never})) return rc;
    std::vector<Int4> wanted(vl_vr, vl_vr + (vl_given ? vl_n : 0));
    merging m;
    if (Int4 rc = readmergeoptions(m.o)) return rc;
    if (Int4 rc = checknewname(m.o.mark)) return rc;
    if (Int4 rc = checkorder(wanted)) return rc;
    if (Int4 rc = join_open(m.j, usingname)) return rc;
    if (Int4 rc = findkeys(m, wanted)) return rc;
    if (Int4 rc = join_addvars(m.j)) return rc;
    if (Int4 rc = addvar(m.o.mark, typebyte)) return rc;
    m.mark = nvar;
    m.samples = samplemarkers();
    m.j.direct.clear();                  // shared variables change under update only
    join_layout(m.j);
    if (Int4 rc = wanted.empty() ? rowmerge(m) : matchmerge(m)) return rc;
    return join_finish(m.j, m.o.labels);
}

// ---- append

namespace {

// Shared variables whose types differ go over value by value.
std::vector<sharedvar> convertedvars(const joining& j) {
    std::vector<sharedvar> list;
    for (const sharedvar& s : j.both) {
        auto is = [&](const sharedvar& d) { return d.var == s.var; };
        if (std::none_of(j.direct.begin(), j.direct.end(), is)) list.push_back(s);
    }
    return list;
}

Int4 appendrows(joining& j) {
    std::vector<sharedvar> converted = convertedvars(j);
    for (boolean first = true;; first = false) {
        const UByte* row;
        Int4 n;
        if (Int4 rc = dta_nextrows(j.f, row, n)) return rc;
        if (n == 0) return 0;
        // The rest of a regular file is known to be there, so its room can be asked for at once.
        if (Int4 rc = dta_roomfor(first && j.f.size >= 0 ? j.f.head.nobs : n)) return rc;
        for (; n > 0; n--, row += j.f.width) {
            if (nobs + 1 >= ptrmark)             // a wider type has divided the block anew
                if (Int4 rc = dta_roomfor(n)) return rc;
            std::memcpy(rowptr(nobs + 1), j.blank.data(), j.blank.size());
            nobs++;
            join_copy(j, row, nobs);
            for (const sharedvar& s : converted)
                if (Int4 rc = join_store(j, s, row, nobs)) return rc;
        }
    }
}

void clearfresh(const joining& j) {
    for (const sharedvar& s : j.fresh) {
        column c(s.var);
        for (Int4 obs = 1; obs <= j.oldobs; obs++) {
            UByte* p = c.at(obs);
            if (isstringtype(c.type)) std::memset(p, 0, c.type);
            else writecell(p, c.type, missing);
        }
    }
}

}  // namespace

// append using filename [, nolabel]
Int4 cmd_append() {
    if (nvar == 0) return error(3);
    if (Int4 rc = stdparse({.varlist = never, .ifexp = never, .in = never, .file = must, .by = never})) return rc;
    boolean labels = getopt_noflag("label", 1, true);
    if (Int4 rc = getopt_done()) return rc;
    joining j;
    if (Int4 rc = join_open(j, usingname)) return rc;
    for (const sharedvar& s : j.both)
        if (otherkind(j, s)) return join_otherkind(j, s);
    if (Int4 rc = join_addvars(j)) return rc;
    join_layout(j);
    clearfresh(j);
    if (Int4 rc = appendrows(j)) return rc;
    return join_finish(j, labels);
}

}  // namespace velmo
