#include <stdlib.h>
#include <time.h>

#include <climits>
#include <cmath>
#include <string>
#include <vector>

#include <QStringList>
#include <QTime>
#include <QUrl>

#include <gtest/gtest.h>

#include "nimb/variant.h"

namespace {

using nimb::Variant;
using Bytes = std::vector<unsigned char>;
using Texts = std::vector<std::string>;

// Dates are read and written in the local zone, fixed here to UTC.
const bool ZONE_FIXED = (setenv("TZ", "UTC0", 1), tzset(), true);

TEST(VariantTest, StorageFollowsTheGivenType) {
    EXPECT_FALSE(Variant().toQVariant().isValid());
    EXPECT_EQ(Variant().toStr(), "");
    EXPECT_EQ(Variant(1).toQVariant().type(), QVariant::Int);
    EXPECT_EQ(Variant(1u).toQVariant().type(), QVariant::UInt);
    EXPECT_EQ(Variant(1L).toQVariant().type(), QVariant::LongLong);
    EXPECT_EQ(Variant(1UL).toQVariant().type(), QVariant::ULongLong);
    EXPECT_EQ(Variant('x').toQVariant().type(), QVariant::Char);
    EXPECT_EQ(Variant(1.5f).toQVariant().userType(), QMetaType::Float);
    EXPECT_EQ(Variant("é").toQVariant().toString(), QString::fromUtf8("é"));
    EXPECT_EQ(Variant(Bytes{0x0a, 0xff}).toQVariant().type(), QVariant::ByteArray);

    Variant v;
    v = LLONG_MIN;
    EXPECT_EQ(v.toLLong(), LLONG_MIN);
    v = ULLONG_MAX;
    EXPECT_EQ(v.toULLong(), ULLONG_MAX);
    v = std::string("text");
    Variant copy(v);
    v = true;
    EXPECT_EQ(copy.toStr(), "text");
    EXPECT_EQ(v.toStr(), "1");
}

TEST(VariantTest, TextsAndNumbersConvertLeniently) {
    EXPECT_FALSE(Variant("true").toBool());
    EXPECT_TRUE(Variant("42").toBool());
    EXPECT_EQ(Variant("42").toInt(), 42);
    EXPECT_EQ(Variant("4x").toInt(), 0);
    EXPECT_EQ(Variant("-1").toUInt(), 0u);
    EXPECT_DOUBLE_EQ(Variant("2.5").toDouble(), 2.5);
    EXPECT_EQ(Variant(2.6).toStr(), "3");
    EXPECT_EQ(Variant(-2.6).toInt(), -2);
    EXPECT_EQ(Variant(1e30).toInt(), INT_MAX);
    EXPECT_TRUE(Variant(std::nan("")).toBool());
    EXPECT_FALSE(Variant(0.0).toBool());
    EXPECT_EQ(Variant(true).toDouble(), 1.0);
    EXPECT_EQ(Variant(false).toLong(), 0);
    EXPECT_EQ(Variant(-7).toStr(), "-7");
    EXPECT_EQ(Variant(4000000000u).toLLong(), 4000000000LL);
    EXPECT_FLOAT_EQ(Variant(1.25f).toFloat(), 1.25f);
    EXPECT_EQ(Variant(1.25f).toStr(), "1.25");

    EXPECT_EQ(Variant(true).toChar(), '1');
    EXPECT_EQ(Variant(-5).toChar(), '-');
    EXPECT_EQ(Variant(9.75).toChar(), '9');
    EXPECT_EQ(Variant("").toChar(), '\0');
    EXPECT_EQ(Variant('q').toStr(), "q");
    EXPECT_EQ(Variant('7').toInt(), 7);
}

TEST(VariantTest, ListsBytesAndTimes) {
    EXPECT_EQ(Variant(Bytes{0x0a, 0xff}).toStr(), "0aff");
    EXPECT_EQ(Variant(Bytes{0x0a, 0xff}).toBinary(), (Bytes{0x0a, 0xff}));
    EXPECT_EQ(Variant(12).toBinary(), (Bytes{'1', '2'}));

    const Variant list(QVariant(QStringList{"a", "b c"}));
    EXPECT_EQ(list.toStr(), "a,b c");
    EXPECT_EQ(list.toStrList(), (Texts{"a", "b c"}));
    EXPECT_EQ(Variant(5).toStrList(), Texts{"5"});
    EXPECT_EQ(Variant(QVariant(QUrl("http://h:8/p?q=1"))).toStr(), "http://h:8/p?q=1");

    Variant time;
    time.fromDateTime(86400001);
    EXPECT_EQ(time.toDateTime(), 86400001);
    EXPECT_EQ(time.toStr(), "1970/01/02 00:00:00.001");
    EXPECT_EQ(time.toLLong(), 86400001);
    EXPECT_EQ(time.toChar(), '8');
    EXPECT_TRUE(time.toBool());
    EXPECT_EQ(Variant("1970/01/01 00:00:01.500").toDateTime(), 1500);
    EXPECT_EQ(Variant(2.9).toDateTime(), 2);
    EXPECT_EQ(Variant(QVariant(QTime(0, 0, 2))).toDateTime(), 2000);
}

}  // namespace
