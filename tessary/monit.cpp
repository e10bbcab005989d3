#include "tessary/monit.h"

#include <cmath>
#include <limits>

namespace tessary {

namespace {

const char* const UNKNOWN = "<unknown>";


std::string orUnknown(const std::string& text) {
    return text.empty() ? UNKNOWN : text;
}

template <typename T>
std::string orUnknown(T value) {
    return value == 0 ? UNKNOWN : std::to_string(value);
}

}  // namespace

// ---- Computer --------------------------------------------------------------

Computer::Computer() {
    clear();
}
Computer::Computer(const Computer& other) = default;
Computer::~Computer() = default;
Computer& Computer::operator=(const Computer& other) = default;

void Computer::clear() {
    monVersion.clear();
    apiVersion.clear();
    osVersion.clear();
    hostname.clear();
    ip.clear();
    port = 0;
    upTime = 0;
}

bool Computer::empty() const {
    return monVersion.empty() && apiVersion.empty() && osVersion.empty() && hostname.empty() &&
           ip.empty() && port == 0 && upTime == 0;
}

std::string Computer::toString() const {
    return "monVersion=" + orUnknown(monVersion) + "," + "apiVersion=" + orUnknown(apiVersion) +
           "," + "osVersion=" + orUnknown(osVersion) + "," + "hostname=" + orUnknown(hostname) +
           "," + "ip=" + orUnknown(ip) + "," + "port=" + orUnknown(port) + "," +
           "upTime=" + orUnknown(upTime);
}

void Computer::fromJson(const nimb::JsonObject& json) {
    clear();
    monVersion = json.value("monVersion").toString();
    apiVersion = json.value("apiVersion").toString();
    osVersion = json.value("osVersion").toString();
    hostname = json.value("hostname").toString();
    ip = json.value("ip").toString();
    port = nimb::truncatedNumber<int>(json.value("port").toDouble());
    upTime = nimb::truncatedNumber<int64_t>(json.value("upTime").toDouble());
}

nimb::JsonObject Computer::toJson() const {
    return nimb::JsonObject{
        {"monVersion", monVersion},
        {"apiVersion", apiVersion},
        {"osVersion", osVersion},
        {"hostname", hostname},
        {"ip", ip},
        {"port", port},
        {"upTime", static_cast<long long>(upTime)},
    };
}

bool Computer::operator==(const Computer& other) const {
    return monVersion == other.monVersion && apiVersion == other.apiVersion &&
           osVersion == other.osVersion && hostname == other.hostname && ip == other.ip &&
           port == other.port && upTime == other.upTime;
}

// ---- MonitData -------------------------------------------------------------

MonitData::MonitData() {
    clear();
}
MonitData::MonitData(const MonitData& other) = default;
MonitData::~MonitData() = default;
MonitData& MonitData::operator=(const MonitData& other) = default;

void MonitData::clear() {
    actualState.clear();
    oldState.clear();
    config.clear();
    shutCfg.clear();
    regressiveCounter.reset();
    actualRegressive.reset();
    oldRegressive.reset();
    remoteCtrlTimer = -1;
}

// The single countdowns come before the counter, unlike the fields: log
// readers know the sections in this order.
std::string MonitData::toString() const {
    return "actualState: {" + actualState.toStr() + "}," + "oldState: {" + oldState.toStr() + "}," +
           "config: {" + config.toStr() + "}," + "shutCfg: {" + shutCfg.toStr() + "}," +
           "actualRegressive: {" + actualRegressive.toStr() + "}," + "oldRegressive: {" +
           oldRegressive.toStr() + "}," + "regressiveCounter: {" + regressiveCounter.toStr() +
           "}," + "remoteCtrlTimer = " + std::to_string(remoteCtrlTimer);
}

// ---- MonitFlagsComparator --------------------------------------------------

MonitFlagsComparator::MonitFlagsComparator() {
    clear();
}
MonitFlagsComparator::MonitFlagsComparator(const MonitFlagsComparator& other) = default;
MonitFlagsComparator::~MonitFlagsComparator() = default;
MonitFlagsComparator& MonitFlagsComparator::operator=(const MonitFlagsComparator& other) = default;

void MonitFlagsComparator::clear() {
    failOff.clear();
    failOn.clear();
    flagsOff.clear();
    flagsOn.clear();
}

void MonitFlagsComparator::update(const Device& oldDevice, const Device& newDevice) {
    clear();
    for (int i = 0; i < DeviceFailFlags::COUNT; ++i) {
        const bool before = oldDevice.fail.bit(i);
        const bool now = newDevice.fail.bit(i);
        failOn.setBit(i, !before && now);
        failOff.setBit(i, before && !now);
    }
    for (int i = 0; i < DeviceFlags::COUNT; ++i) {
        const bool before = oldDevice.flags.bit(i);
        const bool now = newDevice.flags.bit(i);
        flagsOn.setBit(i, !before && now);
        flagsOff.setBit(i, before && !now);
    }
}

DeviceFailFlags MonitFlagsComparator::getFailOn() const {
    return failOn;
}
DeviceFailFlags MonitFlagsComparator::getFailOff() const {
    return failOff;
}
DeviceFlags MonitFlagsComparator::getFlagsOn() const {
    return flagsOn;
}
DeviceFlags MonitFlagsComparator::getFlagsOff() const {
    return flagsOff;
}

}  // namespace tessary
