// A session made anew in a process that has had one: nothing of the first is left in the second.
#include "language/tempnames.h"
#include "session/session.h"
#include <gtest/gtest.h>
#include <filesystem>
#include "base/saved.h"
#include "base/text.h"
#include "core/events.h"
#include "core/macros.h"
#include "core/memory.h"
#include "core/objects.h"
#include "data/dataset.h"
#include "data/preserve.h"
#include "language/turn.h"
#include "matrix/results.h"

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

TEST(session, beginsanew) {
    saved quiet(quietlevel, UByte(5));
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
    EXPECT_FALSE(rscalar("N", n));
    EXPECT_EQ(preserveslot, -1);
    tellended();
    memory_stop();
}
