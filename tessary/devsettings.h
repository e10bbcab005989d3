// Per-device settings that the monitor server keeps for each UPS and hands to
// its clients: the shutdown settings (DeviceShutCfg), the table of dated
// events (DeviceEventApp), the timed on/off programme (DeviceSchedule), the
// dialler (DeviceDialCfg) and the e-mail alarms (DeviceMailCfg).
//
// Every record is a plain value derived from nimb::Object: default
// construction equals clear(), copies are deep, toString() is the text form
// for logs and toJson()/fromJson() the form that crosses the plug-in
// boundary. fromJson() clears first and then reads every key, so a missing
// key reads as 0, false or an empty text, not as the cleared value. Switches
// travel in JSON as the numbers 0 and 1. Nothing here throws on bad data.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "nimb/json.h"
#include "nimb/object.h"

namespace tessary {

// When and how the protected computer and the UPS itself are shut down. The
// units of the counters and timers are the monitor server's; nothing here
// converts or checks them. The five switches hold 0 or 1.
class DeviceShutCfg : public nimb::Object {
public:
    std::string id;             // the device these settings belong to
    uint32_t enabled;           // shutdown handling enabled; cleared 0
    uint32_t counterManual;     // countdown on a user request; cleared 20
    uint32_t counterOpBattery;  // countdown on battery; cleared 30
    uint32_t counterLoBattery;  // countdown on low battery; cleared 20
    uint32_t counterFailure;    // countdown on a device failure; cleared 20
    uint32_t counterTimer;      // countdown when a device timer expires; cleared 20
    uint32_t counterPowerLo;    // countdown on low power; cleared 10
    uint32_t counterBatLevel;   // countdown below the battery threshold; cleared 10
    uint32_t remCtrlDelay;      // delay of remote-control actions; cleared 1000
    uint32_t devShutEnabled;    // switch the UPS off after the computer; cleared 1
    uint32_t devStandByKeep;    // keep the UPS in stand-by instead; cleared 0
    uint32_t devShutTimer;      // delay before the UPS switches off; cleared 120
    uint32_t cliShutEnabled;    // shut the client computer down; cleared 1
    uint32_t cliHibernate;      // suspend to disk instead of powering off; cleared 1
    uint32_t cliShutTimer;      // client shutdown delay in seconds; cleared 5
    std::string cliRun;         // program run before the shutdown; empty for none

    DeviceShutCfg();
    DeviceShutCfg(const DeviceShutCfg& other);
    ~DeviceShutCfg() override;

    // Three groups, every item followed by ", " and a line break except the
    // last of a group:
    //   shutdown: {id=UPS1, \nenabled=0, \n... \nremCtrlDelay=1000}, \n
    //   device: {devShutEnabled=1, \ndevShutTimer=120, \ndevstandByKeep=0}\n
    //   client: {cliShutEnabled=1, \ncliHibernate=1, \ncliShutTimer=5, \ncliRun="..."}
    // The device group prints the timer before the stand-by switch and
    // spells it "devstandByKeep".
    std::string toString() const override;

    virtual DeviceShutCfg& operator=(const DeviceShutCfg& other);
    // The system's defaults listed at the fields.
    virtual void clear();
    // Clears, then reads every key: texts as strings, switches with the
    // lenient boolean reader, counters and timers as numbers truncated
    // toward zero (a missing counter reads 0, not its default).
    virtual void fromJson(const nimb::JsonObject& json);
    // Every field under its own name; texts as strings, the rest as numbers.
    virtual nimb::JsonObject toJson() const;

