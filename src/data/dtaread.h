// Reading a dataset file goes one way: dta_open, then characteristics, rows, value labels, each as far as the caller
// likes; a later kind passes over what is left of an earlier one.
#pragma once
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>
#include "core/webfile.h"
#include "data/chars.h"
#include "data/dtafile.h"
#include "data/labels.h"

namespace velmo {

enum dtastage : UByte { dta_atchars, dta_atrows, dta_atlabels, dta_atend };

struct dtafile {
    dtahead head;
    std::string path;                    // with its extension, as messages name it
    boolean accepted = false;            // the header was fine: `use` then gives up what is in memory
    boolean own = false;                 // this session wrote it: Break is not looked at, texts stay as they are
    std::vector<UInt4> offsets;          // of the variables in a row
    Int4 width = 0;                      // bytes of a row
    std::unordered_map<std::string, Int4> numbers;        // the variable of a name
    std::vector<UByte> oldmissing;       // by variable: a row given out held the missing double of old files

    // The reader's own.
    Int4 handle = -1;
    boolean swapped = false;             // the file's byte order is not ours
    boolean blanked = false;             // control characters of a label have been told
    boolean failed = false;              // a read failed, rather than came to the end
    Filepos size = -1, place = 0;        // bytes of a regular file (else -1); place of buf[len] in the file
    dtastage stage = dta_atchars;
    Int4 rowsleft = 0;
    boolean rowschecked = false;
    std::size_t pos = 0, len = 0;
    std::vector<UByte> buf;
    const UByte* row = nullptr;          // of dta_nextrow
    Int4 rowsready = 0;
    std::unordered_map<std::string, std::string> renamed; // by the name that held a point
    dtafile() = default;
    ~dtafile();                          // closes the file
    dtafile(const dtafile&) = delete;
    dtafile& operator=(const dtafile&) = delete;
};

// Opens a file (".dta" added to a name without extension) and reads header and tables. Variables whose names hold a
// point are told as they are renamed. 601, 603, 609, 610, 692, and what webopen may say.
Int4 dta_open(std::string_view name, dtafile& f);
void dta_close(dtafile& f);              // at once; the destructor does it too

// The next characteristic of a variable of the file or of _dta; found is false behind the last. Records that are none,
// or name no variable, are passed over. 0, 692, 1 for a Break.
struct dtachar { std::string owner, name, text; };
Int4 dta_nextchar(dtafile& f, dtachar& c, boolean& found);

// The next rows, as many as the buffer holds, `width` bytes each, one behind the other, in our byte order, old missing
// doubles made ours; n is 0 behind the last. Valid until the next call. 0, 692 (also when a file is too short for its
// rows: told by the first call), 1000 (rows wider than memory's may be), 1.
Int4 dta_nextrows(dtafile& f, const UByte*& rows, Int4& n);
// One row at a time: null behind the last. A cell is readcell(row + f.offsets[v - 1], f.head.types[v - 1]) or
// dta_text(f, row, v). Who needs the row before keeps a copy of its width bytes.
Int4 dta_nextrow(dtafile& f, const UByte*& row);
std::string_view dta_text(const dtafile& f, const UByte* row, Int4 var);
// Passes over n of the rows that come. 0, 692, 1000, 1.
Int4 dta_skiprows(dtafile& f, Int4 n);

// The next value label; found is false at the end of the file. Values ascend, each has its own text. 0, 610, 692, 1.
Int4 dta_nextlabel(dtafile& f, std::string& name, vallabel& label, boolean& found);

}  // namespace velmo
