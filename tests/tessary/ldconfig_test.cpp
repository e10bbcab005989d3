#include "tessary/ldconfig.h"

#include <dlfcn.h>

#include <functional>

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using tessary::LibConfig;

namespace {

// Runs body and returns "<code> <message>" of the nimb exception it throws.
std::string failure(const std::function<void()>& body)
{
    try {
        body();
    } catch (const nimb::Exception& e) {
        return std::to_string(e.code()) + " " + e.message();
    }
    return "no exception";
}

// The fake plug-in's own controls, reached through the handle LibConfig holds.
struct FakeControls {
    const char* (*calls)();
    void (*reset)(const char*);

    explicit FakeControls(const char* path)
    {
        void* handle = dlopen(path, RTLD_NOW | RTLD_NOLOAD);
        calls = reinterpret_cast<const char* (*)()>(dlsym(handle, "fakeConfigCalls"));
        reset = reinterpret_cast<void (*)(const char*)>(dlsym(handle, "fakeConfigReset"));
        dlclose(handle);
    }
};

TEST(LibConfigTest, NothingLoaded)
{
    LibConfig config;
    tessary::ClientConfig client;
    EXPECT_FALSE(config.isLoaded());
    EXPECT_EQ("-305 Library libconfig not loaded.", failure([&] { config.openClientConfig(); }));
    EXPECT_EQ("-305 Library libconfig not loaded.", failure([&] { config.getClientConfig(client); }));
    EXPECT_EQ("no exception", failure([&] { config.closeClientConfig(); }));
    EXPECT_EQ("-202 Empty library filename.", failure([&] { config.load(""); }));
    EXPECT_EQ("-202 Empty library filename.", failure([&] { config.load(nullptr); }));
    EXPECT_EQ(nimb::ERR_LIBRARY_LOAD, std::stoi(failure([&] { config.load("/nonexistent/x"); })));
}

TEST(LibConfigTest, CallsInOrderWithTheStoredHandle)
{
    LibConfig config;
    config.load(FAKE_CONFIG);
    FakeControls fake(FAKE_CONFIG);
    fake.reset("");

    tessary::MonitConfig monit;
    EXPECT_EQ("-305 Library libconfig not loaded.", failure([&] { config.getMonitConfig(monit); }));
    config.openMonitConfig();
    config.getMonitConfig(monit);
    config.openDevicesConfig();
    tessary::DeviceConfig device;
    config.getDeviceConfig(device, 3, 9);
    EXPECT_EQ(3, device.family);
    EXPECT_EQ(9, device.model);
    config.closeDevicesConfig();
    config.closeDevicesConfig();
    config.openClientConfig();
    tessary::ClientConfig client;
    config.getClientConfig(client);
    EXPECT_EQ(1234u, client.shutSvc.webPort);
    config.closeClientConfig();
    EXPECT_STREQ("openMonitConfig;getMonitConfig;openDevicesConfig;getDeviceConfig;"
                 "closeDevicesConfig;openClientConfig;getClientConfig;closeClientConfig;",
                 fake.calls());

    // Only the monitor configuration is still open; an extra reference keeps
    // the plug-in mapped so that its record can be read after unload().
    void* keep = dlopen(FAKE_CONFIG, RTLD_NOW);
    fake.reset("");
    config.unload();
    EXPECT_FALSE(config.isLoaded());
    EXPECT_STREQ("closeMonitConfig;", fake.calls());
    dlclose(keep);
    EXPECT_EQ(nullptr, dlopen(FAKE_CONFIG, RTLD_NOW | RTLD_NOLOAD));
}

TEST(LibConfigTest, EveryFailingEntryPointThrowsItsMessage)
{
    struct Row {
        const char* entry;
        std::function<void(LibConfig&)> call;
        const char* message;
    };
    tessary::DetectionConfig detection;
    tessary::DeviceConfig device;
    tessary::MonitConfig monit;
    tessary::ClientConfig client;
    const Row rows[] = {
        {"openDevicesConfig", [](LibConfig& c) { c.openDevicesConfig(); }, "Error opening devices config."},
        {"openMonitConfig", [](LibConfig& c) { c.openMonitConfig(); }, "Error opening monit config."},
        {"openClientConfig", [](LibConfig& c) { c.openClientConfig(); }, "Error opening client config."},
        {"getDetectionConfig", [&](LibConfig& c) { c.openDevicesConfig(); c.getDetectionConfig(detection); },
         "Error getting detection config."},
        {"getDeviceConfig", [&](LibConfig& c) { c.openDevicesConfig(); c.getDeviceConfig(device, 1, 2); },
         "Error getting device config."},
        {"getMonitConfig", [&](LibConfig& c) { c.openMonitConfig(); c.getMonitConfig(monit); },
         "Error getting monit config."},
        {"getClientConfig", [&](LibConfig& c) { c.openClientConfig(); c.getClientConfig(client); },
         "Error getting client config."},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.entry);
        LibConfig config;
        config.load(FAKE_CONFIG);
        FakeControls(FAKE_CONFIG).reset(row.entry);
        EXPECT_EQ(std::string("-305 ") + row.message, failure([&] { row.call(config); }));
    }
}

