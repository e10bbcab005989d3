#include "tessary/ldclient.h"

#include <gtest/gtest.h>

#include <dlfcn.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <chrono>
#include <fstream>
#include <functional>
#include <sstream>
#include <thread>

#include "nimb/logger.h"
#include "tessary/clientconf.h"
#include "tessary/config.h"
#include "tessary/devsettings.h"
#include "tessary/monit.h"
#include "tests/support.h"

using support::readFile;

namespace {

using namespace tessary;
using Clock = std::chrono::steady_clock;

const std::string SIM_CLIENT = std::string(SHUTSVC_PLUGIN_DIR) + "/sim/client.so";
const std::string FAULTY_DIR = FAULTY_CLIENT_DIR;

std::vector<std::string> lines(const std::string& text) {
    std::vector<std::string> result;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);)
        result.push_back(line);
    return result;
}

// What an action threw: "<class> <code> <message>", "bad_function_call", or
// "none".
std::string failure(const std::function<void()>& action) {
    try {
        action();
    } catch (const nimb::Exception& e) {
        std::string name = e.getClassName();
        name = name.substr(name.find("nimb") + 4);
        name = name.substr(name.find_first_not_of("0123456789"));
        return name.substr(0, name.size() - 1) + " " + std::to_string(e.code()) + " " + e.message();
    } catch (const std::bad_function_call&) {
        return "bad_function_call";
    }
    return "none";
}

std::string executing(const std::string& name) {
    return "SystemException -305 Error executing libclient::" + name + "().";
}

const std::string NOT_LOADED = "SystemException -305 Library libclient not loaded.";

// A device entry of a scenario with the given countdown lengths in seconds.
std::string simDevice(const std::string& id, int opBattery = 30, int manual = 20) {
    return R"({"device": {"id": ")" + id + R"(", "name": "Sim )" + id +
           R"(", "status": {"connected": 1}}, "shutCfg": {"enabled": 1, "counterManual": )" +
           std::to_string(manual) + R"(, "counterOpBattery": )" + std::to_string(opBattery) + R"(, "cliShutTimer": 5}})";
}

std::string scenario(const std::string& devices, const std::string& timeline = "") {
    return R"({"computer": {"hostname": "pc1", "monVersion": "2.1"}, "journal": "calls.log", "devices": [)" +
           devices + R"(], "timeline": [)" + timeline + "]}";
}

// A suite folder holding a copy of the simulated client and its scenario.
class SimSuite {
public:
    SimSuite() { QFile::copy(QString::fromStdString(SIM_CLIENT), QString::fromStdString(path("client.so"))); }
    std::string path(const std::string& name) const { return m_dir.path().toStdString() + "/" + name; }
    // Replaces the scenario at once, as an editor that renames would.
    void write(const std::string& json) const {
        std::ofstream(path("simulator.json.new")) << json;
        std::rename(path("simulator.json.new").c_str(), path("simulator.json").c_str());
    }
    std::vector<std::string> journal() const { return lines(readFile(path("calls.log"))); }

private:
    QTemporaryDir m_dir;
};

