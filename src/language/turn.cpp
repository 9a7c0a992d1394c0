#include "language/turn.h"
#include <new>
#include <string>
#include <utility>
#include "base/platform.h"
#include "base/poll.h"
#include "base/saved.h"
#include "base/text.h"
#include "core/commands.h"
#include "core/events.h"
#include "core/objects.h"
#include "core/room.h"
#include "core/upcalls.h"
#include "data/cells.h"
#include "data/run.h"
#include "language/autoload.h"
#include "language/braces.h"
#include "language/control.h"
#include "language/dofile.h"
#include "language/expand.h"
#include "language/levels.h"
#include "language/programs.h"
#include "output/errors.h"
#include "output/print.h"
#include "output/results.h"

namespace velmo {

UByte exitflag = 0;
UByte hardexit = 0;
UByte wasexpanded = 0;
Int4 sysclock = 1;

namespace {
Int4 turndepth = 0;        // commands being run: each prefix, block and call is one within another
}

void takecmdword() {
    nexttoken();
    copytext(cmdword, sizeof cmdword, {tokbuf, std::size_t(toklen)});
}

void turn_started() {
    exitflag = hardexit = 0;
    lastrc = rcvalue = 0;
    execflag = 1;
}

namespace {

// Words that are commands by themselves.
const command* singlecharacter() {
    static const command* shellrow = commandrow_any("shell");
    return cmdword[0] == '!' ? shellrow : nullptr;
}

// A word that is no built-in: a program in memory, or one that the ado-path has.
Int4 runprogram() {
    if (!findprogram(cmdword, programhome))
        if (Int4 rc = autoload(".ado", true)) return rc;
    return docall(level_program);
}

Int4 runrow(const command& row) {
    if ((row.flags & cmd_class) && !classsystem)
        return errorf(197, "%s:  command name reserved for future development\n", row.word);
    Int4 rc = row.handler ? row.handler() : runprogram();
#ifdef VELMO_STRESS
    memory_stress();
    if (Int4 broken = memory_check()) return broken;
#endif
    return rc;
}

}  // namespace

Int4 dispatch() {
    if (shuttingdown || endpending) {
        hardexit = exitflag = 1;
        return 0;
    }
    if (turndepth >= maxturns) return skipfailed(error(1000), openedblock(tokstart));
    saved deeper(turndepth, turndepth + 1);
    printing as(out_result);
    sysclock = sysclock >= 0x7ffffffe ? 1 : sysclock + 1;
    poll();
    if (cmdword[0] == 0 || cmdword[0] == '*') return 0;
    if (cmdword[0] == '{') return runblock();
    const command* row = singlecharacter();
    if (!row) row = commandrow(cmdword);
    return row ? runrow(*row) : runprogram();
}

void report(std::int64_t starttime) {
    if (inprogram) return;
    printing as(out_echo);
    if (lastrc == 1) {
        as.now(out_error);
        prtfresh();
        prtcolour();
        prtraw("{hline 2}Break{hline 2}\n");
        as.now(out_echo);
    }
    if (lastrc) {
        prtfresh();
        prtrawf("{search r(%d):r(%d);}", lastrc, lastrc);
        if (!rmsg) prtnl();
    } else if (rmsg) {
        prt("r;");
    }
    if (!rmsg) return;
    Int4 ms = starttime ? Int4(clockms() - starttime) : 0;      // rmsg came on with this command
    Int4 seconds = ms / 1000, hundredths = (100 * (ms % 1000) * 2 / 1000 + 1) / 2;
    if (hundredths == 100) {
        seconds++;
        hundredths = 0;
    }
    clocktime now = localclock();
    prtf(" t=%d.%02d %d:%02d:%02d\n", seconds, hundredths, now.hour, now.minute, now.second);
}

namespace {

// True when the line in cmdbuf, behind prefixes and opening braces, begins with a loop's word.
boolean looppeek() {
    std::string_view word = wordbehindprefixes(cmdbuf);
    for (Int4 depth = 0; word == "{" && depth < maxturns; depth++) word = wordbehindprefixes(tokpos);
    const command* row = word.empty() ? nullptr : commandrow(tokbuf);
    boolean loop = row && (row->flags & cmd_loop);
    settokpos(cmdbuf);
    return loop;
}

}  // namespace

// std::bad_alloc from small work space ends here, after the guards have run.
Int4 docmd() {
    if (shuttingdown || endpending) {
        hardexit = exitflag = 1;
        return 0;
    }
    if (!inprogram && !dofile) breakpending = 0;    // inside a level it is for the level to notice
    exitflag = 0;
    bymode = 0;
    std::int64_t start = rmsg && !inprogram ? clockms() : 0;
    const lineinfo* line = std::exchange(currentline, nullptr);
    linemarks marks;
    if (line && line->cutat < 0) marks = {line->length, line->firstmark, line->behindmarks};
    boolean plain = line && line->firstmark < 0 && version >= 320;
    try {
        // A loop at a level that stores loops is expanded in each of its rounds.
        boolean loop = !inprogram && looppeek();
        wasexpanded = !loop;
        lastrc = loop || plain ? 0 : expandmacros(marks);
        if (lastrc) {
            skipfailed(lastrc);
        } else {
            takecmdword();
            lastrc = dispatch();
        }
    } catch (const std::bad_alloc&) {
        lastrc = error(909);
    }
    tellcommandended();
    if (exitflag) {
        if (hardexit)
            shutdown(0);
        else
            exitflag = 0;
        return 0;
    }
    report(start);
    return 1;
}


}  // namespace velmo
