// set: the words of the table, and the handlers of those that need more than a switch, a number or a text. The
// sizes of memory are in sizes.cpp.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string>
#include "base/text.h"
#include "commands/system/arguments.h"
#include "core/keywords.h"
#include "core/macros.h"
#include "core/prefs.h"
#include "core/quotes.h"
#include "core/settings.h"
#include "core/tokenizer.h"
#include "data/run.h"
#include "data/sorting.h"
#include "language/options.h"
#include "matrix/kernels.h"
#include "matrix/random.h"
#include "output/errors.h"
#include "output/formats.h"
#include "output/logs.h"
#include "output/print.h"
#include "output/results.h"
#include "output/vtmlchars.h"

namespace velmo {

namespace {

// ---- The plain kinds.

Int4 takeonoff(UByte& place) {
    std::string word = nexttoken();
    if (word != "on" && word != "off") return required("on or off");
    if (Int4 rc = nothingelse()) return rc;
    place = word == "on";
    return 0;
}

Int4 takeint(const setting& row) {
    Int4 n;
    if (Int4 rc = readbounded(row.word, row.lo, row.hi, n)) return rc;
    if (Int4 rc = nothingelse()) return rc;
    *static_cast<Int4*>(row.where) = n;
    return 0;
}

// The rest of the line, quotes around it removed.
Int4 taketext(const setting& row) {
    std::string_view text = unquoted(tokrest());
    if (text.size() >= std::size_t(row.hi)) return error(198);
    copytext(static_cast<char*>(row.where), std::size_t(row.hi), text);
    return 0;
}

Int4 take(const setting& row) {
    switch (row.kind) {
    case set_onoff: return takeonoff(*static_cast<UByte*>(row.where));
    case set_int: return takeint(row);
    case set_text: return taketext(row);
    case set_notice: return error(row.lo);
    default: return 0;
    }
}

}  // namespace

// set word argument
Int4 cmd_set() {
    if (nexttoken()[0] == 0) return error(198);
    const setting* row = settingrow(tokbuf);
    if (!row) return notallowed(tokcontent());
    if (row->kind == set_own) return row->handler();
    if (Int4 rc = take(*row)) return rc;
    return row->handler ? row->handler() : 0;
}

// ---- After a change.

Int4 setting_nothing() { return 0; }

Int4 setting_pagesize() {
    setpagesize(pagesize);
    return 0;
}

Int4 setting_level() { return macroset("S_level", std::to_string(confidencelevel)); }

Int4 setting_network() {
    network_store();
    return 0;
}

// ---- Own handlers.

Int4 setting_tol() { return readreal(sweeptolerance); }

std::string shown_tol() {
    char text[40];
    std::snprintf(text, sizeof text, "%g", sweeptolerance);
    return text;
}

// Numbers take the default type wherever a command makes a variable, so a string type can't be one.
Int4 setting_type() {
    UByte type = typecode(nexttoken());
    if (type == 0 || isstringtype(type)) return error(198);
    if (Int4 rc = nothingelse()) return rc;
    defaulttype = type;
    return 0;
}

std::string shown_type() {
    char text[8];
    return typename_of(defaulttype, text);
}

Int4 setting_help() { return notef("(-set help- is no longer relevant in Velmo 7)\n"); }

Int4 setting_charset() {
    std::string word = nexttoken();
    if (word != "latin1" && word != "mac") return errorf(198, "charset %s invalid\n", tokcontent());
    if (Int4 rc = nothingelse()) return rc;
    maccharset = word == "mac";
    return 0;
}

std::string shown_charset() { return maccharset ? "mac" : "latin1"; }

// set more on|off [, permanent], or a number (0 is off), which is for the session only.
Int4 setting_more() {
    std::string word = nexttoken();
    Int4 n = 0;
    boolean old = readinteger(word, n), permanent;
    if (!old && word != "on" && word != "off") return required("on or off");
    if (Int4 rc = permanentoption(permanent)) return rc;
    if (old && permanent) return errorf(198, "old syntax -set more #- may not be combined with permanent option\n");
    boolean on = old ? n != 0 : word == "on";
    setmore(on);
    if (!permanent) return 0;
    prefs_set("set_w", "more", on ? "on" : "off");
    return recorded("more");
}

std::string shown_more() { return more_on ? "on" : "off"; }

Int4 setting_output() {
    static constexpr keyword words[] = {{"proc", 1, 0}, {"inform", 1, 1}, {"error", 1, 3}};
    Int4 level = lookup(words, nexttoken());
    if (level < 0) return error(198);
    if (Int4 rc = nothingelse()) return rc;
    quietlevel = UByte(level);
    return 0;
}

Int4 setting_logtype() {
    static constexpr keyword words[] = {{"text", 1, 1}, {"vtml", 1, 0}};
    Int4 value = lookup(words, nexttoken());
    if (value < 0) {
        prterr("syntax error:  the valid valid default logtypes are ");
        printing as(out_error);
        prtraw("{wh:text} and {wh:vtml}\n");
        return 198;
    }
    if (Int4 rc = nothingelse()) return rc;
    logastext = UByte(value);
    return 0;
}

std::string shown_logtype() { return logastext ? "text" : "vtml"; }

Int4 setting_dp() {
    static constexpr keyword words[] = {{"period", 3, 0}, {"comma", 3, 1}};
    Int4 value = lookup(words, nexttoken());
    if (value < 0) return error(198);
    if (Int4 rc = nothingelse()) return rc;
    dpcomma = UByte(value);
    return 0;
}

std::string shown_dp() { return dpcomma ? "comma" : "period"; }

// ---- The width of a line. Before version 7 any width was taken; those that don't fit are stored as the nearest.

namespace {

Int4 takelinesize() {
    Int4 n;
    boolean old = version < 700;
    if (Int4 rc = readbounded("linesize", old ? 10 : 40, old ? 32000 : 255, n)) return rc;
    if (Int4 rc = nothingelse()) return rc;
    setlinesize(n);
    return 0;
}

}  // namespace

// set linesize [#]: without a number the width that a session starts with.
Int4 setting_linesize() {
    if (tokpeeknonblank()) return takelinesize();
    unsetlinesize();
    return 0;
}

std::string shown_linesize() { return std::to_string(linesize); }

// set log [linesize] # and set display [linesize] #
Int4 setting_oldlinesize() {
    if (!abbrev(nexttoken(), "linesize", 2)) ungettoken();
    return takelinesize();
}

// ---- Colours of the terminal.

namespace {

constexpr keyword colourwords[] = {
    {"auto", 0, colours_auto}, {"dark", 0, colours_dark}, {"light", 0, colours_light}, {"none", 0, colours_none},
};

}  // namespace

void display_configured() {
    std::string word;
    if (prefs_get("set_w", "more", word)) setmore(word != "off" && word != "0");
    Int4 value = prefs_get("set_w", "colors", word) ? lookup(colourwords, word) : -1;
    if (value >= 0) colours = value;
}

// set colors auto|dark|light|none [, permanent]
Int4 setting_colors() {
    std::string word = nexttoken();
    Int4 value = lookup(colourwords, word);
    boolean permanent;
    if (value < 0) return required("auto, dark, light, or none");
    if (Int4 rc = permanentoption(permanent)) return rc;
    colours = value;
    if (!permanent) return 0;
    prefs_set("set_w", "colors", word);
    return recorded("colors");
}

std::string shown_colors() { return colourwords[colours].word; }

// ---- Seeds.

Int4 setting_seed() {
    Double n;
    if (Int4 rc = readreal(n)) return rc;
    setseed(n);
    return 0;
}

std::string shown_seed() {
    char text[340];
    std::snprintf(text, sizeof text, "%.15g", presentseed());
    return text;
}

Int4 setting_seed0() {
    Double n;
    if (Int4 rc = readreal(n)) return rc;
    setseed0(n);
    return 0;
}

Int4 setting_sortseed() {
    Double n;
    if (Int4 rc = readreal(n)) return rc;
    sortseed = UInt4(std::fmod(std::floor(std::fabs(n)), 2147483648.0));
    return 0;
}

std::string shown_sortseed() { return std::to_string(sortseed); }

}  // namespace velmo
