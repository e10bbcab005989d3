#include "tessary/deviceconf.h"
#include "tests/support.h"

#include <gtest/gtest.h>

using namespace tessary;
using nimb::JsonObject;
using support::compact;

namespace {

// Every flag but the last, cleared, in declared order.
const std::string CAPS_BUT_LAST =
    "hasCBattery = 0, hasChangeAutonomy = 0, hasFOutput = 0, hasFamily = 0, "
    "hasICBattery = 0, hasLineSens = 0, hasIOutput = 0, hasManualShutdown = 0, "
    "hasStandBy = 0, hasModel = 0, hasNightOff = 0, hasNominalFOutput = 0, "
    "hasNominalPOutput = 0, hasNominalVBattery = 0, hasNominalVInput = 0, "
    "hasNominalVOutput = 0, hasPOutput = 0, hasPowerLook = 0, hasSampIOutput = 0, "
    "hasSampVInput = 0, hasSampVOutput = 0, hasSetDischargeBattery = 0, hasSetICBattery = 0, "
    "hasShutdownTimer = 0, hasTemperature = 0, hasVBattery = 0, hasVInput = 0, "
    "hasVOutput = 0, hasVersion = 0, hasWakeUp = 0, hasSetLineSens = ";

TEST(DeviceConfigTest, TextFormAndMissingKeys) {
    DeviceConfig config;
    config.caps.hasSetLineSens = true;
    config.ranges = {{16, 4}, {32, 2}};
    config.vars["vin"] = {"vin", 2, -1};
    config.actions["off"] = {"off", "S01"};
    EXPECT_EQ("Family = -1\nModel  = -1\nName   = AUTO\nCaps   : {" + CAPS_BUT_LAST +
                  "1}\nRanges : [{Start = 16, Size = 4},{Start = 32, Size = 2}]\nAliases: []\n"
                  "Consts : []\nVars   : [{Name = vin, Pos = 2, bit = -1}]\nFlags  : []\n"
                  "Actions: [{Name = off, Value = S01}]\n",
              config.toString());
    // Reading clears the tables too; missing keys read as 0 or empty.
    config.fromJson(JsonObject());
    EXPECT_EQ("Family = 0\nModel  = 0\nName   = \nCaps   : {" + CAPS_BUT_LAST +
                  "0}\nRanges : []\nAliases: []\nConsts : []\nVars   : []\nFlags  : []\n"
                  "Actions: []\n",
              config.toString());
}

TEST(DeviceConfigTest, JsonWritesHasStandbyButReadsHasStandBy) {
    JsonObject json = DeviceConfig().toJson();
    const JsonObject caps = json.take("caps").toObject();
    EXPECT_EQ("{\"family\":-1,\"model\":-1,\"name\":\"AUTO\"}", compact(json));
    EXPECT_EQ(31, caps.size());
    EXPECT_EQ("{\"hasStandby\":0}", compact(JsonObject{{"hasStandby", caps.value("hasStandby")}}));

    DeviceConfig config;
    config.family = 3;
    config.model = 12;
    config.name = "Box";
    config.caps.hasCBattery = config.caps.hasStandBy = config.caps.hasSetLineSens = true;
    DeviceConfig back;
    back.fromJson(config.toJson());
    config.caps.hasStandBy = false;  // lost on the way back
    EXPECT_EQ(config.toString(), back.toString());

    // A peer that writes "hasStandBy" is read correctly.
    back.caps.fromJson(JsonObject{{"hasStandBy", 1}});
    EXPECT_TRUE(back.caps.hasStandBy);
}

}  // namespace
