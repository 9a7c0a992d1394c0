// file: named handles of text and binary files, for programs that read and write formats of their own.
#include <algorithm>
#include <cmath>
#include <cstring>
#include <string>
#include <vector>
#include "base/platform.h"
#include "base/poll.h"
#include "base/text.h"
#include "commands/files/filefields.h"
#include "core/adopath.h"
#include "core/handles.h"
#include "core/keywords.h"
#include "core/macros.h"
#include "core/webfile.h"
#include "data/run.h"
#include "expr/value.h"
#include "language/options.h"
#include "language/stdparse.h"
#include "output/errors.h"
#include "output/formats.h"
#include "output/print.h"
#include "stored/families.h"
#include "stored/scalars.h"

namespace velmo {

namespace {

Int4 iocode(Int4 rc) { return rc == 691 ? error(691) : rc; }
Int4 nothingbehind() { return nexttoken()[0] ? error(198) : 0; }

// A copy of the record of the handle that the next token names. It is stored again at the end of the scope.
struct userecord {
    std::string name;
    filehandle h;
    boolean found = false;
    userecord() : h{} {}
    ~userecord() {
        if (found) handle_store(name, h);
    }
    userecord(const userecord&) = delete;
    userecord& operator=(const userecord&) = delete;
};

Int4 nohandle(const std::string& name) { return errorf(111, "file handle %s not found\n", name.c_str()); }

Int4 takehandle(userecord& use) {
    use.name = nexttoken();
    use.found = handle_find(use.name, use.h);
    return use.found ? 0 : nohandle(use.name);
}

// ---- open

struct openoptions { boolean read, write, text, binary, replace, append, all; };

Int4 readoptions(openoptions& o) {
    if (Int4 rc = stdparse({.varlist = never, .ifexp = never, .in = never, .file = must, .by = never})) return rc;
    o.read = getopt_flag("read", 1);
    o.write = getopt_flag("write", 1);
    o.text = getopt_flag("text", 1);
    o.binary = getopt_flag("binary", 1);
    o.replace = o.write && !o.read && getopt_flag("replace", 7);
    o.append = o.write && !o.read && getopt_flag("append", 6);
    o.all = o.write && getopt_flag("all", 3);
    if (Int4 rc = getopt_done()) return rc;
    if (!o.read && !o.write) return errorf(198, "option -read- and/or -write- required\n");
    return o.text && o.binary ? error(198) : 0;
}

// A file that is there must let itself be read before it is opened for both; any other is made.
Int4 openboth(const std::string& name, Int4 flags) {
    Int4 fd = webopen(name, web_textread | web_quiet);
    if (fd < 0) return webopen(name, flags);
    webclose(fd);
    fd = webopen(name, flags | web_quiet);
    return fd >= 0 ? fd : -errorf(603, "file %s could not be opened for read/write\n", name.c_str());
}

Int4 openby(const std::string& name, const openoptions& o) {
    Int4 flags = (o.read ? web_textread : 0) | (o.write ? web_write : 0) | (o.all ? web_public : 0) |
                 (o.replace ? web_replace : 0) | (o.append ? web_append : 0);
    return o.read && o.write ? openboth(name, flags) : webopen(name, flags);
}

Int4 openhandle() {
    std::string name = nexttoken();
    filehandle h{};
    openoptions o;
    if (!validname(name) || name == "_all")
        return errorf(198, "\"%s\" invalid file-handle name\n", isquoted() ? tokcontent() : name.c_str());
    if (handle_find(name, h)) return errorf(110, "file handle %s already exists\n", name.c_str());
    if (Int4 rc = readoptions(o)) return rc;
    h.mode = UByte((o.read ? handle_read : 0) | (o.write ? handle_write : 0));
    h.binary = o.binary;
    h.border = order_lohi;
    h.append = o.append;
    h.level = macrolevel;
    if (Int4 rc = handle_store(name, h)) return rc;
    h.fd = openby(usingname, o);
    if (h.fd >= 0) return handle_store(name, h);
    handle_forget(name);
    return -h.fd;
}

Int4 closehandle() {
    std::string name = nexttoken();
    filehandle h;
    if (Int4 rc = nothingbehind()) return rc;
    if (name == "_all") return handles_closelevel(0);
    return handle_find(name, h) ? iocode(handle_close(name)) : nohandle(name);
}

// ---- read

void readresults(const char* status, boolean eof) {
    rclear();
    if (status) rmacro("status", status);
    rstore("eof", eof);
}

// A text without room for zero bytes: it ends at the first.
Int4 setlocal(const std::string& name, const std::string& text) {
    return macroset(macroname(name, true), text.c_str());
}

// Takes a line and tells how it ended; null after a failure.
const char* textline(filehandle& h, std::string& line) {
    while (true) {
        Int4 c = handle_byte(h);
        if (c == handle_failed) return nullptr;
        if (c == handle_eof) return line.empty() ? "eof" : "none";
        if (c == '\n') return "unix";
        if (c == '\r') break;
        if (line.size() == std::size_t(macrolen - 1)) {
            handle_unread(h);
            return "split";
        }
        line += char(c);
    }
    Int4 next = handle_byte(h);
    if (next == handle_failed) return nullptr;
    if (next == '\n') return "win";
    if (next != handle_eof) handle_unread(h);
    return "mac";
}

Int4 readtext(filehandle& h) {
    std::string name = nexttoken(), line;
    if (name.empty()) return error(198);
    if (!validname("_" + name)) return badname(name);
    if (Int4 rc = nothingbehind()) return rc;
    const char* status = textline(h, line);
    if (!status) return readfailure();
    readresults(status, !std::strcmp(status, "eof"));
    return setlocal(name, line);
}

struct fieldto { binaryfield field; std::string name; };

std::string_view blankword(std::string_view& text) {
    text = ltrimmed(text);
    std::string_view word = text.substr(0, text.find(' '));
    text.remove_prefix(word.size());
    return word;
}

// All that is asked for, before anything is read.
Int4 fieldlist(std::vector<fieldto>& fields) {
    std::string_view text = tokrest();
    for (std::string_view word = blankword(text); !word.empty(); word = blankword(text)) {
        fieldto f;
        if (word[0] != '%') return error(198);
        if (Int4 rc = field_parse(word, f.field)) return rc;
        f.name = blankword(text);
        if (f.name.empty()) return error(198);
        if (!validname(f.field.kind == 's' ? "_" + f.name : f.name)) return badname(f.name);
        fields.push_back(f);
    }
    return fields.empty() ? error(198) : 0;
}

// A string that the end of the file cuts short has what was there; a number is missing.
Int4 readfield(filehandle& h, const fieldto& f, boolean& eof) {
    std::string bytes(std::size_t(f.field.size), 0);
    Int4 got;
    if (handle_get(h, bytes.data(), f.field.size, got)) return readfailure();
    boolean whole = got == f.field.size;
    eof = eof || !whole;
    if (f.field.kind == 's') return setlocal(f.name, bytes);
    if (h.border != order_lohi) std::reverse(bytes.begin(), bytes.end());
    return scalarset(f.name, whole ? field_decode(f.field, reinterpret_cast<UByte*>(bytes.data())) : missing);
}

Int4 readbinary(filehandle& h) {
    std::vector<fieldto> fields;
    boolean eof = false;
    if (Int4 rc = fieldlist(fields)) return rc;
    for (const fieldto& f : fields)
        if (Int4 rc = readfield(h, f, eof)) return rc;
    readresults(nullptr, eof);
    return 0;
}

Int4 readhandle() {
    userecord use;
    if (Int4 rc = takehandle(use)) return rc;
    if (use.h.mode == handle_write)
        return errorf(198, "may not read from write-only file handle %s\n", use.name.c_str());
    if (use.h.err) return error(691);
    return use.h.binary ? readbinary(use.h) : readtext(use.h);
}

// ---- write

// What a list of directives has set for its next item.
constexpr std::int64_t mostdup = 2147483647;
struct writing {
    filehandle& h;
    std::int64_t dup;              // at most mostdup squared
    std::string format;            // empty: none
    binaryfield field;             // what it is in a binary file
};

Int4 put(writing& w, std::string_view text) {
    std::int64_t n = w.dup;
    w.dup = 1;
    for (; n > 0; n--) {
        if (handle_put(w.h, text)) return error(691);
        w.h.txt_col = Int4(std::min(std::int64_t(w.h.txt_col) + std::int64_t(text.size()), mostdup));
        if (tick()) return 1;
    }
    return 0;
}

// The value of the text between begin and end.
Int4 valuebetween(char* begin, char* end, Int4 mode, textvalue& value) {
    return exp_valueof({begin, std::size_t(end - begin)}, mode, value);
}

// (#): a number below 2147483647.
Int4 countargument(Double& value) {
    char *begin, *end;
    if (!parenthesized(&begin, &end)) return error(198);
    textvalue given;
    if (Int4 rc = valuebetween(begin, end, mode_num, given)) return rc;
    value = std::trunc(given.number);
    return value < 2147483647.0 ? 0 : error(198);
}

// A `%` word: up to a blank or to what it is for.
void takeformat(writing& w) {
    std::size_t n = std::strcspn(tokpos, " (\"`");
    w.format.assign(tokpos, n);
    settokpos(tokpos + n);
}

// ---- Text

enum directive { w_dup, w_char, w_newline, w_tab, w_skip, w_column, w_page };
constexpr keyword directives[] = {
    {"_dup", 4, w_dup},   {"_char", 5, w_char},     {"_newline", 2, w_newline}, {"_tab", 4, w_tab},
    {"_skip", 5, w_skip}, {"_column", 4, w_column}, {"_page", 5, w_page},
};

Int4 putmany(writing& w, Double count, std::string_view text) {
    w.dup = std::min(w.dup, mostdup) * (count > 0 ? std::int64_t(count) : 0);
    return put(w, text);
}

Int4 takedirective(writing& w) {
    Int4 word = lookup(directives, nexttoken());
    if (word < 0) return error(198);
    Double n = 1;
    boolean optional = word == w_newline || word == w_tab || word == w_page;
    if (!optional || tokpeek() == '(')
        if (Int4 rc = countargument(n)) return rc;
    char c = char(Int4(n) & 255);
    switch (word) {
    case w_dup:
        w.dup = std::min(w.dup, mostdup) * (n > 0 ? std::int64_t(n) : 0);
        return 0;
    case w_char: return n >= 0 && n <= 255 ? put(w, {&c, 1}) : error(198);
    case w_tab: return putmany(w, n, "\t");
    case w_skip: return putmany(w, n, " ");
    case w_column: w.dup = 1; return putmany(w, n - 1 - w.h.txt_col, " ");
    default: break;
    }
    if (Int4 rc = putmany(w, n, word == w_page ? "\f" : "\r\n")) return rc;
    if (n > 0) w.h.txt_col = 0;
    return 0;
}

// A number has the blanks ahead that its format gives, none by the default; a string is padded and never cut.
Int4 puttextvalue(writing& w, const textvalue& value) {
    std::string format;
    format.swap(w.format);
    if (value.isstring) {
        if (format.empty()) return put(w, value.text);
        fmtspec spec{};
        chkfmt(format, 13, &spec);
        std::string form = (spec.just < 0 ? "%-" : spec.just == 0 ? "%~" : "%") + std::to_string(spec.width) + "s";
        return put(w, std::string(dbuf, std::size_t(fmtstr(form.c_str(), value.text, false))));
    }
    boolean own = !format.empty() && chkfmt(format, 11) == 0;
    fmtread(own ? format.c_str() : defaultfmt, value.number);
    return put(w, std::string(own ? std::string_view(dbuf) : trimmed(dbuf)));
}

Int4 textitem(writing& w) {
    char *begin, *end;
    if (quotedtext(&begin, &end)) return put(w, {begin, std::size_t(end - begin)});
    if (*tokpos == '_') return takedirective(w);
    if (*tokpos == '%') {
        takeformat(w);
        return w.format.size() >= fmtsize || chkfmt(w.format, 13) ? error(120) : 0;
    }
    if (!parenthesized(&begin, &end)) return error(198);
    textvalue value;
    if (Int4 rc = valuebetween(begin, end, mode_any, value)) return rc;
    return puttextvalue(w, value);
}

// ---- Binary

Int4 putstringfield(writing& w, const binaryfield& field, std::string_view text) {
    std::string bytes(text.substr(0, std::size_t(field.size)));
    bytes.resize(std::size_t(field.size));
    return put(w, bytes);
}

Int4 putbinaryvalue(writing& w, const binaryfield& field, const textvalue& value) {
    if (value.isstring != (field.kind == 's')) return error(109);
    if (value.isstring) return putstringfield(w, field, value.text);
    UByte bytes[8];
    field_encode(field, value.number, bytes);
    if (w.h.border != order_lohi) std::reverse(bytes, bytes + field.size);
    return put(w, {reinterpret_cast<char*>(bytes), std::size_t(field.size)});
}

Int4 binaryitem(writing& w) {
    if (*tokpos == '_') return std::strncmp(tokpos, "_dup(", 5) ? error(198) : takedirective(w);
    if (*tokpos == '%') {
        takeformat(w);
        return field_parse(w.format, w.field);
    }
    if (w.format.empty()) return error(198);
    char *begin, *end;
    w.format.clear();
    if (quotedtext(&begin, &end))
        return w.field.kind == 's' ? putstringfield(w, w.field, {begin, std::size_t(end - begin)}) : error(198);
    if (!parenthesized(&begin, &end)) return error(198);
    textvalue value;
    if (Int4 rc = valuebetween(begin, end, mode_any, value)) return rc;
    return putbinaryvalue(w, w.field, value);
}

Int4 writehandle() {
    userecord use;
    if (Int4 rc = takehandle(use)) return rc;
    if (use.h.mode == handle_read)
        return errorf(198, "may not write to read-only file handle %s\n", use.name.c_str());
    if (use.h.err) return error(691);
    writing w{use.h, 1, "", {}};
    while (tokpeeknonblank()) {
        tokpos += std::strspn(tokpos, " ");
        if (Int4 rc = use.h.binary ? binaryitem(w) : textitem(w)) return rc;
    }
    return use.h.binary && !w.format.empty() ? error(198) : 0;
}

// ---- seek, set, query, debug

Int4 cannotseek(const userecord& use, Double place) {
    fmtnum("%12.0g", place);
    return errorf(691, "file handle %s:  cannot seek to %s\n", use.name.c_str(), dbuf);
}

// To a place that must be within the file; the handle stays where it was when it isn't.
Int4 seekplace(userecord& use, Int4 place) {
    if (Int4 rc = handle_flush(use.h)) return iocode(rc);
    Filepos here = handle_place(use.h), size = fileseek(use.h.fd, 0, 2);
    if (here < 0 || size < 0) return cannotseek(use, place);
    boolean beyond = place > 0 && place > size;
    if (handle_seek(use.h, beyond ? here : place, 0)) return cannotseek(use, place);
    return beyond ? error(651) : 0;
}

Int4 seekto(userecord& use, std::string_view where) {
    Int4 place;
    if (where == "query") return 0;
    if (where != "eof") {
        if (where == "tof") place = 0;
        else if (!readinteger(where, place) || place < 0 || place == 2147483647) return error(198);
        return seekplace(use, place);
    }
    if (Int4 rc = handle_flush(use.h)) return iocode(rc);
    return handle_seek(use.h, 0, 2) ? cannotseek(use, missing) : 0;
}

Int4 seekhandle() {
    userecord use;
    if (Int4 rc = takehandle(use)) return rc;
    std::string where = nexttoken(breaknum);
    if (Int4 rc = nothingbehind()) return rc;
    if (use.h.append && use.h.mode == handle_write) return errorf(198, "may not seek in write-append file\n");
    if (use.h.err) return error(691);
    if (Int4 rc = seekto(use, where)) return rc;
    Filepos place = handle_place(use.h);
    if (place < 0) return error(691);
    rclear();
    rstore("loc", Double(place));
    return 0;
}

Int4 sethandle() {
    static constexpr keyword orders[] = {{"hilo", 0, order_hilo}, {"1", 0, order_hilo},
                                         {"lohi", 0, order_lohi}, {"2", 0, order_lohi}};
    userecord use;
    if (Int4 rc = takehandle(use)) return rc;
    if (std::string_view(nexttoken()) != "byteorder") return error(198);
    Int4 order = lookup(orders, nexttoken());
    if (order < 0) return error(198);
    if (Int4 rc = nothingbehind()) return rc;
    if (!use.h.binary) return errorf(109, "may not set byte order for text file\n");
    use.h.border = UByte(order);
    return 0;
}

Int4 queryhandles() {
    static const char* const modes[] = {"", "read", "write", "r/w"};
    if (Int4 rc = nothingbehind()) return rc;
    std::vector<std::string> names = handlenames();
    printing as(out_text);
    for (const std::string& name : names) {
        filehandle h;
        if (!handle_find(name, h)) continue;
        if (prtf("%-6s %-5s %s\n", h.binary ? "binary" : "text", modes[h.mode & 3], name.c_str())) return breakpending;
    }
    rclear();
    rstore("N", Double(names.size()));
    return 0;
}

Int4 debughandle() {
    static const char* const modes[] = {"", "r", "w", "rw"};
    userecord use;
    if (Int4 rc = takehandle(use)) return rc;
    const filehandle& h = use.h;
    printing as(out_text);
    prtf("fd=%d, mode=%s, type=%s, border=%d\n", h.fd, modes[h.mode & 3], h.binary ? "bin" : "txt", h.border);
    prtf("  pos=%d len=%d eof=%d bufisoutput=%d\n", h.pos, h.len, h.eof, h.bufisoutput);
    return h.binary ? breakpending : prtf("  txt_col=%d\n", h.txt_col);
}

}  // namespace

Int4 cmd_file() {
    static constexpr keyword words[] = {{"write", 1, 0}, {"read", 1, 1}, {"open", 0, 2}, {"close", 0, 3},
                                        {"query", 1, 4}, {"set", 0, 5},  {"seek", 0, 6}, {"debug", 0, 7}};
    static Int4 (*const actions[])() = {writehandle,  readhandle, openhandle, closehandle,
                                        queryhandles, sethandle,  seekhandle, debughandle};
    Int4 word = lookup(words, nexttoken());
    return word < 0 ? error(198) : actions[word]();
}

}  // namespace velmo
