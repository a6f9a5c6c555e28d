#include "log/LXLogger.h"

#include "platform/SystemLog.h"
#include "support/FailingFileStore.h"
#include "support/SettableClock.h"
#include "support/TemporaryHome.h"

#include <QDir>

#include <gtest/gtest.h>

using namespace quarry;
using namespace quarry::test;

namespace {

const QByteArray Separator(51, '-');

QByteArray numbered(int first, int last)
{
    QByteArray text;
    for (int i = first; i <= last; ++i)
        text += "line " + QByteArray::number(i) + '\n';
    return text;
}

class LoggerTest : public testing::Test {
protected:
    QByteArray content() const { return contentOf(home->logFile()); }
    QByteArray stamp() const { return clock.now().description().toUtf8() + ": "; }
    /// Every line logged by a logger of its own, which ends.
    void log(const QStringList& texts)
    {
        LXLogger logger(home, clock, files);
        for (const QString& text : texts)
            logger.logString(text);
        logger.waitUntilWritten();
    }

    TemporaryHome home;
    SettableClock clock;
    FailingFileStore files;
};

TEST_F(LoggerTest, TheSeparatorComesWithTheFirstLine)
{
    ASSERT_TRUE(QDir(home->supportFolder()).removeRecursively());
    LXLogger logger(home, clock, files);
    logger.logString(QString());
    logger.waitUntilWritten();
    EXPECT_FALSE(QFile::exists(home->logFile()));
    EXPECT_EQ(logger.numberOfStringsToLog(), 1);

    logger.logString(QStringLiteral("Ünï: %1"));
    logger.logString(QStringLiteral("two"));
    logger.waitUntilWritten();
    EXPECT_EQ(content(), Separator + '\n' + stamp() + "Ünï: %1\n" + stamp() + "two\n");
    EXPECT_EQ(logger.numberOfStringsToLog(), 0);
}

TEST_F(LoggerTest, AMissingPreferenceFileIsToldToTheSystem)
{
    QStringList told;
    setSystemLogSink([&](const QString& line) { told.append(line); });
    log({});
    ASSERT_TRUE(writeFile(home->preferencesFile(), "x"));
    log({});
    setSystemLogSink({});
    EXPECT_EQ(told, QStringList{QStringLiteral("LXLogger : Main Application preferences dos not exist !")});
}

TEST_F(LoggerTest, TheFileKeepsItsLastLines)
{
    ASSERT_TRUE(writeFile(home->logFile(), numbered(1, 5200)));
    log({QStringLiteral("new")});
    // 4999 lines and the empty piece after the last newline; the separator is one of them.
    EXPECT_EQ(content(), numbered(5200 - 4996, 5200) + Separator + '\n' + stamp() + "new\n");
    EXPECT_EQ(content().count('\n'), 4999);

    // Text without a newline at its end is continued, as seeking to the end does.
    ASSERT_TRUE(writeFile(home->logFile(), "torn"));
    log({QStringLiteral("new")});
    EXPECT_EQ(content(), "torn" + Separator + '\n' + stamp() + "new\n");
}

TEST_F(LoggerTest, TheFileIsReadOnlyWhenItsLinesAreNotKnown)
{
    LogFile file(home, files);
    ASSERT_TRUE(writeFile(home->logFile(), numbered(1, 4990)));
    for (int i = 4991; i <= 4999; ++i)
        file.append({QStringLiteral("line %1").arg(i)});
    EXPECT_EQ(files.reads, 1);
    EXPECT_EQ(content(), numbered(1, 4999));
    EXPECT_EQ(files.replacements, 0);

    file.append({QStringLiteral("line 5000\nline 5001")});
    EXPECT_EQ(content(), numbered(3, 5001));
    ASSERT_TRUE(writeFile(home->logFile(), numbered(1, 5000)));
    file.append({QStringLiteral("line 5001")});
    EXPECT_EQ(content(), numbered(3, 5001)) << "another program's lines must be counted anew";
}

TEST_F(LoggerTest, AStoppedLoggerWritesNothing)
{
    LXLogger logger(home, clock, files);
    logger.logString(QStringLiteral("before"));
    logger.waitUntilWritten();
    const QByteArray before = content();
    logger.stopLogger();
    logger.logString(QStringLiteral("after"));
    logger.waitUntilWritten();
    EXPECT_EQ(content(), before);
    EXPECT_EQ(logger.numberOfStringsToLog(), 0);
    logger.logThread({QStringLiteral("direct")});
    EXPECT_EQ(content(), before + "direct\n");
}

TEST_F(LoggerTest, LoggersOfSeveralProcessesLoseNothing)
{
    // Two loggers share nothing but the file and its lock, as two processes do. The file is cut while they write.
    constexpr int PerThread = 40;
    ASSERT_TRUE(writeFile(home->logFile(), numbered(1, 4950)));
    const auto run = [&](const char* name) {
        LXLogger logger(home, clock, files);
        std::vector<std::thread> threads;
        threads.reserve(2);
        for (int t = 0; t < 2; ++t) {
            threads.emplace_back([&, t] {
                for (int i = 0; i < PerThread; ++i)
                    logger.logString(QStringLiteral("%1 %2 %3").arg(QLatin1String(name)).arg(t).arg(i));
            });
        }
        for (std::thread& thread : threads)
            thread.join();
    };
    std::thread other(run, "a");
    run("b");
    other.join();

    const QList<QByteArray> lines = content().split('\n');
    EXPECT_EQ(lines.size(), LogFile::MostPieces);
    QMap<QByteArray, int> next; // By logger and thread: their lines in order, none lost or torn.
    for (const QByteArray& line : lines) {
        if (!line.startsWith(stamp()))
            continue;
        const qsizetype blank = line.lastIndexOf(' ');
        EXPECT_EQ(line.mid(blank + 1).toInt(), next[line.left(blank)]++) << line.constData();
    }
    EXPECT_EQ(next.values(), QList<int>({PerThread, PerThread, PerThread, PerThread}));
}

} // namespace
