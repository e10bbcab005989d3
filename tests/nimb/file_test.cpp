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
        {nullptr, "", "", ""}};
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
        {nullptr, "/", ""}};
    for (const auto& [path, with, without] : ends) {
        EXPECT_EQ(File::includePathDelimiter(path), with);
        EXPECT_EQ(File::excludePathDelimiter(path), without);
    }
    EXPECT_EQ(File::includePathDelimiter("/opt/", '\\'), "/opt/\\");
}

// In a temporary folder; the current directory is put back before the
// checks of fileExists().
TEST(FileSystemTest, CurrentDirectoryAndFileExists) {
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    const std::string root = QDir(dir.path()).canonicalPath().toStdString();
    const auto path = [&root](const std::string& name) { return root + "/" + name; };
    const QString saved = QDir::currentPath();
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
    ASSERT_TRUE(QDir::setCurrent(saved));

    std::ofstream(path("file")) << "x";
    ASSERT_EQ(mkdir(path("dir").c_str(), 0755), 0);
    ASSERT_EQ(symlink(path("missing").c_str(), path("dangling").c_str()), 0);
    ASSERT_EQ(symlink(path("loop").c_str(), path("loop").c_str()), 0);
    const std::pair<const char*, bool> rows[] = {
        {"file", true}, {"dir", false}, {"dangling", false}, {"file/x", false}};
    for (const auto& [name, exists] : rows)
        EXPECT_EQ(File::fileExists(path(name)), exists) << name;
    EXPECT_FALSE(File::fileExists(static_cast<const char*>(nullptr)));
    expectFailure<nimb::SystemException>(
        [&path] { File::fileExists(path("loop")); },
        "Error checking if file \"" + path("loop") + "\" exists: Too many levels of symbolic links",
        -305);
}

}  // namespace
