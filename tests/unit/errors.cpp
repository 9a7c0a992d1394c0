// Codes and reporters as a user sees them, through a stream of their own.
#include "output/errors.h"
#include <gtest/gtest.h>
#include <string>
#include "base/poll.h"
#include "base/saved.h"
#include "output/print.h"
#include "output/results.h"
#include "shownlines.h"

using namespace velmo;
using std::string;

namespace {

struct Errors : testing::Test {
    string got;
    void SetUp() override {
        results_open();
        setpagesize(0);
        vstream_setcallback(console, takeline, &got);
    }
    void TearDown() override {
        EXPECT_EQ(printing::role(), out_result) << "put back";
        results_close();
    }
    string take() {
        vstream_flush(console);
        string out;
        out.swap(got);
        return out;
    }
};

}  // namespace

TEST_F(Errors, CodesComeBackAsTheirRowsSay) {
    struct { Int4 rc, returns; const char* text; } cases[] = {
        {5101, 101, "iweights not allowed with robust\n"}, {2000, 0, "no observations\n"},
        {2001, 2001, "insufficient observations\n"}, {140, 140, "repeated categorical variable in term\n"},
        {100, 100, ""}, {677, 677, "remote connection failed -- see help r(677) for troubleshooting\n"},
        {9202, 9202, ""}, {146, 146, "too many variables or values (matsize too small)\n"
                                     "    You can increase matsize using the set matsize command; see help matsize.\n"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(error(c.rc), c.returns) << c.rc;
        EXPECT_EQ(take(), c.text);
    }
}

TEST_F(Errors, StartOnAFreshLineAndLeaveOtherModes) {
    prt("value = ");
    error(198);
    EXPECT_EQ(take(), "value = \ninvalid syntax\n");
    prtraw("{asis}\nas {it} is\n");
    varnotfound("x{y}");
    EXPECT_EQ(take(), "as {it} is\nvariable x{y} not found\n");
    prtraw("{hi:open");
    errorf(198, "%s", string(3000, 'k').c_str());
    EXPECT_EQ(take().substr(0, 13), "{hi:open\nkkkk");
}

TEST_F(Errors, QuietLevelsHide) {
    {
        saved quiet(quietlevel, shows_errors);
        error(2000);
        error(198);
    }
    saved quiet(quietlevel, shows_nothing);
    EXPECT_EQ(error(198) + notallowed("x"), 198 + 101);
    EXPECT_EQ(take(), "invalid syntax\n");
}

TEST_F(Errors, PrefixedMessagesAreOneParagraph) {
    EXPECT_EQ(prefixed("master data", 5, false), 5);
    EXPECT_EQ(take(), "master data not sorted\n");
    prefixed(string(70, 'n'), 459, true);
    EXPECT_EQ(take(), string(70, 'n') + ":\n    something that should be true of your data is not\n");
    prefixed("x", 900, true);
    EXPECT_EQ(take().find("{p_end}"), string::npos) << "the explanation has ended the paragraph";
    EXPECT_EQ(freshline, 1);
}

TEST_F(Errors, FilesNamesAndTheCommand) {
    EXPECT_EQ(fileerror(601, "a.dta"), 601);
    fileerror(661, "h");
    fileerror(605, "b");
    fileerror(699, "c");
    fileerror(698, "d");
    EXPECT_EQ(take(), "file a.dta not found\nhost or file h not found\nfile b error 605\ninsufficient disk space\n"
                      "(note: file d not found)\n");
    EXPECT_EQ(nameerror(name_defined, "v"), 110);
    EXPECT_EQ(nameerror(9, "v"), 9202);
    EXPECT_EQ(macronotfound("_m"), 111);
    macronotfound("m");
    EXPECT_EQ(opmsg("D30", op_d20), 198);
    EXPECT_EQ(take(), "v already defined\nlocal macro `m' not found\nglobal macro $m not found\n"
                      "D30:  operator invalid:  D20 is maximum allowed difference\n");
}

TEST_F(Errors, PrintCallsReturnBreak) {
    EXPECT_EQ(prtrep('-', 600), 0);
    EXPECT_EQ(take().size(), 600u + 8 + 2 * 7) << "eight lines, seven of them behind a mark";
    breakpending = 1;
    EXPECT_EQ(prtf("%d", 1), 1);
    prtrep('-', 600);
    breakpending = 0;
    EXPECT_EQ(take(), "1-\n") << "a long run of prints stops at once";
}
