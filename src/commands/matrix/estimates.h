// The older forms of what `estimates` does, subcommands of `matrix`, from behind their word.
#pragma once
#include "base/types.h"

namespace velmo {

Int4 matrix_post();              // b V [C], options
Int4 matrix_repost();
Int4 matrix_mlout();             // the table of coefficients
Int4 matrix_dispcns();           // the constraints
Int4 matrix_makecns();           // [numlist|_all]: makes them

}  // namespace velmo
