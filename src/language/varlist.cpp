#include "language/varlist.h"
#include <string>
#include <vector>
#include "base/text.h"
#include "data/labels.h"
#include "data/timeseries.h"
#include "language/stdparse.h"
#include "output/errors.h"

namespace velmo {

Int4* vl_vr;
tsvar* vl_rcp;

boolean isstopword(const char* word) {
    static constexpr std::string_view words[] = {"with", "using", "if", "in", "%", "=", ",", "[", ""};
    for (std::string_view w : words)
        if (w == word) return true;
    return false;
}

namespace {

Int4 appendvar(Int4 var, Int4 op = 0) {
    if (vl_n >= maxvar - 1) return error(103);
    vl_vr[vl_n] = var;
    vl_rcp[vl_n] = {Int2(op), 0, var};
    vl_n++;
    return 0;
}

boolean shown(const nametable& among, Int4 v) { return among.names[v - 1][0] != '('; }      // not (e)

Int4 appendrange(const nametable& among, Int4 from, Int4 to) {
    for (Int4 v = from; v <= to; v++) {
        if (!shown(among, v)) continue;
        if (Int4 rc = appendvar(v)) return rc;
    }
    return 0;
}

// `*` and `?` take all that match, `~` must match one.
Int4 appendpattern(const nametable& among, const std::string& token) {
    boolean tilde = token.find('~') != std::string::npos;
    if (tilde && token.find_first_of("*?") != std::string::npos)
        return errorf(198, "%s:  may not combine ~ and *-or-? notation\n", token.c_str());
    std::string pattern = token;
    for (char& c : pattern)
        if (c == '~') c = '*';
    Int4 matched = 0, only = 0;
    for (Int4 v = 1; v <= among.n; v++) {
        if (!shown(among, v) || !wildmatch(among.names[v - 1], pattern, false)) continue;
        matched++;
        only = v;
        if (tilde) continue;
        if (Int4 rc = appendvar(v)) return rc;
    }
    if (!matched) return varnotfound(token);
    if (!tilde) return 0;
    return matched > 1 ? nameerror(name_ambiguous, token) : appendvar(only);
}

// A name, or a range name-name.
Int4 appendname(const nametable& among, const std::string& token) {
    Int4 from = lookupamong(among, token);
    if (from < 0) return -from;
    if (tokpeeknonblank() != '-') return appendvar(from);
    nexttoken(breakvarlist);
    Int4 to = lookupamong(among, nexttoken(breakvarlist));
    if (to < 0) return -to;
    if (to < from) return errorf(111, "Variables out of order\n");
    return appendrange(among, from, to);
}

// ---- Time-series elements: ops.var or ops.(var ...), where ops may hold parenthesised numlists.

constexpr std::size_t maxcombinations = 1000;

// The numbers of a list such as 1/3 or 1 4 7 in an operator; at most 100.
Int4 operatornumbers(std::string_view text, std::vector<Int4>& out) {
    auto invalid = [] { return errorf(198, "numlist in operator invalid\n"); };
    while (!(text = ltrimmed(text)).empty()) {
        std::size_t end = std::min(text.find(' '), text.size());
        std::string_view item = text.substr(0, end);
        text.remove_prefix(end);
        std::size_t slash = item.find('/');
        Int4 a, b;
        if (!readinteger(item.substr(0, slash), a)) return invalid();
        b = a;
        if (slash != std::string_view::npos && !readinteger(item.substr(slash + 1), b)) return invalid();
        if (std::int64_t(b) - a >= 100 || std::int64_t(a) - b >= 100) return invalid();
        for (Int4 k = a;; k += a <= b ? 1 : -1) {
            if (out.size() == 100) return invalid();
            out.push_back(k);
            if (k == b) break;
        }
    }
    return out.empty() ? invalid() : 0;
}

// The operator numbers that `ops` stands for: one, or one for each combination of its lists' numbers.
Int4 operatorsof(const std::string& ops, std::vector<Int4>& out) {
    if (out.size() >= maxcombinations) return opmsg(ops, op_invalid);
    std::size_t open = ops.find('('), close = ops.find(')');
    Int4 number;
    if (open == std::string::npos) {
        if (Int4 rc = ts_parse(ops, &number)) return rc;
        out.push_back(number);
        return 0;
    }
    if (close == std::string::npos || close < open) return opmsg(ops, op_invalid);
    std::vector<Int4> counts;
    if (Int4 rc = operatornumbers(std::string_view(ops).substr(open + 1, close - open - 1), counts)) return rc;
    for (Int4 k : counts) {
        std::string one = ops.substr(0, open) + std::to_string(k) + ops.substr(close + 1);
        if (Int4 rc = operatorsof(one, out)) return rc;
    }
    return 0;
}

Int4 appendoperated(const nametable& among, const std::string& name, const std::vector<Int4>& operators) {
    Int4 var = lookupamong(among, name);
    if (var < 0) return -var;
    if (isstringtype(among.types[var - 1]))
        return errorf(109, "%s:  may not use time-series operators on string variables\n", among.names[var - 1]);
    for (Int4 op : operators)
        if (Int4 rc = appendvar(var, op)) return rc;
    return 0;
}

// The text of the operators, from the start of the element to the dot that ends them; false when there is none.
boolean operatortext(std::string& ops) {
    const char* p = tokstart;
    Int4 depth = 0;
    for (; *p && !(depth == 0 && (*p == ' ' || *p == ',')); p++) {
        if (*p == '(') depth++;
        if (*p == ')') depth--;
        if (*p == '.' && depth == 0) {
            ops.assign(tokstart, std::size_t(p - tokstart));
            settokpos(tokstart + ops.size() + 1);
            return true;
        }
    }
    return false;
}

Int4 appendtimeseries(const nametable& among) {
    if (parsing.tsops == never) return error(6101);
    std::string ops, element = tokbuf;
    if (!operatortext(ops)) return opmsg(element, op_invalid);
    if (ops.size() > 79) return opmsg(ops, op_toolong);
    std::vector<Int4> operators;
    if (Int4 rc = operatorsof(ops, operators)) return rc;
    if (Int4 rc = tsetup()) return rc;
    if (tokpeek() != '(') return appendoperated(among, nexttoken(breakvarlist), operators);
    nexttoken();
    while (std::string_view(nexttoken(breakvarlist)) != ")") {
        if (!tokbuf[0]) return error(198);
        if (Int4 rc = appendoperated(among, tokbuf, operators)) return rc;
    }
    return 0;
}

// ---- The existing list.

struct grouping { boolean open = false; };

Int4 groupmark(char mark, grouping& g) {
    if (mark == '(') {
        if (g.open || vl_ngroups == 5) return error(198);
        g.open = true;
        if (vl_ngroups == 0) vl_groupbegin = vl_n;
        return 0;
    }
    if (!g.open) return error(198);
    g.open = false;
    vl_groups[vl_ngroups++] = vl_n;
    return 0;
}

Int4 appendelement(const nametable& among, grouping& g) {
    std::string token = tokbuf;
    if (token == "(" || token == ")") return groupmark(token[0], g);
    if (token == "_all") return appendrange(among, 1, among.n);
    if (token == "_skip") return error(198);
    boolean operated = token.find('.') != std::string::npos || tokpeek() == '(';
    if (isnamestart(token[0]) && operated) return appendtimeseries(among);
    if (token.find_first_of("*?~") != std::string::npos) return appendpattern(among, token);
    return appendname(among, token);
}

}  // namespace

Int4 existinglist(const nametable& among) {
    grouping g;
    while (!isstopword(nexttoken(breakvarlist)) && !isquoted()) {
        vl_given = 1;
        if (Int4 rc = appendelement(among, g)) return rc;
    }
    ungettoken();
    if (g.open) return error(198);
    if (vl_given) return 0;
    return parsing.varlist == must ? required("varlist") : appendrange(among, 1, among.n);
}

namespace {

// ---- The new list.

struct newvarstate { UByte type; boolean bracketed; };

// A type word for the next name, or with ( for all names up to ).
boolean typeword(newvarstate& s) {
    UByte type = typecode(tokbuf);
    if (!type) return false;
    s.type = type;
    if (tokpeeknonblank() == '(') {
        nexttoken();
        s.bracketed = true;
    }
    return true;
}

Int4 addnew(const std::string& name, UByte type) {
    if (vl_n >= maxvar - 1) return error(103);
    if (Int4 rc = addvar(name, type)) return rc;
    return appendvar(nvar);
}

// A name's stem and the number at its end; false when there are no digits or too many.
boolean numbered(const std::string& name, std::string& stem, Int4& number) {
    std::size_t i = name.size();
    while (i > 0 && isdigit(name[i - 1])) i--;
    stem = name.substr(0, i);
    return i < name.size() && name.size() - i < 10 && readinteger(name.substr(i), number);
}

Int4 addseries(const std::string& first, const std::string& last, UByte type) {
    std::vector<std::string> names;
    if (Int4 rc = seriesnames(first, last, names)) return rc;
    for (const std::string& name : names)
        if (Int4 rc = addnew(name, type)) return rc;
    return 0;
}

Int4 skipslots() {
    Int4 count = 1;
    char *begin, *end;
    if (tokpeek() == '(') {
        if (!parenthesized(&begin, &end)) return error(198);
        if (!readinteger(trimmed({begin, std::size_t(end - begin)}), count) || count < 1) return error(198);
    }
    while (count-- > 0)
        if (Int4 rc = appendvar(-1)) return rc;
    return 0;
}

// `:lbl` behind names: entries from `from` on get the value label.
Int4 attachlabel(Int4 from) {
    if (tokpeek() != ':') return 0;
    nexttoken();
    std::string label = nexttoken();
    if (!validname(label)) return badname(label);
    for (Int4 i = from; i < vl_n; i++) {
        if (isstring(vl_vr[i])) return error(181);
        copytext(lbl[vl_vr[i] - 1], namesize, label);
    }
    return 0;
}

Int4 newelement(newvarstate& s) {
    std::string name = tokbuf;
    Int4 from = vl_n;
    if (name == "_skip") return parsing.skips ? skipslots() : error(198);
    if (tokpeek() == '-') {
        nexttoken();
        if (Int4 rc = addseries(name, nexttoken(), s.type)) return rc;
    } else if (Int4 rc = addnew(name, s.type)) {
        return rc;
    }
    if (Int4 rc = attachlabel(from)) return rc;
    if (!s.bracketed) s.type = defaulttype;
    return 0;
}

}  // namespace

Int4 seriesnames(const std::string& first, const std::string& last, std::vector<std::string>& names) {
    std::string stem, stem2;
    Int4 a, b;
    if (!numbered(first, stem, a) || !numbered(last, stem2, b) || stem != stem2 || a > b) return error(198);
    if (b - a >= maxvar) return error(103);
    for (Int4 i = a; i <= b; i++) names.push_back(stem + std::to_string(i));
    return 0;
}

Int4 newlist() {
    newvarstate s{defaulttype, false};
    while (!isstopword(nexttoken()) && !isquoted()) {
        vl_given = 1;
        if (tokbuf[0] == ')' && s.bracketed) {
            s = {defaulttype, false};
            continue;
        }
        if (typeword(s)) continue;
        if (Int4 rc = newelement(s)) return rc;
    }
    ungettoken();
    if (s.bracketed) return error(198);
    return vl_given || parsing.varlist != must ? 0 : required("varlist");
}

}  // namespace velmo
