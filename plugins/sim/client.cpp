// The entry points of the simulated monitor's client.so. Each one journals
// its call, then answers from the simulated state of its client handle.
#include <dlfcn.h>

#include <string>

#include "nimb/logger.h"
#include "nimb/system.h"
#include "simulator.h"
#include "tessary/pluginapi.h"

namespace {

using sim::SimDevice;
using sim::Simulator;

const int FAILED = -1;

// The folder of this library, where simulator.json lives.
std::string pluginFolder() {
    Dl_info info{};
    if (dladdr(reinterpret_cast<void*>(&pluginFolder), &info) == 0 || info.dli_fname == nullptr)
        return "./";
    const std::string path = info.dli_fname;
    const auto slash = path.rfind('/');
    return slash == std::string::npos ? std::string("./") : path.substr(0, slash + 1);
}

// One journal line: the entry point, then its arguments separated by spaces.
class Line {
public:
    explicit Line(const char* entry) : m_text(entry) {}
    Line& operator<<(const char* text) { return add(text == nullptr ? "(null)" : text); }
    Line& operator<<(int value) { return add(std::to_string(value)); }
    Line& operator<<(long value) { return add(std::to_string(value)); }
    Line& operator<<(bool value) { return add(value ? "1" : "0"); }
    operator const std::string&() const { return m_text; }

private:
    Line& add(const std::string& text) {
        m_text += ' ';
        m_text += text;
        return *this;
    }
    std::string m_text;
};

Simulator* simulator(const void* handle) {
    return static_cast<Simulator*>(const_cast<void*>(handle));
}

// Runs work on the device addressed by host, computer and id, after the
// journal line; FAILED when the server is not reachable or the device unknown.
template <typename Work>
int onDevice(const void* handle, const Line& line, const char* host, const char* computer, const char* id,
             Work work) {
    if (handle == nullptr)
        return FAILED;
    Simulator& sim = *simulator(handle);
    auto lock = sim.enter(line);
    if (!sim.available(host) || !sim.knownComputer(computer))
        return FAILED;
    SimDevice* device = sim.find(id);
    return device == nullptr ? FAILED : work(sim, *device);
}

// The same for operations on the whole server.
template <typename Work>
int onServer(const void* handle, const Line& line, const char* host, const char* computer, Work work) {
    if (handle == nullptr)
        return FAILED;
    Simulator& sim = *simulator(handle);
    auto lock = sim.enter(line);
    if (!sim.available(host) || !sim.knownComputer(computer))
        return FAILED;
    return work(sim);
}

// A per-device record that upd... stores and the getter returns.
template <typename Record>
int getRecord(const void* handle, const char* entry, const char* host, const char* computer, const char* id,
              Record* out, Record SimDevice::*member) {
    return onDevice(handle, Line(entry) << host << computer << id, host, computer, id,
                    [&](Simulator&, SimDevice& device) {
                        if (out != nullptr)
                            *out = device.*member;
                        return 0;
                    });
}

template <typename Record>
int setRecord(const void* handle, const char* entry, const char* host, const char* computer, const char* id,
              Record* in, Record SimDevice::*member) {
    return onDevice(handle, Line(entry) << host << computer << id, host, computer, id,
                    [&](Simulator&, SimDevice& device) {
                        if (in == nullptr)
                            return FAILED;
                        device.*member = *in;
                        return 0;
                    });
}

int deviceAction(const void* handle, const char* entry, const char* host, const char* computer, const char* id) {
    return onDevice(handle, Line(entry) << host << computer << id, host, computer, id,
                    [](Simulator&, SimDevice&) { return 0; });
}

// The log entries of the last span ms (all when span is 0).
int logSince(const void* handle, const char* entry, const char* host, const char* computer, const char* id,
             tessary::LogEntryList* out, long long span) {
    return onDevice(handle, Line(entry) << host << computer << id, host, computer, id,
                    [&](Simulator&, SimDevice& device) {
                        if (out == nullptr)
                            return FAILED;
                        const long long from =
                            span == 0 ? 0 : static_cast<long long>(nimb::System::getSystemTick()) - span;
                        out->clear();
                        for (const tessary::LogEntry& e : device.log)
                            if (e.time >= from)
                                out->push_back(e);
                        return static_cast<int>(out->size());
                    });
}

const long long HOUR = 3600LL * 1000;

}  // namespace

