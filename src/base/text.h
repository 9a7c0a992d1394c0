// Characters, names, abbreviations and small operations on text. Text is bytes throughout: a letter is A-Z or
// a-z, a blank is 32, and nothing depends on a locale.
#pragma once
#include <string>
#include <string_view>
#include "base/types.h"

namespace velmo {

inline boolean isletter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
inline boolean isdigit(char c) { return c >= '0' && c <= '9'; }
inline boolean isnamestart(char c) { return isletter(c) || c == '_'; }
inline boolean isnamechar(char c) { return isnamestart(c) || isdigit(c); }
inline char lowerchar(char c) { return c >= 'A' && c <= 'Z' ? char(c + 32) : c; }
inline char upperchar(char c) { return c >= 'a' && c <= 'z' ? char(c - 32) : c; }

// The language's one abbreviation rule: true when `word` has at least `min` characters and each equals the
// same place of `name`. Case counts.
boolean abbrev(std::string_view word, std::string_view name, Int4 min);
// The same for a table's word, whose length nobody asks for.
inline boolean abbrev(std::string_view word, const char* name, Int4 min) {
    if (word.empty() || word[0] != name[0] || Int4(word.size()) < min) return false;
    for (std::size_t i = 1; i < word.size(); i++)
        if (word[i] != name[i] || !name[i]) return false;
    return true;
}

// True for a valid name: 1 to 32 characters, the first a letter or `_`, none of \!@#$%^&*()-+=[]{}:;,'"~<>?/|.
// nor a blank or a backquote.
boolean validname(std::string_view name);

// Copies `text` into a field of `size` bytes, cut to fit, with a zero behind it. Returns `out`.
char* copytext(char* out, std::size_t size, std::string_view text);

// `text` without blanks at its start, its end, or both.
std::string_view ltrimmed(std::string_view text);
std::string_view rtrimmed(std::string_view text);
std::string_view trimmed(std::string_view text);

inline const char* plural(std::int64_t n) { return n == 1 ? "" : "s"; }

// The text of a bounded field: up to its first zero, at most `size` bytes.
std::string_view fieldtext(const char* field, std::size_t size);

// True when `text` matches `pattern`: `*` any run, `?` one byte, everything else itself. With `escapes`, a `\`
// makes a following `\`, `?` or `*` stand for itself. Linear in the text for each `*`; never recursive.
boolean wildmatch(std::string_view text, std::string_view pattern, boolean escapes);

// Reads a number that takes up the whole of `text`: optional sign, digits with an optional point (at least one
// digit), optionally e, E, d or D with an optional sign and at least one digit. False when it is none; `value`
// is then left alone. A value beyond the largest double is infinite; one too small is 0.
boolean readnumber(std::string_view text, Double& value);

// Reads a whole number in [-2147483648, 2147483647] that takes up all of `text`; false when it is none.
boolean readinteger(std::string_view text, Int4& value);

}  // namespace velmo
