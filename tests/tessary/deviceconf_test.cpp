#include "tessary/deviceconf.h"

#include <gtest/gtest.h>

using tessary::DeviceCapabilities;
using tessary::DeviceConfig;

namespace {

TEST(DeviceConfigTest, ClearedRecordEncodes)
{
    const DeviceConfig config;
    const std::string json = nimb::JsonDocument(config.toJson()).toJson(false);
    EXPECT_NE(std::string::npos, json.find("\"family\":-1"));
    EXPECT_NE(std::string::npos, json.find("\"model\":-1"));
    EXPECT_NE(std::string::npos, json.find("\"name\":\"AUTO\""));
    const nimb::JsonObject caps = config.toJson().value("caps").toObject();
    EXPECT_EQ(31, caps.size());
    for (const std::string& key : caps.keys())
        EXPECT_EQ(0.0, caps.value(key).toDouble()) << key;
    EXPECT_TRUE(caps.contains("hasStandby"));
    EXPECT_FALSE(caps.contains("hasStandBy"));
}

TEST(DeviceConfigTest, RoundTripLosesOnlyStandBy)
{
    DeviceConfig config;
    config.family = 3;
    config.model = 12;
    config.name = "Box";
    config.caps.hasCBattery = true;
    config.caps.hasStandBy = true;
    config.caps.hasSetLineSens = true;
    DeviceConfig back;
    back.fromJson(config.toJson());
    EXPECT_EQ(3, back.family);
    EXPECT_EQ(12, back.model);
    EXPECT_EQ("Box", back.name);
    EXPECT_TRUE(back.caps.hasCBattery);
    EXPECT_TRUE(back.caps.hasSetLineSens);
    EXPECT_FALSE(back.caps.hasStandBy);

    nimb::JsonObject peer;
    peer.setValue("hasStandBy", nimb::JsonValue(1));
    DeviceCapabilities caps;
    caps.fromJson(peer);
    EXPECT_TRUE(caps.hasStandBy);
}

TEST(DeviceConfigTest, MissingKeysReadAsZero)
{
    DeviceConfig config;
    config.fromJson(nimb::JsonObject());
    EXPECT_EQ(0, config.family);
    EXPECT_EQ("", config.name);
    EXPECT_EQ(DeviceCapabilities().toString(), config.caps.toString());
}

TEST(DeviceConfigTest, TextForm)
{
    DeviceConfig config;
    config.caps.hasCBattery = true;
    config.ranges.push_back({16, 4});
    config.vars["vin"] = {"vin", 2, -1};
    const std::string text = config.toString();
    EXPECT_EQ(0u, text.find("Family = -1\nModel  = -1\nName   = AUTO\n"
                            "Caps   : {hasCBattery = 1, hasChangeAutonomy = 0"));
    EXPECT_NE(std::string::npos, text.find("hasStandBy = 0"));
    EXPECT_NE(std::string::npos, text.find("Ranges : [{Start = 16, Size = 4}]\n"));
    EXPECT_NE(std::string::npos, text.find("Vars   : [{Name = vin, Pos = 2, bit = -1}]\n"));
    EXPECT_NE(std::string::npos, text.find("Actions: []\n"));
}

}  // namespace
