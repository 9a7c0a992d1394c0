// The expression engine: the block form against single observations on bits, both against a small evaluator that
// knows the language's levels but neither stacks nor code words, functions against worked values, and the limits.
#include <gtest/gtest.h>
#include <bit>
#include <cmath>
#include <cstring>
#include <map>
#include <random>
#include <string>
#include "base/saved.h"
#include "core/macros.h"
#include "core/tokenizer.h"
#include "data/cells.h"
#include "data/chars.h"
#include "data/labels.h"
#include "data/run.h"
#include "data/structure.h"
#include "expr/compile.h"
#include "expr/evaluate.h"
#include "expr/functions.h"
#include "output/dates.h"
#include "putlabel.h"
#include "matrix/random.h"
#include "stored/families.h"

using namespace velmo;

namespace {

constexpr Int4 rows = 700;
const char* const names[5] = {"bb", "ii", "ll", "ff", "dd"};

// A second evaluator: recursive descent over the levels, lowest first, in plain doubles.
struct plain {
    const std::string& text;
    const std::map<std::string, std::vector<Double>>& data;
    Int4 obs;
    std::size_t at = 0;

    static Double comparable(Double x) { return std::isfinite(x) ? x : missing; }
    static Double apply(const std::string& op, Double x, Double y) {
        Double a = comparable(x), b = comparable(y);
        if (op == "|") return x != 0 || y != 0;
        if (op == "&") return x != 0 && y != 0;
        if (op == "==") return a == b;
        if (op == ">=") return a >= b;
        if (op == "<=") return a <= b;
        if (op == "<") return a < b;
        if (op == ">") return a > b;
        if (op == "!=" || op == "~=") return a != b;
        if (x == missing || y == missing) return missing;
        if (op == "+") return x + y;
        if (op == "-") return x - y;
        if (op == "*") return x * y;
        if (op == "/") return y == 0 ? missing : x / y;
        if (y == 0) return 1;
        if (x == 0) return y > 0 ? 0 : missing;
        if (y == std::trunc(y) && y > 0 && y <= 32) {
            Double r = x;
            while (--y > 0) r *= x;
            return r;
        }
        if (x < 0 && y != std::trunc(y)) return missing;
        Double p = y * std::log(std::fabs(x));
        Double r = p > 709 ? missing : p < -709 ? 0 : std::exp(p);
        return x < 0 && std::fmod(y, 2) != 0 && r != missing ? -r : r;
    }
    boolean take(const std::string& s) {
        if (text.compare(at, s.size(), s) != 0) return false;
        at += s.size();
        return true;
    }
    // An operator of one character must not be the start of a longer one.
    boolean takeop(const std::string& op) {
        if (op.size() == 1 && at + 1 < text.size() && text[at + 1] == '=' && std::strchr("<>", op[0])) return false;
        return take(op);
    }
    Double level(std::size_t k) {
        static const std::string ops[] = {"|", "&", "==", ">=", "<=", "<", ">", "!=", "~=", "+", "-", "*", "/"};
        if (k == std::size(ops)) return sign();
        Double x = level(k + 1);
        while (takeop(ops[k])) x = apply(ops[k], x, level(k + 1));
        return x;
    }
    Double sign() {
        if (take("-")) {
            Double x = sign();
            return x == missing ? missing : -x;
        }
        if (take("!")) return sign() == 0;
        Double x = atom();
        while (take("^")) {
            boolean minus = take("-");
            Double y = atom();
            x = apply("^", x, minus && y != missing ? -y : y);
        }
        return x;
    }
    Double atom() {
        if (take("(")) return closed();
        if (take("abs(")) return std::fabs(closed());
        if (take("cond(")) {
            Double c = argument(), a = argument(), b = closed();
            return c != 0 ? a : b;
        }
        if (take("mod(")) {
            Double x = argument(), y = closed();
            if (x == missing || y == missing || !(y > 0)) return missing;
            Double r = x - std::floor(x / y) * y;
            return r < 0 ? r + y : r;
        }
        if (take("max(")) {
            Double x = argument(), y = closed();
            return x == missing ? y : y == missing ? x : std::max(x, y);
        }
        if (take("_n")) return obs;
        if (take("_N")) return rows;
        if (take(".")) return missing;
        for (const auto& [name, column] : data) {
            if (!take(name)) continue;
            Double where = take("[") ? closed() : obs;
            boolean inside = where >= 1 && where < rows + 1;
            return inside ? column[std::size_t(where) - 1] : missing;
        }
        std::size_t used;
        Double x = std::stod(text.substr(at), &used);
        at += used;
        return x;
    }
    Double argument() {
        Double x = level(0);
        at++;
        return x;
    }
    Double closed() { return argument(); }
};

struct evaluator : testing::Test {
    std::map<std::string, std::vector<Double>> data;
    std::mt19937 random{20};

