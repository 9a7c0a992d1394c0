// What commands that make a matrix share.
#pragma once
#include <string>
#include <string_view>
#include "base/text.h"
#include "core/tokenizer.h"
#include "matrix/matrices.h"
#include "output/errors.h"

namespace velmo {

// `name =` at the cursor: 0 or 198, printed.
inline Int4 targetname(std::string& name) {
    name = nexttoken();
    if (Int4 rc = checkmatrixname(name)) return rc;
    nexttoken();
    return std::string_view(tokbuf) == "=" ? 0 : error(198);
}

}  // namespace velmo
