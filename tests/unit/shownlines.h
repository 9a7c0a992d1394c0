// A consumer for tests that puts the lines of a stream into a string.
#pragma once
#include <string>
#include "output/vtmllines.h"

namespace velmo {

inline Int4 takeline(void* data, const UByte* record, Int4 code) {
    if (code == vcode_line) *static_cast<std::string*>(data) += std::string(vline_view(record).text) + "\n";
    return 0;
}

}  // namespace velmo
