// Commands about files and folders: type, copy, erase, mkdir, cd, pwd, dir.
#include <cstring>
#include <string>
#include <vector>
#include "base/platform.h"
#include "base/poll.h"
#include "base/saved.h"
#include "base/text.h"
#include "core/adopath.h"
#include "core/tokenizer.h"
#include "core/webfile.h"
#include "language/options.h"
#include "output/dates.h"
#include "output/errors.h"
#include "output/print.h"
#include "output/results.h"

namespace velmo {

namespace {

// The rest of the line as one path, quotes taken off, `~` as the user's folder; empty when there is none.
std::string restpath() {
    std::string_view rest = trimmed(tokrest());
    if (!rest.empty() && rest[0] == '"') {
        nexttoken(breakfile);
        rest = tokcontent();
    }
    std::string path(rest);
    for (char& c : path)
        if (c == '\\') c = '/';
    if (path == "~" || path.substr(0, 2) == "~/") path = homedir() + path.substr(1);
    return path;
}

boolean hassuffix(std::string_view name, std::string_view suffix) {
    return name.size() >= suffix.size() && name.substr(name.size() - suffix.size()) == suffix;
}

Int4 feedfile(Int4 handle, boolean asis) {
    static bytereader r;
    reader_start(r, handle);
    Int4 state = 0;
    for (Int4 c = reader_fill(r); c < read_eof; c = reader_fill(r)) {
        std::string_view block(reinterpret_cast<const char*>(r.buf), std::size_t(r.len));
        if (asis)
            vstream_feedtext(state, results, block);
        else
            vstream_feed(state, results, block);
        poll();
        if (breakpending) return 1;
    }
    return breakpending ? 1 : r.failed ? 692 : 0;
}

}  // namespace

// type filename [, asis]: VTML files as markup, all others as they are.
Int4 cmd_type() {
    char name[tokensize];
    if (Int4 rc = filetoken(name)) return rc;
    std::string path = name;
    if (Int4 rc = parseoptions()) return rc;
    boolean asis = getopt_flag("asis", 4) || !hassuffix(path, ".vtml");
    if (Int4 rc = getopt_done()) return rc;
    Int4 handle = webopen(path, web_textread);
    if (handle < 0) return -handle;
    prtcolour();
    Int4 rc = levelshows() ? feedfile(handle, asis) : 0;
    webclose(handle);
    prtreset();
    if (levelshows() && !vstream_atstart(results)) prtnl();
    return rc == 692 ? fileerror(692, path) : rc;
}

// copy from to [, replace append public text]
Int4 cmd_copy() {
    char from[tokensize], to[tokensize];
    if (Int4 rc = filetoken(from)) return rc;
    if (Int4 rc = filetoken(to)) return rc;
    std::string source = from, target = to;
    if (Int4 rc = parseoptions()) return rc;
    boolean replace = getopt_flag("replace", 7), append = getopt_flag("append", 6);
    boolean ispublic = getopt_flag("public", 3);
    boolean text = getopt_flag("text", 1);
    if (Int4 rc = getopt_done()) return rc;
    if (filestat(target.c_str()).isdirectory) target += "/" + source.substr(source.rfind('/') + 1);
    Int4 flags = replace ? web_replace : append ? web_append : 0;
    if (!text) flags |= web_binary;
    if (ispublic) flags |= web_public;
    return webcopy(source, target, flags);
}

Int4 cmd_erase() {
    char name[tokensize];
    if (Int4 rc = filetoken(name)) return rc;
    std::string path = name;
    if (Int4 rc = parseoptions()) return rc;
    if (Int4 rc = getopt_done()) return rc;
    if (!filestat(path.c_str()).exists) return fileerror(601, path);
    if (fileremove(path.c_str())) return 0;
    return errorf(603, "file %s could not be erased\n", path.c_str());
}

Int4 cmd_mkdir() {
    char name[tokensize];
    if (Int4 rc = filetoken(name)) return rc;
    std::string path = name;
    if (Int4 rc = parseoptions()) return rc;
    boolean ispublic = getopt_flag("public", 3);
    if (Int4 rc = getopt_done()) return rc;
    if (makedir(path.c_str(), ispublic)) return 0;
    return errorf(693, "could not create directory %s\n", path.c_str());
}

namespace {

Int4 showfolder() {
    return prtf("%s\n", currentdir().c_str());
}

}  // namespace

Int4 cmd_cd() {
    std::string path = restpath();
    if (path.empty()) return showfolder();
    if (!changedir(path.c_str())) return errorf(170, "unable to change to %s\n", path.c_str());
    return showfolder();
}

Int4 cmd_pwd() {
    if (Int4 rc = parseoptions()) return rc;
    if (Int4 rc = getopt_done()) return rc;
    return showfolder();
}

namespace {

std::string sizecolumn(Filepos bytes) {
    char text[32];
    if (bytes < 1024 * 1000)
        snprintf(text, sizeof text, "%7.1fk", Double(bytes) / 1024);
    else
        snprintf(text, sizeof text, "%7.1fM", Double(bytes) / 1048576);
    return text;
}

Int4 listentry(const std::string& folder, const std::string& name) {
    fileinfo info = filestat((folder + name).c_str());
    const clocktime& t = info.changed;
    std::string size = info.isdirectory ? "   <dir>" : sizecolumn(info.size);
    const char* month = info.exists && t.month >= 1 && t.month <= 12 ? monthnames[t.month - 1] : "";
    return prtf("%s  %2d %3.3s %4d %02d:%02d  %s\n", size.c_str(), t.day, month, t.year, t.hour, t.minute,
                name.c_str());
}

}  // namespace

// dir [pattern | folder]: size, time and name of each entry that matches, sorted by name.
Int4 cmd_dir() {
    std::string path = restpath(), pattern = "*";
    if (!path.empty() && filestat(path.c_str()).isdirectory) {
        if (path.back() != '/') path += '/';
    } else if (!path.empty()) {
        std::size_t slash = path.rfind('/');
        pattern = slash == std::string::npos ? path : path.substr(slash + 1);
        path = slash == std::string::npos ? "" : path.substr(0, slash + 1);
    }
    std::vector<std::string> names;
    const char* folder = path.empty() ? "." : path.c_str();
    if (!listdir(folder, names)) return fileerror(filestat(folder).exists ? 603 : 601, path);
    Int4 shown = 0;
    for (const std::string& name : names) {
        if (!wildmatch(name, pattern, false)) continue;
        if (name[0] == '.' && pattern[0] != '.') continue;
        shown++;
        if (Int4 rc = listentry(path, name)) return rc;
    }
    return shown || pattern == "*" ? 0 : fileerror(601, pattern);
}

}  // namespace velmo
