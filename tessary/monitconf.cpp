#include "tessary/monitconf.h"

#include <cctype>

#include <QString>

namespace tessary {

namespace {

const char* const DEFAULT_HOST = "localhost";
const uint32_t DEFAULT_PORT = 4470;
const uint32_t HTTP_PORT = 80;

std::string levelText(nimb::LogLevel level) {
    return nimb::Logger::levelToStr(level);
}

}  // namespace

Url::Url() {
    clear();
}
Url::Url(const char* text) {
    setUrl(text);
}
Url::Url(const std::string& text) {
    setUrl(text);
}
Url::~Url() = default;

Url& Url::operator=(const char* text) {
    setUrl(text);
    return *this;
}

void Url::clear() {
    ssl = false;
    host = DEFAULT_HOST;
    port = DEFAULT_PORT;
}

void Url::setUrl(const std::string& text) {
    setUrl(text.c_str());
}

void Url::setUrl(const Url& other) {
    ssl = other.ssl;
    host = other.host;
    port = other.port;
}

void Url::setUrl(const char* text) {
    clear();
    if (text == nullptr || *text == '\0')
        return;
    const std::string lower = QString::fromUtf8(text).toLower().toStdString();
    size_t start = 0;
    size_t pos = lower.find("http://");
    if (pos != std::string::npos) {
        start = pos + 7;
    } else if ((pos = lower.find("https://")) != std::string::npos) {
        ssl = true;
        start = pos + 8;
    }
    if (start >= lower.size())
        return;
    const size_t colon = lower.find(':', start);
    port = HTTP_PORT;
    if (colon != std::string::npos && colon + 1 < lower.size()) {
        size_t end = colon + 1;
        while (end < lower.size() && std::isdigit(static_cast<unsigned char>(lower[end])))
            ++end;
        bool ok = false;
        const uint digits =
            QString::fromStdString(lower.substr(colon + 1, end - colon - 1)).toUInt(&ok);
        if (ok)
            port = digits;
    }
    host = lower.substr(start, colon == std::string::npos ? std::string::npos : colon - start);
}

std::string Url::url() const {
    if (host.empty())
        return std::string();
    std::string text = (ssl ? "https://" : "http://") + host;
    if (port != 0 && port != HTTP_PORT)
        text += ":" + std::to_string(port);
    return text;
}

std::string Url::toString() const {
    return "url=\"" + url() + "\"," + "host=\"" + host + "\"," + "port=" + std::to_string(port) +
           "," + "ssl=" + (ssl ? "1" : "0");
}

MonitGeneralConfig::MonitGeneralConfig() {
    clear();
}
MonitGeneralConfig::~MonitGeneralConfig() = default;

void MonitGeneralConfig::clear() {
    monitEnable = true;
    rs232Enable = true;
}

std::string MonitGeneralConfig::toString() const {
    return std::string("monit: {monit.enable=") + (monitEnable ? "1" : "0") + "," +
           "rs232.enable=" + (rs232Enable ? "1" : "0") + "}";
}

MonitServerConfig::MonitServerConfig() {
    clear();
}
MonitServerConfig::~MonitServerConfig() = default;

void MonitServerConfig::clear() {
    tcpPort = 4470;
    udpPort = 4470;
}

std::string MonitServerConfig::toString() const {
    return "web: {tcp.port=" + std::to_string(tcpPort) + "," +
           "udp.port=" + std::to_string(udpPort) + "}";
}

MonitLogConfig::MonitLogConfig() {
    clear();
}
MonitLogConfig::~MonitLogConfig() = default;

void MonitLogConfig::clear() {
    histHours = 1;
    histDays = 1;
    histMonths = 1;
    eventMonths = 6;
}

std::string MonitLogConfig::toString() const {
    return "log: {hist.hours=" + std::to_string(histHours) +
           ", hist.days=" + std::to_string(histDays) +
           ", hist.months=" + std::to_string(histMonths) +
           ", event.months=" + std::to_string(eventMonths) + "}";
}

MonitLoggerConfig::MonitLoggerConfig() {
    clear();
}
MonitLoggerConfig::~MonitLoggerConfig() = default;

void MonitLoggerConfig::clear() {
    deviceMonitFileName = "tessvc.log";
    deviceMonitLevel = nimb::FATAL;
    deviceManagerFileName = "device.log";
    deviceManagerLevel = nimb::FATAL;
    serialHidFileName = "serialhid.log";
    serialHidLevel = nimb::FATAL;
}

std::string MonitLoggerConfig::toString() const {
    return "debug: {devicemonit.filename=" + deviceMonitFileName +
           ", devicemonit.level=" + levelText(deviceMonitLevel) +
           ", devicemanager.filename=" + deviceManagerFileName +
           ", devicemanager.level=" + levelText(deviceManagerLevel) +
           ", serialhid.filename=" + serialHidFileName +
           ", serialhid.level=" + levelText(serialHidLevel) + "}";
}

MonitConfig::MonitConfig() {
    clear();
}
MonitConfig::~MonitConfig() = default;

void MonitConfig::clear() {
    general.clear();
    server.clear();
    log.clear();
    logger.clear();
}

// Every member, the last included, is followed by a comma; readers of the
// logs expect it.
std::string MonitConfig::toString() const {
    return "monitconfig: {" + general.toStr() + "," + server.toStr() + "," + log.toStr() + "," +
           logger.toStr() + ",}";
}

}  // namespace tessary
