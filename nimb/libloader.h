// Loading of shared libraries and lookup of their symbols.
#pragma once

#include "nimb/object.h"

#include <string>

namespace nimb {

// One dynamically loaded shared library, opened by file name with every
// undefined symbol resolved at once. The object is the sole owner of the
// library's handle: unload() and the destructor close it. Holds no lock: one
// thread at a time uses an instance.
//
// Subclasses may override load(), unload() and isLoaded() and call these
// versions inside; every internal call goes through the virtual functions.
class LibLoader : public Object {
public:
    LibLoader();
    LibLoader(const LibLoader&) = delete;
    LibLoader& operator=(const LibLoader&) = delete;
    // Calls unload().
    ~LibLoader() override;

    // "Lib: <unloaded>" while nothing is loaded, otherwise "Lib: <" + the
    // name as passed to load() + ">".
    std::string toString() const override;

    // The address of the symbol name in the loaded library. A symbol whose
    // address is null is found all the same and gives nullptr.
    // Throws InvalidArgumentException "Empty symbol name." (ERR_INVALID_ARGUMENT)
    // for a null or empty name, LibraryLoadException (ERR_LIBRARY_LOAD) when
    // nothing is loaded or the symbol is not found.
    virtual void* getSymbol(const char* name) const;

    // Closes the library held so far, whatever follows, then opens libName.
    // A name without a slash is looked up by the system's library search
    // rules. Throws InvalidArgumentException "Empty library libName."
    // (ERR_INVALID_ARGUMENT) for a null or empty name and LibraryLoadException
    // (ERR_LIBRARY_LOAD) with the loader's reason when the library cannot be
    // opened; the object is then unloaded.
    virtual void load(const char* libName);
    virtual void load(const std::string& libName);
    // Closes the library; does nothing when nothing is loaded.
    virtual void unload();
    virtual bool isLoaded() const;
    // The name exactly as passed to load(); empty while nothing is loaded.
    virtual std::string getLibName() const;
    // The loader's handle of the library; null while nothing is loaded.
    virtual void* getHandle() const;

private:
    // The platform's loader. openLibrary() and findSymbol() fill error with
    // the loader's reason when they fail; findSymbol() sets found.
    static void* openLibrary(const char* libName, std::string& error);
    static void* findSymbol(void* handle, const char* name, bool& found, std::string& error);
    static void closeLibrary(void* handle);

    void* m_handle = nullptr;
    std::string m_libName;
};

}  // namespace nimb
