#include "nimb/settings.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

namespace {

using namespace nimb;
using Strings = std::vector<std::string>;

// Runs call and checks that it throws E with exactly this code and message.
template <class E>
void expectThrow(const std::function<void()>& call, int code, const std::string& message) {
    try {
        call();
        ADD_FAILURE() << "no exception, expected: " << message;
    } catch (const E& e) {
        EXPECT_EQ(e.code(), code);
        EXPECT_EQ(e.message(), message);
    } catch (const Exception& e) {
        ADD_FAILURE() << "wrong class " << e.getClassName() << ": " << e.message();
    }
}

class SettingsTest : public ::testing::Test {
protected:
    std::string write(const QByteArray& content, const QString& name = "test.ini") {
        QFile file(m_dir.filePath(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(content);
        return file.fileName().toStdString();
    }
    QByteArray read(const std::string& path) {
        QFile file(QString::fromStdString(path));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<missing>");
    }
    QTemporaryDir m_dir;
    Settings m_settings;
};

TEST_F(SettingsTest, ClosedObjectFailsButDefaultsStillWork) {
    EXPECT_FALSE(m_settings.isOpen());
    EXPECT_EQ(m_settings.value("KEY", Variant("fallback")).toStr(), "fallback");
    m_settings.close();
    const std::function<void()> calls[] = {
        [&] { m_settings.chGroup("G"); },      [&] { m_settings.backGroup(); },
        [&] { m_settings.pwdGroup(); },        [&] { m_settings.lsGroups(); },
        [&] { m_settings.lsKeys(); },          [&] { m_settings.value("KEY"); },
        [&] { m_settings.setValue("K", 1); }};
    for (const auto& call : calls)
        expectThrow<FileNotOpenException>(call, -32012, "Error: file not opened.");
}

TEST_F(SettingsTest, OpenRejectsEmptyNamesAndUnknownCodecs) {
    const std::string path = write("[A]\nK=1\n");
    const std::pair<std::function<void()>, std::string> rows[] = {
        {[&] { m_settings.open(nullptr); }, "Empty \"filename\" argument."},
        {[&] { m_settings.open(std::string()); }, "Empty \"filename\" argument."},
        {[&] { m_settings.open(path, "NO-SUCH-CODEC"); }, "Invalid codec: \"NO-SUCH-CODEC\"."}};
    for (const auto& [call, message] : rows) {
        m_settings.open(path, "UTF-8");
        expectThrow<InvalidArgumentException>(call, -202, message);
        EXPECT_FALSE(m_settings.isOpen());
    }
}

TEST_F(SettingsTest, ReadsGroupsAndKeysStrictly) {
    const std::string path = write("[OTHER]\nY=2\n[TESSARY]\nPATH=/opt/t\xC3\xA9\nEMPTY=\n"
                                   "LIST=a,b\nSUB\\X=1\n");
    m_settings.open(path, "UTF-8");
    Strings groups = m_settings.lsGroups();
    std::sort(groups.begin(), groups.end());
    EXPECT_EQ(groups, Strings({"OTHER", "TESSARY"}));
    m_settings.chGroup("TESSARY");
    EXPECT_EQ(m_settings.pwdGroup(), "TESSARY");
    Strings keys = m_settings.lsKeys();
    std::sort(keys.begin(), keys.end());
    EXPECT_EQ(keys, Strings({"EMPTY", "LIST", "PATH"}));
    EXPECT_EQ(m_settings.lsGroups(), Strings({"SUB"}));
    EXPECT_EQ(m_settings.value("PATH").toStr(), "/opt/t\xC3\xA9");
    EXPECT_EQ(m_settings.value(std::string("EMPTY")).toStr(), "");
    EXPECT_EQ(m_settings.value("LIST").toStrList(), Strings({"a", "b"}));
    EXPECT_EQ(m_settings.value("MISSING", Variant(7)).toInt(), 7);
    expectThrow<NotFoundException>([&] { m_settings.value("MISSING"); }, -302, "Error: key not found.");
    // Only full paths from the top level enter a group.
    expectThrow<NotFoundException>([&] { m_settings.chGroup("SUB"); }, -302, "Error: group not found.");
    EXPECT_EQ(m_settings.pwdGroup(), "TESSARY");
    m_settings.backGroup();
    m_settings.backGroup();
    EXPECT_EQ(m_settings.pwdGroup(), "");
    m_settings.chGroup(std::string("TESSARY/SUB"));
    EXPECT_EQ(m_settings.value("X").toInt(), 1);

    // Another file: Qt keeps a parsed file for as long as it is unchanged.
    m_settings.open(write("[TESSARY]\nPATH=/opt/t\xC3\xA9\n", "latin.ini"), "ISO-8859-1");
    m_settings.chGroup("TESSARY");
    EXPECT_EQ(m_settings.value("PATH").toStr(), "/opt/t\xC3\x83\xC2\xA9");
}

TEST_F(SettingsTest, WritesTheFileWhenClosedOrReopened) {
    const std::string first = m_dir.filePath("first.ini").toStdString();
    const std::string second = m_dir.filePath("second.ini").toStdString();
    m_settings.open(first, "UTF-8");
    m_settings.chGroup("G");
    m_settings.setValue("K", Variant("v\xC3\xA4lue"));
    m_settings.setValue(std::string("N"), Variant(42));
    m_settings.open(second);
    m_settings.setValue("TOP", Variant("x"));
    m_settings.close();
    EXPECT_FALSE(m_settings.isOpen());
    EXPECT_EQ(read(first), "[G]\nK=v\xC3\xA4lue\nN=42\n");
    EXPECT_EQ(read(second), "[General]\nTOP=x\n");

    m_settings.open(first, "UTF-8");
    m_settings.chGroup("G");
    EXPECT_EQ(m_settings.value("K").toStr(), "v\xC3\xA4lue");
}

}  // namespace
