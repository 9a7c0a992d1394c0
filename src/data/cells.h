// One cell: the innermost routines. No range checks: 1 <= var <= nvar and 1 <= obs <= maxobs, with obs touched.
// The loops of commands fetch a column<> once and go through it instead.
#pragma once
#include <cstring>
#include "data/dataset.h"

namespace velmo {

inline UByte* cellptr(Int4 var, Int4 obs) { return rowptr(obs) + mapi[var - 1]; }

template <class T> inline T readraw(const UByte* p) {
    T v;
    std::memcpy(&v, p, sizeof v);
    return v;
}
template <class T> inline void writeraw(UByte* p, T v) { std::memcpy(p, &v, sizeof v); }

// The value at p of a numeric type, with the type's missing code as `missing`.
inline Double readcell(const UByte* p, UByte type) {
    switch (type) {
    case typebyte: { SByte v = readraw<SByte>(p); return v == bytemissing ? missing : v; }
    case typeint: { Int2 v = readraw<Int2>(p); return v == intmissing ? missing : v; }
    case typelong: { Int4 v = readraw<Int4>(p); return v == longmissing ? missing : v; }
    case typefloat: { Float v = readraw<Float>(p); return v == floatmissing ? missing : Double(v); }
    case typedouble: return readraw<Double>(p);
    default: return missing;
    }
}

// The value as float storage keeps it: exponent below -120 is 0, above 124 missing; else rounded.
inline Float tofloat(Double v) {
    Int4 e = exponent(v);
    return e < -120 ? 0.0F : e > 124 ? floatmissing : Float(v);
}

// Stores by the conversion rules: what needs too many bits becomes the type's missing, integers truncate.
inline void writecell(UByte* p, UByte type, Double v) {
    switch (type) {
    case typebyte: writeraw<SByte>(p, exponent(v) >= 7 ? bytemissing : SByte(v)); break;
    case typeint: writeraw<Int2>(p, exponent(v) >= 15 ? intmissing : Int2(v)); break;
    case typelong: writeraw<Int4>(p, exponent(v) >= 31 ? longmissing : Int4(v)); break;
    case typefloat: writeraw<Float>(p, tofloat(v)); break;
    case typedouble: writeraw<Double>(p, v); break;
    default: break;
    }
}

// A number that was read from a text as data keep it: what isn't below 2^1023 in size is missing.
inline Double datavalue(Double v) { return v > -missing && v < missing ? v : missing; }

inline Double getobs(Int4 var, Int4 obs) { return readcell(cellptr(var, obs), typ[var - 1]); }
inline void putobs(Int4 var, Int4 obs, Double v) { writecell(cellptr(var, obs), typ[var - 1], v); }
// Copies a string cell into buf (245 bytes or more) with a zero behind it; a numeric variable gives "".
char* getstr(Int4 var, Int4 obs, char* buf);
// The text of a string cell in place, without a copy; valid until data move.
std::string_view strcell(Int4 var, Int4 obs);
// Stores text in a string cell, cut to its type, zeros behind; a numeric variable is left alone.
void putstr(Int4 var, Int4 obs, std::string_view text);
inline Int4 getlong(Int4 var, Int4 obs) { return readraw<Int4>(cellptr(var, obs)); }
inline void putlong(Int4 var, Int4 obs, Int4 v) { writeraw<Int4>(cellptr(var, obs), v); }
// Sets a cell to missing or "".
void clearcell(Int4 var, Int4 obs);
Int4 clearoutside(Int4 var);           // those of the observations outside the run (data/run.h): their number

// The storage type that a value needs, starting from an integer type; float and double stay. A missing value needs
// nothing.
UByte typeneeded(UByte type, Double v);

// A column in order: what does not depend on the observation is looked up once. Valid until data move.
struct column {
    const UInt4* ptrs;      // obsptrs
    UByte* base;            // database + offset of the variable
    std::size_t stride;
    UByte type;
    explicit column(Int4 var)
        : ptrs(obsptrs), base(database + mapi[var - 1]), stride(std::size_t(lrecl)), type(typ[var - 1]) {}
    UByte* at(Int4 obs) const { return base + std::size_t(ptrs[obs - 1]) * stride; }
    Double get(Int4 obs) const { return readcell(at(obs), type); }
    void put(Int4 obs, Double v) const { writecell(at(obs), type, v); }
};

// Observations first..first+n-1 of a numeric variable into out: one loop by storage type.
void getcolumn(Int4 var, Int4 first, Int4 n, Double* out);
// The same values back, by the rules of writecell.
void putcolumn(Int4 var, Int4 first, Int4 n, const Double* in);

}  // namespace velmo
