#include "data/timeseries.h"
#include <algorithm>
#include <string>
#include "base/text.h"
#include "data/cells.h"
#include "data/chars.h"
#include "data/run.h"
#include "output/errors.h"

namespace velmo {

Int4 tsvarnum, tspanelnum;

namespace {

tsop records[maxtsops];
Int4 nrecords;

boolean same(const tsop& a, const tsop& b) {
    return a.lag == b.lag && a.diff == b.diff && a.nseas == b.nseas && std::equal(a.seas, a.seas + a.nseas, b.seas);
}

// The count behind a letter, 1 when there is none; false when it is no number of up to nine digits.
boolean readcount(std::string_view ops, std::size_t& at, Int4& count) {
    std::size_t start = at;
    if (at < ops.size() && (ops[at] == '-' || ops[at] == '+')) at++;
    while (at < ops.size() && isdigit(ops[at])) at++;
    count = 1;
    return at == start || readinteger(ops.substr(start, at - start), count);
}

// Works one letter with its count into the record; 0, or 1 for an invalid one, 2 for too large a difference.
Int4 applyoperator(tsop& op, char letter, Int4 count) {
    std::int64_t lag = op.lag;
    switch (lowerchar(letter)) {
    case 'l': lag += count; break;
    case 'f': lag -= count; break;
    case 'd':
        if (count < 0) return 1;
        if (count > 20 || op.diff + count > 20) return 2;
        op.diff += count;
        break;
    case 's':
        if (count < 0 || op.nseas == 8) return 1;
        op.seas[op.nseas++] = count;
        std::sort(op.seas, op.seas + op.nseas);
        break;
    default: return 1;
    }
    op.lag = Int4(lag);
    return lag == op.lag ? 0 : 1;
}

std::string texted(const tsop& op) {
    auto part = [](char letter, std::int64_t n) { return std::string(1, letter) + (n == 1 ? "" : std::to_string(n)); };
    std::string text;
    if (op.lag > 0) text += part('L', op.lag);
    if (op.lag < 0) text += part('F', -std::int64_t(op.lag));
    if (op.diff) text += part('D', op.diff);
    for (Int4 i = 0; i < op.nseas; i++) text += part('S', op.seas[i]);
    return text;
}

Int4 enter(const tsop& op, Int4* number) {
    for (Int4 i = 0; i < nrecords; i++)
        if (same(records[i], op)) {
            *number = i + 1;
            return 0;
        }
    if (nrecords == maxtsops) return errorf(1000, "too many time-series operators\n");
    records[nrecords++] = op;
    *number = nrecords;
    return 0;
}

}  // namespace

void ts_reset() { nrecords = 0; }

Int4 ts_parse(std::string_view ops, Int4* number) {
    tsop op{};
    for (std::size_t at = 0; at < ops.size();) {
        Int4 count;
        char letter = ops[at++];
        if (!readcount(ops, at, count)) return opmsg(ops, op_invalid);
        if (Int4 bad = applyoperator(op, letter, count)) return opmsg(ops, bad == 2 ? op_d20 : op_invalid);
    }
    std::string text = texted(op);
    if (text.size() >= 20) return opmsg(ops, op_toolong);
    *number = 0;
    return text.empty() ? 0 : enter(op, number);
}

char* ts_text(Int4 number, char* out) { return copytext(out, 21, texted(records[number - 1])); }

Int4 tsetup() {
    std::string time = char_get("_dta", "_TStvar"), panel = char_get("_dta", "_TSpanel");
    tsvarnum = time.empty() ? 0 : findvar(time);
    tspanelnum = panel.empty() ? 0 : findvar(panel);
    if (!tsvarnum) return errorf(111, "time variable not set\n");
    const UInt2* s = srt;
    if (tspanelnum && *s++ != tspanelnum) return error(5);
    return *s == tsvarnum ? 0 : error(5);
}

namespace {

struct panelkey { Double panel, time; };

panelkey keyof(Int4 obs) { return {tspanelnum ? getobs(tspanelnum, obs) : 0, getobs(tsvarnum, obs)}; }

// Observation obs against the key sought.
Int4 against(Int4 obs, const panelkey& sought) {
    panelkey here = keyof(obs);
    if (here.panel != sought.panel) return here.panel < sought.panel ? -1 : 1;
    return here.time < sought.time ? -1 : here.time > sought.time;
}

}  // namespace

Int4 findobs(Int4 obs, Int4 k) {
    panelkey sought = keyof(obs);
    if (sought.time >= missing) return 0;
    sought.time -= k;
    std::int64_t lo = groupfirst, hi = grouplast;
    std::int64_t guess = std::clamp<std::int64_t>(std::int64_t(obs) - k, lo, hi);
    Int4 c = against(Int4(guess), sought);
    if (c == 0) return Int4(guess);
    // Steps of k in the direction of what is sought, until it is passed.
    std::int64_t step = k ? std::max<std::int64_t>(std::int64_t(k) < 0 ? -std::int64_t(k) : k, 1) : 1;
    if (c > 0) {
        for (hi = guess - 1; guess - step >= lo; guess -= step, hi = guess)
            if (against(Int4(guess - step), sought) <= 0) {
                lo = guess - step;
                break;
            }
    } else {
        for (lo = guess + 1; guess + step <= hi; guess += step, lo = guess)
            if (against(Int4(guess + step), sought) >= 0) {
                hi = guess + step;
                break;
            }
    }
    while (lo <= hi) {
        std::int64_t middle = lo + (hi - lo) / 2;
        c = against(Int4(middle), sought);
        if (c == 0) return Int4(middle);
        if (c < 0)
            lo = middle + 1;
        else
            hi = middle - 1;
    }
    return 0;
}

namespace {

Double minus(Double here, Double before) { return here >= missing || before >= missing ? missing : here - before; }

// The d-th difference, by the triangle of differences of the d + 1 observations that it rests on.
Double ordinary(Int4 d, Int4 var, Int4 obs) {
    Double v[21];
    for (Int4 i = 0; i <= d; i++) {
        v[i] = obs ? getobs(var, obs) : missing;
        if (obs && i < d) obs = findobs(obs, 1);
    }
    for (Int4 n = d; n > 0; n--)
        for (Int4 i = 0; i < n; i++) v[i] = minus(v[i], v[i + 1]);
    return v[0];
}

// Seasonal differences from the i-th on, then the ordinary ones.
Double difference(const tsop& op, Int4 i, Int4 var, Int4 obs) {
    if (obs == 0) return missing;
    if (i == op.nseas) return ordinary(op.diff, var, obs);
    Double here = difference(op, i + 1, var, obs);
    return here >= missing ? missing : minus(here, difference(op, i + 1, var, findobs(obs, op.seas[i])));
}

}  // namespace

Double tsvalue(Int4 number, Int4 var, Int4 obs) {
    const tsop& op = records[number - 1];
    if (op.lag) obs = findobs(obs, op.lag);
    return difference(op, 0, var, obs);
}

}  // namespace velmo
