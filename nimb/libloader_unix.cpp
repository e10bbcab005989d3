#include "nimb/libloader.h"

#include <dlfcn.h>

namespace nimb {

namespace {

std::string loaderError() {
    const char* text = dlerror();
    return text ? text : "";
}

}  // namespace

void* LibLoader::openLibrary(const char* libName, std::string& error) {
    void* handle = dlopen(libName, RTLD_NOW);
    if (handle == nullptr)
        error = loaderError();
    return handle;
}

void* LibLoader::findSymbol(void* handle, const char* name, bool& found, std::string& error) {
    // A symbol's address may be null, so only the loader's error text tells a
    // failed lookup; an error left over from an earlier call is cleared first.
    dlerror();
    void* address = dlsym(handle, name);
    const char* text = dlerror();
    found = text == nullptr;
    if (!found)
        error = text;
    return address;
}

void LibLoader::closeLibrary(void* handle) {
    // Nothing useful can be done when closing fails.
    dlclose(handle);
}

}  // namespace nimb
