#include "core/handles.h"
#include <algorithm>
#include <cstring>
#include "base/platform.h"
#include "base/poll.h"
#include "core/macros.h"
#include "core/objects.h"
#include "core/webfile.h"
#include "output/errors.h"

namespace velmo {

boolean handle_find(std::string_view name, filehandle& h) {
    object* o = objfind(name, obj_handle);
    if (o) objread(o, 0, &h, sizeof h);
    return o != nullptr;
}

// A handle that exists keeps its place in the store.
Int4 handle_store(std::string_view name, const filehandle& h) {
    object* o = objfind(name, obj_handle);
    if (!o) return objput(name, obj_handle, &h, sizeof h);
    objwrite(o, 0, &h, sizeof h);
    return 0;
}

void handle_forget(std::string_view name) { objdel(name, obj_handle); }

std::vector<std::string> handlenames() {
    std::vector<std::string> names;
    for (object* o = objnext(nullptr, nullptr, obj_handle); o; o = objnext(o, nullptr, obj_handle))
        names.emplace_back(o->name);
    return names;
}

namespace {

Int4 failed(filehandle& h) {
    h.err = 1;
    return 691;
}

// Turns the buffer to input or output; the file pointer goes to the logical place.
Int4 turn(filehandle& h, UByte output) {
    if (h.bufisoutput == output) return 0;
    if (h.bufisoutput) {
        if (Int4 rc = handle_flush(h)) return rc;
    } else if (h.mode == handle_both && fileseek(h.fd, handle_place(h), 0) < 0) {
        return failed(h);
    }
    h.pos = h.len = 0;
    h.eof = 0;
    h.bufisoutput = output;
    return 0;
}

Int4 writeout(filehandle& h, const void* bytes, std::size_t n) {
    return n == 0 || filewrite(h.fd, bytes, n) ? 0 : failed(h);
}

}  // namespace

Int4 handle_fill(filehandle& h) {
    if (h.err || turn(h, 0)) return handle_failed;
    Pint n = fileread(h.fd, h.buf, sizeof h.buf);
    h.pos = h.len = 0;
    if (n < 0) {
        if (!breakpending) failed(h);
        return handle_failed;
    }
    h.eof = n == 0;
    if (n == 0) return handle_eof;
    h.len = Int4(n);
    return h.buf[h.pos++];
}

Int4 handle_get(filehandle& h, void* out, Int4 n, Int4& got) {
    UByte* to = static_cast<UByte*>(out);
    for (got = 0; got < n; got++) {
        Int4 c = handle_byte(h);
        if (c == handle_failed) return 691;
        if (c == handle_eof) break;
        to[got] = UByte(c);
    }
    return 0;
}

Int4 handle_put(filehandle& h, std::string_view bytes) {
    if (h.err) return 691;
    if (Int4 rc = turn(h, 1)) return rc;
    if (bytes.size() > sizeof h.buf - std::size_t(h.len))
        if (Int4 rc = handle_flush(h)) return rc;
    if (bytes.size() > sizeof h.buf) return writeout(h, bytes.data(), bytes.size());
    std::memcpy(h.buf + h.len, bytes.data(), bytes.size());
    h.pos = h.len += Int4(bytes.size());
    return 0;
}

Int4 handle_flush(filehandle& h) {
    if (h.err) return 691;
    if (!h.bufisoutput) return 0;
    Int4 n = h.len;
    h.pos = h.len = 0;
    return writeout(h, h.buf, std::size_t(n));
}

Filepos handle_place(const filehandle& h) {
    Filepos file = fileseek(h.fd, 0, 1);
    if (file < 0) return -1;
    return h.bufisoutput ? file + h.len : file - (h.len - h.pos);
}

Int4 handle_seek(filehandle& h, Filepos place, Int4 whence) {
    if (Int4 rc = handle_flush(h)) return rc;
    if (fileseek(h.fd, place, whence) < 0) return failed(h);
    h.pos = h.len = h.txt_col = 0;
    h.eof = 0;
    return 0;
}

Int4 handle_close(std::string_view name) {
    filehandle h;
    if (!handle_find(name, h)) return 0;
    Int4 rc = handle_flush(h);
    if (webclose(h.fd)) rc = 691;
    handle_forget(name);
    return rc;
}

Int4 handles_closelevel(Int4 level) {
    Int4 rc = 0;
    if (objcount(obj_handle) == 0) return 0;
    for (const std::string& name : handlenames()) {
        filehandle h;
        if (handle_find(name, h) && h.level >= level && handle_close(name)) rc = 691;
    }
    return rc ? error(rc) : 0;
}

Int4 handles_levelleft() { return handles_closelevel(macrolevel); }
void handles_ended() { handles_closelevel(0); }

}  // namespace velmo
