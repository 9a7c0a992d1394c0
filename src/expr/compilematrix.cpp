// Compiling what concerns matrices: operators on them, joins, subscripts and functions. Where no matrix may come about,
// in ordinary expressions, functions of whole matrices are computed at once: the code holds their value.
//
// To add a function: its row in `rows`, its code word in opcodes.def, its body in matrixfunctions.cpp.
#include <algorithm>
#include <string>
#include "base/saved.h"
#include "base/text.h"
#include "expr/compiler.h"
#include "expr/evaluate.h"
#include "expr/matrixread.h"
#include "output/errors.h"
#include "stored/families.h"
#include "stored/posted.h"

namespace velmo {

namespace {

Int4 mate(Int4 i) { return cc.text.mate[std::size_t(i)]; }
char at(Int4 i) { return cc.text.chars[std::size_t(i)]; }

void needmatrices() {
    if (!cc.matrices) fail(509);
}

Int4 pooled(std::string_view text) {
    Int4 offset = pooltext(text);
    if (offset < 0) fail(130, "too many literals\n");
    return offset;
}

// A number on top as a matrix.
void promote() {
    if (toptype() == exp_matrix) return;
    expect(exp_numeric, 1);
    emit(cw_matpromote, exp_matrix);
    emitoperand(0);
}

// Two operands as matrices, of which one may be a number.
void promoteboth() {
    promote();
    if (toptype(1) == exp_matrix) return;
    expect(exp_matrix, 1);
    expect(exp_numeric, 1);
    emit(cw_matpromote, exp_matrix);
    emitoperand(1);
    notetype(exp_matrix);
}

void emitbinary(Int2 word) {
    expect(exp_matrix, 2);
    emit(word, exp_matrix);
}

// The number computed since code word `start`, in its place.
void fold(Int4 start) {
    exp part{};
    part.sumlast = -1;
    part.codelast = cc.e->codelast - start;
    std::copy_n(cc.e->code + start, part.codelast + 1, part.code);
    matrix none;
    Double value;
    failon(exp_getmat(part, none, value));
    cc.e->codelast = start - 1;
    expect(exp_numeric, 1);
    emitliteral(value);
}

boolean isliteral(Int4 word) { return cc.e->code[word] == cw_literal; }

}  // namespace

void compilematrixoperator(char op) {
    needmatrices();
    UByte right = toptype(), left = toptype(1);
    if (right == exp_string || left == exp_string) fail(109);
    boolean number = right == exp_numeric || left == exp_numeric;
    if ((op == '*' && number) || (op == '/' && right == exp_numeric)) {
        expect(right, 1);
        expect(left, 1);
        emit(op == '*' ? cw_matscale : cw_matshrink, exp_matrix);
        return;
    }
    promoteboth();
    if (op == '-') emit(cw_matnegate);
    emitbinary(op == '*' ? cw_matmultiply : op == '/' ? cw_matdivide : op == '#' ? cw_matkronecker : cw_matadd);
}

void compiletranspose() {
    needmatrices();
    if (toptype() == exp_numeric) return;
    expect(exp_matrix, 1);
    emit(cw_mattranspose, exp_matrix);
}

boolean compilejoin(span s) {
    Int4 hit = -1;
    for (Int4 i = s.e - 1; i >= s.b; i--) {
        if (mate(i) >= 0) i = mate(i);
        else if (at(i) == '\\' || (at(i) == ',' && hit < 0)) hit = i;
        if (hit >= 0 && at(hit) == '\\') break;
    }
    if (hit < 0) return false;
    needmatrices();
    compilespan({s.b, hit});
    promote();
    compilespan({hit + 1, s.e});
    promote();
    emitbinary(at(hit) == '\\' ? cw_matbelow : cw_matbeside);
    return true;
}

// ---- Names and subscripts

namespace {

void emitreference(Int2 word, UByte pushes, const matrixname& r) {
    Int4 offset = pooled(r.name);
    emit(word, pushes);
    emitoperand(offset);
    emitoperand(r.f);
}

// One subscript as a number; a string is the name of a row or column.
void compilesubscript(const matrixname& r, span s, boolean column) {
    compilespan(s);
    if (toptype() != exp_string) return;
    expect(exp_string, 1);
    emitreference(column ? cw_matcolnumb : cw_matrownumb, exp_numeric, r);
}

void compileelement(const matrixname& r, span row, span column) {
    Int4 start = cc.e->codelast + 1;
    compilesubscript(r, column, true);
    compilesubscript(r, row, false);
    expect(exp_numeric, 2);
    boolean plain = cc.e->codelast == start + 3 && isliteral(start) && isliteral(start + 2);
    emitreference(cc.matrices ? cw_matsurely : cw_matelement, exp_numeric, r);
    if (plain && !cc.matrices) fold(start);
}

// Where the two dots of a range begin, or -1.
Int4 findrange(span s) {
    for (Int4 i = s.b; i + 1 < s.e; i++) {
        if (mate(i) > i) i = mate(i);
        else if (at(i) == '.' && at(i + 1) == '.') return i;
    }
    return -1;
}

boolean isdot(span s) { return spantext(s) == "."; }

// One end of a range, of the matrix on top: `which` as the words have it.
void compileend(span s, Int4 which) {
    if (isdot(s)) {
        emit(cw_matlast, exp_numeric);
        emitoperand(which);
        return;
    }
    compilespan(s);
    if (toptype() != exp_string) return;
    expect(exp_string, 1);
    emit(cw_matposition, exp_numeric);
    emitoperand(which);
}

void compilerange(span s, Int4 column) {
    Int4 dots = findrange(s);
    if (dots >= 0) {
        compileend({s.b, dots}, column);
        return compileend({dots + 2, s.e}, column + 2);
    }
    Int4 start = cc.e->codelast + 1;
    compileend(s, column);
    if (isdot(s) || cc.e->code[cc.e->codelast - 1] == cw_matposition) return compileend(s, column + 2);
    if (cc.e->codelast < start) fail(198);
    emit(cw_matdup, exp_numeric);
}

boolean ispart(span s) { return findrange(s) >= 0 || isdot(s) || at(s.b) == '"' || at(s.b) == '`'; }

void compilepart(const matrixname& r, span row, span column) {
    needmatrices();
    emitreference(cw_matload, exp_matrix, r);
    compilerange(row, 0);
    compilerange(column, 1);
    expect(exp_numeric, 4);
    expect(exp_matrix, 1);
    emit(cw_matpart, exp_matrix);
}

}  // namespace

boolean compilematrixname(std::string_view name, span s) {
    matrixname r{named_results, name};
    if (!matfind(name)) return false;
    Int4 behind = s.b + Int4(name.size());
    if (behind == s.e) {
        emitreference(cw_matload, exp_matrix, r);
        return true;
    }
    saved joining(cc.matjoin, false);
    Int4 from = Int4(cc.arguments.size());
    if (splitarguments({behind + 1, s.e - 1}) != 2) fail(198);
    span row = cc.arguments[std::size_t(from)], column = cc.arguments[std::size_t(from + 1)];
    cc.arguments.resize(std::size_t(from));
    if (row.b >= row.e || column.b >= column.e) fail(198);
    boolean ranges = findrange(row) >= 0 || findrange(column) >= 0;
    if (ranges || (cc.matrices && (ispart(row) || ispart(column)))) compilepart(r, row, column);
    else compileelement(r, row, column);
    return true;
}

void compilestoredmatrix(Int4 f, std::string_view name) { emitreference(cw_matload, exp_matrix, {family(f), name}); }

// ---- Functions

namespace {

// Arguments: m a matrix, n a number.
constexpr struct functionof {
    std::string_view name;
    Int2 word;
    std::string_view arguments;
    UByte restype;
} rows[] = {
    {"I", cw_matidentity, "n", exp_matrix},      {"J", cw_matconstant, "nnn", exp_matrix},
    {"syminv", cw_matsyminv, "m", exp_matrix},   {"corr", cw_matcorr, "m", exp_matrix},
    {"diag", cw_matdiag, "m", exp_matrix},       {"vecdiag", cw_matvecdiag, "m", exp_matrix},
    {"cholesky", cw_matcholesky, "m", exp_matrix}, {"inv", cw_matinv, "m", exp_matrix},
    {"sweep", cw_matsweep, "mn", exp_matrix},    {"trace", cw_mattrace, "m", exp_numeric},
    {"det", cw_matdet, "m", exp_numeric},        {"rowsof", cw_matrowsof, "m", exp_numeric},
    {"colsof", cw_matcolsof, "m", exp_numeric},  {"diag0cnt", cw_matdiag0cnt, "m", exp_numeric},
    {"mreldif", cw_matmreldif, "mm", exp_numeric},
};

// A matrix, or a string that names one.
void compilematrixargument(span s) {
    compilespan(s);
    if (toptype() == exp_string) {
        expect(exp_string, 1);
        emit(cw_matnamed, exp_matrix);
    } else if (cc.matrices) {
        promote();
    }
}

void compilerow(const functionof& row, const call& c) {
    if (c.n != Int4(row.arguments.size())) fail(198);
    if (row.restype == exp_matrix) needmatrices();
    Int4 start = cc.e->codelast + 1;
    for (Int4 i = c.n - 1; i >= 0; i--) {
        if (row.arguments[std::size_t(i)] == 'm') compilematrixargument(argument(c, i));
        else compilespan(argument(c, i));
    }
    for (char kind : row.arguments) expect(kind == 'm' ? exp_matrix : exp_numeric, 1);
    emit(row.word, row.restype);
    if (!cc.matrices) fold(start);
}

// The matrix that the first argument names, as A, "A", r(A), e(A) or return(A).
matrixname referenced(const call& c) {
    std::string_view text = spantext(argument(c, 0));
    if (text.size() > 1 && text[0] == '"') text = text.substr(1, text.size() - 2);
    matrixname r = readmatrixname(text);
    if (r.f == named_results && !matfind(r.name)) failon(matnotfound(r.name));
    return r;
}

void needarguments(const call& c, Int4 n) {
    if (c.n != n || argument(c, 0).b == argument(c, 0).e) fail(198);
}

void compileplace(const call& c) {
    needarguments(c, 2);
    matrixname r = referenced(c);
    compilespan(argument(c, 1));
    expect(exp_string, 1);
    emitreference(c.name == "rownumb" ? cw_matrownumb : cw_matcolnumb, exp_numeric, r);
}

void compileel(const call& c) {
    needarguments(c, 3);
    compileelement(referenced(c), argument(c, 1), argument(c, 2));
}

void compilenamed(const call& c, Int2 word) {
    needarguments(c, 1);
    needmatrices();
    std::string_view name = spantext(argument(c, 0));
    if (name == "_coef") name = "_b";
    if (!validname(name)) failon(badname(name));
    Int4 offset = pooled(name);
    emit(word, exp_matrix);
    emitoperand(offset);
}
void compilenull(const call& c) { compilenamed(c, cw_matnull); }
void compileget(const call& c) { compilenamed(c, cw_matget); }

constexpr struct { std::string_view name; void (*compile)(const call& c); } specials[] = {
    {"rownumb", compileplace}, {"colnumb", compileplace}, {"el", compileel},
    {"nullmat", compilenull},  {"get", compileget},
};

}  // namespace

boolean compilematrixcall(const call& c) {
    for (const functionof& row : rows)
        if (c.name == row.name) return compilerow(row, c), true;
    for (const auto& special : specials)
        if (c.name == special.name) return special.compile(c), true;
    return false;
}

}  // namespace velmo
