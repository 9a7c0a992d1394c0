// estimates: what estimators post, put by and show; mat_put_rr; the older forms among the subcommands of matrix.
#include "commands/matrix/estimates.h"
#include <algorithm>
#include <cstring>
#include <string>
#include <vector>
#include "base/saved.h"
#include "base/text.h"
#include "commands/matrix/results.h"
#include "core/keywords.h"
#include "core/objects.h"
#include "estimate/coeftable.h"
#include "estimate/constraints.h"
#include "language/macrocommands.h"
#include "language/options.h"
#include "language/programs.h"
#include "language/stdparse.h"
#include "output/errors.h"
#include "output/print.h"
#include "stored/held.h"
#include "stored/posted.h"

namespace velmo {

namespace {

boolean alike(const std::vector<axisname>& a, const std::vector<axisname>& b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](const axisname& x, const axisname& y) {
        return x.eqtext() == y.eqtext() && x.optext() == y.optext() && x.nametext() == y.nametext();
    });
}

// What a post is told, and where it stands.
struct posting {
    std::vector<std::string> names;        // of b, V and C
    matrix b, V, C;
    boolean clear = true;
    Double n = 1000000, df = -1;           // which mean that there is none
    std::string depname, sample;
};
constexpr Double unsetobs = 1000000, unsetdf = -1;

Int4 samplename(std::string& name) {
    boolean found;
    return getopt_str("esample", 3, name, found);
}

Int4 checksymmetric(const matrix& V) { return issymmetric(V) ? 0 : error(505); }

Int4 readnumber(const char* name, const char* stored, boolean clear, Double& value) {
    Int4 n;
    std::string text;
    Double there;
    if (!clear && stored_get(e_results, stored, there, text) == result_scalar) value = there;
    return getopt_num(name, 3, &value, 1, n, true);
}

Int4 postoptions(posting& p) {
    boolean found;
    if (Int4 rc = parseoptions()) return rc;
    p.clear = getopt_noflag("clear", 5, true);
    if (Int4 rc = getopt_str("depname", 3, p.depname, found)) return rc;
    if (Int4 rc = readnumber("obs", "N", p.clear, p.n)) return rc;
    if (Int4 rc = readnumber("dof", "df_r", p.clear, p.df)) return rc;
    if (Int4 rc = samplename(p.sample)) return rc;
    return getopt_done();
}

Int4 readposting(posting& p) {
    while (tokpeeknonblank() && tokpeeknonblank() != ',' && p.names.size() < 4) p.names.push_back(nexttoken());
    if (p.names.size() < 2 || p.names.size() > 3) return error(198);
    for (std::size_t i = 0; i < p.names.size(); i++)
        if (std::count(p.names.begin(), p.names.end(), p.names[i]) > 1) return error(198);
    if (Int4 rc = postoptions(p)) return rc;
    if (Int4 rc = matcopy(p.names[0], p.b)) return rc;
    if (Int4 rc = matcopy(p.names[1], p.V)) return rc;
    return p.names.size() > 2 ? matcopy(p.names[2], p.C) : 0;
}

Int4 checkposting(posting& p) {
    if (p.V.rows != p.V.cols || p.b.rows != 1 || p.b.cols != p.V.cols || p.b.cols < 1) return error(503);
    if (p.names.size() > 2 && p.C.cols != p.V.cols + 1) return error(503);
    if (!alike(p.V.rownames, p.b.colnames) || !alike(p.V.colnames, p.b.colnames)) return error(503);
    if (Int4 rc = checksymmetric(p.V)) return rc;
    return p.sample.empty() ? 0 : checksample(p.sample);
}

