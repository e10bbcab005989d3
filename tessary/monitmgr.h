// The one-server views of a monitor server: MonitClientBase, what a client
// asks of the one server it talks to, and MonitManagerBase, what the server
// itself offers to its clients.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "nimb/object.h"
#include "tessary/clientconf.h"
#include "tessary/config.h"
#include "tessary/detectconf.h"
#include "tessary/device.h"
#include "tessary/deviceconf.h"
#include "tessary/devsettings.h"
#include "tessary/monit.h"
#include "tessary/regressive.h"

namespace tessary {

// A client of one monitor server: the device operations without a host.
//
// The operations without a computer text have defaults that call the same
// operation with a null computer first, through the virtual table:
// device("X") calls device(nullptr, "X"). The computer-level forms are
// abstract. Failures are thrown as nimb::Exception subclasses; an int result
// is the implementation's status (0 or more).
//
// A subclass that overrides the computer-level forms needs a
// using-declaration to keep the defaults visible.
class MonitClientBase : public nimb::Object {
public:
    MonitClientBase();
    ~MonitClientBase() override;

    // Connects to the server. Throws nimb::NotImplementedException
    // (ERR_NOT_IMPLEMENTED) "Error: not implemented." unless overridden.
    virtual void start();
    virtual void stop() = 0;
    virtual bool isRunning() const = 0;
    // The computers the server runs on, keyed by name.
    virtual std::map<std::string, Computer> computers() = 0;

    // The ids of the devices; empty when countDevices(nullptr) throws.
    virtual std::vector<std::string> countDevices();
    // The devices keyed by id; empty when devices(nullptr) throws.
    virtual std::map<std::string, Device> devices();
    virtual Device device(const char* device);
    virtual int deleteDevice(const char* device);
    virtual DeviceConfig config(const char* device);
    virtual DeviceConfig config(int family, int model);
    // The detection settings of the server. Throws
    // nimb::NotImplementedException (ERR_NOT_IMPLEMENTED) "Error: not
    // implemented." unless overridden.
    virtual DetectionConfig detectionConfig();
    // Empty when counters(nullptr) throws.
    virtual std::map<std::string, Regressive> counters();
    virtual Regressive counter(const char* device);
    virtual int changeUserDevice(const char* device, const char* userName, const char* userProd);
    virtual int changeColorDevice(const char* device, int red, int green, int blue, bool flag);
    virtual int clearEventsDevice(const char* device);
    virtual std::vector<LogEntry> deviceLog(const char* device);
    virtual std::vector<LogEntry> deviceLogHour(const char* device);
    virtual std::vector<LogEntry> deviceLogDay(const char* device);
    virtual std::vector<LogEntry> deviceLogMonth(const char* device);
    virtual DeviceMailCfg devMailConfig(const char* device);
    virtual int updDevMailConfig(const char* device, DeviceMailCfg* config);
    virtual DeviceEventApp devEventApp(const char* device);
    virtual int updDevEventApp(const char* device, DeviceEventApp* config);
    virtual DeviceDialCfg devDialerConfig(const char* device);
    virtual int updDevDialerConfig(const char* device, DeviceDialCfg* config);
    virtual DeviceShutCfg devShutdownConfig(const char* device);
    virtual int updDevShutdownConfig(const char* device, DeviceShutCfg* config);
    virtual int manualDevShutdown(const char* device);
    virtual int cancelDevShutdown(const char* device);
    virtual int manualDevDischarge(const char* device, int value);
    virtual int deviceSetICBattery(const char* device, int value);
    virtual int deviceSetLineSense(const char* device, int value);
    virtual int deviceProgPowerLook(const char* device, int tPowerLo, int pPowerLo, long time);
    virtual DeviceSchedule devSchedule(const char* device);
    virtual int updDevSchedule(const char* device, DeviceSchedule* config);
    virtual TesConfig tessaryConfig();
    virtual int updTessaryConfig(TesConfig* config);
    virtual NotifyConfig notifyConfig();
    virtual int updNotifyConfig(NotifyConfig* config);

