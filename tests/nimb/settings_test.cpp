#include "nimb/settings.h"
#include "tests/support.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

using support::expectFailure;
using support::readFile;
using support::writeFile;

namespace {

using namespace nimb;
using Strings = std::vector<std::string>;

Strings sorted(Strings names) {
    std::sort(names.begin(), names.end());
    return names;
}

class SettingsTest : public ::testing::Test {
protected:
    std::string path(const char* name) const { return m_dir.filePath(name).toStdString(); }
    QTemporaryDir m_dir;
    Settings m_settings;
};

TEST_F(SettingsTest, FailedOpenLeavesItClosedAndClosedFailsButForDefaults) {
    EXPECT_EQ(m_settings.value("KEY", Variant("fallback")).toStr(), "fallback");
    const std::string ini = path("test.ini");
    writeFile(ini, "[A]\nK=1\n");
    const std::pair<std::function<void()>, std::string> opens[] = {
        {[&] { m_settings.open(nullptr); }, "Empty \"filename\" argument."},
        {[&] { m_settings.open(std::string()); }, "Empty \"filename\" argument."},
        {[&] { m_settings.open(ini, "NO-SUCH-CODEC"); }, "Invalid codec: \"NO-SUCH-CODEC\"."}};
    for (const auto& [open, message] : opens) {
        m_settings.open(ini, "UTF-8");
        expectFailure<InvalidArgumentException>(open, message, -202);
        EXPECT_FALSE(m_settings.isOpen());
    }
    m_settings.close();
    const std::function<void()> calls[] = {
        [&] { m_settings.chGroup("G"); },    [&] { m_settings.backGroup(); },
        [&] { m_settings.pwdGroup(); },      [&] { m_settings.lsGroups(); },
        [&] { m_settings.lsKeys(); },        [&] { m_settings.value("KEY"); },
        [&] { m_settings.setValue("K", 1); }};
    for (const auto& call : calls)
        expectFailure<FileNotOpenException>(call, "Error: file not opened.", -32012);
}

TEST_F(SettingsTest, ReadsGroupsAndKeysStrictly) {
    writeFile(path("test.ini"),
              "[OTHER]\nY=2\n[TESSARY]\nPATH=/opt/t\xC3\xA9\nEMPTY=\nLIST=a,b\nSUB\\X=1\n");
    m_settings.open(path("test.ini"), "UTF-8");
    EXPECT_EQ(sorted(m_settings.lsGroups()), Strings({"OTHER", "TESSARY"}));
    m_settings.chGroup("TESSARY");
    EXPECT_EQ(m_settings.pwdGroup(), "TESSARY");
    EXPECT_EQ(sorted(m_settings.lsKeys()), Strings({"EMPTY", "LIST", "PATH"}));
    EXPECT_EQ(m_settings.lsGroups(), Strings({"SUB"}));
    EXPECT_EQ(m_settings.value("PATH").toStr(), "/opt/t\xC3\xA9");
    EXPECT_EQ(m_settings.value(std::string("EMPTY")).toStr(), "");
    EXPECT_EQ(m_settings.value("LIST").toStrList(), Strings({"a", "b"}));
    EXPECT_EQ(m_settings.value("MISSING", Variant(7)).toInt(), 7);
    expectFailure<NotFoundException>([&] { m_settings.value("MISSING"); }, "Error: key not found.",
                                     -302);
    // Only full paths from the top level enter a group.
    expectFailure<NotFoundException>([&] { m_settings.chGroup("SUB"); }, "Error: group not found.",
                                     -302);
    EXPECT_EQ(m_settings.pwdGroup(), "TESSARY");
    m_settings.backGroup();
    m_settings.backGroup();
    EXPECT_EQ(m_settings.pwdGroup(), "");
    m_settings.chGroup(std::string("TESSARY/SUB"));
    EXPECT_EQ(m_settings.value("X").toInt(), 1);

    // Another file: Qt keeps a parsed file for as long as it is unchanged.
    writeFile(path("latin.ini"), "[TESSARY]\nPATH=/opt/t\xC3\xA9\n");
    m_settings.open(path("latin.ini"), "ISO-8859-1");
    m_settings.chGroup("TESSARY");
    EXPECT_EQ(m_settings.value("PATH").toStr(), "/opt/t\xC3\x83\xC2\xA9");
}

TEST_F(SettingsTest, WritesTheFileWhenClosedOrReopened) {
    m_settings.open(path("first.ini"), "UTF-8");
    m_settings.chGroup("G");
    m_settings.setValue("K", Variant("v\xC3\xA4lue"));
    m_settings.setValue(std::string("N"), Variant(42));
    m_settings.open(path("second.ini"));
    m_settings.setValue("TOP", Variant("x"));
    m_settings.close();
    EXPECT_FALSE(m_settings.isOpen());
    EXPECT_EQ(readFile(path("first.ini")), "[G]\nK=v\xC3\xA4lue\nN=42\n");
    EXPECT_EQ(readFile(path("second.ini")), "[General]\nTOP=x\n");
    m_settings.open(path("first.ini"), "UTF-8");
    m_settings.chGroup("G");
    EXPECT_EQ(m_settings.value("K").toStr(), "v\xC3\xA4lue");
}

}  // namespace
