// Whole-file reading and writing for the tests and the daemon benchmark,
// without GoogleTest.
#pragma once

#include <sys/stat.h>

#include <fstream>
#include <sstream>
#include <string>

namespace support {

inline std::string readFile(const std::string& path) {
    std::ifstream in(path);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

inline void writeFile(const std::string& path, const std::string& text, mode_t mode = 0644) {
    std::ofstream(path, std::ios::trunc) << text;
    chmod(path.c_str(), mode);
}

}  // namespace support
