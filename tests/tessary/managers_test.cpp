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

using Computers = std::map<std::string, Computer>;
using Devices = std::map<std::string, Device>;
using Counters = std::map<std::string, Regressive>;
using Ids = std::vector<std::string>;
using Log = std::vector<LogEntry>;

// Records each call as "name(arg,...)": null texts and records as "(null)",
// other records as "@". A list answers the call's text, so that a caller can
// tell that it came back; other results are empty. Throws while failing.
class Recorder {
public:
    std::vector<std::string> calls;
    bool failing = false;

    static std::string text(const char* value) { return value ? value : "(null)"; }
    static std::string text(long value) { return std::to_string(value); }
    static std::string text(const void* record) { return record ? "@" : "(null)"; }

    template <typename Result = int, typename... Args>
    Result record(const char* name, Args... args) {
        std::string list;
        ((list += (list.empty() ? "" : ",") + text(args)), ...);
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

// The last argument that the rows pass to a setter: a record, or 7.
template <typename T>
T arg() {
    if constexpr (std::is_pointer_v<T>) {
        static std::remove_pointer_t<T> record;
        return &record;
    } else {
        return 7;
    }
}

// clang-format off
// The families, listed once for both fakes and both tables: (result, name)
// of the getters and actions, (type of the last argument, name) of the
// setters. First those addressing one device, then those addressing a
// computer, which a client manager also reaches by host.
#define DEVICE_FAMILIES(X) \
    X(Device, device) X(int, deleteDevice) X(DeviceConfig, config) X(Regressive, counter) \
    X(int, clearEventsDevice) X(Log, deviceLog) X(Log, deviceLogHour) X(Log, deviceLogDay) \
    X(Log, deviceLogMonth) X(DeviceMailCfg, devMailConfig) X(int, manualDevMailTest) \
    X(int, cancelDevMailTest) X(DeviceEventApp, devEventApp) X(DeviceDialCfg, devDialerConfig) \
    X(DeviceShutCfg, devShutdownConfig) X(int, manualDevShutdown) X(int, cancelDevShutdown) \
    X(DeviceSchedule, devSchedule)
#define DEVICE_SETTERS(X) \
    X(DeviceMailCfg*, updDevMailConfig) X(DeviceEventApp*, updDevEventApp) \
    X(DeviceDialCfg*, updDevDialerConfig) X(DeviceShutCfg*, updDevShutdownConfig) \
    X(DeviceSchedule*, updDevSchedule) X(int, manualDevDischarge) X(int, deviceSetICBattery) \
    X(int, deviceSetLineSense)
#define COMPUTER_FAMILIES(X) \
    X(Ids, countDevices) X(Devices, devices) X(Counters, counters) X(TesConfig, tessaryConfig) \
    X(NotifyConfig, notifyConfig)
#define COMPUTER_SETTERS(X) X(TesConfig*, updTessaryConfig) X(NotifyConfig*, updNotifyConfig)

// Every fullest form that records its arguments, for the leading texts LEAD:
// (host, computer) of a client manager, (computer) of a monitor client.
#define GET(R, NAME) R NAME(LEAD) override { return record<R>(#NAME, LEAD_ARGS); }
#define SET(T, NAME) int NAME(LEAD, T v) override { return record(#NAME, LEAD_ARGS, v); }
#define DEV_GET(R, NAME) R NAME(LEAD, const char* d) override { return record<R>(#NAME, LEAD_ARGS, d); }
#define DEV_SET(T, NAME) int NAME(LEAD, const char* d, T v) override { return record(#NAME, LEAD_ARGS, d, v); }
#define FULLEST_FORMS \
    COMPUTER_FAMILIES(GET) COMPUTER_SETTERS(SET) DEVICE_FAMILIES(DEV_GET) DEVICE_SETTERS(DEV_SET) \
    DeviceConfig config(LEAD, int f, int m) override { return record<DeviceConfig>("config", LEAD_ARGS, f, m); } \
    int changeUserDevice(LEAD, const char* d, const char* u, const char* p) override { return record("changeUserDevice", LEAD_ARGS, d, u, p); } \
    int changeColorDevice(LEAD, const char* d, int r, int g, int b, bool f) override { return record("changeColorDevice", LEAD_ARGS, d, r, g, b, f); } \
    int deviceProgPowerLook(LEAD, const char* d, int t, int p, long s) override { return record("deviceProgPowerLook", LEAD_ARGS, d, t, p, s); }

#define LEAD const char* h, const char* c
#define LEAD_ARGS h, c
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
    GET(Computer, version)
    FULLEST_FORMS
};
#undef LEAD
#undef LEAD_ARGS

#define LEAD const char* c
#define LEAD_ARGS c
// A one-server client whose computer-level forms only record their arguments.
class RecordingMonitClient : public MonitClientBase, public Recorder {
public:
    void stop() override {}
    bool isRunning() const override { return false; }
    Computers computers() override { return {}; }
    FULLEST_FORMS
};
#undef LEAD
#undef LEAD_ARGS

// Table rows: a shorter form called with the leading texts `lead`, and the
// one call of the fullest form it must make, `nulls` standing for the
// leading texts that reach it.
#define GET_ROW(R, NAME) {#NAME "(" + nulls + ")", [=](B& m) { m.NAME(lead...); }},
#define SET_ROW(T, NAME) {#NAME "(" + nulls + "," + Recorder::text(arg<T>()) + ")", [=](B& m) { m.NAME(lead..., arg<T>()); }},
#define DEV_GET_ROW(R, NAME) {#NAME "(" + nulls + ",D)", [=](B& m) { m.NAME(lead..., "D"); }},
#define DEV_SET_ROW(T, NAME) {#NAME "(" + nulls + ",D," + Recorder::text(arg<T>()) + ")", [=](B& m) { m.NAME(lead..., "D", arg<T>()); }},
// clang-format on

// Calls every shorter form of B's families with the leading texts `lead`
// (none, or a host), each on a new Fake.
template <typename B, typename Fake, typename... Lead>
void expectForms(const std::string& nulls, Lead... lead) {
    // The colour flag is false, so that a forwarder that passes true is seen.
    // clang-format off
    const std::vector<std::pair<std::string, std::function<void(B&)>>> rows = {
        {"config(" + nulls + ",3,12)", [=](B& m) { m.config(lead..., 3, 12); }},
        {"changeUserDevice(" + nulls + ",D,me,p)", [=](B& m) { m.changeUserDevice(lead..., "D", "me", "p"); }},
        {"changeColorDevice(" + nulls + ",D,1,2,3,0)", [=](B& m) { m.changeColorDevice(lead..., "D", 1, 2, 3, false); }},
        {"deviceProgPowerLook(" + nulls + ",D,4,5,3000000000)", [=](B& m) { m.deviceProgPowerLook(lead..., "D", 4, 5, 3000000000L); }},
        COMPUTER_FAMILIES(GET_ROW) COMPUTER_SETTERS(SET_ROW) DEVICE_FAMILIES(DEV_GET_ROW) DEVICE_SETTERS(DEV_SET_ROW)
    };
    // clang-format on
    for (const auto& [expected, call] : rows) {
        Fake fake;
        call(fake);
        EXPECT_EQ(fake.calls, std::vector<std::string>{expected});
    }
}

}  // namespace

