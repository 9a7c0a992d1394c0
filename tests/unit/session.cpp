// A session made anew in a process that has had one: nothing of the first is left in the second.
#include "base/poll.h"
#include "base/saved.h"
#include "base/text.h"
#include "core/events.h"
#include "core/macros.h"
#include "core/memory.h"
#include "core/objects.h"
#include "data/dataset.h"
#include "data/preserve.h"
#include "language/dofile.h"
#include "language/tempnames.h"
#include "language/turn.h"
#include "output/results.h"
#include "output/vtmllines.h"
#include "session/session.h"
#include "stored/families.h"
#include <gtest/gtest.h>
#include <cstring>
#include <filesystem>

using namespace velmo;
namespace fs = std::filesystem;

namespace {

Int4 obey(const char* line) {
    copytext(cmdbuf, std::size_t(conslen), line);
    settokpos(cmdbuf);
    docmd();
    return lastrc;
}

Int4 objects() {
    Int4 n = 0;
    for (object* o = objnext(nullptr, nullptr, obj_any); o; o = objnext(o, nullptr, obj_any)) n++;
    return n;
}

}  // namespace

// A front end as a window would be: its lines, its size that changes while it waits, its events.
namespace {

std::vector<std::string> typed, shown;
Int4 columns = 60, pauses, turns, bells;
constexpr frontend scripted{
    .typedline = [](char* buf, Int4 n, boolean) {
        if (typed.empty()) return Int4(typed_over);
        copytext(buf, std::size_t(n), typed[0]);
        typed.erase(typed.begin());
        columns = 50;
        return Int4(std::strlen(buf));
    },
    .line = [](const UByte* record) { shown.emplace_back(vline_view(record).text); },
    .pause = [](const UByte*) { return pauses++, Int4('q'); },
    .bell = [] { bells++; },
    .window = [](Int4& c, Int4& r) { return c = columns, r = 5, true; },
    .events = [] { turns++; pollnow(); },
};

}  // namespace

TEST(session, afrontend) {
    ASSERT_TRUE(session_attach(scripted));
    ASSERT_EQ(session_begin(), 0);
    EXPECT_EQ(linesize, 60);
    setpagesize(4);
    typed = {"display 2+2", "beep", "display \"{hline}\"", "sleep 1", "query"};
    for (std::size_t left = typed.size(); left > 0; left--) {
        getline();
        docmd();
    }
    ASSERT_GT(shown.size(), 4u);
    EXPECT_EQ(shown[1] + shown[4], "4" + std::string(50, '-'));
    EXPECT_EQ(bells, 1);
    EXPECT_GT(turns, 0);
    EXPECT_TRUE(pauses == 1 && lastrc == 1) << pauses;
    getline();
    EXPECT_EQ(eofseen, source_over);
    tellended();
    memory_stop();
    front = &nofrontend;
    breakpending = eofseen = lastrc = 0;
    unsetlinesize();
    setpagesize(0);
}

TEST(session, beginsanew) {
    saved quiet(quietlevel, shows_nothing);
    ASSERT_EQ(session_begin(), 0);
    Int4 atstart = objects();
    for (const char* line :
         {"set obs 3", "generate x = _n", "label define l 1 \"a\"", "char x[c] text", "global g text", "scalar s = 2",
          "summarize x", "tempfile f", "file open h using `f', write", "preserve"})
        obey(line);
    EXPECT_EQ(nobs, 3);
    EXPECT_GE(preserveslot, 0);
    EXPECT_EQ(objcount(obj_handle), 1);
    fs::path folder = fs::path(std::string(macrotext("_f"))).parent_path();
    EXPECT_TRUE(fs::exists(folder));
    tellended();
    EXPECT_FALSE(fs::exists(folder));
    EXPECT_EQ(objcount(obj_handle), 0);
    ASSERT_EQ(session_begin(), 0);
    Double n;
    EXPECT_EQ(objects(), atstart);
    EXPECT_EQ(nobs + nvar + visnvar + tempfilecounter + datachanged + lastrc, 0);
    std::string text;
    EXPECT_EQ(stored_get(r_results, "N", n, text), result_none);
    EXPECT_EQ(preserveslot, -1);
    tellended();
    memory_stop();
}
