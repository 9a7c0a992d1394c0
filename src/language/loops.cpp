// if, else, while, forvalues, foreach, continue.
#include "language/definition.h"
#include "language/lines.h"
#include "language/lists.h"
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>
#include "base/poll.h"
#include "base/saved.h"
#include "base/state.h"
#include "base/text.h"
#include "core/keywords.h"
#include "core/macros.h"
#include "core/quotes.h"
#include "core/tokenizer.h"
#include "data/dataset.h"
#include "expr/evaluate.h"
#include "language/braces.h"
#include "language/control.h"
#include "language/numlist.h"
#include "language/options.h"
#include "language/programs.h"
#include "language/stdparse.h"
#include "language/turn.h"
#include "language/varlist.h"
#include "output/errors.h"
#include "output/formats.h"

namespace velmo {

namespace {

// The condition between the word and the brace.
Int4 condition(char* brace, boolean& truth) {
    *brace = 0;
    onexit restore([brace] { *brace = '{'; });
    truth = true;
    if (tokpeeknonblank() == 0) return 0;
    if (Int4 rc = parsecondition()) return rc;
    truth = exp_getnum(ifexp, 1) != 0;
    return 0;
}

Int4 rununder(const char* brace) {
    blanktobrace(brace);
    tick();
    return blockrun();
}

// Where a block of the program that begins on line `first` ends is remembered, since skipped lines are read as they
// stand: null when there is nothing to remember it by.
lineinfo* blockknown(Int4 first) {
    object* o = inprogram && !tracing ? runningprogram() : nullptr;
    return o ? lineknown(o, first) : nullptr;
}

// Passes over the program's block that begins on the next line. Nothing in it can fail or change anything.
Int4 skipbody(Int4 rc) {
    Int4 first = programline;
    if (lineinfo* known = blockknown(first); known && known->skipto) {
        programline = known->skipto;
        return rc;
    }
    settokpos(std::strcpy(cmdbuf, ""));
    Int4 skipped = skiprest(rc);
    if (lineinfo* known = skipped ? nullptr : blockknown(first)) known->skipto = programline;
    return skipped;
}

// By the byte: the line has just been written, and is slow to read in larger pieces.
boolean endsline(const char* brace) {
    while (*++brace == ' ') {}
    return *brace == 0;
}

// Passes over the block whose brace stands on this line.
Int4 skipunder(const char* brace) {
    tick();
    if (inprogram && endsline(brace)) return skipbody(0);
    blanktobrace(brace);
    return skiprest(0);
}

}  // namespace

Int4 cmd_if() {
    char* brace = findbrace(tokpos, true);
    if (!brace) return 100;
    boolean truth;
    if (Int4 rc = condition(brace, truth)) return skipfailed(rc, brace);
    control.iftruth = truth;
    return truth ? rununder(brace) : skipunder(brace);
}

// The command behind it is obeyed or not; a block that isn't is passed over.
Int4 cmd_else() {
    if (control.iftruth) {
        const char* brace = openedblock(tokpos);
        return brace ? skipunder(brace) : 0;
    }
    takecmdword();
    return dispatch();
}

Int4 cmd_continue() {
    if (!control.inloop) return error(119);
    if (Int4 rc = parseoptions()) return rc;
    boolean leave = getopt_flag("break", 2);
    if (Int4 rc = getopt_done()) return rc;
    execflag = 0;
    control.contstate = leave ? 2 : 1;
    return 0;
}

// ---- Loops outside stored programs are stored first.

namespace {

Int4 whiledepth = 0;       // temporary loop programs, at most 1000

void runstored(const std::string& name) {
    programline = 0;
    inprogram = 1;
    setprogramname(name);
    if (object* o = runningprogram()) {
        programheader(o).running = 1;
        programheader(o).lastused = sysclock;
    }
    lastrc = 0;
    while (!breakpending && !nextline(1)) {
        if (!docmd()) {
            exitflag = 1;
            lastrc = 0;
            return;
        }
        if (lastrc) return;
    }
    if (breakpending) lastrc = 1;
}

Int4 storeloop(const char* word) {
    if (wasexpanded)
        return skipfailed(
            errorf(198, "%s command may not result from a macro expansion interactively or in do files\n", word));
    if (whiledepth > 999) return skipfailed(error(198));
    if (!findbrace(tokpos, true)) return 100;
    for (char* p = cmdbuf; p < tokstart; p++) *p = ' ';      // prefixes have been obeyed
    std::string name = std::to_string(whiledepth) + "while", home = programhome;
    saved depth(whiledepth, whiledepth + 1);
    if (Int4 rc = programdefine(name, home, {}, true)) return rc;
    char oldname[namesize];
    copytext(oldname, namesize, programname);
    Int4 line = programline;
    {
        saved in(inprogram);
        saved flow(control);
        control = {};
        runstored(name);
    }
    programline = line;
    setprogramname(oldname);
    if (object* o = exactprogram(name, home)) objdelthis(o);
    return lastrc;
}

// One loop of a stored program: where its line stands, what its end puts back, and whether its body begins on the line
// itself.
struct loop {
    Int4 header;
    UByte entry;
    boolean inlinebody;
    controlstate outer;
    loop(const char* brace)
        : header(programline - 1), entry(execflag), inlinebody(!endsline(brace)), outer(control) {}
};

// The body from its first line: what stands behind the brace of the loop's own line, or the line behind it.
void rewind(const loop& l) {
    programline = l.header + 1;
    object* o = l.inlinebody ? runningprogram() : nullptr;
    char* brace = o && programtext(o, l.header, cmdbuf) ? findbrace(cmdbuf, false) : nullptr;
    if (brace)
        blanktobrace(brace);
    else
        settokpos(std::strcpy(cmdbuf, ""));
}

// One pass; the loop goes on while this gives 0 and contstate isn't 2.
Int4 pass(const loop& l) {
    control.inloop = 1;
    control.contstate = 0;
    execflag = l.entry;
    tick();
    rewind(l);
    return blockrun();
}

// Passes over the body, so that the line index ends behind the closing brace.
// A Break that no command of the body has noticed is noticed here, as the lines that are skipped would take it.
Int4 endloop(const loop& l, Int4 rc) {
    if (!exitflag) {
        if (!rc && breakpending) rc = 1;
        rewind(l);
        rc = l.inlinebody ? skiprest(rc) : skipbody(rc);
    }
    control = l.outer;
    execflag = l.entry;
    return rc;
}

boolean goeson(Int4 rc) { return !rc && !exitflag && !breakpending && control.contstate != 2; }

}  // namespace

Int4 cmd_while() {
    if (!inprogram) return storeloop("while");
    char* brace = findbrace(tokpos, true);
    if (!brace) return 100;
    loop l(brace);
    boolean truth;
    if (Int4 rc = condition(brace, truth)) return skipfailed(rc, brace);
    if (!truth) return skipunder(brace);
    control.inloop = 1;
    control.contstate = 0;
    Int4 rc = rununder(brace);
    if (goeson(rc)) programline = l.header;
    control = l.outer;
    execflag = l.entry;
    return rc;
}

// ---- forvalues

namespace {

struct range { Double from, step, to; };

Int4 numbertoken(Double& v) { return readnumber(nexttoken(breaknum), v) ? 0 : error(198); }

// #1(#d)#2, #1/#2, #1 #t to #2, #1 #t : #2, and then the brace.
Int4 readrange(range& r) {
    Double second;
    if (Int4 rc = numbertoken(r.from)) return rc;
    std::string_view token = nexttoken(breaknum);
    if (token == "(") {
        if (Int4 rc = numbertoken(r.step)) return rc;
        if (std::string_view(nexttoken(breaknum)) != ")") return error(198);
    } else if (token == "/") {
        r.step = 1;
    } else {
        if (!readnumber(token, second)) return error(198);
        r.step = second - r.from;
        token = nexttoken(breaknum);
        if (token != "to" && token != ":") return error(198);
    }
    if (Int4 rc = numbertoken(r.to)) return rc;
    if (r.step == 0) return errorf(198, "forvalues:  increment may not be zero\n");
    return nexttoken()[0] == '{' ? 0 : error(198);
}

Int4 localname(std::string& name) {
    name = macroname(nexttoken(), true);
    return validname(name) ? 0 : badname(name.substr(1));
}

}  // namespace

Int4 cmd_forvalues() {
    if (!inprogram) return storeloop("forvalues");
    std::string name;
    range r;
    char* brace = findbrace(tokpos, true);
    if (!brace) return 100;
    auto header = [&]() -> Int4 {
        if (Int4 rc = localname(name)) return rc;
        if (std::string_view(nexttoken(breaknum)) != "=") return error(198);
        return readrange(r);
    };
    if (Int4 rc = header()) return skipfailed(rc, brace);
    loop l(brace);
    Int4 rc = 0;
    for (Double v = r.from; r.step > 0 ? v <= r.to : v >= r.to; v += r.step) {
        char text[512];
        rc = macroset(name, {text, std::size_t(fmttrimmed("%18.0g", v, text))});
        if (!rc) rc = pass(l);
        if (!goeson(rc)) break;
    }
    if (!exitflag) macroclear(name);
    return endloop(l, rc);
}

// ---- foreach

namespace {

// Runs a reader of the tokenizer on the text between the cursor and the brace.
template <class F> Int4 onlist(char* brace, F read) {
    *brace = 0;
    onexit restore([brace] { *brace = '{'; });
    if (Int4 rc = read()) return rc;
    return tokpeeknonblank() ? error(198) : 0;
}

Int4 existingnames(std::string& text) {
    saved rules(parsing, form{.varlist = must, .tsops = may});
    vl_n = vl_ngroups = 0;
    vl_given = 0;
    if (Int4 rc = existinglist()) return rc;
    for (Int4 i = 0; i < vl_n; i++) text += (i ? " " : "") + entryname(i);
    return 0;
}

Int4 freenames(std::string& text) {
    while (nexttoken()[0]) {
        std::vector<std::string> names{tokbuf};
        if (tokpeek() == '-') {
            std::string first = tokbuf;
            nexttoken();
            names.clear();
            if (Int4 rc = seriesnames(first, nexttoken(), names)) return rc;
        }
        for (const std::string& name : names) {
            if (Int4 rc = checknewname(name)) return rc;
            text += (text.empty() ? "" : " ") + name;
        }
    }
    return 0;
}

Int4 listmacro(foreachlist& f, boolean local) {
    std::string name = nexttoken();
    f.macro = macroname(name, local);
    return validname(f.macro) ? 0 : badname(name);
}

enum listkind : Int4 { list_local, list_global, list_varlist, list_newlist, list_numlist, list_any };
constexpr keyword listkinds[] = {{"local", 3, list_local},     {"global", 3, list_global}, {"varlist", 3, list_varlist},
                                 {"newlist", 3, list_newlist}, {"numlist", 3, list_numlist}, {"any", 3, list_any}};

Int4 numbers(std::string_view list, std::string& text) {
    std::vector<Double> values;
    if (Int4 rc = numlistparse(list, {}, values)) return rc;
    text = numlisttext(values);
    return 0;
}

Int4 oflist(foreachlist& f, char* brace) {
    switch (lookup(listkinds, nexttoken())) {
    case list_local: return onlist(brace, [&] { return listmacro(f, true); });
    case list_global: return onlist(brace, [&] { return listmacro(f, false); });
    case list_varlist: return onlist(brace, [&] { return existingnames(f.text); });
    case list_newlist: return onlist(brace, [&] { return freenames(f.text); });
    case list_numlist: return numbers(trimmed({tokpos, std::size_t(brace - tokpos)}), f.text);
    case list_any: f.text = trimmed({tokpos, std::size_t(brace - tokpos)}); return 0;
    default: return error(198);
    }
}

Int4 readlist(std::string& name, foreachlist& f, char* brace) {
    if (Int4 rc = localname(name)) return rc;
    std::string_view word = nexttoken();
    if (word == "of") return oflist(f, brace);
    if (word != "in") return error(198);
    f.text = trimmed({tokpos, std::size_t(brace - tokpos)});
    return 0;
}

}  // namespace

Int4 cmd_foreach() {
    if (!inprogram) return storeloop("foreach");
    std::string name, item;
    foreachlist list;
    char* brace = findbrace(tokpos, true);
    if (!brace) return 100;
    if (foreachlists.size() >= maxlists) return error(198);
    if (Int4 rc = readlist(name, list, brace)) return skipfailed(rc, brace);
    if (list.text.size() >= std::size_t(macrolen)) return skipfailed(error(103), brace);
    loop l(brace);
    Int4 rc = 0;
    foreachlists.push_back(list);
    while (nextelement(foreachlists.back(), item)) {
        rc = item.empty() ? (macroclear(name), 0) : macroset(name, item);
        if (!rc) rc = pass(l);
        if (!goeson(rc)) break;
    }
    foreachlists.pop_back();
    if (!exitflag) macroclear(name);
    return endloop(l, rc);
}

}  // namespace velmo
