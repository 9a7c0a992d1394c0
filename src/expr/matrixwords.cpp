// Matrices on the machine's stack: loads, operators, joins and subscripts. Operands are copies that their word may
// write over.
#include "expr/matrixwords.h"
#include <algorithm>
#include <cstring>
#include "base/saved.h"
#include "base/state.h"
#include "expr/matrixread.h"
#include "matrix/products.h"
#include "stored/families.h"
#include "stored/posted.h"

namespace velmo {

void placenames(std::vector<axisname>& names, char letter) {
    for (std::size_t i = 0; i < names.size(); i++)
        if (names[i].name[0] == placeholder)
            names[i] = makeaxisname("", "", std::string(1, letter) + std::to_string(i + 1));
}

namespace {

std::string_view pooled(Int2 offset) { return strpool + offset; }

Int4 loadfrom(Int4 f, std::string_view name, matrix& out) { return readmatrix({family(f), name}, out); }

void loadmatrix(machine& m, Int4 f, std::string_view name) {
    matrix x;
    if (!failed(m, loadfrom(f, name, x))) pushmatrix(m, std::move(x));
}

std::string_view poptext(machine& m) { return (m.str--)->view(); }

}  // namespace

void mat_load(machine& m) {
    Int2 name = *m.at++, f = *m.at++;
    loadmatrix(m, f, pooled(name));
}

void mat_named(machine& m) { loadmatrix(m, named_results, poptext(m)); }

void mat_get(machine& m) {
    matrix x;
    std::string_view name = pooled(*m.at++);
    if (failed(m, postedmatrix(name, x))) return;
    if (name == "_b" && x.rows == 1) defaultnames(x.rownames, 'r', 1);
    pushmatrix(m, std::move(x));
}

void mat_null(machine& m) {
    std::string_view name = pooled(*m.at++);
    if (matfind(name)) loadmatrix(m, named_results, name);
    else pushmatrix(m, {});
}

// A number, on top or below the matrix on top, as a matrix.
void mat_promote(machine& m) {
    Int4 below = *m.at++;
    matrix x;
    if (refused(m, settled(*m.top) == missing ? 504 : 0) || failed(m, makematrix(x, 1, 1))) return;
    x.at(0, 0) = *m.top--;
    x.symmetric = true;
    x.rownames[0] = x.colnames[0] = makeaxisname("", "", {&placeholder, 1});
    m.matrices->insert(m.matrices->end() - below, std::move(x));
}

// ---- Operators

namespace {

template <class F> void eachelement(matrix& x, F f) {
    Double* p = x.x.get<Double>();
    for (std::size_t i = 0, n = elements(x); i < n; i++) p[i] = p[i] == missing ? missing : settled(f(p[i]));
}

void scale(matrix& x, Double k) {
    eachelement(x, [k](Double v) { return v * k; });
}

boolean isscalar(const matrix& x) { return x.rows == 1 && x.cols == 1; }

// Where an operand has a missing value, the sums that it takes part in are missing.
void spreadmissing(const matrix& a, const matrix& b, matrix& c) {
    for (Int4 i = 0; i < a.rows; i++)
        if (std::find(a.row(i), a.row(i) + a.cols, missing) != a.row(i) + a.cols)
            std::fill_n(c.row(i), c.cols, missing);
    for (Int4 k = 0; k < b.rows; k++)
        for (Int4 j = 0; j < b.cols; j++)
            if (b.at(k, j) == missing)
                for (Int4 i = 0; i < c.rows; i++) c.at(i, j) = missing;
}

Int4 multiply(const matrix& a, const matrix& b, matrix& c) {
    if (a.cols != b.rows) return error(503);
    if (Int4 rc = makematrix(c, a.rows, b.cols)) return rc;
    if (elements(c) == 0) return 0;
    if (Int4 rc = matproduct(a.row(0), b.row(0), c.row(0), a.rows, a.cols, b.cols)) return rc;
    eachelement(c, [](Double v) { return v; });
    if (hasmissing(a) || hasmissing(b)) spreadmissing(a, b, c);
    return 0;
}

}  // namespace

void mat_add(machine& m) {
    matrix b = popmatrix(m);
    matrix& a = topmatrix(m);
    if (refused(m, a.rows == b.rows && a.cols == b.cols ? 0 : 503)) return;
    Double *x = a.x.get<Double>(), *y = b.x.get<Double>();
    for (std::size_t i = 0, n = elements(a); i < n; i++)
        x[i] = anymissing(x[i], y[i]) ? missing : settled(x[i] + y[i]);
    a.symmetric = a.symmetric && b.symmetric;
}

void mat_negate(machine& m) { scale(topmatrix(m), -1); }

void mat_scale(machine& m) {
    Double k = settled(*m.top--);
    if (!refused(m, k == missing ? 504 : 0)) scale(topmatrix(m), k);
}

void mat_shrink(machine& m) {
    Double k = settled(*m.top--);
    if (!refused(m, k == missing || k == 0 ? 504 : 0)) scale(topmatrix(m), 1 / k);
}

// As numbers, but the other operand is a matrix on the stack too.
void mat_multiply(machine& m) {
    matrix b = popmatrix(m), a = popmatrix(m), c;
    if (isscalar(a) != isscalar(b)) {
        *++m.top = isscalar(b) ? b.at(0, 0) : a.at(0, 0);
        pushmatrix(m, std::move(isscalar(b) ? a : b));
        return mat_scale(m);
    }
    if (failed(m, multiply(a, b, c))) return;
    c.rownames = std::move(a.rownames);
    c.colnames = std::move(b.colnames);
    pushmatrix(m, std::move(c));
}

void mat_divide(machine& m) {
    matrix b = popmatrix(m);
    if (refused(m, isscalar(b) ? 0 : 503)) return;
    *++m.top = b.at(0, 0);
    mat_shrink(m);
}

void mat_transpose(machine& m) {
    matrix& a = topmatrix(m);
    if (!a.symmetric) {
        matrix t;
        if (failed(m, makematrix(t, a.cols, a.rows))) return;
        for (Int4 i = 0; i < a.rows; i++)
            for (Int4 j = 0; j < a.cols; j++) t.at(j, i) = a.at(i, j);
        std::swap(a.x, t.x);
        std::swap(a.rows, a.cols);
    }
    std::swap(a.rownames, a.colnames);
}

namespace {

std::vector<axisname> kroneckernames(std::vector<axisname>& a, std::vector<axisname>& b, char letter) {
    placenames(a, letter);
    placenames(b, letter);
    std::vector<axisname> names;
    for (const axisname& outer : a)
        for (const axisname& inner : b)
            names.push_back(makeaxisname(outer.nametext(), inner.optext(), inner.nametext()));
    return names;
}

}  // namespace

void mat_kronecker(machine& m) {
    matrix b = popmatrix(m), a = popmatrix(m), c;
    std::int64_t rows = std::int64_t(a.rows) * b.rows, cols = std::int64_t(a.cols) * b.cols;
    if (refused(m, rows > matsize || cols > matsize ? 908 : 0) || failed(m, makematrix(c, Int4(rows), Int4(cols))))
        return;
    for (Int4 i = 0; i < c.rows; i++)
        for (Int4 j = 0; j < c.cols; j++) {
            Double x = a.at(i / b.rows, j / b.cols), y = b.at(i % b.rows, j % b.cols);
            c.at(i, j) = anymissing(x, y) ? missing : settled(x * y);
        }
    c.symmetric = a.symmetric && b.symmetric;
    c.rownames = kroneckernames(a.rownames, b.rownames, 'r');
    c.colnames = kroneckernames(a.colnames, b.colnames, 'c');
    pushmatrix(m, std::move(c));
}

// ---- Joins

namespace {

// True when one of the operands is empty, and the other stands alone.
boolean joinsnothing(machine& m, matrix& a, matrix& b) {
    if (elements(a) && elements(b)) return false;
    pushmatrix(m, std::move(elements(a) ? a : b));
    return true;
}

std::vector<axisname> joinednames(std::vector<axisname> names, const std::vector<axisname>& more, char letter) {
    names.insert(names.end(), more.begin(), more.end());
    placenames(names, letter);
    return names;
}

}  // namespace

void mat_beside(machine& m) {
    matrix b = popmatrix(m), a = popmatrix(m), c;
    if (joinsnothing(m, a, b) || refused(m, a.rows == b.rows ? 0 : 503)) return;
    if (failed(m, makematrix(c, a.rows, a.cols + b.cols))) return;
    for (Int4 i = 0; i < a.rows; i++)
        std::copy_n(b.row(i), b.cols, std::copy_n(a.row(i), a.cols, c.row(i)));
    c.colnames = joinednames(std::move(a.colnames), b.colnames, 'c');
    c.rownames = std::move(a.rownames);
    pushmatrix(m, std::move(c));
}

void mat_below(machine& m) {
    matrix b = popmatrix(m), a = popmatrix(m), c;
    if (joinsnothing(m, a, b) || refused(m, a.cols == b.cols ? 0 : 503)) return;
    if (failed(m, makematrix(c, a.rows + b.rows, a.cols))) return;
    std::copy_n(b.row(0), elements(b), std::copy_n(a.row(0), elements(a), c.row(0)));
    c.rownames = joinednames(std::move(a.rownames), b.rownames, 'r');
    c.colnames = std::move(a.colnames);
    pushmatrix(m, std::move(c));
}

// ---- Subscripts. Bits of the operand: 1 a column, 2 the end of a range.

void mat_dup(machine& m) {
    m.top[1] = *m.top;
    m.top++;
}

void mat_last(machine& m) {
    boolean column = *m.at++ & 1;
    *++m.top = column ? topmatrix(m).cols : topmatrix(m).rows;
}

void mat_position(machine& m) {
    Int2 which = *m.at++;
    const matrix& a = topmatrix(m);
    std::string text(poptext(m));
    Int4 at = findaxisname(which & 1 ? a.colnames : a.rownames, text, which & 2);
    if (at < 0) failed(m, notfound(text));
    else *++m.top = at + 1;
}

namespace {

// A subscript as a place from 0; 503 when it is none of n.
boolean placeof(machine& m, Double value, Int4 n, Int4& place) {
    if (value >= 1 && value < Double(n) + 1) {
        place = Int4(value) - 1;
        return true;
    }
    refused(m, value != missing && value > matsize && value > n ? 908 : 503);
    return false;
}

}  // namespace

// Four numbers: the last column on top, the first row below.
void mat_part(machine& m) {
    Int4 r1, r2, c1, c2;
    matrix a = popmatrix(m), part;
    const Double* s = m.top -= 4;
    if (!placeof(m, s[1], a.rows, r1) || !placeof(m, s[2], a.rows, r2)) return;
    if (!placeof(m, s[3], a.cols, c1) || !placeof(m, s[4], a.cols, c2)) return;
    if (refused(m, r1 > r2 || c1 > c2 ? 503 : 0) || failed(m, makematrix(part, r2 - r1 + 1, c2 - c1 + 1))) return;
    for (Int4 i = 0; i < part.rows; i++) std::copy_n(a.row(r1 + i) + c1, part.cols, part.row(i));
    part.symmetric = a.symmetric && r1 == c1 && r2 == c2;
    part.rownames.assign(a.rownames.begin() + r1, a.rownames.begin() + r2 + 1);
    part.colnames.assign(a.colnames.begin() + c1, a.colnames.begin() + c2 + 1);
    pushmatrix(m, std::move(part));
}

namespace {

Int4 plain(Double value) { return value >= 1 && value <= 32767 ? Int4(value) - 1 : -1; }

// Without a copy of the matrix, but for the variances of estimates.
Double storedelement(Int4 f, std::string_view name, Int4 i, Int4 j) {
    saved kind(matrixkind, family_type(family(f), result_matrix));
    if (f != e_results || matfind(name)) return matel(name, i, j);
    matrix x;
    boolean there = !loadfrom(f, name, x) && i >= 0 && j >= 0 && i < x.rows && j < x.cols;
    return there ? x.at(i, j) : missing;
}

boolean outside(Int4 f, std::string_view name, Int4 i, Int4 j) {
    saved kind(matrixkind, family_type(family(f), result_matrix));
    Int4 rows = 0, cols = 0;
    return matfind(name, &rows, &cols) && (i < 0 || j < 0 || i >= rows || j >= cols);
}

void axisnumber(machine& m, boolean columns) {
    Int2 name = *m.at++, f = *m.at++;
    matrix x;
    std::string text(poptext(m));
    if (failed(m, loadfrom(f, pooled(name), x))) return;
    Int4 at = findaxisname(columns ? x.colnames : x.rownames, text);
    *++m.top = at < 0 ? missing : at + 1;
}

}  // namespace

// The row on top, the column below: missing outside.
void mat_element(machine& m) {
    Int2 name = *m.at++, f = *m.at++;
    Int4 i = plain(m.top[0]), j = plain(m.top[-1]);
    *--m.top = storedelement(f, pooled(name), i, j);
}

// The same in an expression of matrices, where outside is an error.
void mat_surely(machine& m) {
    Int2 name = m.at[0], f = m.at[1];
    if (!refused(m, outside(f, pooled(name), plain(m.top[0]), plain(m.top[-1])) ? 503 : 0)) mat_element(m);
}

void mat_rownumb(machine& m) { axisnumber(m, false); }
void mat_colnumb(machine& m) { axisnumber(m, true); }

}  // namespace velmo
