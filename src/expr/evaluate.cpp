// The two forms of the evaluator. One observation: a switch over the code words, the numbers in a frame-local stack.
// A block: the same switch once a block, each stack entry a lane of 256 numbers, each word a loop over the lanes.
// Both switches are expanded from opcodes.def.
#include "expr/evaluate.h"
#include <algorithm>
#include <cstring>
#include "data/cells.h"
#include "data/run.h"
#include "data/timeseries.h"
#include "expr/arithmetic.h"
#include "expr/bodies.h"
#include "matrix/probability.h"
#include "matrix/random.h"

namespace velmo {

namespace {

// ---- One observation

// Stack entry 0 is the top of an empty stack, and the value of an empty program.
Double runone(exp& e, Int4 obs, char* text, Int4& textlength, std::vector<matrix>* matrices = nullptr,
              Int4* rc = nullptr) {
    Double stack[numstack + 1];
    stack[0] = missing;
    textslot slots[strstack + 1];
    if (obs == firstobs) std::fill_n(e.sums, e.sumlast + 1, 0.0);
    const Int2* at = e.code;
    const Int2* end = at + e.codelast + 1;
    machine m{stack, slots, at, obs, end, matrices, 0};
    Double* top = stack;
    while (at < end) {
        switch (*at++) {
        case cw_skip: at++; break;
        case cw_literal: *++top = numpool[*at++]; break;
        case cw_load: {
            Int4 var = *at++;
            *++top = obs <= nobs ? getobs(var, obs) : missing;
            break;
        }
        case cw_loadat: {
            Int4 var = *at++, place = subscripted(*top);
            *top = place ? getobs(var, place) : missing;
            break;
        }
        case cw_loadts:
            *++top = obs <= nobs ? tsvalue(at[0], at[1], obs) : missing;
            at += 2;
            break;
        case cw_sum: {
            Double& total = e.sums[*at++];
            total += *top == missing ? 0 : *top;
            *top = total;
            break;
        }
#define HAND(id, operands)
#define VALUE(id, value) case cw_##id: *++top = value; break;
#define ARITH1(id, value, where) case cw_##id: *top = where(*top) ? missing : value(*top); break;
#define ARITH2(id, value, where)                                                                                      \
    case cw_##id: top--; *top = where(*top, top[1]) ? missing : value(*top, top[1]); break;
#define CALL1(id, body) case cw_##id: *top = body(*top); break;
#define CALL2(id, body) case cw_##id: top--; *top = body(top[1], *top); break;
#define CALL3(id, body) case cw_##id: top -= 2; *top = body(top[2], top[1], *top); break;
#define CALL4(id, body) case cw_##id: top -= 3; *top = body(top[3], top[2], top[1], *top); break;
#define CALLOBS(id, body) case cw_##id: *top = body(*top, obs); break;
#define CALLN(id, body)                                                                                               \
    case cw_##id: {                                                                                                   \
        Int4 n = *at++;                                                                                               \
        Double r = body([top](Int4 i) { return top[-i]; }, n);                                                        \
        top -= n - 1;                                                                                                 \
        *top = r;                                                                                                     \
        break;                                                                                                        \
    }
#define TEXT(id, operands, body)                                                                                      \
    case cw_##id:                                                                                                     \
        m.top = top;                                                                                                  \
        m.at = at;                                                                                                    \
        body(m);                                                                                                      \
        top = m.top;                                                                                                  \
        at = m.at;                                                                                                    \
        break;
#include "expr/opcodes.def"
#include "expr/undefine.h"
        default: break;
        }
    }
    if (rc) *rc = m.rc;
    if (e.restype != exp_string) return *top;
    textlength = m.str->n;
    std::memcpy(text, m.str->p, std::size_t(textlength));
    return 0;
}

// ---- Blocks

constexpr Int4 chunk = 16;      // lanes are worked on in whole chunks: loops of constant length become vector code

using lane = Double[blocksize];
alignas(64) lane lanes[numstack + 1];

template <class F, class W> inline void eachlane(Double* __restrict x, Int4 n, F f, W where) {
    for (Int4 i = 0; i < n; i += chunk, x += chunk) {
        Double r[chunk];
        for (Int4 k = 0; k < chunk; k++) r[k] = f(x[k]);
        for (Int4 k = 0; k < chunk; k++) x[k] = where(x[k]) ? missing : r[k];
    }
}

template <class F, class W>
inline void eachpair(Double* __restrict x, const Double* __restrict y, Int4 n, F f, W where) {
    for (Int4 i = 0; i < n; i += chunk, x += chunk, y += chunk) {
        Double r[chunk];
        for (Int4 k = 0; k < chunk; k++) r[k] = f(x[k], y[k]);
        for (Int4 k = 0; k < chunk; k++) x[k] = where(x[k], y[k]) ? missing : r[k];
    }
}

void filllane(Double* x, Int4 n, Double value) {
    for (Int4 i = 0; i < n; i += chunk) {
        for (Int4 k = i; k < i + chunk; k++) x[k] = value;
    }
}

// The cells of one storage type at the observations that the lane's numbers mean as subscripts.
template <class T, class M> void gather(const column& c, Double* x, Int4 n, M misscode) {
    for (Int4 i = 0; i < n; i++) {
        Int4 obs = subscripted(x[i]);
        if (!obs) {
            x[i] = missing;
            continue;
        }
        T v = readraw<T>(c.at(obs));
        x[i] = v == misscode ? missing : Double(v);
    }
}

void gatherat(Int4 var, Double* x, Int4 n) {
    column c(var);
    switch (c.type) {
    case typebyte: gather<SByte>(c, x, n, bytemissing); break;
    case typeint: gather<Int2>(c, x, n, intmissing); break;
    case typelong: gather<Int4>(c, x, n, longmissing); break;
    case typefloat: gather<Float>(c, x, n, floatmissing); break;
    default: gather<Double>(c, x, n, missing); break;
    }
}

void sumlane(Double& total, Double* x, Int4 first, Int4 n) {
    for (Int4 i = 0; i < n; i++) {
        if (first + i == firstobs) total = 0;
        total += x[i] == missing ? 0 : x[i];
        x[i] = total;
    }
}

// The result stands in lanes[1]. n is at least 1; all observations exist.
void runblock(exp& e, Int4 first, Int4 n) {
    const Int2* at = e.code;
    const Int2* end = at + e.codelast + 1;
    lane* top = lanes;
    while (at < end) {
        switch (*at++) {
        case cw_skip: at++; break;
        case cw_literal: filllane(*++top, n, numpool[*at++]); break;
        case cw_load: getcolumn(*at++, first, n, *++top); break;
        case cw_loadat: gatherat(*at++, *top, n); break;
        case cw_loadts:
            top++;
            for (Int4 i = 0; i < n; i++) (*top)[i] = tsvalue(at[0], at[1], first + i);
            at += 2;
            break;
        case cw_sum: sumlane(e.sums[*at++], *top, first, n); break;
#define HAND(id, operands)
#define EACH for (Int4 i = 0; i < n; i++)
#define VALUE(id, value)                                                                                              \
    case cw_##id:                                                                                                     \
        top++;                                                                                                        \
        EACH {                                                                                                        \
            [[maybe_unused]] Int4 obs = first + i;                                                                    \
            (*top)[i] = value;                                                                                        \
        }                                                                                                             \
        break;
#define OF1(body) [](Double x) { return body(x); }
#define OF2(body) [](Double x, Double y) { return body(x, y); }
#define ARITH1(id, value, where) case cw_##id: eachlane(*top, n, OF1(value), OF1(where)); break;
#define ARITH2(id, value, where)                                                                                      \
    case cw_##id: top--; eachpair(*top, top[1], n, OF2(value), OF2(where)); break;
#define CALL1(id, body) case cw_##id: EACH (*top)[i] = body((*top)[i]); break;
#define CALL2(id, body) case cw_##id: top--; EACH (*top)[i] = body(top[1][i], (*top)[i]); break;
#define CALL3(id, body) case cw_##id: top -= 2; EACH (*top)[i] = body(top[2][i], top[1][i], (*top)[i]); break;
#define CALL4(id, body)                                                                                               \
    case cw_##id: top -= 3; EACH (*top)[i] = body(top[3][i], top[2][i], top[1][i], (*top)[i]); break;
#define CALLOBS(id, body) case cw_##id: EACH (*top)[i] = body((*top)[i], first + i); break;
#define CALLN(id, body)                                                                                               \
    case cw_##id: {                                                                                                   \
        Int4 count = *at++;                                                                                           \
        lane* last = top;                                                                                             \
        top -= count - 1;                                                                                             \
        EACH (*top)[i] = body([last, i](Int4 k) { return last[-k][i]; }, count);                                      \
        break;                                                                                                        \
    }
#define TEXT(id, operands, body)
#include "expr/opcodes.def"
#include "expr/undefine.h"
#undef EACH
#undef OF1
#undef OF2
        default: break;
        }
    }
}

