// Recursive splitting. A span of text is split at its lowest operator; each level of the table is a level of its own,
// and the rightmost hit wins, so that all associate to the left. One pass finds the rightmost hit of every level.
#include "expr/compile.h"
#include <algorithm>
#include "base/state.h"
#include "base/saved.h"
#include "base/text.h"
#include "core/tokenizer.h"
#include "data/dataset.h"
#include "data/labels.h"
#include "data/timeseries.h"
#include "expr/compiler.h"
#include "expr/functions.h"
#include "output/errors.h"
#include "stored/posted.h"
#include "stored/scalars.h"

namespace velmo {

compiler cc;

void fail(Int4 rc) { throw failure{error(rc)}; }
void fail(Int4 rc, const char* message) { throw failure{errorf(rc, "%s", message)}; }

// ---- Emission

void emitoperand(Int4 operand) {
    if (cc.e->codelast + 1 >= maxcode) fail(130);
    cc.e->code[++cc.e->codelast] = Int2(operand);
}

void emit(Int2 word, UByte pushes) {
    emitoperand(word);
    if (pushes != pushesnothing) notetype(pushes);
}

void notetype(UByte pushes) {
    if (cc.ntypes == numstack || (pushes == exp_string && cc.nstrings == strstack)) fail(130);
    if (pushes == exp_matrix && cc.nmatrices == matstack) fail(130);
    cc.types[cc.ntypes++] = pushes;
    cc.nstrings += pushes == exp_string;
    cc.nmatrices += pushes == exp_matrix;
}

void emitliteral(Double value) {
    Int4 number = poolnumber(exponent(value) == 1024 ? missing : value);
    if (number < 0) fail(130, "too many literals\n");
    emit(cw_literal, exp_numeric);
    emitoperand(number);
}

void emittext(std::string_view text) {
    Int4 offset = pooltext(text.substr(0, strbufsize - 1));
    if (offset < 0) fail(130, "too many literals\n");
    emit(cw_textliteral, exp_string);
    emitoperand(offset);
}

UByte toptype(Int4 below) { return cc.types[cc.ntypes - 1 - below]; }

void expect(UByte type, Int4 n) {
    for (; n > 0; n--) {
        if (cc.ntypes == 0 || toptype() != type) fail(109);
        cc.nstrings -= type == exp_string;
        cc.nmatrices -= type == exp_matrix;
        cc.ntypes--;
    }
}

namespace {

// ---- Operators

// Lowest first. Where two characters make an operator, `second` is the other one.
struct operatorrow {
    char first, second;
    Int2 word, textword;      // textword is none where strings are no operands
};
constexpr operatorrow operators[] = {
    {'|', 0, cw_or, cw_none},        {'&', 0, cw_and, cw_none},       {'=', '=', cw_eq, cw_texteq},
    {'>', '=', cw_ge, cw_textge},    {'<', '=', cw_le, cw_textle},    {'<', 0, cw_lt, cw_textlt},
    {'>', 0, cw_gt, cw_textgt},      {'!', '=', cw_ne, cw_textne},    {'~', '=', cw_ne, cw_textne},
    {'+', 0, cw_add, cw_textadd},    {'-', 0, cw_subtract, cw_none},  {'*', 0, cw_multiply, cw_none},
    {'/', 0, cw_divide, cw_none},    {'#', 0, cw_none, cw_none},      {'^', 0, cw_power, cw_none},
};
constexpr Int4 noperators = std::size(operators);
constexpr Int4 powerlevel = noperators - 1;

char at(Int4 i) { return cc.text.chars[std::size_t(i)]; }
Int4 mate(Int4 i) { return cc.text.mate[std::size_t(i)]; }

// The sign of a number's exponent, as in 1e-5; in x1e-5 it is an operator.
boolean isexponentsign(Int4 i, span s) {
    if (i - 2 < s.b || i + 1 >= s.e || !isdigit(at(i + 1))) return false;
    char mark = lowerchar(at(i - 1)), before = at(i - 2);
    if ((mark != 'e' && mark != 'd') || (!isdigit(before) && before != '.')) return false;
    Int4 k = i - 2;
    while (k >= s.b && (isdigit(at(k)) || at(k) == '.')) k--;
    return k < s.b || !isnamestart(at(k));
}

boolean issign(Int4 i, span s) {
    constexpr std::string_view before = "-*/^#!~";
    return before.find(at(i - 1)) != before.npos || isexponentsign(i, s);
}

// The operator at i, the first one of the table that fits there being enough: `<` is never wanted where `<=` stands.
Int4 operatorat(Int4 i, span s) {
    char c = at(i), next = i + 1 < s.e ? at(i + 1) : 0;
    for (Int4 k = 0; k < noperators; k++) {
        if (operators[k].first == c && (!operators[k].second || operators[k].second == next)) return k;
    }
    return -1;
}

boolean maybeoperator(char c) {
    switch (c) {
    case '|': case '&': case '=': case '>': case '<': case '!': case '~': case '+': case '-': case '*': case '/':
    case '^': case '#': return true;
    default: return false;
    }
}

struct split { Int4 level, at; };

// The rightmost hit of the lowest level that has one, from level `from` up; level -1 when there is none.
split findsplit(span s) {
    split best{-1, 0};
    for (Int4 i = s.e - 1; i > s.b; i--) {
        if (mate(i) >= 0) {
            i = mate(i);
            continue;
        }
        if (!maybeoperator(at(i))) continue;
        Int4 k = operatorat(i, s);
        if (k < 0 || (best.level >= 0 && k >= best.level)) continue;
        if ((at(i) == '+' || at(i) == '-') && issign(i, s)) continue;
        best = {k, i};
        if (k == 0) break;
    }
    return best;
}

void compilebinary(span s, split hit) {
    const operatorrow& row = operators[hit.level];
    compilespan({s.b, hit.at});
    compilespan({hit.at + (row.second ? 2 : 1), s.e});
    constexpr std::string_view matrixoperators = "+-*/#";
    boolean matrices = row.first == '#' || toptype() == exp_matrix || toptype(1) == exp_matrix;
    if (matrices && matrixoperators.find(row.first) != matrixoperators.npos) return compilematrixoperator(row.first);
    boolean texts = row.textword != cw_none && toptype() == exp_string && toptype(1) == exp_string;
    expect(texts ? exp_string : exp_numeric, 2);
    boolean astext = texts && row.textword == cw_textadd;
    emit(texts ? row.textword : row.word, astext ? exp_string : exp_numeric);
}

// Returns false when the span begins with no unary operator.
boolean compileunary(span s) {
    char c = at(s.b);
    if (c != '!' && c != '~' && c != '-') return false;
    compilespan({s.b + 1, s.e});
    if (c == '-' && toptype() == exp_matrix) {
        if (!cc.matrices) fail(509);
        emit(cw_matnegate);
        return true;
    }
    expect(exp_numeric, 1);
    emit(c == '-' ? cw_negate : cw_not, exp_numeric);
    return true;
}

// ---- Atoms

// A string literal, or a value label's value for a text.
void compilequoted(span s) {
    Int4 end = mate(s.b);
    boolean compound = at(s.b) == '`';
    std::string_view text = spantext({s.b + (compound ? 2 : 1), end - (compound ? 1 : 0)});
    if (end + 1 == s.e) {
        emittext(text);
        return;
    }
    if (at(end + 1) != ':' || end + 2 == s.e) fail(198);
    std::string name(spantext({end + 2, s.e})), wanted(text);
    Double value = vl_texttoval(name, wanted);
    if (value == missing) notef("(value label %s not found)\n", wanted.c_str());
    emitliteral(value);
}

// Returns false when the span is not a number at all.
boolean compilenumber(span s) {
    std::string_view text = spantext(s);
    Double value;
    if (text.size() < 25 && readnumber(text, value)) {
        emitliteral(value);
        return true;
    }
    std::size_t start = text[0] == '+' || text[0] == '-';
    std::size_t digit = start + (text.size() > start && text[start] == '.');
    if (text.size() > digit && isdigit(text[digit])) fail(198);
    if (text[0] != '.') return false;
    emitliteral(missing);
    return true;
}

struct systemvalue { const char* name; Int2 word; Double value; };
constexpr systemvalue systemvalues[] = {
    {"_n", cw_obsno, 0},   {"_N", cw_obscount, 0},           {"_rc", cw_rcword, 0},
    {"_cons", cw_none, 1}, {"_pi", cw_none, 3.141592653589793},
};

boolean compilesystem(std::string_view name, boolean subscript) {
    for (const systemvalue& v : systemvalues) {
        if (name != v.name) continue;
        if (subscript) fail(198);
        if (v.word == cw_none) emitliteral(v.value);
        else emit(v.word, exp_numeric);
        return true;
    }
    return false;
}

// _b[name], _coef[name], _se[name] and the same behind [eq]; [eq]name is a coefficient. A value of the posted
// estimates, read now; what stands ahead of it tells which coefficient it is, to whoever looks at the code.
boolean compilecoefficient(std::string_view name, span s) {
    std::string_view text = spantext(s), eq;
    if (text[0] == '[') {
        std::size_t close = text.find(']');
        eq = text.substr(1, close - 1);
        text.remove_prefix(close + 1);
        name = text.substr(0, text.find('['));
    }
    boolean error = name == "_se", named = error || name == "_b" || name == "_coef";
    if (named && text.size() > name.size() && text.back() == ']')
        text = text.substr(name.size() + 1, text.size() - name.size() - 2);
    else if (spantext(s)[0] != '[') return false;
    if (text.empty()) fail(198);
    Int4 at = 0;
    if (!cc.options.nocoef) failon(findcoefficient(eq, text, at));
    emit(cw_skip);
    emitoperand(at + 1);
    emitliteral(cc.options.nocoef ? 0 : error ? standarderror(at) : coefficient(at));
    return true;
}

Int4 findvariable(std::string_view name) {
    Int4 var = lookupvar(name, lookup_quiet);
    failon(var < 0 ? -var : 0);
    return var > visnvar ? 0 : var;
}

void compileload(Int4 var) {
    boolean text = isstring(var);
    emit(text ? cw_textload : cw_load, text ? exp_string : exp_numeric);
    emitoperand(var);
}

void compileloadat(Int4 var, span subscript) {
    compilespan(subscript);
    expect(exp_numeric, 1);
    boolean text = isstring(var);
    emit(text ? cw_textloadat : cw_loadat, text ? exp_string : exp_numeric);
    emitoperand(var);
}

// ops.var; the text of the operators takes its place in the pool of strings.
void compiletimeseries(std::string_view name, boolean subscript) {
    std::size_t dot = name.rfind('.');
    std::string_view ops = name.substr(0, dot);
    if (subscript) fail(198);
    if (ops.size() > 79) failon(opmsg(ops, op_toolong));
    Int4 number;
    failon(ts_parse(ops, &number));
    Int4 var = findvariable(name.substr(dot + 1));
    if (!var) failon(notfound(name.substr(dot + 1)));
    if (number == 0) return compileload(var);
    if (isstring(var)) {
        failon(errorf(109, "%s:  may not use time-series operators on string variables\n", varlist[var - 1]));
    }
    failon(tsetup());
    char text[24];
    if (pooltext(ts_text(number, text)) < 0) fail(130, "too many literals\n");
    emit(cw_loadts, exp_numeric);
    emitoperand(number);
    emitoperand(var);
}

boolean compilescalar(std::string_view name) {
    Double value;
    std::string text;
    scalarkind kind = scalarget(name, value, text);
    if (kind == scalar_number) emitliteral(value);
    if (kind == scalar_text) emittext(text);
    return kind != scalar_none;
}

// Two subscripts are a matrix's.
boolean hastwo(span s) {
    for (Int4 i = s.b; i < s.e; i++) {
        if (mate(i) > i) i = mate(i);
        else if (at(i) == ',') return true;
    }
    return false;
}

void compilename(std::string_view name, span s) {
    Int4 behind = s.b + Int4(name.size());
    boolean subscript = behind < s.e;
    if (compilesystem(name, subscript) || compilecoefficient(name, s)) return;
    boolean dotted = name.find('.') != name.npos;
    if (cc.visible && dotted) return compiletimeseries(name, subscript);
    if (subscript && hastwo({behind + 1, s.e - 1}) && compilematrixname(name, s)) return;
    Int4 var = cc.visible ? findvariable(name) : 0;
    if (var && !subscript) return compileload(var);
    if (var) return compileloadat(var, {behind + 1, s.e - 1});
    if (compilematrixname(name, s) || (!subscript && compilescalar(name))) return;
    failon(cc.matrices ? matnotfound(name) : notfound(name));
}

void compileatom(span s) {
    if (at(s.b) == '"' || (at(s.b) == '`' && mate(s.b) >= 0)) return compilequoted(s);
    if (compilenumber(s)) return;
    Int4 end = s.b;
    while (end < s.e && at(end) != '(' && at(end) != '[') end++;
    if (end < s.e && at(s.b) != '[' && mate(end) != s.e - 1) fail(198);
    std::string_view name = spantext({s.b, end});
    if (name.size() > 113 || (name.empty() && at(s.b) != '[')) fail(198);
    if (end < s.e && at(end) == '(') compilecall(name, {end + 1, s.e - 1});
    else compilename(name, s);
}

boolean isenclosed(span s) { return s.e - s.b >= 2 && mate(s.b) == s.e - 1 && (at(s.b) == '(' || at(s.b) == '['); }

}  // namespace

// A span is worth at least one code word, but for those around hidden names; whatever is nested deeper than all words
// can't be compiled.
void compilespan(span s) {
    saved deeper(cc.depth, cc.depth + 1);
    if (cc.depth > maxcode) fail(130);
    boolean enclosed = isenclosed(s);
    while (isenclosed(s)) s = {s.b + 1, s.e - 1};
    if (s.b >= s.e) fail(198);
    saved joining(cc.matjoin, cc.matjoin || (enclosed && cc.matrices));
    if (cc.matjoin && compilejoin(s)) return;
    split hit = findsplit(s);
    if (hit.level >= 0 && hit.level < powerlevel) return compilebinary(s, hit);
    boolean powerfirst = version < 500;
    if (!powerfirst && compileunary(s)) return;
    if (hit.level == powerlevel) return compilebinary(s, hit);
    if (powerfirst && compileunary(s)) return;
    if (at(s.e - 1) == '\'' && mate(s.e - 1) < 0) {
        compilespan({s.b, s.e - 1});
        return compiletranspose();
    }
    compileatom(s);
}

namespace {

void checkresult(Int4 mode) {
    UByte type = toptype();
    boolean fits = mode == mode_str   ? type == exp_string
                   : mode == mode_any ? type != exp_matrix
                   : mode == mode_mat ? type == exp_matrix
                   : mode == mode_nummat ? type != exp_string
                                      : type == exp_numeric;
    if (!fits) fail(109);
    cc.e->restype = type;
}

void begin(exp& e, Int4 mode, const compileoptions& options) {
    e.codelast = e.sumlast = -1;
    e.restype = exp_numeric;
    e.usesmat = 0;
    cc.e = &e;
    cc.options = options;
    cc.matrices = mode == mode_mat || mode == mode_nummat;
    cc.visible = !cc.matrices;
    cc.matjoin = options.matjoin;
    cc.depth = cc.ntypes = cc.nstrings = cc.nmatrices = 0;
    cc.arguments.clear();
}

}  // namespace

namespace {

// ---- Plain arithmetic: a literal, or two and an operator, and the line ends. That is what the counters and conditions
// of loops are once their macros have been expanded. The words are those that the general way emits.

// Digits, one point among them at most, beginning with a digit; empty when the text is anything else or too long.
std::string_view plainnumber(const char* p) {
    const char* end = p;
    boolean point = false;
    if (!isdigit(*p)) return {};
    for (; isdigit(*end) || (*end == '.' && !point); end++) point |= *end == '.';
    return end - p < 25 ? std::string_view(p, std::size_t(end - p)) : std::string_view();
}

char* afterblanks(char* p) {
    while (*p == ' ') p++;
    return p;
}

// Its value; whole numbers of few digits need no conversion.
boolean plainvalue(std::string_view text, Double& v) {
    if (text.size() > 15) return readnumber(text, v);
    std::int64_t whole = 0;
    for (char c : text) {
        if (c == '.') return readnumber(text, v);
        whole = whole * 10 + (c - '0');
    }
    v = Double(whole);
    return true;
}

struct plainparts { std::string_view first, second; const operatorrow* op; };

boolean cutplain(char* p, plainparts& parts) {
    parts.first = plainnumber(p);
    parts.op = nullptr;
    p += parts.first.size();
    p = afterblanks(p);
    if (parts.first.empty() || !*p) return !parts.first.empty();
    for (const operatorrow& row : operators) {
        if (row.first != *p || (row.second && row.second != p[1])) continue;
        parts.op = &row;
        break;
    }
    if (!parts.op) return false;
    p = afterblanks(p + (parts.op->second ? 2 : 1));
    parts.second = plainnumber(p);
    p += parts.second.size();
    return !parts.second.empty() && !*afterblanks(p);
}

boolean compileplain(exp& e) {
    char* p = afterblanks(tokrest());
    plainparts parts;
    Double a, b;
    if (!cutplain(p, parts) || !plainvalue(parts.first, a) || (parts.op && !plainvalue(parts.second, b))) return false;
    std::string_view last = parts.op ? parts.second : parts.first;
    e.textbeg = p;
    e.textend = p + (last.data() + last.size() - p);
    settokpos(e.textend);
    emitliteral(a);
    if (!parts.op) return true;
    emitliteral(b);
    expect(exp_numeric, 2);
    emit(parts.op->word, exp_numeric);
    return true;
}

}  // namespace

Int4 exp_compile(exp& e, Int4 mode, const compileoptions& options) {
    begin(e, mode, options);
    try {
        boolean ordinary = (mode == mode_num || mode == mode_any) && !options.scanonly && !options.matjoin;
        if (ordinary && compileplain(e)) return 0;
        cutexpression(cc.text, e, options);
        if (options.scanonly) return 0;
        compilespan({0, Int4(cc.text.chars.size())});
        checkresult(mode);
    } catch (const failure& f) {
        e.codelast = e.sumlast = -1;
        return f.rc;
    }
    return 0;
}

}  // namespace velmo
