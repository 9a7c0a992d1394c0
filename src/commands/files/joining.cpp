#include "commands/files/joining.h"
#include <algorithm>
#include <cstring>
#include "base/text.h"
#include "core/room.h"
#include "data/cells.h"
#include "data/chars.h"
#include "data/dtamemory.h"
#include "data/dtaread.h"
#include "data/labels.h"
#include "data/structure.h"
#include "output/errors.h"

namespace velmo {

joining::joining() : oldvars(nvar), oldobs(nobs) {}

joining::~joining() {
    if (done) return;
    nobs = oldobs;
    shrinkvars(oldvars);
}

namespace {

UByte filetype(const joining& j, const sharedvar& s) { return j.f.head.types[std::size_t(s.filevar) - 1]; }

}  // namespace

Int4 join_otherkind(const joining& j, const sharedvar& s) {
    char type[8];
    return errorf(106, "%s is %s in using data\n", varlist[s.var - 1], typename_of(filetype(j, s), type));
}

Int4 join_open(joining& j, std::string_view name) {
    if (Int4 rc = dta_open(name, j.f)) return rc;
    for (Int4 v = 1; v <= j.f.head.nvar(); v++) {
        const std::string& variable = j.f.head.names[std::size_t(v) - 1];
        if (variable[0] == '(') continue;
        Int4 var = findvar(variable);
        (var ? j.both : j.fresh).push_back({var, v, var ? typ[var - 1] : UByte(0)});
    }
    return 0;
}

Int4 join_addvars(joining& j) {
    Int4 wider = 0;
    for (const sharedvar& s : j.fresh) wider += varsize(filetype(j, s));
    if (width + wider > lrecl)
        if (Int4 rc = addwidthroom(width + wider - lrecl + 2)) return error(rc >= 9000 ? 902 : rc);
    for (sharedvar& s : j.fresh) {
        std::size_t i = std::size_t(s.filevar) - 1;
        if (Int4 rc = addvar(j.f.head.names[i], j.f.head.types[i])) return rc;
        s.var = nvar;
        copytext(fmt[nvar - 1], fmtsize, j.f.head.formats[i]);
        copytext(lbl[nvar - 1], namesize, j.f.head.vallabels[i]);
    }
    dtachar c;
    for (boolean found = true; found;) {
        if (Int4 rc = dta_nextchar(j.f, c, found)) return rc;
        if (found && c.owner[0] != '(') j.chars.push_back(c);
    }
    for (const sharedvar& s : j.both)
        if (typ[s.var - 1] == filetype(j, s)) j.direct.push_back(s);
    return 0;
}

void join_layout(joining& j) {
    j.copies.clear();
    for (const auto* list : {&j.direct, &j.fresh})
        for (const sharedvar& s : *list)
            dta_addcopy(j.copies, j.f.offsets[std::size_t(s.filevar) - 1], mapi[s.var - 1],
                        UInt4(varsize(typ[s.var - 1])));
    j.blank.assign(std::size_t(width), 0);
    for (Int4 v = 1; v <= nvar; v++)
        if (!isstring(v) && !issample(v)) writecell(j.blank.data() + mapi[v - 1], typ[v - 1], missing);
}

namespace {

Int4 widen(joining& j, Int4 var, UByte type) {
    if (Int4 rc = changetype(var, type)) return error(rc);
    j.direct.erase(std::remove_if(j.direct.begin(), j.direct.end(), [var](auto& s) { return s.var == var; }),
                   j.direct.end());
    join_layout(j);
    return 0;
}

}  // namespace

Int4 join_store(joining& j, const sharedvar& s, const UByte* row, Int4 obs) {
    UByte type = typ[s.var - 1];
    if (isstringtype(type)) {
        std::string_view text = dta_text(j.f, row, s.filevar);
        if (text.size() > type)
            if (Int4 rc = widen(j, s.var, UByte(text.size()))) return rc;
        putstr(s.var, obs, text);
        return 0;
    }
    Double v = readcell(row + j.f.offsets[std::size_t(s.filevar) - 1], filetype(j, s));
    UByte needed = typeneeded(type, v);
    if (needed != type)
        if (Int4 rc = widen(j, s.var, needed)) return rc;
    putobs(s.var, obs, v);
    return 0;
}

namespace {

// Variable labels and characteristics; what memory has of these stays.
Int4 taketexts(const joining& j) {
    for (const sharedvar& s : j.fresh)
        if (Int4 rc = putvarlabel(varlist[s.var - 1], j.f.head.varlabels[std::size_t(s.filevar) - 1])) return rc;
    for (const dtachar& c : j.chars)
        if (!char_exists(c.owner, c.name))
            if (Int4 rc = char_set(c.owner, c.name, c.text)) return rc;
    return 0;
}

}  // namespace

Int4 join_finish(joining& j, boolean labels) {
    if (labels)
        if (Int4 rc = dta_takelabels(j.f)) return rc;
    if (Int4 rc = taketexts(j)) return rc;
    j.done = true;
    visnvar = nvar;
    srt[0] = 0;
    datachanged = 1;
    char was[8], now[8];
    for (const sharedvar& s : j.both)
        if (typ[s.var - 1] != s.oldtype)
            notef("%s was %s now %s\n", varlist[s.var - 1], typename_of(s.oldtype, was),
                  typename_of(typ[s.var - 1], now));
    return 0;
}

}  // namespace velmo
