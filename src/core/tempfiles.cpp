#include "core/tempfiles.h"
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string>
#include "base/platform.h"
#include "base/text.h"

namespace velmo {

Int4 unlinktimeout = 0;

namespace {

enum writability { untried, writable, unwritable };

std::string folder, keptfile;
UInt4 stamp;
writability state;
Int4 lastnumber[256];     // highest number named, by kind
Int4 nextnumber[256];     // last one given out

constexpr char digits34[] = "0123456789ABCDEFGHJKLMNPQRSTUVWXYZ";    // without I and O
constexpr UInt4 nstamps = 34 * 34 * 34 * 34;

void base34(char* out, UInt4 n) {
    for (Int4 i = 3; i >= 0; i--, n /= 34) out[i] = digits34[n % 34];
}

boolean compose(char* out, char kind, UInt4 number) {
    char tail[16] = "VMkssssnnnn.tmp";
    tail[2] = kind;
    base34(tail + 3, stamp);
    base34(tail + 7, number);
    std::string name = folder + tail;
    copytext(out, pathsize, name);
    return name.size() < std::size_t(pathsize);
}

// Makes and removes a file that nobody else can have: a stamp in use is passed over.
writability probe() {
    char name[pathsize];
    for (Int4 tries = 0; tries < 100; tries++, stamp = (stamp + 1) % nstamps) {
        if (!compose(name, 't', 0)) break;
        Int4 fd = fileopenwrite(name, false, false, false);
        if (fd < 0 && openfailure == open_exists) continue;
        if (fd < 0) break;
        fileclose(fd);
        fileremove(name);
        return writable;
    }
    return unwritable;
}

}  // namespace

void tempfile_init() {
    std::string dir = environmenttext("VELMOTMP");
    if (trimmed(dir).empty()) dir = environmenttext("TEMP");
    if (trimmed(dir).empty()) dir = currentdir();
    folder = fullpath(std::string(trimmed(dir)).c_str());
    if (folder.empty() || folder.back() != '/') folder += '/';
    stamp = UInt4((std::uint64_t(processid()) * 1009 + std::uint64_t(clockms())) % nstamps);
    state = untried;
    std::fill(lastnumber, lastnumber + 256, 0);
    std::fill(nextnumber, nextnumber + 256, 0);
}

Int4 tempfilename(char* out, char kind, Int4 number) {
    if (folder.empty()) tempfile_init();
    if (state == untried) state = probe();
    out[0] = 0;
    if (state == unwritable || !compose(out, kind, UInt4(number))) return 914;
    Int4& last = lastnumber[UByte(kind)];
    last = std::max(last, number);
    return 0;
}

Int4 tempfile_next(char kind) { return ++nextnumber[UByte(kind)]; }

void tempfile_keep(std::string_view name) { keptfile = name; }

void tempfile_removeall() {
    char name[pathsize];
    for (char kind : {'_', 'i'}) {
        for (Int4 n = 1; n <= lastnumber[UByte(kind)]; n++)
            if (compose(name, kind, UInt4(n)) && name != keptfile && filestat(name).exists) removewithretry(name);
        lastnumber[UByte(kind)] = 0;
    }
}

boolean removewithretry(const char* name) {
    if (fileremove(name)) return true;
    sleepms(unlinktimeout);
    return fileremove(name);
}

}  // namespace velmo
