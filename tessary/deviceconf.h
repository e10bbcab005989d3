// The description of one device model: family, model, name, the features it
// has (DeviceCapabilities) and its register tables. Value records derived
// from nimb::Object: default construction equals clear(), copies are deep.
// Nothing here throws on bad data.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "nimb/json.h"
#include "nimb/object.h"

namespace tessary {

// 31 feature flags of a device model, all false when cleared.
class DeviceCapabilities : public nimb::Object {
public:
    bool hasCBattery : 1;
    bool hasChangeAutonomy : 1;
    bool hasFOutput : 1;
    bool hasFamily : 1;
    bool hasICBattery : 1;
    bool hasLineSens : 1;
    bool hasIOutput : 1;
    bool hasManualShutdown : 1;
    bool hasStandBy : 1;
    bool hasModel : 1;
    bool hasNightOff : 1;
    bool hasNominalFOutput : 1;
    bool hasNominalPOutput : 1;
    bool hasNominalVBattery : 1;
    bool hasNominalVInput : 1;
    bool hasNominalVOutput : 1;
    bool hasPOutput : 1;
    bool hasPowerLook : 1;
    bool hasSampIOutput : 1;
    bool hasSampVInput : 1;
    bool hasSampVOutput : 1;
    bool hasSetDischargeBattery : 1;
    bool hasSetICBattery : 1;
    bool hasShutdownTimer : 1;
    bool hasTemperature : 1;
    bool hasVBattery : 1;
    bool hasVInput : 1;
    bool hasVOutput : 1;
    bool hasVersion : 1;
    bool hasWakeUp : 1;
    bool hasSetLineSens : 1;

    DeviceCapabilities();
    DeviceCapabilities(const DeviceCapabilities& other) = default;
    ~DeviceCapabilities() override;
    DeviceCapabilities& operator=(const DeviceCapabilities& other) = default;

    void clear();
    // "name = 1|0" per flag in declared order, separated by ", ".
    std::string toString() const override;
    // Writes flag 9 under "hasStandby" but reads it from "hasStandBy": a
    // record written and read back by this system loses it, while a peer
    // writing "hasStandBy" is read correctly. Kept for compatibility.
    nimb::JsonObject toJson() const;
    void fromJson(const nimb::JsonObject& json);
};

// A value range of a model's register table.
struct DeviceRange {
    uint32_t start = 0;
    uint32_t size = 0;
};

// A named position (and bit, -1 for the whole value) in a model's table.
struct DeviceAlias {
    std::string name;
    uint32_t pos = 0;
    int bit = -1;
};

// A name and a value text.
struct DevicePair {
    std::string name;
    std::string value;
};

class DeviceConfig : public nimb::Object {
public:
    int32_t family;  // cleared -1
    int32_t model;   // cleared -1
    std::string name;  // cleared "AUTO"
    DeviceCapabilities caps;

    // The model's tables; only in the text form, never in JSON.
    std::vector<DeviceRange> ranges;
    std::map<std::string, DeviceAlias> aliases;
    std::map<std::string, DevicePair> consts;
    std::map<std::string, DeviceAlias> vars;
    std::map<std::string, DeviceAlias> flags;
    std::map<std::string, DevicePair> actions;

    DeviceConfig();
    DeviceConfig(const DeviceConfig& other) = default;
    ~DeviceConfig() override;
    DeviceConfig& operator=(const DeviceConfig& other) = default;

    void clear();
    std::string toString() const override;
    // "family", "model" (numbers), "name" (text), "caps" (object).
    nimb::JsonObject toJson() const;
    // Clears, then reads the four keys; numbers are truncated to integers.
    void fromJson(const nimb::JsonObject& json);
};

}  // namespace tessary
