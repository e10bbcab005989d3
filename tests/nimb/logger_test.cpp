#include "nimb/logger.h"
#include "tests/support.h"

#include <gtest/gtest.h>

#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QLocale>
#include <QTemporaryDir>

#include <tuple>

namespace {

using namespace nimb;

QStringList linesOf(const QString& path) {
    return QString::fromStdString(support::readFile(path.toStdString()))
        .split('\n', Qt::SkipEmptyParts);
}

// The lines without their "[time stamp] " after checking that each stamp lies
// between from and to; a line without such a stamp becomes "".
QStringList unstamped(const QStringList& lines, const QDateTime& from, const QDateTime& to) {
    QStringList out;
    for (const QString& line : lines) {
        const QDateTime stamp = QDateTime::fromString(line.mid(1, 23), "dd-MM-yyyy hh:mm:ss.zzz");
        const bool ok =
            line.startsWith('[') && line.mid(24, 2) == "] " && stamp >= from && stamp <= to;
        out << (ok ? line.mid(26) : QString());
    }
    return out;
}

class LoggerTest : public ::testing::Test {
protected:
    QString path(const QString& name) const { return m_dir.filePath(name); }
    // A logger "unit" writing to name in the temporary folder.
    void configure(Logger& logger, const QString& name, LogLevel level = TRACE,
                   LogOutput output = OUTPUT_FILE) const {
        LoggerConfig config("unit", level, output);
        config.filename = path(name).toStdString();
        logger.configure(config);
    }
    QTemporaryDir m_dir;
};

TEST(LoggerLevelTest, NamesAndParsing) {
    const char* const names[] = {"TRACE", "DEBUG", "INFO", "WARNING", "ERROR", "FATAL", "TRACE"};
    for (int level : {0, 1, 2, 3, 4, 5, -1})
        EXPECT_EQ(Logger::levelToStr(LogLevel(level)), names[level < 0 ? 6 : level]) << level;

    const std::tuple<const char*, LogLevel, LogLevel> rows[] = {
        {"warning", TRACE, WARNING}, {"Fatal", TRACE, FATAL}, {"tRaCe", FATAL, TRACE},
        {"", ERROR, ERROR},          {nullptr, ERROR, ERROR}, {"verbose", ERROR, ERROR},
        {" INFO", ERROR, ERROR}};
    for (const auto& [text, fallback, expected] : rows)
        EXPECT_EQ(Logger::strToLevel(text, fallback), expected) << (text ? text : "(null)");
}

// Every output gets the exact lines of the messages at or above the level.
TEST_F(LoggerTest, ExactLinesToStandardErrorAndFile) {
    const QStringList expected = {"[INFO] {unit} Service started.",
                                  "[WARNING] {unit} 50% done %1",
                                  "[ERROR] {unit} a",
                                  "[ERROR] {unit} b",
                                  "[FATAL] {unit} température",
                                  "[FATAL] {unit} °C"};
    for (LogOutput output : {OUTPUT_NONE, OUTPUT_CONSOLE, OUTPUT_FILE, OUTPUT_CONSOLE_FILE}) {
        const QString name = QString("out%1.log").arg(output);
        Logger logger("ignored");
        configure(logger, name, INFO, output);
        const QDateTime from = QDateTime::currentDateTime();
        ::testing::internal::CaptureStderr();
        logger.debug("d");
        logger.info("Service started.");
        logger.warning(std::string("50% done %1"));
        logger.error("  a \n\n \t \n  b  \n");
        logger.fatal(static_cast<const char*>(nullptr));
        logger.fatal("température\r\n°C");
        const QString console = QString::fromStdString(::testing::internal::GetCapturedStderr());
        const QDateTime to = QDateTime::currentDateTime();
        EXPECT_EQ(unstamped(console.split('\n', Qt::SkipEmptyParts), from, to),
                  output & OUTPUT_CONSOLE ? expected : QStringList())
            << output;
        EXPECT_EQ(unstamped(linesOf(path(name)), from, to),
                  output >= OUTPUT_FILE ? expected : QStringList());
    }
}

TEST_F(LoggerTest, RotatesFromOneMebibyte) {
    // The file, its size before the next line, whether it is rotated then; the
    // rotated file ends in ".log" whatever the extension was.
    const std::tuple<QString, qint64, bool> rows[] = {
        {"below.log", 1048575, false}, {"client.txt", 1048576, true}, {"log", 1048577, true}};
    for (const auto& [name, size, rotated] : rows) {
        SCOPED_TRACE(name.toStdString());
        support::writeFile(path(name).toStdString(), std::string(size, 'x'));
        Logger logger("unit");
        configure(logger, name);
        const QDateTime from = QDateTime::currentDateTime();
        logger.info("after");
        const QDateTime to = QDateTime::currentDateTime();
        const QString prefix = name.section('.', 0, 0) + "_";
        const QStringList files = QDir(m_dir.path()).entryList({prefix + "*"}, QDir::Files);
        ASSERT_EQ(files.size(), rotated ? 1 : 0);
        if (!rotated) {
            EXPECT_EQ(QFileInfo(path(name)).size(), size + 46) << "the line was not appended";
            continue;
        }
        EXPECT_EQ(QFileInfo(path(files[0])).size(), size);
        // Named after the time of the rotation, in whole seconds.
        const auto nameAt = [&](const QDateTime& t) {
            return prefix + QLocale::c().toString(t, "dd_MM_yy__hh_mm_ss") + ".log";
        };
        EXPECT_TRUE(files[0] == nameAt(from) || files[0] == nameAt(to)) << files[0].toStdString();
        const QStringList lines = linesOf(path(name));
        ASSERT_EQ(lines.size(), 2);
        EXPECT_EQ(unstamped({"[" + lines[0].left(23) + "]" + lines[0].mid(23), lines[1]}, from, to),
                  QStringList({"- Previous log " + path(files[0]), "[INFO] {unit} after"}));
    }
}

TEST_F(LoggerTest, RegistrySharesLoggersByName) {
    Logger* fresh = Logger::getLogger("fresh");
    EXPECT_EQ(Logger::getLogger(std::string("fresh")), fresh);
    EXPECT_NE(Logger::getLogger("other"), fresh);
    EXPECT_EQ(fresh->getConfig().output, OUTPUT_NONE) << "writes nothing until configured";
    Logger replacement("fresh");
    EXPECT_EQ(Logger::setLogger("fresh", &replacement), &replacement);
    EXPECT_EQ(Logger::getLogger("fresh"), &replacement);
    Logger::setLogger("fresh", fresh);
    Logger::setLogger("emptied", nullptr);
    EXPECT_NE(Logger::getLogger("emptied"), nullptr);
}

}  // namespace
