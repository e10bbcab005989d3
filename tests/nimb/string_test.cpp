#include <climits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "nimb/string.h"

namespace {

using nimb::String;
using Pieces = std::vector<std::string>;

// The overloads of a family share their code: one or two of each family, at
// the extremes where a wrong cast or a lost sign would show.
TEST(StringTest, NumbersTextsAndSurroundings) {
    EXPECT_EQ(String::intToStr(-5, 4, ' '), "  -5");
    EXPECT_EQ(String::intToStr(ULLONG_MAX), "18446744073709551615");
    EXPECT_EQ(String::intToHex(255, 4, '0', true), "00FF");
    EXPECT_EQ(String::intToHex(-255L), "-ff");
    EXPECT_EQ(String::floatToStr(1234.5, 2, true), "1.23e+03");
    // A text converts only when all of it parses.
    EXPECT_EQ(String::strToInt("-42", 5), -42);
    EXPECT_EQ(String::strToInt("12a", 5), 5);
    EXPECT_EQ(String::strToInt(nullptr, 5), 5);
    EXPECT_EQ(String::strToInt("2147483648", 5), 5);  // does not fit
    EXPECT_EQ(String::hexToLong("-1FH", 0), -31);
    EXPECT_EQ(String::hexToInt("h", 9), 9);
    EXPECT_EQ(String::trim(" \t a b \n"), "a b");
    EXPECT_EQ(String::toUpper("mañana"), "MAÑANA");
    EXPECT_EQ(String::toAscii("Ñandú crème brûlée ½ €"), "Nandu creme brulee 12 ");
    // Surrounding, formatting and splitting.
    EXPECT_EQ(String::quote("\"x"), "\"x\"");
    EXPECT_EQ(String::quote(""), "");
    EXPECT_EQ(String::unQuote("\"'x'\""), "x");
    EXPECT_EQ(String::unSurround("<><>a<>", "<>", false), "a");
    EXPECT_EQ(String::unSurround("<a>", "<>", false), "<a>");
    EXPECT_EQ(String::unSurround("<a>", "<>", true), "a");
    EXPECT_EQ(String::format("%s=%03d %.1f", "n", 7, 2.25), "n=007 2.2");
    EXPECT_EQ(String::format("%s", std::string(5000, 'x').c_str()).size(), 5000u);
    EXPECT_EQ(String::tokenize(",a,,b,", ','), (Pieces{"", "a", "", "b", ""}));
    EXPECT_EQ(String::tokenize("", ','), Pieces{});
    EXPECT_EQ(String::tokenize("a::b:c", "::"), (Pieces{"a", "b:c"}));
}

}  // namespace
