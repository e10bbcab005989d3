// Suspend to disk instead of shutdown, end to end, with the power-state file
// of a private namespace.
#include "tests/service/daemon_harness.h"

namespace {

using e2e::DaemonTest;
using e2e::Isolation;
using e2e::readFile;
using e2e::simDevice;
using ::testing::HasSubstr;

e2e::SimDevice hibernating(const std::string& id, const std::string& program) {
    e2e::SimDevice device = simDevice(id, program);
    device.shutCfg.cliHibernate = 1;
    return device;
}

int lines(const std::string& path) {
    return e2e::countOf(readFile(path), "\n");
}

TEST_F(DaemonTest, HibernatesAndDoesNotTriggerAgainUntilTheDeviceLeavesTheCondition) {
    e2e::writeFile(Isolation::instance().powerState(), "freeze mem disk\n");
    const std::string ran = suite->dir() + "ran";
    suite->scenario({hibernating("UPS-A", "echo A >> '" + ran + "'")}, {{0, "UPS-A", "mainsFail"}});
    suite->launch();
    ASSERT_TRUE(suite->logHas("ShutService: <doShutdown> Suspend to disk ok.", 25000));
    const std::string log = suite->log();
    EXPECT_LT(log.find("ShutService: <doShutdown> Trying suspend to disk..."),
              log.find("ShutService: <doShutdown> Suspend to disk ok."));
    EXPECT_EQ(readFile(Isolation::instance().powerState()).substr(0, 4), "disk");
    EXPECT_EQ(lines(ran), 1);

    // Resumed: the device still meets the condition but must not trigger.
    ASSERT_TRUE(suite->ticksReach(suite->ticks() + 2, 15000));
    EXPECT_EQ(lines(ran), 1);
    EXPECT_EQ(e2e::countOf(suite->log(), "Trying suspend to disk..."), 1);

    // Mains returns (seen by a tick), then fails again: a new sequence, with
    // the program run again.
    suite->eventNow("UPS-A", "mainsReturn");
    suite->eventNow("UPS-A", "mainsFail", 4);
    ASSERT_TRUE(e2e::waitFor([&] { return lines(ran) == 2; }, 25000));
    EXPECT_TRUE(suite->logHas("ShutService: <doShutdown> Trying suspend to disk...", 15000));
    EXPECT_EQ(suite->shutdownCount(), 0);
}

TEST_F(DaemonTest, ShutsDownWhenSuspendToDiskIsNotOffered) {
    e2e::writeFile(Isolation::instance().powerState(), "freeze mem\n");
    suite->scenario({hibernating("UPS-A", "")}, {{0, "UPS-A", "mainsFail"}});
    suite->launch();
    ASSERT_TRUE(suite->shutdownCalled(25000));
    const std::string log = suite->log();
    const size_t notSupported =
        log.find("ShutService: <doShutdown> Suspend to disk not supported.\n");
    ASSERT_NE(notSupported, std::string::npos) << log;
    EXPECT_LT(notSupported, log.find("ShutService: <doShutdown> System shutdown\n"));
    EXPECT_EQ(readFile(Isolation::instance().powerState()), "freeze mem\n");
}

TEST_F(DaemonTest, ShutsDownWhenWritingThePowerStateFails) {
    Isolation& iso = Isolation::instance();
    e2e::writeFile(iso.powerState(), "freeze mem disk\n");
    ASSERT_TRUE(iso.readOnlyPowerState());
    suite->scenario({hibernating("UPS-A", "")}, {{0, "UPS-A", "mainsFail"}});
    suite->launch();
    const bool called = suite->shutdownCalled(25000);
    iso.writablePowerState();
    ASSERT_TRUE(called);
    const std::string log = suite->log();
    EXPECT_THAT(log, HasSubstr("ShutService: <doShutdown> Trying suspend to disk...\n"));
    EXPECT_THAT(log, HasSubstr("ShutService: <doShutdown> Suspend to disk failed: Error opening "
                               "</sys/power/state>: "));
    EXPECT_EQ(readFile(iso.powerState()), "freeze mem disk\n");
}

TEST_F(DaemonTest, DeviceThatVanishedFromTheListStillTriggers) {
    Isolation& iso = Isolation::instance();
    e2e::writeFile(iso.powerState(), "freeze mem disk\n");
    const std::string ran = suite->dir() + "ran";
    suite->scenario({hibernating("UPS-A", "echo A >> '" + ran + "'"), simDevice("UPS-B")},
                    {{0, "UPS-A", "mainsFail"}});
    suite->launch();
    ASSERT_TRUE(suite->logHas("Suspend to disk ok.", 25000));
    // The next shutdown goes all the way.
    e2e::writeFile(iso.powerState(), "freeze mem\n");
    // A tick after the resume sees UPS-B on mains, which ends the suppression.
    ASSERT_TRUE(suite->ticksReach(suite->ticks() + 2, 15000));
    suite->eventNow("UPS-A", "remove");
    ASSERT_TRUE(suite->shutdownCalled(20000));
    EXPECT_EQ(lines(ran), 2);
}

}  // namespace
