#include "nimb/object.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <sstream>
#include <string>
#include <typeinfo>

namespace {

using namespace nimb;

TEST(ObjectTest, DefaultTextIsTypeNameAtAddress) {
    Object object;
    std::ostringstream address;
    address << static_cast<const void*>(&object);
    const std::string text = object.toString();
    EXPECT_EQ(text, std::string(typeid(Object).name()) + "@" + address.str());
    EXPECT_EQ(text.rfind("N4nimb6ObjectE", 0), 0u);
    EXPECT_EQ(text.find('@'), text.rfind('@'));
    EXPECT_EQ(text.substr(text.find('@') + 1, 2), "0x");
    EXPECT_EQ(object.toStr(), text);
}

struct Derived : Object {
    std::string toString() const override { return "derived"; }
};

TEST(ObjectTest, ToStrDispatchesToOverride) {
    Derived derived;
    const Object& base = derived;
    EXPECT_EQ(base.toStr(), "derived");
}

// Every class of the tree: its mangled type name, its category text, a
// factory, and whether a handler for its direct base catches it.
using TreeRow = std::tuple<std::string, std::string, std::function<Exception*()>, std::function<bool()>>;

class ExceptionTreeTest : public ::testing::TestWithParam<TreeRow> {};

template <class E, class Base>
TreeRow entry(
    const std::string& simpleName, const std::string& text) {
    const std::string typeName = "N4nimb" + std::to_string(simpleName.size()) + simpleName + "E";
    return {typeName, text, [] { return static_cast<Exception*>(new E("msg", -305)); },
            [] {
                try {
                    throw E("m", -1);
                } catch (const Base&) {
                    return true;
                } catch (...) {
                    return false;
                }
            }};
}

#define ENTRY(CLS, BASE, TEXT) entry<CLS, BASE>(#CLS, TEXT)

INSTANTIATE_TEST_SUITE_P(
    AllClasses, ExceptionTreeTest,
    ::testing::Values(
        ENTRY(Exception, std::exception, "Exception"),
        ENTRY(LogicException, Exception, "Logic error"),
        ENTRY(RuntimeException, Exception, "Runtime error"),
        ENTRY(ApplicationException, Exception, "Application error"),
        ENTRY(NullPointerException, LogicException, "Null pointer"),
        ENTRY(NullValueException, LogicException, "Null value"),
        ENTRY(IllegalStateException, LogicException, "Illegal State"),
        ENTRY(InvalidAccessException, LogicException, "Invalid Access"),
        ENTRY(NotImplementedException, LogicException, "Not Implemented"),
        ENTRY(RangeException, LogicException, "Invalid range"),
        ENTRY(InvalidArgumentException, LogicException, "Invalid Argument"),
        ENTRY(UnhandledException, LogicException, "Unhandled error"),
        ENTRY(IOException, RuntimeException, "Input/Output error"),
        ENTRY(DataException, RuntimeException, "Data error"),
        ENTRY(ExistsException, RuntimeException, "Already exists error"),
        ENTRY(TimeoutException, RuntimeException, "Timeout reached"),
        ENTRY(SystemException, RuntimeException, "System error"),
        ENTRY(LibraryLoadException, RuntimeException, "Loading Library error"),
        ENTRY(LibraryAlreadyLoadedException, RuntimeException, "Library already loaded"),
        ENTRY(NoThreadAvailableException, RuntimeException, "No thread available"),
        ENTRY(PropertyNotSupportedException, RuntimeException, "System property isn't supported"),
        ENTRY(NoPermissionException, RuntimeException, "No enough permissions"),
        ENTRY(BadCastException, RuntimeException, "Bad cast error"),
        ENTRY(OverflowException, RuntimeException, "Overflow error"),
        ENTRY(OutOfMemoryException, RuntimeException, "Out Of Memory error"),
        ENTRY(RegularExpressionException, RuntimeException, "Regular Expression error"),
        ENTRY(NotFoundException, RuntimeException, "Not Found error"),
        ENTRY(FileException, IOException, "File error"),
        ENTRY(ProtocolException, IOException, "Protocol error"),
        ENTRY(ReadFileException, FileException, "Reading file error"),
        ENTRY(OpenFileException, FileException, "Opening file error"),
        ENTRY(WriteFileException, FileException, "Writing file error"),
        ENTRY(CreateFileException, FileException, "Creating file error"),
        ENTRY(FileNotOpenException, FileException, "File not open error"),
        ENTRY(PathNotFoundException, FileException, "Path not found"),
        ENTRY(FileReadOnlyException, FileException, "File is read-only"),
        ENTRY(FileAccessDeniedException, FileException, "Access denied over file"),
        ENTRY(FileExistsException, FileException, "File already exists"),
        ENTRY(FileNotFoundException, FileException, "File not found"),
        ENTRY(SyntaxException, DataException, "Invalid syntax"),
        ENTRY(DataFormatException, DataException, "Invalid data format"),
        ENTRY(CircularReferenceException, DataException, "Circular reference detected")));

TEST_P(ExceptionTreeTest, CategoryTextsTypeAndBase) {
    const auto& [typeName, text, make, caughtByBase] = GetParam();
    std::unique_ptr<Exception> e(make());
    EXPECT_STREQ(e->getName(), text.c_str());
    EXPECT_STREQ(e->what(), text.c_str());
    EXPECT_EQ(e->toString(), text);
    EXPECT_EQ(e->toStr(), text);
    EXPECT_STREQ(e->getClassName(), typeName.c_str());
    EXPECT_EQ(e->message(), "msg");
    EXPECT_EQ(e->code(), -305);
    EXPECT_EQ(e->nested(), nullptr);
    EXPECT_TRUE(caughtByBase());
}

TEST_P(ExceptionTreeTest, CloneAndRethrowKeepTheDynamicClass) {
    const auto& [typeName, text, make, caughtByBase] = GetParam();
    std::unique_ptr<Exception> e(make());
    std::unique_ptr<Exception> copy(e->clone());
    EXPECT_STREQ(copy->getClassName(), typeName.c_str());
    EXPECT_EQ(copy->message(), "msg");
    EXPECT_EQ(copy->code(), -305);
    try {
        const Exception& base = *e;
        base.rethrow();
    } catch (const Exception& caught) {
        EXPECT_STREQ(caught.getClassName(), typeName.c_str());
        EXPECT_NE(&caught, e.get());
        EXPECT_EQ(caught.message(), "msg");
    }
}

TEST(ExceptionTest, MessageOnlyThroughAccessor) {
    FileNotFoundException e("x");
    EXPECT_STREQ(e.getName(), "File not found");
    EXPECT_STREQ(e.what(), "File not found");
    EXPECT_EQ(e.toString(), "File not found");
    EXPECT_EQ(e.message(), "x");
    EXPECT_EQ(e.code(), 0);
}

TEST(ExceptionTest, RethrowIsCaughtByExactSubclass) {
    bool caughtExact = false;
    try {
        try {
            throw TimeoutException("Timeout running command.", ERR_TIMEOUT);
        } catch (Exception& e) {
            e.rethrow();
        }
    } catch (TimeoutException& e) {
        caughtExact = true;
        EXPECT_EQ(e.message(), "Timeout running command.");
        EXPECT_EQ(e.code(), -304);
    }
    EXPECT_TRUE(caughtExact);
}

TEST(ExceptionTest, CloneIsADeepIndependentCopy) {
    SystemException outer("outer", ERR_SYSTEM);
    outer.setNested(FileNotFoundException("inner", ERR_PATH_NOT_FOUND));
    const Exception* originalCause = outer.nested();
    ASSERT_NE(originalCause, nullptr);

    std::unique_ptr<Exception> clone(outer.clone());
    ASSERT_NE(clone->nested(), nullptr);
    EXPECT_NE(clone->nested(), originalCause);
    EXPECT_STREQ(clone->nested()->getClassName(), "N4nimb21FileNotFoundExceptionE");
    EXPECT_EQ(clone->nested()->message(), "inner");
    EXPECT_EQ(clone->nested()->code(), -32013);
    clone.reset();
    EXPECT_EQ(outer.nested(), originalCause);
    EXPECT_EQ(outer.nested()->message(), "inner");

    SystemException copy(outer);
    EXPECT_NE(copy.nested(), outer.nested());
    SystemException assigned("other", 1);
    assigned = outer;
    EXPECT_EQ(assigned.message(), "outer");
    EXPECT_NE(assigned.nested(), outer.nested());
    EXPECT_EQ(assigned.nested()->message(), "inner");
}

TEST(ExceptionTest, SelfAssignmentKeepsTheCause) {
    Exception e("m", -1);
    e.setNested(RangeException("r"));
    Exception& self = e;
    e = self;
    ASSERT_NE(e.nested(), nullptr);
    EXPECT_EQ(e.nested()->message(), "r");
}

}  // namespace
