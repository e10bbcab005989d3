#include "tessary/ldclient.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

#include <chrono>
#include <cstdio>
#include <functional>
#include <thread>
#include <utility>

#include "nimb/logger.h"
#include "tests/support.h"

namespace {

using namespace tessary;
using C = LibClient;
using Clock = std::chrono::steady_clock;

const std::string NOT_LOADED = "System error -305 Library libclient not loaded.";

// What an action threw: "<category> <code> <message>", or "none".
std::string failure(const std::function<void()>& action) {
    try {
        action();
    } catch (const nimb::Exception& e) {
        return std::string(e.getName()) + " " + std::to_string(e.code()) + " " + e.message();
    }
    return "none";
}

// A device entry of a scenario whose mains failure countdown lasts opBattery seconds.
std::string simDevice(const std::string& id, int opBattery = 30) {
    return R"({"device": {"id": ")" + id + R"(", "name": "Sim )" + id +
           R"("}, "shutCfg": {"counterOpBattery": )" + std::to_string(opBattery) + "}}";
}

std::string scenario(const std::string& devices, const std::string& timeline = "") {
    return R"({"computer": {"hostname": "pc1", "monVersion": "2.1"}, "journal": "calls.log", )" +
           std::string(R"("devices": [)") + devices + R"(], "timeline": [)" + timeline + "]}";
}

// Polls until check() holds or 20 seconds pass.
bool eventually(const std::function<bool()>& check) {
    const auto end = Clock::now() + std::chrono::seconds(20);
    while (!check() && Clock::now() < end)
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    return check();
}

// Operations with the journal line the simulated plug-in writes for them: the
// entry point and the arguments it got. Every family with code of its own,
// and each form of the device families that share theirs.
using Call = std::pair<std::string, std::function<void(C&)>>;
// clang-format off
const Call CALLS[] = {
    {"getHostCount", [](C& c) { c.hostList(); }},
    {"getComputerList (null)", [](C& c) { c.computers(); }},
    {"getVersion h (null)", [](C& c) { c.version("h"); }},
    {"getDeviceCount (null) (null)", [](C& c) { c.countDevices(); }},
    {"getDeviceList h c", [](C& c) { c.devices("h", "c"); }},
    {"getDevice (null) (null) U", [](C& c) { c.device("U"); }},
    {"getDevice h (null) U", [](C& c) { c.device("h", "U"); }},
    {"deleteDevice h c U", [](C& c) { c.deleteDevice("h", "c", "U"); }},
    {"getDeviceConfig h (null) U", [](C& c) { c.config("h", "U"); }},
    {"getDeviceConfigByModel (null) (null) 3 4", [](C& c) { c.config(3, 4); }},
    {"getDeviceConfigByModel h (null) -1 0", [](C& c) { c.config("h", -1, 0); }},
    {"getRegressiveCounterList h (null)", [](C& c) { c.counters("h"); }},
    {"getRegressiveCounter (null) (null) U", [](C& c) { c.counter("U"); }},
    {"changeUserDevice h (null) U a (null)", [](C& c) { c.changeUserDevice("h", "U", "a", nullptr); }},
    {"changeColorDevice (null) (null) U 1 2 3 1", [](C& c) { c.changeColorDevice("U", 1, 2, 3, true); }},
    {"clearEventsDevice h (null) U", [](C& c) { c.clearEventsDevice("h", "U"); }},
    {"deviceLog (null) (null) U", [](C& c) { c.deviceLog("U"); }},
    {"devMailConfig h (null) U", [](C& c) { c.devMailConfig("h", "U"); }},
    {"manualDevMailTest h c U", [](C& c) { c.manualDevMailTest("h", "c", "U"); }},
    {"devEventApp h c U", [](C& c) { c.devEventApp("h", "c", "U"); }},
    {"updDevEventApp h (null) U", [](C& c) { c.updDevEventApp("h", "U", nullptr); }},
    {"updDevShutdownConfig (null) (null) U", [](C& c) { c.updDevShutdownConfig("U", nullptr); }},
    {"cancelDevShutdown (null) (null) U", [](C& c) { c.cancelDevShutdown("U"); }},
    {"manualDevDischarge (null) (null) U 1", [](C& c) { c.manualDevDischarge("U", 1); }},
    {"deviceSetICBattery h (null) U 0", [](C& c) { c.deviceSetICBattery("h", "U", 0); }},
    {"deviceSetLineSense h c U -2", [](C& c) { c.deviceSetLineSense("h", "c", "U", -2); }},
    {"deviceProgPowerLook h (null) U 5 6 3000000000", [](C& c) { c.deviceProgPowerLook("h", "U", 5, 6, 3000000000L); }},
    {"updDevSchedule h c U", [](C& c) { c.updDevSchedule("h", "c", "U", nullptr); }},
    {"tessaryConfig (null) (null)", [](C& c) { c.tessaryConfig(); }},
    {"updTessaryConfig h (null)", [](C& c) { c.updTessaryConfig("h", nullptr); }},
    {"notifyConfig h c", [](C& c) { c.notifyConfig("h", "c"); }},
    {"updNotifyConfig (null) (null)", [](C& c) { c.updNotifyConfig(nullptr); }},
    {"disconnectCli h", [](C& c) { c.disconnect("h"); }},
};
// clang-format on

