#include "nimb/settings.h"
#include "tests/support.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include <functional>
#include <string>
#include <vector>

using support::expectFailure;
using support::readFile;
using support::writeFile;

namespace {

using namespace nimb;
using Strings = std::vector<std::string>;

class SettingsTest : public ::testing::Test {
protected:
    std::string path(const char* name) const { return m_dir.filePath(name).toStdString(); }
    QTemporaryDir m_dir;
    Settings m_settings;
};

TEST_F(SettingsTest, FailedOpenLeavesItClosedAndClosedFailsButForDefaults) {
    EXPECT_EQ(m_settings.value("KEY", Variant("fallback")).toStr(), "fallback");
    const std::string ini = path("test.ini");
    const std::pair<std::function<void()>, std::string> opens[] = {
        {[&] { m_settings.open(nullptr); }, "Empty \"filename\" argument."},
        {[&] { m_settings.open(ini, "NO-SUCH-CODEC"); }, "Invalid codec: \"NO-SUCH-CODEC\"."}};
    for (const auto& [open, message] : opens) {
        m_settings.open(ini, "UTF-8");
        expectFailure<InvalidArgumentException>(open, message, -202);
        EXPECT_FALSE(m_settings.isOpen());
    }
    m_settings.close();
    const std::function<void()> calls[] = {[&] { m_settings.chGroup("G"); },
                                           [&] { m_settings.setValue("K", 1); }};
    for (const auto& call : calls)
        expectFailure<FileNotOpenException>(call, "Error: file not opened.", -32012);
}

TEST_F(SettingsTest, ReadsGroupsAndKeysStrictly) {
    writeFile(path("test.ini"),
              "[OTHER]\nY=2\n[TESSARY]\nEMPTY=\nLIST=a,b\nPATH=/opt/t\xC3\xA9\nSUB\\X=1\n");
    m_settings.open(path("test.ini"), "UTF-8");
    EXPECT_EQ(m_settings.lsGroups(), Strings({"OTHER", "TESSARY"}));
    m_settings.chGroup("TESSARY");
    EXPECT_EQ(m_settings.lsKeys(), Strings({"EMPTY", "LIST", "PATH"}));
    EXPECT_EQ(m_settings.lsGroups(), Strings({"SUB"}));
    EXPECT_EQ(m_settings.value("PATH").toStr(), "/opt/t\xC3\xA9");
    EXPECT_EQ(m_settings.value("LIST").toStrList(), Strings({"a", "b"}));
    expectFailure<NotFoundException>([&] { m_settings.value("MISSING"); }, "Error: key not found.",
                                     -302);
    // Only full paths from the top level enter a group.
    expectFailure<NotFoundException>([&] { m_settings.chGroup("SUB"); }, "Error: group not found.",
                                     -302);
    EXPECT_EQ(m_settings.pwdGroup(), "TESSARY");
    m_settings.backGroup();
    EXPECT_EQ(m_settings.pwdGroup(), "");
    m_settings.chGroup(std::string("TESSARY/SUB"));
    EXPECT_EQ(m_settings.value("X").toInt(), 1);
}

TEST_F(SettingsTest, WritesTheFileWhenClosed) {
    m_settings.open(path("first.ini"), "UTF-8");
    m_settings.chGroup("G");
    m_settings.setValue("K", Variant("v\xC3\xA4lue"));
    m_settings.setValue(std::string("N"), Variant(42));
    m_settings.close();
    EXPECT_EQ(readFile(path("first.ini")), "[G]\nK=v\xC3\xA4lue\nN=42\n");
}

}  // namespace
