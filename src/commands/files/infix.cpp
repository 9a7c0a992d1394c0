// infix: data in fixed columns, told by short items, names and columns.
#include "commands/files/infix.h"
#include "commands/files/infile.h"
#include "base/saved.h"
#include "base/text.h"
#include "core/adopath.h"
#include "data/dataset.h"
#include "data/run.h"
#include "language/varlist.h"
#include "output/errors.h"

namespace velmo {

namespace {

// #:  and # followed by a word. The number is the token in hand.
Int4 numberitem(dicttokens& t, fieldtable& table) {
    Int4 n = 0;
    if (Int4 rc = dict_number(1, maxlines, n)) return rc;
    if (Int4 rc = dict_take(t)) return rc;
    if (dict_is(":")) return gotoline(table, n);
    boolean lines = abbrev(tokbuf, "lines", 4) || abbrev(tokbuf, "records", 6);
    if (!lines && !abbrev(tokbuf, "firstlineoffile", 5)) return dict_invalid();
    Int4& place = lines ? table.lines : table.firstline;
    if (place) return dict_invalid();
    place = n;
    return 0;
}

// [#:]a[-b], its first number in hand: the line stands for this item alone.
Int4 readcolumns(dicttokens& t, fieldtable& table, Int4& line, Int4& from, Int4& to) {
    line = table.line;
    if (Int4 rc = dict_number(1, textlinesize, from)) return rc;
    if (Int4 rc = dict_take(t)) return rc;
    if (dict_is(":")) {
        line = from;
        if (line > (table.lines ? table.lines : maxlines)) return dict_invalid();
        if (Int4 rc = dict_take(t)) return rc;
        if (Int4 rc = dict_number(1, textlinesize, from)) return rc;
        if (Int4 rc = dict_take(t)) return rc;
    }
    to = from;
    if (!dict_is("-")) {
        ungettoken();
        return 0;
    }
    if (Int4 rc = dict_take(t)) return rc;
    return dict_number(from, textlinesize, to);
}

// Names up to the columns, whose first number is then in hand.
Int4 readnames(dicttokens& t, std::vector<std::string>& names) {
    while (!isdigit(tokbuf[0])) {
        std::string name = tokbuf;
        if (Int4 rc = dict_take(t)) return rc;
        if (!dict_is("-")) {
            names.push_back(name);
            if (!tokbuf[0] || names.size() > std::size_t(maxvar)) return dict_invalid();
            continue;
        }
        if (Int4 rc = dict_take(t)) return rc;
        saved quiet(quietlevel, shows_nothing);
        if (seriesnames(name, tokbuf, names)) return -1;
        if (Int4 rc = dict_take(t)) return rc;
    }
    return names.empty() ? dict_invalid() : 0;
}

// `str` alone, whose length the columns tell, has a type that no string has.
constexpr UByte anystring = 0;

// The type that columns settle: a string is as long as they are, a number of one column a byte.
UByte settledtype(UByte type, Int4 columns) {
    if (!isstringtype(type)) return columns == 1 ? typebyte : type;
    if (columns > 1) return UByte(columns < maxstrtype ? columns : maxstrtype);
    return type == anystring ? UByte(1) : type;
}

// [type] names [#:]a[-b]
Int4 variablesitem(dicttokens& t, fieldtable& table) {
    UByte type = dict_is("str") ? anystring : typecode(tokbuf);
    boolean typed = type || dict_is("str");
    if (typed)
        if (Int4 rc = dict_take(t)) return rc;
    if (!typed) type = typefloat;
    std::vector<std::string> names;
    if (Int4 rc = readnames(t, names)) return rc < 0 ? dict_invalid() : rc;
    Int4 line, from, to, n = Int4(names.size());
    if (Int4 rc = readcolumns(t, table, line, from, to)) return rc;
    if ((to - from + 1) % n) return dict_invalid();
    Int4 width = (to - from + 1) / n;
    table.highest = std::max(table.highest, line);
    for (Int4 i = 0; i < n; i++) {
        UByte settled = settledtype(type, width);
        if (Int4 rc = addfield(table, names[std::size_t(i)], settled)) return rc;
        textfield& f = table.fields.back();
        f.letter = isstringtype(settled) ? 's' : 'f';
        f.width = width;
        f.line = line;
        f.column = from - 1 + i * width;
    }
    return 0;
}

}  // namespace

Int4 infixitem(dicttokens& t, fieldtable& table) {
    if (dict_is("/")) return gotoline(table, table.line + 1);
    return isdigit(tokbuf[0]) ? numberitem(t, table) : variablesitem(t, table);
}

namespace {

Int4 readitems(fieldtable& table) {
    dicttokens t{nullptr};
    while (true) {
        if (Int4 rc = dict_take(t)) return rc;
        if (dict_is("using")) break;
        if (!tokbuf[0] || dict_is(",")) return required("using");
        if (Int4 rc = infixitem(t, table)) return rc;
    }
    ungettoken();
    return closetable(table);
}

// infix items using datafile
Int4 bycolumns() {
    fieldtable table;
    infileoptions o;
    if (Int4 rc = readitems(table)) return rc;
    if (Int4 rc = optionsahead(o, form_columns)) return rc;
    char path[pathsize];
    addsuffix(path, o.file, ".raw");
    Int4 handle = webopen(path, web_binary | web_textread);
    if (handle < 0) return -handle;
    onexit close([handle] { webclose(handle); });
    static linereader lines;
    lines_start(lines, handle);
    return readtable(lines, table);
}

}  // namespace

// infix using dictfile [if] [in] [, using(datafile) clear]
// infix items using datafile [if] [in] [, clear]
Int4 cmd_infix() {
    tokenpos here;
    savetokpos(&here);
    if (std::string_view(nexttoken()) == "using") return bydictionary(true);
    restoretokpos(&here);
    return bycolumns();
}

}  // namespace velmo
