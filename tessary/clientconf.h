// The suite's client-side configuration: the web endpoints of the client
// services, their loggers, and the notification thresholds (NotifyConfig).
// Value records derived from nimb::Object: default construction equals
// clear(), copies are deep, toString() is the text form for logs. Nothing
// here throws on bad data.
#pragma once

#include <cstdint>
#include <string>

#include "nimb/json.h"
#include "nimb/logger.h"
#include "nimb/object.h"

namespace tessary {

// Where the shutdown service finds the monitor server.
class ShutSvcConfig : public nimb::Object {
public:
    std::string webHost;  // "localhost"
    uint32_t webPort;     // 4470

    ShutSvcConfig();
    ~ShutSvcConfig() override;
    void clear();
    std::string toString() const override;
};

class NotifySvcConfig : public nimb::Object {
public:
    std::string webHost;       // "localhost"
    uint32_t webPort;          // 4470
    uint64_t messageInterval;  // 3000

    NotifySvcConfig();
    ~NotifySvcConfig() override;
    void clear();
    std::string toString() const override;
    // "webHost" (text), "webPort" and "messageInterval" (numbers).
    nimb::JsonObject toJson() const;
    // Reads the three keys; a missing key reads as 0 or "".
    NotifySvcConfig& fromJson(const nimb::JsonObject& json);
};

class NotifyGuiConfig : public nimb::Object {
public:
    std::string webHost;       // "localhost"
    uint32_t webPort;          // 4470
    uint64_t messageInterval;  // 3000

    NotifyGuiConfig();
    ~NotifyGuiConfig() override;
    void clear();
    std::string toString() const override;
};

extern const char* const DEFAULT_MQTT_BROKER_HOST;

class CloudSvcMqttConfig : public nimb::Object {
public:
    bool enable;             // true
    std::string brokerHost;  // DEFAULT_MQTT_BROKER_HOST
    uint32_t brokerPort;     // 1883

    CloudSvcMqttConfig();
    ~CloudSvcMqttConfig() override;
    void clear();
    std::string toString() const override;
};

class CloudSvcConfig : public nimb::Object {
public:
    std::string webHost;       // "localhost"
    uint32_t webPort;          // 4470
    uint64_t messageInterval;  // 3000
    // Set to its defaults on construction only: clear() leaves it alone.
    CloudSvcMqttConfig mqtt;

    CloudSvcConfig();
    ~CloudSvcConfig() override;
    void clear();
    // Does not print mqtt.
    std::string toString() const override;
};

// Log file names and levels of the client programs; every level defaults
// to FATAL.
class ClientLoggerConfig : public nimb::Object {
public:
    std::string monitClientFilename;  // "client.log"
    nimb::LogLevel monitClientLevel;
    std::string notifySvcFilename;  // "notifysvc.log"
    nimb::LogLevel notifySvcLevel;
    std::string notifyGuiFilename;  // "notifygui.log"
    nimb::LogLevel notifyGuiLevel;
    std::string shutSvcFilename;  // "shutsvc.log"
    nimb::LogLevel shutSvcLevel;
    std::string cloudSvcFilename;  // "cloudsvc.log"
    nimb::LogLevel cloudSvcLevel;

    ClientLoggerConfig();
    ~ClientLoggerConfig() override;
    void clear();
    std::string toString() const override;
};

class ClientConfig : public nimb::Object {
public:
    NotifySvcConfig notifySvc;
    NotifyGuiConfig notifyGui;
    ShutSvcConfig shutSvc;
    CloudSvcConfig cloudSvc;
    ClientLoggerConfig logger;

    ClientConfig();
    ~ClientConfig() override;
    // Clears the five members in order (so the MQTT settings stay).
    void clear();
    std::string toString() const override;
};

// Notification thresholds. valSecond is stored in milliseconds but travels
// in JSON in whole minutes.
class NotifyConfig : public nimb::Object {
public:
    uint32_t id;          // 1; written to JSON, never read back
    uint32_t option;      // 1
    uint32_t valPercent;  // 10
    uint32_t valSecond;   // 300000 ms

    NotifyConfig();
    ~NotifyConfig() override;
    void clear();
    std::string toString() const override;
    // valSecond is written as milliseconds / 60000 (integer division).
    nimb::JsonObject toJson() const;
    // Clears, then reads "option", "valPercent" and "valSecond" (minutes,
    // times 60000, truncated); the id stays 1.
    NotifyConfig& fromJson(const nimb::JsonObject& json);
};

}  // namespace tessary
