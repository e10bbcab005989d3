#include "nimb/logger.h"

#include <gtest/gtest.h>

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <fcntl.h>
#include <unistd.h>

#include <iostream>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace nimb;

const QString STAMP = QStringLiteral("dd-MM-yyyy hh:mm:ss.zzz");

QByteArray readAll(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QStringList linesOf(const QByteArray& text) {
    QStringList lines = QString::fromUtf8(text).split(QLatin1Char('\n'));
    if (!lines.isEmpty() && lines.last().isEmpty())
        lines.removeLast();
    return lines;
}

// Splits "[stamp] rest" and checks that the stamp lies between from and to;
// both are read at the stamp's millisecond precision.
::testing::AssertionResult stampedBetween(const QString& line, const QDateTime& from,
                                          const QDateTime& to, QString* rest) {
    const QRegularExpression re(QStringLiteral(
        "^\\[(\\d\\d-\\d\\d-\\d{4} \\d\\d:\\d\\d:\\d\\d\\.\\d{3})\\] (.*)$"));
    const QRegularExpressionMatch match = re.match(line);
    if (!match.hasMatch())
        return ::testing::AssertionFailure() << "no time stamp in: " << line.toStdString();
    const QDateTime stamp = QDateTime::fromString(match.captured(1), STAMP);
    if (stamp < from || stamp > to)
        return ::testing::AssertionFailure() << "stamp " << match.captured(1).toStdString()
                                             << " outside the write";
    *rest = match.captured(2);
    return ::testing::AssertionSuccess();
}

// Redirects file descriptor 2 into a file while it lives.
class StderrCapture {
public:
    explicit StderrCapture(const QString& path) : m_path(path) {
        std::clog.flush();
        m_saved = dup(2);
        const int fd = open(path.toLocal8Bit().constData(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        dup2(fd, 2);
        close(fd);
    }
    ~StderrCapture() { finish(); }
    QByteArray finish() {
        if (m_saved >= 0) {
            std::clog.flush();
            dup2(m_saved, 2);
            close(m_saved);
            m_saved = -1;
        }
        return readAll(m_path);
    }

private:
    QString m_path;
    int m_saved = -1;
};

class LoggerFileTest : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(m_dir.isValid()); }

    QString path(const QString& name) const { return m_dir.filePath(name); }

    LoggerConfig fileConfig(const QString& name, LogLevel level = TRACE) const {
        LoggerConfig config("unit", level, OUTPUT_FILE);
        config.filename = path(name).toStdString();
        return config;
    }

    void fill(const QString& name, qint64 size) const {
        QFile file(path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        ASSERT_EQ(file.write(QByteArray(size, 'x')), size);
    }

    QTemporaryDir m_dir;
};

TEST(LoggerTextTest, LevelNames) {
    const std::vector<std::pair<int, std::string>> rows = {
        {0, "TRACE"}, {1, "DEBUG"}, {2, "INFO"}, {3, "WARNING"},
        {4, "ERROR"}, {5, "FATAL"}, {7, "TRACE"}, {-1, "TRACE"}};
    for (const auto& row : rows)
        EXPECT_EQ(Logger::levelToStr(static_cast<LogLevel>(row.first)), row.second) << row.first;
}

TEST(LoggerTextTest, StrToLevelIgnoresCaseButNotBlanks) {
    struct Row {
        const char* text;
        LogLevel fallback;
        LogLevel expected;
    };
    const Row rows[] = {
        {"warning", TRACE, WARNING}, {"Fatal", TRACE, FATAL}, {"error", TRACE, ERROR},
        {"INFO", TRACE, INFO},       {"debug", FATAL, DEBUG}, {"tRaCe", FATAL, TRACE},
        {"", ERROR, ERROR},          {nullptr, ERROR, ERROR}, {"verbose", ERROR, ERROR},
        {" INFO", ERROR, ERROR},     {"INFO ", ERROR, ERROR},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(Logger::strToLevel(row.text, row.fallback), row.expected)
            << (row.text ? row.text : "(null)");
        if (row.text) {
            EXPECT_EQ(Logger::strToLevel(std::string(row.text), row.fallback), row.expected);
        }
    }
}

TEST_F(LoggerFileTest, LineFormatIsExact) {
    Logger logger("ignored");
    LoggerConfig config = fileConfig("shutsvc.log", INFO);
    config.name = "shutsvc";
    logger.configure(config);
    EXPECT_EQ(logger.getConfig().name, "shutsvc");

    const QDateTime before = QDateTime::currentDateTime();
    logger.info("Service started.");
    logger.error(std::string("50% done %1"));
    const QDateTime after = QDateTime::currentDateTime();

    const QByteArray text = readAll(path("shutsvc.log"));
    ASSERT_TRUE(text.endsWith('\n'));
    const QStringList lines = linesOf(text);
    ASSERT_EQ(lines.size(), 2);
    QString rest;
    ASSERT_TRUE(stampedBetween(lines[0], before, after, &rest));
    EXPECT_EQ(rest, "[INFO] {shutsvc} Service started.");
    ASSERT_TRUE(stampedBetween(lines[1], before, after, &rest));
    EXPECT_EQ(rest, "[ERROR] {shutsvc} 50% done %1");
}

TEST_F(LoggerFileTest, LevelFilteringPerConfiguredLevel) {
    const char* const names[] = {"TRACE", "DEBUG", "INFO", "WARNING", "ERROR", "FATAL"};
    for (int configured = TRACE; configured <= FATAL; ++configured) {
        const QString name = QStringLiteral("level%1.log").arg(configured);
        Logger logger("unit");
        logger.configure(fileConfig(name, static_cast<LogLevel>(configured)));
        logger.trace("m");
        logger.debug("m");
        logger.info("m");
        logger.warning("m");
        logger.error("m");
        logger.fatal("m");

        QStringList expected;
        for (int level = configured; level <= FATAL; ++level)
            expected << QStringLiteral("[%1] {unit} m").arg(names[level]);
        QStringList written;
        for (const QString& line : linesOf(readAll(path(name))))
            written << line.mid(line.indexOf(QLatin1String("] ")) + 2);
        EXPECT_EQ(written, expected) << "configured level " << configured;
    }
}

TEST_F(LoggerFileTest, MultiLineMessagesBecomeTrimmedLines) {
    struct Row {
        const char* message;
        QStringList expected;
    };
    const std::vector<Row> rows = {
        {"  a \n\n \t \n  b  \n", {"a", "b"}},
        {"one\r\ntwo", {"one", "two"}},
        {"\n\n", {}},
        {"", {}},
        {nullptr, {}},
    };
    int index = 0;
    for (const Row& row : rows) {
        const QString name = QStringLiteral("multi%1.log").arg(index++);
        Logger logger("unit");
        logger.configure(fileConfig(name));
        logger.warning(row.message);
        QStringList written;
        for (const QString& line : linesOf(readAll(path(name))))
            written << line.mid(line.indexOf(QLatin1String("{unit} ")) + 7);
        EXPECT_EQ(written, row.expected) << index;
    }
}

TEST_F(LoggerFileTest, OutputSelectsConsoleAndFile) {
    struct Row {
        LogOutput output;
        bool console;
        bool file;
    };
    const Row rows[] = {{OUTPUT_NONE, false, false},
                        {OUTPUT_CONSOLE, true, false},
                        {OUTPUT_FILE, false, true},
                        {OUTPUT_CONSOLE_FILE, true, true}};
    for (const Row& row : rows) {
        const QString name = QStringLiteral("out%1.log").arg(row.output);
        Logger logger("unit");
        LoggerConfig config = fileConfig(name);
        config.output = row.output;
        logger.configure(config);

        StderrCapture capture(path("stderr.txt"));
        const QDateTime before = QDateTime::currentDateTime();
        logger.fatal("first\nsecond");
        const QDateTime after = QDateTime::currentDateTime();
        const QStringList console = linesOf(capture.finish());

        EXPECT_EQ(QFile::exists(path(name)), row.file) << row.output;
        const QStringList file = linesOf(readAll(path(name)));
        for (const QStringList& lines : {console, file}) {
            for (int i = 0; i < lines.size(); ++i) {
                QString rest;
                EXPECT_TRUE(stampedBetween(lines[i], before, after, &rest));
                EXPECT_EQ(rest, i == 0 ? "[FATAL] {unit} first" : "[FATAL] {unit} second");
            }
        }
        EXPECT_EQ(console.size(), row.console ? 2 : 0) << row.output;
        EXPECT_EQ(file.size(), row.file ? 2 : 0) << row.output;
    }
}

TEST_F(LoggerFileTest, ConsoleWritesUtf8ToStandardError) {
    Logger logger("unit");
    logger.configure(LoggerConfig("écran", TRACE, OUTPUT_CONSOLE));
    StderrCapture capture(path("stderr.txt"));
    logger.trace(std::string("température 30 °C"));
    const QStringList lines = linesOf(capture.finish());
    ASSERT_EQ(lines.size(), 1);
    EXPECT_TRUE(lines[0].endsWith(QStringLiteral("] [TRACE] {écran} température 30 °C")))
        << lines[0].toStdString();
}

TEST_F(LoggerFileTest, FileIsAppendedAndCreatedWhenMissing) {
    QFile existing(path("app.log"));
    ASSERT_TRUE(existing.open(QIODevice::WriteOnly));
    existing.write("old line\n");
    existing.close();

    Logger logger("unit");
    logger.configure(fileConfig("app.log"));
    logger.info("new line");
    const QStringList lines = linesOf(readAll(path("app.log")));
    ASSERT_EQ(lines.size(), 2);
    EXPECT_EQ(lines[0], "old line");
    EXPECT_TRUE(lines[1].endsWith("{unit} new line"));
    // A file that cannot be opened loses the line without failing.
    LoggerConfig config = fileConfig("missing/dir/app.log");
    logger.configure(config);
    logger.info("lost");
    EXPECT_FALSE(QFile::exists(path("missing/dir/app.log")));
}

TEST_F(LoggerFileTest, RotatesFromOneMebibyte) {
    struct Row {
        QString filename;
        qint64 size;
        QString rotatedPrefix;  // empty: no rotation
    };
    const std::vector<Row> rows = {
        {"below.log", 1048575, ""},
        {"client.log", 1048576, "client_"},
        {"big.txt", 1048576 + 100, "big_"},
        {"log", 1048576, "log_"},
    };
    for (const Row& row : rows) {
        QDir(m_dir.path()).removeRecursively();
        ASSERT_TRUE(QDir().mkpath(m_dir.path()));
        fill(row.filename, row.size);
        Logger logger("unit");
        logger.configure(fileConfig(row.filename));

        const QDateTime before = QDateTime::currentDateTime();
        logger.info("after rotation");
        const QDateTime after = QDateTime::currentDateTime();

        const QStringList entries = QDir(m_dir.path()).entryList(QDir::Files, QDir::Name);
        if (row.rotatedPrefix.isEmpty()) {
            EXPECT_EQ(entries, QStringList{row.filename});
            const QByteArray text = readAll(path(row.filename));
            EXPECT_EQ(text.left(row.size), QByteArray(row.size, 'x'));
            EXPECT_EQ(linesOf(text.mid(row.size)).size(), 1);
            EXPECT_TRUE(text.endsWith("] [INFO] {unit} after rotation\n"));
            continue;
        }
        ASSERT_EQ(entries.size(), 2) << entries.join(' ').toStdString();
        const QString rotated = entries[0] == row.filename ? entries[1] : entries[0];
        const QRegularExpression pattern(QRegularExpression::escape(row.rotatedPrefix) +
                                         "(\\d\\d_\\d\\d_\\d\\d__\\d\\d_\\d\\d_\\d\\d)\\.log$");
        const QRegularExpressionMatch match = pattern.match(rotated);
        ASSERT_TRUE(match.hasMatch()) << rotated.toStdString();
        const QDateTime rotatedAt = QDateTime::fromString(match.captured(1), "dd_MM_yy__hh_mm_ss");
        // "yy" reads back as 19yy; the name has whole seconds.
        EXPECT_GE(rotatedAt.addYears(100), before.addMSecs(-before.time().msec()));
        EXPECT_LE(rotatedAt.addYears(100), after);
        EXPECT_EQ(QFileInfo(path(rotated)).size(), row.size);

        const QStringList lines = linesOf(readAll(path(row.filename)));
        ASSERT_EQ(lines.size(), 2);
        QString rest;
        ASSERT_TRUE(stampedBetween("[" + lines[0].left(23) + "] ", before, after, &rest));
        EXPECT_EQ(lines[0].mid(23), " - Previous log " + path(rotated));
        ASSERT_TRUE(stampedBetween(lines[1], before, after, &rest));
        EXPECT_EQ(rest, "[INFO] {unit} after rotation");
    }
}

TEST(LoggerRegistryTest, FreshLoggerIsSilentUntilConfigured) {
    Logger* logger = Logger::getLogger("fresh-silent");
    const LoggerConfig config = logger->getConfig();
    EXPECT_EQ(config.name, "fresh-silent");
    EXPECT_EQ(config.level, FATAL);
    EXPECT_EQ(config.output, OUTPUT_NONE);
    EXPECT_EQ(config.filename, "");

    QTemporaryDir dir;
    StderrCapture capture(dir.filePath("stderr.txt"));
    logger->trace("t");
    logger->info("i");
    logger->fatal("f");
    EXPECT_EQ(capture.finish(), QByteArray());
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files), QStringList{"stderr.txt"});
}

