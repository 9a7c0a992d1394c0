// The one open call for files and URLs. A handle is a descriptor of base/platform.h; at most 100 are open at a time.
// A failure returns the negative of a code and, unless quiet, its message has been printed.
#pragma once
#include <string_view>
#include "base/types.h"

namespace velmo {

enum webflags : Int4 {
    web_write = 1, web_binary = 2, web_device = 4, web_quiet = 8, web_replace = 16, web_public = 32,
    web_path = 64, web_append = 128, web_nosum = 256, web_local = 512, web_textread = 1024,
};

boolean isurl(std::string_view name);  // letters, a colon, two slashes
void webfile_init();                   // clears the table of open files
// Opens a file. Reading a missing one is 601, writing one that exists without replace or append 602, any other
// refusal 603; with web_write and web_textread it is open for both, and made unless it is there; 632 a URL that must
// be local, 633 writing to a URL, 681 too many open files, 1 a Break while a pipe was waited for.
Int4 webopen(std::string_view name, Int4 flags);
Int4 webclose(Int4 handle);            // 0, or 691 when the last bytes could not be written
// Copies a file by blocks, with Break tests; a failed copy leaves no target behind, but for one that was appended to.
// Flags as for webopen (replace, append, public), with web_write forced for the target; without web_binary CR LF and
// CR become LF. A file is not copied onto itself. 0 or a code (printed).
Int4 webcopy(std::string_view from, std::string_view to, Int4 flags);
void webfile_closeall();

// `name` with `suffix` (".dta") added when its last part has no dot; into out (pathsize bytes).
void addsuffix(char* out, std::string_view name, std::string_view suffix);

// A reader of bytes through one buffer, for every text format. Byte codes 0..255; eof and errors above. Sixteen bytes
// behind the last one may be looked at.
inline constexpr Int4 read_eof = 1000, read_error = 1001, readsize = 65536;
struct bytereader {
    Int4 handle;
    Int4 pos, len;
    UByte failed;
    UByte buf[readsize + 16];
};
void reader_start(bytereader& r, Int4 handle);
void reader_skipmark(bytereader& r);   // at a file's start: a UTF-8 mark there is no part of the text
Int4 readfailure();                    // the code behind read_error: 1 after a Break, else 691, printed
Int4 reader_fill(bytereader& r);       // the next byte after reading a new buffer
inline Int4 reader_next(bytereader& r) { return r.pos < r.len ? r.buf[r.pos++] : reader_fill(r); }

// A writer through one buffer; a failed write is remembered.
struct bytewriter {
    Int4 handle;
    std::size_t len;
    UByte failed;
    char buf[65536];
};
void writer_start(bytewriter& w, Int4 handle);
void writer_put(bytewriter& w, std::string_view text);
boolean writer_flush(bytewriter& w);   // false once any write has failed
// Where the next bytes go, at least n of them (n up to the buffer's size): the caller adds to len what it puts there.
inline char* writer_room(bytewriter& w, std::size_t n) {
    if (w.len + n > sizeof w.buf) writer_flush(w);
    return w.buf + w.len;
}

}  // namespace velmo
