#include <stdlib.h>
#include <time.h>

#include <climits>
#include <cmath>
#include <string>
#include <vector>

#include <QStringList>
#include <QTime>

#include <gtest/gtest.h>

#include "nimb/variant.h"

namespace {

using nimb::Variant;
using Bytes = std::vector<unsigned char>;
using Texts = std::vector<std::string>;

// Dates are read and written in the local zone, fixed here to UTC.
const bool ZONE_FIXED = (setenv("TZ", "UTC0", 1), tzset(), true);

// Each constructor keeps its value whole (a long beyond 32 bits, the largest
// unsigned long, a char as a character, UTF-8 text); then each kind of stored
// value (text, signed, unsigned, double, bool, char, float) through the
// readers that treat it on their own.
TEST(VariantTest, StoresWholeAndConvertsLeniently) {
    EXPECT_EQ(Variant(-5000000000L).toStr(), "-5000000000");
    EXPECT_EQ(Variant(ULONG_MAX).toStr(), "18446744073709551615");
    EXPECT_EQ(Variant('x').toStr(), "x");
    EXPECT_EQ(Variant("\xC3\xA9").toStr(), "\xC3\xA9");
    EXPECT_FALSE(Variant("true").toBool());
    EXPECT_TRUE(Variant("42").toBool());
    EXPECT_EQ(Variant("4x").toInt(), 0);
    EXPECT_EQ(Variant("-1").toUInt(), 0u);
    EXPECT_DOUBLE_EQ(Variant("2.5").toDouble(), 2.5);
    EXPECT_EQ(Variant(4000000000u).toLLong(), 4000000000LL);
    EXPECT_EQ(Variant(2.6).toStr(), "3");
    EXPECT_EQ(Variant(-2.6).toInt(), -2);
    EXPECT_EQ(Variant(1e30).toInt(), INT_MAX);
    EXPECT_TRUE(Variant(std::nan("")).toBool());
    EXPECT_EQ(Variant(true).toDouble(), 1.0);
    EXPECT_EQ(Variant(true).toChar(), '1');
    EXPECT_EQ(Variant(-5).toChar(), '-');
    EXPECT_EQ(Variant(9.75).toChar(), '9');
    EXPECT_EQ(Variant("").toChar(), '\0');
    EXPECT_EQ(Variant(1.25f).toStr(), "1.25");
}

TEST(VariantTest, ListsBytesAndTimes) {
    EXPECT_EQ(Variant(Bytes{0x0a, 0xff}).toStr(), "0aff");
    EXPECT_EQ(Variant(Bytes{0x0a, 0xff}).toBinary(), (Bytes{0x0a, 0xff}));
    const Variant list(QVariant(QStringList{"a", "b c"}));
    EXPECT_EQ(list.toStr(), "a,b c");
    EXPECT_EQ(list.toStrList(), (Texts{"a", "b c"}));
    EXPECT_EQ(Variant(5).toStrList(), Texts{"5"});

    Variant time;
    time.fromDateTime(86400001);
    EXPECT_EQ(time.toStr(), "1970/01/02 00:00:00.001");
    EXPECT_EQ(Variant("1970/01/01 00:00:01.500").toDateTime(), 1500);
    EXPECT_EQ(Variant(2.9).toDateTime(), 2);
    EXPECT_EQ(Variant(QVariant(QTime(0, 0, 2))).toDateTime(), 2000);
}

}  // namespace
