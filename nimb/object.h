// The common root of the suite's classes and its one failure type.
#pragma once

#include <exception>
#include <string>

namespace nimb {

// Root of nearly every class of the suite; gives each object a text form.
class Object {
public:
    Object() = default;
    Object(const Object&) = default;
    Object& operator=(const Object&) = default;
    virtual ~Object();

    // The object's text form. The default is the dynamic type's name as the
    // type-information facility reports it, "@" and the object's address
    // ("N4nimb6ObjectE@0x55d0c8a1e2b0"); records override it.
    virtual std::string toString() const;

    // Convenience that dispatches to the virtual toString().
    std::string toStr() const { return toString(); }
};

// The suite's failure: a message from the throw site, a negative code and an
// owned, deep-copied nested cause. what() and toString() give the class's
// fixed category text (getName()), never the message; read the message with
// message().
class Exception : public std::exception, public Object {
public:
    explicit Exception(const std::string& message = std::string(), int code = 0);
    // Copies message and code and clones the nested cause.
    Exception(const Exception& other);
    Exception& operator=(const Exception& other);
    ~Exception() noexcept override;

    const char* what() const noexcept override;
    // The class's fixed category text, for example "File not found".
    virtual const char* getName() const noexcept;
    // The dynamic class's type name, for example "N4nimb14RangeExceptionE".
    virtual const char* getClassName() const noexcept;
    // A heap copy of the same dynamic class with a deep copy of the nested
    // cause; the caller owns it.
    virtual Exception* clone() const;
    // Throws a copy of this exception as its own dynamic class.
    [[noreturn]] virtual void rethrow() const;
    std::string toString() const override;

    const std::string& message() const noexcept { return m_message; }
    int code() const noexcept { return m_code; }
    // The nested cause, owned by this exception; null when there is none.
    const Exception* nested() const noexcept { return m_nested; }

    // Makes a clone of cause the nested cause, replacing the previous one.
    void setNested(const Exception& cause);

private:
    std::string m_message;
    Exception* m_nested = nullptr;
    int m_code = 0;
};

// Declares an exception class that adds nothing to its base but its category
// text and its own dynamic type.
#define NIMB_DECLARE_EXCEPTION(CLS, BASE)                                          \
    class CLS : public BASE {                                                      \
    public:                                                                        \
        explicit CLS(const std::string& message = std::string(), int code = 0);    \
        CLS(const CLS& other);                                                     \
        CLS& operator=(const CLS& other);                                          \
        ~CLS() noexcept override;                                                  \
        const char* getName() const noexcept override;                             \
        const char* getClassName() const noexcept override;                        \
        CLS* clone() const override;                                               \
        [[noreturn]] void rethrow() const override;                                \
    };

NIMB_DECLARE_EXCEPTION(LogicException, Exception)
NIMB_DECLARE_EXCEPTION(RuntimeException, Exception)
NIMB_DECLARE_EXCEPTION(ApplicationException, Exception)

NIMB_DECLARE_EXCEPTION(NullPointerException, LogicException)
NIMB_DECLARE_EXCEPTION(NullValueException, LogicException)
NIMB_DECLARE_EXCEPTION(IllegalStateException, LogicException)
NIMB_DECLARE_EXCEPTION(InvalidAccessException, LogicException)
NIMB_DECLARE_EXCEPTION(NotImplementedException, LogicException)
NIMB_DECLARE_EXCEPTION(RangeException, LogicException)
NIMB_DECLARE_EXCEPTION(InvalidArgumentException, LogicException)
NIMB_DECLARE_EXCEPTION(UnhandledException, LogicException)

NIMB_DECLARE_EXCEPTION(IOException, RuntimeException)
NIMB_DECLARE_EXCEPTION(DataException, RuntimeException)
NIMB_DECLARE_EXCEPTION(ExistsException, RuntimeException)
NIMB_DECLARE_EXCEPTION(TimeoutException, RuntimeException)
NIMB_DECLARE_EXCEPTION(SystemException, RuntimeException)
NIMB_DECLARE_EXCEPTION(LibraryLoadException, RuntimeException)
NIMB_DECLARE_EXCEPTION(LibraryAlreadyLoadedException, RuntimeException)
NIMB_DECLARE_EXCEPTION(NoThreadAvailableException, RuntimeException)
NIMB_DECLARE_EXCEPTION(PropertyNotSupportedException, RuntimeException)
NIMB_DECLARE_EXCEPTION(NoPermissionException, RuntimeException)
NIMB_DECLARE_EXCEPTION(BadCastException, RuntimeException)
NIMB_DECLARE_EXCEPTION(OverflowException, RuntimeException)
NIMB_DECLARE_EXCEPTION(OutOfMemoryException, RuntimeException)
NIMB_DECLARE_EXCEPTION(RegularExpressionException, RuntimeException)
NIMB_DECLARE_EXCEPTION(NotFoundException, RuntimeException)

NIMB_DECLARE_EXCEPTION(FileException, IOException)
NIMB_DECLARE_EXCEPTION(ProtocolException, IOException)

NIMB_DECLARE_EXCEPTION(ReadFileException, FileException)
NIMB_DECLARE_EXCEPTION(OpenFileException, FileException)
NIMB_DECLARE_EXCEPTION(WriteFileException, FileException)
NIMB_DECLARE_EXCEPTION(CreateFileException, FileException)
NIMB_DECLARE_EXCEPTION(FileNotOpenException, FileException)
NIMB_DECLARE_EXCEPTION(PathNotFoundException, FileException)
NIMB_DECLARE_EXCEPTION(FileReadOnlyException, FileException)
NIMB_DECLARE_EXCEPTION(FileAccessDeniedException, FileException)
NIMB_DECLARE_EXCEPTION(FileExistsException, FileException)
NIMB_DECLARE_EXCEPTION(FileNotFoundException, FileException)

NIMB_DECLARE_EXCEPTION(SyntaxException, DataException)
NIMB_DECLARE_EXCEPTION(DataFormatException, DataException)
NIMB_DECLARE_EXCEPTION(CircularReferenceException, DataException)

// The codes that throw sites pass: -2xx misuse by the caller, -3xx run-time
// failures, -320 input/output and -320 plus two digits for files.
enum ErrorCode : int {
    ERR_INVALID_ARGUMENT = -202,
    ERR_NOT_IMPLEMENTED = -203,
    ERR_OUT_OF_MEMORY = -300,
    ERR_NOT_FOUND = -302,
    ERR_TIMEOUT = -304,
    ERR_SYSTEM = -305,
    ERR_LIBRARY_LOAD = -306,
    ERR_IO = -320,
    // The shorter code of this one file failure is kept as it always was.
    ERR_SET_APPLICATION_PATH = -3201,
    ERR_FILE_NOT_OPEN = -32012,
    ERR_PATH_NOT_FOUND = -32013,
    ERR_OPEN_FILE = -32017,
};

}  // namespace nimb
