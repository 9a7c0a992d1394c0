// Texts of value labels are looked up in an index made from the label once; the label itself is written only when a
// text is added.
#include "commands/files/textnumber.h"
#include <string>
#include <unordered_map>
#include <vector>
#include "base/saved.h"
#include "base/text.h"
#include "data/cells.h"
#include "data/labels.h"
#include "output/errors.h"
#include "output/print.h"

namespace velmo {

namespace {

// Look-up by a view, so that none of the file's texts is copied to be looked up.
struct texthash {
    using is_transparent = void;
    std::size_t operator()(std::string_view text) const { return std::hash<std::string_view>()(text); }
};
using textindex = std::unordered_map<std::string, Double, texthash, std::equal_to<>>;

boolean uselabels, addtexts;
std::unordered_map<std::string, textindex> indexes;      // by the label's name

textindex makeindex(const char* name) {
    textindex index;
    vallabel label;
    vl_load(name, label);
    for (std::size_t i = 0; i < label.values.size(); i++)
        index.emplace(label.texts.data() + label.offsets[i], label.values[i]);      // of two alike the first counts
    return index;
}

textindex& indexof(const char* name) {
    auto found = indexes.find(name);
    return found != indexes.end() ? found->second : indexes.emplace(name, makeindex(name)).first->second;
}

// The value that the variable's label has for a text, or gets for it.
Int4 labelvalue(const char* name, std::string_view text, Double& value) {
    textindex& index = indexof(name);
    text = text.substr(0, maxlabeltext);
    auto found = index.find(text);
    if (found != index.end()) value = found->second;
    if (found != index.end() || !addtexts) return 0;
    if (Int4 rc = vl_nextval(name, text, value)) {
        value = missing;
        return rc == 134 ? error(rc) : rc;
    }
    index.emplace(text, value);
    return 0;
}

void complain(std::string_view text, Int4 var, Int4 obs) {
    saved level(outlevel, UByte(1));
    prtraw("{bf:'");
    prt(text.substr(0, text.find('\0')));
    prtraw("' cannot be read as a number");
    if (obs) prtf(" for %s[%d]", varlist[var - 1], obs);
    prtraw("}\n");
}

}  // namespace

void numbers_start(boolean labels, boolean automatic) {
    uselabels = labels;
    addtexts = automatic;
    indexes.clear();
}

Int4 numbers_read(std::string_view text, boolean quoted, Int4 var, Int4 obs, Double& value, boolean& readable) {
    readable = true;
    value = missing;
    if (text == "." && !quoted) return 0;
    if (!quoted && readnumber(trimmed(text.substr(0, 79)), value)) {
        value = datavalue(value);
        return 0;
    }
    if (!quoted && !text.empty() && text[0] == '"') text.remove_prefix(1);
    const char* name = lbl[var - 1];
    if (uselabels && name[0] && !text.empty())
        if (Int4 rc = labelvalue(name, text, value)) return rc;
    readable = value != missing;
    if (!readable) complain(text, var, obs);
    return 0;
}

void numbers_widen(Int4 var) {
    if (addtexts) fmtwiden(var, var);
}

}  // namespace velmo
