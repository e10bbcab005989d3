// The abstract access to the suite's monitor servers through the client
// plug-in: many servers, each running on one or more computers, each
// computer hosting devices.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "nimb/object.h"
#include "tessary/clientconf.h"
#include "tessary/config.h"
#include "tessary/device.h"
#include "tessary/deviceconf.h"
#include "tessary/devsettings.h"
#include "tessary/monit.h"
#include "tessary/monitconf.h"
#include "tessary/regressive.h"

namespace nimb {
class Logger;
}

namespace tessary {

// Three levels of address: host names the monitor server, computer one of
// the computers it reports (the key of computers(host)) and device a device
// id (the key of devices()). Texts may be null; what a null selects is the
// implementation's choice.
//
// Most families come in several forms with fewer leading texts. The shorter
// forms have defaults here that call the family's fullest form through the
// virtual table, passing null for every missing leading text:
// device("X") calls device(nullptr, nullptr, "X") and version("h") calls
// version("h", nullptr); every other argument is passed on unchanged. The
// fullest forms are abstract. Failures are thrown as nimb::Exception
// subclasses, never returned; an int result is the implementation's status
// (0 or more).
//
// A subclass that overrides some forms of a family and keeps the defaults
// of the others needs a using-declaration to keep them visible.
class ClientManagerBase : public nimb::Object {
public:
    ClientManagerBase();
    ~ClientManagerBase() override;

    // url: "[http://|https://]host[:port]" of a monitor server.
    virtual int connect(const char* url) = 0;
    // connect(url.url()).
    virtual int connect(const Url& url);
    // Disconnects from every server, or from one.
    virtual int disconnect() = 0;
    virtual int disconnect(const char* host) = 0;
    virtual bool isConnected() const = 0;
    virtual bool isConnected(const char* host) const = 0;
    // connect(url).
    virtual int start(const Url& url);
    // disconnect(); any exception it throws is discarded.
    virtual void stop();
    // isConnected().
    virtual bool isRunning() const;
    // The names of the servers known to the client.
    virtual std::vector<std::string> hostList() const = 0;
    // The logger of that name that the client writes to; null when there is
    // none. The client keeps ownership.
    virtual nimb::Logger* logger(const char* name) = 0;

    // The computers of a server, keyed by name.
    virtual std::map<std::string, Computer> computers();
    virtual std::map<std::string, Computer> computers(const char* host) = 0;
    virtual Computer version();
    virtual Computer version(const char* host);
    virtual Computer version(const char* host, const char* computer) = 0;
    // The ids of the devices.
    virtual std::vector<std::string> countDevices();
    virtual std::vector<std::string> countDevices(const char* host);
    virtual std::vector<std::string> countDevices(const char* host, const char* computer) = 0;
    // The devices keyed by id.
    virtual std::map<std::string, Device> devices();
    virtual std::map<std::string, Device> devices(const char* host);
    virtual std::map<std::string, Device> devices(const char* host, const char* computer) = 0;
    virtual Device device(const char* device);
    virtual Device device(const char* host, const char* device);
    virtual Device device(const char* host, const char* computer, const char* device) = 0;
    virtual int deleteDevice(const char* device);
    virtual int deleteDevice(const char* host, const char* device);
    virtual int deleteDevice(const char* host, const char* computer, const char* device) = 0;
    virtual DeviceConfig config(const char* device);
    virtual DeviceConfig config(const char* host, const char* device);
    virtual DeviceConfig config(const char* host, const char* computer, const char* device) = 0;
    // The configuration of a device model; family and model are passed on
    // unchanged.
    virtual DeviceConfig config(int family, int model);
    virtual DeviceConfig config(const char* host, int family, int model);
    virtual DeviceConfig config(const char* host, const char* computer, int family, int model) = 0;
    // The current countdowns keyed by device id.
    virtual std::map<std::string, Regressive> counters();
    virtual std::map<std::string, Regressive> counters(const char* host);
    virtual std::map<std::string, Regressive> counters(const char* host, const char* computer) = 0;
    virtual Regressive counter(const char* device);
    virtual Regressive counter(const char* host, const char* device);
    virtual Regressive counter(const char* host, const char* computer, const char* device) = 0;

