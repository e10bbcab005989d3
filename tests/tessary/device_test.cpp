#include <cstdlib>
#include <ctime>
#include <sstream>
#include <string>

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

template <typename Record>
Record fromText(const std::string& text) {
    Record record;
    record.fromJson(parsed(text));
    return record;
}

// The record as the receiver of its JSON text reads it.
template <typename Record>
Record reread(const Record& record) {
    return fromText<Record>(compact(record.toJson()));
}

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
// is local time. Flags are read leniently, like the variables.
const char* const FULL_DEVICE_JSON = R"({"id": "ups-1", "family": 3, "model": 12,
    "version": "2.07", "idPc": "pc-7", "protocol": "Delmo", "name": "Model 12",
    "userName": "rack", "userProd": "lab", "last": "2024-05-01T14:03:07.250",
    "port": {"type": "HID", "path": "/dev/hidraw0", "name": "hidraw0", "vid": 1637,
             "pid": 20842, "isSoftUsb": 1},
    "vars": {"vInput": 229.96, "lineSense": 1, "random": 1, "pPowerLo": -7},
    "status": {"connected": "TRUE", "noCalibrated": 1}, "failures": {"tiristor": 1}})";

TEST(DeviceCodesTest, NamesBothWaysAndNumbersOutsideTheTables) {
    std::ostringstream streamed;
    streamed << ProtocolType::Ulvey << static_cast<ProtocolType>(5) << static_cast<PortType>(-1);
    for (int code : {0, 1, 2, 3, 4, 5, 11, 12})
        streamed << "|" << static_cast<LineSensLevel>(code);
    EXPECT_EQ(streamed.str(), "Ulvey5-1|Very Low|Low|Normal|High|Very High|5|Low|Normal");
    std::string protocols;

    // Names are read in any letter case; anything else reads Unknown.
    // The port types are read the same way (see the port's JSON below).
    for (const char* text : {"VARNOX", "sirTan", "Hid", "ulvey ", "", (const char*)nullptr}) {
        Device device;
        device.protocol = ProtocolType::Ulvey;
        device.protocolFromStr(text);
        protocols += device.protocolAsStr() + "|";
    }
    EXPECT_EQ(protocols, "Varnox|Sirtan|Unknown|Unknown|Unknown|Unknown|");
}

TEST(DeviceVarsTest, TextJsonAndLenientReading) {
    // The full text is below; 12 reads "Normal" and -1 is a timer not counting.
    DeviceVars vars;
    EXPECT_THAT(vars.toString(), HasSubstr(",temperature=0.0,lineSense=12,icBattery=0,"
                                           "shutdownTimer=-1,wakeupTimer=-1,nightoffTimer=-1,"));

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

TEST(PortInfoTest, JsonFormAndLenientReading) {
    const PortInfo port(PortType::RS232, "/dev/ttyS0",
                        SerialPort::SerialConfig(5000000000L, 8, 1, 2, 250), nullptr, 0x665, 3);
    EXPECT_EQ(compact(port.toJson()),
              "{\"config\":{\"baudrate\":5000000000,\"databits\":8,\"parity\":2,\"stopbits\":1,"
              "\"timeout\":250},\"isSoftUsb\":0,\"name\":\"ttyS0\",\"path\":\"/dev/ttyS0\","
              "\"pid\":3,\"type\":\"RS232\",\"vid\":1637}");
    EXPECT_EQ(reread(port), port);
    // A serial port shows its line and never the USB ids.
    EXPECT_EQ(port.toString(),
              "port=RS232, path=/dev/ttyS0, name=ttyS0, config: {baudrate(bps)=5000000000, "
              "databits=8, stopbits=1, parity=2, timeout(ms)=250}");
    // A pid of 0 hides the vid; the soft USB mark is for HID ports only.
    EXPECT_EQ(fromText<PortInfo>("{\"type\":\"cdc\",\"vid\":\"17\",\"isSoftUsb\":true,\"pid\":0.9}")
                  .toString(),
              "port=CDC, path=<empty>, name=<empty>, " + CLEARED_CONFIG_TEXT);
}

TEST(DeviceTest, TextAndJsonFormsOfClearedAndFullDevices) {
    EXPECT_EQ(Device().toString(),
              "\nid=<unknown>, \nfamily=<unknown>, \nmodel=<unknown>, \nversion=<unknown>, \n"
              "protocol=Unknown, \nport: {port=Unknown, path=<empty>, name=<empty>, " +
                  CLEARED_CONFIG_TEXT + "}, \nvars: {" + DeviceVars().toString() + "}, \nflags: {" +
                  CLEARED_FLAGS_TEXT + "}, \nfail: {" + CLEARED_FAIL_TEXT +
                  "}, \nidPc=<unknown>\n");
    const Device full = fromText<Device>(FULL_DEVICE_JSON);
    const std::string text = full.toString();
    EXPECT_THAT(
        text,
        StartsWith("\nid=ups-1, \nname=Model 12, \nuserName=rack, \nuserProd=lab, \nfamily=3, \n"
                   "model=12, \nversion=2.07, \nprotocol=Delmo, \nport: {port=HID(S), "
                   "path=/dev/hidraw0, name=hidraw0, vid=0665, pid=516A}, \nvars: {vInput=230.0,"));
    EXPECT_THAT(text, HasSubstr("}, \nflags: {connected=1,inShutdown=0,"));
    EXPECT_THAT(text, HasSubstr(",remoteControlActive=0,noCalibrated=1}, \nfail: {overtemp=0,"));
    EXPECT_THAT(text, EndsWith(",fan=0,tiristor=1,endBattery=0,loVInput=0,abnormalVOutput=0,"
                               "hiPOutput=0,abnormalVBattery=0}, \nidPc=pc-7, \n"
                               "last=2024/05/01 14:03:07.250\n"));

    // JSON omits what is not known.
    Device device;
    EXPECT_EQ(compact(device.toJson()), "{}");
    device.id = "u";
    EXPECT_EQ(compact(device.toJson()),
              "{\"failures\":" + compact(DeviceFailFlags().toJson()) +
                  ",\"family\":-1,\"id\":\"u\",\"idPc\":\"\",\"model\":-1,\"status\":" +
                  compact(DeviceFlags().toJson()) + "}");
    EXPECT_EQ(reread(full), full);
    EXPECT_EQ(compact(JsonObject{{"c", full.flags.toJson().value("connected")}}), "{\"c\":1}");

    // A disconnected device sends no variables.
    Device offline = full;
    offline.flags.connected = false;
    EXPECT_FALSE(offline.toJson().contains("vars"));

    // Missing numbers read as 0, not as the cleared -1.
    EXPECT_THAT(fromText<Device>("{\"id\":\"x\"}").toString(),
                StartsWith("\nid=x, \nfamily=0, \nmodel=0, \nversion=<unknown>"));
}

TEST(LogEntryTest, TextAndJsonForms) {
    const LogEntry entry(MAY_FIRST_MS, 12, "Battery low");
    EXPECT_EQ(entry.toString(), "time=2024/05/01 14:03:07.250, event=12, text=Battery low");
    EXPECT_EQ(LogEntry().toString(), "time=<unknown>, event=0, text=");
    EXPECT_EQ(compact(entry.toJson()),
              "{\"event\":12,\"text\":\"Battery low\",\"time\":\"2024-05-01T14:03:07.250+01:00\"}");
    EXPECT_EQ(reread(entry), entry);
}

}  // namespace
