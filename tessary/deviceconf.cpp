#include "tessary/deviceconf.h"

#include <sstream>

namespace tessary {

namespace {

// Applies f(name, reference-getter) to every flag in declared order. Bit
// fields cannot be bound to references, so each entry reads and writes.
struct CapEntry {
    const char* name;
    bool (*get)(const DeviceCapabilities&);
    void (*set)(DeviceCapabilities&, bool);
};

#define CAP(flag) \
    { #flag, [](const DeviceCapabilities& c) -> bool { return c.flag; }, \
      [](DeviceCapabilities& c, bool v) { c.flag = v; } }

const CapEntry CAPS[] = {
    CAP(hasCBattery), CAP(hasChangeAutonomy), CAP(hasFOutput), CAP(hasFamily),
    CAP(hasICBattery), CAP(hasLineSens), CAP(hasIOutput), CAP(hasManualShutdown),
    CAP(hasStandBy), CAP(hasModel), CAP(hasNightOff), CAP(hasNominalFOutput),
    CAP(hasNominalPOutput), CAP(hasNominalVBattery), CAP(hasNominalVInput),
    CAP(hasNominalVOutput), CAP(hasPOutput), CAP(hasPowerLook), CAP(hasSampIOutput),
    CAP(hasSampVInput), CAP(hasSampVOutput), CAP(hasSetDischargeBattery),
    CAP(hasSetICBattery), CAP(hasShutdownTimer), CAP(hasTemperature),
    CAP(hasVBattery), CAP(hasVInput), CAP(hasVOutput), CAP(hasVersion),
    CAP(hasWakeUp), CAP(hasSetLineSens),
};

#undef CAP

const int STANDBY = 8;
const char* const STANDBY_WRITE_KEY = "hasStandby";

}  // namespace

DeviceCapabilities::DeviceCapabilities() { clear(); }
DeviceCapabilities::~DeviceCapabilities() = default;

void DeviceCapabilities::clear()
{
    for (const CapEntry& e : CAPS)
        e.set(*this, false);
}

std::string DeviceCapabilities::toString() const
{
    std::ostringstream out;
    bool first = true;
    for (const CapEntry& e : CAPS) {
        out << (first ? "" : ", ") << e.name << " = " << (e.get(*this) ? 1 : 0);
        first = false;
    }
    return out.str();
}

nimb::JsonObject DeviceCapabilities::toJson() const
{
    nimb::JsonObject json;
    for (int i = 0; i < int(sizeof CAPS / sizeof CAPS[0]); ++i)
        json.setValue(i == STANDBY ? STANDBY_WRITE_KEY : CAPS[i].name,
                      nimb::JsonValue(CAPS[i].get(*this) ? 1 : 0));
    return json;
}

void DeviceCapabilities::fromJson(const nimb::JsonObject& json)
{
    clear();
    for (const CapEntry& e : CAPS)
        e.set(*this, json.value(e.name).toBool());
}

DeviceConfig::DeviceConfig() { clear(); }
DeviceConfig::~DeviceConfig() = default;

void DeviceConfig::clear()
{
    family = -1;
    model = -1;
    name = "AUTO";
    caps.clear();
    ranges.clear();
    aliases.clear();
    consts.clear();
    vars.clear();
    flags.clear();
    actions.clear();
}

namespace {

void printAliases(std::ostream& out, const char* label,
                  const std::map<std::string, DeviceAlias>& map)
{
    out << label << " [";
    bool first = true;
    for (const auto& kv : map) {
        out << (first ? "" : ",") << "{Name = " << kv.second.name << ", Pos = "
            << kv.second.pos << ", bit = " << kv.second.bit << "}";
        first = false;
    }
    out << "]\n";
}

void printPairs(std::ostream& out, const char* label,
                const std::map<std::string, DevicePair>& map)
{
    out << label << " [";
    bool first = true;
    for (const auto& kv : map) {
        out << (first ? "" : ",") << "{Name = " << kv.second.name << ", Value = "
            << kv.second.value << "}";
        first = false;
    }
    out << "]\n";
}

}  // namespace

std::string DeviceConfig::toString() const
{
    std::ostringstream out;
    out << "Family = " << family << "\n"
        << "Model  = " << model << "\n"
        << "Name   = " << name << "\n"
        << "Caps   : {" << caps.toString() << "}\n"
        << "Ranges : [";
    bool first = true;
    for (const DeviceRange& r : ranges) {
        out << (first ? "" : ",") << "{Start = " << r.start << ", Size = " << r.size << "}";
        first = false;
    }
    out << "]\n";
    printAliases(out, "Aliases:", aliases);
    printPairs(out, "Consts :", consts);
    printAliases(out, "Vars   :", vars);
    printAliases(out, "Flags  :", flags);
    printPairs(out, "Actions:", actions);
    return out.str();
}

nimb::JsonObject DeviceConfig::toJson() const
{
    nimb::JsonObject json;
    json.setValue("family", nimb::JsonValue(family));
    json.setValue("model", nimb::JsonValue(model));
    json.setValue("name", nimb::JsonValue(name));
    json.setValue("caps", nimb::JsonValue(caps.toJson()));
    return json;
}

void DeviceConfig::fromJson(const nimb::JsonObject& json)
{
    clear();
    family = nimb::truncatedNumber<int32_t>(json.value("family").toDouble());
    model = nimb::truncatedNumber<int32_t>(json.value("model").toDouble());
    name = json.value("name").toString();
    caps.fromJson(json.value("caps").toObject());
}

}  // namespace tessary
