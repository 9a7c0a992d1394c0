// outfile: the dataset as text in columns or with commas, with a dictionary of its own, or the strings run together.
#include <cstring>
#include "base/text.h"
#include "commands/files/celltext.h"
#include "expr/walk.h"
#include "language/options.h"
#include "language/stdparse.h"
#include "output/errors.h"

namespace velmo {

namespace {

struct outfileoptions { celloptions cells; boolean comma, wide, dictionary, replace, runtogether; };

constexpr Int4 longestline = 78;

// ---- Lines.

// The line in hand. Blanks are written only when something else follows, so that no line ends in them.
struct linewriter {
    bytewriter* w;
    Int4 cells;          // on the line
    Int4 columns;        // of the line, its blanks counted
    Int4 blanks;         // not yet written
};

void putblanks(linewriter& l, Int4 n) {
    while (n > 0) {
        Int4 chunk = n < 4096 ? n : 4096;
        std::memset(writer_room(*l.w, std::size_t(chunk)), ' ', std::size_t(chunk));
        l.w->len += std::size_t(chunk);
        n -= chunk;
    }
}

void puttext(linewriter& l, std::string_view text) {
    putblanks(l, l.blanks);
    l.blanks = 0;
    std::memcpy(writer_room(*l.w, text.size()), text.data(), text.size());
    l.w->len += text.size();
}

void endline(linewriter& l) {
    *writer_room(*l.w, 1) = '\n';
    l.w->len++;
    l.cells = l.columns = l.blanks = 0;
}

// The cell goes into the writer's buffer where it will stand; ahead of it a comma, or the line end before a cell that
// is too much for the line.
void commacell(linewriter& l, const cellwriter& cell, const UByte* row, const celloptions& o, boolean wide) {
    char* out = writer_room(*l.w, cellroom + 1);
    char* from = l.cells > 0 ? out + 1 : out;
    char* end = cell_put(cell, row, o, from);
    boolean ends = !wide && l.cells > 0 && l.columns + Int4(end - out) > longestline;
    if (l.cells > 0) *out = ends ? '\n' : ',';
    l.columns = ends ? Int4(end - from) : l.columns + Int4(end - out);
    l.cells++;
    l.w->len = std::size_t(end - l.w->buf);
}

// A cell right-aligned in `width`, two blanks behind it.
void columncell(linewriter& l, std::string_view text, Int4 width, boolean mayend) {
    Int4 ahead = width > Int4(text.size()) ? width - Int4(text.size()) : 0;
    Int4 n = ahead + Int4(text.size()) + 2;
    if (mayend && l.cells > 0 && l.columns + n > longestline) endline(l);
    std::string_view body = rtrimmed(text);
    if (body.empty()) {
        l.blanks += n;
    } else {
        l.blanks += ahead;
        puttext(l, body);
        l.blanks = Int4(text.size() - body.size()) + 2;
    }
    l.cells++;
    l.columns += n;
}

// ---- The dictionary.

std::string padded(std::string text, std::size_t n) {
    if (text.size() < n) text.resize(n, ' ');
    return text;
}

std::string dictionaryline(Int4 var) {
    char type[8];
    std::string name = varlist[var - 1], label = lbl[var - 1], text = getvarlabel(name);
    std::string line = "        " + padded(typename_of(typ[var - 1], type), 7) + padded(name, 8);
    line += padded(label.empty() ? "" : ":" + label, 10);
    if (!text.empty()) line += "`\"" + text + "\"'";
    return std::string(rtrimmed(line)) + "\n";
}

// Writes it, and marks the cells ahead of which a line of data ends.
void writedictionary(bytewriter& w, const std::vector<cellwriter>& cells, std::vector<UByte>& breaks) {
    writer_put(w, "dictionary {\n");
    Int4 columns = 0;
    for (std::size_t i = 0; i < cells.size(); i++) {
        Int4 n = cells[i].width + (cells[i].string ? 4 : 2);
        breaks[i] = i > 0 && columns + n > longestline;
        if (breaks[i]) writer_put(w, "_newline\n");
        columns = breaks[i] ? n : columns + n;
        writer_put(w, dictionaryline(cells[i].var));
    }
    writer_put(w, "}\n");
}

// ---- Observations.

struct writing {
    const outfileoptions& o;
    std::vector<cellwriter> cells;
    std::vector<UByte> breaks;       // by cell: a new line of the dictionary's data begins
    linewriter line;
};

void writerow(writing& s, const UByte* row) {
    char text[cellroom];
    boolean mayend = !s.o.wide && !s.o.dictionary;
    for (std::size_t i = 0; i < s.cells.size(); i++) {
        const cellwriter& cell = s.cells[i];
        if (s.o.comma) {
            commacell(s.line, cell, row, s.o.cells, s.o.wide);
            continue;
        }
        if (s.breaks[i]) endline(s.line);
        char* end = cell_putall(cell, row, s.o.cells, text);
        columncell(s.line, {text, std::size_t(end - text)}, cell_columns(cell, s.o.cells), mayend);
    }
    endline(s.line);
}

void writestrings(writing& s, const UByte* row) {
    for (const cellwriter& cell : s.cells)
        puttext(s.line, fieldtext(reinterpret_cast<const char*>(row + cell.offset), cell.type));
    endline(s.line);
}

Int4 writeobservations(bytewriter& w, const outfileoptions& o) {
    writing s{o, {}, std::vector<UByte>(std::size_t(vl_n)), {&w, 0, 0, 0}};
    cells_start(s.cells, vl_vr, vl_n, o.cells);
    if (o.dictionary) writedictionary(w, s.cells, s.breaks);
    return overobs([&](Int4 obs) {
        if (o.runtogether)
            writestrings(s, rowptr(obs));
        else
            writerow(s, rowptr(obs));
        return w.failed ? 699 : 0;
    });
}

// ---- The command.

// `runtogether` takes no other option than `replace`.
Int4 readoptions(outfileoptions& o) {
    o.replace = getopt_flag("replace", 7);
    o.runtogether = getopt_flag("runtogether", 3);
    if (o.runtogether) return getopt_done();
    o.cells.label = getopt_noflag("label", 1, true);
    o.cells.quote = getopt_noflag("quote", 1, true);
    o.dictionary = getopt_flag("dictionary", 1);
    o.comma = getopt_flag("comma", 1);
    o.wide = getopt_flag("wide", 1);
    if (Int4 rc = getopt_done()) return rc;
    if (!o.dictionary) return 0;
    o.cells.quote = true;
    if (o.comma) return errorf(198, "both dictionary and comma not allowed\n");
    return o.wide ? errorf(198, "both dictionary and wide not allowed\n") : 0;
}

}  // namespace

// outfile [varlist] using filename [if] [in] [, dictionary comma wide quote noquote label nolabel replace runtogether]
Int4 cmd_outfile() {
    if (nvar == 0) return error(111);
    if (Int4 rc = stdparse({.file = must})) return rc;
    outfileoptions o{};
    if (Int4 rc = readoptions(o)) return rc;
    for (Int4 i = 0; i < vl_n && o.runtogether; i++)
        if (!isstring(vl_vr[i])) return error(109);
    return writetext(o.dictionary ? ".dct" : ".raw", o.replace,
                     [&](bytewriter& w) { return writeobservations(w, o); });
}

}  // namespace velmo
