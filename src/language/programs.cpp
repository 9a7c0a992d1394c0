#include "language/programs.h"
#include <algorithm>
#include <cstring>
#include "base/poll.h"
#include "base/saved.h"
#include "base/state.h"
#include "base/text.h"
#include "core/macros.h"
#include "core/tokenizer.h"
#include "language/braces.h"
#include "output/errors.h"
#include "output/print.h"
#include "stored/families.h"

namespace velmo {

char programname[namesize];
char programhome[namesize];
Int4 programline = 0;
UByte subprogramlevel = 0;
UByte programclass = 0;
Int4 loadingid = 0;

object* exactprogram(std::string_view name, std::string_view home) {
    object* o = objfind(name, obj_program);
    while (o && home != programheader(o).home) o = objolder(o);
    return o;
}

object* findprogram(std::string_view name, std::string_view home) {
    if (home == name) home = {};
    object* plain = nullptr;
    for (object* o = objfind(name, obj_program); o; o = objolder(o)) {
        if (!home.empty() && home == programheader(o).home) return o;
        if (!programheader(o).home[0]) plain = o;
    }
    return plain;
}

namespace {
std::uint64_t namings = 0;      // of the running program
}

void setprogramname(std::string_view name) {
    copytext(programname, namesize, name);
    namings++;
}

void setprogramhome(std::string_view home) {
    copytext(programhome, namesize, home);
    namings++;
}

// Each line of a running program asks: the answer holds while neither the names nor the store have changed.
object* runningprogram() {
    static struct { std::uint64_t moves = ~std::uint64_t(0), namings = 0; object* o; } last;
    if (last.moves == objmoves && last.namings == namings) return last.o;
    last = {objmoves, namings, findprogram(programname, programhome)};
    return last.o;
}

void programs_started() {
    setprogramname("");
    setprogramhome("");
    inprogram = 0;
    programline = 0;
    subprogramlevel = programclass = 0;
}

// What the program was building becomes results, unless it failed.
Int4 programs_levelleft() {
    if (inprogram) results_leave(lastrc ? 0 : programclass);
    return 0;
}

// ---- What is known of its lines.

namespace {

struct knownprogram {
    object* o;
    std::uint64_t moves;
    Int2 version;
    std::vector<lineinfo> lines;
};

// The program's place among a few, so that programs that call each other keep theirs.
knownprogram& knownplace(object* o) {
    static knownprogram places[16];
    static UInt4 last = 0, next = 0;
    auto serves = [o](const knownprogram& p) { return p.o == o && p.moves == objmoves && p.version == version; };
    if (serves(places[last])) return places[last];
    for (last = 0; last < 16; last++)
        if (serves(places[last])) return places[last];
    last = next++ % 16;
    knownprogram& p = places[last];
    p.o = o;
    p.moves = objmoves;
    p.version = version;
    p.lines.assign(std::size_t(programheader(o).lines), {});
    return p;
}

std::string_view storedline(object* o, Int4 i) {
    UInt4 offset[2];
    std::memcpy(offset, o->data() + sizeof(storedprogram) + std::size_t(i) * sizeof(UInt4), sizeof offset);
    return {reinterpret_cast<const char*>(o->data()) + offset[0] + 1, offset[1] - offset[0] - 2};
}

}  // namespace

const lineinfo* currentline = nullptr;

lineinfo* lineknown(object* o, Int4 i) {
    if (i >= programheader(o).lines) return nullptr;
    lineinfo& info = knownplace(o).lines[std::size_t(i)];
    if (info.known) return &info;
    std::string text = " ";          // as programtext puts it
    text += storedline(o, i);
    info.known = true;
    info.blank = text.size() == 1 || text[1] == '*';
    std::size_t first = text.find_first_of("$`\\");
    info.length = Int4(text.size());
    info.firstmark = first == text.npos ? -1 : Int4(first);
    info.behindmarks = first == text.npos ? 0 : info.length - 1 - Int4(text.find_last_of("$`\\"));
    info.cutat = closingbrace(text);
    return &info;
}

boolean programtext(object* o, Int4 i, char* out, boolean indented) {
    if (i >= programheader(o).lines) return false;
    std::string_view text = storedline(o, i);          // a zero stands behind it, its indentation ahead
    std::size_t indent = indented ? UByte(text.data()[-1]) : 1, n = text.size() + 1;
    if (indent + n > std::size_t(conslen)) indent = 0;
    std::memset(out, ' ', indent);
    std::memcpy(out + indent, text.data(), n);
    return true;
}

// ---- Dropping.

namespace {

struct programkey { std::string name, home; };

// The programs that a condition picks, by name, since dropping moves the store.
template <class F> std::vector<programkey> pickprograms(F wanted) {
    std::vector<programkey> keys;
    char name[36];
    for (object* o = objnext(nullptr, name, obj_program); o; o = objnext(o, name, obj_program))
        if (wanted(name, programheader(o))) keys.push_back({name, programheader(o).home});
    return keys;
}

}  // namespace

void dropprogram(std::string_view givenname, std::string_view givenhome) {
    std::string name(givenname), home(givenhome);
    object* o = exactprogram(name, home);
    if (!o || programheader(o).running) return;
    objdelthis(o);
    if (!home.empty()) return;
    auto owned = [&name](const char*, const storedprogram& p) { return name == p.home && !p.running; };
    for (const programkey& sub : pickprograms(owned))
        if (object* s = exactprogram(sub.name, sub.home)) objdelthis(s);
}

void discardprograms(Int4 below) {
    auto loaded = [below](const char*, const storedprogram& p) {
        return p.loadid && p.loadid < below && !p.running && !p.home[0];
    };
    for (const programkey& key : pickprograms(loaded)) dropprogram(key.name, key.home);
}

void programs_discarded() { discardprograms(); }

}  // namespace velmo