// What the estimates are, beside the matrices. 0 or 950, with e() empty.
Int4 postrest(const posting& p) {
    postrecord r;
    r.code = p.names.size() > 2 ? code_constrained : code_posted;
    r.equations = hasequations(p.b.colnames);
    copytext(r.depname, sizeof r.depname, p.depname);
    if (Int4 rc = posted_begin(r, p.clear)) return rc;
    if (Int4 rc = posted_setnames(p.b.colnames)) return rc;
    if (p.n != unsetobs && p.n != missing)
        if (Int4 rc = stored_put(e_results, "N", p.n)) return rc;
    return p.df != unsetdf && p.df != missing ? stored_put(e_results, "df_r", p.df) : 0;
}

Int4 post() {
    posting p;
    if (Int4 rc = readposting(p)) return rc;
    if (Int4 rc = checkposting(p)) return rc;
    if (Int4 rc = postrest(p)) {
        posted_clear();
        return rc;
    }
    static constexpr const char* as[] = {"_b", "VCE", "Cns"};
    for (std::size_t i = 0; i < p.names.size(); i++) posted_take(p.names[i], as[i]);
    if (!p.sample.empty()) posted_sample(p.sample);
    return 0;
}

// [b = name] [V = name]
Int4 repost() {
    if (!inprogram || programclass != class_e) return error(152);
    std::string names[2], sample;
    matrix m;
    while (tokpeeknonblank() && tokpeeknonblank() != ',') {
        std::string what = nexttoken(), sign = nexttoken(), name = nexttoken();
        std::string& place = names[what == "V"];
        if ((what != "b" && what != "V") || sign != "=" || name.empty() || !place.empty()) return error(198);
        place = name;
    }
    if (Int4 rc = parseoptions()) return rc;
    if (Int4 rc = samplename(sample)) return rc;
    if (Int4 rc = getopt_done()) return rc;
    if (!posted()) return error(301);
    if (!names[0].empty() && names[0] == names[1]) return error(198);
    std::vector<axisname> have = postednames();
    for (Int4 i = 0; i < 2; i++) {
        if (names[i].empty()) continue;
        if (Int4 rc = matcopy(names[i], m)) return rc;
        if ((i == 0 ? m.rows != 1 : m.rows != m.cols) || !alike(m.colnames, have)) return error(503);
        if (i == 1 && !alike(m.rownames, have)) return error(503);
        if (Int4 rc = i == 1 ? checksymmetric(m) : 0) return rc;
    }
    if (!sample.empty())
        if (Int4 rc = checksample(sample)) return rc;
    if (!names[0].empty()) posted_take(names[0], "_b");
    if (!names[1].empty()) {
        posted_take(names[1], "VCE");
        postrecord r;
        posted(&r);
        r.scale = 1;
        objwrite(objfind("gamma", obj_estimate), 0, &r, sizeof r);
    }
    if (!sample.empty()) posted_sample(sample);
    return 0;
}

Int4 display() {
    coeftable t;
    boolean found;
    Int4 n;
    if (Int4 rc = parseoptions()) return rc;
    if (Int4 rc = getopt_str("eform", 2, t.title, found)) return rc;
    t.eform = found;
    t.first = getopt_flag("first", 1);
    t.plus = getopt_flag("plus", 2);
    if (Int4 rc = getopt_int("neq", 3, &t.neq, 1, n)) return rc;
    if (n && t.neq < 1) return invalidword("neq()");
    if (Int4 rc = getopt_level(1, t.level)) return rc;
    if (Int4 rc = getopt_done()) return rc;
    if (Int4 rc = postedtable(t)) return rc;
    return printcoeftable(t);
}

Int4 hold() {
    std::string name = nexttoken();
    if (!validname(name)) return name.empty() ? error(198) : badname(name);
    if (Int4 rc = parseoptions()) return rc;
    boolean copy = getopt_flag("copy", 1), restore = getopt_flag("restore", 1);
    if (Int4 rc = getopt_done()) return rc;
    return estimates_hold(name, copy, restore);
}

// The one name of unhold and drop.
Int4 heldname(std::string& name) {
    name = nexttoken();
    return name.empty() || nexttoken()[0] ? error(198) : 0;
}

Int4 unhold() {
    std::string name;
    if (Int4 rc = heldname(name)) return rc;
    return estimates_unhold(name);
}

