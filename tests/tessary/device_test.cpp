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

// The record as the receiver of its JSON text reads it.
template <typename Record>
Record reread(const Record& record) {
    Record decoded;
    decoded.fromJson(parsed(compact(record.toJson())));
    return decoded;
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

// A connected device on a soft USB HID port with every block filled in; "last"
// is local time.
const char* const FULL_DEVICE_JSON = R"({"id": "ups-1", "family": 3, "model": 12,
    "version": "2.07", "idPc": "pc-7", "protocol": "Delmo", "name": "Model 12",
    "userName": "rack", "userProd": "lab", "last": "2024-05-01T14:03:07.250",
    "port": {"type": "HID", "path": "/dev/hidraw0", "name": "hidraw0", "vid": 1637,
             "pid": 20842, "isSoftUsb": 1},
    "vars": {"vInput": 229.96, "lineSense": 1, "random": 1, "pPowerLo": -7},
    "status": {"connected": 1, "noCalibrated": 1}, "failures": {"tiristor": 1}})";

Device fullDevice() {
    Device device;
    device.fromJson(parsed(FULL_DEVICE_JSON));
    return device;
}

TEST(DeviceCodesTest, NamesBothWaysAndNumbersOutsideTheTables) {
    EXPECT_EQ(streamed(ProtocolType::Ulvey) + streamed(static_cast<ProtocolType>(5)), "Ulvey5");
    EXPECT_EQ(streamed(PortType::RS232) + streamed(static_cast<PortType>(-1)), "RS232-1");
    EXPECT_EQ(streamed(ChargeBatteryLevel::High) + streamed(static_cast<ChargeBatteryLevel>(2)),
              "High2");
    std::string lineSense, protocols, types;
    for (int code : {0, 1, 2, 3, 4, 5, 11, 12})
        lineSense += streamed(static_cast<LineSensLevel>(code)) + "|";
    EXPECT_EQ(lineSense, "Very Low|Low|Normal|High|Very High|5|Low|Normal|");

    // Names are read in any letter case; anything else reads Unknown.
    for (const char* text :
         {"VARNOX", "sirTan", "Hid", "rs232", "cdc ", "", (const char*)nullptr}) {
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

TEST(DeviceVarsTest, TextJsonAndLenientReading) {
    DeviceVars vars;
    EXPECT_EQ(vars.toString(), CLEARED_VARS_TEXT);
    EXPECT_EQ(vars.toJson().size(), 24);
    EXPECT_EQ(reread(vars), vars);

    // Missing keys read as 0, not as the cleared values; ints are truncated.
    vars.fromJson(
        parsed("{\"vInput\":229.96,\"cBattery\":99.6,\"icBattery\":2.9,"
               "\"nominalVInput\":230.4,\"random\":\"TRUE\",\"tPowerLo\":-3.7}"));
    EXPECT_EQ(vars.toString(),
              "vInput=230.0,vOutput=0.0,iOutput=0.0,pOutput=0.0,fOutput=0.0,vBattery=0.0,"
              "cBattery=100,temperature=0.0,lineSense=0,icBattery=2,shutdownTimer=0,"
              "wakeupTimer=0,nightoffTimer=0,nominalVInput=230,nominalVOutput=0,"
              "nominalPOutput=0,nominalFOutput=0,nominalVBattery=0,ledRed=0,ledGreen=0,"
              "ledBlue=0,random=1,tPowerLo=-3,pPowerLo=0");
}

TEST(DeviceFlagsTest, TextFormsAndLenientReading) {
    DeviceFlags flags;
    DeviceFailFlags fail;
    EXPECT_EQ(flags.toString(), CLEARED_FLAGS_TEXT);
    EXPECT_EQ(fail.toString(), CLEARED_FAIL_TEXT);
    EXPECT_EQ(flags.toJson().size(), 25);
    EXPECT_EQ(fail.toJson().size(), 12);

    flags.fromJson(parsed(R"({"connected": "TRUE", "inShutdown": "1", "opStartup": true,
        "opBattery": "yes", "opStandBy": null, "noCalibrated": 1})"));
    EXPECT_THAT(flags.toString(), StartsWith("connected=1,inShutdown=1,opStartup=1,opBattery=0,"
                                             "opStandBy=0,opCheckup=0,"));
    EXPECT_THAT(flags.toString(), EndsWith(",remoteControlActive=0,noCalibrated=1"));
    EXPECT_EQ(compact(JsonObject{{"c", flags.toJson().value("connected")}}), "{\"c\":1}");
    fail.fromJson(parsed(R"({"tiristor": "true"})"));
    EXPECT_THAT(fail.toString(), HasSubstr(",fan=0,tiristor=1,endBattery=0,"));
}

TEST(PortInfoTest, SetKeepsWhatItIsNotGiven) {
    PortInfo port(PortType::RS232, "/dev/ttyS1", "serial", 0x10, 0x20);
    port.isSoftUsb = true;
    port.set(PortType::HID, "/dev/hidraw3", nullptr, 0, 0);
    EXPECT_EQ(port, PortInfo(PortType::HID, "/dev/hidraw3", "hidraw3", 0x10, 0x20));
    port.set(PortType::CDC, "", "", 0x12345, 0);
    port.isSoftUsb = true;  // marks HID ports only
    EXPECT_EQ(port.toString(), "port=CDC, path=/dev/hidraw3, name=hidraw3, vid=12345, pid=0020, " +
                                   CLEARED_CONFIG_TEXT);
    port.set(PortType::RS232, nullptr, SerialPort::SerialConfig(2400, 7, 2, 1, 300), "x", 0, 0);
    EXPECT_EQ(port.toString(),
              "port=RS232, path=/dev/hidraw3, name=x, config: {baudrate(bps)="
              "2400, databits=7, stopbits=2, parity=1, timeout(ms)=300}");
    EXPECT_FALSE(port.isSoftUsb);
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
    EXPECT_EQ(reread(port), port);
    PortInfo decoded;
    // A pid of 0 hides the vid.
    decoded.fromJson(parsed("{\"type\":\"cdc\",\"vid\":\"17\",\"isSoftUsb\":true,\"pid\":0.9}"));
    EXPECT_EQ(decoded.toString(), "port=CDC, path=<empty>, name=<empty>, " + CLEARED_CONFIG_TEXT);
    EXPECT_EQ(decoded.vid, 17);
}

TEST(DeviceTest, TextFormOfClearedAndFullDevices) {
    EXPECT_EQ(Device().toString(),
              "\nid=<unknown>, \nfamily=<unknown>, \nmodel=<unknown>, \nversion=<unknown>, \n"
              "protocol=Unknown, \nport: {port=Unknown, path=<empty>, name=<empty>, " +
                  CLEARED_CONFIG_TEXT + "}, \nvars: {" + CLEARED_VARS_TEXT + "}, \nflags: {" +
                  CLEARED_FLAGS_TEXT + "}, \nfail: {" + CLEARED_FAIL_TEXT +
                  "}, \nidPc=<unknown>\n");
    const std::string text = fullDevice().toString();
    EXPECT_THAT(
        text,
        StartsWith("\nid=ups-1, \nname=Model 12, \nuserName=rack, \nuserProd=lab, \nfamily=3, \n"
                   "model=12, \nversion=2.07, \nprotocol=Delmo, \nport: {port=HID(S), "
                   "path=/dev/hidraw0, name=hidraw0, vid=0665, pid=516A}, \nvars: {vInput=230.0,"));
    EXPECT_THAT(text, EndsWith(",hiPOutput=0,abnormalVBattery=0}, \nidPc=pc-7, \n"
                               "last=2024/05/01 14:03:07.250\n"));
}

TEST(DeviceTest, JsonOmitsWhatIsNotKnownAndRoundTrips) {
    Device device;
    EXPECT_EQ(compact(device.toJson()), "{}");
    device.id = "u";
    EXPECT_EQ(compact(device.toJson()),
              "{\"failures\":" + compact(DeviceFailFlags().toJson()) +
                  ",\"family\":-1,\"id\":\"u\",\"idPc\":\"\",\"model\":-1,\"status\":" +
                  compact(DeviceFlags().toJson()) + "}");
    const Device full = fullDevice();
    const JsonObject json = full.toJson();
    EXPECT_EQ(json.keys(), (std::vector<std::string>{"failures", "family", "id", "idPc", "last",
                                                     "model", "name", "port", "protocol", "status",
                                                     "userName", "userProd", "vars", "version"}));
    EXPECT_EQ(json.value("last").toStr(), "2024-05-01T14:03:07.250+01:00");
    EXPECT_EQ(reread(full), full);

    // A disconnected device sends no variables; they read as from an empty object.
    Device offline = full;
    offline.flags.connected = false;
    const Device decoded = reread(offline);
    offline.vars.fromJson(JsonObject());
    EXPECT_EQ(decoded, offline);

    device.fromJson(parsed("{\"id\":\"x\",\"protocol\":\"ULVEY\",\"last\":1000}"));
    EXPECT_THAT(device.toString(), StartsWith("\nid=x, \nfamily=0, \nmodel=0, \n"
                                              "version=<unknown>, \nprotocol=Ulvey, \n"));
    EXPECT_EQ(device.last, 1000);
}

TEST(LogEntryTest, TextAndJsonForms) {
    const LogEntry entry(MAY_FIRST_MS, 12, "Battery low");
    EXPECT_EQ(entry.toString(), "time=2024/05/01 14:03:07.250, event=12, text=Battery low");
    EXPECT_EQ(LogEntry().toString(), "time=<unknown>, event=0, text=");
    EXPECT_EQ(compact(entry.toJson()),
              "{\"event\":12,\"text\":\"Battery low\",\"time\":\"2024-05-01T14:03:07.250+01:00\"}");
    EXPECT_EQ(reread(entry), entry);
    LogEntry decoded;
    decoded.fromJson(parsed("{\"time\":5}"));
    EXPECT_EQ(decoded, LogEntry(5, 0, ""));
}

}  // namespace
