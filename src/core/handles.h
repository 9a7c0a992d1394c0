// The handles of the file command: objects of type obj_handle, each one record with the file's descriptor and a buffer
// of 512 bytes that holds either input not yet read or output not yet written. A handle belongs to the level that
// opened it and is closed when that ends; those of the console stay until the end of the session. Objects move: a user
// takes a copy of the record, works with it, and stores it again.
#pragma once
#include <string>
#include <string_view>
#include <vector>
#include "base/types.h"

namespace velmo {

enum handlemode : UByte { handle_read = 1, handle_write = 2, handle_both = 3 };
enum byteorder : UByte { order_hilo = 1, order_lohi = 2 };

struct filehandle {
    Int4 fd;
    Int4 pos, len;         // the next byte in the buffer, and how many it holds; for output both are the same
    UByte mode, binary;
    UByte border;          // byteorder
    UByte bufisoutput, eof;
    UByte err;             // a transfer failed: all later ones give 691
    UByte append;
    UByte pad;
    Int4 txt_col;          // columns written of the present text line
    Int4 level;            // macrolevel at open
    UByte buf[512];
};

boolean handle_find(std::string_view name, filehandle& h);        // false when there is none
Int4 handle_store(std::string_view name, const filehandle& h);    // new or again; 0 or 950 (printed)
void handle_forget(std::string_view name);                        // the file stays open
std::vector<std::string> handlenames();                           // in store order

// The transfers below return 0 or 691, not printed.
// The next byte: 0 to 255, or handle_eof at the end, handle_failed (after a Break too; the handle can then be read on).
inline constexpr Int4 handle_eof = 1000, handle_failed = 1001;
Int4 handle_fill(filehandle& h);
inline Int4 handle_byte(filehandle& h) {
    return h.pos < h.len && !h.bufisoutput ? h.buf[h.pos++] : handle_fill(h);
}
inline void handle_unread(filehandle& h) { h.pos--; }             // the byte that handle_byte gave last
Int4 handle_get(filehandle& h, void* out, Int4 n, Int4& got);     // got < n at the end of the file
Int4 handle_put(filehandle& h, std::string_view bytes);
Int4 handle_flush(filehandle& h);
// Where the next byte is read or written; -1 when the system doesn't tell.
Filepos handle_place(const filehandle& h);
// Drops or writes the buffer and moves to a place; 691.
Int4 handle_seek(filehandle& h, Filepos place, Int4 whence);

// Flushes, closes, deletes: 0 or 691.
Int4 handle_close(std::string_view name);
// Those opened at `level` or deeper. 0, or 691 (printed once) when bytes were lost.
Int4 handles_closelevel(Int4 level);

}  // namespace velmo
