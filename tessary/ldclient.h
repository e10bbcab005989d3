// The binding to the client plug-in library, the service's way to reach the
// suite's monitor servers.
#pragma once

#include "nimb/libloader.h"
#include "tessary/clientmgr.h"

#include <string>

namespace tessary {

// Loads client.so, opens one client instance in it and implements every
// manager operation by calling the plug-in's entry point of the same purpose,
// looked up by name at each call (nothing is cached, so a replaced symbol is
// seen at once).
//
// Texts may be null: a shorter overload passes null for each missing leading
// text (device(dev) asks for device(nullptr, nullptr, dev)); what null selects
// is the plug-in's choice. Getters return the object the plug-in filled.
//
// Every operation throws SystemException (ERR_SYSTEM) "Library libclient not
// loaded." while no library or no client handle is held, before looking up
// any symbol; SystemException "Error executing libclient::<entry point>()."
// when the entry point answers below 0; the loader's LibraryLoadException when
// the entry point is missing; std::bad_function_call when its symbol's value
// is null. isConnected(), logger() and unload() never throw.
//
// No lock: callers that share an instance across threads serialise access.
class LibClient : public ClientManagerBase {
public:
    LibClient();
    LibClient(const LibClient&) = delete;
    LibClient& operator=(const LibClient&) = delete;
    // Calls unload().
    ~LibClient() override;

    using ClientManagerBase::computers;
    using ClientManagerBase::config;
    using ClientManagerBase::counters;
    using ClientManagerBase::countDevices;
    using ClientManagerBase::devices;
    using ClientManagerBase::version;

    // "Error executing libclient::connect()." on failure.
    int connect(const char* url) override;
    // Connects to url.url().
    int connect(const Url& url) override;
    // "Error executing libclient::disconnect()." on failure.
    int disconnect() override;
    int disconnect(const char* host) override;
    // The entry point answers above 0; false, never an exception, when nothing
    // is loaded or the entry point cannot be reached.
    bool isConnected() const override;
    bool isConnected(const char* host) const override;
    std::vector<std::string> hostList() const override;
    // The plug-in's logger of that name, also registered under that name in
    // this process's logger registry (nimb::Logger::setLogger), so that writing
    // to it writes into the plug-in's log. Null, never an exception, when
    // nothing is loaded, name is null or the plug-in refuses.
    nimb::Logger* logger(const char* name) override;

    std::map<std::string, Computer> computers() override;
    std::map<std::string, Computer> computers(const char* host) override;
    Computer version() override;
    Computer version(const char* host, const char* computer) override;
    std::vector<std::string> countDevices() override;
    std::vector<std::string> countDevices(const char* host, const char* computer) override;
    std::map<std::string, Device> devices() override;
    std::map<std::string, Device> devices(const char* host, const char* computer) override;
    Device device(const char* device) override;
    Device device(const char* host, const char* device) override;
    Device device(const char* host, const char* computer, const char* device) override;
    int deleteDevice(const char* device) override;
    int deleteDevice(const char* host, const char* device) override;
    int deleteDevice(const char* host, const char* computer, const char* device) override;
    DeviceConfig config(const char* device) override;
    DeviceConfig config(const char* host, const char* device) override;
    DeviceConfig config(const char* host, const char* computer, const char* device) override;
    // family and model are handed to the plug-in unchanged.
    DeviceConfig config(int family, int model) override;
    DeviceConfig config(const char* host, int family, int model) override;
    DeviceConfig config(const char* host, const char* computer, int family, int model) override;
    std::map<std::string, Regressive> counters() override;
    std::map<std::string, Regressive> counters(const char* host, const char* computer) override;
    Regressive counter(const char* device) override;
    Regressive counter(const char* host, const char* device) override;
    Regressive counter(const char* host, const char* computer, const char* device) override;

