#include "tessary/detectconf.h"

namespace tessary {

DetectionConfig::DetectionConfig() { clear(); }
DetectionConfig::~DetectionConfig() = default;

void DetectionConfig::clear()
{
    usbEnable = true;
    usb.clear();
    serialEnable = true;
    serial.clear();
    baudRate = 2400;
}

std::string DetectionConfig::toString() const
{
    std::string text = std::string("detection: {usb.enable=") + (usbEnable ? "1" : "0") + ",usb=[";
    for (size_t i = 0; i < usb.size(); ++i)
        text += (i ? "," : "") + std::string("{vendorId=") + std::to_string(usb[i].vendorId) +
                ",productId=" + std::to_string(usb[i].productId) + "}";
    text += std::string("],serial.enable=") + (serialEnable ? "1" : "0") + ",serial=[";
    for (size_t i = 0; i < serial.size(); ++i)
        text += (i ? "," : "") + serial[i];
    return text + "],serial.baudrate=" + std::to_string(baudRate) + "}";
}

nimb::JsonObject DetectionConfig::toJson() const
{
    nimb::JsonArray usbJson;
    for (const UsbDetection& id : usb)
        usbJson.append(nimb::JsonObject{{"vendorId", id.vendorId}, {"productId", id.productId}});
    nimb::JsonArray serialJson;
    for (const std::string& port : serial)
        serialJson.append(nimb::JsonValue(port));
    return nimb::JsonObject{{"usbEnable", usbEnable ? 1 : 0},
                            {"usb", usbJson},
                            {"serialEnable", serialEnable ? 1 : 0},
                            {"serial", serialJson},
                            {"baudRate", baudRate}};
}

void DetectionConfig::fromJson(const nimb::JsonObject& json)
{
    clear();
    usbEnable = json.value("usbEnable").toBool();
    const nimb::JsonArray usbJson = json.value("usb").toArray();
    for (int i = 0; i < usbJson.size(); ++i) {
        const nimb::JsonObject id = usbJson.at(i).toObject();
        usb.push_back({nimb::truncatedNumber<uint32_t>(id.value("vendorId").toDouble()),
                       nimb::truncatedNumber<uint32_t>(id.value("productId").toDouble())});
    }
    serialEnable = json.value("serialEnable").toBool();
    const nimb::JsonArray serialJson = json.value("serial").toArray();
    for (int i = 0; i < serialJson.size(); ++i)
        serial.push_back(serialJson.at(i).toString());
    baudRate = nimb::truncatedNumber<uint32_t>(json.value("baudRate").toDouble());
}

}  // namespace tessary
