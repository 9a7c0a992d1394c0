// Private to the format renderers: a format broken up once, and the renderers of each form. All write to dbuf.
#pragma once
#include "output/formats.h"

namespace velmo {

enum fmtroute : UByte { by_general, by_exponential, by_fixed, by_fixedcommas, by_hex, by_date, by_period };

// With w the width as written: capped is w but at most 26, excess what was cut off, places the decimals unless they
// exceed the capped width (then 0).
struct fmtparts {
    char text[fmtsize];       // the format itself
    fmtspec spec;
    fmtroute route;
    Int4 capped, excess, places;
    UByte zerofill;           // the width was written with a leading zero
    UByte quick;              // a general form that quicknumber may know
    UByte wholes;             // a general form in which whole numbers below 10^15 have all their digits
    char period;              // the letter of a time-series format
    const char* mask;         // of dates and periods: within text, or the default
};

// The mask of a date or time-series format, `fmt` standing behind the d or the letter; the default when empty.
const char* datemaskof(char period, const char* mask);
// The sum of the mask's widths, 8 at least; -1 when the mask holds what is no code.
Int4 maskwidth(std::string_view mask);

// Renders by a date or a time-series format; the length of the text.
Int4 dateform(const fmtparts& f, Double value);
// Renders in exponential form, whatever the format's letter.
Int4 exponentialform(const fmtparts& f, Double value);
// "." padded to the format's own width.
Int4 missingform(const fmtparts& f);
// Renders a finite number by the numeric routes.
Int4 numberform(const fmtparts& f, Double value);

// The text of a number in general form, still in pieces: digits[first..point) and, when last > point, a point and
// digits[point..last).
struct quicktext {
    char digits[32];          // sixteen, and room for a read of sixteen from any of them
    Int4 first, point, last;
};
inline constexpr Int4 leastquick = 4, widestquick = 14, leastwholes = 18;
// The pieces for a format with quick set, at most its width less 1 in sum; false when the slow way must find them.
boolean quicknumber(const fmtparts& f, Double value, quicktext& text);
// Writes sign and pieces at `out`, where 40 bytes may be overwritten, and returns their end.
char* putquick(char* out, const quicktext& text, boolean negative);

}  // namespace velmo
