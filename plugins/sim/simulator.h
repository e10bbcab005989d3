// A simulated monitor server: devices, countdowns and settings driven by a
// scenario file, simulator.json, beside the plug-in.
#pragma once

#include <cstdint>
#include <cstdio>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include <sys/stat.h>

#include "tessary/clientconf.h"
#include "tessary/config.h"
#include "tessary/device.h"
#include "tessary/deviceconf.h"
#include "tessary/devsettings.h"
#include "tessary/monit.h"
#include "tessary/pluginapi.h"
#include "tessary/regressive.h"

namespace sim {

// One simulated device with what the server keeps about it.
struct SimDevice {
    tessary::Device device;
    tessary::DeviceShutCfg shutCfg;
    tessary::RegressiveCounter counter;
    tessary::DeviceMailCfg mailCfg;
    tessary::DeviceEventApp eventApp;
    tessary::DeviceDialCfg dialCfg;
    tessary::DeviceSchedule schedule;
    std::vector<tessary::LogEntry> log;
    bool removed = false;   // left out of the device list, still answers
    bool readFail = false;  // its countdown and shutdown settings fail
};

// One timeline entry: at seconds after connectCli, for one device or (empty)
// for all.
struct Event {
    double at = 0;
    std::string device;
    std::string event;
};

// What simulator.json says.
struct Scenario {
    tessary::Computer computer;
    std::string journal;  // absolute; empty means none
    std::vector<std::pair<tessary::Device, tessary::DeviceShutCfg>> devices;
    std::vector<Event> timeline;  // sorted by at, file order among equals
};

// Reads a scenario from path. Throws std::runtime_error with the reason when
// the file does not parse or a device has no id.
Scenario readScenario(const std::string& path, const std::string& folder);

// The state of one client handle. Every public operation takes the lock, so
// one instance serves any number of threads.
class Simulator {
public:
    // folder: the plug-in's folder, ending in "/".
    explicit Simulator(const std::string& folder);
    ~Simulator();

    // Takes the lock, rereads the scenario if its file changed, catches the
    // state up with the clock and writes line to the journal. The caller then
    // works on the state under the lock it holds through the returned guard.
    std::unique_lock<std::mutex> enter(const std::string& line);

    // The following are called with the lock held (after enter()).
    bool connected() const { return m_connected; }
    bool serverDown() const { return m_serverDown; }
    // Connection and host checks: every entry point but the four handle and
    // logger ones fails while this is false.
    bool available(const char* host) const;
    bool knownHost(const char* host) const;
    bool knownComputer(const char* computer) const;
    void connect(const std::string& url);
    void disconnect();
    std::string host() const;
    const tessary::Computer& computer() const { return m_scenario.computer; }
    std::string computerName() const;
    // The device of that id, removed ones included; null when unknown.
    SimDevice* find(const char* id);
    std::map<std::string, SimDevice>& devices() { return m_devices; }
    void remove(const std::string& id) { m_devices.erase(id); }
    // Starts or resets a countdown now, as the matching events do.
    void manualShutdown(SimDevice& device, bool start);
    tessary::TesConfig tesConfig;
    tessary::NotifyConfig notifyConfig;

private:
    void reloadIfChanged();
    void rebuild();
    void catchUp();
    void apply(const Event& event, std::uint64_t tick);
    bool applyTo(SimDevice& device, const std::string& event, std::uint64_t tick);
    void writeJournal(const std::string& line);

    const std::string m_folder;
    const std::string m_path;
    std::mutex m_mutex;  // guards everything below
    struct stat m_seen {};
    bool m_haveSeen = false;
    Scenario m_scenario;
    std::map<std::string, SimDevice> m_devices;
    std::size_t m_next = 0;  // first timeline entry not yet applied
    bool m_connected = false;
    bool m_serverDown = false;
    std::uint64_t m_connectTick = 0;
    std::string m_host;
    std::FILE* m_journal = nullptr;
    std::string m_journalPath;
};

}  // namespace sim
