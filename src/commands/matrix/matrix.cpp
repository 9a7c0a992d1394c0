// matrix: the table of subcommands; matrices made, joined and typed in, elements set, lists and drops.
#include <algorithm>
#include <string>
#include <vector>
#include "base/poll.h"
#include "base/state.h"
#include "base/text.h"
#include "commands/matrix/results.h"
#include "core/objects.h"
#include "core/tokenizer.h"
#include "expr/matrixread.h"
#include "output/errors.h"
#include "output/print.h"

namespace velmo {

#define MATRIX(word, min, handler) Int4 matrix_##handler();
#include "commands/matrix/subcommands.def"
#undef MATRIX

namespace {

// The token has to be this character.
Int4 expectchar(char c) {
    const char* token = nexttoken();
    return token[0] == c && !token[1] ? 0 : error(198);
}

Int4 typedname(std::string& name) {
    name = nexttoken();
    return name.empty() ? error(198) : checkmatrixname(name);
}

// ---- name = exp, name[i,j] = exp

Int4 assign(const std::string& name) {
    matrix m;
    boolean number;
    if (Int4 rc = expectchar('=')) return rc;
    if (Int4 rc = matrixhere(m, number)) return rc;
    if (Int4 rc = nothingbehind()) return rc;
    return matput(name, m);
}

// A place from 1 to what the language allows, as an index from 0.
Int4 placehere(Int4& place) {
    Double value;
    if (Int4 rc = numberhere(value)) return rc;
    if (!(value >= 1 && value < 11000)) return error(503);
    place = Int4(value) - 1;
    return 0;
}

Int4 assignelement(const std::string& name, Int4 i, Int4 j, Double value) {
    Int4 rows, cols;
    matfind(name, &rows, &cols);
    if (i >= rows || j >= cols) return error(503);
    matlayout layout = matlayoutof(name);
    if (layout == mat_full || (layout == mat_symmetric && i == j)) {
        matset(name, i, j, value);
        return 0;
    }
    matrix m;
    if (Int4 rc = matcopy(name, m)) return rc;
    m.symmetric = false;
    m.at(i, j) = value;
    return matput(name, m);
}

Int4 assignblock(const std::string& name, Int4 i, Int4 j, const matrix& part) {
    matrix m;
    if (Int4 rc = matcopy(name, m)) return rc;
    if (i + part.rows > m.rows || j + part.cols > m.cols) return error(503);
    for (Int4 r = 0; r < part.rows; r++) std::copy_n(part.row(r), part.cols, m.row(i + r) + j);
    m.symmetric = false;
    return matput(name, m);
}

// From the bracket on.
Int4 assignat(const std::string& name) {
    Int4 i = 0, j = 0;
    if (!matfind(name)) return matnotfound(name);
    if (Int4 rc = expectchar('[')) return rc;
    if (Int4 rc = placehere(i)) return rc;
    if (Int4 rc = expectchar(',')) return rc;
    if (Int4 rc = placehere(j)) return rc;
    if (Int4 rc = expectchar(']')) return rc;
    if (Int4 rc = expectchar('=')) return rc;
    matrix part;
    boolean number;
    if (Int4 rc = matrixhere(part, number)) return rc;
    if (Int4 rc = nothingbehind()) return rc;
    return number ? assignelement(name, i, j, part.at(0, 0)) : assignblock(name, i, j, part);
}

}  // namespace

Int4 matrix_define() {
    std::string name;
    if (Int4 rc = typedname(name)) return rc;
    return tokpeeknonblank() == '[' ? assignat(name) : assign(name);
}

// ---- input

namespace {

struct inputrows {
    std::vector<Double> values;
    Int4 rows = 0, cols = 0, inrow = 0;

