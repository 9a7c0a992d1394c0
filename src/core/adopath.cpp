#include "core/adopath.h"
#include <algorithm>
#include <string>
#include "base/platform.h"
#include "base/text.h"
#include "core/macros.h"

namespace velmo {

char installdir[pathsize];
char usingname[pathsize];
sysdirrow sysdirs[7];

namespace {

constexpr const char* marker = "isvelmo.70";

std::string withslash(std::string dir) {
    if (!dir.empty() && dir.back() != '/') dir += '/';
    return dir;
}

std::string folderof(const std::string& file) {
    std::size_t slash = file.rfind('/');
    return slash == std::string::npos ? "" : file.substr(0, slash + 1);
}

void setsysdir(Int4 i, const char* word, const std::string& path) {
    sysdirs[i].word = word;
    copytext(sysdirs[i].path, pathsize, path);
}

// A code word stands for its directory, anything else for itself.
std::string directoryof(std::string_view item) {
    for (const sysdirrow& row : sysdirs)
        if (row.word && item == row.word) return row.path;
    return withslash(std::string(item));
}

boolean isfile(const std::string& path) {
    fileinfo info = filestat(path.c_str());
    return info.exists && !info.isdirectory;
}

}  // namespace

Int4 findinstallation() {
    std::string beside = folderof(programfile());
    std::string own = environmenttext("VELMO");
    std::string places[] = {withslash(own), beside + "share/velmo/", beside + "../share/velmo/"};
    boolean found = false;
    for (std::size_t i = own.empty() ? 1 : 0; i < 3; i++) {
        fileinfo info = filestat(places[i].c_str());
        if (!info.isdirectory || places[i].size() >= sizeof installdir) continue;
        found = true;
        if (isfile(places[i] + marker)) {
            copytext(installdir, sizeof installdir, places[i]);
            return 0;
        }
        if (!own.empty()) break;
    }
    return found ? 2 : 1;
}

void adopath_init() {
    std::string base = installdir, home = withslash(homedir());
    setsysdir(0, "VELMO", base);
    setsysdir(1, "UPDATES", base + "ado/updates/");
    setsysdir(2, "BASE", base + "ado/base/");
    setsysdir(3, "SITE", base + "ado/site/");
    setsysdir(4, "VJBPLUS", home + "ado/vjbplus/");
    setsysdir(5, "PERSONAL", home + "ado/personal/");
    setsysdir(6, "OLDPLACE", home + "ado/");
}

namespace {

// The directories of the ado-path, each ending in /.
std::vector<std::string> pathdirs() {
    const char* value = macroget("S_ADO");
    std::string path = value ? value : defaultadopath;
    std::vector<std::string> dirs;
    for (std::size_t at = 0; at <= path.size();) {
        std::size_t end = std::min(path.find(';', at), path.size());
        std::string_view item = trimmed(std::string_view(path).substr(at, end - at));
        at = end + 1;
        if (!item.empty()) dirs.push_back(directoryof(item));
    }
    return dirs;
}

void dirnames(const std::string& dir, std::string_view beginning, std::string_view suffix,
              std::vector<std::string>& names) {
    std::vector<std::string> files;
    listdir(dir.c_str(), files);
    for (const std::string& file : files)
        if (file.starts_with(beginning) && file.ends_with(suffix) && file.size() > suffix.size())
            names.push_back(file.substr(0, file.size() - suffix.size()));
}

}  // namespace

boolean pathsearch(std::string_view name, std::string_view suffix, Int4 nth) {
    std::string file = std::string(name) + std::string(suffix);
    for (const std::string& dir : pathdirs())
        for (const std::string& candidate : {dir + file, dir + file.substr(0, 1) + "/" + file}) {
            if (!isfile(candidate) || --nth > 0) continue;
            copytext(usingname, sizeof usingname, candidate);
            return true;
        }
    return false;
}

void pathnames(std::string_view beginning, std::string_view suffix, std::vector<std::string>& names) {
    static constexpr std::string_view letters = "_abcdefghijklmnopqrstuvwxyz";
    for (const std::string& dir : pathdirs()) {
        dirnames(dir, beginning, suffix, names);
        for (char letter : beginning.empty() ? letters : beginning.substr(0, 1))
            dirnames(dir + letter + "/", beginning, suffix, names);
    }
}

}  // namespace velmo
