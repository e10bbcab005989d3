#include "nimb/libloader.h"

#include <sstream>

namespace nimb {

LibLoader::LibLoader() = default;

LibLoader::~LibLoader() {
    // Destructors are noexcept: anything unload() throws ends the process.
    unload();
}

std::string LibLoader::toString() const {
    return m_libName.empty() ? "Lib: <unloaded>" : "Lib: <" + m_libName + ">";
}

void* LibLoader::getSymbol(const char* name) const {
    if (name == nullptr || *name == '\0')
        throw InvalidArgumentException("Empty symbol name.", ERR_INVALID_ARGUMENT);
    if (!isLoaded()) {
        std::ostringstream message;
        message << "Library not loaded. Can't find symbol name \"" << name << "\".";
        throw LibraryLoadException(message.str(), ERR_LIBRARY_LOAD);
    }
    bool found = false;
    std::string error;
    void* address = findSymbol(m_handle, name, found, error);
    if (!found) {
        std::ostringstream message;
        message << "Can't find symbol name \"" << name << "\": " << error;
        throw LibraryLoadException(message.str(), ERR_LIBRARY_LOAD);
    }
    return address;
}

void LibLoader::load(const char* libName) {
    // Closed first, also when the new name then turns out to be unusable.
    unload();
    if (libName == nullptr || *libName == '\0')
        throw InvalidArgumentException("Empty library libName.", ERR_INVALID_ARGUMENT);
    std::string error;
    void* handle = openLibrary(libName, error);
    if (handle == nullptr) {
        std::ostringstream message;
        message << "Error loading library \"" << libName << "\": " << error;
        throw LibraryLoadException(message.str(), ERR_LIBRARY_LOAD);
    }
    m_handle = handle;
    m_libName = libName;
}

void LibLoader::load(const std::string& libName) { load(libName.c_str()); }

void LibLoader::unload() {
    if (!isLoaded())
        return;
    closeLibrary(m_handle);
    m_handle = nullptr;
    m_libName.clear();
}

bool LibLoader::isLoaded() const { return m_handle != nullptr; }

std::string LibLoader::getLibName() const { return m_libName; }

void* LibLoader::getHandle() const { return m_handle; }

}  // namespace nimb
