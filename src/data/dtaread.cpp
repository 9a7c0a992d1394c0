// Reading a dataset file: the header by its layout, the tables, and what follows piece by piece. All bytes come
// through one buffer, which grows only to what a checked size asks for.
#include "data/dtaread.h"
#include <algorithm>
#include <bit>
#include <cstring>
#include <limits>
#include <unordered_set>
#include "base/platform.h"
#include "base/poll.h"
#include "base/text.h"
#include "core/memory.h"
#include "core/rectangle.h"
#include "data/cells.h"
#include "data/chars.h"
#include "data/dtafile.h"
#include "output/errors.h"
#include "output/formats.h"

namespace velmo {

namespace {

constexpr std::size_t blockbytes = 262144;     // what is read at a time
constexpr Double oldmissing = 0x1p333;         // missing, below format 108
constexpr Int4 maxtexts = maxlabelentries * (maxlabeltext + 1);

// What the formats differ in. Widths of fields in bytes.
struct layout {
    Int4 format;
    UByte headsize, label;        // header; dataset label
    boolean stamped;
    UByte name, fmt, varlabel;
    UByte charlength;             // of the length in a characteristic; 0: there are none
};
constexpr layout layouts[] = {
    {102, 40, 32, false, 9, 7, 32, 0},  {103, 42, 32, false, 9, 7, 32, 0},  {104, 42, 32, false, 9, 7, 32, 0},
    {105, 60, 32, true, 9, 12, 32, 2},  {106, 60, 32, true, 9, 12, 32, 2},  {107, 109, 81, true, 9, 12, 81, 2},
    {108, 109, 81, true, 9, 12, 81, 2}, {110, 109, 81, true, 33, 12, 81, 4}, {111, 109, 81, true, 33, 12, 81, 4},
};
constexpr std::size_t stampsize = 18;

const layout* layoutof(Int4 format) {
    for (const layout& l : layouts)
        if (l.format == format) return &l;
    return nullptr;
}

// ---- Bytes.

// n bytes at buf + pos; false when the file ends before, or can't be read.
boolean need(dtafile& f, std::size_t n) {
    if (f.len - f.pos >= n) return true;
    if (f.pos > 0) std::memmove(f.buf.data(), f.buf.data() + f.pos, f.len - f.pos);
    f.len -= f.pos;
    f.pos = 0;
    if (f.buf.size() < n) f.buf.resize(n);
    while (f.len < n) {
        Pint got = fileread(f.handle, f.buf.data() + f.len, f.buf.size() - f.len);
        f.failed = f.failed || got < 0;
        if (got <= 0) return false;
        f.len += std::size_t(got);
        f.place += got;
    }
    return true;
}

// The next n bytes, or null.
const UByte* take(dtafile& f, std::size_t n) {
    if (!need(f, n)) return nullptr;
    f.pos += n;
    return f.buf.data() + f.pos - n;
}

// What a regular file still holds; without end for others.
Filepos remaining(const dtafile& f) {
    return f.size < 0 ? std::numeric_limits<Filepos>::max() : f.size - f.place + Filepos(f.len - f.pos);
}

boolean skip(dtafile& f, Filepos n) {
    if (n > remaining(f)) return false;
    Filepos held = Filepos(f.len - f.pos);
    if (n > held && f.size >= 0) {
        f.place += n - held;
        f.pos = f.len = 0;
        return fileseek(f.handle, f.place, 0) >= 0;
    }
    while (n > 0) {
        std::size_t part = std::size_t(std::min<Filepos>(n, Filepos(blockbytes)));
        if (!take(f, part) || (!f.own && tick())) return false;
        n -= Filepos(part);
    }
    return true;
}

Int4 cutshort(const dtafile& f) { return breakpending && !f.own ? 1 : fileerror(692, f.path); }
Int4 unfit(const dtafile& f) { return fileerror(610, f.path); }

template <class T> T swappedbytes(T v) {
    UByte b[sizeof(T)];
    std::memcpy(b, &v, sizeof v);
    std::reverse(b, b + sizeof v);
    std::memcpy(&v, b, sizeof v);
    return v;
}

template <class T> T number(const dtafile& f, const UByte* p) {
    T v = readraw<T>(p);
    return f.swapped ? swappedbytes(v) : v;
}

std::string text(const UByte* p, std::size_t size) {
    return std::string(fieldtext(reinterpret_cast<const char*>(p), size));
}

// ---- Control characters.

boolean iscontrol(char c) { return (c > 0 && c < ' ') || c == 127; }

boolean hascontrol(std::string_view text) { return std::any_of(text.begin(), text.end(), iscontrol); }

// Blanks in their place; the first time that is told.
template <class T> void blankcontrols(dtafile& f, T& text) {
    if (f.own || std::none_of(text.begin(), text.end(), iscontrol)) return;
    std::replace_if(text.begin(), text.end(), iscontrol, ' ');
    if (!f.blanked) notef("(note: control characters in labels of file %s are now blanks)\n", f.path.c_str());
    f.blanked = true;
}

// ---- The header.

// A file that this program does not know: one of a later program tells so itself.
Int4 unknownfile(dtafile& f, UByte first) {
    const UByte* p = first >= 112 ? take(f, 16) : nullptr;
    if (!p || std::memcmp(p + 1, "Velmo .dta file", 15) != 0) return unfit(f);
    return errorf(610, "file %s from more recent version of Velmo\n", f.path.c_str());
}

Int4 readheader(dtafile& f, const layout& l, Int4& nvar) {
    const UByte* p = take(f, l.headsize);
    if (!p) return unfit(f);
    boolean low = l.format == 102 || p[1] == 2;
    f.swapped = low != (std::endian::native == std::endian::little);
    std::size_t labelat = l.format == 102 ? 8 : 10;
    nvar = number<UInt2>(f, p + 4);
    f.head.format = l.format;
    f.head.nobs = l.format == 102 ? number<UInt2>(f, p + 6) : number<Int4>(f, p + 6);
    f.head.label = text(p + labelat, std::min<std::size_t>(l.label, 80));
    const UByte* stamp = p + labelat + l.label;
    if (l.stamped && stamp[stampsize - 1] != 0) return unfit(f);
    if (l.stamped) f.head.stamp = text(stamp, stampsize);
    blankcontrols(f, f.head.label);
    blankcontrols(f, f.head.stamp);
    if (p[2] != 1) return fileerror(609, f.path);
    if (f.head.nobs < 0 || (nvar == 0 && f.head.nobs > 0)) return unfit(f);
    f.rowsleft = f.head.nobs;
    f.accepted = true;
    return 0;
}

// ---- The tables.

// The storage type that a byte of the type list means; 0: none.
UByte storedtype(Int4 format, UByte code) {
    if (format >= 111) return code >= typebyte || (code >= 1 && code <= maxstrtype) ? code : UByte(0);
    switch (code) {
    case 'b': return typebyte;
    case 'i': return typeint;
    case 'l': return typelong;
    case 'f': return typefloat;
    case 'd': return typedouble;
    default: return code > 127 ? UByte(code - 127) : UByte(0);
    }
}

Int4 readtypes(dtafile& f, std::size_t nvar) {
    const UByte* p = take(f, nvar);
    if (!p) return cutshort(f);
    for (std::size_t i = 0; i < nvar; i++) {
        UByte type = storedtype(f.head.format, p[i]);
        if (!type) return unfit(f);
        f.head.types.push_back(type);
        f.offsets.push_back(UInt4(f.width));
        f.width += varsize(type);
    }
    f.oldmissing.assign(nvar, 0);
    return 0;
}

// Each point of a name becomes the first of these characters that makes it unlike all others; "" when none does.
std::string withoutpoints(const std::unordered_set<std::string>& names, const std::string& old) {
    for (char c : std::string_view("_1234567890ABCDEFGHIJKLMNOPQRSTUVWXYZ")) {
        std::string name = old;
        std::replace(name.begin(), name.end(), '.', c);
        if (!names.count(name)) return name;
    }
    return {};
}

void renamepoints(dtafile& f) {
    std::unordered_set<std::string> names(f.head.names.begin(), f.head.names.end());
    for (std::string& name : f.head.names) {
        if (name.find('.') == std::string::npos) continue;
        std::string now = withoutpoints(names, name);
        if (!validname(now)) continue;
        notef("Warning:  renamed %s to %s\n", name.c_str(), now.c_str());
        names.insert(now);
        f.renamed[name] = now;
        name = now;
    }
}

// Names that are valid and different; the sample marker is a byte.
Int4 checknames(dtafile& f) {
    for (std::size_t i = 0; i < f.head.names.size(); i++) {
        const std::string& name = f.head.names[i];
        boolean sample = name.size() > 2 && name[0] == '(' && name.back() == ')' && f.head.types[i] == typebyte;
        if (!sample && (!validname(name) || hascontrol(name))) return unfit(f);
        if (!f.numbers.emplace(name, Int4(i) + 1).second) return unfit(f);
    }
    return 0;
}

// A table of text fields.
Int4 readtexts(dtafile& f, std::size_t fieldsize, std::vector<std::string>& out) {
    std::size_t nvar = f.head.types.size();
    const UByte* p = take(f, nvar * fieldsize);
    if (!p) return cutshort(f);
    for (std::size_t i = 0; i < nvar; i++) out.push_back(text(p + i * fieldsize, fieldsize));
    return 0;
}

// The sort list up to its zero, or to an entry that is no variable or stands there twice.
Int4 readsort(dtafile& f) {
    std::size_t nvar = f.head.types.size();
    const UByte* p = take(f, (nvar + 1) * 2);
    if (!p) return cutshort(f);
    std::vector<UByte> seen(nvar + 1, 0);
    for (std::size_t i = 0; i < nvar; i++) {
        UInt2 var = number<UInt2>(f, p + 2 * i);
        if (var == 0 || var > nvar || seen[var]++) break;
        f.head.sort.push_back(var);
    }
    return 0;
}

// Formats and value-label names that can't be become those of a new variable.
void mendtables(dtafile& f) {
    dtahead& h = f.head;
    for (std::size_t i = 0; i < h.types.size(); i++) {
        boolean string = isstringtype(h.types[i]);
        blankcontrols(f, h.formats[i]);
        blankcontrols(f, h.varlabels[i]);
        if (h.formats[i].size() >= fmtsize || chkfmt(h.formats[i], string ? 2 : 1)) {
            char usual[fmtsize];
            defaultformat(h.types[i], usual);
            h.formats[i] = usual;
        }
        if (string || !validname(h.vallabels[i])) h.vallabels[i].clear();
        if (h.varlabels[i].size() > std::size_t(maxvarlabel)) h.varlabels[i].resize(maxvarlabel);
    }
}

Int4 readtables(dtafile& f, const layout& l, Int4 nvar) {
    if (Int4 rc = readtypes(f, std::size_t(nvar))) return rc;
    if (Int4 rc = readtexts(f, l.name, f.head.names)) return rc;
    if (l.format < 107) renamepoints(f);
    if (Int4 rc = checknames(f)) return rc;
    if (Int4 rc = readsort(f)) return rc;
    if (Int4 rc = readtexts(f, l.fmt, f.head.formats)) return rc;
    if (Int4 rc = readtexts(f, l.name, f.head.vallabels)) return rc;
    if (Int4 rc = readtexts(f, l.varlabel, f.head.varlabels)) return rc;
    if (std::any_of(f.head.vallabels.begin(), f.head.vallabels.end(), hascontrol)) return unfit(f);
    mendtables(f);
    return 0;
}

}  // namespace

dtafile::~dtafile() { dta_close(*this); }

void dta_close(dtafile& f) {
    if (f.handle >= 0) webclose(f.handle);
    f.handle = -1;
}

Int4 dta_open(std::string_view name, dtafile& f) {
    char path[pathsize];
    addsuffix(path, name, ".dta");
    f.path = path;
    f.handle = webopen(path, web_binary);
    if (f.handle < 0) return -f.handle;
    Filepos end = fileseek(f.handle, 0, 2);
    if (end > 0 && fileseek(f.handle, 0, 0) == 0) f.size = end;
    f.buf.resize(blockbytes);
    if (!need(f, 1)) return f.failed ? cutshort(f) : unfit(f);
    const layout* l = layoutof(f.buf[0]);
    Int4 count = 0;
    if (!l) return unknownfile(f, f.buf[0]);
    if (Int4 rc = readheader(f, *l, count)) return rc;
    f.stage = l->charlength ? dta_atchars : dta_atrows;
    return readtables(f, *l, count);
}

// ---- Characteristics.

namespace {

// One record of type 1; `kept` is false when it is no characteristic of this file.
Int4 readchar(dtafile& f, std::size_t namefield, Filepos length, dtachar& c, boolean& kept) {
    if (length > remaining(f)) return cutshort(f);
    const UByte* p = take(f, 2 * namefield);
    if (!p) return cutshort(f);
    c.owner = text(p, namefield);
    c.name = text(p + namefield, namefield);
    if (hascontrol(c.owner) || hascontrol(c.name)) return unfit(f);
    Filepos rest = length - Filepos(2 * namefield), shown = std::min<Filepos>(rest, maxchartext);
    p = take(f, std::size_t(shown));
    if (!p) return cutshort(f);
    c.text = text(p, std::size_t(shown));
    if (!skip(f, rest - shown)) return cutshort(f);
    auto renamed = f.renamed.find(c.owner);
    if (renamed != f.renamed.end()) c.owner = renamed->second;
    kept = validname(c.name) && !c.text.empty() && (c.owner == "_dta" || f.numbers.count(c.owner));
    return 0;
}

}  // namespace

Int4 dta_nextchar(dtafile& f, dtachar& c, boolean& found) {
    const layout& l = *layoutof(f.head.format);
    for (found = false; !found && f.stage == dta_atchars;) {
        const UByte* p = take(f, 1 + std::size_t(l.charlength));
        if (!p) return cutshort(f);
        Filepos length = l.charlength == 2 ? Filepos(number<UInt2>(f, p + 1)) : Filepos(number<UInt4>(f, p + 1));
        if (p[0] == 0) {
            f.stage = dta_atrows;
        } else if (p[0] != 1 || length < 2 * l.name) {
            if (!skip(f, length)) return cutshort(f);
        } else if (Int4 rc = readchar(f, l.name, length, c, found)) {
            return rc;
        }
        if (!f.own && tick()) return 1;
    }
    return 0;
}

// ---- Rows.

namespace {

// Passes over the characteristics that nobody wanted.
Int4 torows(dtafile& f) {
    dtachar c;
    boolean found = true;
    while (found)
        if (Int4 rc = dta_nextchar(f, c, found)) return rc;
    if (f.stage == dta_atrows && f.rowsleft == 0) f.stage = dta_atlabels;
    if (f.stage > dta_atrows || f.rowschecked) return 0;
    f.rowschecked = true;
    if (f.width > maxlrecl()) return error(1000);
    return Filepos(f.width) * f.rowsleft > remaining(f) ? cutshort(f) : 0;
}

template <class T> void swapcolumn(UByte* p, Int4 n, std::size_t stride) {
    for (Int4 i = 0; i < n; i++, p += stride) writeraw<T>(p, swappedbytes(readraw<T>(p)));
}

void swaprows(const dtafile& f, UByte* rows, Int4 n) {
    std::size_t stride = std::size_t(f.width);
    for (std::size_t v = 0; v < f.head.types.size(); v++) {
        UByte* p = rows + f.offsets[v];
        switch (f.head.types[v]) {
        case typeint: swapcolumn<UInt2>(p, n, stride); break;
        case typelong: case typefloat: swapcolumn<UInt4>(p, n, stride); break;
        case typedouble: swapcolumn<std::uint64_t>(p, n, stride); break;
        default: break;
        }
    }
}

void mendmissing(dtafile& f, UByte* rows, Int4 n) {
    for (std::size_t v = 0; v < f.head.types.size(); v++) {
        if (f.head.types[v] != typedouble) continue;
        UByte* p = rows + f.offsets[v];
        for (Int4 i = 0; i < n; i++, p += f.width) {
            if (readraw<Double>(p) != oldmissing) continue;
            writeraw<Double>(p, missing);
            f.oldmissing[v] = 1;
        }
    }
}

}  // namespace

Int4 dta_nextrows(dtafile& f, const UByte*& rows, Int4& n) {
    n = 0;
    if (Int4 rc = torows(f)) return rc;
    if (f.stage != dta_atrows) return 0;
    std::size_t size = std::size_t(f.width);
    if (!f.own && tick()) return 1;
    if (!need(f, size)) return cutshort(f);
    n = Int4(std::min<std::size_t>(std::size_t(f.rowsleft), (f.len - f.pos) / size));
    UByte* p = f.buf.data() + f.pos;
    if (f.swapped) swaprows(f, p, n);
    if (f.head.format < 108) mendmissing(f, p, n);
    f.pos += std::size_t(n) * size;
    f.rowsleft -= n;
    rows = p;
    return 0;
}

Int4 dta_nextrow(dtafile& f, const UByte*& row) {
    row = nullptr;
    if (f.rowsready == 0) {
        if (Int4 rc = dta_nextrows(f, f.row, f.rowsready)) return rc;
        if (f.rowsready == 0) return 0;
    }
    row = f.row;
    f.row += f.width;
    f.rowsready--;
    return 0;
}

std::string_view dta_text(const dtafile& f, const UByte* row, Int4 var) {
    std::size_t i = std::size_t(var) - 1;
    return fieldtext(reinterpret_cast<const char*>(row + f.offsets[i]), f.head.types[i]);
}

Int4 dta_skiprows(dtafile& f, Int4 n) {
    if (Int4 rc = torows(f)) return rc;
    if (f.stage != dta_atrows) return 0;
    n = std::min(n, f.rowsleft);
    if (!skip(f, Filepos(n) * f.width)) return cutshort(f);
    f.rowsleft -= n;
    return 0;
}

// ---- Value labels.

namespace {

struct labelentry { Int4 value; std::string_view text; };

// Entries in the order of their texts become a label whose values ascend; of equal values the first stays.
void makelabel(const std::vector<labelentry>& entries, vallabel& label) {
    std::vector<std::pair<Int4, Int4>> placed;       // value, offset
    std::unordered_set<Int4> seen;
    label = vallabel{};
    label.exists = true;
    for (const labelentry& e : entries) {
        if (!seen.insert(e.value).second) continue;
        placed.emplace_back(e.value, Int4(label.texts.size()));
        label.texts.insert(label.texts.end(), e.text.begin(), e.text.end());
        label.texts.push_back(0);
    }
    std::sort(placed.begin(), placed.end());
    for (const auto& [value, offset] : placed) {
        label.values.push_back(value);
        label.offsets.push_back(offset);
    }
}

// The table of a label: n | txtlen | offsets | values | texts.
Int4 readtable(dtafile& f, Filepos length, vallabel& label) {
    const UByte* p = length < 8 ? nullptr : take(f, 8);
    if (!p) return length < 8 ? unfit(f) : cutshort(f);
    Int4 n = number<Int4>(f, p), texts = number<Int4>(f, p + 4);
    if (n < 0 || n > maxlabelentries || texts < 0 || texts > maxtexts) return unfit(f);
    Filepos table = 8 * Filepos(n) + texts;
    if (table + 8 > length) return unfit(f);
    if (table > remaining(f) || !(p = take(f, std::size_t(table)))) return cutshort(f);
    const char* area = reinterpret_cast<const char*>(p) + 8 * n;
    std::vector<std::pair<Int4, Int4>> order;         // offset, value
    for (Int4 i = 0; i < n; i++) {
        Int4 offset = number<Int4>(f, p + 4 * i);
        if (offset < 0 || offset >= texts) return unfit(f);
        order.emplace_back(offset, number<Int4>(f, p + 4 * (n + i)));
    }
    std::stable_sort(order.begin(), order.end(), [](auto& a, auto& b) { return a.first < b.first; });
    std::vector<labelentry> entries;
    for (auto [offset, value] : order)
        entries.push_back({value, fieldtext(area + offset, std::size_t(std::min(texts - offset, maxlabeltext)))});
    makelabel(entries, label);
    return skip(f, length - 8 - table) ? 0 : cutshort(f);
}

// The older table, n entries: values of 16 bits, texts of 8 bytes.
Int4 readoldtable(dtafile& f, std::size_t n, vallabel& label) {
    const UByte* p = take(f, 10 * n);
    if (!p) return cutshort(f);
    std::vector<labelentry> entries;
    for (std::size_t i = 0; i < n; i++) {
        const char* field = reinterpret_cast<const char*>(p) + 2 * n + 8 * i;
        entries.push_back({number<Int2>(f, p + 2 * i), fieldtext(field, 8)});
    }
    makelabel(entries, label);
    return 0;
}

// Behind the last row; the rows that nobody wanted are passed over.
Int4 tolabels(dtafile& f) {
    if (Int4 rc = torows(f)) return rc;
    if (f.stage == dta_atrows)
        if (Int4 rc = dta_skiprows(f, f.rowsleft)) return rc;
    f.stage = std::max(f.stage, dta_atlabels);
    return 0;
}

}  // namespace

Int4 dta_nextlabel(dtafile& f, std::string& name, vallabel& label, boolean& found) {
    found = false;
    if (Int4 rc = tolabels(f)) return rc;
    boolean old = f.head.format < 106;
    std::size_t lengthsize = old ? 2 : 4, namefield = f.head.format >= 110 ? 33 : 9;
    std::size_t head = lengthsize + (old ? 10 : namefield + 3);
    while (!found && f.stage == dta_atlabels) {
        if (!need(f, 1)) {
            f.stage = dta_atend;
            return f.failed ? cutshort(f) : 0;
        }
        const UByte* p = take(f, head);
        if (!p) return cutshort(f);
        Filepos length = old ? Filepos(number<UInt2>(f, p)) : Filepos(number<UInt4>(f, p));
        name = text(p + lengthsize, namefield);
        if (hascontrol(name)) return unfit(f);
        found = validname(name);
        if (!found && !old) {
            if (!skip(f, length)) return cutshort(f);
        } else if (Int4 rc = old ? readoldtable(f, std::size_t(length), label) : readtable(f, length, label)) {
            return rc;
        }
        if (found) blankcontrols(f, label.texts);
        if (!f.own && tick()) return 1;
    }
    return 0;
}

}  // namespace velmo
