#include "estimate/constraints.h"
#include <algorithm>
#include <cmath>
#include <cstring>
#include <string>
#include "base/saved.h"
#include "base/state.h"
#include "base/text.h"
#include "core/objects.h"
#include "core/tokenizer.h"
#include "expr/matrixread.h"
#include "language/numlist.h"
#include "language/stdparse.h"
#include "output/errors.h"
#include "output/formats.h"
#include "stored/posted.h"
#include "stored/scalars.h"

namespace velmo {

// ---- The numbered texts.

Int4 constraint_put(Int4 number, std::string_view text) {
    std::string name = std::to_string(number);
    if (!text.empty()) return objputtext(name, obj_constraint, text);
    objdel(name, obj_constraint);
    return 0;
}

boolean constraint_get(Int4 number, std::string& text) {
    object* o = objfind(std::to_string(number), obj_constraint);
    if (o) text = fieldtext(reinterpret_cast<char*>(o->data()), o->datalen);
    return o != nullptr;
}

void constraint_dropall() { objdeltype(obj_constraint); }

Int4 constraint_list(std::string_view text, std::vector<Int4>& numbers) {
    text = trimmed(text);
    if (text.empty() || text == "_all") {
        for (Int4 i = 1; i <= mostconstraints; i++)
            if (objfind(std::to_string(i), obj_constraint)) numbers.push_back(i);
        return 0;
    }
    std::vector<Double> list;
    numlistrules rules;
    rules.integer = true;
    if (Int4 rc = numlistparse(text, rules, list)) return rc;
    for (Double x : list) {
        if (!(x >= 1 && x <= mostconstraints)) return error(198);
        numbers.push_back(Int4(x));
    }
    return 0;
}

// ---- An equation: both sides as linear forms, by a parser that goes down the operators.

namespace {

struct reader {
    std::string_view text;
    std::size_t at = 0;
    std::size_t k;               // coefficients
    Int4 depth = 0;
    static constexpr Int4 deepest = 200;
    char next() {
        while (at < text.size() && text[at] == ' ') at++;
        return at < text.size() ? text[at] : char(0);
    }
};

Int4 readsum(reader& r, constraintrow& out);

boolean constant(const constraintrow& row) {
    return std::all_of(row.begin(), row.end() - 1, [](Double x) { return x == 0; });
}

void addtimes(constraintrow& to, const constraintrow& row, Double factor) {
    for (std::size_t i = 0; i < to.size(); i++) to[i] += factor * row[i];
}

constraintrow zeros(std::size_t k) { return constraintrow(k + 1, 0); }

Int4 put(constraintrow& out, Int4 at) {
    out[std::size_t(at)] = 1;
    return 0;
}

// Where the bracket closes that opens at `open`; text.size() when it doesn't.
std::size_t closing(std::string_view text, std::size_t open) {
    char opens = text[open], closes = opens == '(' ? ')' : ']';
    Int4 depth = 0;
    for (std::size_t i = open; i < text.size(); i++) {
        depth += (text[i] == opens) - (text[i] == closes);
        if (depth == 0) return i;
    }
    return text.size();
}

// A function of numbers; of variables or coefficients it isn't linear.
Int4 readfunction(std::string_view text, constraintrow& out) {
    elsewhere cursor(text);
    Double value = missing;
    {
        saved<UByte> quiet(quietlevel, shows_nothing);
        if (numberhere(value) || tokpeeknonblank()) value = missing;
    }
    out.back() = value;
    return value == missing ? error(131) : 0;
}

// A coefficient, else a number that the user has named so.
Int4 readcoefficient(std::string_view eq, std::string_view name, constraintrow& out) {
    Int4 at;
    Double value;
    std::string text;
    {
        saved<UByte> quiet(quietlevel, shows_nothing);
        if (!findcoefficient(eq, name, at)) return put(out, at);
    }
    if (!eq.empty() || scalarget(name, value, text) != scalar_number) return findcoefficient(eq, name, at);
    if (value == missing) return error(131);
    out.back() = value;
    return 0;
}

boolean isend(char c) { return std::strchr(" +-*/^()[]=,", c) != nullptr; }

// A name, behind [eq] or not: _b[name] or name.
Int4 readname(reader& r, constraintrow& out) {
    std::string_view eq;
    if (r.next() == '[') {
        std::size_t close = closing(r.text, r.at);
        if (close == r.text.size()) return error(198);
        eq = trimmed(r.text.substr(r.at + 1, close - r.at - 1));
        r.at = close + 1;
        r.next();
    }
    std::size_t begin = r.at;
    while (r.at < r.text.size() && !isend(r.text[r.at])) r.at++;
    std::string_view name = r.text.substr(begin, r.at - begin);
    char behind = r.at < r.text.size() ? r.text[r.at] : char(0);
    if (name.empty()) return error(198);
    if ((name == "_b" || name == "_coef") && behind == '[') {
        std::size_t close = closing(r.text, r.at);
        if (close == r.text.size()) return error(198);
        name = trimmed(r.text.substr(r.at + 1, close - r.at - 1));
        r.at = close + 1;
    } else if (behind == '(' && eq.empty()) {
        std::size_t close = closing(r.text, r.at);
        if (close == r.text.size()) return error(198);
        r.at = close + 1;
        return readfunction(r.text.substr(begin, r.at - begin), out);
    }
    return readcoefficient(eq, name, out);
}

// A number with its exponent, whose sign is no operator.
Int4 readnumberhere(reader& r, constraintrow& out) {
    std::size_t end = r.at;
    while (end < r.text.size() && (isdigit(r.text[end]) || r.text[end] == '.')) end++;
    if (end < r.text.size() && std::strchr("eEdD", r.text[end])) {
        std::size_t e = end + 1;
        if (e < r.text.size() && (r.text[e] == '+' || r.text[e] == '-')) e++;
        if (e < r.text.size() && isdigit(r.text[e]))
            for (end = e; end < r.text.size() && isdigit(r.text[end]);) end++;
    }
    if (!readnumber(r.text.substr(r.at, end - r.at), out.back()) || std::isinf(out.back())) return error(198);
    r.at = end;
    return 0;
}

Int4 readpower(reader& r, constraintrow& out);

Int4 readprimary(reader& r, constraintrow& out) {
    char c = r.next();
    if (r.depth++ > reader::deepest) return error(130);
    onexit up([&] { r.depth--; });
    out = zeros(r.k);
    if (c == '-' || c == '+') {
        r.at++;
        constraintrow operand;
        if (Int4 rc = readpower(r, operand)) return rc;
        addtimes(out, operand, c == '-' ? -1 : 1);
        return 0;
    }
    if (c == '(') {
        r.at++;
        if (Int4 rc = readsum(r, out)) return rc;
        if (r.next() != ')') return error(198);
        r.at++;
        return 0;
    }
    return isdigit(c) || c == '.' ? readnumberhere(r, out) : readname(r, out);
}

// A power, which is of numbers.
Int4 readpower(reader& r, constraintrow& out) {
    if (Int4 rc = readprimary(r, out)) return rc;
    while (r.next() == '^') {
        r.at++;
        constraintrow exponent;
        if (Int4 rc = readprimary(r, exponent)) return rc;
        if (!constant(out) || !constant(exponent)) return error(131);
        out.back() = std::pow(out.back(), exponent.back());
        if (!std::isfinite(out.back())) return error(131);
    }
    return 0;
}

Int4 readproduct(reader& r, constraintrow& out) {
    if (Int4 rc = readpower(r, out)) return rc;
    for (char c = r.next(); c == '*' || c == '/'; c = r.next()) {
        r.at++;
        constraintrow other, left = out;
        if (Int4 rc = readpower(r, other)) return rc;
        if (c == '*' && constant(left)) std::swap(left, other);
        if (!constant(other) || (c == '/' && other.back() == 0)) return error(131);
        out = zeros(r.k);
        addtimes(out, left, c == '*' ? other.back() : 1 / other.back());
    }
    return 0;
}

Int4 readsum(reader& r, constraintrow& out) {
    if (Int4 rc = readproduct(r, out)) return rc;
    for (char c = r.next(); c == '+' || c == '-'; c = r.next()) {
        r.at++;
        constraintrow other;
        if (Int4 rc = readproduct(r, other)) return rc;
        addtimes(out, other, c == '-' ? -1 : 1);
    }
    return 0;
}

// left = right, or == ; the coefficients come to the left and the constants to the right.
Int4 readequation(std::string_view text, std::size_t k, std::vector<constraintrow>& rows) {
    reader r{text, 0, k};
    constraintrow left, right;
    if (Int4 rc = readsum(r, left)) return rc;
    if (r.next() != '=') return error(198);
    r.at++;
    if (r.at < text.size() && text[r.at] == '=') r.at++;
    if (Int4 rc = readsum(r, right)) return rc;
    if (r.next()) return error(198);
    addtimes(left, right, -1);
    left.back() = -left.back();
    for (Double& x : left)
        if (x == 0) x = 0;           // no minus zeros
    rows.push_back(left);
    return 0;
}

// ---- Lists.

// Words of a list, of which those that are no coefficients' may be ranges and patterns of variables.
Int4 readwords(std::string_view text, std::vector<std::string>& words) {
    std::vector<axisname> names = postednames();
    for (text = trimmed(text); !text.empty(); text = ltrimmed(text)) {
        std::string word(text.substr(0, text.find(' ')));
        text.remove_prefix(word.size());
        auto isit = [&](const axisname& a) { return a.opname() == word; };
        if (word.find_first_of("-*?~(") == word.npos || std::any_of(names.begin(), names.end(), isit)) {
            words.push_back(word);
            continue;
        }
        elsewhere cursor(word);
        saved rules(parsing, form{.varlist = must, .tsops = may});
        vl_n = vl_ngroups = vl_given = 0;
        if (Int4 rc = existinglist()) return rc;
        for (Int4 i = 0; i < vl_n; i++) words.push_back(entryname(i));
    }
    return 0;
}

Int4 readlist(std::string_view text, std::string_view eq, std::vector<Int4>& out) {
    std::vector<std::string> words;
    if (Int4 rc = readwords(text, words)) return rc;
    for (const std::string& word : words) {
        Int4 at;
        if (Int4 rc = findcoefficient(eq, word, at)) return rc;
        out.push_back(at);
    }
    return 0;
}

// All coefficients of an equation.
Int4 wholeequation(std::string_view eq, std::vector<Int4>& out) {
    std::string name;
    if (Int4 rc = findequation(eq, name)) return rc;
    std::vector<axisname> names = postednames();
    for (std::size_t i = 0; i < names.size(); i++)
        if (name == (names[i].eq[0] ? names[i].eqtext() : "_")) out.push_back(Int4(i));
    return 0;
}

void zero(const std::vector<Int4>& which, std::size_t k, std::vector<constraintrow>& rows) {
    for (Int4 at : which) {
        rows.push_back(zeros(k));
        rows.back()[std::size_t(at)] = 1;
    }
}

// [eq1=eq2]: the coefficients that a list names, or that both have.
Int4 equal(std::string_view eq1, std::string_view eq2, std::string_view list, std::vector<constraintrow>& rows) {
    std::vector<axisname> names = postednames();
    std::vector<Int4> left, right;
    if (list.empty()) {
        std::vector<Int4> all, others;
        if (Int4 rc = wholeequation(eq1, all)) return rc;
        if (Int4 rc = wholeequation(eq2, others)) return rc;
        for (Int4 i : all)
            for (Int4 j : others)
                if (names[std::size_t(i)].opname() == names[std::size_t(j)].opname()) {
                    left.push_back(i);
                    right.push_back(j);
                }
    } else {
        if (Int4 rc = readlist(list, eq1, left)) return rc;
        if (Int4 rc = readlist(list, eq2, right)) return rc;
    }
    if (left.empty()) return notfound(std::string(eq1) + "=" + std::string(eq2));
    for (std::size_t i = 0; i < left.size(); i++) {
        rows.push_back(zeros(names.size()));
        rows.back()[std::size_t(left[i])] += 1;
        rows.back()[std::size_t(right[i])] -= 1;
    }
    return 0;
}

// [eq]name [eq]name ...: each is 0.
Int4 readnames(std::string_view text, std::size_t k, std::vector<constraintrow>& rows) {
    for (reader r{text, 0, k}; r.next();) {
        rows.push_back(zeros(k));
        if (Int4 rc = readname(r, rows.back())) return rc;
    }
    return 0;
}

// Texts that begin with a bracket and hold nothing else, or a colon and a list behind it.
Int4 readbracket(std::string_view inside, std::string_view list, std::size_t k, std::vector<constraintrow>& rows) {
    std::size_t sign = inside.find('=');
    if (sign != inside.npos) {
        std::size_t behind = sign + (inside.substr(sign, 2) == "==" ? 2 : 1);
        return equal(trimmed(inside.substr(0, sign)), trimmed(inside.substr(behind)), list, rows);
    }
    std::vector<Int4> which;
    if (Int4 rc = list.empty() ? wholeequation(inside, which) : readlist(list, inside, which)) return rc;
    zero(which, k, rows);
    return 0;
}

}  // namespace

Int4 buildconstraints(std::string_view text, std::vector<constraintrow>& rows) {
    if (!posted()) return error(301);
    std::size_t k = postednames().size(), close = 0;
    text = trimmed(text);
    if (text.empty()) return error(198);
    if (text[0] == '[') {
        close = closing(text, 0);
        if (close == text.size()) return error(198);
        std::string_view inside = trimmed(text.substr(1, close - 1)), behind = trimmed(text.substr(close + 1));
        if (behind.empty() || behind[0] == ':')
            return readbracket(inside, behind.empty() ? behind : trimmed(behind.substr(1)), k, rows);
    }
    if (text.find('=', close) != text.npos) return readequation(text, k, rows);
    std::vector<Int4> which;
    if (close) return readnames(text, k, rows);
    if (Int4 rc = readlist(text, "", which)) return rc;
    zero(which, k, rows);
    return 0;
}

namespace {

std::string numberfor(Double x) {
    char text[512];
    return {text, std::size_t(fmttrimmed("%10.0g", x, text))};
}

}  // namespace

std::string constrainttext(const Double* row) {
    std::vector<axisname> names = postednames();
    std::string out;
    for (std::size_t i = 0; i < names.size(); i++) {
        Double x = row[i];
        if (x == 0) continue;
        out += x < 0 ? (out.empty() ? "- " : " - ") : out.empty() ? "" : " + ";
        if (std::fabs(x) != 1) out += numberfor(std::fabs(x)) + "*";
        if (names[i].eq[0]) out += "[" + std::string(names[i].eqtext()) + "]";
        out += names[i].opname();
    }
    return (out.empty() ? "0" : out) + " = " + numberfor(row[names.size()]);
}

}  // namespace velmo
