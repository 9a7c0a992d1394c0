// The tables that lower floors declare, joined here: the only place that knows every handler, by name only.
#include <iterator>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include "base/poll.h"
#include "base/state.h"
#include "core/commands.h"
#include "core/events.h"
#include "core/helppages.h"
#include "core/memory.h"
#include "core/settings.h"
#include "core/tempfiles.h"
#include "core/tokenizer.h"
#include "data/dataset.h"
#include "data/timeseries.h"
#include "language/autoload.h"
#include "language/by.h"
#include "language/extfunctions.h"
#include "language/options.h"
#include "language/review.h"
#include "language/varlist.h"
#include "output/logs.h"
#include "output/results.h"

namespace velmo {

// ---- Commands.

#define CMD(word, min, handler, flags, from, until) Int4 cmd_##handler();
#define NOCMD(word, min, flags, from, until)
#include "core/commands.def"
#undef CMD
#undef NOCMD

#define CMD(word, min, handler, flags, from, until) {#word, min, cmd_##handler, UInt2(flags), from, until},
#define NOCMD(word, min, flags, from, until) {#word, min, nullptr, UInt2(flags), from, until},
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

// ---- Settings.

#define ONOFF(word, min, variable, then, debug) Int4 setting_##then();
#define INT(word, min, variable, lo, hi, then) Int4 setting_##then();
#define TEXT(word, min, field, then) Int4 setting_##then();
#define IGNORED(word, min)
#define NOTICE(word, min, code)
#define OWN(word, min, handler, from, until, debug) Int4 setting_##handler(); std::string shown_##handler();
#define ACTION(word, min, handler, from, until) Int4 setting_##handler();
#include "session/settings.def"
#undef ONOFF
#undef INT
#undef TEXT
#undef IGNORED
#undef NOTICE
#undef OWN
#undef ACTION

#define ONOFF(word, min, variable, then, debug) \
    {#word, min, set_onoff, &variable, 0, 1, setting_##then, nullptr, 0, 999, debug},
#define INT(word, min, variable, lo, hi, then) \
    {#word, min, set_int, &variable, lo, hi, setting_##then, nullptr, 0, 999, 0},
#define TEXT(word, min, field, then) \
    {#word, min, set_text, field, 0, Int4(sizeof field), setting_##then, nullptr, 0, 999, 0},
#define IGNORED(word, min) {#word, min, set_ignored, nullptr, 0, 0, nullptr, nullptr, 0, 999, 0},
#define NOTICE(word, min, code) {#word, min, set_notice, nullptr, code, code, nullptr, nullptr, 0, 999, 0},
#define OWN(word, min, handler, from, until, debug) \
    {#word, min, set_own, nullptr, 0, 0, setting_##handler, shown_##handler, from, until, debug},
#define ACTION(word, min, handler, from, until) \
    {#word, min, set_own, nullptr, 0, 0, setting_##handler, nullptr, from, until, 0},
constexpr setting settingrows[] = {
#include "session/settings.def"
};
#undef ONOFF
#undef INT
#undef TEXT
#undef IGNORED
#undef NOTICE
#undef OWN
#undef ACTION

namespace {

// True when the whole word of `later` would select `row`.
constexpr boolean hides(const setting& row, const setting& later) {
    std::string_view word = row.word, other = later.word;
    if (row.until < later.from || later.until < row.from || row.needsdebug) return false;
    if (row.min == 0) return word == other;
    return other.size() >= row.min && word.substr(0, other.size()) == other;
}

// A minimum is a length that the word has, bounds and versions are in order, and no row hides a later one.
constexpr boolean settingsfine() {
    for (const setting* row = settingrows; row < std::end(settingrows); row++) {
        if (row->min > std::string_view(row->word).size() || row->lo > row->hi || row->from > row->until) return false;
        for (const setting* later = row + 1; later < std::end(settingrows); later++)
            if (hides(*row, *later)) return false;
    }
    return true;
}
static_assert(settingsfine());

}  // namespace

extern const setting* const settings = settingrows;
extern const Int4 nsettings = Int4(std::size(settingrows));

// ---- Fixed tables.

#define PLACE(variable) [](void* p) { variable = static_cast<decltype(variable)>(p); }
#define TABLE(label, variable, n) {#label, PLACE(variable), sizeof *variable, (n) * sizeof *variable, false},
#define TEXT(label, variable, n) {#label, PLACE(variable), namesize, n, true},
static constexpr fixedrow fixedtablerows[] = {
#include "session/fixedtables.def"
};
#undef TABLE
#undef TEXT
#undef PLACE
static_assert(std::size(fixedtablerows) < std::size(fixedtables));

extern const fixedrow* const fixedrows = fixedtablerows;
extern const Int4 nfixedrows = Int4(std::size(fixedtablerows));

// ---- Extended macro functions.

#define EXT(word, min, handler) Int4 ext_##handler(std::string& out);
#include "language/extfunctions.def"
#undef EXT

#define EXT(word, min, handler) {#word, min, ext_##handler},
static constexpr extfunction extfunctionrows[] = {
#include "language/extfunctions.def"
};
#undef EXT

extern const extfunction* const extfunctions = extfunctionrows;
extern const Int4 nextfunctions = Int4(std::size(extfunctionrows));

// ---- Events.

#define SUBSYSTEM(word, ...) __VA_ARGS__
#define ON(event, function) decltype(subsystem::event)::call function;
#include "session/events.def"
#undef SUBSYSTEM
#undef ON

#define SUBSYSTEM(word, ...) {__VA_ARGS__},
#define ON(event, function) .event = {function, true},
constexpr subsystem subsystemrows[] = {
#include "session/events.def"
};
#undef SUBSYSTEM
#undef ON

namespace {

constexpr std::size_t nrows = std::size(subsystemrows);

// Calls the handlers of an event one after the other, with no look at rows that have none. A code counts when nothing
// has failed before it.
template <auto event, std::size_t row, class... arguments> void tell(arguments... told) {
    constexpr auto h = subsystemrows[row].*event;
    if constexpr (!h.wanted) return;
    else if constexpr (std::is_void_v<decltype(h.run(told...))>) h.run(told...);
    else if (Int4 rc = h.run(told...); rc && !lastrc) lastrc = rc;
}
template <auto event, class... arguments> void telldown(arguments... told) {
    [&]<std::size_t... i>(std::index_sequence<i...>) {
        (tell<event, i>(told...), ...);
    }(std::make_index_sequence<nrows>());
}
template <auto event, class... arguments> void tellup(arguments... told) {
    [&]<std::size_t... i>(std::index_sequence<i...>) {
        (tell<event, nrows - 1 - i>(told...), ...);
    }(std::make_index_sequence<nrows>());
}

}  // namespace

void tellconfigured() { telldown<&subsystem::configured>(); }
void tellstarted() { telldown<&subsystem::started>(); }
void tellsized(sizedwhat what) { telldown<&subsystem::sized>(what); }
void tellcommandended() { tellup<&subsystem::commandended>(); }
void telllevelleft() { tellup<&subsystem::levelleft>(); }
void tellcleared(boolean keeplabels) { tellup<&subsystem::cleared>(keeplabels); }
void telldiscarded() { tellup<&subsystem::discarded>(); }
void tellended() { tellup<&subsystem::ended>(); }

}  // namespace velmo
