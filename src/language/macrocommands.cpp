// The commands that define, list and drop macros, and that make temporary names.
#include "language/macrocommands.h"
#include <algorithm>
#include <string>
#include <vector>
#include "base/poll.h"
#include "base/text.h"
#include "core/keywords.h"
#include "core/macros.h"
#include "core/objects.h"
#include "core/quotes.h"
#include "data/run.h"
#include "expr/value.h"
#include "language/expand.h"
#include "language/extfunctions.h"
#include "language/options.h"
#include "language/tempnames.h"
#include "output/errors.h"
#include "output/formats.h"
#include "output/print.h"

namespace velmo {

namespace {

// = exp: the text of the result, numbers without blanks.
Int4 expressiontext(std::string& text) {
    textvalue value;
    if (tokpeeknonblank() == 0) return error(198);
    if (Int4 rc = exp_valuehere(mode_any, value)) return rc;
    if (Int4 rc = parseoptions()) return rc;
    if (Int4 rc = getopt_done()) return rc;
    char number[512];
    if (!value.isstring)
        value.text.assign(number, std::size_t(fmttrimmed(version < 220 ? "%10.0g" : "%18.0g", value.number, number)));
    text.swap(value.text);
    return 0;
}

// Text as typed: trimmed, one pair of quotes taken off; a quote without its partner is 198.
Int4 plaintext(std::string_view text, std::string_view& value) {
    value = trimmed(text);
    return takeouterquotes(value) ? 0 : error(198);
}

// What is computed stands in `computed`, what was typed in the line.
Int4 definitionvalue(std::string& computed, std::string_view& value) {
    char next = tokpeeknonblank();
    if (!next) return 0;
    if (next != '=' && next != ':') return plaintext(tokrest(), value);
    std::string_view token = nexttoken();
    if (token != "=" && token != ":") return plaintext(tokstart, value);
    Int4 rc = token == "=" ? expressiontext(computed) : extfunc(computed);
    value = computed;
    return rc;
}

}  // namespace

Int4 macrodefine(Int4 mode, Int4 (*store)(std::string_view, std::string_view)) {
    nexttoken();
    std::string name, computed;
    std::string_view value;
    if (!toklen) return error(198);
    if (mode == define_local || mode == define_up) name = "_";
    name.append(tokbuf, std::size_t(toklen));
    if (mode == define_global && name[0] == '_') return error(198);
    // A local such as `1' begins with a digit; the stored name, with its _, is a name.
    if (!validname(name) || (version < 700 && name.size() > 8))
        return badname(mode == define_local ? name.substr(1) : name);
    if (Int4 rc = definitionvalue(computed, value)) return rc;
    return store(name, value);
}

Int4 cmd_local() { return macrodefine(define_local, macroset); }
Int4 cmd_global() { return macrodefine(define_global, macroset); }

namespace {

// c_local: one level up.
Int4 storeup(std::string_view name, std::string_view value) {
    if (macrolevel == obj_local) return error(198);
    macrolevel--;
    Int4 rc = macroset(name, value);
    macrolevel++;
    return rc;
}

// ---- macro dir, list

Int4 showmacro(const std::string& name) {
    std::string value = macrovalue(name);
    prtmarkup("{p 0 16}\n");
    prttext(name);
    if (name.size() >= 15)
        prtraw(":{break}\n");
    else
        prtrawf(":{space %d}", Int4(15 - name.size()));
    prtresult(value);
    return prtraw("\n{p_end}\n");
}

// Names of the visible macros: this level's locals, then the globals, newest first.
std::vector<std::string> visiblemacros() {
    std::vector<std::string> names;
    char name[36];
    for (Int4 type : {Int4(obj_global), macrolevel})
        for (object* o = objnext(nullptr, name, type); o; o = objnext(o, name, type)) names.push_back(name);
    return names;
}

Int4 listmacros() {
    std::vector<std::string> names;
    while (nexttoken()[0]) names.push_back(tokbuf);
    if (names.empty() || names == std::vector<std::string>{"_all"}) {
        names = visiblemacros();
    } else {
        for (const std::string& name : names)
            if (!macroget(name)) return macronotfound(name);
    }
    for (const std::string& name : names)
        if (Int4 rc = showmacro(name)) return rc;
    return 0;
}

// ---- macro drop

constexpr std::string_view keptmacros[] = {"S_ADO",     "S_FLAVOR",  "S_OS",     "S_OSDTL", "S_MACH",
                                           "S_level",   "S_MODE",    "S_VJB",    "S_SHELL", "S_XSHELL",
                                           "S_XSHELL2", "S_CONSOLE", "S_VelmoXE"};

void dropprefix(const std::string& prefix) {
    for (const std::string& name : visiblemacros()) {
        boolean kept = std::find(std::begin(keptmacros), std::end(keptmacros), name) != std::end(keptmacros);
        if (name.starts_with(prefix) && !kept) macroclear(name);
    }
}

Int4 dropmacros() {
    std::vector<std::string> names;
    while (nexttoken(breakvarlist)[0]) names.push_back(tokbuf);
    if (names.empty()) return error(198);
    for (const std::string& name : names) {
        std::string plain = name.back() == '*' ? name.substr(0, name.size() - 1) : name;
        if (!validname(plain) && name != "*") return badname(name);
    }
    for (const std::string& name : names) {
        if (name == "_all")
            dropprefix("");
        else if (name.back() == '*')
            dropprefix(name.substr(0, name.size() - 1));
        else
            macroclear(name);
    }
    return 0;
}

// macro shift [#]: _2 becomes _1 and so on, by renaming, up to the first that is missing.
Int4 shiftmacros() {
    Int4 count = 1;
    if (tokpeeknonblank())
        if (Int4 rc = wholetoken(count, 0, 2147483647)) return rc;
    if (nexttoken()[0]) return error(198);
    for (; count > 0; count--) {
        if (!objfind("_1", macrolevel)) return 0;
        objdel("_1", macrolevel);
        for (Int4 i = 2; object* o = objfind("_" + std::to_string(i), macrolevel); i++)
            if (Int4 rc = objrename(o, "_" + std::to_string(i - 1))) return rc;
    }
    return 0;
}

}  // namespace

Int4 cmd_c_local() { return macrodefine(define_up, storeup); }

Int4 cmd_macro() {
    static constexpr keyword words[] = {
        {"define", 2, 0}, {"dir", 2, 1}, {"drop", 4, 2}, {"list", 1, 1}, {"shift", 1, 3}};
    switch (lookup(words, nexttoken())) {
    case 0: return macrodefine(define_macro, macroset);
    case 1: return listmacros();
    case 2: return dropmacros();
    case 3: return shiftmacros();
    default: return error(198);
    }
}

namespace {

// Each name on the line becomes a local of this level with a generated value.
Int4 generatenames(Int4 (*generate)(std::string&)) {
    while (nexttoken()[0]) {
        std::string name = macroname(tokbuf, true), value;
        if (!validname(name)) return badname(tokbuf);
        if (Int4 rc = generate(value)) return rc;
        if (Int4 rc = macroset(name, value)) return rc;
        if (tick()) return 1;
    }
    return 0;
}

}  // namespace

Int4 cmd_tempvar() {
    return generatenames([](std::string& name) -> Int4 {
        name = newtempname();
        return 0;
    });
}

Int4 cmd_tempfile() { return generatenames(newtempfile); }

}  // namespace velmo
