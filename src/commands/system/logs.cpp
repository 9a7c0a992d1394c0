// log and cmdlog: what is shown, and what is typed, kept in files.
#include <string>
#include "base/platform.h"
#include "base/poll.h"
#include "base/text.h"
#include "core/keywords.h"
#include "core/tokenizer.h"
#include "core/webfile.h"
#include "data/run.h"
#include "language/options.h"
#include "output/errors.h"
#include "output/logs.h"
#include "output/print.h"
#include "stored/families.h"

namespace velmo {

namespace {

enum subcommand { log_using, log_close, log_on, log_off };
constexpr keyword subcommands[] = {
    {"using", 0, log_using}, {"close", 0, log_close}, {"on", 0, log_on}, {"off", 0, log_off},
};

struct logoptions { Int4 flags; boolean text, vtml, noproc; };

// filename [, append replace ...]; the file name without its suffix.
Int4 filepart(char* name, logoptions& o, boolean types) {
    if (Int4 rc = filetoken(name)) return rc;
    if (Int4 rc = parseoptions()) return rc;
    boolean replace = getopt_flag("replace", 7), append = getopt_flag("append", 6);
    o.flags = web_write | (replace ? web_replace : append ? web_append : 0);
    o.vtml = types && getopt_flag("vtml", 1);
    o.text = types && getopt_flag("text", 1);
    o.noproc = types && version < 700 && getopt_flag("noproc", 6);
    return getopt_done();
}

std::string suffixof(std::string_view name) {
    std::size_t slash = name.rfind('/');
    if (slash != name.npos) name.remove_prefix(slash + 1);
    std::size_t point = name.rfind('.');
    std::string suffix(point == name.npos ? "" : name.substr(point));
    for (char& c : suffix) c = lowerchar(c);
    return suffix;
}

// An option, then the suffix, then the setting tells the type. Of two options the one that the setting isn't wins.
boolean isvtml(const char* name, const logoptions& o) {
    if (o.text != o.vtml) return o.vtml;
    if (o.text) return logastext;
    std::string suffix = suffixof(name);
    return suffix == ".log" ? false : suffix == ".vtml" ? true : !logastext;
}

Int4 nothingbehind() { return nexttoken()[0] ? error(198) : 0; }

// ---- cmdlog

Int4 cmdlognote(const char* what) {
    return notef("(cmdlog %s %s)\n", commandlog.name, what);
}

Int4 opencmdlog(const char* name, Int4 flags) {
    char path[pathsize];
    if (commandlog.file >= 0) return error(604);
    addsuffix(path, name, ".txt");
    if (islogfile(path)) return error(604);
    Int4 file = webopen(path, flags);
    if (file < 0) return -file;
    cmdlog_start(file, fullpath(path));
    return cmdlognote("opened");
}

Int4 switchcmdlog(Int4 word) {
    if (commandlog.file < 0) return error(607);
    boolean on = word == log_on;
    if (word == log_close) {
        webclose(cmdlog_end());
        return cmdlognote("closed");
    }
    if (commandlog.on == on) return notef("(cmdlog already %s)\n", on ? "on" : "off");
    commandlog.on = on;
    return cmdlognote(on ? "resumed" : "paused");
}

Int4 showcmdlog() {
    printing as(out_text);
    if (commandlog.file < 0) return prt("(closed)\n");
    return prtf("%s, %s\n", commandlog.name, commandlog.on ? "on" : "off");
}

// ---- log

// r() tells of the log that is open; without one it is empty.
void logresults() {
    rclear();
    if (sessionlog.file < 0) return;
    rmacro("filename", sessionlog.name);
    rmacro("status", sessionlog.on ? "on" : "off");
    rmacro("type", sessionlog.vtml ? "vtml" : "text");
}

Int4 openlog() {
    char name[tokensize], path[pathsize];
    logoptions o;
    if (Int4 rc = filepart(name, o, true)) return rc;
    if (o.noproc) return opencmdlog(name, o.flags);
    if (sessionlog.file >= 0) return error(604);
    boolean vtml = isvtml(name, o);
    addsuffix(path, name, vtml ? ".vtml" : ".log");
    if (islogfile(path)) return error(604);
    Int4 file = webopen(path, o.flags);
    if (file < 0) return -file;
    if (log_start(file, fullpath(path), vtml)) {
        webclose(file);
        return errorf(603, "vtml refused log request -- log not opened\n");
    }
    log_header("opened");
    logresults();
    return breakpending;
}

void closelog() {
    log_header("closed");
    log_closingrule();
    webclose(log_end());
}

Int4 turnlog(boolean on) {
    if (sessionlog.on == on) return prtraw(on ? "{txt}(log already on)\n" : "{txt}(log already off)\n");
    if (!on) {
        log_header("paused");
        log_pause();
        return breakpending;
    }
    if (log_resume()) return errorf(603, "vtml refused log request -- log not opened\n");
    log_header("resumed");
    return breakpending;
}

Int4 switchlog(Int4 word) {
    if (sessionlog.file < 0) return version < 700 && commandlog.file >= 0 ? switchcmdlog(word) : error(606);
    printing as(out_text);
    if (word == log_close) closelog();
    else if (Int4 rc = turnlog(word == log_on)) return rc;
    logresults();
    return breakpending;
}

Int4 showlog() {
    printing as(out_text);
    if (sessionlog.file >= 0) log_header(nullptr);
    else prt("(closed)\n");
    logresults();
    return breakpending;
}

}  // namespace

Int4 cmd_log() {
    if (tokpeeknonblank() == 0) return showlog();
    Int4 word = lookup(subcommands, nexttoken());
    if (word < 0) return error(198);
    if (word == log_using) return openlog();
    if (Int4 rc = nothingbehind()) return rc;
    return switchlog(word);
}

Int4 cmd_cmdlog() {
    char name[tokensize];
    logoptions o;
    if (tokpeeknonblank() == 0) return showcmdlog();
    Int4 word = lookup(subcommands, nexttoken());
    if (word < 0) return error(198);
    if (word == log_using) {
        if (Int4 rc = filepart(name, o, false)) return rc;
        return opencmdlog(name, o.flags);
    }
    if (Int4 rc = nothingbehind()) return rc;
    return switchcmdlog(word);
}

// What the end of the session does with both.
void endlogs() {
    if (sessionlog.file >= 0) closelog();
    if (commandlog.file >= 0) webclose(cmdlog_end());
}

// log filename, status, type, prefix
Int4 ext_log(std::string& out) {
    std::string word = nexttoken();
    boolean open = sessionlog.file >= 0;
    if (word == "filename") out = open ? sessionlog.name : "";
    else if (word == "status") out = !open ? "closed" : sessionlog.on ? "on" : "off";
    else if (word == "type") out = !open ? "" : sessionlog.vtml ? "vtml" : "text";
    else if (word == "prefix") out = logprefix;
    else return error(198);
    return 0;
}

}  // namespace velmo
