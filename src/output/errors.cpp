// The table of codes is errors.def; what explains a code at length is a text here, printed line by line, since a
// blank line of its own ends a paragraph.
#include "output/errors.h"
#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include "base/saved.h"
#include "output/print.h"
#include "output/results.h"

namespace velmo {

UByte freshline = 1;

namespace {

// In the order of shortmsg.
constexpr const char* shorttexts[] = {
    "not possible on xp data\n", "requires xp data\n", "no; data in memory would be lost\n", "no dataset in use\n",
    "syntax", "expression too long\n", "%format", "request may not be combined with by\n",
    "you must start with an empty dataset\n", "last estimates", "not possible with test\n", "last test", "too few ",
    "too many ", "variables specified\n", "values\n", "log file already open\n", "not sorted\n",
    "system limit exceeded - see manual\n", "no room to add more ", "variables\n", "observations\n",
    "no fullscreen hardware\n", "no observations\n", "unidentifiable error\n", "%s not allowed\n", "%s required\n",
    "name", "no variables defined\n", "%s already defined\n", "%s ambiguous abbreviation\n",
    "multiple by's not allowed\n", "unrecognized command\n", "file specification", "record too long\n",
    "unexpected end of file\n", "file does not contain dictionary\n", "dictionary invalid\n", "no log file open\n",
    "repeated categorical variable in term\n", "repeated term\n", "attempt to classify extraneous variable\n",
    "variable left unclassified\n", "variable classified inconsistently\n", "term contains more than 8 variables\n",
    "too many variables or values\n", "term not in model\n", "'%s' found where %s expected\n", "xp (%d) - see manual\n",
    "obs was %d, now %d\n", "not possible with weighted data\n", "may not use noninteger frequency weights\n",
    "number", "nothing",
};
static_assert(std::size(shorttexts) == msg_nothing + 1, "a short text for every name");

enum explanation : UByte {
    explain_none, explain_variables, explain_observations, explain_width, explain_matsize, explain_maxwidth,
    explain_terms,
};

struct coderow {
    Int4 code;
    const char* message;
    Int4 returns;
    outrole role;
    explanation explain;
};

constexpr coderow codes[] = {
#define ROW(code, message) {code, message, code, out_error, explain_none},
#define ROWAS(code, message, returns) {code, message, returns, out_error, explain_none},
#define NOTE(code, message, returns) {code, message, returns, out_text, explain_none},
#define LONG(code, message, explain) {code, message, code, out_error, explain},
#define SHARED(code, msg) {code, shorttexts[msg], code, out_error, explain_none},
#include "output/errors.def"
#undef ROW
#undef ROWAS
#undef NOTE
#undef LONG
#undef SHARED
};

constexpr boolean ascending(const coderow& a, const coderow& b) { return a.code <= b.code; }
static_assert(std::is_sorted(std::begin(codes), std::end(codes), ascending) &&
                  std::adjacent_find(std::begin(codes), std::end(codes),
                                     [](const coderow& a, const coderow& b) { return a.code == b.code; }) ==
                      std::end(codes),
              "codes ascending, each once");

// Pieces that explanations share.
#define ALTERNATIVES "You have the following alternatives:\n\n"
#define MOREMEMORY                                                                                                   \
    "\n{p 5 9}\n3.  Increase the amount of memory allocated to the\ndata area using the {cmd:set memory} command;\n" \
    "see help {help memory}.\n{p_end}\n"
#define RECTANGLE                                                                                                    \
    "(Think of Velmo's data area as the area of a rectangle;\nVelmo can trade off width and length.)\n"

// %1 and %2 stand for the values that explanationvalues gives.
constexpr const char* explanations[] = {
    "",
    "{p 4 4}\nAn attempt was made to add a variable that would have\nresulted in more than\n%1\nor\n%2\n"
    "variables (Velmo reserves one variable for its own use).\n" ALTERNATIVES
    "{p 5 9}\n1.  Drop some variables; see help {help drop}.\n"
    "\n{p 5 9}\n2.  If you are using Velmo/XE, increase maxvar;\nsee help {help maxvar}.\n{p_end}\n",

    "{p 4 4}\nAn attempt was made to increase the number of\nobservations beyond what is currently possible.\n"
    ALTERNATIVES "{p 5 9}\n1.  Store your variables more efficiently;\nsee help {help compress}.\n" RECTANGLE
    "\n{p 5 9}\n2.  Drop some variables or observations;\nsee help {help drop}.\n" MOREMEMORY,

    "{p 4 4}\nAn attempt was made to add a variable that would have increased\n"
    "the memory required to store an observation beyond\nwhat is currently possible.\n" ALTERNATIVES
    "{p 5 9}\n1.  Store existing variables more efficiently;\nsee help {help compress}.\n"
    "\n{p 5 9}\n2.  Drop some variables or observations;\nsee help {help drop}.\n" RECTANGLE MOREMEMORY,

    "{p 4 4}\nYou have attempted to create a matrix with more than\n%1\n"
    "rows or columns or to estimate a model with more than\n%1\nvariables plus ancillary parameters.\n"
    "You need to increase matsize using the\n{cmd:set matsize} command; see help {help matsize}.\n{p_end}\n",

    "{p 4 4}\nAn attempt was made to add a variable that would have increased\n"
    " the memory required to store an observation beyond\n%1 bytes, the maximum width allowed.\n" ALTERNATIVES
    "{p 5 9}\n1.  Store existing variables more efficiently;\nsee help {help compress}.\n"
    "\n{p 5 9}\n2.  Drop some variables; see help {help drop}.\n"
    "\n{p 5 9}\n3.  If you are using Velmo/XE, increase the maximum width\nby increasing maxvar;\n"
    "see help {help maxvar}.\nThe maximum width is set to 12*maxvar.\n{p_end}\n",

    "{p 4 4}\nYou can increase matsize using the\n{cmd:set matsize} command; see help {help matsize}.\n{p_end}\n",
};

void explanationvalues(explanation explain, Int4 (&value)[2]) {
    value[0] = explain == explain_variables ? maxvar : explain == explain_maxwidth ? maxwidth() : matsize;
    value[1] = maxvar - 1;
}

// One call of prtraw a line; a value stands at the start of its line.
void explaincode(explanation explain) {
    Int4 value[2];
    explanationvalues(explain, value);
    if (freshline) prtfresh();
    std::string_view text = explanations[explain];
    while (!text.empty()) {
        std::string_view line = text.substr(0, text.find('\n') + 1);
        text.remove_prefix(line.size());
        if (line[0] == '%')
            prtrawf("%d%.*s", value[line[1] - '1'], int(line.size() - 2), line.data() + 2);
        else
            prtraw(line);
    }
}

const coderow* findcode(Int4 rc) {
    const coderow* row = std::lower_bound(std::begin(codes), std::end(codes), rc,
                                          [](const coderow& a, Int4 code) { return a.code < code; });
    return row != std::end(codes) && row->code == rc ? row : nullptr;
}

void printmessage(const coderow& row) {
    if (std::strchr(row.message, '{')) {
        prtcolour();
        prtraw(row.message);
    } else {
        prt(row.message);
    }
    if (row.explain == explain_none) return;
    if (row.explain != explain_terms) return explaincode(row.explain);
    prt(matsize >= 11000 ? "\n" : " (matsize too small)\n");
    if (matsize < 11000) explaincode(row.explain);
}

// Prints the printf form as a message of a role, from the left margin.
void message(outrole role, const char* form, va_list args) {
    printing as(role);
    if (freshline) prtfresh();
    prtvf(form, args);
}

int size(std::string_view text) { return int(text.size()); }

Int4 prefixnotfound(const char* what, std::string_view name) {
    return errorf(111, "%s%.*s not found\n", what, size(name), name.data());
}

}  // namespace

Int4 error(Int4 rc) {
    if (freshline) {
        printing as(out_error);
        prtfresh();
    }
    const coderow* row = findcode(rc);
    if (!row) return rc;
    printing as(row->role);
    printmessage(*row);
    return row->returns;
}

Int4 noobservations() {
    error(2000);
    return 2000;
}

void errmsg(shortmsg i) {
    printing as(out_error);
    prt(shorttexts[i]);
}

Int4 errorf(Int4 rc, const char* form, ...) {
    va_list args;
    va_start(args, form);
    message(out_error, form, args);
    va_end(args);
    return rc;
}

Int4 notef(const char* form, ...) {
    va_list args;
    va_start(args, form);
    message(out_text, form, args);
    va_end(args);
    return 0;
}

Int4 notallowed(std::string_view word) { return errorf(101, "%.*s not allowed\n", size(word), word.data()); }
Int4 required(std::string_view word) { return errorf(100, "%.*s required\n", size(word), word.data()); }
Int4 invalidword(std::string_view text) { return errorf(198, "invalid %.*s\n", size(text), text.data()); }
Int4 notfound(std::string_view name) { return prefixnotfound("", name); }
Int4 varnotfound(std::string_view name) { return prefixnotfound("variable ", name); }
Int4 matnotfound(std::string_view name) { return prefixnotfound("matrix ", name); }
Int4 eqnotfound(std::string_view name) { return prefixnotfound("equation ", name); }
Int4 regnotfound(std::string_view name) { return prefixnotfound("regressor ", name); }

Int4 macronotfound(std::string_view name) {
    if (name.substr(0, 1) != "_") return prefixnotfound("global macro $", name);
    return errorf(111, "local macro `%.*s' not found\n", size(name) - 1, name.data() + 1);
}

Int4 nameerror(Int4 kind, std::string_view name) {
    static const struct { const char* text; Int4 rc; } kinds[] = {
        {"invalid name", 198}, {"invalid varname", 198}, {"already defined", 110}, {"ambiguous abbreviation", 111},
        {"not found", 111}, {"not labeled", 182},
    };
    if (kind < name_invalid || kind > name_notlabeled) return error(9202);
    const char* blank = name.empty() ? "" : " ";
    return errorf(kinds[kind - 1].rc, "%.*s%s%s\n", size(name), name.data(), blank, kinds[kind - 1].text);
}

Int4 badname(std::string_view name) { return nameerror(name_invalid, name); }

Int4 opmsg(std::string_view op, opkind kind) {
    static const struct { const char* text; Int4 rc; } kinds[] = {
        {"operator too long\n", 1000}, {"operator invalid\n", 198},
        {"operator invalid:  D20 is maximum allowed difference\n", 198},
    };
    const char* between = op.size() < 30 ? ":  " : "\n";
    return errorf(kinds[kind].rc, "%.*s%s%s", size(op), op.data(), between, kinds[kind].text);
}

Int4 unmatchedquote() { return errorf(198, "unmatched quote\n"); }

// An explanation ends the paragraph by itself.
Int4 prefixed(std::string_view text, Int4 rc, boolean colon) {
    if (text.empty()) return error(rc);
    printing as(out_error);
    prtfresh();
    prtraw("{p 0 4}\n");
    prt(text);
    prtraw(colon ? ": " : " ");
    Int4 result;
    {
        saved fresh(freshline, UByte(0));
        result = error(rc);
    }
    if (levelshows() && vstream_mode(results) == vmode_paragraph) prtraw("{p_end}\n");
    return result;
}

Int4 fileerror(Int4 rc, std::string_view filename) {
    static const struct { Int4 rc; const char* text; } files[] = {
        {601, "not found"}, {602, "already exists"}, {603, "could not be opened"}, {609, "xp format"},
        {610, "not Velmo format"}, {661, "not found"}, {692, "I/O error on read"}, {693, "I/O error on write"},
    };
    int n = size(filename);
    const char* name = filename.data();
    if (rc == 697) notef("file %.*s saved\n", n, name);
    if (rc == 698) notef("(note: file %.*s not found)\n", n, name);
    if (rc == 699) errorf(rc, "insufficient disk space\n");
    if (rc >= 697 && rc <= 699) return rc;
    char unknown[24];
    std::snprintf(unknown, sizeof unknown, "error %d", rc);
    const char* text = unknown;
    for (const auto& row : files)
        if (row.rc == rc) text = row.text;
    return errorf(rc, "%sfile %.*s%s%s\n", rc == 661 ? "host or " : "", n, name, n > 0 ? " " : "", text);
}

Int4 boundscheck(std::string_view name, Int4 value, Int4 lo, Int4 hi) {
    if (value >= lo && value <= hi) return 0;
    return errorf(198, "%.*s must be between %d and %d\n", size(name), name.data(), lo, hi);
}

Int4 errorcommand(Int4 rc) {
    static const struct { Int4 rc, as; const char* text; } others[] = {
        {100, 198, nullptr}, {101, 198, nullptr}, {106, 109, nullptr}, {110, 198, nullptr}, {111, 198, nullptr},
        {132, 198, nullptr}, {133, 198, nullptr}, {180, 7196, nullptr}, {182, 0, "not labeled\n"},
        {303, 0, "equation  not found\n"}, {950, 0, "insufficient memory\n"},
    };
    static const Int4 files[] = {601, 602, 603, 609, 610, 692, 693, 699};
    if (rc < 0 || rc > 32767) rc = 32767;
    if (std::find(std::begin(files), std::end(files), rc) != std::end(files)) return fileerror(rc, "");
    for (const auto& row : others) {
        if (row.rc != rc) continue;
        if (row.text) return errorf(rc, "%s", row.text);
        error(row.as);
        return rc;
    }
    error(rc);
    return rc;
}

}  // namespace velmo
