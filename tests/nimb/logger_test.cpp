#include "nimb/logger.h"

#include <gtest/gtest.h>

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <iostream>
#include <tuple>
#include <thread>
#include <vector>

namespace {

using namespace nimb;

QStringList linesOf(const QString& path) {
    QFile file(path);
    file.open(QIODevice::ReadOnly);
    return QString::fromUtf8(file.readAll()).split('\n', Qt::SkipEmptyParts);
}

// The line without its "[time stamp] " after checking that the stamp lies
// between from and to; "" when the line has no stamp.
QString unstamped(const QString& line, const QDateTime& from, const QDateTime& to) {
    const QDateTime stamp = QDateTime::fromString(line.mid(1, 23), "dd-MM-yyyy hh:mm:ss.zzz");
    const bool ok = line.startsWith('[') && line.mid(24, 2) == "] " && stamp >= from && stamp <= to;
    return ok ? line.mid(26) : QString();
}

// Sends file descriptor 2 into a file until finish().
class StderrCapture {
public:
    explicit StderrCapture(const QString& path) : m_path(path), m_saved(dup(2)) {
        const int fd = open(path.toLocal8Bit().constData(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        dup2(fd, 2);
        close(fd);
    }
    QStringList finish() {
        std::clog.flush();
        dup2(m_saved, 2);
        close(m_saved);
        return linesOf(m_path);
    }

private:
    QString m_path;
    int m_saved;
};

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
    const char* const names[] = {"TRACE", "DEBUG", "INFO", "WARNING", "ERROR", "FATAL", "TRACE", "TRACE"};
    for (int level : {0, 1, 2, 3, 4, 5, 7, -1})
        EXPECT_EQ(Logger::levelToStr(LogLevel(level)), names[level < 0 ? 7 : level]) << level;

    const std::tuple<const char*, LogLevel, LogLevel> rows[] = {
        {"warning", TRACE, WARNING}, {"Fatal", TRACE, FATAL}, {"tRaCe", FATAL, TRACE},
        {"debug", FATAL, DEBUG},     {"", ERROR, ERROR},      {nullptr, ERROR, ERROR},
        {"verbose", ERROR, ERROR},   {" INFO", ERROR, ERROR}, {"INFO ", ERROR, ERROR}};
    for (const auto& [text, fallback, expected] : rows) {
        EXPECT_EQ(Logger::strToLevel(text, fallback), expected) << (text ? text : "(null)");
        EXPECT_EQ(Logger::strToLevel(std::string(text ? text : ""), fallback),
                  text ? expected : fallback);
    }
}

TEST_F(LoggerTest, ExactLinesAboveTheConfiguredLevel) {
    Logger logger("ignored");
    configure(logger, "shutsvc.log", INFO);
    const QDateTime from = QDateTime::currentDateTime();
    logger.trace("t");
    logger.debug("d");
    logger.info("Service started.");
    logger.warning(std::string("50% done %1"));
    logger.error("  a \n\n \t \n  b  \n");
    logger.fatal(static_cast<const char*>(nullptr));
    logger.fatal("one\r\ntwo");
    const QDateTime to = QDateTime::currentDateTime();

    QStringList lines;
    for (const QString& line : linesOf(path("shutsvc.log")))
        lines << unstamped(line, from, to);
    EXPECT_EQ(lines, QStringList({"[INFO] {unit} Service started.", "[WARNING] {unit} 50% done %1",
                                  "[ERROR] {unit} a", "[ERROR] {unit} b", "[FATAL] {unit} one",
                                  "[FATAL] {unit} two"}));
}

TEST_F(LoggerTest, OutputSelectsStandardErrorAndFile) {
    for (LogOutput output : {OUTPUT_NONE, OUTPUT_CONSOLE, OUTPUT_FILE, OUTPUT_CONSOLE_FILE}) {
        const QString name = QString("out%1.log").arg(output);
        Logger logger("unit");
        configure(logger, name, TRACE, output);
        StderrCapture capture(path("stderr.txt"));
        logger.fatal("température\n°C");
        const QStringList console = capture.finish();

        const QStringList expected = {"[FATAL] {unit} température", "[FATAL] {unit} °C"};
        const auto tail = [](const QStringList& lines) {
            QStringList out;
            for (const QString& line : lines)
                out << line.mid(26);
            return out;
        };
        EXPECT_EQ(tail(console), output & OUTPUT_CONSOLE ? expected : QStringList()) << output;
        EXPECT_EQ(tail(linesOf(path(name))), output >= OUTPUT_FILE ? expected : QStringList());
        EXPECT_EQ(QFile::exists(path(name)), output >= OUTPUT_FILE);
    }
    // An unopenable file loses the line without failing.
    Logger logger("unit");
    configure(logger, "missing/app.log");
    logger.info("lost");
    EXPECT_FALSE(QFile::exists(path("missing")));
}

TEST_F(LoggerTest, RotatesFromOneMebibyte) {
    const std::tuple<QString, qint64, QString> rows[] = {
        {"below.log", 1048575, ""},
        {"client.log", 1048576, "client_"},
        {"big.txt", 1048576 + 100, "big_"},
        {"log", 1048576, "log_"}};
    for (const auto& [name, size, prefix] : rows) {
        QDir(m_dir.path()).removeRecursively();
        QDir().mkpath(m_dir.path());
        QFile old(path(name));
        ASSERT_TRUE(old.open(QIODevice::WriteOnly));
        old.write(QByteArray(size, 'x'));
        old.close();
        Logger logger("unit");
        configure(logger, name);
        const QDateTime from = QDateTime::currentDateTime();
        logger.info("after");
        const QDateTime to = QDateTime::currentDateTime();

        QStringList files = QDir(m_dir.path()).entryList(QDir::Files);
        files.removeOne(name);
        const QStringList lines = linesOf(path(name));
        if (prefix.isEmpty()) {
            EXPECT_EQ(files, QStringList());
            ASSERT_EQ(lines.size(), 1);
            EXPECT_EQ(lines[0].left(size), QString(size, 'x'));
            EXPECT_EQ(unstamped(lines[0].mid(size), from, to), "[INFO] {unit} after");
            continue;
        }
        ASSERT_EQ(files.size(), 1) << name.toStdString();
        EXPECT_TRUE(QRegularExpression("^" + prefix + "\\d\\d_\\d\\d_\\d\\d__\\d\\d_\\d\\d_\\d\\d\\.log$")
                        .match(files[0]).hasMatch()) << files[0].toStdString();
        // "yy" reads back as 19yy; the name has whole seconds.
        const QDateTime rotated = QDateTime::fromString(files[0].mid(prefix.size(), 18), "dd_MM_yy__hh_mm_ss");
        EXPECT_GE(rotated.addYears(100), from.addMSecs(-from.time().msec()));
        EXPECT_LE(rotated.addYears(100), to);
        EXPECT_EQ(QFileInfo(path(files[0])).size(), size);
        ASSERT_EQ(lines.size(), 2);
        EXPECT_EQ(unstamped("[" + lines[0].left(23) + "] " + lines[0].mid(26), from, to),
                  "Previous log " + path(files[0]));
        EXPECT_EQ(lines[0].mid(23, 3), " - ");
        EXPECT_EQ(unstamped(lines[1], from, to), "[INFO] {unit} after");
    }
}

TEST_F(LoggerTest, RegistrySharesLoggersByName) {
    Logger* fresh = Logger::getLogger("fresh");
    EXPECT_EQ(Logger::getLogger(std::string("fresh")), fresh);
    EXPECT_NE(Logger::getLogger("other"), fresh);
    const LoggerConfig config = fresh->getConfig();
    EXPECT_EQ(std::tie(config.name, config.level, config.output, config.filename),
              std::make_tuple(std::string("fresh"), FATAL, OUTPUT_NONE, std::string()));
    StderrCapture capture(path("stderr.txt"));
    fresh->fatal("silent until configured");
    EXPECT_EQ(capture.finish(), QStringList());

    Logger replacement("fresh");
    EXPECT_EQ(Logger::setLogger("fresh", &replacement), &replacement);
    EXPECT_EQ(Logger::getLogger("fresh"), &replacement);
    EXPECT_EQ(fresh->getConfig().name, "fresh");  // not deleted
    Logger::setLogger("fresh", fresh);
    Logger::setLogger("emptied", nullptr);
    ASSERT_NE(Logger::getLogger("emptied"), nullptr);

    std::vector<Logger*> seen(8);
    std::vector<std::thread> threads;
    for (Logger*& slot : seen)
        threads.emplace_back([&slot] { slot = Logger::getLogger("raced"); });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(std::count(seen.begin(), seen.end(), seen[0]), 8);
}

TEST_F(LoggerTest, ConcurrentWritersNeverInterleaveLines) {
    Logger logger("unit");
    configure(logger, "threads.log");
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&logger] {
            for (int i = 0; i < 100; ++i)
                logger.info("line " + std::to_string(i));
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    const QStringList lines = linesOf(path("threads.log"));
    EXPECT_EQ(lines.size(), 400);
    const QRegularExpression shape("^\\[[^\\]]{23}\\] \\[INFO\\] \\{unit\\} line \\d+$");
    EXPECT_EQ(lines.filter(shape).size(), lines.size());
}

}  // namespace
