// The entry points of config.so. A handle is the name of the file or folder
// it reads, resolved in the suite directory when the configuration is opened.
#include <string>

#include "plugins/ini/iniconfig.h"
#include "tessary/pluginapi.h"

namespace {

const std::string* path(const void* handle) { return static_cast<const std::string*>(handle); }

void* openFile(const char* name)
{
    return new std::string(iniconfig::suiteDir() + "/" + name);
}

void closeFile(const void* handle) { delete path(handle); }

}  // namespace

void* openDevicesConfig() { return openFile("devices"); }

void closeDevicesConfig(const void* handle) { closeFile(handle); }

int getDetectionConfig(const void* handle, tessary::DetectionConfig* out)
{
    if (handle == nullptr || out == nullptr)
        return -1;
    iniconfig::readDetectionConfig(*path(handle), *out);
    return 0;
}

// An unknown model is a failure: the caller keeps its own record.
int getDeviceConfig(const void* handle, int family, int model, tessary::DeviceConfig* out)
{
    if (handle == nullptr || out == nullptr)
        return -1;
    return iniconfig::readDeviceConfig(*path(handle), family, model, *out) ? 0 : -1;
}

void* openMonitConfig() { return openFile("monit.conf"); }

void closeMonitConfig(const void* handle) { closeFile(handle); }

int getMonitConfig(const void* handle, tessary::MonitConfig* out)
{
    if (handle == nullptr || out == nullptr)
        return -1;
    out->clear();
    iniconfig::readMonitConfig(*path(handle), *out);
    return 0;
}

void* openClientConfig() { return openFile("client.conf"); }

void closeClientConfig(const void* handle) { closeFile(handle); }

int getClientConfig(const void* handle, tessary::ClientConfig* out)
{
    if (handle == nullptr || out == nullptr)
        return -1;
    *out = tessary::ClientConfig();
    iniconfig::readClientConfig(*path(handle), *out);
    return 0;
}