    Int4 endrow() {
        if (rows == 0) cols = inrow;
        if (inrow != cols || inrow == 0) return error(504);
        inrow = 0;
        return ++rows > matsize ? error(908) : 0;
    }
    Int4 add(std::string_view word) {
        Double value;
        if (!readnumber(word, value) || exponent(value) == 1024) return invalidword(word);
        values.push_back(value);
        return ++inrow > matsize ? error(908) : 0;
    }
};

// What stands between the parentheses, from behind the first one to behind the last one.
Int4 readrows(inputrows& in) {
    for (char* p = tokrest();; p++) {
        while (*p == ' ' || *p == ',') p++;
        char* start = p;
        while (*p && *p != ' ' && *p != ',' && *p != '\\' && *p != ')') p++;
        if (p > start)
            if (Int4 rc = in.add({start, std::size_t(p - start)})) return rc;
        while (*p == ' ' || *p == ',') p++;
        if (!*p) return error(198);
        if (*p != '\\' && *p != ')') {
            p--;
            continue;
        }
        if (Int4 rc = in.endrow()) return rc;
        if (*p == '\\') continue;
        settokpos(p + 1);
        return nothingbehind();
    }
}

}  // namespace

// input name = (# # \ # #)
Int4 matrix_input() {
    std::string name;
    inputrows in;
    matrix m;
    if (Int4 rc = typedname(name)) return rc;
    if (Int4 rc = expectchar('=')) return rc;
    if (Int4 rc = expectchar('(')) return rc;
    if (Int4 rc = readrows(in)) return rc;
    if (Int4 rc = makematrix(m, in.rows, in.cols)) return rc;
    std::copy(in.values.begin(), in.values.end(), m.row(0));
    return matput(name, m);
}

// ---- cat

namespace {

// Blocks placed from the left, rows of them from above.
struct blocks {
    matrix out;
    Int4 rows = 0, cols = 0;           // of what is complete; cols: of the first row of blocks
    Int4 height = 0, width = 0;        // of the row of blocks in hand
    boolean first = true;
};

Int4 addblock(blocks& b, const matrix& part) {
    if (b.width && part.rows != b.height) return error(503);
    b.height = part.rows;
    if (b.rows + b.height > matsize || b.width + part.cols > matsize) return error(908);
    if (!b.first && b.width + part.cols > b.cols) return error(503);
    matrix grown;
    Int4 cols = std::max(b.cols, b.width + part.cols);
    if (Int4 rc = makematrix(grown, b.rows + b.height, cols)) return rc;
    for (Int4 i = 0; i < b.out.rows; i++) std::copy_n(b.out.row(i), b.out.cols, grown.row(i));
    for (Int4 i = 0; i < part.rows; i++) std::copy_n(part.row(i), part.cols, grown.row(b.rows + i) + b.width);
    std::copy(b.out.rownames.begin(), b.out.rownames.end(), grown.rownames.begin());
    std::copy(b.out.colnames.begin(), b.out.colnames.end(), grown.colnames.begin());
    if (!b.width) std::copy(part.rownames.begin(), part.rownames.end(), grown.rownames.begin() + b.rows);
    if (b.first) std::copy(part.colnames.begin(), part.colnames.end(), grown.colnames.begin() + b.width);
    b.out = std::move(grown);
    b.width += part.cols;
    if (b.first) b.cols = b.width;
    return 0;
}

Int4 endblocks(blocks& b) {
    if (b.width != b.cols) return error(503);
    b.rows += b.height;
    b.width = 0;
    b.first = false;
    return 0;
}

matrix transposed(const matrix& m, Int4& rc) {
    matrix t;
    rc = makematrix(t, m.cols, m.rows);
    for (Int4 i = 0; !rc && i < m.rows; i++)
        for (Int4 j = 0; j < m.cols; j++) t.at(j, i) = m.at(i, j);
    t.rownames = m.colnames;
    t.colnames = m.rownames;
    return t;
}

Int4 catpart(blocks& b) {
    matrix part;
    Int4 rc = matcopy(nexttoken(), part);
    if (!rc && tokpeeknonblank() == '\'') {
        nexttoken();
        part = transposed(part, rc);
    }
    return rc ? rc : addblock(b, part);
}

}  // namespace

// cat name = B, C \ D'
Int4 matrix_cat() {
    std::string name;
    blocks b;
    if (Int4 rc = typedname(name)) return rc;
    if (Int4 rc = expectchar('=')) return rc;
    for (;;) {
        if (Int4 rc = catpart(b)) return rc;
        char c = nexttoken()[0];
        if (c == ',') continue;
        if (c && c != '\\') return error(198);
        if (Int4 rc = endblocks(b)) return rc;
        if (!c) return matput(name, b.out);
    }
}

// ---- dir, drop

Int4 matrix_dir() {
    if (Int4 rc = nothingbehind()) return rc;
    Int4 rows, cols;
    for (const std::string& name : matnames()) {
        matfind(name, &rows, &cols);
        printing as(out_text);
        if (prtf("    %9s[%d,%d]\n", name.c_str(), rows, cols)) return breakpending;
    }
    return 0;
}

// All names are there, or none goes.
Int4 matrix_drop() {
    std::vector<std::string> names;
    while (nexttoken()[0]) names.push_back(tokbuf);
    if (names.empty()) return error(198);
    if (names == std::vector<std::string>{"_all"}) names = matnames();
    for (const std::string& name : names)
        if (!matfind(name)) return matnotfound(name);
    beginbatch();
    for (const std::string& name : names) matdrop(name);
    endbatch();
    return 0;
}

// A first word that = or [ follows is a matrix.
Int4 cmd_matrix() {
    static constexpr struct { const char* word; Int4 min; Int4 (*run)(); } rows[] = {
#define MATRIX(word, min, handler) {#word, min, matrix_##handler},
#include "commands/matrix/subcommands.def"
#undef MATRIX
    };
    std::string word = nexttoken();
    char next = tokpeeknonblank();
    if (next == '=' || next == '[') {
        ungettoken();
        return matrix_define();
    }
    for (const auto& row : rows)
        if (row.min ? abbrev(word, row.word, row.min) : word == row.word) return row.run();
    return error(501);
}

}  // namespace velmo
