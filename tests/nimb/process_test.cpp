#include "nimb/process.h"
#include "nimb/system.h"
#include "tests/support.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include <sys/wait.h>
#include <unistd.h>
#include <csignal>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace {

using nimb::Process;
using nimb::System;

// Children report through files in a temporary folder; any child still
// running at the end of a test is killed and reaped.
class ProcessTest : public ::testing::Test {
protected:
    void TearDown() override {
        for (pid_t pid : m_children) {
            kill(pid, SIGKILL);
            waitpid(pid, nullptr, 0);
        }
    }
    std::string path(const std::string& name) const { return m_root + "/" + name; }
    // The first line a child wrote into name, waiting up to 10 s for it.
    std::string read(const std::string& name) const {
        std::string line;
        for (int i = 0; i < 1000 && line.empty(); ++i, System::delay(10))
            std::getline(std::ifstream(path(name)), line);
        return line;
    }

    QTemporaryDir m_dir;
    const std::string m_root = m_dir.path().toStdString();
    std::vector<pid_t> m_children;
};

TEST_F(ProcessTest, ReturnsExitCodeOrSignalNumber) {
    const std::pair<const char*, int> rows[] = {{"exit 255", 255}, {"kill -9 $$", 9}};
    for (const auto& [command, expected] : rows)
        EXPECT_EQ(Process::createNewAndWait(command, 20000), expected) << command;
    // The wait ends with the child, far below the limit.
    const std::uint64_t start = System::getSystemTick();
    EXPECT_EQ(Process::createNewAndWait(std::string("sleep 0.3; exit 4"), 0, 60000), 4);
    EXPECT_LT(System::getSystemTick() - start, 30000u);
}

TEST_F(ProcessTest, TimeOutLeavesTheChildRunning) {
    for (unsigned long limit : {300ul, 0ul}) {
        const std::string file = "sleeper" + std::to_string(limit);
        const std::uint64_t start = System::getSystemTick();
        EXPECT_EQ(Process::createNewAndWait("echo $$ > '" + path(file) + "'; exec sleep 60", limit),
                  -1);
        EXPECT_GE(System::getSystemTick() - start, limit);
        m_children.push_back(std::stoi(read(file)));
        EXPECT_EQ(waitpid(m_children.back(), nullptr, WNOHANG), 0) << "child ended: " << limit;
    }
}

TEST_F(ProcessTest, NewSessionOnlyWithFlagOne) {
    const std::string report = "echo $$ $(cut -d' ' -f6 /proc/$$/stat) > '";
    m_children.push_back(Process::createNew(report + path("new") + "'", Process::NEW_SESSION));
    ASSERT_EQ(Process::createNewAndWait(report + path("same") + "'", 2, 20000), 0);
    pid_t pid = 0, sid = -1;
    std::istringstream(read("new")) >> pid >> sid;
    EXPECT_EQ(pid, m_children.back());
    EXPECT_EQ(sid, pid) << "the child does not lead a session of its own";
    std::istringstream(read("same")) >> pid >> sid;
    EXPECT_EQ(sid, getsid(0));
}

TEST(ProcessArgumentTest, EmptyCommandLineIsRejected) {
    const std::string message = "Empty \"cmdline\" argument.";
    support::expectFailure<nimb::InvalidArgumentException>(
        [] { Process::createNewAndWait("", 100); }, message, -202);
    support::expectFailure<nimb::InvalidArgumentException>([] { Process::createNew(nullptr, 1); },
                                                           message, -202);
}

}  // namespace