extern "C" {

void* openCli() {
    auto* sim = new Simulator(pluginFolder());
    sim->enter(Line("openCli"));
    return sim;
}

void closeCli(const void* handle) {
    if (handle == nullptr)
        return;
    simulator(handle)->enter(Line("closeCli")).unlock();
    delete simulator(handle);
}

int connectCli(const void* handle, const char* url) {
    if (handle == nullptr)
        return FAILED;
    Simulator& sim = *simulator(handle);
    auto lock = sim.enter(Line("connectCli") << url);
    if (sim.serverDown())
        return FAILED;
    sim.connect(url == nullptr ? "" : url);
    return 0;
}

int disconnectCli(const void* handle, const char* host) {
    return onServer(handle, Line("disconnectCli") << host, host, nullptr, [](Simulator& sim) {
        sim.disconnect();
        return 0;
    });
}

int isConnected(const void* handle, const char* host) {
    if (handle == nullptr)
        return 0;
    Simulator& sim = *simulator(handle);
    auto lock = sim.enter(Line("isConnected") << host);
    return sim.available(host) ? 1 : 0;
}

long getHostCount(const void* handle, tessary::TextList* hosts) {
    return onServer(handle, Line("getHostCount"), nullptr, nullptr, [&](Simulator& sim) {
        if (hosts == nullptr)
            return FAILED;
        *hosts = {sim.host()};
        return 1;
    });
}

int getLogger(const void* handle, const char* name, nimb::Logger** logger) {
    if (handle == nullptr || logger == nullptr)
        return FAILED;
    auto lock = simulator(handle)->enter(Line("getLogger") << name);
    if (name == nullptr || (std::string(name) != "monitclient" && std::string(name) != "shutsvc"))
        return FAILED;
    *logger = nimb::Logger::getLogger(name);
    return 0;
}

int getComputerList(const void* handle, const char* host, tessary::ComputerMap* computers) {
    return onServer(handle, Line("getComputerList") << host, host, nullptr, [&](Simulator& sim) {
        if (computers == nullptr)
            return FAILED;
        *computers = {{sim.computerName(), sim.computer()}};
        return 1;
    });
}

int getVersion(const void* handle, const char* host, const char* computer, tessary::Computer* version) {
    return onServer(handle, Line("getVersion") << host << computer, host, computer, [&](Simulator& sim) {
        if (version == nullptr)
            return FAILED;
        *version = sim.computer();
        return 0;
    });
}

long getDeviceCount(const void* handle, const char* host, const char* computer, tessary::TextList* ids) {
    return onServer(handle, Line("getDeviceCount") << host << computer, host, computer, [&](Simulator& sim) {
        if (ids == nullptr)
            return FAILED;
        ids->clear();
        for (const auto& entry : sim.devices())
            if (!entry.second.removed)
                ids->push_back(entry.first);
        return static_cast<int>(ids->size());
    });
}

int getDeviceList(const void* handle, const char* host, const char* computer, tessary::DeviceMap* devices) {
    return onServer(handle, Line("getDeviceList") << host << computer, host, computer, [&](Simulator& sim) {
        if (devices == nullptr)
            return FAILED;
        devices->clear();
        for (const auto& entry : sim.devices())
            if (!entry.second.removed)
                devices->emplace(entry.first, entry.second.device);
        return static_cast<int>(devices->size());
    });
}

int getDevice(const void* handle, const char* host, const char* computer, const char* id, tessary::Device* out) {
    return getRecord(handle, "getDevice", host, computer, id, out, &SimDevice::device);
}

int deleteDevice(const void* handle, const char* host, const char* computer, const char* id) {
    return onDevice(handle, Line("deleteDevice") << host << computer << id, host, computer, id,
                    [&](Simulator& sim, SimDevice&) {
                        sim.remove(id);
                        return 0;
                    });
}

int getDeviceConfig(const void* handle, const char* host, const char* computer, const char* id,
                    tessary::DeviceConfig* config) {
    // Simulated devices have no model table: their configuration is the
    // default one.
    return onDevice(handle, Line("getDeviceConfig") << host << computer << id, host, computer, id,
                    [&](Simulator&, SimDevice&) {
                        if (config == nullptr)
                            return FAILED;
                        *config = tessary::DeviceConfig();
                        return 0;
                    });
}

int getDeviceConfigByModel(const void* handle, const char* host, const char* computer, int family, int model,
                           tessary::DeviceConfig* config) {
    return onServer(handle, Line("getDeviceConfigByModel") << host << computer << family << model, host, computer,
                    [&](Simulator&) {
                        if (config == nullptr)
                            return FAILED;
                        *config = tessary::DeviceConfig();
                        return 0;
                    });
}

int getRegressiveCounterList(const void* handle, const char* host, const char* computer,
                             tessary::RegressiveMap* counters) {
    return onServer(handle, Line("getRegressiveCounterList") << host << computer, host, computer,
                    [&](Simulator& sim) {
                        if (counters == nullptr)
                            return FAILED;
                        counters->clear();
                        for (auto& entry : sim.devices()) {
                            if (entry.second.removed || entry.second.readFail)
                                continue;
                            entry.second.counter.update();
                            counters->emplace(entry.first, entry.second.counter.value());
                        }
                        return static_cast<int>(counters->size());
                    });
}

int getRegressiveCounter(const void* handle, const char* host, const char* computer, const char* id,
                         tessary::Regressive* counter) {
    return onDevice(handle, Line("getRegressiveCounter") << host << computer << id, host, computer, id,
                    [&](Simulator&, SimDevice& device) {
                        if (counter == nullptr || device.readFail)
                            return FAILED;
                        device.counter.update();
                        *counter = device.counter.value();
                        return 0;
                    });
}

int changeUserDevice(const void* handle, const char* host, const char* computer, const char* id,
                     const char* userName, const char* userProd) {
    return onDevice(handle, Line("changeUserDevice") << host << computer << id << userName << userProd, host,
                    computer, id, [&](Simulator&, SimDevice& device) {
                        device.device.userName = userName == nullptr ? "" : userName;
                        device.device.userProd = userProd == nullptr ? "" : userProd;
                        return 0;
                    });
}

int changeColorDevice(const void* handle, const char* host, const char* computer, const char* id, int red,
                      int green, int blue, bool flag) {
    return onDevice(handle, Line("changeColorDevice") << host << computer << id << red << green << blue << flag,
                    host, computer, id, [&](Simulator&, SimDevice& device) {
                        device.device.vars.ledRed = red;
                        device.device.vars.ledGreen = green;
                        device.device.vars.ledBlue = blue;
                        return 0;
                    });
}

int clearEventsDevice(const void* handle, const char* host, const char* computer, const char* id) {
    return onDevice(handle, Line("clearEventsDevice") << host << computer << id, host, computer, id,
                    [](Simulator&, SimDevice& device) {
                        device.log.clear();
                        return 0;
                    });
}

int deviceLog(const void* h, const char* host, const char* computer, const char* id, tessary::LogEntryList* out) {
    return logSince(h, "deviceLog", host, computer, id, out, 0);
}

int deviceLogHour(const void* h, const char* host, const char* computer, const char* id,
                  tessary::LogEntryList* out) {
    return logSince(h, "deviceLogHour", host, computer, id, out, HOUR);
}

int deviceLogDay(const void* h, const char* host, const char* computer, const char* id,
                 tessary::LogEntryList* out) {
    return logSince(h, "deviceLogDay", host, computer, id, out, 24 * HOUR);
}

int deviceLogMonth(const void* h, const char* host, const char* computer, const char* id,
                   tessary::LogEntryList* out) {
    return logSince(h, "deviceLogMonth", host, computer, id, out, 31 * 24 * HOUR);
}

int devMailConfig(const void* h, const char* host, const char* computer, const char* id,
                  tessary::DeviceMailCfg* out) {
    return getRecord(h, "devMailConfig", host, computer, id, out, &SimDevice::mailCfg);
}

int updDevMailConfig(const void* h, const char* host, const char* computer, const char* id,
                     tessary::DeviceMailCfg* in) {
    return setRecord(h, "updDevMailConfig", host, computer, id, in, &SimDevice::mailCfg);
}

int manualDevMailTest(const void* h, const char* host, const char* computer, const char* id) {
    return deviceAction(h, "manualDevMailTest", host, computer, id);
}

int cancelDevMailTest(const void* h, const char* host, const char* computer, const char* id) {
    return deviceAction(h, "cancelDevMailTest", host, computer, id);
}

int devEventApp(const void* h, const char* host, const char* computer, const char* id,
                tessary::DeviceEventApp* out) {
    return getRecord(h, "devEventApp", host, computer, id, out, &SimDevice::eventApp);
}

int updDevEventApp(const void* h, const char* host, const char* computer, const char* id,
                   tessary::DeviceEventApp* in) {
    return setRecord(h, "updDevEventApp", host, computer, id, in, &SimDevice::eventApp);
}

int devDialerConfig(const void* h, const char* host, const char* computer, const char* id,
                    tessary::DeviceDialCfg* out) {
    return getRecord(h, "devDialerConfig", host, computer, id, out, &SimDevice::dialCfg);
}

int updDevDialerConfig(const void* h, const char* host, const char* computer, const char* id,
                       tessary::DeviceDialCfg* in) {
    return setRecord(h, "updDevDialerConfig", host, computer, id, in, &SimDevice::dialCfg);
}

int devShutdownConfig(const void* h, const char* host, const char* computer, const char* id,
                      tessary::DeviceShutCfg* out) {
    return onDevice(h, Line("devShutdownConfig") << host << computer << id, host, computer, id,
                    [&](Simulator&, SimDevice& device) {
                        if (out == nullptr || device.readFail)
                            return FAILED;
                        *out = device.shutCfg;
                        return 0;
                    });
}

int updDevShutdownConfig(const void* h, const char* host, const char* computer, const char* id,
                         tessary::DeviceShutCfg* in) {
    return setRecord(h, "updDevShutdownConfig", host, computer, id, in, &SimDevice::shutCfg);
}

int manualDevShutdown(const void* h, const char* host, const char* computer, const char* id) {
    return onDevice(h, Line("manualDevShutdown") << host << computer << id, host, computer, id,
                    [](Simulator& sim, SimDevice& device) {
                        sim.manualShutdown(device, true);
                        return 0;
                    });
}

int cancelDevShutdown(const void* h, const char* host, const char* computer, const char* id) {
    return onDevice(h, Line("cancelDevShutdown") << host << computer << id, host, computer, id,
                    [](Simulator& sim, SimDevice& device) {
                        sim.manualShutdown(device, false);
                        return 0;
                    });
}

int manualDevDischarge(const void* h, const char* host, const char* computer, const char* id, int value) {
    return onDevice(h, Line("manualDevDischarge") << host << computer << id << value, host, computer, id,
                    [](Simulator&, SimDevice&) { return 0; });
}

int deviceSetICBattery(const void* h, const char* host, const char* computer, const char* id, int value) {
    return onDevice(h, Line("deviceSetICBattery") << host << computer << id << value, host, computer, id,
                    [&](Simulator&, SimDevice& device) {
                        device.device.vars.icBattery = value;
                        return 0;
                    });
}

int deviceSetLineSense(const void* h, const char* host, const char* computer, const char* id, int value) {
    return onDevice(h, Line("deviceSetLineSense") << host << computer << id << value, host, computer, id,
                    [&](Simulator&, SimDevice& device) {
                        device.device.vars.lineSense = value;
                        return 0;
                    });
}

int deviceProgPowerLook(const void* h, const char* host, const char* computer, const char* id, int tPowerLo,
                        int pPowerLo, long time) {
    return onDevice(h, Line("deviceProgPowerLook") << host << computer << id << tPowerLo << pPowerLo << time, host,
                    computer, id, [&](Simulator&, SimDevice& device) {
                        device.device.vars.tPowerLo = tPowerLo;
                        device.device.vars.pPowerLo = pPowerLo;
                        return 0;
                    });
}

int devSchedule(const void* h, const char* host, const char* computer, const char* id,
                tessary::DeviceSchedule* out) {
    return getRecord(h, "devSchedule", host, computer, id, out, &SimDevice::schedule);
}

int updDevSchedule(const void* h, const char* host, const char* computer, const char* id,
                   tessary::DeviceSchedule* in) {
    return setRecord(h, "updDevSchedule", host, computer, id, in, &SimDevice::schedule);
}

int tessaryConfig(const void* h, const char* host, const char* computer, tessary::TesConfig* out) {
    return onServer(h, Line("tessaryConfig") << host << computer, host, computer, [&](Simulator& sim) {
        if (out == nullptr)
            return FAILED;
        *out = sim.tesConfig;
        return 0;
    });
}

int updTessaryConfig(const void* h, const char* host, const char* computer, tessary::TesConfig* in) {
    return onServer(h, Line("updTessaryConfig") << host << computer, host, computer, [&](Simulator& sim) {
        if (in == nullptr)
            return FAILED;
        sim.tesConfig = *in;
        return 0;
    });
}

int notifyConfig(const void* h, const char* host, const char* computer, tessary::NotifyConfig* out) {
    return onServer(h, Line("notifyConfig") << host << computer, host, computer, [&](Simulator& sim) {
        if (out == nullptr)
            return FAILED;
        *out = sim.notifyConfig;
        return 0;
    });
}

int updNotifyConfig(const void* h, const char* host, const char* computer, tessary::NotifyConfig* in) {
    return onServer(h, Line("updNotifyConfig") << host << computer, host, computer, [&](Simulator& sim) {
        if (in == nullptr)
            return FAILED;
        sim.notifyConfig = *in;
        return 0;
    });
}

}  // extern "C"