// Random draws in the program.
Int4 draws(const exp& e) {
    Int4 n = 0;
    for (Int4 i = 0; i <= e.codelast; i += 1 + wordinfos[e.code[i]].operands)
        n += e.code[i] == cw_uniform || e.code[i] == cw_uniform0;
    return n;
}

// Two draws in one program alternate from observation to observation.
boolean hasblockform(const exp& e) {
    if (draws(e) > 1) return false;
    for (Int4 i = 0; i <= e.codelast; i += 1 + wordinfos[e.code[i]].operands) {
        if (!wordinfos[e.code[i]].blockform) return false;
    }
    return e.codelast >= 0;
}

}  // namespace

Double exp_getnum(exp& e, Int4 obs) {
    Int4 n;
    Double value = runone(e, obs, nullptr, n);
    return exponent(value) == 1024 ? missing : value;
}

Int4 exp_getstr(exp& e, Int4 obs, char* buf) {
    Int4 n = 0;
    runone(e, obs, buf, n);
    buf[n] = 0;
    return n;
}

Int4 exp_getmat(exp& e, matrix& out, Double& value) {
    std::vector<matrix> matrices;
    Int4 n, rc = 0;
    value = settled(runone(e, 1, nullptr, n, &matrices, &rc));
    if (!rc && e.restype == exp_matrix) out = std::move(matrices.back());
    return rc;
}

