#include "stored/scalars.h"
#include <cstring>
#include "base/text.h"
#include "core/objects.h"
#include "stored/families.h"

namespace velmo {

Int4 scalarset(std::string_view name, Double value) { return stored_put(named_results, name, value); }

Int4 scalarsettext(std::string_view name, std::string_view text) {
    std::string data(sizeof(Double), 0);
    std::memcpy(data.data(), &missing, sizeof missing);
    data += text;
    if (Int4 rc = objputtext(name, obj_scalar, data)) return rc;
    stored_claim(named_results, name, result_scalar);
    return 0;
}

scalarkind scalarget(std::string_view name, Double& value, std::string& text) {
    object* o = objfind(name, obj_scalar);
    if (!o) return scalar_none;
    objread(o, 0, &value, sizeof value);
    if (o->datalen == sizeof value) return scalar_number;
    text = fieldtext(reinterpret_cast<char*>(o->data()) + sizeof value, o->datalen - sizeof value);
    return scalar_text;
}

boolean scalardrop(std::string_view name) { return objdel(name, obj_scalar); }
std::vector<std::string> scalarnames() { return stored_names(named_results, result_scalar); }

}  // namespace velmo
