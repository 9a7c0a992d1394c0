// Number and date rendering against vectors that tests/reference/formats/make.py wrote, and worked cases.
#include "output/fmtnumbers.h"
#include "output/formats.h"
#include <gtest/gtest.h>
#include <charconv>
#include <cmath>
#include <cstring>
#include <fstream>
#include <random>
#include <sstream>
#include <string>
#include "base/saved.h"
#include "base/state.h"
#include "base/text.h"
#include "output/dates.h"

using namespace velmo;

namespace {

std::string shown(const char* fmt, Double x) {
    Int4 n = fmtnum(fmt, x);
    EXPECT_EQ(std::strlen(dbuf), std::size_t(n)) << fmt;
    return dbuf;
}

void checkdates(const std::vector<std::string>& f) {
    std::vector<Int4> v;
    for (std::size_t i = 1; i < f.size(); i++) v.push_back(std::stoi(f[i]));
    EXPECT_EQ(mdydate(v[2], v[3], v[1]), v[0]);
    civildate c;
    ASSERT_TRUE(civil(v[0], c)) << v[0];
    EXPECT_TRUE(c.year == v[1] && c.month == v[2] && c.day == v[3]) << v[0];
    EXPECT_EQ(dayofweek(v[0]), v[4]) << v[0];
    EXPECT_EQ(dayofyear(c), v[5]) << v[0];
    for (Int4 i = 0; i < 4; i++) {
        EXPECT_EQ(periodof("wmqh"[i], v[0]), v[std::size_t(6 + i)]) << v[0];
        Int4 start = periodstart("wmqh"[i], v[std::size_t(6 + i)]);
        EXPECT_TRUE(start <= v[0] && periodof("wmqh"[i], start) == v[std::size_t(6 + i)]) << v[0];
    }
}

}  // namespace

TEST(formats, vectors) {
    std::ifstream in(VELMO_SOURCE "/tests/reference/formats/vectors.txt");
    ASSERT_TRUE(in.good());
    Int4 lines = 0;
    saved keep(dpcomma);
    for (std::string line; std::getline(in, line); lines++) {
        std::vector<std::string> f;
        std::istringstream cut(line);
        for (std::string field; std::getline(cut, field, '\t');) f.push_back(field);
        if (f[0] == "N") {
            dpcomma = f[2] == "1";
            EXPECT_EQ(chkfmt(f[1], 1), 0) << f[1];
            EXPECT_EQ(shown(f[1].c_str(), std::strtod(f[3].c_str(), nullptr)), f[4].substr(0, sizeof dbuf - 1)) << line;
        } else if (f[0] == "C") {
            fmtspec spec;
            Int4 rc = chkfmt(f[1], std::stoi(f[2]), &spec);
            EXPECT_EQ(rc ? 0 : spec.width, std::stoi(f[3])) << line;
        } else {
            checkdates(f);
        }
    }
    EXPECT_GT(lines, 4000);
}

TEST(formats, workedcases) {
    const struct { const char* fmt; Double x; const char* text; } cases[] = {
        {"%9.0g", 1234.5678, " 1234.568"}, {"%9.0g", 0, "        0"},        {"%9.0g", 1e10, " 1.00e+10"},
        {"%9.0g", .00000001, " 1.00e-08"}, {"%9.0g", 100000000, " 1.00e+08"}, {"%9.0g", 1234567, "  1234567"},
        {"%9.0g", 12345678, " 1.23e+07"},  {"%10.2f", -0.0, "      0.00"},   {"%8.2e", 1234.5, " 1.2e+03"},
        {"%-9.0g", 5, "5        "},        {"%d", 0, "01jan1960"},           {"%tm", 0, "  1960m1"},
        {"%tq", -1, "  1959q4"},           {"%tw", 51, " 1960w52"},          {"%d", 1e10, " 1.00e+10"},
        {"%-9.0g", missing, ".        "},  {"%td", missing, "        ."},    {"%9.0g", 9999999.9, " 10000000"},
        {"%9.2g", 5, "     5.00"},         {"%9.0g", .00012345, " .0001234"}, {"%09.2f", -1.5, "-00001.50"},
        {"%9.0g", HUGE_VAL, "        ."},  {"%21x", 1, "+1.0000000000000X+000"},
    };
    for (const auto& c : cases) EXPECT_EQ(shown(c.fmt, c.x), c.text) << c.fmt << " " << c.x;
    EXPECT_EQ(shown("%30.0g", 1), std::string(29, ' ') + "1");
    EXPECT_EQ(fmtnum("%244.243f", 1.7e308), Int4(sizeof dbuf) - 1);      // cut, never beyond the buffer
}

// The digits of the quick ways are those of the library's exact conversion.
TEST(formats, decimalimage) {
    std::mt19937_64 random(7);
    for (Int4 i = 0; i < 200000; i++) {
        Double x = std::ldexp(Double(random() >> (11 + random() % 53)), Int4(random() % 130) - 80);
        if (i % 5 == 0) x = Double(random() % 100000000) / Double(1 + random() % 1000);
        digrec image;
        decimalimage(x, image);
        char text[40] = {};
        std::to_chars(text, text + sizeof text, x, std::chars_format::scientific, 18);
        std::string digits = text[0] + std::string(text + 2, 18);
        ASSERT_EQ(digits, image.digits) << x;
        if (x != 0) {
            ASSERT_EQ(std::atoi(text + 21) + 1, image.decpt) << x;
        }
    }
}

