// outsheet: the dataset as delimited text.
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
        cellwriter cell{vars[i], isstring(vars[i]), fmt[vars[i] - 1], {}};
        if (o.label && !cell.string && lbl[vars[i] - 1][0]) vl_load(lbl[vars[i] - 1], cell.label);
        cells.push_back(cell);
    }
}

void cell_append(const cellwriter& cell, Int4 obs, const celloptions& o, std::string& out) {
    std::string_view text;
    boolean quoted = o.quote;
    if (cell.string) {
        text = strcell(cell.var, obs);
    } else {
        Double value = getobs(cell.var, obs);
        if (value == missing) return;
        const char* found = cell.label.exists ? cell.label.find(value) : nullptr;
        if (found) {
            text = found;
        } else {
            text = {dbuf, std::size_t(fmtnum(cell.format, value))};
            quoted = false;
        }
    }
    if (!quoted) {
        out += trimmed(text);
        return;
    }
    out += '"';
    out += text;
    out += '"';
}

namespace {

struct outsheetoptions { celloptions cells; boolean names, comma, replace; };

Int4 writerows(bytewriter& w, const outsheetoptions& o) {
    std::vector<cellwriter> cells;
    cells_start(cells, vl_vr, vl_n, o.cells);
    char separator = o.comma ? ',' : '\t';
    std::string line;
    if (o.names) {
        for (Int4 i = 0; i < vl_n; i++) line += (i ? std::string(1, separator) : "") + varlist[vl_vr[i] - 1];
        writer_put(w, line + "\n");
    }
    for (Int4 obs = firstobs; obs <= lastobs; obs++) {
        if (tick()) return 1;
        if (ifgiven && !exp_iftest(obs)) continue;
        line.clear();
        for (Int4 i = 0; i < vl_n; i++) {
            if (i) line += separator;
            cell_append(cells[std::size_t(i)], obs, o.cells, line);
        }
        line += '\n';
        writer_put(w, line);
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
