// Function types of the plug-in libraries' entry points. The bindings cast
// looked-up symbols to these types and every plug-in declares its definitions
// through the extern "C" declarations below, so that a mismatch between the
// two sides is a compile error rather than a crash.
#pragma once

#include <map>
#include <string>
#include <vector>

namespace nimb {
class Logger;
}

namespace tessary {
class Computer;
class Device;
class ClientConfig;
class DetectionConfig;
class DeviceConfig;
class DeviceDialCfg;
class DeviceEventApp;
class DeviceMailCfg;
class DeviceSchedule;
class DeviceShutCfg;
class LogEntry;
class MonitConfig;
class NotifyConfig;
class Regressive;
class TesConfig;
}  // namespace tessary

// ---- client.so ------------------------------------------------------------
// Every entry point but openCli takes the client handle that openCli returned
// first; host, computer and device are texts that may be null (the plug-in
// decides what a null selects). A result below 0 is a failure. Getters fill
// the object behind their last pointer, setters only read it.
namespace tessary {

using ComputerMap = std::map<std::string, Computer>;
using DeviceMap = std::map<std::string, Device>;
using RegressiveMap = std::map<std::string, Regressive>;
using LogEntryList = std::vector<LogEntry>;
using TextList = std::vector<std::string>;

using OpenCliFn = void*();
using CloseCliFn = void(const void* handle);
using ConnectCliFn = int(const void* handle, const char* url);
using DisconnectCliFn = int(const void* handle, const char* host);
// Greater than 0 when connected.
using IsConnectedFn = int(const void* handle, const char* host);
using GetHostCountFn = long(const void* handle, TextList* hosts);
// Hands out the plug-in's own logger of that name; the plug-in keeps it.
using GetLoggerFn = int(const void* handle, const char* name, nimb::Logger** logger);
using GetComputerListFn = int(const void* handle, const char* host, ComputerMap* computers);
using GetVersionFn = int(const void* handle, const char* host, const char* computer, Computer* version);
using GetDeviceCountFn = long(const void* handle, const char* host, const char* computer, TextList* ids);
using GetDeviceListFn = int(const void* handle, const char* host, const char* computer, DeviceMap* devices);
using GetDeviceFn = int(const void* handle, const char* host, const char* computer, const char* device,
                        Device* out);
using DeviceActionFn = int(const void* handle, const char* host, const char* computer, const char* device);
using GetDeviceConfigFn = int(const void* handle, const char* host, const char* computer, const char* device,
                              DeviceConfig* config);
using GetDeviceConfigByModelFn = int(const void* handle, const char* host, const char* computer, int family,
                                     int model, DeviceConfig* config);
using GetRegressiveCounterListFn = int(const void* handle, const char* host, const char* computer,
                                       RegressiveMap* counters);
using GetRegressiveCounterFn = int(const void* handle, const char* host, const char* computer,
                                   const char* device, Regressive* counter);
using ChangeUserDeviceFn = int(const void* handle, const char* host, const char* computer, const char* device,
                               const char* userName, const char* userProd);
using ChangeColorDeviceFn = int(const void* handle, const char* host, const char* computer, const char* device,
                                int red, int green, int blue, bool flag);
using DeviceLogFn = int(const void* handle, const char* host, const char* computer, const char* device,
                        LogEntryList* log);
using DeviceIntFn = int(const void* handle, const char* host, const char* computer, const char* device,
                        int value);
using DeviceProgPowerLookFn = int(const void* handle, const char* host, const char* computer,
                                  const char* device, int tPowerLo, int pPowerLo, long time);
// One type per per-device settings record, for its getter and its setter.
template <typename Record>
using DeviceRecordFn = int(const void* handle, const char* host, const char* computer, const char* device,
                           Record* record);
template <typename Record>
using ComputerRecordFn = int(const void* handle, const char* host, const char* computer, Record* record);

}  // namespace tessary

