#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "nimb/object.h"
#include "tessary/clientmgr.h"
#include "tessary/monitmgr.h"
#include "tests/support.h"

using namespace tessary;

namespace {

std::string text(const char* value) {
    return value ? value : "(null)";
}
std::string text(long value) {
    return std::to_string(value);
}
std::string text(const void* record) {
    return "@" + text(reinterpret_cast<std::intptr_t>(record));
}

// The one record of each type that the setter rows pass.
template <typename Record>
Record* rec() {
    static Record record;
    return &record;
}

using Computers = std::map<std::string, Computer>;
using Devices = std::map<std::string, Device>;
using Counters = std::map<std::string, Regressive>;
using Ids = std::vector<std::string>;
using Log = std::vector<LogEntry>;

// Records each call as "name(arg,...)": null texts as "(null)", record
// pointers as "@address". A list answers the call's text, so that a caller
// can tell that it came back; other results are empty. Throws while failing.
class Recorder {
public:
    std::vector<std::string> calls;
    bool failing = false;

    template <typename Result = int, typename... Args>
    Result record(const char* name, Args... args) {
        std::string list;
        for (const std::string& arg : std::vector<std::string>{text(args)...})
            list += (list.empty() ? "" : ",") + arg;
        calls.push_back(std::string(name) + "(" + list + ")");
        if (failing)
            throw nimb::SystemException("Server gone.", nimb::ERR_SYSTEM);
        if constexpr (std::is_same_v<Result, Ids>)
            return {calls.back()};
        else if constexpr (std::is_same_v<Result, Devices> || std::is_same_v<Result, Counters>)
            return {{calls.back(), {}}};
        else
            return Result();
    }
};

template <typename Base>
using Rows = std::vector<std::pair<std::string, std::function<void(Base&)>>>;

// clang-format off
// The families addressing one device, listed once for both fakes and both
// tables: (result, name), (record, name) of the setters, and the int ones.
#define DEVICE_FAMILIES(X) \
    X(Device, device) X(int, deleteDevice) X(DeviceConfig, config) X(Regressive, counter) \
    X(int, clearEventsDevice) X(Log, deviceLog) X(Log, deviceLogHour) X(Log, deviceLogDay) \
    X(Log, deviceLogMonth) X(DeviceMailCfg, devMailConfig) X(int, manualDevMailTest) \
    X(int, cancelDevMailTest) X(DeviceEventApp, devEventApp) X(DeviceDialCfg, devDialerConfig) \
    X(DeviceShutCfg, devShutdownConfig) X(int, manualDevShutdown) X(int, cancelDevShutdown) \
    X(DeviceSchedule, devSchedule)
#define DEVICE_SETTERS(X) \
    X(DeviceMailCfg, updDevMailConfig) X(DeviceEventApp, updDevEventApp) \
    X(DeviceDialCfg, updDevDialerConfig) X(DeviceShutCfg, updDevShutdownConfig) \
    X(DeviceSchedule, updDevSchedule)
#define DEVICE_INTS(X) X(manualDevDischarge) X(deviceSetICBattery) X(deviceSetLineSense)
// The families addressing a computer, which a client manager also reaches by host.
#define COMPUTER_FAMILIES(X) \
    X(Ids, countDevices) X(Devices, devices) X(Counters, counters) X(TesConfig, tessaryConfig) \
    X(NotifyConfig, notifyConfig)
#define COMPUTER_SETTERS(X) X(TesConfig, updTessaryConfig) X(NotifyConfig, updNotifyConfig)

// Their fullest forms in the fakes: (host, computer, ...) and (computer, ...).
#define HC(R, NAME) R NAME(const char* h, const char* c) override { return record<R>(#NAME, h, c); }
#define HC_SET(R, NAME) int NAME(const char* h, const char* c, R* r) override { return record(#NAME, h, c, r); }
#define C1(R, NAME) R NAME(const char* c) override { return record<R>(#NAME, c); }
#define C1_SET(R, NAME) int NAME(const char* c, R* r) override { return record(#NAME, c, r); }
#define HCD(R, NAME) R NAME(const char* h, const char* c, const char* d) override { return record<R>(#NAME, h, c, d); }
#define HCD_SET(R, NAME) int NAME(const char* h, const char* c, const char* d, R* r) override { return record(#NAME, h, c, d, r); }
#define HCD_INT(NAME) int NAME(const char* h, const char* c, const char* d, int v) override { return record(#NAME, h, c, d, v); }
#define CD(R, NAME) R NAME(const char* c, const char* d) override { return record<R>(#NAME, c, d); }
#define CD_SET(R, NAME) int NAME(const char* c, const char* d, R* r) override { return record(#NAME, c, d, r); }
#define CD_INT(NAME) int NAME(const char* c, const char* d, int v) override { return record(#NAME, c, d, v); }

// A client manager whose abstract operations only record their arguments.
class RecordingClient : public ClientManagerBase, public Recorder {
public:
    bool connected = false;

