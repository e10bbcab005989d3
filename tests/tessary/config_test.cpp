#include "tessary/config.h"
#include "tessary/config_testing.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include <pwd.h>
#include <sched.h>
#include <stdlib.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <climits>
#include <string>
#include <utility>

#include "nimb/json.h"
#include "tests/support.h"

namespace {

using tessary::TesConfig;

TEST(TesConfigTest, TextAndJsonForms) {
    TesConfig config;
    EXPECT_EQ(config.toString(), "tesConfig: {id=1,detect=1,theme=1,style=2}");
    config.id = 7;
    config.style = 4000000000u;
    EXPECT_EQ(support::compact(config.toJson()),
              R"({"detect":1,"id":7,"style":4000000000,"theme":1})");

    // The id is never read back; missing keys read as 0.
    const std::pair<const char*, const char*> rows[] = {
        {R"({"id":9,"detect":0,"theme":4,"style":3})",
         "tesConfig: {id=1,detect=0,theme=4,style=3}"},
        {R"({"style":3.9,"theme":"6"})", "tesConfig: {id=1,detect=0,theme=6,style=3}"},
        {R"({})", "tesConfig: {id=1,detect=0,theme=0,style=0}"}};
    for (const auto& [json, expected] : rows)
        EXPECT_EQ(TesConfig(config).fromJson(support::parsed(json)).toString(), expected) << json;
}

class SuitePathTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(m_dir.isValid());
        char resolved[PATH_MAX];
        ASSERT_NE(realpath(SHUTSVC_TEST_BIN_DIR, resolved), nullptr);
        m_exeDir = std::string(resolved) + "/";
    }
    void TearDown() override { tessary::testing::setSuiteConfigFile(""); }

    std::string path(const char* name) const { return m_dir.filePath(name).toStdString(); }

    QTemporaryDir m_dir;
    std::string m_exeDir;
};

TEST_F(SuitePathTest, ConfiguredPathWinsElseExecutableFolder) {
    const std::pair<const char*, std::string> rows[] = {
        {"[TESSARY]\nPATH=/opt/x\n", "/opt/x/"},
        {"[TESSARY]\nPATH=/opt/x/\n", "/opt/x/"},
        {"[TESSARY]\nPATH=/opt/t\xC3\xA9ssary\n", "/opt/t\xC3\xA9ssary/"},
        {"[TESSARY]\nPATH=/opt/a,b\n", "/opt/a,b/"},
        {nullptr, m_exeDir},  // no file at all
        {"[OTHER]\nPATH=/opt/x\n", m_exeDir},
        {"PATH=/opt/x\n", m_exeDir},
        {"[TESSARY]\nPATH=\n", m_exeDir},
    };
    for (const auto& [conf, expected] : rows) {
        const std::string file = path(conf ? "tessary.conf" : "missing.conf");
        if (conf)
            support::writeFile(file, conf);
        tessary::testing::setSuiteConfigFile(file);
        EXPECT_EQ(TesConfig::getTessaryPath(), expected) << (conf ? conf : "no file");
    }
    EXPECT_NE(access(path("missing.conf").c_str(), F_OK), 0);
}

TEST_F(SuitePathTest, UserPathFromHomeOrPasswordDatabase) {
    support::writeFile(path("tessary.conf"), "[TESSARY]\nPATH=/opt/suite\n");
    tessary::testing::setSuiteConfigFile(path("tessary.conf"));
    const char* saved = getenv("HOME");
    const std::string savedHome = saved ? saved : "";
    const std::pair<const char*, const char*> rows[] = {
        {"/home/u", "/home/u/.tessary/"}, {"/home/u/", "/home/u/.tessary/"}, {"/", "/.tessary/"}};
    for (const auto& [home, expected] : rows) {
        setenv("HOME", home, 1);
        EXPECT_EQ(TesConfig::getUserTessaryPath(), expected) << home;
    }

    unsetenv("HOME");
    const std::string fromDatabase = TesConfig::getUserTessaryPath();
    if (saved)
        setenv("HOME", savedHome.c_str(), 1);
    const passwd* entry = getpwuid(getuid());
    ASSERT_NE(entry, nullptr);
    const std::string dir = entry->pw_dir;
    EXPECT_EQ(fromDatabase, dir + (dir.back() == '/' ? "" : "/") + ".tessary/");
}

// The one test that reads "/etc/tessary.conf" itself: a child process in a
// private mount namespace sees a temporary folder bound over /etc, so the
// real file is never read or written. Without /etc/passwd and HOME there is
// no home directory either, and the suite's directory stands in for it. The
// child leaves its finding in a file of the temporary folder.
TEST_F(SuitePathTest, SystemFileInPrivateMountNamespace) {
    const std::string etc = path("etc");
    const std::string found = path("found");
    ASSERT_EQ(mkdir(etc.c_str(), 0755), 0);
    support::writeFile(etc + "/tessary.conf", "[TESSARY]\nPATH=/opt/isolated\n");

    const pid_t pid = fork();
    if (pid == 0) {
        if (unshare(CLONE_NEWNS) != 0) {
            support::writeFile(found,
                               "cannot make a private mount namespace (needs root); "
                               "the system file stays unread");
            _exit(1);
        }
        if (mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
            mount(etc.c_str(), "/etc", nullptr, MS_BIND, nullptr) != 0) {
            support::writeFile(found,
                               "cannot bind a temporary folder over /etc in the private "
                               "namespace");
            _exit(1);
        }
        unsetenv("HOME");
        support::writeFile(found,
                           TesConfig::getTessaryPath() + " " + TesConfig::getUserTessaryPath());
        _exit(0);
    }
    int status = -1;
    ASSERT_EQ(waitpid(pid, &status, 0), pid);
    ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << support::readFile(found);
    EXPECT_EQ(support::readFile(found), "/opt/isolated/ /opt/isolated/");
}

}  // namespace
