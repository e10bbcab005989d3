#include "nimb/serialport.h"

namespace nimb {

Port::~Port() = default;

SerialPort::~SerialPort() = default;

SerialPort::SerialConfig::SerialConfig() { clear(); }

SerialPort::SerialConfig::SerialConfig(long baudrate, int databits, int stopbits, int parity,
                                       long timeout)
    : baudrate(baudrate), databits(databits), stopbits(stopbits), parity(parity),
      timeout(timeout) {}

SerialPort::SerialConfig::SerialConfig(const SerialConfig& other) = default;

SerialPort::SerialConfig::~SerialConfig() = default;

std::string SerialPort::SerialConfig::toString() const {
    return "baudrate(bps)=" + std::to_string(baudrate) + ", databits=" + std::to_string(databits) +
           ", stopbits=" + std::to_string(stopbits) + ", parity=" + std::to_string(parity) +
           ", timeout(ms)=" + std::to_string(timeout);
}

SerialPort::SerialConfig& SerialPort::SerialConfig::operator=(const SerialConfig& other) = default;

void SerialPort::SerialConfig::clear() {
    baudrate = 0;
    databits = 0;
    stopbits = 0;
    parity = 0;
    timeout = 0;
}

bool SerialPort::SerialConfig::operator==(const SerialConfig& other) const {
    return baudrate == other.baudrate && databits == other.databits &&
           stopbits == other.stopbits && parity == other.parity && timeout == other.timeout;
}

}  // namespace nimb
