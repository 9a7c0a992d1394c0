// program, discard, sysdir: stored programs and where ado-files are found.
#include <cstdio>
#include <string>
#include <vector>
#include "base/poll.h"
#include "base/text.h"
#include "core/adopath.h"
#include "core/keywords.h"
#include "core/macros.h"
#include "core/tokenizer.h"
#include "data/run.h"
#include "language/definition.h"
#include "language/options.h"
#include "language/programs.h"
#include "output/errors.h"
#include "output/print.h"

namespace velmo {

namespace {

struct programid { std::string name, home; };

std::vector<programid> allprograms() {
    std::vector<programid> ids;
    char name[36];
    for (object* o = objnext(nullptr, name, obj_program); o; o = objnext(o, name, obj_program))
        ids.push_back({name, programheader(o).home});
    return ids;
}

std::string shownname(const programid& id) { return id.home.empty() ? id.name : id.home + "." + id.name; }

// ---- program dir, list

Int4 programdir() {
    std::int64_t total = 0;
    printing as(out_text);
    for (const programid& id : allprograms()) {
        object* o = exactprogram(id.name, id.home);
        UInt4 size = o->size;
        const char* mark = programheader(o).loadid ? "ado" : "";
        total += size;
        if (Int4 rc = prtf("%3s %8u  %s\n", mark, size, shownname(id).c_str())) return rc;
    }
    prtraw("    {hline 8}\n");
    return prtf("    %8lld\n", static_cast<long long>(total));
}

Int4 listone(const programid& id) {
    static constexpr const char* classes[] = {"", ", rclass", ", sclass", ", eclass"};
    object* o = exactprogram(id.name, id.home);
    if (!o) return 0;
    prtf("%s%s:\n", shownname(id).c_str(), classes[programheader(o).progclass & 3]);
    std::string line(std::size_t(conslen), 0);
    for (Int4 i = 0; (o = exactprogram(id.name, id.home)) && programtext(o, i, line.data(), true); i++)
        if (Int4 rc = prtf("%3d. %s\n", i + 1, line.c_str())) return rc;
    return 0;
}

// The programs that a typed name means: one, or with `_all` and nothing every one.
Int4 namedprograms(std::vector<programid>& ids, boolean subprograms) {
    while (nexttoken(breakstd)[0]) {
        std::string text = tokbuf;
        if (text == "_all") {
            ids = allprograms();
            continue;
        }
        std::size_t dot = text.find('.');
        programid id{dot == std::string::npos ? text : text.substr(dot + 1),
                     dot == std::string::npos ? "" : text.substr(0, dot)};
        if (!id.home.empty() && !subprograms) return errorf(198, "subprograms not allowed:  %s\n", text.c_str());
        if (!exactprogram(id.name, id.home)) return notfound(text);
        ids.push_back(id);
        if (!id.home.empty() || !subprograms) continue;
        for (const programid& other : allprograms())
            if (other.home == id.name) ids.push_back(other);
    }
    return 0;
}

Int4 programlist() {
    printing as(out_text);
    std::vector<programid> ids;
    boolean all = tokpeeknonblank() == 0;
    if (Int4 rc = namedprograms(ids, true)) return rc;
    if (all) ids = allprograms();
    for (const programid& id : ids)
        if (Int4 rc = listone(id)) return rc;
    return 0;
}

Int4 programdrop() {
    std::vector<programid> ids;
    if (tokpeeknonblank() == 0) return error(198);
    if (Int4 rc = namedprograms(ids, false)) return rc;
    for (const programid& id : ids) dropprogram(id.name, id.home);
    return 0;
}

// ---- program define

Int4 badbyable() { return errorf(198, "option byable() incorrectly specified\n"); }

// byable(onecall|recall[, noheader|header])
Int4 byableoption(const std::string& text, UByte& byable) {
    std::size_t comma = text.find(',');
    std::string_view kind = trimmed(std::string_view(text).substr(0, comma));
    std::string_view header = comma == std::string::npos ? "" : trimmed(std::string_view(text).substr(comma + 1));
    if (abbrev(kind, "onecall", 1))
        byable = 1;
    else if (abbrev(kind, "recall", 1))
        byable = 2;
    else
        return badbyable();
    if (header.empty() || abbrev(header, "header", 3)) return 0;
    if (!abbrev(header, "noheader", 1)) return badbyable();
    if (byable == 2) byable = 3;
    return 0;
}

Int4 defineoptions(programoptions& o) {
    std::string byable;
    boolean given;
    if (Int4 rc = parseoptions()) return rc;
    if (getopt_flag("rclass", 1)) o.progclass = 1;
    if (getopt_flag("eclass", 1)) o.progclass = 3;
    if (getopt_flag("sclass", 1)) o.progclass = 2;
    if (getopt_flag("return", 1)) o.progclass = 1;
    if (getopt_flag("nclass", 1)) o.progclass = 0;
    if (Int4 rc = getopt_str("byable", 6, byable, given)) return rc;
    if (given)
        if (Int4 rc = byableoption(byable, o.byable)) return rc;
    o.sortpreserve = getopt_flag("sortpreserve", 4);
    return getopt_done();
}

// The name, and the home that the program will belong to: the present one, or the part ahead of a dot.
Int4 definename(programid& id) {
    id.home = programhome;
    id.name = nexttoken(id.home.empty() ? breakdot : breakstd);
    if (id.home.empty() && tokpeek() == '.') {
        nexttoken(breakdot);
        id.home = id.name;
        id.name = nexttoken(breakdot);
    }
    if (id.home == id.name) id.home.clear();
    return validname(id.name) ? 0 : badname(id.name);
}

Int4 definecommand() {
    programid id;
    programoptions o{};
    if (Int4 rc = definename(id)) return rc;
    if (Int4 rc = defineoptions(o)) return rc;
    if (exactprogram(id.name, id.home)) return nameerror(name_defined, id.name);
    return programdefine(id.name, id.home, o, false);
}

}  // namespace

Int4 cmd_program() {
    static constexpr keyword words[] = {{"dir", 2, 0}, {"list", 1, 1}, {"drop", 4, 2}, {"define", 2, 3}};
    switch (lookup(words, nexttoken())) {
    case 0: return programdir();
    case 1: return programlist();
    case 2: return programdrop();
    case 3: return definecommand();
    default: return error(198);
    }
}

namespace {

Int4 listdirs() {
    printing as(out_text);
    for (const sysdirrow& row : sysdirs)
        if (Int4 rc = prtf("%10s:  %s\n", row.word, row.path)) return rc;
    return 0;
}

Int4 setdir() {
    std::string word = nexttoken();
    char path[tokensize];
    if (Int4 rc = filetoken(path)) return rc;
    if (nexttoken()[0]) return error(198);
    if (word == "VELMO") return errorf(198, "may not reset VELMO directory\n");
    for (sysdirrow& row : sysdirs) {
        if (word != row.word) continue;
        std::string dir = path;
        if (dir.back() != '/') dir += '/';
        if (dir.size() >= sizeof row.path) return errorf(198, "directory name too long\n");
        copytext(row.path, sizeof row.path, dir);
        return 0;
    }
    return error(198);
}

}  // namespace

// sysdir [list], sysdir set codeword "path"
Int4 cmd_sysdir() {
    std::string_view word = nexttoken();
    if (word.empty() || word == "list") return listdirs();
    return word == "set" ? setdir() : error(198);
}

}  // namespace velmo
