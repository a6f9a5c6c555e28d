#include "platform/linux/LinuxProcessTable.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>

using namespace quarry;

namespace {

/// A program under a name of the test's choice that runs until it is told to end.
class NamedProgram final {
public:
    explicit NamedProgram(const QString& name) : file(_folder.filePath(name))
    {
        QFile::copy(QStringLiteral("/bin/cat"), file);
        process.start(file, {});
        process.waitForStarted(60000);
    }
    ~NamedProgram()
    {
        process.kill();
        process.waitForFinished(60000);
    }

private:
    QTemporaryDir _folder;

public:
    QString file;
    QProcess process;
};

std::optional<ProcessRecord> recordOf(LinuxProcessTable& table, std::int64_t processId)
{
    const auto processes = table.processes();
    for (const ProcessRecord& process : processes.value_or(std::vector<ProcessRecord>())) {
        if (process.processId == processId)
            return process;
    }
    return std::nullopt;
}

TEST(LinuxProcessTable, NamesEachProcessByItsProgramFile)
{
    LinuxProcessTable table;
    for (const auto& [name, command] : {std::pair(QStringLiteral("QuarrySpotterUpdater"), "QuarrySpotterUpd"),
                                        std::pair(QStringLiteral("a) S 1 (b"), "a) S 1 (b"),
                                        std::pair(QStringLiteral("Übersetzer für Würze"), "Übersetzer für W")}) {
        NamedProgram program(name);
        for (const bool isDeleted : {false, true}) {
            ASSERT_TRUE(!isDeleted || QFile::remove(program.file));
            const auto record = recordOf(table, program.process.processId());
            ASSERT_TRUE(record) << command;
            EXPECT_EQ(record->command.toStdString(), command);
            EXPECT_EQ(record->userId, ::getuid());
            EXPECT_FALSE(record->commandIsShortened);
        }
        EXPECT_TRUE(table.interrupt(program.process.processId()));
        ASSERT_TRUE(program.process.waitForFinished(60000));
        EXPECT_EQ(program.process.exitStatus(), QProcess::CrashExit);
        EXPECT_FALSE(recordOf(table, program.process.processId()));
        EXPECT_FALSE(table.interrupt(0) || table.terminate(-1)) << "groups of processes";
    }
    EXPECT_EQ(recordOf(table, table.ownProcessId())->command, QStringLiteral("test_platform"));
}

TEST(LinuxProcessTable, SeesANewProgramOfAnOldProcessAtOnce)
{
    QTemporaryDir folder;
    const QString program = folder.filePath(QStringLiteral("QuarrySpotter"));
    ASSERT_TRUE(QFile::copy(QStringLiteral("/bin/cat"), program));
    QProcess shell;
    shell.start(QStringLiteral("/bin/sh"),
                {QStringLiteral("-c"), QStringLiteral("echo; read line; exec \"$0\""), program});
    ASSERT_TRUE(shell.waitForReadyRead(60000));
    LinuxProcessTable table;
    for (int reading = 0; reading < 20; ++reading)
        ASSERT_NE(recordOf(table, shell.processId())->command, QStringLiteral("QuarrySpotter"));
    shell.readAll();
    shell.write("\nready\n");
    ASSERT_TRUE(shell.waitForReadyRead(60000)) << "the new program says the second line";
    EXPECT_EQ(recordOf(table, shell.processId())->command, QStringLiteral("QuarrySpotter"));
    shell.kill();
    ASSERT_TRUE(shell.waitForFinished(60000));
}

TEST(LinuxProcessTable, LeavesOutWhatEndedAndIsNotWaitedFor)
{
    LinuxProcessTable table;
    pid_t child = 0;
    char program[] = "/bin/true";
    char* arguments[] = {program, nullptr};
    ASSERT_EQ(::posix_spawn(&child, program, nullptr, nullptr, arguments, environ), 0);
    siginfo_t info = {};
    ASSERT_EQ(::waitid(P_PID, static_cast<id_t>(child), &info, WEXITED | WNOWAIT), 0);
    EXPECT_FALSE(recordOf(table, child));
    ASSERT_EQ(::waitpid(child, nullptr, 0), child);
}

TEST(LinuxProcessTable, FallsBackToTheKernelsFieldForOtherUsers)
{
    if (::geteuid() != 0)
        GTEST_SKIP() << "only root can become another user";
    NamedProgram program(QStringLiteral("Quarry) (Spotter x"));
    QProcess child;
    child.start(QStringLiteral(PLATFORM_CHILD),
                {QStringLiteral("processes"), QString::number(program.process.processId())});
    ASSERT_TRUE(child.waitForFinished(60000));
    EXPECT_EQ(child.exitCode(), 0) << "it may not signal it";
    EXPECT_EQ(child.readAll(), "Quarry) (Spotte 1");
}

} // namespace
