// by and bysort: the prefix, its groups, and the programs that it calls.
#include <cstring>
#include "base/saved.h"
#include "base/text.h"
#include "core/commands.h"
#include "core/macros.h"
#include "data/cells.h"
#include "data/labels.h"
#include "data/run.h"
#include "data/sorting.h"
#include "data/structure.h"
#include "language/autoload.h"
#include "language/by.h"
#include "language/levels.h"
#include "language/options.h"
#include "language/programs.h"
#include "language/stdparse.h"
#include "language/tempnames.h"
#include "language/turn.h"
#include "language/varlist.h"
#include "output/errors.h"
#include "output/formats.h"
#include "output/print.h"

namespace velmo {

namespace {

// ---- The prefix itself.

// The colon that ends the prefix, outside quotes, or null.
char* findcolon() {
    boolean quoted = false;
    for (char* p = tokpos; *p; p++) {
        if (*p == '"') quoted = !quoted;
        if (*p == ':' && !quoted) return p;
    }
    return nullptr;
}

// Variables ahead of the parentheses are the by-variables; one group may stand, and only at the end.
Int4 takegroups() {
    if (vl_ngroups > 1 || (vl_ngroups == 1 && vl_groups[0] != vl_n)) return error(198);
    nby = vl_ngroups ? vl_groupbegin : vl_n;
    if (nby == 0) return required("varlist");
    for (Int4 i = 0; i < nby; i++) by[i] = UInt2(vl_vr[i]);
    return 0;
}

boolean sortedbylist() {
    for (Int4 i = 0; i < vl_n; i++)
        if (srt[i] != vl_vr[i]) return false;      // the zero behind the key's end is no variable
    return true;
}

// The text up to the colon, which stands as the line's end for the parser.
Int4 parseprefix(boolean& rc0) {
    if (Int4 rc = stdparse({.varlist = must, .ifexp = never, .in = never})) return rc;
    rc0 = getopt_flag("rc0", 3);
    if (Int4 rc = getopt_done()) return rc;
    return takegroups();
}

Int4 readprefix(boolean sorts, boolean& rc0) {
    if (bymode) {
        errmsg(msg_multipleby);
        return 190;
    }
    char* colon = findcolon();
    if (!colon) return required("by varlist:");
    {
        *colon = 0;
        onexit restore([colon] { *colon = ':'; });
        if (Int4 rc = parseprefix(rc0)) return rc;
    }
    if (sorts && nobs && !sortedbylist())
        if (Int4 rc = sortdata(1, nobs, vl_vr, vl_n)) return rc == 1 ? rc : error(rc);
    if (nobs && !sortedbylist()) return error(5);
    settokpos(colon + 1);
    takecmdword();
    return cmdword[0] ? 0 : error(198);
}

// ---- Groups.

// The last observation that agrees with `first` on the by-variables. They stand together: the data are sorted.
Int4 groupend(Int4 first) {
    Int4 last = first;
    if (nby > 1 || isstring(by[0])) {
        while (last < nobs && samegroup(first, last + 1, by, nby)) last++;
        return last;
    }
    column c(by[0]);
    Double value = c.get(first);
    while (last < nobs && c.get(last + 1) == value) last++;
    return last;
}

// A by-variable's value as the heading shows it.
std::string shownvalue(Int4 var, Int4 obs) {
    if (isstring(var)) {
        fmtshown(fmt[var - 1], strcell(var, obs), true);
    } else {
        vallabel label;
        if (lbl[var - 1][0]) vl_load(lbl[var - 1], label);
        fmtlbl(fmt[var - 1], getobs(var, obs), label.exists ? &label : nullptr);
    }
    return std::string(trimmed(dbuf));
}

void heading(Int4 obs) {
    if (printing::role() < quietlevel) return;
    std::string line = "-> ";
    for (Int4 i = 0; i < nby; i++)
        line += (i ? ", " : "") + std::string(varlist[by[i] - 1]) + " = " + shownvalue(by[i], obs);
    prt("\n" + std::string(79, '_') + "\n" + line + "\n");
}

// A group's code: what ends the loop, or 0. A group without observations for its command ends quietly; under rc0 only
// a Break ends the loop.
Int4 groupresult(Int4 rc, boolean rc0) {
    if (rc == 0 || rc == 1) return rc;
    if (rc0) {
        printing as(out_result);
        prtf("(return code was %d)\n", rc);
        return 0;
    }
    return rc == 2000 || rc == 2001 ? 0 : rc;
}

Int4 grouploop(const command& row, boolean rc0) {
    char* arguments = tokpos;
    Int4 before = nvar;
    onexit done([] { bymode = bylastgroup = 0; });
    stdparse_forget();
    bymode = 1;
    for (Int4 first = 1; first <= nobs;) {
        Int4 last = groupend(first);
        firstobs = groupfirst = first;
        lastobs = grouplast = last;
        bylastgroup = last == nobs;
        if (!(row.flags & cmd_bysilent)) heading(first);
        settokpos(arguments);
        Int4 rc = dispatch();
        prtfresh();                   // count leaves its line open
        shrinkvars(visnvar);
        if (rc && bymode == 1)
            stdparse_forget();        // the next group parses anew
        else
            bymode = 2;
        if ((rc = groupresult(rc, rc0))) {
            shrinkvars(before);
            return rc;
        }
        first = last + 1;
    }
    return 0;
}

// ---- Programs.

std::string byname(const char* stem) { return stem + std::to_string(bydepth); }

std::string bytext() {
    std::string text;
    for (Int4 i = 0; i < nby; i++) text += (i ? " " : "") + std::string(varlist[by[i] - 1]);
    return text;
}

Int4 setbymacros(boolean rc0, const std::string& vars, const std::string& marker) {
    std::string key;
    for (const UInt2* s = srt; *s; s++) key += (key.empty() ? "" : " ") + std::string(varlist[*s - 1]);
    const struct { const char* stem; std::string value; } rows[] = {
        {"!BY", (rc0 ? "1 " : "0 ") + vars}, {"!BYc", cmdbuf}, {"!BYm", marker}, {"!BYs", key},
    };
    for (const auto& row : rows)
        if (Int4 rc = macroset(byname(row.stem), row.value)) return rc;
    return 0;
}

void clearbymacros() {
    for (const char* stem : {"!BY", "!BYc", "!BYm", "!BYs"}) macroclear(byname(stem));
}

// The marker: a new long variable with the number of each observation's group; their count.
Int4 makemarker(const std::string& name, Int4& groups) {
    if (Int4 rc = addvar(name, typelong, true)) return rc;
    groups = 0;
    for (Int4 first = 1; first <= nobs;) {
        Int4 last = groupend(first);
        groups++;
        for (; first <= last; first++) putlong(nvar, first, groups);
    }
    visnvar = nvar;
    return 0;
}

// The by-variables under their names: a program may have moved or dropped them.
Int4 findbyvars(const std::string& vars) {
    nby = 0;
    for (std::size_t i = 0; i < vars.size();) {
        std::size_t end = std::min(vars.find(' ', i), vars.size());
        Int4 var = findvar(std::string_view(vars).substr(i, end - i));
        if (!var) return notfound("by variables");
        by[nby++] = UInt2(var);
        i = end + 1;
    }
    return 0;
}

// An observation of the group: at or behind `from`, where it stands unless the program sorted, or anywhere; 0 if none.
Int4 findgroup(Int4 marker, Int4 group, Int4 from) {
    for (Int4 obs = from; obs <= nobs; obs++)
        if (getlong(marker, obs) == group) return obs;
    for (Int4 obs = 1; obs < from && obs <= nobs; obs++)
        if (getlong(marker, obs) == group) return obs;
    return 0;
}

// One call; nextcall is set. The word and its line are put back first: the program before has used the buffer.
Int4 callprogram(const std::string& word, const std::string& line, std::size_t arguments) {
    copytext(cmdword, sizeof cmdword, word);
    copytext(cmdbuf, std::size_t(conslen), line);
    settokpos(cmdbuf + arguments);
    nextcall.pending = true;
    Int4 rc = docall(level_program);
    nextcall.pending = false;
    return rc;
}

struct programby {
    std::string word, line, vars, marker;
    std::size_t arguments;
    boolean rc0, shows;
};

Int4 callgroups(const programby& b, Int4 groups) {
    Int4 at = 1;
    for (Int4 group = 1; group <= groups; group++) {
        if (Int4 rc = findbyvars(b.vars)) return rc;
        Int4 marker = findvar(b.marker);
        if (!marker) return errorf(111, "by marker variable %s not found\n", b.marker.c_str());
        Int4 found = findgroup(marker, group, at);
        if (!found) continue;                  // the program has dropped them all
        at = found;
        if (b.shows) heading(at);
        nextcall = {false, group, group == groups, b.vars, b.rc0 ? ", rc0" : "", b.marker};
        if (Int4 rc = groupresult(callprogram(b.word, b.line, b.arguments), b.rc0)) return rc;
    }
    return 0;
}

Int4 recallprogram(programby& b) {
    b.marker = newtempname();
    onexit drop([&b] {
        if (Int4 var = findvar(b.marker)) dropworkvar(var);
    });
    Int4 groups;
    if (Int4 rc = makemarker(b.marker, groups)) return rc;
    if (Int4 rc = setbymacros(b.rc0, b.vars, b.marker)) return rc;
    return callgroups(b, groups);
}

Int4 onecall(const programby& b) {
    if (Int4 rc = setbymacros(b.rc0, b.vars, "")) return rc;
    nextcall = {false, 0, true, b.vars, b.rc0 ? ", rc0" : "", ""};
    return callprogram(b.word, b.line, b.arguments);
}

Int4 notbyable(const char* name) { return errorf(190, "%s may not be combined with by\n", name); }

Int4 runbyprogram(boolean rc0) {
    if (!findprogram(cmdword, programhome))
        if (Int4 rc = autoload(".ado", true)) return rc;
    UByte how = programheader(findprogram(cmdword, programhome)).byable;
    if (!how) return notbyable(cmdword);
    if (bydepth >= maxbydepth) return errorf(920, "too many nested by's\n");
    saved depth(bydepth, bydepth + 1);
    programby b{cmdword, cmdbuf, bytext(), "", std::size_t(tokpos - cmdbuf), rc0, how != 3};
    onexit clear(clearbymacros);
    return how == 1 ? onecall(b) : recallprogram(b);
}

// by and bysort varlist [(varlist)] [, rc0] : command
Int4 byprefix(boolean sorts) {
    boolean rc0 = false;
    if (Int4 rc = readprefix(sorts, rc0)) return rc;
    const command* row = commandrow(cmdword);
    if (!row || !row->handler) return runbyprogram(rc0);
    if (row->flags & cmd_groups) {
        errmsg(msg_multipleby);
        return 190;
    }
    return row->flags & cmd_byable ? grouploop(*row, rc0) : notbyable(row->word);
}

}  // namespace

Int4 cmd_by() { return byprefix(false); }
Int4 cmd_bysort() { return byprefix(true); }

}  // namespace velmo
