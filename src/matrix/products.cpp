#include "matrix/products.h"
#include <algorithm>
#include "base/poll.h"
#include "matrix/lanes.h"
#include "output/errors.h"

namespace velmo {

namespace {

constexpr Int4 tile = 4;          // rows and columns that are summed at once: their sums stay in registers

// Columns j to j + tile of B without gaps; zeros behind the last one.
void packpanel(const Double* B, Double* panel, Int4 inner, Int4 cols, Int4 j) {
    Int4 width = std::min(tile, cols - j);
    for (Int4 k = 0; k < inner; k++, panel += tile) {
        const Double* row = B + std::size_t(k) * std::size_t(cols) + std::size_t(j);
        for (Int4 c = 0; c < tile; c++) panel[c] = c < width ? row[c] : 0;
    }
}

// Two sums to a register, each in its own lane; a row's two registers.
struct rowsums {
    pair2 low = {0, 0}, high = {0, 0};
    void add(Double a, pair2 left, pair2 right) {
        pair2 aa = {a, a};
        low += aa * left;
        high += aa * right;
    }
    void store(Double* to) const {
        storepair(to, low);
        storepair(to + 2, high);
    }
};

// Four rows of A, then one. Written out: sums in an array would lie in memory.
void foursums(const Double* A, const Double* panel, Int4 inner, Double (&sum)[tile][tile]) {
    const Double *a0 = A, *a1 = a0 + inner, *a2 = a1 + inner, *a3 = a2 + inner;
    rowsums s0, s1, s2, s3;
    for (Int4 k = 0; k < inner; k++, panel += tile) {
        pair2 left = loadpair(panel), right = loadpair(panel + 2);
        s0.add(a0[k], left, right);
        s1.add(a1[k], left, right);
        s2.add(a2[k], left, right);
        s3.add(a3[k], left, right);
    }
    s0.store(sum[0]);
    s1.store(sum[1]);
    s2.store(sum[2]);
    s3.store(sum[3]);
}

void onesum(const Double* A, const Double* panel, Int4 inner, Double (&sum)[tile][tile]) {
    rowsums s;
    for (Int4 k = 0; k < inner; k++, panel += tile) s.add(A[k], loadpair(panel), loadpair(panel + 2));
    s.store(sum[0]);
}

void panelproduct(const Double* A, const Double* panel, Double* C, Int4 n, Int4 inner, Int4 cols, Int4 j) {
    Int4 width = std::min(tile, cols - j);
    Double sum[tile][tile];
    for (Int4 i = 0; i < n;) {
        Int4 rows = n - i >= tile ? tile : 1;
        const Double* from = A + std::size_t(i) * std::size_t(inner);
        if (rows == tile) foursums(from, panel, inner, sum);
        else onesum(from, panel, inner, sum);
        for (Int4 r = 0; r < rows; r++, i++)
            std::copy_n(sum[r], width, C + std::size_t(i) * std::size_t(cols) + std::size_t(j));
    }
}

}  // namespace

Int4 matproduct(const Double* A, const Double* B, Double* C, Int4 n, Int4 inner, Int4 cols) {
    workspace panel(std::size_t(inner) * tile * sizeof(Double));
    if (!panel.p) return error(909);
    for (Int4 j = 0; j < cols; j += tile) {
        packpanel(B, panel.get<Double>(), inner, cols, j);
        panelproduct(A, panel.get<Double>(), C, n, inner, cols, j);
        if (tick()) return 1;
    }
    return 0;
}

boolean hasmissing(const matrix& m) {
    const Double* x = m.x.get<Double>();
    const Double* end = x + std::size_t(m.rows) * std::size_t(m.cols);
    return std::find(x, end, missing) != end;
}

Int4 findaxisname(const std::vector<axisname>& names, std::string_view text, boolean last) {
    axisname wanted = readaxisname(text);
    boolean anyequation = text.find(':') == text.npos, anyname = !anyequation && !wanted.name[0];
    Int4 found = -1;
    for (std::size_t i = 0; i < names.size() && (found < 0 || last); i++) {
        const axisname& a = names[i];
        if (!anyequation && a.eqtext() != wanted.eqtext()) continue;
        if (anyname || (a.nametext() == wanted.nametext() && a.optext() == wanted.optext())) found = Int4(i);
    }
    return found;
}

}  // namespace velmo
