#include "core/keywords.h"
#include "base/text.h"

namespace velmo {

Int4 lookup(std::span<const keyword> table, std::string_view word) {
    for (const keyword& row : table)
        if (row.min == 0 ? word == row.word : abbrev(word, row.word, row.min)) return row.value;
    return -1;
}

}  // namespace velmo
