#include "tessary/clientconf.h"

namespace tessary {

namespace {

const char* const DEFAULT_HOST = "localhost";
const uint32_t DEFAULT_PORT = 4470;
const uint64_t DEFAULT_INTERVAL = 3000;
const nimb::LogLevel DEFAULT_LEVEL = nimb::FATAL;
const uint32_t MS_PER_MINUTE = 60000;

std::string levelText(nimb::LogLevel level) {
    return nimb::Logger::levelToStr(level);
}

std::string num(uint64_t value) {
    return std::to_string(value);
}

}  // namespace

const char* const DEFAULT_MQTT_BROKER_HOST = "test.mosquitto.org";

ShutSvcConfig::ShutSvcConfig() {
    clear();
}
ShutSvcConfig::~ShutSvcConfig() = default;

void ShutSvcConfig::clear() {
    webHost = DEFAULT_HOST;
    webPort = DEFAULT_PORT;
}

std::string ShutSvcConfig::toString() const {
    return "shutsvc: {web.host=" + webHost + "," + "web.port=" + num(webPort) + "}";
}

NotifySvcConfig::NotifySvcConfig() {
    clear();
}
NotifySvcConfig::~NotifySvcConfig() = default;

void NotifySvcConfig::clear() {
    webHost = DEFAULT_HOST;
    webPort = DEFAULT_PORT;
    messageInterval = DEFAULT_INTERVAL;
}

std::string NotifySvcConfig::toString() const {
    return "notifysvc: {web.host=" + webHost + "," + "web.port=" + num(webPort) + "," +
           "message.interval=" + num(messageInterval) + "}";
}

nimb::JsonObject NotifySvcConfig::toJson() const {
    nimb::JsonObject json;
    json.setValue("webHost", nimb::JsonValue(webHost));
    json.setValue("webPort", nimb::JsonValue(static_cast<unsigned long long>(webPort)));
    json.setValue("messageInterval",
                  nimb::JsonValue(static_cast<unsigned long long>(messageInterval)));
    return json;
}

NotifySvcConfig& NotifySvcConfig::fromJson(const nimb::JsonObject& json) {
    webHost = json.value("webHost").toString();
    webPort = nimb::truncatedNumber<uint32_t>(json.value("webPort").toDouble());
    messageInterval = nimb::truncatedNumber<uint64_t>(json.value("messageInterval").toDouble());
    return *this;
}

NotifyGuiConfig::NotifyGuiConfig() {
    clear();
}
NotifyGuiConfig::~NotifyGuiConfig() = default;

void NotifyGuiConfig::clear() {
    webHost = DEFAULT_HOST;
    webPort = DEFAULT_PORT;
    messageInterval = DEFAULT_INTERVAL;
}

std::string NotifyGuiConfig::toString() const {
    return "notifygui: {web.host=" + webHost + "," + "web.port=" + num(webPort) + "," +
           "message.interval=" + num(messageInterval) + "}";
}

CloudSvcMqttConfig::CloudSvcMqttConfig() {
    clear();
}
CloudSvcMqttConfig::~CloudSvcMqttConfig() = default;

void CloudSvcMqttConfig::clear() {
    enable = true;
    brokerHost = DEFAULT_MQTT_BROKER_HOST;
    brokerPort = 1883;
}

std::string CloudSvcMqttConfig::toString() const {
    return std::string("mqtt: {enable=") + (enable ? "1" : "0") + "," + "brokerHost=\"" +
           brokerHost + "\"," + "brokerPort=" + num(brokerPort) + "}";
}

CloudSvcConfig::CloudSvcConfig() {
    clear();
}
CloudSvcConfig::~CloudSvcConfig() = default;

void CloudSvcConfig::clear() {
    webHost = DEFAULT_HOST;
    webPort = DEFAULT_PORT;
    messageInterval = DEFAULT_INTERVAL;
}

// The blank after the port's comma differs from the sibling records; log
// readers rely on the form as it is.
std::string CloudSvcConfig::toString() const {
    return "cloudsvc: {web.host=" + webHost + "," + "web.port=" + num(webPort) + ", " +
           "message.interval=" + num(messageInterval) + "}";
}

ClientLoggerConfig::ClientLoggerConfig() {
    clear();
}
ClientLoggerConfig::~ClientLoggerConfig() = default;

void ClientLoggerConfig::clear() {
    monitClientFilename = "client.log";
    monitClientLevel = DEFAULT_LEVEL;
    notifySvcFilename = "notifysvc.log";
    notifySvcLevel = DEFAULT_LEVEL;
    notifyGuiFilename = "notifygui.log";
    notifyGuiLevel = DEFAULT_LEVEL;
    shutSvcFilename = "shutsvc.log";
    shutSvcLevel = DEFAULT_LEVEL;
    cloudSvcFilename = "cloudsvc.log";
    cloudSvcLevel = DEFAULT_LEVEL;
}

std::string ClientLoggerConfig::toString() const {
    return "debug: {monitclient.filename=" + monitClientFilename +
           ", monitclient.level=" + levelText(monitClientLevel) +
           ", notifysvc.filename=" + notifySvcFilename +
           ", notifysvc.level=" + levelText(notifySvcLevel) +
           ", notifygui.filename=" + notifyGuiFilename +
           ", notifygui.level=" + levelText(notifyGuiLevel) +
           ", shutsvc.filename=" + shutSvcFilename + ", shutsvc.level=" + levelText(shutSvcLevel) +
           ", cloudsvc.filename=" + cloudSvcFilename +
           ", cloudsvc.level=" + levelText(cloudSvcLevel) + "}";
}

ClientConfig::ClientConfig() {
    clear();
}
ClientConfig::~ClientConfig() = default;

void ClientConfig::clear() {
    notifySvc.clear();
    notifyGui.clear();
    shutSvc.clear();
    cloudSvc.clear();
    logger.clear();
}

std::string ClientConfig::toString() const {
    return "clientconfig: {" + notifySvc.toStr() + "," + notifyGui.toStr() + "," + shutSvc.toStr() +
           "," + cloudSvc.toStr() + "," + logger.toStr() + "}";
}

NotifyConfig::NotifyConfig() {
    clear();
}
NotifyConfig::~NotifyConfig() = default;

void NotifyConfig::clear() {
    id = 1;
    option = 1;
    valPercent = 10;
    valSecond = 5 * MS_PER_MINUTE;
}

std::string NotifyConfig::toString() const {
    return "notifyConfig: {id=" + num(id) + "," + "option=" + num(option) + "," +
           "value.Ref.Percent=" + num(valPercent) + "," + "value.Ref.Seconds=" + num(valSecond) +
           "}";
}

nimb::JsonObject NotifyConfig::toJson() const {
    nimb::JsonObject json;
    json.setValue("id", nimb::JsonValue(id));
    json.setValue("option", nimb::JsonValue(option));
    json.setValue("valPercent", nimb::JsonValue(valPercent));
    json.setValue("valSecond", nimb::JsonValue(valSecond / MS_PER_MINUTE));
    return json;
}

// The id is written but never read back: it identifies the writer's record.
NotifyConfig& NotifyConfig::fromJson(const nimb::JsonObject& json) {
    clear();
    option = nimb::truncatedNumber<uint32_t>(json.value("option").toDouble());
    valPercent = nimb::truncatedNumber<uint32_t>(json.value("valPercent").toDouble());
    valSecond = nimb::truncatedNumber<uint32_t>(json.value("valSecond").toDouble() * 60000.0);
    return *this;
}

}  // namespace tessary
