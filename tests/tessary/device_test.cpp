#include <cstdlib>
#include <ctime>
#include <sstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "nimb/json.h"
#include "tessary/device.h"
#include "tests/support.h"

using nimb::JsonDocument;
using nimb::JsonObject;
using nimb::SerialPort;
using namespace tessary;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::StartsWith;

using support::compact;
using support::parsed;

namespace {

// One hour east of UTC all year round, fixed before Qt reads the local zone.
const bool ZONE_FIXED = (setenv("TZ", "CET-1", 1), tzset(), true);

// 2024-05-01 13:03:07.250 UTC.
const long long MAY_FIRST_MS = 1714568587250LL;

template <typename T>
std::string streamed(T value) {
    std::ostringstream out;
    out << value;
    return out.str();
}

const std::string CLEARED_VARS_TEXT =
    "vInput=0.0,vOutput=0.0,iOutput=0.0,pOutput=0.0,fOutput=0.0,vBattery=0.0,cBattery=0,"
    "temperature=0.0,lineSense=12,icBattery=0,shutdownTimer=-1,wakeupTimer=-1,nightoffTimer=-1,"
    "nominalVInput=0,nominalVOutput=0,nominalPOutput=0,nominalFOutput=0,nominalVBattery=0,"
    "ledRed=0,ledGreen=0,ledBlue=0,random=0,tPowerLo=0,pPowerLo=0";
const std::string CLEARED_FLAGS_TEXT =
    "connected=0,inShutdown=0,opStartup=0,opBattery=0,opStandBy=0,opCheckup=0,opWarning=0,"
    "noVInput=0,loVInput=0,hiVInput=0,loFInput=0,hiFInput=0,noSyncInput=0,syncInput=0,"
    "noiseInput=0,hiPOutput=0,loBattery=0,maxBattery=0,noBattery=0,oldBattery=0,moreBattery=0,"
    "lessBattery=0,shutdownTimerActive=0,remoteControlActive=0,noCalibrated=0";
const std::string CLEARED_FAIL_TEXT =
    "overtemp=0,internal=0,overload=0,shortcircuit=0,inverter=0,fan=0,tiristor=0,endBattery=0,"
    "loVInput=0,abnormalVOutput=0,hiPOutput=0,abnormalVBattery=0";
const std::string CLEARED_CONFIG_TEXT =
    "config: {baudrate(bps)=0, databits=0, stopbits=0, parity=0, timeout(ms)=0}";

// A connected device on a soft USB HID port with every block filled in.
Device fullDevice() {
    Device device;
    device.fromJson(parsed("{\"id\":\"ups-1\",\"family\":3,\"model\":12,\"version\":\"2.07\","
                           "\"idPc\":\"pc-7\",\"protocol\":\"Delmo\",\"name\":\"Model 12\","
                           "\"userName\":\"rack\",\"userProd\":\"lab\"}"));
    device.last = MAY_FIRST_MS;
    device.port.set(PortType::HID, "/dev/hidraw0", nullptr, 0x665, 0x5161);
    device.port.isSoftUsb = true;
    device.vars.vInput = 229.96f;
    device.vars.lineSense = 1;
    device.vars.random = true;
    device.vars.pPowerLo = -7;
    device.flags.connected = device.flags.noCalibrated = device.fail.tiristor = true;
    return device;
}

TEST(DeviceCodesTest, NamesAndNumbersOutsideTheTables) {
    EXPECT_EQ(streamed(ProtocolType::Ulvey) + streamed(static_cast<ProtocolType>(5)), "Ulvey5");
    EXPECT_EQ(streamed(PortType::RS232) + streamed(static_cast<PortType>(-1)), "RS232-1");
    EXPECT_EQ(streamed(ChargeBatteryLevel::High) + streamed(static_cast<ChargeBatteryLevel>(2)),
              "High2");
    std::string lineSense;
    for (int code : {0, 1, 2, 3, 4, 5, 11, 12})
        lineSense += streamed(static_cast<LineSensLevel>(code)) + "|";
    EXPECT_EQ(lineSense, "Very Low|Low|Normal|High|Very High|5|Low|Normal|");
}

TEST(DeviceCodesTest, NamesAreReadInAnyLetterCase) {
    std::string protocols, types;
    const char* const texts[] = {"VARNOX", "sirTan", "Hid", "rs232", "cdc ", "", nullptr};
    for (const char* text : texts) {
        Device device;
        device.protocol = ProtocolType::Ulvey;
        device.protocolFromStr(text);
        PortInfo port(PortType::CDC, nullptr, nullptr, 0, 0);
        port.typeFromStr(text);
        protocols += device.protocolAsStr() + "|";
        types += port.typeAsStr() + "|";
    }
    EXPECT_EQ(protocols, "Varnox|Sirtan|Unknown|Unknown|Unknown|Unknown|Unknown|");
    EXPECT_EQ(types, "Unknown|Unknown|HID|RS232|Unknown|Unknown|Unknown|");
}

TEST(DeviceVarsTest, TextAndJsonForms) {
    DeviceVars vars;
    EXPECT_EQ(vars.toString(), CLEARED_VARS_TEXT);
    EXPECT_EQ(vars.toJson().size(), 24);
    EXPECT_EQ(compact(JsonObject{{"l", vars.toJson().value("lineSense")}}), "{\"l\":12}");

    // Missing keys read as 0, not as the cleared values.
    vars.fromJson(parsed("{\"icBattery\":2.9,\"tPowerLo\":-3.7,\"random\":\"TRUE\"}"));
    EXPECT_THAT(vars.toString(), HasSubstr(",lineSense=0,icBattery=2,shutdownTimer=0,"));
    EXPECT_THAT(vars.toString(), EndsWith(",random=1,tPowerLo=-3,pPowerLo=0"));

    vars = fullDevice().vars;
    vars.cBattery = 99.6f;
    vars.nominalVInput = 230.4f;
    EXPECT_THAT(vars.toString(), StartsWith("vInput=230.0,"));
    EXPECT_THAT(vars.toString(), HasSubstr(",cBattery=100,temperature=0.0,"));
    EXPECT_THAT(vars.toString(), HasSubstr(",nominalVInput=230,"));
    DeviceVars decoded;
    decoded.fromJson(parsed(compact(vars.toJson())));
    EXPECT_EQ(decoded, vars);
}

TEST(DeviceFlagsTest, EveryBitTravelsAloneUnderItsOwnName) {
    for (int i = 0; i < DeviceFlags::COUNT; ++i) {
        DeviceFlags flags, decoded;
        flags.setBit(i, true);
        ASSERT_EQ(flags.toJson().size(), DeviceFlags::COUNT);
        EXPECT_EQ(flags.toJson().value(DeviceFlags::name(i)).toDouble(), 1.0);
        decoded.fromJson(parsed(compact(flags.toJson())));
        EXPECT_EQ(decoded, flags) << DeviceFlags::name(i);
    }
    for (int i = 0; i < DeviceFailFlags::COUNT; ++i) {
        DeviceFailFlags fail, decoded;
        fail.setBit(i, true);
        ASSERT_EQ(fail.toJson().size(), DeviceFailFlags::COUNT);
        decoded.fromJson(parsed(compact(fail.toJson())));
        EXPECT_EQ(decoded, fail) << DeviceFailFlags::name(i);
    }
}

TEST(DeviceFlagsTest, TextFormsAndLenientReading) {
    DeviceFlags flags;
    DeviceFailFlags fail;
    EXPECT_EQ(flags.toString(), CLEARED_FLAGS_TEXT);
    EXPECT_EQ(fail.toString(), CLEARED_FAIL_TEXT);
    flags.connected = flags.noCalibrated = fail.tiristor = true;
    EXPECT_THAT(flags.toString(), StartsWith("connected=1,inShutdown=0,"));
    EXPECT_THAT(flags.toString(), EndsWith(",remoteControlActive=0,noCalibrated=1"));
    EXPECT_THAT(fail.toString(), HasSubstr(",fan=0,tiristor=1,endBattery=0,"));
    EXPECT_EQ(compact(JsonObject{{"c", flags.toJson().value("connected")}}), "{\"c\":1}");

    const std::pair<const char*, bool> rows[] = {
        {"1", true},      {"true", true}, {"\"TRUE\"", true}, {"\"1\"", true},
        {"\"yes\"", false}, {"0", false},   {"null", false},
    };
    for (const auto& row : rows) {
        flags.fromJson(parsed("{\"connected\":" + std::string(row.first) + "}"));
        EXPECT_EQ(flags.connected, row.second) << row.first;
    }
}

TEST(PortInfoTest, TextFormsByPortType) {
    const SerialPort::SerialConfig line(9600, 8, 1, 0, 1500);
    const std::pair<PortInfo, std::string> rows[] = {
        {PortInfo(), "port=Unknown, path=<empty>, name=<empty>, " + CLEARED_CONFIG_TEXT},
        {PortInfo(PortType::RS232, "/dev/ttyS0", line, nullptr, 0x665, 0x5161),
         "port=RS232, path=/dev/ttyS0, name=ttyS0, config: {baudrate(bps)=9600, databits=8, "
         "stopbits=1, parity=0, timeout(ms)=1500}"},
        {PortInfo(PortType::HID, "/dev/hidraw0", nullptr, 0x665, 0xA),
         "port=HID(S), path=/dev/hidraw0, name=hidraw0, vid=0665, pid=000A"},
        {PortInfo(PortType::CDC, "/dev/ttyACM0", "modem", 0x1234, 0),
         "port=CDC, path=/dev/ttyACM0, name=modem, " + CLEARED_CONFIG_TEXT},
        {PortInfo(PortType::Unknown, nullptr, nullptr, 0x12345, 1),
         "port=Unknown, path=<empty>, name=<empty>, vid=12345, pid=0001, " + CLEARED_CONFIG_TEXT},
    };
    for (auto row : rows) {
        row.first.isSoftUsb = true;  // marks HID ports only
        EXPECT_EQ(row.first.toString(), row.second);
    }
}

TEST(PortInfoTest, SetKeepsWhatItIsNotGiven) {
    PortInfo port(PortType::RS232, "/dev/ttyS1", "serial", 0x10, 0x20);
    port.isSoftUsb = true;
    port.set(PortType::HID, "/dev/hidraw3", nullptr, 0, 0);
    EXPECT_EQ(port, PortInfo(PortType::HID, "/dev/hidraw3", "hidraw3", 0x10, 0x20));
    port.set(PortType::CDC, "", "", 7, 0);
    EXPECT_EQ(port, PortInfo(PortType::CDC, "/dev/hidraw3", "hidraw3", 7, 0x20));
    port.isSoftUsb = true;
    port.set(PortType::RS232, nullptr, SerialPort::SerialConfig(2400, 7, 2, 1, 300), "x", 0, 0);
    EXPECT_EQ(port.toString(), "port=RS232, path=/dev/hidraw3, name=x, config: {baudrate(bps)="
                               "2400, databits=7, stopbits=2, parity=1, timeout(ms)=300}");
    EXPECT_FALSE(port.isSoftUsb);
    for (const char* path : {"COM3", "C:\\dev\\COM3", "x;COM3", "/dev/COM3"})
        EXPECT_EQ(port.extractNameFromPath(path, PortType::HID), "COM3") << path;
    EXPECT_EQ(port.extractNameFromPath("/a/b/", PortType::HID), "");
    EXPECT_EQ(port.extractNameFromPath(nullptr, PortType::HID), "");
}

TEST(PortInfoTest, JsonFormAndLenientReading) {
    const PortInfo port(PortType::RS232, "/dev/ttyS0",
                        SerialPort::SerialConfig(5000000000L, 8, 1, 2, 250), nullptr, 0x665, 3);
    EXPECT_EQ(compact(port.toJson()),
              "{\"config\":{\"baudrate\":5000000000,\"databits\":8,\"parity\":2,\"stopbits\":1,"
              "\"timeout\":250},\"isSoftUsb\":0,\"name\":\"ttyS0\",\"path\":\"/dev/ttyS0\","
              "\"pid\":3,\"type\":\"RS232\",\"vid\":1637}");
    PortInfo decoded;
    decoded.fromJson(parsed(compact(port.toJson())));
    EXPECT_EQ(decoded, port);
    decoded.fromJson(parsed("{\"type\":\"hid\",\"vid\":\"17\",\"isSoftUsb\":true,\"pid\":3.9}"));
    EXPECT_EQ(decoded.toString(), "port=HID(S), path=<empty>, name=<empty>, vid=0011, pid=0003");
}

TEST(DeviceTest, TextFormOfClearedAndFullDevices) {
    EXPECT_EQ(Device().toString(),
              "\nid=<unknown>, \nfamily=<unknown>, \nmodel=<unknown>, \nversion=<unknown>, \n"
              "protocol=Unknown, \nport: {port=Unknown, path=<empty>, name=<empty>, " +
                  CLEARED_CONFIG_TEXT + "}, \nvars: {" + CLEARED_VARS_TEXT + "}, \nflags: {" +
                  CLEARED_FLAGS_TEXT + "}, \nfail: {" + CLEARED_FAIL_TEXT + "}, \nidPc=<unknown>\n");
    const Device device = fullDevice();
    const std::string text = device.toString();
    EXPECT_THAT(text, StartsWith(
              "\nid=ups-1, \nname=Model 12, \nuserName=rack, \nuserProd=lab, \nfamily=3, \n"
              "model=12, \nversion=2.07, \nprotocol=Delmo, \nport: {port=HID(S), "
              "path=/dev/hidraw0, name=hidraw0, vid=0665, pid=5161}, \nvars: {vInput=230.0,"));
    EXPECT_THAT(text, EndsWith(",hiPOutput=0,abnormalVBattery=0}, \nidPc=pc-7, \n"
                               "last=2024/05/01 14:03:07.250\n"));
}

TEST(DeviceTest, JsonOmitsWhatIsNotKnown) {
    Device device;
    EXPECT_EQ(compact(device.toJson()), "{}");
    device.id = "u";
    EXPECT_EQ(compact(device.toJson()),
              "{\"failures\":" + compact(DeviceFailFlags().toJson()) +
                  ",\"family\":-1,\"id\":\"u\",\"idPc\":\"\",\"model\":-1,\"status\":" +
                  compact(DeviceFlags().toJson()) + "}");
    const JsonObject full = fullDevice().toJson();
    EXPECT_EQ(full.keys(), (std::vector<std::string>{"failures", "family", "id", "idPc", "last",
                                                     "model", "name", "port", "protocol", "status",
                                                     "userName", "userProd", "vars", "version"}));
    EXPECT_EQ(full.value("last").toStr(), "2024-05-01T14:03:07.250+01:00");
    EXPECT_EQ(full.value("protocol").toStr() + full.value("port").toObject().value("type").toStr(),
              "DelmoHID");
}

TEST(DeviceTest, JsonRoundTripsAndReadsMissingKeysAsZero) {
    const Device device = fullDevice();
    Device decoded;
    decoded.fromJson(parsed(compact(device.toJson())));
    EXPECT_EQ(decoded, device);

    // A disconnected device sends no variables; they read as from an empty object.
    Device offline = device;
    offline.flags.connected = false;
    decoded.fromJson(parsed(compact(offline.toJson())));
    DeviceVars empty;
    empty.fromJson(JsonObject());
    offline.vars = empty;
    EXPECT_EQ(decoded, offline);

    decoded.fromJson(parsed("{\"id\":\"x\",\"protocol\":\"ULVEY\",\"last\":1000}"));
    EXPECT_THAT(decoded.toString(), StartsWith("\nid=x, \nfamily=0, \nmodel=0, \n"
                                               "version=<unknown>, \nprotocol=Ulvey, \n"));
    EXPECT_EQ(decoded.last, 1000);
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