    void SetUp() override {
        quietlevel = shows_nothing;
        memory_stop();
        setlengths(2048);
        memory = 1 << 20;
        ASSERT_EQ(memory_start(), 0);
        cleardata(false);
        exp_reset();
        for (Int4 v = 0; v < 5; v++) ASSERT_EQ(addvar(names[v], UByte(typebyte + v)), 0);
        ASSERT_EQ(addvar("ss", 6), 0);
        ASSERT_EQ(growobs(rows), 0);
        firstobs = groupfirst = 1;
        lastobs = grouplast = nobs;
        ifgiven = eqgiven = 0;
        visnvar = nvar;
        for (Int4 obs = rows; obs > 1; obs--) swapobs(obs, 1 + Int4(random() % UInt4(obs)));
        for (Int4 obs = 1; obs <= rows; obs++) fillrow(obs);
    }
    void TearDown() override {
        memory_stop();
        quietlevel = 0;
    }
    void fillrow(Int4 obs) {
        for (Int4 v = 1; v <= 5; v++) {
            Double x = Double(random() % 19) - 6;
            if (v > 3) x += Double(random() % 8) / 8;
            writecell(cellptr(v, obs), typ[v - 1], random() % 9 == 0 ? missing : x);
            data[names[v - 1]].push_back(getobs(v, obs));
        }
        putstr(6, obs, std::string(1, char('a' + random() % 3)) + (random() % 2 ? "bc" : ""));
    }
    Int4 compile(const std::string& text, Int4 mode = mode_num, velmo::exp& e = eqexp) {
        if (&e == &eqexp) exp_reset();
        std::strcpy(cmdbuf, text.c_str());
        settokpos(cmdbuf);
        return exp_compile(e, mode);
    }
    Double value(const std::string& text, Int4 obs = 1) {
        Int4 rc = compile(text);
        EXPECT_EQ(rc, 0) << text;
        return rc ? NAN : exp_getnum(eqexp, obs);
    }
    std::string textvalue(const std::string& text, Int4 obs = 1) {
        char buf[strbufsize];
        Int4 rc = compile(text, mode_str);
        EXPECT_EQ(rc, 0) << text;
        return rc ? "" : std::string(buf, std::size_t(exp_getstr(eqexp, obs, buf)));
    }
    std::string operand(Int4 depth) {
        static const char* const leaves[] = {"bb", "ii", "ll", "ff", "dd", "2", "0", "1.5", ".", "_n", "_N", "3"};
        if (depth == 0 || random() % 4 == 0) return leaves[random() % std::size(leaves)];
        std::string a = expression(depth - 1);
        switch (random() % 8) {
        case 0: return "-" + operand(0);
        case 1: return "!" + operand(0);
        case 2: return "abs(" + a + ")";
        case 3: return "cond(" + a + "," + expression(depth - 1) + "," + operand(0) + ")";
        case 4: return "mod(" + a + "," + operand(0) + ")";
        case 5: return "max(" + a + "," + expression(depth - 1) + ")";
        case 6: return std::string(names[random() % 5]) + "[" + a + "]";
        default: return "(" + a + ")";
        }
    }
    std::string expression(Int4 depth) {
        static const char* const ops[] = {"|", "&", "==", ">=", "<=", "<", ">", "!=", "~=", "+", "-", "*", "/", "^"};
        std::string s = operand(depth);
        for (UInt4 i = random() % 4; i > 0; i--) {
            std::string op = ops[random() % std::size(ops)];
            std::string next = operand(depth);
            if (op == "^" && next[0] == '!') op = "*";
            s += op + next;
        }
        return s;
    }
};

std::uint64_t bits(Double x) { return std::bit_cast<std::uint64_t>(x); }

}  // namespace

