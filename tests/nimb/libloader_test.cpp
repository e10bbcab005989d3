#include "nimb/libloader.h"

#include <gtest/gtest.h>

#include <dlfcn.h>

#include <cstdlib>
#include <fstream>
#include <string>

namespace {

using namespace nimb;

const std::string FIRST = LIBLOADER_FIRST;
const std::string SECOND = LIBLOADER_SECOND;
const std::string UNRESOLVED = LIBLOADER_UNRESOLVED;

// True when a file of that path is mapped into this process.
bool isMapped(const std::string& path) {
    std::ifstream maps("/proc/self/maps");
    std::string line;
    while (std::getline(maps, line))
        if (line.size() >= path.size() && line.compare(line.size() - path.size(), path.size(), path) == 0)
            return true;
    return false;
}

int callNumber(const LibLoader& loader) {
    return reinterpret_cast<int (*)()>(loader.getSymbol("fixtureNumber"))();
}

// Runs f, expects it to throw exactly E and gives the exception.
template <class E, class F>
E thrown(F f) {
    try {
        f();
    } catch (const E& e) {
        EXPECT_EQ(typeid(e), typeid(E));
        return e;
    } catch (...) {
        ADD_FAILURE() << "other exception";
        return E();
    }
    ADD_FAILURE() << "nothing thrown";
    return E();
}

class LibLoaderTest : public ::testing::Test {
protected:
    void SetUp() override {
        unsetenv("LIBLOADER_EVENTS");
        ASSERT_FALSE(isMapped(FIRST));
        ASSERT_FALSE(isMapped(SECOND));
    }
    static std::string events() {
        const char* text = std::getenv("LIBLOADER_EVENTS");
        return text ? text : "";
    }

