#include "core/macros.h"
#include "base/memalloc.h"
#include "base/state.h"
#include "base/text.h"
#include "core/objects.h"
#include "output/errors.h"

namespace velmo {

Int4 macrolevel = obj_local;

namespace {
Int4 macrotype(std::string_view name) { return !name.empty() && name[0] == '_' ? macrolevel : obj_global; }
}  // namespace

const char* macroget(std::string_view name) {
    object* o = objfind(name, macrotype(name));
    return o ? reinterpret_cast<const char*>(o->data()) : nullptr;
}

// The value may lie in the store itself, so it is copied before the store moves.
Int4 macroset(std::string_view name, std::string_view value) {
    if (value.empty()) {
        macroclear(name);
        return 0;
    }
    if (value.size() > std::size_t(macrolen - 1)) value = value.substr(0, std::size_t(macrolen - 1));
    char few[512];
    workspace many(value.size() < sizeof few ? 0 : value.size() + 1);
    char* copy = value.size() < sizeof few ? few : many.get<char>();
    if (!copy) return error(909);
    copytext(copy, value.size() + 1, value);
    return objput(name, macrotype(name), copy, value.size() + 1);
}

void macroclear(std::string_view name) { objdel(name, macrotype(name)); }

}  // namespace velmo
