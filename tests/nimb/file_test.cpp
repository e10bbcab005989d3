#include "nimb/file.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QTemporaryDir>

#include <cerrno>
#include <fstream>
#include <string>
#include <unistd.h>

namespace {

using nimb::File;

// An operation of one argument that may be null; rows name the operation.
struct HelperRow {
    const char* operation;
    const char* path;
    std::string expected;
};

std::string apply(const HelperRow& row) {
    const std::string op = row.operation;
    if (op == "include")
        return File::includePathDelimiter(row.path);
    if (op == "includeBackslash")
        return File::includePathDelimiter(row.path, '\\');
    if (op == "exclude")
        return File::excludePathDelimiter(row.path);
    if (op == "path")
        return File::extractFilePath(row.path);
    if (op == "name")
        return File::extractFileName(row.path);
    return File::extractFileExt(row.path);
}

class FileHelperTest : public ::testing::TestWithParam<HelperRow> {};

TEST_P(FileHelperTest, GivesExpectedText) {
    const HelperRow& row = GetParam();
    EXPECT_EQ(apply(row), row.expected) << row.operation << "(" << (row.path ? row.path : "null")
                                        << ")";
}

INSTANTIATE_TEST_SUITE_P(
    Paths, FileHelperTest,
    ::testing::Values(
        HelperRow{"include", "", "/"}, HelperRow{"include", nullptr, "/"},
        HelperRow{"include", "/opt/x/", "/opt/x/"}, HelperRow{"include", "/opt/x", "/opt/x/"},
        HelperRow{"include", "c:\\x\\", "c:\\x\\/"}, HelperRow{"includeBackslash", "", "\\"},
        HelperRow{"includeBackslash", "c:\\x\\", "c:\\x\\"},
        HelperRow{"includeBackslash", "/opt/x/", "/opt/x/\\"},
        HelperRow{"exclude", "", ""}, HelperRow{"exclude", nullptr, ""},
        HelperRow{"exclude", "/opt/x//", "/opt/x/"}, HelperRow{"exclude", "c:\\x\\", "c:\\x"},
        HelperRow{"exclude", "/opt/x", "/opt/x"}, HelperRow{"exclude", "/", ""},
        HelperRow{"path", nullptr, ""}, HelperRow{"path", "", "/"},
        HelperRow{"path", "/usr/lib/client.so", "/usr/lib/"},
        HelperRow{"path", "client.so", "/"}, HelperRow{"path", "C:file", "C/"},
        HelperRow{"path", "/client.so", "/"}, HelperRow{"path", "/a/b/", "/a/b/"},
        HelperRow{"path", "c:\\suite\\client.so", "c:\\suite\\"},
        HelperRow{"path", "a;b/c", "a;b/"}, HelperRow{"path", "dir\\x", "dir\\"},
        HelperRow{"name", nullptr, ""}, HelperRow{"name", "/usr/lib/client.so", "client.so"},
        HelperRow{"name", "/a/b/", ""}, HelperRow{"name", "client.so", "client.so"},
        HelperRow{"name", "c:\\x\\y.ini", "y.ini"}, HelperRow{"name", "C:file", "file"},
        HelperRow{"name", "a;b", "b"}, HelperRow{"ext", nullptr, ""},
        HelperRow{"ext", "/a/b/noext", ""}, HelperRow{"ext", "archive.tar.gz", "gz"},
        HelperRow{"ext", ".profile", "profile"}, HelperRow{"ext", "/a.d/file", ""},
        HelperRow{"ext", "/a/name.", ""}));

TEST(FileTest, StringOverloadsAndDelimiter) {
    EXPECT_EQ(File::getPathDelimiter(), '/');
    EXPECT_EQ(File::includePathDelimiter(std::string("/opt")), "/opt/");
    EXPECT_EQ(File::includePathDelimiter(std::string(), '\\'), "\\");
    EXPECT_EQ(File::excludePathDelimiter(std::string("/opt/")), "/opt");
    EXPECT_EQ(File::extractFilePath(std::string("/usr/lib/client.so")), "/usr/lib/");
    EXPECT_EQ(File::extractFileName(std::string("/usr/lib/client.so")), "client.so");
    EXPECT_EQ(File::extractFileExt(std::string("/usr/lib/client.so")), "so");
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
    void write(const std::string& name) const { std::ofstream(path(name)) << "x"; }

    QTemporaryDir m_dir;
    std::string m_root;
    QString m_saved;
};

TEST_F(FileSystemTest, CurrentDirectoryRoundTrip) {
    ASSERT_TRUE(QDir().mkpath(QString::fromStdString(path("sub dir"))));
    File::setCurDir(path("sub dir"));
    EXPECT_EQ(File::getCurDir(), path("sub dir") + "/");
    EXPECT_EQ(QDir::currentPath().toStdString(), path("sub dir"));
    File::setCurDir("..");
    EXPECT_EQ(File::getCurDir(), m_root + "/");
    File::setCurDir("/");
    EXPECT_EQ(File::getCurDir(), "/");
}

TEST_F(FileSystemTest, SetCurDirFailuresKeepTheDirectory) {
    write("plain");
    File::setCurDir(m_root);
    for (const char* bad : {static_cast<const char*>(nullptr), "", "missing", "plain"}) {
        try {
            File::setCurDir(bad);
            ADD_FAILURE() << "no exception for " << (bad ? bad : "null");
        } catch (const nimb::FileException& e) {
            EXPECT_EQ(e.message(), "Error setting current application path");
            EXPECT_EQ(e.code(), -3201);
        }
        EXPECT_EQ(File::getCurDir(), m_root + "/");
    }
}

TEST_F(FileSystemTest, GetCurDirOfRemovedDirectoryThrows) {
    ASSERT_TRUE(QDir().mkpath(QString::fromStdString(path("gone"))));
    File::setCurDir(path("gone"));
    ASSERT_EQ(rmdir(path("gone").c_str()), 0);
    try {
        File::getCurDir();
        FAIL() << "no exception";
    } catch (const nimb::SystemException& e) {
        EXPECT_EQ(e.message(), "Error getting current directory: No such file or directory");
        EXPECT_EQ(e.code(), -305);
    }
}

TEST_F(FileSystemTest, FileExistsOnlyForNonDirectories) {
    write("file");
    ASSERT_TRUE(QDir().mkpath(QString::fromStdString(path("dir"))));
    ASSERT_EQ(symlink(path("file").c_str(), path("link").c_str()), 0);
    ASSERT_EQ(symlink(path("missing").c_str(), path("dangling").c_str()), 0);
    const struct {
        std::string path;
        bool expected;
    } rows[] = {
        {path("file"), true},      {path("link"), true},        {path("dir"), false},
        {path("dir/"), false},     {path("missing"), false},    {path("dangling"), false},
        {path("file/x"), false},   {path("missing/x"), false},  {"", false},
    };
    for (const auto& row : rows)
        EXPECT_EQ(File::fileExists(row.path), row.expected) << row.path;
    EXPECT_FALSE(File::fileExists(static_cast<const char*>(nullptr)));
}

TEST_F(FileSystemTest, FileExistsThrowsOnOtherFailures) {
    ASSERT_EQ(symlink(path("loop").c_str(), path("loop").c_str()), 0);
    try {
        File::fileExists(path("loop"));
        FAIL() << "no exception";
    } catch (const nimb::SystemException& e) {
        EXPECT_EQ(e.message(), "Error checking if file \"" + path("loop") +
                                   "\" exists: Too many levels of symbolic links");
        EXPECT_EQ(e.code(), -305);
    }
}

}  // namespace