    int changeUserDevice(const char* device, const char* userName, const char* userProd) override;
    int changeUserDevice(const char* host, const char* device, const char* userName, const char* userProd) override;
    int changeUserDevice(const char* host, const char* computer, const char* device, const char* userName,
                         const char* userProd) override;
    int changeColorDevice(const char* device, int red, int green, int blue, bool flag) override;
    int changeColorDevice(const char* host, const char* device, int red, int green, int blue, bool flag) override;
    int changeColorDevice(const char* host, const char* computer, const char* device, int red, int green, int blue,
                          bool flag) override;
    int clearEventsDevice(const char* device) override;
    int clearEventsDevice(const char* host, const char* device) override;
    int clearEventsDevice(const char* host, const char* computer, const char* device) override;

    std::vector<LogEntry> deviceLog(const char* device) override;
    std::vector<LogEntry> deviceLog(const char* host, const char* device) override;
    std::vector<LogEntry> deviceLog(const char* host, const char* computer, const char* device) override;
    std::vector<LogEntry> deviceLogHour(const char* device) override;
    std::vector<LogEntry> deviceLogHour(const char* host, const char* device) override;
    std::vector<LogEntry> deviceLogHour(const char* host, const char* computer, const char* device) override;
    std::vector<LogEntry> deviceLogDay(const char* device) override;
    std::vector<LogEntry> deviceLogDay(const char* host, const char* device) override;
    std::vector<LogEntry> deviceLogDay(const char* host, const char* computer, const char* device) override;
    std::vector<LogEntry> deviceLogMonth(const char* device) override;
    std::vector<LogEntry> deviceLogMonth(const char* host, const char* device) override;
    std::vector<LogEntry> deviceLogMonth(const char* host, const char* computer, const char* device) override;

    DeviceMailCfg devMailConfig(const char* device) override;
    DeviceMailCfg devMailConfig(const char* host, const char* device) override;
    DeviceMailCfg devMailConfig(const char* host, const char* computer, const char* device) override;
    int updDevMailConfig(const char* device, DeviceMailCfg* config) override;
    int updDevMailConfig(const char* host, const char* device, DeviceMailCfg* config) override;
    int updDevMailConfig(const char* host, const char* computer, const char* device, DeviceMailCfg* config) override;
    int manualDevMailTest(const char* device) override;
    int manualDevMailTest(const char* host, const char* device) override;
    int manualDevMailTest(const char* host, const char* computer, const char* device) override;
    int cancelDevMailTest(const char* device) override;
    int cancelDevMailTest(const char* host, const char* device) override;
    int cancelDevMailTest(const char* host, const char* computer, const char* device) override;
    DeviceEventApp devEventApp(const char* device) override;
    DeviceEventApp devEventApp(const char* host, const char* device) override;
    DeviceEventApp devEventApp(const char* host, const char* computer, const char* device) override;
    int updDevEventApp(const char* device, DeviceEventApp* events) override;
    int updDevEventApp(const char* host, const char* device, DeviceEventApp* events) override;
    int updDevEventApp(const char* host, const char* computer, const char* device, DeviceEventApp* events) override;
    DeviceDialCfg devDialerConfig(const char* device) override;
    DeviceDialCfg devDialerConfig(const char* host, const char* device) override;
    DeviceDialCfg devDialerConfig(const char* host, const char* computer, const char* device) override;
    int updDevDialerConfig(const char* device, DeviceDialCfg* config) override;
    int updDevDialerConfig(const char* host, const char* device, DeviceDialCfg* config) override;
    int updDevDialerConfig(const char* host, const char* computer, const char* device, DeviceDialCfg* config) override;
    DeviceShutCfg devShutdownConfig(const char* device) override;
    DeviceShutCfg devShutdownConfig(const char* host, const char* device) override;
    DeviceShutCfg devShutdownConfig(const char* host, const char* computer, const char* device) override;
    int updDevShutdownConfig(const char* device, DeviceShutCfg* config) override;
    int updDevShutdownConfig(const char* host, const char* device, DeviceShutCfg* config) override;
    int updDevShutdownConfig(const char* host, const char* computer, const char* device,
                             DeviceShutCfg* config) override;
    int manualDevShutdown(const char* device) override;
    int manualDevShutdown(const char* host, const char* device) override;
    int manualDevShutdown(const char* host, const char* computer, const char* device) override;
    int cancelDevShutdown(const char* device) override;
    int cancelDevShutdown(const char* host, const char* device) override;
    int cancelDevShutdown(const char* host, const char* computer, const char* device) override;
    int manualDevDischarge(const char* device, int value) override;
    int manualDevDischarge(const char* host, const char* device, int value) override;
    int manualDevDischarge(const char* host, const char* computer, const char* device, int value) override;
    int deviceSetICBattery(const char* device, int value) override;
    int deviceSetICBattery(const char* host, const char* device, int value) override;
    int deviceSetICBattery(const char* host, const char* computer, const char* device, int value) override;
    int deviceSetLineSense(const char* device, int value) override;
    int deviceSetLineSense(const char* host, const char* device, int value) override;
    int deviceSetLineSense(const char* host, const char* computer, const char* device, int value) override;
    int deviceProgPowerLook(const char* device, int tPowerLo, int pPowerLo, long time) override;
    int deviceProgPowerLook(const char* host, const char* device, int tPowerLo, int pPowerLo, long time) override;
    int deviceProgPowerLook(const char* host, const char* computer, const char* device, int tPowerLo, int pPowerLo,
                            long time) override;
    DeviceSchedule devSchedule(const char* device) override;
    DeviceSchedule devSchedule(const char* host, const char* device) override;
    DeviceSchedule devSchedule(const char* host, const char* computer, const char* device) override;
    int updDevSchedule(const char* device, DeviceSchedule* schedule) override;
    int updDevSchedule(const char* host, const char* device, DeviceSchedule* schedule) override;
    int updDevSchedule(const char* host, const char* computer, const char* device, DeviceSchedule* schedule) override;

