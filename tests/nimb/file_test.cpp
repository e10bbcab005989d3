#include "nimb/file.h"
#include "tests/support.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QTemporaryDir>

#include <fstream>
#include <functional>
#include <string>
#include <unistd.h>

using support::expectFailure;

namespace {

using nimb::File;

TEST(FileTest, PathHelpers) {
    using Helper = std::function<std::string(const char*)>;
    const Helper include = [](const char* p) { return File::includePathDelimiter(p); };
    const Helper backslash = [](const char* p) { return File::includePathDelimiter(p, '\\'); };
    const Helper exclude = [](const char* p) { return File::excludePathDelimiter(p); };
    const Helper dir = [](const char* p) { return File::extractFilePath(p); };
    const Helper name = [](const char* p) { return File::extractFileName(p); };
    const Helper ext = [](const char* p) { return File::extractFileExt(p); };
    const struct {
        const Helper& helper;
        const char* path;
        const char* expected;
    } rows[] = {
        {include, "", "/"}, {include, nullptr, "/"}, {include, "/opt/x/", "/opt/x/"},
        {include, "/opt/x", "/opt/x/"}, {backslash, "", "\\"}, {backslash, "c:\\x\\", "c:\\x\\"},
        {backslash, "/opt/", "/opt/\\"}, {exclude, nullptr, ""}, {exclude, "/opt/x//", "/opt/x/"},
        {exclude, "c:\\x\\", "c:\\x"}, {exclude, "/opt/x", "/opt/x"},
        {dir, nullptr, ""}, {dir, "/usr/lib/client.so", "/usr/lib/"}, {dir, "client.so", "/"},
        {dir, "C:file", "C/"}, {dir, "/client.so", "/"}, {dir, "/a/b/", "/a/b/"},
        {dir, "c:\\suite\\x.so", "c:\\suite\\"}, {dir, "a;b/c", "a;b/"},
        {name, nullptr, ""}, {name, "/usr/lib/client.so", "client.so"}, {name, "/a/b/", ""},
        {name, "x.so", "x.so"}, {name, "c:\\x\\y.ini", "y.ini"}, {name, "a;b", "b"},
        {ext, nullptr, ""}, {ext, "/a/b/noext", ""}, {ext, "archive.tar.gz", "gz"},
        {ext, ".profile", "profile"}, {ext, "/a.d/file", ""}, {ext, "/a/name.", ""},
    };
    for (const auto& row : rows)
        EXPECT_EQ(row.helper(row.path), row.expected) << (row.path ? row.path : "null");
    EXPECT_EQ(File::getPathDelimiter(), '/');
    EXPECT_EQ(File::extractFilePath(std::string("/usr/lib/client.so")), "/usr/lib/");
}

// Works in a temporary folder and puts the current directory back afterwards.
class FileSystemTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(m_dir.isValid());
        m_root = QDir(m_dir.path()).canonicalPath().toStdString();
        m_saved = QDir::currentPath();
    }
    void TearDown() override { ASSERT_TRUE(QDir::setCurrent(m_saved)); }
    std::string path(const std::string& name) const { return m_root + "/" + name; }

    QTemporaryDir m_dir;
    std::string m_root;
    QString m_saved;
};

TEST_F(FileSystemTest, CurrentDirectory) {
    ASSERT_EQ(mkdir(path("sub dir").c_str(), 0755), 0);
    std::ofstream(path("plain")) << "x";
    File::setCurDir(path("sub dir"));
    EXPECT_EQ(File::getCurDir(), path("sub dir") + "/");
    File::setCurDir("..");
    EXPECT_EQ(File::getCurDir(), m_root + "/");
    for (const char* bad : {static_cast<const char*>(nullptr), "", "missing", "plain"}) {
        expectFailure<nimb::FileException>([bad] { File::setCurDir(bad); },
                                           "Error setting current application path", -3201);
        EXPECT_EQ(File::getCurDir(), m_root + "/");
    }
    // A current directory that was removed cannot be read back.
    File::setCurDir(path("sub dir"));
    ASSERT_EQ(rmdir(path("sub dir").c_str()), 0);
    expectFailure<nimb::SystemException>(
        [] { File::getCurDir(); }, "Error getting current directory: No such file or directory", -305);
}

TEST_F(FileSystemTest, FileExists) {
    std::ofstream(path("file")) << "x";
    ASSERT_EQ(mkdir(path("dir").c_str(), 0755), 0);
    ASSERT_EQ(symlink(path("file").c_str(), path("link").c_str()), 0);
    ASSERT_EQ(symlink(path("missing").c_str(), path("dangling").c_str()), 0);
    ASSERT_EQ(symlink(path("loop").c_str(), path("loop").c_str()), 0);
    const struct {
        std::string path;
        bool expected;
    } rows[] = {{path("file"), true},     {path("link"), true},      {path("dir"), false},
                {path("missing"), false}, {path("dangling"), false}, {path("file/x"), false},
                {path("missing/x"), false}, {"", false}};
    for (const auto& row : rows)
        EXPECT_EQ(File::fileExists(row.path), row.expected) << row.path;
    EXPECT_FALSE(File::fileExists(static_cast<const char*>(nullptr)));
    expectFailure<nimb::SystemException>(
        [this] { File::fileExists(path("loop")); },
        "Error checking if file \"" + path("loop") + "\" exists: Too many levels of symbolic links",
        -305);
}

}  // namespace
