#include "commands/files/linereader.h"
#include <algorithm>
#include <cstring>
#include "base/poll.h"
#include "output/errors.h"

namespace velmo {

void lines_start(linereader& r, Int4 handle) {
    reader_start(r.bytes, handle);
    reader_skipmark(r.bytes);
    r.lrecl = r.len = 0;
    r.ended = 0;
}

namespace {

// The next byte; byte 26 is the end of the file from then on.
Int4 nextbyte(linereader& r) {
    if (r.ended) return read_eof;
    Int4 c = reader_next(r.bytes);
    if (c != 26) return c;
    r.ended = 1;
    return read_eof;
}

// Takes the bytes up to the next one that isn't plain text, as far as the buffer and `most` reach.
void takerun(linereader& r, Int4 most) {
    Int4 left = std::min(r.bytes.len - r.bytes.pos, most), n = 0;
    if (r.ended || left <= 0) return;
    const char* from = reinterpret_cast<const char*>(r.bytes.buf) + r.bytes.pos;
    for (UInt4 ends = 0; n < left && !ends; n += ends ? std::countr_zero(ends) : 16)
        ends = bytes::anyof(from + n, '\n', '\r', '\t', 26);
    n = std::min(n, left);
    std::memcpy(r.text() + r.len, from, std::size_t(n));
    r.len += n;
    r.bytes.pos += n;
}

void taketab(linereader& r) {
    do r.text()[r.len++] = ' ';
    while (r.len % 8);
}

// Up to the line end: 0, lines_atend without a byte, 611, or 691.
Int4 takeline(linereader& r) {
    while (true) {
        takerun(r, longestline - r.len);
        if (r.len >= longestline) return 611;
        if (tick()) return 1;
        Int4 c = nextbyte(r);
        if (c == '\n') return 0;
        if (c == read_eof) return r.len ? 0 : lines_atend;
        if (c == read_error) return breakpending ? 1 : 691;
        if (c == '\t')
            taketab(r);
        else if (c != '\r')
            r.text()[r.len++] = char(c);
    }
}

// A record of lrecl bytes; the last one may be shorter.
Int4 takerecord(linereader& r) {
    while (r.len < r.lrecl) {
        if (tick()) return 1;
        takerun(r, r.lrecl - r.len);
        if (r.len == r.lrecl) return 0;
        Int4 c = nextbyte(r);
        if (c == read_eof) return r.len ? 0 : lines_atend;
        if (c == read_error) return breakpending ? 1 : 691;
        if (c != '\n' && c != '\r') r.text()[r.len++] = char(c);
    }
    return 0;
}

}  // namespace

Int4 lines_next(linereader& r) {
    r.len = 0;
    if (tick()) return 1;
    Int4 rc = r.lrecl ? takerecord(r) : takeline(r);
    if (rc) r.len = 0;
    r.text()[r.len] = 0;
    return rc > 1 ? error(rc) : rc;
}

}  // namespace velmo