    LibLoader loader;
};

TEST_F(LibLoaderTest, LoadResolvesAndUnloadUnmaps) {
    EXPECT_EQ(loader.toString(), "Lib: <unloaded>");
    EXPECT_EQ(loader.toStr(), "Lib: <unloaded>");
    loader.load(FIRST);
    EXPECT_TRUE(loader.isLoaded());
    EXPECT_NE(loader.getHandle(), nullptr);
    EXPECT_EQ(loader.getLibName(), FIRST);
    EXPECT_EQ(loader.toString(), "Lib: <" + FIRST + ">");
    EXPECT_TRUE(isMapped(FIRST));
    EXPECT_EQ(callNumber(loader), 1);

    loader.unload();
    EXPECT_FALSE(loader.isLoaded());
    EXPECT_EQ(loader.getHandle(), nullptr);
    EXPECT_EQ(loader.getLibName(), "");
    EXPECT_EQ(loader.toString(), "Lib: <unloaded>");
    EXPECT_FALSE(isMapped(FIRST));
    loader.unload();
    EXPECT_EQ(events(), "load first;unload first;");
}

TEST_F(LibLoaderTest, SecondLoadClosesFirstBeforeOpening) {
    loader.load(FIRST.c_str());
    loader.load(SECOND);
    EXPECT_EQ(events(), "load first;unload first;load second;");
    EXPECT_FALSE(isMapped(FIRST));
    EXPECT_TRUE(isMapped(SECOND));
    EXPECT_EQ(loader.getLibName(), SECOND);
    EXPECT_EQ(callNumber(loader), 2);
}

TEST_F(LibLoaderTest, DestructorUnloads) {
    {
        LibLoader scoped;
        scoped.load(SECOND);
        EXPECT_TRUE(isMapped(SECOND));
    }
    EXPECT_FALSE(isMapped(SECOND));
    EXPECT_EQ(events(), "load second;unload second;");
}

TEST_F(LibLoaderTest, EmptyNameClosesLoadedLibraryThenThrows) {
    for (const char* name : {static_cast<const char*>(nullptr), ""}) {
        loader.load(FIRST);
        auto e = thrown<InvalidArgumentException>([&] { loader.load(name); });
        EXPECT_EQ(e.message(), "Empty library libName.");
        EXPECT_EQ(e.code(), -202);
        EXPECT_FALSE(loader.isLoaded());
        EXPECT_FALSE(isMapped(FIRST));
        EXPECT_EQ(loader.toString(), "Lib: <unloaded>");
    }
    auto e = thrown<InvalidArgumentException>([&] { loader.load(std::string()); });
    EXPECT_EQ(e.message(), "Empty library libName.");
}

// The loader's own reason, as dlopen gives it for that name.
std::string openError(const std::string& name) {
    void* handle = dlopen(name.c_str(), RTLD_NOW);
    EXPECT_EQ(handle, nullptr);
    const char* text = dlerror();
    return text ? text : "";
}

TEST_F(LibLoaderTest, FailedOpenLeavesLoaderUnloaded) {
    // A missing file, a file that is no library, and one whose function
    // stays unresolved, which fails only because everything is bound at once.
    for (const std::string& name : {std::string("/nonexistent/nothing.so"), std::string("/proc/self/maps"), UNRESOLVED}) {
        SCOPED_TRACE(name);
        loader.load(FIRST);
        const std::string reason = openError(name);
        ASSERT_FALSE(reason.empty());
        auto e = thrown<LibraryLoadException>([&] { loader.load(name); });
        EXPECT_EQ(e.message(), "Error loading library \"" + name + "\": " + reason);
        EXPECT_EQ(e.code(), -306);
        EXPECT_FALSE(loader.isLoaded());
        EXPECT_EQ(loader.getLibName(), "");
        EXPECT_EQ(loader.toString(), "Lib: <unloaded>");
        EXPECT_FALSE(isMapped(FIRST));
    }
    EXPECT_NE(openError(UNRESOLVED).find("undefinedFixtureFunction"), std::string::npos);
}

TEST_F(LibLoaderTest, NameWithoutSlashFollowsSearchRules) {
    loader.load("libc.so.6");
    EXPECT_EQ(loader.toString(), "Lib: <libc.so.6>");
    EXPECT_NE(loader.getSymbol("getpid"), nullptr);
}

TEST_F(LibLoaderTest, SymbolErrors) {
    auto empty = thrown<InvalidArgumentException>([&] { loader.getSymbol(nullptr); });
    EXPECT_EQ(empty.message(), "Empty symbol name.");
    EXPECT_EQ(empty.code(), -202);

    auto unloaded = thrown<LibraryLoadException>([&] { loader.getSymbol("fixtureNumber"); });
    EXPECT_EQ(unloaded.message(), "Library not loaded. Can't find symbol name \"fixtureNumber\".");
    EXPECT_EQ(unloaded.code(), -306);

    loader.load(FIRST);
    EXPECT_EQ(thrown<InvalidArgumentException>([&] { loader.getSymbol(""); }).message(), "Empty symbol name.");
    dlerror();
    EXPECT_EQ(dlsym(loader.getHandle(), "missingSymbol"), nullptr);
    const std::string reason = dlerror();
    auto missing = thrown<LibraryLoadException>([&] { loader.getSymbol("missingSymbol"); });
    EXPECT_EQ(missing.message(), "Can't find symbol name \"missingSymbol\": " + reason);
    EXPECT_EQ(missing.code(), -306);
}

TEST_F(LibLoaderTest, NullSymbolIsFoundDespiteStaleError) {
    loader.load(FIRST);
    // Leave an error pending that nobody has read.
    EXPECT_EQ(dlsym(loader.getHandle(), "missingSymbol"), nullptr);
    EXPECT_EQ(loader.getSymbol("nullSymbol"), nullptr);
    void* pointer = loader.getSymbol("nullPointer");
    ASSERT_NE(pointer, nullptr);
    EXPECT_EQ(*static_cast<void**>(pointer), nullptr);
}

// load() and unload() reach a subclass's overrides from inside the base.
class CountingLoader : public LibLoader {
public:
    using LibLoader::load;
    void load(const char* libName) override {
        ++loads;
        LibLoader::load(libName);
    }
    void unload() override {
        ++unloads;
        LibLoader::unload();
    }
    bool isLoaded() const override { return !hidden && LibLoader::isLoaded(); }
    int loads = 0;
    int unloads = 0;
    bool hidden = false;
};

TEST_F(LibLoaderTest, InternalCallsGoThroughOverrides) {
    CountingLoader counting;
    counting.load(FIRST);
    EXPECT_EQ(counting.loads, 1);
    EXPECT_EQ(counting.unloads, 1);
    counting.hidden = true;
    EXPECT_EQ(thrown<LibraryLoadException>([&] { counting.getSymbol("fixtureNumber"); }).message(),
              "Library not loaded. Can't find symbol name \"fixtureNumber\".");
    counting.hidden = false;
    counting.unload();
    EXPECT_FALSE(isMapped(FIRST));
}

}  // namespace
