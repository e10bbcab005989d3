// The binding to the configuration plug-in library (config.so). Every entry
// point is looked up by name at the moment of its call. Failures throw
// nimb::SystemException (ERR_SYSTEM); load() also throws what the loader
// throws (nimb::LibraryLoadException). Not thread-safe: one thread at a time.
#pragma once

#include <string>

#include "nimb/libloader.h"
#include "tessary/configmgr.h"

namespace tessary {

class LibConfig : public ConfigManagerBase {
public:
    LibConfig();
    LibConfig(const LibConfig&) = delete;
    LibConfig& operator=(const LibConfig&) = delete;
    // Calls unload().
    ~LibConfig() override;

    // Open: stores the plug-in's handle (also a null one, which throws
    // "Error opening ... config."); an open handle is overwritten unclosed.
    // Throws "Library libconfig not loaded." when nothing is loaded.
    void openDevicesConfig() override;
    // Close: nothing happens when nothing is loaded or the handle is null.
    void closeDevicesConfig() override;
    // Get: throws "Library libconfig not loaded." when nothing is loaded or
    // the configuration is not open, "Error getting ... config." when the
    // plug-in returns a negative value.
    void getDetectionConfig(DetectionConfig& config) override;
    void getDeviceConfig(DeviceConfig& config, int family, int model) override;
    void openMonitConfig() override;
    void closeMonitConfig() override;
    void getMonitConfig(MonitConfig& config) override;
    void openClientConfig() override;
    void closeClientConfig() override;
    void getClientConfig(ClientConfig& config) override;

    // Loads fileName (".so" appended when it has no extension); opens no
    // configuration. Throws nimb::InvalidArgumentException (ERR_INVALID_ARGUMENT)
    // "Empty library filename." for a null or empty name.
    virtual void load(const char* fileName);
    virtual void load(const std::string& fileName);
    // Closes the devices, monitor and client configurations in that order and
    // unloads the library; never throws.
    virtual void unload();
    virtual bool isLoaded() const;

private:
    template <typename Fn>
    Fn* symbol(const char* name) const;
    void open(const char* entry, void*& handle, const char* failure);
    void close(const char* entry, void*& handle);
    void requireOpen(const void* handle) const;

    nimb::LibLoader m_loader;
    void* m_devicesHandle;
    void* m_monitHandle;
    void* m_clientHandle;
};

}  // namespace tessary
