// The dataset under random operations, against a plain model of columns; the order of ties against the quicksort
// and shuffle written plainly; conversions at their edges; labels, characteristics and time-series operators.
#include <gtest/gtest.h>
#include <algorithm>
#include <cmath>
#include <cstring>
#include <random>
#include <string>
#include <vector>
#include "core/memory.h"
#include "core/objects.h"
#include "core/room.h"
#include "data/cells.h"
#include "data/chars.h"
#include "data/structure.h"
#include "putlabel.h"
#include "data/run.h"
#include "data/sorting.h"
#include "data/timeseries.h"
#include "stored/families.h"
#include "smallmemory.h"
#include "stored/held.h"

using namespace velmo;

namespace {

struct plaincolumn {
    std::string name, label;
    UByte type;
    std::vector<Double> numbers;
    std::vector<std::string> texts;
    boolean text() const { return type < 245; }
};

// A variable that can be seen at once.
Int4 newvar(std::string_view name, UByte type, boolean internal = false) {
    Int4 rc = addvar(name, type, internal);
    visnvar = nvar;
    return rc;
}

// What a cell of `type` gives back after `v` was stored, from the ranges alone.
Double storedvalue(UByte type, Double v) {
    Double limit = type == typebyte ? 128 : type == typeint ? 32768 : 2147483648.0;
    if (type == typedouble) return v;
    if (type == typefloat) return std::fabs(v) >= 0x1p125 ? missing : std::fabs(v) < 0x1p-120 ? 0 : Double(Float(v));
    Double whole = std::trunc(v);
    return !(std::fabs(v) < limit) || whole == limit - 1 ? missing : whole;
}

struct dataset : smallmemory {
    std::vector<plaincolumn> model;
    Int4 made = 0;
    dataset() : smallmemory(4711, 250000) {}
    void began() override {
        cleardata(false);
        sortseed = 1001;
    }
    Int4 somevar() { return 1 + Int4(pick(UInt4(nvar))); }
    UByte sometype() { return pick(3) ? UByte(typebyte + pick(5)) : UByte(1 + pick(pick(2) ? 12 : 244)); }
    Double somenumber() {
        static constexpr Double few[] = {0,     1,          2,     -1,      missing, 127, 128, -128,
                                         32767, 2147483647, 1e-40, 0x1p125, 1e300,   0.5};
        return pick(2) ? few[pick(14)] : std::ldexp(Double(Int4(random())), -Int4(pick(40)));
    }
    std::string sometext() {
        std::string s(pick(pick(4) ? 4 : 250), 'a');
        for (char& c : s) c = char('a' + pick(3));
        return s;
    }
    void store(Int4 v, Int4 obs) {
        plaincolumn& c = model[v - 1];
        if (c.text()) {
            std::string s = sometext();
            putstr(v, obs, s);
            c.texts[obs - 1] = s.substr(0, c.type);
        } else {
            Double x = somenumber();
            putobs(v, obs, x);
            c.numbers[obs - 1] = storedvalue(c.type, x);
        }
    }
    void add() {
        UByte type = sometype();
        std::string name = "v" + std::to_string(++made);
        if (newvar(name, type)) return;
        model.push_back({name, "", type, std::vector<Double>(nobs), std::vector<std::string>(nobs)});
        for (Int4 i = 1; i <= nobs; i++) store(nvar, i);
        if (pick(2) && putvarlabel(name, "label of " + name) == 0) model.back().label = "label of " + name;
    }
    void drop() {
        std::vector<UByte> marks(nvar);
        for (UByte& m : marks) m = pick(4) == 0;
        if (dropvars(marks.data())) return;
        for (Int4 v = Int4(marks.size()); v-- > 0;)
            if (marks[v]) model.erase(model.begin() + v);
    }
    void move() {
        Int4 from = somevar(), to = somevar(), list[2] = {from, to};
        if (movevar(from, to, list, 2)) return;
        EXPECT_EQ(list[0], to);
        plaincolumn c = model[from - 1];
        model.erase(model.begin() + from - 1);
        model.insert(model.begin() + to - 1, c);
    }
    void retype() {
        Int4 v = somevar();
        plaincolumn& c = model[v - 1];
        UByte type = c.text() ? UByte(1 + pick(244)) : UByte(typebyte + pick(5));
        if (changetype(v, type)) return;
        c.type = type;
        for (Double& x : c.numbers) x = storedvalue(type, x);
        for (std::string& s : c.texts) if (c.text()) s.resize(std::min<std::size_t>(s.size(), type));
        setsortnone(&v, 1);
    }
    void rename() {
        Int4 v = somevar();
        std::string name = "w" + std::to_string(++made);
        ASSERT_EQ(renamevar(v, name), 0);
        model[v - 1].name = name;
    }
    void grow() {
        Int4 old = nobs;
        if (growobs(nobs + Int4(pick(20)))) return;
        for (plaincolumn& c : model) {
            c.numbers.resize(nobs, missing);
            c.texts.resize(nobs);
        }
        for (Int4 i = old + 1; i <= nobs; i++)
            for (Int4 v = 1; v <= nvar; v++) if (pick(2)) store(v, i);
    }
    void dropsome() {
        std::vector<UByte> flags(nobs);
        Int4 kept = 0;
        for (UByte& f : flags) kept += (f = pick(5) == 0) == 0;
        for (plaincolumn& c : model) {
            Int4 j = 0;
            for (Int4 i = 0; i < nobs; i++) {
                if (flags[i]) continue;
                c.numbers[j] = c.numbers[i];
                c.texts[j++] = c.texts[i];
            }
            c.numbers.resize(kept);
            c.texts.resize(kept);
        }
        dropobs(flags.data(), kept);
    }
    void change() {
        Int4 v = somevar();
        for (Int4 i = 1; i <= nobs; i++) if (pick(3)) store(v, i);
        setsortnone(&v, 1);
    }
    void order();
    void step() {
        UInt4 what = pick(20);
        if (what < 4) add();
        else if (what < 6) grow();
        else if (nvar == 0) return;
        else if (what < 7) { if (!pick(4)) drop(); }
        else if (what < 9) move();
        else if (what < 12) retype();
        else if (what < 13) rename();
        else if (what < 14) { if (!pick(3)) dropsome(); }
        else if (what < 16) change();
        else order();
    }
    void checkcolumn(Int4 v) {
        const plaincolumn& c = model[v - 1];
        ASSERT_STREQ(c.name.c_str(), varlist[v - 1]);
        ASSERT_EQ(c.type, typ[v - 1]);
        ASSERT_EQ(findvar(c.name), v);
        ASSERT_EQ(getvarlabel(c.name), c.label);
        char text[245];
        for (Int4 i = 1; i <= nobs; i++) {
            if (c.text()) ASSERT_EQ(c.texts[i - 1], getstr(v, i, text)) << c.name << " " << i;
            else ASSERT_EQ(c.numbers[i - 1], getobs(v, i)) << c.name << " " << i << " type " << int(c.type);
        }
        if (c.text() || nobs == 0) return;
        std::vector<Double> all(nobs);
        getcolumn(v, 1, nobs, all.data());
        ASSERT_EQ(all, c.numbers);
    }
    void check() {
        ASSERT_EQ(memory_check(), 0);
        ASSERT_EQ(nvar, Int4(model.size()));
        UInt4 offset = 0;
        for (Int4 v = 1; v <= nvar; v++) {
            ASSERT_EQ(mapi[v - 1], offset);
            offset += UInt4(varsize(typ[v - 1]));
            checkcolumn(v);
            if (HasFatalFailure()) return;
        }
        ASSERT_EQ(UInt4(width), offset);
        std::vector<Int4> key;
        for (Int4 i = 0; srt[i]; i++) key.push_back(srt[i]);
        for (Int4 i = 2; i <= nobs; i++) ASSERT_LE(cmpobs(i - 1, i, key.data(), Int4(key.size())), 0);
    }
};

// The order that ties are defined by, on the pointers themselves.
struct plainsort {
    const Int4* vars;
    Int4 n;
    Int4 cmp(Int4 a, Int4 b) { return cmpobs(a, b, vars, n); }
    Int4 draw(Int4 first, Int4 last) {
        sortseed = ((3433 * sortseed & 0x7FFFFFFF) + ((sortseed << 16) & 0x7FFFFFFF)) & 0x7FFFFFFF;
        return first + Int4(sortseed / 2147483646.0 * (last - first) + 0.5);
    }
    void quick(Int4 lo, Int4 hi) {
        while (lo < hi) {
            Int4 i = lo, j = hi - 1;
            while (true) {
                while (i < hi && cmp(i, hi) < 0) i++;
                while (j > i && cmp(j, hi) > 0) j--;
                if (i >= j) break;
                swapobs(i++, j--);
            }
            if (i < hi && cmp(i, hi) == 0) {
                Int4 k = i + 1;
                while (k < hi && cmp(k, i) == 0) k++;
                if (k < hi) swapobs(k, hi);
                quick(k + 1, hi);
                hi = i - 1;
                while (hi > lo && cmp(hi, i) == 0) hi--;
            } else {
                if (i != hi) swapobs(i, hi);
                quick(lo, i - 1);
                lo = i + 1;
            }
        }
    }
    void run(Int4 first, Int4 last) {
        boolean up = true, down = true, same = true;
        Int4 direction = 0;
        for (Int4 i = first; i < last; i++) {
            Int4 c = cmp(i, i + 1);
            if (c == 0) continue;
            same = false;
            if (!direction) direction = c;
            (c < 0 ? down : up) = false;
        }
        if (same || up) return;
        if (down) {
            for (Int4 a = first, b = last; a < b;) swapobs(a++, b--);
            return;
        }
        for (Int4 i = first; i <= last; i++) {
            Int4 a = draw(first, last), b = draw(first, last);
            swapobs(a, b);
        }
        quick(first, last);
    }
};

// Sorts both ways from the same state and compares rows and seeds. Leaves the data sorted.
void sortboth(Int4 first, Int4 last, const std::vector<Int4>& vars) {
    std::vector<UInt4> before(obsptrs, obsptrs + nobs);
    UInt4 seed = sortseed;
    plainsort{vars.data(), Int4(vars.size())}.run(first, last);
    std::vector<UInt4> expected(obsptrs, obsptrs + nobs);
    UInt4 seedafter = sortseed;
    std::copy(before.begin(), before.end(), obsptrs);
    sortseed = seed;
    ASSERT_EQ(sortdata(first, last, vars.data(), Int4(vars.size())), 0);
    ASSERT_EQ(expected, std::vector<UInt4>(obsptrs, obsptrs + nobs));
    ASSERT_EQ(sortseed, seedafter);
}

void dataset::order() {
    if (nobs == 0) return;
    Int4 first = pick(3) ? 1 : 1 + Int4(pick(UInt4(nobs)));
    Int4 last = first == 1 ? nobs : first + Int4(pick(UInt4(nobs - first + 1)));
    std::vector<Int4> vars;
    for (UInt4 k = pick(3) + 1; k; k--) vars.push_back(somevar());
    std::vector<UInt4> before(obsptrs, obsptrs + nobs);
    sortboth(first, last, vars);
    std::vector<Int4> from(ptrmark);
    for (Int4 i = 0; i < nobs; i++) from[before[i]] = i;
    for (plaincolumn& c : model) {
        plaincolumn old = c;
        for (Int4 i = 0; i < nobs; i++) {
            c.numbers[i] = old.numbers[from[obsptrs[i]]];
            c.texts[i] = old.texts[from[obsptrs[i]]];
        }
    }
}

TEST_F(dataset, random_operations_agree_with_the_model) {
    for (int i = 0; i < 6000; i++) {
        step();
        if (i % 5 == 0) check();
        if (HasFatalFailure()) FAIL() << "at step " << i;
    }
    EXPECT_GT(n_repart, 10);
}

TEST_F(dataset, ties_come_out_as_defined) {
    begin(4 << 20);
    ASSERT_EQ(growobs(3000), 0);
    newvar("x", typedouble);
    newvar("b", typebyte);
    newvar("s", 20);
    newvar("t", 8);
    newvar("i", typeint);
    newvar("l", typelong);
    std::vector<std::vector<Int4>> keys = {{1}, {2}, {3}, {4}, {5}, {6}, {2, 1}, {4, 3, 2}, {3, 1}, {5, 1}, {6, 5}};
    for (UInt4 distinct : {2u, 10u, 500u, 1000000u}) {
        for (const std::vector<Int4>& key : keys) {
            for (Int4 i = 1; i <= nobs; i++) {
                UInt4 k = pick(distinct);
                putobs(1, i, pick(7) == 0 ? missing : pick(9) == 0 ? -0.0 : (Double(k) - distinct / 2) / 7);
                putobs(2, i, pick(distinct < 250 ? distinct : 250) - 100.0);
                putstr(3, i, pick(5) ? "common prefix " + std::to_string(k) : std::string(pick(3), char(200)));
                putstr(4, i, std::to_string(k));
                putobs(5, i, pick(8) ? Double(k % 20000) - 9000 : missing);
                putobs(6, i, Double(i) * 7919 - std::floor(i * 7919 / 3001.0) * 3001 + 2147480000);   // all different
            }
            sortseed = random() & 0x7FFFFFFF;
            sortboth(1, nobs, key);
            ASSERT_EQ(srt[0], key[0]);
            sortboth(1, nobs, key);             // ascending already
            for (Int4 a = 1, b = nobs; a < b;) swapobs(a++, b--);
            sortboth(1, nobs, key);             // descending
            swapobs(1, nobs);
            sortboth(100, 2000, key);
            if (HasFatalFailure()) FAIL() << distinct << " distinct, first key " << key[0];
        }
    }
}

TEST_F(dataset, list_sort_and_restoring_an_order) {
    growobs(2500);
    newvar("x", typefloat);
    newvar("s", 12);
    newvar("place", typelong);
    std::vector<Int4> list, perm(nobs);
    for (Int4 i = 0; i < nobs; i++) perm[i] = i + 1;
    std::shuffle(perm.begin(), perm.end(), random);
    for (Int4 i = 1; i <= nobs; i++) {
        putobs(1, i, Double(pick(700)) / 3 - 50);
        putstr(2, i, std::to_string(pick(5000)));
        putlong(3, i, perm[i - 1]);
        if (i % 3) list.push_back(i);
    }
    for (Int4 v : {1, 2}) {
        std::vector<Int4> sorted = list;
        ASSERT_EQ(sortlist(sorted.data(), Int4(sorted.size()), v), 0);
        for (std::size_t i = 1; i < sorted.size(); i++) ASSERT_LE(cmpobs(sorted[i - 1], sorted[i], &v, 1), 0);
        std::sort(sorted.begin(), sorted.end());
        EXPECT_EQ(sorted, list);
    }
    ASSERT_EQ(sortbyindex(3, nullptr, 0), 0);
    for (Int4 i = 1; i <= nobs; i++) ASSERT_EQ(getlong(3, i), i);
    putlong(3, 5, 6);    // two observations for one place: they are sorted
    putlong(3, 7, nobs + 1);
    ASSERT_EQ(sortbyindex(3, nullptr, 0), 0);
    for (Int4 i = 1; i < nobs; i++) ASSERT_LE(getlong(3, i), getlong(3, i + 1));
    EXPECT_EQ(memory_check(), 0);
}

TEST_F(dataset, geometry_and_names) {
    ASSERT_EQ(growobs(10), 0);
    ASSERT_EQ(newvar("s", 199), 0);
    EXPECT_EQ(lrecl, 200);
    ASSERT_EQ(newvar("b", typebyte), 0);      // the sum reaches lrecl
    EXPECT_GT(lrecl, 200);
    EXPECT_EQ(n_repart, 1);
    EXPECT_STREQ(fmt[0], "%199s");
    for (const char* name : {"_n", "with", "str5", "1x", "a b", "_pi"}) EXPECT_EQ(newvar(name, typebyte), 198) << name;
    EXPECT_EQ(newvar("b", typebyte), 110);
    EXPECT_EQ(newvar("str5x", typebyte), 0);
    newvar("alpha", typebyte);
    newvar("alphabet", typebyte);
    const struct { const char* text; lookupmode how; Int4 want; } looked[] = {   // alp is ambiguous, exact beats prefix
        {"alp", lookup_ref, -111}, {"alpha", lookup_ref, 4}, {"alphab", lookup_quiet, 5}, {"zz", lookup_ref, -111},
        {"alphab", lookup_exact, nvar + 1}, {"b", lookup_free, -110}};
    for (const auto& c : looked) EXPECT_EQ(lookupvar(c.text, c.how), c.want) << c.text;
    visnvar = nvar - 1;
    EXPECT_EQ(findvar("alphabet"), 0);
    EXPECT_EQ(lookupvar("alp", lookup_ref), 4);
    visnvar = nvar;
    ASSERT_EQ(newvar("(e)", typebyte, true), 0);
    putobs(nvar, 3, 1);
    EXPECT_EQ(shownvars(), nvar - 1);
    growobs(12);
    EXPECT_EQ(getobs(nvar, 12), 0);
    std::vector<UByte> marks(nvar, 1);
    marks[nvar - 1] = 0;
    putlabel("kept", 1, "one");
    datachanged = 0;
    ASSERT_EQ(dropvars(marks.data()), 0);
    EXPECT_EQ(nvar, 0);
    EXPECT_EQ(nobs, 0);
    EXPECT_TRUE(vl_find("kept"));
}

TEST_F(dataset, running_out_of_room_changes_nothing) {
    begin(102400);
    newvar("x", typedouble);
    EXPECT_EQ(growobs(mostobs() - 1), 0);
    EXPECT_EQ(growobs(nobs + 100000), 901);
    Int4 rc = 0;
    for (int i = 0; i < 100 && !rc; i++) rc = newvar("y" + std::to_string(i), typedouble);
    EXPECT_EQ(rc, 902);
    Int4 n = nvar;
    EXPECT_EQ(changetype(1, 200), 903);
    EXPECT_EQ(maketemp(244, false), -902);
    EXPECT_LT(maketemp(typebyte, false), 0);      // remembered
    maketemp(0, false);
    EXPECT_EQ(nvar, n);
    EXPECT_EQ(memory_check(), 0);
    begin(10 << 20);
    rc = 0;
    for (int i = 0; i < 3000 && !rc; i++) rc = newvar("y" + std::to_string(i), typebyte);
    EXPECT_EQ(rc, 900);
    EXPECT_EQ(nvar, maxvar - 1);
    EXPECT_EQ(maketemp(typebyte, false), maxvar);
    shrinkvars(nvar - 1);
    EXPECT_EQ(nvar, maxvar - 1);
}

TEST(cells, conversions_at_the_edges) {
    struct { UByte type; Double in, out; } cases[] = {
        {typefloat, 0x1.fffffep124, 0x1.fffffep124}, {typelong, HUGE_VAL, missing}, {typefloat, missing, missing},
        {typelong, -2147483647, -2147483647}, {typebyte, std::nan(""), missing}, {typedouble, 0x1.8p1023, 0x1.8p1023},
    };
    for (auto& c : cases) {
        UByte cell[8];
        writecell(cell, c.type, c.in);
        EXPECT_EQ(readcell(cell, c.type), c.out) << int(c.type) << " " << c.in;
    }
    EXPECT_EQ(typeneeded(typebyte, 1e12), typedouble);
    EXPECT_EQ(typeneeded(typefloat, 1e300), typefloat);
}

TEST_F(dataset, labels_and_characteristics) {
    for (Int4 v : {5, -3, 100, 7}) putlabel("l", v, "text " + std::to_string(v));
    vallabel l;
    vl_load("l", l);
    EXPECT_EQ(l.values, (std::vector<Int4>{-3, 5, 7, 100}));
    EXPECT_TRUE(!l.find(7.5) && !l.find(missing));
    Double value;
    labelinhand hand;
    vl_take(hand, "l");
    EXPECT_TRUE(vl_nextval(hand, "new", value) == 0 && value == 101);
    EXPECT_TRUE(vl_nextval(hand, "text 7", value) == 0 && value == 7);
    EXPECT_EQ(vl_texttoval(hand, "none"), missing);
    newvar("x", typebyte);
    putvarlabel("x", "label");
    for (const char* name : {"one", "two", "one"}) char_set("x", name, "1");
    EXPECT_EQ(char_names("x"), (std::vector<std::string>{"two", "one"}));
    char_set("x", "long", std::string(maxchartext + 10, 'z'));
    EXPECT_EQ(char_get("x", "long").size(), std::size_t(maxchartext));
    UByte mark = 1;
    dropvars(&mark);
    EXPECT_EQ(objcount(obj_char) + objcount(obj_varlabel), 0);
}

TEST_F(dataset, time_series_operators) {
    Int4 n;
    char text[21];
    ts_reset();
    struct { const char* in; Int4 rc; const char* out; } cases[] = {
        {"L2F", 0, "L"}, {"l", 0, "L"}, {"F3", 0, "F3"}, {"LD2S12S4", 0, "LD2S4S12"}, {"LF", 0, ""}, {"L-1", 0, "F"},
        {"D-1", 198, ""}, {"D21", 198, ""}, {"Q", 198, ""}, {"SSSSSSSSS", 198, ""}, {"D20", 0, "D20"},
        {"L1234567890", 0, "L1234567890"}, {"S123456789S123456789", 1000, ""}, {"L99999999999999", 198, ""},
    };
    for (auto& c : cases) {
        ASSERT_EQ(ts_parse(c.in, &n), c.rc) << c.in;
        EXPECT_STREQ(c.rc == 0 && n ? ts_text(n, text) : "", c.out);
    }
    EXPECT_EQ(tsetup(), 111);
    growobs(60);
    newvar("p", typebyte);
    newvar("t", typeint);
    newvar("x", typedouble);
    for (Int4 i = 1; i <= 60; i++) {
        putobs(1, i, i > 30);
        putobs(2, i, i + i / 7);         // a gap every seventh
        putobs(3, i, i * i);
    }
    char_set("_dta", "_TStvar", "t");
    char_set("_dta", "_TSpanel", "p");
    EXPECT_EQ(tsetup(), 5);
    Int4 vars[] = {1, 2};
    sortdata(1, nobs, vars, 2);
    ASSERT_EQ(tsetup(), 0);
    groupfirst = 1;
    grouplast = nobs;
    for (Int4 i = 1; i <= 60; i++) {
        for (Int4 k = -40; k <= 40; k++) {
            Int4 want = 0;
            for (Int4 j = 1; j <= 60; j++)
                if (getobs(1, j) == getobs(1, i) && getobs(2, j) == getobs(2, i) - k) want = j;
            ASSERT_EQ(findobs(i, k), want) << i << " lag " << k;
        }
    }
}

TEST_F(dataset, stored_results) {
    rclear();
    for (int i = 0; i < 30; i++) rstore("s" + std::to_string(i), i);
    for (int i : {3, 25}) rstore("s" + std::to_string(i), 11 * i);
    rmacro("m", "text");
    Double v = 0, w = 0;
    std::string text;
    EXPECT_TRUE(stored_get(r_results, "s3", v, text) == result_scalar && v == 33);
    EXPECT_TRUE(stored_get(r_results, "s25", w, text) == result_scalar && w == 275);
    std::vector<std::string> names = stored_names(r_results, result_scalar);
    EXPECT_TRUE(names.size() == 30 && names[2] == "s2" && names[29] == "s29");
    rclear();
    for (const char* name : {"s3", "s25", "m"}) EXPECT_EQ(stored_get(r_results, name, v, text), result_none);
    EXPECT_EQ(objbytes(), 0u);
}

// A name is one result; a matrix moves with its names; what is held comes back in its order, whole.
TEST_F(dataset, families_and_held) {
    Double v;
    std::string text;
    auto putmatrix = [](const char* name) {
        for (Int4 i = 0; i < 3; i++) objputtext(name, obj_matrix + i, std::string("part") + char('0' + i));
    };
    for (const char* name : {"a", "b", "c"}) stored_put(e_results, name, 1);
    stored_put(e_results, "b", "text");
    putmatrix("A");
    ASSERT_TRUE(stored_movematrix(named_results, "A", e_results, "c"));
    EXPECT_EQ(objcount(obj_matrix) + objcount(obj_matrix + 1) + objcount(obj_matrix + 2), 0);
    EXPECT_EQ(stored_names(e_results, result_scalar), std::vector<std::string>{"a"});
    ASSERT_EQ(held_put("h", "record", true), 0);
    EXPECT_EQ(held_put("h", "", false), 110);
    stored_put(e_results, "c", 3);
    EXPECT_EQ(stored_get(e_results, "c", v, text), result_scalar);
    ASSERT_EQ(held_put("i", "", false), 0);
    EXPECT_EQ(stored_get(e_results, "a", v, text), result_none);
    EXPECT_EQ(held_names(), (std::vector<std::string>{"h", "i"}));
    ASSERT_EQ(held_take("h", text), 0);
    EXPECT_EQ(text, "record");
    EXPECT_EQ(stored_get(e_results, "b", v, text), result_macro);
    EXPECT_EQ(stored_get(e_results, "c", v, text), result_matrix);
    EXPECT_STREQ(reinterpret_cast<char*>(objfind("c", obj_ematrix + 2)->data()), "part2");
    EXPECT_EQ(held_take("h", text), 111);
    stored_clear(e_results);
    EXPECT_TRUE(held_drop("i"));
    EXPECT_EQ(objbytes(), 0u);
    EXPECT_EQ(memory_check(), 0);
}

}  // namespace
