#include "tessary/ldclient.h"

#include "nimb/file.h"
#include "nimb/logger.h"
#include "tessary/clientconf.h"
#include "tessary/config.h"
#include "tessary/deviceconf.h"
#include "tessary/devsettings.h"
#include "tessary/monit.h"
#include "tessary/monitconf.h"
#include "tessary/pluginapi.h"

#include <functional>

namespace tessary {

namespace {

const char* const NOT_LOADED = "Library libclient not loaded.";

void check(long result, const char* name) {
    if (result < 0)
        throw nimb::SystemException(std::string("Error executing libclient::") + name + "().", nimb::ERR_SYSTEM);
}

}  // namespace

LibClient::LibClient() = default;

LibClient::~LibClient() {
    unload();
}

void LibClient::requireClient() const {
    if (!m_loader.isLoaded() || m_clientHandle == nullptr)
        throw nimb::SystemException(NOT_LOADED, nimb::ERR_SYSTEM);
}

template <typename Fn, typename... Args>
auto LibClient::call(const char* entry, const char* name, Args... args) const {
    requireClient();
    // An empty std::function turns a symbol whose value is null into
    // std::bad_function_call instead of a jump to address 0.
    std::function<Fn> fn(reinterpret_cast<Fn*>(m_loader.getSymbol(entry)));
    auto result = fn(m_clientHandle, args...);
    check(result, name);
    return result;
}

template <typename Result, typename Fn, typename... Args>
Result LibClient::fetch(const char* entry, Args... args) const {
    requireClient();
    Result result;
    call<Fn>(entry, entry, args..., &result);
    return result;
}

// ---- connection -------------------------------------------------------------

int LibClient::connect(const char* url) {
    return call<ConnectCliFn>("connectCli", "connect", url);
}

int LibClient::connect(const Url& url) {
    return connect(url.url().c_str());
}

int LibClient::disconnect() {
    return disconnect(nullptr);
}

int LibClient::disconnect(const char* host) {
    return call<DisconnectCliFn>("disconnectCli", "disconnect", host);
}

bool LibClient::isConnected() const {
    return isConnected(nullptr);
}

bool LibClient::isConnected(const char* host) const {
    if (!m_loader.isLoaded() || m_clientHandle == nullptr)
        return false;
    try {
        std::function<IsConnectedFn> fn(reinterpret_cast<IsConnectedFn*>(m_loader.getSymbol("isConnected")));
        return fn(m_clientHandle, host) > 0;
    } catch (...) {
        // A missing or null entry point only means "not connected".
        return false;
    }
}

std::vector<std::string> LibClient::hostList() const {
    return fetch<std::vector<std::string>, GetHostCountFn>("getHostCount");
}

nimb::Logger* LibClient::logger(const char* name) {
    if (name == nullptr || !m_loader.isLoaded() || m_clientHandle == nullptr)
        return nullptr;
    try {
        std::function<GetLoggerFn> fn(reinterpret_cast<GetLoggerFn*>(m_loader.getSymbol("getLogger")));
        nimb::Logger* out = nullptr;
        if (fn(m_clientHandle, name, &out) < 0)
            return nullptr;
        return nimb::Logger::setLogger(name, out);
    } catch (...) {
        return nullptr;
    }
}

// ---- computers and devices ----------------------------------------------------

std::map<std::string, Computer> LibClient::computers() {
    return computers(nullptr);
}

std::map<std::string, Computer> LibClient::computers(const char* host) {
    return fetch<std::map<std::string, Computer>, GetComputerListFn>("getComputerList", host);
}

Computer LibClient::version() {
    return version(nullptr, nullptr);
}

Computer LibClient::version(const char* host, const char* computer) {
    return fetch<Computer, GetVersionFn>("getVersion", host, computer);
}

std::vector<std::string> LibClient::countDevices() {
    return countDevices(nullptr, nullptr);
}

std::vector<std::string> LibClient::countDevices(const char* host, const char* computer) {
    return fetch<std::vector<std::string>, GetDeviceCountFn>("getDeviceCount", host, computer);
}

std::map<std::string, Device> LibClient::devices() {
    return devices(nullptr, nullptr);
}

std::map<std::string, Device> LibClient::devices(const char* host, const char* computer) {
    return fetch<std::map<std::string, Device>, GetDeviceListFn>("getDeviceList", host, computer);
}

Device LibClient::device(const char* device) {
    return this->device(nullptr, nullptr, device);
}

Device LibClient::device(const char* host, const char* device) {
    return this->device(host, nullptr, device);
}

Device LibClient::device(const char* host, const char* computer, const char* device) {
    return fetch<Device, GetDeviceFn>("getDevice", host, computer, device);
}

int LibClient::deleteDevice(const char* device) {
    return deleteDevice(nullptr, nullptr, device);
}

int LibClient::deleteDevice(const char* host, const char* device) {
    return deleteDevice(host, nullptr, device);
}

int LibClient::deleteDevice(const char* host, const char* computer, const char* device) {
    return call<DeviceActionFn>("deleteDevice", "deleteDevice", host, computer, device);
}

DeviceConfig LibClient::config(const char* device) {
    return config(nullptr, nullptr, device);
}

DeviceConfig LibClient::config(const char* host, const char* device) {
    return config(host, nullptr, device);
}

DeviceConfig LibClient::config(const char* host, const char* computer, const char* device) {
    return fetch<DeviceConfig, GetDeviceConfigFn>("getDeviceConfig", host, computer, device);
}

DeviceConfig LibClient::config(int family, int model) {
    return config(nullptr, nullptr, family, model);
}

DeviceConfig LibClient::config(const char* host, int family, int model) {
    return config(host, nullptr, family, model);
}

DeviceConfig LibClient::config(const char* host, const char* computer, int family, int model) {
    return fetch<DeviceConfig, GetDeviceConfigByModelFn>("getDeviceConfigByModel", host, computer, family, model);
}

std::map<std::string, Regressive> LibClient::counters() {
    return counters(nullptr, nullptr);
}

std::map<std::string, Regressive> LibClient::counters(const char* host, const char* computer) {
    return fetch<std::map<std::string, Regressive>, GetRegressiveCounterListFn>("getRegressiveCounterList", host,
                                                                                computer);
}

Regressive LibClient::counter(const char* device) {
    return counter(nullptr, nullptr, device);
}

Regressive LibClient::counter(const char* host, const char* device) {
    return counter(host, nullptr, device);
}

Regressive LibClient::counter(const char* host, const char* computer, const char* device) {
    return fetch<Regressive, GetRegressiveCounterFn>("getRegressiveCounter", host, computer, device);
}

// ---- per-device actions ---------------------------------------------------------

int LibClient::changeUserDevice(const char* device, const char* userName, const char* userProd) {
    return changeUserDevice(nullptr, nullptr, device, userName, userProd);
}

int LibClient::changeUserDevice(const char* host, const char* device, const char* userName, const char* userProd) {
    return changeUserDevice(host, nullptr, device, userName, userProd);
}

int LibClient::changeUserDevice(const char* host, const char* computer, const char* device, const char* userName,
                                const char* userProd) {
    return call<ChangeUserDeviceFn>("changeUserDevice", "changeUserDevice", host, computer, device, userName,
                                    userProd);
}

int LibClient::changeColorDevice(const char* device, int red, int green, int blue, bool flag) {
    return changeColorDevice(nullptr, nullptr, device, red, green, blue, flag);
}

int LibClient::changeColorDevice(const char* host, const char* device, int red, int green, int blue, bool flag) {
    return changeColorDevice(host, nullptr, device, red, green, blue, flag);
}

int LibClient::changeColorDevice(const char* host, const char* computer, const char* device, int red, int green,
                                 int blue, bool flag) {
    return call<ChangeColorDeviceFn>("changeColorDevice", "changeColorDevice", host, computer, device, red, green,
                                     blue, flag);
}

// The families below share one shape: a device action or getter in three
// forms, the shorter two forwarding with null leading texts.
#define TESSARY_DEVICE_ACTION(NAME)                                                   \
    int LibClient::NAME(const char* device) { return NAME(nullptr, nullptr, device); } \
    int LibClient::NAME(const char* host, const char* device) { return NAME(host, nullptr, device); } \
    int LibClient::NAME(const char* host, const char* computer, const char* device) {  \
        return call<DeviceActionFn>(#NAME, #NAME, host, computer, device);            \
    }

#define TESSARY_DEVICE_GETTER(NAME, RESULT, FN)                                          \
    RESULT LibClient::NAME(const char* device) { return NAME(nullptr, nullptr, device); } \
    RESULT LibClient::NAME(const char* host, const char* device) { return NAME(host, nullptr, device); } \
    RESULT LibClient::NAME(const char* host, const char* computer, const char* device) { \
        return fetch<RESULT, FN>(#NAME, host, computer, device);                         \
    }

#define TESSARY_DEVICE_SETTER(NAME, RECORD)                                                    \
    int LibClient::NAME(const char* device, RECORD* record) { return NAME(nullptr, nullptr, device, record); } \
    int LibClient::NAME(const char* host, const char* device, RECORD* record) {                \
        return NAME(host, nullptr, device, record);                                            \
    }                                                                                          \
    int LibClient::NAME(const char* host, const char* computer, const char* device, RECORD* record) { \
        return call<DeviceRecordFn<RECORD>>(#NAME, #NAME, host, computer, device, record);      \
    }

#define TESSARY_DEVICE_INT(NAME)                                                                  \
    int LibClient::NAME(const char* device, int value) { return NAME(nullptr, nullptr, device, value); } \
    int LibClient::NAME(const char* host, const char* device, int value) {                        \
        return NAME(host, nullptr, device, value);                                                \
    }                                                                                             \
    int LibClient::NAME(const char* host, const char* computer, const char* device, int value) {  \
        return call<DeviceIntFn>(#NAME, #NAME, host, computer, device, value);                    \
    }

TESSARY_DEVICE_ACTION(clearEventsDevice)
TESSARY_DEVICE_ACTION(manualDevMailTest)
TESSARY_DEVICE_ACTION(cancelDevMailTest)
TESSARY_DEVICE_ACTION(manualDevShutdown)
TESSARY_DEVICE_ACTION(cancelDevShutdown)

TESSARY_DEVICE_GETTER(deviceLog, std::vector<LogEntry>, DeviceLogFn)
TESSARY_DEVICE_GETTER(deviceLogHour, std::vector<LogEntry>, DeviceLogFn)
TESSARY_DEVICE_GETTER(deviceLogDay, std::vector<LogEntry>, DeviceLogFn)
TESSARY_DEVICE_GETTER(deviceLogMonth, std::vector<LogEntry>, DeviceLogFn)
TESSARY_DEVICE_GETTER(devMailConfig, DeviceMailCfg, DeviceRecordFn<DeviceMailCfg>)
TESSARY_DEVICE_GETTER(devEventApp, DeviceEventApp, DeviceRecordFn<DeviceEventApp>)
TESSARY_DEVICE_GETTER(devDialerConfig, DeviceDialCfg, DeviceRecordFn<DeviceDialCfg>)
TESSARY_DEVICE_GETTER(devShutdownConfig, DeviceShutCfg, DeviceRecordFn<DeviceShutCfg>)
TESSARY_DEVICE_GETTER(devSchedule, DeviceSchedule, DeviceRecordFn<DeviceSchedule>)

TESSARY_DEVICE_SETTER(updDevMailConfig, DeviceMailCfg)
TESSARY_DEVICE_SETTER(updDevEventApp, DeviceEventApp)
TESSARY_DEVICE_SETTER(updDevDialerConfig, DeviceDialCfg)
TESSARY_DEVICE_SETTER(updDevShutdownConfig, DeviceShutCfg)
TESSARY_DEVICE_SETTER(updDevSchedule, DeviceSchedule)

TESSARY_DEVICE_INT(manualDevDischarge)
TESSARY_DEVICE_INT(deviceSetICBattery)
TESSARY_DEVICE_INT(deviceSetLineSense)

int LibClient::deviceProgPowerLook(const char* device, int tPowerLo, int pPowerLo, long time) {
    return deviceProgPowerLook(nullptr, nullptr, device, tPowerLo, pPowerLo, time);
}

int LibClient::deviceProgPowerLook(const char* host, const char* device, int tPowerLo, int pPowerLo, long time) {
    return deviceProgPowerLook(host, nullptr, device, tPowerLo, pPowerLo, time);
}

int LibClient::deviceProgPowerLook(const char* host, const char* computer, const char* device, int tPowerLo,
                                   int pPowerLo, long time) {
    return call<DeviceProgPowerLookFn>("deviceProgPowerLook", "deviceProgPowerLook", host, computer, device,
                                       tPowerLo, pPowerLo, time);
}

// ---- computer-wide settings ------------------------------------------------------

#define TESSARY_COMPUTER_RECORD(GETTER, SETTER, RECORD)                                       \
    RECORD LibClient::GETTER() { return GETTER(nullptr, nullptr); }                            \
    RECORD LibClient::GETTER(const char* host) { return GETTER(host, nullptr); }               \
    RECORD LibClient::GETTER(const char* host, const char* computer) {                         \
        return fetch<RECORD, ComputerRecordFn<RECORD>>(#GETTER, host, computer);               \
    }                                                                                          \
    int LibClient::SETTER(RECORD* record) { return SETTER(nullptr, nullptr, record); }         \
    int LibClient::SETTER(const char* host, RECORD* record) { return SETTER(host, nullptr, record); } \
    int LibClient::SETTER(const char* host, const char* computer, RECORD* record) {            \
        return call<ComputerRecordFn<RECORD>>(#SETTER, #SETTER, host, computer, record);        \
    }

TESSARY_COMPUTER_RECORD(tessaryConfig, updTessaryConfig, TesConfig)
TESSARY_COMPUTER_RECORD(notifyConfig, updNotifyConfig, NotifyConfig)

#undef TESSARY_DEVICE_ACTION
#undef TESSARY_DEVICE_GETTER
#undef TESSARY_DEVICE_SETTER
#undef TESSARY_DEVICE_INT
#undef TESSARY_COMPUTER_RECORD

// ---- the library and the client handle -------------------------------------------

void* LibClient::openClient() {
    if (!m_loader.isLoaded())
        return nullptr;
    std::function<OpenCliFn> fn(reinterpret_cast<OpenCliFn*>(m_loader.getSymbol("openCli")));
    return fn();
}

void LibClient::closeClient(void* handle) {
    if (!m_loader.isLoaded() || handle == nullptr)
        return;
    std::function<CloseCliFn> fn(reinterpret_cast<CloseCliFn*>(m_loader.getSymbol("closeCli")));
    fn(handle);
}

void LibClient::load(const char* fileName) {
    if (fileName == nullptr || *fileName == '\0')
        throw nimb::InvalidArgumentException("Empty library filename.", nimb::ERR_INVALID_ARGUMENT);
    std::string name = fileName;
    if (nimb::File::extractFileExt(name).empty())
        name += ".so";
    m_loader.load(name);
    m_clientHandle = openClient();
}

void LibClient::load(const std::string& fileName) {
    load(fileName.c_str());
}

void LibClient::unload() {
    // Each step runs whatever the one before did: a server that refuses to
    // disconnect must not keep the library open.
    try {
        disconnect();
    } catch (...) {
    }
    try {
        closeClient(m_clientHandle);
    } catch (...) {
    }
    m_clientHandle = nullptr;
    try {
        m_loader.unload();
    } catch (...) {
    }
}

bool LibClient::isLoaded() const {
    return m_loader.isLoaded();
}

}  // namespace tessary
