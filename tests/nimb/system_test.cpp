#include "nimb/system.h"
#include "nimb/file.h"
#include "nimb/system_testing.h"
#include "tests/support.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QTemporaryDir>

#include <sys/stat.h>
#include <sys/utsname.h>
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
    // A tool that appends its arguments to <name>.args, prints output, then
    // runs the shell commands in rest.
    std::string fake(const std::string& name, const std::string& output,
                     const std::string& rest = "") {
        const std::string tool = m_bin + "/" + name;
        writeFile(tool,
                  "#!/bin/sh\nprintf '%s\\n' \"$*\" >> '" + tool + ".args'\nprintf '" + output +
                      "'\n" + rest,
                  0755);
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
    EXPECT_EQ(System::getOSErrorMessage(EACCES), "Permission denied");
    errno = ENOTDIR;
    EXPECT_EQ(System::getOSLastError(), static_cast<unsigned long>(ENOTDIR));
    EXPECT_EQ(System::getOSErrorMessage(), "Not a directory");
    EXPECT_EQ(System::getExeFileName(),
              QDir(SHUTSVC_TEST_BIN_DIR).canonicalPath().toStdString() + "/nimb_system_test");
}

TEST_F(FakeSystemTest, SuspendToDisk) {
    const std::string state = m_bin + "/state";
    ASSERT_EQ(nimb::testing::powerStatePath(), state) << "refusing to touch the real file";
    const std::string missing = "Error opening <" + state + ">: No such file or directory";
    expectFailure<nimb::FileNotOpenException>(System::supportSuspendToDisk, missing, -32012);
    expectFailure<nimb::FileNotOpenException>(System::suspendToDisk, missing, -32012);
    // "disk" in the third read of 2048 bytes counts too.
    for (const std::string& text :
         {std::string("freeze mem disk\n"), std::string(4090, ' ') + "disk"}) {
        writeFile(state, text);
        EXPECT_TRUE(System::supportSuspendToDisk());
    }
    writeFile(state, "");
    EXPECT_FALSE(System::supportSuspendToDisk());
    writeFile(state, "freeze mem\n");
    expectFailure<nimb::SystemException>(System::suspendToDisk,
                                         "Error: Suspend to Disk not supported.", -305);
    writeFile(state, "mem disk\n");
    System::suspendToDisk();
    EXPECT_EQ(readFile(state), "diskdisk\n");
}

TEST_F(FakeSystemTest, ShutdownAndRebootRunTheCommandInTheBackground) {
    const std::string go = m_bin + "/go", done = m_bin + "/done";
    // The fake waits for "go" (5 s at most) before it leaves "done".
    const std::string tool = fake("shutdown", "",
                                  "i=0; while [ ! -e '" + go +
                                      "' ] && [ $i -lt 100 ]; do "
                                      "/bin/sleep 0.05; i=$((i+1)); done; : > '" +
                                      done + "'\n");
    for (void (*call)() : {System::systemShutdown, System::systemReboot}) {
        unlink(go.c_str());
        unlink(done.c_str());
        // Only ever with the fake's folder as the whole PATH.
        ASSERT_STREQ(std::getenv("PATH"), m_bin.c_str()) << "refusing to shut down";
        ASSERT_EQ(access(tool.c_str(), X_OK), 0) << "refusing to shut down";
        call();
        EXPECT_FALSE(nimb::File::fileExists(done)) << "the call waited for the command";
        writeFile(go, "");
        for (int i = 0; i < 1000 && !nimb::File::fileExists(done); ++i)
            System::delay(10);
    }
    EXPECT_EQ(readFile(tool + ".args"), "now\n-r now\n");
}

TEST_F(FakeSystemTest, FullNameFromLsbReleaseThenReleaseFiles) {
    EXPECT_EQ(System::getSysFullName(), "");
    ASSERT_EQ(mkdir((m_bin + "/etc").c_str(), 0755), 0);
    // Each row adds a file that comes earlier in the search order.
    const char* rows[][3] = {{"gentoo-release", "Gentoo 2.14\n", "Gentoo 2.14"},
                             {"redhat-release", "Fedora release 39\n", "Fedora release 39"},
                             {"redhat_version", "9\n", "RedHat Linux 9"},
                             {"slackware-version", "Slack 15\n", "Slack 15"},
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
}

TEST_F(FakeSystemTest, PlatformFromNameThenPackageTools) {
    EXPECT_EQ(System::getSysPlatform("debian 12 on redhat"), OsInfo::PLATFORM_DEBIAN);
    EXPECT_EQ(System::getSysPlatform("Fake Linux"), OsInfo::PLATFORM_LINUX);
    fake("emerge", "");  // present but silent: does not count
    // Added in reverse order of probing, each new tool wins.
    const std::pair<const char*, OsInfo::Platform> tools[] = {
        {"rpm", OsInfo::PLATFORM_REDHAT},
        {"dpkg", OsInfo::PLATFORM_DEBIAN},
        {"installpkg", OsInfo::PLATFORM_SLACKWARE},
        {"emerge", OsInfo::PLATFORM_GENTOO}};
    for (const auto& row : tools) {
        fake(row.first, std::string(row.first) + " 1.0\\n");
        EXPECT_EQ(System::getSysPlatform("Fake Linux"), row.second) << row.first;
    }
    // Probing stops at the first tool that answers.
    EXPECT_EQ(readFile(m_bin + "/rpm.args") + readFile(m_bin + "/installpkg.args"),
              "--version\n\n");
    EXPECT_EQ(readFile(m_bin + "/emerge.args"), "--version\n--version\n--version\n--version\n");
}

TEST(OsInfoTest, ArchitecturesAndTexts) {
    const std::pair<const char*, const char*> rows[] = {
        {"i86pc", "x86"},    {" 'X86_64' ", "amd64"}, {"sun4u", "sparc64"},
        {"r10", "mips"},     {"ppc64", "ppc"},        {"armv7l", "arm"},
        {"armv8l", "arm64"}, {"AArch64", "arm64"},    {"riscv64", "unknown"}};
    for (const auto& row : rows)
        EXPECT_EQ(OsInfo::archAsStr(System::getSysArch(std::string(row.first))), row.second);
    EXPECT_EQ(OsInfo::archAsStr(11), "unknown");
    EXPECT_EQ(OsInfo::platformAsStr(9), "Sun/Oracle Solaris Based Unix");
    EXPECT_EQ(OsInfo::platformAsStr(14), "Unknown OS Platform");
    const OsInfo mac("", "", "", "", "", "", OsInfo::PLATFORM_MACOSX, OsInfo::ARCH_ARM64);
    EXPECT_TRUE(mac.isMacOsX() && mac.isUnix() && mac.is64Bits() && !mac.isLinux());
}

TEST(OsInfoTest, IdentificationOfThisMachine) {
    const OsInfo info = System::getOsInfo();
    struct utsname uts;
    ASSERT_EQ(uname(&uts), 0);
    EXPECT_EQ(info.toString(),
              "OsInfo: {name=" + System::getSysName(info.fullName()) + ", fullName=" +
                  System::getSysFullName() + ", version=" + System::getSysVersion(info.fullName()) +
                  ", buildNumber=" + uts.release + " " + uts.version +
                  ", servicePackName=, servicePackVersion=, platform=" + info.platformAsStr() +
                  ", arch=" + OsInfo::archAsStr(System::getSysArch(std::string(uts.machine))) +
                  "}");
    EXPECT_TRUE(info.isLinux());
}

}  // namespace
