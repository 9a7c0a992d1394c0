#include "estimate/coeftable.h"
#include <algorithm>
#include <cmath>
#include <cstdio>
#include "base/poll.h"
#include "base/text.h"
#include "matrix/probability.h"
#include "output/errors.h"
#include "output/formats.h"
#include "output/print.h"
#include "stored/families.h"
#include "stored/posted.h"

namespace velmo {

namespace {

constexpr Int4 stub = 12;
constexpr Double statisticlimit = 9999;

boolean normal(const coeftable& t) { return t.df < 0 || t.df == missing; }

Double critical(const coeftable& t) {
    Double level = t.level / 100.0;
    return normal(t) ? invnorm(1 - (1 - level) / 2) : invt(t.df, level);
}

struct statistics { Double b, se, t, p, low, high; };

Double scaled(Double x, boolean eform) { return x == missing || !eform ? x : std::exp(x); }

statistics statisticsof(const coeftable& t, const coefrow& r, Double crit) {
    statistics s = {scaled(r.b, t.eform), r.se, missing, missing, missing, missing};
    if (t.eform) s.se = s.b * r.se;
    if (crit != missing) {
        s.low = scaled(r.b - crit * r.se, t.eform);
        s.high = scaled(r.b + crit * r.se, t.eform);
    }
    if (r.se <= 0 || std::fabs(r.b / r.se) >= statisticlimit) return s;
    s.t = r.b / r.se;
    s.p = normal(t) ? 2 * norm(-std::fabs(s.t)) : tprob(t.df, s.t);
    return s;
}

void rule(const char* corner) { prtmarkup(std::string("{hline 13}{c ") + corner + "}{hline 64}\n"); }

// A name at the left of the bar.
void stubtext(std::string_view name, const char* align = "%12s ") {
    printing as(out_text);
    prtf(align, shownname(name, stub).c_str());
    prtbar();
}

Int4 heading(const coeftable& t) {
    char letter = normal(t) ? 'z' : 't';
    rule("TT");
    if (!t.vcetype.empty()) {
        stubtext("");
        prttextf("%*s%s\n", 18 - Int4(t.vcetype.size()) / 2, "", t.vcetype.c_str());
    }
    stubtext(t.depname);
    prttextf("%11.11s   Std. Err.      %c    P>|%c|", t.title.empty() ? "Coef." : t.title.c_str(), letter, letter);
    if (t.beta) prttextf("%21sBeta\n", "");
    else prttextf("     [%d%% Conf. Interval]\n", t.level);
    rule("+");
    return breakpending;
}

// A column: blanks, and the number.
void cell(Int4 blanks, const char* fmt, Double x) {
    prtblanks(blanks);
    prtnumber(fmt, x);
}

// The name of a row: one that is too long with its operator has that on a line above.
void rowname(const axisname& a) {
    std::string op(a.optext()), name(a.nametext());
    if (!op.empty() && op.size() + 1 + name.size() > std::size_t(stub)) {
        stubtext(op + ".");
        prtnl();
    } else if (!op.empty()) {
        name = op + "." + name;
    }
    stubtext(name);
}

Int4 printrow(const coeftable& t, const coefrow& r, Double crit) {
    rowname(r.name);
    if (r.b == 0 && r.se == 0) {
        prtresult("  (dropped)\n");
        return breakpending;
    }
    statistics s = statisticsof(t, r, crit);
    cell(2, "%9.0g", s.b);
    cell(2, "%9.0g", s.se);
    cell(1, "%8.2f", s.t);
    cell(3, "%5.3f", s.p);
    if (t.beta) {
        cell(16, "%9.0g", r.beta);
    } else {
        cell(4, "%9.0g", s.low);
        cell(3, "%9.0g", s.high);
    }
    return prtnl();
}

void offsetrow(const std::string& name, const char* what) {
    if (name.empty()) return;
    stubtext(name);
    prttext(what);
}

void ancillaryline(std::size_t several) {
    rule("+");
    stubtext("");
    prttext(several > 1 ? "         (Ancillary parameters)\n" : "          (Ancillary parameter)\n");
}

}  // namespace

Int4 printcoeftable(const coeftable& t) {
    if (Int4 rc = heading(t)) return rc;
    Double crit = critical(t);
    auto isancillary = [](const coefrow& r) { return r.ancillary; };
    auto ancillaries = std::count_if(t.rows.begin(), t.rows.end(), isancillary);
    Int4 eqs = 0, most = t.first ? 1 : t.neq;
    boolean offsetdue = true;
    for (std::size_t i = 0; i < t.rows.size(); i++) {
        const coefrow& r = t.rows[i];
        boolean begins = t.equations && (i == 0 || r.name.eqtext() != t.rows[i - 1].name.eqtext());
        boolean under = r.ancillary && (i == 0 || !t.rows[i - 1].ancillary);
        if (begins && most && eqs == most) break;
        if (offsetdue && (under || (begins && i))) {
            offsetrow(t.offset, "   (offset)\n");
            offsetrow(t.exposure, " (exposure)\n");
            offsetdue = false;
        }
        if (under) ancillaryline(std::size_t(ancillaries));
        else if (begins && i) rule("+");
        eqs += begins;
        if (begins && !r.ancillary) {
            stubtext(r.name.eqtext(), "%-12s ");
            prtnl();
        }
        if (printrow(t, r, crit)) return 1;
    }
    if (offsetdue) {
        offsetrow(t.offset, "   (offset)\n");
        offsetrow(t.exposure, " (exposure)\n");
    }
    rule(t.plus ? "+" : "BT");
    return breakpending;
}

Int4 postedtable(coeftable& t) {
    postrecord r;
    if (!posted(&r)) return error(301);
    std::vector<axisname> names = postednames();
    for (std::size_t i = 0; i < names.size(); i++) {
        coefrow row{names[i], coefficient(Int4(i)), standarderror(Int4(i))};
        t.rows.push_back(row);
    }
    t.depname = fieldtext(r.depname, sizeof r.depname);
    t.equations = r.equations;
    std::string text;
    if (stored_get(e_results, "df_r", t.df, text) != result_scalar) t.df = -1;
    if (stored_get(e_results, "vcetype", r.scale, text) == result_macro) t.vcetype = text;
    return 0;
}

// ---- The header of maximum likelihood.

namespace {

constexpr const char* right = "{col 51}";

void field(const char* label) { prtmarkup(right + std::string(label) + "{col 67}= "); }

// A number by its format, or by another where it is too large for that.
void number(const char* fmt, Double x, Double limit) {
    prtnumber(x != missing && std::fabs(x) >= limit ? "%10.0e" : fmt, x);
}

void chi2field(const mlheader& h) {
    field((h.chi2type + " chi2(" + std::to_string(h.df) + ")").c_str());
    if (h.chi2 == missing) prtmarkup("{help j_robustsingular:         .}");
    else number("%10.2f", h.chi2, 1e7);
}

void ending(const mlheader& h) {
    if (h.status == ended_iterations) prttextf("(stopped after %d iterations)", h.iterations);
    if (h.status == ended_questionable) prttext("(estimated coefficients questionable)");
    if (!converged(h.status)) return;
    fmtnum("%9.0g", h.tolerance);
    prttextf(h.status == ended_coefficients ? "(coefficient tolerance %s)" : "(log-likelihood tolerance %s)",
             std::string(trimmed(dbuf)).c_str());
}

}  // namespace

std::string counttext(Double count) {
    char text[32];
    std::snprintf(text, sizeof text, std::fabs(count) < 1e10 ? "%.0f" : "%.0e", std::floor(count));
    return text;
}

Int4 printmlheader(const mlheader& h) {
    prtnl();
    prttext(h.title);
    if (h.status != ended_none && !converged(h.status)) prtmarkup("{col 24}{bf:convergence not achieved}");
    field("Number of obs");
    prtresultf("%10s\n", counttext(h.n).c_str());
    ending(h);
    if (!h.chi2type.empty()) chi2field(h);
    prtnl();
    prttext("Log likelihood = ");
    prtnumber("%10.0g", h.ll);
    if (!h.chi2type.empty()) {
        field("Prob > chi2");
        prtnumber("%10.4f", h.chi2 == missing ? missing : chi2tail(h.df, h.chi2));
    }
    prtnl();
    if (h.haspseudo) {
        field("Pseudo R2");
        number("%10.4f", h.pseudo, 1000);
        prtnl();
    }
    return breakpending;
}

void postedheader(mlheader& h) {
    auto scalar = [](const char* name) {
        Double value = missing;
        std::string text;
        return stored_get(e_results, name, value, text) == result_scalar ? value : missing;
    };
    Double unused;
    auto count = [&](const char* name) {
        Double value = scalar(name);
        return value == missing ? 0 : value;
    };
    stored_get(e_results, "chi2type", unused, h.chi2type);
    h.n = count("N");
    h.df = Int4(std::clamp(count("df_m"), 0.0, 1e6));
    h.ll = scalar("ll");
    h.chi2 = scalar("chi2");
    h.pseudo = scalar("r2_p");
    h.haspseudo = h.pseudo != missing;
}

}  // namespace velmo
