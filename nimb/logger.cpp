#include "nimb/logger.h"

#include <QFile>
#include <QFileInfo>
#include <QString>
#include <QStringList>
#include <QTextStream>

#include <iostream>

#include "nimb/datetime.h"

namespace nimb {

namespace {

const char* const LEVEL_NAMES[] = {"TRACE", "DEBUG", "INFO", "WARNING", "ERROR", "FATAL"};

QString timeStamp() {
    return QString::fromStdString(
        DateTime::dateTimeToStr(DateTime::now(), "dd-MM-yyyy hh:mm:ss.zzz"));
}

// Concatenated rather than filled in with QString::arg, so that a "%1" in a
// message or a file name is printed as it stands.
QString formatLine(const LoggerConfig& config, LogLevel level, const char* line) {
    return QLatin1Char('[') + timeStamp() + QStringLiteral("] [") +
           QString::fromStdString(LoggerWriter::levelToStr(level)) + QStringLiteral("] {") +
           QString::fromStdString(config.name) + QStringLiteral("} ") + QString::fromUtf8(line) +
           QLatin1Char('\n');
}

bool toConsole(LogOutput output) { return output == OUTPUT_CONSOLE || output == OUTPUT_CONSOLE_FILE; }
bool toFile(LogOutput output) { return output == OUTPUT_FILE || output == OUTPUT_CONSOLE_FILE; }

void consoleLine(const LoggerConfig& config, LogLevel level, const char* line) {
    std::clog << formatLine(config, level, line).toUtf8().constData() << std::flush;
}

void fileLine(const LoggerConfig& config, LogLevel level, const char* line) {
    const QString filename = QString::fromStdString(config.filename);
    // The dot is searched in the whole path, as the suite has always done.
    const int dot = filename.lastIndexOf(QLatin1Char('.'));
    const QString base = dot < 0 ? filename : filename.left(dot);

    QString rotatedTo;
    if (QFileInfo(filename).size() >= LoggerWriter::ROTATE_SIZE) {
        // The rotated file ends in ".log" whatever the configured extension.
        const QString target =
            base + QLatin1Char('_') +
            QString::fromStdString(DateTime::dateTimeToStr(DateTime::now(), "dd_MM_yy__hh_mm_ss")) +
            QStringLiteral(".log");
        if (QFile::rename(filename, target))
            rotatedTo = target;
    }

    QFile file(filename);
    if (!file.open(QIODevice::ReadWrite | QIODevice::Append | QIODevice::Text))
        return;
    QTextStream stream(&file);
    stream.setCodec("UTF-8");
    if (!rotatedTo.isEmpty())
        stream << timeStamp() << QStringLiteral(" - Previous log ") << rotatedTo << QLatin1Char('\n');
    stream << formatLine(config, level, line);
    stream.flush();
    file.close();
}

}  // namespace

// ---- LoggerConfig -------------------------------------------------------------

LoggerConfig::LoggerConfig() : level(FATAL), output(OUTPUT_NONE) {}

LoggerConfig::LoggerConfig(const std::string& name, LogLevel level, LogOutput output)
    : name(name), level(level), output(output) {}

// ---- LoggerWriter -------------------------------------------------------------

LoggerWriter::LoggerWriter(const LoggerConfig& config) : m_config(config) {}

LoggerWriter::~LoggerWriter() = default;

void LoggerWriter::setConfig(const LoggerConfig& config) {
    try {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_config = config;
    } catch (...) {
    }
}

LoggerConfig LoggerWriter::getConfig() const {
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_config;
}

void LoggerWriter::write(LogLevel level, const char* message) {
    try {
        std::lock_guard<std::mutex> lock(m_mutex);
        if (m_config.level > level || m_config.output == OUTPUT_NONE)
            return;
        const QStringList parts = QString::fromUtf8(message ? message : "").split(QLatin1Char('\n'));
        for (const QString& part : parts) {
            const QString trimmed = part.trimmed();
            if (trimmed.isEmpty())
                continue;
            writeLine(m_config, level, trimmed.toUtf8().constData());
        }
    } catch (...) {
        // A logger never fails its caller.
    }
}

void LoggerWriter::writeLine(const LoggerConfig& config, LogLevel level, const char* line) {
    if (toConsole(config.output))
        consoleLine(config, level, line);
    if (toFile(config.output))
        fileLine(config, level, line);
}

void LoggerWriter::writeToConsole(LogLevel level, const char* line) {
    try {
        std::lock_guard<std::mutex> lock(m_mutex);
        consoleLine(m_config, level, line ? line : "");
    } catch (...) {
    }
}

void LoggerWriter::writeToFile(LogLevel level, const char* line) {
    try {
        std::lock_guard<std::mutex> lock(m_mutex);
        fileLine(m_config, level, line ? line : "");
    } catch (...) {
    }
}

std::string LoggerWriter::levelToStr(LogLevel level) {
    const int index = static_cast<int>(level);
    return LEVEL_NAMES[index >= 0 && index <= 5 ? index : 0];
}

LogLevel LoggerWriter::strToLevel(const char* text, LogLevel defaultLevel) {
    if (text == nullptr || *text == '\0')
        return defaultLevel;
    const QString upper = QString::fromUtf8(text).toUpper();
    for (int index = 5; index >= 0; --index) {
        if (upper == QLatin1String(LEVEL_NAMES[index]))
            return static_cast<LogLevel>(index);
    }
    return defaultLevel;
}

// ---- Logger -------------------------------------------------------------------

Logger::Logger(const std::string& name)
    : m_writer(new LoggerWriter(LoggerConfig(name, FATAL, OUTPUT_NONE))) {}

Logger::~Logger() { delete m_writer; }

void Logger::configure(const LoggerConfig& config) { m_writer->setConfig(config); }

LoggerConfig Logger::getConfig() const { return m_writer->getConfig(); }

void Logger::trace(const char* message) { m_writer->write(TRACE, message); }
void Logger::trace(const std::string& message) { m_writer->write(TRACE, message.c_str()); }
void Logger::debug(const char* message) { m_writer->write(DEBUG, message); }
void Logger::debug(const std::string& message) { m_writer->write(DEBUG, message.c_str()); }
void Logger::info(const char* message) { m_writer->write(INFO, message); }
void Logger::info(const std::string& message) { m_writer->write(INFO, message.c_str()); }
void Logger::warning(const char* message) { m_writer->write(WARNING, message); }
void Logger::warning(const std::string& message) { m_writer->write(WARNING, message.c_str()); }
void Logger::error(const char* message) { m_writer->write(ERROR, message); }
void Logger::error(const std::string& message) { m_writer->write(ERROR, message.c_str()); }
void Logger::fatal(const char* message) { m_writer->write(FATAL, message); }
void Logger::fatal(const std::string& message) { m_writer->write(FATAL, message.c_str()); }

std::string Logger::levelToStr(LogLevel level) { return LoggerWriter::levelToStr(level); }

LogLevel Logger::strToLevel(const char* text, LogLevel defaultLevel) {
    return LoggerWriter::strToLevel(text, defaultLevel);
}

LogLevel Logger::strToLevel(const std::string& text, LogLevel defaultLevel) {
    return LoggerWriter::strToLevel(text.c_str(), defaultLevel);
}

Logger* Logger::getLogger(const char* name) { return getLogger(std::string(name ? name : "")); }

Logger* Logger::getLogger(const std::string& name) {
    std::lock_guard<std::mutex> lock(LoggerInstance::mutex());
    Logger*& entry = LoggerInstance::map()[name];
    if (entry == nullptr)
        entry = new Logger(name);
    return entry;
}

Logger* Logger::setLogger(const char* name, Logger* logger) {
    std::lock_guard<std::mutex> lock(LoggerInstance::mutex());
    LoggerInstance::map()[name ? name : ""] = logger;
    return logger;
}

// ---- LoggerInstance -----------------------------------------------------------

std::map<std::string, Logger*>& LoggerInstance::map() {
    // Never destroyed: loggers are written to while other statics are destroyed.
    static auto* const registry = new std::map<std::string, Logger*>();
    return *registry;
}

std::mutex& LoggerInstance::mutex() {
    static auto* const guard = new std::mutex();
    return *guard;
}

}  // namespace nimb
