// Writing a dataset file: its pieces, in the order of these calls, into the file that w writes, or the dataset in
// memory as a whole. w remembers a failed write. The first byte, which is the format, is written last: a file that was
// not completed is no dataset file.
#pragma once
#include "core/webfile.h"
#include "data/chars.h"
#include "data/dtafile.h"
#include "data/labels.h"

namespace velmo {

// The present time as a stamp: 17 bytes.
std::string dta_stamp();

void dta_puthead(bytewriter& w, const dtahead& h);           // up to the variable labels; names must suit the format
void dta_putchar(bytewriter& w, Int4 format, const charview& c);  // none where it does not fit an old format
void dta_endchars(bytewriter& w, Int4 format);
void dta_putlabel(bytewriter& w, Int4 format, std::string_view name, const vallabel& label);
// Writes the number of rows and the format byte in their places; what w holds must have been flushed. False when that
// failed.
boolean dta_complete(Int4 handle, Int4 format, Int4 rows);

// ---- The dataset in memory.

struct savechoice {
    Int4 format = dta_whole;
    boolean labels = true;               // value labels too
    boolean all = false;                 // (e) too
    boolean unused = false;              // value labels that no variable has, too
};
// Writes the dataset into a new file, or with replace over an old one, and sets nothing in memory. An old one stays
// until the new one, written beside it, is whole: links are followed, mode and owner kept. Only where the folder or its
// room does not allow that, or the name is no regular file's, is it written straight. On a failure a file written
// straight is removed. 602, 603, 693, 699, 909, 1.
Int4 dta_save(std::string_view path, boolean replace, const savechoice& choice, const std::string& stamp);

}  // namespace velmo
