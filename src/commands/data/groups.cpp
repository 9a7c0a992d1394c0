// _bygroup and _bystats: what authors of commands build on that work by groups. Both leave the order of the data alone.
#include <algorithm>
#include <string>
#include <vector>
#include "base/text.h"
#include "data/cells.h"
#include "data/structure.h"
#include "estimate/groups.h"
#include "language/options.h"
#include "language/stdparse.h"
#include "output/errors.h"
#include "output/formats.h"
#include "stored/families.h"

namespace velmo {

namespace {

// A new name at the cursor or in an option, different from those that the command makes besides.
Int4 checkname(const std::string& name, const std::vector<std::string>& others) {
    if (Int4 rc = checknewname(name)) return rc;
    return std::count(others.begin(), others.end(), name) ? nameerror(name_defined, name) : 0;
}

Int4 expected(const char* what) {
    nexttoken();
    return std::string_view(tokbuf) == what ? 0 : error(198);
}

// A variable being made, and what its cells are.
struct newcolumn {
    Int4 var;
    const Double* values;        // of the groups, or null
    const Int4* cells;           // else the observation whose cell of `from` it is
    Int4 from;
    Double value(UInt4 group) const {
        if (values) return datavalue(values[group]);
        return cells[group] ? getobs(from, cells[group]) : missing;
    }
    void put(Int4 obs, UInt4 group) const {
        if (!isstring(var)) return putobs(var, obs, value(group));
        putstr(var, obs, cells[group] ? strcell(from, cells[group]) : std::string_view{});
    }
};

// The group's value into every observation of the sample; the others are missing.
Int4 fillcolumn(const newcolumn& c, const drawnsample& s, const UInt4* codes) {
    Double block[blocksize];
    Int4 at = 0;
    for (Int4 first = 1; first <= nobs; first += blocksize) {
        Int4 n = std::min(blocksize, nobs - first + 1);
        if (isstring(c.var)) {
            for (Int4 obs = first; obs < first + n; obs++) clearcell(c.var, obs);
            for (; at < s.n && s.numbers()[at] < first + n; at++) c.put(s.numbers()[at], codes[at]);
        } else {
            std::fill_n(block, n, missing);
            for (; at < s.n && s.numbers()[at] < first + n; at++) block[s.numbers()[at] - first] = c.value(codes[at]);
            putcolumn(c.var, first, n, block);
        }
        if (tick()) return 1;
    }
    return 0;
}

void showvars(Int4 before) {
    visnvar = nvar;
    for (Int4 var = before + 1; var <= nvar; var++) markchanged(var);
}

void storecounts(const drawnsample& s, const grouping& g) {
    rclear();
    rstore("N", s.n);
    rstore("N_groups", g.groups);
}

// ---- _bygroup

enum numbering : Int4 { by_group, by_count, by_number, by_first, numberings };

// The values of one kind of numbering, for the sample's observations in their order; by_first is by place in the data.
void numbersof(Int4 kind, const drawnsample& s, const grouping& g, const Int4* first, const Int4* count, Int4* seen,
               Double* out) {
    if (kind == by_first) {
        for (Int4 k = 0; k < g.groups; k++) out[k] = first[k];
        return;
    }
    std::fill_n(seen, g.groups, 0);
    for (Int4 i = 0; i < s.n; i++) {
        UInt4 k = g.codes()[i];
        out[i] = kind == by_group ? k + 1 : kind == by_count ? count[k] : ++seen[k];
    }
}

// Values at the sample's observations, or (by_first) at the first observations of the data.
Int4 fillnumbers(Int4 var, Int4 kind, const drawnsample& s, Int4 groups, const Double* values) {
    column c(var);
    for (Int4 obs = 1; obs <= nobs; obs++) c.put(obs, kind == by_first && obs <= groups ? values[obs - 1] : missing);
    for (Int4 i = 0; kind != by_first && i < s.n; i++) {
        c.put(s.numbers()[i], values[i]);
        if (tick()) return 1;
    }
    return 0;
}

Int4 makenumbers(const std::vector<std::string>& names, const drawnsample& s, const grouping& g) {
    workspace first{0}, count{0}, seen(std::size_t(g.groups + 1) * sizeof(Int4));
    workspace values(std::size_t(s.n + 1) * sizeof(Double));
    if (Int4 rc = groupfirsts(s, g, first, count)) return rc;
    if (!seen.p || !values.p) return error(909);
    Int4 before = nvar;
    for (Int4 kind = 0; kind < numberings; kind++) {
        if (names[std::size_t(kind)].empty()) continue;
        if (Int4 rc = addvar(names[std::size_t(kind)], typelong)) return rc;
        Double* out = values.get<Double>();
        numbersof(kind, s, g, first.get<Int4>(), count.get<Int4>(), seen.get<Int4>(), out);
        if (Int4 rc = fillnumbers(nvar, kind, s, g.groups, out)) return rc;
    }
    showvars(before);
    storecounts(s, g);
    return 0;
}

}  // namespace

// _bygroup newvar = varlist [if] [in] [, missing count(newvar) number(newvar) first(newvar)]
Int4 cmd__bygroup() {
    static constexpr const char* options[numberings] = {nullptr, "count", "number", "first"};
    std::vector<std::string> names{nexttoken()};
    if (Int4 rc = checkname(names[0], {})) return rc;
    if (Int4 rc = expected("=")) return rc;
    if (Int4 rc = stdparse({.varlist = must, .by = never})) return rc;
    boolean keepmissing = getopt_flag("missing", 4), found;
    for (Int4 kind = by_count; kind < numberings; kind++) {
        std::string name;
        if (Int4 rc = getopt_str(options[kind], 5, name, found)) return rc;
        if (found)
            if (Int4 rc = checkname(name, names)) return rc;
        names.push_back(name);
    }
    if (Int4 rc = getopt_done()) return rc;
    std::vector<source> sources = listsources();
    drawnsample s;
    if (Int4 rc = drawsample(sources, !keepmissing, s)) return rc;
    grouping g;
    if (Int4 rc = groupsample(s, sources, 0, g)) return rc;
    return makenumbers(names, s, g);
}

// ---- _bystats

namespace {

// [type] newvar = stat([varname])
struct request {
    std::string name;
    UByte type;                  // 0: that of the statistic
    groupstat stat;
    Double p;
    Int4 var;                    // 0: observations are counted
};

Int4 statargument(request& r) {
    char *begin, *end;
    if (tokpeek() != '(' || !parenthesized(&begin, &end)) return error(198);
    std::string name(trimmed(std::string_view(begin, std::size_t(end - begin))));
    r.var = 0;
    if (name.empty()) return r.stat == stat_count ? 0 : error(198);
    r.var = lookupvar(name, lookup_ref);
    return r.var < 0 ? -r.var : 0;
}

// Strings have some statistics alone, and a type of the wrong kind holds none.
Int4 checktype(request& r) {
    boolean text = r.var && isstring(r.var), own = isownvalue(r.stat);
    if (text && !oftexts(r.stat)) return error(109);
    if (!r.type) r.type = own ? typ[r.var - 1] : r.stat == stat_count && weighttype != weight_f ? typelong : typedouble;
    return isstringtype(r.type) != (text && own) ? error(109) : 0;
}

Int4 readrequest(request& r, const std::vector<std::string>& names) {
    std::string name = nexttoken();
    r.type = tokpeeknonblank() == '=' ? 0 : typecode(name);
    if (r.type) name = nexttoken();
    if (Int4 rc = checkname(name, names)) return rc;
    if (Int4 rc = expected("=")) return rc;
    r.name = name;
    if (!statnamed(nexttoken(), r.stat, r.p)) return errorf(198, "unknown statistic %s\n", tokbuf);
    return statargument(r);
}

Int4 readrequests(std::vector<request>& requests) {
    std::vector<std::string> names;
    while (true) {
        std::string_view word = nexttoken();
        ungettoken();
        if (word.empty() || word == "," || word == "[" || word == "if" || word == "in") break;
        request r{};
        if (Int4 rc = readrequest(r, names)) return rc;
        names.push_back(r.name);
        requests.push_back(r);
    }
    return requests.empty() ? error(198) : 0;
}

// The sample's sources: the variables of the requests, each once, and behind them those of by().
std::vector<source> requestsources(const std::vector<request>& requests, const std::vector<Int4>& by,
                                   std::vector<groupresult>& results) {
    std::vector<source> sources;
    for (const request& r : requests) {
        Int4 at = -1;
        if (r.var) {
            auto same = [&r](const source& s) { return s.var == r.var; };
            at = Int4(std::find_if(sources.begin(), sources.end(), same) - sources.begin());
            if (at == Int4(sources.size())) sources.push_back({r.var});
        }
        results.push_back({r.stat, r.p, at});
    }
    for (Int4 var : by) sources.push_back({var});
    return sources;
}

Int4 addcolumns(const std::vector<request>& requests, const std::vector<groupresult>& results,
                std::vector<newcolumn>& columns) {
    for (std::size_t i = 0; i < requests.size(); i++) {
        if (Int4 rc = addvar(requests[i].name, requests[i].type)) return rc;
        boolean cell = iscell(requests[i].stat);
        columns.push_back({nvar, cell ? nullptr : results[i].values(), cell ? results[i].cells() : nullptr,
                           requests[i].var});
    }
    return 0;
}

// Of each group the first observation stays, in the order of the groups, by which the data are then sorted. Nothing
// here can fail.
void keepfirsts(const Int4* first, Int4 groups, const std::vector<Int4>& by, UByte* gone, UInt4* rows) {
    std::fill_n(gone, nobs, UByte(1));
    for (Int4 k = 0; k < groups; k++) {
        gone[first[k] - 1] = 0;
        rows[k] = obsptrs[first[k] - 1];
    }
    dropobs(gone, groups);
    std::copy_n(rows, groups, obsptrs);
    std::copy(by.begin(), by.end(), srt);
    srt[by.size()] = 0;
    datachanged = 1;
}

// The results into one observation a group, the others dropped.
Int4 reduce(const std::vector<newcolumn>& columns, const drawnsample& s, const grouping& g, std::vector<Int4> by) {
    workspace first{0}, count{0}, gone{std::size_t(nobs)}, rows{std::size_t(g.groups) * sizeof(UInt4)};
    if (Int4 rc = groupfirsts(s, g, first, count)) return rc;
    if (!gone.p || !rows.p) return error(909);
    for (Int4 k = 0; k < g.groups; k++) {
        for (const newcolumn& c : columns) c.put(first.get<Int4>()[k], UInt4(k));
        if (tick()) return 1;
    }
    for (std::size_t i = 0; i < by.size(); i++) {
        auto behind = by.begin() + std::ptrdiff_t(i) + 1;
        by.erase(std::remove(behind, by.end(), by[i]), by.end());
    }
    keepfirsts(first.get<Int4>(), g.groups, by, gone.get<UByte>(), rows.get<UInt4>());
    return 0;
}

}  // namespace

// _bystats [type] newvar = stat([varname]) [...] [weight] [if] [in] [, by(varlist) reduce]
Int4 cmd__bystats() {
    std::vector<request> requests;
    if (Int4 rc = readrequests(requests)) return rc;
    if (Int4 rc = stdparse({.varlist = never, .weight = may, .weights = weight_a | weight_f, .by = never})) return rc;
    std::vector<Int4> by;
    boolean grouped, reducing = getopt_flag("reduce", 6);
    if (Int4 rc = getopt_vars("by", 2, by, grouped)) return rc;
    if (Int4 rc = getopt_done()) return rc;
    for (request& r : requests)
        if (Int4 rc = checktype(r)) return rc;
    std::vector<groupresult> results;
    std::vector<source> sources = requestsources(requests, by, results);
    drawnsample s;
    if (Int4 rc = drawsample(sources, false, s)) return rc;
    if (reducing && s.n == 0) return noobservations();
    grouping g;
    if (Int4 rc = groupsample(s, sources, sources.size() - by.size(), g)) return rc;
    if (Int4 rc = groupstatistics(s, sources, g, results)) return rc;
    Int4 before = nvar;
    std::vector<newcolumn> columns;
    if (Int4 rc = addcolumns(requests, results, columns)) return rc;
    if (reducing)
        if (Int4 rc = reduce(columns, s, g, by)) return rc;
    for (std::size_t i = 0; i < columns.size() && !reducing; i++)
        if (Int4 rc = fillcolumn(columns[i], s, g.codes())) return rc;
    showvars(before);
    storecounts(s, g);
    return 0;
}

}  // namespace velmo
