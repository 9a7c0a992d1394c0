// Writing a dataset file: its parts through a bytewriter, and the dataset in memory as a whole.
#include "data/dtawrite.h"
#include <algorithm>
#include <bit>
#include <cstdio>
#include <cstring>
#include <memory>
#include <unordered_set>
#include "base/memalloc.h"
#include "base/platform.h"
#include "base/poll.h"
#include "base/saved.h"
#include "base/text.h"
#include "core/objects.h"
#include "data/cells.h"
#include "data/chars.h"
#include "data/dtafile.h"
#include "data/dtamemory.h"
#include "output/errors.h"

namespace velmo {

namespace {

static_assert(std::endian::native == std::endian::little, "files are written low byte first");

constexpr Int4 headlabel = 81, varlabelsize = 81;
constexpr Filepos nobsplace = 6;
constexpr Int4 shortcontents = 18632, shortname = 9;     // of characteristics below format 110: less than these

template <class T> void put(bytewriter& w, T v) { writer_put(w, {reinterpret_cast<const char*>(&v), sizeof v}); }

// Text in a field of `size` bytes, the rest zeros.
void putfield(bytewriter& w, std::string_view text, std::size_t size) {
    static constexpr char zeros[81] = {};
    text = text.substr(0, size - 1);
    writer_put(w, text);
    writer_put(w, {zeros, size - text.size()});
}

void putfields(bytewriter& w, const std::vector<std::string>& texts, std::size_t size) {
    for (const std::string& text : texts) putfield(w, text, size);
}

std::size_t namefield(Int4 format) { return format >= 110 ? 33 : 9; }

UByte typebyteof(Int4 format, UByte type) {
    if (format >= 111) return type;
    return isstringtype(type) ? UByte(type + 127) : UByte("bilfd"[type - typebyte]);
}

}  // namespace

std::string dta_stamp() {
    static constexpr const char* months[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                             "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    clocktime t = localclock();
    char out[64];
    std::snprintf(out, sizeof out, "%2d %s %4d %02d:%02d", t.day, months[t.month - 1], t.year, t.hour, t.minute);
    return std::string(out).substr(0, 17);
}

void dta_puthead(bytewriter& w, const dtahead& h) {
    put(w, UByte(0));       // the format, once all is there
    put(w, UByte(2));
    put(w, UByte(1));
    put(w, UByte(0));
    put(w, UInt2(h.nvar()));
    put(w, h.nobs);
    putfield(w, h.label, headlabel);
    putfield(w, h.stamp, 18);
    for (UByte type : h.types) put(w, typebyteof(h.format, type));
    putfields(w, h.names, namefield(h.format));
    for (UInt2 var : h.sort) put(w, var);
    for (std::size_t i = h.sort.size(); i <= h.types.size(); i++) put(w, UInt2(0));
    putfields(w, h.formats, fmtsize);
    putfields(w, h.vallabels, namefield(h.format));
    putfields(w, h.varlabels, varlabelsize);
}

void dta_putchar(bytewriter& w, Int4 format, const charview& c) {
    std::size_t field = namefield(format), length = 2 * field + c.text.size() + 1;
    if (format < 110 && (c.name.size() >= shortname || c.text.size() >= shortcontents)) return;
    put(w, UByte(1));
    if (format >= 110)
        put(w, UInt4(length));
    else
        put(w, UInt2(length));
    putfield(w, c.owner, field);
    putfield(w, c.name, field);
    writer_put(w, c.text);
    put(w, UByte(0));
}

void dta_endchars(bytewriter& w, Int4 format) {
    put(w, UByte(0));
    if (format >= 110)
        put(w, UInt4(0));
    else
        put(w, UInt2(0));
}

void dta_putlabel(bytewriter& w, Int4 format, std::string_view name, const vallabel& label) {
    std::size_t n = label.values.size() * sizeof(Int4);
    put(w, UInt4(8 + 2 * n + label.texts.size()));
    putfield(w, name, namefield(format) + 3);
    put(w, Int4(label.values.size()));
    put(w, Int4(label.texts.size()));
    writer_put(w, {reinterpret_cast<const char*>(label.offsets.data()), n});
    writer_put(w, {reinterpret_cast<const char*>(label.values.data()), n});
    writer_put(w, {label.texts.data(), label.texts.size()});
}

boolean dta_complete(Int4 handle, Int4 format, Int4 rows) {
    UByte first = UByte(format);
    return fileseek(handle, nobsplace, 0) >= 0 && filewrite(handle, &rows, sizeof rows) &&
           fileseek(handle, 0, 0) >= 0 && filewrite(handle, &first, 1);
}

// ---- The dataset in memory.

namespace {

std::vector<Int4> savedvars(boolean all) {
    std::vector<Int4> vars;
    for (Int4 v = 1; v <= nvar; v++)
        if (all || !issample(v)) vars.push_back(v);
    return vars;
}

dtahead headof(const std::vector<Int4>& vars, const savechoice& choice, const std::string& stamp) {
    dtahead h;
    h.format = choice.format;
    h.nobs = nobs;
    h.label = datalabel;
    h.stamp = stamp;
    std::vector<UInt2> place(std::size_t(nvar) + 1, 0);
    for (Int4 v : vars) {
        h.types.push_back(typ[v - 1]);
        h.names.emplace_back(varlist[v - 1]);
        h.formats.emplace_back(fmt[v - 1]);
        h.vallabels.emplace_back(lbl[v - 1]);
        h.varlabels.push_back(getvarlabel(varlist[v - 1]));
        place[std::size_t(v)] = UInt2(h.names.size());
    }
    for (const UInt2* key = srt; *key && place[*key]; key++)           // `sort x x` names a variable twice
        if (std::find(h.sort.begin(), h.sort.end(), place[*key]) == h.sort.end()) h.sort.push_back(place[*key]);
    return h;
}

// The runs of bytes that saved variables take in a row of memory, and where they go in a row of the file.
std::vector<dtacopy> runsof(const std::vector<Int4>& vars) {
    std::vector<dtacopy> runs;
    UInt4 to = 0;
    for (Int4 v : vars) {
        UInt4 n = UInt4(varsize(typ[v - 1]));
        dta_addcopy(runs, mapi[v - 1], to, n);
        to += n;
    }
    return runs;
}

void gatherrows(const std::vector<dtacopy>& runs, Int4 first, Int4 n, std::size_t width, UByte* out) {
    constexpr Int4 ahead = 24;
    for (Int4 obs = first; obs < first + n; obs++, out += width) {
        if (obs + ahead < ptrmark) __builtin_prefetch(rowptr(obs + ahead));
        dta_copyrow(runs, rowptr(obs), out);
    }
}

// All rows in large blocks: 0, 693, 909, 1.
Int4 putrows(Int4 handle, const std::vector<dtacopy>& runs, std::size_t width) {
    Int4 block = Int4(std::max<std::size_t>(262144 / width, 2));
    workspace space(std::size_t(block) * width);
    UByte* rows = space.get<UByte>();
    if (!rows) return error(909);
    for (Int4 first = 1, n; first <= nobs; first += n) {
        n = std::min(block, nobs - first + 1);
        gatherrows(runs, first, n, width, rows);
        if (!filewrite(handle, rows, std::size_t(n) * width)) return 693;
        if (tick()) return 1;
    }
    return 0;
}

void putchars(bytewriter& w, const dtahead& h) {
    std::unordered_set<std::string_view> owners(h.names.begin(), h.names.end());
    owners.insert("_dta");
    for (const charview& c : char_views())
        if (owners.count(c.owner)) dta_putchar(w, h.format, c);
    dta_endchars(w, h.format);
}

void putlabels(bytewriter& w, const dtahead& h, const savechoice& choice) {
    std::vector<std::string> names = choice.unused ? vl_names() : h.vallabels;
    std::unordered_set<std::string> done{""};
    for (const std::string& name : names) {
        vallabel label;
        if (!done.insert(name).second) continue;
        vl_load(name, label);
        if (label.exists) dta_putlabel(w, h.format, name, label);
    }
}

Int4 writeall(Int4 handle, const savechoice& choice, const std::string& stamp) {
    auto w = std::make_unique<bytewriter>();
    std::vector<Int4> vars = savedvars(choice.all);
    dtahead h = headof(vars, choice, stamp);
    writer_start(*w, handle);
    dta_puthead(*w, h);
    putchars(*w, h);
    if (!writer_flush(*w)) return 693;
    if (Int4 rc = putrows(handle, runsof(vars), std::size_t(h.width()))) return rc;
    if (choice.labels) putlabels(*w, h, choice);
    return writer_flush(*w) && dta_complete(handle, h.format, h.nobs) ? 0 : 693;
}

// Where the old file's room and what is free hold the new one; names, texts and labels are counted with the objects.
boolean fitsinstead(const std::string& target) {
    std::uint64_t rows = std::uint64_t(nobs) * std::uint64_t(width), tables = std::uint64_t(nvar + 1) * 256;
    return rows + tables + 2 * objbytes() <= std::uint64_t(roominstead(target.c_str()));
}

constexpr Int4 notbeside = -1;

// Into a file beside the old one, which takes its place when it is whole. notbeside where that can't be done, or has no
// room for two files but for the new one alone.
Int4 savebeside(const std::string& path, const savechoice& choice, const std::string& stamp) {
    std::string target, beside;
    Int4 handle = filebeside(path.c_str(), target, beside);
    if (handle < 0) return notbeside;
    Int4 rc = 909;
    {
        onexit close([&] {
            if (!fileclose(handle) && !rc) rc = 693;
            if (!rc && !filerename(beside.c_str(), target.c_str())) rc = 693;
            if (rc) fileremove(beside.c_str());
        });
        rc = writeall(handle, choice, stamp);
    }
    return rc == 693 && diskfull && fitsinstead(target) ? notbeside : rc;
}

// Straight into the file, which is removed when that fails.
Int4 savestraight(const std::string& path, boolean replace, const savechoice& choice, const std::string& stamp) {
    Int4 handle = webopen(path, web_write | web_binary | (replace ? web_replace : 0));
    if (handle < 0) return -handle;
    Int4 rc = 909;
    {
        onexit close([&] {
            if (webclose(handle) && !rc) rc = 693;
            if (rc) fileremove(path.c_str());
        });
        rc = writeall(handle, choice, stamp);
    }
    return rc;
}

}  // namespace

Int4 dta_save(std::string_view name, boolean replace, const savechoice& choice, const std::string& stamp) {
    std::string path(name);
    diskfull = false;
    Int4 rc = replace ? savebeside(path, choice, stamp) : notbeside;
    if (rc == notbeside) rc = savestraight(path, replace, choice, stamp);
    return rc == 693 ? fileerror(diskfull ? 699 : 693, path) : rc;
}

}  // namespace velmo