    TesConfig tessaryConfig() override;
    TesConfig tessaryConfig(const char* host) override;
    TesConfig tessaryConfig(const char* host, const char* computer) override;
    int updTessaryConfig(TesConfig* config) override;
    int updTessaryConfig(const char* host, TesConfig* config) override;
    int updTessaryConfig(const char* host, const char* computer, TesConfig* config) override;
    NotifyConfig notifyConfig() override;
    NotifyConfig notifyConfig(const char* host) override;
    NotifyConfig notifyConfig(const char* host, const char* computer) override;
    int updNotifyConfig(NotifyConfig* config) override;
    int updNotifyConfig(const char* host, NotifyConfig* config) override;
    int updNotifyConfig(const char* host, const char* computer, NotifyConfig* config) override;

    // The plug-in's openCli() result; null when no library is loaded (the
    // entry point's null is returned as it is).
    virtual void* openClient();
    // closeCli(handle), only while a library is loaded and handle is not null.
    virtual void closeClient(void* handle);
    // Opens fileName, with ".so" appended when it has no extension, and keeps
    // the handle of a new client instance. A handle held so far is not closed:
    // call unload() first. Throws InvalidArgumentException (ERR_INVALID_ARGUMENT)
    // "Empty library filename." for a null or empty name and the loader's
    // LibraryLoadException when the library cannot be opened.
    virtual void load(const char* fileName);
    virtual void load(const std::string& fileName);
    // Disconnects, closes the client handle and the library, each step even
    // when the one before failed; never throws.
    virtual void unload();
    virtual bool isLoaded() const;

private:
    // Throws "Library libclient not loaded." unless a library and a client
    // handle are held.
    void requireClient() const;
    // Looks the entry point up now and calls it with the client handle first;
    // "Error executing libclient::<name>()." when it answers below 0.
    template <typename Fn, typename... Args>
    auto call(const char* entry, const char* name, Args... args) const;
    // Calls a getter entry point with a new Result as its last argument and
    // returns what the plug-in put there.
    template <typename Result, typename Fn, typename... Args>
    Result fetch(const char* entry, Args... args) const;

    nimb::LibLoader m_loader;
    void* m_clientHandle = nullptr;
};

}  // namespace tessary
