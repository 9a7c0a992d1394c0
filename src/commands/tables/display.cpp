// display: a list of directives, literals and expressions, read token by token through a table.
#include <algorithm>
#include <string>
#include "base/columns.h"
#include "base/frontend.h"
#include "base/poll.h"
#include "base/saved.h"
#include "base/text.h"
#include "core/keywords.h"
#include "core/macros.h"
#include "core/tokenizer.h"
#include "data/cells.h"
#include "data/run.h"
#include "expr/value.h"
#include "output/errors.h"
#include "output/formats.h"
#include "output/print.h"
#include "output/results.h"

namespace velmo {

namespace {

enum printmode : Int4 { print_plain, print_styled, print_vtml };
enum word : Int4 {
    w_style, w_continue, w_page, w_skip, w_char, w_column, w_dup, w_newline, w_quote, w_request, w_asis, w_text
};

constexpr keyword words[] = {
    {"in", 0, w_style},          {"as", 0, w_style},      {"_continue", 2, w_continue}, {"_page", 3, w_page},
    {"_skip", 2, w_skip},        {"_char", 0, w_char},    {"_column", 3, w_column},     {"_dup", 3, w_dup},
    {"_newline", 2, w_newline},  {"_quote", 0, w_quote},  {"_request", 2, w_request},   {"_asis", 0, w_asis},
    {"_text", 0, w_text},
};

// Roles, whose colours they are, and the markup mode.
constexpr Int4 style_markup = 9;
constexpr keyword styles[] = {
    {"yellow", 0, out_result}, {"y", 0, out_result},      {"result", 0, out_result},    {"res", 0, out_result},
    {"green", 0, out_text},    {"g", 0, out_text},        {"text", 0, out_text},        {"txt", 0, out_text},
    {"blue", 0, out_text},     {"b", 0, out_text},        {"red", 0, out_error},        {"r", 0, out_error},
    {"error", 0, out_error},   {"err", 0, out_error},     {"white", 0, out_prompt},     {"w", 0, out_prompt},
    {"command", 0, out_prompt}, {"com", 0, out_prompt},   {"input", 0, out_prompt},     {"inp", 0, out_prompt},
    {"vtml", 0, style_markup}, {"v", 0, style_markup},
};

// What display keeps while it walks its list.
struct displaystate {
    Int4 mode;
    Int4 dup = 1;             // repeat count of the next item
    Int4 column = 1;          // tracked for _column in plain mode
    boolean colourchosen = false;
    boolean newline = true;   // at the end of the command
    char format[fmtsize];
    boolean formatgiven = false;
    std::string* buffer = nullptr;   // the buffer form: nothing prints
    printing* as = nullptr;          // else the role, which a style changes
};

Int4 putitem(displaystate& s, std::string_view text) {
    s.column += s.buffer ? Int4(text.size()) : textcolumns(text);
    if (s.buffer) {
        s.buffer->append(text);
        return 0;
    }
    if (s.mode == print_plain) return prt(text);
    if (s.mode == print_styled) prtcolour();
    return prtraw(text);
}

Int4 putrepeated(displaystate& s, std::string_view text) {
    Int4 n = s.dup;
    s.dup = 1;
    s.formatgiven = false;
    for (Int4 i = 0; i < n; i++)
        if (Int4 rc = putitem(s, text)) return rc;
    return 0;
}

Int4 putblanks(displaystate& s, Int4 n) {
    s.column += n;
    if (s.buffer) {
        s.buffer->append(std::size_t(std::max(n, 0)), ' ');
        return 0;
    }
    return n > 0 ? prtblanks(n) : breakpending;
}

// A string by the string rule: a format that isn't one for strings is ignored.
Int4 putstring(displaystate& s, std::string_view text) {
    if (s.formatgiven && chkfmt(s.format, 12) == 0) {
        Int4 n = fmtstr(s.format, text, false);
        std::string padded(dbuf, std::size_t(n));
        return putrepeated(s, padded);
    }
    return putrepeated(s, text);
}

Int4 putnumber(displaystate& s, Double value) {
    boolean own = s.formatgiven && chkfmt(s.format, 11) == 0;
    fmtnum(own ? s.format : defaultfmt, value);
    std::string text(own ? std::string_view(dbuf) : trimmed(dbuf));
    return putrepeated(s, text);
}

// (#), or `otherwise` without parentheses. Numbers must be below 401.
Int4 countargument(Int4& value, Int4 otherwise) {
    value = otherwise;
    if (tokpeek() != '(') return 0;
    char *begin, *end;
    if (!parenthesized(&begin, &end)) return error(198);
    textvalue given;
    if (Int4 rc = exp_valueof({begin, std::size_t(end - begin)}, mode_num, given)) return rc;
    Double v = given.number;
    if (!(v < 401)) return error(198);
    value = v < -2147483000.0 ? -2147483000 : Int4(v);
    return 0;
}

Int4 takestyle(displaystate& s) {
    Int4 style = lookup(styles, nexttoken());
    if (style < 0) return error(198);
    if (style == style_markup) {
        s.mode = s.colourchosen ? print_styled : print_vtml;
        return 0;
    }
    s.colourchosen = true;
    s.as->now(outrole(style));
    if (s.mode == print_vtml) s.mode = print_styled;
    return 0;
}

Int4 takeskip(displaystate& s) {
    Int4 n;
    if (Int4 rc = countargument(n, 1)) return rc;
    n = n < 0 ? 0 : n * s.dup;
    s.dup = 1;
    return putblanks(s, n);
}

Int4 takechar(displaystate& s) {
    Int4 code;
    if (Int4 rc = countargument(code, 0)) return rc;
    if (code < 1 || code > 255) return error(198);
    char c = char(code);
    Int4 n = s.dup;
    s.dup = 1;
    s.column += n;
    if (s.buffer) {
        s.buffer->append(std::size_t(n), c);
        return 0;
    }
    if (s.mode != print_vtml) prtcolour();
    for (Int4 i = 0; i < n; i++)
        if (Int4 rc = prtquiet({&c, 1})) return rc;
    return 0;
}

Int4 takecolumn(displaystate& s) {
    Int4 column;
    if (Int4 rc = countargument(column, 1)) return rc;
    if (column < -999999) return error(198);
    if (column < 0) column = 0;
    if (s.mode != print_plain && !s.buffer) return prtrawf("{col %d}", column);
    return column > s.column ? putblanks(s, column - s.column) : 0;
}

Int4 takedup(displaystate& s) {
    Int4 n;
    if (Int4 rc = countargument(n, 1)) return rc;
    if (n < 0) return error(198);
    s.dup = s.dup > 100000 ? s.dup : s.dup * n;
    return 0;
}

Int4 takenewline(displaystate& s) {
    Int4 n;
    if (Int4 rc = countargument(n, 1)) return rc;
    n *= s.dup;
    s.dup = 1;
    s.column = 1;
    for (Int4 i = 0; i < n; i++)
        if (Int4 rc = prtnl()) return rc;
    return 0;
}

// _request(name): a typed line into a macro.
Int4 takerequest() {
    char *begin, *end;
    if (!parenthesized(&begin, &end)) return error(198);
    std::string name = macroname(trimmed({begin, std::size_t(end - begin)}), false);
    if (!validname(name)) return badname(name);
    if (batchmode) {
        macroclear(name);
        return error(8002);
    }
    prtflush();
    std::string line(std::size_t(macrolen), 0);
    Int4 n = typedline(line.data(), macrolen, true);
    if (n >= 0) prttyped("", front->echoes());
    return macroset(name, {line.data(), std::size_t(n < 0 ? 0 : n)});
}

// _text(name): the whole text of a local macro, as it is.
Int4 taketext(displaystate& s) {
    char *begin, *end;
    if (!parenthesized(&begin, &end)) return error(198);
    std::string name = "_" + std::string(trimmed({begin, std::size_t(end - begin)}));
    if (!validname(name)) return badname(name.substr(1));
    return putstring(s, std::string(macrotext(name)));
}

Int4 takeword(displaystate& s, Int4 word) {
    switch (word) {
    case w_style: return takestyle(s);
    case w_continue: s.newline = false; return 0;
    case w_page: return prtraw("\f");
    case w_skip: return takeskip(s);
    case w_char: return takechar(s);
    case w_column: return takecolumn(s);
    case w_dup: return takedup(s);
    case w_newline: return takenewline(s);
    case w_quote: return putrepeated(s, "\"");
    case w_request: return takerequest();
    case w_text: return taketext(s);
    default: s.mode = print_plain; return 0;
    }
}

// A format: the token up to the next blank.
Int4 takeformat(displaystate& s) {
    char* begin = tokfirst();
    std::string_view rest = begin;
    std::string_view text = rest.substr(0, rest.find(' '));
    settokpos(begin + text.size());
    if (text.size() >= fmtsize || chkfmt(text, 13)) return error(120);
    copytext(s.format, fmtsize, text);
    s.formatgiven = true;
    return 0;
}

// A literal, taken from the line itself so that its length has no limit.
Int4 takeliteral(displaystate& s) {
    char *begin, *end;
    settokpos(tokfirst());
    quotedtext(&begin, &end);
    return putstring(s, {begin, std::size_t(end - begin)});
}

Int4 takeexpression(displaystate& s) {
    if (std::string_view(tokbuf) != "=") ungettoken();
    textvalue value;
    if (Int4 rc = exp_valuehere(mode_any, value)) return rc;
    return value.isstring ? putstring(s, value.text) : putnumber(s, value.number);
}

Int4 takeitem(displaystate& s) {
    if (isquoted()) return takeliteral(s);
    Int4 word = lookup(words, tokbuf);
    boolean prints = word == w_style || word == w_continue || word == w_page || word == w_newline || word == w_quote ||
                     word == w_request;
    if (word >= 0 && !(s.buffer && prints)) return takeword(s, word);
    if (tokbuf[0] == '%') return takeformat(s);
    if (tokbuf[0] != ',') return takeexpression(s);
    if (tokpeek() == ',') {
        nexttoken();
        return 0;
    }
    return putblanks(s, 1);
}

}  // namespace

namespace {

Int4 walkitems(displaystate& s) {
    s.mode = version >= 700 ? print_vtml : print_plain;
    while (nexttoken()[0])
        if (Int4 rc = takeitem(s)) return rc;
    return 0;
}

}  // namespace

Int4 cmd_display() {
    printing as(out_result);
    saved quiet(quietlevel, version < 220 ? shows_all : quietlevel);
    displaystate s{};
    s.as = &as;
    if (Int4 rc = walkitems(s)) return rc;
    return s.newline ? prtnl() : breakpending;
}

// The text that display would show, for macros.
Int4 ext_display(std::string& out) {
    displaystate s{};
    s.buffer = &out;
    return walkitems(s);
}

}  // namespace velmo
