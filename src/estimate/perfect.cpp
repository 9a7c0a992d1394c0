#include "estimate/perfect.h"
#include <algorithm>
#include "base/text.h"
#include "language/stdparse.h"
#include "matrix/lanes.h"
#include "output/formats.h"

namespace velmo {

namespace {

constexpr Double nothingyet = 1e30;

// Extremes of each column of the sample's rows, of failures and of successes.
struct extremes {
    std::vector<Double> low[2], high[2];
    explicit extremes(std::size_t width) {
        for (Int4 y : {0, 1}) {
            low[y].assign(width, nothingyet);
            high[y].assign(width, -nothingyet);
        }
    }
};

// Those of the rows listed, four columns at a time.
void takeextremes(const rowsblock& b, const Int4* rows, Int4 n, Double* low, Double* high) {
    for (Int4 j = 0; j < b.width; j += 4) {
        pair2 l0 = loadpair(low + j), l1 = loadpair(low + j + 2), h0 = loadpair(high + j), h1 = loadpair(high + j + 2);
        for (Int4 i = 0; i < n; i++) {
            const Double* row = b.row(rows[i]) + j;
            pair2 x0 = loadpair(row), x1 = loadpair(row + 2);
            l0 = x0 < l0 ? x0 : l0;
            l1 = x1 < l1 ? x1 : l1;
            h0 = x0 > h0 ? x0 : h0;
            h1 = x1 > h1 ? x1 : h1;
        }
        storepair(low + j, l0);
        storepair(low + j + 2, l1);
        storepair(high + j, h0);
        storepair(high + j + 2, h1);
    }
}

Int4 scan(const estsample& s, extremes& e) {
    Int4 rows[2][blocksize];
    return overrows(s, [&](const rowsblock& b) {
        Int4 n[2] = {0, 0};
        for (Int4 i = 0; i < b.n; i++) {
            boolean y = b.row(i)[1] != 0;
            rows[0][n[0]] = rows[1][n[1]] = i;
            n[y]++;
        }
        for (Int4 y : {0, 1}) takeextremes(b, rows[y], n[y], e.low[y].data(), e.high[y].data());
    });
}

// What a regressor does to the outcome: that of a rule, whose kind is 4 when it decides nothing, or all of it.
struct verdict {
    Int4 kind = 4, outcome = 0;
    const char* op = "~=";
    boolean separates = false;
    Double value = 0;
};

verdict judge(Double low0, Double high0, Double low1, Double high1) {
    Float min0 = Float(low0), max0 = Float(high0), min1 = Float(low1), max1 = Float(high1);
    if (min0 == max0 && min1 == max1 && min0 == min1) return {};
    if (min0 == max0 && (min0 == min1 || min0 == max1)) return {1, 1, "~=", false, low0};
    if (min1 == max1 && (min1 == min0 || min1 == max0)) return {1, 0, "~=", false, low1};
    if (max0 == min1) return {2, 0, ">", false, high0};
    if (max1 == min0) return {3, 0, "<", false, high1};
    if (max0 < min1) return {4, 0, ">", true, high0};
    if (max1 < min0) return {4, 0, "<=", true, high1};
    return {};
}

std::string valuetext(Double value) {
    fmtnum("%9.0g", value);
    return std::string(trimmed(dbuf));
}

std::string clause(const std::string& name, const char* op, Double value) { return name + op + valuetext(value); }

Int4 note(const verdict& v, const std::string& name, Int4 left) {
    std::string text = clause(name, v.op, v.value);
    if (v.kind == 1)
        text += std::string(" predicts ") + (v.outcome ? "success" : "failure") + " perfectly";
    else
        text = "outcome = " + text + " predicts data perfectly except for\n      " + clause(name, "==", v.value) +
               " subsample:";
    return notef("(note: %s\n      %s dropped and %d obs not used)\n", text.c_str(), name.c_str(), left);
}

// Marks the observations where source j is another value.
Int4 markothers(const estsample& s, std::size_t j, Double value, UByte* leaves, Int4& n) {
    std::fill_n(leaves, s.run, UByte(0));
    return overrows(s, [&](const rowsblock& b) {
        for (Int4 i = 0; i < b.n; i++) {
            boolean other = Float(b.row(i)[j + 1]) != Float(value);
            leaves[b.obs[i] - s.first] = other;
            n += other;
        }
    });
}

// The regressor (from 0) goes, with what it decides.
Int4 leave(estsample& s, std::vector<std::string>& names, std::size_t j, const verdict& v,
           std::vector<rulerecord>& rules) {
    workspace leaves(std::size_t(s.run) + 1);
    if (!leaves.p) return error(909);
    Int4 n = 0;
    if (Int4 rc = markothers(s, j + 1, v.value, leaves.get<UByte>(), n)) return rc;
    note(v, names[j], n);
    rulerecord r;
    r.value = v.value;
    r.kind = v.kind;
    r.outcome = v.outcome;
    copytext(r.name, sizeof r.name, names[j]);
    rules.push_back(r);
    droprows(s);
    s.sources.erase(s.sources.begin() + std::ptrdiff_t(j) + 1);
    names.erase(names.begin() + std::ptrdiff_t(j));
    return narrowsample(s, leaves.get<UByte>());
}

}  // namespace

namespace {

// Whether outcomes of that mark count: importance weights, which may be 0 or below, by their sum.
boolean hasoutcome(const estsample& s, UByte mark) {
    const UByte *in = s.in(), *end = in + s.run;
    if (weighttype != weight_i) return std::find(in, end, mark) != end;
    Double sum = 0;
    for (Int4 i = 0; i < s.run; i++)
        if (in[i] == mark) sum += s.weights()[i];
    return sum > 0;
}

}  // namespace

Int4 checkvaries(const estsample& s) {
    for (UByte y : {1, 2})
        if (!hasoutcome(s, y))
            return errorf(2000, "outcome does not vary; remember:\n%34s0 = negative outcome,\n"
                                "%8sall other nonmissing values = positive outcome\n", "", "");
    return 0;
}

Int4 dropperfect(estsample& s, std::vector<std::string>& names, std::vector<rulerecord>& rules) {
    for (boolean again = true; again;) {
        again = false;
        if (Int4 rc = checkvaries(s)) return rc;
        if (Int4 rc = keeprows(s)) return rc;
        extremes e(std::size_t(rowbuffers(s.sources.size()).width));
        if (Int4 rc = scan(s, e)) return rc;
        for (std::size_t j = 0; j < names.size() && !again; j++) {
            auto at = [&](const std::vector<Double>& x) { return x[j + 2]; };
            verdict v = judge(at(e.low[0]), at(e.high[0]), at(e.low[1]), at(e.high[1]));
            if (v.separates)
                return errorf(2000, "outcome = %s predicts data perfectly\n",
                              clause(names[j], v.op, v.value).c_str());
            if (v.kind == 4) continue;
            if (Int4 rc = leave(s, names, j, v, rules)) return rc;
            again = true;
        }
    }
    return 0;
}

}  // namespace velmo