    bool operator==(const DeviceShutCfg& other) const;
    bool operator!=(const DeviceShutCfg& other) const { return !(*this == other); }
};

// Ten event slots of a device, each a date stamp and an event identifier in
// the monitor server's own encoding, carried unchanged.
class DeviceEventApp : public nimb::Object {
public:
    uint32_t dateEvent1;
    uint32_t idEvent1;
    uint32_t dateEvent2;
    uint32_t idEvent2;
    uint32_t dateEvent3;
    uint32_t idEvent3;
    uint32_t dateEvent4;
    uint32_t idEvent4;
    uint32_t dateEvent5;
    uint32_t idEvent5;
    uint32_t dateEvent6;
    uint32_t idEvent6;
    uint32_t dateEvent7;
    uint32_t idEvent7;
    uint32_t dateEvent8;
    uint32_t idEvent8;
    uint32_t dateEvent9;
    uint32_t idEvent9;
    uint32_t dateEvent10;
    uint32_t idEvent10;
    std::string id;  // device id

    // The number of slots.
    static constexpr int SLOTS = 10;

    DeviceEventApp();
    DeviceEventApp(const DeviceEventApp& other);
    ~DeviceEventApp() override;

    // "dateEvent1=0,idEvent1=0,...,dateEvent10=0,idEvent10=0"; no id.
    std::string toString() const override;

    virtual DeviceEventApp& operator=(const DeviceEventApp& other);
    // Every slot 0, id empty.
    virtual void clear();
    // Clears, then reads "id" and the twenty numbers (truncated).
    virtual void fromJson(const nimb::JsonObject& json);
    // "id" and the twenty numbers, always.
    virtual nimb::JsonObject toJson() const;
    // Compact JSON text built by hand: {"id":"UPS1","dateEvent1":0,...,
    // "idEvent10":0}, slots in order; the id member only when the id is not
    // empty, and the id is not escaped.
    virtual std::string toStringJson() const;

    // Slot index (1 to SLOTS) access for code that walks the table.
    uint32_t& dateEvent(int slot);
    uint32_t dateEvent(int slot) const;
    uint32_t& idEvent(int slot);
    uint32_t idEvent(int slot) const;

    bool operator==(const DeviceEventApp& other) const;
    bool operator!=(const DeviceEventApp& other) const { return !(*this == other); }

private:
    // Working state of the monitor server's event handling; cleared, never
    // serialised.
    uint32_t m_interval;
    uint32_t m_index;
    uint32_t m_pending;
    bool m_changed;
    bool m_busy;
};

// One entry of a device's timed on/off programme.
class DeviceSchedule : public nimb::Object {
public:
    std::string id;      // device id
    uint32_t idList;     // index of the entry in the device's list
    uint32_t status;     // the monitor server's status code of the entry
    uint32_t activeDay;  // the monitor server's active-day selection
    bool specific;       // for one date (year/month/day) rather than recurring
    uint32_t year;
    uint32_t month;
    uint32_t day;
    uint32_t hourOn;
    uint32_t minOn;
    uint32_t utcOn;  // UTC offset of the switch-on time
    uint32_t hourOff;
    uint32_t minOff;
    uint32_t utcOff;  // UTC offset of the switch-off time
    uint32_t allWeekDay;
    uint32_t allMonth;

    DeviceSchedule();
    DeviceSchedule(const DeviceSchedule& other);
    ~DeviceSchedule() override;

    // "schedule: {id=UPS1, \nidList=0, \n... \nallMonth=0}\n" with the field
    // names in camel case; specific prints as 1/0.
    std::string toString() const override;

    virtual DeviceSchedule& operator=(const DeviceSchedule& other);
    // Every number 0, specific false, id empty.
    virtual void clear();
    // Clears, then reads the keys that toJson() writes: "option" into
    // specific, the rest as numbers (truncated).
    virtual void fromJson(const nimb::JsonObject& json);
    // "id", "option" (specific as 0/1), "year", "month", "day", "houron",
    // "minon", "utcon", "houroff", "minoff", "utcoff", "allweekday",
    // "allmonth". idList, status and activeDay do not travel.
    virtual nimb::JsonObject toJson() const;

