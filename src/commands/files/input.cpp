// input: observations typed at the keyboard or standing in a do-file.
#include <string>
#include <vector>
#include "base/poll.h"
#include "base/saved.h"
#include "commands/files/textnumber.h"
#include "data/cells.h"
#include "data/run.h"
#include "data/structure.h"
#include "language/dofile.h"
#include "language/options.h"
#include "language/stdparse.h"
#include "language/varlist.h"
#include "output/errors.h"
#include "output/print.h"

namespace velmo {

namespace {

struct inputvalue { Double number; std::string text; };
struct inputstate {
    boolean label, automatic;
    boolean newvars;                     // some variables are new
    std::vector<Int4> vars;
    std::vector<inputvalue> values;      // of the line in hand, by place in vars
};

const breakset& valuebreaks() {
    static const breakset set = [] {
        breakset s = breaknum;
        s.in[UByte('\\')] = 0;
        return s;
    }();
    return set;
}

// The values of the line in hand, its first token being read; fine is false when it must be typed again. They are
// stored only once all are known: a value label that grows may move the rows.
Int4 readvalues(inputstate& s, boolean& fine) {
    fine = true;
    for (std::size_t i = 0; i < s.vars.size(); i++) {
        if (i) nexttoken(valuebreaks());
        inputvalue& v = s.values[i];
        v.text = tokcontent();
        if (isstring(s.vars[i])) continue;
        if (Int4 rc = numbers_read(v.text, isquoted(), s.vars[i], 0, v.number, fine)) return rc;
        if (!fine) return 0;
    }
    return 0;
}

void storevalues(const inputstate& s, Int4 obs) {
    for (std::size_t i = 0; i < s.vars.size(); i++)
        if (isstring(s.vars[i]))
            putstr(s.vars[i], obs, s.values[i].text);
        else
            putobs(s.vars[i], obs, s.values[i].number);
}

// Reads the line of observation obs: 0 with its values, -1 `end`, else a code.
Int4 readobservation(inputstate& s, Int4 obs) {
    for (boolean fine = false; !fine;) {
        if (quietlevel < shows_errors) {
            printing as(out_text);
            prtf("%3d", obs);
        }
        saved text(typingtext, UByte(1));
        getline();
        if (eofseen) return error(612);
        if (breakpending) return 1;
        settokpos(cmdbuf);
        nexttoken(valuebreaks());
        if (std::string_view(tokbuf) == "end") return -1;
        if (Int4 rc = readvalues(s, fine)) return rc;
        if (breakpending) return 1;
    }
    return 0;
}

// New variables in a dataset that has observations: lines fill them from the first one on.
Int4 fillnew(inputstate& s) {
    for (Int4 var : s.vars)
        for (Int4 obs = 1; obs <= nobs; obs++) clearcell(var, obs);
    for (Int4 obs = 1; obs <= nobs; obs++) {
        if (Int4 rc = readobservation(s, obs)) return rc < 0 ? 0 : rc;
        storevalues(s, obs);
    }
    return 0;
}

// A new last observation, missing but for the values read.
Int4 append(const inputstate& s) {
    if (Int4 rc = nextobsroom()) return rc;
    for (Int4 v = 1; v <= nvar; v++) clearcell(v, nobs + 1);
    storevalues(s, nobs + 1);
    for (Int4 v : samplemarkers()) putobs(v, nobs + 1, 0);
    nobs++;
    srt[0] = 0;
    return 0;
}

// Lines add observations at the end.
Int4 appendlines(inputstate& s) {
    while (true) {
        if (Int4 rc = readobservation(s, nobs + 1)) return rc < 0 ? 0 : rc;
        if (Int4 rc = append(s)) return rc;
    }
}

// Anything but options behind the command's word names new variables.
boolean namesfollow() {
    char c = tokpeeknonblank();
    return c && c != ',';
}

}  // namespace

// input [varlist] [, automatic label], lines, end
Int4 cmd_input() {
    inputstate s;
    s.newvars = namesfollow();
    boolean wasempty = nvar == 0 && nobs == 0;
    if (Int4 rc = stdparse({.newvars = s.newvars, .ifexp = never, .in = never})) return rc;
    s.automatic = getopt_flag("automatic", 1);
    s.label = getopt_flag("label", 1) || s.automatic;
    if (Int4 rc = getopt_done()) return rc;
    if (vl_n == 0) return error(104);
    s.vars.assign(vl_vr, vl_vr + vl_n);
    s.values.resize(s.vars.size());
    numbers_start(s.label, s.automatic);
    visnvar = nvar;
    boolean fill = s.newvars && nobs > 0;
    UByte changed = datachanged;
    Int4 rc = fill ? fillnew(s) : appendlines(s);
    datachanged = wasempty && nobs == 0 ? changed : UByte(1);
    Int4 failed = numbers_end();
    for (Int4 var : s.vars) numbers_widen(var);
    return rc ? rc : failed;
}

}  // namespace velmo
