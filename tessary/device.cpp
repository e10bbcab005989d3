#include "tessary/device.h"

#include <cmath>
#include <limits>

#include <QString>

#include "nimb/datetime.h"
#include "nimb/file.h"

namespace tessary {

namespace {

const char* const UNKNOWN = "<unknown>";
const char* const TEXT_TIME_FORMAT = "yyyy/MM/dd HH:mm:ss.zzz";


int readInt(const nimb::JsonObject& json, const char* key) {
    return nimb::truncatedNumber<int>(json.value(key).toDouble());
}

std::string orUnknown(const std::string& text) { return text.empty() ? UNKNOWN : text; }

std::string orEmpty(const std::string& text) { return text.empty() ? "<empty>" : text; }

std::string fixed(float value, int decimals) {
    return QString::number(static_cast<double>(value), 'f', decimals).toStdString();
}

std::string hex4(int value) {
    return QString::number(value, 16).toUpper().rightJustified(4, '0').toStdString();
}

std::string localTime(long long ms) {
    return nimb::DateTime::dateTimeToStr(ms, TEXT_TIME_FORMAT);
}

std::string lowered(const std::string& text) {
    return QString::fromStdString(text).toLower().toStdString();
}

// The name of a code in table, or its decimal number when outside it.
template <typename Enum, std::size_t N>
std::string nameOf(Enum value, const char* const (&table)[N]) {
    const int code = static_cast<int>(value);
    if (code >= 0 && static_cast<std::size_t>(code) < N)
        return table[code];
    return std::to_string(code);
}

// The code whose name, lower-cased, equals the lower-cased text; 0 (Unknown)
// when none does.
template <typename Enum, std::size_t N>
Enum codeOf(const std::string& text, const char* const (&table)[N]) {
    const std::string wanted = lowered(text);
    for (std::size_t code = 1; code < N; ++code)
        if (lowered(table[code]) == wanted)
            return static_cast<Enum>(code);
    return static_cast<Enum>(0);
}

const char* const PROTOCOL_NAMES[] = {"Unknown", "Varnox", "Delmo", "Sirtan", "Ulvey"};
const char* const PORT_TYPE_NAMES[] = {"Unknown", "RS232", "HID", "CDC"};
const char* const CHARGE_LEVEL_NAMES[] = {"Low", "High"};

// ---- DeviceVars fields, in the order of the text and JSON forms ----

struct VarField {
    const char* name;
    float DeviceVars::*real;
    int DeviceVars::*integer;
    bool DeviceVars::*flag;
    int decimals;  // of a real in the text form
};

constexpr VarField real(const char* name, float DeviceVars::*field, int decimals) {
    return {name, field, nullptr, nullptr, decimals};
}

constexpr VarField integer(const char* name, int DeviceVars::*field) {
    return {name, nullptr, field, nullptr, 0};
}

const VarField VAR_FIELDS[] = {
    real("vInput", &DeviceVars::vInput, 1),
    real("vOutput", &DeviceVars::vOutput, 1),
    real("iOutput", &DeviceVars::iOutput, 1),
    real("pOutput", &DeviceVars::pOutput, 1),
    real("fOutput", &DeviceVars::fOutput, 1),
    real("vBattery", &DeviceVars::vBattery, 1),
    real("cBattery", &DeviceVars::cBattery, 0),
    real("temperature", &DeviceVars::temperature, 1),
    integer("lineSense", &DeviceVars::lineSense),
    integer("icBattery", &DeviceVars::icBattery),
    integer("shutdownTimer", &DeviceVars::shutdownTimer),
    integer("wakeupTimer", &DeviceVars::wakeupTimer),
    integer("nightoffTimer", &DeviceVars::nightoffTimer),
    real("nominalVInput", &DeviceVars::nominalVInput, 0),
    real("nominalVOutput", &DeviceVars::nominalVOutput, 0),
    real("nominalPOutput", &DeviceVars::nominalPOutput, 0),
    real("nominalFOutput", &DeviceVars::nominalFOutput, 0),
    real("nominalVBattery", &DeviceVars::nominalVBattery, 0),
    integer("ledRed", &DeviceVars::ledRed),
    integer("ledGreen", &DeviceVars::ledGreen),
    integer("ledBlue", &DeviceVars::ledBlue),
    {"random", nullptr, nullptr, &DeviceVars::random, 0},
    integer("tPowerLo", &DeviceVars::tPowerLo),
    integer("pPowerLo", &DeviceVars::pPowerLo),
};

// ---- flag bits: bit-fields cannot be pointed to, so each bit has a getter
// and a setter ----

template <typename Flags>
struct Bit {
    const char* name;
    bool (*get)(const Flags&);
    void (*set)(Flags&, bool);
};

#define TESSARY_BIT(FLAGS, FIELD)                                       \
    Bit<FLAGS> {                                                        \
        #FIELD, [](const FLAGS& flags) -> bool { return flags.FIELD; }, \
            [](FLAGS& flags, bool value) { flags.FIELD = value; }       \
    }

const Bit<DeviceFlags> FLAG_BITS[] = {
    TESSARY_BIT(DeviceFlags, connected),
    TESSARY_BIT(DeviceFlags, inShutdown),
    TESSARY_BIT(DeviceFlags, opStartup),
    TESSARY_BIT(DeviceFlags, opBattery),
    TESSARY_BIT(DeviceFlags, opStandBy),
    TESSARY_BIT(DeviceFlags, opCheckup),
    TESSARY_BIT(DeviceFlags, opWarning),
    TESSARY_BIT(DeviceFlags, noVInput),
    TESSARY_BIT(DeviceFlags, loVInput),
    TESSARY_BIT(DeviceFlags, hiVInput),
    TESSARY_BIT(DeviceFlags, loFInput),
    TESSARY_BIT(DeviceFlags, hiFInput),
    TESSARY_BIT(DeviceFlags, noSyncInput),
    TESSARY_BIT(DeviceFlags, syncInput),
    TESSARY_BIT(DeviceFlags, noiseInput),
    TESSARY_BIT(DeviceFlags, hiPOutput),
    TESSARY_BIT(DeviceFlags, loBattery),
    TESSARY_BIT(DeviceFlags, maxBattery),
    TESSARY_BIT(DeviceFlags, noBattery),
    TESSARY_BIT(DeviceFlags, oldBattery),
    TESSARY_BIT(DeviceFlags, moreBattery),
    TESSARY_BIT(DeviceFlags, lessBattery),
    TESSARY_BIT(DeviceFlags, shutdownTimerActive),
    TESSARY_BIT(DeviceFlags, remoteControlActive),
    TESSARY_BIT(DeviceFlags, noCalibrated),
};

const Bit<DeviceFailFlags> FAIL_BITS[] = {
    TESSARY_BIT(DeviceFailFlags, overtemp),
    TESSARY_BIT(DeviceFailFlags, internal),
    TESSARY_BIT(DeviceFailFlags, overload),
    TESSARY_BIT(DeviceFailFlags, shortcircuit),
    TESSARY_BIT(DeviceFailFlags, inverter),
    TESSARY_BIT(DeviceFailFlags, fan),
    TESSARY_BIT(DeviceFailFlags, tiristor),
    TESSARY_BIT(DeviceFailFlags, endBattery),
    TESSARY_BIT(DeviceFailFlags, loVInput),
    TESSARY_BIT(DeviceFailFlags, abnormalVOutput),
    TESSARY_BIT(DeviceFailFlags, hiPOutput),
    TESSARY_BIT(DeviceFailFlags, abnormalVBattery),
};

#undef TESSARY_BIT

static_assert(sizeof(FLAG_BITS) / sizeof(FLAG_BITS[0]) == DeviceFlags::COUNT, "one entry a bit");
static_assert(sizeof(FAIL_BITS) / sizeof(FAIL_BITS[0]) == DeviceFailFlags::COUNT,
              "one entry a bit");

// The shared forms of both flag records: "name=1,name=0,..." and one JSON
// number a bit.
template <typename Flags>
std::string bitsText(const Flags& flags) {
    std::string text;
    for (int i = 0; i < Flags::COUNT; ++i) {
        if (i > 0)
            text += ",";
        text += std::string(Flags::name(i)) + "=" + (flags.bit(i) ? "1" : "0");
    }
    return text;
}

template <typename Flags>
nimb::JsonObject bitsJson(const Flags& flags) {
    nimb::JsonObject json;
    for (int i = 0; i < Flags::COUNT; ++i)
        json.setValue(Flags::name(i), nimb::JsonValue(flags.bit(i)));
    return json;
}

template <typename Flags>
void readBits(Flags& flags, const nimb::JsonObject& json) {
    for (int i = 0; i < Flags::COUNT; ++i)
        flags.setBit(i, json.value(Flags::name(i)).toBool());
}

template <typename Flags>
bool sameBits(const Flags& a, const Flags& b) {
    for (int i = 0; i < Flags::COUNT; ++i)
        if (a.bit(i) != b.bit(i))
            return false;
    return true;
}

}  // namespace

// ---- code tables ----

std::ostream& operator<<(std::ostream& out, ProtocolType protocol) {
    return out << nameOf(protocol, PROTOCOL_NAMES);
}

std::ostream& operator<<(std::ostream& out, PortType type) {
    return out << nameOf(type, PORT_TYPE_NAMES);
}

std::ostream& operator<<(std::ostream& out, ChargeBatteryLevel level) {
    return out << nameOf(level, CHARGE_LEVEL_NAMES);
}

std::ostream& operator<<(std::ostream& out, LineSensLevel level) {
    switch (static_cast<int>(level)) {
    case 0:
        return out << "Very Low";
    case 1:
    case 11:
        return out << "Low";
    case 2:
    case 12:
        return out << "Normal";
    case 3:
        return out << "High";
    case 4:
        return out << "Very High";
    default:
        return out << static_cast<int>(level);
    }
}

// ---- DeviceVars ----

DeviceVars::DeviceVars() { clear(); }

DeviceVars::DeviceVars(const DeviceVars& other) = default;

DeviceVars::~DeviceVars() = default;

std::string DeviceVars::toString() const {
    std::string text;
    for (const VarField& field : VAR_FIELDS) {
        if (!text.empty())
            text += ",";
        text += std::string(field.name) + "=";
        if (field.real)
            text += fixed(this->*field.real, field.decimals);
        else if (field.integer)
            text += std::to_string(this->*field.integer);
        else
            text += (this->*field.flag) ? "1" : "0";
    }
    return text;
}

DeviceVars& DeviceVars::operator=(const DeviceVars& other) = default;

void DeviceVars::clear() {
    for (const VarField& field : VAR_FIELDS) {
        if (field.real)
            this->*field.real = 0.0f;
        else if (field.integer)
            this->*field.integer = 0;
        else
            this->*field.flag = false;
    }
    // 12 renders as "Normal" and -1 marks a timer that is not counting.
    lineSense = static_cast<int>(LineSensLevel::AltNormal);
    shutdownTimer = -1;
    wakeupTimer = -1;
    nightoffTimer = -1;
}

void DeviceVars::fromJson(const nimb::JsonObject& json) {
    clear();
    for (const VarField& field : VAR_FIELDS) {
        const nimb::JsonValue value = json.value(field.name);
        if (field.real)
            this->*field.real = static_cast<float>(value.toDouble());
        else if (field.integer)
            this->*field.integer = nimb::truncatedNumber<int>(value.toDouble());
        else
            this->*field.flag = value.toBool();
    }
}

nimb::JsonObject DeviceVars::toJson() const {
    nimb::JsonObject json;
    for (const VarField& field : VAR_FIELDS) {
        if (field.real)
            json.setValue(field.name, nimb::JsonValue(static_cast<double>(this->*field.real)));
        else if (field.integer)
            json.setValue(field.name, nimb::JsonValue(this->*field.integer));
        else
            json.setValue(field.name, nimb::JsonValue(this->*field.flag));
    }
    return json;
}

bool DeviceVars::operator==(const DeviceVars& other) const {
    for (const VarField& field : VAR_FIELDS) {
        const bool same = field.real      ? this->*field.real == other.*field.real
                          : field.integer ? this->*field.integer == other.*field.integer
                                          : this->*field.flag == other.*field.flag;
        if (!same)
            return false;
    }
    return true;
}

// ---- DeviceFlags ----

DeviceFlags::DeviceFlags() { clear(); }

DeviceFlags::DeviceFlags(const DeviceFlags& other) = default;

DeviceFlags::~DeviceFlags() = default;

std::string DeviceFlags::toString() const { return bitsText(*this); }

DeviceFlags& DeviceFlags::operator=(const DeviceFlags& other) = default;

void DeviceFlags::clear() {
    for (int i = 0; i < COUNT; ++i)
        setBit(i, false);
}

void DeviceFlags::fromJson(const nimb::JsonObject& json) {
    clear();
    readBits(*this, json);
}

nimb::JsonObject DeviceFlags::toJson() const { return bitsJson(*this); }

const char* DeviceFlags::name(int index) { return FLAG_BITS[index].name; }

bool DeviceFlags::bit(int index) const { return FLAG_BITS[index].get(*this); }

void DeviceFlags::setBit(int index, bool value) { FLAG_BITS[index].set(*this, value); }

bool DeviceFlags::operator==(const DeviceFlags& other) const { return sameBits(*this, other); }

// ---- DeviceFailFlags ----

DeviceFailFlags::DeviceFailFlags() { clear(); }

DeviceFailFlags::DeviceFailFlags(const DeviceFailFlags& other) = default;

DeviceFailFlags::~DeviceFailFlags() = default;

std::string DeviceFailFlags::toString() const { return bitsText(*this); }

DeviceFailFlags& DeviceFailFlags::operator=(const DeviceFailFlags& other) = default;

void DeviceFailFlags::clear() {
    for (int i = 0; i < COUNT; ++i)
        setBit(i, false);
}

void DeviceFailFlags::fromJson(const nimb::JsonObject& json) {
    clear();
    readBits(*this, json);
}

nimb::JsonObject DeviceFailFlags::toJson() const { return bitsJson(*this); }

const char* DeviceFailFlags::name(int index) { return FAIL_BITS[index].name; }

bool DeviceFailFlags::bit(int index) const { return FAIL_BITS[index].get(*this); }

void DeviceFailFlags::setBit(int index, bool value) { FAIL_BITS[index].set(*this, value); }

bool DeviceFailFlags::operator==(const DeviceFailFlags& other) const {
    return sameBits(*this, other);
}

// ---- PortInfo ----

PortInfo::PortInfo() { clear(); }

PortInfo::PortInfo(const PortInfo& other) = default;

PortInfo::PortInfo(const PortType& type, const char* path, const char* name, int vid, int pid) {
    clear();
    set(type, path, name, vid, pid);
}

PortInfo::PortInfo(const PortType& type, const char* path,
                   const nimb::SerialPort::SerialConfig& config, const char* name, int vid,
                   int pid) {
    clear();
    set(type, path, config, name, vid, pid);
}

PortInfo::~PortInfo() = default;

std::string PortInfo::toString() const {
    std::string text = "port=" + typeAsStr();
    if (type == PortType::HID && isSoftUsb)
        text += "(S)";
    text += ", path=" + orEmpty(path) + ", name=" + orEmpty(name);
    if (vid >= 1 && pid >= 1 && type != PortType::RS232)
        text += ", vid=" + hex4(vid) + ", pid=" + hex4(pid);
    if (type != PortType::HID)
        text += ", config: {" + config.toStr() + "}";
    return text;
}

std::string PortInfo::extractNameFromPath(const char* path, const PortType& /*type*/) const {
    if (path == nullptr || *path == '\0')
        return std::string();
    return nimb::File::extractFileName(path);
}

PortInfo& PortInfo::operator=(const PortInfo& other) = default;

void PortInfo::set(const PortType& type, const char* path, const char* name, int vid, int pid) {
    this->type = type;
    if (path != nullptr && *path != '\0') {
        this->path = path;
        this->name = extractNameFromPath(path, type);
    }
    if (name != nullptr && *name != '\0')
        this->name = name;
    // A zero keeps what an earlier set() found.
    if (vid != 0)
        this->vid = vid;
    if (pid != 0)
        this->pid = pid;
    isSoftUsb = false;
}

void PortInfo::set(const PortType& type, const char* path,
                   const nimb::SerialPort::SerialConfig& config, const char* name, int vid,
                   int pid) {
    set(type, path, name, vid, pid);
    this->config = config;
    isSoftUsb = false;
}

void PortInfo::clear() {
    type = PortType::Unknown;
    path.clear();
    name.clear();
    vid = 0;
    pid = 0;
    config.clear();
    isSoftUsb = false;
}

std::string PortInfo::typeAsStr() const { return nameOf(type, PORT_TYPE_NAMES); }

void PortInfo::typeFromStr(const char* text) { typeFromStr(std::string(text ? text : "")); }

void PortInfo::typeFromStr(const std::string& text) {
    type = codeOf<PortType>(text, PORT_TYPE_NAMES);
}

void PortInfo::fromJson(const nimb::JsonObject& json) {
    clear();
    name = json.value("name").toStr();
    vid = readInt(json, "vid");
    pid = readInt(json, "pid");
    isSoftUsb = json.value("isSoftUsb").toBool();
    path = json.value("path").toStr();
    typeFromStr(json.value("type").toStr());
    const nimb::JsonObject line = json.value("config").toObject();
    config.baudrate = nimb::truncatedNumber<long>(line.value("baudrate").toDouble());
    config.databits = readInt(line, "databits");
    config.stopbits = readInt(line, "stopbits");
    config.parity = readInt(line, "parity");
    config.timeout = nimb::truncatedNumber<long>(line.value("timeout").toDouble());
}

nimb::JsonObject PortInfo::toJson() const {
    return nimb::JsonObject{
        {"name", name},
        {"vid", vid},
        {"pid", pid},
        {"isSoftUsb", isSoftUsb},
        {"path", path},
        {"type", typeAsStr()},
        {"config", nimb::JsonObject{{"baudrate", config.baudrate},
                                    {"databits", config.databits},
                                    {"stopbits", config.stopbits},
                                    {"parity", config.parity},
                                    {"timeout", config.timeout}}},
    };
}

bool PortInfo::operator==(const PortInfo& other) const {
    return type == other.type && path == other.path && name == other.name && vid == other.vid &&
           pid == other.pid && config == other.config && isSoftUsb == other.isSoftUsb;
}

// ---- Device ----

Device::Device() { clear(); }

Device::Device(const Device& other) = default;

Device::~Device() = default;

std::string Device::toString() const {
    std::string text = "\n";
    const auto item = [&text](const std::string& value) { text += value + ", \n"; };
    item("id=" + orUnknown(id));
    if (!name.empty())
        item("name=" + name);
    if (!userName.empty())
        item("userName=" + userName);
    if (!userProd.empty())
        item("userProd=" + userProd);
    item("family=" + (family < 0 ? std::string(UNKNOWN) : std::to_string(family)));
    item("model=" + (model < 0 ? std::string(UNKNOWN) : std::to_string(model)));
    item("version=" + orUnknown(version));
    item("protocol=" + protocolAsStr());
    item("port: {" + port.toStr() + "}");
    item("vars: {" + vars.toStr() + "}");
    item("flags: {" + flags.toStr() + "}");
    item("fail: {" + fail.toStr() + "}");
    text += "idPc=" + orUnknown(idPc);
    if (last > 0)
        text += ", \nlast=" + localTime(last);
    return text + "\n";
}

Device& Device::operator=(const Device& other) = default;

void Device::clear() {
    vars.clear();
    flags.clear();
    fail.clear();
    id.clear();
    family = -1;
    model = -1;
    version.clear();
    idPc.clear();
    last = 0;
    port.clear();
    protocol = ProtocolType::Unknown;
    name.clear();
    userName.clear();
    userProd.clear();
}

std::string Device::protocolAsStr() const { return nameOf(protocol, PROTOCOL_NAMES); }

void Device::protocolFromStr(const char* text) { protocolFromStr(std::string(text ? text : "")); }

void Device::protocolFromStr(const std::string& text) {
    protocol = codeOf<ProtocolType>(text, PROTOCOL_NAMES);
}

void Device::fromJson(const nimb::JsonObject& json) {
    clear();
    id = json.value("id").toStr();
    version = json.value("version").toStr();
    idPc = json.value("idPc").toStr();
    name = json.value("name").toStr();
    userName = json.value("userName").toStr();
    userProd = json.value("userProd").toStr();
    family = readInt(json, "family");
    model = readInt(json, "model");
    last = json.value("last").toDateTime();
    protocolFromStr(json.value("protocol").toStr());
    port.fromJson(json.value("port").toObject());
    vars.fromJson(json.value("vars").toObject());
    flags.fromJson(json.value("status").toObject());
    fail.fromJson(json.value("failures").toObject());
}

nimb::JsonObject Device::toJson() const {
    nimb::JsonObject json;
    if (id.empty())
        return json;
    json.setValue("id", id);
    json.setValue("family", family);
    json.setValue("model", model);
    if (!version.empty())
        json.setValue("version", version);
    json.setValue("idPc", idPc);
    if (last != 0)
        json.setValue("last", nimb::JsonValue().fromDateTime(last, 0));
    if (!name.empty())
        json.setValue("name", name);
    if (!userName.empty())
        json.setValue("userName", userName);
    if (!userProd.empty())
        json.setValue("userProd", userProd);
    if (protocol != ProtocolType::Unknown)
        json.setValue("protocol", protocolAsStr());
    if (port.type != PortType::Unknown)
        json.setValue("port", port.toJson());
    // A disconnected device has no measurements to send.
    if (flags.connected)
        json.setValue("vars", vars.toJson());
    json.setValue("status", flags.toJson());
    json.setValue("failures", fail.toJson());
    return json;
}

bool Device::operator==(const Device& other) const {
    return vars == other.vars && flags == other.flags && fail == other.fail && id == other.id &&
           family == other.family && model == other.model && version == other.version &&
           idPc == other.idPc && last == other.last && port == other.port &&
           protocol == other.protocol && name == other.name && userName == other.userName &&
           userProd == other.userProd;
}

// ---- LogEntry ----

LogEntry::LogEntry() { clear(); }

LogEntry::LogEntry(long long time, int event, const std::string& text)
    : time(time), event(event), text(text) {}

LogEntry::LogEntry(const LogEntry& other) = default;

LogEntry::~LogEntry() = default;

std::string LogEntry::toString() const {
    return "time=" + (time != 0 ? localTime(time) : std::string(UNKNOWN)) +
           ", event=" + std::to_string(event) + ", text=" + text;
}

LogEntry& LogEntry::operator=(const LogEntry& other) = default;

void LogEntry::clear() {
    time = 0;
    event = 0;
    text.clear();
}

void LogEntry::fromJson(const nimb::JsonObject& json) {
    clear();
    time = json.value("time").toDateTime();
    event = readInt(json, "event");
    text = json.value("text").toStr();
}

nimb::JsonObject LogEntry::toJson() const {
    return nimb::JsonObject{
        {"time", nimb::JsonValue().fromDateTime(time, 0)},
        {"event", event},
        {"text", text},
    };
}

bool LogEntry::operator==(const LogEntry& other) const {
    return time == other.time && event == other.event && text == other.text;
}

}  // namespace tessary