TEST(formats, derived) {
    char out[fmtsize];
    const struct { const char *own, *usual, *result; } cut[] = {
        {"%10.2f", "%9.0g", "%9.2f"}, {"%12.3fc", "%9.0g", "%9.3fc"}, {"%10.3e", "%9.0g", "%9.0g"},
        {"%d", "%8.0g", "%8.0g"}, {"%20.15f", "%9.0g", "%9.0g"}, {"%12s", "%9.0g", "%9.0g"}};
    for (const auto& c : cut) {
        cutformat(c.own, c.usual, out);
        EXPECT_STREQ(out, c.result) << c.own;
    }
    const struct { const char* fmt; Int4 filever; const char* result; } plain[] = {
        {"%tq", 5, "%9.0g"}, {"%-dD_m_CY", 5, "%d"}, {"%-9.2fc", 5, "%-9.2fc"}, {"%9,2f", 4, "%9.2f"},
        {"%-9.2fc", 4, "%9.2f"}, {"%-12s", 4, "%12s"}, {"%-d", 4, "%d"}, {"junk", 4, "%9.0g"}, {"%9.0g", 4, "%9.0g"}};
    for (const auto& c : plain) {
        fmtplain(out, c.fmt, c.filever);
        EXPECT_STREQ(out, c.result) << c.fmt;
    }
    const struct { const char* fmt; Int4 longest; const char* result; } wide[] = {
        {"%8.0g", 12, "%12.0g"}, {"%-8.0g", 12, "%12.0g"}, {"%9,2fc", 20, "%20,2fc"}, {"%8.0g", 8, "%8.0g"},
        {"%d", 20, "%d"}};
    for (const auto& c : wide) {
        copytext(out, sizeof out, c.fmt);
        EXPECT_EQ(widenformat(out, c.longest), std::strcmp(c.fmt, c.result) != 0);
        EXPECT_STREQ(out, c.result) << c.fmt;
    }
    char text[40];
    memtext(text, sizeof text, 1.5 * 1048576 * 1024);
    EXPECT_STREQ(text, "1,536.000M");
    sizetext(text, sizeof text, 3 << 20);
    EXPECT_STREQ(text, "3M");
    sizetext(text, sizeof text, (3 << 20) + 2048);
    EXPECT_STREQ(text, "3074k");
    const struct { const char* name; Int4 n; const char* result; } names[] = {
        {"mpg", 8, "mpg"}, {"displacement", 8, "displa~t"}, {"displacement", 2, "di"},
        {"L2.displacement", 8, "L2.dis~t"}};
    for (const auto& c : names) EXPECT_STREQ(abbrevname(text, sizeof text, c.name, c.n), c.result);
    fmtstr("%~8s", "abc", false);
    EXPECT_STREQ(dbuf, "  abc   ");
    fmtstr("%-4s", "abcdef", true);
    EXPECT_STREQ(dbuf, "abcd");
}

TEST(dates, reading) {
    const struct { const char *text, *mask; Double top; Int4 m, d, y; } cases[] = {
        {"Jan 5 1960", "mdy", missing, 1, 5, 1960},   {"01jan1960", "dmy", missing, 1, 1, 1960},
        {"1/2/03", "mdy", 2040, 1, 2, 2003},          {"1/2/03", "mdy", 2002, 1, 2, 1903},
        {"1/2/03", "md20y", missing, 1, 2, 2003},     {"1/2/03", "md20y", 2040, 0, 0, 0},
        {"1/2/03", "mdy", missing, 0, 0, 0},          {"2000-02-29", "ymd", missing, 2, 29, 2000},
        {"1900.02.29", "ymd", missing, 0, 0, 0},      {" 7 sept 1955 ", "dmy", missing, 9, 7, 1955},
        {"7 se 1955", "dmy", missing, 0, 0, 0},       {"7 septembers 1955", "dmy", missing, 0, 0, 0},
        {"7/8/1955 x", "mdy", missing, 0, 0, 0},      {"7/8/1955", "mdx", missing, 0, 0, 0},
        {"7/8/1955", "mmy", missing, 0, 0, 0},        {"", "mdy", missing, 0, 0, 0},
        {"7/8/1955", "mdy", 999, 0, 0, 0},            {"99999999999 1 2000", "mdy", missing, 0, 0, 0},
    };
    for (const auto& c : cases) {
        Double want = c.m ? mdydate(c.m, c.d, c.y) : missing;
        EXPECT_EQ(readdate(c.text, c.mask, c.top), want) << c.text << " by " << c.mask;
    }
    saved old(version, Int2(500));
    EXPECT_EQ(readdate("1/2/60", "mdy", missing), 1);
}

TEST(dates, readingperiods) {
    const struct { char kind; const char *text, *mask; Double top, want; } cases[] = {
        {'q', "1960q2", "yq", missing, 1}, {'q', "2 1961", "qy", missing, 5}, {'q', "1960q5", "yq", missing, missing},
        {'m', "1961m1", "ym", missing, 12}, {'m', "jan1961", "my", missing, 12},
        {'m', "1960 december", "ym", missing, 11}, {'m', "1960x3", "ym", missing, 2},
        {'w', "1959w52", "yw", missing, -1}, {'h', "1960-2", "yh", missing, 1}, {'y', "1984", "y", missing, 1984},
        {'y', "84", "y", 1990, 1984}, {'y', "99", "y", missing, missing}, {'q', "60q1", "yq", 1990, 0},
        {'q', "1960q2 x", "yq", missing, missing}, {'y', "1984", "yq", missing, missing},
    };
    for (const auto& c : cases) EXPECT_EQ(readperiod(c.kind, c.text, c.mask, c.top), c.want) << c.text << " " << c.mask;
    EXPECT_EQ(periodstart('m', 2147483647), baddate);
    EXPECT_EQ(periodstart('y', 10000), baddate);
    EXPECT_EQ(periodof('y', 366), 1961);
}
