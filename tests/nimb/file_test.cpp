#include "nimb/file.h"
#include "tests/support.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QTemporaryDir>

#include <unistd.h>
#include <fstream>
#include <string>
#include <tuple>

using support::expectFailure;

namespace {

using nimb::File;

TEST(FileTest, PathHelpers) {
    // The path, then its folder, name and extension; ':', ';' and '\\'
    // separate names too, and a folder ends in the path's own delimiter ('/'
    // when it has none).
    const std::tuple<const char*, std::string, std::string, std::string> parts[] = {
        {"/usr/lib/client.so", "/usr/lib/", "client.so", "so"},
        {"client.tar.gz", "/", "client.tar.gz", "gz"},
        {"c:\\suite\\x.so", "c:\\suite\\", "x.so", "so"},
        {"C:file", "C/", "file", ""},
        {"/a.d/b;noext", "/a.d/b/", "noext", ""},
        {nullptr, "", "", ""},
    };
    for (const auto& [path, dir, name, ext] : parts) {
        SCOPED_TRACE(path ? path : "null");
        EXPECT_EQ(File::extractFilePath(path), dir);
        EXPECT_EQ(File::extractFileName(path), name);
        EXPECT_EQ(File::extractFileExt(path), ext);
    }
    // The path, then with and without a trailing delimiter.
    const std::tuple<const char*, std::string, std::string> ends[] = {
        {"/opt/x", "/opt/x/", "/opt/x"},
        {"/opt/x//", "/opt/x//", "/opt/x/"},
        {"c:\\x\\", "c:\\x\\/", "c:\\x"},
        {nullptr, "/", ""},
    };
    for (const auto& [path, with, without] : ends) {
        EXPECT_EQ(File::includePathDelimiter(path), with);
        EXPECT_EQ(File::excludePathDelimiter(path), without);
    }
    EXPECT_EQ(File::includePathDelimiter("/opt/", '\\'), "/opt/\\");
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

TEST_F(FileSystemTest, CurrentDirectoryAndFileExists) {
    ASSERT_EQ(mkdir(path("sub dir").c_str(), 0755), 0);
    File::setCurDir(path("sub dir"));
    EXPECT_EQ(File::getCurDir(), path("sub dir") + "/");
    for (const char* bad : {static_cast<const char*>(nullptr), "", "missing"}) {
        expectFailure<nimb::FileException>([bad] { File::setCurDir(bad); },
                                           "Error setting current application path", -3201);
        EXPECT_EQ(File::getCurDir(), path("sub dir") + "/");
    }
    // A current directory that was removed cannot be read back.
    ASSERT_EQ(rmdir(path("sub dir").c_str()), 0);
    expectFailure<nimb::SystemException>(
        [] { File::getCurDir(); }, "Error getting current directory: No such file or directory",
        -305);

    std::ofstream(path("file")) << "x";
    ASSERT_EQ(mkdir(path("dir").c_str(), 0755), 0);
    ASSERT_EQ(symlink(path("missing").c_str(), path("dangling").c_str()), 0);
    ASSERT_EQ(symlink(path("loop").c_str(), path("loop").c_str()), 0);
    const std::pair<std::string, bool> rows[] = {{path("file"), true},
                                                 {path("dir"), false},
                                                 {path("dangling"), false},
                                                 {path("file/x"), false}};
    for (const auto& [name, exists] : rows)
        EXPECT_EQ(File::fileExists(name), exists) << name;
    EXPECT_FALSE(File::fileExists(static_cast<const char*>(nullptr)));
    expectFailure<nimb::SystemException>(
        [this] { File::fileExists(path("loop")); },
        "Error checking if file \"" + path("loop") + "\" exists: Too many levels of symbolic links",
        -305);
}

}  // namespace
