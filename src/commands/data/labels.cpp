// label, char, encode, decode: annotations of the dataset and the way between texts and labelled numbers.
#include <algorithm>
#include <cmath>
#include <string>
#include <vector>
#include "base/columns.h"
#include "base/memalloc.h"
#include "base/poll.h"
#include "base/saved.h"
#include "base/text.h"
#include "core/adopath.h"
#include "core/keywords.h"
#include "core/quotes.h"
#include "core/webfile.h"
#include "data/cells.h"
#include "data/chars.h"
#include "data/labels.h"
#include "data/sorting.h"
#include "expr/value.h"
#include "expr/walk.h"
#include "language/extfunctions.h"
#include "language/options.h"
#include "language/stdparse.h"
#include "language/varlist.h"
#include "output/errors.h"
#include "output/formats.h"
#include "output/print.h"

namespace velmo {

namespace {

// Nothing may follow.
Int4 endofline() { return nexttoken()[0] ? error(198) : 0; }

// `= exp` at the cursor, a string: what quotes and macros would change reaches a label through it.
Int4 expressiontext(std::string& text) {
    textvalue value;
    nexttoken();
    if (Int4 rc = exp_valuehere(mode_str, value)) return rc;
    text = value.text;
    return 0;
}

// The text at the cursor, the last on its line: a token, or as in a definition of a macro `= exp` or `: function`.
Int4 lasttext(std::string& text) {
    char next = tokpeeknonblank();
    if (next == ':') {
        nexttoken();
        return extfunc(text);
    }
    if (next == '=') {
        if (Int4 rc = expressiontext(text)) return rc;
    } else if (next) {
        nexttoken();
        text = tokcontent();
    }
    return endofline();
}

Int4 labeldata() {
    std::string text;
    if (Int4 rc = lasttext(text)) return rc;
    copytext(datalabel, sizeof datalabel, text);
    datachanged = 1;
    return 0;
}

Int4 labelvariable() {
    Int4 var = lookupvar(nexttoken(), lookup_ref);
    if (var < 0) return -var;
    std::string text;
    if (Int4 rc = lasttext(text)) return rc;
    if (Int4 rc = putvarlabel(varlist[var - 1], text)) return rc;
    markchanged(var);
    return 0;
}

// label values varname [lblname] [, nofix]
Int4 labelvalues() {
    Int4 var = lookupvar(nexttoken(), lookup_ref);
    if (var < 0) return -var;
    std::string name;
    if (tokpeeknonblank() && tokpeeknonblank() != ',') name = nexttoken();
    if (Int4 rc = parseoptions()) return rc;
    boolean fix = !getopt_flag("nofix", 5);
    if (Int4 rc = getopt_done()) return rc;
    if (isstring(var)) return error(181);
    if (!name.empty() && !validname(name)) return badname(name);
    copytext(lbl[var - 1], namesize, name);
    if (fix && !name.empty()) fmtwiden(var, var);
    markchanged(var);
    return 0;
}

// ---- label define

struct labelentry { Int4 value; std::string text; };

// Pairs of a whole number and a text, quoted or not, or `= exp`, up to the comma or the end.
Int4 readentries(std::vector<labelentry>& entries) {
    while (tokpeeknonblank() && tokpeeknonblank() != ',') {
        labelentry entry;
        nexttoken(breaknum);
        if (!readinteger(tokbuf, entry.value)) return error(198);
        if (tokpeeknonblank() == 0 || tokpeeknonblank() == ',') return error(198);
        if (tokpeeknonblank() == '=') {
            if (Int4 rc = expressiontext(entry.text)) return rc;
        } else {
            nexttoken();
            entry.text = tokcontent();
        }
        entries.push_back(entry);
    }
    return 0;
}

boolean haslabelvalue(const vallabel& label, Int4 value) {
    return std::binary_search(label.values.begin(), label.values.end(), value);
}

// The first pass: nothing changes until everything is known to be right.
Int4 checkentries(const vallabel& old, const std::vector<labelentry>& entries, boolean modify) {
    if (modify) return 0;
    std::vector<Int4> seen;
    for (const labelentry& entry : entries) {
        if (haslabelvalue(old, entry.value) || entry.text.empty()) return error(7196);
        seen.push_back(entry.value);
    }
    std::sort(seen.begin(), seen.end());
    return std::adjacent_find(seen.begin(), seen.end()) == seen.end() ? 0 : error(7196);
}

void widenusers(const std::string& name) {
    for (Int4 v = 1; v <= nvar; v++)
        if (name == lbl[v - 1]) fmtwiden(v, v);
}

Int4 labeldefine() {
    std::string name = nexttoken();
    if (!validname(name)) return badname(name);
    std::vector<labelentry> entries;
    if (Int4 rc = readentries(entries)) return rc;
    if (Int4 rc = parseoptions()) return rc;
    boolean modify = getopt_flag("modify", 1), add = getopt_flag("add", 1) || modify;
    boolean fix = !getopt_flag("nofix", 5);
    if (Int4 rc = getopt_done()) return rc;
    if (entries.empty()) return error(198);
    vallabel old;
    vl_load(name, old);
    if (old.exists && !add) return errorf(110, "label %s already defined\n", name.c_str());
    if (Int4 rc = checkentries(old, entries, modify)) return rc;
    for (const labelentry& entry : entries) vl_change(old, entry.value, entry.text);
    if (Int4 rc = vl_store(name, old)) return rc == 134 ? error(134) : rc;
    if (fix) widenusers(name);
    datachanged = 1;
    return 0;
}

// ---- label dir, list, drop, save

// The names typed behind the cursor, or all labels; a name that isn't one is reported.
Int4 labelnames(std::vector<std::string>& names, boolean& given) {
    names.clear();
    while (tokpeeknonblank() && tokpeeknonblank() != ',') {
        tokenpos here;
        savetokpos(&here);
        std::string name = nexttoken();
        if (name == "using") {
            restoretokpos(&here);
            break;
        }
        if (name != "_all" && !vl_find(name)) return errorf(111, "value label %s not found\n", name.c_str());
        names.push_back(name);
    }
    given = !names.empty();
    if (!given || names == std::vector<std::string>{"_all"}) names = vl_names();
    return 0;
}

Int4 labeldir() {
    if (Int4 rc = endofline()) return rc;
    for (const std::string& name : vl_names())
        if (Int4 rc = prtf("%s\n", name.c_str())) return rc;
    return 0;
}

Int4 labellist() {
    std::vector<std::string> names;
    boolean given;
    if (Int4 rc = labelnames(names, given)) return rc;
    if (Int4 rc = endofline()) return rc;
    for (const std::string& name : names) {
        vallabel label;
        vl_load(name, label);
        if (Int4 rc = prttextf("%s:\n", name.c_str())) return rc;
        for (Int4 value : label.values) {
            prtresultf("%12d ", value);
            if (Int4 rc = prttextf("%s\n", label.find(value))) return rc;
        }
    }
    return 0;
}

Int4 labeldrop() {
    std::vector<std::string> names;
    boolean given;
    if (Int4 rc = labelnames(names, given)) return rc;
    if (!given) return error(198);
    if (Int4 rc = endofline()) return rc;
    for (const std::string& name : names) vl_drop(name);
    datachanged = 1;
    return 0;
}

// ---- label save: a text comes back exactly whatever stands in it, and none of it can run as a command.

// Bytes that a line of a do-file does not keep.
boolean lostinline(char c) { return UByte(c) < 32 || UByte(c) == 127 || UByte(c) == 255; }

// Whether the text comes back between compound quotes; /* behind an inner quote would begin a comment.
boolean suitscompound(std::string_view text) {
    std::string whole = "`\"" + std::string(text) + "\"'";
    quoted q;
    readquoted(whole, q);
    return q.content == text && q.length == whole.size() && text.find("/*") == text.npos;
}

// A sum of strings in quotes and char()s. More than an expression has room for are added up in the local macro `text`
// by lines of their own, which go to w.
std::string asexpression(bytewriter& w, std::string_view text) {
    constexpr Int4 mostparts = 100;
    std::string out, plain;
    Int4 parts = 0;
    auto add = [&](const std::string& part) {
        if (parts++ == mostparts) {
            writer_put(w, "local text = " + out + "\n");
            out = "_local(text)";
            parts = 1;
        }
        out += (out.empty() ? "" : " + ") + part;
    };
    auto flush = [&] {
        if (!plain.empty()) add('"' + escaped(plain) + '"');
        plain.clear();
    };
    for (char c : text) {
        if (c != '"' && !lostinline(c)) {
            plain += c;
            continue;
        }
        flush();
        add("char(" + std::to_string(UByte(c)) + ")");
    }
    flush();
    return "= " + out;
}

std::string savedtext(bytewriter& w, std::string_view text) {
    if (std::any_of(text.begin(), text.end(), lostinline)) return asexpression(w, text);
    if (text.find('"') == text.npos) return '"' + escaped(text) + '"';
    return suitscompound(text) ? "`\"" + escaped(text) + "\"'" : asexpression(w, text);
}

// A label as commands that define it again.
void writelabel(bytewriter& w, const std::string& name) {
    vallabel label;
    vl_load(name, label);
    writer_put(w, "capture label drop " + name + "\n");
    const char* add = "";
    for (Int4 value : label.values) {
        std::string text = savedtext(w, label.find(value));
        writer_put(w, "label define " + name + " " + std::to_string(value) + " " + text + add + "\n");
        add = ", add";
    }
}

Int4 labelsave() {
    std::vector<std::string> names;
    boolean given;
    char file[tokensize], path[pathsize];
    if (Int4 rc = labelnames(names, given)) return rc;
    if (std::string_view(nexttoken()) != "using") return required("using");
    if (Int4 rc = filetoken(file)) return rc;
    addsuffix(path, file, ".do");
    if (Int4 rc = parseoptions()) return rc;
    boolean replace = getopt_flag("replace", 7);
    if (Int4 rc = getopt_done()) return rc;
    Int4 handle = webopen(path, web_write | (replace ? web_replace : 0));
    if (handle < 0) return -handle;
    static bytewriter w;
    writer_start(w, handle);
    for (const std::string& name : names) writelabel(w, name);
    boolean fine = writer_flush(w);
    if (webclose(handle)) fine = false;
    if (!fine) return fileerror(693, path);
    fileerror(697, path);
    return 0;
}

}  // namespace

Int4 cmd_label() {
    static constexpr keyword words[] = {
        {"variable", 3, 0}, {"values", 3, 1}, {"define", 3, 2}, {"dir", 2, 3},
        {"list", 2, 4},     {"drop", 2, 5},   {"data", 2, 6},   {"save", 2, 7},
    };
    static Int4 (*const handlers[])() = {labelvariable, labelvalues, labeldefine, labeldir,
                                         labellist,     labeldrop,   labeldata,   labelsave};
    Int4 word = lookup(words, nexttoken());
    return word < 0 ? error(198) : handlers[word]();
}

// ---- char

namespace {

// var[name] at the cursor; `name` stays empty when there are no brackets and none are required.
Int4 charreference(std::string& owner, std::string& name, boolean brackets) {
    owner = nexttoken();
    name.clear();
    if (owner != "_dta") {
        Int4 var = lookupvar(owner, lookup_ref);
        if (var < 0) return -var;
        owner = varlist[var - 1];
    }
    if (tokpeek() != '[') return brackets ? required("[") : 0;
    nexttoken();
    if (tokpeeknonblank() == ']' && !brackets) {
        nexttoken();
        return 0;
    }
    name = nexttoken();
    if (!validname(name)) return badname(name);
    return nexttoken()[0] == ']' ? 0 : required("]");
}

// The text is in quotes or not, or `= exp` or `: function`.
Int4 chardefine() {
    std::string owner, name;
    if (Int4 rc = charreference(owner, name, true)) return rc;
    std::string text;
    char next = tokpeeknonblank();
    if (next == '=' || next == ':') {
        if (Int4 rc = lasttext(text)) return rc;
    } else {
        text = unquoted(trimmed(tokrest()));    // it may be longer than a token
    }
    if (Int4 rc = char_set(owner, name, text)) return rc;
    datachanged = 1;
    return 0;
}

// "  owner[name]:  text" in a hanging paragraph.
Int4 showchar(const std::string& owner, const std::string& name) {
    std::string text = char_get(owner, name);
    std::string head = owner + "[" + name + "]:";
    Int4 headed = textcolumns(head), indent = std::max(headed + 4, 28);
    prtraw("{p 2 " + std::to_string(std::min(indent, 40)) + "}\n{txt}");
    prttext(head);
    prtraw("{bind:" + std::string(std::size_t(std::max(2, 26 - headed)), ' ') + "}{res}");
    prtquiet(text);
    return prtraw("\n{p_end}\n");
}

Int4 showchars(const std::string& owner) {
    for (const std::string& name : char_names(owner))
        if (Int4 rc = showchar(owner, name)) return rc;
    return 0;
}

Int4 charlist() {
    if (tokpeeknonblank() == 0) {
        if (Int4 rc = showchars("_dta")) return rc;
        for (Int4 v = 1; v <= nvar; v++)
            if (Int4 rc = showchars(varlist[v - 1])) return rc;
        return 0;
    }
    std::string owner, name;
    if (Int4 rc = charreference(owner, name, false)) return rc;
    if (Int4 rc = endofline()) return rc;
    if (name.empty()) return showchars(owner);
    return char_exists(owner, name) ? showchar(owner, name) : 0;
}

Int4 charrename() {
    Int4 from = lookupvar(nexttoken(), lookup_ref);
    if (from < 0) return -from;
    Int4 to = lookupvar(nexttoken(), lookup_ref);
    if (to < 0) return -to;
    if (Int4 rc = endofline()) return rc;
    if (from == to) return 0;
    datachanged = 1;
    return char_rename(varlist[from - 1], varlist[to - 1]);
}

}  // namespace

// char [define] owner[name] ["text"|=exp|:function], char list, char rename. A variable may be called `list`: it has a
// bracket.
Int4 cmd_char() {
    static constexpr keyword words[] = {{"define", 3, 0}, {"list", 1, 1}, {"rename", 3, 2}};
    tokenpos start;
    savetokpos(&start);
    Int4 word = lookup(words, nexttoken());
    if (tokpeek() == '[') word = -1;
    if (word == 1) return charlist();
    if (word == 2) return charrename();
    if (word < 0) restoretokpos(&start);
    if (tokpeeknonblank() == 0) return error(198);
    return chardefine();
}

// ---- encode, decode

namespace {

// Observations of the run with a text, in the order of their texts.
Int4 textorder(Int4 source, std::vector<Int4>& list) {
    Int4 rc = overobs([&](Int4 obs) {
        if (!strcell(source, obs).empty()) list.push_back(obs);
    });
    if (!rc && !list.empty()) rc = sortlist(list.data(), Int4(list.size()), source);
    return rc > 1 ? error(rc) : rc;
}

// Gives every distinct text its value, adding to the label what it lacks.
Int4 assigncodes(Int4 source, Int4 var, const std::string& label, const std::vector<Int4>& list) {
    labelinhand texts;
    vl_take(texts, label);
    std::string_view last;
    Double value = missing;
    for (Int4 obs : list) {
        std::string_view text = strcell(source, obs);
        if (text != last)
            if (Int4 rc = vl_nextval(texts, text, value)) return error(rc);
        last = text;
        putobs(var, obs, value);
        if (tick()) return 1;
    }
    return vl_store(label, texts.label);
}

}  // namespace

// encode varname [if] [in], generate(newvar) [label(name)]
Int4 cmd_encode() {
    if (Int4 rc = stdparse({.varlist = must, .by = never})) return rc;
    if (vl_n != 1) return error(103);
    std::string name, label;
    boolean named, labeled;
    if (Int4 rc = getopt_str("generate", 1, name, named)) return rc;
    if (Int4 rc = getopt_str("label", 1, label, labeled)) return rc;
    if (Int4 rc = getopt_done()) return rc;
    if (!isstring(vl_vr[0])) return error(107);
    if (!named) return errorf(198, "option generate() required\n");
    if (!labeled) label = name;
    if (!validname(label)) return badname(label);
    if (Int4 rc = addvar(name, typelong)) return rc;
    Int4 source = vl_vr[0], var = nvar;
    for (Int4 obs = 1; obs <= nobs; obs++) clearcell(var, obs);
    std::vector<Int4> list;
    if (Int4 rc = textorder(source, list)) return rc;
    vallabel old;
    vl_load(label, old);
    if (Int4 rc = assigncodes(source, var, label, list)) {
        old.exists ? void(vl_store(label, old)) : void(vl_drop(label));
        return rc;
    }
    copytext(lbl[var - 1], namesize, label);
    copytext(fmt[var - 1], fmtsize, "%" + std::to_string(std::max(vl_maxtext(label), 8)) + ".0g");
    if (Int4 rc = putvarlabel(varlist[var - 1], getvarlabel(varlist[source - 1]))) return rc;
    visnvar = nvar;
    datachanged = 1;
    return 0;
}

namespace {

Int4 longesttext(const vallabel& label) {
    std::size_t longest = 1;
    for (Int4 value : label.values) longest = std::max(longest, std::string_view(label.find(value)).size());
    return Int4(longest);
}

}  // namespace

// decode varname [if] [in], generate(newvar) [maxlength(#)]
Int4 cmd_decode() {
    if (Int4 rc = stdparse({.varlist = must, .by = never})) return rc;
    if (vl_n != 1) return error(103);
    std::string name;
    boolean named;
    Int4 maxlength = maxlabeltext, n;
    if (Int4 rc = getopt_str("generate", 1, name, named)) return rc;
    if (Int4 rc = getopt_int("maxlength", 1, &maxlength, 1, n)) return rc;
    if (Int4 rc = getopt_done()) return rc;
    if (Int4 rc = boundscheck("maxlength()", maxlength, 1, maxlabeltext)) return rc;
    Int4 source = vl_vr[0];
    if (isstring(source)) return error(108);
    if (!named) return errorf(198, "option generate() required\n");
    if (!lbl[source - 1][0]) return nameerror(name_notlabeled, varlist[source - 1]);
    vallabel label;
    vl_load(lbl[source - 1], label);
    if (!label.exists) return errorf(111, "value label %s not found\n", lbl[source - 1]);
    if (Int4 rc = addvar(name, UByte(std::min(longesttext(label), maxlength)))) return rc;
    Int4 var = nvar;
    for (Int4 obs = 1; obs <= nobs; obs++) clearcell(var, obs);
    Int4 rc = overobs([&](Int4 obs) {
        if (const char* text = label.find(getobs(source, obs))) putstr(var, obs, text);
    });
    if (rc) return rc;
    if (Int4 rc = putvarlabel(varlist[var - 1], getvarlabel(varlist[source - 1]))) return rc;
    visnvar = nvar;
    datachanged = 1;
    return 0;
}

}  // namespace velmo
