#include "expr/program.h"
#include <cstring>

namespace velmo {

exp eqexp = {{}, {}, -1, -1, nullptr, nullptr, 0, 0};
exp ifexp = {{}, {}, -1, -1, nullptr, nullptr, 0, 0};
UByte eqgiven = 0, ifgiven = 0;
Double numpool[maxnumlits];
char strpool[strpoolsize];

const wordinfo wordinfos[cw_count] = {
    {0, 1},
#define HAND(id, operands) {operands, 1},
#define VALUE(id, value) {0, 1},
#define ARITH1(id, value, where) {0, 1},
#define ARITH2(id, value, where) {0, 1},
#define CALL1(id, body) {0, 1},
#define CALL2(id, body) {0, 1},
#define CALL3(id, body) {0, 1},
#define CALL4(id, body) {0, 1},
#define CALLOBS(id, body) {0, 1},
#define CALLN(id, body) {1, 1},
#define TEXT(id, operands, body) {operands, 0},
#include "expr/opcodes.def"
#include "expr/undefine.h"
};

namespace {

Int4 nnumbers = 0;        // literals in numpool
Int4 ntext = 0;           // bytes in use of strpool

}  // namespace

Int4 poolnumber(Double value) {
    for (Int4 i = 0; i < nnumbers; i++) {
        if (numpool[i] == value) return i;
    }
    if (nnumbers == maxnumlits) return -1;
    numpool[nnumbers] = value;
    return nnumbers++;
}

Int4 pooltext(std::string_view text) {
    for (Int4 at = 0; at < ntext; at += Int4(std::strlen(strpool + at)) + 1) {
        if (text == strpool + at) return at;
    }
    if (text.size() >= std::size_t(strpoolsize - ntext)) return -1;
    Int4 at = ntext;
    if (!text.empty()) std::memcpy(strpool + at, text.data(), text.size());
    strpool[at + Int4(text.size())] = 0;
    ntext += Int4(text.size()) + 1;
    return at;
}

void exp_reset() { nnumbers = ntext = 0; }

void exp_clearsums() {
    std::memset(eqexp.sums, 0, sizeof eqexp.sums);
    std::memset(ifexp.sums, 0, sizeof ifexp.sums);
}

}  // namespace velmo