TEST(LibConfigTest, MissingEntryPointIsALoadFailure)
{
    LibConfig config;
    config.load(PARTIAL_CONFIG);
    config.openClientConfig();
    tessary::ClientConfig client;
    EXPECT_EQ(nimb::ERR_LIBRARY_LOAD, std::stoi(failure([&] { config.getClientConfig(client); })));
    config.closeClientConfig();
}

// The suite's own plug-in, copied into a temporary suite folder.
class IniConfigTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(m_dir.isValid());
        ASSERT_TRUE(QFile::copy(INI_CONFIG, m_dir.filePath("config.so")));
    }

    void write(const QString& name, const QByteArray& text)
    {
        QFile file(m_dir.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
    }

    tessary::ClientConfig client()
    {
        LibConfig config;
        // Without the extension: the binding adds ".so".
        config.load(m_dir.filePath("config").toStdString());
        config.openClientConfig();
        tessary::ClientConfig result;
        result.shutSvc.webHost = "stale";
        config.getClientConfig(result);
        return result;
    }

    QTemporaryDir m_dir;
};

TEST_F(IniConfigTest, MissingFileGivesDefaults)
{
    EXPECT_EQ(tessary::ClientConfig().toString(), client().toString());
}

TEST_F(IniConfigTest, ReadsGroupsAndKeysAndKeepsDefaultsForBadValues)
{
    write("client.conf", "[shutsvc]\nweb.host=nodeb\nweb.port=abc\n"
                         "[cloudsvc]\nmessage.interval=9000\n"
                         "[mqtt]\nenable=0\nbrokerPort=8883\n"
                         "[debug]\nshutsvc.filename=s.log\nshutsvc.level=debug\nmonitclient.level=LOUD\n");
    const tessary::ClientConfig config = client();
    EXPECT_EQ("shutsvc: {web.host=nodeb,web.port=4470}", config.shutSvc.toString());
    EXPECT_EQ(9000u, config.cloudSvc.messageInterval);
    EXPECT_FALSE(config.cloudSvc.mqtt.enable);
    EXPECT_EQ(8883u, config.cloudSvc.mqtt.brokerPort);
    EXPECT_EQ("s.log", config.logger.shutSvcFilename);
    EXPECT_EQ(nimb::DEBUG, config.logger.shutSvcLevel);
    EXPECT_EQ(nimb::FATAL, config.logger.monitClientLevel);
}

TEST_F(IniConfigTest, MonitorAndDeviceFiles)
{
    write("monit.conf", "[monit]\nrs232.enable=0\n[web]\ntcp.port=5000\n[debug]\nserialhid.level=INFO\n");
    ASSERT_TRUE(QDir(m_dir.path()).mkdir("devices"));
    write("devices/2-7.json", "{\"family\":2,\"model\":7,\"name\":\"Box\",\"caps\":{\"hasVInput\":1}}");
    write("devices/detection.json", "{\"usbEnable\":1,\"usb\":[{\"vendorId\":1,\"productId\":2}],"
                                    "\"serialEnable\":0,\"serial\":[\"ttyS0\"],\"baudRate\":9600}");
    LibConfig config;
    config.load(m_dir.filePath("config.so").toStdString());
    config.openMonitConfig();
    tessary::MonitConfig monit;
    config.getMonitConfig(monit);
    EXPECT_EQ("monit: {monit.enable=1,rs232.enable=0}", monit.general.toString());
    EXPECT_EQ(5000, monit.server.tcpPort);
    EXPECT_EQ(nimb::INFO, monit.logger.serialHidLevel);

    config.openDevicesConfig();
    tessary::DeviceConfig device;
    config.getDeviceConfig(device, 2, 7);
    EXPECT_EQ("Box", device.name);
    EXPECT_TRUE(device.caps.hasVInput);
    EXPECT_EQ("-305 Error getting device config.", failure([&] { config.getDeviceConfig(device, 2, 8); }));
    tessary::DetectionConfig detection;
    config.getDetectionConfig(detection);
    EXPECT_EQ("detection: {usb.enable=1,usb=[{vendorId=1,productId=2}],serial.enable=0,"
              "serial=[ttyS0],serial.baudrate=9600}",
              detection.toString());
}

}  // namespace
