// The main loop reads the parts in any order through a table; what may stand, and what must, is told by the controls.
#include "language/stdparse.h"
#include "base/saved.h"
#include "base/text.h"
#include "core/adopath.h"
#include "core/keywords.h"
#include "core/settings.h"
#include "data/cells.h"
#include "data/run.h"
#include "data/timeseries.h"
#include "expr/compile.h"
#include "language/options.h"
#include "language/varlist.h"
#include "output/errors.h"
#include "output/print.h"

namespace velmo {

form parsing;
Int4 vl_n, vl_groups[5], vl_ngroups, vl_groupbegin;
UByte vl_given, ingiven, usinggiven, weightgiven;
char *intextbeg = nullptr, *intextend = nullptr;
Int4 weighttype;

namespace {

// `if`. Variables that the command has just made are visible to it only when observations are being added.
Int4 ifpart() {
    if (parsing.ifexp == never) return notallowed("if");
    if (ifgiven) return error(198);
    saved visible(visnvar);
    if (parsing.in == loosely) visnvar = nvar;
    if (Int4 rc = exp_compile(ifexp, mode_num, {.matjoin = parsing.matjoin})) return rc;
    ifgiven = 1;
    return 0;
}

// One end of a range: f, l, or a whole number that isn't 0; negative ones count from the end.
Int4 rangeend(Int4& obs) {
    Int4 last = parsing.in == loosely ? parsing.inlimit : nobs;
    std::string_view token = nexttoken(breaknum);
    if (token == "f")
        obs = 1;
    else if (token == "l")
        obs = last;
    else if (readinteger(token, obs) && obs != 0)
        obs = obs < 0 ? last + 1 + obs : obs;
    else
        return errorf(198, "%s invalid obs no\n", tokbuf);
    return 0;
}

Int4 inpart() {
    if (parsing.in == never) return notallowed("in");
    if (bymode) return errorf(190, "'in' may not be combined with 'by'\n");
    if (ingiven) return error(198);
    Int4 a, b;
    intextbeg = tokpos;
    if (Int4 rc = rangeend(a)) return rc;
    b = a;
    if (tokpeeknonblank() == '/') {
        nexttoken(breaknum);
        if (Int4 rc = rangeend(b)) return rc;
    }
    if (a < 1 || a > b || (parsing.in != loosely && b > nobs)) return errorf(198, "Obs. nos. out of range\n");
    firstobs = a;
    lastobs = b;
    intextend = tokpos;
    ingiven = 1;
    return 0;
}

Int4 usingpart() {
    if (parsing.file == never) return notallowed("using");
    if (usinggiven) return error(198);
    if (parsing.file == loosely && (tokpeeknonblank() == ',' || tokpeeknonblank() == 0)) return 0;
    char name[tokensize];
    if (Int4 rc = filetoken(name)) return rc;
    copytext(usingname, pathsize, name);
    usinggiven = 1;
    return 0;
}

Int4 exppart(Int4 mode) {
    if (eqgiven) return error(198);
    if (Int4 rc = exp_compile(eqexp, mode)) return rc;
    eqgiven = 1;
    return 0;
}

// An open weight takes the command's default kind and says so.
void assumeweight() {
    weighttype = parsing.openweight;
    if (quietlevel >= shows_errors) return;
    for (const weightrow& row : weightrows)
        if (row.kind == weighttype) notef("(%s weights assumed)\n", row.meaning);
}

// Until the options are read, the kind of weights that they tell.
constexpr Int4 weight_late = weight_all + 1;

void openweight(boolean late) {
    if (late)
        weighttype = weight_late;
    else
        assumeweight();
}

// `=` in a command that takes weights but no =exp is the old way to give weights.
Int4 equalspart() {
    if (parsing.exp != never) return exppart(parsing.exptype);
    if (parsing.weight == never) return notallowed("=exp");
    if (version >= 300) return error(198);
    notef("(please avoid =exp old-style weight syntax)\n");
    if (weightgiven) return errorf(198, "too many weights\n");
    if (Int4 rc = exp_compile(eqexp, mode_num)) return rc;
    weightgiven = 1;
    openweight(parsing.oldscale || parsing.openkind);
    return 0;
}

// The kind that a weight word names: 0 open, -1 unknown.
Int4 weightword() {
    static constexpr keyword words[] = {{"weight", 1, 0}, {"cellsize", 4, weight_a}, {"frequency", 4, weight_f}};
    const weightrow* row = weightnamed(tokbuf);
    return row ? row->kind : lookup(words, tokbuf);
}

Int4 weightpart() {
    if (parsing.weight == never) return notallowed("weights");
    nexttoken();
    if (tokbuf[0] == ']') return 0;
    if (weightgiven) return errorf(198, "too many weights\n");
    Int4 kind = 0;
    if (tokbuf[0] != '=') {
        kind = weightword();
        if (kind < 0) return errorf(198, "%s unknown weight type\n", tokbuf);
        for (const weightrow& row : weightrows)
            if (kind == row.kind && !(parsing.weights & kind)) return notallowed(row.plural);
        nexttoken();
    }
    if (tokbuf[0] != '=' || tokbuf[1]) return error(198);
    if (Int4 rc = exp_compile(eqexp, mode_num, {.stopatbracket = true})) return rc;
    if (nexttoken()[0] != ']') return error(198);
    weightgiven = 1;
    if (kind)
        weighttype = kind;
    else
        openweight(parsing.openkind);
    return 0;
}

// One part of the form; done is set at a token that is none.
Int4 onepart(boolean& done) {
    std::string_view token = nexttoken();
    if (token == "if") return ifpart();
    if (token == "in") return inpart();
    if (token == "using") return usingpart();
    if (token == "=") return equalspart();
    if (token == "[") return weightpart();
    ungettoken();
    done = true;
    if (token != ",") return 0;
    return parsing.options == never ? notallowed("options") : 0;
}

Int4 missingparts() {
    if (parsing.in == must && !ingiven) return required("in range");
    if (parsing.listorrange && !ingiven && !vl_given) return required("varlist or in range");
    if (parsing.file == must && !usinggiven) return required("using");
    if (parsing.exp == must && !eqgiven) return required("=exp");
    return 0;
}

void startparse() {
    if (!bymode) {
        firstobs = groupfirst = 1;
        lastobs = grouplast = nobs;
        if (parsing.in == loosely) lastobs = grouplast = nolimit;
    }
    exp_reset();
    exp_clearsums();
    ts_reset();
    eqgiven = ifgiven = ingiven = usinggiven = weightgiven = vl_given = 0;
    weighttype = 0;
    vl_n = vl_ngroups = vl_groupbegin = 0;
}

Int4 varlistpart() {
    if (parsing.varlist == never) return 0;
    return parsing.newvars ? newlist() : existinglist();
}

// With bareexp the expression may stand without its `=`: anything that starts no other part.
Int4 bareexp() {
    if (!parsing.bareexp || parsing.exp == never) return 0;
    nexttoken();
    std::string_view token = tokbuf;
    boolean other = token.empty() || token == "=" || token == "," || token == "[" || token == "if" || token == "in";
    ungettoken();
    return other ? 0 : exppart(parsing.exptype);
}

Int4 parseform() {
    startparse();
    if (bymode && parsing.by == never) return error(190);
    if (Int4 rc = varlistpart()) return rc;
    if (Int4 rc = bareexp()) return rc;
    for (boolean done = false; !done;)
        if (Int4 rc = onepart(done)) return rc;
    if (Int4 rc = missingparts()) return rc;
    if (Int4 rc = parseoptions()) return rc;
    if (weighttype != weight_late) return 0;
    if (parsing.openkind)
        parsing.openweight = parsing.openkind();
    else
        parsing.openweight = getopt_flag("scale", 1) ? weight_a : weight_f;
    assumeweight();
    return 0;
}

}  // namespace

namespace {

// What the first group's parse found. The expressions stay compiled in eqexp and ifexp.
struct keptform {
    boolean valid = false;
    std::vector<Int4> vars;
    std::vector<tsvar> operated;
    Int4 groups[5], ngroups, groupbegin;
    char* behind;
};
keptform kept;

void keepform() {
    kept.valid = true;
    kept.vars.assign(vl_vr, vl_vr + vl_n);
    kept.operated.assign(vl_rcp, vl_rcp + vl_n);
    std::copy(vl_groups, vl_groups + 5, kept.groups);
    kept.ngroups = vl_ngroups;
    kept.groupbegin = vl_groupbegin;
    kept.behind = tokpos;
}

Int4 restoreform() {
    vl_n = Int4(kept.vars.size());
    std::copy(kept.vars.begin(), kept.vars.end(), vl_vr);
    std::copy(kept.operated.begin(), kept.operated.end(), vl_rcp);
    std::copy(kept.groups, kept.groups + 5, vl_groups);
    vl_ngroups = kept.ngroups;
    vl_groupbegin = kept.groupbegin;
    settokpos(kept.behind);
    getopt_again();
    exp_clearsums();
    return 0;
}

}  // namespace

const weightrow* weightnamed(std::string_view word) {
    for (const weightrow& row : weightrows)
        if (abbrev(word, row.word, 2)) return &row;
    return nullptr;
}

void stdparse_forget() { kept.valid = false; }

// The usual form is back on every way out, so that a nested command starts from it.
Int4 stdparse(const form& f) {
    saved usual(parsing, f);
    if (bymode == 2 && kept.valid) return restoreform();
    Int4 rc = parseform();
    if (!rc && bymode == 1) keepform();
    return rc;
}

// A command's condition without the command: `exp` and nothing else.
Int4 parsecondition() {
    saved usual(parsing, form{.varlist = never, .in = never, .options = never});
    startparse();
    if (Int4 rc = ifpart()) return rc;
    if (tokpeeknonblank() == 0) return 0;
    for (boolean done = false; !done;)
        if (Int4 rc = onepart(done)) return rc;
    return parseoptions();
}

Int4 parseif(partrule options) { return stdparse({.varlist = never, .options = options}); }

Int4 entryop(Int4 i) { return vl_rcp[i].op; }

Double varvalue(Int4 i, Int4 obs) {
    return vl_rcp[i].op ? tsvalue(vl_rcp[i].op, vl_vr[i], obs) : getobs(vl_vr[i], obs);
}

std::string entryname(Int4 i) {
    std::string name = varlist[vl_vr[i] - 1];
    if (!vl_rcp[i].op) return name;
    char ops[24];
    return std::string(ts_text(vl_rcp[i].op, ops)) + "." + name;
}

}  // namespace velmo
