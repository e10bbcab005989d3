// The record of one monitored UPS: identity, protocol, port, measured
// variables, status and failure flags; and the entries of a device's log.
//
// Every record is a plain value derived from nimb::Object: default
// construction equals clear(), copies are deep, toString() is the text form
// for logs and toJson()/fromJson() the form that crosses the plug-in boundary.
// fromJson() clears first and then reads every key, so a missing key reads as
// 0, false or an empty text, not as the cleared value. Booleans travel in
// JSON as the numbers 0 and 1. Nothing here throws on bad data.
#pragma once

#include <ostream>
#include <string>

#include "nimb/json.h"
#include "nimb/object.h"
#include "nimb/serialport.h"

namespace tessary {

// The communication protocol of a device; travels as its name.
enum class ProtocolType : int {
    Unknown = 0,
    Varnox = 1,
    Delmo = 2,
    Sirtan = 3,
    Ulvey = 4,
};

// The kind of port a device hangs on; travels as its name.
enum class PortType : int {
    Unknown = 0,
    RS232 = 1,
    HID = 2,
    CDC = 3,
};

// Codes of DeviceVars::icBattery.
enum class ChargeBatteryLevel : int {
    Low = 0,
    High = 1,
};

// Codes of DeviceVars::lineSense. 11 and 12 are the alternative codes of Low
// and Normal and read the same.
enum class LineSensLevel : int {
    VeryLow = 0,
    Low = 1,
    Normal = 2,
    High = 3,
    VeryHigh = 4,
    AltLow = 11,
    AltNormal = 12,
};

// Each writes the name of its table ("Varnox", "RS232", "High", "Very Low");
// a value outside the table is written as its decimal number.
std::ostream& operator<<(std::ostream& out, ProtocolType protocol);
std::ostream& operator<<(std::ostream& out, PortType type);
std::ostream& operator<<(std::ostream& out, ChargeBatteryLevel level);
std::ostream& operator<<(std::ostream& out, LineSensLevel level);

// Measured and nominal quantities, LED states and timers of a device. The
// units are whatever the monitor server reports.
class DeviceVars : public nimb::Object {
public:
    float vInput;
    float vOutput;
    float iOutput;
    float pOutput;
    float fOutput;
    float vBattery;
    float cBattery;
    float temperature;
    int icBattery;      // a ChargeBatteryLevel code
    int lineSense;      // a LineSensLevel code; cleared to 12 (Normal)
    int shutdownTimer;  // -1 when not running
    int wakeupTimer;    // -1 when not running
    int nightoffTimer;  // -1 when not running
    float nominalVInput;
    float nominalVOutput;
    float nominalPOutput;
    float nominalFOutput;
    float nominalVBattery;
    int ledRed;
    int ledGreen;
    int ledBlue;
    bool random;
    int tPowerLo;
    int pPowerLo;

    DeviceVars();
    DeviceVars(const DeviceVars& other);
    ~DeviceVars() override;

    // key=value items joined by "," in field order except that lineSense
    // comes before icBattery: "vInput=230.0,...,cBattery=100,...,lineSense=12,
    // icBattery=0,...". Measured values and temperature have one decimal,
    // cBattery and the nominal values none; ints and random are decimal.
    std::string toString() const override;

    virtual DeviceVars& operator=(const DeviceVars& other);
    // Every field 0 or false, except lineSense 12 and the three timers -1.
    virtual void clear();
    // Clears, then reads every key named after its field; a missing key gives
    // 0 or false (so lineSense and the timers read 0, not their cleared
    // values). Ints are truncated toward zero.
    virtual void fromJson(const nimb::JsonObject& json);
    // One member per field, named after it, in the order of toString().
    virtual nimb::JsonObject toJson() const;

    bool operator==(const DeviceVars& other) const;
    bool operator!=(const DeviceVars& other) const { return !(*this == other); }
};

// The 25 status bits of a device, packed in declared order (bit 0 of the
// first byte is connected).
class DeviceFlags : public nimb::Object {
public:
    bool connected : 1;
    bool inShutdown : 1;
    bool opStartup : 1;
    bool opBattery : 1;
    bool opStandBy : 1;
    bool opCheckup : 1;
    bool opWarning : 1;
    bool noVInput : 1;
    bool loVInput : 1;
    bool hiVInput : 1;
    bool loFInput : 1;
    bool hiFInput : 1;
    bool noSyncInput : 1;
    bool syncInput : 1;
    bool noiseInput : 1;
    bool hiPOutput : 1;
    bool loBattery : 1;
    bool maxBattery : 1;
    bool noBattery : 1;
    bool oldBattery : 1;
    bool moreBattery : 1;
    bool lessBattery : 1;
    bool shutdownTimerActive : 1;
    bool remoteControlActive : 1;
    bool noCalibrated : 1;

