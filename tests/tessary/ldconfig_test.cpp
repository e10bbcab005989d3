#include "tessary/ldconfig.h"

#include <dlfcn.h>

#include <functional>
#include <string>
#include <utility>

#include <gtest/gtest.h>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include "tests/support.h"

using tessary::LibConfig;

namespace {

const std::string NOT_LOADED = "-305 Library libconfig not loaded.";

// Runs body and returns "<code> <message>" of the nimb exception it throws.
std::string failure(const std::function<void()>& body) {
    try {
        body();
    } catch (const nimb::Exception& e) {
        return std::to_string(e.code()) + " " + e.message();
    }
    return "no exception";
}

// A variable of the fake plug-in that LibConfig holds: its record of calls
// (fakeCalls) or its switch that makes every entry point fail (fakeFailing).
template <typename T>
T& fake(const char* name) {
    void* handle = dlopen(FAKE_CONFIG, RTLD_NOW | RTLD_NOLOAD);
    dlclose(handle);
    return *static_cast<T*>(dlsym(handle, name));
}

// A binding and the records that a configuration plug-in fills.
class LibConfigTest : public ::testing::Test {
protected:
    LibConfig config;
    tessary::DetectionConfig detection;
    tessary::DeviceConfig device;
    tessary::MonitConfig monit;
    tessary::ClientConfig client;
};

// With the fake plug-in: calls in order with the handle that the open gave,
// every failure's message, and the closes of unload().
TEST_F(LibConfigTest, CallsThePlugInWithItsHandlesAndThrowsEveryMessage) {
    EXPECT_EQ(NOT_LOADED, failure([&] { config.openClientConfig(); }));
    EXPECT_EQ(NOT_LOADED, failure([&] { config.getClientConfig(client); }));
    EXPECT_EQ("no exception", failure([&] { config.closeClientConfig(); }));
    EXPECT_EQ("-202 Empty library filename.", failure([&] { config.load(""); }));
    EXPECT_EQ("-202 Empty library filename.", failure([&] { config.load(nullptr); }));

    config.load(FAKE_CONFIG);
    std::string& calls = fake<std::string>("fakeCalls");
    calls.clear();
    EXPECT_EQ(NOT_LOADED, failure([&] { config.getMonitConfig(monit); }));  // not open
    config.openMonitConfig();
    config.getMonitConfig(monit);
    config.openDevicesConfig();
    config.getDeviceConfig(device, 3, 9);
    config.closeDevicesConfig();
    config.closeDevicesConfig();
    config.openClientConfig();
    config.getClientConfig(client);
    EXPECT_EQ(calls,
              "openMonitConfig;getMonitConfig;openDevicesConfig;getDeviceConfig;"
              "closeDevicesConfig;openClientConfig;getClientConfig;");

    // While the plug-in fails, every entry point throws its own message.
    config.openDevicesConfig();
    bool& failing = fake<bool>("fakeFailing");
    failing = true;
    const std::pair<std::function<void()>, std::string> rows[] = {
        {[&] { config.getDetectionConfig(detection); }, "Error getting detection config."},
        {[&] { config.getDeviceConfig(device, 1, 2); }, "Error getting device config."},
        {[&] { config.getMonitConfig(monit); }, "Error getting monit config."},
        {[&] { config.getClientConfig(client); }, "Error getting client config."},
        {[&] { config.openDevicesConfig(); }, "Error opening devices config."},
        {[&] { config.openMonitConfig(); }, "Error opening monit config."},
        {[&] { config.openClientConfig(); }, "Error opening client config."},
    };
    for (const auto& [call, message] : rows)
        EXPECT_EQ("-305 " + message, failure(call));
    // The null handle of a failed open is kept: the configuration is closed.
    EXPECT_EQ(NOT_LOADED, failure([&] { config.getMonitConfig(monit); }));

    // unload() closes all three in order; an extra reference keeps the
    // plug-in mapped so that its record can be read afterwards.
    failing = false;
    config.openDevicesConfig();
    config.openMonitConfig();
    config.openClientConfig();
    void* keep = dlopen(FAKE_CONFIG, RTLD_NOW);
    calls.clear();
    config.unload();
    EXPECT_FALSE(config.isLoaded());
    EXPECT_EQ(calls, "closeDevicesConfig;closeMonitConfig;closeClientConfig;");
    dlclose(keep);
    EXPECT_EQ(nullptr, dlopen(FAKE_CONFIG, RTLD_NOW | RTLD_NOLOAD));
}

// The suite's own plug-in, copied into a temporary suite folder, reads the
// files there and keeps the defaults for what is missing or bad.
TEST_F(LibConfigTest, IniPlugInReadsTheSuiteFolder) {
    QTemporaryDir dir;
    const auto path = [&](const char* name) { return dir.filePath(name).toStdString(); };
    ASSERT_TRUE(QFile::copy(INI_CONFIG, dir.filePath("config.so")));
    config.load(path("config"));  // the binding adds ".so"
    config.openClientConfig();
    client.shutSvc.webHost = "stale";
    config.getClientConfig(client);
    EXPECT_EQ(tessary::ClientConfig().toString(), client.toString());  // no file yet

    support::writeFile(
        path("client.conf"),
        "[shutsvc]\nweb.host=nodeb\nweb.port=abc\n[cloudsvc]\nmessage.interval=9000\n"
        "[mqtt]\nbrokerPort=8883\n[debug]\nshutsvc.level=debug\nmonitclient.level=LOUD\n");
    config.getClientConfig(client);
    EXPECT_EQ("shutsvc: {web.host=nodeb,web.port=4470}", client.shutSvc.toString());
    EXPECT_EQ(9000u, client.cloudSvc.messageInterval);
    EXPECT_EQ(8883u, client.cloudSvc.mqtt.brokerPort);
    EXPECT_EQ(nimb::DEBUG, client.logger.shutSvcLevel);
    EXPECT_EQ(nimb::FATAL, client.logger.monitClientLevel);

    support::writeFile(
        path("monit.conf"),
        "[monit]\nrs232.enable=0\n[web]\ntcp.port=5000\n[debug]\nserialhid.level=INFO\n");
    config.openMonitConfig();
    config.getMonitConfig(monit);
    EXPECT_EQ("monit: {monit.enable=1,rs232.enable=0}", monit.general.toString());
    EXPECT_EQ(5000, monit.server.tcpPort);
    EXPECT_EQ(nimb::INFO, monit.logger.serialHidLevel);

    ASSERT_TRUE(QDir(dir.path()).mkdir("devices"));
    support::writeFile(path("devices/2-7.json"),
                       R"({"family":2,"model":7,"name":"Box","caps":{"hasVInput":1}})");
    support::writeFile(path("devices/detection.json"),
                       R"({"usbEnable":1,"usb":[{"vendorId":1,"productId":2}],)"
                       R"("serialEnable":0,"serial":["ttyS0"],"baudRate":9600})");
    config.openDevicesConfig();
    config.getDeviceConfig(device, 2, 7);
    EXPECT_EQ("Box", device.name);
    EXPECT_TRUE(device.caps.hasVInput);
    EXPECT_EQ("-305 Error getting device config.",
              failure([&] { config.getDeviceConfig(device, 2, 8); }));
    config.getDetectionConfig(detection);
    EXPECT_EQ(
        "detection: {usb.enable=1,usb=[{vendorId=1,productId=2}],serial.enable=0,"
        "serial=[ttyS0],serial.baudrate=9600}",
        detection.toString());
}

}  // namespace