TEST_F(evaluator, formsagree) {
    Double block[blocksize];
    for (Int4 round = 0; round < 500; round++) {
        std::string text = expression(3);
        if (text.size() > 400) continue;
        Int4 rc = compile(text);
        if (rc == 130) continue;
        ASSERT_EQ(rc, 0) << text;
        for (Int4 first = 1; first <= rows; first += blocksize) {
            Int4 n = std::min(blocksize - Int4(random() % 20), rows - first + 1);
            exp_getblock(eqexp, first, n, block);
            for (Int4 i = 0; i < n; i++) {
                Double single = exp_getnum(eqexp, first + i);
                ASSERT_EQ(bits(block[i]), bits(single)) << text << " at " << first + i;
                if (i % 7) continue;
                plain p{text, data, first + i};
                Double want = p.level(0);
                ASSERT_EQ(std::isfinite(want) ? want : missing, single) << text << " at " << first + i;
            }
        }
    }
}

// Every function of numbers, on values at the edges of its domain.
TEST_F(evaluator, functionsagree) {
    static const struct { const char* name; Int4 n; } functions[] = {
#define FUNCTION(name, word, n, argtype, restype) {argtype == exp_numeric && restype == exp_numeric ? name : "", n},
#define VARIADIC(name, word, least) {name, least + 2},
#define UNTIL(until, name, word, n) {name, n},
#include "expr/functions.def"
#undef FUNCTION
#undef VARIADIC
#undef UNTIL
    };
    saved old(version, Int2(600));         // which knows them all
    static const char* const edges[] = {
        "dd", "ff*1e10", "bb/8", "ii*ll", "1e308*10*dd", "ll*1e18", "(1e308*10)/(1e308*10)",
    };
    Double block[blocksize];
    for (const auto& f : functions) {
        if (!*f.name) continue;
        for (Int4 round = 0; round < 8; round++) {
            std::string text = std::string(f.name) + "(";
            for (Int4 k = 0; k < f.n; k++) text += std::string(k ? "," : "") + edges[random() % std::size(edges)];
            ASSERT_EQ(compile(text + ")"), 0) << text;
            auto seeded = [] { setseed(7); setseed0(7); };      // draws come in the same order in both forms
            seeded();
            exp_getblock(eqexp, 100, blocksize, block);
            seeded();
            for (Int4 i = 0; i < blocksize; i++) ASSERT_EQ(bits(block[i]), bits(exp_getnum(eqexp, 100 + i))) << text;
        }
    }
}

TEST_F(evaluator, conditionsandsums) {
    UByte mask[blocksize];
    Double block[blocksize];
    for (const char* text : {"dd>3", "ss==\"a\"", "bb", "sum(ii)>40", "dd[_n-1]<dd"}) {
        ASSERT_EQ(compile(text, mode_num, ifexp), 0);
        saved given(ifgiven, UByte(1));
        boolean single[rows + 1];
        for (Int4 obs = 1; obs <= rows; obs++) single[obs] = exp_iftest(obs);
        for (Int4 first = 1; first <= rows; first += 200) {
            Int4 n = std::min(200, rows - first + 1);
            exp_ifblock(first, n, mask);
            for (Int4 i = 0; i < n; i++) ASSERT_EQ(mask[i] != 0, single[first + i]) << text << first + i;
        }
        ASSERT_EQ(compile("sum(dd)"), 0);
        EXPECT_FALSE(exp_blockable(eqexp, 0));
    }
    exp_ifblock(1, 5, mask);
    EXPECT_TRUE(mask[0] && mask[4]);
    ASSERT_EQ(compile("sum(dd)+sum(1)/2"), 0);
    EXPECT_TRUE(exp_blockable(eqexp, 5));
    EXPECT_FALSE(exp_blockable(eqexp, 1));
    Double total = 0;
    for (Int4 first = 1; first <= 512; first += blocksize) {
        exp_getblock(eqexp, first, blocksize, block);
        for (Int4 i = 0; i < blocksize; i++) {
            Double x = data["dd"][std::size_t(first + i) - 1];
            total += x == missing ? 0 : x;
            ASSERT_EQ(block[i], total + (first + i) / 2.0);
        }
    }
    EXPECT_EQ(exp_getnum(eqexp, 1), (data["dd"][0] == missing ? 0 : data["dd"][0]) + .5);
    ASSERT_EQ(compile("dd[_n-1]+ff"), 0);
    EXPECT_FALSE(exp_blockable(eqexp, 5));
    EXPECT_TRUE(exp_blockable(eqexp, 4));
}

