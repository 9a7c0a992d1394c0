#include "commands/files/filefields.h"
#include <bit>
#include <cmath>
#include <cstdio>
#include <string>
#include "base/state.h"
#include "base/text.h"
#include "output/errors.h"

namespace velmo {

namespace {

// Everything but the size, by what stands behind it.
constexpr struct { const char* letters; Int4 sizes; char kind; boolean issigned, mapped; } forms[] = {
    {"b", 1 | 2 | 4, 'b', true, true}, {"bs", 1 | 2 | 4, 'b', true, false}, {"bu", 1 | 2 | 4, 'b', false, false},
    {"z", 4 | 8, 'z', false, false},   {"s", 0, 's', false, false},
};

boolean sizefits(Int4 size, Int4 sizes, char kind) {
    if (kind == 's') return size >= 1 && size < macrolen;
    return (size & (size - 1)) == 0 && (size & sizes) != 0;
}

Int4 bits(const binaryfield& field) { return 8 * field.size; }
Double largest(const binaryfield& field) { return std::ldexp(1.0, bits(field) - (field.issigned ? 1 : 0)) - 1; }

std::uint64_t integerbits(const binaryfield& field, Double value) {
    Double most = largest(field);
    if (field.mapped) return std::uint64_t(std::int64_t(exponent(value) >= bits(field) - 1 ? most : value));
    Double least = field.issigned ? -most : 0;
    return std::uint64_t(std::int64_t(value >= most ? most : value < least ? least : value));
}

// Below its range a float is 0; above, and when missing, the float's missing code.
std::uint64_t floatbits(Double value) {
    Int4 e = exponent(value);
    return std::bit_cast<std::uint32_t>(e < -120 ? 0.0F : e < 125 ? Float(value) : floatmissing);
}

}  // namespace

Int4 field_parse(std::string_view text, binaryfield& field) {
    std::size_t n = 1;
    while (n < text.size() && isdigit(text[n])) n++;
    Int4 size;
    if (n < 10 && readinteger(text.substr(1, n - 1), size))
        for (const auto& form : forms)
            if (text.substr(n) == form.letters && sizefits(size, form.sizes, form.kind)) {
                field = {size, form.kind, form.issigned, form.mapped};
                return 0;
            }
    return errorf(198, "%s:  invalid binary format\n", std::string(text).c_str());
}

void field_encode(const binaryfield& field, Double value, UByte* out) {
    std::uint64_t image = field.kind == 'b' ? integerbits(field, value)
                          : field.size == 4 ? floatbits(value)
                                            : std::bit_cast<std::uint64_t>(value);
    for (Int4 i = 0; i < field.size; i++) out[i] = UByte(image >> (8 * i));
}

Double field_decode(const binaryfield& field, const UByte* bytes) {
    std::uint64_t image = 0;
    for (Int4 i = 0; i < field.size; i++) image |= std::uint64_t(bytes[i]) << (8 * i);
    Double value;
    if (field.kind == 'z') {
        Float single = std::bit_cast<Float>(std::uint32_t(image));
        value = field.size == 8 ? std::bit_cast<Double>(image) : single == floatmissing ? missing : Double(single);
        return exponent(value) == 1024 ? missing : value;
    }
    if (!field.issigned) return Double(image);
    value = Double(std::int64_t(image << (64 - bits(field))) >> (64 - bits(field)));
    return field.mapped && value == largest(field) ? missing : value;
}

}  // namespace velmo
