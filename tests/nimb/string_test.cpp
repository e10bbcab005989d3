#include <climits>
#include <cmath>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "nimb/string.h"

namespace {

using nimb::String;
using Pieces = std::vector<std::string>;

TEST(StringTest, NumbersToText) {
    EXPECT_EQ(String::intToStr(7, 3, '0'), "007");
    EXPECT_EQ(String::intToStr(12345, 3, '0'), "12345");
    EXPECT_EQ(String::intToStr(-5, 4, ' '), "  -5");
    EXPECT_EQ(String::intToStr(INT_MIN), "-2147483648");
    EXPECT_EQ(String::intToStr(UINT_MAX), "4294967295");
    EXPECT_EQ(String::intToStr(LLONG_MIN), "-9223372036854775808");
    EXPECT_EQ(String::intToStr(ULLONG_MAX), "18446744073709551615");
    EXPECT_EQ(String::intToStr(ULONG_MAX, 0, '0'), "18446744073709551615");

    EXPECT_EQ(String::intToHex(255, 4, '0', true), "00FF");
    EXPECT_EQ(String::intToHex(255), "ff");
    EXPECT_EQ(String::intToHex(-255, 0, '0', true), "-FF");
    EXPECT_EQ(String::intToHex(ULLONG_MAX), "ffffffffffffffff");
    EXPECT_EQ(String::intToHex(LLONG_MIN), "-8000000000000000");
    EXPECT_EQ(String::intToHex(0x1fL, 6, '.', false), "....1f");

    EXPECT_EQ(String::floatToStr(2.5, 2, false), "2.50");
    EXPECT_EQ(String::floatToStr(2.6, 0, false), "3");
    EXPECT_EQ(String::floatToStr(1234.5, 2, true), "1.23e+03");
    EXPECT_EQ(String::floatToStr(0.5f, 3, false), "0.500");
}

TEST(StringTest, TextToNumbersKeepTheDefaultUnlessTheWholeTextParses) {
    EXPECT_EQ(String::strToInt("12a", 5), 5);
    EXPECT_EQ(String::strToInt(nullptr, 5), 5);
    EXPECT_EQ(String::strToInt("", 5), 5);
    EXPECT_EQ(String::strToInt("-42", 5), -42);
    EXPECT_EQ(String::strToInt("2147483648", 5), 5);  // does not fit
    EXPECT_EQ(String::strToUInt("-1", 9u), 9u);
    EXPECT_EQ(String::strToUInt(std::string("4294967295"), 0u), UINT_MAX);
    EXPECT_EQ(String::strToLong("-9223372036854775808", 0), LONG_MIN);
    EXPECT_EQ(String::strToULong("18446744073709551615", 0), ULONG_MAX);
    EXPECT_EQ(String::strToLLong("1e3", 7), 7);
    EXPECT_EQ(String::strToULLong("18446744073709551616", 3), 3ull);
    EXPECT_DOUBLE_EQ(String::strToDouble("2.5", 0), 2.5);
    EXPECT_DOUBLE_EQ(String::strToDouble("2,5", -1), -1);
    EXPECT_FLOAT_EQ(String::strToFloat("1e3", 0), 1000.0f);
    EXPECT_FLOAT_EQ(String::strToFloat("x", 0.5f), 0.5f);

    EXPECT_EQ(String::hexToInt("ffh", 0), 255);
    EXPECT_EQ(String::hexToInt("1FH", 0), 0x1f);
    EXPECT_EQ(String::hexToInt("", 9), 9);
    EXPECT_EQ(String::hexToInt(nullptr, 9), 9);
    EXPECT_EQ(String::hexToInt("h", 9), 9);
    EXPECT_EQ(String::hexToInt("fg", 9), 9);
    EXPECT_EQ(String::hexToUInt("FFFFFFFF", 0), UINT_MAX);
    EXPECT_EQ(String::hexToLong("-10", 0), -16);
    EXPECT_EQ(String::hexToULong(std::string("10h"), 0), 16ul);
    EXPECT_EQ(String::hexToLLong("7fffffffffffffff", 0), LLONG_MAX);
    EXPECT_EQ(String::hexToULLong("ffffffffffffffffH", 0), ULLONG_MAX);
}

TEST(StringTest, TrimCaseAndAscii) {
    EXPECT_EQ(String::trim(" \t a b \n"), "a b");
    EXPECT_EQ(String::trim(nullptr), "");
    EXPECT_EQ(String::toUpper("mañana"), "MAÑANA");
    EXPECT_EQ(String::toLower(std::string("--NoDaemon")), "--nodaemon");
    EXPECT_EQ(String::toLower(nullptr), "");
    EXPECT_EQ(String::toAscii("Ñandú crème brûlée ½ €"), "Nandu creme brulee 12 ");
    EXPECT_EQ(String::toAscii(nullptr), "");
}

TEST(StringTest, SurroundAndUnsurround) {
    EXPECT_EQ(String::quote("x"), "\"x\"");
    EXPECT_EQ(String::quote("\"x"), "\"x\"");
    EXPECT_EQ(String::quote("x\""), "\"x\"");
    EXPECT_EQ(String::quote(""), "");
    EXPECT_EQ(String::surround("x", ""), "x");
    EXPECT_EQ(String::surround(std::string("a"), std::string("<>")), "<>a<>");

    EXPECT_EQ(String::unQuote("\"'x'\""), "x");
    EXPECT_EQ(String::unQuote("'x"), "x");
    EXPECT_EQ(String::unQuote("\"\""), "");
    EXPECT_EQ(String::unQuote(nullptr), "");
    EXPECT_EQ(String::unSurround("<><>a<>", "<>", false), "a");
    EXPECT_EQ(String::unSurround("<a>", "<>", false), "<a>");
    EXPECT_EQ(String::unSurround("<a>", "<>", true), "a");
    EXPECT_EQ(String::unSurround("xax", "", true), "xax");
}

TEST(StringTest, FormatAndTokenize) {
    EXPECT_EQ(String::format("%s=%03d %.1f", "n", 7, 2.25), "n=007 2.2");
    EXPECT_EQ(String::format(nullptr), "");
    EXPECT_EQ(String::format("%s", std::string(5000, 'x').c_str()).size(), 5000u);

    EXPECT_EQ(String::tokenize("a,,b", ','), (Pieces{"a", "", "b"}));
    EXPECT_EQ(String::tokenize(",a,", ','), (Pieces{"", "a", ""}));
    EXPECT_EQ(String::tokenize("", ','), Pieces{});
    EXPECT_EQ(String::tokenize("a::b:c", "::"), (Pieces{"a", "b:c"}));
    EXPECT_EQ(String::tokenize("a:b", ""), Pieces{"a:b"});
    EXPECT_EQ(String::tokenize(nullptr, ":"), Pieces{});
}

}  // namespace