Int4 drop() {
    std::string name;
    if (Int4 rc = heldname(name)) return rc;
    if (name != "_all") return estimates_drop(name);
    for (const std::string& held : held_names()) estimates_drop(held);
    return 0;
}

Int4 dir() {
    if (Int4 rc = nothingbehind()) return rc;
    printing as(out_text);
    for (const std::string& name : held_names())
        if (prtf("    %s\n", name.c_str())) return 1;
    return 0;
}

Int4 list() {
    if (Int4 rc = nothingbehind()) return rc;
    return listfamily(e_results);
}

Int4 clear() {
    if (Int4 rc = nothingbehind()) return rc;
    posted_clear();
    return 0;
}

}  // namespace

Int4 cmd_estimates() {
    enum { w_local, w_scalar, w_matrix, w_other };
    static constexpr Int4 (*handlers[])() = {
        [] { return macrodefine(define_ereturn, putmacro<e_results>); },
        [] { return putscalar(e_results); },
        [] { return takematrix(e_results); },
        list, clear, display, post, repost, hold, unhold, drop, dir,
    };
    static constexpr keyword words[] = {{"local", 3, 0}, {"scalar", 3, 1}, {"matrix", 3, 2},  {"list", 2, 3},
                                        {"clear", 5, 4}, {"display", 4, 5}, {"post", 4, 6},   {"repost", 4, 7},
                                        {"hold", 4, 8},  {"unhold", 4, 9},  {"drop", 4, 10},  {"dir", 3, 11}};
    static_assert(std::size(handlers) == std::size(words));
    Int4 word = lookup(words, nexttoken());
    if (word < 0) return error(198);
    if (word < w_other && (!inprogram || programclass != class_e)) return error(152);
    return handlers[word]();
}

// ---- Constraints of the estimates.

Int4 cmd_mat_put_rr() {
    std::string name = nexttoken();
    matrix m;
    if (name.empty()) return error(198);
    if (Int4 rc = nothingbehind()) return rc;
    if (!posted()) return error(301);
    if (Int4 rc = matcopy(name, m)) return rc;
    if (std::size_t(m.cols) != postednames().size() + 1) return error(503);
    saved<Int4> kind(matrixkind, obj_estimate);
    return matput("Rr", m);
}

Int4 matrix_post() { return post(); }
Int4 matrix_repost() { return repost(); }
Int4 matrix_mlout() { return display(); }

Int4 matrix_makecns() {
    std::vector<Int4> numbers;
    std::vector<constraintrow> rows;
    std::string text;
    if (!posted()) return error(301);
    if (Int4 rc = constraint_list(tokrest(), numbers)) return rc;
    for (Int4 number : numbers) {
        if (!constraint_get(number, text)) return notfound("constraint " + std::to_string(number));
        if (Int4 rc = buildconstraints(text, rows)) return rc;
    }
    saved<Int4> kind(matrixkind, obj_estimate);
    if (rows.empty()) {
        matdrop("Cns");
        return 0;
    }
    matrix m;
    if (Int4 rc = makematrix(m, Int4(rows.size()), Int4(rows[0].size()))) return rc;
    for (std::size_t i = 0; i < rows.size(); i++) std::copy(rows[i].begin(), rows[i].end(), m.row(Int4(i)));
    return matput("Cns", m);
}

Int4 matrix_dispcns() {
    matrix m;
    if (Int4 rc = nothingbehind()) return rc;
    if (!posted()) return error(301);
    {
        saved<Int4> kind(matrixkind, obj_estimate);
        if (!matfind("Cns")) return 0;
    }
    if (Int4 rc = postedmatrix("Cns", m)) return rc;
    for (Int4 i = 0; i < m.rows; i++) {
        prttextf(" (%2d)  ", i + 1);
        prtresult(constrainttext(m.row(i)));
        if (prtnl()) return 1;
    }
    return 0;
}

}  // namespace velmo
