// The review ring: past typed lines in a ring of bytes, each ended by 0, with a byte 1 at the write head. Old lines
// are overwritten from their beginning.
#pragma once
#include <string>
#include <string_view>
#include "base/types.h"

namespace velmo {

// State
extern char* reviewring;           // conslen + 1

void review_init();
void reviewpush(std::string_view line);
std::string reviewget(Int4 i);     // line i, 0 the newest; empty when there is none

}  // namespace velmo
