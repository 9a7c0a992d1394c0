#include "commands/files/celltext.h"
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include "base/platform.h"
#include "base/text.h"
#include "core/adopath.h"
#include "output/errors.h"
#include "output/formats.h"

namespace velmo {

void cells_start(std::vector<cellwriter>& cells, const Int4* vars, Int4 n, const celloptions& o) {
    for (Int4 i = 0; i < n; i++) {
        Int4 v = vars[i];
        cellwriter cell{v, isstring(v), false, fmt[v - 1], {}, typ[v - 1], mapi[v - 1], 0};
        fmtspec spec{};
        if (!chkfmt(cell.format, 3, &spec) && spec.dpcomma) cell.format[cell.format.find(',')] = '.';
        std::size_t digits = cell.format.find_first_not_of("%-~");
        cell.width = std::atoi(cell.format.c_str() + std::min(digits, cell.format.size()));
        cell.asis = digits != 1 || cell.width == 0;
        if (o.label && !cell.string && lbl[v - 1][0]) vl_load(lbl[v - 1], cell.label);
        cells.push_back(cell);
    }
}

namespace {

char* puttext(char* out, std::string_view text, boolean quoted) {
    text = text.substr(0, maxstrtype);
    if (quoted) *out++ = '"';
    std::memcpy(out, text.data(), text.size());
    out += text.size();
    if (quoted) *out++ = '"';
    return out;
}

std::string_view stringof(const cellwriter& cell, const UByte* row) {
    return fieldtext(reinterpret_cast<const char*>(row + cell.offset), cell.type);
}

const char* labelof(const cellwriter& cell, Double value) {
    return cell.label.exists && value != missing ? cell.label.find(value) : nullptr;
}

}  // namespace

char* cell_put(const cellwriter& cell, const UByte* row, const celloptions& o, char* out) {
    if (cell.string) {
        std::string_view text = stringof(cell, row);
        return puttext(out, o.quote ? text : trimmed(text), o.quote);
    }
    Double value = readcell(row + cell.offset, cell.type);
    if (value == missing) return out;
    if (const char* found = labelof(cell, value)) return puttext(out, o.quote ? found : trimmed(found), o.quote);
    return out + fmttrimmed(cell.format.c_str(), value, out);
}

char* cell_putall(const cellwriter& cell, const UByte* row, const celloptions& o, char* out) {
    if (cell.string) return puttext(out, stringof(cell, row), o.quote);
    Double value = readcell(row + cell.offset, cell.type);
    if (const char* found = labelof(cell, value)) return puttext(out, found, o.quote);
    if (!cell.asis) return out + fmttrimmed(cell.format.c_str(), value, out);
    Int4 n = fmtread(cell.format.c_str(), value);
    std::memcpy(out, dbuf, std::size_t(n));
    return out + n;
}

Int4 writetext(const char* suffix, boolean replace, const std::function<Int4(bytewriter&)>& body) {
    char path[pathsize];
    addsuffix(path, usingname, suffix);
    Int4 handle = webopen(path, web_write | web_binary | (replace ? web_replace : 0));
    if (handle < 0) return -handle;
    static bytewriter w;
    writer_start(w, handle);
    Int4 rc = body(w);
    if (!rc && !writer_flush(w)) rc = 699;
    if (webclose(handle) && !rc) rc = 699;
    if (!rc) return 0;
    fileremove(path);
    return rc == 699 ? fileerror(rc, path) : rc;
}

}  // namespace velmo
