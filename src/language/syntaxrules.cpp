// The description language of syntax.h, read into rules.
#include "language/syntaxrules.h"
#include <algorithm>
#include <cmath>
#include "base/state.h"
#include "base/text.h"
#include "core/keywords.h"
#include "core/quotes.h"
#include "language/parse.h"
#include "output/errors.h"

namespace velmo {

namespace {

constexpr std::size_t maxoptionrules = 50;

std::size_t nameend(std::string_view text) {
    std::size_t n = 0;
    while (n < text.size() && isnamechar(text[n])) n++;
    return n;
}

std::string_view skipped(std::string_view text) {
    return text.substr(std::min(text.find_first_not_of(" ,"), text.size()));
}

// The value behind `=`: a string, or a run up to a blank or comma.
std::size_t valueend(std::string_view text, std::string_view& value) {
    quoted string;
    if (readquoted(text, string)) {
        value = string.content;
        return string.length;
    }
    value = text.substr(0, text.find_first_of(" ,"));
    return value.size();
}

}  // namespace

boolean nextattribute(std::string_view& text, attribute& out) {
    text = skipped(text);
    out = {};
    if (text.empty()) return false;
    std::size_t n = nameend(text);
    out.word = text.substr(0, n);
    text.remove_prefix(n);
    std::string_view behind = ltrimmed(text);
    if (n == 0 || behind.empty()) return true;
    if (text[0] == '(') {
        std::size_t end = matchingend(text);
        if (!end) out.word = {};
        out.value = trimmed(text.substr(1, std::max<std::size_t>(end, 2) - 2));
        text.remove_prefix(end);
        out.hasvalue = true;
    } else if (behind[0] == '=') {
        text = ltrimmed(behind.substr(1));
        text.remove_prefix(valueend(text, out.value));
        out.hasvalue = true;
    }
    return true;
}

namespace {

boolean readcount(const attribute& a, Int4& count) { return readinteger(a.value, count) && count >= 0; }

boolean readdefault(std::string_view value, listrules& rules) {
    rules.emptydefault = value == "none" || value == "empty";
    return rules.emptydefault || value == "all";
}

boolean listattribute(const attribute& a, listrules& rules) {
    enum word : Int4 { opt, req, ex, isnew, any, none, ts, numeric, string, generate, min, max, otherwise, name, id };
    static constexpr keyword words[] = {
        {"opt", 0, opt},         {"req", 0, req},           {"ex", 0, ex},   {"new", 0, isnew}, {"any", 0, any},
        {"none", 0, none},       {"ts", 0, ts},             {"numeric", 3, numeric},            {"string", 3, string},
        {"generate", 3, generate}, {"min", 0, min},         {"max", 0, max}, {"default", 0, otherwise},
        {"name", 0, name},       {"id", 0, id},
    };
    Int4 w = lookup(words, a.word);
    if (w < 0 || a.hasvalue != (w >= min)) return false;
    switch (w) {
    case opt: return true;
    case req: return rules.required = true;
    case ex: rules.kind = list_existing; return true;
    case isnew: rules.kind = list_new; return true;
    case any: rules.kind = list_any; return true;
    case none: rules.kind = list_none; return true;
    case ts: return rules.ts = true;
    case numeric: return rules.numeric = true;
    case string: return rules.string = true;
    case generate: return rules.generate = true;
    case min: return readcount(a, rules.min);
    case max: return readcount(a, rules.max);
    case otherwise: return readdefault(a.value, rules);
    case name: rules.name = a.value; return validname("_" + rules.name);
    default: rules.id = unquoted(a.value).substr(0, 32); return true;
    }
}

}  // namespace

Int4 readlistrules(std::string_view text, listrules& rules) {
    for (attribute a; nextattribute(text, a);)
        if (a.word.empty() || !listattribute(a, rules)) return error(197);
    if (rules.min < 0) rules.min = rules.required;
    return rules.min > rules.max || (rules.numeric && rules.string) ? error(197) : 0;
}

namespace {

// Real and integer: the rest is the default.
boolean numbertype(std::string_view text, optionrule& rule) {
    Double value;
    text = unquoted(text);
    rule.otherwise = text;
    if (text.empty() || (text == "." && rule.type == opt_real)) return true;
    return readnumber(text, value) && (rule.type == opt_real || value == std::floor(value));
}

boolean numlistattribute(const attribute& a, numlistrules& rules) {
    enum word : Int4 { ascending, descending, integer, sort, missingokay, min, max, range };
    static constexpr keyword words[] = {
        {"ascending", 3, ascending}, {"descending", 4, descending}, {"integer", 3, integer}, {"sort", 4, sort},
        {"missingokay", 4, missingokay}, {"min", 3, min}, {"max", 3, max}, {"range", 1, range},
    };
    Int4 w = lookup(words, a.word);
    if (w < 0 || a.hasvalue != (w >= min)) return false;
    switch (w) {
    case ascending: return rules.ascending = true;
    case descending: return rules.descending = true;
    case integer: return rules.integer = true;
    case sort: return rules.sort = true;
    case missingokay: return rules.missingokay = true;
    case min: return readcount(a, rules.min);
    case max: return readcount(a, rules.max) && rules.max <= maxnumlist;
    default: rules.range += a.value; return validrange(a.value);
    }
}

// Words, and comparisons such as >0 between or behind them.
boolean numlisttype(std::string_view text, optionrule& rule) {
    while (!(text = skipped(text)).empty()) {
        std::size_t n = text.find_first_not_of("<>=!~ +-.0123456789");
        if (isnamestart(text[0])) {
            attribute a;
            if (!nextattribute(text, a) || !numlistattribute(a, rule.numbers)) return false;
            continue;
        }
        if (n == 0) return false;
        rule.numbers.range += std::string(text.substr(0, n)) + " ";
        text.remove_prefix(std::min(n, text.size()));
    }
    return validrange(rule.numbers.range) && rule.numbers.min <= rule.numbers.max;
}

boolean varlisttype(std::string_view text, optionrule& rule) {
    rule.list.kind = list_existing;
    rule.list.required = true;
    if (rule.type == opt_varname) rule.list.max = 1;
    for (attribute a; nextattribute(text, a);)
        if (a.word.empty() || !listattribute(a, rule.list)) return false;
    if (rule.list.min < 0) rule.list.min = 1;
    return rule.list.kind == list_existing && rule.list.name.empty() && rule.list.min <= rule.list.max &&
           !(rule.list.numeric && rule.list.string);
}

boolean readtype(std::string_view text, optionrule& rule) {
    static constexpr keyword types[] = {
        {"string", 3, opt_string},     {"real", 4, opt_real},       {"integer", 3, opt_integer},
        {"numlist", 7, opt_numlist},   {"varlist", 7, opt_varlist}, {"varname", 7, opt_varname},
        {"passthru", 8, opt_passthru},
    };
    text = skipped(text);
    std::size_t n = nameend(text);
    Int4 type = lookup(types, text.substr(0, n));
    if (type < 0 || rule.negated) return false;
    rule.type = optiontype(type);
    text = trimmed(text.substr(n));
    switch (type) {
    case opt_string: rule.asis = text == "asis"; return text.empty() || rule.asis;
    case opt_real:
    case opt_integer: return numbertype(text, rule);
    case opt_numlist: return numlisttype(text, rule);
    case opt_passthru: return text.empty();
    default: return varlisttype(text, rule);
    }
}

// The name as described: `no` ahead turns a default off; leading underscores and capitals are the least abbreviation.
boolean readname(std::string_view word, optionrule& rule) {
    if (word.size() > (version < 600 ? 10U : 23U)) return false;
    rule.negated = word.size() > 2 && word.substr(0, 2) == "no";
    rule.name = word.substr(rule.negated ? 2 : 0);
    std::size_t i = 0;
    while (i < rule.name.size() && rule.name[i] == '_') i++;
    std::size_t capitals = i;
    for (; i < rule.name.size() && rule.name[i] >= 'A' && rule.name[i] <= 'Z'; i++)
        rule.name[i] = lowerchar(rule.name[i]);
    rule.min = Int4(i > capitals ? i : rule.name.size());
    return validname("_" + rule.name);
}

Int4 readoptionrule(std::string_view& text, optionrule& rule) {
    rule.required = text[0] == '+';
    if (rule.required) text.remove_prefix(1);
    std::size_t n = nameend(text);
    if (n == 0 || !readname(text.substr(0, n), rule)) return error(197);
    text.remove_prefix(n);
    if (text.empty() || text[0] != '(') return 0;
    std::size_t end = matchingend(text);
    if (!end || !readtype(text.substr(1, end - 2), rule)) return error(197);
    text.remove_prefix(end);
    return 0;
}

}  // namespace

Int4 readoptionrules(std::string_view text, std::vector<optionrule>& rules, boolean& catchall) {
    catchall = false;
    while (!(text = skipped(text)).empty()) {
        if (text[0] == '*') {
            catchall = true;
            text.remove_prefix(1);
            continue;
        }
        if (rules.size() == maxoptionrules) return error(1003);
        if (Int4 rc = readoptionrule(text, rules.emplace_back())) return rc;
    }
    return 0;
}

}  // namespace velmo
