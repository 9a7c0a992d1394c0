// Calls. Arguments are compiled from the last to the first, so that the first stands on top of the stack. Most
// functions are rows of functions.def; those whose code depends on their arguments have a procedure here.
//
// To add one of these: its procedure, and its row in `specials`.
#include <algorithm>
#include <string>
#include "base/saved.h"
#include "base/state.h"
#include "base/text.h"
#include "core/macros.h"
#include "core/memory.h"
#include "data/chars.h"
#include "data/dataset.h"
#include "expr/compiler.h"
#include "expr/functions.h"
#include "output/dates.h"
#include "output/errors.h"
#include "stored/families.h"
#include "stored/posted.h"

namespace velmo {

namespace {

constexpr Int4 mostarguments = 255;
constexpr Int2 anyversion = 32767;

constexpr functionrow functions[] = {
#define FUNCTION(name, word, n, argtype, restype) {name, cw_##word, n, n, argtype, restype, 0, anyversion},
#define UNTIL(until, name, word, n) {name, cw_##word, n, n, exp_numeric, exp_numeric, 0, until},
#define VARIADIC(name, word, least) {name, cw_##word, least, mostarguments, exp_numeric, exp_numeric, 1, anyversion},
#include "expr/functions.def"
#undef FUNCTION
#undef VARIADIC
#undef UNTIL
};

void needarguments(const call& c, Int4 least, Int4 most) {
    if (c.n < least || c.n > most) fail(198);
}

void compilearguments(const call& c) {
    for (Int4 i = c.n - 1; i >= 0; i--) compilespan(argument(c, i));
}

// All arguments are of one type; which, the one compiled last tells.
UByte expectalike(const call& c) {
    UByte type = toptype();
    expect(type, c.n);
    return type;
}

void compilecond(const call& c) {
    needarguments(c, 3, 3);
    compilearguments(c);
    expect(exp_numeric, 1);
    UByte type = toptype();
    expect(type, 2);
    emit(type == exp_string ? cw_textcond : cw_cond, type);
}

void compilestring(const call& c) {
    needarguments(c, 1, 2);
    compilearguments(c);
    expect(exp_numeric, 1);
    expect(exp_string, c.n - 1);
    emit(c.n == 2 ? cw_stringfmt : cw_string, exp_string);
}

void compilesubstr(const call& c) {
    needarguments(c, 3, 3);
    compilearguments(c);
    expect(exp_string, 1);
    expect(exp_numeric, 2);
    emit(cw_substr, exp_string);
}

void compileabbrev(const call& c) {
    needarguments(c, 2, 2);
    compilearguments(c);
    expect(exp_string, 1);
    expect(exp_numeric, 1);
    emit(cw_abbrev, exp_string);
}

void compilesubstitution(const call& c) {
    needarguments(c, 4, 4);
    compilearguments(c);
    expect(exp_string, 3);
    expect(exp_numeric, 1);
    emit(c.name == "subinstr" ? cw_subinstr : cw_subinword, exp_string);
}

void compilesum(const call& c) {
    needarguments(c, 1, 1);
    compilearguments(c);
    expect(exp_numeric, 1);
    if (cc.e->sumlast + 1 == maxsums) fail(130, "Too many SUMs\n");
    emit(cw_sum, exp_numeric);
    emitoperand(++cc.e->sumlast);
}

void compilehidden(const call& c) {
    needarguments(c, 1, 1);
    saved names(cc.visible, c.name == "variable");
    compilearguments(c);
}

void compilemissing(const call& c) {
    needarguments(c, 1, 1);
    compilearguments(c);
    boolean text = toptype() == exp_string;
    if (text) emittext("");
    else emitliteral(missing);
    expect(text ? exp_string : exp_numeric, 2);
    emit(text ? cw_texteq : cw_eq, exp_numeric);
}

void compilenormden(const call& c) {
    needarguments(c, 1, 2);
    compilearguments(c);
    expect(exp_numeric, c.n);
    emit(c.n == 2 ? cw_normden2 : cw_normden, exp_numeric);
}

void compileinrange(const call& c) {
    needarguments(c, 3, 3);
    compilearguments(c);
    emit(expectalike(c) == exp_string ? cw_textinrange : cw_inrange, exp_numeric);
}

void compileinlist(const call& c) {
    needarguments(c, 2, mostarguments);
    compilearguments(c);
    emit(expectalike(c) == exp_string ? cw_textinlist : cw_inlist, exp_numeric);
    emitoperand(c.n);
}

void compilebyteorder(const call& c) {
    needarguments(c, 0, 0);
    emitliteral(2);
}

void compilecaller(const call& c) {
    needarguments(c, 0, 0);
    emitliteral((callerversion ? callerversion : version) / 100.0);
}

// ---- Stored results: read now.

void compilesample() {
    Int4 var = findvar("(e)");
    if (!var || !posted()) return emitliteral(0);
    emit(cw_load, exp_numeric);
    emitoperand(var);
}

void compilestored(family f, const call& c) {
    std::string_view name = spantext(c.text);
    Double value;
    std::string text;
    if (name.empty()) fail(198);
    switch (stored_get(f, name, value, text)) {
    case result_scalar: return emitliteral(value);
    case result_macro: return emittext(text);
    case result_function: return compilesample();
    case result_matrix: return compilestoredmatrix(f, name);
    default: break;
    }
    if (f == e_results && posted() && (name == "b" || name == "V")) return compilestoredmatrix(f, name);
    emitliteral(missing);
}

void compileresult(const call& c) { compilestored(r_results, c); }
void compilereturn(const call& c) { compilestored(return_results, c); }
void compileestimate(const call& c) { compilestored(e_results, c); }

// _local(name): the text of a local macro as it is, read now; a reference would expand what stands in it.
void compilelocal(const call& c) {
    std::string name = "_" + std::string(spantext(c.text));
    if (name.size() == 1 || !validname(name)) failon(badname(name.substr(1)));
    emittext(macrotext(name));
}

// ---- Dates

struct periodrow { const char *name, *literal; char kind; const char* mask; };
constexpr periodrow periods[] = {
    {"date", "d", 'd', "dmy"},       {"daily", "d", 'd', "dmy"},       {"yearly", "y", 'y', "y"},
    {"halfyearly", "h", 'h', "yh"},  {"quarterly", "q", 'q', "yq"},    {"monthly", "m", 'm', "ym"},
    {"weekly", "w", 'w', "yw"},
};

const periodrow* findperiod(std::string_view word) {
    for (const periodrow& row : periods) {
        if (word == row.name || word == row.literal) return &row;
    }
    return nullptr;
}

void compiledate(const call& c) {
    needarguments(c, 2, 3);
    compilearguments(c);
    expect(exp_string, 2);
    expect(exp_numeric, c.n - 2);
    char kind = findperiod(c.name)->kind;
    emit(kind == 'd' ? cw_date : cw_period, exp_numeric);
    emitoperand(c.n == 3);
    if (kind != 'd') emitoperand(kind);
}

Double literaldate(std::string_view text, const periodrow& row) {
    text = text.substr(0, 78);
    return row.kind == 'd' ? readdate(text, row.mask, missing) : readperiod(row.kind, text, row.mask, missing);
}

void compiledateliteral(const call& c) {
    Double value = literaldate(spantext(c.text), *findperiod(c.name));
    std::string whole = std::string(c.name) + "(" + std::string(spantext(c.text)) + ")";
    if (value == missing) failon(errorf(198, "%s invalid\n", whole.c_str()));
    emitliteral(value);
}

Int4 timevariable() {
    std::string name = char_get("_dta", "_TStvar");
    if (name.empty()) fail(6101);
    Int4 var = findvar(name);
    if (!var) failon(notfound(name));
    if (isstring(var)) fail(109);
    return var;
}

// An end of tin() in the unit of the time variable's format.
Double timeend(std::string_view text, Int4 var) {
    std::string_view form = fmt[var - 1];
    form.remove_prefix(form.substr(0, 2) == "%-" ? 2 : 1);
    const periodrow* row = form[0] == 'd' ? findperiod("d") : form[0] == 't' ? findperiod(form.substr(1, 1)) : nullptr;
    Double value = missing;
    if (row) value = literaldate(text, *row);
    else readnumber(text, value);
    if (value == missing) failon(errorf(198, "%s invalid\n", std::string(text).c_str()));
    return value;
}

void emitcompare(Int2 word) {
    expect(exp_numeric, 2);
    emit(word, exp_numeric);
}

void emitload(Int4 var) {
    emit(cw_load, exp_numeric);
    emitoperand(var);
}

// a <= t & t <= b, with < in twithin(); either end may be left out.
void compiletin(const call& c) {
    needarguments(c, 2, 2);
    Int4 var = timevariable();
    Int2 word = c.name == "tin" ? cw_le : cw_lt;
    std::string_view a = spantext(argument(c, 0)), b = spantext(argument(c, 1));
    if (a.empty() && b.empty()) emitliteral(1);
    if (!a.empty()) {
        emitliteral(timeend(a, var));
        emitload(var);
        emitcompare(word);
    }
    if (!b.empty()) {
        emitload(var);
        emitliteral(timeend(b, var));
        emitcompare(word);
    }
    if (!a.empty() && !b.empty()) emitcompare(cw_and);
}

constexpr struct { const char* name; void (*compile)(const call& c); } specials[] = {
    {"cond", compilecond},         {"string", compilestring},      {"substr", compilesubstr},
    {"abbrev", compileabbrev},     {"sum", compilesum},            {"scalar", compilehidden},
    {"variable", compilehidden},   {"matrix", compilehidden},      {"r", compileresult},
    {"e", compileestimate},        {"return", compilereturn},      {"_caller", compilecaller},
    {"missing", compilemissing},
    {"normd", compilenormden},     {"normden", compilenormden},    {"date", compiledate},
    {"daily", compiledate},        {"yearly", compiledate},        {"halfyearly", compiledate},
    {"quarterly", compiledate},    {"monthly", compiledate},       {"weekly", compiledate},
    {"d", compiledateliteral},     {"y", compiledateliteral},      {"h", compiledateliteral},
    {"q", compiledateliteral},     {"m", compiledateliteral},      {"w", compiledateliteral},
    {"tin", compiletin},           {"twithin", compiletin},        {"subinstr", compilesubstitution},
    {"subinword", compilesubstitution}, {"inrange", compileinrange}, {"inlist", compileinlist},
    {"byteorder", compilebyteorder}, {"_local", compilelocal},
};

auto findspecial(std::string_view name) {
    return std::find_if(std::begin(specials), std::end(specials), [name](const auto& row) { return name == row.name; });
}

void compilerow(const functionrow& row, const call& c) {
    needarguments(c, row.least, row.most);
    compilearguments(c);
    expect(row.argtype, c.n);
    emit(row.word, row.restype);
    if (row.counted) emitoperand(c.n);
}

}  // namespace

// Splits at the commas outside brackets and quotes; an empty text has no arguments.
Int4 splitarguments(span s) {
    if (s.b == s.e) return 0;
    Int4 start = s.b, n = 0;
    for (Int4 i = s.b; i <= s.e; i++) {
        if (i < s.e && cc.text.mate[std::size_t(i)] > i) {
            i = cc.text.mate[std::size_t(i)];
        } else if (i == s.e || cc.text.chars[std::size_t(i)] == ',') {
            cc.arguments.push_back({start, i});
            start = i + 1;
            n++;
        }
    }
    return n;
}

const functionrow* findfunction(std::string_view name) {
    for (const functionrow& row : functions) {
        if (name == row.name && version <= row.until) return &row;
    }
    return nullptr;
}

void compilecall(std::string_view name, span text) {
    if (version < 320 && name == "uniform") name = "uniform0";
    const functionrow* row = findfunction(name);
    auto special = findspecial(name);
    saved joining(cc.matjoin, false);
    call c{name, text, Int4(cc.arguments.size()), 0};
    c.n = splitarguments(text);
    if (row) compilerow(*row, c);
    else if (special != std::end(specials)) special->compile(c);
    else if (!compilematrixcall(c)) failon(errorf(133, "Unknown function %s()\n", std::string(name).c_str()));
    cc.arguments.resize(std::size_t(c.from));
}

}  // namespace velmo
