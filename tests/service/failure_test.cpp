// How the daemon rides out failures of the monitor server and of the
// shutdown command, end to end.
#include "tests/service/daemon_harness.h"

namespace {

using e2e::DaemonTest;
using e2e::Isolation;
using e2e::readFile;
using e2e::simDevice;
using ::testing::HasSubstr;

TEST_F(DaemonTest, FailingShutdownCommandResetsTheSequenceAndSupervisesAgain) {
    ASSERT_TRUE(Isolation::instance().shutdownShellFailsOnce());
    const std::string ran = suite->dir() + "ran";
    suite->scenario({simDevice("UPS-A", "echo A >> '" + ran + "'")}, {{0, "UPS-A", "mainsFail"}});
    suite->launch();
    // From scratch after the failure: the device triggers again, its program
    // runs again, and the second shutdown goes through.
    ASSERT_TRUE(suite->shutdownCalled(45000));
    EXPECT_EQ(readFile(ran), "A\nA\n");
    // The code is the shell's wait status: exit status 3.
    EXPECT_THAT(suite->log(), HasSubstr("[ERROR] {} ShutService: <doShutdown> Shutdown failed: "
                                        "Shutdown invocation error <shutdown now&>. Code: 768\n"));
}

TEST_F(DaemonTest, MonitorFailureIsLoggedAndSupervisionGoesOnWhenItRecovers) {
    suite->scenario({simDevice("UPS-A")},
                    {{0, "", "serverDown"}, {0, "UPS-A", "mainsFail"}, {7, "", "serverUp"}});
    suite->launch();
    ASSERT_TRUE(
        suite->logHas("[ERROR] {} ShutService: <onTimer> Error calling devices in libCLient: "
                      "Error executing libclient::getDeviceList().\n",
                      20000))
        << suite->log();
    EXPECT_EQ(suite->ticks(), 0);
    EXPECT_TRUE(suite->shutdownCalled(25000));
}

TEST_F(DaemonTest, DeviceReadFailureClearsTheDataAndDecidesNothing) {
    // UPS-A is stored first and meets the condition, then UPS-Z cannot be read.
    suite->scenario({simDevice("UPS-A"), simDevice("UPS-Z")},
                    {{0, "UPS-A", "mainsFail"}, {0, "UPS-Z", "readFail"}});
    suite->launch();
    ASSERT_TRUE(
        suite->logHas("[ERROR] {} ShutService: <onTimer> Error getting device info: "
                      "Error executing libclient::getRegressiveCounter().\n",
                      20000))
        << suite->log();
    std::this_thread::sleep_for(std::chrono::milliseconds(4000));
    EXPECT_EQ(suite->ticks(), 0);
    EXPECT_EQ(suite->shutdownCount(), 0);

    suite->eventNow("UPS-Z", "readOk");
    EXPECT_TRUE(suite->shutdownCalled(20000));
}

TEST_F(DaemonTest, EmptyDeviceListLeavesTheDataAndDecidesNothing) {
    // Seen once with time to go, then the server lists nothing while the
    // countdown would run out.
    suite->scenario({simDevice("UPS-A", "", 0, 6)},
                    {{0, "UPS-A", "mainsFail"}, {4, "UPS-A", "remove"}});
    suite->launch();
    ASSERT_TRUE(suite->ticksReach(1, 15000));
    std::this_thread::sleep_for(std::chrono::milliseconds(8000));
    EXPECT_EQ(suite->ticks(), 1) << suite->log();
    EXPECT_EQ(suite->shutdownCount(), 0);

    suite->eventNow("UPS-A", "restore");
    EXPECT_TRUE(suite->shutdownCalled(20000));
}

}  // namespace