TEST_F(evaluator, levels) {
    const struct { const char* text; Double want; } cases[] = {
        {"10-5-2", 3}, {"2^3^2", 64}, {"-2^2", -4}, {"2^-1", .5}, {"2*-3", -6}, {"2*3/4", 1.5}, {"8/2*3", 12},
        {".==.", 1}, {".>1e300", 1}, {".+1", missing}, {"1/0", missing}, {"0^0", 1}, {"0^-1", missing},
        {"(-8)^(1/3)", missing}, {". & 1", 1}, {"!.", 0}, {"2^32", 4294967296}, {"2^1024", missing},
        {"((-2)^33<0)+((-2)^34>0)", 2},
        {"1e-5+1", 1.00001}, {"1d2", 100}, {".abc", missing}, {".", missing}, {"+5", 5}, {"!-1", 0}, {"3 -1", 2},
        {"\"a\"+\"b\"==\"ab\"", 1}, {"\"b\">\"a\"", 1}, {"((((3))))", 3}, {"[3]", 3}, {"_pi", 3.141592653589793},
        {"dd[0]", missing}, {"dd[701]", missing}, {"dd[.]", missing}, {"_cons", 1}, {"1<2==1", 1}, {"3>2>1", 0},
        {"`\"say \"hi\"\"'==\"x\"", 0}, {"1e999", missing}, {"bb[1]-bb[1.9]", 0}, {"bb[2]-bb[1+1]", 0},
    };
    for (const auto& c : cases) {
        if (data["bb"][0] == missing || data["bb"][1] == missing) writecell(cellptr(1, 1), typebyte, 3);
        Double got = value(c.text);
        if (c.text[0] != 'b' || got != missing) {
            EXPECT_DOUBLE_EQ(got, c.want) << c.text;
        }
    }
    {
        saved old(version, Int2(400));
        EXPECT_EQ(value("-2^2"), 4);
    }
    ASSERT_EQ(addvar("x1e", typedouble), 0);
    visnvar = nvar;
    writecell(cellptr(nvar, 1), typedouble, 7);
    EXPECT_EQ(value("x1e-5"), 2);
    EXPECT_EQ(value(".1+.2-.3"), .1 + (.2 - .3));
    groupfirst = 101;
    grouplast = 200;
    EXPECT_EQ(value("_n", 103), 3);
    EXPECT_EQ(value("_N"), 100);
    EXPECT_EQ(value("dd[1]", 150), data["dd"][100]);
    EXPECT_EQ(value("dd[101]", 150), missing);
}

