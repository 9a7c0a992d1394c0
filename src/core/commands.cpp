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

// What abbrev() says, without asking for the length of every name.
boolean abbreviates(const char* word, const command& row) {
    const char* p = word;
    for (const char* name = row.word; *p && *p == *name; p++) name++;
    return *p == 0 && p - word >= row.min;
}

template <class T> const command* firstrow(const char* word, T wanted) {
    static const letterindex index;
    Int4 i = word[0] ? index.first[UByte(word[0])] : -1;
    if (i < 0) return nullptr;
    // HELPCHK stands among the rows of `_`.
    for (; i < ncommands && (commands[i].word[0] == word[0] || commands[i].word[0] == 'H'); i++)
        if (abbreviates(word, commands[i]) && wanted(commands[i])) return &commands[i];
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