// A suite folder with a copy of the simulated client and its scenario, and
// a client that has loaded nothing yet.
class LibClientTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(QFile::copy(SHUTSVC_PLUGIN_DIR "/sim/client.so", m_dir.filePath("client.so")));
    }
    std::string path(const char* name) const { return m_dir.filePath(name).toStdString(); }
    // Replaces the scenario at once, as an editor that renames would.
    void write(const std::string& json) const {
        support::writeFile(path("new.json"), json);
        std::rename(path("new.json").c_str(), path("simulator.json").c_str());
    }
    void load(const std::string& json) {
        write(json);
        client.load(path("client"));
    }

    QTemporaryDir m_dir;
    LibClient client;
};

TEST_F(LibClientTest, LoadFailuresNullHandleAndMissingOrNullEntryPoints) {
    LibClient nullHandle;  // its plug-in's openCli answers null
    nullHandle.load(FAULTY_CLIENT_DIR "nullhandle.so");
    for (LibClient* tried : {&client, &nullHandle}) {
        for (const auto& [journal, run] : CALLS)
            EXPECT_EQ(failure([&] { run(*tried); }), NOT_LOADED) << journal;
        EXPECT_FALSE(tried->isConnected());
        EXPECT_EQ(tried->logger("monitclient"), nullptr);
        EXPECT_EQ(failure([&] { tried->unload(); }), "none");
    }
    EXPECT_EQ(client.openClient(), nullptr);
    for (const char* empty : {static_cast<const char*>(nullptr), ""})
        EXPECT_EQ(failure([&] { client.load(empty); }),
                  "Invalid Argument -202 Empty library filename.");

    client.load(FAULTY_CLIENT_DIR "gaps.so");
    // A missing entry point: the loader's exception, whose text its own test shows.
    EXPECT_THROW(client.hostList(), nimb::LibraryLoadException);
    EXPECT_THROW(client.version("h", "c"), std::bad_function_call);
    EXPECT_FALSE(client.isConnected());  // missing: not connected
}

TEST_F(LibClientTest, EveryOperationReachesItsEntryPointAndTurnsAFailureIntoItsMessage) {
    load(scenario(simDevice("U")));  // not connected: every entry point fails
    std::string journal = "openCli\n";
    for (const auto& [line, run] : CALLS) {
        const std::string entry = line.substr(0, line.find(' '));
        EXPECT_EQ(failure([&] { run(client); }),
                  "System error -305 Error executing libclient::" +
                      (entry == "disconnectCli" ? "disconnect" : entry) + "().");
        journal += line + "\n";
    }
    // The disconnect fails; the client and the library are closed all the same.
    client.unload();
    EXPECT_FALSE(client.isLoaded());
    EXPECT_EQ(support::readFile(path("calls.log")), journal + "disconnectCli (null)\ncloseCli\n");
}

