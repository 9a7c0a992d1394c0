// The quick ways from text to number and back give what the slow ways give, bit for bit.
#include <gtest/gtest.h>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>
#include "base/sixteen.h"
#include "base/text.h"
#include "output/fmtparts.h"

using namespace velmo;

namespace {

std::mt19937_64 source(20);
Int4 below(Int4 n) { return Int4(source() % std::uint64_t(n)); }

// Values of all kinds a column may hold: whole, short decimals, ties at some digit and their neighbours, neighbours
// of powers of ten, all bits at random.
Double anyvalue() {
    Double x = 0;
    switch (below(6)) {
    case 0: x = below(2000000000) / (below(3) ? 1 : 1000); break;
    case 1: x = Double(source() % 1000000000000) / exacttens[below(14)]; break;
    case 2: x = Double(source() % 100000000 * 10 + 5) / exacttens[below(12)]; break;
    case 3: x = std::pow(10.0, below(40) - 20); break;
    case 4: x = std::ldexp(Double(source() >> 11), below(110) - 90); break;
    default: x = std::bit_cast<Double>(source());
    }
    for (Int4 i = below(4); i > 1; i--) x = std::nextafter(x, below(2) ? HUGE_VAL : 0);
    return below(2) ? -x : x;
}

// A number as a file may have it: up to 22 digits, a point, at times an exponent.
std::string anynumber() {
    std::string text = below(3) ? "" : below(2) ? "-" : "+";
    Int4 digits = 1 + below(below(4) ? 15 : 22), point = below(3) ? below(digits + 1) : -1;
    for (Int4 i = 0; i <= digits; i++) {
        if (i == point) text += '.';
        if (i < digits) text += char('0' + (below(4) ? below(10) : below(2) * 9));
    }
    if (below(4) == 0) text += "e" + std::to_string(below(4) ? below(70) - 35 : below(700) - 350);
    return text;
}

std::string padded(const std::string& text) { return std::string(17, '7') + text + std::string(17, '7'); }

}  // namespace

TEST(numbertext, quickformisslowform) {
    Int4 quick = 0;
    for (Int4 width = leastquick; width <= widestquick; width++) {
        for (Int4 i = 0; i < 60000; i++) {
            std::string fmt = std::string(i % 7 ? "%" : "%-") + std::to_string(width) + ".0g";
            Double x = anyvalue() + 0.0;
            if (exponent(x) == 1024 || x == missing) continue;
            fmtparts slow = {};
            ASSERT_EQ(chkfmt(fmt, 1, &slow.spec), 0);
            slow.route = by_general;
            slow.capped = width;
            std::string want(dbuf, std::size_t(numberform(slow, x)));
            ASSERT_EQ(std::string(dbuf, std::size_t(fmtnum(fmt.c_str(), x))), want) << fmt << " of " << x;
            char out[512];
            std::string_view got(out, std::size_t(fmttrimmed(fmt.c_str(), x, out)));
            ASSERT_EQ(got, trimmed(want)) << fmt << " of " << x;
            quicktext text;
            slow.quick = 1;
            quick += quicknumber(slow, x, text);
        }
    }
    EXPECT_GT(quick, 100000);           // otherwise nothing has been compared
}

TEST(numbertext, readnumber) {
    for (Int4 i = 0; i < 400000; i++) {
        std::string text = anynumber();
        Double v = 0, want = std::strtod(text.c_str(), nullptr);
        ASSERT_TRUE(readnumber(text, v)) << text;
        ASSERT_EQ(std::bit_cast<std::uint64_t>(v), std::bit_cast<std::uint64_t>(want)) << text;
        if (text.size() > 16) continue;
        std::string wide = padded(text);
        plaindecimal d = plaindecimalof(wide.data() + 17, Int4(text.size()));
        boolean plain = text.find('e') == text.npos && text.size() - (text.find_first_of("+-") == 0) <= 15u +
                                                           (text.find('.') != text.npos);
        ASSERT_EQ(d.digits != 0, plain) << text;
        if (!plain) continue;
        v = plainvalue(wide.data() + 17 + text.size(), d);
        ASSERT_EQ(std::bit_cast<std::uint64_t>(v), std::bit_cast<std::uint64_t>(want)) << text;
    }
    for (const char* text : {".", "-", "+.", "1e", "e5", "1.2.3", "--1", "1 ", " 1", "1x", "0x10", "1e5.0", "inf"}) {
        std::string wide = padded(text);
        EXPECT_EQ(plaindecimalof(wide.data() + 17, Int4(std::strlen(text))).digits, 0) << text;
    }
}

// The two ways to look at sixteen bytes agree.
TEST(numbertext, sixteen) {
    for (Int4 i = 0; i < 100000; i++) {
        char text[80], one[16], other[16];
        for (char& c : text) c = i % 2 ? char(source()) : "0123456789.,-+\n\r\" /:"[below(21)];
        ASSERT_EQ(bytes::anyof(text, ',', '\n', '\r', '"'), plainbytes::anyof(text, ',', '\n', '\r', '"'));
        if (i % 5) std::memset(text, ' ', std::size_t(below(80)));
        ASSERT_EQ(bytes::noneof64(text, '$', '7', '\\'), plainbytes::noneof64(text, '$', '7', '\\'));
        decimalbits a = bytes::decimals(text), b = plainbytes::decimals(text);
        ASSERT_TRUE(a.digits == b.digits && a.points == b.points);
        std::uint64_t v = source() % 10000000000000000u / std::uint64_t(exacttens[below(16)]);
        ASSERT_EQ(bytes::putsixteen(one, v), plainbytes::putsixteen(other, v)) << v;
        ASSERT_EQ(std::memcmp(one, other, 16), 0) << v;
        Int4 digits = 1 + below(15), behind = below(3) ? below(digits + 1) : 16;
        std::string number = std::to_string(source() % std::uint64_t(exacttens[digits]));
        number.insert(0, std::size_t(digits) - number.size(), '0');
        std::uint64_t want = std::stoull(number);
        if (behind < 16) number.insert(number.size() - std::size_t(behind), ".");
        number.insert(0, 20, '8');
        ASSERT_EQ(bytes::digitsvalue(number.data() + number.size(), digits, behind), want) << number;
        ASSERT_EQ(plainbytes::digitsvalue(number.data() + number.size(), digits, behind), want) << number;
    }
}
