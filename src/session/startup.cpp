#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <span>
#include "base/platform.h"
#include "base/poll.h"
#include "base/saved.h"
#include "base/text.h"
#include "core/adopath.h"
#include "core/commands.h"
#include "core/events.h"
#include "core/helppages.h"
#include "core/macros.h"
#include "core/objects.h"
#include "core/prefs.h"
#include "core/settings.h"
#include "core/upcalls.h"
#include "language/commandnames.h"
#include "language/dofile.h"
#include "language/lines.h"
#include "language/programs.h"
#include "language/turn.h"
#include "output/errors.h"
#include "output/formats.h"
#include "output/logs.h"
#include "output/print.h"
#include "output/results.h"
#include "session/session.h"

namespace velmo {

char startcmd[1000];
UByte noconsole = 0;
Int4 exitstatus = 0;
UByte shuttingdown = 0;

namespace {

boolean nologo = false;
boolean vtmllog = false;

// ---- What goes wrong before anything can print: up to four lines, shown together.

const char* collected[4];
Int4 ncollected = 0;

void collect(const char* line) {
    if (ncollected < 4) collected[ncollected++] = line;
}

Int4 failedstart(const char* line) {
    if (line) collect(line);
    for (Int4 i = 0; i < ncollected; i++) std::fprintf(stderr, "%s\n", collected[i]);
    exitstatus = 1;
    return -1;
}

// ---- Switches.

void setbatch(Int4 level) {
    if (batchmode < level) batchmode = level;
    noconsole = 1;
}

// One switch: its letter and what stands behind it. False when it is none or out of bounds.
boolean takeswitch(char letter, std::string_view value) {
    Int4 n = 0;
    boolean number = letter == 'm' || letter == 'k' || letter == 'd' || letter == 'v' || letter == 'o';
    if (number ? !readinteger(value, n) : !value.empty()) return false;
    switch (letter) {
    case 'b':
    case 'e': setbatch(1); return true;
    case 's':
        setbatch(1);
        vtmllog = true;
        return true;
    case 'q': nologo = true; return true;
    case 'm':
        memory = std::uint64_t(n) << 20;
        return n >= 1;
    case 'k':
        memory = std::uint64_t(n) << 10;
        return n >= 10;
    case 'd': matsize = n; return n >= 10 && n < 11001;
    case 'v':
        if (n < 2048 || n >= 32768) return false;
        setlengths(n);
        return true;
    case 'o': return true;
    default: return false;
    }
}

// A path such as /tmp/x.do is no switch: a switch is one letter and at most a number.
boolean isswitch(const char* word) {
    if (word[0] == '-') return word[1] != 0;
    return word[0] == '/' && std::strchr(word + 1, '/') == nullptr;
}

boolean switches(Int4 argc, char** argv, Int4& next) {
    for (next = 1; next < argc && isswitch(argv[next]); next++)
        if (!takeswitch(lowerchar(argv[next][1]), argv[next][1] ? argv[next] + 2 : "")) return false;
    if (batchmode && nologo) batchmode = 2;
    return true;
}

void assemble(std::span<char*> words) {
    std::string text;
    for (const char* word : words) text += std::string(word) + " ";
    copytext(startcmd, sizeof startcmd, text);
}

// The log of a batch run is named after the do-file of the start-up command.
std::string batchlogname() {
    const char* suffix = vtmllog ? ".vtml" : ".log";
    std::string text = startcmd, stem = "velmo";
    saved buffer(cmdbuf, text.data());
    settokpos(cmdbuf);
    std::string_view word = nexttoken();
    if (word == "do" || word == "run") {
        stem = std::string_view(nexttoken(breakfile)).substr(isquoted() ? 1 : 0, 255);
        std::size_t slash = stem.rfind('/');
        if (slash != std::string::npos) stem = stem.substr(slash + 1);
        stem = stem.substr(0, stem.find('.'));
    }
    return stem + suffix;
}

boolean openbatchlog(std::string& failure) {
    std::string name = batchlogname();
    if (trimmed(startcmd).empty()) {
        failure = "/b specified with no command";
        return false;
    }
    failure = "unable to open `" + name + "'";
    return batchlog_open(name.c_str(), vtmllog);
}

// ---- Banner, notes.

void logo() {
    printing as(out_result);
    prtraw("\n{res}Velmo{txt} 7.0   {hline 2} Midscale, for the console\n");
    prtraw("{txt}Statistics and data management\n\n");
    prtraw("Type {velmo help} for help, {velmo exit} to leave.\n");
}

void notes() {
    printing as(out_text);
    Int4 n = 0;
    prt("\nNotes:\n");
    auto note = [&n](const char* text) { prtf("     %2d.  %s\n", ++n, text); };
    char line[120];
    Double megabytes = Double(memory) / 1048576;
    std::snprintf(line, sizeof line, "(/m# option or -set memory-) %.2f MB allocated to data", megabytes);
    note(line);
    std::snprintf(line, sizeof line, "(/v# option or -set maxvar-) %d maximum variables", maxvar);
    note(line);
    if (batchmode) note("Velmo running in batch mode");
}

// The sizes asked for could not be had, and the start went on with the defaults.
void memorynote() {
    if (!memory_fellback) return;
    printing as(out_text);
    auto row = [](const char* name, std::uint64_t now, std::uint64_t asked) {
        prtrawf("    set %s %llu{col 45}%llu\n", name, static_cast<unsigned long long>(now),
                static_cast<unsigned long long>(asked));
    };
    prtraw("\n{txt}Note: Velmo has been initialized with{col 45}instead of\n");
    row("memory", memory >> 10, asked_memory >> 10);
    row("matsize", std::uint64_t(matsize), std::uint64_t(asked_matsize));
    row("maxvar", std::uint64_t(maxvar), std::uint64_t(asked_maxvar));
    prtraw("because the operating system refused to provide\nsufficient memory for the requested amounts.\n");
    for (const char* key : {"memory", "matsize", "maxvar"}) {
        std::string value;
        if (prefs_get("mem_xe_w", key, value)) prtrawf("    set %s %s, permanent\n", key, value.c_str());
    }
}

// ---- Profile and start-up command.

boolean isplainfile(const std::string& name) {
    fileinfo info = filestat(name.c_str());
    return info.exists && !info.isdirectory;
}

// Current folder, PATH, installation, ado-path, beside the program; empty when there is none.
std::string findprofile() {
    const std::string name = "profile.do";
    if (isplainfile(name)) return fullpath(name.c_str());
    std::string path = environmenttext("PATH");
    for (std::size_t at = 0; at < path.size();) {
        std::size_t end = std::min(path.find(':', at), path.size());
        std::string candidate = path.substr(at, end - at) + "/" + name;
        if (isplainfile(candidate)) return candidate;
        at = end + 1;
    }
    if (isplainfile(installdir + name)) return installdir + name;
    if (pathsearch("profile", ".do", 1)) return usingname;
    std::string program = programfile();
    std::string beside = program.substr(0, program.rfind('/') + 1) + name;
    return isplainfile(beside) ? beside : "";
}

Int4 runline(std::string_view line) {
    copytext(cmdbuf, std::size_t(conslen), line);
    settokpos(cmdbuf);
    return docmd();
}

void runprofile() {
    std::string profile = findprofile();
    if (profile.empty()) return;
    {
        printing as(out_text);
        prtf("running %s ...\n", profile.c_str());
    }
    runline("run \"" + profile + "\"");
}

// What newcomers type at a terminal's prompt, as what they mean. A program or an ado-file of that name goes first.
void understand() {
    unknownword[0] = 0;
    if (!front->echoes()) return;
    std::string line(trimmed(cmdbuf));
    if (line[0] == '?')
        line.replace(0, 1, "help ");
    else if (!classsystem && (line == ".help" || line.starts_with(".help ")))
        line.erase(0, 1);
    else if (line == "quit" && !findprogram("quit", "") && !pathsearch("quit", ".ado", 1))
        line = "exit";
    else
        return;
    copytext(cmdbuf, std::size_t(conslen), line);
    settokpos(cmdbuf);
}

// Behind the code of a typed command that is none: what may have been meant.
void propose() {
    if (lastrc != 199 || !unknownword[0] || !front->echoes()) return;
    std::vector<std::string> names;
    commandnames("", names);
    std::vector<std::string> near = nearest(unknownword, names, 5);
    if (near.empty()) near = helpabout(unknownword);
    if (near.size() > 5) near.resize(5);
    std::string line;
    for (const std::string& name : near) line += " {help " + name + "}";
    if (!line.empty()) prtraw("{txt}near to it:" + line + "\n");
}

void runstartcmd() {
    if (batchmode != 2) {
        printing as(out_prompt);
        prt(std::string(". ") + startcmd + "\n");
    }
    runline(startcmd);
    if (batchmode && lastrc) exitstatus = 1;
}

}  // namespace

void sysmacros_started() {
    static constexpr const char* pairs[][2] = {
        {"S_level", "95"},      {"S_MACH", "PC"}, {"S_OS", "Unix"},      {"S_FLAVOR", "Midscale"}, {"S_VelmoXE", "XE"},
        {"F1", "help "},        {"F2", "#review;"}, {"F3", "describe;"}, {"F7", "save "},          {"F8", "use "},
    };
    for (const auto& pair : pairs) macroset(pair[0], pair[1]);
    std::string path = environmenttext("S_ADO");
    macroset("S_ADO", path.empty() ? defaultadopath : path);
}

Int4 session_begin() {
    memory_stop();
    if (Int4 rc = memory_start()) return rc;
    shuttingdown = 0;
    tellstarted();
    return 0;
}

Int4 session_init(Int4 argc, char** argv) {
    Int4 next;
    prefs_load();
    tellconfigured();
    installsignals();
    if (!switches(argc, argv, next)) return failedstart("Invalid option in File-Properties");
    if (!results_open()) return failedstart(nullptr);
    assemble({argv + next, std::size_t(argc - next)});
    if (Int4 missed = findinstallation()) {
        collect("cannot find Velmo directory");
        return failedstart(missed == 2 ? "isvelmo.70 is missing" : nullptr);
    }
    std::string failure;
    if (batchmode && !openbatchlog(failure)) return failedstart(failure.c_str());
    if (!nologo) logo();
    if (session_begin()) return failedstart("Allocation failure.");
    if (!nologo) notes();
    memorynote();
    return trimmed(startcmd).empty() ? 0 : 1;
}

Int4 session_main() {
    runprofile();
    if (!shuttingdown && !trimmed(startcmd).empty()) runstartcmd();
    if (!noconsole)
        while (!shuttingdown && !endpending) {
            prtraw("\n");
            Int4 ended = nextline(0);
            if (ended && breakpending) continue;         // Break at the prompt: another prompt
            if (ended && eofseen != source_endtyped) break;
            understand();
            if (!(ended ? runline("exit") : docmd())) break;
            propose();
        }
    if (lastrc && !isterminal(0)) exitstatus = 1;
    shutdown(0);
    return endpending && endpending != SIGPIPE ? 128 + endpending : exitstatus;
}

void shutdown(Int4 code) {
    if (shuttingdown) return;
    shuttingdown = 1;
    tellended();
    if (code == 900) std::_Exit(1);
}

}  // namespace velmo
