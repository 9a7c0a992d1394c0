// Texts of value labels are looked up in an index made from the label once. New ones go into a copy of the label, which
// is stored at the end: a label stored with every new text would be written as often as it has texts.
#include "commands/files/textnumber.h"
#include <algorithm>
#include <string>
#include <unordered_map>
#include <vector>
#include "base/text.h"
#include "data/cells.h"
#include "data/labels.h"
#include "output/errors.h"
#include "output/print.h"

namespace velmo {

namespace {

boolean uselabels, addtexts;
std::unordered_map<std::string, labelinhand> labels;      // by name

labelinhand& takelabel(const char* name) {
    auto found = labels.find(name);
    if (found != labels.end()) return found->second;
    labelinhand& l = labels[name];
    vl_take(l, name);
    return l;
}

// The value that the variable's label has for a text, or gets for it.
Int4 labelvalue(const char* name, std::string_view text, Double& value) {
    labelinhand& l = takelabel(name);
    text = text.substr(0, text.find('\0'));
    value = vl_texttoval(l, text);
    if (value != missing || !addtexts || text.empty()) return 0;
    if (Int4 rc = vl_nextval(l, text, value)) return error(rc);
    return 0;
}

void complain(std::string_view text, Int4 var, Int4 obs) {
    printing as(out_text);
    prtraw("{bf:'");
    prt(text.substr(0, text.find('\0')));
    prtraw("' cannot be read as a number");
    if (obs) prtf(" for %s[%d]", varlist[var - 1], obs);
    prtraw("}\n");
}

}  // namespace

void numbers_start(boolean uses, boolean automatic) {
    uselabels = uses;
    addtexts = automatic;
    labels.clear();
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

Int4 numbers_end() {
    Int4 rc = 0;
    for (auto& [name, l] : labels)
        if (l.grown && !rc) rc = vl_store(name, l.label);
    labels.clear();
    return rc;
}

void numbers_widen(Int4 var) {
    if (addtexts) fmtwiden(var, var);
}

}  // namespace velmo
