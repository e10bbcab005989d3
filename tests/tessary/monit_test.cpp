#include <cstdint>
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

const char* const COMPUTER_JSON = R"({"monVersion": "3.1.0", "apiVersion": "2",
    "osVersion": "Linux 6.1", "hostname": "rack-7", "ip": "10.0.0.7", "port": 4470,
    "upTime": 86400123456})";

template <typename Flags>
int countBits(const Flags& flags) {
    int n = 0;
    for (int i = 0; i < Flags::COUNT; ++i)
        n += flags.bit(i) ? 1 : 0;
    return n;
}

// The number of bits set in all four results.
int transitions(const MonitFlagsComparator& c) {
    return countBits(c.failOn) + countBits(c.failOff) + countBits(c.flagsOn) +
           countBits(c.flagsOff);
}

// Compares a cleared device with one that has a single bit set, both ways
// and with itself, for every bit of the block.
template <typename Flags>
void expectEachTransition(Flags Device::*block, Flags (MonitFlagsComparator::*on)() const,
                          Flags (MonitFlagsComparator::*off)() const) {
    for (int bit = 0; bit < Flags::COUNT; ++bit) {
        Device cleared, set;
        (set.*block).setBit(bit, true);
        MonitFlagsComparator c;
        c.update(cleared, set);
        EXPECT_TRUE((c.*on)().bit(bit) && transitions(c) == 1) << Flags::name(bit);
        c.update(set, cleared);
        EXPECT_TRUE((c.*off)().bit(bit) && transitions(c) == 1) << Flags::name(bit);
        // Only the last update counts, and a bit that stays set is no transition.
        c.update(set, set);
        EXPECT_EQ(transitions(c), 0) << Flags::name(bit);
    }
}

TEST(ComputerTest, TextJsonAndEmptiness) {
    const Computer cleared;
    EXPECT_TRUE(cleared.empty());
    EXPECT_EQ(cleared.toString(),
              "monVersion=<unknown>,apiVersion=<unknown>,osVersion=<unknown>,"
              "hostname=<unknown>,ip=<unknown>,port=<unknown>,upTime=<unknown>");
    EXPECT_EQ(compact(cleared.toJson()),
              "{\"apiVersion\":\"\",\"hostname\":\"\",\"ip\":\"\",\"monVersion\":\"\","
              "\"osVersion\":\"\",\"port\":0,\"upTime\":0}");

    const JsonObject json = parsed(COMPUTER_JSON);
    Computer computer;
    computer.fromJson(json);
    EXPECT_EQ(computer.toString(),
              "monVersion=3.1.0,apiVersion=2,osVersion=Linux 6.1,hostname=rack-7,ip=10.0.0.7,"
              "port=4470,upTime=86400123456");
    EXPECT_EQ(computer.toJson(), json);
    EXPECT_EQ(Computer(computer), computer);
    for (const std::string& key : json.keys()) {
        Computer one;
        one.fromJson(JsonObject{{key, json.value(key)}});
        EXPECT_FALSE(one.empty()) << key;
        one.clear();
        EXPECT_EQ(one, cleared);
    }

    // Reading clears first and truncates numbers toward zero.
    computer.fromJson(parsed(R"({"hostname": "a", "port": 80.9, "upTime": -2.5})"));
    EXPECT_EQ(computer.toString(),
              "monVersion=<unknown>,apiVersion=<unknown>,osVersion=<unknown>,hostname=a,"
              "ip=<unknown>,port=80,upTime=-2");
    computer.fromJson(parsed(R"({"port": "4471", "upTime": 1e30})"));
    EXPECT_EQ(computer.port, 4471);
    EXPECT_EQ(computer.upTime, INT64_MAX);
}

TEST(MonitDataTest, TextFormCopiesAndClear) {
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
    const std::string text = data.toString();
    EXPECT_EQ(text, "actualState: {" + data.actualState.toStr() + "},oldState: {" +
                        data.oldState.toStr() + "},config: {" + data.config.toStr() +
                        "},shutCfg: {" + data.shutCfg.toStr() + "},actualRegressive: {" +
                        data.actualRegressive.toStr() + "},oldRegressive: {" +
                        data.oldRegressive.toStr() + "},regressiveCounter: {" +
                        data.regressiveCounter.toStr() + "},remoteCtrlTimer = 1234");

    MonitData copy;
    copy = data;
    EXPECT_EQ(copy.toString(), text);
    EXPECT_EQ(MonitData(data).toString(), text);
    EXPECT_EQ(copy.regressiveCounter, data.regressiveCounter);
    copy.clear();
    EXPECT_EQ(copy.toString(), cleared);
    EXPECT_FALSE(copy.regressiveCounter.isActive(ShutdownCause::Manual));
    // The copy was deep: clearing it left the original alone.
    EXPECT_EQ(data.toString(), text);
}

TEST(MonitFlagsComparatorTest, EachBitTransitionLandsInExactlyOneResult) {
    expectEachTransition(&Device::fail, &MonitFlagsComparator::getFailOn,
                         &MonitFlagsComparator::getFailOff);
    expectEachTransition(&Device::flags, &MonitFlagsComparator::getFlagsOn,
                         &MonitFlagsComparator::getFlagsOff);
}

}  // namespace
