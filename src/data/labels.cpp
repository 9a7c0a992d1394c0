#include "data/labels.h"
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include "base/columns.h"
#include "base/text.h"
#include "core/objects.h"
#include "data/dataset.h"
#include "output/formats.h"
#include "output/print.h"

namespace velmo {

std::string getvarlabel(std::string_view varname) {
    object* o = objfind(varname, obj_varlabel);
    return o ? std::string(fieldtext(reinterpret_cast<char*>(o->data()), o->datalen)) : std::string();
}

Int4 putvarlabel(std::string_view varname, std::string_view text) {
    if (text.empty()) {
        objdel(varname, obj_varlabel);
        return 0;
    }
    std::string copy(text.substr(0, maxvarlabel));
    return objput(varname, obj_varlabel, copy.c_str(), copy.size() + 1);
}

namespace {

// Index of a value, or where it would stand.
std::size_t placeof(const vallabel& l, Int4 value) {
    return std::size_t(std::lower_bound(l.values.begin(), l.values.end(), value) - l.values.begin());
}

boolean has(const vallabel& l, std::size_t i, Int4 value) { return i < l.values.size() && l.values[i] == value; }

const char* textat(const vallabel& l, std::size_t i) { return l.texts.data() + l.offsets[i]; }

void takeout(vallabel& l, std::size_t i) {
    Int4 at = l.offsets[i], n = Int4(std::strlen(textat(l, i))) + 1;
    l.texts.erase(l.texts.begin() + at, l.texts.begin() + at + n);
    l.offsets.erase(l.offsets.begin() + std::ptrdiff_t(i));
    l.values.erase(l.values.begin() + std::ptrdiff_t(i));
    for (Int4& o : l.offsets)
        if (o > at) o -= n;
}

void insert(vallabel& l, std::size_t i, Int4 value, std::string_view text) {
    l.offsets.insert(l.offsets.begin() + std::ptrdiff_t(i), Int4(l.texts.size()));
    l.values.insert(l.values.begin() + std::ptrdiff_t(i), value);
    l.texts.insert(l.texts.end(), text.begin(), text.end());
    l.texts.push_back(0);
}

// The index of a text, or -1.
Int4 indexoftext(const vallabel& l, std::string_view text) {
    for (std::size_t i = 0; i < l.values.size(); i++)
        if (text == textat(l, i)) return Int4(i);
    return -1;
}

}  // namespace

const char* vallabel::find(Double value) const {
    if (!(value > -2147483649.0 && value < 2147483648.0)) return nullptr;
    Int4 v = Int4(value);
    if (values.empty()) return nullptr;
    // Most labels are of values in a row: then the place is known.
    std::int64_t guess = std::int64_t(v) - values[0];
    std::size_t i = std::size_t(guess);
    if (guess < 0 || !has(*this, i, v)) i = placeof(*this, v);
    return Double(v) == value && has(*this, i, v) ? textat(*this, i) : nullptr;
}

void vl_load(std::string_view name, vallabel& out) {
    out = vallabel{};
    object* o = objfind(name, obj_vallabel);
    if (!o) return;
    Int4 head[2];
    objread(o, 0, head, sizeof head);
    std::size_t n = std::size_t(head[0]);
    out.exists = true;
    out.offsets.resize(n);
    out.values.resize(n);
    out.texts.resize(std::size_t(head[1]));
    objread(o, sizeof head, out.offsets.data(), n * 4);
    objread(o, sizeof head + n * 4, out.values.data(), n * 4);
    objread(o, sizeof head + n * 8, out.texts.data(), out.texts.size());
}

Int4 vl_store(std::string_view name, const vallabel& label) {
    if (label.values.size() > std::size_t(maxlabelentries)) return 134;
    std::size_t n = label.values.size() * 4;
    Int4 head[2] = {Int4(label.values.size()), Int4(label.texts.size())};
    std::vector<char> record(sizeof head + 2 * n + label.texts.size());
    std::memcpy(record.data(), head, sizeof head);
    if (n) std::memcpy(record.data() + sizeof head, label.offsets.data(), n);
    if (n) std::memcpy(record.data() + sizeof head + n, label.values.data(), n);
    if (n) std::memcpy(record.data() + sizeof head + 2 * n, label.texts.data(), label.texts.size());
    return objput(name, obj_vallabel, record.data(), record.size());
}

boolean vl_find(std::string_view name) { return objfind(name, obj_vallabel) != nullptr; }

boolean vl_valtotext(std::string_view name, Double value, char* out, std::size_t size) {
    vallabel l;
    vl_load(name, l);
    const char* text = l.find(value);
    if (text) copytext(out, size, text);
    return text != nullptr;
}

Double vl_texttoval(std::string_view name, std::string_view text) {
    vallabel l;
    vl_load(name, l);
    Int4 i = indexoftext(l, text);
    return i < 0 ? missing : l.values[std::size_t(i)];
}

void vl_take(labelinhand& l, std::string_view name) {
    vl_load(name, l.label);
    l.label.exists = true;
    for (std::size_t i = 0; i < l.label.values.size(); i++)      // of two alike the first counts
        l.index.emplace(textat(l.label, i), l.label.values[i]);
}

Double vl_texttoval(const labelinhand& l, std::string_view text) {
    auto found = l.index.find(text.substr(0, maxlabeltext));
    return found == l.index.end() ? missing : found->second;
}

Int4 vl_nextval(labelinhand& l, std::string_view text, Double& value) {
    text = text.substr(0, maxlabeltext);
    value = vl_texttoval(l, text);
    if (value != missing) return 0;
    vallabel& label = l.label;
    if (label.values.size() >= std::size_t(maxlabelentries)) return 134;
    if (!label.values.empty() && label.values.back() >= longmissing - 1) return 134;
    Int4 next = label.values.empty() ? 1 : label.values.back() + 1;
    insert(label, label.values.size(), next, text);
    l.index.emplace(text, next);
    l.grown = true;
    value = next;
    return 0;
}

Int4 vl_maxtext(std::string_view name) {
    vallabel l;
    vl_load(name, l);
    std::size_t longest = 0;
    for (std::size_t i = 0; i < l.values.size(); i++) longest = std::max(longest, std::strlen(textat(l, i)));
    return Int4(longest);
}

void vl_change(vallabel& label, Int4 value, std::string_view text) {
    std::size_t i = placeof(label, value);
    if (has(label, i, value)) takeout(label, i);
    if (!text.empty()) insert(label, i, value, text.substr(0, maxlabeltext));
}

boolean vl_drop(std::string_view name) { return objdel(name, obj_vallabel); }

void labels_cleared(boolean keeplabels) {
    if (!keeplabels) objdeltype(obj_vallabel);
}

std::vector<std::string> vl_names() {
    std::vector<std::string> names;
    for (object* o = objnext(nullptr, nullptr, obj_vallabel); o; o = objnext(o, nullptr, obj_vallabel))
        names.emplace_back(o->name);
    std::reverse(names.begin(), names.end());
    return names;
}

void fmtwiden(Int4 first, Int4 last) {
    for (Int4 v = first; v <= last; v++) {
        std::string_view name = fieldtext(lbl[v - 1], namesize);
        if (isstring(v) || name.empty() || !vl_find(name)) continue;
        widenformat(reinterpret_cast<char(&)[fmtsize]>(fmt[v - 1]), vl_maxtext(name));
    }
}

Int4 fmtlbl(const char* format, Double value, const vallabel* label) {
    const char* found = label ? label->find(value) : nullptr;
    if (!found) return fmtnum(format, value);
    std::string_view text = found;
    text = text.substr(0, maxlabeltext);
    Int4 cut = std::atoi(format + 1);       // with its sign: a left-justified format does not cut
    if (cut >= 1 && cut <= maxlabeltext) text = text.substr(0, bytesin(text, cut));
    fmtspec spec{};
    chkfmt(format, 1, &spec);
    Int4 w = std::clamp(spec.width, 1, maxlabeltext);
    std::string image = (spec.just < 0 ? "%-" : "%") + std::to_string(w) + "s";
    return fmtshown(image.c_str(), text, false);
}

Int4 prtlbl(const char* format, Double value, const vallabel* label) {
    Int4 n = fmtlbl(format, value, label);
    return prt({dbuf, std::size_t(n)});
}

}  // namespace velmo
