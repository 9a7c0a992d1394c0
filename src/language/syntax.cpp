// syntax: from the notation
//   syntax [varlist(...)] [if] [in] [=exp] [fweight aweight] [using/] [, Opt1 Opt2(type)]
// to the descriptions of syntax.h. What stands in brackets is optional.
#include "language/parse.h"
#include "base/saved.h"
#include "base/text.h"
#include "core/keywords.h"
#include "core/macros.h"
#include "language/expand.h"
#include "language/stdparse.h"
#include "language/words.h"
#include "output/errors.h"

namespace velmo {

namespace {

constexpr std::size_t maxoptiontext = 5400;

enum slot : Int4 { slot_varlist, slot_if, slot_in, slot_exp, slot_weight, slot_using, slot_options, nslots };
constexpr const char* slotnames[nslots] = {"_varlist", "_if", "_in", "_exp", "_weight", "_using", "_options"};

struct translation {
    std::string text[nslots];
    boolean bracketed = false;      // within [ ]
    boolean ended = false;

    const char* need() const { return bracketed ? "opt" : "req"; }
};

// The parenthesised text at the cursor, if one begins there, into out.
Int4 attributes(std::string_view& out) {
    char *begin, *end;
    out = {};
    if (tokpeek() != '(') return 0;
    if (!parenthesized(&begin, &end)) return error(197);
    out = {begin, std::size_t(end - begin)};
    return 0;
}

Int4 listelement(translation& t) {
    static constexpr struct { std::string_view word; const char* kind; } lists[] = {
        {"varlist", " ex"}, {"varname", " ex max(1)"}, {"newvarlist", " new"}, {"newvarname", " new max(1)"},
        {"anything", " any"},
    };
    tokenpos start;
    savetokpos(&start);
    t.bracketed = std::string_view(nexttoken()) == "[";
    std::string_view word = t.bracketed ? nexttoken() : tokbuf, more;
    for (const auto& row : lists) {
        if (row.word != word) continue;
        if (Int4 rc = attributes(more)) return rc;
        t.text[slot_varlist] = std::string(t.need()) + row.kind + " " + std::string(more);
        return 0;
    }
    t.bracketed = false;
    restoretokpos(&start);
    return 0;
}

// A `/` directly behind asks for the part without its keyword.
Int4 part(translation& t, slot i) {
    if (!t.text[i].empty()) return error(197);
    t.text[i] = t.need();
    if (tokpeek() == '/') {
        nexttoken();
        t.text[i] += " noprefix";
    }
    return 0;
}

Int4 exppart(translation& t) {
    if (Int4 rc = part(t, slot_exp)) return rc;
    return std::string_view(nexttoken()) == "exp" ? 0 : error(197);
}

// The kinds of weights up to the closing bracket; the first one is the token in hand.
Int4 weightpart(translation& t) {
    std::string& text = t.text[slot_weight];
    if (!t.bracketed || !text.empty()) return error(197);
    for (std::string_view token = tokbuf; token != "]"; token = nexttoken()) {
        const weightrow* row = weightnamed(tokbuf);
        if (!row && token != "/") return error(197);
        text += row ? std::string(row->word, 2) + " " : "noprefix ";
    }
    ungettoken();
    return 0;
}

Int4 optionelement(translation& t) {
    std::string& text = t.text[slot_options];
    std::string name = nexttoken();
    if (name == "[" || name == "]") {
        if (t.bracketed == (name == "[")) return error(197);
        t.bracketed = name == "[";
        return 0;
    }
    std::string_view argument;
    if (name != "*" && !isnamestart(name[0])) return error(197);
    boolean parentheses = name != "*" && tokpeek() == '(';
    if (parentheses)
        if (Int4 rc = attributes(argument)) return rc;
    text += (t.bracketed || name == "*" ? "" : "+") + name;
    if (parentheses) text += "(" + std::string(argument) + ")";
    text += ' ';
    return text.size() > maxoptiontext ? error(197) : 0;
}

Int4 optionspart(translation& t) {
    while (tokpeeknonblank())
        if (Int4 rc = optionelement(t)) return rc;
    t.ended = true;
    return 0;
}

Int4 element(translation& t) {
    std::string_view token = nexttoken();
    if (token.empty()) {
        t.ended = true;
        return 0;
    }
    if (token == "[" || token == "]") {
        if (t.bracketed == (token == "[")) return error(197);
        t.bracketed = token == "[";
        return 0;
    }
    if (token == "if") return part(t, slot_if);
    if (token == "in") return part(t, slot_in);
    if (token == "using") return part(t, slot_using);
    if (token == "=") return exppart(t);
    if (token == ",") return optionspart(t);
    return weightpart(t);
}

Int4 translate(translation& t) {
    if (Int4 rc = listelement(t)) return rc;
    while (!t.ended)
        if (Int4 rc = element(t)) return rc;
    boolean both = !t.text[slot_weight].empty() && !t.text[slot_exp].empty();
    return t.bracketed || both ? error(197) : 0;
}

}  // namespace

Int4 cmd_syntax() {
    saved mode(syntaxmode, UByte(1));
    translation t;
    for (const char* name : slotnames) macroclear(name);
    if (Int4 rc = translate(t)) return rc;
    for (Int4 i = 0; i < nslots; i++)
        if (Int4 rc = macroset(slotnames[i], t.text[i])) return rc;
    return parsedescribed(macrovalue("_0"));
}

}  // namespace velmo
