// Display formats: the short texts such as %9.0g, %10.2fc, %-12s, %d and %tq, their parser, and the renderer of
// numbers, dates and value labels' texts that every table's columns rest on. The renderer has its own rule for
// fixed against exponential form; it never uses the library's %g. All renderers share dbuf: the result stands
// there until the next rendering, so a caller prints or copies it at once. Nothing prints and nothing fails.
#pragma once
#include <string>
#include <string_view>
#include "base/types.h"

namespace velmo {

struct fmtspec {
    Int4 just;         // 1 right, -1 left, 0 centred
    Int4 width;        // as written; for dates the computed width
    Int4 decimals;     // 0 for s, x, d
    char fclass;       // f fixed, s string, g everything else
    char code;         // e f g x d s (dates and time-series dates are d)
    char comma;        // c or blank
    UByte dpcomma;     // 1 when written with a comma between width and decimals
};

// State
extern char dbuf[512];         // the last rendering
extern UByte dpcomma;          // set dp comma is in force
inline constexpr const char* defaultfmt = "%10.0g";    // of display

// Parses `fmt`. kind 1 admits numeric formats (dates too), 2 string formats, 3 both; kind + 10 also admits ~.
// Returns 0 when valid, nonzero when not; fills *spec unless it is null.
Int4 chkfmt(std::string_view fmt, Int4 kind, fmtspec* spec = nullptr);

// Renders value for people into dbuf by a format that passed chkfmt, and returns its length.
Int4 fmtnum(const char* fmt, Double value);
// The same for programs, which read the text back: with a point whatever `set dp` says (a comma in the format itself
// stays one). What goes into macros, strings, files and lists is rendered by these two.
Int4 fmtread(const char* fmt, Double value);
// fmtread without the blanks at either end into `out`, which holds 512 bytes; dbuf may or may not change.
Int4 fmttrimmed(const char* fmt, Double value, char* out);

// Renders `text` by a string format into dbuf: padded to the width, cut to it only when `cut`.
Int4 fmtstr(const char* fmt, std::string_view text, boolean cut);
// The same for what people read in tables: the width counts columns, and a cut falls between characters.
Int4 fmtshown(const char* fmt, std::string_view text, boolean cut);

// The default display format of a new variable of storage type `type`, written to `out`.
void defaultformat(UByte type, char (&out)[fmtsize]);

// The format for a column `width` wide: `usual` (a %w.dg text) unless `own` is of kind f or g with fewer decimals
// than its width: then usual's width with own's decimals, letter and comma. Written to `out`.
void cutformat(const char* own, const char* usual, char (&out)[fmtsize]);

// Rewrites fmt for a reader that does not know the newer forms: filever 5, dates and periods only; else the
// decimal comma, left justification, commas, and anything illegal, too. `out` is a format field.
void fmtplain(char (&out)[fmtsize], const char* fmt, Int4 filever);

// The format widened to show a text of `longest` bytes; returns false and leaves `fmt` alone when it need not be.
boolean widenformat(char (&fmt)[fmtsize], Int4 longest);

// An amount of memory: bytes/1048576 by %20.3fc, trimmed, with "M" behind, into `out`.
void memtext(char* out, std::size_t size, Double bytes);
// A byte count as "%uk", or "%uM" when it is a whole number of megabytes.
void sizetext(char* out, std::size_t size, std::uint64_t bytes);

// A variable's name abbreviated to n columns: unchanged when it fits, else the first n-2 characters, ~, the last
// one (n under 3: cut). A time-series prefix stays whole when it fits. Returns `out`, which holds size bytes.
char* abbrevname(char* out, std::size_t size, std::string_view name, Int4 n);
// The same for what people read in tables: n columns, whole characters.
std::string shownname(std::string_view name, Int4 n);

}  // namespace velmo
