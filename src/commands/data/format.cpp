// format: the display formats of variables.
#include <cstring>
#include <string>
#include "base/saved.h"
#include "base/text.h"
#include "data/dataset.h"
#include "data/run.h"
#include "language/stdparse.h"
#include "output/errors.h"
#include "output/formats.h"

namespace velmo {

namespace {

// The %-token at the cursor, up to the next blank. 120 when there is none or it is no format.
Int4 formattoken(std::string& text, fmtspec& spec) {
    nexttoken();
    if (tokbuf[0] == 0) return required("%fmt");
    if (tokbuf[0] != '%') return error(120);
    std::string_view rest = tokfirst();
    text = rest.substr(0, rest.find(' '));
    settokpos(tokfirst() + text.size());
    return chkfmt(text, 3, &spec) ? error(120) : 0;
}

constexpr form listonly{.ifexp = never, .in = never, .options = never};

// Where the list ends: at the first token that cannot stand in one.
char* listend() {
    tokenpos start;
    savetokpos(&start);
    onexit back([&] { restoretokpos(&start); });
    for (char c = nexttoken(breakvarlist)[0]; isnamestart(c) || (c && std::strchr("*?~-()", c));)
        c = nexttoken(breakvarlist)[0];
    return tokfirst();
}

// `varlist %fmt`: the list is all that stands ahead of the token that ends it.
Int4 listahead() {
    char* end = listend();
    saved cut(*end, char(0));
    Int4 rc = stdparse(listonly);
    settokpos(end);
    return rc;
}

Int4 checkkinds(const fmtspec& spec) {
    for (Int4 i = 1; i < vl_n; i++)
        if (isstring(vl_vr[i]) != isstring(vl_vr[0]))
            return errorf(109, "varlist must contain all numeric or all string variables\n");
    boolean string = isstring(vl_vr[0]);
    if (string && spec.fclass != 's') return errorf(120, "string %%fmt required for string variables\n");
    if (!string && spec.fclass == 's') return errorf(120, "numeric %%fmt required for numeric variables\n");
    return 0;
}

}  // namespace

// format %fmt varlist, or format varlist %fmt
Int4 cmd_format() {
    std::string text;
    fmtspec spec{};
    if (nvar == 0) return error(111);
    boolean formatfirst = tokpeeknonblank() == '%';
    if (formatfirst)
        if (Int4 rc = formattoken(text, spec)) return rc;
    if (Int4 rc = formatfirst ? stdparse(listonly) : listahead()) return rc;
    if (!vl_given) return error(111);
    if (!formatfirst) {
        if (Int4 rc = formattoken(text, spec)) return rc;
        if (nexttoken()[0]) return error(198);
    }
    if (Int4 rc = checkkinds(spec)) return rc;
    for (Int4 i = 0; i < vl_n; i++) {
        copytext(fmt[vl_vr[i] - 1], fmtsize, text);
        markchanged(vl_vr[i]);
    }
    return 0;
}

}  // namespace velmo