TEST_F(evaluator, numericfunctions) {
    const struct { const char* text; Double want; } cases[] = {
        {"int(-1.5)", -1}, {"int(1.9)", 1}, {"round(2.5,1)", 3}, {"round(-2.5,1)", -2}, {"round(7.3,0)", 7.3},
        {"round(.,1)", missing}, {"mod(-1,3)", 2}, {"mod(5,0)", missing}, {"mod(5,-3)", missing}, {"max(.,1)", 1},
        {"max(.,.)", missing}, {"min(3,.,2)", 2}, {"cond(.,1,2)", 1}, {"sign(-3)", -1},
        {"float(.1)", 13421773.0 / 134217728}, {"float(1e-40)", 0}, {"float(1e38)", missing}, {"exp(710)", missing},
        {"exp(-710)", 0}, {"ln(0)", missing}, {"sqrt(-1)", missing}, {"sqrt(2)", std::sqrt(2.0)},
        {"abs(log10(1000)-3)<1e-14", 1}, {"sin(2e18)", missing}, {"asin(1)", std::acos(-1.0) / 2},
        {"acos(-1)", std::acos(-1.0)}, {"acos(2)", missing}, {"reldif(3,1)", 1}, {"recode(2,1,3,5)", 3},
        {"recode(9,1,3,5)", 5}, {"recode(.,1,3)", missing}, {"autocode(3.5,4,0,8)", 4}, {"autocode(99,4,0,8)", 8},
        {"autocode(1,0,0,8)", missing}, {"inrange(5,.,10)", 1}, {"inrange(.,1,2)", 0}, {"inlist(.,1,.)", 1},
        {"inlist(4,1,2)", 0}, {"normden(0)", .3989422804014327}, {"normden(0,2)", .19947114020071635},
        {"normd(1,0)", missing}, {"byteorder()", 2}, {"missing(.)", 1}, {"missing(\"\")", 1}, {"_result(21)", missing},
        {"_caller()", 7}, {"_by()", 0}, {"mdy(2,29,1900)", missing}, {"mdy(2,29,2000)", 14669}, {"dow(0)", 5},
        {"wofd(mdy(12,31,1960))", 51}, {"dofw(52)", 366}, {"day(31.9)+month(31.9)+year(31.9)", 1 + 2 + 1960},
        {"week(365)+quarter(100)+halfyear(200)+doy(365)", 52 + 2 + 2 + 366}, {"yw(1961,1)", 52},
        {"ym(1960,13)", missing}, {"dofq(-1)", -92}, {"dofd(1.5)", 1.5}, {"mofd(-1)+qofd(-1)+hofd(-1)", -3},
        {"date(\"Jan 5 1960\",\"mdy\")", 4}, {"date(\"1/2/03\",\"mdy\",2002)-mdy(1,2,1903)", 0},
        {"quarterly(\"1960q2\",\"yq\")", 1}, {"q(1961q2)", 5}, {"d(5jan1960)", 4}, {"y(1999)", 1999}, {"group(10)", 1},
        {"e(sample)", 0}, {"r(nothing)", missing},
    };
    for (const auto& c : cases) {
        if (c.want == std::trunc(c.want)) EXPECT_EQ(value(c.text), c.want) << c.text;
        else EXPECT_DOUBLE_EQ(value(c.text), c.want) << c.text;
    }
    for (Double x : {-50.0, -1.0, -.3, 0.0, .2, .9, 1.0, 1.7, 400.0})
        EXPECT_NEAR(value("atan(" + std::to_string(x) + ")"), std::atan(x), 2e-7);
    EXPECT_EQ(value("group(10)", rows), 10);
    EXPECT_NEAR(value("sin(1)^2+cos(1)^2"), 1, 1e-15);
}

TEST_F(evaluator, textfunctions) {
    const struct { const char *text, *want; } cases[] = {
        {"substr(\"abc\",-1,1)", "c"}, {"substr(\"abc\",2,.)", "bc"}, {"substr(\"abc\",0,1)", ""},
        {"substr(\"abc\",-9,2)", "ab"}, {"substr(\"abc\",.,1)", ""}, {"reverse(\"abc\")", "cba"},
        {"upper(\"aZ1\")+lower(\"AzB\")", "AZ1azb"}, {"char(65)+char(256)", "A"},
        {"trim(\"  a b \")+ltrim(\" x \")+rtrim(\" y \")", "a bx  y"}, {"string(1234.5678)", "1234.568"},
        {"string(-.5,\"%9.2f\")", "    -0.50"}, {"string(0,\"%d\")", "01jan1960"}, {"string(1,\"junk\")", ""},
        {"cond(1,\"yes\",\"no\")+cond(0,\"yes\",\"no\")", "yesno"}, {"subinstr(\"banana\",\"an\",\"X\",1)", "bXana"},
        {"subinstr(\"banana\",\"an\",\"X\",.)", "bXXa"}, {"subinstr(\"abc\",\"\",\"x\",1)", ""},
        {"subinword(\"a ab a\",\"a\",\"z\",.)", "z ab z"}, {"subinstr(\"aaa\",\"a\",\"aa\",.)", "aaaaaa"},
        {"abbrev(\"displacement\",8)", "displa~t"}, {"(\"a\"+(\"b\"+(\"c\"+(\"d\"+\"e\"))))", "abcde"}, {"ss[0]", ""},
        {"\"a\" + \"b\"", "ab"}, {"`\"a\"b'\"'", "a\"b'"},
    };
    for (const auto& c : cases) EXPECT_EQ(textvalue(c.text), c.want) << c.text;
    const struct { const char* text; Double want; } numbers[] = {
        {"length(\"abc\")", 3}, {"index(\"abc\",\"\")", 1}, {"index(\"\",\"a\")", 0}, {"index(\"abcb\",\"b\")", 2},
        {"match(\"aXb\",\"a\\*b\")", 0}, {"match(\"a*b\",\"a\\*b\")", 1}, {"real(\" -1.5e2 \")", -150},
        {"real(\"12x\")", missing}, {"inlist(\"b\",\"a\",\"b\")", 1}, {"inrange(\"b\",\"\",\"c\")", 1},
        {"inrange(\"\",\"\",\"c\")", 0}, {"length(ss[_n-1])", 0},
    };
    for (const auto& c : numbers) EXPECT_EQ(value(c.text), c.want) << c.text;
    std::string longest(240, 'x');
    EXPECT_EQ(textvalue("\"" + longest + "\"+\"123456\"").size(), 244U);
    EXPECT_EQ(textvalue("\"" + std::string(300, 'y') + "\"").size(), 245U);
    EXPECT_LE(textvalue("subinstr(\"" + longest + "\",\"x\",\"yy\",.)").size(), 244U);
    char own[245];
    for (Int4 obs = 1; obs <= 20; obs++) EXPECT_EQ(textvalue("reverse(reverse(ss))", obs), getstr(6, obs, own));
}

