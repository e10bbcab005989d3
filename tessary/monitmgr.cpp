#include "tessary/monitmgr.h"

#include "nimb/object.h"

namespace tessary {

namespace {

[[noreturn]] void notImplemented() {
    throw nimb::NotImplementedException("Error: not implemented.", nimb::ERR_NOT_IMPLEMENTED);
}

}  // namespace

MonitClientBase::MonitClientBase() = default;
MonitClientBase::~MonitClientBase() = default;

void MonitClientBase::start() {
    notImplemented();
}

DetectionConfig MonitClientBase::detectionConfig() {
    notImplemented();
}

// The three list queries answer empty rather than fail: a caller that only
// wants to show what is there gets nothing when the server is unreachable.
std::vector<std::string> MonitClientBase::countDevices() {
    try {
        return countDevices(nullptr);
    } catch (...) {
        return {};
    }
}

std::map<std::string, Device> MonitClientBase::devices() {
    try {
        return devices(nullptr);
    } catch (...) {
        return {};
    }
}

std::map<std::string, Regressive> MonitClientBase::counters() {
    try {
        return counters(nullptr);
    } catch (...) {
        return {};
    }
}

Device MonitClientBase::device(const char* device) {
    return this->device(nullptr, device);
}

int MonitClientBase::deleteDevice(const char* device) {
    return this->deleteDevice(nullptr, device);
}

DeviceConfig MonitClientBase::config(const char* device) {
    return this->config(nullptr, device);
}

DeviceConfig MonitClientBase::config(int family, int model) {
    return this->config(nullptr, family, model);
}

Regressive MonitClientBase::counter(const char* device) {
    return this->counter(nullptr, device);
}

int MonitClientBase::changeUserDevice(const char* device, const char* userName,
                                      const char* userProd) {
    return this->changeUserDevice(nullptr, device, userName, userProd);
}

int MonitClientBase::changeColorDevice(const char* device, int red, int green, int blue,
                                       bool flag) {
    return this->changeColorDevice(nullptr, device, red, green, blue, flag);
}

int MonitClientBase::clearEventsDevice(const char* device) {
    return this->clearEventsDevice(nullptr, device);
}

std::vector<LogEntry> MonitClientBase::deviceLog(const char* device) {
    return this->deviceLog(nullptr, device);
}

std::vector<LogEntry> MonitClientBase::deviceLogHour(const char* device) {
    return this->deviceLogHour(nullptr, device);
}

std::vector<LogEntry> MonitClientBase::deviceLogDay(const char* device) {
    return this->deviceLogDay(nullptr, device);
}

std::vector<LogEntry> MonitClientBase::deviceLogMonth(const char* device) {
    return this->deviceLogMonth(nullptr, device);
}

DeviceMailCfg MonitClientBase::devMailConfig(const char* device) {
    return this->devMailConfig(nullptr, device);
}

int MonitClientBase::updDevMailConfig(const char* device, DeviceMailCfg* config) {
    return this->updDevMailConfig(nullptr, device, config);
}

DeviceEventApp MonitClientBase::devEventApp(const char* device) {
    return this->devEventApp(nullptr, device);
}

int MonitClientBase::updDevEventApp(const char* device, DeviceEventApp* config) {
    return this->updDevEventApp(nullptr, device, config);
}

DeviceDialCfg MonitClientBase::devDialerConfig(const char* device) {
    return this->devDialerConfig(nullptr, device);
}

int MonitClientBase::updDevDialerConfig(const char* device, DeviceDialCfg* config) {
    return this->updDevDialerConfig(nullptr, device, config);
}

DeviceShutCfg MonitClientBase::devShutdownConfig(const char* device) {
    return this->devShutdownConfig(nullptr, device);
}

int MonitClientBase::updDevShutdownConfig(const char* device, DeviceShutCfg* config) {
    return this->updDevShutdownConfig(nullptr, device, config);
}

int MonitClientBase::manualDevShutdown(const char* device) {
    return this->manualDevShutdown(nullptr, device);
}

int MonitClientBase::cancelDevShutdown(const char* device) {
    return this->cancelDevShutdown(nullptr, device);
}

int MonitClientBase::manualDevDischarge(const char* device, int value) {
    return this->manualDevDischarge(nullptr, device, value);
}

int MonitClientBase::deviceSetICBattery(const char* device, int value) {
    return this->deviceSetICBattery(nullptr, device, value);
}

int MonitClientBase::deviceSetLineSense(const char* device, int value) {
    return this->deviceSetLineSense(nullptr, device, value);
}

int MonitClientBase::deviceProgPowerLook(const char* device, int tPowerLo, int pPowerLo,
                                         long time) {
    return this->deviceProgPowerLook(nullptr, device, tPowerLo, pPowerLo, time);
}

DeviceSchedule MonitClientBase::devSchedule(const char* device) {
    return this->devSchedule(nullptr, device);
}

int MonitClientBase::updDevSchedule(const char* device, DeviceSchedule* config) {
    return this->updDevSchedule(nullptr, device, config);
}

TesConfig MonitClientBase::tessaryConfig() {
    return this->tessaryConfig(nullptr);
}

int MonitClientBase::updTessaryConfig(TesConfig* config) {
    return this->updTessaryConfig(nullptr, config);
}

NotifyConfig MonitClientBase::notifyConfig() {
    return this->notifyConfig(nullptr);
}

int MonitClientBase::updNotifyConfig(NotifyConfig* config) {
    return this->updNotifyConfig(nullptr, config);
}

int MonitClientBase::manualDevMailTest(const char* device) {
    return this->manualDevMailTest(nullptr, device);
}

int MonitClientBase::cancelDevMailTest(const char* device) {
    return this->cancelDevMailTest(nullptr, device);
}

MonitManagerBase::MonitManagerBase() = default;
MonitManagerBase::~MonitManagerBase() = default;

}  // namespace tessary
