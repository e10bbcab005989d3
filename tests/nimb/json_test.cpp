#include <cmath>
#include <cstdlib>
#include <ctime>
#include <limits>
#include <string>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

#include "nimb/json.h"

using nimb::JsonArray;
using nimb::JsonDocument;
using nimb::JsonObject;
using nimb::JsonValue;

namespace {

// One hour east of UTC all year round, so that local times are known.
const char* const FIXED_TZ = "CET-1";

void setZone(const char* zone) {
    setenv("TZ", zone, 1);
    tzset();
}

// Fixed before any test, and so before Qt, reads the local zone.
const bool ZONE_FIXED = (setZone(FIXED_TZ), true);

// 2024-05-01 13:03:07.250 UTC.
const long long MAY_FIRST_MS = 1714568587250LL;

std::string compact(const JsonValue& value) {
    JsonArray array;
    array.append(value);
    return JsonDocument(array).toJson(false);
}

template <typename T>
JsonValue assigned(T given) {
    JsonValue value("previous");
    value = given;
    return value;
}

JsonArray arrayOf(std::initializer_list<JsonValue> values) {
    JsonArray array;
    for (const JsonValue& value : values)
        array.append(value);
    return array;
}

TEST(JsonValueTest, StoresEachGivenTypeAsItsJson) {
    // What was given, its compact text and its type.
    const std::tuple<const char*, JsonValue, std::string, JsonValue::Type> rows[] = {
        {"bool true", JsonValue(true), "[1]", JsonValue::Double},
        {"int", JsonValue(-7), "[-7]", JsonValue::Double},
        {"unsigned", JsonValue(4294967295U), "[4294967295]", JsonValue::Double},
        {"long", JsonValue(5000000000L), "[5000000000]", JsonValue::Double},
        {"long long", JsonValue(-5000000000LL), "[-5000000000]", JsonValue::Double},
        {"unsigned long long", JsonValue(std::numeric_limits<unsigned long long>::max()),
         "[18446744073709552000]", JsonValue::Double},
        {"double", JsonValue(2.5), "[2.5]", JsonValue::Double},
        {"utf-8", JsonValue("Gr\xc3\xbc\xc3\x9f \"x\""), "[\"Gr\xc3\xbc\xc3\x9f \\\"x\\\"\"]",
         JsonValue::String},
        {"null text", JsonValue(static_cast<const char*>(nullptr)), "[\"\"]", JsonValue::String},
        {"default", JsonValue(), "[null]", JsonValue::Null},
        {"Qt bool", JsonValue(QJsonValue(true)), "[true]", JsonValue::Bool},
        {"array", JsonValue(arrayOf({1, "x"})), "[[1,\"x\"]]", JsonValue::Array},
        {"object", JsonValue(JsonObject{{"k", false}}), "[{\"k\":0}]", JsonValue::Object},
        {"= bool", assigned(true), "[1]", JsonValue::Double},
        {"= int", assigned(42), "[42]", JsonValue::Double},
        {"= long keeps low 32 bits", assigned(5000000000L), "[705032704]", JsonValue::Double},
        {"= long low bits signed", assigned(0x1FFFFFFFFL), "[-1]", JsonValue::Double},
        {"= double", assigned(-0.25), "[-0.25]", JsonValue::Double},
        {"= object", assigned(JsonObject()), "[{}]", JsonValue::Object},
    };
    for (const auto& [name, value, json, type] : rows) {
        EXPECT_EQ(compact(value), json) << name;
        EXPECT_EQ(value.type(), type) << name;
    }
    EXPECT_FALSE(JsonValue(true).isBool());
    EXPECT_NE(JsonValue(true), JsonValue(QJsonValue(true)));
}

TEST(JsonValueTest, LenientReadersFollowTheTypeOfTheValue) {
    // The value, then what toBool, toDouble, toStr and toDateTime give; a text
    // is read as a date elsewhere.
    const std::tuple<const char*, JsonValue, bool, double, std::string, long long> rows[] = {
        {"Qt true", JsonValue(QJsonValue(true)), true, 1.0, "1", 0},
        {"zero", JsonValue(0), false, 0.0, "0", 0},
        {"2.5", JsonValue(2.5), true, 2.5, "3", 2},
        {"-1.5", JsonValue(-1.5), true, -1.5, "-2", -1},
        {"NaN", JsonValue(std::nan("")), true, std::nan(""), "nan", 0},
        {"milliseconds", JsonValue(1714568587250.9), true, 1714568587250.9, "1714568587251",
         1714568587250LL},
        {"TRUE", JsonValue("TRUE"), true, 0.0, "TRUE", -1},
        {"text 1", JsonValue("1"), true, 1.0, "1", -1},
        {"yes", JsonValue("yes"), false, 0.0, "yes", -1},
        {"empty text", JsonValue(""), false, 0.0, "", -1},
        {"number text", JsonValue("-12.75"), false, -12.75, "-12.75", -1},
        {"null", JsonValue(), false, 0.0, "", 0},
        {"missing key", JsonObject().value("absent"), false, 0.0, "", 0},
        {"array", JsonValue(arrayOf({1})), false, 0.0, "", 0},
        {"object", JsonValue(JsonObject{{"a", 1}}), false, 0.0, "", 0},
    };
    for (const auto& [name, value, asBool, asDouble, asStr, asDateTime] : rows) {
        SCOPED_TRACE(name);
        EXPECT_EQ(value.toBool(), asBool);
        if (std::isnan(asDouble)) {
            EXPECT_TRUE(std::isnan(value.toDouble()));
        } else {
            EXPECT_DOUBLE_EQ(value.toDouble(), asDouble);
        }
        EXPECT_EQ(value.toStr(), asStr);
        if (!value.isString()) {
            EXPECT_EQ(value.toDateTime(), asDateTime);
        }
        EXPECT_EQ(value.toArray().size(), value.isArray() ? 1 : 0);
        EXPECT_EQ(value.toObject().size(), value.isObject() ? 1 : 0);
    }
}

TEST(JsonValueTest, DateTimesAreLocalTextsWithTheCurrentZoneDesignator) {
    const std::pair<const char*, std::string> rows[] = {
        {FIXED_TZ, "2024-05-01T14:03:07.250+01:00"},  {"UTC0", "2024-05-01T13:03:07.250Z"},
        {"EST5", "2024-05-01T08:03:07.250-05:00"},    {"IST-5:30", "2024-05-01T18:33:07.250+05:30"},
        {"NST3:30", "2024-05-01T09:33:07.250-03:30"},
    };
    for (const auto& [zone, text] : rows) {
        SCOPED_TRACE(zone);
        setZone(zone);
        const JsonValue value = JsonValue().fromDateTime(MAY_FIRST_MS, 0);
        const long long back = value.toDateTime();
        setZone(FIXED_TZ);
        EXPECT_EQ(value.toStr(), text);
        EXPECT_EQ(back, MAY_FIRST_MS);
    }
    // The offset moves the time, not the designator.
    EXPECT_EQ(JsonValue().fromDateTime(MAY_FIRST_MS, -3600000).toStr(),
              "2024-05-01T13:03:07.250+01:00");
    EXPECT_EQ(JsonValue("2024-05-01T14:03:07.250-09:30").toDateTime(), MAY_FIRST_MS);
}

TEST(JsonObjectTest, MembersAreSortedAndMissingKeysAreUndefined) {
    JsonObject object{{"zeta", 1}, {"alpha", "a"}, {"mid", JsonValue()}};
    object.setValue(std::string("beta"), 2);
    object.insert("alpha", "replaced");
    EXPECT_EQ(object.keys(), (std::vector<std::string>{"alpha", "beta", "mid", "zeta"}));
    EXPECT_TRUE(object.value("nope").isUndefined());
    EXPECT_TRUE(object.value(std::string("mid")).isNull());
    EXPECT_FALSE(object.contains(std::string("nope")));
    EXPECT_EQ(object.take("zeta"), JsonValue(1));
    EXPECT_TRUE(object.take(std::string("zeta")).isUndefined());
    object.remove(std::string("beta"));
    object.setValue(static_cast<const char*>(nullptr), 5);
    EXPECT_EQ(JsonDocument(object).toJson(false), "{\"\":5,\"alpha\":\"replaced\",\"mid\":null}");
    object.remove(static_cast<const char*>(nullptr));
    EXPECT_EQ(object.size(), 2);
}

TEST(JsonObjectTest, DebugTextIsBuiltByHand) {
    const JsonObject object{
        {"s", "say \"hi\""},  {"a", arrayOf({1, true})},
        {"n", JsonValue()},   {"b", JsonValue(QJsonValue(false))},
        {"ms", MAY_FIRST_MS}, {"o", JsonObject{{"x", "y"}}},
    };
    EXPECT_EQ(object.toStr(),
              "{\"a\":[1,1],\"b\":0,\"ms\":1.71457e+12,\"n\":null,"
              "\"o\":{\"x\":\"y\"},\"s\":\"say \"hi\"\"}");
}

TEST(JsonArrayTest, EditsInPlaceAndRendersElementsLikeMembers) {
    JsonArray array = arrayOf({2});
    array.prepend("first");
    array.insert(1, JsonValue(QJsonValue(true)));
    array.insert(3, JsonObject{{"k", "v"}});
    EXPECT_EQ(array.toStr(), "[\"first\",1,2,{\"k\":\"v\"}]");
    array.replace(2, 3.5);
    array.setValue(0, "zero");
    EXPECT_EQ(array.takeAt(1), JsonValue(QJsonValue(true)));
    EXPECT_EQ(JsonDocument(array).toJson(false), "[\"zero\",3.5,{\"k\":\"v\"}]");
    EXPECT_EQ(array.first().toStr() + array.value(1).toStr(), "zero4");
    EXPECT_TRUE(array.last().isObject());
    EXPECT_TRUE(array.contains(3.5));
    EXPECT_TRUE(array.at(3).isUndefined());
    array.removeFirst();
    array.removeLast();
    array.removeAt(0);
    EXPECT_TRUE(array.isEmpty());
    array.fromStringList({"a", "", "b c"});
    EXPECT_EQ(JsonDocument(array).toJson(false), "[\"a\",\"\",\"b c\"]");
}

TEST(JsonDocumentTest, CompactAndIndentedTexts) {
    const JsonDocument document(JsonObject{
        {"on", true}, {"list", arrayOf({1, "x"})}, {"name", "ups"}, {"none", JsonObject()}});
    EXPECT_EQ(document.toStr(), "{\"list\":[1,\"x\"],\"name\":\"ups\",\"none\":{},\"on\":1}");
    EXPECT_EQ(document.toJson(true),
              "{\n    \"list\": [\n        1,\n        \"x\"\n    ],\n    \"name\": \"ups\",\n"
              "    \"none\": {\n    },\n    \"on\": 1\n}\n");
    EXPECT_EQ(JsonDocument().toJson(true), "");
}

TEST(JsonDocumentTest, ParsingNeverThrowsAndFailsToANullDocument) {
    // The text, the document's compact text ("" when null), whether an object.
    const std::tuple<const char*, std::string, std::string, bool> rows[] = {
        {"object", " {\"b\": true, \"a\": [1, 2.5e3]} ", "{\"a\":[1,2500],\"b\":true}", true},
        {"array", "[\"x\",null]", "[\"x\",null]", false},
        {"unclosed brace", "{\"a\":1", "", false},
        {"empty", "", "", false},
    };
    for (const auto& [name, text, json, isObject] : rows) {
        SCOPED_TRACE(name);
        JsonDocument document(JsonObject{{"old", 1}});
        EXPECT_NO_THROW(document.fromJson(text));
        EXPECT_EQ(document.toJson(false), json);
        EXPECT_EQ(document.isNull(), json.empty());
        EXPECT_EQ(document.isObject(), isObject);
        EXPECT_EQ(document.object().isEmpty() && document.array().isEmpty(), json.empty());
    }
}

TEST(JsonDocumentTest, RawDataReadsExactlyTheGivenBytes) {
    const char text[] = "{\"id\":\"A1\"}garbage";
    JsonDocument document;
    document.fromRawData(text, 11);
    EXPECT_EQ(document, JsonDocument(JsonObject{{"id", "A1"}}));
    document.fromRawData(text, sizeof text - 1);
    EXPECT_TRUE(document.isNull());
    document = JsonObject();
    EXPECT_FALSE(document.isEmpty());  // an empty object is content
    document.fromJson(static_cast<const char*>(nullptr));
    EXPECT_TRUE(document.isEmpty());
}

}  // namespace
