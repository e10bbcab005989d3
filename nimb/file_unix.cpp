#include "nimb/file.h"
#include "nimb/system.h"

#include <cerrno>
#include <sys/stat.h>
#include <unistd.h>

namespace nimb {

std::string File::getCurDir() {
    char buffer[4097];
    if (!getcwd(buffer, sizeof buffer)) {
        const int error = errno;
        throw SystemException("Error getting current directory: " + System::getOSErrorMessage(error),
                              ERR_SYSTEM);
    }
    return includePathDelimiter(buffer);
}

bool File::fileExists(const char* path) {
    if (!path || !*path)
        return false;
    struct stat info;
    if (stat(path, &info) == 0)
        return !S_ISDIR(info.st_mode);
    // A missing file and a path through a non-directory both mean "no such file".
    const int error = errno;
    if (error == ENOENT || error == ENOTDIR)
        return false;
    throw SystemException("Error checking if file \"" + std::string(path) + "\" exists: " +
                              System::getOSErrorMessage(error),
                          ERR_SYSTEM);
}

}  // namespace nimb
