// matrix symeigen and matrix svd: several matrices out of one.
#include <algorithm>
#include <cmath>
#include <string>
#include <vector>
#include "base/state.h"
#include "commands/matrix/accum.h"
#include "core/tokenizer.h"
#include "matrix/kernels.h"
#include "matrix/matrices.h"
#include "output/errors.h"

namespace velmo {

namespace {

// The n new names, different from each other, `=`, and the matrix.
Int4 readdecomposition(std::size_t n, std::vector<std::string>& names, matrix& a) {
    for (std::size_t i = 0; i < n; i++) {
        std::string name = nexttoken();
        if (Int4 rc = checkmatrixname(name)) return rc;
        if (std::count(names.begin(), names.end(), name)) return error(198);
        names.push_back(name);
    }
    nexttoken();
    if (std::string_view(tokbuf) != "=") return error(198);
    std::string from = nexttoken();
    if (from.empty()) return error(198);
    if (Int4 rc = matcopy(from, a)) return rc;
    return nexttoken()[0] ? error(198) : 0;
}

// All of them or none: what was stored before the one that finds no room is put back.
Int4 storeall(const std::vector<std::string>& names, const std::vector<const matrix*>& results) {
    std::vector<matrix> before(names.size());
    for (std::size_t i = 0; i < names.size(); i++) {
        if (matfind(names[i]))
            if (Int4 rc = matcopy(names[i], before[i])) return rc;
    }
    for (std::size_t i = 0; i < names.size(); i++) {
        Int4 rc = matput(names[i], *results[i]);
        for (std::size_t j = 0; rc && j < i; j++) {
            matdrop(names[j]);
            if (before[j].rows) matput(names[j], before[j]);
        }
        if (rc) return rc;
    }
    return 0;
}

}  // namespace

// matrix symeigen X v = A
Int4 matrix_symeigen() {
    std::vector<std::string> names;
    matrix a, x, v;
    if (Int4 rc = readdecomposition(2, names, a)) return rc;
    if (a.rows != a.cols || !issymmetric(a)) return error(505);
    if (Int4 rc = makematrix(x, a.rows, a.rows)) return rc;
    if (Int4 rc = makematrix(v, 1, a.rows)) return rc;
    if (Int4 rc = symeigen(a.row(0), x.row(0), v.row(0), a.rows, a.rows)) return rc == 1 ? 1 : error(rc);
    x.rownames = a.rownames;
    defaultnames(x.colnames, 'e', a.rows);
    v.colnames = x.colnames;
    return storeall(names, {&x, &v});
}

// matrix svd U w V = A
Int4 matrix_svd() {
    std::vector<std::string> names;
    matrix a, u, w, v;
    if (Int4 rc = readdecomposition(3, names, a)) return rc;
    if (a.rows < a.cols) return error(503);
    if (a.cols >= matsize) return error(908);
    if (Int4 rc = makematrix(u, a.rows, a.cols)) return rc;
    if (Int4 rc = makematrix(w, 1, a.cols)) return rc;
    if (Int4 rc = makematrix(v, a.cols, a.cols)) return rc;
    if (Int4 rc = svd(a.row(0), u.row(0), w.row(0), v.row(0), a.rows, a.cols)) return rc == 1 ? 1 : error(rc);
    u.rownames = a.rownames;
    u.colnames = w.colnames = v.rownames = v.colnames = a.colnames;
    return storeall(names, {&u, &w, &v});
}

}  // namespace velmo
