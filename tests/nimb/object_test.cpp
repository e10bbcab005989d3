#include "nimb/object.h"

#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <string>
#include <type_traits>

namespace {

using namespace nimb;

TEST(ObjectTest, DefaultTextIsTypeNameAtAddress) {
    Object object;
    std::ostringstream address;
    address << static_cast<const void*>(&object);
    EXPECT_EQ(object.toStr(), "N4nimb6ObjectE@" + address.str());
}

// One class of the tree, used through a reference to the root: its category
// text (what() gives nothing else), its mangled type name and its base; a
// clone keeps class, message and code, and its rethrow() is caught by the class.
template <class E, class Base>
void expectClass(const std::string& name, const char* text) {
    SCOPED_TRACE(name);
    const std::string typeName = "N4nimb" + std::to_string(name.size()) + name + "E";
    const E thrown("msg", ERR_TIMEOUT);
    const Exception& e = thrown;
    EXPECT_STREQ(e.what(), text);
    EXPECT_STREQ(e.getClassName(), typeName.c_str());
    EXPECT_TRUE((std::is_base_of<Base, E>::value));
    try {
        std::unique_ptr<Exception>(e.clone())->rethrow();
    } catch (const E& caught) {
        EXPECT_STREQ(caught.getClassName(), typeName.c_str());
        EXPECT_EQ(caught.message() + " " + std::to_string(caught.code()), "msg -304");
    }
}

#define EXPECT_CLASS(CLS, BASE, TEXT) expectClass<CLS, BASE>(#CLS, TEXT)

TEST(ExceptionTest, EveryClassOfTheTree) {
    EXPECT_CLASS(Exception, std::exception, "Exception");
    EXPECT_CLASS(LogicException, Exception, "Logic error");
    EXPECT_CLASS(RuntimeException, Exception, "Runtime error");
    EXPECT_CLASS(ApplicationException, Exception, "Application error");
    EXPECT_CLASS(NullPointerException, LogicException, "Null pointer");
    EXPECT_CLASS(NullValueException, LogicException, "Null value");
    EXPECT_CLASS(IllegalStateException, LogicException, "Illegal State");
    EXPECT_CLASS(InvalidAccessException, LogicException, "Invalid Access");
    EXPECT_CLASS(NotImplementedException, LogicException, "Not Implemented");
    EXPECT_CLASS(RangeException, LogicException, "Invalid range");
    EXPECT_CLASS(InvalidArgumentException, LogicException, "Invalid Argument");
    EXPECT_CLASS(UnhandledException, LogicException, "Unhandled error");
    EXPECT_CLASS(IOException, RuntimeException, "Input/Output error");
    EXPECT_CLASS(DataException, RuntimeException, "Data error");
    EXPECT_CLASS(ExistsException, RuntimeException, "Already exists error");
    EXPECT_CLASS(TimeoutException, RuntimeException, "Timeout reached");
    EXPECT_CLASS(SystemException, RuntimeException, "System error");
    EXPECT_CLASS(LibraryLoadException, RuntimeException, "Loading Library error");
    EXPECT_CLASS(LibraryAlreadyLoadedException, RuntimeException, "Library already loaded");
    EXPECT_CLASS(NoThreadAvailableException, RuntimeException, "No thread available");
    EXPECT_CLASS(PropertyNotSupportedException, RuntimeException,
                 "System property isn't supported");
    EXPECT_CLASS(NoPermissionException, RuntimeException, "No enough permissions");
    EXPECT_CLASS(BadCastException, RuntimeException, "Bad cast error");
    EXPECT_CLASS(OverflowException, RuntimeException, "Overflow error");
    EXPECT_CLASS(OutOfMemoryException, RuntimeException, "Out Of Memory error");
    EXPECT_CLASS(RegularExpressionException, RuntimeException, "Regular Expression error");
    EXPECT_CLASS(NotFoundException, RuntimeException, "Not Found error");
    EXPECT_CLASS(FileException, IOException, "File error");
    EXPECT_CLASS(ProtocolException, IOException, "Protocol error");
    EXPECT_CLASS(ReadFileException, FileException, "Reading file error");
    EXPECT_CLASS(OpenFileException, FileException, "Opening file error");
    EXPECT_CLASS(WriteFileException, FileException, "Writing file error");
    EXPECT_CLASS(CreateFileException, FileException, "Creating file error");
    EXPECT_CLASS(FileNotOpenException, FileException, "File not open error");
    EXPECT_CLASS(PathNotFoundException, FileException, "Path not found");
    EXPECT_CLASS(FileReadOnlyException, FileException, "File is read-only");
    EXPECT_CLASS(FileAccessDeniedException, FileException, "Access denied over file");
    EXPECT_CLASS(FileExistsException, FileException, "File already exists");
    EXPECT_CLASS(FileNotFoundException, FileException, "File not found");
    EXPECT_CLASS(SyntaxException, DataException, "Invalid syntax");
    EXPECT_CLASS(DataFormatException, DataException, "Invalid data format");
    EXPECT_CLASS(CircularReferenceException, DataException, "Circular reference detected");
}

TEST(ExceptionTest, ClonesCopiesAndAssignmentsOwnADeepCopyOfTheCause) {
    SystemException outer("outer", ERR_SYSTEM);
    outer.setNested(FileNotFoundException("inner", ERR_PATH_NOT_FOUND));
    const Exception* cause = outer.nested();
    const std::unique_ptr<Exception> clone(outer.clone());
    const SystemException copy(outer);
    SystemException assigned("other", 1);
    assigned = outer;
    EXPECT_EQ(assigned.message(), "outer");
    const Exception* const copies[] = {clone.get(), &copy, &assigned};
    for (const Exception* e : copies) {
        ASSERT_NE(e->nested(), nullptr);
        EXPECT_NE(e->nested(), cause);
        EXPECT_EQ(e->nested()->message() + " " + std::to_string(e->nested()->code()),
                  "inner -32013");
    }
}

}  // namespace
