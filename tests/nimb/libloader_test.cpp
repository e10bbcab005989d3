#include "nimb/libloader.h"
#include "tests/files.h"

#include <gtest/gtest.h>

#include <dlfcn.h>

#include <functional>
#include <string>
#include <tuple>

namespace {

using namespace nimb;

const std::string FIRST = LIBLOADER_FIRST;
const std::string SECOND = LIBLOADER_SECOND;

// True while the file is mapped into this process.
bool isMapped(const std::string& path) {
    return support::readFile("/proc/self/maps").find(path + "\n") != std::string::npos;
}

int fixtureNumber(const LibLoader& loader) {
    return reinterpret_cast<int (*)()>(loader.getSymbol("fixtureNumber"))();
}

TEST(LibLoaderTest, LoadsResolvesAndCloses) {
    LibLoader loader;
    loader.load(FIRST);
    EXPECT_EQ(loader.toString(), "Lib: <" + FIRST + ">");
    EXPECT_EQ(fixtureNumber(loader), 1);
    // An error left pending does not fail the next lookup, and a symbol whose
    // address is null is found all the same.
    EXPECT_EQ(dlsym(loader.getHandle(), "missingSymbol"), nullptr);
    EXPECT_EQ(loader.getSymbol("nullSymbol"), nullptr);

    loader.load(SECOND.c_str());
    EXPECT_FALSE(isMapped(FIRST));
    EXPECT_EQ(fixtureNumber(loader), 2);
    loader.unload();
    loader.unload();
    EXPECT_FALSE(isMapped(SECOND));
    EXPECT_EQ(loader.toStr(), "Lib: <unloaded>");
}

// The dynamic loader's own reason for failing to open name, or to find symbol in it.
std::string dlReason(const std::string& name, const char* symbol = nullptr) {
    void* handle = dlopen(name.c_str(), RTLD_NOW);
    if (symbol)
        dlsym(handle, symbol);
    const std::string reason = dlerror();
    if (handle)
        dlclose(handle);
    return reason;
}

TEST(LibLoaderTest, FailuresThrowTheirClassCodeAndMessage) {
    const std::string none = "/nonexistent/none.so", unresolved = LIBLOADER_UNRESOLVED;
    const std::string emptyName = "Invalid Argument -202 Empty library libName.";
    const std::string loading = "Loading Library error -306 ";
    // What is done once the first library is loaded, the category, code and
    // message thrown, and whether that library is still loaded afterwards.
    using Action = std::function<void(LibLoader&)>;
    const std::tuple<Action, std::string, bool> rows[] = {
        {[](LibLoader& l) { l.load(static_cast<const char*>(nullptr)); }, emptyName, false},
        {[](LibLoader& l) { l.load(std::string()); }, emptyName, false},
        {[&](LibLoader& l) { l.load(none); },
         loading + "Error loading library \"" + none + "\": " + dlReason(none), false},
        // Fails only because every symbol is bound at once.
        {[&](LibLoader& l) { l.load(unresolved); },
         loading + "Error loading library \"" + unresolved + "\": " + dlReason(unresolved), false},
        {[](LibLoader& l) { l.getSymbol(""); }, "Invalid Argument -202 Empty symbol name.", true},
        {[](LibLoader& l) { l.getSymbol("missingSymbol"); },
         loading + "Can't find symbol name \"missingSymbol\": " + dlReason(FIRST, "missingSymbol"),
         true},
        {[](LibLoader& l) { l.unload(), l.getSymbol("fixtureNumber"); },
         loading + "Library not loaded. Can't find symbol name \"fixtureNumber\".", false},
    };
    EXPECT_NE(std::get<1>(rows[3]).find("undefinedFixtureFunction"), std::string::npos);
    for (const auto& [action, expected, stillLoaded] : rows) {
        SCOPED_TRACE(expected);
        LibLoader loader;
        loader.load(FIRST);
        try {
            action(loader);
            ADD_FAILURE() << "nothing thrown";
        } catch (const Exception& e) {
            EXPECT_EQ(e.what() + (" " + std::to_string(e.code())) + " " + e.message(), expected);
        }
        EXPECT_EQ(loader.isLoaded(), stillLoaded);
        EXPECT_EQ(isMapped(FIRST), stillLoaded) << "a failed load still closes the earlier library";
    }
}

}  // namespace
