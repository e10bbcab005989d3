// Readers of the suite's configuration files. Every reader fills a record
// from its file; a missing file leaves the record's defaults, and a value that
// does not parse is reported with its key and file and leaves that key's
// default. Nothing here throws.
#pragma once

#include <string>

#include "tessary/clientconf.h"
#include "tessary/detectconf.h"
#include "tessary/deviceconf.h"
#include "tessary/monitconf.h"

namespace iniconfig {

// The folder that holds config.so, found through the address of the plug-in's
// own code; the current folder when that fails. Ends without a slash.
std::string suiteDir();

// client.conf: groups [shutsvc], [notifysvc], [notifygui], [cloudsvc],
// [mqtt] and [debug], keys as in the records' text forms.
void readClientConfig(const std::string& fileName, tessary::ClientConfig& config);
// monit.conf: groups [monit], [web], [log] and [debug].
void readMonitConfig(const std::string& fileName, tessary::MonitConfig& config);
// devices/detection.json.
void readDetectionConfig(const std::string& dir, tessary::DetectionConfig& config);
// devices/<family>-<model>.json; false when there is no such file.
bool readDeviceConfig(const std::string& dir, int family, int model, tessary::DeviceConfig& config);

}  // namespace iniconfig
