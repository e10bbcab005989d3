#include "tessary/config.h"
#include "tessary/config_testing.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include <climits>
#include <cstdlib>
#include <string>
#include <utility>

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
    EXPECT_EQ(
        TesConfig(config).fromJson(support::parsed(R"({"style":3.9,"theme":"6"})")).toString(),
        "tesConfig: {id=1,detect=0,theme=6,style=3}");
}

// Another file stands in for the system's one, which only the daemon's
// end-to-end tests write, in their private mount namespace; they also show
// that a configured path wins over the daemon's own folder.
TEST(SuitePathTest, ConfiguredPathWinsElseExecutableFolder) {
    QTemporaryDir dir;
    char exeDir[PATH_MAX];
    ASSERT_TRUE(dir.isValid() && realpath(SHUTSVC_TEST_BIN_DIR, exeDir) != nullptr);
    const std::string file = dir.filePath("tessary.conf").toStdString();
    tessary::testing::setSuiteConfigFile(file);
    const std::pair<const char*, std::string> rows[] = {
        {nullptr, std::string(exeDir) + "/"},  // no file yet
        {"[TESSARY]\nPATH=/opt/t\xC3\xA9ssary\n", "/opt/t\xC3\xA9ssary/"},
        {"[TESSARY]\nPATH=/opt/a,b\n", "/opt/a,b/"},
        {"[TESSARY]\nPATH=\n", std::string(exeDir) + "/"},
    };
    for (const auto& [conf, expected] : rows) {
        if (conf)
            support::writeFile(file, conf);
        EXPECT_EQ(TesConfig::getTessaryPath(), expected) << (conf ? conf : "no file");
    }
    tessary::testing::setSuiteConfigFile("");
}

TEST(UserPathTest, FolderInHome) {
    // An empty HOME reads as none, like an unset one.
    const std::string savedHome = getenv("HOME") ? getenv("HOME") : "";
    setenv("HOME", "/home/u", 1);
    EXPECT_EQ(TesConfig::getUserTessaryPath(), "/home/u/.tessary/");
    setenv("HOME", "/", 1);
    EXPECT_EQ(TesConfig::getUserTessaryPath(), "/.tessary/");
    setenv("HOME", savedHome.c_str(), 1);
}

}  // namespace
