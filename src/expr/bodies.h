// The bodies of the functions: of numbers (mathfunctions.cpp, datefunctions.cpp), and of strings and matrices on the
// machine's stacks (textfunctions.cpp, matrixwords.cpp, matrixfunctions.cpp). Arguments come first to last. A missing
// argument gives missing unless said.
#pragma once
#include <cmath>
#include <string_view>
#include <vector>
#include "base/types.h"
#include "expr/program.h"
#include "matrix/matrices.h"

namespace velmo {

// Mathematical
Double lognum(Double x);                   // missing for x <= 0
Double expnum(Double x);                   // missing above 709, 0 below -709
Double powernum(Double x, Double y);
Double intnum(Double x);
Double floatnum(Double x);                 // as float storage keeps it
Double signnum(Double x);
Double atannum(Double x);                  // a rational approximation, about 8 digits; asin and acos rest on it
Double sinnum(Double x);
Double cosnum(Double x);
Double tannum(Double x);
Double asinnum(Double x);
Double acosnum(Double x);
Double log10num(Double x);
Double roundnum(Double x, Double y);
Double modnum(Double x, Double y);
Double reldifnum(Double x, Double y);
Double autocodenum(Double x, Double n, Double x0, Double x1);
Double groupnum(Double n, Int4 obs);
Double oldresult(Double k);
inline Double sersetvalue(Double, Double) { return missing; }      // no data sets of graphs exist yet
Double replaying();                        // 1 when local macro 0 is empty or begins with a comma

// The stack hands the arguments of an operator over right to left.
inline Double powerlr(Double right, Double left) { return powernum(left, right); }
inline Double condnum(Double c, Double a, Double b) { return c != 0 ? a : b; }
inline Double inrangenum(Double z, Double a, Double b) {
    return z != missing && (a == missing || a <= z) && (b == missing || z <= b) ? 1.0 : 0.0;
}

// Functions of many numbers: arg(i) is argument i from 0. max and min ignore missing arguments and keep the first
// of equals.
template <class A> Double maxof(A arg, Int4 n) {
    Double best = missing;
    for (Int4 i = 0; i < n; i++) {
        if (arg(i) != missing && (best == missing || arg(i) > best)) best = arg(i);
    }
    return best;
}
template <class A> Double minof(A arg, Int4 n) {
    Double best = missing;
    for (Int4 i = 0; i < n; i++) {
        if (arg(i) != missing && (best == missing || arg(i) < best)) best = arg(i);
    }
    return best;
}
template <class A> Double recodeof(A arg, Int4 n) {
    if (arg(0) == missing) return missing;
    for (Int4 i = 1; i < n; i++) {
        if (arg(i) >= arg(0)) return arg(i);
    }
    return arg(n - 1);
}
template <class A> Double inlistof(A arg, Int4 n) {
    for (Int4 i = 1; i < n; i++) {
        if (arg(i) == arg(0)) return 1;
    }
    return 0;
}

// Dates
Double mdynum(Double m, Double d, Double y);
Double downum(Double date);
Double daynum(Double date);
Double monthnum(Double date);
Double yearnum(Double date);
Double doynum(Double date);
Double halfyearnum(Double date);
Double quarternum(Double date);
Double weeknum(Double date);
Double wofdnum(Double date);
Double mofdnum(Double date);
Double qofdnum(Double date);
Double hofdnum(Double date);
Double dofwnum(Double period);
Double dofmnum(Double period);
Double dofqnum(Double period);
Double dofhnum(Double period);
Double dofynum(Double period);
inline Double dofdnum(Double x) { return x; }
Double ywnum(Double y, Double part);
Double ymnum(Double y, Double part);
Double yqnum(Double y, Double part);
Double yhnum(Double y, Double part);

// The observation that a subscript means in the present group, or 0.
Int4 subscripted(Double value);

// Strings. A slot's text lies in a cell, in the pool, or in the slot's own buffer.
struct textslot {
    const char* p;
    Int4 n;
    char buf[strbufsize];
    std::string_view view() const { return {p, std::size_t(n)}; }
};
// Where a program stands: its stacks by their top entries, the next operand word and the last one, the observation. A
// word that fails leaves its code, printed, and goes to the end.
struct machine {
    Double* top;
    textslot* str;
    const Int2* at;
    Int4 obs;
    const Int2* end;
    std::vector<matrix>* matrices;
    Int4 rc;
};
#define HAND(id, operands)
#define VALUE(id, value)
#define ARITH1(id, value, where)
#define ARITH2(id, value, where)
#define CALL1(id, body)
#define CALL2(id, body)
#define CALL3(id, body)
#define CALL4(id, body)
#define CALLOBS(id, body)
#define CALLN(id, body)
#define TEXT(id, operands, body) void body(machine& m);
#include "expr/opcodes.def"
#include "expr/undefine.h"

}  // namespace velmo
