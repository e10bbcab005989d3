// Named, levelled loggers that write time-stamped lines to standard error,
// to a self-rotating file, to both or to nothing, and the process-wide
// registry that shares them by name (also across plug-in libraries).
#pragma once

#include "nimb/object.h"

#include <map>
#include <mutex>
#include <string>

namespace nimb {

// The level of a message; a message is written when its level is at least
// the configured level.
enum LogLevel {
    TRACE = 0,
    DEBUG = 1,
    INFO = 2,
    WARNING = 3,
    ERROR = 4,
    FATAL = 5,
};

// Where a logger's lines go. Bit 0 means the console (standard error);
// 2 and 3 mean the file.
enum LogOutput {
    OUTPUT_NONE = 0,
    OUTPUT_CONSOLE = 1,
    OUTPUT_FILE = 2,
    OUTPUT_CONSOLE_FILE = 3,
};

// A logger's whole configuration; a plain value type.
struct LoggerConfig {
    // Defaults: empty name, level FATAL, output none, empty filename.
    LoggerConfig();
    // Leaves the filename empty.
    LoggerConfig(const std::string& name, LogLevel level, LogOutput output);

    // Printed in every line between braces.
    std::string name;
    // The lowest level that is written.
    LogLevel level;
    LogOutput output;
    // The log file; a relative path is taken against the current directory
    // at the time of each write.
    std::string filename;
};

// Formats and writes the lines of one logger. Never throws: a line that
// cannot be written (unopenable file, failed rotation) is lost silently.
// Safe to use from several threads: a mutex serialises configuration
// changes and writes, so lines of concurrent callers never interleave.
class LoggerWriter : public Object {
public:
    // Keeps a copy of config.
    explicit LoggerWriter(const LoggerConfig& config);
    ~LoggerWriter() override;
    LoggerWriter(const LoggerWriter&) = delete;
    LoggerWriter& operator=(const LoggerWriter&) = delete;

    // Replaces the whole configuration (name included).
    void setConfig(const LoggerConfig& config);
    LoggerConfig getConfig() const;

    // Writes message at level: nothing when the level is below the
    // configured one or the output is none; otherwise every line of the
    // message (split at line feeds, trimmed, empty ones skipped) becomes
    // one log line with its own time stamp. A null message is empty.
    void write(LogLevel level, const char* message);
    // Writes one prepared line as "[time] [LEVEL] {name} line\n" to
    // standard error (through std::clog, flushed at once).
    void writeToConsole(LogLevel level, const char* line);
    // Appends one prepared line to the configured file, reopening it for
    // this one line. A file that has reached 1 MiB is first renamed to its
    // base + "_dd_MM_yy__hh_mm_ss.log" and the fresh file starts with a
    // "Previous log" line naming it.
    void writeToFile(LogLevel level, const char* line);

    // "TRACE" … "FATAL"; any value outside 0 to 5 gives "TRACE".
    static std::string levelToStr(LogLevel level);
    // The level whose name equals text, ignoring case but not blanks;
    // defaultLevel for a null, empty or unknown text.
    static LogLevel strToLevel(const char* text, LogLevel defaultLevel);

    // The size in bytes from which a log file is rotated before the next line.
    static const long long ROTATE_SIZE = 1048576;

private:
    // Formats the line and writes it to the outputs of config.
    void writeLine(const LoggerConfig& config, LogLevel level, const char* line);

    // Guards m_config and serialises the writing of lines.
    mutable std::mutex m_mutex;
    LoggerConfig m_config;
};

// A named logger. A new logger writes nothing until it is configured.
// None of its operations throws.
class Logger : public Object {
public:
    // Configured as (name, FATAL, none).
    explicit Logger(const std::string& name);
    ~Logger() override;
    Logger(const Logger&) = delete;
    Logger& operator=(const Logger&) = delete;

    // Replaces the whole configuration, the name included.
    void configure(const LoggerConfig& config);
    LoggerConfig getConfig() const;

    void trace(const char* message);
    void trace(const std::string& message);
    void debug(const char* message);
    void debug(const std::string& message);
    void info(const char* message);
    void info(const std::string& message);
    void warning(const char* message);
    void warning(const std::string& message);
    void error(const char* message);
    void error(const std::string& message);
    void fatal(const char* message);
    void fatal(const std::string& message);

    static std::string levelToStr(LogLevel level);
    static LogLevel strToLevel(const char* text, LogLevel defaultLevel);
    static LogLevel strToLevel(const std::string& text, LogLevel defaultLevel);

    // The registered logger of that name; a new Logger(name) is created and
    // registered when there is none. The registry owns the loggers it
    // creates; they live until the process ends. A null name counts as "".
    static Logger* getLogger(const char* name);
    static Logger* getLogger(const std::string& name);
    // Registers logger under name, replacing any entry; the logger that was
    // there is not deleted and the caller keeps ownership of logger. Returns
    // logger. A null logger makes the next getLogger(name) create a new one.
    static Logger* setLogger(const char* name, Logger* logger);

private:
    LoggerWriter* m_writer;
};

// The process-wide registry of loggers by name. Both objects are created on
// first use and never destroyed, so loggers stay usable while static objects
// are destroyed at exit.
class LoggerInstance {
public:
    // The registry. Read or change it only while holding mutex().
    static std::map<std::string, Logger*>& map();
    // Guards map(); the loggers themselves need no outer lock.
    static std::mutex& mutex();
};

}  // namespace nimb
