#include "tessary/ldconfig.h"

#include <functional>

#include <QFileInfo>

#include "tessary/pluginapi.h"

namespace tessary {

namespace {

const char* const NOT_LOADED = "Library libconfig not loaded.";

// Calls through std::function so that a symbol whose address is null raises
// std::bad_function_call instead of jumping to address zero.
template <typename Fn, typename... Args>
auto call(Fn* fn, Args... args)
{
    return std::function<Fn>(fn)(args...);
}

}  // namespace

LibConfig::LibConfig() : m_devicesHandle(nullptr), m_monitHandle(nullptr), m_clientHandle(nullptr) {}

LibConfig::~LibConfig() { unload(); }

template <typename Fn>
Fn* LibConfig::symbol(const char* name) const
{
    return reinterpret_cast<Fn*>(m_loader.getSymbol(name));
}

void LibConfig::open(const char* entry, void*& handle, const char* failure)
{
    if (!isLoaded())
        throw nimb::SystemException(NOT_LOADED, nimb::ERR_SYSTEM);
    handle = call(symbol<OpenConfigFn>(entry));
    if (handle == nullptr)
        throw nimb::SystemException(failure, nimb::ERR_SYSTEM);
}

void LibConfig::close(const char* entry, void*& handle)
{
    if (!isLoaded() || handle == nullptr)
        return;
    call(symbol<CloseConfigFn>(entry), static_cast<const void*>(handle));
    handle = nullptr;
}

void LibConfig::requireOpen(const void* handle) const
{
    if (!isLoaded() || handle == nullptr)
        throw nimb::SystemException(NOT_LOADED, nimb::ERR_SYSTEM);
}

void LibConfig::openDevicesConfig()
{
    open("openDevicesConfig", m_devicesHandle, "Error opening devices config.");
}

void LibConfig::closeDevicesConfig() { close("closeDevicesConfig", m_devicesHandle); }

void LibConfig::getDetectionConfig(DetectionConfig& config)
{
    requireOpen(m_devicesHandle);
    const void* handle = m_devicesHandle;
    if (call(symbol<GetDetectionConfigFn>("getDetectionConfig"), handle, &config) < 0)
        throw nimb::SystemException("Error getting detection config.", nimb::ERR_SYSTEM);
}

void LibConfig::getDeviceConfig(DeviceConfig& config, int family, int model)
{
    requireOpen(m_devicesHandle);
    const void* handle = m_devicesHandle;
    if (call(symbol<GetDeviceModelConfigFn>("getDeviceConfig"), handle, family, model, &config) < 0)
        throw nimb::SystemException("Error getting device config.", nimb::ERR_SYSTEM);
}

void LibConfig::openMonitConfig()
{
    open("openMonitConfig", m_monitHandle, "Error opening monit config.");
}

void LibConfig::closeMonitConfig() { close("closeMonitConfig", m_monitHandle); }

void LibConfig::getMonitConfig(MonitConfig& config)
{
    requireOpen(m_monitHandle);
    const void* handle = m_monitHandle;
    if (call(symbol<GetMonitConfigFn>("getMonitConfig"), handle, &config) < 0)
        throw nimb::SystemException("Error getting monit config.", nimb::ERR_SYSTEM);
}

void LibConfig::openClientConfig()
{
    open("openClientConfig", m_clientHandle, "Error opening client config.");
}

void LibConfig::closeClientConfig() { close("closeClientConfig", m_clientHandle); }

void LibConfig::getClientConfig(ClientConfig& config)
{
    requireOpen(m_clientHandle);
    const void* handle = m_clientHandle;
    if (call(symbol<GetClientConfigFn>("getClientConfig"), handle, &config) < 0)
        throw nimb::SystemException("Error getting client config.", nimb::ERR_SYSTEM);
}

void LibConfig::load(const char* fileName)
{
    if (fileName == nullptr || *fileName == '\0')
        throw nimb::InvalidArgumentException("Empty library filename.", nimb::ERR_INVALID_ARGUMENT);
    std::string name = fileName;
    if (QFileInfo(QString::fromStdString(name)).suffix().isEmpty())
        name += ".so";
    m_loader.load(name);
}

void LibConfig::load(const std::string& fileName) { load(fileName.c_str()); }

void LibConfig::unload()
{
    // Each step is tried even when an earlier one failed.
    try { closeDevicesConfig(); } catch (...) {}
    try { closeMonitConfig(); } catch (...) {}
    try { closeClientConfig(); } catch (...) {}
    try { m_loader.unload(); } catch (...) {}
}

bool LibConfig::isLoaded() const { return m_loader.isLoaded(); }

}  // namespace tessary
