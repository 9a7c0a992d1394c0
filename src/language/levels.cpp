#include "language/levels.h"
#include <algorithm>
#include <cstring>
#include <string>
#include <utility>
#include "base/poll.h"
#include "base/saved.h"
#include "base/text.h"
#include "core/events.h"
#include "core/keywords.h"
#include "core/macros.h"
#include "core/objects.h"
#include "core/quotes.h"
#include "core/upcalls.h"
#include "core/webfile.h"
#include "data/dataset.h"
#include "data/preserve.h"
#include "data/run.h"
#include "data/sortpreserve.h"
#include "expr/value.h"
#include "language/autoload.h"
#include "language/by.h"
#include "language/control.h"
#include "language/dofile.h"
#include "language/lines.h"
#include "language/options.h"
#include "language/programs.h"
#include "language/tempnames.h"
#include "language/turn.h"
#include "output/errors.h"
#include "output/print.h"
#include "output/results.h"
#include "stored/families.h"

namespace velmo {

Int4 dolevel = 0;

namespace {

// What a level puts back (levels.def), and what is its own. It lives as long as the call.
struct frame {
#define KEPT(variable) decltype(velmo::variable) variable;
#include "language/levels.def"
    doreader reader;
    UByte wasrunning;
    boolean sorts;         // the program promises to leave the order as it was
    boolean stop;          // a failing line ends the level
};

template <class T> void take(T& to, const T& from) { std::memcpy(&to, &from, sizeof to); }
template <class T> boolean differs(const T& a, const T& b) { return std::memcmp(&a, &b, sizeof a) != 0; }

void keepstate(frame& f) {
#define KEPT(variable) take(f.variable, variable);
#include "language/levels.def"
}

void beginfresh(Int4 mode) {
#define KEPT(variable)
#define FRESH(variable, begins) variable = begins;
#define PROGRAMS(variable, begins) if (mode == level_program) variable = begins;
#include "language/levels.def"
}

void putback(const frame& f, Int4 mode) {
#define KEPT(variable) take(variable, f.variable);
#define PROGRAMS(variable, begins) if (mode == level_program) KEPT(variable)
#define THROUGH(variable, setter) if (differs(f.variable, variable)) setter(f.variable);
#include "language/levels.def"
}

// Splits off the options behind the last comma of the line: nostop, delay.
Int4 dooptions(frame& f, char** argumentsend) {
    f.stop = true;
    char* comma = std::strrchr(tokpos, ',');
    *argumentsend = comma ? comma : tokpos + std::strlen(tokpos);
    if (!comma) return 0;
    settokpos(comma + 1);
    static constexpr keyword words[] = {{"nostop", 1, 0}, {"stop", 1, 1}, {"delay", 1, 2}};
    while (nexttoken()[0]) {
        Int4 word = lookup(words, tokbuf);
        if (word < 0) return notallowed(tokcontent());
        if (word < 2) f.stop = word == 1;
    }
    return 0;
}

// Arguments as the new level's locals 0, 1, 2, ...
Int4 storearguments(std::string_view text) {
    text = ltrimmed(text);
    if (text.size() >= std::size_t(macrolen)) return error(1004);
    if (Int4 rc = macroset("_0", text)) return rc;
    std::string_view argument;
    for (Int4 i = 1; nextitem(text, argument, true); i++)
        if (Int4 rc = macroput("_" + std::to_string(i), argument)) return rc;
    return 0;
}

// The level's macros: one level up, with the arguments in place.
Int4 openmacros(std::string_view arguments) {
    macrolevel++;
    Int4 rc = storearguments(arguments);
    if (!rc) return 0;
    objdeltype(macrolevel);
    macrolevel--;
    return rc;
}

Int4 opendofile(frame& f, const char* name, std::string_view arguments) {
    char path[pathsize];
    addsuffix(path, name, ".do");
    if (Int4 rc = doreader_open(f.reader, path)) return rc;
    if (Int4 rc = openmacros(arguments)) {
        doreader_close(f.reader);
        return rc;
    }
    keepstate(f);
    dofile = &f.reader;
    semicolon = 0;
    inprogram = subprogramlevel = programclass = 0;
    return 0;
}

Int4 opennamedfile(frame& f) {
    char name[tokensize];
    if (Int4 rc = filetoken(name)) return rc;
    char* arguments = tokpos;
    char* end;
    if (Int4 rc = dooptions(f, &end)) return rc;
    if (Int4 rc = opendofile(f, name, {arguments, std::size_t(end - arguments)})) return rc;
    setprogramhome("");
    return 0;
}

// The program is marked first: one that isn't running may have to give way to its own arguments.
Int4 openprogram(frame& f) {
    f.stop = true;
    std::string arguments = tokrest();
    if (!findprogram(cmdword, programhome))
        if (Int4 rc = autoload(".ado", true)) return rc;
    f.wasrunning = std::exchange(programheader(findprogram(cmdword, programhome)).running, 1);
    Int4 rc = openmacros(arguments);
    storedprogram& p = programheader(findprogram(cmdword, programhome));
    if (rc) {
        p.running = f.wasrunning;
        return rc;
    }
    keepstate(f);
    p.lastused = sysclock;
    inprogram = 1;
    programline = 0;
    subprogramlevel = p.subprogram;
    programclass = p.progclass;
    setprogramhome(p.home[0] ? p.home : cmdword);
    setprogramname(cmdword);
    f.sorts = p.sortpreserve;
    return 0;
}

void enter(Int4 mode) {
    beginfresh(mode);
    if (mode == level_run) quietlevel = std::max(quietlevel, shows_errors);     // under capture all stays unseen
    dolevel++;
}

void closesource(Int4 mode, frame& f) {
    if (mode == level_program) {
        object* o = runningprogram();
        if (o && !f.wasrunning) programheader(o).running = 0;
    } else {
        doreader_close(f.reader);
        eofseen = 0;
    }
}

void leave(Int4 mode, frame& f) {
    closesource(mode, f);
    telllevelleft();
    putback(f, mode);
    dolevel--;
    if (mode != level_do) return;
    printing as(out_text);
    prtreset();
    prt("\nend of do-file\n");
}

// The lines of a level, up to its end, a failure, an exit or a Break. A Break that came after its command's last poll
// ends the level too: it would be lost otherwise.
void runlines(Int4 mode, const frame& f) {
    boolean succeeded = true;
    while (true) {
        if (!succeeded) breakpending = 0;
        if (mode != level_program) {
            printing as(out_text);
            prtnl();
        }
        boolean ended = nextline(1);
        if (ended || breakpending) {
            lastrc = breakpending ? 1 : 0;
            return;
        }
        if (!docmd() || (f.stop && lastrc)) return;
        succeeded = !lastrc;
    }
}

}  // namespace

void levels_started() {
    dolevel = 0;
    dofile = nullptr;
    semicolon = 0;
    control = {};
    bydepth = by_index = by_active = by_last = 0;
}

Int4 docall(Int4 mode) {
    if (dolevel >= maxlevels) return error(1000);
    frame f;
    f.sorts = false;
    if (Int4 rc = mode == level_program ? openprogram(f) : opennamedfile(f)) return rc;
    enter(mode);
    lastrc = by_enter();
    if (!lastrc && f.sorts) lastrc = sortindex_push(newtempname());
    if (!lastrc) runlines(mode, f);
    leave(mode, f);
    return lastrc;
}

Int4 runfile(const std::string& path) {
    if (dolevel >= maxlevels) return error(1000);
    frame f;
    f.stop = true;
    if (Int4 rc = opendofile(f, path.c_str(), "")) return rc;
    enter(level_run);
    by_enter();               // no program's call: nothing that could fail
    runlines(level_run, f);
    leave(level_run, f);
    return lastrc;
}

Int4 cmd_do() { return docall(level_do); }
Int4 cmd_run() { return docall(level_run); }

Int4 cmd_exit() {
    textvalue given;
    nexttoken();
    if (tokbuf[0] && tokbuf[0] != ',') {
        if (tokbuf[0] != '=' || tokbuf[1]) ungettoken();
        if (Int4 rc = exp_valuehere(mode_num, given)) return rc;
    } else {
        ungettoken();
    }
    if (Int4 rc = parseoptions()) return rc;
    boolean clear = getopt_flag("clear", 5), whole = getopt_flag("VELMO", 5);
    if (Int4 rc = getopt_done()) return rc;
    if (!dofile && !inprogram && datachanged && !clear) return error(4);
    Double value = given.number;
    Int4 rc = value > -2147483648.0 && value < 2147483648.0 ? Int4(value) : 0;
    if (rc && !(by_active && (rc == 2000 || rc == 2001))) return rc;
    exitflag = 1;
    // At the console there is no level to end but the session.
    if (whole || (!dofile && !inprogram)) hardexit = 1;
    return 0;
}

namespace {

// n, n.d or n.dd of value 1.00 to 7.00 as 100 to 700; 0 when it is none.
Int2 versionnumber(std::string_view text) {
    std::size_t point = text.find('.');
    Int4 whole, part = 0;
    if (!readinteger(text.substr(0, point), whole) || whole < 1 || whole > 7) return 0;
    if (point != std::string_view::npos) {
        std::string_view digits = text.substr(point + 1);
        if (digits.empty() || digits.size() > 2 || !isdigit(digits[0]) || !readinteger(digits, part)) return 0;
        if (digits.size() == 1) part *= 10;
    }
    Int4 v = whole * 100 + part;
    return v <= 700 ? Int2(v) : Int2(0);
}

Int4 showversion() {
    rclear();
    printing as(out_text);
    prtf("version %d.%d\n", version / 100, version % 100);
    return 0;
}

}  // namespace

Int4 cmd_version() {
    char text[tokensize];
    copytext(text, sizeof text, nexttoken());
    if (!text[0]) return showversion();
    Int2 wanted = versionnumber(text);
    if (!wanted && execflag) return errorf(9, "version %s not supported\n", text);
    nexttoken();
    if (tokbuf[0] == 0) {
        if (execflag) version = wanted;
        return 0;
    }
    if (tokbuf[0] != ':') return error(198);
    saved keep(version);
    if (execflag) version = wanted;
    takecmdword();
    return dispatch();
}

}  // namespace velmo
