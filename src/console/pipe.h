// The front end where standard output is no terminal: finished lines as plain text, lines read from standard input.
#pragma once
#include "base/frontend.h"

namespace velmo {

extern const frontend pipefront;

}  // namespace velmo
