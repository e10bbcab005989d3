#include "nimb/system.h"
#include "nimb/file.h"
#include "nimb/system_testing.h"
#include "tests/support.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QTemporaryDir>

#include <sys/stat.h>
#include <unistd.h>
#include <cerrno>
#include <cstdlib>
#include <string>

using support::expectFailure;
using support::readFile;
using support::writeFile;

namespace {

using nimb::OsInfo;
using nimb::System;

// A temporary folder that is the whole PATH while a test runs, so that the
// shell only finds the fake tools written into it; the power-state file and
// the release files are looked up there too.
class FakeSystemTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(m_dir.isValid());
        m_savedPath = std::getenv("PATH") ? std::getenv("PATH") : "/usr/bin:/bin";
        ASSERT_EQ(setenv("PATH", m_bin.c_str(), 1), 0);
        nimb::testing::setPowerStatePath(m_bin + "/state");
        nimb::testing::setReleaseFileRoot(m_bin);
    }
    void TearDown() override {
        setenv("PATH", m_savedPath.c_str(), 1);
        nimb::testing::setPowerStatePath(std::string());
        nimb::testing::setReleaseFileRoot(std::string());
    }
    // A tool that appends its arguments to <name>.args, then prints output.
    std::string fake(const std::string& name, const std::string& output) {
        const std::string tool = m_bin + "/" + name;
        const std::string record = "#!/bin/sh\nprintf '%s\\n' \"$*\" >> '" + tool + ".args'\n";
        writeFile(tool, record + "printf '" + output + "'\n", 0755);
        return tool;
    }

    QTemporaryDir m_dir;
    const std::string m_bin = m_dir.path().toStdString();
    std::string m_savedPath;
};

TEST(SystemTest, ClockErrorTextsAndExecutable) {
    const std::uint64_t start = System::usGetSystemTick();
    System::delay(150);
    System::usDelay(100000);
    EXPECT_GE(System::getSystemTick() - start / 1000, 250u);
    errno = ENOTDIR;
    EXPECT_EQ(System::getOSErrorMessage(), "Not a directory");
    EXPECT_EQ(System::getExeFileName(),
              QDir(SHUTSVC_TEST_BIN_DIR).canonicalPath().toStdString() + "/nimb_system_test");
}

TEST_F(FakeSystemTest, SuspendToDisk) {
    const std::string state = m_bin + "/state";
    ASSERT_EQ(nimb::testing::powerStatePath(), state) << "refusing to touch the real file";
    expectFailure<nimb::FileNotOpenException>(
        System::suspendToDisk, "Error opening <" + state + ">: No such file or directory", -32012);
    writeFile(state, "freeze mem\n");
    expectFailure<nimb::SystemException>(System::suspendToDisk,
                                         "Error: Suspend to Disk not supported.", -305);
    writeFile(state, "mem disk\n");
    System::suspendToDisk();
    EXPECT_EQ(readFile(state), "diskdisk\n");
}

TEST_F(FakeSystemTest, ShutdownAndRebootRunTheCommandInTheBackground) {
    // The fake leaves its arguments in args<count>, then waits for "go" (5 s
    // at most) before it leaves done<count>.
    const std::string tool = m_bin + "/shutdown";
    writeFile(tool,
              "#!/bin/sh\ncd \"${0%/*}\"\nprintf '%s\\n' \"$*\" > args$#\n"
              "i=0; while [ ! -e go ] && [ $i -lt 100 ]; do /bin/sleep 0.05; i=$((i+1)); done\n"
              ": > done$#\n",
              0755);
    const auto done = [this](const char* name) { return nimb::File::fileExists(m_bin + name); };
    // Only ever with the fake's folder as the whole PATH.
    ASSERT_STREQ(std::getenv("PATH"), m_bin.c_str()) << "refusing to shut down";
    ASSERT_EQ(access(tool.c_str(), X_OK), 0) << "refusing to shut down";
    System::systemShutdown();
    System::systemReboot();
    EXPECT_FALSE(done("/done1") || done("/done2")) << "a call waited for the command";
    writeFile(m_bin + "/go", "");
    for (int i = 0; i < 1000 && !(done("/done1") && done("/done2")); ++i)
        System::delay(10);
    EXPECT_EQ(readFile(m_bin + "/args1") + readFile(m_bin + "/args2"), "now\n-r now\n");
}

