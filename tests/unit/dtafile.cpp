// Dataset files. Those of fuzz/corpus/dta were packed by tests/reference/dtafile/make.py, which knows nothing of our
// writer: they are read, written again and compared byte for byte, cut at every byte and changed in every byte.
#include <gtest/gtest.h>
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <sys/resource.h>
#include <unistd.h>
#include <vector>
#include "base/platform.h"
#include "core/macros.h"
#include "core/room.h"
#include "data/cells.h"
#include "data/dtafile.h"
#include "data/dtamemory.h"
#include "data/dtaread.h"
#include "data/dtawrite.h"
#include "data/structure.h"
#include "smallmemory.h"

using namespace velmo;

namespace {

constexpr const char* fixturestamp = " 5 Jan 1999 13:45";

std::string bytesof(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

void writebytes(const std::string& path, std::string_view bytes) {
    std::FILE* f = std::fopen(path.c_str(), "wb");
    ASSERT_EQ(std::fwrite(bytes.data(), 1, bytes.size(), f), bytes.size());
    std::fclose(f);
}

std::string fixture(const std::string& name) { return VELMO_SOURCE "/fuzz/corpus/dta/" + name; }

struct dtafiles : smallmemory {
    std::string folder = "/tmp/velmodta" + std::to_string(processid()), path = folder + "/t.dta";
    dtafiles() : smallmemory(1, 400000) {}
    void began() override {
        webfile_init();
        cleardata(false);
        makedir(folder.c_str(), false);
    }
    void TearDown() override {
        std::filesystem::remove_all(folder);
        smallmemory::TearDown();
    }
    Int4 readpart(dtafile& f, const std::vector<Int4>& keep) {
        if (Int4 rc = dta_takevars(f, keep)) return rc;
        if (Int4 rc = dta_takerows(f, keep)) return rc;
        return dta_takelabels(f);
    }
    Int4 read(const std::string& name) {
        dtafile f;
        std::vector<Int4> all;
        Int4 rc = dta_open(name, f);
        for (Int4 v = 1; v <= f.head.nvar(); v++) all.push_back(v);
        if (!rc) rc = readpart(f, all);
        if (rc) cleardata(false);
        return rc;
    }
    // What the fixtures hold, by hand.
    void check(Int4 format, const std::string& name) {
        SCOPED_TRACE(name);
        ASSERT_EQ(nvar, 6);
        ASSERT_EQ(nobs, 3);
        EXPECT_EQ("Format " + std::to_string(format), datalabel);
        EXPECT_EQ(std::vector<UByte>(typ, typ + 6),
                  (std::vector<UByte>{typebyte, typeint, typelong, typefloat, typedouble, 3}));
        constexpr const char* names[] = {"id", "v_1", "big", "x", "d", "s"};
        for (Int4 v = 0; v < 6; v++) EXPECT_STREQ(varlist[v], names[v]);
        EXPECT_STREQ(fmt[4], "%12.4f");
        EXPECT_EQ((std::vector<UInt2>(srt, srt + 3)), (std::vector<UInt2>{1, 4, 0}));
        EXPECT_STREQ(lbl[0], "rank");
        EXPECT_EQ(getvarlabel("id"), "Identifier");
        EXPECT_EQ(getvarlabel("x"), "A float");
        EXPECT_EQ(char_get("_dta", "note1"), format >= 105 ? "first note" : "");
        EXPECT_EQ(char_get("x", "unit"), format >= 105 ? "m" : "");
        constexpr Double values[3][5] = {{1, 1000, -70000, 1.5, 0.1},
                                         {2, -2, 2147483646, -0.25, missing},
                                         {missing, missing, missing, missing, -1e300}};
        constexpr const char* texts[] = {"abc", "a", ""};
        for (Int4 obs = 1; obs <= 3; obs++) {
            for (Int4 v = 1; v <= 5; v++) EXPECT_EQ(getobs(v, obs), values[obs - 1][v - 1]) << v << " " << obs;
            EXPECT_EQ(strcell(6, obs), texts[obs - 1]);
        }
        vallabel rank;
        vl_load("rank", rank);
        EXPECT_EQ(rank.values, (std::vector<Int4>{-2, 1, 3}));
        EXPECT_STREQ(rank.find(-2), "minus");
        EXPECT_STREQ(rank.find(1), "one");
        EXPECT_STREQ(rank.find(3), "three");
    }
};

TEST_F(dtafiles, every_format_in_both_byte_orders) {
    Int4 n = 0;
    for (const char* format : {"102", "103", "104", "105", "106", "107", "108", "110", "111"})
        for (const char* order : {"lo", "hi"}) {
            std::string name = std::string("f") + format + order;
            if (!filestat(fixture(name).c_str()).exists) continue;
            writebytes(path, bytesof(fixture(name)));
            ASSERT_EQ(read(path), 0) << name;
            check(std::atoi(format), name);
            n++;
        }
    EXPECT_EQ(n, 17);
}

TEST_F(dtafiles, written_formats_byte_for_byte) {
    for (Int4 format : {dta_old, dta_midscale, dta_whole}) {
        std::string bytes = bytesof(fixture("f" + std::to_string(format) + "lo"));
        writebytes(path, bytes);
        ASSERT_EQ(read(path), 0);
        ASSERT_EQ(dta_save(path, true, {.format = format}, fixturestamp), 0);
        EXPECT_EQ(bytesof(path), bytes) << format;
        EXPECT_EQ(dta_save(path, false, {}, ""), 602);
        EXPECT_EQ(bytesof(path), bytes);
    }
}

TEST_F(dtafiles, order_and_hidden_variables) {
    ASSERT_EQ(addvar("a", typeint), 0);
    ASSERT_EQ(addvar("(e)", typebyte, true), 0);
    ASSERT_EQ(addvar("s", 2), 0);
    visnvar = nvar;
    ASSERT_EQ(growobs(40), 0);
    for (Int4 obs = 1; obs <= 40; obs++) putobs(1, obs, obs);
    for (Int4 obs = 1; obs <= 20; obs++) swapobs(obs, 41 - obs);
    srt[0] = 3;
    srt[1] = 1;
    srt[2] = 0;
    ASSERT_EQ(dta_save(path, false, {}, ""), 0);
    ASSERT_EQ(dta_save(folder + "/all.dta", false, {.all = true}, ""), 0);
    ASSERT_EQ(read(path), 0);
    EXPECT_EQ(nvar, 2);
    EXPECT_EQ((std::vector<UInt2>(srt, srt + 3)), (std::vector<UInt2>{2, 1, 0}));
    for (Int4 obs = 1; obs <= 40; obs++) EXPECT_EQ(getobs(1, obs), 41 - obs);
    ASSERT_EQ(read(folder + "/all"), 0);
    EXPECT_EQ(nvar, 3);
    EXPECT_STREQ(varlist[1], "(e)");
}

TEST_F(dtafiles, parts_are_passed_over) {
    writebytes(path, bytesof(fixture("f107hi")));
    dtafile f;
    ASSERT_EQ(dta_open(folder + "/t", f), 0);
    EXPECT_EQ(f.head.stamp, fixturestamp);
    ASSERT_EQ(readpart(f, {3, 4}), 0);
    EXPECT_EQ(srt[0], 0) << "the first key is gone";
    EXPECT_EQ(char_get("x", "unit"), "m");
    EXPECT_EQ(getobs(1, 2), 2147483646);
    EXPECT_EQ(getobs(2, 1), 1.5);
    dtafile g;
    ASSERT_EQ(dta_open(path, g), 0);
    ASSERT_EQ(dta_skiprows(g, 1), 0);
    const UByte* row;
    ASSERT_EQ(dta_nextrow(g, row), 0);
    EXPECT_EQ(readcell(row + g.offsets[0], typebyte), 2);
    EXPECT_EQ(readcell(row + g.offsets[4], typedouble), missing);
    EXPECT_EQ(dta_text(g, row, 6), "a");
    EXPECT_TRUE(g.oldmissing[4]);
    ASSERT_EQ(dta_nextrow(g, row), 0);
    ASSERT_EQ(dta_nextrow(g, row), 0);
    EXPECT_FALSE(row);
    std::string name;
    vallabel label;
    boolean found;
    ASSERT_EQ(dta_nextlabel(g, name, label, found), 0);
    EXPECT_TRUE(found && name == "rank");
}

// Rows that come after the header, as a writer of single rows has them.
TEST_F(dtafiles, an_unfinished_file_is_none) {
    Int4 handle = webopen(path, web_write | web_binary);
    bytewriter w;
    dtahead h;
    h.types = {typedouble};
    h.names = {"x"};
    h.formats = {"%10.0g"};
    h.vallabels = h.varlabels = {""};
    writer_start(w, handle);
    dta_puthead(w, h);
    dta_endchars(w, h.format);
    for (Double x : {1.0, missing}) writer_put(w, {reinterpret_cast<const char*>(&x), sizeof x});
    ASSERT_TRUE(writer_flush(w));
    EXPECT_EQ(read(path), 610);
    ASSERT_TRUE(dta_complete(handle, h.format, 2));
    webclose(handle);
    ASSERT_EQ(read(path), 0);
    EXPECT_EQ(nobs, 2);
    EXPECT_EQ(getobs(1, 2), missing);
}

TEST_F(dtafiles, full_disk_leaves_no_file) {
    ASSERT_EQ(addvar("x", typedouble), 0);
    visnvar = nvar;
    ASSERT_EQ(growobs(10000), 0);
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit old;
    getrlimit(RLIMIT_FSIZE, &old);
    for (rlim_t bytes : {0, 1, 100, 5000, 80000}) {
        rlimit less{bytes, old.rlim_max};
        setrlimit(RLIMIT_FSIZE, &less);
        Int4 rc = dta_save(path, true, {}, "");
        setrlimit(RLIMIT_FSIZE, &old);
        EXPECT_EQ(rc, 699) << bytes;
        EXPECT_FALSE(filestat(path.c_str()).exists);
    }
    EXPECT_EQ(dta_save(folder + "/no/t.dta", true, {}, ""), 603);
    EXPECT_EQ(dta_save(path, true, {}, ""), 0);
}

// ---- Damage.

struct damagedfiles : dtafiles {
    void checksane(const std::string& what, Int4 rc) {
        ASSERT_EQ(memory_check(), 0) << what;
        ASSERT_TRUE(rc == 0 || rc == 609 || rc == 610 || rc == 692 || rc == 901 || rc == 1000) << what << ": " << rc;
        ASSERT_TRUE(visnvar == nvar && width <= lrecl && (rc == 0 || nvar == 0)) << what;
        Double sum = 0;
        for (Int4 v = 1; v <= nvar; v++) {
            vallabel l;
            vl_load(lbl[v - 1], l);
            for (Int4 obs = 1; obs <= nobs; obs++)
                sum += isstring(v) ? Double(strcell(v, obs).size()) : l.find(getobs(v, obs)) != nullptr;
        }
        ASSERT_GE(sum, 0);
    }
};

// The file is changed where it lies: making it anew thousands of times would take a minute.
struct openfile {
    int fd;
    openfile(const std::string& path, const std::string& bytes) {
        writebytes(path, bytes);
        fd = open(path.c_str(), O_RDWR);
    }
    ~openfile() { close(fd); }
    void put(std::size_t at, char value) { ASSERT_EQ(pwrite(fd, &value, 1, off_t(at)), 1); }
};

TEST_F(damagedfiles, cut_at_every_byte) {
    for (const char* name : {"f111lo", "f108hi", "f105lo", "f102lo"}) {
        std::string bytes = bytesof(fixture(name));
        Int4 withoutlabels = 0;
        openfile file(path, bytes);
        for (std::size_t n = bytes.size(); n-- > 0;) {
            ASSERT_EQ(ftruncate(file.fd, off_t(n)), 0);
            Int4 rc = read(path);
            checksane(name + std::to_string(n), rc);
            if (HasFatalFailure()) return;
            if (rc == 0) withoutlabels++;
            ASSERT_TRUE(rc || nobs == 3);
        }
        EXPECT_EQ(withoutlabels, 1) << "cut between rows and labels it is whole in itself";
    }
}

TEST_F(damagedfiles, changed_in_every_byte) {
    for (const char* name : {"f111lo", "f110hi", "f104hi"}) {
        std::string bytes = bytesof(fixture(name));
        openfile file(path, bytes);
        for (std::size_t i = 0; i < bytes.size(); i++) {
            for (UByte value : {0, 1, 2, 127, 128, 255}) {
                file.put(i, char(value));
                checksane(name + std::to_string(i) + "=" + std::to_string(value), read(path));
                if (HasFatalFailure()) return;
            }
            file.put(i, bytes[i]);
        }
    }
}

}  // namespace