TEST_F(LibClientTest, MainsFailureCountdownRunsOutAfterTheConfiguredSeconds) {
    const std::string events = R"({"at": 0.5, "device": "UPS1", "event": "mainsFail"})";
    load(scenario(simDevice("UPS1", 2), events));
    const auto start = Clock::now();
    client.connect("http://localhost:4470");
    ASSERT_TRUE(eventually([&] { return client.counter("UPS1").value() >= 0; }));
    EXPECT_EQ(client.counter("UPS1").cause(), ShutdownCause::EndAutonomy);
    EXPECT_TRUE(client.device("UPS1").flags.opBattery);

    // A reload replays the event at its own time: the countdown goes on.
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    write(scenario(simDevice("UPS1", 2), events + R"(, {"at": 0.6, "event": "startupOn"})"));
    const long elapsed =
        std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start).count();
    EXPECT_LE(client.counter("UPS1").value(), 2000 - (elapsed - 500) + 100);
    EXPECT_TRUE(client.device("UPS1").flags.opStartup);

    ASSERT_TRUE(eventually([&] { return client.counter("UPS1").value() == 0; }));
    EXPECT_GE(Clock::now() - start, std::chrono::milliseconds(2400));
    EXPECT_TRUE(client.counter("UPS1").active);

    // Mains back: the countdown is gone.
    write(scenario(simDevice("UPS1", 2), events + R"(, {"at": 0.6, "event": "mainsReturn"})"));
    EXPECT_EQ(client.counter("UPS1").value(), -1);
}

TEST_F(LibClientTest, AnswersLikeAMonitorServerAndFollowsLiveScenarioChanges) {
    const std::string devices = simDevice("UPS1") + "," + simDevice("UPS2");
    load(scenario(devices));
    client.connect(Url("monitor.lan:4470"));
    EXPECT_TRUE(client.isConnected("monitor.lan"));
    EXPECT_FALSE(client.isConnected("elsewhere"));
    EXPECT_EQ(client.hostList(), std::vector<std::string>{"monitor.lan"});
    EXPECT_EQ(client.version().monVersion, "2.1");
    EXPECT_EQ(client.countDevices(), (std::vector<std::string>{"UPS1", "UPS2"}));
    EXPECT_EQ(client.devices().at("UPS2").name, "Sim UPS2");

    // A setter stores the caller's record; the getter gives it back.
    DeviceShutCfg shut = client.devShutdownConfig("UPS1");
    shut.cliRun = "/bin/true";
    client.updDevShutdownConfig("UPS1", &shut);
    EXPECT_EQ(client.devShutdownConfig("UPS1").cliRun, "/bin/true");

    // The device's log tells of a manual shutdown and its cancel.
    client.manualDevShutdown("UPS2");
    client.cancelDevShutdown("UPS2");
    const std::vector<LogEntry> log = client.deviceLogHour("UPS2");
    ASSERT_EQ(log.size(), 2u);
    EXPECT_EQ(log[0].text + "," + log[1].text, "manualShutdown,cancelShutdown");

    // The plug-in's loggers are this process's loggers of the same name.
    EXPECT_EQ(client.logger("monitclient"), nimb::Logger::getLogger("monitclient"));
    EXPECT_EQ(client.logger("other"), nullptr);
    EXPECT_EQ(client.logger(nullptr), nullptr);

    // Events written while connected apply as soon as their time has come.
    write(scenario(devices, R"({"at": 0, "event": "serverDown"})"));
    EXPECT_FALSE(client.isConnected());
    EXPECT_EQ(failure([&] { client.connect("http://localhost:4470"); }),
              "System error -305 Error executing libclient::connect().");
    write(scenario(devices, R"({"at": 0, "event": "serverDown"}, {"at": 0, "event": "serverUp"})"));
    EXPECT_TRUE(client.isConnected());
    EXPECT_EQ(client.devices().size(), 2u);

    // A broken scenario leaves the last good one in force; no file, no devices.
    for (const char* broken : {R"({"devices": [)", R"({"devices": [{"device": {"name": "x"}}]})",
                               R"({"timeline": [{"at": 1, "event": "explode"}]})"}) {
        write(broken);
        EXPECT_EQ(client.devices().size(), 2u) << broken;
    }
    QFile::remove(QString::fromStdString(path("simulator.json")));
    EXPECT_TRUE(client.devices().empty());
}

}  // namespace
