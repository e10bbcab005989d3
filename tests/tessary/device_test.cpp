#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "nimb/json.h"
#include "tessary/device.h"

using nimb::JsonDocument;
using nimb::JsonObject;
using nimb::SerialPort;
using tessary::Device;
using tessary::DeviceFailFlags;
using tessary::DeviceFlags;
using tessary::DeviceVars;
using tessary::LogEntry;
using tessary::PortInfo;
using tessary::PortType;
using tessary::ProtocolType;

namespace {

// One hour east of UTC all year round, fixed before Qt reads the local zone.
const bool ZONE_FIXED = (setenv("TZ", "CET-1", 1), tzset(), true);

// 2024-05-01 13:03:07.250 UTC.
const long long MAY_FIRST_MS = 1714568587250LL;

std::string compact(const JsonObject& json) { return JsonDocument(json).toJson(false); }

JsonObject parsed(const std::string& text) {
    JsonDocument document;
    document.fromJson(text);
    return document.object();
}

void expectStart(const std::string& text, const std::string& prefix) {
    EXPECT_EQ(text.substr(0, prefix.size()), prefix);
}

void expectEnd(const std::string& text, const std::string& suffix) {
    EXPECT_EQ(text.substr(text.size() - std::min(text.size(), suffix.size())), suffix);
}

template <typename T>
std::string streamed(T value) {
    std::ostringstream out;
    out << value;
    return out.str();
}

const char* const CLEARED_VARS_TEXT =
    "vInput=0.0,vOutput=0.0,iOutput=0.0,pOutput=0.0,fOutput=0.0,vBattery=0.0,cBattery=0,"
    "temperature=0.0,lineSense=12,icBattery=0,shutdownTimer=-1,wakeupTimer=-1,nightoffTimer=-1,"
    "nominalVInput=0,nominalVOutput=0,nominalPOutput=0,nominalFOutput=0,nominalVBattery=0,"
    "ledRed=0,ledGreen=0,ledBlue=0,random=0,tPowerLo=0,pPowerLo=0";

const char* const CLEARED_FLAGS_TEXT =
    "connected=0,inShutdown=0,opStartup=0,opBattery=0,opStandBy=0,opCheckup=0,opWarning=0,"
    "noVInput=0,loVInput=0,hiVInput=0,loFInput=0,hiFInput=0,noSyncInput=0,syncInput=0,"
    "noiseInput=0,hiPOutput=0,loBattery=0,maxBattery=0,noBattery=0,oldBattery=0,moreBattery=0,"
    "lessBattery=0,shutdownTimerActive=0,remoteControlActive=0,noCalibrated=0";

const char* const CLEARED_FAIL_TEXT =
    "overtemp=0,internal=0,overload=0,shortcircuit=0,inverter=0,fan=0,tiristor=0,endBattery=0,"
    "loVInput=0,abnormalVOutput=0,hiPOutput=0,abnormalVBattery=0";

const char* const CLEARED_CONFIG_TEXT =
    "config: {baudrate(bps)=0, databits=0, stopbits=0, parity=0, timeout(ms)=0}";

// A connected device on a soft USB HID port with every block filled in.
Device fullDevice() {
    Device device;
    device.id = "ups-1";
    device.family = 3;
    device.model = 12;
    device.version = "2.07";
    device.idPc = "pc-7";
    device.last = MAY_FIRST_MS;
    device.protocol = ProtocolType::Delmo;
    device.name = "Model 12";
    device.userName = "rack";
    device.userProd = "lab";
    device.port.set(PortType::HID, "/dev/hidraw0", nullptr, 0x665, 0x5161);
    device.port.isSoftUsb = true;
    device.vars.vInput = 229.96f;
    device.vars.cBattery = 87.5f;
    device.vars.lineSense = 1;
    device.vars.random = true;
    device.vars.pPowerLo = -7;
    device.flags.connected = true;
    device.flags.noCalibrated = true;
    device.fail.tiristor = true;
    return device;
}

TEST(DeviceCodesTest, NamesOfEveryTableAndNumbersOutsideThem) {
    EXPECT_EQ(streamed(ProtocolType::Ulvey), "Ulvey");
    EXPECT_EQ(streamed(static_cast<ProtocolType>(5)), "5");
    EXPECT_EQ(streamed(PortType::RS232), "RS232");
    EXPECT_EQ(streamed(static_cast<PortType>(-1)), "-1");
    EXPECT_EQ(streamed(tessary::ChargeBatteryLevel::High), "High");
    EXPECT_EQ(streamed(static_cast<tessary::ChargeBatteryLevel>(2)), "2");
    const char* const lineSense[] = {"Very Low", "Low", "Normal", "High", "Very High", "5"};
    for (int code = 0; code <= 5; ++code)
        EXPECT_EQ(streamed(static_cast<tessary::LineSensLevel>(code)), lineSense[code]) << code;
    EXPECT_EQ(streamed(static_cast<tessary::LineSensLevel>(11)), "Low");
    EXPECT_EQ(streamed(static_cast<tessary::LineSensLevel>(12)), "Normal");
}

TEST(DeviceCodesTest, NamesAreReadInAnyLetterCase) {
    const struct {
        const char* text;
        ProtocolType protocol;
        PortType type;
    } rows[] = {
        {"VARNOX", ProtocolType::Varnox, PortType::Unknown},
        {"sirTan", ProtocolType::Sirtan, PortType::Unknown},
        {"Hid", ProtocolType::Unknown, PortType::HID},
        {"rs232", ProtocolType::Unknown, PortType::RS232},
        {"cdc ", ProtocolType::Unknown, PortType::Unknown},
        {"", ProtocolType::Unknown, PortType::Unknown},
        {nullptr, ProtocolType::Unknown, PortType::Unknown},
    };
    for (const auto& row : rows) {
        Device device;
        device.protocol = ProtocolType::Ulvey;
        device.protocolFromStr(row.text);
        EXPECT_EQ(device.protocol, row.protocol) << (row.text ? row.text : "null");
        PortInfo port;
        port.type = PortType::CDC;
        port.typeFromStr(row.text);
        EXPECT_EQ(port.type, row.type) << (row.text ? row.text : "null");
    }
}

TEST(DeviceVarsTest, TextFormsOfClearedDecodedAndRoundedValues) {
    DeviceVars vars;
    EXPECT_EQ(vars.toString(), CLEARED_VARS_TEXT);

    vars.fromJson(JsonObject());
    EXPECT_EQ(vars.lineSense, 0);
    EXPECT_EQ(vars.shutdownTimer, 0);
    EXPECT_NE(vars.toString().find("lineSense=0,icBattery=0,shutdownTimer=0,"), std::string::npos);

    vars.clear();
    vars.vInput = 229.96f;
    vars.cBattery = 99.6f;
    vars.nominalVInput = 230.4f;
    expectStart(vars.toString(), "vInput=230.0,");
    EXPECT_NE(vars.toString().find(",cBattery=100,"), std::string::npos);
    EXPECT_NE(vars.toString().find(",nominalVInput=230,"), std::string::npos);
}

TEST(DeviceVarsTest, JsonHasEveryFieldAndRoundTrips) {
    EXPECT_EQ(compact(DeviceVars().toJson()),
              "{\"cBattery\":0,\"fOutput\":0,\"iOutput\":0,\"icBattery\":0,\"ledBlue\":0,"
              "\"ledGreen\":0,\"ledRed\":0,\"lineSense\":12,\"nightoffTimer\":-1,"
              "\"nominalFOutput\":0,\"nominalPOutput\":0,\"nominalVBattery\":0,"
              "\"nominalVInput\":0,\"nominalVOutput\":0,\"pOutput\":0,\"pPowerLo\":0,"
              "\"random\":0,\"shutdownTimer\":-1,\"tPowerLo\":0,\"temperature\":0,"
              "\"vBattery\":0,\"vInput\":0,\"vOutput\":0,\"wakeupTimer\":-1}");
    const DeviceVars vars = fullDevice().vars;
    DeviceVars decoded;
    decoded.fromJson(parsed(compact(vars.toJson())));
    EXPECT_EQ(decoded, vars);
    EXPECT_EQ(decoded.toString(), vars.toString());

    decoded.fromJson(parsed("{\"icBattery\":2.9,\"tPowerLo\":-3.7,\"random\":\"TRUE\"}"));
    EXPECT_EQ(decoded.icBattery, 2);
    EXPECT_EQ(decoded.tPowerLo, -3);
    EXPECT_TRUE(decoded.random);
}

TEST(DeviceFlagsTest, EveryBitTravelsUnderItsOwnName) {
    for (int i = 0; i < DeviceFlags::COUNT; ++i) {
        DeviceFlags flags;
        flags.setBit(i, true);
        const JsonObject json = flags.toJson();
        ASSERT_EQ(json.size(), DeviceFlags::COUNT);
        EXPECT_EQ(compact(JsonObject{{"b", json.value(DeviceFlags::name(i))}}), "{\"b\":1}");
        DeviceFlags decoded;
        decoded.fromJson(parsed(compact(json)));
        EXPECT_EQ(decoded, flags) << DeviceFlags::name(i);
    }
    for (int i = 0; i < DeviceFailFlags::COUNT; ++i) {
        DeviceFailFlags fail;
        fail.setBit(i, true);
        ASSERT_EQ(fail.toJson().size(), DeviceFailFlags::COUNT);
        DeviceFailFlags decoded;
        decoded.fromJson(parsed(compact(fail.toJson())));
        EXPECT_EQ(decoded, fail) << DeviceFailFlags::name(i);
    }
}

TEST(DeviceFlagsTest, NamedFieldsMatchTheirNamesAndTexts) {
    DeviceFlags flags;
    EXPECT_EQ(flags.toString(), CLEARED_FLAGS_TEXT);
    flags.connected = true;
    flags.noCalibrated = true;
    expectStart(flags.toString(), "connected=1,inShutdown=0,");
    expectEnd(flags.toString(), ",remoteControlActive=0,noCalibrated=1");
    EXPECT_EQ(compact(JsonObject{{"c", flags.toJson().value("connected")}}), "{\"c\":1}");

    DeviceFailFlags fail;
    EXPECT_EQ(fail.toString(), CLEARED_FAIL_TEXT);
    fail.tiristor = true;
    EXPECT_TRUE(fail.toJson().value("tiristor").toBool());
    EXPECT_NE(fail.toString().find(",tiristor=1,"), std::string::npos);
}

TEST(DeviceFlagsTest, ReadsEveryLenientSpellingOfTrue) {
    const struct {
        const char* json;
        bool connected;
    } rows[] = {
        {"{\"connected\":1}", true},     {"{\"connected\":true}", true},
        {"{\"connected\":\"TRUE\"}", true}, {"{\"connected\":\"1\"}", true},
        {"{\"connected\":\"yes\"}", false}, {"{\"connected\":0}", false},
        {"{}", false},
    };
    for (const auto& row : rows) {
        DeviceFlags flags;
        flags.connected = !row.connected;
        flags.fromJson(parsed(row.json));
        EXPECT_EQ(flags.connected, row.connected) << row.json;
    }
}

TEST(PortInfoTest, TextFormsByPortType) {
    const SerialPort::SerialConfig line(9600, 8, 1, 0, 1500);
    const struct {
        PortInfo port;
        bool soft;
        std::string text;
    } rows[] = {
        {PortInfo(), false, "port=Unknown, path=<empty>, name=<empty>, config: {baudrate(bps)=0, "
                            "databits=0, stopbits=0, parity=0, timeout(ms)=0}"},
        {PortInfo(PortType::RS232, "/dev/ttyS0", line, nullptr, 0x665, 0x5161), false,
         "port=RS232, path=/dev/ttyS0, name=ttyS0, config: {baudrate(bps)=9600, databits=8, "
         "stopbits=1, parity=0, timeout(ms)=1500}"},
        {PortInfo(PortType::HID, "/dev/hidraw0", nullptr, 0x665, 0xA), true,
         "port=HID(S), path=/dev/hidraw0, name=hidraw0, vid=0665, pid=000A"},
        {PortInfo(PortType::CDC, "/dev/ttyACM0", "modem", 0x1234, 0), true,
         "port=CDC, path=/dev/ttyACM0, name=modem, " + std::string(CLEARED_CONFIG_TEXT)},
        {PortInfo(PortType::CDC, nullptr, nullptr, 0x12345, 1), false,
         "port=CDC, path=<empty>, name=<empty>, vid=12345, pid=0001, " +
             std::string(CLEARED_CONFIG_TEXT)},
    };
    for (const auto& row : rows) {
        PortInfo port = row.port;
        port.isSoftUsb = row.soft;
        EXPECT_EQ(port.toString(), row.text);
    }
}

TEST(PortInfoTest, SetKeepsWhatItIsNotGiven) {
    PortInfo port(PortType::RS232, "/dev/ttyS1", "serial", 0x10, 0x20);
    port.isSoftUsb = true;
    port.set(PortType::HID, "/dev/hidraw3", nullptr, 0, 0);
    EXPECT_EQ(port, PortInfo(PortType::HID, "/dev/hidraw3", "hidraw3", 0x10, 0x20));
    EXPECT_FALSE(port.isSoftUsb);

    port.set(PortType::CDC, "", "", 7, 0);
    EXPECT_EQ(port, PortInfo(PortType::CDC, "/dev/hidraw3", "hidraw3", 7, 0x20));

    port.isSoftUsb = true;
    port.set(PortType::RS232, nullptr, SerialPort::SerialConfig(2400, 7, 2, 1, 300), "x", 0, 0);
    EXPECT_EQ(port.config, SerialPort::SerialConfig(2400, 7, 2, 1, 300));
    EXPECT_EQ(port.name, "x");
    EXPECT_FALSE(port.isSoftUsb);

    const char* const paths[][2] = {{"/dev/ttyS0", "ttyS0"}, {"COM3", "COM3"}, {"/a/b/", ""},
                                    {"C:\\dev\\usb1", "usb1"}, {"x;y", "y"},   {"", ""}};
    for (const auto& path : paths)
        EXPECT_EQ(port.extractNameFromPath(path[0], PortType::HID), path[1]) << path[0];
    EXPECT_EQ(port.extractNameFromPath(nullptr, PortType::HID), "");
}

TEST(PortInfoTest, JsonFormAndLenientReading) {
    PortInfo port(PortType::RS232, "/dev/ttyS0", SerialPort::SerialConfig(5000000000L, 8, 1, 2, 250),
                  nullptr, 0x665, 0x5161);
    EXPECT_EQ(compact(port.toJson()),
              "{\"config\":{\"baudrate\":5000000000,\"databits\":8,\"parity\":2,\"stopbits\":1,"
              "\"timeout\":250},\"isSoftUsb\":0,\"name\":\"ttyS0\",\"path\":\"/dev/ttyS0\","
              "\"pid\":20833,\"type\":\"RS232\",\"vid\":1637}");
    PortInfo decoded;
    decoded.fromJson(parsed(compact(port.toJson())));
    EXPECT_EQ(decoded, port);

    decoded.fromJson(parsed("{\"type\":\"hid\",\"vid\":\"17\",\"isSoftUsb\":true,\"pid\":3.9}"));
    EXPECT_TRUE(decoded.isSoftUsb);
    decoded.isSoftUsb = false;
    EXPECT_EQ(decoded, PortInfo(PortType::HID, nullptr, nullptr, 17, 3));
}

TEST(DeviceTest, TextFormOfClearedAndFullDevices) {
    EXPECT_EQ(Device().toString(), std::string("\nid=<unknown>, \nfamily=<unknown>, \n"
                                               "model=<unknown>, \nversion=<unknown>, \n"
                                               "protocol=Unknown, \nport: {port=Unknown, "
                                               "path=<empty>, name=<empty>, ") +
                                       CLEARED_CONFIG_TEXT + "}, \nvars: {" + CLEARED_VARS_TEXT +
                                       "}, \nflags: {" + CLEARED_FLAGS_TEXT + "}, \nfail: {" +
                                       CLEARED_FAIL_TEXT + "}, \nidPc=<unknown>\n");
    const Device device = fullDevice();
    const std::string text = device.toString();
    expectStart(text,
              "\nid=ups-1, \nname=Model 12, \nuserName=rack, \nuserProd=lab, \nfamily=3, \n"
              "model=12, \nversion=2.07, \nprotocol=Delmo, \n");
    EXPECT_NE(text.find("\nport: {" + device.port.toStr() + "}, \nvars: {vInput=230.0,"),
              std::string::npos);
    expectEnd(text,
              "}, \nfail: {" + device.fail.toStr() +
                  "}, \nidPc=pc-7, \nlast=2024/05/01 14:03:07.250\n");
}

TEST(DeviceTest, JsonOmitsWhatIsNotKnown) {
    Device device;
    EXPECT_EQ(compact(device.toJson()), "{}");
    device.id = "u";
    const std::string status = compact(DeviceFlags().toJson());
    const std::string failures = compact(DeviceFailFlags().toJson());
    EXPECT_EQ(compact(device.toJson()), "{\"failures\":" + failures +
                                            ",\"family\":-1,\"id\":\"u\",\"idPc\":\"\","
                                            "\"model\":-1,\"status\":" +
                                            status + "}");

    const JsonObject full = fullDevice().toJson();
    EXPECT_EQ(full.keys(), (std::vector<std::string>{
                               "failures", "family", "id", "idPc", "last", "model", "name",
                               "port", "protocol", "status", "userName", "userProd", "vars",
                               "version"}));
    EXPECT_EQ(full.value("last").toStr(), "2024-05-01T14:03:07.250+01:00");
    EXPECT_EQ(full.value("protocol").toStr(), "Delmo");
    EXPECT_EQ(full.value("status").toObject().value("connected").toDouble(), 1.0);
}

TEST(DeviceTest, JsonRoundTripsAndReadsMissingKeysAsZero) {
    const Device device = fullDevice();
    Device decoded;
    decoded.fromJson(parsed(compact(device.toJson())));
    EXPECT_EQ(decoded, device);
    EXPECT_EQ(decoded.toString(), device.toString());

    // A disconnected device sends no variables; they read as from an empty object.
    Device offline = device;
    offline.flags.connected = false;
    decoded.fromJson(parsed(compact(offline.toJson())));
    DeviceVars empty;
    empty.fromJson(JsonObject());
    EXPECT_EQ(decoded.vars, empty);
    EXPECT_EQ(decoded.port, device.port);

    decoded.fromJson(parsed("{\"id\":\"x\",\"protocol\":\"ULVEY\",\"last\":1000}"));
    EXPECT_EQ(decoded.family, 0);
    EXPECT_EQ(decoded.model, 0);
    EXPECT_EQ(decoded.last, 1000);
    EXPECT_EQ(decoded.protocol, ProtocolType::Ulvey);
    EXPECT_EQ(decoded.vars.lineSense, 0);
}

TEST(LogEntryTest, TextAndJsonForms) {
    const LogEntry entry(MAY_FIRST_MS, 12, "Battery low");
    EXPECT_EQ(entry.toString(), "time=2024/05/01 14:03:07.250, event=12, text=Battery low");
    EXPECT_EQ(LogEntry().toString(), "time=<unknown>, event=0, text=");
    EXPECT_EQ(compact(entry.toJson()),
              "{\"event\":12,\"text\":\"Battery low\",\"time\":\"2024-05-01T14:03:07.250+01:00\"}");
    LogEntry decoded;
    decoded.fromJson(parsed(compact(entry.toJson())));
    EXPECT_EQ(decoded, entry);
    decoded.fromJson(parsed("{\"time\":5}"));
    EXPECT_EQ(decoded, LogEntry(5, 0, ""));
}

}  // namespace
