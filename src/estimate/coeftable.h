// The coefficient table, which every estimator prints, and the header that those of maximum likelihood print ahead of
// it. Both take all they show as a value. `postedtable` fills one from the posted estimates.
#pragma once
#include <string>
#include <vector>
#include "estimate/newton.h"
#include "matrix/matrices.h"

namespace velmo {

struct coefrow {
    axisname name;
    Double b, se;
    Double beta = missing;        // the standardised coefficient, when the table shows those
    boolean ancillary = false;    // a parameter that is no coefficient: such rows stand last, under a line of their own
};

struct coeftable {
    std::vector<coefrow> rows;
    std::string depname;          // heads the names
    std::string title;            // heads the coefficients; Coef. when empty
    std::string vcetype;          // Robust, ...: a line of its own
    Double df = -1;               // of t; below 0 (or missing) the statistics are normal
    Int4 level = 95;
    boolean eform = false;        // coefficients and bounds as exponentials
    boolean beta = false;         // standardised coefficients in place of the interval
    boolean equations = false;    // rows carry names of equations
    boolean first = false;        // the first equation alone
    Int4 neq = 0;                 // that many equations, 0 all
    boolean plus = false;         // the table stays open for rows that follow
    std::string offset, exposure; // a variable with a coefficient of 1: a row behind those of the first equation
};

Int4 printcoeftable(const coeftable& t);      // 0 or 1
// The posted estimates, as they are shown again: 0 or 301 (printed).
Int4 postedtable(coeftable& t);

// A whole number as it is written out, or in powers of ten where weights have made it too large for its place.
std::string counttext(Double count);

struct mlheader {
    std::string title;
    Double n = 0;
    Int4 status = ended_none, iterations = 0;    // how the iterations ended (newtonstatus), after how many
    Double tolerance = missing;   // the one that ended them
    std::string chi2type;         // LR, Wald; without it there is no test
    Int4 df = 0;
    Double chi2 = missing, ll = missing;
    boolean haspseudo = false;
    Double pseudo = missing;
};

Int4 printmlheader(const mlheader& h);        // 0 or 1
// What e() knows of it: N, ll, chi2, chi2type, df_m, r2_p.
void postedheader(mlheader& h);

}  // namespace velmo
