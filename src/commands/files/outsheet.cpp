// outsheet: the dataset as delimited text.
#include <cstring>
#include "base/poll.h"
#include "base/platform.h"
#include "base/saved.h"
#include "base/text.h"
#include "commands/files/celltext.h"
#include "core/adopath.h"
#include "core/webfile.h"
#include "data/run.h"
#include "expr/evaluate.h"
#include "language/stdparse.h"
#include "output/errors.h"
#include "output/formats.h"
#include "output/print.h"

namespace velmo {

void cells_start(std::vector<cellwriter>& cells, const Int4* vars, Int4 n, const celloptions& o) {
    for (Int4 i = 0; i < n; i++) {
        Int4 v = vars[i];
        cellwriter cell{v, isstring(v), fmt[v - 1], {}, typ[v - 1], mapi[v - 1]};
        if (o.label && !cell.string && lbl[v - 1][0]) vl_load(lbl[v - 1], cell.label);
        cells.push_back(cell);
    }
}

namespace {

char* puttext(char* out, std::string_view text, boolean quoted) {
    text = text.substr(0, maxstrtype);
    if (!quoted) text = trimmed(text);
    if (quoted) *out++ = '"';
    std::memcpy(out, text.data(), text.size());
    out += text.size();
    if (quoted) *out++ = '"';
    return out;
}

}  // namespace

char* cell_put(const cellwriter& cell, const UByte* row, const celloptions& o, char* out) {
    const UByte* p = row + cell.offset;
    if (cell.string) return puttext(out, fieldtext(reinterpret_cast<const char*>(p), cell.type), o.quote);
    Double value = readcell(p, cell.type);
    if (value == missing) return out;
    const char* found = cell.label.exists ? cell.label.find(value) : nullptr;
    return found ? puttext(out, found, o.quote) : out + fmttrimmed(cell.format, value, out);
}

void cell_append(const cellwriter& cell, Int4 obs, const celloptions& o, std::string& out) {
    char text[cellroom];
    out.append(text, cell_put(cell, rowptr(obs), o, text));
}

namespace {

struct outsheetoptions { celloptions cells; boolean names, comma, replace; };

void writenames(bytewriter& w, char separator) {
    std::string line;
    for (Int4 i = 0; i < vl_n; i++) line += (i ? std::string(1, separator) : "") + varlist[vl_vr[i] - 1];
    writer_put(w, line + "\n");
}

// Each cell goes into the writer's buffer where it will stand.
void writerow(bytewriter& w, const std::vector<cellwriter>& cells, const celloptions& o, const UByte* row,
              char separator) {
    boolean first = true;
    for (const cellwriter& cell : cells) {
        char* out = writer_room(w, cellroom + 1);
        *out = separator;
        w.len = std::size_t(cell_put(cell, row, o, first ? out : out + 1) - w.buf);
        first = false;
    }
    *writer_room(w, 1) = '\n';
    w.len++;
}

Int4 writerows(bytewriter& w, const outsheetoptions& o) {
    std::vector<cellwriter> cells;
    cells_start(cells, vl_vr, vl_n, o.cells);
    char separator = o.comma ? ',' : '\t';
    if (o.names) writenames(w, separator);
    for (Int4 obs = firstobs; obs <= lastobs; obs++) {
        if (tick()) return 1;
        if (ifgiven && !exp_iftest(obs)) continue;
        writerow(w, cells, o.cells, rowptr(obs), separator);
        if (w.failed) return 699;
    }
    return writer_flush(w) ? 0 : 699;
}

}  // namespace

// outsheet [varlist] using filename [if] [in] [, comma quote noquote names nonames label nolabel replace]
Int4 cmd_outsheet() {
    p_using = 1;
    if (Int4 rc = stdparse()) return rc;
    outsheetoptions o{};
    o.cells.label = getopt_noflag("label", 1, true);
    o.cells.quote = getopt_noflag("quote", 1, true);
    o.names = getopt_noflag("names", 1, true);
    o.comma = getopt_flag("comma", 1);
    o.replace = getopt_flag("replace", 7);
    if (Int4 rc = getopt_done()) return rc;
    char path[pathsize];
    addsuffix(path, usingname, ".out");
    Int4 handle = webopen(path, web_write | web_binary | (o.replace ? web_replace : 0));
    if (handle < 0) return -handle;
    saved dp(dpcomma, UByte(0));
    static bytewriter w;
    writer_start(w, handle);
    Int4 rc = writerows(w, o);
    if (webclose(handle) && !rc) rc = 699;
    if (!rc) return 0;
    fileremove(path);
    return rc == 1 ? 1 : error(rc);
}

}  // namespace velmo