// Both plug-ins export a getDeviceConfig of their own, so a translation unit
// sees the declarations of one plug-in only: the configuration plug-in's
// when TESSARY_CONFIG_PLUGIN is defined, the client plug-in's otherwise.
#ifndef TESSARY_CONFIG_PLUGIN
extern "C" {
tessary::OpenCliFn openCli;
tessary::CloseCliFn closeCli;
tessary::ConnectCliFn connectCli;
tessary::DisconnectCliFn disconnectCli;
tessary::IsConnectedFn isConnected;
tessary::GetHostCountFn getHostCount;
tessary::GetLoggerFn getLogger;
tessary::GetComputerListFn getComputerList;
tessary::GetVersionFn getVersion;
tessary::GetDeviceCountFn getDeviceCount;
tessary::GetDeviceListFn getDeviceList;
tessary::GetDeviceFn getDevice;
tessary::DeviceActionFn deleteDevice;
tessary::GetDeviceConfigFn getDeviceConfig;
tessary::GetDeviceConfigByModelFn getDeviceConfigByModel;
tessary::GetRegressiveCounterListFn getRegressiveCounterList;
tessary::GetRegressiveCounterFn getRegressiveCounter;
tessary::ChangeUserDeviceFn changeUserDevice;
tessary::ChangeColorDeviceFn changeColorDevice;
tessary::DeviceActionFn clearEventsDevice;
tessary::DeviceLogFn deviceLog;
tessary::DeviceLogFn deviceLogHour;
tessary::DeviceLogFn deviceLogDay;
tessary::DeviceLogFn deviceLogMonth;
tessary::DeviceRecordFn<tessary::DeviceMailCfg> devMailConfig;
tessary::DeviceRecordFn<tessary::DeviceMailCfg> updDevMailConfig;
tessary::DeviceActionFn manualDevMailTest;
tessary::DeviceActionFn cancelDevMailTest;
tessary::DeviceRecordFn<tessary::DeviceEventApp> devEventApp;
tessary::DeviceRecordFn<tessary::DeviceEventApp> updDevEventApp;
tessary::DeviceRecordFn<tessary::DeviceDialCfg> devDialerConfig;
tessary::DeviceRecordFn<tessary::DeviceDialCfg> updDevDialerConfig;
tessary::DeviceRecordFn<tessary::DeviceShutCfg> devShutdownConfig;
tessary::DeviceRecordFn<tessary::DeviceShutCfg> updDevShutdownConfig;
tessary::DeviceActionFn manualDevShutdown;
tessary::DeviceActionFn cancelDevShutdown;
tessary::DeviceIntFn manualDevDischarge;
tessary::DeviceIntFn deviceSetICBattery;
tessary::DeviceIntFn deviceSetLineSense;
tessary::DeviceProgPowerLookFn deviceProgPowerLook;
tessary::DeviceRecordFn<tessary::DeviceSchedule> devSchedule;
tessary::DeviceRecordFn<tessary::DeviceSchedule> updDevSchedule;
tessary::ComputerRecordFn<tessary::TesConfig> tessaryConfig;
tessary::ComputerRecordFn<tessary::TesConfig> updTessaryConfig;
tessary::ComputerRecordFn<tessary::NotifyConfig> notifyConfig;
tessary::ComputerRecordFn<tessary::NotifyConfig> updNotifyConfig;
}
#endif
// ---- end of client.so -----------------------------------------------------

// ---- config.so ------------------------------------------------------------
// Each configuration is opened (a null handle is a failure), read by any
// number of getters (a result below 0 is a failure) and closed. Getters fill
// the record behind their last pointer.
namespace tessary {

using OpenConfigFn = void*();
using CloseConfigFn = void(const void* handle);
using GetDetectionConfigFn = int(const void* handle, DetectionConfig* out);
// family and model identify the device model.
using GetDeviceModelConfigFn = int(const void* handle, int family, int model, DeviceConfig* out);
using GetMonitConfigFn = int(const void* handle, MonitConfig* out);
using GetClientConfigFn = int(const void* handle, ClientConfig* out);

}  // namespace tessary

#ifdef TESSARY_CONFIG_PLUGIN
extern "C" {
tessary::OpenConfigFn openDevicesConfig;
tessary::CloseConfigFn closeDevicesConfig;
tessary::GetDetectionConfigFn getDetectionConfig;
tessary::GetDeviceModelConfigFn getDeviceConfig;
tessary::OpenConfigFn openMonitConfig;
tessary::CloseConfigFn closeMonitConfig;
tessary::GetMonitConfigFn getMonitConfig;
tessary::OpenConfigFn openClientConfig;
tessary::CloseConfigFn closeClientConfig;
tessary::GetClientConfigFn getClientConfig;
}
#endif
// ---- end of config.so -----------------------------------------------------
