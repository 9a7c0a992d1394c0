// input: observations typed at the keyboard or standing in a do-file.
#include <string>
#include <vector>
#include "base/poll.h"
#include "base/saved.h"
#include "base/text.h"
#include "data/cells.h"
#include "data/labels.h"
#include "data/run.h"
#include "language/dofile.h"
#include "language/stdparse.h"
#include "language/varlist.h"
#include "output/errors.h"
#include "output/print.h"

namespace velmo {

namespace {

struct inputstate {
    boolean label, automatic;
    boolean newvars;                // some variables are new
    std::vector<Int4> vars;
    std::vector<vallabel> labels;   // by place in vars
};

const breakset& valuebreaks() {
    static const breakset set = [] {
        breakset s = breakstd;
        s.in[UByte('-')] = s.in[UByte('+')] = 0;
        return s;
    }();
    return set;
}

void loadlabels(inputstate& s) {
    s.labels.assign(s.vars.size(), {});
    if (!s.label) return;
    for (std::size_t i = 0; i < s.vars.size(); i++)
        if (!isstring(s.vars[i]) && lbl[s.vars[i] - 1][0]) vl_load(lbl[s.vars[i] - 1], s.labels[i]);
}

// The number rule: a point is missing; d and D stand for e; what is no number may be a label's text.
Int4 numbervalue(inputstate& s, std::size_t i, const char* token, Double& value, boolean& fine) {
    fine = true;
    value = missing;
    if (std::string_view(token) == ".") return 0;
    std::string_view text = trimmed(std::string_view(token).substr(0, 79));
    if (readnumber(text, value)) {
        value = datavalue(value);
        return 0;
    }
    const char* lblname = lbl[s.vars[i] - 1];
    std::string_view content = token[0] == '"' ? token + 1 : token;
    if (s.label && lblname[0] && !content.empty()) {
        value = vl_texttoval(lblname, content);
        if (value != missing) return 0;
        if (s.automatic) {
            Int4 rc = vl_nextval(lblname, content, value);
            loadlabels(s);
            if (rc) return rc == 134 ? error(134) : rc;
            return 0;
        }
    }
    fine = false;
    saved level(outlevel, UByte(1));
    prtraw("{bf:'");
    prt(content);
    prtraw("' cannot be read as a number}\n");
    return 0;
}

// One line's values into observation obs; fine is false when the line must be typed again.
Int4 storeline(inputstate& s, Int4 obs, boolean& fine) {
    for (std::size_t i = 0; i < s.vars.size(); i++) {
        if (i) nexttoken(valuebreaks());
        if (isstring(s.vars[i])) {
            putstr(s.vars[i], obs, tokcontent());
            continue;
        }
        std::string token = tokbuf;
        Double value;
        if (Int4 rc = numbervalue(s, i, token.c_str(), value, fine)) return rc;
        if (!fine) return 0;
        putobs(s.vars[i], obs, value);
    }
    return 0;
}

// Reads the line of observation obs: 0 stored, -1 `end`, else a code.
Int4 readobservation(inputstate& s, Int4 obs) {
    for (boolean fine = false; !fine;) {
        if (quietlevel < 3) {
            saved level(outlevel, UByte(1));
            prtf("%3d", obs);
        }
        getline();
        if (eofseen) return error(612);
        if (breakpending) return 1;
        settokpos(cmdbuf);
        nexttoken(valuebreaks());
        if (std::string_view(tokbuf) == "end") return -1;
        fine = true;
        if (Int4 rc = storeline(s, obs, fine)) return rc;
        if (breakpending) return 1;
    }
    return 0;
}

// New variables in a dataset that has observations: lines fill them from the first one on.
Int4 fillnew(inputstate& s) {
    for (Int4 var : s.vars)
        for (Int4 obs = 1; obs <= nobs; obs++) clearcell(var, obs);
    for (Int4 obs = 1; obs <= nobs; obs++)
        if (Int4 rc = readobservation(s, obs)) return rc < 0 ? 0 : rc;
    return 0;
}

// Lines add observations at the end.
Int4 appendlines(inputstate& s) {
    Int4 sample = findvar("(e)"), before = nobs, rc = 0;
    while (!rc) {
        if (nobs + 1 >= maxobs) {
            rc = obsroom(1);
            if (rc) return error(rc);
        }
        touchptrs(nobs + 2);
        for (Int4 v = 1; v <= nvar; v++) clearcell(v, nobs + 1);
        if (sample) putobs(sample, nobs + 1, 0);
        rc = readobservation(s, nobs + 1);
        if (!rc) nobs++;
    }
    if (nobs > before) srt[0] = 0;
    return rc < 0 ? 0 : rc;
}

void widenlabelled(const inputstate& s) {
    if (!s.automatic) return;
    for (Int4 var : s.vars)
        if (!isstring(var) && lbl[var - 1][0]) fmtwiden(var, var);
}

// Anything but options behind the command's word names new variables.
boolean namesfollow() {
    char c = tokpeeknonblank();
    return c && c != ',';
}

}  // namespace

// input [varlist] [, automatic label], lines, end
Int4 cmd_input() {
    if (bymode) return error(190);
    inputstate s;
    s.newvars = namesfollow();
    p_existing = s.newvars ? 0 : 1;
    p_if = p_in = 3;
    boolean wasempty = nvar == 0 && nobs == 0;
    if (Int4 rc = stdparse()) return rc;
    s.automatic = getopt_flag("automatic", 1);
    s.label = getopt_flag("label", 1) || s.automatic;
    if (Int4 rc = getopt_done()) return rc;
    if (vl_n == 0) return error(104);
    s.vars.assign(vl_vr, vl_vr + vl_n);
    loadlabels(s);
    visnvar = nvar;
    boolean fill = s.newvars && nobs > 0;
    UByte changed = datachanged;
    Int4 rc = fill ? fillnew(s) : appendlines(s);
    datachanged = wasempty && nobs == 0 ? changed : UByte(1);
    widenlabelled(s);
    return rc;
}

}  // namespace velmo
