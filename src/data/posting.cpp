#include "data/posting.h"
#include <algorithm>
#include <cstring>
#include <memory>
#include "base/memalloc.h"
#include "base/platform.h"
#include "core/objects.h"
#include "core/webfile.h"
#include "data/cells.h"
#include "data/dtafile.h"
#include "data/dtawrite.h"
#include "output/errors.h"

namespace velmo {

namespace {

struct poststatus {
    Int4 handle, columns, every;
    Int4 held, written;            // rows in the buffer, rows in the file
    UByte type;                    // of every column: float or double
    char spare[251];
    Int4 rowsize() const { return columns * varsize(type); }
};
static_assert(sizeof(poststatus) == 272);

poststatus& statusof(object* o) { return *reinterpret_cast<poststatus*>(o->data()); }
const char* pathof(object* o) { return reinterpret_cast<const char*>(o->data()) + sizeof(poststatus); }
UByte* rowsof(object* o) { return o->data() + sizeof(poststatus) + std::strlen(pathof(o)) + 1; }

object* findpost(const std::string& name) { return objfind(name, obj_postfile); }

Int4 rowsperwrite(Int4 wanted, Int4 rowsize) {
    if (wanted >= 1 && wanted <= 32000) return wanted;
    return std::max(2, std::min(32000, maxvar * 16 / rowsize));
}

// Header and tables of the new file: 0 or 693.
Int4 writehead(Int4 handle, const std::vector<std::string>& names, UByte type) {
    dtahead h;
    std::size_t n = names.size();
    h.stamp = dta_stamp();
    h.types.assign(n, type);
    h.names = names;
    h.formats.assign(n, type == typedouble ? "%10.0g" : "%9.0g");
    h.vallabels.assign(n, "");
    h.varlabels.assign(n, "");
    auto w = std::make_unique<bytewriter>();
    writer_start(*w, handle);
    dta_puthead(*w, h);
    dta_endchars(*w, h.format);
    return writer_flush(*w) ? 0 : 693;
}

Int4 writefailure(const std::string& path) { return fileerror(diskfull ? 699 : 693, path); }

}  // namespace

Int4 post_open(const std::string& name, const std::string& path, const std::vector<std::string>& columns,
               const postchoice& o) {
    Int4 handle = webopen(path, web_write | web_binary | (o.replace ? web_replace : 0));
    if (handle < 0) return -handle;
    diskfull = false;
    poststatus status{handle, Int4(columns.size()), 0, 0, 0, o.type, {}};
    status.every = rowsperwrite(o.every, status.rowsize());
    std::size_t size = sizeof status + path.size() + 1 + std::size_t(status.every) * std::size_t(status.rowsize());
    Int4 rc = writehead(handle, columns, o.type);
    if (rc) writefailure(path);
    object* post = rc ? nullptr : objnew(name, obj_postfile, size, size);
    if (!post) {
        webclose(handle);
        fileremove(path.c_str());
        return rc ? rc : 950;
    }
    std::memset(post->data(), 0, size);
    statusof(post) = status;
    std::memcpy(post->data() + sizeof status, path.c_str(), path.size());
    return 0;
}

namespace {

// Writes the rows that are held: false when that failed.
boolean flushpost(object* o) {
    poststatus& s = statusof(o);
    if (s.held && !filewrite(s.handle, rowsof(o), std::size_t(s.held) * std::size_t(s.rowsize()))) return false;
    s.written += s.held;
    s.held = 0;
    return true;
}

// A file that can't be written is given up: 693 or 699.
Int4 giveuppost(const std::string& name) {
    object* o = findpost(name);
    std::string path = pathof(o);
    webclose(statusof(o).handle);
    fileremove(path.c_str());
    objdel(name, obj_postfile);
    return writefailure(path);
}

}  // namespace

Int4 post_columns(const std::string& name) {
    object* o = findpost(name);
    return o ? statusof(o).columns : 0;
}

Int4 post_row(const std::string& name, const std::vector<Double>& values) {
    object* o = findpost(name);
    poststatus& s = statusof(o);
    UByte* p = rowsof(o) + std::size_t(s.held) * std::size_t(s.rowsize());
    for (Double value : values) {
        writecell(p, s.type, value);
        p += varsize(s.type);
    }
    diskfull = false;
    return ++s.held < s.every || flushpost(o) ? 0 : giveuppost(name);
}

Int4 post_close(const std::string& name) {
    object* o = findpost(name);
    diskfull = false;
    if (!flushpost(o)) return giveuppost(name);
    poststatus& s = statusof(o);
    if (!dta_complete(s.handle, dta_whole, s.written)) return giveuppost(name);
    std::string path = pathof(o);
    Int4 rc = webclose(s.handle);
    objdel(name, obj_postfile);
    return rc ? writefailure(path) : 0;
}

Int4 post_closeall() {
    Int4 first = 0;
    char name[36];
    while (objnext(nullptr, name, obj_postfile))
        if (Int4 rc = post_close(name); rc && !first) first = rc;
    return first;
}

void posts_close() { post_closeall(); }

}  // namespace velmo
