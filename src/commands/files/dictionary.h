// Where the values of each variable stand in the lines of a text file: the field table, which a dictionary of infile
// or the items of infix fill. Nothing is made of it here: names are checked against each other and the rules
// only, so that a bad dictionary costs nobody the data in memory.
#pragma once
#include <string>
#include <unordered_set>
#include <vector>
#include "commands/files/linereader.h"
#include "core/tokenizer.h"

namespace velmo {

struct textfield {
    Int4 var;                  // from 1
    char letter;               // f a number's field, s a text's
    Int4 width;                // columns, 0: one token
    Int4 decimals;             // behind an implied point
    Int4 line;                 // within the observation, from 1
    Int4 column;               // from 0; -1 goes on where the last field ended
    Int4 skip;                 // columns to pass over ahead of the field
};
struct newvariable {
    std::string name, label, vallabel;
    UByte type;
};
struct fieldtable {
    std::vector<textfield> fields;         // once closed, by line
    std::vector<newvariable> vars;
    std::unordered_set<std::string> names;
    Int4 lines = 0;                        // per observation
    Int4 lrecl = 0, firstline = 0;         // 0 until given
    std::string datafile;                  // named in the dictionary
    // Where the next field goes, and the highest line gone to.
    Int4 line = 1, column = -1, skip = 0, highest = 1;
};
inline constexpr Int4 maxlines = 32000;

// ---- The tokens of a dictionary, over its lines, which are echoed, or those of the command line.

struct dicttokens { linereader* lines; };        // null: the command line
// The next token into tokbuf; 612 (printed) at the end of the file, an empty token at the end of the command line. Else
// 0, or what lines_next returns. ungettoken puts it back.
Int4 dict_take(dicttokens& t, const breakset& set = breakstd);
boolean dict_is(std::string_view text);          // the token in hand
Int4 dict_invalid();                             // 614, printed
// Reads the token in hand as a whole number in lo..hi: 0 or 614.
Int4 dict_number(Int4 lo, Int4 hi, Int4& out);
// Passes over what is left of the line in hand.
void dict_skipline(dicttokens& t);

// ---- Filling the table.

// Adds a variable with the next field, which the caller then completes in fields.back(): 614, printed with the name,
// when no variable can have it.
Int4 addfield(fieldtable& table, const std::string& name, UByte type);
// Goes to a line; column and skip start anew. 614 beyond maxlines or table.lines.
Int4 gotoline(fieldtable& table, std::int64_t line);
// At the end of the items: 614 without variables or with fields beyond `lines`.
Int4 closetable(fieldtable& table);

// Reads a dictionary through its `}`: of infile, or of infix. 6, 181's message with 614, 611 to 614, 691, all printed.
Int4 readdictionary(linereader& lines, boolean infix, fieldtable& table);

}  // namespace velmo
