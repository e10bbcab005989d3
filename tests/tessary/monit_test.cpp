#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "nimb/json.h"
#include "tessary/monit.h"
#include "tests/support.h"

using nimb::JsonObject;
using namespace tessary;

using support::compact;
using support::parsed;

namespace {

TEST(ComputerTest, TextJsonAndEmptiness) {
    const Computer cleared;
    EXPECT_EQ(compact(cleared.toJson()),
              "{\"apiVersion\":\"\",\"hostname\":\"\",\"ip\":\"\",\"monVersion\":\"\","
              "\"osVersion\":\"\",\"port\":0,\"upTime\":0}");

    const JsonObject json = parsed(R"({"monVersion": "3.1.0", "apiVersion": "2",
        "osVersion": "Linux 6.1", "hostname": "rack-7", "ip": "10.0.0.7", "port": 4470,
        "upTime": 86400123456})");
    Computer computer;
    computer.fromJson(json);
    EXPECT_TRUE(cleared.empty() && !computer.empty());
    EXPECT_EQ(computer.toString(),
              "monVersion=3.1.0,apiVersion=2,osVersion=Linux 6.1,hostname=rack-7,ip=10.0.0.7,"
              "port=4470,upTime=86400123456");
    EXPECT_EQ(computer.toJson(), json);

    // Reading clears first and truncates numbers toward zero (see the
    // countdown's reading for numbers beyond the range); 0 reads unknown.
    computer.fromJson(parsed(R"({"port": 0.9, "upTime": -2.5})"));
    EXPECT_EQ(computer.toString(),
              "monVersion=<unknown>,apiVersion=<unknown>,osVersion=<unknown>,"
              "hostname=<unknown>,ip=<unknown>,port=<unknown>,upTime=-2");
}

TEST(MonitDataTest, TextFormAndClear) {
    const std::string cleared = MonitData().toString();
    EXPECT_THAT(cleared, ::testing::EndsWith("},remoteCtrlTimer = -1"));
    MonitData data;
    data.actualState.id = "NOW";
    data.oldState.id = "BEFORE";
    data.config.family = 3;
    data.shutCfg.cliShutTimer = 60;
    data.regressiveCounter.start(ShutdownCause::Manual, 5000);
    data.actualRegressive.start(6000);
    data.oldRegressive.start(7000);
    data.remoteCtrlTimer = 1234;
    // The single countdowns come before the counter.
    EXPECT_EQ(data.toString(), "actualState: {" + data.actualState.toStr() + "},oldState: {" +
                                   data.oldState.toStr() + "},config: {" + data.config.toStr() +
                                   "},shutCfg: {" + data.shutCfg.toStr() + "},actualRegressive: {" +
                                   data.actualRegressive.toStr() + "},oldRegressive: {" +
                                   data.oldRegressive.toStr() + "},regressiveCounter: {" +
                                   data.regressiveCounter.toStr() + "},remoteCtrlTimer = 1234");

    data.clear();
    EXPECT_EQ(data.toString(), cleared);
}

// Both directions of a change, in both blocks, at their first and last bits;
// only the last update counts.
TEST(MonitFlagsComparatorTest, EachChangeLandsInItsOwnResult) {
    Device before, after;
    before.fail.overtemp = after.fail.abnormalVBattery = true;
    before.flags.connected = after.flags.noCalibrated = true;
    MonitFlagsComparator c;
    c.update(after, before);
    c.update(before, after);
    EXPECT_EQ(c.getFailOn(), after.fail);
    EXPECT_EQ(c.getFailOff(), before.fail);
    EXPECT_EQ(c.getFlagsOn(), after.flags);
    EXPECT_EQ(c.getFlagsOff(), before.flags);
    // A bit that stays set is no change.
    c.update(after, after);
    EXPECT_EQ(c.getFailOn(), DeviceFailFlags());
    EXPECT_EQ(c.getFlagsOn(), DeviceFlags());
}

}  // namespace
