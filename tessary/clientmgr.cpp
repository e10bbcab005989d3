#include "tessary/clientmgr.h"

namespace tessary {

ClientManagerBase::ClientManagerBase() = default;
ClientManagerBase::~ClientManagerBase() = default;

int ClientManagerBase::connect(const Url& url) {
    return connect(url.url().c_str());
}

int ClientManagerBase::start(const Url& url) {
    return connect(url);
}

// Stopping must not fail: a server that is already gone is stopped too.
void ClientManagerBase::stop() {
    try {
        disconnect();
    } catch (...) {
    }
}

bool ClientManagerBase::isRunning() const {
    return isConnected();
}

std::map<std::string, Computer> ClientManagerBase::computers() {
    return computers(nullptr);
}

Computer ClientManagerBase::version() {
    return version(nullptr, nullptr);
}
Computer ClientManagerBase::version(const char* host) {
    return version(host, nullptr);
}

std::vector<std::string> ClientManagerBase::countDevices() {
    return countDevices(nullptr, nullptr);
}
std::vector<std::string> ClientManagerBase::countDevices(const char* host) {
    return countDevices(host, nullptr);
}

std::map<std::string, Device> ClientManagerBase::devices() {
    return devices(nullptr, nullptr);
}
std::map<std::string, Device> ClientManagerBase::devices(const char* host) {
    return devices(host, nullptr);
}

DeviceConfig ClientManagerBase::config(int family, int model) {
    return config(nullptr, nullptr, family, model);
}
DeviceConfig ClientManagerBase::config(const char* host, int family, int model) {
    return config(host, nullptr, family, model);
}

std::map<std::string, Regressive> ClientManagerBase::counters() {
    return counters(nullptr, nullptr);
}
std::map<std::string, Regressive> ClientManagerBase::counters(const char* host) {
    return counters(host, nullptr);
}

TesConfig ClientManagerBase::tessaryConfig() {
    return tessaryConfig(nullptr, nullptr);
}
TesConfig ClientManagerBase::tessaryConfig(const char* host) {
    return tessaryConfig(host, nullptr);
}
int ClientManagerBase::updTessaryConfig(TesConfig* config) {
    return updTessaryConfig(nullptr, nullptr, config);
}
int ClientManagerBase::updTessaryConfig(const char* host, TesConfig* config) {
    return updTessaryConfig(host, nullptr, config);
}

NotifyConfig ClientManagerBase::notifyConfig() {
    return notifyConfig(nullptr, nullptr);
}
NotifyConfig ClientManagerBase::notifyConfig(const char* host) {
    return notifyConfig(host, nullptr);
}
int ClientManagerBase::updNotifyConfig(NotifyConfig* config) {
    return updNotifyConfig(nullptr, nullptr, config);
}
int ClientManagerBase::updNotifyConfig(const char* host, NotifyConfig* config) {
    return updNotifyConfig(host, nullptr, config);
}

// ---- device forms: device(d) and device(h, d) call device(h, nullptr, d) ---

Device ClientManagerBase::device(const char* device) {
    return this->device(nullptr, nullptr, device);
}

Device ClientManagerBase::device(const char* host, const char* device) {
    return this->device(host, nullptr, device);
}

int ClientManagerBase::deleteDevice(const char* device) {
    return this->deleteDevice(nullptr, nullptr, device);
}

int ClientManagerBase::deleteDevice(const char* host, const char* device) {
    return this->deleteDevice(host, nullptr, device);
}

DeviceConfig ClientManagerBase::config(const char* device) {
    return this->config(nullptr, nullptr, device);
}

DeviceConfig ClientManagerBase::config(const char* host, const char* device) {
    return this->config(host, nullptr, device);
}

Regressive ClientManagerBase::counter(const char* device) {
    return this->counter(nullptr, nullptr, device);
}

Regressive ClientManagerBase::counter(const char* host, const char* device) {
    return this->counter(host, nullptr, device);
}

int ClientManagerBase::changeUserDevice(const char* device, const char* userName,
                                        const char* userProd) {
    return this->changeUserDevice(nullptr, nullptr, device, userName, userProd);
}

int ClientManagerBase::changeUserDevice(const char* host, const char* device, const char* userName,
                                        const char* userProd) {
    return this->changeUserDevice(host, nullptr, device, userName, userProd);
}

int ClientManagerBase::changeColorDevice(const char* device, int red, int green, int blue,
                                         bool flag) {
    return this->changeColorDevice(nullptr, nullptr, device, red, green, blue, flag);
}

int ClientManagerBase::changeColorDevice(const char* host, const char* device, int red, int green,
                                         int blue, bool flag) {
    return this->changeColorDevice(host, nullptr, device, red, green, blue, flag);
}

int ClientManagerBase::clearEventsDevice(const char* device) {
    return this->clearEventsDevice(nullptr, nullptr, device);
}

int ClientManagerBase::clearEventsDevice(const char* host, const char* device) {
    return this->clearEventsDevice(host, nullptr, device);
}

std::vector<LogEntry> ClientManagerBase::deviceLog(const char* device) {
    return this->deviceLog(nullptr, nullptr, device);
}

std::vector<LogEntry> ClientManagerBase::deviceLog(const char* host, const char* device) {
    return this->deviceLog(host, nullptr, device);
}

std::vector<LogEntry> ClientManagerBase::deviceLogHour(const char* device) {
    return this->deviceLogHour(nullptr, nullptr, device);
}

std::vector<LogEntry> ClientManagerBase::deviceLogHour(const char* host, const char* device) {
    return this->deviceLogHour(host, nullptr, device);
}

std::vector<LogEntry> ClientManagerBase::deviceLogDay(const char* device) {
    return this->deviceLogDay(nullptr, nullptr, device);
}

std::vector<LogEntry> ClientManagerBase::deviceLogDay(const char* host, const char* device) {
    return this->deviceLogDay(host, nullptr, device);
}

std::vector<LogEntry> ClientManagerBase::deviceLogMonth(const char* device) {
    return this->deviceLogMonth(nullptr, nullptr, device);
}

std::vector<LogEntry> ClientManagerBase::deviceLogMonth(const char* host, const char* device) {
    return this->deviceLogMonth(host, nullptr, device);
}

DeviceMailCfg ClientManagerBase::devMailConfig(const char* device) {
    return this->devMailConfig(nullptr, nullptr, device);
}

DeviceMailCfg ClientManagerBase::devMailConfig(const char* host, const char* device) {
    return this->devMailConfig(host, nullptr, device);
}

int ClientManagerBase::updDevMailConfig(const char* device, DeviceMailCfg* config) {
    return this->updDevMailConfig(nullptr, nullptr, device, config);
}

int ClientManagerBase::updDevMailConfig(const char* host, const char* device,
                                        DeviceMailCfg* config) {
    return this->updDevMailConfig(host, nullptr, device, config);
}

int ClientManagerBase::manualDevMailTest(const char* device) {
    return this->manualDevMailTest(nullptr, nullptr, device);
}

int ClientManagerBase::manualDevMailTest(const char* host, const char* device) {
    return this->manualDevMailTest(host, nullptr, device);
}

int ClientManagerBase::cancelDevMailTest(const char* device) {
    return this->cancelDevMailTest(nullptr, nullptr, device);
}

int ClientManagerBase::cancelDevMailTest(const char* host, const char* device) {
    return this->cancelDevMailTest(host, nullptr, device);
}

DeviceEventApp ClientManagerBase::devEventApp(const char* device) {
    return this->devEventApp(nullptr, nullptr, device);
}

DeviceEventApp ClientManagerBase::devEventApp(const char* host, const char* device) {
    return this->devEventApp(host, nullptr, device);
}

int ClientManagerBase::updDevEventApp(const char* device, DeviceEventApp* config) {
    return this->updDevEventApp(nullptr, nullptr, device, config);
}

int ClientManagerBase::updDevEventApp(const char* host, const char* device,
                                      DeviceEventApp* config) {
    return this->updDevEventApp(host, nullptr, device, config);
}

DeviceDialCfg ClientManagerBase::devDialerConfig(const char* device) {
    return this->devDialerConfig(nullptr, nullptr, device);
}

DeviceDialCfg ClientManagerBase::devDialerConfig(const char* host, const char* device) {
    return this->devDialerConfig(host, nullptr, device);
}

int ClientManagerBase::updDevDialerConfig(const char* device, DeviceDialCfg* config) {
    return this->updDevDialerConfig(nullptr, nullptr, device, config);
}

int ClientManagerBase::updDevDialerConfig(const char* host, const char* device,
                                          DeviceDialCfg* config) {
    return this->updDevDialerConfig(host, nullptr, device, config);
}

DeviceShutCfg ClientManagerBase::devShutdownConfig(const char* device) {
    return this->devShutdownConfig(nullptr, nullptr, device);
}

DeviceShutCfg ClientManagerBase::devShutdownConfig(const char* host, const char* device) {
    return this->devShutdownConfig(host, nullptr, device);
}

int ClientManagerBase::updDevShutdownConfig(const char* device, DeviceShutCfg* config) {
    return this->updDevShutdownConfig(nullptr, nullptr, device, config);
}

int ClientManagerBase::updDevShutdownConfig(const char* host, const char* device,
                                            DeviceShutCfg* config) {
    return this->updDevShutdownConfig(host, nullptr, device, config);
}

int ClientManagerBase::manualDevShutdown(const char* device) {
    return this->manualDevShutdown(nullptr, nullptr, device);
}

int ClientManagerBase::manualDevShutdown(const char* host, const char* device) {
    return this->manualDevShutdown(host, nullptr, device);
}

int ClientManagerBase::cancelDevShutdown(const char* device) {
    return this->cancelDevShutdown(nullptr, nullptr, device);
}

int ClientManagerBase::cancelDevShutdown(const char* host, const char* device) {
    return this->cancelDevShutdown(host, nullptr, device);
}

int ClientManagerBase::manualDevDischarge(const char* device, int value) {
    return this->manualDevDischarge(nullptr, nullptr, device, value);
}

int ClientManagerBase::manualDevDischarge(const char* host, const char* device, int value) {
    return this->manualDevDischarge(host, nullptr, device, value);
}

int ClientManagerBase::deviceSetICBattery(const char* device, int value) {
    return this->deviceSetICBattery(nullptr, nullptr, device, value);
}

int ClientManagerBase::deviceSetICBattery(const char* host, const char* device, int value) {
    return this->deviceSetICBattery(host, nullptr, device, value);
}

int ClientManagerBase::deviceSetLineSense(const char* device, int value) {
    return this->deviceSetLineSense(nullptr, nullptr, device, value);
}

int ClientManagerBase::deviceSetLineSense(const char* host, const char* device, int value) {
    return this->deviceSetLineSense(host, nullptr, device, value);
}

int ClientManagerBase::deviceProgPowerLook(const char* device, int tPowerLo, int pPowerLo,
                                           long time) {
    return this->deviceProgPowerLook(nullptr, nullptr, device, tPowerLo, pPowerLo, time);
}

int ClientManagerBase::deviceProgPowerLook(const char* host, const char* device, int tPowerLo,
                                           int pPowerLo, long time) {
    return this->deviceProgPowerLook(host, nullptr, device, tPowerLo, pPowerLo, time);
}

DeviceSchedule ClientManagerBase::devSchedule(const char* device) {
    return this->devSchedule(nullptr, nullptr, device);
}

DeviceSchedule ClientManagerBase::devSchedule(const char* host, const char* device) {
    return this->devSchedule(host, nullptr, device);
}

int ClientManagerBase::updDevSchedule(const char* device, DeviceSchedule* config) {
    return this->updDevSchedule(nullptr, nullptr, device, config);
}

int ClientManagerBase::updDevSchedule(const char* host, const char* device,
                                      DeviceSchedule* config) {
    return this->updDevSchedule(host, nullptr, device, config);
}

}  // namespace tessary
