// The option table: each word behind the comma with the text of its parentheses, and whether a getter took it.
#include "language/options.h"
#include <cmath>
#include <set>
#include "base/text.h"
#include "core/commands.h"
#include "core/quotes.h"
#include "core/settings.h"
#include "data/dataset.h"
#include "language/stdparse.h"
#include "output/errors.h"

namespace velmo {

Int4 confidencelevel = 95;

namespace {

constexpr Int4 maxoptions = 50;

struct optionrow {
    std::string_view word;
    std::string_view argument;
    boolean hasargument;
    boolean consumed;
};
optionrow options[maxoptions];
Int4 noptions = 0;

// Records one option at the cursor.
Int4 recordoption() {
    nexttoken();
    if (noptions == maxoptions) return error(1003);
    optionrow& row = options[noptions];
    row = {{tokstart, std::size_t(tokpos - tokstart)}, {}, false, false};
    if (tokpeek() == '(' && isnamestart(tokbuf[0])) {
        char *begin, *end;
        if (!parenthesized(&begin, &end)) return error(198);
        row.argument = {begin, std::size_t(end - begin)};
        row.hasargument = true;
    }
    noptions++;
    return 0;
}

// What has been asked for under `set debug on`: the command's word, the option, its fewest characters, `()` when it has
// an argument.
std::set<std::string> asked;

void noteasked(const char* name, Int4 min, boolean witharg) {
    const command* row = commandrow_any(cmdword);
    if (row) asked.insert(std::string(row->word) + " " + name + " " + std::to_string(min) + (witharg ? " ()" : ""));
}

optionrow* findoption(const char* name, Int4 min, boolean witharg) {
    if (set_debug) noteasked(name, min, witharg);
    for (Int4 i = 0; i < noptions; i++) {
        optionrow& row = options[i];
        if (row.consumed || row.hasargument != witharg || !abbrev(row.word, name, min)) continue;
        row.consumed = true;
        return &row;
    }
    return nullptr;
}

// The next word of an argument: separated by commas and blanks.
std::string_view nextnumber(std::string_view& text) {
    std::size_t i = text.find_first_not_of(" ,");
    if (i == std::string_view::npos) {
        text = {};
        return {};
    }
    std::size_t end = text.find_first_of(" ,", i);
    if (end == std::string_view::npos) end = text.size();
    std::string_view word = text.substr(i, end - i);
    text.remove_prefix(end);
    return word;
}

}  // namespace

Int4 parseoptions() {
    noptions = 0;
    if (tokpeeknonblank() == 0 && !tokrepeat) return 0;
    std::string_view token = nexttoken();
    if (token == ",") {
        if (parsing.options == never) return notallowed("options");
        while (tokpeeknonblank())
            if (Int4 rc = recordoption()) return rc;
        return 0;
    }
    ungettoken();
    if (token.empty()) return 0;
    return errorf(198, "'%s' found where nothing expected\n", tokcontent());
}

void getopt_again() {
    for (Int4 i = 0; i < noptions; i++) options[i].consumed = false;
}

boolean getopt_flag(const char* name, Int4 min) { return findoption(name, min, false) != nullptr; }

boolean getopt_noflag(const char* name, Int4 min, boolean otherwise) {
    if (getopt_flag(name, min)) return true;
    for (Int4 i = 0; i < noptions; i++) {
        optionrow& row = options[i];
        if (row.consumed || row.hasargument || row.word.substr(0, 2) != "no") continue;
        if (!abbrev(row.word.substr(2), name, min)) continue;
        row.consumed = true;
        return false;
    }
    return otherwise;
}

Int4 getopt_num(const char* name, Int4 min, Double* out, Int4 limit, Int4& n, boolean allowmissing) {
    n = 0;
    optionrow* row = findoption(name, min, true);
    if (!row) return 0;
    std::string_view text = row->argument;
    for (std::string_view word = nextnumber(text); !word.empty(); word = nextnumber(text)) {
        if (n == limit) return errorf(198, "option %s() invalid\n", name);
        if (word == "." && allowmissing)
            out[n++] = missing;
        else if (readnumber(word, out[n]) && std::isfinite(out[n]))
            n++;
        else
            return errorf(198, "option %s() invalid\n", name);
    }
    return n ? 0 : errorf(198, "option %s() invalid\n", name);
}

Int4 getopt_int(const char* name, Int4 min, Int4* out, Int4 limit, Int4& n) {
    std::vector<Double> values(std::size_t(limit) + 1);
    if (Int4 rc = getopt_num(name, min, values.data(), limit, n)) return rc;
    for (Int4 i = 0; i < n; i++) {
        Double v = values[std::size_t(i)];
        if (v != std::floor(v) || v < -2147483648.0 || v >= 2147483647.0)
            return errorf(198, "option %s() invalid\n", name);
        out[i] = Int4(v);
    }
    return 0;
}

Int4 getopt_str(const char* name, Int4 min, std::string& text, boolean& found) {
    optionrow* row = findoption(name, min, true);
    found = row != nullptr;
    if (found) text = unquoted(row->argument);
    return 0;
}

Int4 getopt_words(const char* name, Int4 min, std::vector<std::string>& words, Int4 limit, boolean& found) {
    optionrow* row = findoption(name, min, true);
    found = row != nullptr;
    words.clear();
    if (!found) return 0;
    std::string_view text = row->argument;
    for (std::string_view word; nextitem(text, word);) {
        if (Int4(words.size()) == limit) return errorf(198, "option %s() invalid\n", name);
        words.emplace_back(word);
    }
    return 0;
}

Int4 getopt_vars(const char* name, Int4 min, std::vector<Int4>& vars, boolean& found) {
    std::vector<std::string> words;
    vars.clear();
    if (Int4 rc = getopt_words(name, min, words, maxvar, found)) return rc;
    for (const std::string& word : words) {
        Int4 var = lookupvar(word, lookup_ref);
        if (var < 0) return -var;
        vars.push_back(var);
    }
    return 0;
}

Int4 getopt_level(Int4 min, Int4& level) {
    Int4 n;
    level = confidencelevel;
    if (Int4 rc = getopt_int("level", min, &level, 1, n)) return rc;
    return boundscheck("level()", level, 10, 99);
}

const std::set<std::string>& optionsasked() { return asked; }

std::vector<typedoption> typedoptions() {
    std::vector<typedoption> typed;
    for (Int4 i = 0; i < noptions; i++) {
        const optionrow& row = options[i];
        const char* begin = row.word.data();
        const char* end = row.hasargument ? row.argument.data() + row.argument.size() + 1 : begin + row.word.size();
        typed.push_back({row.word, row.argument, {begin, std::size_t(end - begin)}, row.hasargument});
    }
    return typed;
}

Int4 getopt_done() {
    for (Int4 i = 0; i < noptions; i++) {
        const optionrow& row = options[i];
        if (row.consumed) continue;
        Int4 n = Int4(row.word.size());
        if (!row.hasargument) return errorf(198, "%.*s invalid\n", n, row.word.data());
        return errorf(198, "%.*s(%.*s) invalid\n", n, row.word.data(), Int4(row.argument.size()), row.argument.data());
    }
    return 0;
}

}  // namespace velmo
