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

// A failed open leaves it closed; close() writes the file, a closed object
// fails but for defaults, and an opened one reads groups and keys strictly.
TEST(SettingsTest, OpenCloseWriteAndRead) {
    QTemporaryDir dir;
    const std::string ini = dir.filePath("test.ini").toStdString();
    Settings settings;
    EXPECT_EQ(settings.value("KEY", Variant("fallback")).toStr(), "fallback");
    const std::pair<std::function<void()>, std::string> opens[] = {
        {[&] { settings.open(nullptr); }, "Empty \"filename\" argument."},
        {[&] { settings.open(ini, "NO-SUCH-CODEC"); }, "Invalid codec: \"NO-SUCH-CODEC\"."}};
    for (const auto& [open, message] : opens) {
        settings.open(ini, "UTF-8");
        expectFailure<InvalidArgumentException>(open, message, -202);
        EXPECT_FALSE(settings.isOpen());
    }
    settings.open(ini, "UTF-8");
    settings.chGroup("G");
    settings.setValue("K", Variant("v\xC3\xA4lue"));
    settings.setValue(std::string("N"), Variant(42));
    settings.close();
    EXPECT_EQ(readFile(ini), "[G]\nK=v\xC3\xA4lue\nN=42\n");
    const std::function<void()> calls[] = {[&] { settings.chGroup("G"); },
                                           [&] { settings.setValue("K", 1); }};
    for (const auto& call : calls)
        expectFailure<FileNotOpenException>(call, "Error: file not opened.", -32012);

    writeFile(ini, "[OTHER]\nY=2\n[TESSARY]\nEMPTY=\nPATH=/opt\nSUB\\X=1\n");
    settings.open(ini, "UTF-8");
    EXPECT_EQ(settings.lsGroups(), Strings({"OTHER", "TESSARY"}));
    settings.chGroup("TESSARY");
    EXPECT_EQ(settings.lsKeys(), Strings({"EMPTY", "PATH"}));
    EXPECT_EQ(settings.lsGroups(), Strings({"SUB"}));
    expectFailure<NotFoundException>([&] { settings.value("MISSING"); }, "Error: key not found.",
                                     -302);
    // Only full paths from the top level enter a group.
    expectFailure<NotFoundException>([&] { settings.chGroup("SUB"); }, "Error: group not found.",
                                     -302);
    EXPECT_EQ(settings.pwdGroup(), "TESSARY");
    settings.backGroup();
    EXPECT_EQ(settings.pwdGroup(), "");
    settings.chGroup(std::string("TESSARY/SUB"));
    EXPECT_EQ(settings.value("X").toInt(), 1);
}

}  // namespace
