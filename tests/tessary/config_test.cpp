#include "tessary/config.h"
#include "tessary/config_testing.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <pwd.h>
#include <sched.h>
#include <stdlib.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

#include <climits>
#include <functional>
#include <optional>
#include <utility>
#include <string>

#include "nimb/json.h"

namespace {

using tessary::TesConfig;

TEST(TesConfigTest, TextAndJsonForms) {
    TesConfig config;
    EXPECT_EQ(config.toString(), "tesConfig: {id=1,detect=1,theme=1,style=2}");
    config.id = 7;
    config.style = 4000000000u;
    EXPECT_EQ(nimb::JsonDocument(config.toJson()).toJson(false),
              R"({"detect":1,"id":7,"style":4000000000,"theme":1})");

    const std::pair<const char*, const char*> rows[] = {
        {R"({"id":9,"detect":0,"theme":4,"style":3})", "tesConfig: {id=1,detect=0,theme=4,style=3}"},
        {R"({"style":3.9,"theme":"6"})", "tesConfig: {id=1,detect=0,theme=6,style=3}"},
        {R"({})", "tesConfig: {id=1,detect=0,theme=0,style=0}"}};
    for (const auto& [json, expected] : rows) {
        nimb::JsonDocument document;
        document.fromJson(json);
        EXPECT_EQ(TesConfig(config).fromJson(document.object()).toString(), expected) << json;
    }
}

// Runs body in a forked child; gives its exit status and the text it set.
std::pair<int, std::string> inChild(const std::function<int(std::string&)>& body) {
    int fds[2];
    if (pipe(fds) != 0)
        return {-1, "no pipe"};
    const pid_t pid = fork();
    if (pid == 0) {
        close(fds[0]);
        std::string text;
        const int status = body(text);
        _exit(write(fds[1], text.data(), text.size()) < 0 ? 2 : status);
    }
    close(fds[1]);
    std::string text;
    char buffer[512];
    for (ssize_t n; (n = read(fds[0], buffer, sizeof buffer)) > 0;)
        text.append(buffer, static_cast<size_t>(n));
    close(fds[0]);
    int status = 0;
    waitpid(pid, &status, 0);
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, text};
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

    std::string writeConf(const QByteArray& text) {
        const QString path = m_dir.filePath("tessary.conf");
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(text);
        return path.toStdString();
    }

    QTemporaryDir m_dir;
    std::string m_exeDir;
};

TEST_F(SuitePathTest, ConfiguredPathWinsElseExecutableFolder) {
    struct Row {
        const char* name;
        std::optional<QByteArray> conf;  // nullopt: no file at all
        std::string expected;            // empty: the executable's folder
    };
    const Row rows[] = {
        {"plain", QByteArray("[TESSARY]\nPATH=/opt/x\n"), "/opt/x/"},
        {"trailing slash", QByteArray("[TESSARY]\nPATH=/opt/x/\n"), "/opt/x/"},
        {"utf-8", QByteArray("[TESSARY]\nPATH=/opt/t\xC3\xA9ssary\n"), "/opt/t\xC3\xA9ssary/"},
        {"comma", QByteArray("[TESSARY]\nPATH=/opt/a,b\n"), "/opt/a,b/"},
        {"no file", std::nullopt, ""},
        {"wrong group", QByteArray("[OTHER]\nPATH=/opt/x\n"), ""},
        {"top level key", QByteArray("PATH=/opt/x\n"), ""},
        {"empty value", QByteArray("[TESSARY]\nPATH=\n"), ""},
    };
    for (const Row& row : rows) {
        std::string file = m_dir.filePath("missing.conf").toStdString();
        if (row.conf)
            file = writeConf(*row.conf);
        tessary::testing::setSuiteConfigFile(file);
        EXPECT_EQ(TesConfig::getTessaryPath(), row.expected.empty() ? m_exeDir : row.expected)
            << row.name;
    }
    EXPECT_FALSE(QFile::exists(m_dir.filePath("missing.conf")));
}

TEST_F(SuitePathTest, UserPathFromHomeOrPasswordDatabase) {
    tessary::testing::setSuiteConfigFile(writeConf("[TESSARY]\nPATH=/opt/suite\n"));
    const char* saved = getenv("HOME");
    const std::string savedHome = saved ? saved : "";

    const std::pair<const char*, std::string> rows[] = {
        {"/home/u", "/home/u/.tessary/"},
        {"/home/u/", "/home/u/.tessary/"},
        {"/", "/.tessary/"},
    };
    for (const auto& row : rows) {
        setenv("HOME", row.first, 1);
        EXPECT_EQ(TesConfig::getUserTessaryPath(), row.second) << row.first;
    }

    unsetenv("HOME");
    const passwd* entry = getpwuid(getuid());
    ASSERT_NE(entry, nullptr);
    const std::string fromDatabase = TesConfig::getUserTessaryPath();
    if (saved)
        setenv("HOME", savedHome.c_str(), 1);
    const std::string dir = entry->pw_dir;
    EXPECT_EQ(fromDatabase, dir + (dir.back() == '/' ? "" : "/") + ".tessary/");
}

// The one test that reads "/etc/tessary.conf" itself: a child process in a
// private mount namespace sees a temporary folder bound over /etc, so the
// real file is never read or written. Without /etc/passwd and HOME there is
// no home directory either, and the suite's directory stands in for it.
TEST_F(SuitePathTest, SystemFileInPrivateMountNamespace) {
    ASSERT_TRUE(QDir(m_dir.path()).mkdir("etc"));
    QFile conf(m_dir.filePath("etc/tessary.conf"));
    ASSERT_TRUE(conf.open(QIODevice::WriteOnly));
    conf.write("[TESSARY]\nPATH=/opt/isolated\n");
    conf.close();
    const std::string etc = m_dir.filePath("etc").toStdString();

    const auto [status, text] = inChild([&etc](std::string& out) {
        if (unshare(CLONE_NEWNS) != 0) {
            out = "cannot make a private mount namespace (needs root); the system file stays unread";
            return 1;
        }
        if (mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
            mount(etc.c_str(), "/etc", nullptr, MS_BIND, nullptr) != 0) {
            out = "cannot bind a temporary folder over /etc in the private namespace";
            return 1;
        }
        unsetenv("HOME");
        out = TesConfig::getTessaryPath() + " " + TesConfig::getUserTessaryPath();
        return 0;
    });
    ASSERT_EQ(status, 0) << text;
    EXPECT_EQ(text, "/opt/isolated/ /opt/isolated/");
}

}  // namespace