boolean exp_iftest(Int4 obs) { return !ifgiven || exp_getnum(ifexp, obs) != 0; }

// A promotion of the variable being written makes the caller run observations of a block again: a running sum would
// then count them twice.
boolean exp_blockable(const exp& e, Int4 var) {
    boolean promotes = var > 0 && typ[var - 1] != typefloat && typ[var - 1] != typedouble;
    if (e.sumlast >= 0 && (ifgiven || promotes)) return false;
    if (ifgiven && draws(e)) return false;
    for (Int4 i = 0; i <= e.codelast; i += 1 + wordinfos[e.code[i]].operands) {
        Int2 word = e.code[i];
        if ((word == cw_loadat || word == cw_textloadat) && e.code[i + 1] == var) return false;
        if (word == cw_loadts && e.code[i + 2] == var) return false;
    }
    return true;
}

boolean exp_maskable(Int4 var) { return !ifgiven || exp_blockable(ifexp, var); }

void exp_getblock(exp& e, Int4 first, Int4 n, Double* out) {
    if (first + n - 1 > nobs || !hasblockform(e)) {
        for (Int4 i = 0; i < n; i++) out[i] = exp_getnum(e, first + i);
        return;
    }
    runblock(e, first, n);
    for (Int4 i = 0; i < n; i++) out[i] = settled(lanes[1][i]);
}

void exp_ifblock(Int4 first, Int4 n, UByte* mask) {
    if (!ifgiven) {
        std::memset(mask, 1, std::size_t(n));
        return;
    }
    Double values[blocksize];
    exp_getblock(ifexp, first, n, values);
    for (Int4 i = 0; i < n; i++) mask[i] = values[i] != 0;
}

}  // namespace velmo
