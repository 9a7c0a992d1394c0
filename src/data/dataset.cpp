// Names and look-up, new variables, and the dataset as a whole. Exact names go through an index of open addressing
// over variable numbers; what it says is always compared with varlist, so that entries of variables that have gone
// do no harm, and it is made anew only when variables have changed places or names.
#include "data/dataset.h"
#include <cstring>
#include <string>
#include <vector>
#include "base/text.h"
#include "core/events.h"
#include "core/objects.h"
#include "core/room.h"
#include "data/cells.h"
#include "data/chars.h"
#include "data/labels.h"
#include "data/structure.h"
#include "output/errors.h"
#include "output/formats.h"

namespace velmo {

char (*varlist)[namesize];
UByte* typ;
UInt4* mapi;
char (*fmt)[fmtsize];
char (*lbl)[namesize];
UInt2* srt;
Int4 nvar;
Int4 visnvar;
UByte datachanged;
UByte defaulttype = typefloat;
char datalabel[81];

namespace {

std::vector<UInt2> nameindex;      // variable numbers, 0: free; a power of two, at least twice nvar
boolean indexvalid = false;
std::size_t indexadded;            // names put in since it was made
Int4 tempfailure;                  // why maketemp failed, 0 if it didn't

std::string_view nameof(Int4 var) { return fieldtext(varlist[var - 1], namesize); }

std::size_t namehash(std::string_view name) {
    std::size_t h = 1469598103934665603u;
    for (char c : name) h = (h ^ UByte(c)) * 1099511628211u;
    return h ^ (h >> 29);
}

// The place of a name, or where it would stand; only variables up to `limit` count.
UInt2& nameplace(std::string_view name, Int4 limit) {
    std::size_t mask = nameindex.size() - 1, at = namehash(name) & mask;
    while (nameindex[at] && (nameindex[at] > limit || nameof(nameindex[at]) != name)) at = (at + 1) & mask;
    return nameindex[at];
}

void indexname(Int4 var) {
    UInt2& place = nameplace(nameof(var), var);
    if (!place) place = UInt2(var);
}

void makeindex() {
    std::size_t size = 64;
    while (size < 2 * std::size_t(nvar) + 2) size *= 2;
    nameindex.assign(size, 0);
    for (Int4 v = 1; v <= nvar; v++) indexname(v);
    indexvalid = true;
    indexadded = 0;
}

// Stale entries fill the index as variables come and go: it is made anew before it is half full.
void indexnew() {
    if (!indexvalid) return;
    indexvalid = 2 * std::size_t(nvar) + 2 <= nameindex.size() && ++indexadded <= nameindex.size() / 4;
    if (indexvalid) indexname(nvar);
}

Int4 findamong(std::string_view name, Int4 limit) {
    if (limit > 8) {
        if (!indexvalid) makeindex();
        return nameplace(name, limit);
    }
    for (Int4 v = 1; v <= limit; v++)
        if (nameof(v) == name) return v;
    return 0;
}

constexpr std::string_view reservednames[] = {
    "with", "using", "if", "in", "%", "=", ",", "_pred", "_b", "_n", "_N", "float", "double", "int", "long",
    "_uniform", "_coef", "_rc", "_pi", "byte", "_cons",
};

// `str` and a number, which a new variable list takes for a type.
boolean isstrname(std::string_view name) {
    if (name.size() < 4 || name.substr(0, 3) != "str" || name[3] == '0') return false;
    for (char c : name.substr(3))
        if (!isdigit(c)) return false;
    return true;
}

// The variables that `name` is a prefix of: none, the only one, or -1 for several.
Int4 findprefix(const nametable& among, std::string_view name) {
    Int4 found = 0;
    for (Int4 v = 1; v <= among.n; v++) {
        const char* full = among.names[v - 1];
        if (full[0] != name[0] || fieldtext(full, namesize).substr(0, name.size()) != name) continue;
        if (found) return -1;
        found = v;
    }
    return found;
}

// Codes of the room routines that tell of an attempt that didn't fit mean the same to callers.
Int4 widthcode(Int4 rc) { return rc >= 9000 ? 902 : rc; }

Int4 appendvar(std::string_view name, UByte type, boolean internal) {
    if (Int4 rc = addslot(type, internal)) return rc;
    copytext(varlist[nvar - 1], namesize, name);
    defaultformat(type, reinterpret_cast<char(&)[fmtsize]>(fmt[nvar - 1]));
    std::memset(lbl[nvar - 1], 0, namesize);
    indexnew();
    return 0;
}

}  // namespace

void namesmoved() { indexvalid = false; }

Int4 findvar(std::string_view name) { return findamong(name, visnvar); }

Int4 lookupamong(const nametable& among, std::string_view name) {
    if (!validname(name)) return -badname(name);
    if (among.n == 0) return -error(111);
    Int4 found = 0;
    if (!among.index)
        found = findamong(name, among.n);
    else if (auto at = among.index->find(std::string(name)); at != among.index->end())
        found = at->second;
    if (!found) found = findprefix(among, name);
    if (found < 0) return -nameerror(name_ambiguous, name);
    return found ? found : -varnotfound(name);
}

Int4 lookupvar(std::string_view name, Int4 mode) {
    if (mode == lookup_ref) return lookupamong(datatable(), name);
    if (!validname(name)) return -badname(name);
    Int4 exact = findamong(name, mode == lookup_free ? nvar : visnvar);
    if (mode == lookup_free && exact) return -nameerror(name_defined, name);
    if (exact) return exact;
    if (mode == lookup_free || mode == lookup_exact) return nvar + 1;
    Int4 found = findprefix(datatable(), name);
    if (found < 0) return -nameerror(name_ambiguous, name);
    return found > 0 ? found : nvar + 1;
}

Int4 checkvarname(std::string_view name) {
    for (std::string_view r : reservednames)
        if (name == r) return badname(name);
    if (isstrname(name)) return errorf(198, "%s invalid variable name\n", std::string(name).c_str());
    return validname(name) ? 0 : badname(name);
}

Int4 checknewname(std::string_view name) {
    if (Int4 rc = checkvarname(name)) return rc;
    Int4 v = lookupvar(name, lookup_free);
    return v < 0 ? -v : 0;
}

Int4 addvar(std::string_view name, UByte type, boolean internal) {
    if (!internal)
        if (Int4 rc = checknewname(name)) return rc;
    if (Int4 rc = appendvar(name, type, internal)) return error(rc);
    return putvarlabel(nameof(nvar), "");
}

Int4 addslot(UByte type, boolean internal) {
    Int4 size = varsize(type);
    if (internal ? width + size > lrecl : width + size >= lrecl)
        if (Int4 rc = addwidthroom(size)) return widthcode(rc);
    if (nvar >= (internal ? mvar : mvar - 1)) return 900;
    typ[nvar] = type;
    mapi[nvar] = UInt4(width);
    width += size;
    nvar++;
    return 0;
}

Int4 maketemp(UByte type, boolean keep) {
    if (type == 0) return tempfailure = 0;
    if (tempfailure && !keep) return -tempfailure;
    Int4 rc = appendvar("_delete", type, true);
    if (!rc) return nvar;
    if (!keep) tempfailure = rc;
    return -rc;
}

Int4 recast(Int4 var, std::string_view name, UByte newtype) {
    if (appendvar(name, newtype, true)) return 903;
    if (Int4 rc = needscratchrow()) {
        shrinkvars(nvar - 1);
        return rc;
    }
    if (name == nameof(var)) return 0;      // then the label is there already
    return putvarlabel(name, getvarlabel(nameof(var)));
}

Int4 renamevar(Int4 var, std::string_view newname) {
    std::string old(nameof(var)), now(newname);
    if (old == now) return 0;
    markchanged(var);
    if (object* o = objfind(old, obj_varlabel)) objrename(o, now);
    char_rename(old, now);
    std::memset(varlist[var - 1], 0, namesize);
    copytext(varlist[var - 1], namesize, now);
    namesmoved();
    markchanged(var);
    return 0;
}

void setsortnone(const Int4* vars, Int4 n) {
    for (UInt2* s = srt; *s; s++)
        for (Int4 i = 0; i < n; i++)
            if (*s == vars[i]) {
                *s = 0;
                return;
            }
}

void markchanged(Int4 var) {
    if (varlist[var - 1][0] != '_' && !issample(var)) datachanged = 1;
}

void cleardata(boolean keeplabels) {
    beginbatch();
    objdeltype(obj_varlabel);
    objdel("S_FN", obj_global);
    objdel("S_FNDATE", obj_global);
    tellcleared(keeplabels);
    endbatch();
    nvar = visnvar = nobs = width = 0;
    resetptrs();
    srt[0] = 0;
    datachanged = 0;
    tempfailure = 0;
    datalabel[0] = 0;
    namesmoved();
}

void dataset_started() { cleardata(false); }
// A variable that its command did not finish stands beyond visnvar.
void dataset_commandended() {
    if (nvar != visnvar) shrinkvars(visnvar);
}

Int4 estimations = 0;

boolean issample(Int4 var) { return varlist[var - 1][0] == '('; }

std::vector<Int4> samplemarkers() {
    std::vector<Int4> vars;
    for (Int4 v = 1; v <= nvar; v++)
        if (issample(v)) vars.push_back(v);
    return vars;
}

namespace {

struct typeword { UByte type; std::string_view word; };
constexpr typeword typewords[] = {
    {typebyte, "byte"}, {typeint, "int"}, {typelong, "long"}, {typefloat, "float"}, {typedouble, "double"},
};

}  // namespace

char* typename_of(UByte type, char* out) {
    for (const typeword& t : typewords)
        if (t.type == type) return copytext(out, 8, t.word);
    return copytext(out, 8, "str" + std::to_string(type));
}

UByte typecode(std::string_view word) {
    for (const typeword& t : typewords)
        if (t.word == word) return t.type;
    Int4 n = 0;
    if (!isstrname(word) || !readinteger(word.substr(3), n) || n > maxstrtype) return 0;
    return UByte(n);
}

}  // namespace velmo
