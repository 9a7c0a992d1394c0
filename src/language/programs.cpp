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
#include "language/dofile.h"
#include "language/turn.h"
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

// ---- Reading a body.

namespace {

// A body as it is read: the texts one behind the other, each with its indentation byte and its zero.
struct body {
    std::vector<UInt4> offsets;
    std::string text;
};

// Leading blanks become a byte, runs of blanks outside quotes one blank, a trailing blank goes.
void appendline(body& b, std::string_view line) {
    std::size_t indent = std::min(line.find_first_not_of(' '), line.size());
    b.offsets.push_back(UInt4(b.text.size()));
    b.text += char(std::min<std::size_t>(indent, 255));
    for (std::size_t i = indent, end; i < line.size(); i = end) {
        end = behindquote(line, i);
        if (line[i] == ' ' && (i + 1 == line.size() || line[i + 1] == ' ')) continue;
        b.text += line.substr(i, end - i);
    }
    b.text += '\0';
}

boolean isend() {
    settokpos(cmdbuf);
    return std::string_view(nexttoken()) == "end" && tokpeeknonblank() == 0;
}

Int4 takeline(body& b) {
    if (Int4(b.offsets.size()) >= maxprogramlines) return error(1000);
    appendline(b, cmdbuf);
    return Int4(b.text.size()) > maxprogramtext ? error(1000) : 0;
}

void numberprompt(Int4 line) {
    if (quietlevel >= shows_errors) return;
    printing as(out_text);
    prtf("%3d", line);
}

Int4 readbody(body& b, boolean braces) {
    Int4 depth = braces ? bracebalance(cmdbuf) : 0;
    Int4 rc = braces ? takeline(b) : 0;
    while (!braces || depth > 0) {
        numberprompt(Int4(b.offsets.size()) + 1);
        saved text(typingtext, UByte(1));
        if (nextline(0)) return breakpending ? 1 : error(612);
        if (!braces && isend()) return 0;
        if (!rc) rc = takeline(b);
        if (rc && !braces) return rc;
        if (braces) depth += bracebalance(cmdbuf);      // a loop too long is read to its end, too
    }
    return rc;
}

Int4 storebody(std::string_view name, const storedprogram& header, const body& b) {
    UInt4 table = UInt4((b.offsets.size() + 1) * sizeof(UInt4)), start = UInt4(sizeof header) + table;
    std::size_t total = start + b.text.size();
    object* o = objnew(name, obj_program, total, total);
    if (!o) return 950;
    objwrite(o, 0, &header, sizeof header);
    std::vector<UInt4> offsets = b.offsets;
    offsets.push_back(UInt4(b.text.size()));
    for (UInt4& offset : offsets) offset += start;
    objwrite(o, sizeof header, offsets.data(), table);
    objwrite(o, start, b.text.data(), b.text.size());
    return 0;
}

}  // namespace

Int4 programdefine(std::string_view givenname, std::string_view givenhome, const programoptions& options,
                   boolean braces) {
    std::string name(givenname), home(givenhome);
    body b;
    if (Int4 rc = readbody(b, braces)) return rc;
    if (b.offsets.empty()) return 0;
    storedprogram header{};
    header.loadid = loadingid;
    header.lastused = sysclock;
    header.sortpreserve = options.sortpreserve;
    header.progclass = options.progclass;
    header.byable = options.byable;
    header.subprogram = !home.empty();
    copytext(header.home, namesize, home);
    header.lines = Int4(b.offsets.size());
    return storebody(name, header, b);
}

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
