// The dataset file: one header, the tables of the variables almost as they stand in memory, characteristics, the rows
// as they stand, value labels. Formats 102 to 108, 110 and 111 are read, 108, 110 and 111 written:
//
//   | header 109 bytes | types | names | sort list | formats | value-label names | variable labels |
//   | characteristics, a record of type 0 at their end | nobs rows of width bytes | value labels up to the end |
//
// Nothing in a file is believed: every size, count, offset and terminator is checked before it is used, and no memory
// is asked for on a count's word alone. A file that breaks a rule is code 610, one that ends early 692. What can be put
// right harmlessly is: an unfit display format becomes the default one, the sort list ends ahead of an entry that
// cannot be, an invalid value-label name is none, labels are cut at 80. Control characters are 610 in names and become
// blanks in labels and formats, with a note: those are shown, and go into commands. Cells and characteristics keep
// theirs.
//
// Reading goes one way: dta_open, then characteristics, rows, value labels, each as far as the caller likes; a later
// kind passes over what is left of an earlier one. All failures have been printed, with the file's name.
#pragma once
#include <cstring>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>
#include "core/webfile.h"
#include "data/chars.h"
#include "data/labels.h"

namespace velmo {

inline constexpr Int4 dta_whole = 111, dta_midscale = 110, dta_old = 108;     // the formats that are written

// What stands ahead of the characteristics. Vectors have an entry for each variable; variable v is entry v - 1.
struct dtahead {
    Int4 format = dta_whole;
    Int4 nobs = 0;
    std::string label;                   // of the dataset, up to 80 bytes
    std::string stamp;                   // "dd Mon yyyy hh:mm"; empty in formats that have none
    std::vector<UByte> types;            // storage types as memory has them, whatever the format
    std::vector<std::string> names;      // valid and different, or "(e)"
    std::vector<UInt2> sort;             // variable numbers of the sort key, without a zero at the end
    std::vector<std::string> formats;
    std::vector<std::string> vallabels;  // "" for none
    std::vector<std::string> varlabels;  // "" for none
    Int4 nvar() const { return Int4(types.size()); }
    Int4 width() const;                  // bytes of a row
};
// The present time as a stamp: 17 bytes.
std::string dta_stamp();

// ---- Reading.

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

// ---- Writing, in the order of these calls, into the file that w writes. w remembers a failed write. The first byte,
// which is the format, is written last: a file that was not completed is no dataset file.

void dta_puthead(bytewriter& w, const dtahead& h);           // up to the variable labels; names must suit the format
void dta_putchar(bytewriter& w, Int4 format, const charview& c);  // none where it does not fit an old format
void dta_endchars(bytewriter& w, Int4 format);
void dta_putlabel(bytewriter& w, Int4 format, std::string_view name, const vallabel& label);
// Writes nobs and the format byte in their places; what w holds must have been flushed. False when that failed.
boolean dta_complete(Int4 handle, Int4 format, Int4 nobs);

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

// Makes the variables `keep` (ascending numbers of the file's) those of memory, which is emptied, value labels too
// unless they are to stay: tables, sort list, variable labels, characteristics, dataset label. No observations yet.
// 0, 692, 900, 902, 950, 1.
Int4 dta_takevars(dtafile& f, const std::vector<Int4>& keep, boolean keeplabels = false);
// Behind it: all rows, in large steps. 0, 692, 901, 1000, 1.
Int4 dta_takerows(dtafile& f, const std::vector<Int4>& keep);
// The same row by row, for who chooses among them: room for n observations more, then runs of bytes from a row of the
// file to one of memory; at the end dta_endrows, which tells of an order that old missing values have spoilt.
struct dtacopy { UInt4 from, to, n; };
void dta_addcopy(std::vector<dtacopy>& copies, UInt4 from, UInt4 to, UInt4 n);    // joined to one that it adjoins
std::vector<dtacopy> dta_copies(const dtafile& f, const std::vector<Int4>& keep);
inline void dta_copyrow(const std::vector<dtacopy>& copies, const UByte* from, UByte* to) {
    for (const dtacopy& c : copies) std::memcpy(to + c.to, from + c.from, c.n);
}
Int4 dta_roomfor(Int4 n);                // 0, 901
void dta_endrows(dtafile& f, const std::vector<Int4>& keep);
// Behind rows: the file's value labels, but for those that memory has. 0, 610, 692, 950, 1.
Int4 dta_takelabels(dtafile& f);

}  // namespace velmo