    bool operator==(const DeviceSchedule& other) const;
    bool operator!=(const DeviceSchedule& other) const { return !(*this == other); }
};

// A dialler that calls up to eight telephone numbers when triggered. The
// trigger codes and the units of the two timers are the monitor server's.
class DeviceDialCfg : public nimb::Object {
public:
    std::string id;       // device id
    uint32_t trigger;     // event code that starts dialling
    uint32_t triggerTmr;  // delay after the trigger before dialling
    uint32_t outputTmr;   // duration of the dialler output
    std::string phone1;
    std::string phone2;
    std::string phone3;
    std::string phone4;
    std::string phone5;
    std::string phone6;
    std::string phone7;
    std::string phone8;

    // The number of telephone numbers.
    static constexpr int PHONES = 8;

    DeviceDialCfg();
    DeviceDialCfg(const DeviceDialCfg& other);
    ~DeviceDialCfg() override;

    // "id=UPS1, \ntrigger=0, \ntriggerTmr=0, \noutputTmr=0, \nphone1=, \n...
    // phone8=" with no group prefix; empty texts print as nothing.
    std::string toString() const override;

    virtual DeviceDialCfg& operator=(const DeviceDialCfg& other);
    // Every number 0 and every text empty.
    virtual void clear();
    // Clears, then reads every key; numbers are truncated toward zero.
    virtual void fromJson(const nimb::JsonObject& json);
    // "id", "trigger", "triggerTmr", "outputTmr", "phone1" ... "phone8",
    // always.
    virtual nimb::JsonObject toJson() const;

    // Telephone number n (1 to PHONES), for code that walks them.
    std::string& phone(int n);
    const std::string& phone(int n) const;

    bool operator==(const DeviceDialCfg& other) const;
    bool operator!=(const DeviceDialCfg& other) const { return !(*this == other); }
};

// The sender address of a cleared DeviceMailCfg.
extern const char* const DEFAULT_MAIL_FROM;

// An SMTP account and the recipients of a device's e-mail alarms. auth,
// secure, test and enable are switches of 0 or 1.
class DeviceMailCfg : public nimb::Object {
public:
    std::string id;      // device id
    std::string server;  // SMTP server host
    uint32_t port;       // cleared 587
    std::string from;    // cleared DEFAULT_MAIL_FROM
    uint32_t auth;       // the server requires authentication; cleared 0
    std::string username;
    std::string password;          // never printed
    uint32_t secure;               // use a secured connection; cleared 1
    uint32_t test;                 // send a test message; cleared 0
    uint32_t enable;               // mail notification enabled; cleared 1
    std::vector<std::string> to;   // main recipients; at most five travel
    std::vector<std::string> cc;   // copy recipients; only the first travels
    std::vector<std::string> bcc;  // blind-copy recipients; only the first travels

    // The number of main recipients that travel in JSON.
    static constexpr int MAX_TO = 5;

    DeviceMailCfg();
    DeviceMailCfg(const DeviceMailCfg& other);
    ~DeviceMailCfg() override;

    // One line: "mail: {id=UPS1,server=...,port=587,from=...,auth=0,
    // username=...,password=****,secure=1,test=0,enable=1" with one "*" per
    // character of the password; then, only for the lists that are not
    // empty, "," and "to: {a,b}, ", "cc: {c}, ", "bcc: {d}"; and "}".
    std::string toString() const override;

    virtual DeviceMailCfg& operator=(const DeviceMailCfg& other);
    // The defaults listed at the fields; every other text and list empty.
    virtual void clear();
    // Clears, then reads every key: a missing "port" or "enable" reads 0.
    // The non-empty texts of "to1" ... "to5" are appended to `to` in that
    // order, those of "cc" and "bcc" to their lists.
    virtual void fromJson(const nimb::JsonObject& json);
    // Only the members whose values are valid: "id", "server", "from",
    // "username", "password" when not empty; "port" below 65536; "auth",
    // "secure", "test", "enable" when 0 or 1; "to1" ... "to5" for the first
    // five entries of `to` that are not empty, numbered by their position;
    // "cc" and "bcc" for the first entry of each when not empty.
    virtual nimb::JsonObject toJson() const;

    bool operator==(const DeviceMailCfg& other) const;
    bool operator!=(const DeviceMailCfg& other) const { return !(*this == other); }
};

}  // namespace tessary
