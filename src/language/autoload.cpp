#include "language/autoload.h"
#include <cstring>
#include <string>
#include <vector>
#include "base/saved.h"
#include "base/state.h"
#include "base/text.h"
#include "core/adopath.h"
#include "core/tokenizer.h"
#include "core/upcalls.h"
#include "language/commandnames.h"
#include "language/levels.h"
#include "language/programs.h"
#include "output/errors.h"
#include "output/print.h"

namespace velmo {

Int4 adosize = 128;

namespace {

Int4 lastid = 0;
Int4 outerid = 0;      // of the outermost file being loaded, 0 when none is: ids from it on are not complete

// Programs that a file defined: all that carry its number.
std::vector<std::pair<std::string, std::string>> programsof(Int4 id) {
    std::vector<std::pair<std::string, std::string>> found;
    char name[36];
    for (object* o = objnext(nullptr, name, obj_program); o; o = objnext(o, name, obj_program))
        if (programheader(o).loadid == id) found.emplace_back(name, programheader(o).home);
    return found;
}

Int4 dropfile(Int4 id) {
    for (const auto& [name, home] : programsof(id)) {
        object* o = exactprogram(name, home);
        if (!o) continue;
        if (programheader(o).running)
            return errorf(9403, "system error, automatic loading of programs has failed\n"
                                "              system state unstable.\n");
        objdelthis(o);
    }
    return 0;
}

// An object made since the marker that is no program: the file did more than define.
boolean madeother() {
    Int4 type;
    for (object* o = objnext(nullptr, nullptr, obj_any, &type); o && type != obj_cmdbuffer;
         o = objnext(o, nullptr, obj_any, &type))
        if (type != obj_program) return true;
    return false;
}

// The family (program and subprograms) that was used longest ago and isn't running; "" when there is none.
std::string oldestfamily(Int4 keep, std::uint64_t& total) {
    struct family { std::string name; Int4 lastused; boolean running; };
    std::vector<family> families;
    char name[36];
    total = 0;
    for (object* o = objnext(nullptr, name, obj_program); o; o = objnext(o, name, obj_program)) {
        const storedprogram& p = programheader(o);
        if (!p.loadid) continue;
        total += o->size;
        std::string owner = p.home[0] ? p.home : name;
        boolean running = p.running || p.loadid == keep;
        std::size_t i = 0;
        while (i < families.size() && families[i].name != owner) i++;
        if (i == families.size()) families.push_back({owner, 0, false});
        families[i].lastused = std::max(families[i].lastused, p.lastused);
        families[i].running |= running;
    }
    const family* oldest = nullptr;
    for (const family& f : families)
        if (!f.running && (!oldest || f.lastused < oldest->lastused)) oldest = &f;
    return oldest ? oldest->name : "";
}

// Keeps the ado programs within adosize thousand bytes.
void trimprograms(Int4 keep) {
    std::uint64_t total;
    while (true) {
        std::string oldest = oldestfamily(keep, total);
        if (total < std::uint64_t(adosize) * 1000 || oldest.empty()) return;
        dropprogram(oldest, "");
    }
}

Int4 checkfile(const std::string& name, Int4 id, boolean other) {
    if (other) {
        if (Int4 rc = dropfile(id)) return rc;
        return prefixed(name, 161, true);
    }
    if (exactprogram(name, "")) return 0;
    if (Int4 rc = dropfile(id)) return rc;
    return prefixed(name, 162, true);
}

// Runs the file as `run` does, with the line of the caller kept in an object: it marks, too, where the file began.
Int4 loadfile(const std::string& name, const std::string& path, Int4 id) {
    std::string line = cmdbuf;
    std::ptrdiff_t pos = tokpos - cmdbuf, start = tokstart - cmdbuf;
    char word[namesize], home[namesize];
    copytext(word, namesize, cmdword);
    copytext(home, namesize, programhome);
    if (objput(name, obj_cmdbuffer, line.data(), line.size() + 1))
        return errorf(199, "...meaning insufficient memory\n");
    Int4 rc;
    boolean other;
    {
        saved loading(loadingid, id), outer(outerid, outerid ? outerid : id);
        setprogramhome(name);
        rc = runfile(path);
        other = madeother();
    }
    objdel(name, obj_cmdbuffer);
    copytext(cmdbuf, std::size_t(conslen), line);
    settokpos(cmdbuf + pos);
    tokstart = cmdbuf + start;
    copytext(cmdword, namesize, word);
    setprogramhome(home);
    if (rc) {
        printing as(out_prompt);
        prtf("(error occurred while loading %s.ado)\n", name.c_str());
        if (Int4 broken = dropfile(id)) return broken;
        return rc;
    }
    return checkfile(name, id, other);
}

}  // namespace

boolean yieldprograms() {
    Int4 before = objcount(obj_program);
    discardprograms(outerid ? outerid : lastid + 1);
    return objcount(obj_program) < before;
}

Int4 autoload(const char* suffix, boolean required) {
    std::string name = cmdword;
    boolean ado = std::string_view(suffix) == ".ado";
    if (!validname(name))
        return ado ? errorf(199, "unrecognized command:  %s invalid command name\n", cmdword) : 199;
    if (!pathsearch(name, suffix, 1)) {
        copytext(unknownword, namesize, name);
        return errorf(199, "unrecognized command:  %s\n", cmdword);
    }
    std::string path = usingname;
    Int4 id = ++lastid;
    if (Int4 rc = loadfile(name, path, id)) return rc;
    trimprograms(id);
    if (required && !findprogram(name, programhome))
        return errorf(199, "unrecognized command:  %s not defined by %s.ado\n", name.c_str(), name.c_str());
    return 0;
}

}  // namespace velmo