TEST(LoggerRegistryTest, GetLoggerSharesOneLoggerPerName) {
    Logger* first = Logger::getLogger("shared-a");
    EXPECT_EQ(Logger::getLogger(std::string("shared-a")), first);
    EXPECT_NE(Logger::getLogger("shared-b"), first);

    std::vector<Logger*> seen(8, nullptr);
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < seen.size(); ++i)
        threads.emplace_back([&seen, i] { seen[i] = Logger::getLogger("raced"); });
    for (std::thread& thread : threads)
        thread.join();
    for (Logger* logger : seen)
        EXPECT_EQ(logger, seen[0]);
}

TEST(LoggerRegistryTest, SetLoggerReplacesTheEntry) {
    Logger* previous = Logger::getLogger("plugin");
    previous->configure(LoggerConfig("kept", ERROR, OUTPUT_NONE));
    Logger replacement("plugin");

    EXPECT_EQ(Logger::setLogger("plugin", &replacement), &replacement);
    EXPECT_EQ(Logger::getLogger("plugin"), &replacement);
    EXPECT_EQ(previous->getConfig().name, "kept");  // not deleted

    EXPECT_EQ(Logger::setLogger("plugin", previous), previous);
    EXPECT_EQ(Logger::getLogger("plugin"), previous);

    EXPECT_EQ(Logger::setLogger("emptied", nullptr), nullptr);
    Logger* created = Logger::getLogger("emptied");
    ASSERT_NE(created, nullptr);
    EXPECT_EQ(created->getConfig().name, "emptied");
}

TEST_F(LoggerFileTest, ConcurrentWritersNeverInterleaveLines) {
    Logger logger("unit");
    logger.configure(fileConfig("threads.log"));
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&logger, t] {
            for (int i = 0; i < 100; ++i)
                logger.info("thread " + std::to_string(t) + " line " + std::to_string(i));
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    const QStringList lines = linesOf(readAll(path("threads.log")));
    ASSERT_EQ(lines.size(), 400);
    const QRegularExpression shape(QStringLiteral(
        "^\\[[^\\]]+\\] \\[INFO\\] \\{unit\\} thread \\d line \\d+$"));
    for (const QString& line : lines)
        EXPECT_TRUE(shape.match(line).hasMatch()) << line.toStdString();
}

}  // namespace