    // The number of bits.
    static constexpr int COUNT = 25;

    DeviceFlags();
    DeviceFlags(const DeviceFlags& other);
    ~DeviceFlags() override;

    // Every bit as 1 or 0 in declared order: "connected=1,inShutdown=0,...".
    std::string toString() const override;

    virtual DeviceFlags& operator=(const DeviceFlags& other);
    // Every bit false.
    virtual void clear();
    // Clears, then reads every key named after its bit with the lenient
    // boolean reader (1, true, "true", "1"); a missing key gives false.
    virtual void fromJson(const nimb::JsonObject& json);
    // One member per bit, named after it, as the number 0 or 1.
    virtual nimb::JsonObject toJson() const;

    // The bits by index in declared order (0 is connected), for code that
    // walks all of them. index must be in [0, COUNT).
    static const char* name(int index);
    bool bit(int index) const;
    void setBit(int index, bool value);

    bool operator==(const DeviceFlags& other) const;
    bool operator!=(const DeviceFlags& other) const { return !(*this == other); }
};

// The 12 failure bits of a device, packed in declared order.
class DeviceFailFlags : public nimb::Object {
public:
    bool overtemp : 1;
    bool internal : 1;
    bool overload : 1;
    bool shortcircuit : 1;
    bool inverter : 1;
    bool fan : 1;
    bool tiristor : 1;  // thyristor fault; the spelling is the system's own
    bool endBattery : 1;
    bool loVInput : 1;
    bool abnormalVOutput : 1;
    bool hiPOutput : 1;
    bool abnormalVBattery : 1;

    // The number of bits.
    static constexpr int COUNT = 12;

    DeviceFailFlags();
    DeviceFailFlags(const DeviceFailFlags& other);
    ~DeviceFailFlags() override;

    // Every bit as 1 or 0 in declared order: "overtemp=0,internal=1,...".
    std::string toString() const override;

    virtual DeviceFailFlags& operator=(const DeviceFailFlags& other);
    // Every bit false.
    virtual void clear();
    // As DeviceFlags::fromJson.
    virtual void fromJson(const nimb::JsonObject& json);
    // As DeviceFlags::toJson: exactly 12 members.
    virtual nimb::JsonObject toJson() const;

    // The bits by index in declared order (0 is overtemp). index must be in
    // [0, COUNT).
    static const char* name(int index);
    bool bit(int index) const;
    void setBit(int index, bool value);

    bool operator==(const DeviceFailFlags& other) const;
    bool operator!=(const DeviceFailFlags& other) const { return !(*this == other); }
};

// Where a device is attached.
class PortInfo : public nimb::Object {
public:
    PortType type;
    std::string path;  // device node of the port
    std::string name;  // short name, normally the last path component
    int vid;           // USB vendor id, 0 when unknown
    int pid;           // USB product id, 0 when unknown
    nimb::SerialPort::SerialConfig config;
    bool isSoftUsb;    // the device implements USB in software (HID ports)

    // Cleared.
    PortInfo();
    PortInfo(const PortInfo& other);
    // A cleared port on which set() was called with these arguments.
    PortInfo(const PortType& type, const char* path, const char* name, int vid, int pid);
    PortInfo(const PortType& type, const char* path,
             const nimb::SerialPort::SerialConfig& config, const char* name, int vid, int pid);
    ~PortInfo() override;

    // One line: "port=HID(S), path=/dev/hidraw0, name=hidraw0, vid=0665,
    // pid=5161" or "port=RS232, path=<empty>, name=<empty>, config: {...}".
    // "(S)" marks a software USB HID port; vid and pid (hexadecimal, at least
    // four digits) appear when both are positive and the port is not RS232;
    // the config appears unless the port is HID.
    std::string toString() const override;

