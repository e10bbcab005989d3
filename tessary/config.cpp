#include "tessary/config.h"
#include "tessary/config_testing.h"

#include <pwd.h>
#include <unistd.h>

#include <cstdlib>

#include "nimb/file.h"
#include "nimb/settings.h"
#include "nimb/system.h"

namespace tessary {

namespace {

const char* const SUITE_CONFIG_FILE = "/etc/tessary.conf";

std::string& suiteConfigFileRef() {
    static std::string path = SUITE_CONFIG_FILE;
    return path;
}

std::string num(uint32_t value) { return std::to_string(value); }

// A JSON number truncated toward zero and wrapped to 32 bits, as a plain cast
// does on the suite's platforms; NaN and values beyond 64 bits read as 0
// instead of being undefined.
uint32_t truncated(double value) {
    if (!(value > -9.2e18 && value < 9.2e18))
        return 0;
    return static_cast<uint32_t>(static_cast<int64_t>(value));
}

// The PATH key of the group TESSARY, or "" when the file, the group or the
// key is missing. A value with commas reads as a list, which the variant's
// text joins back with ",".
std::string configuredSuitePath() {
    try {
        nimb::Settings settings;
        settings.open(suiteConfigFileRef(), "UTF-8");
        settings.chGroup("TESSARY");
        return settings.value("PATH").toStr();
    } catch (...) {
        return std::string();
    }
}

std::string exeDirectory() {
    try {
        return nimb::File::extractFilePath(nimb::System::getExeFileName());
    } catch (...) {
        return std::string();
    }
}

std::string currentDirectory() {
    try {
        return nimb::File::getCurDir();
    } catch (...) {
        return std::string();
    }
}

std::string homeDirectory() {
    const char* home = std::getenv("HOME");
    if (home != nullptr && *home != '\0')
        return home;
    const passwd* entry = getpwuid(getuid());
    if (entry != nullptr && entry->pw_dir != nullptr)
        return entry->pw_dir;
    return std::string();
}

}  // namespace

namespace testing {

void setSuiteConfigFile(const std::string& path) {
    suiteConfigFileRef() = path.empty() ? std::string(SUITE_CONFIG_FILE) : path;
}

std::string suiteConfigFile() { return suiteConfigFileRef(); }

}  // namespace testing

TesConfig::TesConfig() { clear(); }
TesConfig::~TesConfig() = default;

void TesConfig::clear() {
    id = 1;
    detect = 1;
    theme = 1;
    style = 2;
}

std::string TesConfig::toString() const {
    return "tesConfig: {id=" + num(id) + "," + "detect=" + num(detect) + "," + "theme=" + num(theme) +
           "," + "style=" + num(style) + "}";
}

nimb::JsonObject TesConfig::toJson() const {
    nimb::JsonObject json;
    json.setValue("id", nimb::JsonValue(id));
    json.setValue("detect", nimb::JsonValue(detect));
    json.setValue("theme", nimb::JsonValue(theme));
    json.setValue("style", nimb::JsonValue(style));
    return json;
}

// The id is written but never read back: it identifies the writer's record.
TesConfig& TesConfig::fromJson(const nimb::JsonObject& json) {
    clear();
    detect = truncated(json.value("detect").toDouble());
    theme = truncated(json.value("theme").toDouble());
    style = truncated(json.value("style").toDouble());
    return *this;
}

std::string TesConfig::getTessaryPath() {
    std::string path = configuredSuitePath();
    if (path.empty())
        path = exeDirectory();
    if (path.empty())
        path = currentDirectory();
    if (path.empty())
        path = std::string(1, nimb::File::getPathDelimiter());
    return nimb::File::includePathDelimiter(path);
}

std::string TesConfig::getUserTessaryPath() {
    const std::string home = homeDirectory();
    // Without a home directory the suite's directory stands in for the user's.
    if (home.empty())
        return nimb::File::includePathDelimiter(getTessaryPath());
    return nimb::File::includePathDelimiter(nimb::File::includePathDelimiter(home) + ".tessary/");
}

}  // namespace tessary
