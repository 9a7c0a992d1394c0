// The tokenizer on its own line buffer, and the readers of numbers.
#include "core/tokenizer.h"
#include <gtest/gtest.h>
#include <cmath>
#include <cstdlib>
#include <string>
#include <vector>
#include "base/text.h"

using namespace velmo;
using std::string;
using std::vector;

namespace {

string line;      // what the cursor walks in

void start(const string& text) {
    line = text;
    settokpos(line.data());
}

vector<string> tokens(const string& text, const breakset& set = breakstd) {
    start(text);
    vector<string> out;
    while (nexttoken(set)[0]) out.push_back(tokbuf);
    return out;
}

using list = vector<string>;

}  // namespace

TEST(Tokenizer, WordsOperatorsAndPairs) {
    EXPECT_EQ(tokens("  regress y1  x_2 if z>=-3"), (list{"regress", "y1", "x_2", "if", "z", ">=", "-", "3"}));
    EXPECT_EQ(tokens("a==b"), (list{"a", "==", "b"}));
    EXPECT_EQ(tokens("a=!b"), (list{"a", "=", "!", "b"}));
    EXPECT_EQ(tokens("<>~=!=<==>"), (list{"<", ">", "~=", "!=", "<=", "=", ">"}));
    EXPECT_EQ(tokens("+=&="), (list{"+", "=", "&", "="}));
    EXPECT_EQ(tokens("   "), list{});
    EXPECT_EQ(tokens("caf\xe9 \x01x"), (list{"caf\xe9", "\x01x"})) << "all other bytes are part of words";
}

TEST(Tokenizer, BreakSetsDiffer) {
    string text = "x~-1.5\\a*?";
    EXPECT_EQ(tokens(text), (list{"x", "~", "-", "1.5", "\\", "a", "*", "?"}));
    EXPECT_EQ(tokens(text, breaknotilde), (list{"x~", "-", "1.5", "\\", "a", "*", "?"}));
    EXPECT_EQ(tokens(text, breaknum), (list{"x", "~", "-1.5", "\\", "a", "*", "?"}));
    EXPECT_EQ(tokens(text, breakdot), (list{"x", "~", "-", "1", ".", "5", "\\", "a", "*", "?"}));
    EXPECT_EQ(tokens(text, breakvarlist), (list{"x~", "-", "1.5", "\\", "a*?"}));
    EXPECT_EQ(tokens("c:\\dir/f-1.do,x (y)", breakfile), (list{"c:\\dir/f-1.do", ",", "x", "(", "y", ")"}));
}

TEST(Tokenizer, QuotedTextHasItsOpeningQuote) {
    EXPECT_EQ(tokens("\"a b\"c"), (list{"\"a b", "c"}));
    EXPECT_EQ(tokens("\"abc"), list{"\"abc"}) << "the end of the line closes";
    EXPECT_EQ(tokens("x\"\""), (list{"x", "\""}));
    EXPECT_EQ(tokens("`\"a`\"b\"'c\"'d"), (list{"\"a`\"b\"'c", "d"}));
    EXPECT_EQ(tokens("`\"say \"hi\" now\"'"), list{"\"say \"hi\" now"});
    EXPECT_EQ(tokens("`\"open `\"twice\"'"), list{"\"open `\"twice\"'"});
    EXPECT_EQ(tokens("`x'"), (list{"`", "x", "'"})) << "no compound quote without its \"";
    start("`\"\"' x");
    nexttoken();
    EXPECT_TRUE(isquoted());
    EXPECT_STREQ(tokcontent(), "");
    EXPECT_STREQ(nexttoken(), "x");
}

// A token keeps 503 bytes; the rest comes back as the next token, of every kind.
TEST(Tokenizer, LongTokensAreCutAndGoOn) {
    string a(600, 'a');
    EXPECT_EQ(tokens(a), (list{string(503, 'a'), string(97, 'a')}));
    EXPECT_EQ(tokens(string(503, 'a') + " b"), (list{string(503, 'a'), "b"}));
    EXPECT_EQ(tokens("\"" + a + "\""), (list{"\"" + string(502, 'a'), string(98, 'a'), "\""}));
    for (std::size_t n = 495; n < 510; n++)
        for (const char* inner : {"`\"x\"'", "\"'", "`\"", "\""}) {
            start("`\"" + string(n, 'a') + inner + "b\"' end");
            while (nexttoken()[0]) EXPECT_LT(std::char_traits<char>::length(tokbuf), 504u);
            EXPECT_EQ(tokpos, line.data() + line.size());
        }
}

TEST(Tokenizer, TheTokenInHandCanComeAgain) {
    start("one two three");
    nexttoken();
    ungettoken();
    EXPECT_STREQ(nexttoken(), "one");
    EXPECT_STREQ(nexttoken(), "two");
    ungettoken();
    EXPECT_STREQ(tokfirst(), "two three");
    EXPECT_STREQ(nexttoken(), "two");

    settoken("if");
    EXPECT_STREQ(nexttoken(), "if");
    ungettoken();       // of a repeat: it is armed again
    EXPECT_STREQ(nexttoken(), "if");
    EXPECT_STREQ(nexttoken(), "three");
    settoken(tokbuf);
    EXPECT_STREQ(nexttoken(), "three");
    EXPECT_STREQ(nexttoken(), "");
    EXPECT_STREQ(nexttoken(), "") << "the end stays the end";
}

