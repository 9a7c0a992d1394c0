#include "language/levels.h"
#include <algorithm>
#include <cstring>
#include <string>
#include "base/poll.h"
#include "base/saved.h"
#include "base/text.h"
#include "core/keywords.h"
#include "core/macros.h"
#include "core/objects.h"
#include "core/webfile.h"
#include "data/dataset.h"
#include "data/run.h"
#include "expr/compile.h"
#include "expr/evaluate.h"
#include "language/dofile.h"
#include "language/expand.h"
#include "language/stdparse.h"
#include "language/turn.h"
#include "matrix/results.h"
#include "output/errors.h"
#include "output/print.h"
#include "output/results.h"

namespace velmo {

Int4 dolevel = 0;

namespace {

// What a level puts back. It lives as long as the call.
struct frame {
    doreader reader;
    doreader* olddofile;
    UByte oldsemicolon, oldquiet, oldsavedquiet, oldmore, oldinprogram;
    Int2 oldversion;
    Int4 oldtempnames, oldtempfiles;
    boolean stop;
};

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

// The next argument of the text: a quoted string, or a run of non-blanks that also ends at a quote.
std::string_view nextargument(std::string_view& text) {
    text = ltrimmed(text);
    std::size_t end, from = 0, behind = 0;
    if (text.substr(0, 2) == "`\"") {
        Int4 level = 1;
        from = 2;
        for (end = 2; end < text.size(); end++) {
            if (text.substr(end, 2) == "`\"") level++;
            if (text.substr(end, 2) == "\"'" && --level == 0) break;
        }
        behind = 2;
    } else if (text[0] == '"') {
        from = 1;
        end = std::min(text.find('"', 1), text.size());
        behind = 1;
    } else {
        for (end = 0; end < text.size() && text[end] != ' ' && text[end] != '"' && text.substr(end, 2) != "`\"";) end++;
    }
    std::string_view argument = text.substr(from, end - from);
    text.remove_prefix(std::min(end + behind, text.size()));
    return argument;
}

// Arguments as the new level's locals 0, 1, 2, ...
Int4 storearguments(std::string_view text) {
    text = ltrimmed(text);
    if (text.size() >= std::size_t(macrolen)) return error(1004);
    if (Int4 rc = macroset("_0", text)) return rc;
    for (Int4 i = 1; !ltrimmed(text).empty(); i++)
        if (Int4 rc = macroset("_" + std::to_string(i), nextargument(text))) return rc;
    return 0;
}

Int4 openlevel(Int4 mode, frame& f) {
    if (dolevel >= maxlevels) return error(1000);
    char name[tokensize], path[pathsize];
    if (Int4 rc = filetoken(name)) return rc;
    char* arguments = tokpos;
    char* end;
    if (Int4 rc = dooptions(f, &end)) return rc;
    addsuffix(path, name, ".do");
    if (Int4 rc = doreader_open(f.reader, path)) return rc;
    macrolevel++;
    if (Int4 rc = storearguments({arguments, std::size_t(end - arguments)})) {
        objdeltype(macrolevel);
        macrolevel--;
        doreader_close(f.reader);
        return rc;
    }
    f.olddofile = dofile;
    f.oldsemicolon = semicolon;
    f.oldquiet = quietlevel;
    f.oldsavedquiet = savedquiet;
    f.oldmore = more_on;
    f.oldinprogram = inprogram;
    f.oldversion = version;
    f.oldtempnames = tempnamecounter;
    f.oldtempfiles = tempfilecounter;
    dofile = &f.reader;
    semicolon = 0;
    inprogram = 0;
    savedquiet = quietlevel;
    if (mode == level_run) quietlevel = std::max(quietlevel, UByte(3));     // under capture all stays unseen
    dolevel++;
    return 0;
}

void leavelevel(Int4 mode, frame& f) {
    doreader_close(f.reader);
    eofseen = 0;
    dofile = f.olddofile;
    semicolon = f.oldsemicolon;
    quietlevel = f.oldquiet;
    savedquiet = f.oldsavedquiet;
    if (version >= 310) droptempfiles(f.oldtempfiles);
    version = f.oldversion;
    if (more_on != f.oldmore) setmore(f.oldmore);
    inprogram = f.oldinprogram;
    droptempnames(f.oldtempnames);
    dolevel--;
    objdeltype(macrolevel);
    macrolevel--;
    if (mode != level_do) return;
    saved level(outlevel, UByte(1));
    prtreset();
    prt("\nend of do-file\n");
}

}  // namespace

Int4 docall(Int4 mode) {
    if (bymode) return error(190);
    frame f;
    if (Int4 rc = openlevel(mode, f)) return rc;
    while (true) {
        breakpending = 0;
        {
            saved level(outlevel, UByte(1));
            prtnl();
        }
        boolean ended = nextline(1);
        if (ended || breakpending) {
            lastrc = breakpending ? 1 : 0;
            break;
        }
        if (!docmd() || (f.stop && lastrc)) break;
    }
    leavelevel(mode, f);
    return lastrc;
}

Int4 cmd_do() { return docall(level_do); }
Int4 cmd_run() { return docall(level_run); }

Int4 cmd_exit() {
    exp_reset();
    Double value = 0;
    nexttoken();
    if (tokbuf[0] && tokbuf[0] != ',') {
        if (tokbuf[0] != '=' || tokbuf[1]) ungettoken();
        if (Int4 rc = exp_compile(eqexp, mode_num)) return rc;
        value = exp_getnum(eqexp, 1);
    } else {
        ungettoken();
    }
    if (Int4 rc = parseoptions()) return rc;
    boolean clear = getopt_flag("clear", 5), whole = getopt_flag("VELMO", 5);
    if (Int4 rc = getopt_done()) return rc;
    if (!dofile && !inprogram && datachanged && !clear) return error(4);
    Int4 rc = value > -2147483648.0 && value < 2147483648.0 ? Int4(value) : 0;
    if (rc) return rc;
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
    saved level(outlevel, UByte(1));
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
