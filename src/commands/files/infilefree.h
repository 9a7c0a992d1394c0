// Free-format text: values between blanks, commas and quotes.
#pragma once
#include "base/types.h"

namespace velmo {

// infile varlist using filename
Int4 infilefree();

}  // namespace velmo
