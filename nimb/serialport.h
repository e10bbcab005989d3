// Ports and the line settings of a serial port.
#pragma once

#include <string>

#include "nimb/object.h"

namespace nimb {

// Base of the suite's communication ports.
class Port : public Object {
public:
    Port() = default;
    Port(const Port&) = default;
    Port& operator=(const Port&) = default;
    ~Port() override;
};

// A serial port. Only its line settings are used by the suite's records; the
// service never opens a port itself.
class SerialPort : public Port {
public:
    // The line settings of a serial port, a plain value. Cleared, every field
    // is 0 (no settings known).
    class SerialConfig : public Object {
    public:
        long baudrate;  // bits per second
        int databits;
        int stopbits;
        int parity;     // the device's parity code, 0 for none
        long timeout;   // milliseconds

        SerialConfig();
        SerialConfig(long baudrate, int databits, int stopbits, int parity, long timeout);
        SerialConfig(const SerialConfig& other);
        ~SerialConfig() override;

        // One line: "baudrate(bps)=9600, databits=8, stopbits=1, parity=0,
        // timeout(ms)=1000".
        std::string toString() const override;

        virtual SerialConfig& operator=(const SerialConfig& other);
        // Sets every field to 0.
        virtual void clear();

        bool operator==(const SerialConfig& other) const;
        bool operator!=(const SerialConfig& other) const { return !(*this == other); }
    };

    SerialPort() = default;
    SerialPort(const SerialPort&) = default;
    SerialPort& operator=(const SerialPort&) = default;
    ~SerialPort() override;
};

}  // namespace nimb
