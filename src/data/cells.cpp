#include "data/cells.h"
#include <cmath>
#include "base/text.h"
#include "data/run.h"

namespace velmo {

std::string_view strcell(Int4 var, Int4 obs) {
    UByte type = typ[var - 1];
    if (!isstringtype(type)) return {};
    return fieldtext(reinterpret_cast<char*>(cellptr(var, obs)), type);
}

char* getstr(Int4 var, Int4 obs, char* buf) {
    std::string_view text = strcell(var, obs);
    if (!text.empty()) std::memcpy(buf, text.data(), text.size());
    buf[text.size()] = 0;
    return buf;
}

void putstr(Int4 var, Int4 obs, std::string_view text) {
    std::size_t room = typ[var - 1];
    if (!isstringtype(UByte(room))) return;
    std::size_t n = text.size() < room ? text.size() : room;
    UByte* p = cellptr(var, obs);
    if (n) std::memmove(p, text.data(), n);
    std::memset(p + n, 0, room - n);
}

void clearcell(Int4 var, Int4 obs) {
    UByte type = typ[var - 1];
    if (isstringtype(type))
        std::memset(cellptr(var, obs), 0, type);
    else
        writecell(cellptr(var, obs), type, missing);
}

Int4 clearoutside(Int4 var) {
    Int4 cleared = 0;
    auto clear = [&](Int4 from, Int4 to) {
        for (Int4 obs = from; obs <= to; obs++) clearcell(var, obs);
        cleared += to >= from ? to - from + 1 : 0;
    };
    clear(1, firstobs - 1);
    clear(lastobs + 1, nobs);
    return cleared;
}

UByte typeneeded(UByte type, Double v) {
    if (type > typelong || v == missing) return type;
    Int4 e = exponent(v);
    UByte need = type;
    if (need == typebyte && (e >= 7 || v == bytemissing)) need = typeint;
    if (need == typeint && (e >= 15 || v == intmissing)) need = typelong;
    if (v != std::trunc(v)) return type == typelong ? typedouble : typefloat;
    if (need == typelong && (e >= 31 || v == longmissing)) need = typedouble;
    return need;
}

namespace {

// Pointers in a permuted order defeat the machine's own prefetching: rows are then asked for well ahead. In the plain
// order, which is the usual one, the rows lie one stride apart and nothing need be looked up.
constexpr Int4 ahead = 48;

boolean inorder(const UInt4* ptr, Int4 n) {
    UInt4 differs = 0;
    for (Int4 i = 0; i < n; i++) differs |= ptr[i] - ptr[0] - UInt4(i);
    return differs == 0;
}

template <class T, class F> void gather(const column& c, Int4 first, Int4 n, Double* out, F widen) {
    const UInt4* ptr = c.ptrs + first - 1;
    if (inorder(ptr, n)) {
        const UByte* p = c.at(first);
        std::size_t far = c.stride * std::size_t(ahead);
        for (Int4 i = 0; i < n; i++, p += c.stride) {
            __builtin_prefetch(p + far);
            out[i] = widen(readraw<T>(p));
        }
        return;
    }
    Int4 known = ptrmark - (first - 1) - ahead;
    for (Int4 i = 0; i < n; i++) {
        if (i < known) __builtin_prefetch(c.base + std::size_t(ptr[i + ahead]) * c.stride);
        out[i] = widen(readraw<T>(c.base + std::size_t(ptr[i]) * c.stride));
    }
}

template <class T> void gathercoded(const column& c, Int4 first, Int4 n, Double* out, T code) {
    gather<T>(c, first, n, out, [code](T v) { return v == code ? missing : Double(v); });
}

}  // namespace

void getcolumn(Int4 var, Int4 first, Int4 n, Double* out) {
    column c(var);
    switch (c.type) {
    case typebyte: gathercoded<SByte>(c, first, n, out, bytemissing); break;
    case typeint: gathercoded<Int2>(c, first, n, out, intmissing); break;
    case typelong: gathercoded<Int4>(c, first, n, out, longmissing); break;
    case typefloat: gathercoded<Float>(c, first, n, out, floatmissing); break;
    case typedouble: gather<Double>(c, first, n, out, [](Double v) { return v; }); break;
    default:
        for (Int4 i = 0; i < n; i++) out[i] = missing;
    }
}

namespace {

template <UByte type> void scatter(const column& c, Int4 first, Int4 n, const Double* in) {
    for (Int4 i = 0; i < n; i++) writecell(c.at(first + i), type, in[i]);
}

}  // namespace

void putcolumn(Int4 var, Int4 first, Int4 n, const Double* in) {
    column c(var);
    switch (c.type) {
    case typebyte: return scatter<typebyte>(c, first, n, in);
    case typeint: return scatter<typeint>(c, first, n, in);
    case typelong: return scatter<typelong>(c, first, n, in);
    case typefloat: return scatter<typefloat>(c, first, n, in);
    case typedouble: return scatter<typedouble>(c, first, n, in);
    default: return;
    }
}

}  // namespace velmo