TEST_F(evaluator, whereitends) {
    const struct { const char *text, *rest; } cases[] = {
        {"dd bb", " bb"}, {"dd + bb if", " if"}, {"dd==2 in 1/5", " in 1/5"}, {"2, detail", ", detail"}, {"dd=3", "=3"},
        {"dd >= 3", ""}, {"\"a, b\"==ss , x", " , x"}, {"max(1, 2) x", " x"}, {"dd<=3=4", "=4"},
    };
    for (const auto& c : cases) {
        ASSERT_EQ(compile(c.text), 0) << c.text;
        std::string rest = tokrest(), blank = c.rest;
        EXPECT_TRUE(rest == blank || " " + rest == blank) << c.text << " leaves " << rest;
    }
    const auto with = [](const char* text, const compileoptions& options) -> const char* {
        exp_reset();
        std::strcpy(cmdbuf, text);
        settokpos(cmdbuf);
        return exp_compile(eqexp, mode_num, options) ? "refused" : tokrest();
    };
    EXPECT_STREQ(with("dd[2]*3]x", compileoptions{.stopatbracket = true}), "]x");
    EXPECT_STREQ(with("_b[x]*2", compileoptions{.nocoef = true}), "");
    EXPECT_STREQ(with("nosuch*2, next", compileoptions{.scanonly = true}), ", next");
}

TEST_F(evaluator, storedthings) {
    putlabel("yesno", 1, "yes");
    EXPECT_EQ(value("\"yes\":yesno"), 1);
    EXPECT_EQ(value("\"perhaps\":yesno"), missing);
    rstore("mean", 2.5);
    rmacro("varlist", "x y");
    EXPECT_EQ(value("r(mean)*2"), 5);
    EXPECT_EQ(textvalue("r(varlist)"), "x y");
    macroset("_0", ", level(5)");
    EXPECT_EQ(value("replay()"), 1);
    macroset("_0", "y x");
    EXPECT_EQ(value("replay()"), 0);
    EXPECT_EQ(compile("tin(1,2)"), 101);
    ASSERT_EQ(char_set("_dta", "_TStvar", "ll"), 0);
    writecell(cellptr(3, 1), typelong, 5);
    EXPECT_EQ(value("tin(4,5)"), 1);
    EXPECT_EQ(value("twithin(4,5)"), 0);
    EXPECT_EQ(value("tin(6,)+tin(,5)*2+tin(,)*4"), 6);
    std::strcpy(fmt[2], "%tq");
    EXPECT_EQ(value("tin(1961q2,1961q3)"), 1);
}

TEST_F(evaluator, timeseries) {
    ASSERT_EQ(addvar("tt", typelong), 0);
    visnvar = nvar;
    for (Int4 obs = 1; obs <= rows; obs++) writecell(cellptr(nvar, obs), typelong, obs + (obs > 300));
    ASSERT_EQ(char_set("_dta", "_TStvar", "tt"), 0);
    srt[0] = UInt2(nvar);
    srt[1] = 0;
    EXPECT_EQ(value("LF.dd", 301), data["dd"][300]);     // a gap in time
    EXPECT_EQ(compile("L.ss"), 109);
    EXPECT_EQ(compile("L.dd[3]"), 198);
    Double block[blocksize];
    ASSERT_EQ(compile("D.dd*2+L3.bb"), 0);
    EXPECT_FALSE(exp_blockable(eqexp, 5));
    exp_getblock(eqexp, 200, blocksize, block);
    for (Int4 i = 0; i < blocksize; i++) ASSERT_EQ(bits(block[i]), bits(exp_getnum(eqexp, 200 + i)));
}

