// The tables that lower floors declare, joined here: the only place that knows every handler, by name only.
#include <iterator>
#include "base/poll.h"
#include "core/commands.h"
#include "core/settings.h"
#include "core/tempfiles.h"
#include "output/formats.h"
#include "output/results.h"

namespace velmo {

// ---- Commands.

#define CMD(word, min, handler, flags, from, until) Int4 cmd_##handler();
#define NOCMD(word, min, flags, from, until)
#include "core/commands.def"
#undef CMD
#undef NOCMD

#define CMD(word, min, handler, flags, from, until) {#word, min, cmd_##handler, UByte(flags), from, until},
#define NOCMD(word, min, flags, from, until) {#word, min, nullptr, UByte(flags), from, until},
constexpr command commandrows[] = {
#include "core/commands.def"
};
#undef CMD
#undef NOCMD

namespace {

// Rows stand letter by letter (HELPCHK among those of `_`), and a minimum is a length that the word has.
constexpr boolean wellordered() {
    char letter = '_';
    for (const command& row : commandrows) {
        std::size_t n = 0;
        while (row.word[n]) n++;
        if (row.min < 1 || row.min > n) return false;
        char c = row.word[0];
        boolean underscore = c == '_' || c == 'H';
        if (underscore ? letter != '_' : letter != '_' && c < letter) return false;
        if (!underscore) letter = c;
    }
    return true;
}
static_assert(wellordered());

}  // namespace

extern const command* const commands = commandrows;
extern const Int4 ncommands = Int4(std::size(commandrows));

}  // namespace velmo
