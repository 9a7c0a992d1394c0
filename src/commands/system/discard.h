// What can be made again: results of the last estimates, r(), open posts (which are closed), programs of ado-files.
#pragma once

namespace velmo {

// As the command: programs that run stay.
void discard();

}  // namespace velmo
