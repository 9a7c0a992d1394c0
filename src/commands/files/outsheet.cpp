// outsheet: the dataset as delimited text.
#include "commands/files/celltext.h"
#include "core/webfile.h"
#include "data/dataset.h"
#include "expr/walk.h"
#include "language/options.h"
#include "language/stdparse.h"
#include "output/errors.h"

namespace velmo {

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
    return overobs([&](Int4 obs) {
        writerow(w, cells, o.cells, rowptr(obs), separator);
        return w.failed ? 699 : 0;
    });
}

}  // namespace

// outsheet [varlist] using filename [if] [in] [, comma quote noquote names nonames label nolabel replace]
Int4 cmd_outsheet() {
    if (nvar == 0) return error(111);
    if (Int4 rc = stdparse({.file = must})) return rc;
    outsheetoptions o{};
    o.cells.label = getopt_noflag("label", 1, true);
    o.cells.quote = getopt_noflag("quote", 1, true);
    o.names = getopt_noflag("names", 1, true);
    o.comma = getopt_flag("comma", 1);
    o.replace = getopt_flag("replace", 7);
    if (Int4 rc = getopt_done()) return rc;
    return writetext(".out", o.replace, [&](bytewriter& w) { return writerows(w, o); });
}

}  // namespace velmo
