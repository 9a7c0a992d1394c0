#include "core/tempfiles.h"
#include <algorithm>
#include <string>
#include <vector>
#include "base/platform.h"
#include "base/text.h"

namespace velmo {

Int4 unlinktimeout = 0;

namespace {

// The session's own folder, with a slash at its end; empty until a name is first asked for, or when none could be made.
std::string folder, keptfile;
UInt4 stamp;
boolean tried = false;
Int4 nextnumber[256];     // last one given out, by kind

constexpr char digits34[] = "0123456789ABCDEFGHJKLMNPQRSTUVWXYZ";    // without I and O
constexpr UInt4 nstamps = 34 * 34 * 34 * 34;

void base34(char* out, UInt4 n) {
    for (Int4 i = 3; i >= 0; i--, n /= 34) out[i] = digits34[n % 34];
}

// Nobody else can enter the folder: names in it are taken by nobody and lead nowhere else.
void makefolder() {
    tried = true;
    for (const char* variable : {"VELMOTMP", "TEMP", "TMPDIR", ""}) {
        std::string place(trimmed(*variable ? environmenttext(variable) : "/tmp"));
        if (!place.empty()) folder = makeprivatedir(fullpath(place.c_str()) + "/velmo-");
        if (folder.empty()) continue;
        folder += '/';
        return;
    }
}

}  // namespace

void tempfile_init() {
    stamp = UInt4((std::uint64_t(processid()) * 1009 + std::uint64_t(clockms())) % nstamps);
    tried = false;
    folder.clear();
    std::fill(nextnumber, nextnumber + 256, 0);
}

Int4 tempfilename(char* out, char kind, Int4 number) {
    if (!tried) makefolder();
    char tail[16] = "VMkssssnnnn.tmp";
    tail[2] = kind;
    base34(tail + 3, stamp);
    base34(tail + 7, UInt4(number));
    std::string name = folder + tail;
    boolean fine = !folder.empty() && name.size() < std::size_t(pathsize);
    copytext(out, pathsize, fine ? name : "");
    return fine ? 0 : 914;
}

Int4 tempfile_next(char kind) { return ++nextnumber[UByte(kind)]; }

void tempfile_keep(std::string_view name) { keptfile = name; }

void tempfile_removeall() {
    std::vector<std::string> names;
    if (folder.empty() || !listdir(folder.c_str(), names)) return;
    for (const std::string& name : names)
        if (folder + name != keptfile && !removewithretry((folder + name).c_str())) removetree((folder + name).c_str());
    if (keptfile.empty()) removetree(folder.c_str());
    folder.clear();
}

boolean removewithretry(const char* name) {
    if (fileremove(name)) return true;
    sleepms(unlinktimeout);
    return fileremove(name);
}

}  // namespace velmo