// Polls until check() holds or seconds pass.
bool eventually(const std::function<bool()>& check, double seconds = 20) {
    const auto end = Clock::now() + std::chrono::duration<double>(seconds);
    while (!check()) {
        if (Clock::now() > end)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    return true;
}

// One call of every throwing operation, through its shortest form, with the
// entry point it must reach.
struct Call {
    std::string entry;
    std::function<void(LibClient&)> run;
};

std::vector<Call> everyCall() {
    DeviceMailCfg mail;
    DeviceEventApp events;
    DeviceDialCfg dial;
    DeviceShutCfg shut;
    DeviceSchedule schedule;
    TesConfig tes;
    NotifyConfig notify;
    return {
        {"connect", [](LibClient& c) { c.connect("http://localhost:4470"); }},
        {"disconnect", [](LibClient& c) { c.disconnect(); }},
        {"getHostCount", [](LibClient& c) { c.hostList(); }},
        {"getComputerList", [](LibClient& c) { c.computers(); }},
        {"getVersion", [](LibClient& c) { c.version(); }},
        {"getDeviceCount", [](LibClient& c) { c.countDevices(); }},
        {"getDeviceList", [](LibClient& c) { c.devices(); }},
        {"getDevice", [](LibClient& c) { c.device("U"); }},
        {"deleteDevice", [](LibClient& c) { c.deleteDevice("U"); }},
        {"getDeviceConfig", [](LibClient& c) { c.config("U"); }},
        {"getDeviceConfigByModel", [](LibClient& c) { c.config(1, 2); }},
        {"getRegressiveCounterList", [](LibClient& c) { c.counters(); }},
        {"getRegressiveCounter", [](LibClient& c) { c.counter("U"); }},
        {"changeUserDevice", [](LibClient& c) { c.changeUserDevice("U", "a", "b"); }},
        {"changeColorDevice", [](LibClient& c) { c.changeColorDevice("U", 1, 2, 3, true); }},
        {"clearEventsDevice", [](LibClient& c) { c.clearEventsDevice("U"); }},
        {"deviceLog", [](LibClient& c) { c.deviceLog("U"); }},
        {"deviceLogHour", [](LibClient& c) { c.deviceLogHour("U"); }},
        {"deviceLogDay", [](LibClient& c) { c.deviceLogDay("U"); }},
        {"deviceLogMonth", [](LibClient& c) { c.deviceLogMonth("U"); }},
        {"devMailConfig", [](LibClient& c) { c.devMailConfig("U"); }},
        {"updDevMailConfig", [=](LibClient& c) mutable { c.updDevMailConfig("U", &mail); }},
        {"manualDevMailTest", [](LibClient& c) { c.manualDevMailTest("U"); }},
        {"cancelDevMailTest", [](LibClient& c) { c.cancelDevMailTest("U"); }},
        {"devEventApp", [](LibClient& c) { c.devEventApp("U"); }},
        {"updDevEventApp", [=](LibClient& c) mutable { c.updDevEventApp("U", &events); }},
        {"devDialerConfig", [](LibClient& c) { c.devDialerConfig("U"); }},
        {"updDevDialerConfig", [=](LibClient& c) mutable { c.updDevDialerConfig("U", &dial); }},
        {"devShutdownConfig", [](LibClient& c) { c.devShutdownConfig("U"); }},
        {"updDevShutdownConfig", [=](LibClient& c) mutable { c.updDevShutdownConfig("U", &shut); }},
        {"manualDevShutdown", [](LibClient& c) { c.manualDevShutdown("U"); }},
        {"cancelDevShutdown", [](LibClient& c) { c.cancelDevShutdown("U"); }},
        {"manualDevDischarge", [](LibClient& c) { c.manualDevDischarge("U", 1); }},
        {"deviceSetICBattery", [](LibClient& c) { c.deviceSetICBattery("U", 1); }},
        {"deviceSetLineSense", [](LibClient& c) { c.deviceSetLineSense("U", 1); }},
        {"deviceProgPowerLook", [](LibClient& c) { c.deviceProgPowerLook("U", 1, 2, 3); }},
        {"devSchedule", [](LibClient& c) { c.devSchedule("U"); }},
        {"updDevSchedule", [=](LibClient& c) mutable { c.updDevSchedule("U", &schedule); }},
        {"tessaryConfig", [](LibClient& c) { c.tessaryConfig(); }},
        {"updTessaryConfig", [=](LibClient& c) mutable { c.updTessaryConfig(&tes); }},
        {"notifyConfig", [](LibClient& c) { c.notifyConfig(); }},
        {"updNotifyConfig", [=](LibClient& c) mutable { c.updNotifyConfig(&notify); }},
    };
}

TEST(LibClientFailureTest, EveryEntryPointTurnsANegativeResultIntoItsMessage) {
    LibClient client;
    client.load(FAULTY_DIR + "failing");  // ".so" appended
    ASSERT_TRUE(client.isLoaded());
    for (const Call& call : everyCall())
        EXPECT_EQ(failure([&] { call.run(client); }), executing(call.entry)) << call.entry;
    // These two never throw: a negative answer is "not connected", "no logger".
    EXPECT_FALSE(client.isConnected());
    EXPECT_EQ(client.logger("monitclient"), nullptr);
}

TEST(LibClientFailureTest, NothingIsCalledWithoutLibraryOrClientHandle) {
    LibClient unloaded;
    LibClient nullHandle;
    nullHandle.load(FAULTY_DIR + "nullhandle.so");
    ASSERT_TRUE(nullHandle.isLoaded());
    for (LibClient* client : {&unloaded, &nullHandle}) {
        for (const Call& call : everyCall())
            EXPECT_EQ(failure([&] { call.run(*client); }), NOT_LOADED) << call.entry;
        EXPECT_FALSE(client->isConnected());
        EXPECT_EQ(client->logger("monitclient"), nullptr);
        EXPECT_EQ(failure([&] { client->unload(); }), "none");
    }
    EXPECT_EQ(unloaded.openClient(), nullptr);
}

TEST(LibClientFailureTest, LoadChecksTheNameAndAppendsTheExtensionOnlyWhenMissing) {
    LibClient client;
    EXPECT_EQ(failure([&] { client.load(static_cast<const char*>(nullptr)); }),
              "InvalidArgumentException -202 Empty library filename.");
    EXPECT_EQ(failure([&] { client.load(""); }), "InvalidArgumentException -202 Empty library filename.");
    EXPECT_EQ(failure([&] { client.load(FAULTY_DIR + "absent"); }).substr(0, 26), "LibraryLoadException -306 ");

    // A name with any extension is opened as it stands.
    QTemporaryDir dir;
    const std::string versioned = dir.path().toStdString() + "/client.so.1";
    ASSERT_TRUE(QFile::copy(QString::fromStdString(FAULTY_DIR + "failing.so"), QString::fromStdString(versioned)));
    client.load(versioned);
    EXPECT_TRUE(client.isLoaded());
}

TEST(LibClientFailureTest, MissingAndNullEntryPoints) {
    LibClient client;
    client.load(FAULTY_DIR + "gaps.so");
    const std::string missing = failure([&] { client.hostList(); });
    EXPECT_EQ(missing.substr(0, 26), "LibraryLoadException -306 ") << missing;
    EXPECT_NE(missing.find("getHostCount"), std::string::npos) << missing;
    EXPECT_EQ(failure([&] { client.version("h", "c"); }), "bad_function_call");
    EXPECT_EQ(failure([&] { client.devices(); }), "none");
}

TEST(LibClientFailureTest, UnloadClosesTheClientAndLibraryAfterAFailingDisconnect) {
    const std::string path = FAULTY_DIR + "failing.so";
    // Our own reference keeps the library, and its counter, mapped.
    void* own = dlopen(path.c_str(), RTLD_NOW);
    ASSERT_NE(own, nullptr);
    const int* closeCalls = static_cast<int*>(dlsym(own, "faultyCloseCalls"));
    const int before = *closeCalls;
    {
        LibClient client;
        client.load(path);
        EXPECT_EQ(failure([&] { client.unload(); }), "none");
        EXPECT_FALSE(client.isLoaded());
        EXPECT_EQ(*closeCalls, before + 1);
        client.load(path);
    }  // the destructor unloads as well
    EXPECT_EQ(*closeCalls, before + 2);
    dlclose(own);
}

class LibClientSimTest : public ::testing::Test {
protected:
    void load(const std::string& json) {
        suite.write(json);
        client.load(suite.path("client"));
    }
    SimSuite suite;
    LibClient client;
};

TEST_F(LibClientSimTest, ForwardsEveryFormWithNullForMissingTexts) {
    load(scenario(simDevice("UPS1")));
    EXPECT_EQ(failure([&] { client.devices(); }), executing("getDeviceList"));  // not connected yet
    client.connect("http://monitor.lan:4470");
    client.device("UPS1");
    client.device("monitor.lan", "UPS1");
    client.device("localhost", "pc1", "UPS1");
    client.config(3, 4);
    client.counters("127.0.0.1");
    client.version();
    client.changeColorDevice("UPS1", 1, 2, 3, true);
    client.deviceProgPowerLook("monitor.lan", "UPS1", 5, 6, 7);
    client.isConnected();
    client.disconnect();
    client.unload();
    EXPECT_EQ(suite.journal(), (std::vector<std::string>{
                                   "openCli",
                                   "getDeviceList (null) (null)",
                                   "connectCli http://monitor.lan:4470",
                                   "getDevice (null) (null) UPS1",
                                   "getDevice monitor.lan (null) UPS1",
                                   "getDevice localhost pc1 UPS1",
                                   "getDeviceConfigByModel (null) (null) 3 4",
                                   "getRegressiveCounterList 127.0.0.1 (null)",
                                   "getVersion (null) (null)",
                                   "changeColorDevice (null) (null) UPS1 1 2 3 1",
                                   "deviceProgPowerLook monitor.lan (null) UPS1 5 6 7",
                                   "isConnected (null)",
                                   "disconnectCli (null)",
                                   "disconnectCli (null)",
                                   "closeCli",
                               }));
}

TEST_F(LibClientSimTest, AnswersLikeAMonitorServer) {
    load(scenario(simDevice("UPS1", 7) + "," + simDevice("UPS2", 30, 40)));
    client.connect("http://monitor.lan:4470");
    EXPECT_TRUE(client.isConnected());
    EXPECT_TRUE(client.isConnected("monitor.lan"));
    EXPECT_FALSE(client.isConnected("elsewhere"));
    EXPECT_EQ(client.hostList(), std::vector<std::string>{"monitor.lan"});
    ASSERT_EQ(client.computers().count("pc1"), 1u);
    EXPECT_EQ(client.version().monVersion, "2.1");
    EXPECT_EQ(client.countDevices(), (std::vector<std::string>{"UPS1", "UPS2"}));
    EXPECT_EQ(client.devices().at("UPS2").name, "Sim UPS2");
    EXPECT_TRUE(client.device("UPS1").flags.connected);
    EXPECT_EQ(client.counter("UPS1").value(), -1);
    EXPECT_EQ(client.counters().size(), 2u);
    EXPECT_EQ(client.devShutdownConfig("UPS1").counterOpBattery, 7u);
    EXPECT_EQ(client.devShutdownConfig("UPS1").id, "UPS1");

    // Unknown devices, hosts and computers fail.
    EXPECT_EQ(failure([&] { client.device("UPS9"); }), executing("getDevice"));
    EXPECT_EQ(failure([&] { client.device("elsewhere", "UPS1"); }), executing("getDevice"));
    EXPECT_EQ(failure([&] { client.counter("elsewhere", "pc9", "UPS1"); }), executing("getRegressiveCounter"));

    // Settings are kept as given.
    DeviceShutCfg shut = client.devShutdownConfig("UPS1");
    shut.cliRun = "/bin/true";
    DeviceMailCfg mail;
    mail.server = "smtp.lan";
    DeviceDialCfg dial;
    dial.phone1 = "555";
    DeviceSchedule schedule;
    schedule.year = 2030;
    DeviceEventApp events;
    events.dateEvent1 = 9;
    client.updDevShutdownConfig("UPS1", &shut);
    client.updDevMailConfig("UPS1", &mail);
    client.updDevDialerConfig("UPS1", &dial);
    client.updDevSchedule("UPS1", &schedule);
    client.updDevEventApp("UPS1", &events);
    EXPECT_EQ(client.devShutdownConfig("UPS1").cliRun, "/bin/true");
    EXPECT_EQ(client.devMailConfig("UPS1").server, "smtp.lan");
    EXPECT_EQ(client.devDialerConfig("UPS1").phone1, "555");
    EXPECT_EQ(client.devSchedule("UPS1").year, 2030u);
    EXPECT_EQ(client.devEventApp("UPS1").dateEvent1, 9u);
    EXPECT_EQ(client.devMailConfig("UPS2").server, "");
    client.changeUserDevice("UPS1", "Anna", "Rack 3");
    client.changeColorDevice("UPS1", 10, 20, 30, false);
    client.deviceSetLineSense("UPS1", 3);
    const Device ups1 = client.device("UPS1");
    EXPECT_EQ(ups1.userName + "/" + ups1.userProd, "Anna/Rack 3");
    EXPECT_EQ(ups1.vars.ledGreen, 20);
    EXPECT_EQ(ups1.vars.lineSense, 3);

    // A manual shutdown runs the Manual countdown until cancelled, and the
    // device's log tells both.
    client.manualDevShutdown("UPS2");
    const Regressive manual = client.counter("UPS2");
    EXPECT_EQ(manual.cause(), ShutdownCause::Manual);
    EXPECT_GT(manual.value(), 30000);
    EXPECT_LE(manual.value(), 40000);
    client.cancelDevShutdown("UPS2");
    EXPECT_EQ(client.counter("UPS2").value(), -1);
    const std::vector<LogEntry> log = client.deviceLogHour("UPS2");
    ASSERT_EQ(log.size(), 2u);
    EXPECT_EQ(log[0].text + "," + log[1].text, "manualShutdown,cancelShutdown");
    client.clearEventsDevice("UPS2");
    EXPECT_TRUE(client.deviceLog("UPS2").empty());

    // The plug-in's loggers are this process's loggers of the same name.
    EXPECT_EQ(client.logger("monitclient"), nimb::Logger::getLogger("monitclient"));
    EXPECT_EQ(client.logger("shutsvc"), nimb::Logger::getLogger("shutsvc"));
    EXPECT_EQ(client.logger("other"), nullptr);
    EXPECT_EQ(client.logger(nullptr), nullptr);

    client.deleteDevice("UPS2");
    EXPECT_EQ(client.countDevices(), std::vector<std::string>{"UPS1"});
    client.disconnect();
    EXPECT_FALSE(client.isConnected());
    EXPECT_EQ(failure([&] { client.devices(); }), executing("getDeviceList"));
}

TEST_F(LibClientSimTest, MainsFailureCountdownRunsOutAfterTheConfiguredSeconds) {
    const std::string events = R"({"at": 0.5, "device": "UPS1", "event": "mainsFail"})";
    load(scenario(simDevice("UPS1", 2) + "," + simDevice("UPS2", 2), events));
    const auto start = Clock::now();
    client.connect("http://localhost:4470");
    ASSERT_TRUE(eventually([&] { return client.counter("UPS1").value() >= 0; }));
    EXPECT_EQ(client.counter("UPS1").cause(), ShutdownCause::EndAutonomy);
    EXPECT_TRUE(client.device("UPS1").flags.opBattery);
    EXPECT_FALSE(client.device("UPS2").flags.opBattery);

    // A reload replays the event at its own time: the countdown goes on.
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    suite.write(scenario(simDevice("UPS1", 2) + "," + simDevice("UPS2", 2),
                         events + R"(, {"at": 0.6, "device": "UPS2", "event": "startupOn"})"));
    const long afterReload = client.counter("UPS1").value();
    const long elapsed = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start).count();
    EXPECT_LE(afterReload, 2000 - (elapsed - 500) + 100);
    EXPECT_TRUE(client.device("UPS2").flags.opStartup);

    ASSERT_TRUE(eventually([&] { return client.counter("UPS1").value() == 0; }));
    EXPECT_GE(Clock::now() - start, std::chrono::milliseconds(2400));
    EXPECT_TRUE(client.counter("UPS1").active);

    // Mains back: the countdown is gone.
    suite.write(scenario(simDevice("UPS1", 2), events + R"(, {"at": 0.6, "event": "mainsReturn"})"));
    EXPECT_EQ(client.counter("UPS1").value(), -1);
    EXPECT_FALSE(client.device("UPS1").flags.opBattery);
}