    // The file-name part of path; "" for a null or empty path. The type is
    // not used.
    virtual std::string extractNameFromPath(const char* path, const PortType& type) const;
    virtual PortInfo& operator=(const PortInfo& other);
    // Assigns type; a non-empty path and the name derived from it; a
    // non-empty name over the derived one; vid and pid only when non-zero;
    // resets isSoftUsb. Null texts count as empty.
    virtual void set(const PortType& type, const char* path, const char* name, int vid, int pid);
    // The same, then assigns config.
    virtual void set(const PortType& type, const char* path,
                     const nimb::SerialPort::SerialConfig& config, const char* name, int vid,
                     int pid);
    // Unknown type, empty texts, 0 ids, cleared config, isSoftUsb false.
    virtual void clear();
    // The type's name; a value outside the table as its decimal number.
    virtual std::string typeAsStr() const;
    // Sets type from its name in any letter case; anything else (and a null
    // pointer) gives Unknown.
    virtual void typeFromStr(const char* text);
    virtual void typeFromStr(const std::string& text);
    // Clears, then reads "name", "vid", "pid", "isSoftUsb", "path", "type"
    // and the object "config" ("baudrate", "databits", "stopbits", "parity",
    // "timeout").
    virtual void fromJson(const nimb::JsonObject& json);
    // All of the keys above; the type as its name.
    virtual nimb::JsonObject toJson() const;

    bool operator==(const PortInfo& other) const;
    bool operator!=(const PortInfo& other) const { return !(*this == other); }
};

// One monitored UPS as the monitor server reports it. An empty id means that
// there is no device.
class Device : public nimb::Object {
public:
    DeviceVars vars;
    DeviceFlags flags;
    DeviceFailFlags fail;
    std::string id;
    int family;           // negative when unknown
    int model;            // negative when unknown
    std::string version;  // firmware version
    std::string idPc;     // the computer that hosts the device
    long long last;       // last reading, ms since the epoch; 0 means never
    PortInfo port;
    ProtocolType protocol;
    std::string name;      // from the model table
    std::string userName;  // given by the user
    std::string userProd;  // product name given by the user

    Device();
    Device(const Device& other);
    ~Device() override;

    // Multi-line text for logs: a line break, then "id=...", optional
    // "name=", "userName=", "userProd=", "family=", "model=", "version=",
    // "protocol=", the groups "port: {...}", "vars: {...}", "flags: {...}",
    // "fail: {...}", "idPc=" and, once read, "last=yyyy/MM/dd HH:mm:ss.zzz"
    // (local time), each followed by ", " and a line break except the last,
    // and a final line break. Unknown values read "<unknown>".
    std::string toString() const override;

    virtual Device& operator=(const Device& other);
    // Every block cleared, texts empty, family and model -1, last 0,
    // protocol Unknown.
    virtual void clear();
    // The protocol's name; a value outside the table as its decimal number.
    virtual std::string protocolAsStr() const;
    // Sets protocol from its name in any letter case; anything else (and a
    // null pointer) gives Unknown.
    virtual void protocolFromStr(const char* text);
    virtual void protocolFromStr(const std::string& text);
    // Clears, then reads every key: a missing "family" or "model" gives 0, a
    // missing "vars" the variables read from an empty object. "last" is read
    // as a date-time, the flag blocks from "status" and "failures".
    virtual void fromJson(const nimb::JsonObject& json);
    // An empty object when id is empty. Otherwise "id", "family", "model",
    // "idPc", "status" and "failures" always; "version", "name", "userName",
    // "userProd" when not empty; "last" as a date-time text when not 0;
    // "protocol" and "port" when not Unknown; "vars" only when connected.
    virtual nimb::JsonObject toJson() const;

    bool operator==(const Device& other) const;
    bool operator!=(const Device& other) const { return !(*this == other); }
};

// One entry of a device's log as the client plug-in returns it.
class LogEntry : public nimb::Object {
public:
    long long time;    // ms since the epoch; 0 when unknown
    int event;         // the monitor server's event code
    std::string text;  // the event's description

    LogEntry();
    LogEntry(long long time, int event, const std::string& text);
    LogEntry(const LogEntry& other);
    ~LogEntry() override;

    // "time=yyyy/MM/dd HH:mm:ss.zzz, event=12, text=..." with the time in
    // local time, "<unknown>" when 0.
    std::string toString() const override;

    virtual LogEntry& operator=(const LogEntry& other);
    // time 0, event 0, empty text.
    virtual void clear();
    // Clears, then reads "time" (a date-time text or a number of ms),
    // "event" and "text".
    virtual void fromJson(const nimb::JsonObject& json);
    // "time" as a date-time text (local time with zone designator), "event"
    // and "text", always.
    virtual nimb::JsonObject toJson() const;

    bool operator==(const LogEntry& other) const;
    bool operator!=(const LogEntry& other) const { return !(*this == other); }
};

}  // namespace tessary
