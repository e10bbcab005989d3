// The daemon's shutdown sequence, end to end: the real shutsvc, the simulated
// monitor server and the INI configuration plug-in, in a private namespace.
#include <cstdlib>

#include "tests/service/daemon_harness.h"

namespace {

using e2e::DaemonTest;
using e2e::readFile;
using e2e::simDevice;

// Nanoseconds since the epoch, as the recording commands write them.
long long firstNumber(const std::string& text) { return std::atoll(text.c_str()); }

TEST_F(DaemonTest, FirstDeviceInIdOrderTriggersAndItsProgramRunsThroughTheShell) {
    const std::string ran = suite->dir() + "ran";
    suite->scenario({simDevice("UPS-B", "echo B >> '" + ran + "'"),
                     simDevice("UPS-A", "echo A >> '" + ran + "'"),
                     simDevice("UPS-C", "echo C >> '" + ran + "'")},
                    {{0, "", "mainsFail"}});
    const pid_t pid = suite->launch();
    ASSERT_TRUE(suite->shutdownCalled(25000));

    EXPECT_EQ(readFile(ran), "A\n");
    const std::string calls = readFile(suite->shutdownCalls());
    EXPECT_NE(calls.find(" now\n"), std::string::npos) << calls;
    const std::string log = suite->log();
    EXPECT_NE(log.find("] [TRACE] "), std::string::npos);
    EXPECT_NE(log.find("ShutService: <start> Client connected at: <"), std::string::npos);
    EXPECT_NE(log.find("ShutService: <doShutdown> System shutdown\n"), std::string::npos);
    // Every device is fetched in id order each tick.
    const std::string journal = suite->journal();
    const size_t a = journal.find("getRegressiveCounter (null) (null) UPS-A");
    const size_t b = journal.find("getRegressiveCounter (null) (null) UPS-B");
    const size_t c = journal.find("getRegressiveCounter (null) (null) UPS-C");
    ASSERT_NE(a, std::string::npos) << journal;
    EXPECT_LT(a, b);
    EXPECT_LT(b, c);
    EXPECT_NE(journal.find("devShutdownConfig (null) (null) UPS-A"), std::string::npos);

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
    suite->scenario({simDevice("UPS-A",
                               "date +%s%N > '" + started + "'; sleep 20; echo x > '" +
                                   finished + "'",
                               0)},
                    {{0, "UPS-A", "mainsFail"}});
    suite->launch();
    ASSERT_TRUE(suite->shutdownCalled(25000));
    EXPECT_FALSE(e2e::exists(finished));
    const long long launchedAt = firstNumber(readFile(started));
    const long long shutdownAt = firstNumber(readFile(suite->shutdownCalls()));
    ASSERT_GT(launchedAt, 0);
    // The next tick does the shutdown: about 3 s, far from the program's 20 s.
    EXPECT_LT(shutdownAt - launchedAt, 12'000'000'000LL);
}

TEST_F(DaemonTest, ShutdownWaitIsCountedFromTheProgramLaunch) {
    const std::string started = suite->dir() + "started";
    suite->scenario({simDevice("UPS-A", "date +%s%N > '" + started + "'", 4)},
                    {{0, "UPS-A", "mainsFail"}});
    suite->launch();
    ASSERT_TRUE(suite->shutdownCalled(30000));
    const long long launchedAt = firstNumber(readFile(started));
    const long long shutdownAt = firstNumber(readFile(suite->shutdownCalls()));
    ASSERT_GT(launchedAt, 0);
    EXPECT_GT(shutdownAt - launchedAt, 4'000'000'000LL);
    EXPECT_LT(shutdownAt - launchedAt, 15'000'000'000LL);
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
    ASSERT_TRUE(e2e::waitFor(
        [&] { return e2e::countOf(suite->log(), "ShutService: <onTimer> status: {") >= 3; },
        25000));
    EXPECT_EQ(suite->shutdownCount(), 0);
    EXPECT_FALSE(e2e::exists(ran));
    EXPECT_EQ(suite->log().find("<doShutdown>"), std::string::npos);
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
