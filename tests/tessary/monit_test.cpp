#include <string>

#include <gtest/gtest.h>

#include "nimb/json.h"
#include "tessary/monit.h"
#include "tests/support.h"

using nimb::JsonDocument;
using nimb::JsonObject;
using tessary::Computer;
using tessary::Device;
using tessary::DeviceFailFlags;
using tessary::DeviceFlags;
using tessary::MonitData;
using tessary::MonitFlagsComparator;
using tessary::ShutdownCause;

using support::compact;
using support::parsed;

namespace {

Computer filledComputer() {
    Computer computer;
    computer.monVersion = "3.1.0";
    computer.apiVersion = "2";
    computer.osVersion = "Linux 6.1";
    computer.hostname = "rack-7";
    computer.ip = "10.0.0.7";
    computer.port = 4470;
    computer.upTime = 86400123456LL;
    return computer;
}

template <typename Flags>
int countBits(const Flags& flags) {
    int n = 0;
    for (int i = 0; i < Flags::COUNT; ++i)
        n += flags.bit(i) ? 1 : 0;
    return n;
}

// Runs update() on two devices that differ only in one bit of one block.
template <typename Flags>
MonitFlagsComparator compared(Flags Device::*block, int bit, bool before, bool now) {
    Device oldDevice;
    Device newDevice;
    (oldDevice.*block).setBit(bit, before);
    (newDevice.*block).setBit(bit, now);
    MonitFlagsComparator comparator;
    comparator.update(oldDevice, newDevice);
    return comparator;
}

}  // namespace

// ---- Computer ---------------------------------------------------------------

TEST(ComputerTest, TextFormWritesUnknownValuesAsUnknown) {
    EXPECT_TRUE(Computer().empty());
    EXPECT_EQ(Computer().toString(),
              "monVersion=<unknown>,apiVersion=<unknown>,osVersion=<unknown>,"
              "hostname=<unknown>,ip=<unknown>,port=<unknown>,upTime=<unknown>");
    EXPECT_EQ(filledComputer().toString(),
              "monVersion=3.1.0,apiVersion=2,osVersion=Linux 6.1,hostname=rack-7,ip=10.0.0.7,"
              "port=4470,upTime=86400123456");
}

TEST(ComputerTest, AnySingleValueMakesItNonEmpty) {
    void (*const changes[])(Computer&) = {
        [](Computer& c) { c.monVersion = "1"; }, [](Computer& c) { c.apiVersion = "1"; },
        [](Computer& c) { c.osVersion = "1"; },  [](Computer& c) { c.hostname = "h"; },
        [](Computer& c) { c.ip = "::1"; },       [](Computer& c) { c.port = -1; },
        [](Computer& c) { c.upTime = 1; },
    };
    for (auto change : changes) {
        Computer computer;
        change(computer);
        EXPECT_FALSE(computer.empty()) << computer.toString();
        computer.clear();
        EXPECT_TRUE(computer.empty());
    }
}

TEST(ComputerTest, JsonCarriesAllSevenMembersAndRoundTrips) {
    EXPECT_EQ(compact(Computer().toJson()),
              "{\"apiVersion\":\"\",\"hostname\":\"\",\"ip\":\"\",\"monVersion\":\"\","
              "\"osVersion\":\"\",\"port\":0,\"upTime\":0}");
    const Computer computer = filledComputer();
    Computer back;
    back.fromJson(parsed(compact(computer.toJson())));
    EXPECT_EQ(back, computer);
    EXPECT_EQ(Computer(back), computer);
}

TEST(ComputerTest, LenientReadingTruncatesNumbersAndDefaultsMissingKeys) {
    Computer computer = filledComputer();
    computer.fromJson(parsed("{\"hostname\": \"a\", \"port\": 80.9, \"upTime\": -2.5}"));
    EXPECT_EQ(computer.hostname, "a");
    EXPECT_EQ(computer.monVersion, "");
    EXPECT_EQ(computer.port, 80);
    EXPECT_EQ(computer.upTime, -2);
    computer.fromJson(parsed("{\"port\": \"4471\", \"upTime\": 1e30}"));
    EXPECT_EQ(computer.port, 4471);
    EXPECT_EQ(computer.upTime, INT64_MAX);
}

// ---- MonitData --------------------------------------------------------------

