// What the service keeps about the monitor servers and their devices: the
// computers that run a monitor server (Computer), everything kept about one
// device between two supervision cycles (MonitData), and the flags that
// changed between two readings of a device (MonitFlagsComparator).
//
// Plain values derived from nimb::Object: default construction equals
// clear(), copies are deep. Nothing here throws on bad data.
#pragma once

#include <cstdint>
#include <string>

#include "nimb/json.h"
#include "nimb/object.h"
#include "tessary/device.h"
#include "tessary/deviceconf.h"
#include "tessary/devsettings.h"
#include "tessary/regressive.h"

namespace tessary {

// A computer that runs a monitor server, as the client plug-in reports it.
class Computer : public nimb::Object {
public:
    std::string monVersion;  // version of the monitor server
    std::string apiVersion;  // version of its interface
    std::string osVersion;   // operating system of the computer
    std::string hostname;
    std::string ip;  // address as text
    int port;        // the server's port; 0 when unknown
    int64_t upTime;  // the server's running time; 0 when unknown

    Computer();
    Computer(const Computer& other);
    ~Computer() override;

    // "monVersion=...,apiVersion=...,osVersion=...,hostname=...,ip=...,
    // port=...,upTime=..." where an empty text and a port or upTime of 0
    // read "<unknown>"; no prefix and no line feed.
    std::string toString() const override;

    virtual Computer& operator=(const Computer& other);
    // Empty texts, port and upTime 0.
    virtual void clear();
    // True when every text is empty and port and upTime are 0.
    virtual bool empty() const;
    // Clears, then reads the five texts and "port" and "upTime" as numbers
    // truncated toward zero; a missing key gives an empty text or 0.
    virtual void fromJson(const nimb::JsonObject& json);
    // All seven members, always, named after their fields.
    virtual nimb::JsonObject toJson() const;

    bool operator==(const Computer& other) const;
    bool operator!=(const Computer& other) const { return !(*this == other); }
};

// Everything the service keeps about one device between two cycles.
class MonitData : public nimb::Object {
public:
    Device actualState;                   // the device as read in this cycle
    Device oldState;                      // as read in the previous cycle
    DeviceConfig config;                  // the device model's configuration
    DeviceShutCfg shutCfg;                // the device's shutdown settings
    RegressiveCounter regressiveCounter;  // the countdowns by cause
    Regressive actualRegressive;          // the countdown reported in this cycle
    Regressive oldRegressive;             // reported in the previous cycle
    int64_t remoteCtrlTimer;              // remote-control timer; -1 when not set

    MonitData();
    MonitData(const MonitData& other);
    ~MonitData() override;

    // "actualState: {...},oldState: {...},config: {...},shutCfg: {...},
    // actualRegressive: {...},oldRegressive: {...},regressiveCounter: {...},
    // remoteCtrlTimer = -1" with each member's own text between the braces.
    // The two single countdowns come before the counter.
    std::string toString() const override;

    virtual MonitData& operator=(const MonitData& other);
    // Clears both states, the configuration and the shutdown settings,
    // resets the three countdown members and sets remoteCtrlTimer to -1.
    virtual void clear();
};

// The flags that came on and went off between two readings of a device.
// After update() the four records hold transitions only, never levels. The
// text form is the one of nimb::Object.
class MonitFlagsComparator : public nimb::Object {
public:
    DeviceFailFlags failOn;   // failure bits clear before and set now
    DeviceFailFlags failOff;  // failure bits set before and clear now
    DeviceFlags flagsOn;      // status bits clear before and set now
    DeviceFlags flagsOff;     // status bits set before and clear now

    MonitFlagsComparator();
    MonitFlagsComparator(const MonitFlagsComparator& other);
    ~MonitFlagsComparator() override;

    virtual MonitFlagsComparator& operator=(const MonitFlagsComparator& other);
    // Clears all four records.
    virtual void clear();
    // Clears, then compares the failure and status flags of the two devices
    // bit by bit; nothing else of the devices is looked at.
    virtual void update(const Device& oldDevice, const Device& newDevice);
    virtual DeviceFailFlags getFailOn() const;
    virtual DeviceFailFlags getFailOff() const;
    virtual DeviceFlags getFlagsOn() const;
    virtual DeviceFlags getFlagsOff() const;
};

}  // namespace tessary
