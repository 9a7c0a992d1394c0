// The extended macro functions of the language itself; those of other subsystems stand with them.
#include "language/extfunctions.h"
#include <algorithm>
#include <cstring>
#include <vector>
#include "base/columns.h"
#include "base/platform.h"
#include "base/text.h"
#include "core/adopath.h"
#include "core/macros.h"
#include "core/quotes.h"
#include "core/settings.h"
#include "core/tempfiles.h"
#include "core/tokenizer.h"
#include "data/chars.h"
#include "data/dataset.h"
#include "data/labels.h"
#include "data/timeseries.h"
#include "language/options.h"
#include "language/tempnames.h"
#include "output/errors.h"
#include "stored/families.h"

namespace velmo {

Int4 extfunc(std::string& out) {
    out.clear();
    std::string word = nexttoken();
    for (Int4 i = 0; i < nextfunctions; i++) {
        const extfunction& row = extfunctions[i];
        if (row.min ? !abbrev(word, row.word, row.min) : word != row.word) continue;
        if (Int4 rc = row.handler(out)) return rc;
        if (nexttoken()[0]) return notallowed(tokcontent());
        if (out.size() > std::size_t(macrolen - 1)) out.resize(std::size_t(macrolen - 1));
        return 0;
    }
    return error(198);
}

Int4 wholetoken(Int4& value, Int4 lo, Int4 hi) {
    nexttoken(breaknum);
    return readinteger(tokbuf, value) && value >= lo && value <= hi ? 0 : error(198);
}

namespace {

Int4 tokenvariable(Int4& var) {
    var = lookupvar(nexttoken(), lookup_ref);
    return var < 0 ? -var : 0;
}

// The second word of "value label" and the like.
Int4 secondword(const char* word, Int4 min) { return abbrev(nexttoken(), word, min) ? 0 : error(198); }

// local or global, and a name: the macro as stored.
Int4 macroreference(std::string& name) {
    std::string kind = nexttoken();
    if (kind != "local" && kind != "global") return error(198);
    name = macroname(nexttoken(), kind == "local");
    return validname(name) ? 0 : badname(name);
}

std::string macrotext(const std::string& name) {
    const char* value = macroget(name);
    return value ? value : "";
}

// The next item of the line at the cursor, of any length; false at the end.
boolean lineword(std::string& word) {
    std::string_view rest = tokpos, item;
    if (!nextitem(rest, item)) return false;
    word = item;
    settokpos(tokpos + (rest.data() - tokpos));
    return true;
}

void endline() { settokpos(tokpos + std::strlen(tokpos)); }

}  // namespace

Int4 ext_type(std::string& out) {
    Int4 var;
    if (Int4 rc = tokenvariable(var)) return rc;
    char text[8];
    out = typename_of(typ[var - 1], text);
    return 0;
}

Int4 ext_format(std::string& out) {
    Int4 var;
    if (Int4 rc = tokenvariable(var)) return rc;
    out = fmt[var - 1];
    return 0;
}

Int4 ext_value(std::string& out) {
    Int4 var;
    if (Int4 rc = secondword("label", 1)) return rc;
    if (Int4 rc = tokenvariable(var)) return rc;
    out = lbl[var - 1];
    return 0;
}

Int4 ext_variable(std::string& out) {
    Int4 var;
    if (Int4 rc = secondword("label", 1)) return rc;
    if (Int4 rc = tokenvariable(var)) return rc;
    out = getvarlabel(varlist[var - 1]);
    return 0;
}

Int4 ext_data(std::string& out) {
    if (std::string_view(nexttoken()) != "label") return error(198);
    out = datalabel;
    return 0;
}

Int4 ext_environment(std::string& out) {
    out = environmenttext(nexttoken());
    return 0;
}

Int4 ext_tempvar(std::string& out) {
    out = newtempname();
    return 0;
}

Int4 ext_tempfile(std::string& out) { return newtempfile(out); }

Int4 ext_sortedby(std::string& out) {
    for (const UInt2* key = srt; *key; key++) out += (out.empty() ? "" : " ") + std::string(varlist[*key - 1]);
    return 0;
}

// word count string; word # of string
Int4 ext_word(std::string& out) {
    std::string word;
    Int4 wanted, n = 0;
    if (std::string_view(nexttoken(breaknum)) == "count") {
        while (lineword(word)) n++;
        out = std::to_string(n);
        return 0;
    }
    if (!readinteger(tokbuf, wanted) || wanted < 1) return error(198);
    if (std::string_view(nexttoken()) != "of") return error(198);
    while (lineword(word))
        if (++n == wanted) out = word;
    return 0;
}

// char owner[name]; char owner[] for the names.
Int4 ext_char(std::string& out) {
    std::string owner = nexttoken();
    if (owner != "_dta") {
        Int4 var = lookupvar(owner, lookup_ref);
        if (var < 0) return -var;
        owner = varlist[var - 1];
    }
    if (nexttoken()[0] != '[') return required("[");
    std::string name = nexttoken();
    if (name == "]") {
        for (const std::string& each : char_names(owner)) out += (out.empty() ? "" : " ") + each;
        return 0;
    }
    if (!validname(name)) return badname(name);
    out = char_get(owner, name);
    return nexttoken()[0] == ']' ? 0 : required("]");
}

namespace {

// label name, or label (varname): the label's name.
Int4 labelreference(std::string& name) {
    nexttoken(breaknotilde);
    if (tokbuf[0] != '(') {
        name = tokbuf;
        return validname(name) ? 0 : badname(name);
    }
    Int4 var = lookupvar(nexttoken(breaknotilde), lookup_ref);
    if (var < 0) return -var;
    name = lbl[var - 1];
    return nexttoken()[0] == ')' ? 0 : required(")");
}

}  // namespace

Int4 ext_label(std::string& out) {
    std::string name;
    if (Int4 rc = labelreference(name)) return rc;
    nexttoken(breaknum);
    if (!tokbuf[0]) return error(198);
    if (std::string_view(tokbuf) == "maxlength") {
        out = std::to_string(vl_maxtext(name));
        return 0;
    }
    Double value = missing;
    std::string shown = tokbuf;
    if (shown != "." && !readnumber(shown, value)) return error(198);
    char text[maxlabeltext + 1];
    out = vl_valtotext(name, value, text, sizeof text) ? std::string(text) : shown;
    if (tokpeeknonblank() == 0) return 0;
    Int4 cut;
    if (Int4 rc = wholetoken(cut, 0, macrolen - 1)) return rc;
    out = out.substr(0, std::size_t(cut));
    return 0;
}

Int4 ext_set(std::string& out) {
    std::string word = nexttoken();
    const setting* row = settingrow(word);
    if (!row) return notallowed(word);
    settingtext(*row, out);
    return 0;
}

namespace {

struct replacement { boolean all, word; std::string count; };

boolean standsasword(const std::string& text, std::size_t at, std::size_t n) {
    return (at == 0 || text[at - 1] == ' ') && (at + n == text.size() || text[at + n] == ' ');
}

Int4 replaceall(const std::string& text, const std::string& from, const std::string& to, const replacement& how,
                std::string& out) {
    Int4 n = 0;
    std::size_t at = 0;
    while (!from.empty() && (how.all || n == 0)) {
        std::size_t hit = text.find(from, at);
        while (hit != std::string::npos && how.word && !standsasword(text, hit, from.size()))
            hit = text.find(from, hit + 1);
        if (hit == std::string::npos) break;
        out += text.substr(at, hit - at) + to;
        at = hit + from.size();
        n++;
        if (out.size() > std::size_t(macrolen)) return error(1000);
    }
    out += text.substr(at);
    if (out.size() > std::size_t(macrolen)) return error(1000);
    return how.count.empty() ? 0 : macroset(how.count, std::to_string(n));
}

Int4 replacementoptions(replacement& how) {
    if (Int4 rc = parseoptions()) return rc;
    std::vector<std::string> words;
    boolean counted;
    how.all = getopt_flag("all", 3);
    how.word = getopt_flag("word", 4);
    if (Int4 rc = getopt_words("count", 5, words, 2, counted)) return rc;
    if (Int4 rc = getopt_done()) return rc;
    if (!counted) return 0;
    if (words.size() != 2 || (words[0] != "local" && words[0] != "global")) return error(198);
    how.count = macroname(words[1], words[0] == "local");
    return validname(how.count) ? 0 : badname(how.count);
}

}  // namespace

// subinstr (local|global) name "from" "to" [, all word count((local|global) name)]
Int4 ext_subinstr(std::string& out) {
    std::string name, from, to;
    replacement how{};
    if (Int4 rc = macroreference(name)) return rc;
    for (std::string* text : {&from, &to}) {
        char c = tokpeeknonblank();
        if ((c != '"' && c != '`') || !lineword(*text)) return error(198);
    }
    if (Int4 rc = replacementoptions(how)) return rc;
    endline();
    return replaceall(macrotext(name), from, to, how, out);
}

Int4 ext_sysdir(std::string& out) {
    std::string word = nexttoken();
    for (const sysdirrow& row : sysdirs)
        if (word == row.word) {
            out = row.path;
            return 0;
        }
    return error(198);
}

// piece #1 #2 of "string": cut at the last blank within the width, a longer word at the width.
Int4 ext_piece(std::string& out) {
    Int4 piece, room;
    if (Int4 rc = wholetoken(piece, 1, macrolen)) return rc;
    if (Int4 rc = wholetoken(room, 2, macrolen)) return rc;
    std::string text;
    if (std::string_view(nexttoken()) != "of" || (tokpeeknonblank() != '"' && tokpeeknonblank() != '`'))
        return error(198);
    lineword(text);
    std::string_view rest = trimmed(text);
    for (Int4 i = 1; !rest.empty(); i++, rest = ltrimmed(rest)) {
        std::size_t cut = rest.size();
        if (cut > std::size_t(room)) {
            cut = rest.rfind(' ', std::size_t(room));
            if (cut == std::string_view::npos || cut == 0) cut = std::size_t(room);
        }
        if (i == piece) {
            out = rtrimmed(rest.substr(0, cut));
            return 0;
        }
        rest.remove_prefix(cut);
    }
    return 0;
}

Int4 ext_pwd(std::string& out) {
    out = currentdir();
    return 0;
}

Int4 ext_dirsep(std::string& out) {
    out = "/";
    return 0;
}

// tsnorm op[.name] [, varname]
Int4 ext_tsnorm(std::string& out) {
    std::string text = nexttoken();
    boolean wantname = false;
    if (tokpeeknonblank() == ',') {
        nexttoken();
        if (std::string_view(nexttoken()) != "varname") return error(198);
        wantname = true;
    }
    std::size_t point = text.find('.');
    Int4 number;
    ts_reset();
    if (Int4 rc = ts_parse(text.substr(0, point), &number)) return rc;
    char ops[24] = "";
    if (number) ts_text(number, ops);
    out = ops;
    std::string name = point == std::string::npos ? "" : text.substr(point + 1);
    if (wantname && !name.empty()) out = out.empty() ? name : out + "." + name;
    return 0;
}

namespace {

// (scalars), (macros), (matrices) or (functions): the names stored in a family.
Int4 storednames(family f, std::string& out) {
    if (nexttoken()[0] != '(') return error(198);
    std::string kind = nexttoken();
    if (nexttoken()[0] != ')') return error(198);
    auto row = std::find(resultkindwords, resultkindwords + nresultkinds, kind);
    if (row == resultkindwords + nresultkinds) return error(198);
    for (const std::string& name : stored_names(f, resultkind(row - resultkindwords)))
        out += (out.empty() ? "" : " ") + name;
    return 0;
}

}  // namespace

Int4 ext_rresults(std::string& out) { return storednames(r_results, out); }
Int4 ext_eresults(std::string& out) { return storednames(e_results, out); }
Int4 ext_sresults(std::string& out) { return storednames(s_results, out); }

// local name: the value as it is, which a reference would expand.
Int4 ext_local(std::string& out) {
    std::string name = std::string("_") + nexttoken();
    out = macrotext(name);
    return validname(name) ? 0 : badname(name.substr(1));
}

// escaped name: a local macro's text so that a reference to the result gives it unexpanded.
Int4 ext_escaped(std::string& out) {
    Int4 rc = ext_local(out);
    out = escaped(out);
    return rc;
}

Int4 ext_length(std::string& out) {
    std::string name;
    if (Int4 rc = macroreference(name)) return rc;
    out = std::to_string(macrotext(name).size());
    return 0;
}

// columns {local|global} name: how wide the macro's text stands on a screen.
Int4 ext_columns(std::string& out) {
    std::string name;
    if (Int4 rc = macroreference(name)) return rc;
    out = std::to_string(textcolumns(macrotext(name)));
    return 0;
}

}  // namespace velmo