TEST(Tokenizer, TheCursorCanBeKeptAndPutBack) {
    start("a (b) c");
    tokenpos here;
    nexttoken();
    savetokpos(&here);
    settoken("pushed");
    restoretokpos(&here);
    EXPECT_STREQ(nexttoken(), "(") << "going back drops what was pushed";
    restoretokpos(&here);
    EXPECT_EQ(tokpeek(), ' ');
    EXPECT_EQ(tokpeeknonblank(), '(');
    char *begin, *end;
    EXPECT_TRUE(parenthesized(&begin, &end));
    EXPECT_EQ(string(begin, end), "b");
    EXPECT_STREQ(tokrest(), " c");
}

TEST(Tokenizer, ParenthesesBalanceOutsideQuotes) {
    struct { const char* text; const char* inside; } cases[] = {
        {"(a(b)c) d", "a(b)c"}, {" ()", ""}, {"(\")\" x)", "\")\" x"}, {"(`\")\"'()) y", "`\")\"'()"},
        {"(`\"a`\")\"'\"')", "`\"a`\")\"'\"'"}, {"(a", nullptr}, {"(\")", nullptr}, {"x(a)", nullptr}, {"", nullptr},
    };
    for (const auto& c : cases) {
        start(c.text);
        char *begin, *end;
        EXPECT_EQ(parenthesized(&begin, &end), c.inside != nullptr) << c.text;
        if (c.inside) { EXPECT_EQ(string(begin, end), c.inside); }
    }
}

TEST(Abbreviations, AreBeginningsOfAtLeastTheMinimum) {
    EXPECT_TRUE(abbrev("su", "summarize", 2));
    EXPECT_TRUE(abbrev("summarize", "summarize", 2));
    EXPECT_FALSE(abbrev("s", "summarize", 2));
    EXPECT_FALSE(abbrev("summarizes", "summarize", 2));
    EXPECT_FALSE(abbrev("Su", "summarize", 2));
    EXPECT_FALSE(abbrev("sux", "summarize", 2));
    EXPECT_FALSE(abbrev("", "summarize", 0));
}

namespace {

// The grammar of numbers, written another way: strtod decides values, a hand-made scan what it may see.
bool reference(const string& text, double& value) {
    if (text.find_first_not_of("0123456789+-.eEdD") != string::npos || text.empty()) return false;
    string c;
    for (char ch : text) c += ch == 'd' || ch == 'D' ? 'e' : ch;
    char* end;
    value = std::strtod(c.c_str(), &end);
    return end == c.c_str() + c.size() && c.find_first_of("0123456789") != string::npos;
}

}  // namespace

// Random texts from the letters of numbers, and long ones: the same verdict and the same bits.
TEST(Numbers, AreReadAsStrtodReadsThem) {
    unsigned long long seed = 20240611;
    auto random = [&seed](unsigned n) {
        seed = seed * 6364136223846793005ull + 1442695040888963407ull;
        return unsigned(seed >> 33) % n;
    };
    auto check = [](const string& text) {
        double got = -7, want = -7;
        bool isnumber = reference(text, want);
        ASSERT_EQ(readnumber(text, got), isnumber) << text;
        if (!isnumber) want = -7;        // nothing is stored
        ASSERT_TRUE(got == want && std::signbit(got) == std::signbit(want)) << text << ": " << got << " " << want;
    };
    const string letters = "00123456789..++--eEdD";
    for (int i = 0; i < 200000; i++) {
        string text;
        for (unsigned n = random(9); n > 0; n--) text += letters[random(unsigned(letters.size()))];
        check(text);
    }
    for (const char* text : {"", ".", "-", "+.", "5.", ".5", "-.5e-3", "1e", "1e+", "e5", "1 ", " 1", "1e308",
                             "1.8e308", "-1e999", "1e-999", "4.9e-324", "2e-324", "0e99999", "1_0", "0x10", "nan",
                             "inf", "1e5.0", "--1", "1.2.3", "1D-2", "1d3", "+7", "1e+05", "9007199254740993", "1e22"})
        check(text);
    for (int zeros : {300, 400}) {
        check("1" + string(unsigned(zeros), '0'));
        check("1" + string(unsigned(zeros), '0') + "e-50");
        check("0." + string(unsigned(zeros), '0') + "1");
        check("-0." + string(unsigned(zeros), '0') + "1e60");
        check("0." + string(unsigned(zeros), '0') + "1d500");
    }
}

TEST(Numbers, WholeNumbersFitOrAreRefused) {
    Int4 v = 5;
    for (const char* text : {"", "+", "-", "1.0", "2147483648", "-2147483649", "1e3", " 1", "1 ", "+-1",
                             "99999999999999999999"})
        EXPECT_FALSE(readinteger(text, v)) << text;
    EXPECT_EQ(v, 5);
    EXPECT_TRUE(readinteger("-2147483648", v) && v == -2147483647 - 1);
    EXPECT_TRUE(readinteger("+2147483647", v) && v == 2147483647);
}
