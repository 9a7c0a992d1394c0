#include "data/chars.h"
#include <algorithm>
#include <cstring>
#include "base/text.h"
#include "core/objects.h"

namespace velmo {

namespace {

struct charrecord { char name[namesize]; };     // the text with its zero stands behind it

std::string_view charname(object* o) { return fieldtext(reinterpret_cast<char*>(o->data()), namesize); }

std::string_view chartext(object* o) {
    return fieldtext(reinterpret_cast<char*>(o->data()) + namesize, o->datalen - namesize);
}

// The record of one characteristic, from an owner's record `o` on to older ones.
object* olderchar(object* o, std::string_view name) {
    while (o && charname(o) != name) o = objolder(o);
    return o;
}

object* findchar(std::string_view owner, std::string_view name) { return olderchar(objfind(owner, obj_char), name); }

}  // namespace

std::string char_get(std::string_view owner, std::string_view name) {
    object* o = findchar(owner, name);
    return o ? std::string(chartext(o)) : std::string();
}

boolean char_exists(std::string_view owner, std::string_view name) { return findchar(owner, name) != nullptr; }

Int4 char_add(std::string_view owner, std::string_view name, std::string_view text) {
    std::string record(namesize, 0);
    name = name.substr(0, namelen);
    std::memcpy(record.data(), name.data(), name.size());
    record += text.substr(0, maxchartext);
    record += '\0';
    object* made = objnew(owner, obj_char, record.size(), record.size());
    if (!made) return 950;
    objwrite(made, 0, record.data(), record.size());
    return 0;
}

Int4 char_set(std::string_view owner, std::string_view name, std::string_view text) {
    std::string key(owner), field(name.substr(0, namelen));
    if (!text.empty())
        if (Int4 rc = char_add(key, field, text)) return rc;
    // The older record of that name, if there is one, goes now that the new one is safe.
    object* newest = objfind(key, obj_char);
    if (newest && !text.empty()) newest = objolder(newest);
    if (object* older = olderchar(newest, field)) objdelthis(older);
    return 0;
}

std::vector<std::string> char_names(std::string_view owner) {
    std::vector<std::string> names;
    for (object* o = objnext(nullptr, nullptr, obj_char); o; o = objnext(o, nullptr, obj_char))
        if (owner == o->name) names.emplace_back(charname(o));
    std::reverse(names.begin(), names.end());
    return names;
}

std::vector<charview> char_views() {
    std::vector<charview> all;
    for (object* o = objnext(nullptr, nullptr, obj_char); o; o = objnext(o, nullptr, obj_char))
        all.push_back({o->name, charname(o), chartext(o)});
    std::reverse(all.begin(), all.end());
    return all;
}

Int4 char_rename(std::string_view owner, std::string_view newowner) {
    std::string from(owner), to(newowner);
    if (from == to) return 0;
    for (const std::string& name : char_names(from)) char_set(to, name, "");
    while (object* o = objfind(from, obj_char)) objrename(o, to);
    return 0;
}

void char_dropall(std::string_view owner) {
    std::string key(owner);
    beginbatch();
    while (objdel(key, obj_char)) {}
    endbatch();
}

void chars_cleared(boolean) { objdeltype(obj_char); }

}  // namespace velmo