    virtual int changeUserDevice(const char* device, const char* userName, const char* userProd);
    virtual int changeUserDevice(const char* host, const char* device, const char* userName,
                                 const char* userProd);
    virtual int changeUserDevice(const char* host, const char* computer, const char* device,
                                 const char* userName, const char* userProd) = 0;
    virtual int changeColorDevice(const char* device, int red, int green, int blue, bool flag);
    virtual int changeColorDevice(const char* host, const char* device, int red, int green,
                                  int blue, bool flag);
    virtual int changeColorDevice(const char* host, const char* computer, const char* device,
                                  int red, int green, int blue, bool flag) = 0;
    virtual int clearEventsDevice(const char* device);
    virtual int clearEventsDevice(const char* host, const char* device);
    virtual int clearEventsDevice(const char* host, const char* computer, const char* device) = 0;

    virtual std::vector<LogEntry> deviceLog(const char* device);
    virtual std::vector<LogEntry> deviceLog(const char* host, const char* device);
    virtual std::vector<LogEntry> deviceLog(const char* host, const char* computer,
                                            const char* device) = 0;
    virtual std::vector<LogEntry> deviceLogHour(const char* device);
    virtual std::vector<LogEntry> deviceLogHour(const char* host, const char* device);
    virtual std::vector<LogEntry> deviceLogHour(const char* host, const char* computer,
                                                const char* device) = 0;
    virtual std::vector<LogEntry> deviceLogDay(const char* device);
    virtual std::vector<LogEntry> deviceLogDay(const char* host, const char* device);
    virtual std::vector<LogEntry> deviceLogDay(const char* host, const char* computer,
                                               const char* device) = 0;
    virtual std::vector<LogEntry> deviceLogMonth(const char* device);
    virtual std::vector<LogEntry> deviceLogMonth(const char* host, const char* device);
    virtual std::vector<LogEntry> deviceLogMonth(const char* host, const char* computer,
                                                 const char* device) = 0;

