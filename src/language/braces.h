// The braces of a line, decided in one place for typed lines, do-files and stored programs: what stands in quotes and
// what belongs to a macro reference (${x}, `x{'`) opens and closes nothing. An opening brace has its partner on its own
// line where there is one; the first closing brace without one ends the block that the line stands in.
#pragma once
#include <string_view>
#include <vector>
#include "base/types.h"

namespace velmo {

// Walks over the braces of a line, from its start or from any place outside quotes and references.
struct bracewalk {
    std::string_view text;
    std::size_t at = 0;              // the brace found
    Int4 parens = 0;                 // depth of ( and [ ahead of it
    explicit bracewalk(std::string_view line) : text(line) {}
    boolean next();                  // false behind the last one
private:
    std::size_t from = 0;
    std::vector<Int4> partners;      // of backquotes and of braces that $ stands ahead of; made when first asked for
    std::size_t behind(std::size_t i);
};

// The place of the brace that ends the block which the line stands in; -1 without one.
Int4 closingbrace(std::string_view line);
// Opening less closing braces.
Int4 bracebalance(std::string_view line);
// The opening brace of a construct in `text`: at depth 0 of parentheses and brackets. Null when there is none; with
// `required` "{ required" has then been printed (100).
char* findbrace(char* text, boolean required);
// True when what stands behind a closing brace is an else, which must begin a line.
boolean elsebehind(const char* text);

// The word of the line at text behind its prefixes (capture, else, version 6: and so on): the cursor stands behind it.
std::string_view wordbehindprefixes(char* text);
// The brace of the block that a line opens which isn't obeyed: behind a control word, or behind a word that a macro
// would give. Null when it opens none. Moves the cursor.
char* openedblock(char* text);
// How many blocks that line leaves open at its end. Moves the cursor.
Int4 blocksopened(char* text);

}  // namespace velmo
