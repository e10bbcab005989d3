// Test-only controls of tessary::TesConfig. Only unit tests include this
// header; the daemon and the plug-ins never call these functions.
#pragma once

#include <string>

namespace tessary {
namespace testing {

// Makes TesConfig::getTessaryPath() read path instead of the system's
// "/etc/tessary.conf"; an empty path restores the real one. Not thread-safe:
// call it while no other thread looks the suite's directory up.
void setSuiteConfigFile(const std::string& path);
// The configuration file currently read.
std::string suiteConfigFile();

}  // namespace testing
}  // namespace tessary
