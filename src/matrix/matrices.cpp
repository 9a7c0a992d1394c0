#include "matrix/matrices.h"
#include <algorithm>
#include <cmath>
#include <cstring>
#include "base/saved.h"
#include "base/state.h"
#include "base/text.h"
#include "core/objects.h"
#include "output/errors.h"

namespace velmo {

Int4 matrixkind = obj_matrix;

// ---- Names

std::string_view axisname::eqtext() const { return fieldtext(eq, sizeof eq); }
std::string_view axisname::nametext() const { return fieldtext(name, sizeof name); }
std::string_view axisname::optext() const { return fieldtext(op, sizeof op); }

std::string axisname::opname() const {
    std::string text(optext());
    if (op[0]) text += '.';
    return text.append(nametext());
}

std::string axisname::full() const {
    std::string text(eqtext());
    if (!text.empty()) text += ':';
    return text + opname();
}

namespace {

template <std::size_t size> void setfield(char (&field)[size], std::string_view text) {
    std::memcpy(field, text.data(), std::min(size, text.size()));
}

}  // namespace

axisname makeaxisname(std::string_view eq, std::string_view op, std::string_view name) {
    axisname a{};
    if (eq != "_") setfield(a.eq, eq);
    setfield(a.op, op);
    setfield(a.name, name);
    return a;
}

axisname readaxisname(std::string_view text) {
    std::size_t colon = text.find(':');
    std::string_view eq = colon == text.npos ? "" : text.substr(0, colon);
    if (colon != text.npos) text.remove_prefix(colon + 1);
    std::size_t dot = text.rfind('.');
    std::string_view op = dot == text.npos ? "" : text.substr(0, dot);
    if (dot != text.npos) text.remove_prefix(dot + 1);
    return makeaxisname(eq, op, text);
}

void defaultnames(std::vector<axisname>& names, char letter, Int4 n) {
    names.resize(std::size_t(n));
    std::string start(1, letter);
    for (Int4 i = 0; i < n; i++) names[std::size_t(i)] = makeaxisname("", "", start + std::to_string(i + 1));
}

Int4 makematrix(matrix& m, Int4 r, Int4 c) {
    if (r > matsize || c > matsize) return error(908);
    workspace x(std::size_t(r) * std::size_t(c) * sizeof(Double));
    if (!x.p && r && c) return error(909);
    if (x.p) std::memset(x.p, 0, std::size_t(r) * std::size_t(c) * sizeof(Double));
    m.x = std::move(x);
    m.rows = r;
    m.cols = c;
    m.symmetric = false;
    defaultnames(m.rownames, 'r', r);
    defaultnames(m.colnames, 'c', c);
    return 0;
}

// ---- Bodies

namespace {

struct header {
    Int4 count;
    Int2 rows, cols;
};

struct entry {
    Double value;
    UInt2 row, col;
};
constexpr std::size_t entrysize = 12;

std::size_t fullsize(Int4 r, Int4 c) { return std::size_t(r) * std::size_t(c) * sizeof(Double); }
std::size_t trianglesize(Int4 n) { return std::size_t(n) * std::size_t(n + 1) / 2 * sizeof(Double); }
std::size_t inlower(Int4 i, Int4 j) { return std::size_t(i) * std::size_t(i + 1) / 2 + std::size_t(j); }

// A body as it lies in the store: valid until anything is stored. Its size tells the layout; 1 x 1 is symmetric.
struct body {
    header h{};
    UByte* elements = nullptr;
    matlayout layout = mat_full;
};

boolean findbody(std::string_view name, body& b) {
    UInt4 len;
    object* o = objfind(name, matrixkind, &len);
    if (!o || len < sizeof(header)) return false;
    std::memcpy(&b.h, o->data(), sizeof(header));
    b.elements = o->data() + sizeof(header);
    std::size_t size = len - sizeof(header);
    if (b.h.count || !size) b.layout = mat_sparse;
    else if (b.h.rows == b.h.cols && size == trianglesize(b.h.rows)) b.layout = mat_symmetric;
    else b.layout = mat_full;
    return true;
}

entry entryat(const body& b, Int4 k) {
    entry e;
    const UByte* p = b.elements + std::size_t(k) * entrysize;
    std::memcpy(&e.value, p, sizeof e.value);
    std::memcpy(&e.row, p + 8, 2);
    std::memcpy(&e.col, p + 10, 2);
    return e;
}

Double elementat(const body& b, std::size_t place) {
    Double x;
    std::memcpy(&x, b.elements + place * sizeof x, sizeof x);
    return x;
}

Double sparseelement(const body& b, Int4 i, Int4 j) {
    for (Int4 k = 0; k < b.h.count; k++) {
        entry e = entryat(b, k);
        if (e.row > i || (e.row == i && e.col > j)) break;
        if (e.row == i && e.col == j) return e.value;
    }
    return 0;
}

void expand(const body& b, matrix& m) {
    if (b.layout == mat_full) {
        std::memcpy(m.x.p, b.elements, fullsize(m.rows, m.cols));
    } else if (b.layout == mat_symmetric) {
        for (Int4 i = 0; i < m.rows; i++) {
            std::memcpy(m.row(i), b.elements + inlower(i, 0) * sizeof(Double), std::size_t(i + 1) * sizeof(Double));
            for (Int4 j = 0; j < i; j++) m.at(j, i) = m.at(i, j);
        }
    } else {
        for (Int4 k = 0; k < b.h.count; k++) {
            entry e = entryat(b, k);
            m.at(e.row, e.col) = e.value;
        }
    }
}

Int4 nonzeros(const matrix& m) {
    const Double* x = m.x.get<Double>();
    return Int4(m.rows * m.cols - std::count(x, x + m.rows * m.cols, 0.0));
}

std::size_t bodysize(const matrix& m, matlayout layout, Int4 count) {
    std::size_t elements = layout == mat_sparse      ? std::size_t(count) * entrysize
                           : layout == mat_symmetric ? trianglesize(m.rows)
                                                     : fullsize(m.rows, m.cols);
    return sizeof(header) + elements;
}

void writesparse(UByte* p, const matrix& m) {
    for (Int4 i = 0; i < m.rows; i++)
        for (Int4 j = 0; j < m.cols; j++) {
            Double x = m.at(i, j);
            if (x == 0) continue;
            UInt2 place[2] = {UInt2(i), UInt2(j)};
            std::memcpy(p, &x, sizeof x);
            std::memcpy(p + sizeof x, place, sizeof place);
            p += entrysize;
        }
}

void writebody(UByte* p, const matrix& m, matlayout layout, Int4 count) {
    header h{layout == mat_sparse ? count : 0, Int2(m.rows), Int2(m.cols)};
    std::memcpy(p, &h, sizeof h);
    p += sizeof h;
    if (layout == mat_sparse) return writesparse(p, m);
    if (layout == mat_full) {
        if (m.x.p) std::memcpy(p, m.x.p, fullsize(m.rows, m.cols));
        return;
    }
    for (Int4 i = 0; i < m.rows; i++)
        std::memcpy(p + inlower(i, 0) * sizeof(Double), m.row(i), std::size_t(i + 1) * sizeof(Double));
}

// An estimation's own matrices have no objects of names: the types behind theirs are other things.
Int4 kinds() { return matrixkind == obj_estimate ? 1 : 3; }

std::size_t namessize(const std::vector<axisname>& names) { return names.size() * sizeof(axisname); }

void dropolder(std::string_view name, Int4 type) {
    object* o = objfind(name, type);
    if (o && (o = objolder(o))) objdelthis(o);
}

}  // namespace

boolean matfind(std::string_view name, Int4* rows, Int4* cols) {
    body b;
    if (!findbody(name, b)) return false;
    if (rows) *rows = b.h.rows;
    if (cols) *cols = b.h.cols;
    return true;
}

namespace {

// An estimation's matrices share one object of names, which fits where it is as long.
void readnames(std::string_view name, Int4 type, Int4 n, std::vector<axisname>& names) {
    names.resize(std::size_t(n));
    boolean own = kinds() == 3;
    object* o = own ? objfind(name, type) : objfind("colnames", obj_estimate);
    if (o && o->datalen == namessize(names)) {
        if (n) objread(o, 0, names.data(), namessize(names));
        return;
    }
    defaultnames(names, '_', n);
}

}  // namespace

Int4 matcopy(std::string_view name, matrix& m) {
    body b;
    if (!findbody(name, b)) return matnotfound(name);
    if (b.h.rows > matsize || b.h.cols > matsize) return error(908);
    std::size_t size = fullsize(b.h.rows, b.h.cols);
    workspace x(size);
    if (!x.p && size) return error(909);
    m.x = std::move(x);
    m.rows = b.h.rows;
    m.cols = b.h.cols;
    m.symmetric = b.layout == mat_symmetric;
    if (b.layout == mat_sparse && size) std::memset(m.x.p, 0, size);
    expand(b, m);
    readnames(name, matrixkind + 1, m.rows, m.rownames);
    readnames(name, matrixkind + 2, m.cols, m.colnames);
    return 0;
}

// All new objects are made beside the old ones, which go when nothing can fail any more.
Int4 matput(std::string_view name, const matrix& m, matlayout layout) {
    Int4 count = layout == mat_sparse ? nonzeros(m) : 0;
    if (layout == mat_sparse && std::size_t(count) * entrysize >= fullsize(m.rows, m.cols)) layout = mat_full;
    if (layout != mat_sparse) layout = m.symmetric && m.rows == m.cols ? mat_symmetric : mat_full;
    const std::vector<axisname>* names[3] = {nullptr, &m.rownames, &m.colnames};
    Int4 made = 0, n = kinds();
    for (; made < n; made++) {
        std::size_t size = made ? namessize(*names[made]) : bodysize(m, layout, count);
        object* o = objnew(name, matrixkind + made, size, size);
        if (!o) break;
        if (!made) writebody(o->data(), m, layout, count);
        else if (size) std::memcpy(o->data(), names[made]->data(), size);
    }
    if (made < n) {
        while (made > 0) objdel(name, matrixkind + --made);
        return 950;
    }
    for (Int4 i = 0; i < n; i++) dropolder(name, matrixkind + i);
    if (matrixkind == obj_matrix) objdel(name, obj_scalar);
    return 0;
}

Double matel(std::string_view name, Int4 i, Int4 j) {
    body b;
    if (!findbody(name, b) || i < 0 || j < 0 || i >= b.h.rows || j >= b.h.cols) return missing;
    if (b.layout == mat_full) return elementat(b, std::size_t(i) * std::size_t(b.h.cols) + std::size_t(j));
    if (b.layout == mat_symmetric) return elementat(b, inlower(std::max(i, j), std::min(i, j)));
    return sparseelement(b, i, j);
}

void matset(std::string_view name, Int4 i, Int4 j, Double value) {
    body b;
    if (!findbody(name, b) || b.layout == mat_sparse || i >= b.h.rows || j >= b.h.cols) return;
    std::size_t place = b.layout == mat_full ? std::size_t(i) * std::size_t(b.h.cols) + std::size_t(j)
                                             : inlower(std::max(i, j), std::min(i, j));
    std::memcpy(b.elements + place * sizeof value, &value, sizeof value);
}

matlayout matlayoutof(std::string_view name) {
    body b;
    findbody(name, b);
    return b.layout;
}

boolean matdrop(std::string_view name) {
    boolean any = false;
    for (Int4 i = 0; i < kinds(); i++) any |= objdel(name, matrixkind + i);
    return any;
}

Int4 matputnames(std::string_view name, boolean columns, const std::vector<axisname>& names) {
    return objput(name, matrixkind + 1 + columns, names.data(), namessize(names));
}

std::vector<std::string> matnames() {
    std::vector<std::string> names;
    for (object* o = objnext(nullptr, nullptr, matrixkind); o; o = objnext(o, nullptr, matrixkind))
        names.emplace_back(o->name);
    return names;
}

Int4 checkmatrixname(std::string_view name) {
    static constexpr std::string_view reserved[] = {"_pred", "_b", "_n", "_N", "float", "double", "int", "long",
                                                    "_uniform", "_coef", "_rc", "_pi", "byte"};
    boolean bad = std::find(std::begin(reserved), std::end(reserved), name) != std::end(reserved);
    return bad || !validname(name) ? badname(name) : 0;
}

boolean issymmetric(const matrix& m) {
    if (m.rows != m.cols) return false;
    if (m.symmetric) return true;
    for (Int4 i = 0; i < m.rows; i++)
        for (Int4 j = 0; j < i; j++) {
            Double d = m.at(i, j) - m.at(j, i), p = std::fabs(m.at(i, i)), q = std::fabs(m.at(j, j));
            if (p * q * 1e-16 >= d * d) continue;
            if ((p != 0 && q != 0) || (std::fabs(m.at(i, j)) + 1) * 1e-8 < std::fabs(d)) return false;
        }
    return true;
}

}  // namespace velmo