TEST(MonitDataTest, TextFormPutsTheSingleCountdownsBeforeTheCounter) {
    MonitData data;
    data.actualState.id = "NOW";
    data.oldState.id = "BEFORE";
    data.actualRegressive = tessary::Regressive(ShutdownCause::LoBattery);
    data.oldRegressive = tessary::Regressive(ShutdownCause::Failure);
    data.remoteCtrlTimer = 1234;
    EXPECT_EQ(data.toString(), "actualState: {" + data.actualState.toStr() + "},oldState: {" +
                                   data.oldState.toStr() + "},config: {" + data.config.toStr() +
                                   "},shutCfg: {" + data.shutCfg.toStr() + "},actualRegressive: {" +
                                   data.actualRegressive.toStr() + "},oldRegressive: {" +
                                   data.oldRegressive.toStr() + "},regressiveCounter: {" +
                                   data.regressiveCounter.toStr() + "},remoteCtrlTimer = 1234");
    const std::string text = data.toString();
    EXPECT_LT(text.find("id=NOW"), text.find("id=BEFORE"));
    EXPECT_LT(text.find("cause=LoBattery"), text.find("cause=Failure"));
}

TEST(MonitDataTest, ClearResetsEveryMemberAndCopiesTakeEveryMember) {
    const std::string cleared = MonitData().toString();
    const std::string tail = "remoteCtrlTimer = -1";
    EXPECT_EQ(cleared.substr(cleared.size() - tail.size()), tail);

    MonitData data;
    data.actualState.id = "UPS1";
    data.oldState.family = 7;
    data.config.family = 3;
    data.shutCfg.cliShutTimer = 60;
    data.regressiveCounter.start(ShutdownCause::Manual, 5000);
    data.actualRegressive.start(5000);
    data.oldRegressive.start(7000);
    data.remoteCtrlTimer = 99;

    MonitData copy;
    copy = data;
    EXPECT_EQ(copy.toString(), data.toString());
    EXPECT_EQ(MonitData(data).toString(), data.toString());
    EXPECT_EQ(copy.regressiveCounter, data.regressiveCounter);
    EXPECT_EQ(copy.oldRegressive, data.oldRegressive);

    copy.clear();
    EXPECT_EQ(copy.toString(), cleared);
    EXPECT_FALSE(copy.regressiveCounter.isActive(ShutdownCause::Manual));
    EXPECT_EQ(copy.actualRegressive.value(), -1);
    // The copy was deep: clearing it left the original alone.
    EXPECT_EQ(data.remoteCtrlTimer, 99);
    EXPECT_TRUE(data.regressiveCounter.isActive(ShutdownCause::Manual));
}

// ---- MonitFlagsComparator ---------------------------------------------------

TEST(MonitFlagsComparatorTest, EachBitTransitionLandsInExactlyOneResult) {
    struct Row {
        bool before, now, on, off;
    };
    const Row rows[] = {
        {false, false, false, false},
        {false, true, true, false},
        {true, false, false, true},
        {true, true, false, false},
    };
    for (const Row& row : rows) {
        for (int bit = 0; bit < DeviceFailFlags::COUNT; ++bit) {
            const MonitFlagsComparator c = compared(&Device::fail, bit, row.before, row.now);
            EXPECT_EQ(c.getFailOn().bit(bit), row.on) << DeviceFailFlags::name(bit);
            EXPECT_EQ(c.getFailOff().bit(bit), row.off) << DeviceFailFlags::name(bit);
            EXPECT_EQ(countBits(c.failOn) + countBits(c.failOff) + countBits(c.flagsOn) +
                          countBits(c.flagsOff),
                      row.on || row.off ? 1 : 0);
        }
        for (int bit = 0; bit < DeviceFlags::COUNT; ++bit) {
            const MonitFlagsComparator c = compared(&Device::flags, bit, row.before, row.now);
            EXPECT_EQ(c.getFlagsOn().bit(bit), row.on) << DeviceFlags::name(bit);
            EXPECT_EQ(c.getFlagsOff().bit(bit), row.off) << DeviceFlags::name(bit);
            EXPECT_EQ(countBits(c.failOn) + countBits(c.failOff) + countBits(c.flagsOn) +
                          countBits(c.flagsOff),
                      row.on || row.off ? 1 : 0);
        }
    }
}

TEST(MonitFlagsComparatorTest, ResultsHoldOnlyTheFlagTransitionsOfTheLastUpdate) {
    Device before;
    before.flags.opBattery = true;
    before.fail.overload = true;
    Device after = before;
    after.id = "OTHER";
    after.vars.vInput = 230.0f;
    after.flags.opBattery = false;
    after.fail.fan = true;

    MonitFlagsComparator comparator;
    comparator.update(before, after);
    EXPECT_TRUE(comparator.getFlagsOff().opBattery);
    EXPECT_TRUE(comparator.getFailOn().fan);
    EXPECT_EQ(countBits(comparator.flagsOn) + countBits(comparator.flagsOff) +
                  countBits(comparator.failOn) + countBits(comparator.failOff),
              2);
    comparator.update(after, after);
    EXPECT_EQ(comparator.getFlagsOff(), DeviceFlags());
    EXPECT_EQ(comparator.getFailOn(), DeviceFailFlags());
}
