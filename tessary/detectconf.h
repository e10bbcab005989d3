// How the monitor server looks for devices: which USB ids it probes and which
// serial ports it scans. A value record derived from nimb::Object: default
// construction equals clear(), copies are deep, toString() is the text form
// for logs and toJson()/fromJson() the form of the devices folder's
// "detection.json". Booleans travel as 0 and 1. Nothing here throws.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "nimb/json.h"
#include "nimb/object.h"

namespace tessary {

// One USB id pair the detection probes.
struct UsbDetection {
    uint32_t vendorId = 0;
    uint32_t productId = 0;
};

class DetectionConfig : public nimb::Object {
public:
    bool usbEnable;                  // "usb.enable", cleared true
    std::vector<UsbDetection> usb;   // "usb", cleared empty
    bool serialEnable;               // "serial.enable", cleared true
    std::vector<std::string> serial; // "serial": port names, cleared empty
    uint32_t baudRate;               // "serial.baudrate", cleared 2400

    DetectionConfig();
    ~DetectionConfig() override;
    void clear();
    // "detection: {usb.enable=1,usb=[{vendorId=...,productId=...}],
    // serial.enable=1,serial=[...],serial.baudrate=2400}"
    std::string toString() const override;
    // Keys "usbEnable", "usb" (array of {"vendorId","productId"}),
    // "serialEnable", "serial" (array of texts), "baudRate".
    nimb::JsonObject toJson() const;
    // Clears, then reads every key; a missing key reads as 0, false or empty.
    void fromJson(const nimb::JsonObject& json);
};

}  // namespace tessary