    // The forms that name the computer first.
    virtual std::vector<std::string> countDevices(const char* computer) = 0;
    virtual std::map<std::string, Device> devices(const char* computer) = 0;
    virtual Device device(const char* computer, const char* device) = 0;
    virtual int deleteDevice(const char* computer, const char* device) = 0;
    virtual DeviceConfig config(const char* computer, const char* device) = 0;
    virtual DeviceConfig config(const char* computer, int family, int model) = 0;
    virtual std::map<std::string, Regressive> counters(const char* computer) = 0;
    virtual Regressive counter(const char* computer, const char* device) = 0;
    virtual int changeUserDevice(const char* computer, const char* device, const char* userName,
                                 const char* userProd) = 0;
    virtual int changeColorDevice(const char* computer, const char* device, int red, int green,
                                  int blue, bool flag) = 0;
    virtual int clearEventsDevice(const char* computer, const char* device) = 0;
    virtual std::vector<LogEntry> deviceLog(const char* computer, const char* device) = 0;
    virtual std::vector<LogEntry> deviceLogHour(const char* computer, const char* device) = 0;
    virtual std::vector<LogEntry> deviceLogDay(const char* computer, const char* device) = 0;
    virtual std::vector<LogEntry> deviceLogMonth(const char* computer, const char* device) = 0;
    virtual DeviceMailCfg devMailConfig(const char* computer, const char* device) = 0;
    virtual int updDevMailConfig(const char* computer, const char* device,
                                 DeviceMailCfg* config) = 0;
    virtual DeviceEventApp devEventApp(const char* computer, const char* device) = 0;
    virtual int updDevEventApp(const char* computer, const char* device,
                               DeviceEventApp* config) = 0;
    virtual DeviceDialCfg devDialerConfig(const char* computer, const char* device) = 0;
    virtual int updDevDialerConfig(const char* computer, const char* device,
                                   DeviceDialCfg* config) = 0;
    virtual DeviceShutCfg devShutdownConfig(const char* computer, const char* device) = 0;
    virtual int updDevShutdownConfig(const char* computer, const char* device,
                                     DeviceShutCfg* config) = 0;
    virtual int manualDevShutdown(const char* computer, const char* device) = 0;
    virtual int cancelDevShutdown(const char* computer, const char* device) = 0;
    virtual int manualDevDischarge(const char* computer, const char* device, int value) = 0;
    virtual int deviceSetICBattery(const char* computer, const char* device, int value) = 0;
    virtual int deviceSetLineSense(const char* computer, const char* device, int value) = 0;
    virtual int deviceProgPowerLook(const char* computer, const char* device, int tPowerLo,
                                    int pPowerLo, long time) = 0;
    virtual DeviceSchedule devSchedule(const char* computer, const char* device) = 0;
    virtual int updDevSchedule(const char* computer, const char* device,
                               DeviceSchedule* config) = 0;
    virtual TesConfig tessaryConfig(const char* computer) = 0;
    virtual int updTessaryConfig(const char* computer, TesConfig* config) = 0;
    virtual NotifyConfig notifyConfig(const char* computer) = 0;
    virtual int updNotifyConfig(const char* computer, NotifyConfig* config) = 0;
    virtual int manualDevMailTest(const char* device);
    virtual int manualDevMailTest(const char* computer, const char* device) = 0;
    virtual int cancelDevMailTest(const char* device);
    virtual int cancelDevMailTest(const char* computer, const char* device) = 0;
};

// The server side of a monitor server, for the clients of one computer. Its
// operations mirror MonitClientBase without the computer text; the records
// are the server's own and copies are returned.
class MonitManagerBase : public nimb::Object {
public:
    MonitManagerBase();
    ~MonitManagerBase() override;

    // Opens the devices' ports and starts monitoring them.
    virtual void start() = 0;
    virtual void stop() = 0;
    virtual bool isRunning() const = 0;
    // The devices keyed by id.
    virtual std::map<std::string, Device> devices() = 0;
    virtual Device device(const char* device) = 0;
    virtual int deleteDevice(const char* device) = 0;
    virtual DeviceConfig config(const char* device) = 0;
    virtual DeviceConfig config(int family, int model) = 0;
    virtual DetectionConfig detectionConfig() = 0;
    virtual std::map<std::string, Regressive> counters() = 0;
    virtual Regressive counter(const char* device) = 0;
    virtual int changeUserDevice(const char* device, const char* userName,
                                 const char* userProd) = 0;
    virtual int changeColorDevice(const char* device, int red, int green, int blue, bool flag) = 0;
    virtual int clearEventsDevice(const char* device) = 0;
    virtual std::vector<LogEntry> deviceLog(const char* device) = 0;
    virtual std::vector<LogEntry> deviceLogHour(const char* device) = 0;
    virtual std::vector<LogEntry> deviceLogDay(const char* device) = 0;
    virtual std::vector<LogEntry> deviceLogMonth(const char* device) = 0;
    virtual DeviceMailCfg devMailConfig(const char* device) = 0;
    virtual int updDevMailConfig(const char* device, DeviceMailCfg* config) = 0;
    virtual int manualDevMailTest(const char* device) = 0;
    virtual int cancelDevMailTest(const char* device) = 0;
    virtual DeviceEventApp devEventApp(const char* device) = 0;
    virtual int updDevEventApp(const char* device, DeviceEventApp* config) = 0;
    virtual DeviceDialCfg devDialerConfig(const char* device) = 0;
    virtual int updDevDialerConfig(const char* device, DeviceDialCfg* config) = 0;
    virtual DeviceShutCfg devShutdownConfig(const char* device) = 0;
    virtual int updDevShutdownConfig(const char* device, DeviceShutCfg* config) = 0;
    virtual int manualDevShutdown(const char* device) = 0;
    virtual int cancelDevShutdown(const char* device) = 0;
    virtual int manualDevDischarge(const char* device, int value) = 0;
    virtual int deviceSetICBattery(const char* device, int value) = 0;
    virtual int deviceSetLineSense(const char* device, int value) = 0;
    virtual int deviceProgPowerLook(const char* device, int tPowerLo, int pPowerLo, long time) = 0;
    virtual DeviceSchedule devSchedule(const char* device) = 0;
    virtual int updDevSchedule(const char* device, DeviceSchedule* config) = 0;
    virtual TesConfig tessaryConfig() = 0;
    virtual int updTessaryConfig(TesConfig* config) = 0;
    virtual NotifyConfig notifyConfig() = 0;
    virtual int updNotifyConfig(NotifyConfig* config) = 0;
};

}  // namespace tessary
