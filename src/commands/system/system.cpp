// Commands about the session and the machine: which, error, shell, sleep, beep, push, more, about.
#include <cmath>
#include <string>
#include "base/frontend.h"
#include "base/platform.h"
#include "base/poll.h"
#include "base/text.h"
#include "core/adopath.h"
#include "core/commands.h"
#include "core/macros.h"
#include "core/webfile.h"
#include "data/run.h"
#include "expr/value.h"
#include "language/options.h"
#include "language/review.h"
#include "language/turn.h"
#include "output/errors.h"
#include "output/formats.h"
#include "output/print.h"
#include "output/results.h"

namespace velmo {

namespace {

// The path of an ado-file and those of its lines that begin *!
Int4 showadofile() {
    if (Int4 rc = prtf("%s\n", usingname)) return rc;
    Int4 handle = webopen(usingname, web_quiet);
    if (handle < 0) return 0;
    static bytereader r;
    reader_start(r, handle);
    std::string line;
    for (Int4 c = 0; c < read_eof;) {
        c = reader_next(r);
        if (c != '\n' && c < read_eof) {
            if (c != '\r' && line.size() < 4096) line += char(c);
            continue;
        }
        if (line.substr(0, 2) == "*!") prtf("%s\n", line.c_str());
        line.clear();
    }
    webclose(handle);
    return breakpending;
}

}  // namespace

// which name [, all]
Int4 cmd_which() {
    char name[tokensize];
    if (Int4 rc = filetoken(name)) return rc;
    std::string word = name;
    if (Int4 rc = parseoptions()) return rc;
    boolean all = getopt_flag("all", 1);
    if (Int4 rc = getopt_done()) return rc;
    printing as(out_text);
    const char* builtin = builtinname(word.c_str());
    if (builtin) {
        prtf("built-in command:  %s\n", builtin);
        if (!all) return 0;
    }
    Int4 nth = 1;
    for (; validname(word) && pathsearch(word, ".ado", nth); nth++) {
        if (Int4 rc = showadofile()) return rc;
        if (!all) return 0;
    }
    if (builtin || nth > 1) return 0;
    return errorf(111, "command %s not found as either built-in or ado-file\n", word.c_str());
}

// error exp: truncated; below 0 or above 32767 counts as 32767.
Int4 cmd_error() {
    textvalue given;
    if (tokpeeknonblank() == 0) return error(198);
    if (exp_valuehere(mode_num, given)) return 197;
    if (Int4 rc = parseoptions()) return rc;
    if (Int4 rc = getopt_done()) return rc;
    Double value = std::trunc(given.number);
    Int4 code = value < 0 || value > 32767 ? 32767 : Int4(value);
    if ((code == 2000 || code == 2001) && by_active) {
        errorcommand(code);
        exitflag = 1;
        return 0;
    }
    return errorcommand(code);
}

// The rest of the line in the user's shell; the macro S_SHELL names another one.
Int4 cmd_shell() {
    if (batchmode) return error(8002);
    const char* macro = macroget("S_SHELL");
    std::string shell = macro ? macro : "", command(trimmed(tokrest()));
    if (command[0] == '!') command.erase(0, 1);
    prtflush();
    vstream_flush(results);
    front->lend(true);
    Int4 status = runshell(shell.c_str(), command.c_str());
    front->lend(false);
    return status < 0 ? error(702) : 0;
}

// sleep #: milliseconds; Break ends it.
Int4 cmd_sleep() {
    Int4 ms;
    if (!readinteger(nexttoken(breaknum), ms) || ms < 0) return error(198);
    if (nexttoken()[0]) return error(198);
    for (std::int64_t end = clockms() + ms; clockms() < end && !breakpending;) {
        sleepms(Int4(std::min<std::int64_t>(end - clockms(), 50)));
        pollnow();
    }
    return breakpending;
}

Int4 cmd_beep() {
    if (Int4 rc = parseoptions()) return rc;
    if (Int4 rc = getopt_done()) return rc;
    if (!batchmode) front->bell();
    return 0;
}

Int4 cmd_push() {
    std::string_view line = ltrimmed(tokrest());
    if (!line.empty()) reviewpush(line);
    return 0;
}

Int4 cmd_more() {
    if (nexttoken()[0]) return error(198);
    vstream_more(results);
    return breakpending;
}

Int4 cmd_about() {
    if (Int4 rc = parseoptions()) return rc;
    if (Int4 rc = getopt_done()) return rc;
    printing as(out_text);
    char total[40];
    memtext(total, sizeof total, Double(memorylimit()));
    prtraw("\n{res}Velmo{txt} 7.0 Midscale for the console\n");
    prtf("Total memory of the machine: %s\n", total);
    memtext(total, sizeof total, Double(memory));
    prtf("Allocated to data:           %s\n", total);
    return prtraw("{txt}Free software by The Velmo authors, under the MIT license.\n");
}

}  // namespace velmo
