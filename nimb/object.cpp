#include "nimb/object.h"

#include <sstream>
#include <typeinfo>

namespace nimb {

namespace {

// Some ABIs mark local types with a leading '*' in their type names.
const char* typeName(const std::type_info& info) noexcept {
    const char* name = info.name();
    return *name == '*' ? name + 1 : name;
}

}  // namespace

Object::~Object() = default;

std::string Object::toString() const {
    std::ostringstream out;
    out << typeName(typeid(*this)) << '@' << static_cast<const void*>(this);
    return out.str();
}

Exception::Exception(const std::string& message, int code) : m_message(message), m_code(code) {}

Exception::Exception(const Exception& other)
    : std::exception(other),
      Object(other),
      m_message(other.m_message),
      m_nested(other.m_nested ? other.m_nested->clone() : nullptr),
      m_code(other.m_code) {}

Exception& Exception::operator=(const Exception& other) {
    if (this != &other) {
        Exception* nested = other.m_nested ? other.m_nested->clone() : nullptr;
        delete m_nested;
        m_nested = nested;
        m_message = other.m_message;
        m_code = other.m_code;
    }
    return *this;
}

Exception::~Exception() noexcept { delete m_nested; }

const char* Exception::what() const noexcept { return getName(); }

const char* Exception::getName() const noexcept { return "Exception"; }

const char* Exception::getClassName() const noexcept { return typeName(typeid(*this)); }

Exception* Exception::clone() const { return new Exception(*this); }

void Exception::rethrow() const { throw *this; }

std::string Exception::toString() const { return getName(); }

void Exception::setNested(const Exception& cause) {
    Exception* nested = cause.clone();
    delete m_nested;
    m_nested = nested;
}

// Defines what NIMB_DECLARE_EXCEPTION declared. Every member is out of line so
// that each class's vtable and type information live in this library, and a
// handler in the daemon matches an exception thrown inside a plug-in.
#define NIMB_IMPLEMENT_EXCEPTION(CLS, BASE, NAME)                                    \
    CLS::CLS(const std::string& message, int code) : BASE(message, code) {}          \
    CLS::CLS(const CLS& other) : BASE(other) {}                                      \
    CLS& CLS::operator=(const CLS& other) {                                          \
        BASE::operator=(other);                                                      \
        return *this;                                                                \
    }                                                                                \
    CLS::~CLS() noexcept = default;                                                  \
    const char* CLS::getName() const noexcept { return NAME; }                       \
    const char* CLS::getClassName() const noexcept { return typeName(typeid(*this)); } \
    CLS* CLS::clone() const { return new CLS(*this); }                               \
    void CLS::rethrow() const { throw CLS(*this); }

NIMB_IMPLEMENT_EXCEPTION(LogicException, Exception, "Logic error")
NIMB_IMPLEMENT_EXCEPTION(RuntimeException, Exception, "Runtime error")
NIMB_IMPLEMENT_EXCEPTION(ApplicationException, Exception, "Application error")

NIMB_IMPLEMENT_EXCEPTION(NullPointerException, LogicException, "Null pointer")
NIMB_IMPLEMENT_EXCEPTION(NullValueException, LogicException, "Null value")
NIMB_IMPLEMENT_EXCEPTION(IllegalStateException, LogicException, "Illegal State")
NIMB_IMPLEMENT_EXCEPTION(InvalidAccessException, LogicException, "Invalid Access")
NIMB_IMPLEMENT_EXCEPTION(NotImplementedException, LogicException, "Not Implemented")
NIMB_IMPLEMENT_EXCEPTION(RangeException, LogicException, "Invalid range")
NIMB_IMPLEMENT_EXCEPTION(InvalidArgumentException, LogicException, "Invalid Argument")
NIMB_IMPLEMENT_EXCEPTION(UnhandledException, LogicException, "Unhandled error")

NIMB_IMPLEMENT_EXCEPTION(IOException, RuntimeException, "Input/Output error")
NIMB_IMPLEMENT_EXCEPTION(DataException, RuntimeException, "Data error")
NIMB_IMPLEMENT_EXCEPTION(ExistsException, RuntimeException, "Already exists error")
NIMB_IMPLEMENT_EXCEPTION(TimeoutException, RuntimeException, "Timeout reached")
NIMB_IMPLEMENT_EXCEPTION(SystemException, RuntimeException, "System error")
NIMB_IMPLEMENT_EXCEPTION(LibraryLoadException, RuntimeException, "Loading Library error")
NIMB_IMPLEMENT_EXCEPTION(LibraryAlreadyLoadedException, RuntimeException, "Library already loaded")
NIMB_IMPLEMENT_EXCEPTION(NoThreadAvailableException, RuntimeException, "No thread available")
NIMB_IMPLEMENT_EXCEPTION(PropertyNotSupportedException, RuntimeException,
                         "System property isn't supported")
NIMB_IMPLEMENT_EXCEPTION(NoPermissionException, RuntimeException, "No enough permissions")
NIMB_IMPLEMENT_EXCEPTION(BadCastException, RuntimeException, "Bad cast error")
NIMB_IMPLEMENT_EXCEPTION(OverflowException, RuntimeException, "Overflow error")
NIMB_IMPLEMENT_EXCEPTION(OutOfMemoryException, RuntimeException, "Out Of Memory error")
NIMB_IMPLEMENT_EXCEPTION(RegularExpressionException, RuntimeException, "Regular Expression error")
NIMB_IMPLEMENT_EXCEPTION(NotFoundException, RuntimeException, "Not Found error")

NIMB_IMPLEMENT_EXCEPTION(FileException, IOException, "File error")
NIMB_IMPLEMENT_EXCEPTION(ProtocolException, IOException, "Protocol error")

NIMB_IMPLEMENT_EXCEPTION(ReadFileException, FileException, "Reading file error")
NIMB_IMPLEMENT_EXCEPTION(OpenFileException, FileException, "Opening file error")
NIMB_IMPLEMENT_EXCEPTION(WriteFileException, FileException, "Writing file error")
NIMB_IMPLEMENT_EXCEPTION(CreateFileException, FileException, "Creating file error")
NIMB_IMPLEMENT_EXCEPTION(FileNotOpenException, FileException, "File not open error")
NIMB_IMPLEMENT_EXCEPTION(PathNotFoundException, FileException, "Path not found")
NIMB_IMPLEMENT_EXCEPTION(FileReadOnlyException, FileException, "File is read-only")
NIMB_IMPLEMENT_EXCEPTION(FileAccessDeniedException, FileException, "Access denied over file")
NIMB_IMPLEMENT_EXCEPTION(FileExistsException, FileException, "File already exists")
NIMB_IMPLEMENT_EXCEPTION(FileNotFoundException, FileException, "File not found")

NIMB_IMPLEMENT_EXCEPTION(SyntaxException, DataException, "Invalid syntax")
NIMB_IMPLEMENT_EXCEPTION(DataFormatException, DataException, "Invalid data format")
NIMB_IMPLEMENT_EXCEPTION(CircularReferenceException, DataException,
                         "Circular reference detected")

}  // namespace nimb