TEST_F(evaluator, refusals) {
    const struct { const char* text; Int4 rc; } cases[] = {
        {"\"a\"+1", 109}, {"\"abc\"*2", 109}, {"1==\"1\"", 109}, {"\"a\"&1", 109}, {"\"a\"-\"b\"", 109},
        {"sqrt(\"a\")", 109}, {"length(5)", 109}, {"\"a\"", 109}, {"-\"a\"", 109}, {"nosuch", 111}, {"nosuch[1]", 111},
        {"foo(1)", 133}, {"uniform(1)", 198}, {"sqrt(1,2)", 198}, {"_by(1)", 198}, {"_n[1]", 198}, {"1x", 198},
        {"", 198}, {"()", 198}, {"1+", 198}, {"max(1,)", 198}, {"f(1)(2)", 198}, {"dd[1", 132}, {"(1", 132},
        {"1)", 132}, {"\"abc", 132}, {"`\"abc\"", 132}, {"dd]", 132}, {"(1]", 132}, {"d(5foo1960)", 198},
        {"\"a\"x", 198}, {"dd[1,2]", 198}, {"_b[x]", 301}, {"[eq]_b[x]", 301}, {"ss[\"a\"]", 109},
    };
    for (const auto& c : cases) EXPECT_EQ(compile(c.text), c.rc) << c.text;
    EXPECT_EQ(compile("5", mode_str), 109);
    EXPECT_EQ(compile("dd", mode_mat), 111);
}

TEST_F(evaluator, limits) {
    auto terms = [](Int4 n, auto term, const char* between) {
        std::string s;
        for (Int4 i = 0; i < n; i++) s += (i ? between : "") + std::string(term(i));
        return s;
    };
    auto literal = [](Int4 i) { return std::to_string(1000 + i); };
    EXPECT_EQ(compile(terms(150, literal, "+")), 0);
    EXPECT_EQ(compile(terms(151, literal, "+")), 130);
    EXPECT_EQ(value(terms(200, [](Int4) { return "7"; }, "+")), 1400);        // 599 words
    EXPECT_EQ(compile(terms(201, [](Int4) { return "7"; }, "+")), 130);
    EXPECT_EQ(compile(terms(5, [](Int4) { return "sum(dd)"; }, "+")), 0);
    EXPECT_EQ(compile(terms(6, [](Int4) { return "sum(dd)"; }, "+")), 130);
    EXPECT_EQ(compile("(\"a\"+(\"b\"+(\"c\"+(\"d\"+(\"e\"+\"f\")))))", mode_str), 130);
    EXPECT_EQ(compile("max(" + terms(100, literal, ",") + ")"), 0);
    EXPECT_EQ(compile("max(" + terms(101, literal, ",") + ")"), 130);
    std::string a(250, 'a'), b(250, 'b'), c(10, 'c');
    EXPECT_EQ(compile("\"" + a + "\"+\"" + b + "\"+\"" + c + "\"", mode_str), 0);     // 245 + 245 + 10 and zeros
    EXPECT_EQ(compile("\"" + a + "\"+\"" + b + "\"+\"" + c + c + "\"", mode_str), 130);
    std::string open(10000, '('), close(10000, ')');
    EXPECT_EQ(value(open + "3" + close), 3);
    for (const char* opener : {"(", "-(", "1+(", "abs(", "dd[", "scalar(", "!", "-", "max(1,"}) {
        std::string s, t;
        for (Int4 i = 0; i < 10000; i++) {
            s += opener;
            char last = s.back() == ',' ? '(' : s.back();
            if (last == '(' || last == '[') t += last == '(' ? ')' : ']';
        }
        Int4 rc = compile(s + "1" + t);
        EXPECT_EQ(rc, *opener == '(' ? 0 : 130) << opener;
    }
    EXPECT_EQ(compile(terms(16000, [](Int4) { return "1"; }, "+")), 130);
}
