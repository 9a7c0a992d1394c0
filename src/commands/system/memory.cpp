// memory, and the commands that look at the innards: debug, showpoint, _repart.
#include <bit>
#include <string>
#include "base/memalloc.h"
#include "base/poll.h"
#include "base/saved.h"
#include "base/text.h"
#include "commands/system/arguments.h"
#include "core/keywords.h"
#include "core/macros.h"
#include "core/objects.h"
#include "core/room.h"
#include "core/settings.h"
#include "core/tokenizer.h"
#include "data/dataset.h"
#include "data/run.h"
#include "language/autoload.h"
#include "language/options.h"
#include "language/stdparse.h"
#include "language/turn.h"
#include "output/errors.h"
#include "output/formats.h"
#include "output/print.h"
#include "output/results.h"
#include "stored/families.h"

namespace velmo {

namespace {

using wide = unsigned long long;

constexpr Int4 pointersize = Int4(sizeof *obsptrs);

struct usage { Double total, pointers, rows, objects; };

usage presentusage() {
    return {Double(memory), Double(pointersize) * nobs, Double(nobs) * width, Double(objbytes())};
}

Int4 usagerow(const char* label, Double bytes, Double total) {
    char size[40];
    fmtnum("%16.0fc", bytes);
    copytext(size, sizeof size, dbuf);
    prttextf("    %-32s", label);
    prtresult(size);
    prttext(" bytes  ");
    prtnumber("%10.2f", 100 * bytes / total);
    return prttext("%\n");
}

void storeusage(const usage& u) {
    const struct { const char* name; Double value; } rows[] = {
        {"N_cur", Double(nobs)},      {"N_curmax", Double(maxobs)}, {"k_cur", Double(nvar)},
        {"w_cur", Double(width)},     {"M_total", u.total},         {"M_data", u.rows},
        {"M_dyn", u.objects},         {"size_ptr", pointersize},    {"k", Double(shownvars())},
        {"width", Double(width)},     {"adosize", Double(adosize)}, {"matsize", Double(matsize)},
        {"n_repart", Double(n_repart)}, {"n_shift", Double(n_shift)},
    };
    for (const auto& row : rows) rstore(row.name, row.value);
}

}  // namespace

// memory: how much of the block is used for what.
Int4 cmd_memory() {
    if (Int4 rc = nothingelse()) return rc;
    printing as(out_text);
    rclear();
    usage u = presentusage();
    Double used = u.pointers + u.rows + u.objects;
    prtmarkup("(see {velmo \"query memory\":query memory} for total usage)\n");
    prtraw("{title:Details of -set memory- usage}\n");
    usagerow("Allocated", u.total, u.total);
    prtnl();
    usagerow("overhead (pointers)", u.pointers, u.total);
    usagerow("data", u.rows, u.total);
    usagerow("data + overhead", u.pointers + u.rows, u.total);
    prtnl();
    usagerow("programs, saved results, etc.", u.objects, u.total);
    prtnl();
    usagerow("Total used", used, u.total);
    prtnl();
    if (Int4 rc = usagerow("Free", u.total - used, u.total)) return rc;
    storeusage(u);
    return 0;
}

// ---- debug

namespace {

Int4 debugos() {
    for (const char* name : {"S_OS", "S_MACH"}) {
        const char* value = macroget(name);
        if (Int4 rc = prtf("%s=%s\n", name, value ? value : "")) return rc;
    }
    return 0;
}

Int4 debugbasics() {
    object* o = objnext(nullptr, nullptr, obj_lastcmd);
    std::string last = o ? std::string(reinterpret_cast<const char*>(o->data()), o->datalen) : "";
    prtf("version=%d\nlastest=%s\n", version, last.c_str());
    prtf("sysclock=%d\nbreak=%d\n", sysclock, Int4(breakpending));
    prtf("pollrate=%d  polltime=%d\n", pollrate, polltime);
    return debugos();
}

Int4 debugsizes() {
    static constexpr struct { const char* name; Int4 size; } types[] = {
        {"SByte", sizeof(SByte)}, {"UByte", sizeof(UByte)},   {"Int2", sizeof(Int2)},   {"UInt2", sizeof(UInt2)},
        {"Int4", sizeof(Int4)},   {"UInt4", sizeof(UInt4)},   {"Int", sizeof(int)},     {"Pint", sizeof(Pint)},
        {"UPint", sizeof(UPint)}, {"Float", sizeof(Float)},   {"Double", sizeof(Double)}, {"Filepos", sizeof(Filepos)},
        {"object", sizeof(object)},
    };
    prtf("BYTEORDER %s\n", std::endian::native == std::endian::little ? "lohi" : "hilo");
    for (const auto& type : types)
        if (Int4 rc = prtf("%-10s%d\n", type.name, type.size)) return rc;
    return 0;
}

Int4 debugterm() {
    return prtf("linesize=%d pagesize=%d more=%d\nlinegap=%d\n", linesize, pagesize, more_on, linegap);
}

wide address(const void* p) { return wide(reinterpret_cast<UPint>(p)); }

Int4 showtables() {
    wide total = 0;
    prtf("mtr.n = %d\n", nfixedtables);
    for (Int4 i = 0; i < nfixedtables; i++) {
        const fixedtable& t = fixedtables[i];
        wide start = address(t.p), end = start + t.size;
        long long gap = i + 1 < nfixedtables ? static_cast<long long>(address(fixedtables[i + 1].p) - end) : 0;
        prtf("%2d. %8llx + %08llx = %08llx  ", i + 1, start, wide(t.size), end);
        if (Int4 rc = prtf("(%s)  gap %lld\n", fixedrows[i].label, gap)) return rc;
        total += t.size;
    }
    if (nfixedtables == Int4(std::size(fixedtables))) prt("NTRACKS too small\n");
    return prtf("total fixed = %llx (%llu)\n", total, total);
}

Int4 debugmemory() {
    prtf("maxmaxvar=%d maxlrecl=%d\n", maxvar, maxlrecl());
    prtf("conslen=%d macrolen=%d\n", conslen, macrolen);
    if (Int4 rc = showtables()) return rc;
    prtf("nvar %d nobs %d\n", nvar, nobs);
    prtf("mvar %d mobs %d tobs %d\n", mvar, maxobs, tmaxobs);
    prtf("lrecl %d\n", lrecl);
    prtf("%8llx memsize\n", wide(memory));
    prtf("%8llx xtraptr\n", wide(tmaxobs - maxobs) * pointersize);
    prtf("%8llx vlblptr\n", address(dynstart));
    prtf("%8llx cddaptr\n", address(database));
    prtf("%8llx begin_of_memory\n", address(blockstart));
    prtf("%8llx cur_tm\n", address(blockend));
    return prtf("matsize=%d\n", matsize);
}

// The objects, newest first.
Int4 debugmap() {
    char name[36];
    Int4 type;
    for (object* o = objnext(nullptr, name, obj_any, &type); o; o = objnext(o, name, obj_any, &type))
        if (Int4 rc = prtf("%5d %-33s %8u of %8u  %s\n", type, name, o->datalen, o->capacity(), objkind(type)))
            return rc;
    return prtf("%llu bytes\n", wide(objbytes()));
}

Int4 debugretvals() {
    Double value;
    std::string text;
    for (const std::string& name : stored_names(r_results, result_scalar)) {
        stored_get(r_results, name, value, text);
        prtf("r(%s) = ", name.c_str());
        prtnum("%10.0g", value);
        if (Int4 rc = prtnl()) return rc;
    }
    for (const std::string& name : stored_names(r_results, result_macro)) {
        stored_get(r_results, name, value, text);
        if (Int4 rc = prtf("r(%s) : %s\n", name.c_str(), text.c_str())) return rc;
    }
    return 0;
}

Int4 debugobstest() {
    Int4 rc = obstest();
    return rc ? error(rc) : 0;
}

Int4 debugoptions() {
    for (const std::string& line : optionsasked())
        if (Int4 rc = prtf("%s\n", line.c_str())) return rc;
    return 0;
}

constexpr struct { const char* word; Int4 (*show)(); } aspects[] = {
    {"basics", debugbasics}, {"sizes", debugsizes}, {"term", debugterm}, {"memory", debugmemory},
    {"map", debugmap},       {"obstest", debugobstest}, {"os", debugos}, {"retvals", debugretvals},
};

}  // namespace

// debug [aspect | all];  debug refuse #: the #th request for work space from here on fails, to see what then happens;
// debug options: those that commands have asked for since `set debug on`.
Int4 cmd_debug() {
    std::string word = nexttoken();
    if (word == "refuse") return readinteger(nexttoken(breaknum), refusedcall) ? nothingelse() : error(198);
    if (Int4 rc = nothingelse()) return rc;
    printing as(out_text);
    if (word == "options") return debugoptions();
    if (word.empty()) return prt("all basics sizes term memory map obstest os\nretvals\n");
    boolean found = false;
    for (const auto& aspect : aspects) {
        if (word != aspect.word && word != "all") continue;
        found = true;
        if (Int4 rc = aspect.show()) return rc;
    }
    return found ? 0 : error(198);
}

// showpoint: the order, where runs of it break.
Int4 cmd_showpoint() {
    if (Int4 rc = nothingelse()) return rc;
    printing as(out_text);
    showpointers();
    return breakpending;
}

// _repart width #, _repart obs #: divides the block anew with rows wider by # bytes, or room for # more of them.
Int4 cmd__repart() {
    static constexpr keyword words[] = {{"width", 0, 0}, {"obs", 0, 1}};
    Int4 which = lookup(words, nexttoken()), n;
    if (which < 0 || !readinteger(nexttoken(breaknum), n)) return error(198);
    if (Int4 rc = nothingelse()) return rc;
    Int4 rc = which == 0 ? repart(n, 0) : repart(0, n);
    return rc ? error(rc) : 0;
}

}  // namespace velmo
