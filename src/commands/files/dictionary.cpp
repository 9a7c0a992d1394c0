#include "commands/files/dictionary.h"
#include <algorithm>
#include "base/saved.h"
#include "base/text.h"
#include "commands/files/infix.h"
#include "data/dataset.h"
#include "data/labels.h"
#include "output/errors.h"
#include "output/print.h"

namespace velmo {

// ---- Tokens.

namespace {

Int4 nextline(linereader& lines) {
    Int4 rc = lines_next(lines);
    if (rc == lines_atend) return error(612);
    if (rc) return rc;
    printing as(out_text);
    prt(lines.line());
    prtnl();
    settokpos(lines.text());
    return 0;
}

}  // namespace

Int4 dict_take(dicttokens& t, const breakset& set) {
    nexttoken(set);
    if (!t.lines) return 0;
    while (!tokbuf[0]) {
        if (Int4 rc = nextline(*t.lines)) return rc;
        nexttoken(set);
    }
    return 0;
}

boolean dict_is(std::string_view text) { return tokbuf == text; }
Int4 dict_invalid() { return error(614); }

Int4 dict_number(Int4 lo, Int4 hi, Int4& out) {
    boolean fine = isdigit(tokbuf[0]) && readinteger(tokbuf, out) && out >= lo && out <= hi;
    return fine ? 0 : dict_invalid();
}

void dict_skipline(dicttokens& t) { settokpos(t.lines->text() + t.lines->len); }

// ---- The table.

namespace {

boolean fitname(const fieldtable& table, const std::string& name) {
    if (name == "_all" || table.names.count(name)) return false;
    saved quiet(quietlevel, shows_nothing);
    return checkvarname(name) == 0;
}

}  // namespace

Int4 addfield(fieldtable& table, const std::string& name, UByte type) {
    if (!fitname(table, name)) {
        notallowed(name[0] == '"' ? name.substr(1) : name);
        return dict_invalid();
    }
    table.names.insert(name);
    table.vars.push_back({name, "", "", type});
    table.fields.push_back({Int4(table.vars.size()), 'f', 0, 0, table.line, table.column, table.skip});
    table.column = -1;
    table.skip = 0;
    return 0;
}

Int4 gotoline(fieldtable& table, std::int64_t line) {
    if (line > (table.lines ? table.lines : maxlines)) return dict_invalid();
    table.line = Int4(line);
    table.highest = std::max(table.highest, table.line);
    table.column = -1;
    table.skip = 0;
    return 0;
}

Int4 closetable(fieldtable& table) {
    if (table.fields.empty()) return dict_invalid();
    auto byline = [](const textfield& a, const textfield& b) { return a.line < b.line; };
    std::stable_sort(table.fields.begin(), table.fields.end(), byline);
    if (table.lines && table.lines < table.highest) return dict_invalid();
    if (!table.lines) table.lines = table.highest;
    return 0;
}

// ---- The items of infile.

namespace {

// A number in parentheses; without them, where that may be, out stays.
Int4 argument(dicttokens& t, Int4 lo, Int4 hi, Int4& out, boolean optional) {
    if (Int4 rc = dict_take(t)) return rc;
    if (!dict_is("(")) {
        ungettoken();
        return optional ? 0 : dict_invalid();
    }
    if (Int4 rc = dict_take(t)) return rc;
    if (Int4 rc = dict_number(lo, hi, out)) return rc;
    if (Int4 rc = dict_take(t)) return rc;
    return dict_is(")") ? 0 : dict_invalid();
}

// What may be given once.
Int4 onceonly(dicttokens& t, Int4 hi, Int4& out) {
    return out ? dict_invalid() : argument(t, 1, hi, out, false);
}

Int4 newlineitem(dicttokens& t, fieldtable& table) {
    Int4 n = 1;
    if (Int4 rc = argument(t, 1, maxlines, n, true)) return rc;
    return gotoline(table, table.line + n);
}

Int4 lineitem(dicttokens& t, fieldtable& table) {
    Int4 n = 1;
    if (Int4 rc = argument(t, 1, maxlines, n, false)) return rc;
    return gotoline(table, n);
}

Int4 skipitem(dicttokens& t, fieldtable& table) {
    Int4 n = 1;
    if (Int4 rc = argument(t, 0, textlinesize, n, true)) return rc;
    table.skip += n;
    return table.skip > textlinesize ? dict_invalid() : 0;
}

Int4 columnitem(dicttokens& t, fieldtable& table) {
    Int4 n = 1;
    if (Int4 rc = argument(t, 1, textlinesize, n, false)) return rc;
    table.column = n - 1;
    table.skip = 0;
    return 0;
}

Int4 lreclitem(dicttokens& t, fieldtable& table) { return onceonly(t, 32765, table.lrecl); }
Int4 linesitem(dicttokens& t, fieldtable& table) { return onceonly(t, maxlines, table.lines); }
Int4 firstlineitem(dicttokens& t, fieldtable& table) { return onceonly(t, maxlines, table.firstline); }

Int4 commentitem(dicttokens& t, fieldtable&) {
    dict_skipline(t);
    return 0;
}

constexpr struct { const char* word; Int4 min; Int4 (*obey)(dicttokens&, fieldtable&); } items[] = {
    {"*", 1, commentitem},        {"_newline", 8, newlineitem}, {"_line", 5, lineitem},
    {"_skip", 5, skipitem},       {"_column", 7, columnitem},   {"_lrecl", 6, lreclitem},
    {"_lines", 6, linesitem},     {"_firstlineoffile", 6, firstlineitem},
};

// The text behind %: digits, for numbers a point and digits, a letter. 0, or 6 with the message of a bad format.
Int4 readformat(std::string_view text, textfield& f) {
    auto invalid = [] { return errorf(6, "invalid %%format\n"); };
    char letter = text.empty() ? char(0) : text.back();
    if (letter == 'g' || letter == 'e') letter = 'f';
    if (letter != 'f' && letter != 's') return invalid();
    text.remove_suffix(1);
    std::size_t point = text.find('.');
    std::string_view width = text.substr(0, point);
    f.letter = letter;
    if (!width.empty())
        if (!isdigit(width[0]) || !readinteger(width, f.width) || f.width < 1 || f.width > (letter == 'f' ? 30 : 244))
            return invalid();
    if (point == std::string_view::npos) return 0;
    std::string_view decimals = text.substr(point + 1);
    boolean fine = letter == 'f' && !decimals.empty() && isdigit(decimals[0]) && readinteger(decimals, f.decimals);
    return fine && f.decimals < f.width ? 0 : invalid();
}

// `:lbl`, the colon in hand.
Int4 labelpart(dicttokens& t, newvariable& v) {
    if (Int4 rc = dict_take(t)) return rc;
    if (!validname(tokbuf)) return dict_invalid();
    if (isstringtype(v.type)) {
        error(181);
        return dict_invalid();
    }
    v.vallabel = tokbuf;
    return 0;
}

// [type] name [:lbl] [%fmt] ["label"]
Int4 variableitem(dicttokens& t, fieldtable& table) {
    UByte type = typecode(tokbuf);
    if (type)
        if (Int4 rc = dict_take(t)) return rc;
    if (Int4 rc = addfield(table, tokbuf, type ? type : typefloat)) return rc;
    newvariable& v = table.vars.back();
    if (Int4 rc = dict_take(t)) return rc;
    if (dict_is(":")) {
        if (Int4 rc = labelpart(t, v)) return rc;
        if (Int4 rc = dict_take(t)) return rc;
    }
    if (dict_is("%")) {
        if (Int4 rc = dict_take(t)) return rc;
        if (Int4 rc = readformat(tokbuf, table.fields.back())) return rc;
        if (Int4 rc = dict_take(t)) return rc;
    }
    if (isquoted())
        v.label = tokcontent();
    else
        ungettoken();
    return 0;
}

Int4 infileitem(dicttokens& t, fieldtable& table) {
    for (const auto& item : items)
        if (abbrev(tokbuf, item.word, item.min)) return item.obey(t, table);
    return variableitem(t, table);
}

// ---- The head.

// `using filename`, the word in hand.
Int4 usingfile(dicttokens& t, fieldtable& table) {
    if (Int4 rc = dict_take(t, breakfile)) return rc;
    if (!*tokcontent() || dict_is("{")) return dict_invalid();
    table.datafile = tokcontent();
    std::replace(table.datafile.begin(), table.datafile.end(), '\\', '/');
    return dict_take(t);
}

// [infile] dictionary [using filename] {
Int4 readhead(dicttokens& t, boolean infix, fieldtable& table) {
    if (Int4 rc = dict_take(t)) return rc;
    boolean command = dict_is(infix ? "infix" : "infile");
    if (infix && !command) return error(613);
    if (command)
        if (Int4 rc = dict_take(t)) return rc;
    if (!dict_is("dictionary")) return error(613);
    if (Int4 rc = dict_take(t)) return rc;
    if (dict_is("using"))
        if (Int4 rc = usingfile(t, table)) return rc;
    return dict_is("{") ? 0 : dict_invalid();
}

// A line of infix's that begins with * is a comment.
Int4 infixline(dicttokens& t, fieldtable& table) {
    return dict_is("*") ? commentitem(t, table) : infixitem(t, table);
}

}  // namespace

Int4 readdictionary(linereader& lines, boolean infix, fieldtable& table) {
    tokenpos here;
    savetokpos(&here);
    onexit back([&] { restoretokpos(&here); });
    dicttokens t{&lines};
    char none[1] = "";
    settokpos(none);
    if (Int4 rc = readhead(t, infix, table)) return rc;
    while (true) {
        if (Int4 rc = dict_take(t)) return rc;
        if (dict_is("}")) return closetable(table);
        if (Int4 rc = infix ? infixline(t, table) : infileitem(t, table)) return rc;
    }
}

}  // namespace velmo
