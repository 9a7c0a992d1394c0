// insheet: delimited text becomes the dataset. One pass finds the delimiter in the first lines, one counts rows and
// columns and finds the types, one stores. Nothing in memory changes before the second pass has ended well. A field is
// looked at where it lies in the reader's buffer, sixteen bytes at a time; only fields with quotes, and those at either
// end of the buffer, are copied.
#include <algorithm>
#include <cmath>
#include <cstring>
#include <string>
#include <vector>
#include "base/platform.h"
#include "base/poll.h"
#include "base/saved.h"
#include "base/text.h"
#include "commands/files/textnumber.h"
#include "commands/files/textrows.h"
#include "core/room.h"
#include "core/webfile.h"
#include "data/cells.h"
#include "data/labels.h"
#include "data/run.h"
#include "data/structure.h"
#include "language/options.h"
#include "language/varlist.h"
#include "output/errors.h"
#include "output/print.h"

namespace velmo {

namespace {

// ---- The field reader.

enum fieldend : Int4 { field_delim, field_line, field_eof, field_error };
enum byteclass : UByte { byte_text, byte_delim, byte_newline, byte_return, byte_quote };

// What may be read ahead of a field and behind it, so that sixteen bytes can always be taken at once.
constexpr Int4 margin = numbermargin;

constexpr char endmark = 26;     // at the end of a file, some systems' mark of the end

struct fieldreader {
    bytereader bytes;
    UByte kind[256];
    char delimiter;
    boolean atlinestart;     // behind a line end: blanks and empty lines are passed over
    boolean quoted;
    Int4 line;               // of the file, from 1
    std::string_view text;   // the field, with its margins; valid until the next one
    Int4 copied;
    char copy[margin + maxstrtype + margin];     // a field that could not stay in the buffer, behind a margin
};
fieldreader fields;

void startfields(fieldreader& f, Int4 handle, char delimiter) {
    fileseek(handle, 0, 0);
    reader_start(f.bytes, handle);
    reader_skipmark(f.bytes);
    std::memset(f.kind, byte_text, sizeof f.kind);
    f.kind[UByte('\n')] = byte_newline;
    f.kind[UByte('\r')] = byte_return;
    f.kind[UByte('"')] = byte_quote;
    if (delimiter) f.kind[UByte(delimiter)] = byte_delim;
    f.delimiter = delimiter ? delimiter : '\n';
    f.atlinestart = false;
    f.line = 1;
}

void keep(fieldreader& f, char c) {
    if (f.copied < maxstrtype) f.copy[margin + f.copied++] = c;
}

void keepall(fieldreader& f, std::string_view text) {
    f.copied = 0;
    for (char c : text.substr(0, maxstrtype)) keep(f, c);
    f.text = {f.copy + margin, std::size_t(f.copied)};
}

// A line end has been read: LF, or CR with an LF that may follow.
void lineended(fieldreader& f, boolean wasreturn) {
    if (wasreturn) {
        Int4 next = reader_next(f.bytes);
        if (next < read_eof && next != '\n') f.bytes.pos--;
    }
    f.line++;
    f.atlinestart = true;
}

void skiplinestart(fieldreader& f) {
    f.atlinestart = false;
    while (true) {
        Int4 c = reader_next(f.bytes);
        if (c == '\n') f.line++;
        if (c == ' ' || c == '\n' || c == '\r') continue;
        if (c < read_eof) f.bytes.pos--;
        return;
    }
}

// The rest of a field byte by byte, behind what has been copied: quotes, and buffers' ends.
fieldend slowfield(fieldreader& f) {
    boolean inside = false;
    fieldend end = field_eof;
    while (true) {
        Int4 c = reader_next(f.bytes);
        if (c >= read_eof) {
            end = c == read_error ? field_error : field_eof;
            break;
        }
        UByte kind = f.kind[c];
        if (kind == byte_quote) {
            if (!inside) f.copied = 0;
            inside = !inside;
            f.quoted = true;
        } else if (inside) {
            if (kind == byte_newline || kind == byte_return) {
                lineended(f, kind == byte_return);
                f.atlinestart = false;
                c = ' ';
            }
            keep(f, char(c));
        } else if (kind == byte_delim) {
            end = field_delim;
            break;
        } else if (kind == byte_newline || kind == byte_return) {
            lineended(f, kind == byte_return);
            end = field_line;
            break;
        } else {
            keep(f, char(c));
        }
    }
    while (end == field_eof && !f.quoted && f.copied && f.copy[margin + f.copied - 1] == endmark) f.copied--;
    f.text = {f.copy + margin, std::size_t(f.copied)};
    return end;
}

// Bytes from p to the next that is no text, or `left` when there is none.
Int4 textrun(const fieldreader& f, const char* p, Int4 left) {
    for (Int4 n = 0; n < left; n += 16) {
        UInt4 ends = bytes::anyof(p + n, f.delimiter, '\n', '\r', '"');
        if (ends) return std::min(n + std::countr_zero(ends), left);
    }
    return left;
}

// Behind a field in the buffer stands a byte of the kind given: what ended the field.
fieldend pastend(fieldreader& f, UByte kind) {
    f.bytes.pos++;
    if (kind == byte_delim) return field_delim;
    if (kind == byte_newline) {
        f.line++;
        f.atlinestart = true;
    } else {
        if (f.bytes.pos == f.bytes.len) keepall(f, f.text);       // the look ahead will take a new buffer
        lineended(f, true);
    }
    return field_line;
}

// Any field.
fieldend anyfield(fieldreader& f) {
    if (f.atlinestart) skiplinestart(f);
    const char* p = reinterpret_cast<const char*>(f.bytes.buf) + f.bytes.pos;
    Int4 left = f.bytes.len - f.bytes.pos, n = textrun(f, p, left);
    f.quoted = false;
    f.text = {p, std::size_t(std::min<Int4>(n, maxstrtype))};
    fieldend end;
    if (n < left && f.bytes.pos >= margin && p[n] != '"') {
        f.bytes.pos += n;
        end = pastend(f, f.kind[UByte(p[n])]);
    } else {
        keepall(f, f.text);
        f.bytes.pos += n;
        end = slowfield(f);
    }
    if (!f.quoted) f.text = trimmed(f.text);
    return end;
}

// The next field into f.text: trimmed unless quoted, at most 244 bytes. Here the usual one, which ends within sixteen
// bytes by the delimiter, or by LF with text behind it, and has no blank at either end.
inline fieldend nextfield(fieldreader& f) {
    const UByte* p = f.bytes.buf + f.bytes.pos;
    const char* text = reinterpret_cast<const char*>(p);
    Int4 n = std::countr_zero(bytes::anyof(text, f.delimiter, '\n', '\r', '"') | 0x10000);
    boolean inside = f.bytes.pos >= margin && f.bytes.pos < f.bytes.len - margin;
    if (!inside || f.atlinestart || n == 16 || p[0] == ' ' || p[n - 1] == ' ') return anyfield(f);
    boolean line = p[n] == '\n';
    if (p[n] != UByte(f.delimiter) && !(line && p[n + 1] > ' ')) return anyfield(f);
    f.quoted = false;
    f.text = {text, std::size_t(n)};
    f.line += line;
    f.bytes.pos += n + 1;
    return line ? field_line : field_delim;
}

// ---- The delimiter.

struct linecounts { Int4 commas, tabs; boolean last, empty; };

linecounts countline(fieldreader& f) {
    linecounts n{0, 0, false, true};
    for (boolean quoted = false;;) {
        Int4 c = reader_next(f.bytes);
        if (c >= read_eof) {
            n.last = true;
            return n;
        }
        if (c == endmark) continue;
        n.empty = false;
        if (c == '"') quoted = !quoted;
        if (quoted) continue;
        if (c == ',') n.commas++;
        if (c == '\t') n.tabs++;
        if (c == '\r' || c == '\n') {
            lineended(f, c == '\r');
            skiplinestart(f);
            return n;
        }
    }
}

Int4 guessdelimiter(Int4 handle, char& delimiter) {
    fieldreader& f = fields;
    startfields(f, handle, 0);
    linecounts first = countline(f);
    delimiter = first.commas && !first.tabs ? ',' : '\t';
    if (!first.commas || !first.tabs) return 0;
    while (!first.last) {
        linecounts next = countline(f);
        if (next.last && next.empty) break;
        boolean tabschanged = next.tabs != first.tabs, commaschanged = next.commas != first.commas;
        if (commaschanged && tabschanged) return error(615);
        if (commaschanged || tabschanged) {
            delimiter = commaschanged ? '\t' : ',';
            return 0;
        }
        if (next.last) break;
        if (tick()) return 1;
    }
    delimiter = ',';
    return 0;
}

// ---- Rows, columns and types.

// What is known of a column: the numeric type met (0 none), whether a text was met, the longest cell.
struct columnkind { UByte number = 0; UByte text = 0; UByte longest = 0; };

struct sheet {
    char delimiter;
    boolean doubles;                     // the option
    Int4 rows = 0;                       // lines with fields, the first included
    std::vector<columnkind> rest;        // columns without the first line
    std::vector<std::string> firstline;
    std::vector<columnkind> firstkinds;
};

UByte numbertype(Double v, boolean doubles) {
    Int4 e = exponent(v);
    if (v != std::floor(v)) return doubles || e >= 127 ? typedouble : typefloat;
    if (e < 7 && v != 127) return typebyte;
    if (e < 15 && v != 32767) return typeint;
    return e < 31 && v != 2147483647 ? typelong : typedouble;
}

// The largest type that a plain decimal of so many digits can need. A whole number below 10^2, 10^4 and 10^9 fits byte,
// int and long; one with a point may be whole all the same, or not.
UByte typebound(plaindecimal d, boolean doubles) {
    constexpr UByte bound[10] = {typedouble, typebyte, typebyte, typeint,  typeint,
                                 typelong,   typelong, typelong, typelong, typelong};
    UByte whole = d.digits < 10 ? bound[d.digits] : typedouble;
    return d.behind == 16 ? whole : doubles || whole == typedouble ? typedouble : typefloat;
}

// Most cells can't change what is known of their column, and their shape tells it: only others are read as numbers.
inline void notecell(columnkind& k, std::string_view text, boolean doubles) {
    if (text.size() > k.longest) k.longest = UByte(text.size());
    if (k.text || text.empty()) return;
    if (text.size() <= 16) {
        plaindecimal d = plaindecimalof(text.data(), Int4(text.size()));
        if (d.digits && typebound(d, doubles) <= k.number) return;
    }
    if (text.size() == 1 && text[0] == '.') return;
    Double v;
    if (!readnumber(text, v)) {
        k.text = 1;
        return;
    }
    UByte type = numbertype(v, doubles);
    if (type > k.number) k.number = type;
}

void addkind(columnkind& to, const columnkind& k) {
    if (k.number > to.number) to.number = k.number;
    to.text |= k.text;
    if (k.longest > to.longest) to.longest = k.longest;
}

Int4 addcolumn(sheet& s) {
    if (s.rest.size() >= std::size_t(maxvar - 1)) return error(103);
    s.rest.emplace_back();
    s.firstkinds.emplace_back();
    return 0;
}

Int4 scanline(fieldreader& f, sheet& s, boolean first, boolean& more) {
    std::vector<columnkind>& columns = first ? s.firstkinds : s.rest;
    columnkind* kinds = columns.data();
    std::size_t column = 0, known = columns.size();
    fieldend end;
    do {
        end = nextfield(f);
        if (end == field_error) return readfailure();
        if (end == field_eof && column == 0 && f.text.empty() && !f.quoted) {
            more = false;
            return 0;
        }
        if (column == known) {
            if (Int4 rc = addcolumn(s)) return rc;
            kinds = columns.data();
            known++;
        }
        notecell(kinds[column], f.text, s.doubles);
        if (first) s.firstline.emplace_back(f.text);
        column++;
    } while (end == field_delim);
    s.rows++;
    more = end == field_line;
    return 0;
}

Int4 scansheet(Int4 handle, sheet& s) {
    startfields(fields, handle, s.delimiter);
    for (boolean more = true; more;) {
        if (Int4 rc = scanline(fields, s, s.rows == 0, more)) return rc;
        if (s.rows == 2147483646) return error(901);
        if (tick()) return 1;
    }
    return 0;
}

// The first line is names when it alone makes some column a string.
boolean firstisnames(const sheet& s) {
    for (std::size_t i = 0; i < s.rest.size(); i++)
        if (!s.rest[i].text && s.firstkinds[i].text) return true;
    return false;
}

UByte storagetype(const columnkind& k) {
    if (k.text) return k.longest ? k.longest : UByte(1);
    return k.number ? k.number : typebyte;
}

// ---- Names.

std::string cleanedname(std::string text) {
    if (version < 700) text = text.substr(0, 8);
    std::size_t start = text.find_first_not_of(" 0123456789");
    std::string name;
    for (std::size_t i = std::min(start, text.size()); i < text.size() && name.size() < namelen; i++)
        if (isnamechar(text[i])) name += lowerchar(text[i]);
    return name;
}

boolean freename(const std::string& name) {
    if (!validname(name) || findvar(name)) return false;
    saved quiet(quietlevel, shows_nothing);
    return checknewname(name) == 0;
}

std::string settledname(const std::string& wanted, Int4 column) {
    if (freename(wanted)) return wanted;
    std::string name = "v" + std::to_string(column);
    for (Int4 i = 1; !freename(name); i++) name = "v" + std::to_string(i);
    return name;
}

Int4 makevariables(const sheet& s, const std::vector<std::string>& names, boolean header) {
    for (std::size_t i = 0; i < s.rest.size(); i++) {
        columnkind kind = s.rest[i];
        if (!header) addkind(kind, s.firstkinds[i]);
        boolean intext = header && i < s.firstline.size();
        std::string text = intext ? s.firstline[i] : "";
        std::string name = i < names.size() ? names[i] : settledname(cleanedname(text), Int4(i) + 1);
        if (Int4 rc = addvar(name, storagetype(kind))) return rc;
        if (names.empty() && !text.empty() && text != name)
            if (Int4 rc = putvarlabel(name, text)) return rc;
    }
    visnvar = nvar;
    return 0;
}

// ---- Storing.

inline Double cellvalue(std::string_view text) {
    Double v;
    if (plainnumber(text, v)) return v;
    return readnumber(text, v) ? datavalue(v) : missing;
}

inline void storecell(UByte* p, UByte type, std::string_view text) {
    if (isstringtype(type)) {
        std::size_t n = std::min<std::size_t>(text.size(), type);
        std::memcpy(p, text.data(), n);
        std::memset(p + n, 0, type - n);
        return;
    }
    writecell(p, type, cellvalue(text));
}

Int4 storerow(fieldreader& f, boolean& more) {
    UByte* row = rowptr(nobs + 1);
    Int4 column = 0;
    fieldend end;
    do {
        end = nextfield(f);
        if (end == field_error) return readfailure();
        if (end == field_eof && column == 0 && f.text.empty() && !f.quoted) {
            more = false;
            return 0;
        }
        if (column < nvar) storecell(row + mapi[column], typ[column], f.text);
        column++;
    } while (end == field_delim);
    for (; column < nvar; column++) storecell(row + mapi[column], typ[column], "");
    nobs++;
    more = end == field_line;
    return 0;
}

Int4 skipline(fieldreader& f) {
    fieldend end;
    do end = nextfield(f);
    while (end == field_delim);
    return end == field_line;
}

// Stores all rows. A break keeps those that are done.
Int4 storesheet(Int4 handle, const sheet& s, boolean header) {
    Int4 rows = s.rows - (header ? 1 : 0);
    if (rows + 1 > maxobs)
        if (Int4 rc = obsroom(rows + 1 - maxobs)) return error(rc);
    touchptrs(rows + 1);
    startfields(fields, handle, s.delimiter);
    boolean more = !header || skipline(fields);
    while (more && nobs < rows) {
        if (Int4 rc = storerow(fields, more)) return rc;
        if (tick()) return 1;
    }
    return 0;
}

// ---- The command.

struct insheetoptions { boolean tab, comma, clear, names, nonames, doubles; char delimiter; };

Int4 readoptions(insheetoptions& o) {
    std::string delimiter;
    boolean given;
    o.tab = getopt_flag("tab", 1);
    o.comma = getopt_flag("comma", 1);
    if (Int4 rc = getopt_str("delimiter", 1, delimiter, given)) return rc;
    o.clear = getopt_flag("clear", 5);
    o.nonames = getopt_flag("nonames", 3);
    o.names = getopt_flag("names", 1);
    o.doubles = getopt_flag("double", 1);
    if (Int4 rc = getopt_done()) return rc;
    if (o.tab && o.comma) return errorf(198, "both tab and comma not allowed\n");
    if (o.tab && given) return errorf(198, "both tab and delimiter() not allowed\n");
    if (o.comma && given) return errorf(198, "both comma and delimiter() not allowed\n");
    if (given && (delimiter.size() != 1 || delimiter[0] == '"' || delimiter[0] == '\n' || delimiter[0] == '\r'))
        return errorf(198, "delimiter() must be one character\n");
    o.delimiter = given ? delimiter[0] : o.tab ? '\t' : o.comma ? ',' : char(0);
    return o.names && o.nonames ? error(198) : 0;
}

// Names ahead of `using`. Types may not stand among them.
Int4 readnames(std::vector<std::string>& names) {
    while (std::string_view(nexttoken()) != "using") {
        std::string name = tokbuf;
        if (name.empty() || name == ",") return required("using");
        if (typecode(name)) return errorf(198, "may not specify variable types\n");
        if (!validname(name)) return badname(name);
        if (tokpeek() != '-') {
            names.push_back(name);
            continue;
        }
        nexttoken();
        if (Int4 rc = seriesnames(name, nexttoken(), names)) return rc;
    }
    return 0;
}

Int4 checknames(const std::vector<std::string>& names, const sheet& s) {
    if (names.empty()) return 0;
    if (names.size() < s.rest.size()) return error(102);
    if (names.size() > s.rest.size()) return error(103);
    std::vector<std::string> sorted = names;
    std::sort(sorted.begin(), sorted.end());
    for (std::size_t i = 1; i < sorted.size(); i++)
        if (sorted[i] == sorted[i - 1]) return nameerror(name_defined, sorted[i]);
    return 0;
}

Int4 fillsheet(Int4 handle, const sheet& s, const std::vector<std::string>& names, boolean header) {
    replacedata();
    Int4 rc = makevariables(s, names, header);
    tightenrows();
    if (!rc) rc = storesheet(handle, s, header);
    datachanged = 1;
    if (rc == 691) errorf(rc, "error in line %d of file\n", fields.line);
    if (rc > 1 || nobs == 0) {
        if (rc || s.rows == 0) cleardata(true);
        if (rc) return rc;
    }
    notef("(%d var%s, %d obs)\n", nvar, plural(nvar), nobs);
    return rc;
}

Int4 readsheet(Int4 handle, const insheetoptions& o, const std::vector<std::string>& names) {
    sheet s;
    s.doubles = o.doubles;
    s.delimiter = o.delimiter;
    if (!s.delimiter)
        if (Int4 rc = guessdelimiter(handle, s.delimiter)) return rc;
    if (Int4 rc = scansheet(handle, s)) return rc;
    if (Int4 rc = checknames(names, s)) return rc;
    boolean header = o.names || (!o.nonames && firstisnames(s));
    if (header && !o.names && !names.empty()) notef("(note: variable names in file ignored)\n");
    return fillsheet(handle, s, names, header && s.rows > 0);
}

}  // namespace

// insheet [varlist] using filename [, tab comma delimiter("c") clear names nonames double]
Int4 cmd_insheet() {
    std::vector<std::string> names;
    char file[tokensize], path[pathsize];
    if (Int4 rc = readnames(names)) return rc;
    if (Int4 rc = filetoken(file)) return rc;
    addsuffix(path, file, ".raw");
    if (Int4 rc = parseoptions()) return rc;
    insheetoptions o{};
    if (Int4 rc = readoptions(o)) return rc;
    if ((nvar || nobs) && !o.clear) return error(18);
    Int4 handle = webopen(path, web_binary | web_textread);
    if (handle < 0) return -handle;
    onexit close([handle] { webclose(handle); });
    return readsheet(handle, o, names);
}

}  // namespace velmo
