// The daemon as a process: detaching, the lock file, a second instance,
// SIGTERM, the command line and failures to start.
#include "tests/service/daemon_harness.h"

namespace {

using e2e::DaemonTest;
using e2e::exitCode;
using e2e::Isolation;
using e2e::readFile;
using e2e::simDevice;
using ::testing::HasSubstr;
using ::testing::Not;

bool alive(pid_t pid) {
    return kill(pid, 0) == 0;
}

TEST_F(DaemonTest, DaemonHoldsTheLockRefusesASecondInstanceAndStopsOnSigterm) {
    // A longer earlier content keeps its tail: the file is not truncated.
    e2e::writeFile(Isolation::instance().lockFile(), "xxxxxxxxxxxxxxxxxxxx");
    suite->scenario({simDevice("UPS-A")}, {});
    const pid_t launcher = suite->launch({});
    EXPECT_EQ(exitCode(suite->wait(launcher)), 0);
    ASSERT_TRUE(suite->logHas("ShutService: <start> Client connected at: <", 15000));

    const std::string content = readFile(Isolation::instance().lockFile());
    const size_t digits = content.find('x');
    ASSERT_TRUE(digits > 0 && digits != std::string::npos) << content;
    EXPECT_EQ(content.substr(digits), std::string(20 - digits, 'x'));
    const pid_t daemon = static_cast<pid_t>(std::atoi(content.c_str()));
    EXPECT_NE(daemon, launcher);
    EXPECT_TRUE(alive(daemon));

    // A second instance: its launcher exits 0, and the detached child finds
    // the lock taken and leaves quietly with 0 too. Its message is a trace
    // line of the service's first logger, which writes only fatal lines, so
    // the log does not show it.
    EXPECT_EQ(exitCode(suite->wait(suite->launch({}))), 0);
    const auto [refused, refusedStatus] = suite->waitAny();
    ASSERT_GT(refused, 0);
    EXPECT_NE(refused, daemon);
    EXPECT_EQ(exitCode(refusedStatus), 0);
    EXPECT_TRUE(alive(daemon));
    EXPECT_EQ(e2e::countOf(suite->log(), "Client connected at:"), 1);

    // SIGTERM: a clean stop with exit status 0.
    kill(daemon, SIGTERM);
    EXPECT_EQ(exitCode(suite->wait(daemon)), 0);
    EXPECT_THAT(suite->log(), HasSubstr("[TRACE] {} ShutService: <stop> Client disconnected\n"));
    EXPECT_THAT(suite->journal(), HasSubstr("disconnectCli"));
}

TEST_F(DaemonTest, LockFileThatCannotBeOpenedEndsTheDaemonWithStatusOne) {
    ASSERT_EQ(mkdir(Isolation::instance().lockFile().c_str(), 0755), 0);
    suite->scenario({simDevice("UPS-A")}, {});
    EXPECT_EQ(exitCode(suite->wait(suite->launch({}))), 0);
    const auto [child, childStatus] = suite->waitAny();
    ASSERT_GT(child, 0);
    EXPECT_EQ(exitCode(childStatus), 1);
    EXPECT_THAT(suite->log(), Not(HasSubstr("Client connected")));
}

TEST_F(DaemonTest, ForkFailureIsAFatalLineAndExitStatusOne) {
    // The daemon runs as a user that may start no process: its log folder
    // must exist already, since making it takes a shell too.
    chmod(Isolation::instance().root().c_str(), 0755);
    const std::string logDir = suite->dir() + "log";
    mkdir(logDir.c_str(), 0777);
    chmod(logDir.c_str(), 0777);
    suite->scenario({simDevice("UPS-A")}, {});
    EXPECT_EQ(exitCode(suite->wait(suite->launch({}, true))), 1) << suite->stderrText();
    EXPECT_THAT(suite->log(), HasSubstr("[FATAL] {} <ShutService> deamonize: fork error <" +
                                        std::string(std::strerror(EAGAIN)) + ">\n"));
}

TEST_F(DaemonTest, NoDaemonInAnyLetterCaseStaysInTheForeground) {
    suite->scenario({simDevice("UPS-A")}, {});
    const pid_t pid = suite->launch({"--NoDaemon"});
    ASSERT_TRUE(suite->logHas("ShutService: <start> Client connected at: <", 15000));
    EXPECT_EQ(suite->wait(pid, 0), -1);
    // Neither the lock nor the SIGTERM handler: the signal's default action ends it.
    EXPECT_FALSE(e2e::exists(Isolation::instance().lockFile()));
    kill(pid, SIGTERM);
    EXPECT_EQ(exitCode(suite->wait(pid)), 128 + SIGTERM);
}

TEST_F(DaemonTest, NoDaemonCountsOnlyAsTheFirstArgument) {
    suite->scenario({simDevice("UPS-A")}, {});
    EXPECT_EQ(exitCode(suite->wait(suite->launch({"--verbose", "--nodaemon"}))), 0);
    ASSERT_TRUE(
        e2e::waitFor([&] { return !readFile(Isolation::instance().lockFile()).empty(); }, 10000));
    EXPECT_TRUE(suite->logHas("Client connected at:", 15000));
}

class MissingPlugin : public DaemonTest, public ::testing::WithParamInterface<const char*> {};

TEST_P(MissingPlugin, EndsTheStartWithAFatalLineAndExitStatusOne) {
    suite->scenario({simDevice("UPS-A")}, {});
    unlink((suite->dir() + GetParam()).c_str());
    EXPECT_EQ(exitCode(suite->wait(suite->launch({"--nodaemon"}))), 1);
    const std::string log = suite->log();
    const std::string fatal = "[FATAL] {} ShutService: <start> Error: ";
    const size_t at = log.find(fatal);
    ASSERT_NE(at, std::string::npos) << log;
    // main() logs the same message once more, on its own.
    const size_t end = log.find('\n', at);
    const std::string message = log.substr(at + fatal.size(), end - at - fatal.size());
    EXPECT_THAT(message, HasSubstr(GetParam()));
    EXPECT_THAT(log.substr(end), HasSubstr("[FATAL] {} " + message + "\n"));
    EXPECT_THAT(log, Not(HasSubstr("Client connected")));
}

INSTANTIATE_TEST_SUITE_P(ClientAndConfig, MissingPlugin,
                         ::testing::Values("client.so", "config.so"));

}  // namespace
