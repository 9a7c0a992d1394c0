// Variable labels, value labels and their use in display. A value label is an object of kind 1:
//   n Int4 | txtlen Int4 | off[n] Int4 | val[n] Int4, ascending | texts in the order of insertion, each with its zero
// Every change writes a new record. vallabel is the handle for look-ups in a loop: it owns a copy, so it survives
// store calls. Codes: 950 no room (printed), 134 too many entries.
#pragma once
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>
#include "base/types.h"

namespace velmo {

inline constexpr Int4 maxvarlabel = 80, maxlabeltext = 244, maxlabelentries = 65536;

// Variable label: "" when there is none; setting "" removes it. Texts are cut to 80 characters.
std::string getvarlabel(std::string_view varname);
Int4 putvarlabel(std::string_view varname, std::string_view text);

struct vallabel {
    boolean exists = false;
    std::vector<Int4> values;               // ascending
    std::vector<Int4> offsets;
    std::vector<char> texts;
    // The text of a value, or null: binary search; a value that is no Int4 or missing has none.
    const char* find(Double value) const;
};
void vl_load(std::string_view name, vallabel& out);      // exists false when there is no such label
boolean vl_find(std::string_view name);
// The text of a value into out; false when the label or value isn't there.
boolean vl_valtotext(std::string_view name, Double value, char* out, std::size_t size);
// The value of a text, `missing` when not found.
Double vl_texttoval(std::string_view name, std::string_view text);
Int4 vl_maxtext(std::string_view name);                  // longest text in bytes, 0 when none
// Adds or changes one entry of a label in hand; an empty text removes it.
void vl_change(vallabel& label, Int4 value, std::string_view text);
Int4 vl_store(std::string_view name, const vallabel& label);

// A label in hand whose texts are found through a table, for commands that code many texts: stored once, by the caller.
struct texthash {
    using is_transparent = void;
    std::size_t operator()(std::string_view text) const { return std::hash<std::string_view>()(text); }
};
struct labelinhand {
    vallabel label;
    std::unordered_map<std::string, Int4, texthash, std::equal_to<>> index;
    boolean grown = false;
};
void vl_take(labelinhand& l, std::string_view name);
Double vl_texttoval(const labelinhand& l, std::string_view text);
// The value of a text, which is added under the next free value (one above the highest, 1 when empty) unless there:
// 0, 134.
Int4 vl_nextval(labelinhand& l, std::string_view text, Double& value);

boolean vl_drop(std::string_view name);
std::vector<std::string> vl_names();                     // in the order in which they were made

// The format of a variable widened to the longest text of its value label (variables first..last).
void fmtwiden(Int4 first, Int4 last);
// Renders a value into dbuf by its label's text (cut and padded by columns) if it has one, else by fmtnum; label may be
// null. Returns the length.
Int4 fmtlbl(const char* fmt, Double value, const vallabel* label);
Int4 prtlbl(const char* fmt, Double value, const vallabel* label);

}  // namespace velmo
