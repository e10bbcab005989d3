#include "nimb/file.h"

#include <QDir>
#include <QFile>
#include <QString>

namespace nimb {

namespace {

// Every character that separates path components when a path is split.
const char* const SECTION_SEPARATORS = "\\:;/";

std::string text(const char* path) { return path ? std::string(path) : std::string(); }

}  // namespace

char File::getPathDelimiter() {
    const ushort code = QDir::separator().unicode();
    return code > 0xFF ? '\0' : static_cast<char>(code);
}

std::string File::includePathDelimiter(const char* path, char delimiter) {
    std::string result = text(path);
    // An empty directory stands for the root; callers rely on that.
    if (result.empty() || result.back() != delimiter)
        result += delimiter;
    return result;
}

std::string File::includePathDelimiter(const std::string& path, char delimiter) {
    return includePathDelimiter(path.c_str(), delimiter);
}

std::string File::includePathDelimiter(const char* path) {
    return includePathDelimiter(path, getPathDelimiter());
}

std::string File::includePathDelimiter(const std::string& path) {
    return includePathDelimiter(path.c_str());
}

std::string File::excludePathDelimiter(const char* path) {
    std::string result = text(path);
    if (!result.empty() && (result.back() == '/' || result.back() == '\\'))
        result.pop_back();
    return result;
}

std::string File::excludePathDelimiter(const std::string& path) {
    return excludePathDelimiter(path.c_str());
}

std::string File::extractFilePath(const char* path) {
    if (!path)
        return std::string();
    const std::string source(path);
    const std::string::size_type slash = source.find_last_of("/\\");
    const char delimiter =
        slash != std::string::npos && slash >= 1 ? source[slash] : getPathDelimiter();
    // All sections but the last, as they stand in the path: everything before
    // the last separator of any kind.
    const std::string::size_type last = source.find_last_of(SECTION_SEPARATORS);
    std::string result = last == std::string::npos ? std::string() : source.substr(0, last);
    result += delimiter;
    return result;
}

std::string File::extractFilePath(const std::string& path) {
    return extractFilePath(path.c_str());
}

std::string File::extractFileName(const char* path) {
    const std::string source = text(path);
    const std::string::size_type last = source.find_last_of(SECTION_SEPARATORS);
    return last == std::string::npos ? source : source.substr(last + 1);
}

std::string File::extractFileName(const std::string& path) {
    return extractFileName(path.c_str());
}

std::string File::extractFileExt(const char* path) {
    const std::string name = extractFileName(path);
    const std::string::size_type dot = name.rfind('.');
    return dot == std::string::npos ? std::string() : name.substr(dot + 1);
}

std::string File::extractFileExt(const std::string& path) {
    return extractFileExt(path.c_str());
}

void File::setCurDir(const char* path) {
    if (!path || !*path || !QDir::setCurrent(QFile::decodeName(path)))
        throw FileException("Error setting current application path", ERR_SET_APPLICATION_PATH);
}

void File::setCurDir(const std::string& path) { setCurDir(path.c_str()); }

bool File::fileExists(const std::string& path) { return fileExists(path.c_str()); }

}  // namespace nimb
