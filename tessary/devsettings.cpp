#include "tessary/devsettings.h"

#include <cmath>
#include <limits>
#include <utility>

namespace tessary {

namespace {

// The member's number truncated toward zero to 64 bits (NaN gives 0, values
// beyond the range saturate) and then kept in 32 bits, as the monitor server
// does: -1 reads as 4294967295.
uint32_t readU32(const nimb::JsonObject& json, const std::string& key) {
    const double value = json.value(key).toDouble();
    if (std::isnan(value))
        return 0;
    if (value >= 9223372036854775807.0)
        return static_cast<uint32_t>(std::numeric_limits<int64_t>::max());
    if (value <= -9223372036854775808.0)
        return static_cast<uint32_t>(std::numeric_limits<int64_t>::min());
    return static_cast<uint32_t>(static_cast<int64_t>(value));
}

// A switch read with the lenient boolean reader, as 0 or 1.
uint32_t readSwitch(const nimb::JsonObject& json, const std::string& key) {
    return json.value(key).toBool() ? 1 : 0;
}

std::string num(uint32_t value) {
    return std::to_string(value);
}

// The separator that follows every item of a group but the last.
const char* const NEXT = ", \n";

}  // namespace

// ---- DeviceShutCfg ---------------------------------------------------------

DeviceShutCfg::DeviceShutCfg() {
    clear();
}
DeviceShutCfg::DeviceShutCfg(const DeviceShutCfg& other) = default;
DeviceShutCfg::~DeviceShutCfg() = default;
DeviceShutCfg& DeviceShutCfg::operator=(const DeviceShutCfg& other) = default;

void DeviceShutCfg::clear() {
    id.clear();
    enabled = 0;
    counterManual = 20;
    counterOpBattery = 30;
    counterLoBattery = 20;
    counterFailure = 20;
    counterTimer = 20;
    counterPowerLo = 10;
    counterBatLevel = 10;
    remCtrlDelay = 1000;
    devShutEnabled = 1;
    devStandByKeep = 0;
    devShutTimer = 120;
    cliShutEnabled = 1;
    cliHibernate = 1;
    cliShutTimer = 5;
    cliRun.clear();
}

std::string DeviceShutCfg::toString() const {
    std::string text = "shutdown: {id=" + id + NEXT;
    text += "enabled=" + num(enabled) + NEXT;
    text += "counterManual=" + num(counterManual) + NEXT;
    text += "counterOpBattery=" + num(counterOpBattery) + NEXT;
    text += "counterLoBattery=" + num(counterLoBattery) + NEXT;
    text += "counterFailure=" + num(counterFailure) + NEXT;
    text += "counterTimer=" + num(counterTimer) + NEXT;
    text += "counterPowerLo=" + num(counterPowerLo) + NEXT;
    text += "counterBatLevel=" + num(counterBatLevel) + NEXT;
    text += "remCtrlDelay=" + num(remCtrlDelay) + "}" + NEXT;
    // Log readers know the device group in this order and with this spelling
    // of the stand-by switch, unlike the JSON.
    text += "device: {devShutEnabled=" + num(devShutEnabled) + NEXT;
    text += "devShutTimer=" + num(devShutTimer) + NEXT;
    text += "devstandByKeep=" + num(devStandByKeep) + "}\n";
    text += "client: {cliShutEnabled=" + num(cliShutEnabled) + NEXT;
    text += "cliHibernate=" + num(cliHibernate) + NEXT;
    text += "cliShutTimer=" + num(cliShutTimer) + NEXT;
    text += "cliRun=\"" + cliRun + "\"}";
    return text;
}

void DeviceShutCfg::fromJson(const nimb::JsonObject& json) {
    clear();
    id = json.value("id").toString();
    enabled = readSwitch(json, "enabled");
    counterManual = readU32(json, "counterManual");
    counterOpBattery = readU32(json, "counterOpBattery");
    counterLoBattery = readU32(json, "counterLoBattery");
    counterFailure = readU32(json, "counterFailure");
    counterTimer = readU32(json, "counterTimer");
    counterPowerLo = readU32(json, "counterPowerLo");
    counterBatLevel = readU32(json, "counterBatLevel");
    remCtrlDelay = readU32(json, "remCtrlDelay");
    devShutEnabled = readSwitch(json, "devShutEnabled");
    devStandByKeep = readSwitch(json, "devStandByKeep");
    devShutTimer = readU32(json, "devShutTimer");
    cliShutEnabled = readSwitch(json, "cliShutEnabled");
    cliHibernate = readSwitch(json, "cliHibernate");
    cliShutTimer = readU32(json, "cliShutTimer");
    cliRun = json.value("cliRun").toString();
}

nimb::JsonObject DeviceShutCfg::toJson() const {
    return nimb::JsonObject{
        {"id", id},
        {"enabled", enabled},
        {"counterManual", counterManual},
        {"counterOpBattery", counterOpBattery},
        {"counterLoBattery", counterLoBattery},
        {"counterFailure", counterFailure},
        {"counterTimer", counterTimer},
        {"counterPowerLo", counterPowerLo},
        {"counterBatLevel", counterBatLevel},
        {"remCtrlDelay", remCtrlDelay},
        {"devShutEnabled", devShutEnabled},
        {"devStandByKeep", devStandByKeep},
        {"devShutTimer", devShutTimer},
        {"cliShutEnabled", cliShutEnabled},
        {"cliHibernate", cliHibernate},
        {"cliShutTimer", cliShutTimer},
        {"cliRun", cliRun},
    };
}

bool DeviceShutCfg::operator==(const DeviceShutCfg& other) const {
    return id == other.id && enabled == other.enabled && counterManual == other.counterManual &&
           counterOpBattery == other.counterOpBattery &&
           counterLoBattery == other.counterLoBattery && counterFailure == other.counterFailure &&
           counterTimer == other.counterTimer && counterPowerLo == other.counterPowerLo &&
           counterBatLevel == other.counterBatLevel && remCtrlDelay == other.remCtrlDelay &&
           devShutEnabled == other.devShutEnabled && devStandByKeep == other.devStandByKeep &&
           devShutTimer == other.devShutTimer && cliShutEnabled == other.cliShutEnabled &&
           cliHibernate == other.cliHibernate && cliShutTimer == other.cliShutTimer &&
           cliRun == other.cliRun;
}

// ---- DeviceEventApp --------------------------------------------------------

DeviceEventApp::DeviceEventApp() {
    clear();
}
DeviceEventApp::DeviceEventApp(const DeviceEventApp& other) = default;
DeviceEventApp::~DeviceEventApp() = default;
DeviceEventApp& DeviceEventApp::operator=(const DeviceEventApp& other) = default;

namespace {

using Slot = uint32_t DeviceEventApp::*;

const Slot DATES[DeviceEventApp::SLOTS] = {
    &DeviceEventApp::dateEvent1,  &DeviceEventApp::dateEvent2, &DeviceEventApp::dateEvent3,
    &DeviceEventApp::dateEvent4,  &DeviceEventApp::dateEvent5, &DeviceEventApp::dateEvent6,
    &DeviceEventApp::dateEvent7,  &DeviceEventApp::dateEvent8, &DeviceEventApp::dateEvent9,
    &DeviceEventApp::dateEvent10,
};

const Slot IDS[DeviceEventApp::SLOTS] = {
    &DeviceEventApp::idEvent1,  &DeviceEventApp::idEvent2, &DeviceEventApp::idEvent3,
    &DeviceEventApp::idEvent4,  &DeviceEventApp::idEvent5, &DeviceEventApp::idEvent6,
    &DeviceEventApp::idEvent7,  &DeviceEventApp::idEvent8, &DeviceEventApp::idEvent9,
    &DeviceEventApp::idEvent10,
};

}  // namespace

uint32_t& DeviceEventApp::dateEvent(int slot) {
    return this->*DATES[slot - 1];
}
uint32_t DeviceEventApp::dateEvent(int slot) const {
    return this->*DATES[slot - 1];
}
uint32_t& DeviceEventApp::idEvent(int slot) {
    return this->*IDS[slot - 1];
}
uint32_t DeviceEventApp::idEvent(int slot) const {
    return this->*IDS[slot - 1];
}

void DeviceEventApp::clear() {
    m_interval = 1000;
    m_index = 0;
    m_pending = 0;
    for (int slot = 1; slot <= SLOTS; ++slot) {
        dateEvent(slot) = 0;
        idEvent(slot) = 0;
    }
    m_changed = false;
    m_busy = false;
    id.clear();
}

std::string DeviceEventApp::toString() const {
    std::string text;
    for (int slot = 1; slot <= SLOTS; ++slot) {
        const std::string n = std::to_string(slot);
        if (slot > 1)
            text += ",";
        text += "dateEvent" + n + "=" + num(dateEvent(slot)) + ",idEvent" + n + "=" +
                num(idEvent(slot));
    }
    return text;
}

void DeviceEventApp::fromJson(const nimb::JsonObject& json) {
    clear();
    for (int slot = 1; slot <= SLOTS; ++slot) {
        const std::string n = std::to_string(slot);
        dateEvent(slot) = readU32(json, "dateEvent" + n);
        idEvent(slot) = readU32(json, "idEvent" + n);
    }
    id = json.value("id").toString();
}

nimb::JsonObject DeviceEventApp::toJson() const {
    nimb::JsonObject json;
    json.setValue("id", nimb::JsonValue(id));
    for (int slot = 1; slot <= SLOTS; ++slot) {
        const std::string n = std::to_string(slot);
        json.setValue("dateEvent" + n, nimb::JsonValue(dateEvent(slot)));
        json.setValue("idEvent" + n, nimb::JsonValue(idEvent(slot)));
    }
    return json;
}

// Built by hand so that the members keep the slot order, which a JSON
// object (sorted keys) would not.
std::string DeviceEventApp::toStringJson() const {
    std::string text = "{";
    if (!id.empty())
        text += "\"id\":\"" + id + "\",";
    for (int slot = 1; slot <= SLOTS; ++slot) {
        const std::string n = std::to_string(slot);
        if (slot > 1)
            text += ",";
        text += "\"dateEvent" + n + "\":" + num(dateEvent(slot)) + ",\"idEvent" + n +
                "\":" + num(idEvent(slot));
    }
    return text + "}";
}

bool DeviceEventApp::operator==(const DeviceEventApp& other) const {
    for (int slot = 1; slot <= SLOTS; ++slot) {
        if (dateEvent(slot) != other.dateEvent(slot) || idEvent(slot) != other.idEvent(slot))
            return false;
    }
    return id == other.id;
}

// ---- DeviceSchedule --------------------------------------------------------

DeviceSchedule::DeviceSchedule() {
    clear();
}
DeviceSchedule::DeviceSchedule(const DeviceSchedule& other) = default;
DeviceSchedule::~DeviceSchedule() = default;
DeviceSchedule& DeviceSchedule::operator=(const DeviceSchedule& other) = default;

void DeviceSchedule::clear() {
    id.clear();
    idList = 0;
    status = 0;
    activeDay = 0;
    specific = false;
    year = 0;
    month = 0;
    day = 0;
    hourOn = 0;
    minOn = 0;
    utcOn = 0;
    hourOff = 0;
    minOff = 0;
    utcOff = 0;
    allWeekDay = 0;
    allMonth = 0;
}

std::string DeviceSchedule::toString() const {
    std::string text = "schedule: {id=" + id + NEXT;
    text += "idList=" + num(idList) + NEXT;
    text += "status=" + num(status) + NEXT;
    text += "activeDay=" + num(activeDay) + NEXT;
    text += std::string("specific=") + (specific ? "1" : "0") + NEXT;
    text += "year=" + num(year) + NEXT;
    text += "month=" + num(month) + NEXT;
    text += "day=" + num(day) + NEXT;
    text += "hourOn=" + num(hourOn) + NEXT;
    text += "minOn=" + num(minOn) + NEXT;
    text += "utcOn=" + num(utcOn) + NEXT;
    text += "hourOff=" + num(hourOff) + NEXT;
    text += "minOff=" + num(minOff) + NEXT;
    text += "utcOff=" + num(utcOff) + NEXT;
    text += "allWeekDay=" + num(allWeekDay) + NEXT;
    text += "allMonth=" + num(allMonth) + "}\n";
    return text;
}

// The lower-case keys and "option" for specific are the exchange format the
// monitor server speaks; idList, status and activeDay stay on the server.
void DeviceSchedule::fromJson(const nimb::JsonObject& json) {
    clear();
    id = json.value("id").toString();
    specific = json.value("option").toBool();
    year = readU32(json, "year");
    month = readU32(json, "month");
    day = readU32(json, "day");
    hourOn = readU32(json, "houron");
    minOn = readU32(json, "minon");
    utcOn = readU32(json, "utcon");
    hourOff = readU32(json, "houroff");
    minOff = readU32(json, "minoff");
    utcOff = readU32(json, "utcoff");
    allWeekDay = readU32(json, "allweekday");
    allMonth = readU32(json, "allmonth");
}

nimb::JsonObject DeviceSchedule::toJson() const {
    return nimb::JsonObject{
        {"id", id},
        {"option", specific},
        {"year", year},
        {"month", month},
        {"day", day},
        {"houron", hourOn},
        {"minon", minOn},
        {"utcon", utcOn},
        {"houroff", hourOff},
        {"minoff", minOff},
        {"utcoff", utcOff},
        {"allweekday", allWeekDay},
        {"allmonth", allMonth},
    };
}

bool DeviceSchedule::operator==(const DeviceSchedule& other) const {
    return id == other.id && idList == other.idList && status == other.status &&
           activeDay == other.activeDay && specific == other.specific && year == other.year &&
           month == other.month && day == other.day && hourOn == other.hourOn &&
           minOn == other.minOn && utcOn == other.utcOn && hourOff == other.hourOff &&
           minOff == other.minOff && utcOff == other.utcOff && allWeekDay == other.allWeekDay &&
           allMonth == other.allMonth;
}

// ---- DeviceDialCfg ---------------------------------------------------------

namespace {

using Phone = std::string DeviceDialCfg::*;

const Phone PHONE_FIELDS[DeviceDialCfg::PHONES] = {
    &DeviceDialCfg::phone1, &DeviceDialCfg::phone2, &DeviceDialCfg::phone3, &DeviceDialCfg::phone4,
    &DeviceDialCfg::phone5, &DeviceDialCfg::phone6, &DeviceDialCfg::phone7, &DeviceDialCfg::phone8,
};

const uint32_t DEFAULT_MAIL_PORT = 587;
const uint32_t PORT_LIMIT = 65536;

bool isSwitch(uint32_t value) {
    return value == 0 || value == 1;
}

std::string joined(const std::vector<std::string>& list) {
    std::string text;
    for (size_t i = 0; i < list.size(); ++i)
        text += (i == 0 ? "" : ",") + list[i];
    return text;
}

void setIfNotEmpty(nimb::JsonObject& json, const char* key, const std::string& value) {
    if (!value.empty())
        json.setValue(key, nimb::JsonValue(value));
}

void setIfSwitch(nimb::JsonObject& json, const char* key, uint32_t value) {
    if (isSwitch(value))
        json.setValue(key, nimb::JsonValue(value));
}

void appendIfNotEmpty(std::vector<std::string>& list, const nimb::JsonObject& json,
                      const std::string& key) {
    std::string value = json.value(key).toString();
    if (!value.empty())
        list.push_back(std::move(value));
}

}  // namespace

DeviceDialCfg::DeviceDialCfg() {
    clear();
}
DeviceDialCfg::DeviceDialCfg(const DeviceDialCfg& other) = default;
DeviceDialCfg::~DeviceDialCfg() = default;
DeviceDialCfg& DeviceDialCfg::operator=(const DeviceDialCfg& other) = default;

std::string& DeviceDialCfg::phone(int n) {
    return this->*PHONE_FIELDS[n - 1];
}
const std::string& DeviceDialCfg::phone(int n) const {
    return this->*PHONE_FIELDS[n - 1];
}

void DeviceDialCfg::clear() {
    id.clear();
    trigger = 0;
    triggerTmr = 0;
    outputTmr = 0;
    for (int n = 1; n <= PHONES; ++n)
        phone(n).clear();
}

std::string DeviceDialCfg::toString() const {
    std::string text = "id=" + id + ", \n";
    text += "trigger=" + num(trigger) + ", \n";
    text += "triggerTmr=" + num(triggerTmr) + ", \n";
    text += "outputTmr=" + num(outputTmr);
    for (int n = 1; n <= PHONES; ++n)
        text += ", \nphone" + std::to_string(n) + "=" + phone(n);
    return text;
}

void DeviceDialCfg::fromJson(const nimb::JsonObject& json) {
    clear();
    id = json.value("id").toString();
    trigger = readU32(json, "trigger");
    triggerTmr = readU32(json, "triggerTmr");
    outputTmr = readU32(json, "outputTmr");
    for (int n = 1; n <= PHONES; ++n)
        phone(n) = json.value("phone" + std::to_string(n)).toString();
}

nimb::JsonObject DeviceDialCfg::toJson() const {
    nimb::JsonObject json{
        {"id", id},
        {"trigger", trigger},
        {"triggerTmr", triggerTmr},
        {"outputTmr", outputTmr},
    };
    for (int n = 1; n <= PHONES; ++n)
        json.setValue("phone" + std::to_string(n), nimb::JsonValue(phone(n)));
    return json;
}

bool DeviceDialCfg::operator==(const DeviceDialCfg& other) const {
    for (int n = 1; n <= PHONES; ++n) {
        if (phone(n) != other.phone(n))
            return false;
    }
    return id == other.id && trigger == other.trigger && triggerTmr == other.triggerTmr &&
           outputTmr == other.outputTmr;
}

// ---- DeviceMailCfg ---------------------------------------------------------

const char* const DEFAULT_MAIL_FROM = "noreply@tessary.local";

DeviceMailCfg::DeviceMailCfg() {
    clear();
}
DeviceMailCfg::DeviceMailCfg(const DeviceMailCfg& other) = default;
DeviceMailCfg::~DeviceMailCfg() = default;
DeviceMailCfg& DeviceMailCfg::operator=(const DeviceMailCfg& other) = default;

void DeviceMailCfg::clear() {
    id.clear();
    server.clear();
    port = DEFAULT_MAIL_PORT;
    from = DEFAULT_MAIL_FROM;
    auth = 0;
    username.clear();
    password.clear();
    secure = 1;
    test = 0;
    enable = 1;
    to.clear();
    cc.clear();
    bcc.clear();
}

std::string DeviceMailCfg::toString() const {
    std::string text =
        "mail: {id=" + id + "," + "server=" + server + "," + "port=" + num(port) + "," +
        "from=" + from + "," + "auth=" + num(auth) + "," + "username=" + username + "," +
        "password=" + std::string(password.size(), '*') + "," + "secure=" + num(secure) + "," +
        "test=" + num(test) + "," + "enable=" + num(enable);
    if (!to.empty() || !cc.empty() || !bcc.empty())
        text += ",";
    if (!to.empty())
        text += "to: {" + joined(to) + "}, ";
    if (!cc.empty())
        text += "cc: {" + joined(cc) + "}, ";
    if (!bcc.empty())
        text += "bcc: {" + joined(bcc) + "}";
    return text + "}";
}

void DeviceMailCfg::fromJson(const nimb::JsonObject& json) {
    clear();
    id = json.value("id").toString();
    server = json.value("server").toString();
    from = json.value("from").toString();
    username = json.value("username").toString();
    password = json.value("password").toString();
    port = readU32(json, "port");
    auth = readU32(json, "auth");
    secure = readU32(json, "secure");
    test = readU32(json, "test");
    enable = readU32(json, "enable");
    for (int n = 1; n <= MAX_TO; ++n)
        appendIfNotEmpty(to, json, "to" + std::to_string(n));
    appendIfNotEmpty(cc, json, "cc");
    appendIfNotEmpty(bcc, json, "bcc");
}

// Values out of range are left out rather than rejected when set, so that
// the receiver falls back to its own defaults for them.
nimb::JsonObject DeviceMailCfg::toJson() const {
    nimb::JsonObject json;
    setIfNotEmpty(json, "id", id);
    setIfNotEmpty(json, "server", server);
    if (port < PORT_LIMIT)
        json.setValue("port", nimb::JsonValue(port));
    setIfNotEmpty(json, "from", from);
    setIfSwitch(json, "auth", auth);
    setIfNotEmpty(json, "username", username);
    setIfNotEmpty(json, "password", password);
    setIfSwitch(json, "secure", secure);
    setIfSwitch(json, "test", test);
    setIfSwitch(json, "enable", enable);
    for (int n = 1; n <= MAX_TO && n <= static_cast<int>(to.size()); ++n)
        setIfNotEmpty(json, ("to" + std::to_string(n)).c_str(), to[n - 1]);
    if (!cc.empty())
        setIfNotEmpty(json, "cc", cc.front());
    if (!bcc.empty())
        setIfNotEmpty(json, "bcc", bcc.front());
    return json;
}

bool DeviceMailCfg::operator==(const DeviceMailCfg& other) const {
    return id == other.id && server == other.server && port == other.port && from == other.from &&
           auth == other.auth && username == other.username && password == other.password &&
           secure == other.secure && test == other.test && enable == other.enable &&
           to == other.to && cc == other.cc && bcc == other.bcc;
}

}  // namespace tessary
