// What the Tab key offers: commands, stored programs and ado-files for the first word of a line, file names behind
// `using`, behind commands that take a file and inside double quotes, variables anywhere else.
#pragma once
#include <string>
#include <string_view>
#include <vector>
#include "base/types.h"

namespace velmo {

struct completion {
    std::size_t from;                  // where in the line the word begins that the candidates replace
    std::vector<std::string> words;    // sorted, each once; a folder ends in /
    boolean files;                     // they are file names
    boolean quoted;                    // the word stands in double quotes
};

// The candidates for the word that ends where `before`, the line up to the cursor, ends.
void completionsof(std::string_view before, completion& c);
// The longest beginning that all candidates have in common; empty without candidates.
std::string commonbeginning(const completion& c);

}  // namespace velmo
