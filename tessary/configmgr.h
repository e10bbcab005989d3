// The abstract access to the suite's configuration. Each configuration is
// opened, read any number of times and closed again; results come back in
// the reference argument. Implementations throw nimb::Exception subclasses.
#pragma once

#include "nimb/object.h"
#include "tessary/clientconf.h"
#include "tessary/detectconf.h"
#include "tessary/deviceconf.h"
#include "tessary/monitconf.h"

namespace tessary {

class ConfigManagerBase : public nimb::Object {
public:
    ~ConfigManagerBase() override;

    virtual void openDevicesConfig() = 0;
    virtual void closeDevicesConfig() = 0;
    virtual void getDetectionConfig(DetectionConfig& config) = 0;
    // family and model identify the device model.
    virtual void getDeviceConfig(DeviceConfig& config, int family, int model) = 0;
    virtual void openMonitConfig() = 0;
    virtual void closeMonitConfig() = 0;
    virtual void getMonitConfig(MonitConfig& config) = 0;
    virtual void openClientConfig() = 0;
    virtual void closeClientConfig() = 0;
    virtual void getClientConfig(ClientConfig& config) = 0;
};

}  // namespace tessary
