// The daemon's shutdown sequence, end to end: the real shutsvc, the simulated
// monitor server and the INI configuration plug-in, in a private namespace.
#include <cstdlib>

#include "tests/service/daemon_harness.h"

namespace {

using e2e::DaemonTest;
using e2e::readFile;
using e2e::simDevice;
using ::testing::HasSubstr;
using ::testing::Not;

// How long after the program started the shutdown was called, in seconds;
// both recorders write nanoseconds since the epoch.
double secondsToShutdown(const std::string& startedFile, const e2e::Suite& suite) {
    const long long started = std::atoll(readFile(startedFile).c_str());
    EXPECT_GT(started, 0) << "the program did not run";
    return (std::atoll(readFile(suite.shutdownCalls()).c_str()) - started) / 1e9;
}

TEST_F(DaemonTest, FirstDeviceInIdOrderTriggersAndItsProgramRunsThroughTheShell) {
    const std::string ran = suite->dir() + "ran";
    suite->scenario({simDevice("UPS-B", "echo B >> '" + ran + "'"),
                     simDevice("UPS-A", "echo A >> '" + ran + "'"),
                     simDevice("UPS-C", "echo C >> '" + ran + "'")},
                    {{0, "", "mainsFail"}});
    const pid_t pid = suite->launch();
    ASSERT_TRUE(suite->shutdownCalled(25000));

    EXPECT_EQ(readFile(ran), "A\n");
    EXPECT_THAT(readFile(suite->shutdownCalls()), HasSubstr(" now\n"));
    const std::string log = suite->log();
    EXPECT_THAT(log, HasSubstr("] [TRACE] {} ShutService: <start> Client connected at: <"));
    EXPECT_THAT(log, HasSubstr("ShutService: <doShutdown> System shutdown\n"));
    // Every device is fetched in id order each tick.
    const std::string journal = suite->journal();
    const size_t a = journal.find("getRegressiveCounter (null) (null) UPS-A");
    const size_t b = journal.find("getRegressiveCounter (null) (null) UPS-B");
    ASSERT_NE(a, std::string::npos) << journal;
    EXPECT_LT(a, b);
    EXPECT_LT(b, journal.find("getRegressiveCounter (null) (null) UPS-C"));
    EXPECT_THAT(journal, HasSubstr("devShutdownConfig (null) (null) UPS-A"));

    // Once the shutdown has been asked for, no tick does anything more.
    const int shutdowns = suite->shutdownCount();
    const std::string before = suite->journal();
    std::this_thread::sleep_for(std::chrono::milliseconds(6500));
    EXPECT_EQ(suite->shutdownCount(), shutdowns);
    EXPECT_EQ(e2e::countOf(suite->journal(), "getDeviceList"),
              e2e::countOf(before, "getDeviceList"));
    EXPECT_EQ(suite->wait(pid, 0), -1) << "the daemon is still running";
}

TEST_F(DaemonTest, ProgramThatOutlivesItsTimeLimitDoesNotDelayTheShutdown) {
    const std::string started = suite->dir() + "started";
    const std::string finished = suite->dir() + "finished";
    suite->scenario({simDevice("UPS-A", "date +%s%N > '" + started + "'; sleep 20; echo x > '" +
                                            finished + "'")},
                    {{0, "UPS-A", "mainsFail"}});
    suite->launch();
    ASSERT_TRUE(suite->shutdownCalled(25000));
    EXPECT_FALSE(e2e::exists(finished));
    // The next tick does the shutdown: about 3 s, far from the program's 20 s.
    EXPECT_LT(secondsToShutdown(started, *suite), 12);
}

TEST_F(DaemonTest, ShutdownWaitIsCountedFromTheProgramLaunch) {
    const std::string started = suite->dir() + "started";
    suite->scenario({simDevice("UPS-A", "date +%s%N > '" + started + "'", 4)},
                    {{0, "UPS-A", "mainsFail"}});
    suite->launch();
    ASSERT_TRUE(suite->shutdownCalled(30000));
    const double waited = secondsToShutdown(started, *suite);
    EXPECT_GT(waited, 4);
    EXPECT_LT(waited, 15);
}

TEST_F(DaemonTest, EmptyProgramSkipsTheShutdownWait) {
    // A minute's wait is configured, but with no program run since the start
    // the shutdown follows on the next tick.
    suite->scenario({simDevice("UPS-A", "", 60)}, {{0, "UPS-A", "mainsFail"}});
    suite->launch();
    EXPECT_TRUE(suite->shutdownCalled(25000));
}

TEST_F(DaemonTest, DisabledClientShutdownNeverShutsDown) {
    const std::string ran = suite->dir() + "ran";
    e2e::SimDevice device = simDevice("UPS-A", "echo A >> '" + ran + "'");
    device.shutCfg.cliShutEnabled = 0;
    suite->scenario({device}, {{0, "UPS-A", "mainsFail"}});
    suite->launch();
    // The device is examined again every tick, without effect.
    ASSERT_TRUE(suite->ticksReach(3, 25000));
    EXPECT_EQ(suite->shutdownCount(), 0);
    EXPECT_FALSE(e2e::exists(ran));
    EXPECT_THAT(suite->log(), Not(HasSubstr("<doShutdown>")));
}

TEST_F(DaemonTest, DeviceStartingUpOrDisconnectedDoesNotTrigger) {
    suite->scenario({simDevice("UPS-A"), simDevice("UPS-B")},
                    {{0, "", "mainsFail"}, {0, "UPS-A", "startupOn"}, {0, "UPS-B", "disconnect"}});
    suite->launch();
    ASSERT_TRUE(e2e::waitFor(
        [&] { return e2e::countOf(suite->log(), "ShutService: <onTimer> regressive: {") >= 4; },
        25000));
    EXPECT_EQ(suite->shutdownCount(), 0);
    suite->eventNow("UPS-B", "reconnect");
    EXPECT_TRUE(suite->shutdownCalled(20000));
}

}  // namespace
