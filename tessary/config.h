// The suite-wide preferences record and the lookup of the suite's
// installation directory and of the per-user directory.
#pragma once

#include <cstdint>
#include <string>

#include "nimb/json.h"
#include "nimb/object.h"

namespace tessary {

// User-interface preferences shared by the suite's programs. Default
// construction equals clear(); copies are deep; nothing here throws on bad
// data.
class TesConfig : public nimb::Object {
public:
    uint32_t id;      // 1
    uint32_t detect;  // 1
    uint32_t theme;   // 1
    uint32_t style;   // 2

    TesConfig();
    ~TesConfig() override;
    void clear();
    // "tesConfig: {id=1,detect=1,theme=1,style=2}".
    std::string toString() const override;
    // "id", "detect", "theme" and "style" as numbers.
    nimb::JsonObject toJson() const;
    // Clears, then reads "detect", "theme" and "style" (numbers truncated; a
    // missing key reads as 0). "id" is never read back and stays 1.
    TesConfig& fromJson(const nimb::JsonObject& json);

    // The suite's directory, ending in "/": the PATH key of the group
    // TESSARY in "/etc/tessary.conf", else the running executable's
    // directory, else the current directory, else "/". Never throws.
    static std::string getTessaryPath();
    // The per-user directory, ending in "/": "$HOME/.tessary/", with the
    // password database's home directory when HOME is not set, and the
    // suite's directory itself when neither is known. Never throws.
    static std::string getUserTessaryPath();
};

}  // namespace tessary
