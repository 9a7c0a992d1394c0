// Commands that take arguments apart: tokenize, gettoken, args, numlist.
#include <string>
#include <vector>
#include "base/text.h"
#include "core/macros.h"
#include "core/quotes.h"
#include "language/expand.h"
#include "language/numlist.h"
#include "language/options.h"
#include "language/words.h"
#include "output/errors.h"
#include "stored/families.h"

namespace velmo {

namespace {

// The text of tokenize: one string up to the options, else everything up to the first comma outside quotes.
std::string tokenizedtext() {
    char* start = tokpos;
    std::string text;
    if (stringargument(text) && (tokpeeknonblank() == 0 || tokpeeknonblank() == ',')) return text;
    settokpos(start);
    std::string_view line = start;
    std::size_t end = 0;
    while (end < line.size() && line[end] != ',') end = behindquote(line, end);
    settokpos(start + end);
    return std::string(line.substr(0, end));
}

}  // namespace

// tokenize text [, parse(chars)]
Int4 cmd_tokenize() {
    std::string text = tokenizedtext(), breaks;
    boolean given;
    if (Int4 rc = parseoptions()) return rc;
    if (Int4 rc = breakoption(breaks, 79, given)) return rc;
    if (Int4 rc = getopt_done()) return rc;
    return positionals(text, breaks);
}

namespace {

// [local|global] name, as the stored name; the word may stand in parentheses.
Int4 macroargument(std::string& name) {
    std::string_view token = nexttoken();
    boolean parentheses = token == "(";
    if (parentheses) token = nexttoken();
    boolean global = token == "global";
    if (parentheses && !global && token != "local") return error(198);
    if (parentheses && std::string_view(nexttoken()) != ")") return error(198);
    if (parentheses || global || token == "local") token = nexttoken();
    if (token.empty() || token == ":") return error(198);
    name = macroname(token, !global);
    if (!validname(name) || (global && name[0] == '_')) return badname(token);
    return 0;
}

struct taken { std::string token; std::string_view rest; boolean matched; };

Int4 taketoken(std::string_view text, std::string_view breaks, boolean quotes, boolean match, taken& out) {
    text = ltrimmed(text);
    out.matched = match && !text.empty() && text[0] == '(';
    if (out.matched) {
        std::size_t end = matchingend(text);
        if (!end) return errorf(132, "parentheses unbalanced\n");
        out.token = text.substr(1, end - 2);
        text.remove_prefix(end);
    } else {
        quoted piece;
        std::string_view from = text;
        nextpiece(text, breaks, piece);
        out.token = quotes ? from.substr(0, piece.length) : piece.content;
    }
    out.rest = breaks == " " ? ltrimmed(text) : text;
    return 0;
}

}  // namespace

// gettoken name [name2] : name3 [, parse(chars) quotes match(name)]
Int4 cmd_gettoken() {
    std::string first, rest, source, breaks, match;
    boolean given, matching;
    if (Int4 rc = macroargument(first)) return rc;
    if (tokpeeknonblank() != ':')
        if (Int4 rc = macroargument(rest)) return rc;
    if (std::string_view(nexttoken()) != ":") return error(198);
    if (Int4 rc = macroargument(source)) return rc;
    if (Int4 rc = parseoptions()) return rc;
    if (Int4 rc = breakoption(breaks, 504, given)) return rc;
    boolean quotes = getopt_flag("quotes", 1);
    if (Int4 rc = getopt_str("match", 1, match, matching)) return rc;
    if (Int4 rc = getopt_done()) return rc;
    match = macroname(match, true);
    if (matching && (match == "_" || !validname(match))) return badname(match.substr(1));

    std::string text = macrovalue(source);
    taken got;
    if (Int4 rc = taketoken(text, breaks, quotes, matching, got)) return rc;
    if (matching)
        if (Int4 rc = macroset(match, got.matched ? "(" : "")) return rc;
    if (Int4 rc = macroset(first, got.token)) return rc;
    return rest.empty() ? 0 : macroset(rest, got.rest);
}

// args name ...: local `name` receives the argument of that place.
Int4 cmd_args() {
    std::vector<std::string> names;
    while (nexttoken()[0]) {
        names.push_back(macroname(tokbuf, true));
        if (isquoted() || !validname(names.back())) return badname(tokcontent());
    }
    if (names.empty()) return error(198);
    for (std::size_t i = 0; i < names.size(); i++)
        if (Int4 rc = macroset(names[i], macrovalue("_" + std::to_string(i + 1)))) return rc;
    return 0;
}

namespace {

// A bound on the number of elements: one whole number within lo..1600, left alone when not given.
Int4 countoption(const char* name, Int4 lo, Int4& value) {
    Int4 n, given;
    if (Int4 rc = getopt_int(name, 3, &given, 1, n)) return rc;
    if (!n) return 0;
    value = given;
    return boundscheck(std::string(name) + "()", value, lo, maxnumlist);
}

Int4 numlistoptions(numlistrules& rules) {
    boolean given;
    rules.ascending = getopt_flag("ascending", 3);
    rules.descending = getopt_flag("descending", 4);
    rules.integer = getopt_flag("integer", 3);
    rules.sort = getopt_flag("sort", 4);
    rules.missingokay = getopt_flag("missingokay", 4);
    if (Int4 rc = countoption("min", 0, rules.min)) return rc;
    if (Int4 rc = countoption("max", rules.min, rules.max)) return rc;
    if (Int4 rc = getopt_str("range", 1, rules.range, given)) return rc;
    if (given && (rules.range.size() > 80 || !validrange(rules.range))) return errorf(198, "option range() invalid\n");
    return getopt_done();
}

}  // namespace

Int4 cmd_numlist() {
    std::string text;
    numlistrules rules;
    std::vector<Double> numbers;
    if (!stringargument(text)) return error(198);
    if (Int4 rc = parseoptions()) return rc;
    if (Int4 rc = numlistoptions(rules)) return rc;
    if (Int4 rc = numlistparse(text, rules, numbers)) return rc;
    rclear();
    rmacro("numlist", numlisttext(numbers));
    return 0;
}

}  // namespace velmo
