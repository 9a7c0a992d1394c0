// The look-up keeps the first row of each first letter, so a word meets only the rows of its letter.
#include "core/commands.h"
#include <string_view>
#include "base/state.h"
#include "base/text.h"

namespace velmo {

UByte classsystem = 0;

namespace {

struct letterindex {
    Int4 first[256];
    letterindex() {
        for (Int4& f : first) f = -1;
        for (Int4 i = ncommands - 1; i >= 0; i--) first[UByte(commands[i].word[0])] = i;
    }
};

template <class T> const command* firstrow(const char* word, T wanted) {
    static const letterindex index;
    std::string_view text = word;
    Int4 i = word[0] ? index.first[UByte(word[0])] : -1;
    if (i < 0) return nullptr;
    // HELPCHK stands among the rows of `_`.
    for (; i < ncommands && (commands[i].word[0] == word[0] || commands[i].word[0] == 'H'); i++)
        if (wanted(commands[i]) && abbrev(text, commands[i].word, commands[i].min)) return &commands[i];
    return nullptr;
}

}  // namespace

const command* commandrow(const char* word) {
    return firstrow(word, [](const command& c) { return version >= c.from && version <= c.until; });
}

const command* commandrow_any(const char* word) {
    return firstrow(word, [](const command&) { return true; });
}

const char* builtinname(const char* word) {
    const command* row = commandrow_any(word);
    return row ? row->word : nullptr;
}

}  // namespace velmo
