// Path-string helpers and the few file-system queries the suite needs.
#pragma once

#include "nimb/object.h"

#include <string>

namespace nimb {

// Static helpers. Path separators recognised when splitting are "/", "\",
// ":" and ";", whatever the platform. A null path is treated as empty.
class File : public Object {
public:
    // The platform's directory separator; 0 if it does not fit 8 bits.
    static char getPathDelimiter();

    // path with the delimiter appended unless it already ends in it. An
    // empty path gives the delimiter alone (an empty directory is the root).
    static std::string includePathDelimiter(const char* path, char delimiter);
    static std::string includePathDelimiter(const std::string& path, char delimiter);
    static std::string includePathDelimiter(const char* path);
    static std::string includePathDelimiter(const std::string& path);

    // path without one trailing "/" or "\" (only one is removed).
    static std::string excludePathDelimiter(const char* path);
    static std::string excludePathDelimiter(const std::string& path);

    // The directory part ending in a delimiter: "/usr/lib/client.so" gives
    // "/usr/lib/", a bare "client.so" gives the platform delimiter alone.
    static std::string extractFilePath(const char* path);
    static std::string extractFilePath(const std::string& path);
    // The last component; "" when the path ends in a separator.
    static std::string extractFileName(const char* path);
    static std::string extractFileName(const std::string& path);
    // What follows the last "." of the file name, without the dot; "" when
    // there is no dot.
    static std::string extractFileExt(const char* path);
    static std::string extractFileExt(const std::string& path);

    // Makes path the process's current directory. Throws FileException
    // (-3201) "Error setting current application path" on failure, a null or
    // empty path included.
    static void setCurDir(const char* path);
    static void setCurDir(const std::string& path);
    // The current directory ending in a delimiter. Throws SystemException (-305).
    static std::string getCurDir();

    // True when path exists and is not a directory; false when it or one of
    // its parent components is missing, or a parent is not a directory.
    // Throws SystemException (-305) on any other failure (for example EACCES).
    static bool fileExists(const char* path);
    static bool fileExists(const std::string& path);
};

}  // namespace nimb
