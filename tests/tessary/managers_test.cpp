#include <cstdint>
#include <functional>
#include <initializer_list>
#include <string>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

#include "nimb/object.h"
#include "tessary/clientmgr.h"
#include "tessary/monitmgr.h"

using tessary::ClientManagerBase;
using tessary::MonitClientBase;

namespace {

std::string t(const char* text) {
    return text ? text : "(null)";
}
std::string n(long value) {
    return std::to_string(value);
}
std::string p(const void* pointer) {
    return "@" + n(reinterpret_cast<std::intptr_t>(pointer));
}

// Call records shared by both fakes: "name(arg,arg,...)" with null texts as
// "(null)" and record pointers as "@address".
class Recorder {
public:
    std::vector<std::string> calls;
    bool failing = false;

    void record(const char* name, std::initializer_list<std::string> args) {
        std::string call = std::string(name) + "(";
        for (const std::string& arg : args)
            call += (call.back() == '(' ? "" : ",") + arg;
        calls.push_back(call + ")");
        if (failing)
            throw nimb::SystemException("Error executing libclient::getDeviceList().", -305);
    }
};

// clang-format off
// The fullest forms: record the arguments and return a default result.
#define REC(RET, NAME, PARAMS, ...) \
    RET NAME PARAMS override { record(#NAME, {__VA_ARGS__}); return RET(); }
#define HCD (const char* h, const char* c, const char* d)
#define HCD_INT(NAME) REC(int, NAME, (const char* h, const char* c, const char* d, int v), t(h), t(c), t(d), n(v))
#define HCD_PTR(NAME, TYPE) REC(int, NAME, (const char* h, const char* c, const char* d, TYPE* r), t(h), t(c), t(d), p(r))
#define CD (const char* c, const char* d)
#define CD_INT(NAME) REC(int, NAME, (const char* c, const char* d, int v), t(c), t(d), n(v))
#define CD_PTR(NAME, TYPE) REC(int, NAME, (const char* c, const char* d, TYPE* r), t(c), t(d), p(r))

using Computers = std::map<std::string, tessary::Computer>;
using Devices = std::map<std::string, tessary::Device>;
using Counters = std::map<std::string, tessary::Regressive>;
using Ids = std::vector<std::string>;
using Log = std::vector<tessary::LogEntry>;

// A client manager whose abstract operations only record their arguments.
class RecordingClient : public ClientManagerBase, public Recorder {
public:
    bool connected = false;

    int connect(const char* url) override { record("connect", {t(url)}); return 0; }
    int disconnect() override { record("disconnect", {}); return 0; }
    int disconnect(const char* host) override { record("disconnect", {t(host)}); return 0; }
    bool isConnected() const override { return connected; }
    bool isConnected(const char*) const override { return false; }
    Ids hostList() const override { return {}; }
    nimb::Logger* logger(const char*) override { return nullptr; }
    Computers computers(const char* h) override { record("computers", {t(h)}); return {{"pc", {}}}; }
    tessary::Computer version(const char* h, const char* c) override {
        record("version", {t(h), t(c)});
        tessary::Computer computer;
        computer.hostname = t(h) + "/" + t(c);
        return computer;
    }
    Ids countDevices(const char* h, const char* c) override { record("countDevices", {t(h), t(c)}); return {"UPS1"}; }
    REC(Devices, devices, (const char* h, const char* c), t(h), t(c))
    tessary::Device device HCD override {
        record("device", {t(h), t(c), t(d)});
        tessary::Device device;
        device.id = t(d);
        return device;
    }
    REC(int, deleteDevice, HCD, t(h), t(c), t(d))
    REC(tessary::DeviceConfig, config, HCD, t(h), t(c), t(d))
    REC(tessary::DeviceConfig, config, (const char* h, const char* c, int f, int m), t(h), t(c), n(f), n(m))
    REC(Counters, counters, (const char* h, const char* c), t(h), t(c))
    REC(tessary::Regressive, counter, HCD, t(h), t(c), t(d))
    REC(int, changeUserDevice, (const char* h, const char* c, const char* d, const char* u, const char* q), t(h), t(c), t(d), t(u), t(q))
    REC(int, changeColorDevice, (const char* h, const char* c, const char* d, int r, int g, int b, bool f), t(h), t(c), t(d), n(r), n(g), n(b), n(f))
    REC(int, clearEventsDevice, HCD, t(h), t(c), t(d))
    REC(Log, deviceLog, HCD, t(h), t(c), t(d))
    REC(Log, deviceLogHour, HCD, t(h), t(c), t(d))
    REC(Log, deviceLogDay, HCD, t(h), t(c), t(d))
    REC(Log, deviceLogMonth, HCD, t(h), t(c), t(d))
    REC(tessary::DeviceMailCfg, devMailConfig, HCD, t(h), t(c), t(d))
    HCD_PTR(updDevMailConfig, tessary::DeviceMailCfg)
    REC(int, manualDevMailTest, HCD, t(h), t(c), t(d))
    REC(int, cancelDevMailTest, HCD, t(h), t(c), t(d))
    REC(tessary::DeviceEventApp, devEventApp, HCD, t(h), t(c), t(d))
    HCD_PTR(updDevEventApp, tessary::DeviceEventApp)
    REC(tessary::DeviceDialCfg, devDialerConfig, HCD, t(h), t(c), t(d))
    HCD_PTR(updDevDialerConfig, tessary::DeviceDialCfg)
    REC(tessary::DeviceShutCfg, devShutdownConfig, HCD, t(h), t(c), t(d))
    HCD_PTR(updDevShutdownConfig, tessary::DeviceShutCfg)
    REC(int, manualDevShutdown, HCD, t(h), t(c), t(d))
    REC(int, cancelDevShutdown, HCD, t(h), t(c), t(d))
    HCD_INT(manualDevDischarge)
    HCD_INT(deviceSetICBattery)
    HCD_INT(deviceSetLineSense)
    REC(int, deviceProgPowerLook, (const char* h, const char* c, const char* d, int a, int b, long s), t(h), t(c), t(d), n(a), n(b), n(s))
    REC(tessary::DeviceSchedule, devSchedule, HCD, t(h), t(c), t(d))
    HCD_PTR(updDevSchedule, tessary::DeviceSchedule)
    REC(tessary::TesConfig, tessaryConfig, (const char* h, const char* c), t(h), t(c))
    REC(int, updTessaryConfig, (const char* h, const char* c, tessary::TesConfig* r), t(h), t(c), p(r))
    REC(tessary::NotifyConfig, notifyConfig, (const char* h, const char* c), t(h), t(c))
    REC(int, updNotifyConfig, (const char* h, const char* c, tessary::NotifyConfig* r), t(h), t(c), p(r))
};

// A one-server client whose computer-level forms only record their arguments.
class RecordingMonitClient : public MonitClientBase, public Recorder {
public:
    void stop() override {}
    bool isRunning() const override { return false; }
    Computers computers() override { return {}; }
    Ids countDevices(const char* c) override { record("countDevices", {t(c)}); return {"UPS1", "UPS2"}; }
    Devices devices(const char* c) override { record("devices", {t(c)}); return {{"UPS1", {}}}; }
    Counters counters(const char* c) override {
        record("counters", {t(c)});
        return {{"UPS1", tessary::Regressive(tessary::ShutdownCause::Manual)}};
    }
    REC(tessary::Device, device, CD, t(c), t(d))
    REC(int, deleteDevice, CD, t(c), t(d))
    REC(tessary::DeviceConfig, config, CD, t(c), t(d))
    REC(tessary::DeviceConfig, config, (const char* c, int f, int m), t(c), n(f), n(m))
    REC(tessary::Regressive, counter, CD, t(c), t(d))
    REC(int, changeUserDevice, (const char* c, const char* d, const char* u, const char* q), t(c), t(d), t(u), t(q))
    REC(int, changeColorDevice, (const char* c, const char* d, int r, int g, int b, bool f), t(c), t(d), n(r), n(g), n(b), n(f))
    REC(int, clearEventsDevice, CD, t(c), t(d))
    REC(Log, deviceLog, CD, t(c), t(d))
    REC(Log, deviceLogHour, CD, t(c), t(d))
    REC(Log, deviceLogDay, CD, t(c), t(d))
    REC(Log, deviceLogMonth, CD, t(c), t(d))
    REC(tessary::DeviceMailCfg, devMailConfig, CD, t(c), t(d))
    CD_PTR(updDevMailConfig, tessary::DeviceMailCfg)
    REC(tessary::DeviceEventApp, devEventApp, CD, t(c), t(d))
    CD_PTR(updDevEventApp, tessary::DeviceEventApp)
    REC(tessary::DeviceDialCfg, devDialerConfig, CD, t(c), t(d))
    CD_PTR(updDevDialerConfig, tessary::DeviceDialCfg)
    REC(tessary::DeviceShutCfg, devShutdownConfig, CD, t(c), t(d))
    CD_PTR(updDevShutdownConfig, tessary::DeviceShutCfg)
    REC(int, manualDevShutdown, CD, t(c), t(d))
    REC(int, cancelDevShutdown, CD, t(c), t(d))
    CD_INT(manualDevDischarge)
    CD_INT(deviceSetICBattery)
    CD_INT(deviceSetLineSense)
    REC(int, deviceProgPowerLook, (const char* c, const char* d, int a, int b, long s), t(c), t(d), n(a), n(b), n(s))
    REC(tessary::DeviceSchedule, devSchedule, CD, t(c), t(d))
    CD_PTR(updDevSchedule, tessary::DeviceSchedule)
    REC(tessary::TesConfig, tessaryConfig, (const char* c), t(c))
    REC(int, updTessaryConfig, (const char* c, tessary::TesConfig* r), t(c), p(r))
    REC(tessary::NotifyConfig, notifyConfig, (const char* c), t(c))
    REC(int, updNotifyConfig, (const char* c, tessary::NotifyConfig* r), t(c), p(r))
    REC(int, manualDevMailTest, CD, t(c), t(d))
    REC(int, cancelDevMailTest, CD, t(c), t(d))
};

tessary::DeviceMailCfg mail;
tessary::DeviceEventApp events;
tessary::DeviceDialCfg dial;
tessary::DeviceShutCfg shut;
tessary::DeviceSchedule sched;
tessary::TesConfig tes;
tessary::NotifyConfig notify;

// One call through the base class and the one call it must reach; a setter
// must pass on the caller's own record, not a copy.
template <typename Base>
struct Row {
    std::string expected;
    std::function<void(Base&)> call;
    const void* record = nullptr;

    std::string full() const { return record ? expected + "," + p(record) + ")" : expected + ")"; }
};

// Both shorter device forms of a family, or the one of a one-server client.
#define TWO_FORMS(NAME) \
    {#NAME "((null),(null),D", [](C& m) { m.NAME("D"); }}, {#NAME "(h,(null),D", [](C& m) { m.NAME("h", "D"); }}
#define TWO_SETTERS(NAME, R) \
    {#NAME "((null),(null),D", [](C& m) { m.NAME("D", &R); }, &R}, {#NAME "(h,(null),D", [](C& m) { m.NAME("h", "D", &R); }, &R}
#define ONE_FORM(NAME) {#NAME "((null),D", [](M& m) { m.NAME("D"); }}
#define ONE_SETTER(NAME, R) {#NAME "((null),D", [](M& m) { m.NAME("D", &R); }, &R}
// clang-format on

}  // namespace

TEST(ClientManagerBaseTest, ShorterFormsCallTheFullestFormWithNullLeadingTexts) {
    using C = ClientManagerBase;
    // clang-format off
    const std::vector<Row<C>> rows = {
        {"computers((null)", [](C& m) { m.computers(); }},
        {"version((null),(null)", [](C& m) { m.version(); }},
        {"version(h,(null)", [](C& m) { m.version("h"); }},
        {"countDevices((null),(null)", [](C& m) { m.countDevices(); }},
        {"countDevices(h,(null)", [](C& m) { m.countDevices("h"); }},
        {"devices((null),(null)", [](C& m) { m.devices(); }},
        {"devices(h,(null)", [](C& m) { m.devices("h"); }},
        {"config((null),(null),3,12", [](C& m) { m.config(3, 12); }},
        {"config(h,(null),-1,0", [](C& m) { m.config("h", -1, 0); }},
        {"counters((null),(null)", [](C& m) { m.counters(); }},
        {"counters(h,(null)", [](C& m) { m.counters("h"); }},
        {"tessaryConfig((null),(null)", [](C& m) { m.tessaryConfig(); }},
        {"tessaryConfig(h,(null)", [](C& m) { m.tessaryConfig("h"); }},
        {"notifyConfig((null),(null)", [](C& m) { m.notifyConfig(); }},
        {"notifyConfig(h,(null)", [](C& m) { m.notifyConfig("h"); }},
        {"updTessaryConfig((null),(null)", [](C& m) { m.updTessaryConfig(&tes); }, &tes},
        {"updTessaryConfig(h,(null)", [](C& m) { m.updTessaryConfig("h", &tes); }, &tes},
        {"updNotifyConfig((null),(null)", [](C& m) { m.updNotifyConfig(&notify); }, &notify},
        {"updNotifyConfig(h,(null)", [](C& m) { m.updNotifyConfig("h", &notify); }, &notify},
        {"changeUserDevice((null),(null),D,me,(null)", [](C& m) { m.changeUserDevice("D", "me", nullptr); }},
        {"changeUserDevice(h,(null),D,me,p", [](C& m) { m.changeUserDevice("h", "D", "me", "p"); }},
        {"changeColorDevice((null),(null),D,1,2,3,1", [](C& m) { m.changeColorDevice("D", 1, 2, 3, true); }},
        {"changeColorDevice(h,(null),D,9,0,-4,0", [](C& m) { m.changeColorDevice("h", "D", 9, 0, -4, false); }},
        {"manualDevDischarge((null),(null),D,7", [](C& m) { m.manualDevDischarge("D", 7); }},
        {"manualDevDischarge(h,(null),D,8", [](C& m) { m.manualDevDischarge("h", "D", 8); }},
        {"deviceSetICBattery((null),(null),D,1", [](C& m) { m.deviceSetICBattery("D", 1); }},
        {"deviceSetICBattery(h,(null),D,0", [](C& m) { m.deviceSetICBattery("h", "D", 0); }},
        {"deviceSetLineSense((null),(null),D,12", [](C& m) { m.deviceSetLineSense("D", 12); }},
        {"deviceSetLineSense(h,(null),D,11", [](C& m) { m.deviceSetLineSense("h", "D", 11); }},
        {"deviceProgPowerLook((null),(null),D,1,2,3000000000", [](C& m) { m.deviceProgPowerLook("D", 1, 2, 3000000000L); }},
        {"deviceProgPowerLook(h,(null),D,4,5,-6", [](C& m) { m.deviceProgPowerLook("h", "D", 4, 5, -6); }},
        TWO_FORMS(device), TWO_FORMS(deleteDevice), TWO_FORMS(config), TWO_FORMS(counter),
        TWO_FORMS(clearEventsDevice), TWO_FORMS(deviceLog), TWO_FORMS(deviceLogHour),
        TWO_FORMS(deviceLogDay), TWO_FORMS(deviceLogMonth), TWO_FORMS(devMailConfig),
        TWO_FORMS(manualDevMailTest), TWO_FORMS(cancelDevMailTest), TWO_FORMS(devEventApp),
        TWO_FORMS(devDialerConfig), TWO_FORMS(devShutdownConfig), TWO_FORMS(manualDevShutdown),
        TWO_FORMS(cancelDevShutdown), TWO_FORMS(devSchedule),
        TWO_SETTERS(updDevMailConfig, mail), TWO_SETTERS(updDevEventApp, events),
        TWO_SETTERS(updDevDialerConfig, dial), TWO_SETTERS(updDevShutdownConfig, shut),
        TWO_SETTERS(updDevSchedule, sched),
    };
    // clang-format on
    for (const Row<C>& row : rows) {
        RecordingClient client;
        row.call(client);
        EXPECT_EQ(client.calls, std::vector<std::string>{row.full()});
    }
}

TEST(ClientManagerBaseTest, ShorterFormsReturnWhatTheFullestFormReturns) {
    RecordingClient client;
    ClientManagerBase& base = client;
    EXPECT_EQ(base.device("UPS7").id, "UPS7");
    EXPECT_EQ(base.device("h", "UPS8").id, "UPS8");
    EXPECT_EQ(base.version("srv").hostname, "srv/(null)");
    EXPECT_EQ(base.countDevices("h"), std::vector<std::string>{"UPS1"});
    EXPECT_EQ(base.computers().count("pc"), 1u);
}

TEST(ClientManagerBaseTest, LifecycleDefaults) {
    RecordingClient client;
    ClientManagerBase& base = client;
    base.start(tessary::Url("https://Monitor.Example:5000"));
    base.connect(tessary::Url("server"));
    EXPECT_EQ(client.calls, (std::vector<std::string>{"connect(https://monitor.example:5000)",
                                                      "connect(http://server)"}));

    EXPECT_FALSE(base.isRunning());
    client.connected = true;
    EXPECT_TRUE(base.isRunning());

    client.calls.clear();
    client.failing = true;
    EXPECT_NO_THROW(base.stop());
    EXPECT_EQ(client.calls, std::vector<std::string>{"disconnect()"});
}

TEST(MonitClientBaseTest, DefaultsCallTheComputerFormWithANullComputer) {
    using M = MonitClientBase;
    // clang-format off
    const std::vector<Row<M>> rows = {
        {"countDevices((null)", [](M& m) { m.countDevices(); }},
        {"devices((null)", [](M& m) { m.devices(); }},
        {"config((null),3,12", [](M& m) { m.config(3, 12); }},
        {"counters((null)", [](M& m) { m.counters(); }},
        {"changeUserDevice((null),D,me,p", [](M& m) { m.changeUserDevice("D", "me", "p"); }},
        {"changeColorDevice((null),D,1,2,3,1", [](M& m) { m.changeColorDevice("D", 1, 2, 3, true); }},
        {"manualDevDischarge((null),D,7", [](M& m) { m.manualDevDischarge("D", 7); }},
        {"deviceSetICBattery((null),D,1", [](M& m) { m.deviceSetICBattery("D", 1); }},
        {"deviceSetLineSense((null),D,12", [](M& m) { m.deviceSetLineSense("D", 12); }},
        {"deviceProgPowerLook((null),D,1,2,3", [](M& m) { m.deviceProgPowerLook("D", 1, 2, 3); }},
        {"tessaryConfig((null)", [](M& m) { m.tessaryConfig(); }},
        {"notifyConfig((null)", [](M& m) { m.notifyConfig(); }},
        {"updTessaryConfig((null)", [](M& m) { m.updTessaryConfig(&tes); }, &tes},
        {"updNotifyConfig((null)", [](M& m) { m.updNotifyConfig(&notify); }, &notify},
        ONE_FORM(device), ONE_FORM(deleteDevice), ONE_FORM(config), ONE_FORM(counter),
        ONE_FORM(clearEventsDevice), ONE_FORM(deviceLog), ONE_FORM(deviceLogHour),
        ONE_FORM(deviceLogDay), ONE_FORM(deviceLogMonth), ONE_FORM(devMailConfig),
        ONE_FORM(devEventApp), ONE_FORM(devDialerConfig), ONE_FORM(devShutdownConfig),
        ONE_FORM(manualDevShutdown), ONE_FORM(cancelDevShutdown), ONE_FORM(devSchedule),
        ONE_FORM(manualDevMailTest), ONE_FORM(cancelDevMailTest),
        ONE_SETTER(updDevMailConfig, mail), ONE_SETTER(updDevEventApp, events),
        ONE_SETTER(updDevDialerConfig, dial), ONE_SETTER(updDevShutdownConfig, shut),
        ONE_SETTER(updDevSchedule, sched),
    };
    // clang-format on
    for (const Row<M>& row : rows) {
        RecordingMonitClient client;
        row.call(client);
        EXPECT_EQ(client.calls, std::vector<std::string>{row.full()});
    }
}

TEST(MonitClientBaseTest, UnimplementedOperationsThrowNotImplemented) {
    RecordingMonitClient client;
    MonitClientBase& base = client;
    for (const auto& call : std::vector<std::function<void()>>{[&] { base.start(); },
                                                               [&] { base.detectionConfig(); }}) {
        try {
            call();
            ADD_FAILURE() << "no exception";
        } catch (const nimb::NotImplementedException& e) {
            EXPECT_EQ(e.message(), "Error: not implemented.");
            EXPECT_EQ(e.code(), -203);
        }
    }
    EXPECT_TRUE(client.calls.empty());
}

TEST(MonitClientBaseTest, ListQueriesAnswerEmptyWhenTheServerFails) {
    RecordingMonitClient client;
    MonitClientBase& base = client;
    EXPECT_EQ(base.countDevices(), (std::vector<std::string>{"UPS1", "UPS2"}));
    EXPECT_EQ(base.devices().size(), 1u);
    EXPECT_EQ(base.counters().at("UPS1").cause(), tessary::ShutdownCause::Manual);

    client.failing = true;
    client.calls.clear();
    EXPECT_TRUE(base.countDevices().empty());
    EXPECT_TRUE(base.devices().empty());
    EXPECT_TRUE(base.counters().empty());
    EXPECT_EQ(client.calls, (std::vector<std::string>{"countDevices((null))", "devices((null))",
                                                      "counters((null))"}));
    // The other defaults pass failures on.
    EXPECT_THROW(base.device("D"), nimb::SystemException);
}

static_assert(std::is_abstract<tessary::MonitManagerBase>::value,
              "the monitor server implements its side");
