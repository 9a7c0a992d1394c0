#pragma once
#include "data/labels.h"

namespace velmo {

// One entry of a value label.
inline void putlabel(std::string_view name, Int4 value, std::string_view text) {
    vallabel l;
    vl_load(name, l);
    vl_change(l, value, text);
    vl_store(name, l);
}

}  // namespace velmo