    // Per-device settings: getters return the record, setters read the
    // record behind the pointer, which the caller keeps.
    virtual DeviceMailCfg devMailConfig(const char* device);
    virtual DeviceMailCfg devMailConfig(const char* host, const char* device);
    virtual DeviceMailCfg devMailConfig(const char* host, const char* computer,
                                        const char* device) = 0;
    virtual int updDevMailConfig(const char* device, DeviceMailCfg* config);
    virtual int updDevMailConfig(const char* host, const char* device, DeviceMailCfg* config);
    virtual int updDevMailConfig(const char* host, const char* computer, const char* device,
                                 DeviceMailCfg* config) = 0;
    virtual int manualDevMailTest(const char* device);
    virtual int manualDevMailTest(const char* host, const char* device);
    virtual int manualDevMailTest(const char* host, const char* computer, const char* device) = 0;
    virtual int cancelDevMailTest(const char* device);
    virtual int cancelDevMailTest(const char* host, const char* device);
    virtual int cancelDevMailTest(const char* host, const char* computer, const char* device) = 0;
    virtual DeviceEventApp devEventApp(const char* device);
    virtual DeviceEventApp devEventApp(const char* host, const char* device);
    virtual DeviceEventApp devEventApp(const char* host, const char* computer,
                                       const char* device) = 0;
    virtual int updDevEventApp(const char* device, DeviceEventApp* config);
    virtual int updDevEventApp(const char* host, const char* device, DeviceEventApp* config);
    virtual int updDevEventApp(const char* host, const char* computer, const char* device,
                               DeviceEventApp* config) = 0;
    virtual DeviceDialCfg devDialerConfig(const char* device);
    virtual DeviceDialCfg devDialerConfig(const char* host, const char* device);
    virtual DeviceDialCfg devDialerConfig(const char* host, const char* computer,
                                          const char* device) = 0;
    virtual int updDevDialerConfig(const char* device, DeviceDialCfg* config);
    virtual int updDevDialerConfig(const char* host, const char* device, DeviceDialCfg* config);
    virtual int updDevDialerConfig(const char* host, const char* computer, const char* device,
                                   DeviceDialCfg* config) = 0;
    virtual DeviceShutCfg devShutdownConfig(const char* device);
    virtual DeviceShutCfg devShutdownConfig(const char* host, const char* device);
    virtual DeviceShutCfg devShutdownConfig(const char* host, const char* computer,
                                            const char* device) = 0;
    virtual int updDevShutdownConfig(const char* device, DeviceShutCfg* config);
    virtual int updDevShutdownConfig(const char* host, const char* device, DeviceShutCfg* config);
    virtual int updDevShutdownConfig(const char* host, const char* computer, const char* device,
                                     DeviceShutCfg* config) = 0;
    virtual int manualDevShutdown(const char* device);
    virtual int manualDevShutdown(const char* host, const char* device);
    virtual int manualDevShutdown(const char* host, const char* computer, const char* device) = 0;
    virtual int cancelDevShutdown(const char* device);
    virtual int cancelDevShutdown(const char* host, const char* device);
    virtual int cancelDevShutdown(const char* host, const char* computer, const char* device) = 0;
    virtual int manualDevDischarge(const char* device, int value);
    virtual int manualDevDischarge(const char* host, const char* device, int value);
    virtual int manualDevDischarge(const char* host, const char* computer, const char* device,
                                   int value) = 0;
    virtual int deviceSetICBattery(const char* device, int value);
    virtual int deviceSetICBattery(const char* host, const char* device, int value);
    virtual int deviceSetICBattery(const char* host, const char* computer, const char* device,
                                   int value) = 0;
    virtual int deviceSetLineSense(const char* device, int value);
    virtual int deviceSetLineSense(const char* host, const char* device, int value);
    virtual int deviceSetLineSense(const char* host, const char* computer, const char* device,
                                   int value) = 0;
    virtual int deviceProgPowerLook(const char* device, int tPowerLo, int pPowerLo, long time);
    virtual int deviceProgPowerLook(const char* host, const char* device, int tPowerLo,
                                    int pPowerLo, long time);
    virtual int deviceProgPowerLook(const char* host, const char* computer, const char* device,
                                    int tPowerLo, int pPowerLo, long time) = 0;
    virtual DeviceSchedule devSchedule(const char* device);
    virtual DeviceSchedule devSchedule(const char* host, const char* device);
    virtual DeviceSchedule devSchedule(const char* host, const char* computer,
                                       const char* device) = 0;
    virtual int updDevSchedule(const char* device, DeviceSchedule* config);
    virtual int updDevSchedule(const char* host, const char* device, DeviceSchedule* config);
    virtual int updDevSchedule(const char* host, const char* computer, const char* device,
                               DeviceSchedule* config) = 0;

    // Per-computer settings; the caller keeps the record behind a pointer.
    virtual TesConfig tessaryConfig();
    virtual TesConfig tessaryConfig(const char* host);
    virtual TesConfig tessaryConfig(const char* host, const char* computer) = 0;
    virtual int updTessaryConfig(TesConfig* config);
    virtual int updTessaryConfig(const char* host, TesConfig* config);
    virtual int updTessaryConfig(const char* host, const char* computer, TesConfig* config) = 0;
    virtual NotifyConfig notifyConfig();
    virtual NotifyConfig notifyConfig(const char* host);
    virtual NotifyConfig notifyConfig(const char* host, const char* computer) = 0;
    virtual int updNotifyConfig(NotifyConfig* config);
    virtual int updNotifyConfig(const char* host, NotifyConfig* config);
    virtual int updNotifyConfig(const char* host, const char* computer, NotifyConfig* config) = 0;
};

}  // namespace tessary
