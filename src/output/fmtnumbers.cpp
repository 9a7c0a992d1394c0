// The renderers of numbers. All but the fixed form work on the decimal image, whose digits are rounded half up as
// text. Most numbers that are shown are whole or of middling size: their image is made by integer arithmetic, all
// others' by the library's exact conversion. In the general form most need no image at all: quickform finds the rounded
// digits by one multiplication, and knows when that can't tell.
#include "output/fmtnumbers.h"
#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstring>
#include "base/sixteen.h"
#include "output/fmtparts.h"

namespace velmo {

namespace {

constexpr Int4 imagedigits = 19;
using UInt16 = unsigned __int128;
using UInt8 = std::uint64_t;

constexpr UInt8 powers[20] = {1ull, 10ull, 100ull, 1000ull, 10000ull, 100000ull, 1000000ull, 10000000ull, 100000000ull,
                              1000000000ull, 10000000000ull, 100000000000ull, 1000000000000ull, 10000000000000ull,
                              100000000000000ull, 1000000000000000ull, 10000000000000000ull, 100000000000000000ull,
                              1000000000000000000ull, 10000000000000000000ull};

Int4 countdigits(UInt8 v) {
    Int4 n = 1;
    while (n < 20 && v >= powers[n]) n++;
    return n;
}

void putdigits(char* out, UInt8 v, Int4 n) {
    for (Int4 i = n - 1; i >= 0; i--, v /= 10) out[i] = char('0' + v % 10);
}

// x in [1e-4, 2^52): x = m / 2^s is split into whole and fraction, and the fraction times a power of ten, which
// fits 128 bits, gives all digits and an exact remainder to round by.
void middleimage(Double x, digrec& out) {
    UInt8 bits = std::bit_cast<UInt8>(x);
    UInt8 m = (bits & 0xFFFFFFFFFFFFFull) | 0x10000000000000ull;
    Int4 s = 1075 - Int4(bits >> 52);
    UInt8 whole = s < 64 ? m >> s : 0;
    UInt8 fraction = s < 64 ? m & ((1ull << s) - 1) : m;
    UInt16 scale;
    if (whole) {
        out.decpt = countdigits(whole);
        scale = powers[imagedigits - out.decpt];
    } else {
        out.decpt = x >= .1 ? 0 : x >= .01 ? -1 : x >= .001 ? -2 : -3;
        scale = UInt16(powers[19]) * powers[-out.decpt];
    }
    UInt16 product = fraction * scale;
    UInt8 digits = UInt8(whole * scale + (product >> s));
    UInt16 rest = product & ((UInt16(1) << s) - 1), half = UInt16(1) << (s - 1);
    if (rest > half || (rest == half && (digits & 1))) digits++;
    if (digits == powers[19]) {
        digits = powers[18];
        out.decpt++;
    }
    putdigits(out.digits, digits, imagedigits);
}

void otherimage(Double x, digrec& out) {
    char text[40];
    std::to_chars_result r = std::to_chars(text, text + sizeof text, x, std::chars_format::scientific, imagedigits - 1);
    out.digits[0] = text[0];
    std::memcpy(out.digits + 1, text + 2, imagedigits - 1);
    const char* sign = text + imagedigits + 2;
    Int4 e = 0;
    std::from_chars(sign + 1, r.ptr, e);
    out.decpt = (*sign == '-' ? -e : e) + 1;
}

}  // namespace

void decimalimage(Double x, digrec& out) {
    out.negative = x < 0;
    Double size = std::fabs(x);
    if (size < 1e15 && Double(UInt8(size)) == size) {
        UInt8 v = UInt8(size);
        out.decpt = countdigits(v);
        std::memset(out.digits, '0', imagedigits);
        putdigits(out.digits, v, out.decpt);
    } else if (size >= 1e-4 && size < 0x1p52) {
        middleimage(size, out);
    } else {
        otherimage(size, out);
    }
    out.digits[imagedigits] = 0;
}

namespace {

char* putblanks(char* out, Int4 n) {
    if (n <= 0) return out;
    std::memset(out, ' ', std::size_t(n));
    return out + n;
}

Int4 finish(char* end) {
    *end = 0;
    return Int4(end - dbuf);
}

// The first n digits of the image, rounded half up on the digits; zeros behind the last one known. Returns the
// place of the point, one more when a carry runs off the first digit.
Int4 rounddigits(const digrec& image, Int4 n, char* digits) {
    Int4 known = std::min(n, imagedigits);
    std::memcpy(digits, image.digits, std::size_t(known));
    std::memset(digits + known, '0', std::size_t(n - known));
    if (n >= imagedigits || image.digits[n] < '5') return image.decpt;
    Int4 i = n - 1;
    while (i >= 0 && digits[i] == '9') digits[i--] = '0';
    if (i >= 0) {
        digits[i]++;
        return image.decpt;
    }
    digits[0] = '1';
    return image.decpt + 1;
}

// Copies n digits with a comma every three from the right.
char* putcommas(char* out, const char* digits, Int4 n) {
    for (Int4 i = 0; i < n; i++) {
        if (i && (n - i) % 3 == 0) *out++ = ',';
        *out++ = digits[i];
    }
    return out;
}

// The text of a general form settled: blanks, sign, whole part, point, zeros, fraction, zeros.
struct generaltext {
    const char* digits;
    Int4 whole, lead, fraction, zeros;
    boolean commas;
};

Int4 putgeneral(const fmtparts& f, const generaltext& t, Int4 pad, boolean negative) {
    boolean left = f.spec.just < 0;
    char* out = dbuf;
    if (!left) {
        out = putblanks(out, f.excess + pad);
        *out++ = negative ? '-' : ' ';
    } else if (negative) {
        *out++ = '-';
    }
    if (t.commas) {
        out = putcommas(out, t.digits, t.whole);
    } else {
        std::memcpy(out, t.digits, std::size_t(t.whole));
        out += t.whole;
    }
    if (t.fraction + t.zeros > 0) {
        *out++ = '.';
        std::memset(out, '0', std::size_t(t.lead));
        std::memcpy(out + t.lead, t.digits + t.whole, std::size_t(t.fraction));
        std::memset(out + t.lead + t.fraction, '0', std::size_t(t.zeros));
        out += t.lead + t.fraction + t.zeros;
    }
    if (left) out = putblanks(out, f.excess + pad + !negative);
    return finish(out);
}

// How many digits the general form can show, or 0 when it can't show the number.
Int4 generaldigits(Int4 decpt, Int4 capped, boolean commas) {
    Int4 sig = capped - 2 + std::min(decpt, 0);
    if (commas && decpt >= 4) {
        sig -= (decpt - 1) / 3;
        if (sig < 1) return 0;
    }
    if (sig < std::max(capped - 6, 2)) return 0;
    return sig < decpt && sig > -decpt ? 0 : sig;
}

// Takes from `places` what the whole part of n digits needs beyond `room`; false when they don't reach. Settles
// whether commas stand.
boolean fitwhole(Int4 n, Int4 room, Int4& places, boolean& commas) {
    for (Int4 i = 0; i < n; i++) {
        if (i <= room) continue;
        if (places == 0) return false;
        places--;
        room++;
    }
    commas = commas && n >= 4;
    if (!commas || n + (n - 1) / 3 <= room) return true;
    if (places < (n - 1) / 3) commas = false;
    else places -= (n - 1) / 3;
    return true;
}

// Returns the length of the text, or 0 when the rule fails.
Int4 generalform(const fmtparts& f, const digrec& image, boolean commas) {
    Int4 width = f.capped, places = f.places;
    Int4 sig = generaldigits(image.decpt, width, commas);
    if (sig == 0) return 0;
    char digits[40];
    Int4 decpt = rounddigits(image, sig, digits);
    digits[sig] = '0';                       // the whole part may be a digit longer after a carry
    generaltext t{digits, std::max(decpt, 0), std::max(-decpt, 0), 0, 0, commas};
    if (!fitwhole(t.whole, places ? width - 2 - places : width - 1, places, t.commas)) return 0;
    Int4 last = sig;
    while (last > t.whole && digits[last - 1] == '0') last--;
    t.fraction = std::max(last - t.whole, 0);
    Int4 pad = width - 1 - t.whole - (t.commas ? (t.whole - 1) / 3 : 0);
    if (t.fraction) pad -= t.lead + t.fraction + 1;
    if (pad < 0) return 0;
    Int4 want = places - t.fraction - t.lead;
    Int4 point = t.fraction == 0;
    if (want > 0 && pad > point) {
        t.zeros = std::min(want, pad - point);
        pad -= t.zeros + point;
    }
    return putgeneral(f, t, pad, image.negative);
}

Int4 exponential(const fmtparts& f, const digrec& image, Int4 places) {
    Int4 width = std::max(f.capped, 8), most = width - 7;
    Int4 d = places < 1 || places >= most ? most : places;
    char digits[40];
    Int4 e = rounddigits(image, d + 1, digits) - 1;
    Int4 size = e < 0 ? -e : e;
    Int4 ew = size > 99 ? 3 : 2;
    Int4 pad = f.excess - ew - d + width - 5;
    boolean left = f.spec.just < 0;
    char* out = dbuf;
    if (!left) out = putblanks(out, pad);
    if (!left || image.negative) *out++ = image.negative ? '-' : ' ';
    *out++ = digits[0];
    *out++ = '.';
    std::memcpy(out, digits + 1, std::size_t(d));
    out += d;
    *out++ = 'e';
    *out++ = e < 0 ? '-' : '+';
    putdigits(out, UInt8(size), ew);
    out += ew;
    if (left && pad > 0) out = putblanks(out, pad + !image.negative);
    return finish(out);
}

// The fixed form of x without padding; at most 554 bytes.
Int4 fixedtext(char* out, std::size_t size, Double x, Int4 places) {
    return Int4(std::to_chars(out, out + size, x, std::chars_format::fixed, places).ptr - out);
}

// As the C library's %f with the width given. A text longer than dbuf is cut.
Int4 fixedform(Double x, Int4 width, Int4 places, boolean left, boolean zerofill) {
    char text[600];
    Int4 n = fixedtext(text, sizeof text, x, places);
    Int4 pad = std::max(width - n, 0);
    n = std::min(n, Int4(sizeof dbuf) - 1);
    char* out = dbuf;
    const char* from = text;
    if (!left && !zerofill) out = putblanks(out, pad);
    if (!left && zerofill && pad) {
        if (x < 0) *out++ = *from++;
        std::memset(out, '0', std::size_t(pad));
        out += pad;
    }
    std::size_t rest = std::size_t(text + n - from);
    std::memcpy(out, from, rest);
    out += rest;
    if (left) out = putblanks(out, pad);
    return finish(out);
}

Int4 fixedcommas(const fmtparts& f, Double x) {
    char text[600];
    Int4 n = fixedtext(text, sizeof text, x, f.places);
    Int4 sign = text[0] == '-';
    Int4 whole = sign;
    while (whole < n && text[whole] != '.') whole++;
    Int4 commas = (whole - sign - 1) / 3;
    if (commas == 0) return fixedform(x, f.capped, f.places, false, false);
    Int4 blanks = f.capped - n - commas;
    boolean left = f.spec.just < 0;
    char* out = left ? dbuf : putblanks(dbuf, blanks);
    if (sign) *out++ = '-';
    out = putcommas(out, text + sign, whole - sign);
    std::memcpy(out, text + whole, std::size_t(n - whole));
    out += n - whole;
    if (left) out = putblanks(out, blanks);
    return finish(out);
}

Int4 hexform(Double x) {
    constexpr char figures[] = "0123456789abcdef";
    UInt8 bits = std::bit_cast<UInt8>(x);
    Int4 biased = Int4(bits >> 52 & 0x7FF);
    Int4 e = biased < 1023 ? 1023 - biased : biased - 1023;
    char* out = dbuf;
    *out++ = bits >> 63 ? '-' : '+';
    *out++ = biased ? '1' : '0';
    *out++ = '.';
    for (Int4 shift = 48; shift >= 0; shift -= 4) *out++ = figures[bits >> shift & 15];
    *out++ = 'X';
    *out++ = biased < 1023 ? '-' : '+';
    for (Int4 shift = 8; shift >= 0; shift -= 4) *out++ = figures[e >> shift & 15];
    return finish(out);
}

Int4 swapped(const fmtparts& f, Int4 n) {
    if (!f.spec.dpcomma && !dpcomma) return n;
    for (Int4 i = 0; i < n; i++) {
        if (dbuf[i] == '.') dbuf[i] = ',';
        else if (dbuf[i] == ',') dbuf[i] = '.';
    }
    return n;
}

Int4 byimage(const fmtparts& f, Double value) {
    digrec image;
    decimalimage(value, image);
    if (f.route != by_general) return exponential(f, image, f.route == by_exponential ? f.places : 0);
    boolean commas = f.spec.comma == 'c';
    Int4 n = generalform(f, image, commas);
    if (!n && commas) n = generalform(f, image, false);
    return n ? n : exponential(f, image, 0);
}

// decpt of the image of x in [1e-5, 1e12): from the binary exponent, which may be one too few. No double below a power
// of ten is so near to it that 19 digits would round to it, and the doubles of the negative powers are above those.
Int4 pointof(Double x) {
    constexpr Double fractions[6] = {1e-5, 1e-4, 1e-3, 1e-2, 1e-1, 1e0};
    Int4 least = ((exponent(x) * 1233) >> 12) + 1;           // 1233 / 4096 is log10(2)
    return least + (x >= (least < 0 ? fractions[least + 5] : exacttens[least]));
}

// The quick way in its own padding.
Int4 quickform(const fmtparts& f, Double value) {
    quicktext text;
    if (!quicknumber(f, value, text)) return 0;
    Int4 width = f.spec.width, n = text.last - text.first + (text.last > text.point);
    boolean left = f.spec.just < 0, negative = value < 0;
    std::memset(dbuf, ' ', widestquick);
    char* end = putquick(left ? dbuf : dbuf + width - n - negative, text, negative);
    if (left) std::memset(end, ' ', widestquick);
    dbuf[width] = 0;
    return width;
}

}  // namespace

// The number times a power of ten has as many whole digits as the form can show. The product stays below 2^43: it is
// within 2^-11 of the exact one, and that of the image within another 2^-11. So unless its fraction is nearly a half,
// it rounds as the digits of the image do, half up.
boolean quicknumber(const fmtparts& f, Double value, quicktext& text) {
    Double size = std::fabs(value);
    if (!(size >= 1e-5 && size < 1e12)) {
        if (size != 0) return false;
        text.digits[15] = '0';
        text.first = 15;
        text.point = text.last = 16;
        return true;
    }
    Int4 decpt = pointof(size), sig = generaldigits(decpt, f.capped, false), shift = sig - decpt;
    if (sig == 0) return false;
    Double scaled = size * exacttens[shift];
    std::int64_t whole = std::int64_t(scaled);
    Double fraction = scaled - Double(whole);
    if (std::fabs(fraction - .5) < 0x1p-9) return false;
    UInt4 counts = bytes::putsixteen(text.digits, UInt8(whole + (fraction > .5)));
    text.point = 16 - shift;
    text.first = std::min(std::countr_zero(counts), text.point);
    text.last = std::max(Int4(std::bit_width(counts)), text.point);
    return text.last - text.first + (text.last > text.point) < f.capped;
}

char* putquick(char* out, const quicktext& text, boolean negative) {
    *out = '-';
    out += negative;
    std::memcpy(out, text.digits + text.first, 16);
    out += text.point - text.first;
    if (text.last == text.point) return out;
    *out++ = '.';
    std::memcpy(out, text.digits + text.point, 16);
    return out + text.last - text.point;
}

Int4 exponentialform(const fmtparts& f, Double value) {
    digrec image;
    decimalimage(value, image);
    return swapped(f, exponential(f, image, 0));
}

Int4 numberform(const fmtparts& f, Double value) {
    boolean swap = f.spec.dpcomma || dpcomma;
    switch (f.route) {
    case by_hex: return hexform(value);
    case by_fixed:
        if (swap) return swapped(f, fixedform(value, f.capped, f.places, false, false));
        return fixedform(value, f.spec.width, f.spec.decimals, f.spec.just < 0, f.zerofill);
    case by_fixedcommas: return swapped(f, fixedcommas(f, value));
    default:
        if (Int4 n = f.quick ? quickform(f, value) : 0) return swapped(f, n);
        return swapped(f, byimage(f, value));
    }
}

}  // namespace velmo