    int connect(const char* url) override { return record("connect", url); }
    int disconnect() override { return record("disconnect"); }
    int disconnect(const char* host) override { return record("disconnect", host); }
    bool isConnected() const override { return connected; }
    bool isConnected(const char*) const override { return false; }
    Ids hostList() const override { return {}; }
    nimb::Logger* logger(const char*) override { return nullptr; }
    Computers computers(const char* h) override { return record<Computers>("computers", h); }
    HC(Computer, version)
    DeviceConfig config(const char* h, const char* c, int f, int m) override { return record<DeviceConfig>("config", h, c, f, m); }
    int changeUserDevice(const char* h, const char* c, const char* d, const char* u, const char* q) override { return record("changeUserDevice", h, c, d, u, q); }
    int changeColorDevice(const char* h, const char* c, const char* d, int r, int g, int b, bool f) override { return record("changeColorDevice", h, c, d, r, g, b, f); }
    int deviceProgPowerLook(const char* h, const char* c, const char* d, int a, int b, long s) override { return record("deviceProgPowerLook", h, c, d, a, b, s); }
    COMPUTER_FAMILIES(HC)
    COMPUTER_SETTERS(HC_SET)
    DEVICE_FAMILIES(HCD)
    DEVICE_SETTERS(HCD_SET)
    DEVICE_INTS(HCD_INT)
};

// A one-server client whose computer-level forms only record their arguments.
class RecordingMonitClient : public MonitClientBase, public Recorder {
public:
    void stop() override {}
    bool isRunning() const override { return false; }
    Computers computers() override { return {}; }
    DeviceConfig config(const char* c, int f, int m) override { return record<DeviceConfig>("config", c, f, m); }
    int changeUserDevice(const char* c, const char* d, const char* u, const char* q) override { return record("changeUserDevice", c, d, u, q); }
    int changeColorDevice(const char* c, const char* d, int r, int g, int b, bool f) override { return record("changeColorDevice", c, d, r, g, b, f); }
    int deviceProgPowerLook(const char* c, const char* d, int a, int b, long s) override { return record("deviceProgPowerLook", c, d, a, b, s); }
    COMPUTER_FAMILIES(C1)
    COMPUTER_SETTERS(C1_SET)
    DEVICE_FAMILIES(CD)
    DEVICE_SETTERS(CD_SET)
    DEVICE_INTS(CD_INT)
};

// Table rows: both shorter forms of a client manager's family, the one of a
// monitor client's, with the one call each must reach.
#define TWO_COMPUTER_FORMS(R, NAME) {#NAME "((null),(null))", [](C& m) { m.NAME(); }}, {#NAME "(h,(null))", [](C& m) { m.NAME("h"); }},
#define TWO_COMPUTER_SETTERS(R, NAME) \
    {#NAME "((null),(null)," + text(rec<R>()) + ")", [](C& m) { m.NAME(rec<R>()); }}, \
    {#NAME "(h,(null)," + text(rec<R>()) + ")", [](C& m) { m.NAME("h", rec<R>()); }},
#define ONE_COMPUTER_FORM(R, NAME) {#NAME "((null))", [](M& m) { m.NAME(); }},
#define ONE_COMPUTER_SETTER(R, NAME) {#NAME "((null)," + text(rec<R>()) + ")", [](M& m) { m.NAME(rec<R>()); }},
#define TWO_FORMS(R, NAME) \
    {#NAME "((null),(null),D)", [](C& m) { m.NAME("D"); }}, {#NAME "(h,(null),D)", [](C& m) { m.NAME("h", "D"); }},
#define TWO_SETTERS(R, NAME) \
    {#NAME "((null),(null),D," + text(rec<R>()) + ")", [](C& m) { m.NAME("D", rec<R>()); }}, \
    {#NAME "(h,(null),D," + text(rec<R>()) + ")", [](C& m) { m.NAME("h", "D", rec<R>()); }},
#define TWO_INTS(NAME) \
    {#NAME "((null),(null),D,7)", [](C& m) { m.NAME("D", 7); }}, {#NAME "(h,(null),D,-8)", [](C& m) { m.NAME("h", "D", -8); }},
#define ONE_FORM(R, NAME) {#NAME "((null),D)", [](M& m) { m.NAME("D"); }},
#define ONE_SETTER(R, NAME) {#NAME "((null),D," + text(rec<R>()) + ")", [](M& m) { m.NAME("D", rec<R>()); }},
#define ONE_INT(NAME) {#NAME "((null),D,7)", [](M& m) { m.NAME("D", 7); }},
// clang-format on

}  // namespace

TEST(ClientManagerBaseTest, ShorterFormsCallTheFullestFormWithNullLeadingTexts) {
    using C = ClientManagerBase;
    // clang-format off
    const Rows<C> rows = {
        {"computers((null))", [](C& m) { m.computers(); }},
        {"config((null),(null),3,12)", [](C& m) { m.config(3, 12); }},
        {"config(h,(null),-1,0)", [](C& m) { m.config("h", -1, 0); }},
        {"changeUserDevice((null),(null),D,me,(null))", [](C& m) { m.changeUserDevice("D", "me", nullptr); }},
        {"changeUserDevice(h,(null),D,me,p)", [](C& m) { m.changeUserDevice("h", "D", "me", "p"); }},
        {"changeColorDevice((null),(null),D,1,2,3,1)", [](C& m) { m.changeColorDevice("D", 1, 2, 3, true); }},
        {"changeColorDevice(h,(null),D,9,0,-4,0)", [](C& m) { m.changeColorDevice("h", "D", 9, 0, -4, false); }},
        {"deviceProgPowerLook((null),(null),D,1,2,3000000000)", [](C& m) { m.deviceProgPowerLook("D", 1, 2, 3000000000L); }},
        {"deviceProgPowerLook(h,(null),D,4,5,-6)", [](C& m) { m.deviceProgPowerLook("h", "D", 4, 5, -6); }},
        COMPUTER_FAMILIES(TWO_COMPUTER_FORMS)
        TWO_COMPUTER_FORMS(Computer, version)
        COMPUTER_SETTERS(TWO_COMPUTER_SETTERS)
        DEVICE_FAMILIES(TWO_FORMS)
        DEVICE_SETTERS(TWO_SETTERS)
        DEVICE_INTS(TWO_INTS)
    };
    // clang-format on
    for (const auto& [expected, call] : rows) {
        RecordingClient client;
        call(client);
        EXPECT_EQ(client.calls, std::vector<std::string>{expected});
    }
    // What the fullest form answers comes back unchanged.
    RecordingClient client;
    C& base = client;
    EXPECT_EQ(base.countDevices("h"), Ids{"countDevices(h,(null))"});
    EXPECT_EQ(base.devices().count("devices((null),(null))"), 1u);
}

TEST(ClientManagerBaseTest, LifecycleDefaults) {
    RecordingClient client;
    client.start(Url("https://Monitor.Example:5000"));
    EXPECT_FALSE(client.isRunning());
    client.connected = true;
    EXPECT_TRUE(client.isRunning());
    client.failing = true;
    EXPECT_NO_THROW(client.stop());
    EXPECT_EQ(client.calls, (Ids{"connect(https://monitor.example:5000)", "disconnect()"}));
}

TEST(MonitClientBaseTest, DefaultsCallTheComputerFormWithANullComputer) {
    using M = MonitClientBase;
    // clang-format off
    const Rows<M> rows = {
        {"config((null),3,12)", [](M& m) { m.config(3, 12); }},
        {"changeUserDevice((null),D,me,p)", [](M& m) { m.changeUserDevice("D", "me", "p"); }},
        {"changeColorDevice((null),D,1,2,3,1)", [](M& m) { m.changeColorDevice("D", 1, 2, 3, true); }},
        {"deviceProgPowerLook((null),D,1,2,3)", [](M& m) { m.deviceProgPowerLook("D", 1, 2, 3); }},
        COMPUTER_FAMILIES(ONE_COMPUTER_FORM)
        COMPUTER_SETTERS(ONE_COMPUTER_SETTER)
        DEVICE_FAMILIES(ONE_FORM)
        DEVICE_SETTERS(ONE_SETTER)
        DEVICE_INTS(ONE_INT)
    };
    // clang-format on
    for (const auto& [expected, call] : rows) {
        RecordingMonitClient client;
        call(client);
        EXPECT_EQ(client.calls, std::vector<std::string>{expected});
    }
}

TEST(MonitClientBaseTest, StartAndDetectionConfigAreNotImplemented) {
    RecordingMonitClient client;
    using E = nimb::NotImplementedException;
    support::expectFailure<E>([&] { client.start(); }, "Error: not implemented.", -203);
    support::expectFailure<E>([&] { client.detectionConfig(); }, "Error: not implemented.", -203);
    EXPECT_TRUE(client.calls.empty());
}

TEST(MonitClientBaseTest, ListQueriesAnswerEmptyWhenTheServerFails) {
    RecordingMonitClient client;
    MonitClientBase& base = client;
    EXPECT_EQ(base.countDevices(), Ids{"countDevices((null))"});
    EXPECT_EQ(base.devices().count("devices((null))"), 1u);
    EXPECT_EQ(base.counters().count("counters((null))"), 1u);
    client.failing = true;
    EXPECT_TRUE(base.countDevices().empty());
    EXPECT_TRUE(base.devices().empty());
    EXPECT_TRUE(base.counters().empty());
    // The other defaults pass failures on.
    EXPECT_THROW(base.device("D"), nimb::SystemException);
}
