// The block under random operations, against two plain models: objects as a list of strings (newest first) and rows
// as a vector of byte strings. Both live in a block so small that they fight for room all the time.
#include <gtest/gtest.h>
#include <cstring>
#include <list>
#include <random>
#include <string>
#include <vector>
#include "core/memory.h"
#include "core/objects.h"
#include "core/prefs.h"
#include "core/rectangle.h"
#include "core/room.h"
#include "core/tempfiles.h"
#include "base/platform.h"
#include "smallmemory.h"

using namespace velmo;

namespace {

struct plainobject { std::string name; Int4 type; std::string data; std::uint64_t size; };

std::uint64_t objectsize(std::size_t capacity) { return (capacity + 63) / 16 * 16; }

struct arena : smallmemory {
    std::list<plainobject> objects;
    std::vector<std::string> rows;
    arena() : smallmemory(20260730, 150000) {}
    std::string bytes(std::size_t n) {
        std::string s(n, 0);
        for (char& c : s) c = char(random());
        return s;
    }
    std::string somename() { return (pick(2) ? "name" : "x") + std::to_string(pick(25)); }
    Int4 sometype() {
        static constexpr Int4 types[] = {obj_vallabel, obj_global, obj_scalar, obj_local, obj_local + 1, obj_char};
        return types[pick(6)];
    }
    std::list<plainobject>::iterator newest(const std::string& name, Int4 type) {
        auto o = objects.begin();
        while (o != objects.end() && (o->name != name || o->type != type)) ++o;
        return o;
    }
    void checkobjects(Int4 type) {
        object* o = nullptr;
        Int4 seentype, n = 0;
        char seen[36];
        for (plainobject& m : objects) {
            if (type != obj_any && m.type != type) continue;
            o = objnext(o, seen, type, &seentype);
            ASSERT_TRUE(o);
            ASSERT_EQ(m.name, seen);
            ASSERT_EQ(m.type, seentype);
            ASSERT_EQ(m.data, std::string(reinterpret_cast<char*>(o->data()), o->datalen));
            n++;
        }
        ASSERT_EQ(objnext(o, seen, type), nullptr);
        ASSERT_EQ(objcount(type), type == obj_any ? Int4(objects.size()) : n);
        std::uint64_t total = 0;
        for (plainobject& m : objects) total += m.size;
        ASSERT_EQ(objbytes(), total);
    }
    void checkrows() {
        ASSERT_EQ(nobs, Int4(rows.size()));
        for (Int4 i = 1; i <= nobs; i++)
            ASSERT_EQ(0, std::memcmp(rowptr(i), rows[i - 1].data(), std::size_t(width))) << "row " << i;
    }
    void check() {
        ASSERT_EQ(memory_check(), 0);
        checkobjects(obj_any);
        checkobjects(sometype());
        checkrows();
    }
    void newobject() {
        std::string name = somename(), data = bytes(pick(pick(10) ? 90 : 4000));
        std::size_t capacity = data.size() + pick(50);
        Int4 type = sometype();
        object* o = objnew(name, type, data.size(), capacity);
        if (!o) return;
        ASSERT_GE(o->capacity(), capacity);
        objwrite(o, 0, data.data(), data.size());
        objects.push_front({name, type, data, objectsize(capacity)});
    }
    void putobject() {
        std::string name = somename(), data = bytes(pick(pick(10) ? 90 : 4000));
        Int4 type = sometype();
        if (objput(name, type, data.data(), data.size())) return;
        auto old = newest(name, type);
        if (old != objects.end()) objects.erase(old);
        objects.push_front({name, type, data, objectsize(data.size())});
    }
    void deleteobject() {
        std::string name = somename();
        Int4 type = sometype();
        auto m = newest(name, type);
        UInt4 len = 0;
        object* o = objfind(name, type, &len);
        ASSERT_EQ(o != nullptr, m != objects.end());
        ASSERT_TRUE(!o || len == m->data.size());
        ASSERT_EQ(objdel(name, type), o != nullptr);
        if (o) objects.erase(m);
    }
    void renameobject() {
        std::string name = somename(), to = somename();
        Int4 type = sometype();
        object* o = objfind(name, type);
        if (!o) return;
        newest(name, type)->name = to;
        objrename(o, to);
    }
    void deletetype() {
        Int4 type = sometype();
        beginbatch();
        objdeltype(type);
        endbatch();
        objects.remove_if([&](const plainobject& m) { return m.type == type; });
    }
    void growrows() {
        Int4 n = 1 + Int4(pick(40));
        if (nobs + n >= maxobs && addobsroom(nobs + n - maxobs + 1)) return;
        ASSERT_LT(nobs + n, maxobs);
        touchptrs(nobs + n + 1);
        for (Int4 i = 0; i < n; i++) {
            rows.push_back(bytes(std::size_t(width)));
            putrow(rows.back().data(), ++nobs, width);
        }
    }
    void widen() {
        Int4 n = 1 + Int4(pick(60));
        if (width + n > lrecl) {
            Int4 before = lrecl;
            if (addwidthroom(n)) return;
            ASSERT_GE(lrecl, before + n);
        }
        width += n;
        for (Int4 i = 1; i <= nobs; i++) {
            rows[i - 1] += bytes(std::size_t(n));
            putrow(rows[i - 1].data(), i, width);
        }
    }
    void narrow() {
        width -= Int4(pick(UInt4(width) / 2 + 1));
        for (std::string& r : rows) r.resize(std::size_t(width));
    }
    void permute() {
        for (Int4 k = 0; k < nobs; k++) {
            Int4 a = 1 + Int4(pick(UInt4(nobs))), b = 1 + Int4(pick(UInt4(nobs)));
            swapobs(a, b);
            std::swap(rows[a - 1], rows[b - 1]);
        }
    }
    void droprows() {
        nobs -= Int4(pick(UInt4(nobs) + 1));
        rows.resize(std::size_t(nobs));
    }
    void step() {
        switch (pick(24)) {
        case 0: growrows(); break;
        case 1: widen(); break;
        case 2: if (!pick(4)) narrow(); break;
        case 3: permute(); break;
        case 4: if (!pick(4)) droprows(); break;
        case 5: if (!pick(20)) deletetype(); break;
        case 6: renameobject(); break;
        case 7: case 8: case 9: case 10: case 11: deleteobject(); break;
        case 12: case 13: case 14: case 15: case 16: newobject(); break;
        default: putobject(); break;
        }
    }
};

TEST_F(arena, random_operations_agree_with_the_models) {
    for (int i = 0; i < 40000; i++) {
        step();
        if (i % 7 == 0 && !HasFatalFailure()) check();
        if (HasFatalFailure()) FAIL() << "at step " << i;
    }
    EXPECT_GT(n_repart, 20);
    EXPECT_GT(n_shift, 20);
}

TEST_F(arena, resizing_keeps_the_objects) {
    for (int i = 0; i < 300; i++) putobject();
    for (std::uint64_t size : {std::uint64_t(20) << 20, std::uint64_t(300000), std::uint64_t(102400)}) {
        Int4 rc = setmemory(size);
        ASSERT_TRUE(rc == 0 || size == 102400);
        check();
    }
    EXPECT_EQ(setmemory(102399), 910);
    EXPECT_EQ(setmemory(std::uint64_t(1) << 50), 912);
    EXPECT_EQ(setmemory(std::uint64_t(1) << 45), 909);
    ASSERT_EQ(setmaxvar(32767), 0);
    EXPECT_EQ(macrolen, 32767 * 33 + 200);
    EXPECT_EQ(setmatsize(11000), 0);
    check();
}

TEST_F(arena, start_geometry) {
    begin(10485760);
    EXPECT_EQ(lrecl, 200);
    EXPECT_EQ(tmaxobs, (10485760 - 16) / 204);
    EXPECT_EQ(maxobs, 51400);
    memory_stop();
    memory = 1000;    // too small to be taken at its word
    ASSERT_EQ(memory_start(), 0);
    EXPECT_EQ(memory, 10485760u);
    memory_stop();
    memory = std::uint64_t(1) << 46;
    ASSERT_EQ(memory_start(), 0);
    EXPECT_TRUE(memory_fellback);
    EXPECT_EQ(asked_memory, std::uint64_t(1) << 46);
    EXPECT_EQ(maxvar, 5000);
}

TEST_F(arena, room_limits) {
    begin(10485760);
    EXPECT_EQ(addwidthroom(maxlrecl() + 2), 1010);
    width = 150;
    nobs = 100;
    touchptrs(101);
    EXPECT_EQ(addobsroom(2000000), 901);
    EXPECT_EQ(freedyn(40000000), 902);
    Int4 most = mostobs();
    ASSERT_EQ(addobsroom(most - maxobs), 0);
    EXPECT_GE(maxobs, most);
    // The store takes what rows leave and not more.
    objnew("big", obj_global, 0, 20000000);
    EXPECT_FALSE(objfind("big", obj_global));
    EXPECT_EQ(memory_check(), 0);
    // Rows that the store pushed out come back when it gives way.
    object* o = objnew("big", obj_global, 0, 9000000);
    ASSERT_TRUE(o);
    EXPECT_LT(maxobs, 10000);
    objdel("big", obj_global);
    EXPECT_EQ(addobsroom(20000), 0);
    EXPECT_EQ(memory_check(), 0);
}

TEST_F(arena, a_value_may_come_from_the_block_itself) {
    std::string text(500, 'a');
    ASSERT_EQ(objput("m", obj_global, text.data(), text.size()), 0);
    for (int i = 0; i < 50; i++) {
        object* o = objfind("m", obj_global);
        ASSERT_EQ(objput("copy" + std::to_string(i), obj_global, o->data(), o->datalen), 0);
        o = objfind("m", obj_global);
        ASSERT_EQ(objput(o->name, obj_global, o->data() + 1, o->datalen - 1), 0);
    }
    UInt4 len;
    objfind("m", obj_global, &len);
    EXPECT_EQ(len, 450u);
}

TEST_F(arena, damage_is_noticed) {
    nobs = 50;
    touchptrs(51);
    width = 100;
    UInt4 kept = obsptrs[7];
    obsptrs[7] = 51;
    EXPECT_EQ(memory_check(), 9998);
    obsptrs[7] = obsptrs[8];
    EXPECT_EQ(memory_check(), 9997);
    obsptrs[7] = kept;
    object* o = objnew("m", obj_global, 5, 5);
    o->datalen = 500;
    EXPECT_EQ(memory_check(), 9999);
    o->datalen = 5;
    EXPECT_EQ(memory_check(), 0);
}

TEST(tempfiles, names_differ_and_go_at_the_end) {
    setenv("VELMOTMP", " /tmp ", 1);
    tempfile_init();
    char a[pathsize], b[pathsize];
    ASSERT_EQ(tempfilename(a, '_', tempfile_next('_')), 0);
    ASSERT_EQ(tempfilename(b, '_', tempfile_next('_')), 0);
    EXPECT_STRNE(a, b);
    std::string folder = std::string(a).substr(0, std::strlen("/tmp/velmo-123456"));
    EXPECT_EQ(std::string(a).substr(folder.size(), 4), "/VM_");
    EXPECT_EQ(std::strlen(a), folder.size() + std::strlen("/VM_00000001.tmp"));
    makedir((folder + "/deeper").c_str(), false);
    for (const std::string& name : {std::string(a), folder + "/deeper/x"})
        fileclose(fileopenwrite(name.c_str(), true, false, false));
    tempfile_removeall();
    EXPECT_FALSE(filestat(folder.c_str()).exists);
    setenv("VELMOTMP", "/no/such/folder", 1);
    setenv("TEMP", "/tmp", 1);
    tempfile_init();
    EXPECT_EQ(tempfilename(a, '_', 1), 0);       // the next place that lets it
    tempfile_removeall();
    unsetenv("VELMOTMP");
    unsetenv("TEMP");
    tempfile_init();
}

TEST(preferences, survive_a_session) {
    std::string oldhome = environmenttext("HOME"), home = "/tmp/velmoprefs" + std::to_string(processid());
    makedir(home.c_str(), false);
    setenv("HOME", home.c_str(), 1);
    prefs_setint("mem_xe_w", "memory", std::int64_t(6) << 30);
    prefs_set("set_w", "more", "off");
    prefs_save();
    prefs_load();
    std::int64_t n = 0;
    std::string text;
    EXPECT_TRUE(prefs_getint("mem_xe_w", "memory", n) && n == std::int64_t(6) << 30);
    EXPECT_TRUE(prefs_get("set_w", "more", text) && text == "off");
    EXPECT_FALSE(prefs_get("set_w", "memory", text) || prefs_getint("set_w", "more", n));
    fileremove((home + "/.config/velmo/preferences").c_str());
    setenv("HOME", oldhome.c_str(), 1);
    prefs_load();
}

}  // namespace