TEST(ClientManagerBaseTest, DefaultsCallTheFullestFormWithNullLeadingTexts) {
    expectForms<ClientManagerBase, RecordingClient>("(null),(null)");
    expectForms<ClientManagerBase, RecordingClient>("h,(null)", "h");

    RecordingClient client;
    ClientManagerBase& base = client;
    base.computers();
    base.version();
    base.start(Url("https://Monitor.Example:5000"));
    EXPECT_FALSE(base.isRunning());
    client.connected = true;
    EXPECT_TRUE(base.isRunning());
    client.failing = true;
    EXPECT_NO_THROW(base.stop());
    EXPECT_EQ(client.calls, (Ids{"computers((null))", "version((null),(null))",
                                 "connect(https://monitor.example:5000)", "disconnect()"}));
    // What the fullest form answers comes back unchanged.
    client.failing = false;
    EXPECT_EQ(base.countDevices("h"), Ids{"countDevices(h,(null))"});
    EXPECT_EQ(base.devices().count("devices((null),(null))"), 1u);
}

TEST(MonitClientBaseTest, DefaultsCallTheComputerFormOrAreNotImplemented) {
    expectForms<MonitClientBase, RecordingMonitClient>("(null)");

    RecordingMonitClient client;
    MonitClientBase& base = client;
    using E = nimb::NotImplementedException;
    support::expectFailure<E>([&] { base.start(); }, "Error: not implemented.", -203);
    support::expectFailure<E>([&] { base.detectionConfig(); }, "Error: not implemented.", -203);
    EXPECT_TRUE(client.calls.empty());

    // The list queries answer empty when the server fails; the others pass failures on.
    EXPECT_EQ(base.countDevices(), Ids{"countDevices((null))"});
    EXPECT_EQ(base.devices().count("devices((null))"), 1u);
    EXPECT_EQ(base.counters().count("counters((null))"), 1u);
    client.failing = true;
    EXPECT_TRUE(base.countDevices().empty());
    EXPECT_TRUE(base.devices().empty());
    EXPECT_TRUE(base.counters().empty());
    EXPECT_THROW(base.device("D"), nimb::SystemException);
}
