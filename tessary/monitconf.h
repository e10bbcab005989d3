// The monitor server's configuration and tessary::Url, the address through
// which a client names the monitor server. Value records derived from
// nimb::Object: default construction equals clear(), copies are deep,
// toString() is the text form for logs. None has a JSON form; nothing throws.
#pragma once

#include <cstdint>
#include <string>

#include "nimb/logger.h"
#include "nimb/object.h"

namespace tessary {

// The monitor server's address. Cleared: http, "localhost", port 4470.
class Url : public nimb::Object {
public:
    bool ssl;
    std::string host;
    uint32_t port;

    Url();
    Url(const Url& other) = default;
    Url(const char* text);
    Url(const std::string& text);
    ~Url() override;
    Url& operator=(const Url& other) = default;
    Url& operator=(const char* text);

    // Parses "[http://|https://]host[:port]", case-insensitively; the host is
    // kept in lower case. A null or empty text leaves the cleared record; a
    // host without digits after ":" (or without ":") gets port 80.
    void setUrl(const char* text);
    void setUrl(const std::string& text);
    void setUrl(const Url& other);

    // "http[s]://host[:port]"; the port is left out when it is 0 or 80 (also
    // for https). An empty host gives "".
    std::string url() const;
    void clear();
    std::string toString() const override;
};

class MonitGeneralConfig : public nimb::Object {
public:
    bool monitEnable;  // "monit.enable", cleared true
    bool rs232Enable;  // "rs232.enable", cleared true

    MonitGeneralConfig();
    ~MonitGeneralConfig() override;
    void clear();
    std::string toString() const override;
};

class MonitServerConfig : public nimb::Object {
public:
    int tcpPort;  // "tcp.port", cleared 4470
    int udpPort;  // "udp.port", cleared 4470

    MonitServerConfig();
    ~MonitServerConfig() override;
    void clear();
    std::string toString() const override;
};

class MonitLogConfig : public nimb::Object {
public:
    int histHours;    // "hist.hours", cleared 1
    int histDays;     // "hist.days", cleared 1
    int histMonths;   // "hist.months", cleared 1
    int eventMonths;  // "event.months", cleared 6

    MonitLogConfig();
    ~MonitLogConfig() override;
    void clear();
    std::string toString() const override;
};

// Log file names and levels of the monitor server's parts; every level is
// cleared to FATAL.
class MonitLoggerConfig : public nimb::Object {
public:
    std::string deviceMonitFileName;    // "devicemonit.filename", "tessvc.log"
    nimb::LogLevel deviceMonitLevel;    // "devicemonit.level"
    std::string deviceManagerFileName;  // "devicemanager.filename", "device.log"
    nimb::LogLevel deviceManagerLevel;  // "devicemanager.level"
    std::string serialHidFileName;      // "serialhid.filename", "serialhid.log"
    nimb::LogLevel serialHidLevel;      // "serialhid.level"

    MonitLoggerConfig();
    ~MonitLoggerConfig() override;
    void clear();
    std::string toString() const override;
};

class MonitConfig : public nimb::Object {
public:
    MonitGeneralConfig general;
    MonitServerConfig server;
    MonitLogConfig log;
    MonitLoggerConfig logger;

    MonitConfig();
    ~MonitConfig() override;
    void clear();
    std::string toString() const override;
};

}  // namespace tessary
