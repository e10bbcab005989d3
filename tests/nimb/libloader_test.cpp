#include "nimb/libloader.h"

#include <gtest/gtest.h>

#include <dlfcn.h>

#include <cstdlib>
#include <fstream>
#include <functional>
#include <string>

namespace {

using namespace nimb;

const std::string FIRST = LIBLOADER_FIRST;
const std::string SECOND = LIBLOADER_SECOND;

// True when the file is mapped into this process.
bool isMapped(const std::string& path) {
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);)
        if (line.size() > path.size() && line.compare(line.size() - path.size(), path.size(), path) == 0)
            return true;
    return false;
}

// What the fixtures' constructors and destructors recorded.
std::string events() {
    const char* text = std::getenv("LIBLOADER_EVENTS");
    return text ? text : "";
}

int fixtureNumber(const LibLoader& loader) {
    return reinterpret_cast<int (*)()>(loader.getSymbol("fixtureNumber"))();
}

TEST(LibLoaderTest, LoadsResolvesAndCloses) {
    unsetenv("LIBLOADER_EVENTS");
    LibLoader loader;
    EXPECT_EQ(loader.toStr(), "Lib: <unloaded>");
    loader.load(FIRST);
    EXPECT_EQ(loader.toString(), "Lib: <" + FIRST + ">");
    EXPECT_EQ(loader.getLibName(), FIRST);
    EXPECT_EQ(fixtureNumber(loader), 1);
    // An error left pending does not fail the next lookup, and a symbol whose
    // address is null is found all the same.
    EXPECT_EQ(dlsym(loader.getHandle(), "missingSymbol"), nullptr);
    EXPECT_EQ(loader.getSymbol("nullSymbol"), nullptr);
    EXPECT_EQ(*static_cast<void**>(loader.getSymbol("nullPointer")), nullptr);

    loader.load(SECOND.c_str());
    EXPECT_EQ(events(), "load first;unload first;load second;");
    EXPECT_FALSE(isMapped(FIRST));
    EXPECT_EQ(fixtureNumber(loader), 2);
    loader.unload();
    loader.unload();
    EXPECT_FALSE(isMapped(SECOND));
    EXPECT_EQ(loader.getHandle(), nullptr);
    EXPECT_EQ(loader.toString(), "Lib: <unloaded>");

    loader.load("libc.so.6");  // found by the system's search rules
    EXPECT_EQ(loader.toString(), "Lib: <libc.so.6>");
}

// The loader's own reason for failing to open name, or for missing symbol.
std::string loaderError(const std::string& name, const char* symbol = nullptr) {
    void* handle = dlopen(name.c_str(), RTLD_NOW);
    if (symbol) {
        EXPECT_EQ(dlsym(handle, symbol), nullptr);
    }
    const std::string reason = dlerror();
    if (handle)
        dlclose(handle);
    return reason;
}

struct Failure {
    std::function<void(LibLoader&)> action;
    std::string type;
    int code;
    std::string message;
    bool stillLoaded;  // the library loaded before is still open afterwards
};

TEST(LibLoaderTest, FailuresThrowTheirClassCodeAndMessage) {
    const std::string none = "/nonexistent/none.so";
    const std::string unresolved = LIBLOADER_UNRESOLVED;
    const Failure failures[] = {
        {[](LibLoader& l) { l.load(static_cast<const char*>(nullptr)); }, "InvalidArgumentException", -202, "Empty library libName.", false},
        {[](LibLoader& l) { l.load(std::string()); }, "InvalidArgumentException", -202, "Empty library libName.", false},
        {[&](LibLoader& l) { l.load(none); }, "LibraryLoadException", -306, "Error loading library \"" + none + "\": " + loaderError(none), false},
        // Fails only because every symbol is bound at once.
        {[&](LibLoader& l) { l.load(unresolved); }, "LibraryLoadException", -306, "Error loading library \"" + unresolved + "\": " + loaderError(unresolved), false},
        {[](LibLoader& l) { l.getSymbol(""); }, "InvalidArgumentException", -202, "Empty symbol name.", true},
        {[](LibLoader& l) { l.getSymbol("missingSymbol"); }, "LibraryLoadException", -306, "Can't find symbol name \"missingSymbol\": " + loaderError(FIRST, "missingSymbol"), true},
        {[](LibLoader& l) { l.unload(), l.getSymbol(nullptr); }, "InvalidArgumentException", -202, "Empty symbol name.", false},
        {[](LibLoader& l) { l.unload(), l.getSymbol("fixtureNumber"); }, "LibraryLoadException", -306, "Library not loaded. Can't find symbol name \"fixtureNumber\".", false},
    };
    EXPECT_NE(failures[3].message.find("undefinedFixtureFunction"), std::string::npos);
    for (const Failure& failure : failures) {
        SCOPED_TRACE(failure.message);
        LibLoader loader;
        loader.load(FIRST);
        try {
            failure.action(loader);
            ADD_FAILURE() << "nothing thrown";
        } catch (const Exception& e) {
            EXPECT_EQ(e.getClassName(), "N4nimb" + std::to_string(failure.type.size()) + failure.type + "E");
            EXPECT_EQ(e.code(), failure.code);
            EXPECT_EQ(e.message(), failure.message);
        }
        EXPECT_EQ(loader.isLoaded(), failure.stillLoaded);
        EXPECT_EQ(isMapped(FIRST), failure.stillLoaded) << "a failed load still closes the earlier library";
        EXPECT_EQ(loader.toString(), failure.stillLoaded ? "Lib: <" + FIRST + ">" : "Lib: <unloaded>");
    }
}

}  // namespace
