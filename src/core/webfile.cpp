#include "core/webfile.h"
#include <cstring>
#include <string>
#include "base/memalloc.h"
#include "base/platform.h"
#include "base/poll.h"
#include "base/text.h"
#include "core/macros.h"
#include "core/quotes.h"
#include "output/errors.h"

namespace velmo {

namespace {

constexpr Int4 maxopen = 100;
Int4 openfiles[maxopen];      // descriptors, -1 for a free slot

Int4 freeslot() {
    for (Int4 i = 0; i < maxopen; i++)
        if (openfiles[i] < 0) return i;
    return -1;
}

// Prints a failure's message unless quiet, and gives the negative code back.
Int4 failed(Int4 rc, std::string_view name, Int4 flags) {
    if (flags & web_quiet) return -rc;
    if (rc == 601 || rc == 602 || rc == 603)
        fileerror(rc, name);
    else if (rc > 1)
        error(rc);
    return -rc;
}

// A missing folder can't be written to; only what is read can be not found.
Int4 opencode(Int4 flags) {
    if (openfailure == open_broken) return 1;
    if (openfailure == open_exists) return 602;
    return openfailure == open_notfound && !(flags & (web_write | web_append)) ? 601 : 603;
}

// A bare name is looked for along PATH when it isn't in the current folder.
std::string alongpath(const std::string& name) {
    if (name.find('/') != std::string::npos || filestat(name.c_str()).exists) return name;
    std::string path = environmenttext("PATH");
    for (std::size_t at = 0; at < path.size();) {
        std::size_t end = path.find(':', at);
        if (end == std::string::npos) end = path.size();
        std::string candidate = path.substr(at, end - at) + "/" + name;
        if (filestat(candidate.c_str()).exists) return candidate;
        at = end + 1;
    }
    return name;
}

std::string plainname(std::string_view name, Int4 flags) {
    quoted q;
    if (readquoted(name, q) && q.length == name.size()) name = q.content;
    if ((flags & web_device) && !name.empty() && name.back() == ':') name.remove_suffix(1);
    return std::string(name);
}

// A URL can only be read, and only where the caller takes one.
Int4 urlcode(Int4 flags) {
    if (flags & (web_write | web_append)) return 633;
    return flags & web_local ? 632 : 671;
}

// CR LF and CR become LF; returns the bytes that are left. `cr` tells that the last byte before was a CR.
std::size_t plainlineends(char* block, std::size_t n, boolean& cr) {
    std::size_t kept = 0;
    for (std::size_t i = 0; i < n; i++) {
        boolean second = cr && block[i] == '\n';
        cr = block[i] == '\r';
        if (!second) block[kept++] = cr ? '\n' : block[i];
    }
    return kept;
}

Int4 copyblocks(Int4 from, Int4 to, boolean text) {
    char block[16384];
    boolean cr = false;
    while (true) {
        Pint n = fileread(from, block, sizeof block);
        if (n == 0) return 0;
        if (n < 0) return breakpending ? 1 : 692;
        if (text) n = Pint(plainlineends(block, std::size_t(n), cr));
        if (!filewrite(to, block, std::size_t(n))) return 699;
        poll();
        if (breakpending) return 1;
    }
}

}  // namespace

boolean isurl(std::string_view name) {
    std::size_t colon = name.find(':');
    if (name.size() < 4 || colon == std::string_view::npos || colon == 0) return false;
    for (char c : name.substr(0, colon))
        if (!isletter(c)) return false;
    return name.substr(colon + 1, 2) == "//";
}

void webfile_init() { std::memset(openfiles, -1, sizeof openfiles); }

namespace {

Int4 openplain(const char* name, Int4 flags) {
    if (!(flags & (web_write | web_append))) return fileopenread(name);
    if ((flags & web_write) && (flags & web_textread)) return fileopenboth(name, flags & web_public);
    return fileopenwrite(name, flags & web_replace, flags & web_append, flags & web_public);
}

}  // namespace

Int4 webopen(std::string_view given, Int4 flags) {
    std::string name = plainname(given, flags);
    if (isurl(name)) return failed(urlcode(flags), name, flags);
    Int4 slot = freeslot();
    if (slot < 0) return failed(681, name, flags);
    if (name.empty() || name.size() >= pathsize) return failed(603, name, flags);
    if ((flags & web_path) && !(flags & web_write)) name = alongpath(name);
    Int4 fd = openplain(name.c_str(), flags);
    if (fd < 0) return failed(opencode(flags), name, flags);
    openfiles[slot] = fd;
    return fd;
}

Int4 webclose(Int4 handle) {
    for (Int4& fd : openfiles)
        if (fd == handle && fd >= 0) {
            fd = -1;
            return fileclose(handle) ? 0 : 691;
        }
    return 691;
}

Int4 webcopy(std::string_view from, std::string_view to, Int4 flags) {
    Int4 in = webopen(from, flags & ~(web_write | web_append | web_replace));
    if (in < 0) return -in;
    std::string target = plainname(to, flags);
    boolean existed = filestat(target.c_str()).exists;
    // Onto itself: opening the target would empty the source.
    boolean same = existed && samefile(plainname(from, flags).c_str(), target.c_str());
    Int4 refusal = flags & (web_replace | web_append) ? 603 : 602;
    Int4 out = same ? failed(refusal, target, flags) : webopen(target, flags | web_write);
    if (out < 0) {
        webclose(in);
        return -out;
    }
    Int4 rc = copyblocks(in, out, !(flags & web_binary));
    webclose(in);
    if (webclose(out) && !rc) rc = 699;
    if (rc && !(existed && flags & web_append)) fileremove(target.c_str());
    if (rc > 1) return rc == 692 ? fileerror(rc, from) : fileerror(rc, target);
    return rc;
}

void webfile_closeall() {
    for (Int4& fd : openfiles)
        if (fd >= 0) {
            fileclose(fd);
            fd = -1;
        }
}

namespace {

// The system's devices and descriptors (/dev/stdin, /dev/fd/63) are named in full; /dev/shm holds plain files.
boolean isdevice(std::string_view name) {
    auto begins = [name](std::string_view folder) { return name.substr(0, folder.size()) == folder; };
    return (begins("/dev/") && !begins("/dev/shm/")) || begins("/proc/");
}

}  // namespace

void addsuffix(char* out, std::string_view name, std::string_view suffix) {
    std::size_t slash = name.rfind('/');
    std::string_view last = slash == std::string_view::npos ? name : name.substr(slash + 1);
    std::string whole(name);
    if (last.find('.') == std::string_view::npos && !isdevice(name)) whole += suffix;
    copytext(out, pathsize, whole);
}

void reader_start(bytereader& r, Int4 handle) {
    r.handle = handle;
    r.pos = r.len = 0;
    r.failed = 0;
}

void reader_skipmark(bytereader& r) {
    while (r.len < 3) {
        Pint n = fileread(r.handle, r.buf + r.len, std::size_t(readsize - r.len));
        if (n <= 0) break;
        r.len += Int4(n);
    }
    if (r.len >= 3 && std::memcmp(r.buf, "\xEF\xBB\xBF", 3) == 0) r.pos = 3;
}

Int4 readfailure() { return breakpending ? 1 : error(691); }

Int4 reader_fill(bytereader& r) {
    Pint n = fileread(r.handle, r.buf, readsize);
    r.pos = r.len = 0;
    if (n < 0) {
        r.failed = 1;
        return read_error;
    }
    if (n == 0) return read_eof;
    r.len = Int4(n);
    return r.buf[r.pos++];
}

void writer_start(bytewriter& w, Int4 handle) {
    w.handle = handle;
    w.len = 0;
    w.failed = 0;
}

void writer_put(bytewriter& w, std::string_view text) {
    if (text.empty()) return;
    if (w.len + text.size() > sizeof w.buf) writer_flush(w);
    if (text.size() > sizeof w.buf) {
        if (!filewrite(w.handle, text.data(), text.size())) w.failed = 1;
        return;
    }
    std::memcpy(w.buf + w.len, text.data(), text.size());
    w.len += text.size();
}

boolean writer_flush(bytewriter& w) {
    if (w.len && !filewrite(w.handle, w.buf, w.len)) w.failed = 1;
    w.len = 0;
    return !w.failed;
}

}  // namespace velmo