// The full name from lsb_release, else from release files; the platform from
// the name, else from the package tools that answer.
TEST_F(FakeSystemTest, NameAndPlatform) {
    ASSERT_EQ(mkdir((m_bin + "/etc").c_str(), 0755), 0);
    // Each row adds a file that comes earlier in the search order.
    const char* rows[][3] = {{"gentoo-release", "Gentoo 2.14\n", "Gentoo 2.14"},
                             {"debian_version", "12.4\n", "Debian GNU/Linux 12.4"},
                             {"issue", "Debian GNU/Linux 12 \\n \\l\n\n", "Debian GNU/Linux 12"}};
    for (const auto& row : rows) {
        writeFile(m_bin + "/etc/" + row[0], row[1]);
        EXPECT_EQ(System::getSysFullName(), row[2]) << row[0];
    }
    const std::string tool = fake("lsb_release", " \"Fake Linux 7.1 (x)\" \\nsecond\\n");
    EXPECT_EQ(System::getSysFullName(), "Fake Linux 7.1 (x)");
    EXPECT_EQ(readFile(tool + ".args"), "-ds\n");
    EXPECT_EQ(System::getSysName("Fake Linux 7.1 (x)"), "Fake Linux");
    EXPECT_EQ(System::getSysVersion("\"Ubuntu 22.04.3 LTS\""), "22.04.3");
    EXPECT_EQ(System::getSysVersion("Arch Linux"), "0.0");

    EXPECT_EQ(System::getSysPlatform("debian 12 on redhat"), OsInfo::PLATFORM_DEBIAN);
    EXPECT_EQ(System::getSysPlatform("Fake Linux"), OsInfo::PLATFORM_LINUX);
    fake("emerge", "");  // present but silent: does not count
    fake("rpm", "rpm 1.0\\n");
    EXPECT_EQ(System::getSysPlatform("Fake Linux"), OsInfo::PLATFORM_REDHAT);
    fake("emerge", "emerge 1.0\\n");  // probed first
    EXPECT_EQ(System::getSysPlatform("Fake Linux"), OsInfo::PLATFORM_GENTOO);
    EXPECT_EQ(readFile(m_bin + "/emerge.args") + readFile(m_bin + "/rpm.args"),
              "--version\n--version\n--version\n");
}

TEST(OsInfoTest, ArchitecturesAndTexts) {
    const std::pair<const char*, const char*> rows[] = {
        {"i86pc", "x86"},    {" 'X86_64' ", "amd64"}, {"sun4u", "sparc64"},  {"ppc64", "ppc"},
        {"armv8l", "arm64"}, {"AArch64", "arm64"},    {"riscv64", "unknown"}};
    for (const auto& row : rows)
        EXPECT_EQ(OsInfo::archAsStr(System::getSysArch(std::string(row.first))), row.second);
    EXPECT_EQ(OsInfo::archAsStr(11), "unknown");
    EXPECT_EQ(OsInfo::platformAsStr(9), "Sun/Oracle Solaris Based Unix");
    EXPECT_EQ(OsInfo::platformAsStr(14), "Unknown OS Platform");
    const OsInfo mac("macOS", "macOS 14.1", "14.1", "23B74", "sp", "2", OsInfo::PLATFORM_MACOSX,
                     OsInfo::ARCH_ARM64);
    EXPECT_EQ(mac.toString(),
              "OsInfo: {name=macOS, fullName=macOS 14.1, version=14.1, buildNumber=23B74, "
              "servicePackName=sp, servicePackVersion=2, platform=Apple MacOSX/Darwin Platform, "
              "arch=arm64}");
    EXPECT_TRUE(mac.isMacOsX() && mac.isUnix() && mac.is64Bits() && !mac.isLinux());
    EXPECT_TRUE(System::getOsInfo().isLinux());
}

}  // namespace
