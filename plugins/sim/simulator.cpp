#include "simulator.h"

#include <algorithm>
#include <stdexcept>

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QUrl>

#include "nimb/json.h"
#include "nimb/logger.h"
#include "nimb/system.h"

namespace sim {

namespace {

using tessary::ShutdownCause;

std::uint64_t now() {
    return nimb::System::getSystemTick();
}

// The cause and the flag of the countdown events, which come in pairs of
// start and clear.
struct CountdownEvent {
    const char* on;
    const char* off;
    ShutdownCause cause;
    unsigned tessary::DeviceShutCfg::*seconds;
};

const CountdownEvent COUNTDOWN_EVENTS[] = {
    {"mainsFail", "mainsReturn", ShutdownCause::EndAutonomy, &tessary::DeviceShutCfg::counterOpBattery},
    {"batteryLow", "batteryOk", ShutdownCause::LoBattery, &tessary::DeviceShutCfg::counterLoBattery},
    {"manualShutdown", "cancelShutdown", ShutdownCause::Manual, &tessary::DeviceShutCfg::counterManual},
    {"failure", "failureCleared", ShutdownCause::Failure, &tessary::DeviceShutCfg::counterFailure},
};

const char* const STATE_EVENTS[] = {"disconnect", "reconnect", "startupOn", "startupOff",
                                    "remove",     "restore",   "readFail",  "readOk"};

bool knownEvent(const std::string& name) {
    if (name == "serverDown" || name == "serverUp")
        return true;
    for (const CountdownEvent& c : COUNTDOWN_EVENTS)
        if (name == c.on || name == c.off)
            return true;
    return std::find(std::begin(STATE_EVENTS), std::end(STATE_EVENTS), name) != std::end(STATE_EVENTS);
}

void setFlags(tessary::Device& device, ShutdownCause cause, bool on) {
    switch (cause) {
    case ShutdownCause::EndAutonomy:
        device.flags.opBattery = on;
        device.flags.noVInput = on;
        break;
    case ShutdownCause::LoBattery:
        device.flags.loBattery = on;
        break;
    case ShutdownCause::Failure:
        device.fail.internal = on;
        device.flags.opWarning = on;
        break;
    default:
        // A manual shutdown shows only in its countdown.
        break;
    }
}

}  // namespace

Scenario readScenario(const std::string& path, const std::string& folder) {
    QFile file(QString::fromStdString(path));
    if (!file.open(QIODevice::ReadOnly))
        throw std::runtime_error("cannot open the file");
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(file.readAll(), &error);
    if (document.isNull())
        throw std::runtime_error(error.errorString().toStdString() + " at offset " +
                                 std::to_string(error.offset));
    if (!document.isObject())
        throw std::runtime_error("the scenario is not a JSON object");
    const nimb::JsonObject root(document.object());

    Scenario scenario;
    if (root.contains("computer"))
        scenario.computer.fromJson(root.value("computer").toObject());
    const std::string journal = root.value("journal").toString();
    if (!journal.empty())
        scenario.journal = journal[0] == '/' ? journal : folder + journal;

    const nimb::JsonArray devices = root.value("devices").toArray();
    for (int i = 0; i < devices.size(); ++i) {
        const nimb::JsonObject entry = devices.at(i).toObject();
        const nimb::JsonObject json = entry.value("device").toObject();
        tessary::Device device;
        device.fromJson(json);
        if (device.id.empty())
            throw std::runtime_error("device " + std::to_string(i + 1) + " has no id");
        // Without flags a device is taken as connected: a scenario states
        // only what differs from a working UPS.
        if (!json.contains("status"))
            device.flags.connected = true;
        tessary::DeviceShutCfg shutCfg;
        if (entry.contains("shutCfg"))
            shutCfg.fromJson(entry.value("shutCfg").toObject());
        if (shutCfg.id.empty())
            shutCfg.id = device.id;
        scenario.devices.emplace_back(device, shutCfg);
    }

    const nimb::JsonArray timeline = root.value("timeline").toArray();
    for (int i = 0; i < timeline.size(); ++i) {
        const nimb::JsonObject entry = timeline.at(i).toObject();
        Event event{entry.value("at").toDouble(), entry.value("device").toString(), entry.value("event").toString()};
        if (!knownEvent(event.event))
            throw std::runtime_error("unknown event \"" + event.event + "\" in timeline entry " +
                                     std::to_string(i + 1));
        scenario.timeline.push_back(event);
    }
    std::stable_sort(scenario.timeline.begin(), scenario.timeline.end(),
                     [](const Event& a, const Event& b) { return a.at < b.at; });
    return scenario;
}

Simulator::Simulator(const std::string& folder) : m_folder(folder), m_path(folder + "simulator.json") {
}

Simulator::~Simulator() {
    if (m_journal != nullptr)
        std::fclose(m_journal);
}

std::unique_lock<std::mutex> Simulator::enter(const std::string& line) {
    std::unique_lock<std::mutex> lock(m_mutex);
    reloadIfChanged();
    catchUp();
    writeJournal(line);
    return lock;
}

void Simulator::reloadIfChanged() {
    struct stat current {};
    const bool exists = ::stat(m_path.c_str(), &current) == 0;
    if (!exists)
        current = {};
    if (m_haveSeen && current.st_ino == m_seen.st_ino && current.st_size == m_seen.st_size &&
        current.st_mtim.tv_sec == m_seen.st_mtim.tv_sec && current.st_mtim.tv_nsec == m_seen.st_mtim.tv_nsec)
        return;
    m_haveSeen = true;
    m_seen = current;
    if (!exists) {
        m_scenario = Scenario();
    } else {
        try {
            m_scenario = readScenario(m_path, m_folder);
        } catch (const std::exception& e) {
            // The last good scenario stays in force; the error is reported
            // once, until the file changes again.
            nimb::Logger::getLogger("monitclient")
                ->error("Simulator: error in scenario " + m_path + ": " + e.what() + ".");
            return;
        }
    }
    rebuild();
}

void Simulator::rebuild() {
    m_devices.clear();
    for (const auto& entry : m_scenario.devices) {
        SimDevice& device = m_devices[entry.first.id];
        device.device = entry.first;
        device.shutCfg = entry.second;
    }
    m_serverDown = false;
    m_next = 0;
    if (m_journal != nullptr && m_journalPath != m_scenario.journal) {
        std::fclose(m_journal);
        m_journal = nullptr;
    }
    catchUp();
}

void Simulator::catchUp() {
    if (!m_connected)
        return;
    const std::uint64_t tick = now();
    while (m_next < m_scenario.timeline.size()) {
        const Event& event = m_scenario.timeline[m_next];
        const std::uint64_t at = m_connectTick + static_cast<std::uint64_t>(std::max(0.0, event.at) * 1000.0);
        if (at > tick)
            break;
        apply(event, at);
        ++m_next;
    }
}

void Simulator::apply(const Event& event, std::uint64_t tick) {
    if (event.event == "serverDown" || event.event == "serverUp") {
        m_serverDown = event.event == "serverDown";
        return;
    }
    if (event.device.empty()) {
        for (auto& entry : m_devices)
            applyTo(entry.second, event.event, tick);
    } else if (SimDevice* device = find(event.device.c_str())) {
        applyTo(*device, event.event, tick);
    }
}

bool Simulator::applyTo(SimDevice& device, const std::string& event, std::uint64_t tick) {
    device.log.emplace_back(static_cast<long long>(tick), 0, event);
    for (const CountdownEvent& c : COUNTDOWN_EVENTS) {
        if (event == c.on) {
            tessary::Regressive& countdown = device.counter.counters[c.cause];
            if (!countdown.active) {
                countdown.start(static_cast<unsigned long>(device.shutCfg.*c.seconds) * 1000UL);
                // Counted from the event's own time, whenever it is replayed.
                countdown.initial = tick;
                countdown.update();
            }
            setFlags(device.device, c.cause, true);
            return true;
        }
        if (event == c.off) {
            device.counter.reset(c.cause);
            setFlags(device.device, c.cause, false);
            return true;
        }
    }
    if (event == "disconnect" || event == "reconnect")
        device.device.flags.connected = event == "reconnect";
    else if (event == "startupOn" || event == "startupOff")
        device.device.flags.opStartup = event == "startupOn";
    else if (event == "remove" || event == "restore")
        device.removed = event == "remove";
    else if (event == "readFail" || event == "readOk")
        device.readFail = event == "readFail";
    else
        return false;
    return true;
}

void Simulator::manualShutdown(SimDevice& device, bool start) {
    applyTo(device, start ? "manualShutdown" : "cancelShutdown", now());
}

void Simulator::writeJournal(const std::string& line) {
    if (m_scenario.journal.empty())
        return;
    if (m_journal == nullptr) {
        m_journal = std::fopen(m_scenario.journal.c_str(), "a");
        m_journalPath = m_scenario.journal;
        if (m_journal == nullptr)
            return;
    }
    std::fputs(line.c_str(), m_journal);
    std::fputc('\n', m_journal);
    std::fflush(m_journal);
}

bool Simulator::available(const char* host) const {
    return m_connected && !m_serverDown && knownHost(host);
}

bool Simulator::knownHost(const char* host) const {
    if (host == nullptr)
        return true;
    const std::string name = host;
    return name.empty() || name == "localhost" || name == "127.0.0.1" || (!m_host.empty() && name == m_host);
}

bool Simulator::knownComputer(const char* computer) const {
    return computer == nullptr || *computer == '\0' || computerName() == computer;
}

std::string Simulator::computerName() const {
    return m_scenario.computer.hostname.empty() ? std::string("localhost") : m_scenario.computer.hostname;
}

void Simulator::connect(const std::string& url) {
    QString text = QString::fromStdString(url);
    if (!text.contains("://"))
        text.prepend("http://");
    m_host = QUrl(text).host().toStdString();
    m_connected = true;
    m_connectTick = now();
    // The timeline counts from this connection: replay it from the start.
    rebuild();
}

void Simulator::disconnect() {
    m_connected = false;
}

std::string Simulator::host() const {
    return m_host.empty() ? std::string("localhost") : m_host;
}

SimDevice* Simulator::find(const char* id) {
    if (id == nullptr)
        return nullptr;
    auto it = m_devices.find(id);
    return it == m_devices.end() ? nullptr : &it->second;
}

}  // namespace sim
