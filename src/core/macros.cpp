#include "core/macros.h"
#include "core/objects.h"

namespace velmo {

Int4 macrolevel = obj_local;

namespace {
Int4 macrotype(std::string_view name) { return !name.empty() && name[0] == '_' ? macrolevel : obj_global; }
}  // namespace

void macros_started() { macrolevel = obj_local; }

Int4 macros_levelleft() {
    objdeltype(macrolevel--);
    return 0;
}

std::string macroname(std::string_view name, boolean local) {
    std::string stored = (local ? "_" : "") + std::string(name);
    if (version < 700 && stored.size() > 8) stored.resize(8);
    return stored;
}

const char* macroget(std::string_view name) {
    object* o = objfind(name, macrotype(name));
    return o ? reinterpret_cast<const char*>(o->data()) : nullptr;
}

std::string_view macrotext(std::string_view name) {
    object* o = objfind(name, macrotype(name));
    return o ? std::string_view(reinterpret_cast<const char*>(o->data()), o->datalen - 1) : std::string_view();
}

Int4 macroset(std::string_view name, std::string_view value) {
    if (value.empty()) {
        macroclear(name);
        return 0;
    }
    return macroput(name, value);
}

Int4 macroput(std::string_view name, std::string_view value) {
    return objputtext(name, macrotype(name), value.substr(0, std::size_t(macrolen - 1)));
}

void macroclear(std::string_view name) { objdel(name, macrotype(name)); }

}  // namespace velmo