TEST_F(LibClientSimTest, FollowsLiveScenarioChanges) {
    const std::string devices = simDevice("UPS1") + "," + simDevice("UPS2");
    load(scenario(devices));
    client.connect("http://localhost:4470");
    EXPECT_EQ(client.devices().size(), 2u);

    // Events appended while connected apply as soon as their time has come.
    suite.write(scenario(devices, R"({"at": 0, "device": "UPS2", "event": "remove"},
                                    {"at": 0, "device": "UPS1", "event": "readFail"},
                                    {"at": 0, "event": "disconnect"},
                                    {"at": 3600, "event": "serverDown"})"));
    EXPECT_EQ(client.countDevices(), std::vector<std::string>{"UPS1"});
    EXPECT_EQ(client.devices().count("UPS2"), 0u);
    EXPECT_EQ(client.device("UPS2").id, "UPS2");  // still answers
    EXPECT_FALSE(client.device("UPS2").flags.connected);
    EXPECT_EQ(failure([&] { client.counter("UPS1"); }), executing("getRegressiveCounter"));
    EXPECT_EQ(failure([&] { client.devShutdownConfig("UPS1"); }), executing("devShutdownConfig"));
    EXPECT_EQ(client.counter("UPS2").value(), -1);

    suite.write(scenario(devices, R"({"at": 0, "event": "serverDown"})"));
    EXPECT_FALSE(client.isConnected());
    EXPECT_EQ(failure([&] { client.devices(); }), executing("getDeviceList"));
    EXPECT_EQ(failure([&] { client.device("UPS1"); }), executing("getDevice"));
    suite.write(scenario(devices, R"({"at": 0, "event": "serverDown"}, {"at": 0, "event": "serverUp"})"));
    EXPECT_TRUE(client.isConnected());
    EXPECT_EQ(client.devices().size(), 2u);

    // A broken scenario leaves the last good one in force; no file, no devices.
    for (const char* broken : {R"({"devices": [)", R"({"devices": [{"device": {"name": "x"}}]})",
                               R"({"timeline": [{"at": 1, "event": "explode"}]})"}) {
        suite.write(broken);
        EXPECT_EQ(client.devices().size(), 2u) << broken;
    }
    QFile::remove(QString::fromStdString(suite.path("simulator.json")));
    EXPECT_TRUE(client.devices().empty());
}

}  // namespace
