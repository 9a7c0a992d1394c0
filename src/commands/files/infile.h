// What infile and infix share: a command that fills an empty dataset from a text file. Variables can be made, and the
// old data may go, only when the options, the dictionary and the files have been found good; `if` can be compiled only
// behind that. So the line is read twice: the options ahead, then the whole form.
#pragma once
#include <string>
#include "commands/files/dictionary.h"
#include "language/stdparse.h"

namespace velmo {

struct infileoptions {
    std::string file;                      // behind `using`; empty without one
    std::string datafile;                  // using(datafile)
    boolean clear = false, automatic = false;
    Int4 byvariable = 0;                   // 0: not given
};
enum infileform { form_free, form_dictionary, form_columns };

// From the cursor, which is put back: the file behind `using` and the options that the form knows. 18 for data in
// memory without `clear`; 100 without a file where one must stand; 198.
Int4 optionsahead(infileoptions& o, infileform form);
// The rest of the command: if, in, using, options. The range goes to first and last, so that firstobs and lastobs fit
// the rows, which are counted from 1.
Int4 parserest(const form& f, Int4& first, Int4& last);
// infile using dictionary, infix using dictionary: from behind `using` on.
Int4 bydictionary(boolean infix);
// Makes the variables of a table (the old data go) and reads the data at the reader's place.
Int4 readtable(linereader& lines, const fieldtable& table);

}  // namespace velmo
