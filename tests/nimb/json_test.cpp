#include <cmath>
#include <cstdlib>
#include <ctime>
#include <string>
#include <tuple>

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

TEST(JsonValueTest, StoresEachGivenTypeAsItsJson) {
    // What was given, its compact text and its type.
    const std::tuple<const char*, JsonValue, std::string, JsonValue::Type> rows[] = {
        {"bool true", JsonValue(true), "[1]", JsonValue::Double},
        {"unsigned", JsonValue(4294967295U), "[4294967295]", JsonValue::Double},
        {"long", JsonValue(5000000000L), "[5000000000]", JsonValue::Double},
        {"utf-8", JsonValue("Gr\xc3\xbc\xc3\x9f \"x\""), "[\"Gr\xc3\xbc\xc3\x9f \\\"x\\\"\"]",
         JsonValue::String},
        {"null text", JsonValue(static_cast<const char*>(nullptr)), "[\"\"]", JsonValue::String},
        {"Qt bool", JsonValue(QJsonValue(true)), "[true]", JsonValue::Bool},
        {"object", JsonValue(JsonObject{{"k", false}}), "[{\"k\":0}]", JsonValue::Object},
    };
    for (const auto& [name, value, json, type] : rows) {
        EXPECT_EQ(compact(value), json) << name;
        EXPECT_EQ(value.type(), type) << name;
    }
    // Assigning a long keeps only its low 32 bits, as a signed int.
    JsonValue assigned("previous");
    assigned = 0x1FFFFFFFFL;
    EXPECT_EQ(compact(assigned), "[-1]");
    assigned = true;
    EXPECT_EQ(compact(assigned), "[1]");
}

TEST(JsonValueTest, LenientReadersFollowTheTypeOfTheValue) {
    // The value, then what toBool, toDouble, toStr and toDateTime give; a text
    // is read as a date elsewhere.
    const std::tuple<const char*, JsonValue, bool, double, std::string, long long> rows[] = {
        {"Qt true", JsonValue(QJsonValue(true)), true, 1.0, "1", 0},
        {"zero", JsonValue(0), false, 0.0, "0", 0},
        {"-1.5", JsonValue(-1.5), true, -1.5, "-2", -1},
        {"NaN", JsonValue(std::nan("")), true, std::nan(""), "nan", 0},
        {"milliseconds", JsonValue(1714568587250.9), true, 1714568587250.9, "1714568587251",
         1714568587250LL},
        {"TRUE", JsonValue("TRUE"), true, 0.0, "TRUE", -1},
        {"text 1", JsonValue("1"), true, 1.0, "1", -1},
        {"yes", JsonValue("yes"), false, 0.0, "yes", -1},
        {"number text", JsonValue("-12.75"), false, -12.75, "-12.75", -1},
        {"missing key", JsonObject().value("absent"), false, 0.0, "", 0},
    };
    for (const auto& [name, value, asBool, asDouble, asStr, asDateTime] : rows) {
        SCOPED_TRACE(name);
        EXPECT_EQ(value.toBool(), asBool);
        const double read = value.toDouble();
        EXPECT_TRUE(read == asDouble || (std::isnan(read) && std::isnan(asDouble))) << read;
        EXPECT_EQ(value.toStr(), asStr);
        if (!value.isString()) {
            EXPECT_EQ(value.toDateTime(), asDateTime);
        }
    }
}

TEST(JsonValueTest, DateTimesAreLocalTextsWithTheCurrentZoneDesignator) {
    setZone("UTC0");
    EXPECT_EQ(JsonValue().fromDateTime(MAY_FIRST_MS, 0).toStr(), "2024-05-01T13:03:07.250Z");
    setZone("NST3:30");  // three and a half hours west of UTC
    EXPECT_EQ(JsonValue().fromDateTime(MAY_FIRST_MS, 0).toStr(), "2024-05-01T09:33:07.250-03:30");
    setZone(FIXED_TZ);
    // The offset moves the time, not the designator.
    EXPECT_EQ(JsonValue().fromDateTime(MAY_FIRST_MS, -3600000).toStr(),
              "2024-05-01T13:03:07.250+01:00");
    EXPECT_EQ(JsonValue("2024-05-01T14:03:07.250-09:30").toDateTime(), MAY_FIRST_MS);
}

// The editing calls only forward to Qt: one sequence in which a swapped or
// wrong call would change the result, then the debug text built by hand.
TEST(JsonObjectTest, EditsInPlaceAndDebugText) {
    JsonObject object{{"zeta", 1}, {"alpha", "a"}, {"mid", JsonValue()}};
    object.insert("alpha", "say \"hi\"");
    object.setValue(static_cast<const char*>(nullptr), JsonValue(QJsonValue(false)));
    EXPECT_EQ(object.take("zeta"), JsonValue(1));
    JsonArray array(QJsonArray{2, 3});
    array.prepend("first");
    array.insert(1, MAY_FIRST_MS);
    EXPECT_EQ(array.takeAt(2), JsonValue(2));
    array.replace(2, JsonObject{{"k", "v"}});
    object.setValue("list", array);
    EXPECT_EQ(object.toStr(),
              "{\"\":0,\"alpha\":\"say \"hi\"\",\"list\":[\"first\",1.71457e+12,{\"k\":\"v\"}],"
              "\"mid\":null}");
    array.removeFirst();
    object.remove("list");
    EXPECT_EQ(JsonDocument(array).toJson(false), "[1714568587250,{\"k\":\"v\"}]");
    EXPECT_EQ(JsonDocument(object).toJson(false),
              "{\"\":false,\"alpha\":\"say \\\"hi\\\"\",\"mid\":null}");
}

TEST(JsonDocumentTest, TextsAndParsingThatNeverThrows) {
    const JsonDocument document(
        JsonObject{{"on", true}, {"list", JsonArray(QJsonArray{1, "x"})}, {"none", JsonObject()}});
    EXPECT_EQ(document.toJson(true),
              "{\n    \"list\": [\n        1,\n        \"x\"\n    ],\n"
              "    \"none\": {\n    },\n    \"on\": 1\n}\n");
    // The text, the document's compact text ("" when null), whether an object.
    const std::tuple<const char*, std::string, std::string, bool> rows[] = {
        {"object", " {\"b\": true, \"a\": [1, 2.5e3]} ", "{\"a\":[1,2500],\"b\":true}", true},
        {"array", "[\"x\",null]", "[\"x\",null]", false},
        {"unclosed brace", "{\"a\":1", "", false},
    };
    for (const auto& [name, text, json, isObject] : rows) {
        SCOPED_TRACE(name);
        JsonDocument parsed(JsonObject{{"old", 1}});
        parsed.fromJson(text);  // never throws
        EXPECT_EQ(parsed.toJson(false), json);
        EXPECT_EQ(parsed.isObject(), isObject);
    }
    // Exactly the given bytes are read.
    JsonDocument raw;
    raw.fromRawData("{\"id\":\"A1\"}garbage", 11);
    EXPECT_EQ(raw, JsonDocument(JsonObject{{"id", "A1"}}));
}

}  // namespace
