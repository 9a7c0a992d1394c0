#include "output/logs.h"
#include <cstdio>
#include <string>
#include "base/columns.h"
#include "base/platform.h"
#include "base/saved.h"
#include "base/text.h"
#include "output/print.h"
#include "output/results.h"
#include "output/vtmllogs.h"

namespace velmo {

UByte logastext = 0;
char logprefix[256];
logstate sessionlog, commandlog;

namespace {
Int4 batchlog = -1;
boolean batchvtml = false;
std::string batchname;         // full path

// how: as of vstream_lograw.
boolean attachbatch(Int4 how) {
    if (!console) return true;
    return batchvtml ? vstream_lograw(console, batchlog, how) : vstream_logline(console, batchlog, how);
}
}  // namespace

boolean batchlog_open(const char* name, boolean vtml) {
    if (!console || batchlog >= 0) return false;
    batchlog = fileopenwrite(name, true, false, false);
    if (batchlog < 0) return false;
    filetoend(batchlog);
    batchname = fullpath(name);
    batchvtml = vtml;
    if (!attachbatch(1)) return true;
    fileclose(batchlog);
    batchlog = -1;
    return false;
}

void batchlog_close() {
    if (batchlog < 0) return;
    attachbatch(2);
    fileclose(batchlog);
    batchlog = -1;
}

boolean islogfile(const char* path) {
    return (batchlog >= 0 && samefile(batchname.c_str(), path)) ||
           (sessionlog.file >= 0 && samefile(sessionlog.name, path)) ||
           (commandlog.file >= 0 && samefile(commandlog.name, path));
}

// ---- The session's log

namespace {

boolean attach(Int4 how) {
    if (!console) return true;
    return sessionlog.vtml ? vstream_lograw(console, sessionlog.file, how)
                           : vstream_logline(console, sessionlog.file, how);
}

// "    log:  text": the label in 11 columns.
void headerline(std::string_view label, std::string_view text) {
    prttext(rightjustified(label, 11) + "  ");
    prtresult(text);
    prtnl();
}

std::string datetime() {
    static constexpr const char* months[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                             "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    clocktime t = localclock();
    char text[60];
    std::snprintf(text, sizeof text, "%2d %s%5d, %02d:%02d:%02d", t.day, months[t.month - 1], t.year, t.hour, t.minute,
             t.second);
    return text;
}

}  // namespace

boolean log_start(Int4 file, std::string_view name, boolean vtml) {
    filetoend(file);
    sessionlog.file = file;
    sessionlog.vtml = vtml;
    copytext(sessionlog.name, pathsize, name);
    if (!log_resume()) return false;
    sessionlog.file = -1;
    return true;
}

boolean log_resume() {
    sessionlog.on = !attach(1);
    return !sessionlog.on;
}

void log_pause() {
    if (sessionlog.on) attach(2);
    sessionlog.on = false;
}

void logs_hold(boolean hold) {
    if (sessionlog.on) attach(hold ? 2 : 1);
    if (batchlog >= 0) attachbatch(hold ? 2 : 1);
}

Int4 log_end() {
    Int4 file = sessionlog.file;
    log_pause();
    sessionlog.file = -1;
    return file;
}

void log_header(const char* label) {
    if (quietlevel >= shows_errors) return;
    printing as(out_text);
    saved quiet(quietlevel, shows_all);
    prtdash(0);
    headerline("log:", sessionlog.name);
    headerline("log type:", sessionlog.vtml ? "vtml" : "text");
    if (label) headerline(std::string(label) + " on:", datetime());
}

void log_closingrule() {
    if (quietlevel < shows_errors) prtraw("{txt}{.-}\n");
}

// ---- The command log

void cmdlog_start(Int4 file, std::string_view name) {
    filetoend(file);
    commandlog.file = file;
    commandlog.on = commandlog.alive = true;
    copytext(commandlog.name, pathsize, name);
}

Int4 cmdlog_end() {
    Int4 file = commandlog.file;
    commandlog.file = -1;
    commandlog.on = false;
    return file;
}

void cmdlog_line(std::string_view line) {
    if (!commandlog.on || !commandlog.alive) return;
    std::string_view word = ltrimmed(line);
    word = word.substr(0, word.find(' '));
    if (word == "cmdlog") return;
    std::string bytes = std::string(line) + "\r\n";
    commandlog.alive = filewrite(commandlog.file, bytes.data(), bytes.size());
}

}  // namespace velmo
