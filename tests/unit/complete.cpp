#include "console/complete.h"
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>

using namespace velmo;
using words = std::vector<std::string>;

namespace {

completion at(const std::string& before) {
    completion c;
    completionsof(before, c);
    return c;
}

boolean offers(const completion& c, const std::string& word) {
    return std::find(c.words.begin(), c.words.end(), word) != c.words.end();
}

}  // namespace

TEST(complete, firstwordisacommand) {
    for (const char* before : {"displ", "  displ", "quietly displ", "by x: displ", "by x: qui capture displ"}) {
        completion c = at(before);
        EXPECT_EQ(c.words, words{"display"}) << before;
        EXPECT_EQ(c.from, std::string(before).size() - 5) << before;
    }
    EXPECT_TRUE(at("").words.empty());
    EXPECT_FALSE(offers(at("summarize displ"), "display"));
    EXPECT_FALSE(offers(at("by displ"), "display"));
}

TEST(complete, fileswherefilesbelong) {
    namespace fs = std::filesystem;
    fs::path folder = fs::temp_directory_path() / "velmo complete";
    fs::create_directories(folder / "sub");
    std::ofstream(folder / "one.raw");
    std::ofstream(folder / "only.raw");
    std::ofstream(folder / ".hidden");
    std::string dir = folder.string() + "/";
    completion c = at("insheet using \"" + dir);
    EXPECT_EQ(c.words, (words{dir + "one.raw", dir + "only.raw", dir + "sub/"}));
    EXPECT_TRUE(c.quoted && c.files);
    EXPECT_EQ(at("display \"" + dir + ".h").words, words{dir + ".hidden"});
    EXPECT_EQ(commonbeginning(at("cd \"" + dir + "on")), dir + "on");
    fs::remove_all(folder);
    for (const char* before : {"run ", "insheet using ", "insheet x y using "}) EXPECT_TRUE(at(before).files) << before;
    for (const char* before : {"run", "display \"a\" ", "summarize run "}) EXPECT_FALSE(at(before).files) << before;
}

TEST(complete, commonbeginningkeepscharacterswhole) {
    completion c{0, {"b\u00E4", "b\u00F6"}, false, false};
    EXPECT_EQ(commonbeginning(c), "b");
    c.words = {"one"};
    EXPECT_EQ(commonbeginning(c), "one");
}
